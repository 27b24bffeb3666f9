#include "background_pixmap.h"

#include <QPaintEvent>
#include <QPainter>

void BackgroundPixmap::paint(QWidget* widget, QPaintEvent* event) const
{
    const QRect exposed = event->rect() & QRect(QPoint(), m_pixmap.deviceIndependentSize().toSize());
    if (exposed.isEmpty())
        return;
    QPainter painter(widget);
    painter.setClipRect(exposed);
    // The same as drawing with CompositionMode_Source, but the toolkit has fast ways for these two steps and none for
    // that one.
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(exposed, Qt::transparent);
    // The painter may be shared with the display's: what it is left in is what the next widget starts with.
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawPixmap(0, 0, m_pixmap);
}
