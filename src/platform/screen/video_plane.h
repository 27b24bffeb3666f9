#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <array>
#include <atomic>
#include <functional>
#include <mutex>

class QObject;

/// The video plane "/dev/fb1": what lies under the windows and shows the engine's newest frame.
///
/// The engine renders into one buffer while the display paints another, and a finished frame waits in a third, so
/// neither ever waits for the other and no half-drawn frame is seen. All operations are thread-safe unless they say
/// otherwise.
class VideoPlane
{
public:
    /// The only one; made on first use, from any thread, and never destroyed before the process ends.
    static VideoPlane& instance();

    VideoPlane(const VideoPlane&) = delete;
    VideoPlane& operator=(const VideoPlane&) = delete;

    // The engine's side

    /// Places the picture, in output coordinates (480x272 or 640x480). An empty rectangle shows no picture.
    void set_window(const QRect& output_rectangle);

    /// The place given by set_window(), in output coordinates.
    QRect window() const;

    /// The size to render at, in real pixels of the display. Empty when nothing is to be drawn: plane off, display
    /// hidden or minimised, no window. A frame of another size is shown stretched to the window.
    QSize pixel_size() const;

    /// The buffer for the next frame: Format_RGB32, @p size pixels, content undefined. Only one thread at a time may be
    /// between begin_frame() and end_frame(); the buffer is that thread's until end_frame().
    QImage& begin_frame(QSize size);

    /// Makes the buffer of begin_frame() the newest frame and asks for one repaint, however many frames come before it
    /// happens.
    void end_frame();

    /// Takes the picture away: the window is black until the next frame.
    void clear();

    /// Sets what is called on the GUI thread whenever pixel_size() has changed, so that a still frame is rendered again
    /// at the new size; an empty function removes it. The old hook is not running any more when this returns (unless it
    /// is the caller), so it must not wait for the thread that calls this.
    void set_resize_hook(std::function<void()> hook);

    // The display's side; GUI thread only

    /// How the plane appears on the display.
    struct Mapping {
        qreal pixels_per_unit = 1.0; ///< real pixels for one output pixel
        QPoint offset;               ///< shift of the picture in output coordinates
        bool shown = false;          ///< false: nothing of the plane can be seen
        bool operator==(const Mapping&) const = default;
    };

    /// The event that reaches the display after a frame, clear() or a new window. Its type is frame_event_type().
    static int frame_event_type();

    /// Sets the object that gets the frame events; null for none. No event is posted to the old one after this returns.
    void attach(QObject* display);

    /// Tells how the plane appears, and calls the resize hook if that changed the size to render at.
    void set_mapping(const Mapping& mapping);

    /// To be called first on a frame event: from then on a new frame brings a new event. Calls the resize hook if due.
    void acknowledge();

    /// The newest frame; null when the plane is black. Valid until the next call.
    const QImage& newest_frame();

    /// Where the picture lies, in real pixels from the output's top left corner.
    QRect pixel_rectangle() const;

private:
    VideoPlane() = default;

    QRect pixel_rectangle_locked() const;
    void request_repaint();
    void call_hook_if_resized();

    std::mutex m_display_mutex; ///< guards m_display
    QObject* m_display = nullptr;
    std::atomic<bool> m_repaint_requested = false;

    mutable std::mutex m_mutex; ///< guards all below but m_back, m_front and what m_hook_mutex guards
    QRect m_window{0, 0, 480, 272};
    Mapping m_mapping;
    bool m_frame_waiting = false; ///< m_waiting is newer than m_front
    std::array<QImage, 3> m_buffers;
    std::size_t m_back = 0; ///< index of the engine's buffer; engine thread, changed under the lock
    std::size_t m_waiting = 1;
    std::size_t m_front = 2; ///< index of the display's buffer; GUI thread, changed under the lock
    bool m_black = true;     ///< nothing to show
    std::recursive_mutex
        m_hook_mutex; ///< guards m_hook and m_notified_size, held while the hook runs; taken before m_mutex
    std::function<void()> m_hook;
    QSize m_notified_size{0, 0};
};
