#pragma once

#include <QtWidgets/QWidget>

QT_BEGIN_NAMESPACE
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QTabWidget;
QT_END_NAMESPACE

class ExitButton;

/// The settings dialog's form: the widget tree, its places on the 480 x 272 screen and its look, without any text or
/// meaning.
///
/// Each control's object name is the name of its member here. The controls belong to the form and live as long as it
/// does. The pages that change what the film looks or sounds like leave picture_rectangle() unpainted and fully
/// transparent, so that the film, which the main window moves there, shows through.
///
/// The key pad alone works everything: Up, Down, Left and Right move between the controls (on the row of tabs Left and
/// Right change the page, on a slider they move it), Return opens a list or presses a button.
class SettingBase : public QWidget
{
    Q_OBJECT

public:
    /// @p flags are the device's window flags (16 and 0x200010: no frame).
    SettingBase(QWidget* parent, const char* name, unsigned int flags);

    /// The pages, in the order of the tabs.
    enum class Page : int { Video = 0, Sound = 1, Subtitle = 2, Screen = 3, Playback = 4, Info = 5, About = 6 };

    /// Where the film shows through, in the form's coordinates: (12, 64, 221 x 126) on the LCD, a little beside
    /// that on a TV. The main window puts the film there.
    QRect picture_rectangle() const;

    /// Whether the page in front leaves picture_rectangle() free.
    bool picture_visible() const;

    QLabel* title_label;   ///< the skin's header
    QLabel* caption_label; ///< the window's caption on it
    ExitButton* exit_button;
    QTabWidget* setting_tab;

    QLabel* video_label_red;
    QLabel* video_label_green;
    QLabel* video_label_blue;
    QSlider* color_slider_red;
    QSlider* color_slider_green;
    QSlider* color_slider_blue;
    QLabel* video_label_red_precent;
    QLabel* video_label_green_percent;
    QLabel* video_label_blue_percent;
    QPushButton* video_button_red_default;
    QPushButton* video_button_green_default;
    QPushButton* video_button_blue_default;
    QPushButton* video_button_alldefault;

    QLabel* sound_label_audiotrack;
    QComboBox* sound_combo_audiotrack;
    QLabel* sound_label_spdif;
    QComboBox* sound_combo_spdif;
    QPushButton* sound_button_alldefault;

    QLabel* subtitle_label_display;
    QComboBox* subtitle_combo_display;
    QLabel* subtitle_label_size;
    QComboBox* subtitle_combo_size;
    QLabel* subtitle_label_color;
    QComboBox* subtitle_combo_color;
    QLabel* subtitle_label_pos;
    QComboBox* subtitle_combo_pos;
    QLabel* subtitle_label_track;
    QComboBox* subtitle_combo_track;
    QLabel* subtitle_label_sync;
    QPushButton* subtitle_button_back;
    QLineEdit* subtitle_edit_sync;
    QPushButton* subtitle_button_forward;
    QPushButton* subtitle_button_alldefault;

    QLabel* display_label_menutime;
    QComboBox* display_combo_menutime;
    QLabel* display_label_transparancy;
    QComboBox* display_combo_transparancy;
    QLabel* display_label_aspect_ratio;
    QComboBox* display_combo_aspect_ratio;
    QLabel* display_label_info;
    QComboBox* display_combo_info;
    QLabel* display_label_privacy_mode;
    QComboBox* display_combo_privacy_mode;
    QPushButton* display_button_alldefault;

    QLabel* playback_label_seektime;
    QComboBox* playback_combo_seektime;
    QLabel* playback_label_playwithspeed;
    QComboBox* playback_combo_playwithspeed;
    QLabel* playback_label_repeat_mode;
    QComboBox* playback_combo_repeat_mode;
    QLabel* playback_label_bookmark;
    QComboBox* playback_combo_bookmark;
    QLabel* playback_label_next_action;
    QComboBox* playback_combo_next_action;
    QLabel* playback_label_trickmode;
    QComboBox* playback_combo_trickmode;
    QPushButton* playback_button_alldefault;

    QLabel* info_label_audio;
    QLabel* info_label_audio_codec;
    QLabel* info_label_audio_channels;
    QLabel* info_label_audio_sampling_rate;
    QLabel* info_label_video;
    QLabel* info_label_video_codec;
    QLabel* info_label_video_resolution;
    QLabel* info_label_video_frame_rate;

    QLabel* about_label_picture;
    QLabel* about_label_version;
    QLabel* about_label_notice;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    Page current_page() const;
    void build_header();
    QWidget* build_video_page();
    QWidget* build_sound_page();
    QWidget* build_subtitle_page();
    QWidget* build_display_page();
    QWidget* build_playback_page();
    QWidget* build_info_page();
    QWidget* build_about_page();
};
