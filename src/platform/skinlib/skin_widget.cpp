#include "skin_widget.h"

#include "skin_layout.h"
#include "window_flags.h"

#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>

SkinWidget::SkinWidget(QWidget* parent, const QString& name, unsigned int flags) : QWidget(parent, window_flags(flags))
{
    setObjectName(name);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    resize(0, 0);
}

SkinWidget::~SkinWidget() = default;

void SkinWidget::setBackgroundImage(const QImage& image)
{
    m_background_image = image;
    m_background.set(QPixmap::fromImage(SkinLayout::with_alpha(image, m_alpha_override)));
    update();
}

void SkinWidget::setBackgroundPixmap(const QPixmap& pixmap)
{
    m_background.set(SkinLayout::piece_of(pixmap, geometry()));
    update();
}

void SkinWidget::setAlphaOverride(unsigned char alpha)
{
    m_alpha_override = alpha;
    if (!m_background_image.isNull())
        m_background.set(QPixmap::fromImage(SkinLayout::with_alpha(m_background_image, alpha)));
    update();
}

void SkinWidget::paintEvent(QPaintEvent* event)
{
    m_background.paint(this, event);
    QPainter painter(this);
    painter.setClipRect(event->rect());
    painter.setOpacity(m_alpha_override / 255.0);
    draw(&painter);
}
