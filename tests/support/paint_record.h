#pragma once

#include "test_main.h"

#include <QtGui/QPaintEvent>
#include <QtWidgets/QGraphicsProxyWidget>
#include <QtWidgets/QWidget>

/// What the system has a widget paint while this object lives; grab() and render() paint whether they are asked to or
/// not, so a picture of theirs does not tell that a change comes to the screen.
class PaintRecord : public QObject
{
public:
    explicit PaintRecord(QWidget* widget) : widget_(widget) { widget->installEventFilter(this); }

    /// Shows the widget with its window, has all of it painted, and forgets that.
    /// @return false when it is never painted
    bool begin()
    {
        QWidget* const window = widget_->window();
        widget_->show();
        window->show();
        // A window that came up only now would have everything painted once more. Windows of the device's screen are
        // pictures on it, with nothing of their own to come up.
        if (!window->graphicsProxyWidget() && !QTest::qWaitForWindowExposed(window, test_support::stretched(5000)))
            return false;
        widget_->update();
        if (!QTest::qWaitFor([this] { return covers_all(); }, test_support::stretched(5000)))
            return false;
        // So does what comes with the showing, such as a change of focus.
        do {
            painted_ = QRegion();
            QCoreApplication::processEvents();
        } while (!painted_.isEmpty());
        return true;
    }

    /// Whether each pixel of a rectangle, which must not be empty, was painted since begin().
    bool covers(const QRect& rectangle) const
    {
        return !rectangle.isEmpty() && QRegion(rectangle).subtracted(painted_).isEmpty();
    }
    /// The same for the whole widget.
    bool covers_all() const { return covers(widget_->rect()); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted_ += static_cast<QPaintEvent*>(event)->region();
        return QObject::eventFilter(object, event);
    }

private:
    QWidget* widget_;
    QRegion painted_;
};
