#include "sami_reader.h"

#include "subtitle_markup.h"
#include "time_code.h"
#include "timed_text.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <limits>
#include <optional>

namespace
{

/// A line of one class.
struct Language {
    QString name;
    std::vector<TimedText> lines;
};

/// Also the curly ones that word processors put in.
bool is_quote(QChar character)
{
    return QStringView(u"\"'\u201C\u201D\u2018\u2019").contains(character);
}

bool is_name_letter(QChar character)
{
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z') ||
           (character >= u'0' && character <= u'9');
}

/// A tag with its attributes still unread.
struct Tag {
    QStringView name; ///< with "/" in front where it closes
    QStringView attributes;

    bool is(const char* wanted) const { return name.compare(QLatin1String(wanted), Qt::CaseInsensitive) == 0; }

    /// The value of an attribute, without quotes.
    QStringView value(QLatin1String wanted) const
    {
        for (qsizetype at = attributes.indexOf(wanted, 0, Qt::CaseInsensitive); at >= 0;
             at = attributes.indexOf(wanted, at + 1, Qt::CaseInsensitive)) {
            if (at > 0 && is_name_letter(attributes[at - 1]))
                continue;
            QStringView rest = attributes.sliced(at + wanted.size()).trimmed();
            if (!rest.startsWith(u'='))
                continue;
            rest = rest.sliced(1).trimmed();
            if (rest.isEmpty())
                return {};
            const QChar quote = rest[0];
            if (is_quote(quote)) {
                rest = rest.sliced(1);
                const qsizetype end = rest.indexOf(quote);
                if (end >= 0)
                    return rest.first(end).trimmed();
            }
            qsizetype end = 0;
            while (end < rest.size() && !rest[end].isSpace() && !is_quote(rest[end]))
                ++end;
            const QStringView bare = rest.first(end);
            return bare.endsWith(u'/') ? bare.chopped(1) : bare;
        }
        return {};
    }
};

/// The whole milliseconds that an attribute begins with; a few programs write "00:00:01.500" instead.
std::optional<long long> milliseconds(QStringView value)
{
    if (const std::optional<long long> time = take_time_code(value))
        return time;
    constexpr qsizetype most_digits = 12;
    const bool negative = value.startsWith(u'-');
    if (negative)
        value = value.sliced(1);
    qsizetype digits = 0;
    long long number = 0;
    for (; digits < value.size() && value[digits] >= u'0' && value[digits] <= u'9'; ++digits) {
        if (digits == most_digits)
            return std::nullopt;
        number = number * 10 + (value[digits].unicode() - u'0');
    }
    if (digits == 0)
        return std::nullopt;
    return negative ? -number : number;
}

/// How much of @p source, which follows the name of a tag that was never closed, are its attributes.
qsizetype attributes_length(QStringView source)
{
    qsizetype length = 0;
    for (qsizetype at = 0; at < source.size();) {
        const auto pass = [&at, source](auto&& wanted) {
            const qsizetype first = at;
            while (at < source.size() && wanted(source[at]))
                ++at;
            return at > first;
        };
        const auto is_blank = [](QChar character) { return character.isSpace(); };
        pass(is_blank);
        if (!pass(is_name_letter))
            break;
        pass(is_blank);
        if (at == source.size() || source[at] != u'=')
            break;
        ++at;
        pass(is_blank);
        const bool is_quoted = at < source.size() && is_quote(source[at]);
        const qsizetype closing = is_quoted ? source.indexOf(source[at], at + 1) : -1;
        if (closing >= 0)
            at = closing + 1;
        else
            pass([](QChar character) { return !character.isSpace(); });
        length = at;
    }
    return length;
}

constexpr qsizetype never = std::numeric_limits<qsizetype>::max();

class SamiReader
{
public:
    SamiReader(QStringView source, const std::atomic<bool>& cancelled) : m_source(source), m_cancelled(cancelled) {}

    std::vector<SubtitleTrack> read();

private:
    std::optional<Tag> take_tag();
    QStringView take_raw(const char* closing);
    void obey(const Tag& tag);
    void list_classes(QStringView style);
    std::size_t language_of(QStringView name);
    void add_text(QStringView text);
    void tell(const QString& text);
    void tell(std::size_t language, const QString& text);
    void close_paragraph();
    void close_time();
    void pass_comment();

