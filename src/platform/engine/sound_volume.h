#pragma once

#include <functional>

/// Makes @p owner the one that applies the volume of set_application_volume(), in the place of any other.
///
/// @param apply called at once and at every change with percent, 0 to 100, on the thread that sets the volume.
void set_volume_listener(const void* owner, std::function<void(double percent)> apply);

/// Ends that, if @p owner still is the one. Its function is not running any more when this returns.
void remove_volume_listener(const void* owner);
