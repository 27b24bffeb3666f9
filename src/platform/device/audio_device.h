#pragma once

#include <functional>

/// Sets the player's own volume, 0 (silent) to 40; larger values count as 40. The system's master volume is not
/// touched.
void audio_device_set_appvolume(unsigned char volume);

/// Tests see every volume before it acts. An empty function ends that.
void audio_device_set_recorder(std::function<void(unsigned char)> recorder);
