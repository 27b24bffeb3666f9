#pragma once

#include "background_task.h"
#include "subtitle_reader.h"

#include <QString>

#include <algorithm>
#include <array>
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
        /// The tracks of the files beside the film; nothing when those would have taken too long to read by now.
        std::optional<std::vector<SubtitleTrack>> beside;
    };

    explicit SubtitleStore(Sources sources);
    /// Stops reading.
    ~SubtitleStore();
    SubtitleStore(const SubtitleStore&) = delete;
    SubtitleStore& operator=(const SubtitleStore&) = delete;

    /// How many tracks there are when everything has been read. What is still to be read beside the film counts as one.
    int count() const { return m_count; }

    /// Starts reading what has not been read yet, once; @p ready is called whenever there is more to hand over.
    void read_rest(std::shared_ptr<Hook> ready);

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

        /// Puts tracks in the places from @p first on, as far as there are any.
        void put(std::size_t first, std::vector<SubtitleTrack> added);
    };

    /// Reads all that @p sources lack and fills @p shared; on the reading thread.
    static void read(const Sources& sources, Shared& shared, Hook& ready);

    Sources m_sources; ///< without the lists themselves
    int m_count = 0;
    bool m_reading = false;
    std::shared_ptr<Shared> m_shared;
    BackgroundTask m_reader;
};
