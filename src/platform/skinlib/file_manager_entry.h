#pragma once

#include <QString>
#include <QStringView>

/// One row of the file manager: something in a folder that can be opened or taken.
struct FileManagerEntry {
    /// What the row is; folders stand before play lists, play lists before films.
    enum class Kind : int {
        Parent = 0,   ///< the way up to the folder above
        Folder = 1,   ///< a folder, opened or taken with all films in it
        PlayList = 2, ///< a file that lists films
        Film = 3,     ///< a film
        Other = 4     ///< anything else; never shown
    };

    Kind kind = Kind::Other;
    QString name;     ///< file name without its folder
    qint64 size = -1; ///< bytes; -1 when not known
    QString type;     ///< container as the engine names it; empty until looked up, then the suffix if it does not tell
    qint64 length_ms = -1; ///< playing time in milliseconds; -1 not looked up, 0 when the file does not tell
};

/// Compares two names as people do: letters without regard to case, runs of digits by their value ("2" before "10").
/// Names that differ in case or leading zeros only still have a fixed order. Any thread.
bool natural_less(QStringView left, QStringView right);

/// The order of rows in a folder: by kind, then by name.
bool entry_less(const FileManagerEntry& left, const FileManagerEntry& right);

/// What a file with this name is, judged by its suffix: Film, PlayList or Other. Any thread.
FileManagerEntry::Kind kind_of_file(QStringView name);
