#include "call_recorder.h"

#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "play_list_widget.h"
#include "player_event.h"
#include "script.h"
#include "setting_widget.h"
#include "tavel_video.h"
#include "time_widget.h"
#include "title_skin.h"
#include "vesk_socket.h"

#include <QtWidgets/QApplication>

namespace
{

int recordings = 0;
int lost_cursors = 0;
int depth = 0;

bool is_recording()
{
    return recordings > 0 && qApp && QThread::currentThread() == qApp->thread();
}

/// One call that is led through here; an empty line writes nothing, but what the call leads to is still left out.
class Call
{
public:
    explicit Call(const QString& line) : counted_(is_recording())
    {
        if (!counted_)
            return;
        if (depth++ == 0 && !line.isEmpty())
            Script::instance().write(line);
    }
    ~Call()
    {
        if (counted_)
            --depth;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

private:
    bool counted_;
};

/// A call whose inner calls are written too.
void note(const QString& line)
{
    if (is_recording() && depth == 0)
        Script::instance().write(line);
}

QString describe_post(int number, const QCustomEvent& event)
{
    QString line = QStringLiteral("post %1").arg(number);
    if (const auto* const seek = event.data<player_event::SeekRequest>())
        line += QStringLiteral(" %1 %2").arg(static_cast<int>(seek->mode)).arg(seek->target_ms);
    else if (const auto* const entry = event.data<player_event::EntryRequest>())
        line += QStringLiteral(" %1 %2").arg(entry->index).arg(entry->position_ms);
    return line;
}

/// Only the control bar's buttons matter to the state chart.
QString button_line(const SkinBase* panel, const char* operation, const QString& name)
{
    if (panel->objectName() != QLatin1String("VIDEO_CONTROL"))
        return {};
    return QStringLiteral("bar %1 %2").arg(QLatin1String(operation), name);
}

QString widget_line(const char* operation, const QWidget* widget)
{
    static const QStringList names{"PLAYLIST",      "BOOKMARK",    "FILEMANAGER",     "TIME",
                                   "VIDEO SETTING", "NOW LOADING", "subtitle_control"};
    if (!names.contains(widget->objectName()))
        return {};
    return QString::fromLatin1(operation) + u' ' + widget->objectName();
}

QString line_of(const char* operation)
{
    return QString::fromLatin1(operation);
}
QString line_of(const char* operation, qint64 value)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(operation)).arg(value);
}
QString line_of(const char* operation, const QString& value)
{
    return QString::fromLatin1(operation) + u' ' + value;
}

/// The playlist as the window makes it, with its operations written down. It has no members of its own: it is made in
/// the place of the other.
class RecordedPlayList : public PlayListWidget
{
public:
    using PlayListWidget::PlayListWidget;

    void start_entry() override
    {
        const Call call(line_of("playlist start_entry"));
        PlayListWidget::start_entry();
    }
    void finish_entry() override
    {
        const Call call(line_of("playlist finish_entry"));
        PlayListWidget::finish_entry();
    }
    bool can_entry() override
    {
        const Call call(line_of("playlist can_entry"));
        return PlayListWidget::can_entry();
    }
    using PlayListWidget::get_current_index;
    int get_current_index() const override { return lost_cursors > 0 ? -1 : PlayListWidget::get_current_index(); }
    void set_current_index(int index) override
    {
        const Call call(line_of("playlist set_current_index", index));
        PlayListWidget::set_current_index(index);
    }
    void save_now_playing(unsigned int time) override
    {
        const Call call(line_of("playlist save_now_playing", time));
        PlayListWidget::save_now_playing(time);
    }
    void remove_now_playing() override
    {
        // The row's going announces itself by an event of its own.
        note(line_of("playlist remove_now_playing"));
        PlayListWidget::remove_now_playing();
    }
    void load_now_playing() override
    {
        note(line_of("playlist load_now_playing"));
        PlayListWidget::load_now_playing();
    }
    void play_now_playing() override
    {
        note(line_of("playlist play_now_playing"));
        PlayListWidget::play_now_playing();
    }
    void set_now_playing(int index) override
    {
        const Call call(line_of("playlist set_now_playing", index));
        PlayListWidget::set_now_playing(index);
    }
    void play_next_file() override
    {
        note(line_of("playlist play_next_file"));
        PlayListWidget::play_next_file();
    }
    void update_now_playing(bool on) override
    {
        const Call call(line_of("playlist update_now_playing", on));
        PlayListWidget::update_now_playing(on);
    }
};
static_assert(sizeof(RecordedPlayList) == sizeof(PlayListWidget));

