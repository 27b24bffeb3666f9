#include "skin_layout.h"

#include "qpe_application.h"

#include <QtGui/QImageReader>
#include <QtWidgets/QWidget>

#include <algorithm>

QString SkinLayout::directory(const QWidget* widget)
{
    return QPEApplication::qpeDir() + QLatin1String("pics/") + widget->window()->objectName();
}

QString SkinLayout::file(const QWidget* widget)
{
    return directory(widget) + QLatin1String("/config");
}

QImage SkinLayout::load_image(const QString& path)
{
    // Something that is not a plain file (a pipe, a device) could keep the reader waiting.
    if (path.isEmpty() || !QFileInfo(path).isFile())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > largest_side || size.height() > largest_side)
        return {};
    const QImage image = reader.read();
    return image.isNull() ? QImage() : image.convertToFormat(QImage::Format_ARGB32);
}

QImage SkinLayout::load_image(const QString& skin_directory, const QString& value)
{
    return value.isEmpty() ? QImage() : load_image(skin_directory + QLatin1Char('/') + value);
}

int SkinLayout::bounded_position(int value)
{
    return std::clamp(value, -farthest_position, farthest_position);
}

int SkinLayout::bounded_size(int value)
{
    return std::clamp(value, 0, largest_side);
}

QImage SkinLayout::with_alpha(const QImage& image, unsigned char alpha)
{
    if (alpha == 255 || image.isNull())
        return image;
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const int product = qAlpha(line[x]) * alpha + 128;
            line[x] = qRgba(qRed(line[x]), qGreen(line[x]), qBlue(line[x]), (product + (product >> 8)) >> 8);
        }
    }
    return result;
}
