#pragma once

#include "timed_text.h"

#include <atomic>
#include <vector>

/// Lays lines that overlap in time out as lines that do not, since the screen shows one at a time.
///
/// Each of these has the rows of all that are due then: the earlier above the later, the same text once, and where
/// there are too many for the screen those that began last. One ends where the next begins, so that nothing goes blank
/// between. Lines that overlap for a moment only, because their times are untidy, follow one another. What overlaps
/// nothing comes out as it is. Any thread.
/// @param lines sorted by start, each with an end and a text
/// @param cancelled looked at all the time: when it turns true the answer is what has been done by then.
std::vector<TimedText> without_overlaps(std::vector<TimedText> lines, const std::atomic<bool>& cancelled);
