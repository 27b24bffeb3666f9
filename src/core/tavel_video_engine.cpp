#include "tavel_video.h"

#include "custom_event.h"
#include "media_player.h"
#include "qpe_application.h"
#include "subtitle_control.h"

#include <cstdio>

namespace
{

/// A status that is no failure.
constexpr RaskStatus IGNORED_STATUS = 37;

struct StateEvent {
    PlayerState state;
    player_event::Number number;
};

constexpr std::array<StateEvent, 4> STATE_EVENTS{{
    {PlayerState::Playing, player_event::engine_playing},
    {PlayerState::Paused, player_event::engine_paused},
    {PlayerState::Stopped, player_event::engine_stopped},
    {PlayerState::Prepared, player_event::engine_prepared},
}};

} // namespace

void TavelVideo::update_state(PlayerState state)
{
    if (state == PlayerState::Stopped ? gate_.hold_stopped(file_number_) : gate_.is_shut())
        return;
    for (const StateEvent& row : STATE_EVENTS)
        if (row.state == state)
            post_report(row.number, file_number_);
}

void TavelVideo::update_time(Time position)
{
    if (seeking_)
        return;
    if (subtitle_->update(position) && subtitles_on_)
        post_from_engine(player_event::subtitle_redraw);
    if (position / 1000 != position_ / 1000)
        post_from_engine(player_event::time_display);
    check_repeat(position);
    check_scan_end(position);
    position_ = position;
}

void TavelVideo::handle_error(RaskStatus status)
{
    std::printf("handle_error: 0x%08x \n", status);
    if (status == rask::ok || status == IGNORED_STATUS)
        return;
    last_error_ = status;
    post_report(player_event::engine_error, file_number_);
}

void TavelVideo::stream_event(StreamType type, StreamState state)
{
    if (state == StreamState::Started) {
        post_report(player_event::stream_started, file_number_);
        return;
    }
    if (state != StreamState::Ended)
        return;
    if (type != StreamType::Film)
        return;
    if (gate_.hold_end_of_stream(file_number_))
        end_watched_scan();
    else
        post_end_of_stream(file_number_);
}

/// Each crossing of B asks for one seek; a position before B ends the crossing.
void TavelVideo::check_repeat(Time position)
{
    if (repeat_mode_ != RepeatMode::SetAB || position <= repeat_b_) {
        past_b_ = false;
        return;
    }
    if (past_b_.exchange(true) || !seek_allowed_)
        return;
    post_custom_event(this, player_event::seek,
                      player_event::SeekRequest{SeekMode::Backward, 0, repeat_a_, file_number_});
    QPEApplication::wakeUpGuiThread();
}

/// A key-frame scan that has come to either end of the film ends.
void TavelVideo::check_scan_end(Time position)
{
    const Scan watched = scan_watch_;
    if (watched == Scan::None)
        return;
    const bool at_end = watched == Scan::Forward ? total_ms_ > 0 && position >= total_ms_ : position <= 0;
    if (at_end)
        end_watched_scan();
}

/// Asks once for normal play in place of a key-frame scan. The end of the stream asks too: a film may stop before the
/// length that it states, and its end is held back until the scan is over.
void TavelVideo::end_watched_scan()
{
    if (scan_watch_.exchange(Scan::None) != Scan::None)
        post_report(player_event::play, file_number_);
}

void TavelVideo::post(int type)
{
    post_custom_event(this, type);
}

void TavelVideo::post_from_engine(int type)
{
    post_custom_event(this, type);
    QPEApplication::wakeUpGuiThread();
}

void TavelVideo::post_report(int type, unsigned int file)
{
    post_custom_event(this, type, player_event::EngineReport{file});
    QPEApplication::wakeUpGuiThread();
}

void TavelVideo::post_end_of_stream(unsigned int file)
{
    std::puts("EOS!!!");
    post_report(player_event::end_of_stream, file);
}

/// An engine call of the chart has failed on the chosen file.
void TavelVideo::post_failure()
{
    post_custom_event(this, player_event::engine_error, player_event::Failure{chosen_file_});
}

void TavelVideo::post_held_back(const ReportGate::Held& held)
{
    if (held.end_of_stream != 0)
        post_end_of_stream(held.end_of_stream);
    if (held.stopped != 0)
        post_report(player_event::engine_stopped, held.stopped);
}

/// Whatever was reported about the file before carries the old number from now on.
unsigned int TavelVideo::open_in_engine(const QString& file)
{
    // Opening a file ends the life of the subtitle lists of the one before.
    subtitle_->set_subtitle(nullptr);
    const unsigned int status = media_player_->open(file.toUtf8().constData());
    ++file_number_;
    settings_->refresh_subtitle();
    return status;
}

unsigned int TavelVideo::close_in_engine()
{
    const unsigned int status = media_player_->close();
    ++file_number_;
    if (status != rask::ok)
        std::printf("File Close Error = 0x%08X \n", status);
    return status;
}
