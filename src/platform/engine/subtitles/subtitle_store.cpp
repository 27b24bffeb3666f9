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
    for (std::size_t track = 0; track < added.size() && first + track < most_tracks; ++track)
        tracks[first + track] = std::move(added[track].lines);
}

SubtitleStore::SubtitleStore(Sources sources, std::shared_ptr<Hook> ready)
    : m_inside(static_cast<std::size_t>(sources.inside))
    , m_shared(std::make_shared<Shared>())
    , m_reader([shared = m_shared, sources = std::move(sources), ready = std::move(ready)] {
        read(sources, *shared, *ready);
    })
{
}

SubtitleStore::~SubtitleStore()
{
    stop_reading();
    constexpr std::chrono::milliseconds limit(300);
    m_reader.wait_for(limit);
}

void SubtitleStore::wait_for_beside(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_shared->mutex);
    m_shared->changed.wait_for(lock, limit, [this] { return m_shared->beside.has_value(); });
    m_shared->beside_is_late = !m_shared->beside;
}

int SubtitleStore::count() const
{
    const std::lock_guard lock(m_shared->mutex);
    return static_cast<int>(std::min(most_tracks, m_shared->beside.value_or(1) + m_inside));
}

void SubtitleStore::read_rest()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->rest_is_wanted = true;
    m_shared->changed.notify_all();
}

void SubtitleStore::stop_reading()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->cancelled = true;
    m_shared->changed.notify_all();
}

void SubtitleStore::read(const Sources& sources, Shared& shared, Hook& ready)
{
    std::vector<SubtitleTrack> beside = read_subtitle_files(sources.film, sources.frame_rate, shared.cancelled);
    const std::size_t inside_from = beside.size();
    const bool has_more = sources.inside > 0 && inside_from < most_tracks;
    {
        std::unique_lock lock(shared.mutex);
        if (shared.cancelled)
            return;
        shared.put(0, std::move(beside));
        shared.beside = inside_from;
        shared.changed.notify_all();
        if (!has_more && !shared.beside_is_late)
            return;
        shared.changed.wait(lock, [&shared] { return shared.rest_is_wanted || shared.cancelled; });
        if (shared.cancelled)
            return;
    }
    if (shared.beside_is_late) // nobody changes it any more
        ready.call();
    if (!has_more)
        return;
    std::vector<SubtitleTrack> inside = read_embedded_subtitles(sources.film, shared.cancelled);
    {
        const std::lock_guard lock(shared.mutex);
        if (shared.cancelled)
            return;
        shared.put(inside_from, std::move(inside));
    }
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
