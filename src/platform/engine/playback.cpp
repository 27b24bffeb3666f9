#include "playback.h"

#include "picture_size.h"
#include "video_plane.h"

#include <QDir>

#include <pthread.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <utility>

using namespace std::chrono_literals;

namespace
{

/// How long an operation waits for the engine's thread. Only a callback that does not return makes it wait at all.
constexpr auto operation_limit = 1000ms;
constexpr auto load_limit = 10000ms;
/// A library that has not begun with a film by then is stuck in the one before.
constexpr auto start_limit = 700ms;
constexpr auto seek_limit = 5000ms;
/// Between accepting a seek and beginning it. The library silently skips one that the film does not allow.
constexpr auto seek_start_limit = 1000ms;
/// How long the end of the library is waited for before it is left to end by itself.
constexpr auto end_limit = 800ms;
constexpr auto shut_down_limit = 2000ms;

constexpr auto position_interval = 50ms;
/// Once the film runs steadily the library, whose threads every question wakes, is asked only this often; the positions
/// in between are worked out.
constexpr auto question_interval = 250ms;
constexpr int steady_after = 4;
/// The library tells the time of the newest frame: answers vary by the length of one.
constexpr Time steady_within = 70;

constexpr auto scan_report_interval = 100ms;
constexpr auto scan_seek_interval = 300ms;

/// Films without an index are read from this much before the place that is sought, or the next key frame would be met.
constexpr double seek_margin_s = 2.0;

/// Below this a round trip to the graphics memory costs more than decoding.
constexpr int hardware_height = 720;

/// What the library's answers are known by; operations count on from the last.
enum FixedId : std::uint64_t { end_id = 1, position_id = 2, sound_clock_id = 3, buffered_id = 4, first_free_id = 16 };

/// What turns the picture. The library's own rotation is off: its software renderer takes a turned size for the
/// picture's and ends the process.
QByteArray turning_filter(int degrees)
{
    switch (degrees) {
    case 90:
        return "lavfi=[transpose=clock]";
    case 180:
        return "lavfi=[hflip,vflip]";
    case 270:
        return "lavfi=[transpose=cclock]";
    default:
        return {};
    }
}

QByteArray picture_filters(const MediaFile& film)
{
    QByteArrayList filters;
    // Left to itself the library turns a palette into a kind of YUV that its renderer takes for another.
    if (film.has_palette)
        filters += "format=bgr0";
    if (const QByteArray turning = turning_filter(film.rotation); !turning.isEmpty())
        filters += turning;
    // One of the scalers would convert between kinds of primaries and brightness, the other would not.
    filters += "format=primaries=bt.709:gamma=bt.1886";
    return filters.join(',');
}

double to_seconds(Time position)
{
    return static_cast<double>(position) / 1000.0;
}
Time to_time(double seconds)
{
    return std::llround(seconds * 1000.0);
}

std::chrono::nanoseconds processor_time()
{
    timespec used = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

} // namespace

void Playback::Answer::give(RaskStatus status)
{
    const std::lock_guard lock(m_mutex);
    m_status = status;
    m_given.notify_all();
}

std::optional<RaskStatus> Playback::Answer::wait_for(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    m_given.wait_for(lock, limit, [this] { return m_status.has_value(); });
    return m_status;
}

Playback::Playback(MediaCallback* callback) : m_callback(callback), m_last_id(first_free_id) {}

std::shared_ptr<Playback> Playback::start(MediaCallback* callback)
{
    const std::shared_ptr<Playback> playback(new Playback(callback));
    playback->m_thread = BackgroundTask([playback] { playback->run(); });
    return playback;
}

void Playback::shut_down()
{
    ++m_asked_epoch;
    post([this] {
        do_stop();
        const std::lock_guard lock(m_tasks_mutex);
        m_ending = true;
    });
    m_thread.wait_for(shut_down_limit);
    m_thread = {};
}

RaskStatus Playback::ask(std::function<RaskStatus()> operation)
{
    if (std::this_thread::get_id() == m_thread_id)
        return operation();
    const auto answer = std::make_shared<Answer>();
    post([answer, operation = std::move(operation)] { answer->give(operation()); });
    return answer->wait_for(operation_limit).value_or(rask::timed_out);
}

void Playback::post(std::function<void()> task)
{
    const std::lock_guard lock(m_tasks_mutex);
    m_tasks.push_back(std::move(task));
    if (m_wakeable)
        mpv_wakeup(m_wakeable);
    else
        m_task_arrived.notify_one();
}

RaskStatus Playback::initialize()
{
    return ask([this] { return ensure_core() ? rask::ok : rask::engine_failed; });
}

RaskStatus Playback::load(const MediaFile& film)
{
    const auto answer = std::make_shared<Answer>();
    post([this, film, answer, epoch = ++m_asked_epoch] {
        m_epoch = epoch;
        do_load(film, answer);
    });
    return answer->wait_for(load_limit + operation_limit).value_or(rask::timed_out);
}

RaskStatus Playback::stop()
{
    ++m_asked_epoch;
    return ask([this] { return do_stop(); });
}

RaskStatus Playback::play()
{
    return ask([this] { return do_play(); });
}

RaskStatus Playback::pause()
{
    return ask([this] { return do_pause(); });
}

RaskStatus Playback::seek(Time target)
{
    return ask([this, target] { return do_seek(target); });
}

RaskStatus Playback::scan(int rate, bool forward)
{
    return ask([this, rate, forward] { return do_scan(rate, forward); });
}

RaskStatus Playback::set_speed(int code)
{
    return ask([this, code] { return do_set_speed(code); });
}

RaskStatus Playback::select_sound(int track)
{
    return ask([this, track] {
        if (!is_loaded())
            return rask::wrong_state;
        if (track < 1 || track > m_film.audio_streams)
            return rask::out_of_range;
        m_sound_track = track;
        m_steady_answers = 0;
        m_core->set("aid", QByteArray::number(track));
        return rask::ok;
    });
}

RaskStatus Playback::set_keep_aspect(bool keep)
{
    return ask([this, keep] {
        m_keep_aspect = keep;
        if (m_core)
            m_core->set("keepaspect", keep ? "yes" : "no");
        choose_scaler();
        return rask::ok;
    });
}

RaskStatus Playback::set_colour(const std::array<int, 3>& colour)
{
    return ask([this, colour] {
        m_colour = colour;
        if (m_core)
            m_core->picture().set_colour(colour[0], colour[1], colour[2]);
        return rask::ok;
    });
}

RaskStatus Playback::set_digital_output(bool on)
{
    return ask([this, on] {
        m_digital_output = on;
        if (m_core)
            m_core->set("audio-spdif", on ? "ac3,eac3,dts" : "");
        return rask::ok;
    });
}

void Playback::set_volume(double percent)
{
    post([this, percent] {
        m_volume = percent;
        if (m_core)
            m_core->set("volume", percent);
    });
}

void Playback::redraw()
{
    post([this] {
        choose_scaler();
        if (m_core)
            m_core->picture().redraw();
    });
}

// The engine's thread

void Playback::run()
{
    pthread_setname_np(pthread_self(), "engine");
    m_thread_id = std::this_thread::get_id();
    ensure_core();
    while (run_tasks()) {
        if (!m_core) {
            std::unique_lock lock(m_tasks_mutex);
            m_task_arrived.wait(lock, [this] { return !m_tasks.empty(); });
            continue;
        }
        // Even with no time to wait the library goes to sleep for a moment, so nobody looks whether there is more: what
        // is queued comes before a deadline that has passed.
        const mpv_event* event = mpv_wait_event(m_core->handle(), seconds_to_deadline());
        if (event->event_id != MPV_EVENT_NONE)
            handle(*event);
        else
            check_deadlines();
    }
    abandon_core(end_limit);
}

bool Playback::run_tasks()
{
    for (;;) {
        std::function<void()> task;
        {
            const std::lock_guard lock(m_tasks_mutex);
            if (m_ending || m_tasks.empty())
                return !m_ending;
            task = std::move(m_tasks.front());
            m_tasks.pop_front();
        }
        task();
    }
}

double Playback::seconds_to_deadline() const
{
    Deadline next;
    for (const Deadline& deadline :
         {m_start_deadline, m_load_deadline, m_seek_deadline, m_scan_tick, m_position_tick, m_sound.deadline()}) {
        if (deadline && (!next || *deadline < *next))
            next = deadline;
    }
    if (!next)
        return -1.0;
    return std::max(0.0, std::chrono::duration<double>(*next - Clock::now()).count());
}

void Playback::check_deadlines()
{
    const auto now = Clock::now();
    const auto passed = [now](const Deadline& deadline) { return deadline && *deadline <= now; };
    if (passed(m_load_deadline)) {
        finish_load(rask::timed_out);
    } else if (passed(m_start_deadline)) {
        replace_core();
    } else if (passed(m_sound.deadline()) && m_sound.is_held_up(now, processor_time())) {
        go_on_without_sound();
    }
    if (passed(m_seek_deadline))
        finish_seek(m_seek_target);
    if (passed(m_scan_tick))
        scan_step();
    if (passed(m_position_tick))
        follow_position();
}

bool Playback::ensure_core()
{
    if (m_core)
        return true;
    m_core = EngineCore::create();
    if (!m_core)
        return false;
    m_core->watch("eof-reached", MPV_FORMAT_FLAG, end_id);
    apply_settings();
    const std::lock_guard lock(m_tasks_mutex);
    m_wakeable = m_core->handle();
    return true;
}

void Playback::abandon_core(std::chrono::milliseconds patience)
{
    if (!m_core)
        return;
    {
        const std::lock_guard lock(m_tasks_mutex);
        m_wakeable = nullptr;
    }
    m_position_asked = false;
    m_core->picture().show(false);
    BackgroundTask ending([core = std::shared_ptr<EngineCore>(std::move(m_core))] {});
    ending.wait_for(patience);
}

void Playback::replace_core()
{
    const Time start = m_seek_stage == SeekStage::None ? m_position : m_seek_target;
    abandon_core(0ms);
    if (!ensure_core()) {
        fail_load();
        return;
    }
    send_load(start);
    m_start_deadline.reset(); // there is no film before this one
    if (m_seek_stage != SeekStage::None)
        finish_seek(start);
}

void Playback::go_on_without_sound()
{
    if (!m_core || !m_core->uses_sound()) {
        m_sound.answered(); // something else holds the library up
        return;
    }
    m_sound.give_up(Clock::now());
    if (is_loaded() || m_phase == Phase::Loading)
        replace_core();
}

void Playback::apply_settings()
{
    m_core->set("volume", m_volume);
    m_core->set("keepaspect", m_keep_aspect ? "yes" : "no");
    if (m_digital_output)
        m_core->set("audio-spdif", "ac3,eac3,dts");
    m_core->picture().set_colour(m_colour[0], m_colour[1], m_colour[2]);
}

void Playback::handle(const mpv_event& event)
{
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
        m_sound.answered();
        on_command_reply(event);
        break;
    case MPV_EVENT_GET_PROPERTY_REPLY:
        m_sound.answered();
        on_number(event);
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        on_property(*static_cast<const mpv_event_property*>(event.data), event.reply_userdata);
        break;
    case MPV_EVENT_START_FILE:
        m_current = static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id;
        if (m_current == m_entry)
            m_start_deadline.reset();
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_current != m_entry)
            break;
        m_core->picture().show(true);
        // Now the library opens the sound: it is asked whether it is still there.
        if (m_phase == Phase::Loading)
            follow_position();
        break;
    case MPV_EVENT_END_FILE:
        on_end_file(*static_cast<const mpv_event_end_file*>(event.data));
        break;
    case MPV_EVENT_SEEK:
        if (m_seek_stage == SeekStage::Accepted) {
            m_seek_stage = SeekStage::Running;
            m_at_end = false;
            m_seek_deadline = Clock::now() + seek_limit;
        }
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        if (m_current == m_entry)
            on_restart();
        break;
    default:
        break;
    }
}

