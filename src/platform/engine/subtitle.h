#pragma once

#include <cstddef>
#include <string>

/// How many tracks of subtitles a film has at most.
inline constexpr std::size_t most_subtitle_tracks = 8;

/// One line of subtitles.
struct Subtitle {
    long long start = 0; ///< first position at which it is shown, in milliseconds
    long long end = 0;   ///< last position at which it is shown (inclusive), in milliseconds
    std::string text;    ///< CP949 bytes; what that page lacks is 0xFF and UTF-8. Lines are parted by "\n".
};

/// Orders lines by their start alone.
struct less_mag {
    bool operator()(const Subtitle& left, const Subtitle& right) const { return left.start < right.start; }
};
