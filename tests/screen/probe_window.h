#pragma once

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWidget>

/// A window that writes down what reaches it and is filled with one colour (alpha replaces what is under it).
class ProbeWindow : public QWidget
{
public:
    explicit ProbeWindow(const QColor& colour, const QRect& geometry, QWidget* parent = nullptr,
                         Qt::WindowFlags flags = {})
        : QWidget(parent, flags), m_colour(colour)
    {
        setGeometry(geometry);
        setFocusPolicy(Qt::StrongFocus);
    }

    void set_colour(const QColor& colour)
    {
        m_colour = colour;
        update();
    }

    QStringList log; ///< "press KEY", "repeat KEY", "release KEY", "click X Y", "activate", "deactivate"
    int paints = 0;
    QRegion painted;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::WindowActivate)
            log << QStringLiteral("activate");
        else if (event->type() == QEvent::WindowDeactivate)
            log << QStringLiteral("deactivate");
        return QWidget::event(event);
    }
    void keyPressEvent(QKeyEvent* event) override
    {
        log << (event->isAutoRepeat() ? QStringLiteral("repeat ") : QStringLiteral("press ")) + name(event->key());
    }
    void keyReleaseEvent(QKeyEvent* event) override { log << QStringLiteral("release ") + name(event->key()); }
    void mousePressEvent(QMouseEvent* event) override
    {
        const QPoint at = event->position().toPoint();
        log << QStringLiteral("click %1 %2").arg(at.x()).arg(at.y());
    }
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        painted += event->region();
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), m_colour);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }

private:
    static QString name(int key)
    {
        return key == 0x2103 ? QStringLiteral("0x2103") : QKeySequence(key).toString(QKeySequence::PortableText);
    }
    QColor m_colour;
};