void Playback::on_command_reply(const mpv_event& event)
{
    if (event.reply_userdata == m_load_id && (m_phase == Phase::Loading || is_loaded())) {
        if (event.error < 0) {
            fail_load();
            return;
        }
        const mpv_node& result = static_cast<const mpv_event_command*>(event.data)->result;
        if (result.format != MPV_FORMAT_NODE_MAP)
            return;
        for (int index = 0; index < result.u.list->num; ++index) {
            if (std::strcmp(result.u.list->keys[index], "playlist_entry_id") == 0)
                m_entry = result.u.list->values[index].u.int64;
        }
        if (m_current == m_entry)
            m_start_deadline.reset();
    } else if (event.reply_userdata == m_seek_id && m_seek_stage == SeekStage::Sent) {
        if (event.error < 0) {
            finish_seek(m_position);
            return;
        }
        m_seek_stage = SeekStage::Accepted;
        m_seek_deadline = Clock::now() + seek_start_limit;
    }
}

void Playback::on_restart()
{
    // On a busy machine the first frame may come before the picture is let through.
    m_core->picture().show_missed();
    if (m_phase == Phase::Loading) {
        // Whether there is a picture is known by its size; a film whose every frame is damaged has none.
        if (!m_core->ask("video-params/w", m_load_id))
            finish_load(rask::engine_failed);
    } else if (m_seek_stage == SeekStage::Running) {
        if (!m_core->ask("time-pos", m_seek_id))
            finish_seek(m_seek_target);
    }
}

