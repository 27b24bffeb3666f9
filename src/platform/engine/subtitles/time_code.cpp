#include "time_code.h"

#include <array>

namespace
{

constexpr std::size_t most_fields = 3;
constexpr qsizetype most_digits = 9;

std::optional<long long> take_number(QStringView& text)
{
    long long number = 0;
    qsizetype digits = 0;
    for (; digits < text.size() && text[digits] >= u'0' && text[digits] <= u'9'; ++digits) {
        if (digits == most_digits)
            return std::nullopt;
        number = number * 10 + (text[digits].unicode() - u'0');
    }
    if (digits == 0)
        return std::nullopt;
    text = text.sliced(digits);
    return number;
}

/// The digits behind the second, in milliseconds: "5" is half a second.
long long take_fraction(QStringView& text)
{
    long long milliseconds = 0;
    long long unit = 100;
    while (!text.isEmpty() && text[0] >= u'0' && text[0] <= u'9') {
        milliseconds += (text[0].unicode() - u'0') * unit;
        unit /= 10;
        text = text.sliced(1);
    }
    return milliseconds;
}

/// Also passes the marks without width with which some programs surround times.
void pass_blanks(QStringView& text)
{
    const auto is_mark = [](QChar character) { return character.category() == QChar::Other_Format; };
    while (!text.isEmpty() && (text[0].isSpace() || is_mark(text[0])))
        text = text.sliced(1);
}

} // namespace

std::optional<long long> take_time_code(QStringView& text)
{
    QStringView rest = text;
    pass_blanks(rest);
    const bool negative = rest.startsWith(u'-') && !rest.startsWith(QLatin1String("--"));
    if (negative)
        rest = rest.sliced(1);
    std::array<long long, most_fields> fields = {};
    std::size_t count = 0;
    while (count < most_fields) {
        const std::optional<long long> number = take_number(rest);
        if (!number)
            return std::nullopt;
        fields[count++] = *number;
        QStringView behind = rest;
        pass_blanks(behind);
        if (count == most_fields || !behind.startsWith(u':'))
            break;
        rest = behind.sliced(1);
        pass_blanks(rest);
    }
    if (count < 2)
        return std::nullopt;
    long long seconds = 0;
    for (std::size_t field = 0; field < count; ++field)
        seconds = seconds * 60 + fields[field];
    long long milliseconds = seconds * 1000;
    QStringView behind = rest;
    pass_blanks(behind);
    const bool is_sure = count == most_fields && (behind.startsWith(u':') || behind.startsWith(u';'));
    if (is_sure || behind.startsWith(u',') || behind.startsWith(u'.')) {
        rest = behind.sliced(1);
        pass_blanks(rest);
        milliseconds += take_fraction(rest);
    }
    text = rest;
    return negative ? -milliseconds : milliseconds;
}
