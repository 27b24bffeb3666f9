#include "tavel_video.h"

#include "audio_device.h"
#include "config.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "global.h"
#include "main_title.h"
#include "media_player.h"
#include "message_box.h"
#include "play_list_widget.h"
#include "qcop_envelope.h"
#include "vesk_socket.h"

#include <QtCore/QDataStream>
#include <QtCore/QScopedValueRollback>
#include <QtWidgets/QApplication>

#include <cstdio>

namespace
{

constexpr const char* SYSTEM_CHANNEL = "QPE/System";
constexpr const char* TASKBAR_CHANNEL = "QPE/TaskBar";
constexpr const char* SCREEN_APPLET_CHANNEL = "QPE/Applet/screenchage";
constexpr const char* NAVIGATION_CHANNEL = "QPE/Brevaton/navi";
/// Our name for the task bar.
constexpr const char* APPLICATION_NAME = "tavel_video";

constexpr int TIME_CHANGE_PAUSE_MS = 500;
/// The volume that hands the sound back to the system.
constexpr unsigned char SYSTEM_VOLUME = 1;
constexpr int DEFAULT_BRIGHTNESS = 255;

/// The argument of a message.
template<typename T> T argument_of(const QByteArray& arguments, bool* read)
{
    QDataStream stream(arguments);
    stream.setVersion(QCopEnvelope::stream_version);
    T argument{};
    stream >> argument;
    *read = stream.status() == QDataStream::Ok;
    return argument;
}

void warn_unreadable(const QCString& message)
{
    qWarning("tavel_video: the argument of \"%s\" cannot be read", message.constData());
}

} // namespace

// ---------------------------------------------------------------- messages of other programs

void TavelVideo::receive_message(const QCString& message, const QByteArray& arguments)
{
    bool read = true;
    if (message == "transmit_filename(QString)") {
        const auto list = argument_of<QString>(arguments, &read);
        if (read)
            take_file_list(list);
    } else if (message == "DoScreenChange(unsigned char)") {
        const auto to_tv = argument_of<quint8>(arguments, &read);
        if (read && (is_tv_wanted() ? to_tv == 0 : to_tv == 1))
            post_screen_switch();
    } else if (message == "timeChange(QString)") {
        receive_time_change();
    }
    if (!read)
        warn_unreadable(message);
}

void TavelVideo::post_screen_switch()
{
    ++screen_switches_ahead_;
    post(player_event::switch_screen);
}

/// The screen once everything asked for so far is done: each switch goes to the other one.
bool TavelVideo::is_tv_wanted() const
{
    return tv_out_ != (screen_switches_ahead_ % 2 != 0);
}

void TavelVideo::receive_time_change()
{
    if (!isIn(&TavelVideo::play_state))
        return;
    qWarning("********** timeChange(QString)\n");
    media_player_->pause();
    Global::msleep(TIME_CHANGE_PAUSE_MS);
    media_player_->play();
}

/// Adds a list, and after it those that came meanwhile.
void TavelVideo::take_file_list(const QString& list)
{
    // Without one complete line there is nothing to add, and nothing may be replaced.
    if (list.indexOf(u'\n') <= 0)
        return;
    file_lists_.push_back(list);
    if (adding_files_)
        return;
    const QScopedValueRollback adding(adding_files_, true);
    while (!file_lists_.empty()) {
        const QString next = std::move(file_lists_.front());
        file_lists_.pop_front();
        const QScopedValueRollback quiet(quiet_cursor_, quiet_cursor_ || !append_files_);
        if (!append_files_)
            playlist_->clear();
        add_playlist(next);
    }
}

void TavelVideo::add_playlist(const QString& list)
{
    const int first = playlist_->get_count();
    QString first_file;
    qsizetype begin = 0;
    for (qsizetype end = list.indexOf(u'\n'); end > begin; end = list.indexOf(u'\n', begin)) {
        if (playlist_->get_count() >= PlayListWidget::capacity) {
            show_notice(tr("Playlist is full.  Please remove files before adding new ones."));
            break;
        }
        const QString file = list.mid(begin, end - begin);
        playlist_->add_track(file);
        if (first_file.isEmpty())
            first_file = file;
        begin = end + 1;
    }
    file_name_ = first_file;
    file_manager_->close();
    DeviceScreen::instance()->activate(this);
    place_focus();
    if (first < playlist_->get_count())
        playlist_->set_current_index(first);
    playlist_->save();
    if (!append_files_) {
        playlist_->set_now_playing(first);
        play_event(first, 0);
    }
    append_files_ = false;
}

/// The file manager can also be asked to add its choice, without having been opened for that.
void TavelVideo::note_append_request(bool append)
{
    append_files_ = append_files_ || append;
}

void TavelVideo::open_playlist_browser()
{
    append_files_ = true;
    post(player_event::open_browser);
}

// ---------------------------------------------------------------- the socket shared with the navigation program

void TavelVideo::receive_socket_message(QString text)
{
    struct Row {
        const char* text;
        void (TavelVideo::*act)();
    };
    static constexpr std::array<Row, 7> ROWS{{
        {"OK", &TavelVideo::count_acknowledgement},
        {"NAVI_START", &TavelVideo::stop_for_navigation},
        {"STOP", &TavelVideo::stop_for_navigation_now},
        {"PAUSE", &TavelVideo::pause_for_navigation},
        {"AUDIO_PAUSE", &TavelVideo::pause_for_navigation},
        {"RESUME", &TavelVideo::resume_for_navigation},
        {"AUDIO_RESUME", &TavelVideo::resume_for_navigation},
    }};
    for (const Row& row : ROWS) {
        if (text == QLatin1String(row.text)) {
            (this->*row.act)();
            return;
        }
    }
    qApp->processEvents();
}

