#include "background_pixmap.h"

#include <QPaintEvent>
#include <QPainter>

void BackgroundPixmap::paint(QWidget* widget, QPaintEvent* event) const
{
    const QRect exposed = event->rect() & QRect(QPoint(), m_pixmap.deviceIndependentSize().toSize());
    if (exposed.isEmpty())
        return;
    QPainter painter(widget);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setClipRect(exposed);
    painter.drawPixmap(0, 0, m_pixmap);
    // The painter may be shared with the display's: what it is left in is what the next widget starts with.
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}
