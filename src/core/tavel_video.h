#pragma once

#include "cfbio.h"
#include "key_pad.h"
#include "media_types.h"
#include "player_event.h"
#include "qcop_channel.h"
#include "report_gate.h"
#include "setting_widget.h"
#include "tavel_callbacks.h"
#include "tavel_hsm.h"
#include "tavel_video_string.h"
#include "tolmi2c.h"

#include <QtCore/QMap>
#include <QtCore/QTimer>
#include <QtGui/QFont>
#include <QtWidgets/QWidget>

#include <atomic>
#include <deque>
#include <memory>
#include <vector>

class BookmarkWidget;
class ControlSkin;
class InfoControl;
class MediaPlayer;
class MessageBox;
class OsdControl;
class PlayListWidget;
class QCustomEvent;
class SubtitleControl;
class TimeWidget;
class TitleSkin;
class VeskSocket;
class mainTitle;

/// The player: the main window, the state chart that drives playback, and the owner of everything else.
///
/// Whatever changes playback comes as a custom event (player_event.h) and is acted on one after the other: an event
/// that arrives while a state's action still runs, because that shows a notice, waits until the action is done.
/// Everything belongs to the GUI thread but the four slots of the engine's reports, which store, post and return.
///
/// The definitions stand in one file for each concern, in the order of this header: tavel_video.cpp (construction,
/// tables, destructor), _assembly (panels and connections), _engine (reports), _chart (states), _chart_steps (what the
/// states do), _input (keys, buttons, taps, and events one after the other), _messages (other programs, devices),
/// _screen (LCD, TV, full screen), _feedback (texts and panels).
class TavelVideo : public QWidget, public TavelHsm
{
    Q_OBJECT

public:
    /// Where the subtitle stands: beside which panel.
    enum class SUBTITLE_STATE : int {
        Playlist = 0,   ///< the playlist panel is shown
        Bookmarks = 1,  ///< the bookmark panel is shown
        Normal = 2,     ///< the controls are shown
        FullScreen = 3, ///< nothing else is shown
    };

    /// The port of the socket shared with the navigation program.
    static constexpr quint16 SOCKET_PORT = 11883;
    static constexpr const char* CHANNEL = "QPE/Brevaton/video";
    static constexpr int LONG_KEY_INTERVAL_MS = 1000;
    static constexpr int WINDOW_TIMER_INTERVAL_MS = 500;
    /// The device's own key, no named key of the toolkit.
    static constexpr int HIDE_CONTROLS_KEY = hide_controls_key;
    /// Held key: none.
    static constexpr int NO_KEY = 65535;
    /// Device flags of the windows that stand by themselves, and of the subtitle widget, which does on a TV.
    static constexpr unsigned int OWN_WINDOW_FLAGS = 0x200010;
    /// Where the time bar stands when it does not scan.
    static constexpr QPoint TIME_BAR_PLACE{0, 192};

    /// @param flags are the device's widget flags. The object name names the skin directory and the data directory.
    explicit TavelVideo(QWidget* parent = nullptr, const char* name = "tavel_video", unsigned int flags = 16);
    /// Saves the now-playing entry with the current position, the bookmarks and the settings.
    ~TavelVideo() override;

    /// @name Construction, tables
    /// @{
    /// The version shown to the user, made from a revision keyword: "$Revision: 7481 $" gives "1.07.481".
    static QString make_version(const char* revision);
    /// A display text, translated; empty for a key without one.
    QString text(TavelVideoString key) const { return strings_.value(key); }
    /// The request a skin button stands for, 0 for a name that stands for none.
    unsigned int button_event(const QString& name) const { return button_events_.value(name, 0); }
    /// @}

    /// @name State chart
    /// One handler for each state; the tree is what they return.
    ///
    ///     top
    ///       exit_state
    ///       video_player_state          (first: get_file_state)
    ///         get_file_state
    ///         no_file_state
    ///         file_parsed_state         (first: stop_state)
    ///           stop_state
    ///           file_loaded_state       (rests here until everybody else is silent)
    ///             streaming_state
    ///               play_state
    ///               pause_state
    ///               speed_playing_state
    ///             seeking_state
    ///             end_of_stream_state
    /// @{
    State initial(const QEvent* e);
    State exit_state(const QEvent* e);
    State video_player_state(const QEvent* e);
    State get_file_state(const QEvent* e);
    State no_file_state(const QEvent* e);
    State file_parsed_state(const QEvent* e);
    State stop_state(const QEvent* e);
    State file_loaded_state(const QEvent* e);
    State streaming_state(const QEvent* e);
    State play_state(const QEvent* e);
    State pause_state(const QEvent* e);
    State speed_playing_state(const QEvent* e);
    State seeking_state(const QEvent* e);
    State end_of_stream_state(const QEvent* e);
    /// The name of the handler; "top" for what is none of the window's. For the trace and tests.
    static const char* name_of(const State& state);
    /// Forgets to which state the first seek of this process returned (all later ones return to it too). For tests.
    static void forget_seek_return();
    /// @}

