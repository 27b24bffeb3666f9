#pragma once

#include "media_callback.h"
#include "report_thread.h"
#include "script.h"
#include "speed_steps.h"

#include <functional>
#include <mutex>
#include <vector>

/// One player's film as the scripted engine imagines it: what state it is in and which reports that leads to.
class ScriptedFilm
{
public:
    explicit ScriptedFilm(MediaCallback* callback);
    ~ScriptedFilm();
    ScriptedFilm(const ScriptedFilm&) = delete;
    ScriptedFilm& operator=(const ScriptedFilm&) = delete;

    /// Calls @p use with the newest living film, if there is one, and keeps it alive meanwhile.
    static void with_newest(const std::function<void(ScriptedFilm&)>& use);
    static int count();

    RaskStatus open(const QString& file);
    RaskStatus prepare(const QString& file);
    void close();
    void release();
    RaskStatus play();
    RaskStatus pause();
    RaskStatus seek(Time target);
    RaskStatus scan(int rate, bool forward);
    RaskStatus set_speed(int code);
    RaskStatus select_stream(int kind, int track) const;
    bool is_open() const;
    bool is_busy() const;
    int speed() const;
    const std::vector<Subtitle>* subtitles(unsigned track);
    void set_subtitles_ready_hook(std::function<void()> hook);

    void run_to(Time position);
    void announce_subtitles();
    /// Makes a report whatever the script says about automatic ones.
    void report(std::function<void(MediaCallback&)> what, bool on_this_thread);

private:
    enum class Phase { Empty, Open, Prepared, Playing, Paused, ScanningBackward, ScanningForward, Ended };

    bool loaded() const { return m_phase != Phase::Empty && m_phase != Phase::Open; }
    bool scanning() const { return m_phase == Phase::ScanningBackward || m_phase == Phase::ScanningForward; }
    void follow_up(std::function<void(MediaCallback&)> what);
    void report_state(PlayerState state);
    void report_time(Time position);
    void report_stream(StreamState state);
    void report_end();

    mutable std::mutex m_mutex; ///< guards all below but the reports
    MediaCallback* m_callback;
    Phase m_phase = Phase::Empty;
    QString m_file;
    Time m_position = 0;
    bool m_started = false;
    bool m_scan_reached_end = false;
    std::size_t m_speed_step = normal_speed_step;
    std::function<void()> m_subtitles_ready;
    std::vector<Script::Lines> m_handed_over;
    ReportThread m_reports;
};
