#include "subtitle_markup.h"

#include "html_entities.h"

#include <QByteArray>
#include <QStringList>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

/// The tags that SubRip files use, without "/".
constexpr const char* known_tags[] = {
    "b", "i", "u", "s", "font", "c", "v", "lang", "ruby", "rt", "em", "strong", "span", "p", "div", "strike",
};

/// What browsers make of numbers in this range that mean nothing in Unicode.
constexpr char16_t numbers_from_128[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

/// The entities that are also understood without ";" and with letters right behind them.
constexpr const char* bare_entities[] = {"nbsp", "amp", "lt", "gt", "quot"};

/// What is longer is no tag, and not looked through again and again.
constexpr qsizetype longest_tag = 1000;

bool is_latin_letter(QChar character)
{
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
}

bool is_digit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

char16_t named(QStringView name)
{
    const auto find = [](const QByteArray& wanted) -> char16_t {
        const auto found =
            std::lower_bound(std::begin(html_entities), std::end(html_entities), wanted,
                             [](const HtmlEntity& entity, const QByteArray& key) { return key > entity.name; });
        return found != std::end(html_entities) && wanted == found->name ? char16_t(found->character) : char16_t(0);
    };
    const QByteArray exact = name.toLatin1();
    const char16_t found = find(exact);
    return found != 0 ? found : find(exact.toLower());
}

/// The length of the number behind "&#", its value in @p value.
qsizetype read_number(QStringView source, char32_t& value)
{
    const bool hexadecimal = source.startsWith(u'x') || source.startsWith(u'X');
    qsizetype at = hexadecimal ? 1 : 0;
    const qsizetype first = at;
    value = 0;
    for (; at < source.size(); ++at) {
        const ushort unit = source[at].unicode();
        const int digit = unit >= '0' && unit <= '9'                  ? unit - '0'
                          : hexadecimal && unit >= 'a' && unit <= 'f' ? unit - 'a' + 10
                          : hexadecimal && unit >= 'A' && unit <= 'F' ? unit - 'A' + 10
                                                                      : -1;
        if (digit < 0)
            break;
        value = std::min<char32_t>(value * (hexadecimal ? 16 : 10) + static_cast<char32_t>(digit), 0x110000);
    }
    return at == first ? 0 : at;
}

/// The length of the tag at "<", 0 when it is none.
qsizetype tag_length(QStringView source, subtitle_markup::Tags tags, QString& name)
{
    qsizetype at = 1;
    if (at < source.size() && source[at] == u'/')
        ++at;
    const qsizetype first = at;
    while (at < source.size() && (is_latin_letter(source[at]) || is_digit(source[at]) || source[at] == u':'))
        ++at;
    qsizetype end = at;
    while (end < source.size() && end < longest_tag && source[end] != u'>' && source[end] != u'<')
        ++end;
    if (end == source.size() || source[end] != u'>')
        return 0;
    name = source.sliced(first, at - first).toString().toLower();
    if (name == QLatin1String("br"))
        return end + 1;
    if (tags == subtitle_markup::Tags::All)
        return !name.isEmpty() ? end + 1 : 0;
    const bool known = std::any_of(std::begin(known_tags), std::end(known_tags),
                                   [&name](const char* tag) { return name == QLatin1String(tag); });
    return known && (end == at || !source[at].isLetterOrNumber()) ? end + 1 : 0;
}

/// The length of "{\an8}" or "{y:i}" at the start of @p source, 0 when it is neither.
qsizetype code_length(QStringView source)
{
    const qsizetype end = source.first(std::min(source.size(), longest_tag)).indexOf(u'}');
    const bool is_override = source.size() > 1 && source[1] == u'\\';
    const bool is_setting = source.size() > 2 && is_latin_letter(source[1]) && source[2] == u':';
    return end > 0 && (is_override || is_setting) ? end + 1 : 0;
}

} // namespace

