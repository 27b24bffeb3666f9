#include "timed_text.h"

#include "overlapping_lines.h"
#include "text_codec.h"

#include <QStringList>

#include <algorithm>

namespace
{

/// How long the last line stays when nothing says where it ends.
constexpr long long last_line_ms = 5000;

/// More lines than this without an end at one time are a damaged file's; no screen has room for them.
constexpr qsizetype most_joined_lines = 16;

/// How many lines become bytes in one conversion; a zero byte, which is never half of a character, parts them.
constexpr std::size_t converted_at_once = 1000;

/// Makes one line of two that begin together and end with the next one.
void join(TimedText& line, TimedText& other)
{
    if (other.text.isEmpty())
        return;
    if (line.text.isEmpty()) {
        line.text = std::move(other.text);
        return;
    }
    const QStringList told = line.text.split(u'\n');
    if (told.size() < most_joined_lines && !told.contains(other.text) && line.text != other.text)
        line.text += u'\n' + other.text;
}

/// Gives each line without an end the start of the next one.
void end_lines(std::vector<TimedText>& lines)
{
    std::optional<long long> next;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        const bool begins_with_next = line != lines.rbegin() && (line - 1)->start == line->start;
        if (line != lines.rbegin() && !begins_with_next)
            next = (line - 1)->start;
        if (!line->end)
            line->end = next.value_or(line->start + last_line_ms);
    }
}

} // namespace

std::vector<Subtitle> in_order(std::vector<TimedText> lines, const std::atomic<bool>& cancelled)
{
    // Over before the film begins.
    std::erase_if(lines, [](const TimedText& line) {
        return line.start < 0 && line.end && *line.end <= 0 && *line.end > line.start;
    });
    for (TimedText& line : lines) {
        line.start = std::max<long long>(line.start, 1);
        if (line.end && *line.end < line.start)
            line.end.reset();
    }
    const auto is_earlier = [](const TimedText& left, const TimedText& right) { return left.start < right.start; };
    if (!std::is_sorted(lines.begin(), lines.end(), is_earlier))
        std::stable_sort(lines.begin(), lines.end(), is_earlier);

    std::vector<TimedText> joined;
    joined.reserve(lines.size());
    for (TimedText& line : lines) {
        line.text.remove(QChar::Null);
        const bool begins_with_last = !joined.empty() && joined.back().start == line.start;
        if (begins_with_last && !joined.back().end && !line.end)
            join(joined.back(), line);
        else
            joined.push_back(std::move(line));
    }
    lines = std::vector<TimedText>(); // {} would keep the memory
    end_lines(joined);
    std::erase_if(joined, [](const TimedText& line) { return line.text.isEmpty(); });
    joined = without_overlaps(std::move(joined), cancelled);

    std::vector<Subtitle> result;
    result.reserve(joined.size());
    for (std::size_t first = 0; first < joined.size() && !cancelled; first += converted_at_once) {
        const std::size_t behind = std::min(first + converted_at_once, joined.size());
        QString all;
        for (std::size_t index = first; index < behind; ++index) {
            TimedText& line = joined[index];
            result.push_back({line.start, *line.end, {}});
            all += line.text;
            all += QChar::Null;
            line.text.clear();
        }
        const QByteArray bytes = QTextCodec::codecForName("CP949")->fromUnicode(all);
        const char* text = bytes.constData();
        for (std::size_t index = first; index < behind; ++index) {
            result[index].text = text;
            text += result[index].text.size() + 1;
        }
    }
    return result;
}
