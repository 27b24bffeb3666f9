#pragma once

#include "timed_text.h"

#include <QStringView>

#include <atomic>

/// Reads MicroDVD, which counts frames: "{first}{last}text". A line "{1}{1}23.976" tells the frame rate.
/// @param frame_rate the film's, for a file that does not tell; 0 when that is unknown, too
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<TimedText> read_micro_dvd(QStringView source, double frame_rate, const std::atomic<bool>& cancelled);

/// Whether @p line is one of MicroDVD.
bool is_micro_dvd_line(QStringView line);
