#include "media_file.h"

#include "list_box_skin.h"

#include <QPainter>

namespace
{

constexpr int gap_between_copies = 30;

const QColor now_playing_colour(255, 102, 0);

} // namespace

MediaFile::MediaFile(const QString& path, int number) : ListRow(path, number)
{
    setStrings();
}

MediaFile::~MediaFile() = default;

void MediaFile::setStrings()
{
    number_string_ = QString::number(number());
    if (number() < 10)
        number_string_.prepend(QLatin1Char('0'));
    if (number() < 100)
        number_string_.prepend(QLatin1Char('0'));
    set_display_name();
}

MediaFile* MediaFile::moved_to(int number) const
{
    auto* row = new MediaFile(text(), number);
    row->set_now_playing(now_playing_);
    return row;
}

void MediaFile::paint(QPainter* painter)
{
    const bool is_current = follow_current();
    painter->setPen(now_playing_ && !is_current ? now_playing_colour : text_colour);
    painter->drawText(number_x, baseline(painter), number_string_);
    if (is_current && scroll_offset() >= 1)
        paint_scroll_text(painter);
    else
        painter->drawText(name_x, baseline(painter), display_name());
}

void MediaFile::paint_scroll_text(QPainter* painter)
{
    if (scroll_offset() > display_name_width() + name_x)
        set_scroll_offset(0);
    painter->save();
    painter->setClipRect(QRect(name_x, 0, listBox()->visibleWidth() - name_x, listBox()->rowHeight()),
                         Qt::IntersectClip);
    draw_running_name(painter, name_x, gap_between_copies);
    painter->restore();
}
