#pragma once

#include "media_types.h"

/// What the engine reports. All four are called on one thread of the engine's own, never two at a time.
///
/// An implementation stores, posts and returns: it must neither wait for the thread that calls the engine's operations
/// nor call them itself. Which report follows which operation stands in docs/engine.md.
class MediaCallback
{
public:
    virtual ~MediaCallback() = default;

    /// The state of playback has changed. @return 1
    virtual int notify_state_change(PlayerState state) = 0;
    /// The playing position, in milliseconds; how often stands in docs/engine.md. @return 1
    virtual int notify_time_update(long long position) = 0;
    /// Playback failed with this status. Reported at most once for each opened file. @return 1
    virtual int notify_error(unsigned int status) = 0;
    /// A stream has started or ended. @return 1
    virtual int notify_stream_change(StreamType type, StreamState state) = 0;
};
