#pragma once

#include <QColor>
#include <QFont>

/// Colours, sizes and fonts of the file manager window, in one place.
namespace file_manager_look
{

inline constexpr QColor accent(255, 102, 0);         ///< the cursor, what is chosen, what is pressed
inline constexpr QColor caption_text(255, 249, 178); ///< captions and labels
inline constexpr QColor text(255, 255, 255);         ///< names
inline constexpr QColor quiet_text(176, 178, 184);   ///< sizes, lengths, the folder's path
inline constexpr QColor window_top(30, 31, 35, 236); ///< the window's ground; a little of the film shows through
inline constexpr QColor window_bottom(12, 12, 15, 236);
inline constexpr QColor bar(0, 0, 0, 90);          ///< behind caption and status line
inline constexpr QColor line(255, 255, 255, 26);   ///< between rows, round buttons
inline constexpr QColor raised(255, 255, 255, 20); ///< buttons at rest, the cursor without the keys

inline constexpr int window_width = 480;
inline constexpr int window_height = 272;
inline constexpr int caption_height = 34;
inline constexpr int status_height = 28;
inline constexpr int row_height = 42;     ///< five rows in the list, each wide enough for a thumb
inline constexpr int check_width = 44;    ///< the part of a row that chooses it when tapped
inline constexpr int button_column = 104; ///< width of the column of buttons
inline constexpr int margin = 8;

QFont caption_font();
QFont name_font();
QFont detail_font();
QFont button_font();

} // namespace file_manager_look
