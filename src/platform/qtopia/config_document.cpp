#include "config_document.h"

#include <QStringView>

namespace
{

struct Escape {
    char16_t character;
    char16_t letter;
};

// Characters with an escape of their own; the letter follows a backslash.
constexpr Escape escapes[] = {
    {u'\\', u'\\'},
    {u'\n', u'n'},
    {u'\r', u'r'},
    {u'\t', u't'},
};

// Stands for nothing: marks a key or a list element that is empty.
constexpr QStringView empty_mark = u"\\e";

bool is_blank(QChar character)
{
    return character == u' ' || character == u'\t' || character == u'\r';
}

bool needs_number(QStringView text, qsizetype position)
{
    const char16_t unit = text[position].unicode();
    if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029 || unit == 0xFEFF)
        return true;
    // Half of a surrogate pair has no UTF-8.
    if (QChar::isHighSurrogate(unit))
        return position + 1 == text.size() || !text[position + 1].isLowSurrogate();
    if (QChar::isLowSurrogate(unit))
        return position == 0 || !text[position - 1].isHighSurrogate();
    return false;
}

// @p special are characters that get a backslash wherever they stand.
QString encode(QStringView text, QStringView special)
{
    QString encoded;
    encoded.reserve(text.size() + 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes), [&](const Escape& row) {
            return row.character == character.unicode();
        });
        if (escape != std::end(escapes))
            (encoded += u'\\') += QChar(escape->letter);
        else if (character == u' ' && (i == 0 || i + 1 == text.size()))
            encoded += QStringView(u"\\s");
        else if (special.contains(character))
            (encoded += u'\\') += character;
        else if (needs_number(text, i))
            encoded += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            encoded += character;
    }
    return encoded;
}

QString decode(QStringView encoded)
{
    QString text;
    text.reserve(encoded.size());
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        if (encoded[i] != u'\\' || i + 1 == encoded.size()) {
            text += encoded[i];
            continue;
        }
        const QChar letter = encoded[++i];
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes),
                                                [&](const Escape& row) { return row.letter == letter.unicode(); });
        if (escape != std::end(escapes)) {
            text += QChar(escape->character);
        } else if (letter == u's') {
            text += u' ';
        } else if (letter == u'u') {
            bool ok = false;
            const ushort unit = i + 4 < encoded.size() ? encoded.mid(i + 1, 4).toUShort(&ok, 16) : ushort(0);
            if (ok) {
                text += QChar(unit);
                i += 4;
            } else {
                text += letter;
            }
        } else if (letter != u'e') {
            text += letter;
        }
    }
    return text;
}

QString encode_key(QStringView key)
{
    if (key.isEmpty())
        return empty_mark.toString();
    QString encoded = encode(key, u"=");
    if (QStringView(u"#;[").contains(encoded[0]))
        encoded.prepend(u'\\');
    return encoded;
}

// The place of the first @p wanted that no backslash stands before, or -1.
qsizetype find_plain(QStringView text, QChar wanted, qsizetype from = 0)
{
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text[i] == u'\\')
            ++i;
        else if (text[i] == wanted)
            return i;
    }
    return -1;
}

QStringView without_blanks(QStringView text)
{
    while (!text.isEmpty() && is_blank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && is_blank(text.back()))
        text.chop(1);
    return text;
}

} // namespace

ConfigDocument ConfigDocument::parse(const QByteArray& bytes)
{
    ConfigDocument document;
    QByteArrayView rest = bytes;
    if (rest.startsWith("\xEF\xBB\xBF"))
        rest = rest.sliced(3);
    QString group;
    for (int number = 1; !rest.isEmpty(); ++number) {
        const qsizetype end = rest.indexOf('\n');
        const QByteArrayView line_bytes = end < 0 ? rest : rest.first(end);
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
        const QString text = QString::fromUtf8(line_bytes);
        const QStringView line = without_blanks(text);
        if (line.isEmpty())
            continue;
        if (line.front() == u'#' || line.front() == u';') {
            document.group_named(group).lines.push_back({QString(), line.toString()});
            continue;
        }
        if (line.front() == u'[') {
            const qsizetype close = find_plain(line, u']', 1);
            if (close < 0)
                document.note_damage(number);
            group = decode(close < 0 ? line.mid(1) : line.mid(1, close - 1));
            document.group_named(group);
            continue;
        }
        const qsizetype equals = find_plain(line, u'=');
        if (equals <= 0) {
            document.note_damage(number);
            continue;
        }
        document.set_value(group, decode(without_blanks(line.first(equals))),
                           without_blanks(line.mid(equals + 1)).toString());
    }
    return document;
}