/// The same for the bookmarks.
class RecordedBookmarks : public BookmarkWidget
{
public:
    using BookmarkWidget::BookmarkWidget;

    void save() override
    {
        const Call call(line_of("bookmarks save"));
        BookmarkWidget::save();
    }
};
static_assert(sizeof(RecordedBookmarks) == sizeof(BookmarkWidget));

} // namespace

// NOLINTBEGIN(bugprone-macro-parentheses): parameters and arguments stand in parentheses of their own

/// A function of the player under its name in the object files: other files' calls come to wrapped_NAME, which goes on
/// to real_NAME.
#define TAVEL_SEAM(RESULT, NAME, SYMBOL, PARAMETERS)                                                                   \
    RESULT real_##NAME PARAMETERS asm("__real_" SYMBOL);                                                               \
    RESULT wrapped_##NAME PARAMETERS asm("__wrap_" SYMBOL);                                                            \
    RESULT wrapped_##NAME PARAMETERS

/// A seam that writes LINE and leaves out what the call leads to.
#define TAVEL_CALL(RESULT, NAME, SYMBOL, PARAMETERS, ARGUMENTS, LINE)                                                  \
    TAVEL_SEAM(RESULT, NAME, SYMBOL, PARAMETERS)                                                                       \
    {                                                                                                                  \
        const Call call(LINE);                                                                                         \
        return real_##NAME ARGUMENTS;                                                                                  \
    }