void Playback::on_number(const mpv_event& event)
{
    const auto& property = *static_cast<const mpv_event_property*>(event.data);
    const bool known = event.error >= 0 && property.format == MPV_FORMAT_DOUBLE;
    const double value = known ? *static_cast<const double*>(property.data) : 0.0;
    if (event.reply_userdata == end_id && event.error >= 0)
        on_property(property, end_id);
    else if (event.reply_userdata == m_load_id && m_phase == Phase::Loading)
        finish_load(value >= 1.0 ? rask::ok : rask::not_a_film);
    else if (event.reply_userdata == position_id)
        on_position(known ? std::optional(to_time(value)) : std::nullopt);
    else if (event.reply_userdata == sound_clock_id)
        m_sound_clock = known ? std::optional(value) : std::nullopt;
    else if (event.reply_userdata == buffered_id)
        on_sound_clock(known ? std::optional(value) : std::nullopt);
    else if (event.reply_userdata == m_seek_id && m_seek_stage == SeekStage::Running)
        finish_seek(known ? to_time(value) : m_seek_target);
}

void Playback::follow_position()
{
    const auto now = Clock::now();
    m_position_tick = now + position_interval;
    // A library that has not answered yet is held up: more questions would only pile up.
    if (m_seek_stage != SeekStage::None || m_position_asked)
        return;
    if (m_steady_answers < steady_after || now - m_told_at >= question_interval)
        ask_position();
    else
        move_to(expected_position());
}

