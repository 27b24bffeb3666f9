#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QImage>

class QWidget;

/// Where a skin lies and how its pictures are read. GUI thread only.
///
/// A skin is one directory below the Qtopia directory's "pics/", named after the top-level widget, with the layout file
/// "config" in it. Nothing is cached: each call looks at the widget's window afresh.
namespace SkinLayout
{

/// The directory of the skin that dresses @p widget, without a slash at its end.
QString directory(const QWidget* widget);

/// The layout file of that skin. It need not exist; a missing file reads as one without entries.
QString file(const QWidget* widget);

/// Longest side, in pixels, of a picture that is still taken for one. Larger ones count as unreadable.
constexpr int largest_side = 2048;

/// Reads a picture as Format_ARGB32.
/// @return a null image, without a message, when @p path is empty, missing, damaged or larger than largest_side.
QImage load_image(const QString& path);

/// Reads the picture whose file name is @p value inside @p skin_directory. An empty value gives a null image.
QImage load_image(const QString& skin_directory, const QString& value);

/// How far from 0 a coordinate is still taken as it is, in pixels. Widgets reach about this far; anything beyond is a
/// slip of the pen and must not overflow a rectangle.
constexpr int farthest_position = 16384;

/// Keeps a coordinate from a layout file between -farthest_position and farthest_position.
int bounded_position(int value);

/// Keeps a width or height from a layout file between 0 and largest_side.
int bounded_size(int value);

/// @p image with each pixel's alpha multiplied by @p alpha / 255 (rounded), colours unchanged. 255 changes nothing.
QImage with_alpha(const QImage& image, unsigned char alpha);

/// The piece of a picture (QImage or QPixmap) behind @p rectangle; null without a rectangle, for which the picture's
/// own copy() would give the whole.
template<typename Picture> Picture piece_of(const Picture& picture, const QRect& rectangle)
{
    return rectangle.isEmpty() ? Picture() : picture.copy(rectangle);
}

} // namespace SkinLayout
