#pragma once

#include "media_probe.h"
#include "media_types.h"
#include "subtitle.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// Steers the MediaPlayer that stands in for the real one in tests, and tells what was asked of it.
///
/// Left alone it behaves as the order of reports in docs/engine.md says for a film of ten seconds, except that time
/// only moves when run_to() says so. Everything here may be called from any thread; it acts on the newest living
/// MediaPlayer.
namespace scripted_engine
{

/// On which thread a report is made. The real engine only knows its own.
enum class From { EngineThread, Caller };

/// Forgets the log and everything set below: the next open() finds the ten-second film again.
void clear();

/// Operations as lines in the order of the calls: "open /a b.avi", "seek 3 5000", "set_video_window 0 0 480 272",
/// "set_parameter 4 50 50 50", "set_application_volume 20". Questions (has_info, get_info, get_subtitles, get_speed,
/// query) are left out.
QStringList log();
/// The same with the questions: "get_info video time".
QStringList full_log();
/// Empties the log alone.
void clear_log();

/// From now on @p operation ("open", "prepare", "seek" ...) answers @p status and, when that is not 0, does nothing
/// else.
void set_result(const QString& operation, RaskStatus status);
/// The same for the next call only.
void set_next_result(const QString& operation, RaskStatus status);

/// Sets an item of the films opened from now on, and of the open one.
void set_info(const QString& group, const QString& item, const QString& text);
/// Takes a whole group away: without "video" open() refuses the film.
void remove_info(const QString& group);
/// The lines of track 0 to 7 of the films opened from now on, and of the open one.
void set_subtitles(unsigned track, std::vector<Subtitle> lines);
/// Calls the hook of set_subtitles_ready_hook() from the engine's thread and waits until it has returned.
void announce_subtitles();
/// What probe_media() answers for every file; nothing at first.
void set_media_summary(std::optional<MediaSummary> summary);
/// Whether query(5) answers yes; without a value it depends on what is playing.
void set_busy(std::optional<bool> busy);

/// Switches off (or on again) the reports that operations lead to, for a test that makes all of them itself.
void set_automatic_reports(bool on);

/// Lets the film run (or a scan walk) to @p position: a position report, and what the end brings when it lies there.
/// Waits until all is reported.
void run_to(Time position);

/// Makes one report and waits until the callback has returned.
void report_state(PlayerState state, From from = From::EngineThread);
void report_time(Time position, From from = From::EngineThread);
void report_error(RaskStatus status, From from = From::EngineThread);
void report_stream(StreamType type, StreamState state, From from = From::EngineThread);

/// How many MediaPlayer objects live.
int players();

} // namespace scripted_engine