void Playback::ask_position()
{
    m_position_asked = m_core->ask("time-pos", position_id);
    if (m_position_asked)
        m_sound.asked(Clock::now(), processor_time());
}

Time Playback::expected_position() const
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_told_at).count();
    return m_told_position + elapsed * m_speed / 100;
}

void Playback::on_position(std::optional<Time> position)
{
    m_position_asked = false;
    if (!position || m_phase != Phase::Playing || m_seek_stage != SeekStage::None || m_current != m_entry) {
        m_sound.position_moved(Clock::now());
        return;
    }
    const bool moved = *position != m_told_position;
    const bool steady = moved && std::abs(*position - expected_position()) <= steady_within * m_speed / 100;
    m_steady_answers = steady ? m_steady_answers + 1 : 0;
    m_told_position = *position;
    m_told_at = Clock::now();
    if (moved) {
        m_sound.position_moved(m_told_at);
        if (m_core->uses_sound())
            m_sound.film_runs();
        move_to(*position);
    } else if (m_sound.wants_look(m_told_at)) {
        // The library is known to keep quiet about an end that it came to while paused.
        m_core->ask("eof-reached", end_id, MPV_FORMAT_FLAG);
        if (m_core->uses_sound()) {
            m_core->ask("audio-pts", sound_clock_id);
            m_core->ask("demuxer-cache-time", buffered_id);
        }
    }
}

void Playback::move_to(Time position)
{
    // What was worked out may have been ahead by a little: then the film catches up. A film whose times jump back does
    // so.
    const Time ahead = m_position - position;
    if (ahead >= 0 && ahead <= question_interval.count() * m_speed / 100 + steady_within)
        return;
    m_position = position;
    report_time(position);
}

