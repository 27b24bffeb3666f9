#include "scripted_film.h"

namespace
{

struct Films {
    std::recursive_mutex mutex;
    std::vector<ScriptedFilm*> living;
};

Films& films()
{
    static Films instance;
    return instance;
}

} // namespace

ScriptedFilm::ScriptedFilm(MediaCallback* callback) : m_callback(callback)
{
    const std::lock_guard lock(films().mutex);
    films().living.push_back(this);
}

ScriptedFilm::~ScriptedFilm()
{
    release();
    const std::lock_guard lock(films().mutex);
    std::erase(films().living, this);
}

void ScriptedFilm::with_newest(const std::function<void(ScriptedFilm&)>& use)
{
    const std::lock_guard lock(films().mutex);
    if (!films().living.empty())
        use(*films().living.back());
}

int ScriptedFilm::count()
{
    const std::lock_guard lock(films().mutex);
    return static_cast<int>(films().living.size());
}

RaskStatus ScriptedFilm::open(const QString& file)
{
    close();
    const std::lock_guard lock(m_mutex);
    m_handed_over.clear();
    if (!Script::instance().has_group(QStringLiteral("video")))
        return rask::no_video;
    m_file = file;
    m_phase = Phase::Open;
    return rask::ok;
}

RaskStatus ScriptedFilm::prepare(const QString& file)
{
    bool same_file = false;
    {
        const std::lock_guard lock(m_mutex);
        same_file = m_phase != Phase::Empty && m_file == file;
    }
    if (!same_file) {
        if (const RaskStatus status = open(file); status != rask::ok)
            return status;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_phase = Phase::Prepared;
        m_position = 0;
        m_started = false;
        m_speed_step = normal_speed_step;
        report_state(PlayerState::Prepared);
    }
    m_reports.finish();
    return rask::ok;
}

void ScriptedFilm::close()
{
    {
        const std::lock_guard lock(m_mutex);
        m_phase = Phase::Empty;
        m_file.clear();
        m_scan_reached_end = false;
        m_started = false;
    }
    m_reports.finish();
}

void ScriptedFilm::release()
{
    close();
    const std::lock_guard lock(m_mutex);
    m_callback = nullptr;
    m_subtitles_ready = nullptr;
}

RaskStatus ScriptedFilm::play()
{
    {
        const std::lock_guard lock(m_mutex);
        if (!loaded())
            return rask::wrong_state;
        if (m_phase == Phase::Playing)
            return rask::ok;
        if (m_phase == Phase::Ended && m_scan_reached_end) {
            report_end();
        } else {
            if (m_phase == Phase::Ended) {
                m_position = 0;
                m_started = false;
            }
            if (!m_started)
                report_stream(StreamState::Started);
            m_started = true;
            m_phase = Phase::Playing;
            report_state(PlayerState::Playing);
        }
    }
    m_reports.finish();
    return rask::ok;
}

RaskStatus ScriptedFilm::pause()
{
    {
        const std::lock_guard lock(m_mutex);
        if (!loaded())
            return rask::wrong_state;
        if (m_phase == Phase::Playing || scanning()) {
            m_phase = Phase::Paused;
            report_state(PlayerState::Paused);
        }
    }
    m_reports.finish();
    return rask::ok;
}

RaskStatus ScriptedFilm::seek(Time target)
{
    const std::lock_guard lock(m_mutex);
    if (!loaded())
        return rask::wrong_state;
    const Time length = Script::instance().film_length();
    m_position = qBound(Time(0), target, length);
    m_scan_reached_end = false;
    report_time(m_position);
    report_stream(StreamState::Started);
    if (m_position == length) {
        report_end();
    } else if (m_phase == Phase::Ended || scanning()) {
        m_phase = Phase::Playing;
        report_state(PlayerState::Playing);
    }
    return rask::ok;
}

RaskStatus ScriptedFilm::scan(int rate, bool forward)
{
    const std::lock_guard lock(m_mutex);
    if (rate < 1 || rate > 16)
        return rask::out_of_range;
    if (!loaded())
        return rask::wrong_state;
    m_phase = forward ? Phase::ScanningForward : Phase::ScanningBackward;
    return rask::ok;
}

