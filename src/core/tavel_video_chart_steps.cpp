#include "tavel_video.h"

#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "global.h"
#include "main_title.h"
#include "media_player.h"
#include "osd_control.h"
#include "play_list_widget.h"
#include "subtitle_control.h"
#include "time_widget.h"
#include "vesk_socket.h"

#include <QtCore/QFile>
#include <QtCore/QScopedValueRollback>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace
{

/// How long one step of the wait for other players takes.
constexpr int POLL_INTERVAL_US = 10000;
constexpr int SETTLE_INTERVAL_US = 10;
constexpr int SCAN_RATE = 3;
constexpr Time LEAST_REPEAT_MS = 1000;

/// The time bar while it scans in full screen.
constexpr QPoint SCAN_BAR_PLACE(0, 262);

} // namespace

void TavelVideo::close_application()
{
    close_in_engine();
    switch_spdif_off();
    settings_->set_volume(static_cast<int>(control_bar_->get_volume()));
    settings_->save_settings();
    settings_->clear_information();
}

/// The entry is stored when it is acted on, so that a request that nobody took changes nothing; without one the stored
/// entry stays.
void TavelVideo::choose_entry(const player_event::EntryRequest* request)
{
    if (!request)
        return;
    index_ = request->index;
    start_position_ms_ = request->position_ms;
}

QString TavelVideo::now_playing_file() const
{
    return playlist_->get_filename(playlist_->get_now_playing());
}

void TavelVideo::enter_no_file()
{
    control_bar_->showFocus(QStringLiteral("open"));
    disable_playback_buttons();
    show_file_name(QString());
    close_subtitles();
    time_bar_->set_slidervalue(0);
    settings_->clear_information();
}

void TavelVideo::enter_file_parsed()
{
    ++chosen_file_;
    failure_handled_ = false;
    const QString file = playlist_->get_filename(index_);
    opened_file_ = file;
    if (playlist_->get_current_index() == -1) {
        const QScopedValueRollback quiet(quiet_cursor_, true);
        playlist_->set_current_index(playlist_->get_now_playing());
    }
    playlist_->set_now_playing(index_);
    playlist_->update_now_playing(true);
    playlist_->save_now_playing(start_position_ms_);
    if (!playlist_->can_entry()) {
        playlist_->remove_now_playing();
        playlist_->save_now_playing(0);
        show_notice(text(TavelVideoString::SystemError));
        post(player_event::stop);
        return;
    }
    playlist_->start_entry();
    if (open_in_engine(file) != rask::ok) {
        playlist_->set_now_playing(index_);
        post_failure();
        return;
    }
    if (media_player_->has_info("video"))
        describe_parsed_file(file);
}

void TavelVideo::describe_parsed_file(const QString& file)
{
    show_file_name(file.section(u'/', -1));
    seek_allowed_ = media_player_->get_info("container", "name") != QLatin1String("MPEG");
    if (seek_allowed_) {
        time_bar_->set_enable();
    } else {
        time_bar_->set_disable();
        start_position_ms_ = 0;
    }
    total_ms_ = media_player_->get_info("video", "time").toLongLong();
    time_bar_->set_totaltime(static_cast<unsigned int>(total_ms_ / 1000));
    time_bar_->set_slidervalue(start_position_ms_ / 1000);
    settings_->set_player(media_player_);
    settings_->update_information();
    draw_media_info(QString());
    playlist_->save_now_playing(start_position_ms_);
    position_ = start_position_ms_;
    switch_spdif_off();
}

void TavelVideo::exit_file_parsed()
{
    playlist_->update_now_playing(false);
    settings_->set_player(nullptr);
    close_in_engine();
    settings_->clear_information();
    close_subtitles();
    time_bar_->set_disable();
    playlist_->finish_entry();
}

/// The file cannot be played: it goes out of the playlist, with a notice.
void TavelVideo::show_playback_failure()
{
    const bool exists = QFile::exists(now_playing_file());
    playlist_->remove_now_playing();
    playlist_->save_now_playing(0);
    position_ = 0;
    start_position_ms_ = 0;
    time_bar_->set_slidervalue(0);
    show_notice(text(exists ? TavelVideoString::CannotExecuteFile : TavelVideoString::FileNotFound));
}

void TavelVideo::enter_stop()
{
    control_bar_->showFocus(QStringLiteral("play"));
    control_bar_->disableButton(QStringLiteral("stop"));
    control_bar_->hideButton(QStringLiteral("pause"));
    close_subtitles();
    answer_socket();
}

