#pragma once

#include <array>

#include <QString>

/// Where a subtitle stands on the picture.
enum class SubtitleLocation : int {
    High = 0,   ///< above the middle
    Middle = 1, ///< below the middle
    Low = 2,    ///< on the bottom edge
};

/// How a line is set at one location: blank lines round the text, and the alignment that goes with them.
struct SubtitlePlacement {
    SubtitleLocation location;
    const char* leading_pad;
    const char* trailing_pad;
    int alignment; ///< for OsdControl::set_align(); the owner of the widget sets it
};

inline constexpr std::array<SubtitlePlacement, 3> SUBTITLE_PLACEMENTS{{
    {SubtitleLocation::High, "", "\n\n", Qt::TextWordWrap | Qt::AlignCenter},
    {SubtitleLocation::Middle, "\n\n", "", Qt::TextWordWrap | Qt::AlignCenter},
    {SubtitleLocation::Low, "", "", Qt::TextWordWrap | Qt::AlignHCenter | Qt::AlignBottom},
}};

/// How a line is set at @p location; null for an unknown value.
constexpr const SubtitlePlacement* subtitle_placement(SubtitleLocation location)
{
    for (const SubtitlePlacement& placement : SUBTITLE_PLACEMENTS) {
        if (placement.location == location)
            return &placement;
    }
    return nullptr;
}
