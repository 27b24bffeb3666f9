#include "video_item.h"

#include "video_plane.h"

#include <QPainter>
#include <QPainterPath>

VideoItem::VideoItem()
{
    setAcceptedMouseButtons(Qt::NoButton);
}

void VideoItem::place(const QRectF& picture, const QRectF& visible)
{
    m_picture = picture;
    if (m_visible == visible)
        return;
    prepareGeometryChange();
    m_visible = visible;
}

QPainterPath VideoItem::opaqueArea() const
{
    QPainterPath path;
    path.addRect(m_visible);
    return path;
}

void VideoItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    VideoPlane& plane = VideoPlane::instance();
    const QImage& frame = plane.newest_frame();
    if (frame.isNull()) {
        painter->fillRect(m_visible, Qt::black);
        return;
    }
    painter->save();
    if (m_visible != m_picture)
        painter->setClipRect(m_visible, Qt::IntersectClip);
    // In real pixels, so that a frame of the size asked for is copied and not scaled.
    const qreal ratio = painter->device()->devicePixelRatio();
    painter->setWorldTransform(QTransform::fromScale(1 / ratio, 1 / ratio));
    const QRect rectangle = plane.pixel_rectangle();
    if (frame.size() == rectangle.size())
        painter->drawImage(rectangle.topLeft(), frame);
    else
        painter->drawImage(rectangle, frame);
    painter->restore();
}
