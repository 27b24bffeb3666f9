#include "cue_reader.h"

#include "subtitle_markup.h"
#include "time_code.h"

#include <QString>

#include <algorithm>
#include <optional>
#include <vector>

namespace
{

/// A line that tells two times.
struct Timing {
    std::size_t line = 0; ///< its number in the file
    long long start = 0;
    std::optional<long long> end;
};

std::optional<Timing> read_timing(QStringView line)
{
    const qsizetype arrow = line.indexOf(QLatin1String("->"));
    if (arrow < 0)
        return std::nullopt;
    Timing timing;
    QStringView rest = line;
    const std::optional<long long> start = take_time_code(rest);
    if (!start)
        return std::nullopt;
    while (!rest.isEmpty() && (rest[0].isSpace() || rest[0] == u'-'))
        rest = rest.sliced(1);
    if (!rest.startsWith(u'>'))
        return std::nullopt;
    rest = rest.sliced(1);
    timing.start = *start;
    timing.end = take_time_code(rest);
    return timing;
}

std::optional<long long> counter(QStringView line)
{
    line = line.trimmed();
    while (!line.isEmpty() && line[0].category() == QChar::Other_Format)
        line = line.sliced(1);
    bool is_number = false;
    const long long number = line.toLongLong(&is_number);
    return is_number ? std::optional(number) : std::nullopt;
}

std::vector<QStringView> split_lines(QStringView source)
{
    std::vector<QStringView> lines;
    const auto ends = std::count_if(source.begin(), source.end(), [](QChar at) { return at == u'\n' || at == u'\r'; });
    lines.reserve(static_cast<std::size_t>(ends) + 1);
    qsizetype first = 0;
    for (qsizetype at = 0; at <= source.size(); ++at) {
        if (at < source.size() && source[at] != u'\n' && source[at] != u'\r')
            continue;
        lines.push_back(source.sliced(first, at - first));
        if (at + 1 < source.size() && source[at] == u'\r' && source[at + 1] == u'\n')
            ++at;
        first = at + 1;
    }
    return lines;
}

bool is_blank(QStringView line)
{
    return line.trimmed().isEmpty();
}

/// Reads the cues of one file, line by line.
class CueReader
{
public:
    CueReader(QStringView source, const std::atomic<bool>& cancelled) : m_lines(split_lines(source))
    {
        for (std::size_t line = 0; line < m_lines.size() && !cancelled; ++line) {
            if (std::optional<Timing> timing = read_timing(m_lines[line])) {
                timing->line = line;
                m_timings.push_back(*timing);
            }
        }
        m_numbered = !m_timings.empty() && counter_above(m_timings.front().line).has_value();
    }

    /// The cues with what stands from below their times up to the next cue.
    std::vector<TimedText> read(bool ends_at_blank, subtitle_markup::Tags tags,
                                const std::atomic<bool>& cancelled) const
    {
        std::vector<TimedText> result;
        for (std::size_t cue = 0; cue < m_timings.size() && !cancelled; ++cue) {
            const std::size_t first = m_timings[cue].line + 1;
            const std::size_t last = ends_at_blank ? first_blank(first, text_end(cue)) : text_end(cue);
            QString text;
            for (std::size_t line = first; line < last; ++line) {
                text += m_lines[line];
                text += u'\n';
            }
            result.push_back({m_timings[cue].start, m_timings[cue].end, subtitle_markup::plain_cue(text, tags)});
        }
        return result;
    }

private:
    struct Counter {
        std::size_t line = 0;
        long long number = 0;
        bool right_above = false;
    };

    /// The number that stands over a timing, maybe with blank lines between.
    std::optional<Counter> counter_above(std::size_t timing) const
    {
        std::size_t line = timing;
        while (line > 0 && is_blank(m_lines[line - 1]))
            --line;
        if (line == 0)
            return std::nullopt;
        const std::optional<long long> number = counter(m_lines[line - 1]);
        return number ? std::optional(Counter{line - 1, *number, line == timing}) : std::nullopt;
    }

    /// The line behind the text of a cue. The next one's counter is no text; a number that was said is.
    std::size_t text_end(std::size_t cue) const
    {
        if (cue + 1 == m_timings.size())
            return m_lines.size();
        const std::size_t next = m_timings[cue + 1].line;
        const std::optional<Counter> above = m_numbered ? counter_above(next) : std::nullopt;
        if (!above || above->line <= m_timings[cue].line)
            return next;
        if (above->right_above)
            return above->line;
        const std::optional<Counter> own = counter_above(m_timings[cue].line);
        const bool follows = own && above->number == own->number + 1;
        return follows && is_blank(m_lines[above->line - 1]) ? above->line : next;
    }

    std::size_t first_blank(std::size_t first, std::size_t last) const
    {
        while (first < last && !is_blank(m_lines[first]))
            ++first;
        return first;
    }

    std::vector<QStringView> m_lines;
    std::vector<Timing> m_timings;
    bool m_numbered = false; ///< whether counters stand over the times
};

} // namespace

std::vector<TimedText> read_sub_rip(QStringView source, const std::atomic<bool>& cancelled)
{
    return CueReader(source, cancelled).read(false, subtitle_markup::Tags::Known, cancelled);
}

std::vector<TimedText> read_web_vtt(QStringView source, const std::atomic<bool>& cancelled)
{
    return CueReader(source, cancelled).read(true, subtitle_markup::Tags::All, cancelled);
}
