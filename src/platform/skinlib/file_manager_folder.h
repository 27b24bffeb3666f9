#pragma once

#include "file_manager_entry.h"

#include <QStringList>

#include <stop_token>
#include <vector>

/// What stands in one folder, in the order of the rows.
struct FolderContents {
    std::vector<FileManagerEntry> entries; ///< without the way up
    int names_left_out = 0;                ///< names that are not UTF-8 or hold a line feed
    QString failure;                       ///< the system's reason when the folder could not be read, else empty
};

/// One thing that the user has chosen.
struct FileManagerChoice {
    QString path; ///< absolute
    FileManagerEntry::Kind kind = FileManagerEntry::Kind::Other;
};

/// The films that a choice stands for.
struct CollectedFilms {
    QStringList films;      ///< absolute paths, in the order in which they are to be played
    int vanished = 0;       ///< chosen or listed films that are not there
    int unreadable = 0;     ///< folders and lists that could not be read
    int names_left_out = 0; ///< names that are not UTF-8 or hold a line feed
};

/// Reads the folder @p path: its folders, play lists and films, without hidden ones, sorted. Any thread; may take as
/// long as the disk does, but stops soon after @p cancelled says so (what was read until then is returned).
FolderContents read_folder(const QString& path, const std::stop_token& cancelled);

/// Turns choices into films: films stand for themselves, play lists for the films that they list, folders for all films
/// in them and below, each folder in the order of its rows. Folders are walked once each, so that a link back up does
/// no harm. Stops at @p most films and when @p cancelled says so. Any thread; may take long.
CollectedFilms collect_films(const std::vector<FileManagerChoice>& choices, int most, const std::stop_token& cancelled);

/// The films that @p path stands for where one path is named: those of a folder or a play list as collect_films() finds
/// them, at most @p most; any other path stands for itself. Any thread; may take long.
QStringList films_behind(const QString& path, int most);