    /// Tests listen elsewhere; 0 lets the system choose. Takes effect for windows made from then on.
    static void set_socket_port(quint16 port);
    /// The socket shared with the navigation program. It belongs to the window.
    const VeskSocket* socket() const { return socket_; }

    /// @name Where playback is
    /// @{
    /// Milliseconds; 0 when nothing is loaded. Any thread.
    Time position() const { return position_; }
    /// The status of the last failure that the engine reported, 0 before the first. Any thread.
    RaskStatus last_error() const { return last_error_; }
    /// Any thread.
    bool is_seek_allowed() const { return seek_allowed_; }
    bool is_full_screen() const { return full_screen_; }
    bool is_tv_out() const { return tv_out_; }
    /// @}

public slots:
    // The engine's reports, on the engine's thread.
    void update_state(PlayerState state);
    void update_time(Time position);
    void handle_error(RaskStatus status);
    void stream_event(StreamType type, StreamState state);

    void control_event(const QObject* sender, const QString name);
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void receive_message(const QCString& message, const QByteArray& arguments);
    /// Asks for a seek to a place on the time bar.
    void seek_event(unsigned int seconds);
    /// Plays the entry at @p index from @p position_ms.
    void play_event(int index, unsigned int position_ms);
    /// Plays on.
    void play_event();
    /// Opens the entry at @p index, to be played from @p position_ms.
    void load_event(int index, unsigned int position_ms);
    void load_bookmark(const QString& file, unsigned int position_ms);
    void close_event();
    /// Brings picture, controls and engine to the screen that the TV-out flag names. Takes six seconds to the TV and
    /// seven to the LCD.
    void change_video_out();
    void postCustomEvent(int type);
    void menu_timeout();
    void window_timeout();
    void long_key_timeout();
    void set_alpha(unsigned char alpha);
    void update_subtitles();
    void flush_slot();
    void reload_slot();
    void send_screenchageapplet(bool on);
    void show_dicdialog();
    void show_playlist();
    void hide_playlist();
    void open_playlist_browser();
    void add_bookmark(QString file, unsigned int seconds);
    void show_bookmark();
    void hide_bookmark();
    void show_loading_screen();
    void reset_menu_timer();
    void reset_display();
    void send_volume(int volume);
    void receive_socket_message(QString text);
    void display_volume(bool muted);

public:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// @name Construction
    /// @{
    void init_string_table();
    void init_signal_table();
    /// @}

    /// @name Assembly
    /// @{
    void create_panels();
    void init_widgets();
    void connect_signals();
    void disconnect_signals();
    /// @}

    /// @name Engine
    /// @{
    /// The passage that is repeated, as far as it is set.
    enum class RepeatMode : int {
        Off = 0,
        SetA = 1,  ///< A is set
        SetAB = 2, ///< A and B are set: the passage is repeated
    };
    enum class Scan : int {
        Back = -1,
        None = 0,
        Forward = 1,
    };
    void post(int type);
    void post_from_engine(int type);
    void post_report(int type, unsigned int file);
    void post_end_of_stream(unsigned int file);
    void post_failure();
    void post_held_back(const ReportGate::Held& held);
    void check_repeat(Time position);
    void check_scan_end(Time position);
    void end_watched_scan();
    unsigned int open_in_engine(const QString& file);
    unsigned int close_in_engine();
    /// @}

