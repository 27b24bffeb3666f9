#pragma once

#include "media_types.h"

#include <QtCore/QtGlobal>

/// The requests and reports that reach the main window as custom events: their numbers and what travels with them.
namespace player_event
{

/// Numbers of the custom events; 1000 to 1003 are the state machine's own.
enum Number : int {
    play = 2000,              ///< play or resume; a LoadNumber ends the wait for others, an EngineReport a scan
    pause = 2001,             ///< hold the picture; carries a ForNavigation, or nothing for the viewer
    stop = 2002,              ///< stop, the file stays chosen; carries a KeepPlace, or nothing for the beginning
    seek = 2003,              ///< carries a SeekRequest
    open_browser = 2004,      ///< show the file manager
    open_settings = 2005,     ///< show the settings
    settings_closed = 2006,   ///< the settings have been closed
    close = 2007,             ///< end the program
    flush = 2008,             ///< end the program: the system asks for it
    add_bookmark = 2009,      ///< bookmark the current position
    bookmark_list = 2010,     ///< taken by the button's name before it could be posted
    repeat_ab = 2011,         ///< set A, set B, release both
    speed_down = 2012,        ///< one step slower
    speed_normal = 2013,      ///< back to normal speed
    speed_up = 2014,          ///< one step faster
    scan_forward = 2015,      ///< walk towards the end
    scan_back = 2016,         ///< walk towards the beginning
    mute = 2017,              ///< sound off and on again
    load = 2100,              ///< open a playlist entry; carries an EntryRequest, or nothing for the stored one
    load_and_play = 2101,     ///< the same, and play it
    close_file = 2102,        ///< close the chosen file
    subtitle_redraw = 2103,   ///< the subtitle's text has changed
    time_display = 2104,      ///< another second is to be shown
    start_loaded = 2105,      ///< everybody else is silent; carries a LoadNumber
    enter_full_screen = 2106, ///< hide the controls
    leave_full_screen = 2107, ///< show the controls
    refresh_buttons = 2200,   ///< the settings' choice of control bar buttons has changed
    audio_track = 2201,       ///< another audio track was chosen
    replay = 2202,            ///< play the same file anew from where it is
    reload_subtitles = 2203, ///< the subtitles' list or look has changed, or (an EngineReport) the engine has read more
    reset_display = 2204,    ///< place the picture anew
    picture_colour = 2205,   ///< red, green or blue has changed
    switch_screen = 2300,    ///< LCD to TV or back
    unload = 2302,           ///< give the file up for the time being
    reload = 2303,           ///< take up what was given up
    engine_error = 3000,     ///< carries an EngineReport or a Failure
    engine_playing = 3002,   ///< carries an EngineReport, as the next five do
    engine_paused = 3003,    ///< playback is held
    engine_stopped = 3004,   ///< playback has stopped
    end_of_stream = 3005,    ///< the end of the film was reached
    stream_started = 3006,   ///< playback began, or goes on after a seek
    engine_prepared = 3007,  ///< the first frame can be shown
    wait_for_players = 3009, ///< ask again whether the other players are silent; carries a LoadNumber
    taken_by_name = 3010,    ///< of buttons taken by name; "pagedown" without seeking posts it, nobody acts on it
};

/// The value of an event 2001 that the navigation program asked for: its own wish to go on takes it back.
struct ForNavigation {
};

/// The value of an event 2002 after which the film is to go on from where it was stopped.
struct KeepPlace {
};

/// Where to go: the value of event 2003.
struct SeekRequest {
    SeekMode mode = SeekMode::Forward;
    quint32 reserved = 0;  ///< always 0
    Time target_ms = 0;    ///< as computed; whoever acts on it clamps it to the film
    unsigned int file = 0; ///< number of the open file when the engine's thread asked, 0 when the viewer did
};

/// A playlist entry and where to start in it: the value of events 2100 and 2101.
struct EntryRequest {
    int index = -1; ///< row, -1 for none
    unsigned int position_ms = 0;
};

/// Which wait for the other players an internal step belongs to; it is dropped when that wait is over, because the film
/// was started or left.
struct LoadNumber {
    unsigned int number = 0;
};

/// Which open file the engine's report is about; it is dropped when that file is no longer the open one.
struct EngineReport {
    unsigned int file = 0;
};

/// Which chosen file an engine call of the chart failed on; dropped when another one has been chosen since.
struct Failure {
    unsigned int chosen_file = 0;
};

} // namespace player_event
