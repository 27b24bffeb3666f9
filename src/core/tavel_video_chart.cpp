#include "tavel_video.h"

#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "main_title.h"
#include "media_player.h"
#include "play_list_widget.h"
#include "time_widget.h"

#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>
#include <QtWidgets/QApplication>

#include <algorithm>

namespace
{

Q_LOGGING_CATEGORY(chart_log, "tavel.chart", QtWarningMsg)

/// The value of a custom event, or null.
template<typename T> const T* data_of(const QEvent* e)
{
    const auto* const custom = dynamic_cast<const QCustomEvent*>(e);
    return custom ? custom->data<T>() : nullptr;
}

struct StateName {
    TavelHsm::State (TavelVideo::*state)(const QEvent*);
    const char* name;
};

constexpr std::array<StateName, 13> STATE_NAMES{{
    {&TavelVideo::exit_state, "exit_state"},
    {&TavelVideo::video_player_state, "video_player_state"},
    {&TavelVideo::get_file_state, "get_file_state"},
    {&TavelVideo::no_file_state, "no_file_state"},
    {&TavelVideo::file_parsed_state, "file_parsed_state"},
    {&TavelVideo::stop_state, "stop_state"},
    {&TavelVideo::file_loaded_state, "file_loaded_state"},
    {&TavelVideo::streaming_state, "streaming_state"},
    {&TavelVideo::play_state, "play_state"},
    {&TavelVideo::pause_state, "pause_state"},
    {&TavelVideo::speed_playing_state, "speed_playing_state"},
    {&TavelVideo::seeking_state, "seeking_state"},
    {&TavelVideo::end_of_stream_state, "end_of_stream_state"},
}};

} // namespace

TavelHsm::Tran TavelVideo::seek_return_;

void TavelVideo::forget_seek_return()
{
    seek_return_ = Tran();
}

const char* TavelVideo::name_of(const State& state)
{
    const auto row = std::find_if(STATE_NAMES.begin(), STATE_NAMES.end(),
                                  [&](const StateName& each) { return State(each.state) == state; });
    return row == STATE_NAMES.end() ? "top" : row->name;
}

/// Takes a transition and leaves one line in the trace.
void TavelVideo::go(Tran* tran, State target)
{
    const State from = myState;
    tranStat(tran, target);
    qCDebug(chart_log, "%d: %s -> %s", event_number_, name_of(from), name_of(myState));
}

TavelVideo::State TavelVideo::initial(const QEvent*)
{
    repeat_mode_ = RepeatMode::Off;
    reset_repeatAB();
    index_ = -1;
    start_position_ms_ = 0;
    control_bar_->showFocus(QStringLiteral("play"));
    control_bar_->hideButton(QStringLiteral("pause"));
    control_bar_->disableButton(QStringLiteral("stop"));
    control_bar_->disableButton(QStringLiteral("pageup"));
    control_bar_->disableButton(QStringLiteral("pagedown"));
    bookmarks_->hide();
    file_manager_->hide();
    time_bar_->set_disable();
    playlist_->hide();
    playlist_->update_now_playing(false);
    control_bar_->showFocus(QStringLiteral("play"));
    myState = &TavelVideo::video_player_state;
    return State();
}

TavelVideo::State TavelVideo::exit_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        QApplication::quit();
        return State();
    default:
        break;
    }
    return &TavelVideo::top;
}

TavelVideo::State TavelVideo::video_player_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case init_event:
        myState = &TavelVideo::get_file_state;
        return State();
    case entry_event:
        if (!media_player_) {
            media_player_ = new MediaPlayer(&callbacks_);
            media_player_->set_subtitles_ready_hook(
                [this] { post_report(player_event::reload_subtitles, file_number_); });
        }
        return State();
    case exit_event:
        if (media_player_) {
            media_player_->set_subtitles_ready_hook({});
            media_player_->release();
            delete media_player_;
            media_player_ = nullptr;
        }
        return State();
    case player_event::open_browser:
        leave_full_screen();
        file_manager_->show();
        DeviceScreen::instance()->raise_window(file_manager_);
        DeviceScreen::instance()->activate(file_manager_);
        file_manager_->setFocus();
        browser_open_ = true;
        return State();
    case player_event::open_settings:
        leave_full_screen();
        place_settings_preview();
        settings_->show();
        DeviceScreen::instance()->raise_window(settings_);
        DeviceScreen::instance()->activate(settings_);
        settings_->setFocus();
        settings_->draw_subtitles(position_);
        settings_open_ = true;
        return State();
    case player_event::settings_closed:
        settings_open_ = false;
        return State();
    case player_event::close:
    case player_event::flush: {
        close_application();
        // Leaving the loaded file sets the position to 0; what is saved at the end is where the viewer was.
        const Time position = position_;
        static Tran tran;
        go(&tran, &TavelVideo::exit_state);
        position_ = position;
        return State();
    }
    case player_event::load: {
        choose_entry(data_of<player_event::EntryRequest>(e));
        if (playlist_->get_filename(index_).isEmpty()) {
            static Tran tran;
            go(&tran, &TavelVideo::no_file_state);
        } else {
            static Tran tran;
            go(&tran, &TavelVideo::file_parsed_state);
        }
        return State();
    }
    case player_event::load_and_play: {
        choose_entry(data_of<player_event::EntryRequest>(e));
        if (playlist_->get_filename(index_).isEmpty()) {
            static Tran tran;
            go(&tran, &TavelVideo::no_file_state);
        } else {
            static Tran tran;
            go(&tran, &TavelVideo::file_loaded_state);
        }
        return State();
    }
    case player_event::mute:
        control_bar_->set_mute(!control_bar_->get_mute());
        return State();
    case player_event::refresh_buttons:
        update_buttons();
        return State();
    default:
        break;
    }
    return &TavelVideo::top;
}

