#include "micro_dvd_reader.h"

#include "subtitle_markup.h"

#include <cmath>

namespace
{

/// The rate of most films from which such files were made.
constexpr double usual_frame_rate = 24000.0 / 1001.0;

struct FrameLine {
    long long first = 0;
    std::optional<long long> last;
    QStringView text;
};

/// Takes "{number}" off the front; the number may be missing.
bool take_braces(QStringView& text, std::optional<long long>& number)
{
    constexpr qsizetype most_digits = 9;
    text = text.trimmed();
    const qsizetype end = text.first(std::min<qsizetype>(text.size(), most_digits + 4)).indexOf(u'}');
    if (!text.startsWith(u'{') || end < 0)
        return false;
    const QStringView digits = text.sliced(1, end - 1).trimmed();
    bool is_number = false;
    const long long value = digits.toLongLong(&is_number);
    if (!is_number && !digits.isEmpty())
        return false;
    number = is_number ? std::optional(value) : std::nullopt;
    text = text.sliced(end + 1);
    return true;
}

std::optional<FrameLine> read_line(QStringView line)
{
    FrameLine result;
    std::optional<long long> first;
    if (!take_braces(line, first) || !first || !take_braces(line, result.last))
        return std::nullopt;
    result.first = *first;
    result.text = line.trimmed();
    return result;
}

std::optional<double> told_frame_rate(const FrameLine& line)
{
    if (line.first > 1 || line.last.value_or(line.first) > 1)
        return std::nullopt;
    bool is_number = false;
    const double rate = line.text.toString().replace(u',', u'.').section(u' ', 0, 0).toDouble(&is_number);
    constexpr double least = 3;
    constexpr double most = 300;
    return is_number && rate >= least && rate <= most ? std::optional(rate) : std::nullopt;
}

} // namespace

bool is_micro_dvd_line(QStringView line)
{
    return read_line(line).has_value();
}

std::vector<TimedText> read_micro_dvd(QStringView source, double frame_rate, const std::atomic<bool>& cancelled)
{
    double rate = frame_rate > 0 ? frame_rate : usual_frame_rate;
    const auto time_of = [&rate](long long frame) { return std::llround(static_cast<double>(frame) * 1000 / rate); };
    std::vector<TimedText> lines;
    for (qsizetype at = 0; at < source.size() && !cancelled;) {
        qsizetype end = at;
        while (end < source.size() && source[end] != u'\n' && source[end] != u'\r')
            ++end;
        const std::optional<FrameLine> line = read_line(source.sliced(at, end - at));
        at = end + 1;
        if (!line)
            continue;
        if (const std::optional<double> told = lines.empty() ? told_frame_rate(*line) : std::nullopt) {
            rate = *told;
            continue;
        }
        TimedText timed{time_of(line->first), std::nullopt, subtitle_markup::plain_frame_text(line->text)};
        if (line->last)
            timed.end = time_of(*line->last);
        lines.push_back(std::move(timed));
    }
    return lines;
}