    /// @name Steps of the chart
    /// @{
    void go(Tran* tran, State target);
    void close_application();
    void choose_entry(const player_event::EntryRequest* request);
    QString now_playing_file() const;
    void enter_no_file();
    void enter_file_parsed();
    void describe_parsed_file(const QString& file);
    void exit_file_parsed();
    void show_playback_failure();
    void enter_stop();
    void enter_file_loaded();
    void exit_file_loaded();
    void wait_for_players(const QCustomEvent* event);
    bool is_waiting_to_start() const;
    bool load_movie();
    void show_loaded_film();
    void announce_loaded_film();
    void reopen_after_stop();
    bool bookmark_position();
    void step_repeat();
    void set_colours();
    void set_speed(SpeedCode code);
    bool begin_scan(Scan scan);
    void enter_speed_playing();
    void exit_speed_playing();
    bool resume_from_scan();
    void keep_for_later(const QEvent* e);
    void take_back_kept_pause();
    void post_kept();
    void enter_seeking();
    void settle_after_seek();
    void choose_after_end();
    void show_play_button();
    void show_pause_button();
    void place_settings_preview();
    Time clamped(Time target) const;
    /// @}

    /// @name Input
    /// @{
    bool handle_full_screen_key(const QKeyEvent* event);
    bool handle_controls_key(const QKeyEvent* event);
    void shift_controls(int key);
    void post_skip(SeekMode mode);
    struct NamedButton;
    static const std::array<NamedButton, 5> NAMED_BUTTONS;
    bool press_pageup();
    bool press_pagedown();
    bool press_listopen();
    bool press_bookmark_list();
    bool press_dic();
    bool filter_panel_key(QObject* object, QKeyEvent* event);
    void place_focus();
    /// @}

    /// @name Run to completion
    /// @{
    void hand_over(const QCustomEvent& event);
    void act_on(const QCustomEvent& event);
    bool is_stale(const QCustomEvent& event) const;
    /// @}

    /// @name Messages and devices
    /// @{
    void post_screen_switch();
    bool is_tv_wanted() const;
    void receive_time_change();
    void take_file_list(const QString& list);
    void add_playlist(const QString& list);
    void note_append_request(bool append);
    void count_acknowledgement();
    void stop_for_navigation();
    void stop_for_navigation_now();
    void pause_for_navigation();
    void resume_for_navigation();
    void send_ok();
    void answer_socket();
    void answer_if_nothing_plays();
    void apply_volume();
    void reset_volume();
    void set_lcd_brightness();
    void enableLCDOff(bool on);
    void move_taskbar(int x, int y);
    void display_taskbar(bool on);
    bool is_navi_activated();
    void show_notice(const QString& notice);
    void take_notice_down();
    /// @}

    /// @name Screens
    /// @{
    /// What is written to the frame buffer's control.
    enum class FrameBufferWrite : int {
        DisablePlane0 = 0,
        DisableVideo = 1,
        DisableControls = 2,
        ControlsOnTv = 3,
        VideoOnTv = 4,
        ControlsOnLcd = 5,
        VideoOnLcd = 6,
        EnableVideo = 7,
    };
    void write_frame_buffer(FrameBufferWrite write);
    void set_picture_plane(bool on);
    QSize output_size() const;
    void toggle_video_out();
    void to_tv();
    void to_lcd();
    void toggle_fullscreen();
    void show_controls();
    bool hide_controls();
    void enter_full_screen();
    void leave_full_screen();
    void set_black_background();
    void move_controls(int offset);
    void show_resolution_warning();
    void check_spdif();
    void set_spdif(bool on);
    void switch_spdif_off();
    /// @}

    /// @name Feedback
    /// @{
    void display_information(const QString& information);
    void draw_speed_info();
    void draw_media_info(const QString& information);
    void show_file_name(const QString& name);
    void post_seek(SeekMode mode, Time target_ms);
    void set_subtitle_widget(SUBTITLE_STATE state);
    QRect tv_subtitle_place() const;
    const QFont& chosen_subtitle_font() const;
    SUBTITLE_STATE subtitle_state() const;
    void redraw_subtitles();
    void select_subtitles();
    void reload_subtitles();
    void show_subtitle_due();
    void close_subtitles();
    void update_dictionary_button();
    void update_buttons();
    void reset_repeatAB();
    void disable_playback_buttons();
    /// @}

    // Construction, tables.
    TavelCallbacks callbacks_;
    MediaPlayer* media_player_ = nullptr;
    TolmI2c screen_control_;
    CFbio frame_buffer_;
    QFont large_font_;
    QFont medium_font_;
    QFont small_font_;
    QMap<QString, unsigned int> button_events_;
    QMap<TavelVideoString, QString> strings_;
    QString version_;
    QString file_name_; ///< first file of the list handed over last
    QTimer* menu_timer_ = nullptr;
    QTimer* window_timer_ = nullptr;
    QTimer* long_key_timer_ = nullptr;
    static quint16 socket_port_;
    VeskSocket* socket_ = nullptr;
    QCopChannel* channel_ = nullptr;

