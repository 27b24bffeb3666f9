#include "overlapping_lines.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <queue>
#include <set>

namespace
{

/// How many rows the screen has room for: four of the usual size, and all but the top of the first of the large size.
constexpr qsizetype most_rows = 4;

/// Two lines that are both shown for less than this were meant to follow one another.
constexpr long long untidy_ms = 300;

/// How many times as long as their overlap such lines are at least; shorter ones are meant, as in signs that move.
constexpr long long least_parts = 3;

/// How many lines that begin before another one ends are looked at for one that was meant to follow it.
constexpr std::ptrdiff_t most_followers = 16;

/// How many lines are looked at for what is due at one time; more are a damaged file's.
constexpr int most_candidates = 64;

/// How many characters are looked at for what is due. A damaged file's lines beyond that are told once, and none twice.
constexpr qsizetype most_characters = 16'000'000;

bool overlap(const TimedText& line, const TimedText& next)
{
    return next.start < *line.end || next.start == line.start;
}

qsizetype rows_of(const QString& text)
{
    return text.count(u'\n') + 1;
}

/// Whether @p text says @p other, too: all of it, or in one of its rows.
bool says(const QString& text, const QString& other)
{
    if (text == other)
        return true;
    for (const QStringView row : QStringView(text).tokenize(u'\n')) {
        if (row == other)
            return true;
    }
    return false;
}

/// Ends lines where the next one begins, if both were meant to follow one another.
void tidy_ends(std::vector<TimedText>& lines)
{
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        const long long from = std::max(line->start, *line->end - untidy_ms);
        const auto is_before = [](long long time, const TimedText& other) { return time < other.start; };
        auto next = std::upper_bound(line + 1, lines.end(), from, is_before);
        const auto last = next + std::min(lines.end() - next, most_followers);
        for (; next != last && next->start < *line->end; ++next) {
            const long long least = (*line->end - next->start) * least_parts;
            if (*line->end - line->start >= least && *next->end - next->start >= least) {
                line->end = next->start;
                break;
            }
        }
    }
}

/// Walks through the times at which lines that overlap begin and end.
class OverlappingLines
{
public:
    explicit OverlappingLines(std::vector<TimedText> lines) : m_lines(std::move(lines)) {}

    std::vector<TimedText> read(const std::atomic<bool>& cancelled);

private:
    struct End {
        long long time = 0;
        std::size_t line = 0;

        bool operator>(const End& other) const { return time > other.time; }
    };

    void begin_lines(long long now);
    void end_lines(long long now);
    long long next_time() const;
    QString text_due();
    void tell(long long from, long long to);

    std::vector<TimedText> m_lines;
    std::size_t m_next = 0;                                               ///< the first line that has not begun
    std::set<std::size_t> m_due;                                          ///< lines that have begun and not ended
    std::priority_queue<End, std::vector<End>, std::greater<End>> m_ends; ///< of the lines that are due
    qsizetype m_characters = 0;                                           ///< that were looked at
    std::vector<TimedText> m_result;
};

std::vector<TimedText> OverlappingLines::read(const std::atomic<bool>& cancelled)
{
    m_result.reserve(m_lines.size());
    while (m_next < m_lines.size() && !cancelled) {
        const bool stands_alone = m_next + 1 == m_lines.size() || !overlap(m_lines[m_next], m_lines[m_next + 1]);
        if (stands_alone) {
            m_result.push_back(std::move(m_lines[m_next++]));
            continue;
        }
        // All that begins before these have ended belongs to them.
        long long now = m_lines[m_next].start;
        begin_lines(now);
        while (!m_due.empty() && !cancelled) {
            const long long then = next_time();
            tell(now, then);
            now = then;
            end_lines(now);
            if (!m_due.empty())
                begin_lines(now);
        }
    }
    return std::move(m_result);
}

void OverlappingLines::begin_lines(long long now)
{
    for (; m_next < m_lines.size() && m_lines[m_next].start == now; ++m_next) {
        if (*m_lines[m_next].end <= now)
            continue;
        if (m_characters > most_characters) {
            m_due.clear();
            m_ends = {};
        }
        m_due.insert(m_due.end(), m_next);
        m_ends.push({*m_lines[m_next].end, m_next});
    }
}

void OverlappingLines::end_lines(long long now)
{
    for (; !m_ends.empty() && m_ends.top().time <= now; m_ends.pop())
        m_due.erase(m_ends.top().line);
}

long long OverlappingLines::next_time() const
{
    const long long end = m_ends.top().time;
    return m_next < m_lines.size() ? std::min(end, m_lines[m_next].start) : end;
}

QString OverlappingLines::text_due()
{
    std::vector<const QString*> chosen; // the line that began last comes first
    qsizetype rows = 0;
    int candidates = 0;
    for (auto line = m_due.rbegin(); line != m_due.rend() && candidates < most_candidates; ++line, ++candidates) {
        const QString& text = m_lines[*line].text;
        m_characters += text.size();
        const auto says_it = [&text](const QString* other) { return *other != text && says(*other, text); };
        if (std::any_of(chosen.begin(), chosen.end(), says_it))
            continue;
        // The earlier of two lines with the same text keeps its place.
        const auto is_said = [&text](const QString* other) { return says(text, *other); };
        rows += rows_of(text);
        for (const QString* const other : chosen)
            rows -= is_said(other) ? rows_of(*other) : 0;
        if (!chosen.empty() && rows > most_rows)
            break;
        chosen.erase(std::remove_if(chosen.begin(), chosen.end(), is_said), chosen.end());
        chosen.push_back(&text);
    }
    QString result = *chosen.back();
    for (auto text = chosen.rbegin() + 1; text != chosen.rend(); ++text)
        result += u'\n' + **text;
    return result;
}

void OverlappingLines::tell(long long from, long long to)
{
    QString text = text_due();
    const bool goes_on = !m_result.empty() && *m_result.back().end == from && m_result.back().text == text;
    if (goes_on)
        m_result.back().end = to;
    else
        m_result.push_back({from, to, std::move(text)});
}

} // namespace

std::vector<TimedText> without_overlaps(std::vector<TimedText> lines, const std::atomic<bool>& cancelled)
{
    if (std::adjacent_find(lines.begin(), lines.end(), overlap) == lines.end())
        return lines;
    tidy_ends(lines);
    return OverlappingLines(std::move(lines)).read(cancelled);
}
