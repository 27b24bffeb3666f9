#include "library_faults.h"

#include <mpv/client.h>

#include <dlfcn.h>

#include <atomic>
#include <cstring>
#include <thread>

namespace
{

std::atomic<bool> refuses_to_start = false;
std::atomic<bool> breaks_off = false;
std::atomic<std::chrono::milliseconds> filter_delay = {};
std::atomic<int> positions_owed = 0; ///< by the newest copy

bool is_position(const char* property)
{
    return std::strcmp(property, "time-pos") == 0;
}

/// The library's own function of that name.
template<typename Function> Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These take the place of the library's.

mpv_handle* mpv_create()
{
    static auto* const next = original<decltype(mpv_create)>("mpv_create");
    positions_owed = 0;
    return refuses_to_start ? nullptr : next();
}

int mpv_get_property_async(mpv_handle* library, std::uint64_t id, const char* property, mpv_format format)
{
    static auto* const next = original<decltype(mpv_get_property_async)>("mpv_get_property_async");
    if (is_position(property))
        ++positions_owed;
    return next(library, id, property, format);
}

mpv_event* mpv_wait_event(mpv_handle* library, double timeout)
{
    static auto* const next = original<decltype(mpv_wait_event)>("mpv_wait_event");
    static mpv_event_end_file end = {};
    end.reason = MPV_END_FILE_REASON_ERROR;
    end.error = MPV_ERROR_NOTHING_TO_PLAY;
    static mpv_event end_of_film = {};
    end_of_film.event_id = MPV_EVENT_END_FILE;
    end_of_film.data = &end;
    if (breaks_off.exchange(false))
        return &end_of_film;
    mpv_event* const event = next(library, timeout);
    if (event->event_id == MPV_EVENT_START_FILE)
        end.playlist_entry_id = static_cast<const mpv_event_start_file*>(event->data)->playlist_entry_id;
    if (event->event_id == MPV_EVENT_GET_PROPERTY_REPLY &&
        is_position(static_cast<const mpv_event_property*>(event->data)->name))
        --positions_owed;
    return event;
}

extern "C" int avfilter_graph_config(void* graph, void* log)
{
    static auto* const next = original<decltype(avfilter_graph_config)>("avfilter_graph_config");
    std::this_thread::sleep_for(filter_delay.exchange({}));
    return next(graph, log);
}

namespace library_faults
{

void refuse_to_start(bool refuse)
{
    refuses_to_start = refuse;
}

void break_off()
{
    breaks_off = true;
}

void delay_filter(std::chrono::milliseconds delay)
{
    filter_delay = delay;
}

bool owes_position()
{
    return positions_owed > 0;
}

} // namespace library_faults
