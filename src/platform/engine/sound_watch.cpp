#include "sound_watch.h"

#include <cmath>

namespace
{

/// A process that has used less than this part of the time was not decoding.
constexpr int idle_part = 20;
/// Sound that has moved by less stands still.
constexpr double least_move_s = 0.02;
/// With less than this left to play it is the disk that is waited for.
constexpr double least_buffered_s = 0.5;

} // namespace

SoundWatch::Trust SoundWatch::trust(Clock::time_point now) const
{
    if (m_silent_until && now < *m_silent_until)
        return Trust::None;
    return m_heard ? Trust::Full : Trust::Unsure;
}

void SoundWatch::give_up(Clock::time_point now)
{
    m_heard = false;
    m_silent_until = now + silence;
    m_owed.reset();
    m_next_look.reset();
}

void SoundWatch::asked(Clock::time_point now, std::chrono::nanoseconds work)
{
    if (!m_owed)
        m_owed = {now + answer_limit, work};
}

std::optional<SoundWatch::Clock::time_point> SoundWatch::deadline() const
{
    return m_owed ? std::optional(m_owed->until) : std::nullopt;
}

bool SoundWatch::is_held_up(Clock::time_point now, std::chrono::nanoseconds work)
{
    if (!m_owed || now < m_owed->until)
        return false;
    const auto elapsed = now - (m_owed->until - answer_limit);
    if ((work - m_owed->work) * idle_part < elapsed)
        return true;
    m_owed = {now + answer_limit, work};
    return false;
}

void SoundWatch::position_moved(Clock::time_point now)
{
    m_next_look = now + look_interval;
    m_clock.reset();
}

bool SoundWatch::wants_look(Clock::time_point now)
{
    const bool due = m_next_look && now >= *m_next_look;
    if (due || !m_next_look)
        m_next_look = now + look_interval;
    return due;
}

bool SoundWatch::stands_still(std::optional<double> clock, std::optional<double> buffered)
{
    const std::optional<double> before = std::exchange(m_clock, clock);
    return clock && before && std::abs(*clock - *before) < least_move_s && buffered &&
           *buffered > *clock + least_buffered_s;
}