    QStringView m_source;
    const std::atomic<bool>& m_cancelled;
    qsizetype m_at = 0;
    std::vector<Language> m_languages;    ///< in the order in which they were met
    QHash<QString, std::size_t> m_places; ///< of m_languages, by the class in small letters
    QStringList m_listed;                 ///< the style sheet's classes in small letters, in order
    std::optional<long long> m_start;
    std::optional<long long> m_end;
    std::optional<QString> m_class;         ///< of the paragraph that was begun last
    bool m_has_paragraph = false;           ///< since the time was told
    bool m_names_class = false;             ///< whether the paragraph names its class
    std::vector<std::size_t> m_told;        ///< the languages of what was told at this time
    std::vector<std::size_t> m_told_before; ///< and at the time before it
    std::optional<long long> m_start_before;
    qsizetype m_comment_end = 0; ///< the end of a comment that was found last, or never
    QString m_text;
};

/// Takes the tag at "<", if it is one.
std::optional<Tag> SamiReader::take_tag()
{
    const QStringView rest = m_source.sliced(m_at);
    qsizetype at = 1;
    while (at < rest.size() && rest[at].isSpace())
        ++at;
    const bool spaced = at > 1;
    const qsizetype first = at;
    if (at < rest.size() && (rest[at] == u'/' || rest[at] == u'?' || rest[at] == u'!'))
        ++at;
    const qsizetype letters = at;
    while (at < rest.size() && is_name_letter(rest[at]))
        ++at;
    if (at == letters || (rest[letters] >= u'0' && rest[letters] <= u'9'))
        return std::nullopt;
    Tag tag{rest.sliced(first, at - first), {}};
    if (spaced && !tag.is("sync") && !tag.is("p") && !tag.is("br"))
        return std::nullopt;
    qsizetype end = at;
    while (end < rest.size() && rest[end] != u'>' && rest[end] != u'<')
        ++end;
    const bool is_closed = end < rest.size() && rest[end] == u'>';
    if (!is_closed)
        end = at + attributes_length(rest.sliced(at, end - at));
    tag.attributes = rest.sliced(at, end - at);
    m_at += is_closed ? end + 1 : end;
    return tag;
}

/// Takes everything up to a closing tag, or up to what certainly is no part of it when that never comes.
QStringView SamiReader::take_raw(const char* closing)
{
    const QStringView rest = m_source.sliced(m_at);
    qsizetype end = rest.indexOf(u'<');
    for (; end >= 0; end = rest.indexOf(u'<', end + 1)) {
        const QStringView tag = rest.sliced(end);
        const auto begins = [tag](const char* name) {
            return tag.startsWith(QLatin1String(name), Qt::CaseInsensitive);
        };
        if (begins(closing) || begins("<body") || begins("<sync"))
            break;
    }
    end = end < 0 ? rest.size() : end;
    m_at += end;
    return rest.first(end);
}

/// Passes a comment. One that never ends, or not before the next one begins, goes no further than the next tag.
void SamiReader::pass_comment()
{
    constexpr qsizetype opening = 4;
    if (m_comment_end < m_at + 2) {
        const qsizetype end = m_source.indexOf(QLatin1String("-->"), m_at + 2);
        m_comment_end = end >= 0 ? end : never;
    }
    if (m_comment_end != never) {
        const QStringView inside = m_source.first(m_comment_end).sliced(std::min(m_at + opening, m_comment_end));
        if (!inside.contains(QLatin1String("<!--"))) {
            m_at = m_comment_end + 3;
            return;
        }
    }
    for (m_at += opening; m_at < m_source.size() && m_source[m_at] != u'<'; ++m_at) {
        if (m_source[m_at] == u'>') {
            ++m_at;
            break;
        }
    }
}

void SamiReader::list_classes(QStringView style)
{
    static const QRegularExpression rule(QStringLiteral("\\.([^\\s{}.:;,<>#]+)\\s*\\{"));
    static const QRegularExpression remark(QStringLiteral("/\\*.*?\\*/"),
                                           QRegularExpression::DotMatchesEverythingOption);
    QString rules = style.toString();
    rules.remove(remark);
    for (auto matches = rule.globalMatch(rules); matches.hasNext();) {
        const QString name = matches.next().captured(1);
        language_of(name);
        if (!m_listed.contains(name.toLower()))
            m_listed += name.toLower();
    }
}

std::size_t SamiReader::language_of(QStringView name)
{
    const QString key = name.toString().toLower();
    if (const auto found = m_places.constFind(key); found != m_places.constEnd())
        return *found;
    // Damaged files must not make languages without end.
    constexpr std::size_t most = 64;
    if (m_languages.size() >= most)
        return m_languages.size() - 1;
    m_languages.push_back({name.toString(), {}});
    m_places.insert(key, m_languages.size() - 1);
    return m_languages.size() - 1;
}

void SamiReader::add_text(QStringView text)
{
    if (!m_start)
        return;
    for (qsizetype at = 0; at < text.size();) {
        const QChar character = text[at];
        if (character == u'&') {
            const qsizetype taken = subtitle_markup::append_entity(text.sliced(at), false, m_text);
            if (taken > 0) {
                at += taken;
                continue;
            }
        }
        m_text += character == u'\n' || character == u'\r' ? QChar(u' ') : character;
        ++at;
    }
}

void SamiReader::tell(const QString& text)
{
    // A blank that names no class takes off the screen whatever the time before it put there.
    if (text.isEmpty() && !m_names_class && m_told.empty() && !m_told_before.empty()) {
        for (const std::size_t language : m_told_before)
            tell(language, text);
        return;
    }
    const QString name = m_class ? *m_class : m_listed.isEmpty() ? QString() : m_listed.first();
    tell(language_of(name), text);
}

void SamiReader::tell(std::size_t language, const QString& text)
{
    m_languages[language].lines.push_back({*m_start, m_end, text});
    if (std::find(m_told.begin(), m_told.end(), language) == m_told.end())
        m_told.push_back(language);
}

/// Ends what is said in one class at one time.
void SamiReader::close_paragraph()
{
    const QString text = subtitle_markup::tidy(m_text);
    // Blank space between the time and the first paragraph says nothing.
    if (m_start && (m_has_paragraph || !text.isEmpty() || m_text.contains(QChar::Nbsp)))
        tell(text);
    m_text.clear();
}

void SamiReader::close_time()
{
    close_paragraph();
    // A time with nothing behind it takes the line off the screen.
    if (m_start && m_told.empty())
        tell({});
}

void SamiReader::obey(const Tag& tag)
{
    if (tag.is("sync")) {
        const std::optional<long long> start = milliseconds(tag.value(QLatin1String("start")));
        if (!start)
            return;
        close_time();
        if (m_start != m_start_before)
            m_told_before.clear();
        m_start_before = m_start;
        for (const std::size_t language : m_told) {
            if (std::find(m_told_before.begin(), m_told_before.end(), language) == m_told_before.end())
                m_told_before.push_back(language);
        }
        m_told.clear();
        m_start = start;
        m_names_class = false;
        m_end = milliseconds(tag.value(QLatin1String("end")));
        m_has_paragraph = false;
    } else if (tag.is("p")) {
        close_paragraph();
        m_has_paragraph = true;
        const QStringView name = tag.value(QLatin1String("class"));
        m_names_class = !name.isEmpty();
        if (m_names_class)
            m_class = name.toString();
    } else if (tag.is("br") || tag.is("/br")) {
        m_text += u'\n';
    } else if (tag.is("style")) {
        list_classes(take_raw("</style"));
    } else if (!m_start && (tag.is("title") || tag.is("samiparam") || tag.is("script"))) {
        take_raw(tag.is("title") ? "</title" : tag.is("script") ? "</script" : "</samiparam");
    }
}

std::vector<SubtitleTrack> SamiReader::read()
{
    while (m_at < m_source.size() && !m_cancelled) {
        const QStringView rest = m_source.sliced(m_at);
        if (rest[0] != u'<') {
            const qsizetype end = rest.indexOf(u'<');
            add_text(end < 0 ? rest : rest.first(end));
            m_at = end < 0 ? m_source.size() : m_at + end;
        } else if (rest.startsWith(QLatin1String("<!--"))) {
            pass_comment();
        } else if (const std::optional<Tag> tag = take_tag()) {
            obey(*tag);
        } else {
            add_text(rest.first(1));
            ++m_at;
        }
    }
    close_time();

    std::vector<std::size_t> order;
    for (const QString& listed : m_listed)
        order.push_back(m_places.value(listed));
    for (std::size_t place = 0; place < m_languages.size(); ++place) {
        if (std::find(order.begin(), order.end(), place) == order.end())
            order.push_back(place);
    }
    std::vector<SubtitleTrack> tracks;
    for (const std::size_t place : order) {
        SubtitleTrack track{m_languages[place].name, in_order(std::move(m_languages[place].lines), m_cancelled)};
        if (!track.lines.empty())
            tracks.push_back(std::move(track));
    }
    return tracks;
}

} // namespace

std::vector<SubtitleTrack> read_sami(QStringView source, const std::atomic<bool>& cancelled)
{
    return SamiReader(source, cancelled).read();
}