TavelVideo::State TavelVideo::get_file_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        if (playlist_->get_now_playing() != -1)
            playlist_->load_now_playing();
        else
            play_event(-1, 0);
        return State();
    case exit_event:
        return State();
    default:
        break;
    }
    return &TavelVideo::video_player_state;
}

TavelVideo::State TavelVideo::no_file_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        enter_no_file();
        return State();
    case exit_event:
        return State();
    case player_event::reload:
        post(player_event::load);
        return State();
    default:
        break;
    }
    return &TavelVideo::video_player_state;
}

TavelVideo::State TavelVideo::file_parsed_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case init_event:
        myState = &TavelVideo::stop_state;
        return State();
    case entry_event:
        enter_file_parsed();
        return State();
    case exit_event:
        exit_file_parsed();
        return State();
    case player_event::engine_error:
        show_playback_failure();
        return State();
    case player_event::close_file: {
        static Tran tran;
        go(&tran, &TavelVideo::get_file_state);
        return State();
    }
    case player_event::unload: {
        static Tran tran;
        go(&tran, &TavelVideo::no_file_state);
        return State();
    }
    default:
        break;
    }
    return &TavelVideo::video_player_state;
}

TavelVideo::State TavelVideo::stop_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        enter_stop();
        return State();
    case exit_event:
        return State();
    case player_event::play:
        if (QFile::exists(now_playing_file())) {
            static Tran tran;
            go(&tran, &TavelVideo::file_loaded_state);
        } else {
            post_failure();
        }
        return State();
    case player_event::stop:
        answer_socket();
        break;
    case player_event::seek:
        if (const auto* const request = data_of<player_event::SeekRequest>(e)) {
            position_ = clamped(request->target_ms);
            start_position_ms_ = static_cast<unsigned int>(position_);
            time_bar_->set_slidervalue(static_cast<unsigned int>(position_ / 1000));
        }
        return State();
    default:
        break;
    }
    return &TavelVideo::file_parsed_state;
}

TavelVideo::State TavelVideo::file_loaded_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        enter_file_loaded();
        return State();
    case exit_event:
        exit_file_loaded();
        return State();
    case player_event::wait_for_players:
        wait_for_players(dynamic_cast<const QCustomEvent*>(e));
        return State();
    case player_event::start_loaded:
        post_custom_event(this, player_event::play, player_event::LoadNumber{load_number_});
        return State();
    case player_event::play:
        // A wish to play takes back what was asked for before; that the wait is over is no such wish.
        if (!data_of<player_event::LoadNumber>(e))
            kept_.clear();
        if (!load_movie()) {
            static Tran tran;
            go(&tran, &TavelVideo::stop_state);
            return State();
        }
        show_loaded_film();
        {
            static Tran tran;
            go(&tran, &TavelVideo::play_state);
        }
        announce_loaded_film();
        return State();
    case player_event::pause:
    case player_event::stop:
        if (!is_waiting_to_start())
            break;
        keep_for_later(e);
        return State();
    case player_event::load:
        return State();
    case player_event::leave_full_screen:
        leave_full_screen();
        return State();
    case player_event::audio_track:
        media_player_->select_stream(static_cast<int>(StreamKind::Audio),
                                     static_cast<int>(settings_->get_audio_track()));
        return State();
    case player_event::replay:
        play_event(playlist_->get_now_playing(), static_cast<unsigned int>(position_));
        return State();
    case player_event::reload_subtitles:
        reload_subtitles();
        return State();
    case player_event::reset_display:
        reset_display();
        return State();
    case player_event::picture_colour:
        set_colours();
        return State();
    case player_event::unload:
        start_position_ms_ = static_cast<unsigned int>(position_);
        break;
    case player_event::stream_started:
        show_subtitle_due();
        break;
    default:
        break;
    }
    return &TavelVideo::file_parsed_state;
}

