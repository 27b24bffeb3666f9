#include "subtitle_store.h"

#include <algorithm>
#include <utility>

void SubtitleStore::Hook::set(std::function<void()> hook)
{
    const std::lock_guard lock(m_mutex);
    m_hook = std::move(hook);
}

void SubtitleStore::Hook::call()
{
    const std::lock_guard lock(m_mutex);
    if (const std::function<void()> hook = m_hook)
        hook();
}

SubtitleStore::SubtitleStore(std::vector<SubtitleTrack> beside, int inside, QString film)
    : m_film(std::move(film))
    , m_beside(std::min(beside.size(), most_tracks))
    , m_inside(inside)
    , m_shared(std::make_shared<Shared>())
{
    for (std::size_t track = 0; track < m_beside; ++track)
        m_shared->tracks[track] = std::move(beside[track].lines);
}

SubtitleStore::~SubtitleStore()
{
    m_shared->cancelled = true;
    constexpr std::chrono::milliseconds limit(300);
    m_reader.wait_for(limit);
}

void SubtitleStore::read_inside(std::shared_ptr<Hook> ready)
{
    if (m_reading || m_inside == 0 || m_beside == most_tracks)
        return;
    m_reading = true;
    m_reader = BackgroundTask([shared = m_shared, film = m_film, first = m_beside, ready = std::move(ready)] {
        std::vector<SubtitleTrack> inside = read_embedded_subtitles(film, shared->cancelled);
        if (shared->cancelled)
            return;
        {
            const std::lock_guard lock(shared->mutex);
            for (std::size_t track = 0; track < inside.size() && first + track < most_tracks; ++track)
                shared->tracks[first + track] = std::move(inside[track].lines);
        }
        ready->call();
    });
}

const std::vector<Subtitle>* SubtitleStore::lines(unsigned track) const
{
    if (track >= most_tracks)
        return nullptr;
    const std::lock_guard lock(m_shared->mutex);
    const std::vector<Subtitle>& found = m_shared->tracks[track];
    return found.empty() ? nullptr : &found;
}
