#include "config.h"

#include "config_document.h"
#include "durable_file.h"

#include <QMutex>
#include <QSet>
#include <QStandardPaths>
#include <algorithm>

namespace
{

enum class Fault { Damaged, Unreadable, Unwritable };

// One warning for each kind of fault and file; a success makes the next fault news again.
class FaultLog
{
public:
    static FaultLog& instance()
    {
        static FaultLog log;
        return log;
    }

    void report(Fault fault, const QString& path, const QString& text)
    {
        const QMutexLocker lock(&mutex_);
        const auto entry = std::make_pair(static_cast<int>(fault), path);
        if (reported_.contains(entry))
            return;
        reported_.insert(entry);
        qWarning("%s: %s", qUtf8Printable(path), qUtf8Printable(text));
    }

    void forget(Fault fault, const QString& path)
    {
        const QMutexLocker lock(&mutex_);
        reported_.remove(std::make_pair(static_cast<int>(fault), path));
    }

private:
    QMutex mutex_;
    QSet<std::pair<int, QString>> reported_; // guarded by mutex_
};

struct Word {
    const char* text;
    bool value;
};

constexpr Word words[] = {
    {"1", true},  {"true", true},   {"yes", true}, {"on", true},
    {"0", false}, {"false", false}, {"no", false}, {"off", false},
};

} // namespace

Config::Config(const QString& name, Domain domain) : path_(domain == File ? name : user_path(name))
{
    QByteArray content;
    QString fault;
    if (DurableFile(path_).read(content, fault) == DurableFile::State::Unreadable)
        FaultLog::instance().report(Fault::Unreadable, path_, QStringLiteral("cannot be read (%1)").arg(fault));
    else
        FaultLog::instance().forget(Fault::Unreadable, path_);
    document_ = std::make_unique<ConfigDocument>(ConfigDocument::parse(content));
    if (document_->damaged_lines() > 0) {
        FaultLog::instance().report(Fault::Damaged, path_,
                                    QStringLiteral("%1 lines make no sense and are left out, the first is line %2")
                                        .arg(document_->damaged_lines())
                                        .arg(document_->first_damaged_line()));
    } else {
        FaultLog::instance().forget(Fault::Damaged, path_);
    }
}

Config::~Config()
{
    if (!failed_)
        write();
}

QString Config::user_path(const QString& name)
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString suffix = name.contains(u'.') ? QString() : QStringLiteral(".conf");
    return directory + QStringLiteral("/tavel_video/") + name + suffix;
}

void Config::setGroup(const QString& group)
{
    group_ = group;
}

bool Config::hasKey(const QString& key) const
{
    return document_->contains(group_, key);
}

QString Config::readEntry(const QString& key, const QString& fallback) const
{
    const QString encoded = document_->value(group_, key);
    return encoded.isNull() ? fallback : ConfigDocument::decode_text(encoded);
}

int Config::readNumEntry(const QString& key, int fallback) const
{
    bool ok = false;
    const int number = readEntry(key).toInt(&ok);
    return ok ? number : fallback;
}

bool Config::readBoolEntry(const QString& key, bool fallback) const
{
    const QString text = readEntry(key);
    const auto* const word = std::find_if(std::begin(words), std::end(words), [&](const Word& row) {
        return text.compare(QLatin1String(row.text), Qt::CaseInsensitive) == 0;
    });
    return word == std::end(words) ? fallback : word->value;
}

QStringList Config::readListEntry(const QString& key) const
{
    return ConfigDocument::decode_list(document_->value(group_, key));
}

void Config::writeEntry(const QString& key, const QString& value)
{
    set_raw(key, ConfigDocument::encode_text(value));
}

void Config::writeEntry(const QString& key, const char* utf8)
{
    writeEntry(key, QString::fromUtf8(utf8));
}

void Config::writeEntry(const QString& key, int value)
{
    set_raw(key, QString::number(value));
}

void Config::writeEntry(const QString& key, bool value)
{
    set_raw(key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

void Config::writeEntry(const QString& key, const QStringList& values)
{
    set_raw(key, ConfigDocument::encode_list(values));
}

void Config::removeEntry(const QString& key)
{
    document_->remove(group_, key);
    note_change(key, QString());
}

bool Config::write()
{
    return changes_.empty() || write(Occasion::Change);
}

bool Config::rewrite()
{
    return write(Occasion::Always);
}

bool Config::write(Occasion occasion)
{
    // Applies our changes to what is in the file now, which another object may have written meanwhile.
    const auto apply = [this](ConfigDocument& document) {
        bool changed = false;
        for (const auto& [group, key, encoded] : changes_) {
            changed |= encoded.isNull() ? document.remove(group, key) : document.set_value(group, key, encoded);
        }
        return changed;
    };
    const DurableFile file(path_);
    QByteArray content;
    QString fault;
    file.read(content, fault);
    if (ConfigDocument current = ConfigDocument::parse(content); apply(current) || occasion == Occasion::Always) {
        fault = file.update([&](const QByteArray& newest) {
            ConfigDocument document = ConfigDocument::parse(newest);
            apply(document);
            *document_ = document;
            return document.serialize();
        });
        if (!fault.isEmpty()) {
            failed_ = true;
            FaultLog::instance().report(Fault::Unwritable, path_, QStringLiteral("cannot be written (%1)").arg(fault));
            return false;
        }
    }
    FaultLog::instance().forget(Fault::Unwritable, path_);
    changes_.clear();
    failed_ = false;
    return true;
}

void Config::set_raw(const QString& key, const QString& raw)
{
    const QString encoded = raw.isNull() ? QStringLiteral("") : raw;
    document_->set_value(group_, key, encoded);
    note_change(key, encoded);
}

void Config::note_change(const QString& key, const QString& encoded)
{
    const auto known = std::find_if(changes_.begin(), changes_.end(),
                                    [&](const Change& each) { return each.group == group_ && each.key == key; });
    if (known == changes_.end())
        changes_.push_back({group_, key, encoded});
    else
        known->encoded = encoded;
}
