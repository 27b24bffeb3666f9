#include "video_plane.h"

#include <QCoreApplication>
#include <QEvent>

#include <cmath>
#include <utility>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace
{

/// The toolkit's queue is not built with the sanitizer, which therefore does not see that it orders the two threads.
void order_release([[maybe_unused]] QEvent* event)
{
#if defined(__SANITIZE_THREAD__)
    __tsan_release(event);
#endif
}

int scaled(int coordinate, qreal factor)
{
    return static_cast<int>(std::lround(coordinate * factor));
}

} // namespace

VideoPlane& VideoPlane::instance()
{
    // Never destroyed: an engine thread may still be at work while the process ends.
    static VideoPlane* const plane = new VideoPlane;
    return *plane;
}

int VideoPlane::frame_event_type()
{
    static const int type = QEvent::registerEventType();
    return type;
}

void VideoPlane::set_window(const QRect& output_rectangle)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_window == output_rectangle)
            return;
        m_window = output_rectangle;
    }
    request_repaint();
}

QRect VideoPlane::window() const
{
    const std::lock_guard lock(m_mutex);
    return m_window;
}

QSize VideoPlane::pixel_size() const
{
    const std::lock_guard lock(m_mutex);
    return m_mapping.shown ? pixel_rectangle_locked().size() : QSize(0, 0);
}

QRect VideoPlane::pixel_rectangle() const
{
    const std::lock_guard lock(m_mutex);
    return pixel_rectangle_locked();
}

QRect VideoPlane::pixel_rectangle_locked() const
{
    if (m_window.isEmpty())
        return {};
    const QRect placed = m_window.translated(m_mapping.offset);
    // Edges are rounded, not sizes: two windows that touch in output coordinates touch on the display too.
    const qreal factor = m_mapping.pixels_per_unit;
    const QPoint top_left(scaled(placed.x(), factor), scaled(placed.y(), factor));
    const QPoint end(scaled(placed.x() + placed.width(), factor), scaled(placed.y() + placed.height(), factor));
    return QRect(top_left, end - QPoint(1, 1));
}

QImage& VideoPlane::begin_frame(QSize size)
{
    QImage& back = m_buffers[m_back];
    // A frame that was handed out as a shared copy must not be drawn into: a detach would copy it for nothing.
    if (back.size() != size || back.format() != QImage::Format_RGB32 || !back.isDetached())
        back = QImage(size, QImage::Format_RGB32);
    return back;
}

void VideoPlane::end_frame()
{
    {
        const std::lock_guard lock(m_mutex);
        std::swap(m_back, m_waiting);
        m_frame_waiting = true;
        m_black = false;
    }
    request_repaint();
}

void VideoPlane::clear()
{
    {
        const std::lock_guard lock(m_mutex);
        m_frame_waiting = false;
        if (m_black)
            return;
        m_black = true;
    }
    request_repaint();
}

void VideoPlane::request_repaint()
{
    // Not under the other lock: the display wakes at once, and would have to wait for it.
    const std::lock_guard lock(m_display_mutex);
    if (!m_display || m_repaint_requested.exchange(true))
        return;
    auto* event = new QEvent(static_cast<QEvent::Type>(frame_event_type()));
    order_release(event);
    QCoreApplication::postEvent(m_display, event);
}

void VideoPlane::attach(QObject* display)
{
    const std::lock_guard lock(m_display_mutex);
    m_display = display;
    m_repaint_requested = false;
}

void VideoPlane::set_mapping(const Mapping& mapping)
{
    {
        const std::lock_guard lock(m_mutex);
        m_mapping = mapping;
    }
    call_hook_if_resized();
}

void VideoPlane::acknowledge()
{
    m_repaint_requested = false;
    call_hook_if_resized();
}

const QImage& VideoPlane::newest_frame()
{
    static const QImage none;
    const std::lock_guard lock(m_mutex);
    if (m_black)
        return none;
    if (m_frame_waiting) {
        std::swap(m_front, m_waiting);
        m_frame_waiting = false;
    }
    return m_buffers[m_front];
}

void VideoPlane::set_resize_hook(std::function<void()> hook)
{
    const std::lock_guard lock(m_hook_mutex);
    m_hook = std::move(hook);
}

void VideoPlane::call_hook_if_resized()
{
    const std::lock_guard lock(m_hook_mutex);
    const QSize size = pixel_size();
    if (size == m_notified_size)
        return;
    m_notified_size = size;
    // A copy, because the hook may replace itself.
    if (const std::function<void()> hook = m_hook)
        hook();
}
