#pragma once

#include <QString>
#include <QStringList>

/// The films that a play list file names.
struct PlayListFilms {
    QStringList films;      ///< absolute paths in the list's order; whether they exist is not looked at
    int names_left_out = 0; ///< entries that are no local file, or whose name holds a line feed
    QString failure;        ///< why the list could not be read, else empty
};

/// Reads a play list (.m3u, .m3u8: a path a line, "#" begins a remark; .pls: "File1=path" and so on, in the order of
/// the numbers). Paths may be relative to the list's own folder, may have backslashes, and may be file: addresses. A
/// list that is not UTF-8 is read as CP949. Entries that are not films by their suffix are passed over. Lists above 4
/// MB are cut. Any thread.
PlayListFilms films_of_play_list(const QString& path);