TavelVideo::State TavelVideo::streaming_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        return State();
    case exit_event:
        history_ = myState;
        return State();
    case player_event::stop: {
        // The request may have waited for the film to start, and the place to start from is forgotten then.
        if (data_of<player_event::KeepPlace>(e))
            start_position_ms_ = static_cast<unsigned int>(position_);
        static Tran tran;
        go(&tran, &TavelVideo::stop_state);
        reopen_after_stop();
        return State();
    }
    case player_event::seek:
        if (const auto* const request = data_of<player_event::SeekRequest>(e)) {
            seek_request_ = *request;
            static Tran tran;
            go(&tran, &TavelVideo::seeking_state);
        }
        return State();
    case player_event::close:
        break;
    case player_event::add_bookmark:
        if (bookmark_position())
            return State();
        break;
    case player_event::repeat_ab:
        if (settings_->get_repeatab_enabled() && seek_allowed_)
            step_repeat();
        return State();
    case player_event::enter_full_screen:
        if (!settings_->isVisible() && !file_manager_->isVisible())
            enter_full_screen();
        return State();
    case player_event::end_of_stream: {
        static Tran tran;
        go(&tran, &TavelVideo::end_of_stream_state);
        return State();
    }
    default:
        break;
    }
    return &TavelVideo::file_loaded_state;
}

TavelVideo::State TavelVideo::play_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        settings_->set_playing(true);
        return State();
    case exit_event:
        settings_->set_playing(false);
        return State();
    case player_event::play:
        return State();
    case player_event::pause:
        if (media_player_->pause() != rask::ok) {
            post_failure();
            return State();
        }
        display_information(text(TavelVideoString::Pause));
        {
            static Tran tran;
            go(&tran, &TavelVideo::pause_state);
        }
        show_play_button();
        return State();
    case player_event::speed_down:
        set_speed(SpeedCode::Down);
        return State();
    case player_event::speed_normal:
        set_speed(SpeedCode::Normal);
        return State();
    case player_event::speed_up:
        set_speed(SpeedCode::Up);
        return State();
    case player_event::scan_forward:
    case player_event::scan_back:
        if (begin_scan(static_cast<int>(e->type()) == player_event::scan_forward ? Scan::Forward : Scan::Back)) {
            static Tran tran;
            go(&tran, &TavelVideo::speed_playing_state);
        }
        return State();
    default:
        break;
    }
    return &TavelVideo::streaming_state;
}

TavelVideo::State TavelVideo::pause_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        if (settings_->get_privacy_on()) {
            set_picture_plane(false);
            hidden_for_privacy_ = true;
        }
        enableLCDOff(true);
        answer_socket();
        reset_volume();
        return State();
    case exit_event:
        // The setting may have been changed since the picture was hidden.
        if (settings_->get_privacy_on() || hidden_for_privacy_)
            set_picture_plane(true);
        hidden_for_privacy_ = false;
        enableLCDOff(false);
        apply_volume();
        return State();
    case player_event::play:
        if (media_player_->play() != rask::ok) {
            post_failure();
            return State();
        }
        display_information(text(TavelVideoString::Play));
        show_pause_button();
        {
            static Tran tran;
            go(&tran, &TavelVideo::play_state);
        }
        return State();
    default:
        break;
    }
    return &TavelVideo::streaming_state;
}

TavelVideo::State TavelVideo::speed_playing_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        enter_speed_playing();
        return State();
    case exit_event:
        exit_speed_playing();
        return State();
    case player_event::seek:
        return State();
    case player_event::play:
        if (resume_from_scan()) {
            static Tran tran;
            go(&tran, &TavelVideo::play_state);
        }
        return State();
    case player_event::pause:
    case player_event::open_browser:
    case player_event::open_settings:
    case player_event::leave_full_screen:
        if (resume_from_scan()) {
            post(e->type());
            static Tran tran;
            go(&tran, &TavelVideo::play_state);
        }
        return State();
    case player_event::end_of_stream:
        if (scan_mode_ == SettingWidget::TrickMode::SeekBarOnly)
            return State();
        break;
    default:
        break;
    }
    return &TavelVideo::streaming_state;
}

TavelVideo::State TavelVideo::seeking_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
        enter_seeking();
        return State();
    case exit_event:
        seeking_ = false;
        return State();
    case player_event::stream_started:
        // One record for all targets: every later seek returns to where the first one did.
        go(&seek_return_, history_);
        settle_after_seek();
        show_subtitle_due();
        post_kept();
        return State();
    case player_event::pause:
    case player_event::stop:
    case player_event::seek:
        keep_for_later(e);
        return State();
    case player_event::play:
        start_position_ms_ = static_cast<unsigned int>(clamped(seek_request_.target_ms));
        break;
    default:
        break;
    }
    return &TavelVideo::file_loaded_state;
}

TavelVideo::State TavelVideo::end_of_stream_state(const QEvent* e)
{
    switch (static_cast<int>(e->type())) {
    case entry_event:
    case exit_event:
        return State();
    case player_event::engine_stopped:
    case player_event::end_of_stream: {
        choose_after_end();
        static Tran tran;
        go(&tran, &TavelVideo::stop_state);
        return State();
    }
    default:
        break;
    }
    return &TavelVideo::file_loaded_state;
}
