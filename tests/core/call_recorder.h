#pragma once

/// Writes what the player asks of its own panels, lists and state machine into the scripted engine's log, so that a
/// test can compare the whole order of calls.
///
/// It listens at the seams between the program's files: the linker leads the calls through call_recorder.cpp (see
/// CALL_RECORDER_SYMBOLS in CMakeLists.txt), and the two lists are made as ones that write their operations down. The
/// player does what it always does. Only calls on the GUI thread are written, and of a call that leads to others only
/// the outermost; what it does to engine, planes and other programs is in the log as ever.
///
/// Lines: "bar hideButton pause", "time_bar set_slidervalue 4", "playlist save_now_playing 4500", "bookmarks save",
/// "settings set_playing 1", "window display_information [ PLAY ]", "show FILEMANAGER", "socket STOP", "post 2101 1
/// 9000", "-> play_state", "wake", "quit".
namespace call_recorder
{

/// The seams are led through while one lives.
class Recording
{
public:
    Recording();
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
};

/// The recorded playlist says that its cursor is nowhere while one lives, as if its list box had lost it.
class WithoutCursor
{
public:
    WithoutCursor();
    ~WithoutCursor();
    WithoutCursor(const WithoutCursor&) = delete;
    WithoutCursor& operator=(const WithoutCursor&) = delete;
};

} // namespace call_recorder