    // Assembly: the panels, children of the window but for the two top-level windows.
    InfoControl* information_ = nullptr;
    SubtitleControl* subtitle_ = nullptr;
    ControlSkin* control_bar_ = nullptr;
    TimeWidget* time_bar_ = nullptr;
    PlayListWidget* playlist_ = nullptr;
    BookmarkWidget* bookmarks_ = nullptr;
    TitleSkin* title_bar_ = nullptr;
    mainTitle* file_manager_ = nullptr;
    OsdControl* loading_ = nullptr;
    SettingWidget* settings_ = nullptr;
    MessageBox* message_box_ = nullptr;
    QWidget* active_window_ = nullptr; ///< the top-level window that was last made active

    // Engine: shared with the engine's threads.
    std::atomic<Time> position_ = 0;
    std::atomic<Time> total_ms_ = 0; ///< the film's length, 0 when unknown
    std::atomic<unsigned int> last_error_ = 0;
    std::atomic<bool> seeking_ = false; ///< position reports are ignored
    std::atomic<bool> seek_allowed_ = false;
    std::atomic<bool> subtitles_on_ = false;
    std::atomic<RepeatMode> repeat_mode_ = RepeatMode::Off;
    std::atomic<Time> repeat_a_ = 0;
    std::atomic<Time> repeat_b_ = 0;
    std::atomic<bool> past_b_ = false;          ///< this crossing of B has asked for its seek
    std::atomic<Scan> scan_watch_ = Scan::None; ///< the key-frame scan whose end is awaited
    std::atomic<unsigned int> file_number_ = 1; ///< grows with each opening and closing
    ReportGate gate_;                           ///< shut while the display is switched or key frames are scanned

    // Chart.
    static Tran seek_return_;
    State history_;                                   ///< the streaming state that was left last
    int index_ = -1;                                  ///< playlist entry to load
    unsigned int start_position_ms_ = 0;              ///< where to start it
    QString opened_file_;                             ///< the chosen entry's file
    player_event::SeekRequest seek_request_;          ///< the pending seek
    std::vector<std::unique_ptr<QCustomEvent>> kept_; ///< requests to post again once playback goes on
    unsigned int chosen_file_ = 0;                    ///< counts the files that were chosen
    unsigned int load_number_ = 0;                    ///< grows when a loaded film is started and when it is left
    bool failure_handled_ = false;                    ///< until the next file is chosen
    bool quiet_cursor_ = false;                       ///< the playlist's cursor is being moved by the program
    bool started_ = false;                            ///< the film was started
    Scan scan_ = Scan::None;                          ///< the scan that began last
    SettingWidget::TrickMode scan_mode_ = SettingWidget::TrickMode::SeekBarOnly;
    bool settings_open_ = false;
    bool browser_open_ = false;
    int event_number_ = 0; ///< the event being acted on, for the trace

    // Input.
    int held_key_ = NO_KEY;
    bool playlist_shown_ = false;
    bool bookmark_shown_ = false;

    // Run to completion.
    bool acting_ = false;
    std::deque<std::unique_ptr<QCustomEvent>> waiting_;

    // Messages and devices.
    int volume_ = 0;
    bool append_files_ = false; ///< the next file list goes behind the playlist
    bool adding_files_ = false;
    std::deque<QString> file_lists_; ///< lists that came while one was being added
    bool reply_owed_ = false;        ///< the navigation program waits for an "OK"
    bool already_paused_ = false;    ///< the viewer had paused before the navigation program did
    int acknowledgements_ = 0;       ///< "OK" texts since the last "STOP"
    int stop_recipients_ = 0;
    int screen_switches_ahead_ = 0; ///< asked for and not acted on yet

    // Screens.
    bool picture_plane_on_ = false;
    bool hidden_for_privacy_ = false; ///< the picture, while the film is paused
    bool full_screen_ = false;        ///< the controls are hidden
    bool tv_out_ = false;
    bool spdif_active_ = false;
    int controls_offset_ = 0; ///< pixels by which the controls are moved up on a TV

    // Feedback.
    bool has_subtitles_ = false; ///< the chosen track has lines
};
