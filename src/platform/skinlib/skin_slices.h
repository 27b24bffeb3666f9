#pragma once

#include <QtCore/QRect>
#include <QtGui/QImage>

class QPainter;

/// Draws @p image over @p target with its two ends kept and the third between them stretched. @p orientation is the
/// direction in which it grows; across it the picture is scaled to the target. A null image or an empty target draws
/// nothing.
void draw_slices(QPainter* painter, const QRect& target, const QImage& image, Qt::Orientation orientation);
