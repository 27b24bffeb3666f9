#pragma once

#include <QString>

/// Writes the film @p source (MP4) once more as @p target, of @p size bytes, with its pictures and sounds spread evenly
/// over all of it in their order. What lies between takes no room on the disk where the file system keeps sparse files.
///
/// @return false when @p source is of another build or @p target cannot be written.
bool spread_film(const QString& source, const QString& target, qint64 size);
