#include "ass_reader.h"

#include "subtitle_markup.h"
#include "time_code.h"

#include <QStringList>

#include <algorithm>

namespace
{

/// Where the fields of an event stand.
struct Fields {
    qsizetype count = 10;
    qsizetype start = 1;
    qsizetype end = 2;
};

/// What follows "Name:" in a line, if it begins with that.
std::optional<QStringView> behind(QStringView line, QLatin1String name)
{
    line = line.trimmed();
    if (!line.startsWith(name, Qt::CaseInsensitive))
        return std::nullopt;
    line = line.sliced(name.size()).trimmed();
    return line.startsWith(u':') ? std::optional(line.sliced(1).trimmed()) : std::nullopt;
}

/// The order that a "Format:" line of the events gives; other sections have such lines, too.
std::optional<Fields> read_format(QStringView format)
{
    QStringList names = format.toString().toLower().split(u',');
    std::transform(names.begin(), names.end(), names.begin(), [](const QString& name) { return name.trimmed(); });
    const Fields fields{names.size(), names.indexOf(QLatin1String("start")), names.indexOf(QLatin1String("end"))};
    const bool is_for_events = fields.start >= 0 && fields.end >= 0 && names.last() == QLatin1String("text");
    return is_for_events ? std::optional(fields) : std::nullopt;
}

/// The text is the last field and may hold commas itself.
std::optional<TimedText> read_event(QStringView event, const Fields& fields)
{
    TimedText line;
    std::optional<long long> start;
    for (qsizetype field = 0; field + 1 < fields.count; ++field) {
        const qsizetype comma = event.indexOf(u',');
        if (comma < 0)
            return std::nullopt;
        QStringView value = event.first(comma);
        if (field == fields.start)
            start = take_time_code(value);
        else if (field == fields.end)
            line.end = take_time_code(value);
        event = event.sliced(comma + 1);
    }
    if (!start)
        return std::nullopt;
    line.start = *start;
    line.text = subtitle_markup::plain_event(event);
    return line;
}

} // namespace

std::vector<TimedText> read_ass(QStringView source, const std::atomic<bool>& cancelled)
{
    std::vector<TimedText> lines;
    Fields fields;
    for (qsizetype at = 0; at < source.size() && !cancelled;) {
        qsizetype end = at;
        while (end < source.size() && source[end] != u'\n' && source[end] != u'\r')
            ++end;
        const QStringView line = source.sliced(at, end - at);
        at = end + 1;
        if (const auto format = behind(line, QLatin1String("Format"))) {
            fields = read_format(*format).value_or(fields);
        } else if (const auto event = behind(line, QLatin1String("Dialogue"))) {
            std::optional<TimedText> told = read_event(*event, fields);
            // A drawing is no line, and takes none off the screen.
            if (told && !told->text.isEmpty())
                lines.push_back(std::move(*told));
        }
    }
    return lines;
}
