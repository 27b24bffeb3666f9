#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

/// The content of a settings file: groups and their lines, in the file's order, with comments.
///
/// Values are kept in their encoded form; the static functions go from text to that form and back.
class ConfigDocument
{
public:
    /// Reads @p bytes as far as they make sense. Of a key that stands twice in a group the last one counts.
    static ConfigDocument parse(const QByteArray& bytes);

    QByteArray serialize() const;

    /// How many lines parse() could make nothing of, and the number of the first of them (from 1).
    int damaged_lines() const { return damaged_lines_; }
    int first_damaged_line() const { return first_damaged_line_; }

    bool contains(const QString& group, const QString& key) const;
    /// The encoded value, or a null string.
    QString value(const QString& group, const QString& key) const;
    /// @return whether this changed anything.
    bool set_value(const QString& group, const QString& key, const QString& encoded);
    /// @return whether there was one.
    bool remove(const QString& group, const QString& key);

    static QString encode_text(const QString& text);
    static QString decode_text(const QString& encoded);
    static QString encode_list(const QStringList& list);
    static QStringList decode_list(const QString& encoded);

private:
    struct Line {
        QString key; // null for a comment
        QString value;
    };
    struct Group {
        QString name;
        std::vector<Line> lines;
        QHash<QString, size_t> index; // key to its place in lines
    };

    Group& group_named(const QString& name);
    const Group* find_group(const QString& name) const;
    void note_damage(int line);

    std::vector<Group> groups_; // the nameless one first, if there is one
    QHash<QString, size_t> group_index_;
    int damaged_lines_ = 0;
    int first_damaged_line_ = 0;
};
