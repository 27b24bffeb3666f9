#pragma once

#include "background_task.h"
#include "engine_core.h"
#include "media_callback.h"
#include "media_file.h"
#include "sound_watch.h"
#include "speed_steps.h"

#include <QByteArray>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

/// Plays one film: the engine's thread, what state playback is in, and which report follows what.
///
/// Everything but the few marked members belongs to the engine's thread, which runs the library's events and the
/// operations in the order of their arrival and makes all reports. An operation waits for it with a limit; nothing on
/// that thread waits for the library, so the limit only passes when a callback does not return.
class Playback : public std::enable_shared_from_this<Playback>
{
public:
    /// Starts the engine's thread. @param callback may be null
    static std::shared_ptr<Playback> start(MediaCallback* callback);

    /// Ends the thread and the library, within two seconds: what does not end by then is left behind. No report comes
    /// afterwards.
    void shut_down();

    /// Waits until the library runs.
    RaskStatus initialize();
    /// Loads a film in the place of any other and waits until its first frame is there.
    /// @param film one with a picture; its path is absolute
    RaskStatus load(const MediaFile& film);
    /// Lets go of the film. No report comes afterwards.
    RaskStatus stop();
    RaskStatus play();
    RaskStatus pause();
    RaskStatus seek(Time target);
    RaskStatus scan(int rate, bool forward);
    RaskStatus set_speed(int code);
    RaskStatus select_sound(int track);
    RaskStatus set_keep_aspect(bool keep);
    RaskStatus set_colour(const std::array<int, 3>& colour);
    RaskStatus set_digital_output(bool on);

    /// Any thread; these do not wait.
    void set_volume(double percent);
    void redraw();
    bool is_busy() const { return m_busy; }
    int speed() const { return m_speed; }

private:
    using Clock = std::chrono::steady_clock;
    using Deadline = std::optional<Clock::time_point>;

    enum class Phase {
        Idle,    ///< no film
        Loading, ///< load() waits
        Ready,   ///< rests on its first frame (or where a seek led), not yet played
        Playing,
        Paused,
        Scanning,
        Ended,  ///< at the end, both reports made
        Broken, ///< the library gave up; the error is reported
    };

    enum class SeekStage {
        None,
        Sent,     ///< handed to the library
        Accepted, ///< the library will do it
        Running,  ///< the library is at it
    };

    /// Where an operation waits for the engine's thread.
    class Answer
    {
    public:
        void give(RaskStatus status);
        std::optional<RaskStatus> wait_for(std::chrono::milliseconds limit);

    private:
        std::mutex m_mutex;
        std::condition_variable m_given;
        std::optional<RaskStatus> m_status; ///< guarded by m_mutex
    };

    explicit Playback(MediaCallback* callback);

    RaskStatus ask(std::function<RaskStatus()> operation);
    void post(std::function<void()> task);

    void run();
    bool run_tasks();
    double seconds_to_deadline() const;
    void check_deadlines();

    bool ensure_core();
    void abandon_core(std::chrono::milliseconds patience);
    void replace_core();
    void go_on_without_sound();
    void apply_settings();

    void handle(const mpv_event& event);
    void on_command_reply(const mpv_event& event);
    void on_number(const mpv_event& event);
    void on_property(const mpv_event_property& property, std::uint64_t id);
    void on_end_file(const mpv_event_end_file& end);
    void on_restart();
    void follow_position();
    void ask_position();
    Time expected_position() const;
    void move_to(Time position);
    void on_position(std::optional<Time> position);
    void on_sound_clock(std::optional<double> buffered);

    void do_load(const MediaFile& film, std::shared_ptr<Answer> answer);
    void send_load(Time start = 0);
    void choose_scaler();
    void finish_load(RaskStatus status);
    void fail_load();
    void break_off(RaskStatus status);
    RaskStatus do_stop();
    RaskStatus do_play();
    RaskStatus do_pause();
    RaskStatus do_seek(Time target);
    RaskStatus do_scan(int rate, bool forward);
    RaskStatus do_set_speed(int code);

    bool is_loaded() const { return m_phase >= Phase::Ready && m_phase <= Phase::Ended; }
    void enter(Phase phase);
    void update_busy();
    void set_paused(bool paused);
    void start_seek(Time target, bool exact, bool reported);
    void finish_seek(Time position);
    /// Neither reports nor resumes. enter() has to follow.
    void forget_seek();
    void reach_end();
    void scan_step();
    void leave_scan();
    Time scan_position() const;

    bool may_report() const { return m_callback && m_epoch == m_asked_epoch; }
    void report_state(PlayerState state);
    void report_time(Time position);
    void report_error(RaskStatus status);
    void report_stream(StreamState state);

    MediaCallback* const m_callback;
    BackgroundTask m_thread; ///< the starting thread's
    std::atomic<std::thread::id> m_thread_id;
    std::atomic<unsigned> m_asked_epoch =
        0; ///< grows with every load() and stop(), before the engine's thread hears of them
    std::atomic<bool> m_busy = false;
    std::atomic<int> m_speed = speed_steps[normal_speed_step];

    std::mutex m_tasks_mutex;               ///< guards the four below
    std::condition_variable m_task_arrived; ///< while there is no library to wake
    std::deque<std::function<void()>> m_tasks;
    bool m_ending = false;
    mpv_handle* m_wakeable = nullptr; ///< the running library

    // The engine's thread's own.
    std::unique_ptr<EngineCore> m_core;
    unsigned m_epoch = 0; ///< of the film; reports of an earlier one than was asked for last are not made
    Phase m_phase = Phase::Idle;
    MediaFile m_film;
    std::uint64_t m_last_id = 0; ///< ids of what the library was asked
    Time m_position = 0;
    Deadline m_position_tick;      ///< while playing, and while a film that is being loaded waits for its first frame
    bool m_position_asked = false; ///< the library owes an answer
    Time m_told_position = 0;      ///< the newest answer
    Clock::time_point m_told_at;
    int m_steady_answers = 0; ///< how many have been as expected

    SoundWatch m_sound;
    std::optional<double> m_sound_clock; ///< the newest answer
    int m_sound_track = 0;               ///< chosen for this film; 0 when the library chooses

    std::shared_ptr<Answer> m_load_answer;
    std::uint64_t m_load_id = 0;
    std::int64_t m_entry = -1;  ///< the library's number of the film; -1 until it has told
    std::int64_t m_current = 0; ///< the number of what the library is at
    Deadline m_start_deadline;  ///< by then the library must have begun with the film
    Deadline m_load_deadline;

    bool m_started = false; ///< play() has been called since the film was loaded
    bool m_at_end = false;  ///< the library says that nothing is left
    SeekStage m_seek_stage = SeekStage::None;
    std::uint64_t m_seek_id = 0;
    int m_seek_reports = 0;      ///< how many "started" reports are owed
    bool m_seek_resumes = false; ///< playing goes on when the seek has ended
    Time m_seek_target = 0;
    Deadline m_seek_deadline;

    bool m_scan_forward = false;
    int m_scan_rate = 0;
    bool m_scan_reached_end = false;
    Time m_scan_origin = 0;
    Clock::time_point m_scan_begin;
    Clock::time_point m_scan_last_seek;
    Deadline m_scan_tick; ///< none when the scan rests at the beginning

    std::size_t m_speed_step = normal_speed_step;
    double m_volume = 100.0;
    bool m_keep_aspect = true;
    bool m_digital_output = false;
    std::array<int, 3> m_colour = {50, 50, 50};
};
