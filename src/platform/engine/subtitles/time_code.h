#pragma once

#include <QStringView>

#include <optional>

/// Takes "[-][[hours:]minutes:]seconds[.fraction]" off the front of @p text, also with "," before the fraction, or with
/// ":" or
/// ";" when the hours are there; blanks in front are passed.
///
/// @return milliseconds; nothing when there is no such time, and @p text is as it was.
std::optional<long long> take_time_code(QStringView& text);
