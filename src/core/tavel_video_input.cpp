#include "tavel_video.h"

#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "dic_dialog.h"
#include "main_title.h"
#include "message_box.h"
#include "play_list_widget.h"
#include "q_select_edit.h"
#include "subtitle_control.h"
#include "time_widget.h"
#include "title_skin.h"
#include "vesk_socket.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>

#include <algorithm>

namespace
{

struct KeyEvent {
    int key;
    player_event::Number number;
};

constexpr std::array<KeyEvent, 7> KEY_EVENTS{{
    {Qt::Key_Escape, player_event::close},
    {Qt::Key_F2, player_event::open_browser},
    {Qt::Key_F4, player_event::stop},
    {Qt::Key_F5, player_event::open_settings},
    {Qt::Key_F7, player_event::repeat_ab},
    {Qt::Key_F9, player_event::scan_back},
    {Qt::Key_F10, player_event::scan_forward},
}};

/// Pixels by which one key press moves the controls on a TV.
constexpr int CONTROLS_STEP = 10;

/// A dialog on the display keeps the toolkit's own list of modal widgets empty.
bool modal_dialog_is_up()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(),
                       [](const QWidget* each) { return each->isVisible() && each->isModal(); });
}

} // namespace

// ---------------------------------------------------------------- keys

void TavelVideo::keyPressEvent(QKeyEvent* event)
{
    const bool in_full_screen = full_screen_ && !event->isAutoRepeat();
    if (in_full_screen ? handle_full_screen_key(event) : handle_controls_key(event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const auto row = std::find_if(KEY_EVENTS.begin(), KEY_EVENTS.end(),
                                  [&](const KeyEvent& each) { return each.key == event->key(); });
    if (row != KEY_EVENTS.end())
        post(row->number);
    else
        QWidget::keyPressEvent(event);
}

/// @return true for a key that means something of its own while the controls are hidden.
bool TavelVideo::handle_full_screen_key(const QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Tab:
        post(player_event::leave_full_screen);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        post(isIn(&TavelVideo::play_state) ? player_event::pause : player_event::play);
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        long_key_timer_->stop();
        held_key_ = event->key();
        long_key_timer_->setSingleShot(true);
        long_key_timer_->start(LONG_KEY_INTERVAL_MS);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (!tv_out_)
            return false;
        shift_controls(event->key());
        return true;
    default:
        return false;
    }
}

/// The keys of the open list panel and of the shown controls. @return false: the key table comes after them.
bool TavelVideo::handle_controls_key(const QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (playlist_shown_)
            playlist_->focus_filelist();
        else if (bookmark_shown_)
            bookmarks_->focus_filelist();
        else if (tv_out_)
            shift_controls(event->key());
        break;
    case HIDE_CONTROLS_KEY:
        post(player_event::enter_full_screen);
        break;
    default:
        break;
    }
    return false;
}

void TavelVideo::shift_controls(int key)
{
    if (!isIn(&TavelVideo::file_loaded_state))
        return;
    controls_offset_ += key == Qt::Key_Up ? CONTROLS_STEP : -CONTROLS_STEP;
    move_controls(controls_offset_);
}

void TavelVideo::keyReleaseEvent(QKeyEvent* event)
{
    // A held key comes from some window systems as pairs of release and press.
    if (event->isAutoRepeat() || !full_screen_ || held_key_ == NO_KEY)
        return;
    long_key_timer_->stop();
    held_key_ = NO_KEY;
    if (!seek_allowed_)
        return;
    switch (event->key()) {
    case Qt::Key_Left:
        display_information(text(TavelVideoString::Seek));
        post_skip(SeekMode::Backward);
        break;
    case Qt::Key_Right:
        display_information(text(TavelVideoString::Seek));
        post_skip(SeekMode::Forward);
        break;
    default:
        break;
    }
}

void TavelVideo::long_key_timeout()
{
    if (held_key_ == Qt::Key_Left)
        post(player_event::scan_back);
    else if (held_key_ == Qt::Key_Right)
        post(player_event::scan_forward);
    held_key_ = NO_KEY;
}

