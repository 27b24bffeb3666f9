#include "subtitle_control.h"

#include <algorithm>

#include "device_font.h"

SubtitleControl::SubtitleControl(QWidget* parent, const char* name, unsigned int flags)
    : OsdControl(parent, name, flags)
{
    setGeometry(0, 110, 480, 80);
    setFont(device_font(QStringLiteral("V28"), 16, 50));
    set_align(Qt::TextWordWrap | Qt::AlignHCenter | Qt::AlignBottom);
}

void SubtitleControl::set_subtitle(const std::vector<Subtitle>* list)
{
    const bool usable = list && !list->empty();
    {
        const std::lock_guard lock(mutex_);
        subtitles_ = usable ? list : nullptr;
        forget_line();
        if (usable)
            last_subtitle_.clear();
    }
    if (!usable)
        clear();
}

bool SubtitleControl::update(long long position)
{
    const std::lock_guard lock(mutex_);
    if (!visible_ || !subtitles_ || subtitles_->empty())
        return false;
    const long long time = position + offset_ms_;
    const Subtitle& line = (*subtitles_)[candidate(time)];
    if (line.start != last_start_ && line.start <= time && time <= line.end) {
        last_start_ = line.start;
        cleared_ = false;
        current_text_ = toUniString(QString::fromLatin1(line.text.data(), static_cast<qsizetype>(line.text.size())));
        last_subtitle_ = current_text_;
        return true;
    }
    if (line.end >= time || cleared_)
        return false;
    cleared_ = true;
    current_text_.clear();
    return true;
}

std::size_t SubtitleControl::candidate(long long position)
{
    const std::vector<Subtitle>& list = *subtitles_;
    const std::size_t known = last_candidate_;
    const bool not_before = known == 0 || list[known].start < position;
    const bool not_after = known + 1 == list.size() || position <= list[known + 1].start;
    if (not_before && not_after)
        return known;
    search_key_.start = position;
    const auto found = std::lower_bound(list.begin(), list.end(), search_key_, less_mag());
    last_candidate_ = found == list.begin() ? 0 : static_cast<std::size_t>(found - list.begin()) - 1;
    return last_candidate_;
}

void SubtitleControl::draw()
{
    if (!isVisible())
        return;
    QString text;
    {
        const std::lock_guard lock(mutex_);
        text = current_text_;
    }
    if (text.isEmpty())
        clear();
    else
        OsdControl::draw(leading_pad_ + text + trailing_pad_);
}

void SubtitleControl::set_offset(int offset_ms)
{
    const std::lock_guard lock(mutex_);
    offset_ms_ = offset_ms;
}

void SubtitleControl::set_location(SubtitleLocation location)
{
    const SubtitlePlacement* placement = subtitle_placement(location);
    if (!placement)
        placement = subtitle_placement(SubtitleLocation::Low);
    leading_pad_ = QString::fromLatin1(placement->leading_pad);
    trailing_pad_ = QString::fromLatin1(placement->trailing_pad);
}

void SubtitleControl::close()
{
    clear();
    const std::lock_guard lock(mutex_);
    subtitles_ = nullptr;
    forget_line();
}

QString SubtitleControl::get_last_subtitle() const
{
    const std::lock_guard lock(mutex_);
    return last_subtitle_;
}

void SubtitleControl::forget_line()
{
    cleared_ = true;
    last_start_ = 0;
    current_text_.clear();
    last_candidate_ = 0;
}

void SubtitleControl::showEvent(QShowEvent* event)
{
    visible_ = isVisible();
    OsdControl::showEvent(event);
}

void SubtitleControl::hideEvent(QHideEvent* event)
{
    visible_ = isVisible();
    OsdControl::hideEvent(event);
}