void TavelVideo::enter_file_loaded()
{
    if (is_navi_activated()) {
        post(player_event::close_file);
        return;
    }
    if (!media_player_->has_info("video"))
        return;
    apply_volume();
    send_screenchageapplet(true);
    const bool controls_shown = !full_screen_;
    enter_full_screen();
    if (controls_shown)
        show_loading_screen();
    acknowledgements_ = 0;
    stop_recipients_ = socket_->send(QStringLiteral("STOP"));
    enableLCDOff(false);
    std::printf("SEND STOP: %d\n", stop_recipients_);
    post_custom_event(this, player_event::wait_for_players, player_event::LoadNumber{load_number_});
}

void TavelVideo::exit_file_loaded()
{
    ++load_number_;
    kept_.clear();
    loading_->hide();
    set_picture_plane(false);
    display_information(text(TavelVideoString::Stop));
    const bool same_row = now_playing_file() == opened_file_;
    playlist_->save_now_playing(same_row ? static_cast<unsigned int>(position_) : 0);
    position_ = 0;
    repeat_mode_ = RepeatMode::Off;
    reset_repeatAB();
    time_bar_->set_slidervalue(0);
    close_subtitles();
    started_ = false;
    if (tv_out_) {
        controls_offset_ = 0;
        move_controls(0);
    }
    leave_full_screen();
    if (spdif_active_)
        switch_spdif_off();
    enableLCDOff(true);
    reset_volume();
    send_screenchageapplet(false);
    const unsigned int status = close_in_engine();
    // A report may have come until the file was closed.
    position_ = 0;
    if (status == rask::ok)
        settings_->clear_information();
}

/// One step of the wait; it has no limit, the player waits until every recipient has answered.
void TavelVideo::wait_for_players(const QCustomEvent* event)
{
    Global::usleep(POLL_INTERVAL_US);
    if (acknowledgements_ < stop_recipients_) {
        post_custom_event(this, event->clone());
        return;
    }
    acknowledgements_ = 0;
    Global::usleep(SETTLE_INTERVAL_US);
    reload_subtitles();
    check_spdif();
    post_custom_event(this, player_event::start_loaded, player_event::LoadNumber{load_number_});
}

/// The file is loaded but was not started: other players are still to fall silent.
bool TavelVideo::is_waiting_to_start() const
{
    return !started_ && myState == State(&TavelVideo::file_loaded_state);
}

bool TavelVideo::load_movie()
{
    reset_display();
    const QString file = now_playing_file();
    const QByteArray name = file.toUtf8();
    close_subtitles();
    if (open_in_engine(file) != rask::ok) {
        post_failure();
        return false;
    }
    settings_->update_information();
    if (media_player_->prepare(name.constData()) != rask::ok) {
        post_failure();
        return false;
    }
    const QSize output = output_size();
    media_player_->set_video_window(0, 0, output.width(), output.height());
    media_player_->set_aspect(settings_->get_aspect_ratio());
    if (media_player_->play() != rask::ok) {
        post_failure();
        return false;
    }
    if (start_position_ms_ > 0 && seek_allowed_)
        post_custom_event(this, player_event::seek,
                          player_event::SeekRequest{SeekMode::Forward, 0, start_position_ms_, file_number_});
    set_colours();
    reload_subtitles();
    settings_->refresh_subtitle();
    media_player_->select_stream(static_cast<int>(StreamKind::Audio), static_cast<int>(settings_->get_audio_track()));
    return true;
}

/// Playback has begun: what is to be seen and heard from now on.
void TavelVideo::show_loaded_film()
{
    // Nothing that waits for the other players may start the film once more.
    ++load_number_;
    set_picture_plane(true);
    apply_volume();
    playlist_->save_now_playing(start_position_ms_);
    subtitle_->show();
    show_pause_button();
    control_bar_->showNormal(QStringLiteral("stop"));
    control_bar_->showNormal(QStringLiteral("pageup"));
    control_bar_->showNormal(QStringLiteral("pagedown"));
}

void TavelVideo::announce_loaded_film()
{
    loading_->hide();
    start_position_ms_ = 0;
    started_ = true;
    post_kept();
    show_resolution_warning();
    if (spdif_active_)
        show_notice(text(TavelVideoString::SpdifOut));
}

void TavelVideo::reopen_after_stop()
{
    if (open_in_engine(now_playing_file()) != rask::ok) {
        post_failure();
        return;
    }
    settings_->update_information();
    time_bar_->set_slidervalue(0);
    position_ = 0;
}

