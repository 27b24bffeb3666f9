#include "picture_output.h"

#include "video_plane.h"

#include <mpv/client.h>
#include <mpv/render.h>

#include <pthread.h>

#include <array>
#include <utility>

namespace
{

// The library's names of parameters are plain enumerators and its data pointers are not const.
template<typename T> mpv_render_param parameter(mpv_render_param_type type, T* data)
{
    return {type, data};
}

} // namespace

PictureOutput::PictureOutput(mpv_handle* handle)
{
    char api[] = MPV_RENDER_API_TYPE_SW;
    std::array<mpv_render_param, 2> parameters = {parameter(MPV_RENDER_PARAM_API_TYPE, api),
                                                  {MPV_RENDER_PARAM_INVALID, nullptr}};
    if (mpv_render_context_create(&m_context, handle, parameters.data()) < 0) {
        m_context = nullptr;
        return;
    }
    m_thread = std::thread([this] { run(); });
    mpv_render_context_set_update_callback(m_context, frame_is_due, this);
}

PictureOutput::~PictureOutput()
{
    if (!m_context)
        return;
    show(false);
    mpv_render_context_set_update_callback(m_context, nullptr, nullptr);
    {
        const std::lock_guard lock(m_wake_mutex);
        m_ending = true;
    }
    m_wake.notify_one();
    m_thread.join();
    mpv_render_context_free(m_context);
}

void PictureOutput::show(bool on)
{
    const std::lock_guard lock(m_plane_mutex);
    m_shown = on;
}

void PictureOutput::show_missed()
{
    {
        const std::lock_guard lock(m_plane_mutex);
        if (!m_shown || !std::exchange(m_missed, false))
            return;
    }
    redraw();
}

void PictureOutput::redraw()
{
    {
        const std::lock_guard lock(m_wake_mutex);
        m_redraw = true;
    }
    m_wake.notify_one();
}

void PictureOutput::set_colour(int red, int green, int blue)
{
    {
        const std::lock_guard lock(m_plane_mutex);
        m_colour.set(red, green, blue);
    }
    redraw();
}

void PictureOutput::frame_is_due(void* self)
{
    auto* const output = static_cast<PictureOutput*>(self);
    {
        const std::lock_guard lock(output->m_wake_mutex);
        output->m_frame_due = true;
    }
    output->m_wake.notify_one();
}

void PictureOutput::run()
{
    pthread_setname_np(pthread_self(), "engine picture");
    std::unique_lock lock(m_wake_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_frame_due || m_redraw || m_ending; });
        if (m_ending)
            return;
        const bool redraw = m_redraw;
        m_redraw = false;
        m_frame_due = false;
        lock.unlock();
        const bool due = (mpv_render_context_update(m_context) & MPV_RENDER_UPDATE_FRAME) != 0;
        if (due || redraw) {
            const std::lock_guard plane_lock(m_plane_mutex);
            m_missed = !m_shown && (due || m_missed);
            render(m_shown);
        }
        lock.lock();
    }
}

void PictureOutput::render(bool shown)
{
    // The library shows a frame when it is due, not before: nothing is left to wait for here.
    int wait_for_due_time = 0;
    const QSize size = shown ? VideoPlane::instance().pixel_size() : QSize();
    if (size.isEmpty()) {
        int skip = 1;
        std::array<mpv_render_param, 3> parameters = {
            parameter(MPV_RENDER_PARAM_SKIP_RENDERING, &skip),
            parameter(MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &wait_for_due_time),
            {MPV_RENDER_PARAM_INVALID, nullptr}};
        mpv_render_context_render(m_context, parameters.data());
        return;
    }
    QImage& picture = VideoPlane::instance().begin_frame(size);
    std::array<int, 2> pixels = {picture.width(), picture.height()};
    char format[] = "bgr0";
    auto stride = static_cast<size_t>(picture.bytesPerLine());
    std::array<mpv_render_param, 6> parameters = {parameter(MPV_RENDER_PARAM_SW_SIZE, pixels.data()),
                                                  parameter(MPV_RENDER_PARAM_SW_FORMAT, format),
                                                  parameter(MPV_RENDER_PARAM_SW_STRIDE, &stride),
                                                  parameter(MPV_RENDER_PARAM_SW_POINTER, picture.bits()),
                                                  parameter(MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &wait_for_due_time),
                                                  {MPV_RENDER_PARAM_INVALID, nullptr}};
    if (mpv_render_context_render(m_context, parameters.data()) < 0)
        return;
    m_colour.apply(picture);
    VideoPlane::instance().end_frame();
}
