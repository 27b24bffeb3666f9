#pragma once

#include <QString>
#include <QStringList>

/// Whether a file's name ends in a subtitle suffix, in any case of letters.
bool has_subtitle_suffix(const QString& file);

/// The subtitle files that belong to a film: those with its name and any subtitle suffix, also with a language or the
/// like between ("film.ko.srt"), unless another film beside it has that longer name.
///
/// @return absolute paths: the film's very name first, then by suffix in the order in which films usually come with
/// them, then by name.
QStringList subtitle_files_of(const QString& film);
