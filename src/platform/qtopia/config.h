#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <utility>
#include <vector>

class ConfigDocument;

/// A text file of settings: groups in brackets, lines of "key = value".
///
/// The file is read whole when the object is made. What is written is kept in the object and goes to the file when the
/// object goes, if anything changed: the file is read once more, the changed keys are put in, and a new file is made
/// durable and renamed over the old one. A kill at any moment leaves the old or the new content, and neither another
/// group nor another program's change is lost. The format is described in docs/config.md.
///
/// Any string and any list of strings comes back exactly as written. Damaged input is read as far as it makes sense.
/// Objects are used on one thread; two objects on one file may be used on two threads or in two programs.
class Config
{
public:
    enum Domain {
        File, ///< the name is the path of the file
        User  ///< the name is looked up in the user's settings directory; ".conf" is added when it has no suffix
    };

    explicit Config(const QString& name, Domain domain = User);
    /// Writes what changed; a failure is reported by one warning a file.
    ~Config();
    Config(const Config&) = delete;
    Config& operator=(const Config&) = delete;

    /// The path of a settings file of the user's domain. The directory need not exist.
    static QString user_path(const QString& name);

    /// The file's path.
    QString path() const { return path_; }

    /// Selects the group for what follows. At first the nameless group at the top of the file is selected.
    void setGroup(const QString& group);

    /// Whether the selected group holds @p key.
    bool hasKey(const QString& key) const;

    QString readEntry(const QString& key, const QString& fallback = QString()) const;
    /// The decimal number under @p key; @p fallback when there is none or it is not a whole number of 32 bits.
    int readNumEntry(const QString& key, int fallback = -1) const;
    /// "1", "true", "yes" and "on" are true, "0", "false", "no" and "off" are false, in any case of letters.
    bool readBoolEntry(const QString& key, bool fallback = false) const;
    /// The list under @p key; empty when there is none.
    QStringList readListEntry(const QString& key) const;

    void writeEntry(const QString& key, const QString& value);
    void writeEntry(const QString& key, const char* utf8);
    void writeEntry(const QString& key, int value);
    void writeEntry(const QString& key, bool value);
    void writeEntry(const QString& key, const QStringList& values);
    void removeEntry(const QString& key);

    /// Writes what changed now and waits until it is durable.
    /// @return false when the file could not be written; what changed is then kept, and the destructor does not try
    /// again.
    bool write();
    /// The same, but the file is written anew even when nothing in it changes.
    bool rewrite();

private:
    enum class Occasion { Change, Always };
    bool write(Occasion occasion);
    void set_raw(const QString& key, const QString& raw);

    // A new encoded value; a null string removes the key.
    struct Change {
        QString group;
        QString key;
        QString encoded;
    };
    void note_change(const QString& key, const QString& encoded);

    QString path_;
    QString group_;
    std::unique_ptr<ConfigDocument> document_;
    // Each place once, in the order of the first write, in which new keys come into the file.
    std::vector<Change> changes_;
    bool failed_ = false;
};
