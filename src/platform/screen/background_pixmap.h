#pragma once

#include <QPixmap>

class QPaintEvent;
class QWidget;

/// A widget's background picture, as the device knows it: it replaces what lies under it, alpha included, so that its
/// transparent parts let the video through. A member of the widget, called from its paintEvent().
class BackgroundPixmap
{
public:
    /// Sets the picture; a null one paints nothing. The widget is not repainted.
    void set(const QPixmap& pixmap) { m_pixmap = pixmap; }
    const QPixmap& pixmap() const { return m_pixmap; }

    /// Paints the part of the picture that @p event exposes, at the widget's top left corner, not stretched.
    void paint(QWidget* widget, QPaintEvent* event) const;

private:
    QPixmap m_pixmap;
};
