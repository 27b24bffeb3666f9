#pragma once

#include "background_task.h"
#include "subtitle_reader.h"

#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <mutex>

/// The subtitle lists of one opened film: what lies beside it first, then what is inside it.
///
/// Lists never change once they are there and live as long as the store.
class SubtitleStore
{
public:
    static constexpr std::size_t most_tracks = most_subtitle_tracks;

    /// Calls a hook from any thread; removing it waits until it is not running any more.
    class Hook
    {
    public:
        void set(std::function<void()> hook);
        void call();

    private:
        std::recursive_mutex m_mutex; ///< guards m_hook, held while it runs
        std::function<void()> m_hook;
    };

    /// @param beside the tracks of the files beside the film
    /// @param inside how many text streams the film has
    SubtitleStore(std::vector<SubtitleTrack> beside, int inside, QString film);
    /// Stops reading.
    ~SubtitleStore();
    SubtitleStore(const SubtitleStore&) = delete;
    SubtitleStore& operator=(const SubtitleStore&) = delete;

    /// How many tracks there are when everything has been read.
    int count() const { return static_cast<int>(std::min(most_tracks, m_beside + static_cast<std::size_t>(m_inside))); }

    /// Starts reading what is inside the film, once; @p ready is called when that has come to its end.
    void read_inside(std::shared_ptr<Hook> ready);

    /// Gives up what has not been read yet; the hook is not called any more. The lists stay.
    void stop_reading() { m_shared->cancelled = true; }

    /// @return null while, or when, there is no such track
    const std::vector<Subtitle>* lines(unsigned track) const;

private:
    /// What the reading thread shares with the store; it may outlive it.
    struct Shared {
        std::atomic<bool> cancelled = false;
        std::mutex mutex;
        std::array<std::vector<Subtitle>, most_tracks>
            tracks; ///< guarded by mutex; a list that is not empty never changes
    };

    QString m_film;
    std::size_t m_beside = 0;
    int m_inside = 0;
    bool m_reading = false;
    std::shared_ptr<Shared> m_shared;
    BackgroundTask m_reader;
};
