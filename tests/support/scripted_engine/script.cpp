#include "script.h"

Script::Script() : m_settings(ten_second_film()) {}

Script& Script::instance()
{
    static Script script;
    return script;
}

Script::Settings Script::ten_second_film()
{
    Settings settings;
    const auto set = [&settings](const char* group, const char* item, const char* text) {
        settings.infos[QString::fromLatin1(group)][QString::fromLatin1(item)] = QString::fromLatin1(text);
    };
    set("container", "name", "MP4");
    set("container", "audio_streams", "1");
    set("container", "subtitle_streams", "0");
    set("video", "name", "H.264");
    set("video", "time", "10000");
    set("video", "width", "480");
    set("video", "height", "272");
    set("video", "framerate", "25");
    set("audio", "name", "AAC");
    set("audio", "channels", "2");
    set("audio", "sample_rate", "48000");
    return settings;
}

void Script::clear()
{
    const std::lock_guard lock(m_mutex);
    m_log.clear();
    m_settings = ten_second_film();
}

void Script::write(const QString& line, bool question)
{
    const std::lock_guard lock(m_mutex);
    m_log.push_back({line, question});
}

QStringList Script::log(bool with_questions) const
{
    const std::lock_guard lock(m_mutex);
    QStringList lines;
    for (const LogLine& line : m_log) {
        if (with_questions || !line.question)
            lines += line.text;
    }
    return lines;
}

void Script::clear_log()
{
    const std::lock_guard lock(m_mutex);
    m_log.clear();
}

void Script::set_result(const QString& operation, RaskStatus status, bool once)
{
    const std::lock_guard lock(m_mutex);
    (once ? m_settings.next_results : m_settings.results)[operation] = status;
}

RaskStatus Script::call(const QString& operation, const QString& arguments)
{
    const std::lock_guard lock(m_mutex);
    m_log.push_back({arguments.isEmpty() ? operation : operation + u' ' + arguments, false});
    return take_result(operation);
}

RaskStatus Script::ask(const QString& operation, const QString& arguments)
{
    const std::lock_guard lock(m_mutex);
    m_log.push_back({operation + u' ' + arguments, true});
    return take_result(operation);
}

RaskStatus Script::take_result(const QString& operation)
{
    if (m_settings.next_results.contains(operation))
        return m_settings.next_results.take(operation);
    return m_settings.results.value(operation, rask::ok);
}

void Script::set_info(const QString& group, const QString& item, const QString& text)
{
    const std::lock_guard lock(m_mutex);
    m_settings.infos[group][item] = text;
}

void Script::remove_info(const QString& group)
{
    const std::lock_guard lock(m_mutex);
    m_settings.infos.remove(group);
}

QString Script::info(const QString& group, const QString& item) const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.infos.value(group).value(item);
}

bool Script::has_group(const QString& group) const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.infos.contains(group);
}

Time Script::film_length() const
{
    return info(QStringLiteral("video"), QStringLiteral("time")).toLongLong();
}

void Script::set_subtitles(unsigned track, std::vector<Subtitle> lines)
{
    const std::lock_guard lock(m_mutex);
    if (track < m_settings.subtitles.size())
        m_settings.subtitles[track] = std::make_shared<const std::vector<Subtitle>>(std::move(lines));
}

Script::Lines Script::subtitles(unsigned track) const
{
    const std::lock_guard lock(m_mutex);
    return track < m_settings.subtitles.size() ? m_settings.subtitles[track] : nullptr;
}

void Script::set_summary(std::optional<MediaSummary> summary)
{
    const std::lock_guard lock(m_mutex);
    m_settings.summary = std::move(summary);
}

std::optional<MediaSummary> Script::summary() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.summary;
}

void Script::set_busy(std::optional<bool> busy)
{
    const std::lock_guard lock(m_mutex);
    m_settings.busy = busy;
}

std::optional<bool> Script::busy() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.busy;
}

void Script::set_automatic(bool on)
{
    const std::lock_guard lock(m_mutex);
    m_settings.automatic = on;
}

bool Script::automatic() const
{
    const std::lock_guard lock(m_mutex);
    return m_settings.automatic;
}
