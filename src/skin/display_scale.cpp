#include "display_scale.h"

#include <algorithm>

#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>

namespace
{

/// Beyond this the picture is enlarged: no eye can tell, and the text costs too much.
constexpr qreal LARGEST_SCALE = 4;

} // namespace

qreal display_scale(const QWidget* widget)
{
    const QGraphicsProxyWidget* item = widget->window()->graphicsProxyWidget();
    if (!item || !item->scene() || item->scene()->views().isEmpty())
        return 1;
    const QGraphicsView* view = item->scene()->views().constFirst();
    return std::clamp<qreal>(view->transform().m11() * view->devicePixelRatio(), 1, LARGEST_SCALE);
}