void TavelVideo::count_acknowledgement()
{
    ++acknowledgements_;
}

void TavelVideo::stop_for_navigation()
{
    take_notice_down();
    post_custom_event(this, player_event::stop, player_event::KeepPlace{});
    reply_owed_ = true;
    // A film that a request has stopped stands at 0; the place it was stopped at is kept already.
    if (!isIn(&TavelVideo::stop_state))
        start_position_ms_ = static_cast<unsigned int>(position_);
    // Looked at after the stop has been acted on.
    QMetaObject::invokeMethod(this, &TavelVideo::answer_if_nothing_plays, Qt::QueuedConnection);
}

void TavelVideo::stop_for_navigation_now()
{
    stop_for_navigation();
    qApp->processEvents();
    answer_if_nothing_plays();
}

void TavelVideo::pause_for_navigation()
{
    take_notice_down();
    if (!isIn(&TavelVideo::stop_state) && !isIn(&TavelVideo::no_file_state) && !isIn(&TavelVideo::pause_state)) {
        already_paused_ = false;
        post_custom_event(this, player_event::pause, player_event::ForNavigation{});
        reply_owed_ = true;
        qApp->processEvents();
        answer_if_nothing_plays();
        return;
    }
    if (isIn(&TavelVideo::pause_state))
        already_paused_ = true;
    reply_owed_ = true;
    answer_socket();
}

void TavelVideo::resume_for_navigation()
{
    // It counts for one resume, wherever that finds the film: the viewer may have played on or stopped meanwhile.
    const bool viewer_had_paused = std::exchange(already_paused_, false);
    if (isIn(&TavelVideo::stop_state)) {
        send_ok();
        return;
    }
    if (isIn(&TavelVideo::pause_state)) {
        if (!viewer_had_paused) {
            post(player_event::play);
            reset_menu_timer();
        }
        qApp->processEvents();
        return;
    }
    take_back_kept_pause();
    bool busy = true;
    if (media_player_ && media_player_->query(static_cast<int>(Query::Busy), &busy) == rask::ok && !busy)
        send_ok();
}

void TavelVideo::send_ok()
{
    reply_owed_ = false;
    socket_->send(QStringLiteral("OK"));
}

/// Sends the "OK" that the navigation program waits for, if it does.
void TavelVideo::answer_socket()
{
    if (reply_owed_)
        send_ok();
}

/// With no film started nothing will answer the navigation program later.
void TavelVideo::answer_if_nothing_plays()
{
    if (!started_)
        answer_socket();
}

// ---------------------------------------------------------------- volume

void TavelVideo::send_volume(int volume)
{
    volume_ = volume;
    // A muted bar sends 0, which is not what the next start is to have.
    settings_->set_volume(static_cast<int>(control_bar_->get_volume()));
    if (isIn(&TavelVideo::file_loaded_state))
        apply_volume();
}

void TavelVideo::apply_volume()
{
    audio_device_set_appvolume(static_cast<unsigned char>(volume_));
}

void TavelVideo::reset_volume()
{
    audio_device_set_appvolume(SYSTEM_VOLUME);
}

// ---------------------------------------------------------------- screen, backlight and task bar

void TavelVideo::set_lcd_brightness()
{
    const Config config(QStringLiteral("qpe"));
    QCopEnvelope envelope(SYSTEM_CHANNEL, "setBacklight(int)");
    envelope << config.readNumEntry(QStringLiteral("Brightness"), DEFAULT_BRIGHTNESS);
}

/// @param on whether the screen may blank.
void TavelVideo::enableLCDOff(bool on)
{
    QCopEnvelope(SYSTEM_CHANNEL, on ? "releaseLCDOff()" : "preventLCDOff()");
}

void TavelVideo::send_screenchageapplet(bool on)
{
    const auto value = static_cast<quint8>(on ? 1 : 0);
    {
        QCopEnvelope envelope(SCREEN_APPLET_CHANNEL, "videoWindowActivate(unsigned char)");
        envelope << value;
    }
    std::printf("tavel video send message =%d\n", value);
}

void TavelVideo::move_taskbar(int x, int y)
{
    QCopEnvelope envelope(TASKBAR_CHANNEL, "move(int,int)");
    envelope << x << y;
}

void TavelVideo::display_taskbar(bool on)
{
    QCopEnvelope envelope(SYSTEM_CHANNEL, on ? "showTaskBar(QString)" : "hideTaskBar(QString)");
    envelope << QString::fromLatin1(APPLICATION_NAME);
}

/// Tells the viewer when the navigation program keeps the player from starting.
bool TavelVideo::is_navi_activated()
{
    if (!QCopChannel::isRegistered(NAVIGATION_CHANNEL))
        return false;
    show_notice(text(TavelVideoString::NavigationRunning));
    return true;
}

// ---------------------------------------------------------------- notices

/// Shows @p notice and waits until it is gone; in the place of the one on screen, if there is one, without waiting.
void TavelVideo::show_notice(const QString& notice)
{
    message_box_->setText(notice);
    message_box_->exec();
}

void TavelVideo::take_notice_down()
{
    if (message_box_->isVisible())
        message_box_->stop();
}
