#pragma once

#include <QGraphicsProxyWidget>

/// One window of the player on the plane "/dev/fb2". GUI thread only.
class WindowItem : public QGraphicsProxyWidget
{
    Q_OBJECT

public:
    /// The item is a child of @p plane; put a window into it with setWidget().
    explicit WindowItem(QGraphicsItem* plane);

    /// Takes the window off the display again, without deleting it.
    void release();

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    bool focusNextPrevChild(bool next) override;
};