/// @return false when the list is full.
bool TavelVideo::bookmark_position()
{
    if (bookmarks_->get_count() >= BookmarkWidget::capacity) {
        show_notice(text(TavelVideoString::BookmarkListFull));
        return false;
    }
    add_bookmark(now_playing_file(), static_cast<unsigned int>(position_ / 1000));
    display_information(text(TavelVideoString::Bookmark));
    return true;
}

/// A, then B, then neither.
void TavelVideo::step_repeat()
{
    switch (repeat_mode_) {
    case RepeatMode::Off:
        repeat_a_ = position_.load();
        time_bar_->set_repeatA(static_cast<unsigned int>(repeat_a_ / 1000));
        control_bar_->hideButton(QStringLiteral("repeatA"));
        control_bar_->showFocus(QStringLiteral("repeatB"));
        display_information(text(TavelVideoString::SetA));
        repeat_mode_ = RepeatMode::SetA;
        break;
    case RepeatMode::SetA: {
        const Time last = std::max<Time>(repeat_a_, position_);
        Time first = std::min<Time>(repeat_a_, position_);
        // Near the end of the film the passage grows backward: a B behind the end would never be passed.
        if (total_ms_ > LEAST_REPEAT_MS && first + LEAST_REPEAT_MS >= total_ms_)
            first = std::max<Time>(0, std::min(first, last - LEAST_REPEAT_MS));
        repeat_a_ = first;
        repeat_b_ = std::max(last, first + LEAST_REPEAT_MS);
        past_b_ = false;
        time_bar_->set_repeatA(static_cast<unsigned int>(repeat_a_ / 1000));
        time_bar_->set_repeatB(static_cast<unsigned int>(repeat_b_ / 1000));
        control_bar_->hideButton(QStringLiteral("repeatB"));
        control_bar_->showFocus(QStringLiteral("repeatAB"));
        display_information(text(TavelVideoString::SetB));
        repeat_mode_ = RepeatMode::SetAB;
        break;
    }
    case RepeatMode::SetAB:
        repeat_mode_ = RepeatMode::Off;
        time_bar_->clear_repeatAB();
        control_bar_->hideButton(QStringLiteral("repeatAB"));
        control_bar_->showFocus(QStringLiteral("repeatA"));
        display_information(text(TavelVideoString::ReleasedAB));
        break;
    }
}

void TavelVideo::set_colours()
{
    const std::array<std::int32_t, 3> colours{settings_->get_red_value(), settings_->get_green_value(),
                                              settings_->get_blue_value()};
    media_player_->set_parameter(static_cast<int>(Parameter::Colour), colours.data(), sizeof(colours));
}

void TavelVideo::set_speed(SpeedCode code)
{
    if (media_player_->set_speed(static_cast<int>(code)) == rask::ok)
        draw_speed_info();
}

/// @return false when the engine refused.
bool TavelVideo::begin_scan(Scan scan)
{
    const bool forward = scan == Scan::Forward;
    scan_mode_ = settings_->get_trick_mode();
    scan_ = scan;
    if (scan_mode_ == SettingWidget::TrickMode::VideoKeyFrames) {
        gate_.shut();
        scan_watch_ = scan;
        const unsigned int status =
            forward ? media_player_->scan_forward(SCAN_RATE) : media_player_->scan_backward(SCAN_RATE);
        if (status != rask::ok) {
            scan_watch_ = Scan::None;
            post_failure();
            post_held_back(gate_.open());
            return false;
        }
    } else {
        seeking_ = true;
    }
    display_information(text(forward ? TavelVideoString::FastForward : TavelVideoString::FastRewind));
    show_play_button();
    return true;
}

void TavelVideo::enter_speed_playing()
{
    enter_full_screen();
    if (scan_mode_ != SettingWidget::TrickMode::SeekBarOnly)
        return;
    time_bar_->set_disable();
    time_bar_->move(SCAN_BAR_PLACE);
    time_bar_->show();
    // Disabling the bar has put it to 0.
    time_bar_->set_slidervalue(static_cast<unsigned int>(position_ / 1000));
    if (scan_ == Scan::Forward)
        time_bar_->start_forward_scan();
    else
        time_bar_->start_reverse_scan();
}

