#include "scripted_engine.h"

#include "scripted_film.h"

namespace scripted_engine
{

namespace
{

void report(std::function<void(MediaCallback&)> what, From from)
{
    ScriptedFilm::with_newest([&](ScriptedFilm& film) { film.report(std::move(what), from == From::Caller); });
}

} // namespace

void clear()
{
    Script::instance().clear();
}
QStringList log()
{
    return Script::instance().log(false);
}
QStringList full_log()
{
    return Script::instance().log(true);
}
void clear_log()
{
    Script::instance().clear_log();
}

void set_result(const QString& operation, RaskStatus status)
{
    Script::instance().set_result(operation, status, false);
}

void set_next_result(const QString& operation, RaskStatus status)
{
    Script::instance().set_result(operation, status, true);
}

void set_info(const QString& group, const QString& item, const QString& text)
{
    Script::instance().set_info(group, item, text);
}

void remove_info(const QString& group)
{
    Script::instance().remove_info(group);
}

void set_subtitles(unsigned track, std::vector<Subtitle> lines)
{
    Script::instance().set_subtitles(track, std::move(lines));
}

void announce_subtitles()
{
    ScriptedFilm::with_newest([](ScriptedFilm& film) { film.announce_subtitles(); });
}

void set_media_summary(std::optional<MediaSummary> summary)
{
    Script::instance().set_summary(std::move(summary));
}
void set_busy(std::optional<bool> busy)
{
    Script::instance().set_busy(busy);
}
void set_automatic_reports(bool on)
{
    Script::instance().set_automatic(on);
}

void run_to(Time position)
{
    ScriptedFilm::with_newest([position](ScriptedFilm& film) { film.run_to(position); });
}

void report_state(PlayerState state, From from)
{
    report([state](MediaCallback& callback) { callback.notify_state_change(state); }, from);
}

void report_time(Time position, From from)
{
    report([position](MediaCallback& callback) { callback.notify_time_update(position); }, from);
}

void report_error(RaskStatus status, From from)
{
    report([status](MediaCallback& callback) { callback.notify_error(status); }, from);
}

void report_stream(StreamType type, StreamState state, From from)
{
    report([type, state](MediaCallback& callback) { callback.notify_stream_change(type, state); }, from);
}

int players()
{
    return ScriptedFilm::count();
}

} // namespace scripted_engine
