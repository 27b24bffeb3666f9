#pragma once

#include <QGraphicsItem>

/// The video plane in the display's scene: paints the newest frame of VideoPlane pixel by pixel. GUI thread only.
class VideoItem : public QGraphicsItem
{
public:
    VideoItem();

    /// Places the item. @p picture is the frame's place and @p visible the part of it inside the plane, in output
    /// coordinates.
    void place(const QRectF& picture, const QRectF& visible);

    QRectF boundingRect() const override { return m_visible; }
    QPainterPath opaqueArea() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    QRectF m_picture;
    QRectF m_visible;
};
