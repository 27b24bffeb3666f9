#pragma once

/// Sets the volume of the player's own sound, now and for films opened later.
///
/// @param volume 0 (silent) to 40 (full, also what holds before the first call); more counts as 40. Any thread; never
/// waits.
void set_application_volume(unsigned char volume);
