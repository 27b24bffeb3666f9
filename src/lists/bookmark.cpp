#include "bookmark.h"

#include "list_box_skin.h"

#include <QPainter>

namespace
{

constexpr int gap_between_copies = 60;

/// The character @p value places behind '0'; a digit up to 9.
QChar digit(unsigned int value)
{
    return QChar(static_cast<char16_t>(u'0' + value));
}

} // namespace

Bookmark::Bookmark(const QString& path, int number, unsigned int seconds) : ListRow(path, number), time_(seconds)
{
    setStrings();
}

Bookmark::~Bookmark() = default;

void Bookmark::setStrings()
{
    set_display_name();
    const unsigned int minutes = (time_ / 60) % 60;
    const unsigned int seconds = time_ % 60;
    time_string_ = QStringLiteral("00:00:00");
    // From 100 hours on the first character is no digit any more, but still in order.
    time_string_[0] = digit(time_ / 36000);
    time_string_[1] = digit((time_ / 3600) % 10);
    time_string_[3] = digit(minutes / 10);
    time_string_[4] = digit(minutes % 10);
    time_string_[6] = digit(seconds / 10);
    time_string_[7] = digit(seconds % 10);
}

Bookmark* Bookmark::moved_to(int number) const
{
    return new Bookmark(text(), number, time_);
}

void Bookmark::paint(QPainter* painter)
{
    const bool is_current = follow_current();
    painter->setPen(text_colour);
    painter->drawText(time_x, baseline(painter), time_string_);
    painter->save();
    if (is_current && scroll_offset() >= 1)
        paint_scroll_text(painter);
    else
        paint_name(painter);
    painter->restore();
}

void Bookmark::paint_name(QPainter* painter) const
{
    painter->setClipRect(QRect(QPoint(0, 0), QPoint(name_right, listBox()->rowHeight() - 1)), Qt::IntersectClip);
    painter->drawText(name_x, baseline(painter), display_name());
}

void Bookmark::paint_scroll_text(QPainter* painter)
{
    if (scroll_offset() + 3 > display_name_width() + gap_between_copies)
        set_scroll_offset(0);
    painter->setClipRect(QRect(QPoint(name_x, 0), QPoint(name_right, listBox()->rowHeight() - 1)), Qt::IntersectClip);
    draw_running_name(painter, name_x, gap_between_copies);
}
