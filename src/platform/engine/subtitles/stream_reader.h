#pragma once

#include "subtitle_reader.h"
#include "timed_text.h"

/// Reads, by FFmpeg, the text files of the rarer players: SubViewer, MPL2, VPlayer, MPsub, JACOsub, PJS.
/// @param source the file's text
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<TimedText> read_rare_text(const QString& source, const std::atomic<bool>& cancelled);