void TavelVideo::exit_speed_playing()
{
    scan_watch_ = Scan::None;
    seeking_ = false;
    // The seek that a crossing of B asked for during the scan was ignored: ask again.
    past_b_ = false;
    post_held_back(gate_.open());
    if (scan_mode_ != SettingWidget::TrickMode::SeekBarOnly)
        return;
    if (time_bar_->scan_direction() != TimeWidget::ScanDirection::None)
        time_bar_->cancel_scan();
    time_bar_->set_enable();
    // Controls that could not be hidden for the scan keep their bar: nothing would bring it back to them.
    if (full_screen_)
        time_bar_->hide();
    time_bar_->move(TIME_BAR_PLACE);
    display_information(text(TavelVideoString::Play));
}

/// @return false when the engine refused to play on.
bool TavelVideo::resume_from_scan()
{
    if (scan_mode_ == SettingWidget::TrickMode::VideoKeyFrames) {
        if (media_player_->play() != rask::ok) {
            post_failure();
            return false;
        }
    } else {
        time_bar_->end_scan();
    }
    show_pause_button();
    return true;
}

/// Keeps a copy of a request until playback goes on; of seeks only the newest.
void TavelVideo::keep_for_later(const QEvent* e)
{
    const auto* const event = dynamic_cast<const QCustomEvent*>(e);
    if (!event)
        return;
    if (static_cast<int>(e->type()) == player_event::seek)
        std::erase_if(kept_, [](const auto& each) { return static_cast<int>(each->type()) == player_event::seek; });
    kept_.emplace_back(event->clone());
}

/// Forgets a pause that the navigation program asked for and that is still kept, and answers it.
void TavelVideo::take_back_kept_pause()
{
    const auto kept_before = kept_.size();
    std::erase_if(kept_, [](const auto& each) { return each->template data<player_event::ForNavigation>(); });
    if (kept_.size() != kept_before)
        answer_socket();
}

void TavelVideo::post_kept()
{
    for (auto& event : std::exchange(kept_, {}))
        post_custom_event(this, event.release());
}

void TavelVideo::enter_seeking()
{
    seeking_ = true;
    if (media_player_->seek(seek_request_.mode, clamped(seek_request_.target_ms)) != rask::ok)
        post_failure();
}

/// The state reached need not be the one that was left: brings engine and buttons in line with it.
void TavelVideo::settle_after_seek()
{
    const Time target = clamped(seek_request_.target_ms);
    // A film that rests reports no position by itself.
    position_ = target;
    time_bar_->set_slidervalue(static_cast<unsigned int>(target / 1000));
    if (isIn(&TavelVideo::pause_state)) {
        if (media_player_->pause() != rask::ok)
            post_failure();
        show_play_button();
    } else if (isIn(&TavelVideo::play_state)) {
        // The report of the end follows; to play on there is to play the film anew.
        const Time length = total_ms_;
        const bool at_end = length > 0 && target >= length;
        if (!at_end && media_player_->play() != rask::ok)
            post_failure();
        show_pause_button();
    }
}

void TavelVideo::choose_after_end()
{
    position_ = 0;
    playlist_->save_now_playing(0);
    if (settings_->isVisible() || file_manager_->isVisible()) {
        playlist_->load_now_playing();
        return;
    }
    switch (settings_->get_after_eos()) {
    case SettingWidget::AfterEos::PlayNextFile:
        playlist_->play_next_file();
        break;
    case SettingWidget::AfterEos::RepeatCurrentFile:
        playlist_->play_now_playing();
        break;
    case SettingWidget::AfterEos::Stop:
        playlist_->load_now_playing();
        break;
    }
}

void TavelVideo::show_play_button()
{
    control_bar_->hideButton(QStringLiteral("pause"));
    control_bar_->showFocus(QStringLiteral("play"));
}

void TavelVideo::show_pause_button()
{
    control_bar_->hideButton(QStringLiteral("play"));
    control_bar_->showFocus(QStringLiteral("pause"));
}

/// The film fills a small window beside the settings, visible if it was before.
void TavelVideo::place_settings_preview()
{
    media_player_->set_aspect(static_cast<int>(AspectMode::Fill));
    const bool picture_was_on = picture_plane_on_;
    set_picture_plane(false);
    // On the TV the film's place is measured from the screen's corner, on the LCD from the dialog's.
    QRect place = settings_->picture_rectangle();
    if (tv_out_)
        place.translate(DeviceScreen::instance()->desktop_geometry().topLeft() - QPoint(0, controls_offset_));
    media_player_->set_video_window(place.x(), place.y(), place.width(), place.height());
    settings_->place_preview();
    if (picture_was_on)
        set_picture_plane(true);
}

/// A target brought inside the film.
Time TavelVideo::clamped(Time target) const
{
    const Time length = total_ms_;
    return std::max<Time>(0, length > 0 ? std::min(target, length) : target);
}
