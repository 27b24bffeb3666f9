#pragma once

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>

/// The overlay's two renderers written the plain way, pixel after pixel, to hold the fast ones against.
namespace overlay_reference
{

inline constexpr unsigned int transparent = 0x01000000;

/// One ring of @p colour, in place.
inline void draw_outline(QImage& image, unsigned int colour)
{
    for (int y = 1; y <= image.height() - 2; ++y) {
        for (int x = 1; x <= image.width() - 2; ++x) {
            const auto at = [&](int column, int row) -> unsigned int& {
                return reinterpret_cast<unsigned int*>(image.scanLine(row))[column];
            };
            if (at(x, y) == transparent || at(x, y) == colour)
                continue;
            if (at(x - 1, y) == transparent)
                at(x - 1, y) = colour;
            if (at(x + 1, y) == transparent)
                at(x + 1, y) = colour;
            if (at(x, y - 1) == transparent)
                at(x, y - 1) = colour;
            if (at(x, y + 1) == transparent)
                at(x, y + 1) = colour;
        }
    }
}

inline QImage blank(const QSize& size, unsigned int background)
{
    QPixmap pixmap(size);
    pixmap.fill(QColor::fromRgba(background));
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

inline QImage shadowed(const QSize& size, const QFont& font, int alignment, const QColor& color, const QString& text)
{
    QImage image = blank(size, 0);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(1, 1, size.width(), size.height(), alignment, text);
    painter.setPen(color);
    painter.drawText(0, 0, size.width(), size.height(), alignment, text);
    return image;
}

inline QImage outlined(const QSize& size, const QFont& font, int alignment, const QColor& color, const QString& text)
{
    QImage coverage = blank(size, 0);
    QPainter painter(&coverage);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(0, 0, size.width(), size.height(), alignment, text);
    painter.end();

    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const unsigned int b = reinterpret_cast<const unsigned int*>(coverage.constScanLine(y))[x] & 0xFF;
            unsigned int pixel = transparent;
            if (b >= 64) {
                pixel = 0xFF000000;
                pixel |= ((static_cast<unsigned int>(color.red()) * b) >> 8) << 16;
                pixel |= ((static_cast<unsigned int>(color.green()) * b) >> 8) << 8;
                pixel |= (static_cast<unsigned int>(color.blue()) * b) >> 8;
            }
            reinterpret_cast<unsigned int*>(image.scanLine(y))[x] = pixel;
        }
    }
    draw_outline(image, 0xFF000000);
    draw_outline(image, 0xC0000000);
    return image;
}

} // namespace overlay_reference
