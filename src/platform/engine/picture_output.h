#pragma once

#include "colour_balance.h"

#include <condition_variable>
#include <mutex>
#include <thread>

struct mpv_handle;
struct mpv_render_context;

/// Renders the playing library's frames straight into the video plane, on a thread of its own.
///
/// The thread sleeps until a frame is due or redraw() is called. All operations may be called from any thread.
class PictureOutput
{
public:
    /// @param handle an initialized library whose video output is its render interface; must outlive this object
    explicit PictureOutput(mpv_handle* handle);
    /// Waits for the library to give up its video output, so it can block as long as the library does.
    ~PictureOutput();
    PictureOutput(const PictureOutput&) = delete;
    PictureOutput& operator=(const PictureOutput&) = delete;

    /// False when the library refused; nothing is ever drawn then.
    bool works() const { return m_context != nullptr; }

    /// Lets pictures through to the plane or not. No frame of before reaches the plane after show(false) has returned.
    void show(bool on);

    /// Renders the newest frame again if it came while none was let through: a film that rests after its first frame
    /// brings no other.
    void show_missed();

    /// Renders the newest frame again: the plane has another size, or the colours have changed.
    void redraw();

    /// As ColourBalance::set(); seen at once, also while the picture rests.
    void set_colour(int red, int green, int blue);

private:
    static void frame_is_due(void* self);
    void run();
    void render(bool shown);

    mpv_render_context* m_context = nullptr;

    std::mutex m_wake_mutex; ///< guards the four below
    std::condition_variable m_wake;
    bool m_frame_due = false;
    bool m_redraw = false;
    bool m_ending = false;

    std::mutex m_plane_mutex; ///< held while a frame is rendered; guards the three below
    bool m_shown = false;
    bool m_missed = false; ///< the newest frame was not let through
    ColourBalance m_colour;

    std::thread m_thread;
};
