#pragma once

#include "subtitle_reader.h"

/// Reads SAMI as it is found in the world: tags and attributes in any case, quoted or bare, nested or never closed,
/// with or without header, style sheet and paragraphs.
///
/// Each class is a track and gives it its name; those that the style sheet lists come first, in its order. Lines of one
/// class end where its next one begins, unless they tell their end.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
/// @return the tracks that have lines. The only track of a file without classes has no name.
std::vector<SubtitleTrack> read_sami(QStringView source, const std::atomic<bool>& cancelled);
