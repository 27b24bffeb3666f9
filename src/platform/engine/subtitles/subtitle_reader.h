#pragma once

#include "subtitle.h"

#include <QString>

#include <atomic>
#include <vector>

/// The lines of one language.
struct SubtitleTrack {
    QString name;                ///< for people: the language, or the file it came from
    std::vector<Subtitle> lines; ///< sorted by start
};

/// Reads the files beside a film that carry its name and a subtitle suffix.
///
/// Quick enough for the thread that opens a film. Any thread.
/// @return their tracks in a fixed order; files without a line are left out.
std::vector<SubtitleTrack> read_subtitle_files(const QString& film);

/// Reads the text streams inside a film. Has to walk through the whole file; any thread but the one that draws.
///
/// @return one track for each text stream, in their order, so that their number is the same before and after reading; a
/// stream may turn out to hold no line.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<SubtitleTrack> read_embedded_subtitles(const QString& film, const std::atomic<bool>& cancelled);