void TavelVideo::post_skip(SeekMode mode)
{
    const Time skip = settings_->get_skip_time();
    post_seek(mode, mode == SeekMode::Forward ? position_ + skip : position_ - skip);
}

// ---------------------------------------------------------------- buttons

/// A button that is taken by its name; the step answers false when the button table is to be looked up after all.
struct TavelVideo::NamedButton {
    const char* name;
    bool (TavelVideo::*press)();
};

const std::array<TavelVideo::NamedButton, 5> TavelVideo::NAMED_BUTTONS{{
    {"pageup", &TavelVideo::press_pageup},
    {"pagedown", &TavelVideo::press_pagedown},
    {"listopen", &TavelVideo::press_listopen},
    {"bookmark_list", &TavelVideo::press_bookmark_list},
    {"dic", &TavelVideo::press_dic},
}};

void TavelVideo::control_event(const QObject*, const QString name)
{
    for (const NamedButton& row : NAMED_BUTTONS)
        if (name == QLatin1String(row.name) && (this->*row.press)())
            return;
    const auto event = button_events_.constFind(name);
    if (event != button_events_.constEnd())
        post(static_cast<int>(*event));
}

bool TavelVideo::press_pageup()
{
    if (seek_allowed_) {
        display_information(text(TavelVideoString::SkipForward));
        post_skip(SeekMode::Forward);
    }
    return true;
}

bool TavelVideo::press_pagedown()
{
    if (!seek_allowed_)
        return false;
    display_information(text(TavelVideoString::SkipBackward));
    post_skip(SeekMode::Backward);
    return true;
}

bool TavelVideo::press_listopen()
{
    if (playlist_shown_)
        hide_playlist();
    else
        show_playlist();
    return true;
}

bool TavelVideo::press_bookmark_list()
{
    if (bookmark_shown_)
        hide_bookmark();
    else
        show_bookmark();
    return true;
}

bool TavelVideo::press_dic()
{
    show_dicdialog();
    return true;
}

void TavelVideo::show_dicdialog()
{
    post(player_event::pause);
    DicDialog dialog(this);
    dialog.m_SubtitleEdit->setText(subtitle_->get_last_subtitle());
    dialog.exec();
}

// ---------------------------------------------------------------- taps

void TavelVideo::mousePressEvent(QMouseEvent*)
{
    post(full_screen_ ? player_event::leave_full_screen : player_event::enter_full_screen);
}

// ---------------------------------------------------------------- what all widgets get

bool TavelVideo::eventFilter(QObject* object, QEvent* event)
{
    // Events of other objects may still belong to the thread that sent them.
    if (!object->isWidgetType())
        return false;
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress && filter_panel_key(object, static_cast<QKeyEvent*>(event)))
        return true;
    if (object == file_manager_) {
        if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            file_manager_->close();
            return true;
        }
        if (type == QEvent::Close)
            browser_open_ = false;
    }
    // Of a quick double tap the second press comes to widgets as a double click only.
    if (type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick || type == QEvent::KeyPress)
        menu_timer_->stop();
    if (type == QEvent::MouseButtonRelease || type == QEvent::KeyRelease)
        reset_menu_timer();
    return false;
}

/// Keys of the panels: Escape closes a list panel, everything else is also the window's.
/// @return true when the key is consumed.
bool TavelVideo::filter_panel_key(QObject* object, QKeyEvent* event)
{
    const bool escape = event->key() == Qt::Key_Escape;
    if (object == playlist_ && escape) {
        hide_playlist();
        return true;
    }
    if (object == bookmarks_ && escape) {
        hide_bookmark();
        return true;
    }
    if (object == playlist_ || object == bookmarks_ || object == title_bar_ || object == control_bar_)
        keyPressEvent(event);
    return false;
}

/// Controls hidden: the window; shown: the open list panel, else the control bar.
void TavelVideo::place_focus()
{
    if (full_screen_)
        setFocus();
    else if (playlist_shown_)
        playlist_->setFocus();
    else if (bookmark_shown_)
        bookmarks_->setFocus();
    else
        control_bar_->setFocus();
}

// ---------------------------------------------------------------- timers

