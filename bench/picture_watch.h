#pragma once

#include "device_screen.h"
#include "video_plane.h"

#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtGui/QImage>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <optional>

/// Waits for a picture that the engine gives to the video plane, and for the painting of the display that shows it. GUI
/// thread.
class PictureWatch : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    PictureWatch()
    {
        DeviceScreen::instance()->installEventFilter(this);
        DeviceScreen::instance()->viewport()->installEventFilter(this);
    }

    /// From here on arrived() and painted() tell of a picture whose middle has this colour.
    void await(QRgb mark)
    {
        mark_ = mark;
        arrived_.reset();
        painted_.reset();
    }

    const std::optional<Clock::time_point>& arrived() const { return arrived_; }
    const std::optional<Clock::time_point>& painted() const { return painted_; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == VideoPlane::frame_event_type() && !arrived_) {
            const QImage& picture = VideoPlane::instance().newest_frame();
            if (!picture.isNull() && is_near(picture.pixel(picture.rect().center())))
                arrived_ = Clock::now();
        } else if (event->type() == QEvent::Paint && object == DeviceScreen::instance()->viewport() && arrived_ &&
                   !painted_) {
            // The painting itself comes when this has returned.
            QMetaObject::invokeMethod(
                this, [this] { painted_ = painted_.value_or(Clock::now()); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    bool is_near(QRgb pixel) const
    {
        const auto near = [](int a, int b) { return std::abs(a - b) <= 60; };
        return near(qRed(pixel), qRed(mark_)) && near(qGreen(pixel), qGreen(mark_)) && near(qBlue(pixel), qBlue(mark_));
    }

    QRgb mark_ = 0;
    std::optional<Clock::time_point> arrived_;
    std::optional<Clock::time_point> painted_;
};