void Playback::on_sound_clock(std::optional<double> buffered)
{
    if (m_sound.stands_still(m_sound_clock, buffered) && m_phase == Phase::Playing)
        go_on_without_sound();
}

void Playback::on_property(const mpv_event_property& property, std::uint64_t id)
{
    if (m_current != m_entry || !is_loaded())
        return;
    if (id == end_id && property.format == MPV_FORMAT_FLAG) {
        m_at_end = *static_cast<const int*>(property.data) != 0;
        if (m_at_end && m_phase == Phase::Playing && m_seek_stage == SeekStage::None)
            reach_end();
    }
}

void Playback::on_end_file(const mpv_event_end_file& end)
{
    if (end.playlist_entry_id != m_entry)
        return;
    if (m_phase == Phase::Loading) {
        finish_load(rask::not_a_film);
        return;
    }
    if (!is_loaded() || end.reason == MPV_END_FILE_REASON_STOP)
        return;
    if (end.reason != MPV_END_FILE_REASON_EOF) {
        break_off(rask::not_a_film);
        return;
    }
    if (m_seek_stage != SeekStage::None)
        finish_seek(m_seek_target);
    if (m_phase != Phase::Ended)
        reach_end();
    enter(Phase::Broken);
}

void Playback::do_load(const MediaFile& film, std::shared_ptr<Answer> answer)
{
    do_stop();
    m_film = film;
    m_load_answer = std::move(answer);
    m_load_deadline = Clock::now() + load_limit;
    enter(Phase::Loading);
    if (ensure_core())
        send_load();
    else
        fail_load();
}

void Playback::send_load(Time start)
{
    const bool graphics = m_film.height >= hardware_height && QDir(QStringLiteral("/dev/dri")).exists();
    m_core->set("hwdec", graphics ? "auto-copy-safe" : "no");
    m_core->set("vd-lavc-threads", QByteArray::number(picture_size::decoder_threads(m_film.height)));
    choose_scaler();
    m_core->set("vf", picture_filters(m_film));
    m_core->set("hr-seek-demuxer-offset", m_film.lacks_index ? seek_margin_s : 0.0);
    m_core->use_sound(m_sound.trust(Clock::now()) == SoundWatch::Trust::Full);
    set_paused(m_phase != Phase::Playing);
    m_core->set("aid", m_sound_track > 0 ? QByteArray::number(m_sound_track) : "auto");
    m_core->set("speed", m_speed / 100.0);
    m_entry = -1;
    m_load_id = ++m_last_id;
    m_start_deadline = Clock::now() + start_limit;
    QByteArrayList load = {"loadfile", m_film.path, "replace"};
    if (start > 0)
        load += "start=" + QByteArray::number(to_seconds(start), 'f', 3);
    if (!m_core->command(load, m_load_id))
        fail_load();
}

void Playback::choose_scaler()
{
    if (!m_core || m_phase == Phase::Idle)
        return;
    const bool on_its_side = m_film.rotation % 180 != 0;
    const QSize decoded(m_film.width, m_film.height);
    const QSize frame = on_its_side ? decoded.transposed() : decoded;
    const double pixel_aspect = on_its_side ? 1.0 / m_film.pixel_aspect : m_film.pixel_aspect;
    const QSize place = VideoPlane::instance().pixel_size();
    m_core->use_scaler(picture_size::scaling_of(frame, pixel_aspect, place, m_keep_aspect));
}

void Playback::finish_load(RaskStatus status)
{
    m_load_deadline.reset();
    m_start_deadline.reset();
    const std::shared_ptr<Answer> answer = std::exchange(m_load_answer, nullptr);
    if (status == rask::ok) {
        enter(Phase::Ready);
        // Until a film has been heard nobody waits for the sound to be opened: it joins the first frame.
        if (m_sound.trust(Clock::now()) == SoundWatch::Trust::Unsure && m_film.audio_streams > 0)
            m_core->use_sound(true);
        report_state(PlayerState::Prepared);
    } else {
        do_stop();
    }
    if (answer)
        answer->give(status);
}

