#pragma once

#include "setting_base.h"
#include "setting_strings.h"

#include <QtCore/QMap>
#include <QtGui/QColor>

#include <optional>
#include <span>
#include <vector>

class MediaPlayer;
class SubtitleControl;
struct Subtitle;

namespace setting_tables
{
struct Choice;
struct ComboRow;
struct FileRow;
} // namespace setting_tables

/// The user's settings: the store, its file and the dialog in which they are changed.
///
/// The dialog's own controls are the store: a setting is the current choice of a combo box, the value of a slider or
/// the text of the sync field, and the getters read those. A choice is recognised by its text, so the texts of one
/// combo box differ from each other in every language. The settings are loaded once, at construction, and written
/// whenever the dialog closes and by save_settings().
///
/// Everything here belongs to the GUI thread.
class SettingWidget : public SettingBase
{
    Q_OBJECT

public:
    using SettingStrings = ::SettingStrings;

    /// Change codes of update_signal().
    enum class ChangeCode : int {
        Closed = 2006,           ///< the dialog has been closed; always the first
        ControlsChanged = 2200,  ///< bookmark, repeat A-B or speed controls are to be shown or hidden
        AudioTrackChosen = 2201, ///< get_audio_track() is to be played
        SpdifChanged = 2202,     ///< the digital output was switched
        SubtitlesChanged = 2203, ///< subtitle looks, timing or list changed
        DisplayChanged = 2204,   ///< the display settings are to be read again; sent at every close
        ColorChanged = 2205,     ///< red, green or blue changed; sent while a slider moves
    };

    /// What a scan does (get_trick_mode()).
    enum class TrickMode : int { SeekBarOnly = 0, VideoKeyFrames = 1 };
    /// What follows the end of a film (get_after_eos()).
    enum class AfterEos : int { Stop = 0, PlayNextFile = 1, RepeatCurrentFile = 2 };
    /// How large subtitles are drawn (get_subtitle_size()).
    enum class SubtitleSize : int { Large = 0, Medium = 1, Small = 2 };

    /// Builds the dialog hidden and loads the settings; without a file they have their defaults. @p flags are device
    /// window flags.
    SettingWidget(QWidget* parent, const char* name, unsigned int flags);

    /// @name Getters
    /// A choice that the table does not know (which no user can make) is reported by a warning and read as the value
    /// named here.
    /// @{
    TrickMode get_trick_mode() const;  ///< else SeekBarOnly
    AfterEos get_after_eos() const;    ///< else PlayNextFile
    bool get_repeatab_enabled() const; ///< else false
    bool get_bookmark_enabled() const; ///< else false
    bool get_speed_enabled() const;    ///< else false
    bool get_info_on() const;          ///< else false
    bool get_subtitle_on() const;      ///< else true
    bool get_privacy_on() const;       ///< else false
    bool get_spdif_enabled() const;    ///< else false
    /// Milliseconds, 10000 to 60000; else 10 (ten).
    int get_skip_time() const;
    /// The engine's aspect mode: 0 fills the screen, 1 keeps the film's shape; else 1.
    int get_aspect_ratio() const;
    /// Alpha of the on-screen controls, 76 to 255; else 128.
    unsigned char get_transparency() const;
    /// Seconds until the controls hide themselves, -1 for never; else 5.
    int get_menu_timeout() const;
    /// 0 high, 1 middle, 2 low, the numbers of SubtitleLocation; else 2.
    int get_subtitle_location() const;
    SubtitleSize get_subtitle_size() const; ///< else Small
    QColor get_subtitle_color() const;      ///< else white
    /// Percent, 0 to 100; 50 leaves the picture as it is.
    int get_red_value() const;
    int get_green_value() const;
    int get_blue_value() const;
    /// Number of the chosen track, from 1; 0 while there is no track to choose from.
    unsigned int get_audio_track() const;
    unsigned int get_subtitle_track() const;
    /// Subtitle shift in milliseconds, a multiple of 100.
    int get_time_adjust() const;
    /// Volume kept with the settings; the owner of the sound keeps it current by set_volume().
    int get_volume() const;
    /// @}
    void set_volume(int volume);

