#pragma once

#include <array>
#include <cstddef>

/// The speeds that MediaPlayer::set_speed() steps through, in percent.
inline constexpr std::array<int, 7> speed_steps = {50, 75, 100, 125, 150, 175, 200};

/// Index of normal speed in speed_steps.
inline constexpr std::size_t normal_speed_step = 2;
