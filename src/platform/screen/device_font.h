#pragma once

#include <QFont>

/// Makes the device's family "v28", in any case, an alias of NanumGothic for the whole process. Needs the application
/// object; warns once when the font is not installed. The display and device_font() call it.
void install_device_fonts();

/// A font of the device: one point is one pixel.
///
/// @param family "v28" in any case, or a family of the host
/// @param points size in pixels, at least 1
/// @param weight 0 to 99 on the old scale: 25 light, 50 normal, 63 demi-bold, 75 bold, 87 black
QFont device_font(const QString& family, int points, int weight);
