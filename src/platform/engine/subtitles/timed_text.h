#pragma once

#include "subtitle.h"

#include <QString>

#include <atomic>
#include <optional>
#include <vector>

/// A line as a file tells it, its text already plain.
struct TimedText {
    long long start = 0;          ///< milliseconds
    std::optional<long long> end; ///< milliseconds; nothing when the next line ends it
    QString text;                 ///< empty: takes the line before it off the screen
};

/// Puts lines in order for the screen: sorted by start, a start of 0 becomes 1, a missing end is the next line's start.
///
/// Lines that overlap are laid out as lines that do not, since the screen shows one at a time; what begins at the same
/// time and lasts until the next one becomes one line. Blank lines are left out. Texts come out in the device's code
/// page. Any thread.
/// @param cancelled looked at all the time: when it turns true the answer is what has been done by then.
std::vector<Subtitle> in_order(std::vector<TimedText> lines, const std::atomic<bool>& cancelled);