qsizetype subtitle_markup::append_entity(QStringView source, bool strict, QString& text)
{
    constexpr qsizetype longest_name = 10;
    if (source.size() < 3)
        return 0;
    qsizetype length = 0;
    char32_t character = 0;
    if (source[1] == u'#') {
        const qsizetype digits = read_number(source.sliced(2), character);
        if (digits == 0)
            return 0;
        length = 2 + digits;
        if (character >= 128 && character < 160)
            character = numbers_from_128[character - 128];
        if (character == 0 || character > 0x10FFFF || QChar::isSurrogate(character))
            character = QChar::ReplacementCharacter;
    } else {
        qsizetype end = 1;
        while (end < source.size() && end <= longest_name && (is_latin_letter(source[end]) || is_digit(source[end])))
            ++end;
        const QStringView name = source.sliced(1, end - 1);
        if (!strict || (end < source.size() && source[end] == u';')) {
            character = named(name);
            length = end;
        }
        if (character == 0 && !strict) {
            for (const char* const bare : bare_entities) {
                if (name.startsWith(QLatin1String(bare), Qt::CaseInsensitive)) {
                    length = 1 + static_cast<qsizetype>(std::strlen(bare));
                    character = named(source.sliced(1, length - 1));
                    break;
                }
            }
        }
        if (character == 0)
            return 0;
    }
    const bool closed = length < source.size() && source[length] == u';';
    if (strict && !closed)
        return 0;
    for (const char16_t unit : QChar::fromUcs4(character))
        text += QChar(unit);
    return length + (closed ? 1 : 0);
}

QString subtitle_markup::tidy(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const qsizetype before = result.size();
        bool blank = false;
        for (const QChar character : line) {
            const ushort unit = character.unicode();
            // Also what only a file's damage can have brought in, and marks without width.
            if (unit < 0x20 || unit == 0x7F || character.isSpace()) {
                blank = true;
                continue;
            }
            if (unit == 0xFEFF || unit == 0x200B || unit == 0x200E || unit == 0x200F)
                continue;
            if (result.size() == before) {
                if (before > 0)
                    result += u'\n';
            } else if (blank) {
                result += u' ';
            }
            blank = false;
            result += character;
        }
    }
    return result;
}

QString subtitle_markup::plain_cue(QStringView source, Tags tags)
{
    QString text;
    text.reserve(source.size());
    QString name;
    for (qsizetype at = 0; at < source.size();) {
        const QStringView rest = source.sliced(at);
        qsizetype taken = 0;
        switch (source[at].unicode()) {
        case '<':
            taken = tag_length(rest, tags, name);
            if (taken > 0 && name == QLatin1String("br"))
                text += u'\n';
            break;
        case '{':
            taken = tags == Tags::Known ? code_length(rest) : 0;
            break;
        case '&':
            taken = append_entity(rest, true, text);
            break;
        case '\\':
            if (tags == Tags::Known && rest.size() > 1 && (rest[1] == u'N' || rest[1] == u'h')) {
                text += rest[1] == u'N' ? u'\n' : u' ';
                taken = 2;
            }
            break;
        default:
            break;
        }
        if (taken == 0) {
            text += source[at];
            taken = 1;
        }
        at += taken;
    }
    return tidy(text);
}

QString subtitle_markup::plain_event(QStringView source)
{
    QString text;
    text.reserve(source.size());
    bool drawing = false;
    bool blocks_end = true;
    for (qsizetype at = 0; at < source.size();) {
        const QStringView rest = source.sliced(at);
        const qsizetype block = rest[0] == u'{' && blocks_end ? rest.indexOf(u'}') : -1;
        blocks_end = blocks_end && (rest[0] != u'{' || block > 0);
        if (block > 0) {
            const QStringView codes = rest.first(block);
            for (qsizetype code = codes.indexOf(QLatin1String("\\p")); code >= 0;
                 code = codes.indexOf(QLatin1String("\\p"), code + 2)) {
                if (code + 2 < codes.size() && is_digit(codes[code + 2]))
                    drawing = codes[code + 2] != u'0';
            }
            at += block + 1;
        } else if (rest[0] == u'\\' && rest.size() > 1 && (rest[1] == u'N' || rest[1] == u'n' || rest[1] == u'h')) {
            text += rest[1] == u'h' ? u' ' : u'\n';
            at += 2;
        } else {
            if (!drawing)
                text += rest[0];
            ++at;
        }
    }
    return tidy(text);
}

QString subtitle_markup::plain_frame_text(QStringView source)
{
    QStringList lines;
    for (QStringView line : source.split(u'|')) {
        for (qsizetype code = 1; code > 0;) {
            code = line.trimmed().startsWith(u'{') ? code_length(line.trimmed()) : 0;
            if (code > 0)
                line = line.trimmed().sliced(code);
        }
        line = line.trimmed();
        // A slash in front means italics.
        if (line.startsWith(u'/'))
            line = line.sliced(1);
        lines += plain_cue(line, Tags::Known);
    }
    return tidy(lines.join(u'\n'));
}
