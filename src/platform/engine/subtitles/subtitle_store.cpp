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

void SubtitleStore::Shared::put(std::size_t first, std::vector<SubtitleTrack> added)
{
    const std::lock_guard lock(mutex);
    for (std::size_t track = 0; track < added.size() && first + track < most_tracks; ++track)
        tracks[first + track] = std::move(added[track].lines);
}

SubtitleStore::SubtitleStore(Sources sources) : m_sources(std::move(sources)), m_shared(std::make_shared<Shared>())
{
    const std::size_t beside = m_sources.beside ? m_sources.beside->size() : 1;
    m_count = static_cast<int>(std::min(most_tracks, beside + static_cast<std::size_t>(m_sources.inside)));
    if (m_sources.beside)
        m_shared->put(0, std::exchange(*m_sources.beside, std::vector<SubtitleTrack>(beside)));
}

SubtitleStore::~SubtitleStore()
{
    m_shared->cancelled = true;
    constexpr std::chrono::milliseconds limit(300);
    m_reader.wait_for(limit);
}

void SubtitleStore::read_rest(std::shared_ptr<Hook> ready)
{
    const bool is_complete = m_sources.beside && (m_sources.inside == 0 || m_sources.beside->size() >= most_tracks);
    if (m_reading || is_complete)
        return;
    m_reading = true;
    m_reader = BackgroundTask(
        [shared = m_shared, sources = m_sources, ready = std::move(ready)] { read(sources, *shared, *ready); });
}

void SubtitleStore::read(const Sources& sources, Shared& shared, Hook& ready)
{
    std::size_t inside_from = sources.beside ? sources.beside->size() : 0;
    if (!sources.beside) {
        std::vector<SubtitleTrack> beside = read_subtitle_files(sources.film, sources.frame_rate, shared.cancelled);
        if (shared.cancelled)
            return;
        inside_from = beside.size();
        shared.put(0, std::move(beside));
        ready.call();
    }
    if (sources.inside == 0 || inside_from >= most_tracks)
        return;
    std::vector<SubtitleTrack> inside = read_embedded_subtitles(sources.film, shared.cancelled);
    if (shared.cancelled)
        return;
    shared.put(inside_from, std::move(inside));
    ready.call();
}

const std::vector<Subtitle>* SubtitleStore::lines(unsigned track) const
{
    if (track >= most_tracks)
        return nullptr;
    const std::lock_guard lock(m_shared->mutex);
    const std::vector<Subtitle>& found = m_shared->tracks[track];
    return found.empty() ? nullptr : &found;
}
