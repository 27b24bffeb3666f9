#pragma once

#include <QtCore/QRect>
#include <QtGui/QColor>

/// Colours and places of the settings dialog, those of the skin.
namespace setting_look
{

inline const QColor accent(255, 102, 0);
inline const QColor text(255, 255, 255);
inline const QColor label(255, 249, 178);
inline const QColor backdrop(16, 17, 20, 232);
/// The backdrop of a page that covers the film.
inline const QColor cover(18, 19, 22, 250);
inline const QColor header(8, 8, 10, 245);
inline const QColor panel(255, 255, 255, 16);
inline const QColor line(255, 255, 255, 44);

inline constexpr QSize form_size(480, 272);
inline constexpr int font_points = 13;
inline constexpr int header_height = 32;
inline constexpr int tab_height = 26;
inline constexpr int page_top = header_height + tab_height;
/// Space between a page's content and the form's edges.
inline constexpr int margin = 8;

/// The film's place on the LCD.
inline constexpr QRect lcd_picture(12, 64, 221, 126);
/// The film's place on a TV, (93, 162) of the screen, seen from the form at (80, 104).
inline constexpr QRect tv_picture(13, 58, 221, 126);
/// Where the controls beside the picture begin and how wide they are.
inline constexpr int column_left = 242;
inline constexpr int column_width = form_size.width() - margin - column_left;

} // namespace setting_look
