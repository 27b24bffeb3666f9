#pragma once

#include "background_task.h"
#include "subtitle_reader.h"

#include <QString>

#include <array>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

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

    /// Where a film's subtitles are.
    struct Sources {
        QString film;
        double frame_rate = 0; ///< for files that count frames; 0 when unknown
        int inside = 0;        ///< how many text streams the film has
    };

    /// Begins to read the files beside the film.
    /// @param ready called when more has been read than wait_for_beside() waited for, but not before read_rest()
    SubtitleStore(Sources sources, std::shared_ptr<Hook> ready);
    /// Stops reading.
    ~SubtitleStore();
    SubtitleStore(const SubtitleStore&) = delete;
    SubtitleStore& operator=(const SubtitleStore&) = delete;

    /// Waits until the files beside the film have been read, which goes on when @p limit has passed.
    void wait_for_beside(std::chrono::milliseconds limit);

    /// How many tracks there are when everything has been read. What is still to be read beside the film counts as one.
    int count() const;

    /// What has not been read yet is read from now on.
    void read_rest();

    /// Gives up what has not been read yet; the hook is not called any more. The lists stay.
    void stop_reading();

    /// @return null while, or when, there is no such track
    const std::vector<Subtitle>* lines(unsigned track) const;

private:
    /// What the reading thread shares with the store; it may outlive it.
    struct Shared {
        std::atomic<bool> cancelled = false;
        std::mutex mutex; ///< guards what follows
        std::condition_variable changed;
        std::optional<std::size_t> beside; ///< how many tracks there are beside the film; nothing before they are read
        bool beside_is_late = false;       ///< nobody waits for them any more
        bool rest_is_wanted = false;
        std::array<std::vector<Subtitle>, most_tracks> tracks; ///< a list that is not empty never changes

        /// Puts tracks in the places from @p first on, as far as there are any. The mutex must be held.
        void put(std::size_t first, std::vector<SubtitleTrack> added);
    };

    /// Reads all that there is and fills @p shared; on the reading thread.
    static void read(const Sources& sources, Shared& shared, Hook& ready);

    const std::size_t m_inside;
    const std::shared_ptr<Shared> m_shared;
    BackgroundTask m_reader;
};
