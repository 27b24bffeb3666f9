#include "list_row.h"

#include "list_box_skin.h"

#include <QFontMetrics>
#include <QPainter>

ListRow::ListRow(const QString& path, int number) : ListBoxSkinText(path), number_(number) {}

ListRow::~ListRow() = default;

int ListRow::display_name_width() const
{
    return listBox() ? listBox()->fontMetrics().horizontalAdvance(display_name_) : 0;
}

void ListRow::set_display_name()
{
    const QString path = text();
    display_name_ = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

bool ListRow::follow_current()
{
    const bool is_current = isCurrent();
    if (is_current && !was_current_)
        scroll_offset_ = 0;
    was_current_ = is_current;
    return is_current;
}

int ListRow::baseline(const QPainter* painter) const
{
    const QFontMetrics metrics = painter->fontMetrics();
    const int row_height = listBox() ? listBox()->rowHeight() : metrics.lineSpacing();
    const int leading = metrics.leading();
    return (row_height - metrics.ascent() - leading) / 2 + metrics.ascent() + leading / 2;
}

void ListRow::draw_running_name(QPainter* painter, int x, int gap) const
{
    const int y = baseline(painter);
    const int first_x = x - scroll_offset_;
    painter->drawText(first_x, y, display_name_);
    painter->drawText(first_x + display_name_width() + gap, y, display_name_);
}