void Playback::fail_load()
{
    if (m_phase == Phase::Loading) {
        finish_load(rask::engine_failed);
    } else {
        break_off(rask::engine_failed);
    }
}

void Playback::break_off(RaskStatus status)
{
    forget_seek();
    enter(Phase::Broken);
    report_error(status);
}

RaskStatus Playback::do_stop()
{
    if (const std::shared_ptr<Answer> answer = std::exchange(m_load_answer, nullptr))
        answer->give(rask::wrong_state);
    const bool had_film = m_phase != Phase::Idle;
    forget_seek();
    enter(Phase::Idle);
    m_film = {};
    m_entry = -1;
    m_load_id = 0;
    m_position = 0;
    m_load_deadline.reset();
    m_start_deadline.reset();
    m_started = false;
    m_at_end = false;
    m_scan_reached_end = false;
    m_sound_track = 0;
    m_speed_step = normal_speed_step;
    m_speed = speed_steps[m_speed_step];
    if (m_core && had_film) {
        m_core->picture().show(false);
        VideoPlane::instance().clear();
        m_core->command({"stop"});
    }
    return rask::ok;
}

RaskStatus Playback::do_play()
{
    if (!is_loaded())
        return rask::wrong_state;
    if (m_phase == Phase::Playing)
        return rask::ok;
    if (m_phase == Phase::Ended && m_scan_reached_end) {
        reach_end();
        return rask::ok;
    }
    m_seek_resumes = false;
    if (m_phase == Phase::Scanning) {
        leave_scan();
    } else if (m_phase == Phase::Ended) {
        start_seek(0, true, false);
        m_started = false;
    }
    if (!m_started)
        report_stream(StreamState::Started);
    m_started = true;
    enter(Phase::Playing);
    set_paused(false);
    report_state(PlayerState::Playing);
    if (m_at_end && m_seek_stage == SeekStage::None)
        reach_end();
    return rask::ok;
}

RaskStatus Playback::do_pause()
{
    if (!is_loaded())
        return rask::wrong_state;
    const bool resuming = std::exchange(m_seek_resumes, false);
    if (m_phase != Phase::Playing && m_phase != Phase::Scanning && !resuming)
        return rask::ok;
    if (m_phase == Phase::Scanning)
        leave_scan();
    enter(Phase::Paused);
    set_paused(true);
    report_state(PlayerState::Paused);
    return rask::ok;
}

RaskStatus Playback::do_seek(Time target)
{
    if (!is_loaded())
        return rask::wrong_state;
    if (m_phase == Phase::Scanning || m_phase == Phase::Ended) {
        m_scan_reached_end = false;
        m_seek_resumes = true;
        enter(Phase::Paused);
    }
    const Time last = m_film.length > 0 ? m_film.length : target;
    start_seek(std::clamp<Time>(target, 0, std::max<Time>(last, 0)), true, true);
    return rask::ok;
}

RaskStatus Playback::do_scan(int rate, bool forward)
{
    constexpr int fastest_scan = 16;
    if (rate < 1 || rate > fastest_scan)
        return rask::out_of_range;
    if (!is_loaded())
        return rask::wrong_state;
    if (!m_film.seekable || m_film.length <= 0)
        return rask::not_supported;
    const Time from = m_phase == Phase::Scanning ? scan_position()
                      : m_phase == Phase::Ended  ? m_film.length
                                                 : m_position;
    set_paused(true);
    m_started = true;
    m_scan_rate = rate;
    m_scan_forward = forward;
    m_scan_reached_end = false;
    m_scan_origin = from;
    m_scan_begin = Clock::now();
    m_scan_last_seek = {};
    m_scan_tick = m_scan_begin;
    enter(Phase::Scanning);
    return rask::ok;
}

RaskStatus Playback::do_set_speed(int code)
{
    if (!is_loaded())
        return rask::wrong_state;
    if (code == static_cast<int>(SpeedCode::Normal))
        m_speed_step = normal_speed_step;
    else if (code == static_cast<int>(SpeedCode::Up) && m_speed_step + 1 < speed_steps.size())
        ++m_speed_step;
    else if (code == static_cast<int>(SpeedCode::Down) && m_speed_step > 0)
        --m_speed_step;
    else
        return rask::out_of_range;
    m_speed = speed_steps[m_speed_step];
    m_steady_answers = 0;
    m_core->set("speed", m_speed / 100.0);
    return rask::ok;
}

