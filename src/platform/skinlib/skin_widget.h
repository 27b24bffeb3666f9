#pragma once

#include "background_pixmap.h"

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

/// What the small indicators of a panel have in common: a group of the layout file named like the object, a piece of
/// the panel's background behind them, and the panel's alpha. They take no keyboard focus. GUI thread only.
class SkinWidget : public QWidget
{
    Q_OBJECT

public:
    /// @param name object name, and the group of the layout file
    SkinWidget(QWidget* parent, const QString& name, unsigned int flags);
    ~SkinWidget() override;

    /// The piece of the panel's background that lies behind this widget, as the skin has it. Shown with the present
    /// alpha.
    void setBackgroundImage(const QImage& image);
    /// The whole panel's background as it is shown; the widget takes the piece at its own place. A null pixmap removes
    /// it: the widget then shows what its parent painted.
    virtual void setBackgroundPixmap(const QPixmap& pixmap);
    /// How opaque the widget is: 255 as the skin has it, 0 invisible.
    virtual void setAlphaOverride(unsigned char alpha);

    unsigned char alphaOverride() const { return m_alpha_override; }
    const QPixmap& backgroundPixmap() const { return m_background.pixmap(); }

protected:
    /// Paints the background, then draw() with the alpha applied.
    void paintEvent(QPaintEvent* event) final;
    /// Draws the widget's own pictures over the background, in widget coordinates.
    virtual void draw(QPainter* painter) = 0;

private:
    QImage m_background_image;
    BackgroundPixmap m_background;
    unsigned char m_alpha_override = 255;
};
