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
/// Takes seconds where the files are large or the disk is slow; any thread but the one that draws.
/// @param frame_rate the film's, for files that count frames; 0 when unknown
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
/// @return their tracks in a fixed order, as many as a film may have; files without a line are left out.
std::vector<SubtitleTrack> read_subtitle_files(const QString& film, double frame_rate,
                                               const std::atomic<bool>& cancelled);

/// Reads one subtitle file of any kind. Any thread.
///
/// The file's content tells how it is read, and its suffix where that is silent.
/// @return nothing for what cannot be read or holds no line. Parameters as above.
std::vector<SubtitleTrack> read_subtitle_file(const QString& file, double frame_rate,
                                              const std::atomic<bool>& cancelled);

/// Reads the text streams inside a film. Has to walk through the whole file; any thread but the one that draws.
///
/// @return one track for each text stream, in their order, so that their number is the same before and after reading; a
/// stream may turn out to hold no line.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<SubtitleTrack> read_embedded_subtitles(const QString& film, const std::atomic<bool>& cancelled);
