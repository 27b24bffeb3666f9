#include "timed_text.h"

#include "text_codec.h"

#include <QStringList>

#include <algorithm>

namespace
{

/// How long the last line stays when nothing says where it ends.
constexpr long long last_line_ms = 5000;

/// More lines than this at one time are a damaged file's; no screen has room for them.
constexpr qsizetype most_joined_lines = 16;

/// How many lines become bytes in one conversion; a zero byte, which is never half of a character, parts them.
constexpr std::size_t converted_at_once = 1000;

void join(TimedText& line, const TimedText& other)
{
    if (other.text.isEmpty())
        return;
    if (line.text.isEmpty()) {
        line = other;
        return;
    }
    if (line.end && other.end)
        line.end = std::max(*line.end, *other.end);
    else
        line.end.reset();
    const QStringList told = line.text.split(u'\n');
    if (told.size() < most_joined_lines && !told.contains(other.text) && line.text != other.text)
        line.text += u'\n' + other.text;
}

} // namespace

std::vector<Subtitle> in_order(std::vector<TimedText> lines, const std::atomic<bool>& cancelled)
{
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
        if (!joined.empty() && joined.back().start == line.start)
            join(joined.back(), line);
        else
            joined.push_back(std::move(line));
    }
    lines = std::vector<TimedText>(); // {} would keep the memory

    std::vector<Subtitle> result;
    result.reserve(joined.size());
    for (std::size_t first = 0; first < joined.size() && !cancelled; first += converted_at_once) {
        const std::size_t behind = std::min(first + converted_at_once, joined.size());
        const std::size_t first_result = result.size();
        QString all;
        for (std::size_t index = first; index < behind; ++index) {
            TimedText& line = joined[index];
            line.text.remove(QChar::Null);
            if (line.text.isEmpty())
                continue;
            const bool is_last = index + 1 == joined.size();
            const long long end = line.end ? *line.end : is_last ? line.start + last_line_ms : joined[index + 1].start;
            result.push_back({line.start, end, {}});
            all += line.text;
            all += QChar::Null;
            line.text.clear();
        }
        const QByteArray bytes = QTextCodec::codecForName("CP949")->fromUnicode(all);
        const char* text = bytes.constData();
        for (std::size_t index = first_result; index < result.size(); ++index) {
            result[index].text = text;
            text += result[index].text.size() + 1;
        }
    }
    return result;
}