void TavelVideo::reset_menu_timer()
{
    const int seconds = settings_->get_menu_timeout();
    if (!isIn(&TavelVideo::file_loaded_state) || full_screen_ || seconds == -1)
        return;
    menu_timer_->setSingleShot(true);
    menu_timer_->start(seconds * 1000);
}

void TavelVideo::menu_timeout()
{
    post(player_event::enter_full_screen);
}

void TavelVideo::window_timeout()
{
    if (modal_dialog_is_up())
        return;
    DeviceScreen* const screen = DeviceScreen::instance();
    if (active_window_ == screen->active_window())
        return;
    if (file_manager_->isVisible())
        active_window_ = file_manager_;
    else if (settings_->isVisible())
        active_window_ = settings_;
    else
        active_window_ = this;
    screen->activate(active_window_);
}

// ---------------------------------------------------------------- events

bool TavelVideo::event(QEvent* event)
{
    switch (static_cast<int>(event->type())) {
    case QEvent::WindowActivate:
        if (socket_ && !isIn(&TavelVideo::play_state))
            socket_->send(QStringLiteral("HIDE"));
        display_taskbar(!full_screen_);
        break;
    case QEvent::WindowDeactivate:
        display_taskbar(true);
        break;
    case player_event::subtitle_redraw:
        settings_->draw_subtitles(position_);
        redraw_subtitles();
        break;
    case player_event::time_display:
        time_bar_->set_slidervalue(static_cast<unsigned int>(position_ / 1000));
        break;
    default:
        if (const auto* const custom = dynamic_cast<const QCustomEvent*>(event))
            hand_over(*custom);
        break;
    }
    return QWidget::event(event);
}

/// Acts on @p event now, or after the event whose action is still running.
void TavelVideo::hand_over(const QCustomEvent& event)
{
    const int number = event.type();
    // Nobody may post the machine's own signals.
    if (number >= empty_event && number <= exit_event)
        return;
    if (number == player_event::close || number == player_event::flush)
        take_notice_down();
    if (acting_) {
        waiting_.emplace_back(event.clone());
        return;
    }
    acting_ = true;
    act_on(event);
    while (!waiting_.empty()) {
        const std::unique_ptr<QCustomEvent> next = std::move(waiting_.front());
        waiting_.pop_front();
        act_on(*next);
    }
    acting_ = false;
}

void TavelVideo::act_on(const QCustomEvent& event)
{
    if (is_stale(event))
        return;
    event_number_ = event.type();
    switch (event_number_) {
    case player_event::switch_screen:
        screen_switches_ahead_ = std::max(0, screen_switches_ahead_ - 1);
        toggle_video_out();
        return;
    case player_event::engine_error:
        // One failure may be reported twice; a second one would take an innocent row out of the playlist.
        if (std::exchange(failure_handled_, true))
            return;
        break;
    default:
        break;
    }
    dispatch(&event);
}

/// Whether @p event belongs to a file or a loading that is over.
bool TavelVideo::is_stale(const QCustomEvent& event) const
{
    if (const auto* const report = event.data<player_event::EngineReport>())
        return report->file != file_number_;
    if (const auto* const failure = event.data<player_event::Failure>())
        return failure->chosen_file != chosen_file_;
    if (const auto* const step = event.data<player_event::LoadNumber>())
        return step->number != load_number_;
    if (const auto* const request = event.data<player_event::SeekRequest>())
        return request->file != 0 && request->file != file_number_;
    return false;
}

void TavelVideo::postCustomEvent(int type)
{
    post(type);
}

void TavelVideo::play_event()
{
    post(player_event::play);
}

void TavelVideo::play_event(int index, unsigned int position_ms)
{
    post_custom_event(this, player_event::load_and_play, player_event::EntryRequest{index, position_ms});
}

void TavelVideo::load_event(int index, unsigned int position_ms)
{
    if (!quiet_cursor_)
        post_custom_event(this, player_event::load, player_event::EntryRequest{index, position_ms});
}

void TavelVideo::close_event()
{
    post(player_event::close_file);
}

void TavelVideo::flush_slot()
{
    post(player_event::flush);
    qApp->processEvents();
}

void TavelVideo::reload_slot()
{
    post(player_event::reload);
    qApp->processEvents();
}