QByteArray ConfigDocument::serialize() const
{
    QString text;
    for (const Group& group : groups_) {
        if (!group.name.isEmpty()) {
            if (!text.isEmpty())
                text += u'\n';
            text += u'[' + encode(group.name, u"]") + QLatin1String("]\n");
        }
        for (const Line& line : group.lines) {
            if (line.key.isNull())
                text += line.value + u'\n';
            else if (line.value.isEmpty())
                text += encode_key(line.key) + QLatin1String(" =\n");
            else
                text += encode_key(line.key) + QLatin1String(" = ") + line.value + u'\n';
        }
    }
    return text.toUtf8();
}

bool ConfigDocument::contains(const QString& group, const QString& key) const
{
    return !value(group, key).isNull();
}

QString ConfigDocument::value(const QString& group, const QString& key) const
{
    const Group* const found = find_group(group);
    if (!found)
        return {};
    const auto place = found->index.constFind(key);
    return place == found->index.constEnd() ? QString() : found->lines[*place].value;
}

bool ConfigDocument::set_value(const QString& group, const QString& key, const QString& encoded)
{
    // A null string is how value() says that there is none.
    const QString stored = encoded.isNull() ? QStringLiteral("") : encoded;
    Group& target = group_named(group);
    const auto place = target.index.constFind(key);
    if (place == target.index.constEnd()) {
        target.index.insert(key, target.lines.size());
        target.lines.push_back({key.isNull() ? QStringLiteral("") : key, stored});
        return true;
    }
    Line& line = target.lines[*place];
    if (line.value == stored)
        return false;
    line.value = stored;
    return true;
}

bool ConfigDocument::remove(const QString& group, const QString& key)
{
    if (!contains(group, key))
        return false;
    Group& target = group_named(group);
    const size_t place = target.index.take(key);
    target.lines.erase(target.lines.begin() + static_cast<std::ptrdiff_t>(place));
    for (size_t& other : target.index) {
        if (other > place)
            --other;
    }
    return true;
}

QString ConfigDocument::encode_text(const QString& text)
{
    return encode(text, QStringView());
}

QString ConfigDocument::decode_text(const QString& encoded)
{
    return decode(encoded);
}

QString ConfigDocument::encode_list(const QStringList& list)
{
    QStringList elements;
    elements.reserve(list.size());
    for (const QString& element : list)
        elements.append(element.isEmpty() ? empty_mark.toString() : encode(element, u","));
    return elements.join(u',');
}

QStringList ConfigDocument::decode_list(const QString& encoded)
{
    QStringList list;
    if (encoded.isEmpty())
        return list;
    const QStringView text = encoded;
    qsizetype begin = 0;
    for (;;) {
        const qsizetype comma = find_plain(text, u',', begin);
        const QStringView element = comma < 0 ? text.mid(begin) : text.mid(begin, comma - begin);
        list.append(decode(without_blanks(element)));
        if (comma < 0)
            return list;
        begin = comma + 1;
    }
}

ConfigDocument::Group& ConfigDocument::group_named(const QString& name)
{
    const auto place = group_index_.constFind(name);
    if (place != group_index_.constEnd())
        return groups_[*place];
    // The nameless group has no header, so it can only stand at the top.
    if (name.isEmpty()) {
        for (size_t& other : group_index_)
            ++other;
        group_index_.insert(name, 0);
        return *groups_.insert(groups_.begin(), Group{name, {}, {}});
    }
    group_index_.insert(name, groups_.size());
    return groups_.emplace_back(Group{name, {}, {}});
}

const ConfigDocument::Group* ConfigDocument::find_group(const QString& name) const
{
    const auto place = group_index_.constFind(name);
    return place == group_index_.constEnd() ? nullptr : &groups_[*place];
}

void ConfigDocument::note_damage(int line)
{
    if (damaged_lines_++ == 0)
        first_damaged_line_ = line;
}
