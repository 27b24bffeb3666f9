#pragma once

#include <chrono>
#include <optional>

/// Finds out whether the sound holds the playing library up.
///
/// The library opens its sound output on the thread that does all its work, and takes its clock from it. A sound server
/// that takes a call and never answers therefore stops everything, one that falls silent in the middle stops the
/// picture. Both are told from here by what the library answers, so that it can be replaced by one without sound.
///
/// No thread of its own; times are given, so that tests can move them.
class SoundWatch
{
public:
    using Clock = std::chrono::steady_clock;

    /// How long the library may owe an answer.
    static constexpr auto answer_limit = std::chrono::milliseconds(1500);
    /// Between two looks at a position that stands still.
    static constexpr auto look_interval = std::chrono::milliseconds(1000);
    /// How long films are played without sound after it was given up.
    static constexpr auto silence = std::chrono::seconds(60);

    enum class Trust {
        None,   ///< was given up a short while ago
        Unsure, ///< not heard yet, or given up long enough ago to try again
        Full,   ///< a film has run with it
    };

    /// What a film that is loaded now may expect of the sound.
    Trust trust(Clock::time_point now) const;
    /// A film moves on, with sound.
    void film_runs() { m_heard = true; }
    /// Films have to do without for a while. Forgets all that is owed.
    void give_up(Clock::time_point now);

    /// The library was asked for something that it answers at once if nothing holds it up.
    /// @param work processor time that the process has used
    void asked(Clock::time_point now, std::chrono::nanoseconds work);
    /// Any answer shows that nothing holds it up.
    void answered() { m_owed.reset(); }
    /// When is_held_up() wants to be asked; none while nothing is owed.
    std::optional<Clock::time_point> deadline() const;
    /// @return whether the answer is overdue while the process was idle: one that is busy decoding is given more time.
    bool is_held_up(Clock::time_point now, std::chrono::nanoseconds work);

    /// The position has changed, or there is a reason for it to stand still.
    void position_moved(Clock::time_point now);
    /// @return whether it has stood still long enough to look why, again and again.
    bool wants_look(Clock::time_point now);
    /// @param clock what the sound is at, in seconds of the film; none when there is no sound
    /// @param buffered up to where the film has been read, in seconds; none when unknown
    /// @return whether the sound stands still although there is more to play.
    bool stands_still(std::optional<double> clock, std::optional<double> buffered);

private:
    struct Owed {
        Clock::time_point until;
        std::chrono::nanoseconds work;
    };

    bool m_heard = false;
    std::optional<Clock::time_point> m_silent_until;
    std::optional<Owed> m_owed;
    std::optional<Clock::time_point> m_next_look;
    std::optional<double> m_clock; ///< at the last look
};
