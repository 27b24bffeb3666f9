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

std::vector<Subtitle> in_order(std::vector<TimedText> lines)
{
    for (TimedText& line : lines) {
        line.start = std::max<long long>(line.start, 1);
        if (line.end && *line.end < line.start)
            line.end.reset();
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const TimedText& left, const TimedText& right) { return left.start < right.start; });

    std::vector<TimedText> joined;
    joined.reserve(lines.size());
    for (TimedText& line : lines) {
        if (!joined.empty() && joined.back().start == line.start)
            join(joined.back(), line);
        else
            joined.push_back(std::move(line));
    }

    // One conversion for all: a zero byte is never half of a character.
    QString all;
    std::vector<Subtitle> result;
    for (std::size_t index = 0; index < joined.size(); ++index) {
        TimedText& line = joined[index];
        line.text.remove(QChar::Null);
        if (line.text.isEmpty())
            continue;
        const bool is_last = index + 1 == joined.size();
        const long long end = line.end ? *line.end : is_last ? line.start + last_line_ms : joined[index + 1].start;
        result.push_back({line.start, end, {}});
        all += line.text;
        all += QChar::Null;
    }
    const QByteArray bytes = QTextCodec::codecForName("CP949")->fromUnicode(all);
    const char* text = bytes.constData();
    for (Subtitle& line : result) {
        line.text = text;
        text += line.text.size() + 1;
    }
    return result;
}
