#pragma once

#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "info_control.h"
#include "main_title.h"
#include "message_box.h"
#include "play_list_widget.h"
#include "player_event.h"
#include "qcop_channel.h"
#include "setting_widget.h"
#include "subtitle_control.h"
#include "tavel_video.h"
#include "time_widget.h"
#include "title_skin.h"

#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <vector>

/// A whole player with its window on the display, and the ways in which a viewer and other programs use it.
///
/// Whoever derives from it chooses the engine by linking one.
class PlayerWindow
{
public:
    /// What a test wants to find at the start.
    struct Device {
        QMap<QString, int> settings = {};  ///< "playback/trickmode" and the like
        QStringList playlist = {};         ///< files of the stored playlist
        int now_playing = 0;               ///< row of the stored playlist
        unsigned int now_playing_time = 0; ///< and its position
        bool with_skin = true;
        QByteArray layout = {};  ///< a skin that consists of this layout file alone, unless empty
        bool keep_files = false; ///< start on the files that an earlier player has left
    };

    /// Shows a player that finds @p device. Its waits take no time, and it runs no shell.
    explicit PlayerWindow(const Device& device);
    virtual ~PlayerWindow();
    Q_DISABLE_COPY_MOVE(PlayerWindow)

    /// Puts the files there that a player finds at its start.
    static void lay_out(const Device& device);

    TavelVideo* operator->() { return window_.get(); }
    TavelVideo* window() { return window_.get(); }

    ControlSkin* control_bar() { return child<ControlSkin>("VIDEO_CONTROL"); }
    TitleSkin* title_bar() { return child<TitleSkin>("VIDEO_TITLE"); }
    TimeWidget* time_bar() { return child<TimeWidget>("TIME"); }
    PlayListWidget* playlist() { return child<PlayListWidget>("PLAYLIST"); }
    BookmarkWidget* bookmarks() { return child<BookmarkWidget>("BOOKMARK"); }
    InfoControl* information() { return child<InfoControl>("info_control"); }
    SubtitleControl* subtitle() { return subtitle_; }
    OsdControl* loading() { return child<OsdControl>("NOW LOADING"); }
    MessageBox* notice() { return window_->findChild<MessageBox*>(); }
    SettingWidget* settings() { return settings_; }
    mainTitle* file_manager() { return file_manager_; }
    QComboBox* combo(const char* name) { return settings_->findChild<QComboBox*>(QString::fromLatin1(name)); }
    QTimer* timer(const char* name) { return child<QTimer>(name); }

    /// What the file manager sends.
    void hand_over(const QStringList& files);
    void message(const QCString& message, const std::function<void(QDataStream&)>& arguments);
    void post(int number, std::any payload = {});
    /// A click on a button of the control bar.
    void control_event(const char* button);
    void seek_to(Time target, SeekMode mode = SeekMode::Forward);

    bool in(TavelHsm::State state) { return window_->isIn(state) == 1; }
    bool shows(const QString& button) { return !control_bar()->button(button)->isHidden(); }
    SkinButton::State state_of(const QString& button) { return control_bar()->button(button)->state(); }
    /// Whether the information text on screen is @p text.
    bool informs(const QString& text);

    /// Keys of the host's keyboard and taps on the host's window; a tap's place is in pixels of the output. What is
    /// still held at the end is released then.
    void press(int key, bool auto_repeat = false);
    void release(int key, bool auto_repeat = false);
    void click(int key);
    void tap(const QPoint& place);
    void double_tap(const QPoint& place);
    void touch(const QPoint& place);
    void lift(const QPoint& place);

    /// Waits until a notice is up, keeps its text in notices(), does @p then, and takes it down.
    void at_next_notice(std::function<void()> then = {});
    const QStringList& notices() const { return notices_; }

private:
    template<typename Widget> Widget* child(const char* name)
    {
        return window_->findChild<Widget*>(QString::fromLatin1(name));
    }
    static QPoint in_host(const QPoint& place);
    void look_for_notice();

    std::unique_ptr<TavelVideo> window_;
    SettingWidget* settings_ = nullptr;
    mainTitle* file_manager_ = nullptr;
    SubtitleControl* subtitle_ = nullptr;
    QSet<int> held_keys_;
    QTimer notice_timer_;
    std::deque<std::function<void()>> at_notices_;
    QStringList notices_;
};

/// The custom events that reach the player's window, as they come.
class EventCounter : public QObject
{
public:
    /// @param at_each is told each number before the window acts on it
    explicit EventCounter(QObject* watched, std::function<void(int)> at_each = {}) : at_each_(std::move(at_each))
    {
        watched->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override;

    int count(int number) const { return static_cast<int>(numbers.count(number)); }

    QList<int> numbers;
    QList<player_event::SeekRequest> seeks;
    QList<player_event::EntryRequest> entries;

private:
    std::function<void(int)> at_each_;
};