namespace call_recorder::seams
{

// ---- the panels

TAVEL_CALL(void, show_focus, "_ZN8SkinBase9showFocusERK7QString", (SkinBase * self, const QString& name), (self, name),
           button_line(self, "showFocus", name))
TAVEL_CALL(void, show_normal, "_ZN8SkinBase10showNormalERK7QString", (SkinBase * self, const QString& name),
           (self, name), button_line(self, "showNormal", name))
TAVEL_CALL(void, disable_button, "_ZN8SkinBase13disableButtonERK7QString", (SkinBase * self, const QString& name),
           (self, name), button_line(self, "disableButton", name))
TAVEL_CALL(void, hide_button, "_ZN8SkinBase10hideButtonERK7QString", (SkinBase * self, const QString& name),
           (self, name), button_line(self, "hideButton", name))
TAVEL_CALL(void, set_mute, "_ZN11ControlSkin8set_muteEb", (ControlSkin * self, bool on), (self, on),
           line_of("bar set_mute", on))

TAVEL_CALL(void, set_enable, "_ZN10TimeWidget10set_enableEv", (TimeWidget * self), (self),
           line_of("time_bar set_enable"))
TAVEL_CALL(void, set_disable, "_ZN10TimeWidget11set_disableEv", (TimeWidget * self), (self),
           line_of("time_bar set_disable"))
TAVEL_CALL(void, set_totaltime, "_ZN10TimeWidget13set_totaltimeEj", (TimeWidget * self, unsigned int value),
           (self, value), line_of("time_bar set_totaltime", value))
TAVEL_CALL(void, set_slidervalue, "_ZN10TimeWidget15set_slidervalueEj", (TimeWidget * self, unsigned int value),
           (self, value), line_of("time_bar set_slidervalue", value))
TAVEL_CALL(void, set_repeat_a, "_ZN10TimeWidget11set_repeatAEj", (TimeWidget * self, unsigned int value), (self, value),
           line_of("time_bar set_repeatA", value))
TAVEL_CALL(void, set_repeat_b, "_ZN10TimeWidget11set_repeatBEj", (TimeWidget * self, unsigned int value), (self, value),
           line_of("time_bar set_repeatB", value))
TAVEL_CALL(void, clear_repeat_ab, "_ZN10TimeWidget14clear_repeatABEv", (TimeWidget * self), (self),
           line_of("time_bar clear_repeatAB"))
TAVEL_CALL(void, start_forward_scan, "_ZN10TimeWidget18start_forward_scanEv", (TimeWidget * self), (self),
           line_of("time_bar start_forward_scan"))
TAVEL_CALL(void, start_reverse_scan, "_ZN10TimeWidget18start_reverse_scanEv", (TimeWidget * self), (self),
           line_of("time_bar start_reverse_scan"))
TAVEL_CALL(void, end_scan, "_ZN10TimeWidget8end_scanEv", (TimeWidget * self), (self), line_of("time_bar end_scan"))
TAVEL_CALL(void, cancel_scan, "_ZN10TimeWidget11cancel_scanEv", (TimeWidget * self), (self),
           line_of("time_bar cancel_scan"))

TAVEL_CALL(void, set_filename, "_ZN9TitleSkin12set_filenameERK7QString", (TitleSkin * self, const QString& name),
           (self, name), line_of("title set_filename", name))

// ---- the settings

TAVEL_CALL(void, set_player, "_ZN13SettingWidget10set_playerEP11MediaPlayer",
           (SettingWidget * self, MediaPlayer* player), (self, player), line_of("settings set_player", player ? 1 : 0))
TAVEL_CALL(void, set_volume, "_ZN13SettingWidget10set_volumeEi", (SettingWidget * self, int volume), (self, volume),
           line_of("settings set_volume", volume))
TAVEL_CALL(void, set_playing, "_ZN13SettingWidget11set_playingEb", (SettingWidget * self, bool on), (self, on),
           line_of("settings set_playing", on))
TAVEL_CALL(bool, save_settings, "_ZN13SettingWidget13save_settingsEv", (SettingWidget * self), (self),
           line_of("settings save_settings"))
TAVEL_CALL(void, refresh_subtitle, "_ZN13SettingWidget16refresh_subtitleEv", (SettingWidget * self), (self),
           line_of("settings refresh_subtitle"))
TAVEL_CALL(void, clear_information, "_ZN13SettingWidget17clear_informationEv", (SettingWidget * self), (self),
           line_of("settings clear_information"))
TAVEL_CALL(void, update_information, "_ZN13SettingWidget18update_informationEv", (SettingWidget * self), (self),
           line_of("settings update_information"))

// ---- steps of the window that other files of it ask for

TAVEL_CALL(void, display_information, "_ZN10TavelVideo19display_informationERK7QString",
           (TavelVideo * self, const QString& text), (self, text), line_of("window display_information", text))
TAVEL_CALL(void, draw_media_info, "_ZN10TavelVideo15draw_media_infoERK7QString",
           (TavelVideo * self, const QString& text), (self, text), line_of("window draw_media_info", text))
TAVEL_CALL(void, draw_speed_info, "_ZN10TavelVideo15draw_speed_infoEv", (TavelVideo * self), (self),
           line_of("window draw_speed_info"))
TAVEL_CALL(void, reset_repeat_ab, "_ZN10TavelVideo14reset_repeatABEv", (TavelVideo * self), (self),
           line_of("window reset_repeatAB"))
TAVEL_CALL(void, disable_playback_buttons, "_ZN10TavelVideo24disable_playback_buttonsEv", (TavelVideo * self), (self),
           line_of("window disable_playback_buttons"))
TAVEL_CALL(void, update_buttons, "_ZN10TavelVideo14update_buttonsEv", (TavelVideo * self), (self),
           line_of("window update_buttons"))
TAVEL_CALL(void, close_subtitles, "_ZN10TavelVideo15close_subtitlesEv", (TavelVideo * self), (self),
           line_of("window close_subtitles"))
TAVEL_CALL(void, reload_subtitles, "_ZN10TavelVideo16reload_subtitlesEv", (TavelVideo * self), (self),
           line_of("window reload_subtitles"))
TAVEL_CALL(void, show_subtitle_due, "_ZN10TavelVideo17show_subtitle_dueEv", (TavelVideo * self), (self),
           line_of("window show_subtitle_due"))
TAVEL_CALL(void, show_loading_screen, "_ZN10TavelVideo19show_loading_screenEv", (TavelVideo * self), (self),
           line_of("window show_loading_screen"))
TAVEL_CALL(void, enter_full_screen, "_ZN10TavelVideo17enter_full_screenEv", (TavelVideo * self), (self),
           line_of("window enter_full_screen"))
TAVEL_CALL(void, leave_full_screen, "_ZN10TavelVideo17leave_full_screenEv", (TavelVideo * self), (self),
           line_of("window leave_full_screen"))
TAVEL_CALL(void, move_controls, "_ZN10TavelVideo13move_controlsEi", (TavelVideo * self, int offset), (self, offset),
           line_of("window move_controls", offset))
TAVEL_CALL(void, check_spdif, "_ZN10TavelVideo11check_spdifEv", (TavelVideo * self), (self),
           line_of("window check_spdif"))
TAVEL_CALL(void, switch_spdif_off, "_ZN10TavelVideo16switch_spdif_offEv", (TavelVideo * self), (self),
           line_of("window switch_spdif_off"))
TAVEL_CALL(void, reset_display, "_ZN10TavelVideo13reset_displayEv", (TavelVideo * self), (self),
           line_of("window reset_display"))
TAVEL_CALL(void, show_resolution_warning, "_ZN10TavelVideo23show_resolution_warningEv", (TavelVideo * self), (self),
           line_of("window show_resolution_warning"))
TAVEL_CALL(bool, is_navi_activated, "_ZN10TavelVideo17is_navi_activatedEv", (TavelVideo * self), (self),
           line_of("window is_navi_activated"))
TAVEL_CALL(void, add_bookmark, "_ZN10TavelVideo12add_bookmarkE7QStringj",
           (TavelVideo * self, QString file, unsigned int seconds), (self, file, seconds),
           line_of("window add_bookmark", file + u' ' + QString::number(seconds)))

/// The notice runs an event loop, in which others may call.
TAVEL_SEAM(void, show_notice, "_ZN10TavelVideo11show_noticeERK7QString", (TavelVideo * self, const QString& text))
{
    note(line_of("window show_notice", text.section(u'\n', 0, 0)));
    real_show_notice(self, text);
}

// ---- widgets and windows

TAVEL_CALL(void, show, "_ZN7QWidget4showEv", (QWidget * self), (self), widget_line("show", self))
TAVEL_CALL(void, hide, "_ZN7QWidget4hideEv", (QWidget * self), (self), widget_line("hide", self))
TAVEL_CALL(void, move, "_ZN7QWidget4moveERK6QPoint", (QWidget * self, const QPoint& place), (self, place),
           widget_line(qPrintable(QStringLiteral("move %1 %2").arg(place.x()).arg(place.y())), self))
TAVEL_CALL(void, set_focus, "_ZN7QWidget8setFocusEN2Qt11FocusReasonE", (QWidget * self, Qt::FocusReason reason),
           (self, reason), widget_line("setFocus", self))
TAVEL_CALL(void, activate, "_ZN12DeviceScreen8activateEP7QWidget", (DeviceScreen * self, QWidget* window),
           (self, window), line_of("activate", window->objectName()))
TAVEL_CALL(void, raise_window, "_ZN12DeviceScreen12raise_windowEP7QWidget", (DeviceScreen * self, QWidget* window),
           (self, window), line_of("raise", window->objectName()))

// ---- events, transitions, other programs

TAVEL_SEAM(void, post_event, "_Z17post_custom_eventP7QObjectP12QCustomEvent", (QObject * receiver, QCustomEvent* event))
{
    note(describe_post(event->type(), *event));
    real_post_event(receiver, event);
}

TAVEL_SEAM(void, post_number, "_Z17post_custom_eventP7QObjectiSt3any",
           (QObject * receiver, int number, std::any payload))
{
    note(describe_post(number, QCustomEvent(number, payload)));
    real_post_number(receiver, number, std::move(payload));
}

TAVEL_SEAM(void, transition, "_ZN8TavelHsm8tranStatEPNS_4TranENS_5StateE",
           (TavelHsm * self, TavelHsm::Tran* tran, TavelHsm::State target))
{
    note(line_of("->", QString::fromLatin1(TavelVideo::name_of(target))));
    real_transition(self, tran, target);
}

TAVEL_CALL(int, send, "_ZN10VeskSocket4sendERK7QString", (VeskSocket * self, const QString& text), (self, text),
           line_of("socket", text))

TAVEL_CALL(void, wake, "_ZN14QPEApplication15wakeUpGuiThreadEv", (), (), line_of("wake"))

TAVEL_SEAM(void, quit, "_ZN16QCoreApplication4quitEv", ())
{
    note(line_of("quit"));
    real_quit();
}

/// The window's lists are recorded ones.
TAVEL_SEAM(void, make_playlist, "_ZN14PlayListWidgetC1EP7QWidgetPKc",
           (PlayListWidget * self, QWidget* parent, const char* name))
{
    if (recordings > 0)
        new (self) RecordedPlayList(parent, name);
    else
        real_make_playlist(self, parent, name);
}

TAVEL_SEAM(void, make_bookmarks, "_ZN14BookmarkWidgetC1EP7QWidgetPKc",
           (BookmarkWidget * self, QWidget* parent, const char* name))
{
    if (recordings > 0)
        new (self) RecordedBookmarks(parent, name);
    else
        real_make_bookmarks(self, parent, name);
}

} // namespace call_recorder::seams

// NOLINTEND(bugprone-macro-parentheses)

call_recorder::Recording::Recording()
{
    ++recordings;
}

call_recorder::Recording::~Recording()
{
    --recordings;
}

call_recorder::WithoutCursor::WithoutCursor()
{
    ++lost_cursors;
}

call_recorder::WithoutCursor::~WithoutCursor()
{
    --lost_cursors;
}