RaskStatus ScriptedFilm::set_speed(int code)
{
    const std::lock_guard lock(m_mutex);
    if (!loaded())
        return rask::wrong_state;
    if (code == static_cast<int>(SpeedCode::Normal))
        m_speed_step = normal_speed_step;
    else if (code == static_cast<int>(SpeedCode::Up) && m_speed_step + 1 < speed_steps.size())
        ++m_speed_step;
    else if (code == static_cast<int>(SpeedCode::Down) && m_speed_step > 0)
        --m_speed_step;
    else
        return rask::out_of_range;
    return rask::ok;
}

RaskStatus ScriptedFilm::select_stream(int kind, int track) const
{
    const std::lock_guard lock(m_mutex);
    if (kind != static_cast<int>(StreamKind::Audio))
        return rask::out_of_range;
    if (!loaded())
        return rask::wrong_state;
    const int tracks = Script::instance().info(QStringLiteral("container"), QStringLiteral("audio_streams")).toInt();
    return track >= 1 && track <= tracks ? rask::ok : rask::out_of_range;
}

bool ScriptedFilm::is_open() const
{
    const std::lock_guard lock(m_mutex);
    return m_phase != Phase::Empty;
}

bool ScriptedFilm::is_busy() const
{
    const std::lock_guard lock(m_mutex);
    return m_phase == Phase::Playing || scanning();
}

int ScriptedFilm::speed() const
{
    const std::lock_guard lock(m_mutex);
    return speed_steps[m_speed_step];
}

const std::vector<Subtitle>* ScriptedFilm::subtitles(unsigned track)
{
    const std::lock_guard lock(m_mutex);
    if (m_phase == Phase::Empty)
        return nullptr;
    const Script::Lines lines = Script::instance().subtitles(track);
    if (!lines || lines->empty())
        return nullptr;
    m_handed_over.push_back(lines);
    return lines.get();
}

void ScriptedFilm::set_subtitles_ready_hook(std::function<void()> hook)
{
    {
        const std::lock_guard lock(m_mutex);
        m_subtitles_ready = std::move(hook);
    }
    m_reports.finish();
}

void ScriptedFilm::run_to(Time position)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_phase != Phase::Playing && !scanning())
            return;
        const Time length = Script::instance().film_length();
        m_position = qBound(Time(0), position, length);
        report_time(m_position);
        if (m_position == length) {
            m_scan_reached_end = m_phase == Phase::ScanningForward;
            report_end();
        }
    }
    m_reports.finish();
}

void ScriptedFilm::announce_subtitles()
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_subtitles_ready)
            m_reports.post(m_subtitles_ready);
    }
    m_reports.finish();
}

void ScriptedFilm::report(std::function<void(MediaCallback&)> what, bool on_this_thread)
{
    MediaCallback* callback = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        callback = m_callback;
    }
    if (!callback)
        return;
    if (on_this_thread) {
        what(*callback);
        return;
    }
    m_reports.post([callback, what = std::move(what)] { what(*callback); });
    m_reports.finish();
}

void ScriptedFilm::follow_up(std::function<void(MediaCallback&)> what)
{
    if (MediaCallback* const callback = m_callback; callback && Script::instance().automatic())
        m_reports.post([callback, what = std::move(what)] { what(*callback); });
}

void ScriptedFilm::report_state(PlayerState state)
{
    follow_up([state](MediaCallback& callback) { callback.notify_state_change(state); });
}

void ScriptedFilm::report_time(Time position)
{
    follow_up([position](MediaCallback& callback) { callback.notify_time_update(position); });
}

void ScriptedFilm::report_stream(StreamState state)
{
    follow_up([state](MediaCallback& callback) { callback.notify_stream_change(StreamType::Film, state); });
}

void ScriptedFilm::report_end()
{
    m_phase = Phase::Ended;
    report_stream(StreamState::Ended);
    report_state(PlayerState::Stopped);
}
