#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

/// Files that are replaced as a whole: whoever reads one, after a crash too, finds the old or the new content, never a
/// mixture.
class DurableFile
{
public:
    explicit DurableFile(const QString& path);

    /// What reading found.
    enum class State {
        Read = 0,       ///< a regular file
        Missing = 1,    ///< nothing of that name
        Unreadable = 2, ///< something else, or a file that may not be read
    };

    /// The content; empty unless the state is Read. @p fault gets the reason when it is Unreadable.
    State read(QByteArray& content, QString& fault) const;

    /// Replaces the content by what @p change makes of the one that is there, and waits until it is on the disk.
    ///
    /// Writers in other threads and programs take their turns, so that none undoes another's change. Missing
    /// directories are made. A link stays and its target is replaced; the file's mode is kept.
    /// @return an empty string, or why the file is unchanged.
    QString update(const std::function<QByteArray(const QByteArray&)>& change) const;

private:
    QString path_;
};
