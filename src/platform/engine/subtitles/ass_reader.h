#pragma once

#include "timed_text.h"

#include <QStringView>

#include <atomic>

/// Reads the events of an ASS or SSA script. The order of the fields is the script's own, or the usual one.
/// @param cancelled looked at all the time: when it turns true the answer is what has been read by then.
std::vector<TimedText> read_ass(QStringView source, const std::atomic<bool>& cancelled);
