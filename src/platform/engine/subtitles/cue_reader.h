#pragma once

#include "timed_text.h"

#include <QStringView>

#include <atomic>

/// Reads SubRip: times parted by an arrow, text below them. Counters may be missing or wrong, blank lines too; hours
/// and fractions of a second may be left out, and the fraction may follow a comma or a dot.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<TimedText> read_sub_rip(QStringView source, const std::atomic<bool>& cancelled);

/// Reads WebVTT in the same way; notes, styles and the settings of a cue are passed over.
std::vector<TimedText> read_web_vtt(QStringView source, const std::atomic<bool>& cancelled);