void Playback::enter(Phase phase)
{
    m_phase = phase;
    m_steady_answers = 0;
    if (phase != Phase::Scanning)
        m_scan_tick.reset();
    if (phase != Phase::Playing)
        m_position_tick.reset();
    else if (!m_position_tick)
        m_position_tick = Clock::now();
    update_busy();
}

void Playback::update_busy()
{
    m_busy = m_phase == Phase::Playing || m_phase == Phase::Scanning || m_phase == Phase::Loading ||
             m_seek_stage != SeekStage::None;
}

void Playback::set_paused(bool paused)
{
    m_core->set("pause", paused ? "yes" : "no");
}

void Playback::start_seek(Time target, bool exact, bool reported)
{
    m_seek_id = ++m_last_id;
    m_seek_stage = SeekStage::Sent;
    update_busy();
    m_seek_target = target;
    m_seek_reports += reported ? 1 : 0;
    m_seek_deadline = Clock::now() + seek_limit;
    const QByteArray seconds = QByteArray::number(to_seconds(target), 'f', 3);
    if (!m_core->command({"seek", seconds, exact ? "absolute+exact" : "absolute+keyframes"}, m_seek_id))
        finish_seek(m_position);
}

void Playback::finish_seek(Time position)
{
    m_seek_stage = SeekStage::None;
    update_busy();
    m_seek_deadline.reset();
    m_position = position;
    m_steady_answers = 0;
    const int reports = std::exchange(m_seek_reports, 0);
    const bool resumes = std::exchange(m_seek_resumes, false);
    const bool past_end = reports > 0 && m_film.length > 0 && m_seek_target >= m_film.length;
    if (reports > 0) {
        report_time(position);
        for (int owed = 0; owed < reports; ++owed)
            report_stream(StreamState::Started);
    }
    if (past_end || (m_at_end && m_phase == Phase::Playing)) {
        reach_end();
    } else if (resumes) {
        enter(Phase::Playing);
        set_paused(false);
        report_state(PlayerState::Playing);
    }
}

void Playback::forget_seek()
{
    m_seek_stage = SeekStage::None;
    m_seek_deadline.reset();
    m_seek_reports = 0;
    m_seek_resumes = false;
}

void Playback::reach_end()
{
    enter(Phase::Ended);
    set_paused(true);
    report_stream(StreamState::Ended);
    report_state(PlayerState::Stopped);
}

Time Playback::scan_position() const
{
    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_scan_begin).count();
    const Time moved = static_cast<Time>(elapsed) * m_scan_rate;
    return std::clamp<Time>(m_scan_origin + (m_scan_forward ? moved : -moved), 0, m_film.length);
}

void Playback::scan_step()
{
    const auto now = Clock::now();
    m_position = scan_position();
    m_scan_tick = now + scan_report_interval;
    const bool over = m_scan_forward ? m_position >= m_film.length : m_position <= 0;
    if (over || (m_seek_stage == SeekStage::None && now - m_scan_last_seek >= scan_seek_interval)) {
        m_scan_last_seek = now;
        start_seek(m_position, false, false);
    }
    report_time(m_position);
    if (over && m_scan_forward) {
        m_scan_reached_end = true;
        reach_end();
    } else if (over) {
        m_scan_tick.reset();
    }
}

void Playback::leave_scan()
{
    // At the beginning the tick is gone, but the clock has run on.
    if (m_scan_tick)
        m_position = scan_position();
    start_seek(m_position, true, false);
}

void Playback::report_state(PlayerState state)
{
    if (may_report())
        m_callback->notify_state_change(state);
}

void Playback::report_time(Time position)
{
    if (may_report())
        m_callback->notify_time_update(position);
}

void Playback::report_error(RaskStatus status)
{
    if (may_report())
        m_callback->notify_error(status);
}

void Playback::report_stream(StreamState state)
{
    if (may_report())
        m_callback->notify_stream_change(StreamType::Film, state);
}
