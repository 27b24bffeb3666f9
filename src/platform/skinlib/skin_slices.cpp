#include "skin_slices.h"

#include <QtGui/QPainter>

#include <algorithm>

void draw_slices(QPainter* painter, const QRect& target, const QImage& image, Qt::Orientation orientation)
{
    if (image.isNull() || target.isEmpty())
        return;
    const bool horizontal = orientation == Qt::Horizontal;
    const int source_length = horizontal ? image.width() : image.height();
    const int target_length = horizontal ? target.width() : target.height();
    const int cap = std::min(source_length / 3, target_length / 2);

    const auto slice = [&](int target_from, int target_size, int source_from, int source_size) {
        if (target_size <= 0 || source_size <= 0)
            return;
        if (horizontal)
            painter->drawImage(QRect(target.x() + target_from, target.y(), target_size, target.height()), image,
                               QRect(source_from, 0, source_size, image.height()));
        else
            painter->drawImage(QRect(target.x(), target.y() + target_from, target.width(), target_size), image,
                               QRect(0, source_from, image.width(), source_size));
    };
    slice(0, cap, 0, cap);
    slice(cap, target_length - 2 * cap, cap, source_length - 2 * cap);
    slice(target_length - cap, cap, source_length - cap, cap);
}
