#pragma once

/// A playing position or a length, in milliseconds.
using Time = long long;

/// What an engine operation answers and what an error report carries; 0 is success.
using RaskStatus = unsigned int;

/// The engine's own status values. A failure is any value but `ok`; the text shown to the viewer does not depend on it.
namespace rask
{
inline constexpr RaskStatus ok = 0;
inline constexpr RaskStatus no_such_file =
    1; ///< missing, unreadable, or not a file that can be read from any place (a directory, a pipe)
inline constexpr RaskStatus not_a_film = 2;    ///< not a format that can be read, or damaged beyond use
inline constexpr RaskStatus no_video = 3;      ///< readable, but without a picture
inline constexpr RaskStatus timed_out = 4;     ///< the limit of the operation passed
inline constexpr RaskStatus wrong_state = 5;   ///< no file open, or not prepared
inline constexpr RaskStatus out_of_range = 6;  ///< an argument the operation does not know, or a step past the end
inline constexpr RaskStatus not_supported = 7; ///< the machine or the file cannot do it
inline constexpr RaskStatus engine_failed = 8; ///< the playing library refused
} // namespace rask

/// What the engine is doing.
enum class PlayerState : int {
    Prepared = 2, ///< loaded, the first frame can be shown
    Playing = 4,
    Stopped = 6, ///< the end was reached
    Paused = 10,
};

/// Which stream a stream report is about.
enum class StreamType : int {
    Film = 0, ///< the stream whose end is the end of the file
};

/// What happened to a stream.
enum class StreamState : int {
    Started = 0, ///< playback began, or goes on after a seek
    Ended = 2,
};

/// The direction a seek is asked for. The engine goes to the target whichever is given.
enum class SeekMode : int { Forward = 3, Backward = 4 };

/// Argument of MediaPlayer::set_speed().
enum class SpeedCode : int { Up = 0, Normal = 1, Down = 2 };

/// Argument of MediaPlayer::set_aspect().
enum class AspectMode : int {
    Fill = 0, ///< the whole rectangle
    Keep = 1, ///< the film's shape, black beside it
};

/// Argument of MediaPlayer::select_stream().
enum class StreamKind : int { Audio = 2 };

/// Numbers of MediaPlayer::set_parameter().
enum class Parameter : int {
    Colour = 4, ///< three 32-bit values, red, green, blue, 0 to 100 each; 50 is neutral
};

/// Numbers of MediaPlayer::query().
enum class Query : int { Busy = 5 };

/// Numbers of MediaPlayer::set_option().
enum class Option : int { DigitalOutput = 1 };