    /// The display text of a key, in the user's language; empty for a number without a text.
    QString get_string(SettingStrings key) const;

    /// Reads the settings file into the controls; what is missing there gets its default, and an index that the combo
    /// box does not have leaves its choice as it is. Returns false only when the file could not even be tried.
    bool load_settings();
    /// Writes the settings file whole and durably. Returns false, after a line on standard output, when it could not be
    /// created.
    bool save_settings();

    /// @name The open film
    /// @{
    /// The engine that has a film open, from which tracks and subtitles are read until the next call; null when it is
    /// closed. Not owned.
    void set_player(MediaPlayer* player);
    /// Fills the Info page from the engine; nothing without one.
    void update_information();
    /// Takes the values off the Info page.
    void clear_information();
    /// Gives the preview the subtitles of the chosen track, which may have become others, and takes the line off it.
    /// Reports SubtitlesChanged if they are others than before.
    void refresh_subtitle();
    /// Draws the line due at @p time (milliseconds) in the preview, while a film with subtitles plays and the dialog is
    /// in front.
    void draw_subtitles(long long time);
    /// Whether the film runs.
    void set_playing(bool playing);
    /// @}

    /// Puts the preview over the film's place, which is another one on a TV than on the LCD. To be called when the
    /// player has gone from one to the other.
    void place_preview();

    /// Shows @p version on the About page.
    void set_version(const QString& version);

    /// @name Subtitle shift
    /// Texts of a shift in tenths of a second: "0.0", "+0.5", "-1.5". The text may be followed by the word for seconds;
    /// an unreadable one is 0.
    /// @{
    QString map_value_to_string(int tenths) const;
    int map_string_to_value(const QString& text) const;
    /// @}

public slots:
    void load_default_settings();
    void load_default_audio_settings();
    void load_default_subtitle_settings();
    void load_default_display_settings(); ///< the three colours
    void load_default_ui_settings();
    void load_default_playback_settings();
    void load_default_red();
    void load_default_green();
    void load_default_blue();
    void update_red(int value);
    void update_green(int value);
    void update_blue(int value);
    /// Writes the choice to the file at once and reports AudioTrackChosen.
    void audio_track_activated(int index);
    /// Writes the choice to the file at once and gives the track's subtitles to the preview.
    void subtitle_track_activated(int index);
    /// Brings the preview in line with the subtitle settings and reports SubtitlesChanged.
    void update_subtitles(int index);
    /// Half a second later.
    void subtitle_adjust_forward();
    /// Half a second earlier.
    void subtitle_adjust_back();

signals:
    /// One of ChangeCode, as its number.
    void update_signal(int code);
    /// The on-screen controls' new alpha.
    void update_transparency(unsigned char alpha);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void init_string_table();
    void init_widgets();
    void connect_signals();
    bool choose_list();
    void dress_preview();
    void show_line();

    int value_of(const QComboBox* combo, std::span<const setting_tables::Choice> choices, const char* getter,
                 int fallback) const;

    int stored_value(const setting_tables::FileRow& row) const;
    void apply_stored_value(const setting_tables::FileRow& row, int value);
    void store_track(const char* group, const QComboBox* combo);
    void reset_combo(const setting_tables::ComboRow& row);
    void reset_combos(Page page);
    void show_shift(int tenths);

    void send_change_signals();
    void send_change(ChangeCode code);

    QMap<SettingStrings, QString> strings_;
    QString file_name_;
    SubtitleControl* preview_ = nullptr;
    MediaPlayer* player_ = nullptr;
    /// The chosen track's list, which the preview has; null for none.
    const std::vector<Subtitle>* list_ = nullptr;
    /// The position that the preview was last to show, in milliseconds; nothing before the first one.
    std::optional<long long> time_;
    int volume_ = 0;
    bool playing_ = false;
};
