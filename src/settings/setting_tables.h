#pragma once

#include "setting_base.h"
#include "setting_strings.h"

#include <QtCore/QtGlobal>

#include <array>
#include <span>
#include <variant>

/// What the settings are made of, as tables: texts, choices, the file's rows. Private to the settings dialog.
namespace setting_tables
{

struct Text {
    SettingStrings key;
    const char* english;
};

inline constexpr Text texts[] = {
    {SettingStrings::ResetPage, QT_TRANSLATE_NOOP("SettingWidget", "Reset")},
    {SettingStrings::ResetColor, QT_TRANSLATE_NOOP("SettingWidget", "Reset")},
    {SettingStrings::On, QT_TRANSLATE_NOOP("SettingWidget", "On")},
    {SettingStrings::Off, QT_TRANSLATE_NOOP("SettingWidget", "Off")},
    {SettingStrings::Show, QT_TRANSLATE_NOOP("SettingWidget", "Show")},
    {SettingStrings::Hide, QT_TRANSLATE_NOOP("SettingWidget", "Hide")},
    {SettingStrings::Number1, QT_TRANSLATE_NOOP("SettingWidget", "1")},
    {SettingStrings::Number2, QT_TRANSLATE_NOOP("SettingWidget", "2")},
    {SettingStrings::Number3, QT_TRANSLATE_NOOP("SettingWidget", "3")},
    {SettingStrings::Number4, QT_TRANSLATE_NOOP("SettingWidget", "4")},
    {SettingStrings::Number5, QT_TRANSLATE_NOOP("SettingWidget", "5")},
    {SettingStrings::Number6, QT_TRANSLATE_NOOP("SettingWidget", "6")},
    {SettingStrings::Number7, QT_TRANSLATE_NOOP("SettingWidget", "7")},
    {SettingStrings::Number8, QT_TRANSLATE_NOOP("SettingWidget", "8")},
    {SettingStrings::Caption, QT_TRANSLATE_NOOP("SettingWidget", "Video Setting")},
    {SettingStrings::VideoTab, QT_TRANSLATE_NOOP("SettingWidget", "Video")},
    {SettingStrings::SoundTab, QT_TRANSLATE_NOOP("SettingWidget", "Sound")},
    {SettingStrings::SubtitleTab, QT_TRANSLATE_NOOP("SettingWidget", "Subtitle")},
    {SettingStrings::DisplayTab, QT_TRANSLATE_NOOP("SettingWidget", "Display")},
    {SettingStrings::PlaybackTab, QT_TRANSLATE_NOOP("SettingWidget", "Playback")},
    {SettingStrings::InfoTab, QT_TRANSLATE_NOOP("SettingWidget", "Info")},
    {SettingStrings::AboutTab, QT_TRANSLATE_NOOP("SettingWidget", "About")},
    {SettingStrings::RedLabel, QT_TRANSLATE_NOOP("SettingWidget", "Red")},
    {SettingStrings::GreenLabel, QT_TRANSLATE_NOOP("SettingWidget", "Green")},
    {SettingStrings::BlueLabel, QT_TRANSLATE_NOOP("SettingWidget", "Blue")},
    {SettingStrings::AudioTrack, QT_TRANSLATE_NOOP("SettingWidget", "Audio Track")},
    {SettingStrings::SpdifOutput, QT_TRANSLATE_NOOP("SettingWidget", "SPDIF Audio Output")},
    {SettingStrings::Subtitles, QT_TRANSLATE_NOOP("SettingWidget", "Subtitles")},
    {SettingStrings::Size, QT_TRANSLATE_NOOP("SettingWidget", "Size")},
    {SettingStrings::Large, QT_TRANSLATE_NOOP("SettingWidget", "Large")},
    {SettingStrings::Medium, QT_TRANSLATE_NOOP("SettingWidget", "Medium")},
    {SettingStrings::Small, QT_TRANSLATE_NOOP("SettingWidget", "Small")},
    {SettingStrings::Color, QT_TRANSLATE_NOOP("SettingWidget", "Color")},
    {SettingStrings::White, QT_TRANSLATE_NOOP("SettingWidget", "White")},
    {SettingStrings::Gray, QT_TRANSLATE_NOOP("SettingWidget", "Gray")},
    {SettingStrings::SkyBlue, QT_TRANSLATE_NOOP("SettingWidget", "Sky Blue")},
    {SettingStrings::Green, QT_TRANSLATE_NOOP("SettingWidget", "Green")},
    {SettingStrings::Orange, QT_TRANSLATE_NOOP("SettingWidget", "Orange")},
    {SettingStrings::Violet, QT_TRANSLATE_NOOP("SettingWidget", "Violet")},
    {SettingStrings::DeepPink, QT_TRANSLATE_NOOP("SettingWidget", "Deep Pink")},
    {SettingStrings::Position, QT_TRANSLATE_NOOP("SettingWidget", "Position")},
    {SettingStrings::High, QT_TRANSLATE_NOOP("SettingWidget", "High")},
    {SettingStrings::Middle, QT_TRANSLATE_NOOP("SettingWidget", "Middle")},
    {SettingStrings::Low, QT_TRANSLATE_NOOP("SettingWidget", "Low")},
    {SettingStrings::SubtitleTrack, QT_TRANSLATE_NOOP("SettingWidget", "Track")},
    {SettingStrings::Sync, QT_TRANSLATE_NOOP("SettingWidget", "Sync")},
    {SettingStrings::Seconds, QT_TRANSLATE_NOOP("SettingWidget", "seconds")},
    {SettingStrings::MenuDisplayTime, QT_TRANSLATE_NOOP("SettingWidget", "Menu Display Time")},
    {SettingStrings::Always, QT_TRANSLATE_NOOP("SettingWidget", "Always")},
    {SettingStrings::MenuThreeSeconds, QT_TRANSLATE_NOOP("SettingWidget", "3 seconds")},
    {SettingStrings::MenuFiveSeconds, QT_TRANSLATE_NOOP("SettingWidget", "5 seconds")},
    {SettingStrings::MenuTenSeconds, QT_TRANSLATE_NOOP("SettingWidget", "10 seconds")},
    {SettingStrings::MenuOpacity, QT_TRANSLATE_NOOP("SettingWidget", "Menu Opacity")},
    {SettingStrings::Percent30, QT_TRANSLATE_NOOP("SettingWidget", "30 Percent")},
    {SettingStrings::Percent50, QT_TRANSLATE_NOOP("SettingWidget", "50 Percent")},
    {SettingStrings::Percent70, QT_TRANSLATE_NOOP("SettingWidget", "70 Percent")},
    {SettingStrings::Percent100, QT_TRANSLATE_NOOP("SettingWidget", "100 Percent")},
    {SettingStrings::AspectRatio, QT_TRANSLATE_NOOP("SettingWidget", "Aspect Ratio")},
    {SettingStrings::FullScreen, QT_TRANSLATE_NOOP("SettingWidget", "Full Screen")},
    {SettingStrings::Original, QT_TRANSLATE_NOOP("SettingWidget", "Original")},
    {SettingStrings::DisplayInfo, QT_TRANSLATE_NOOP("SettingWidget", "Display Info")},
    {SettingStrings::PrivacyOnPause, QT_TRANSLATE_NOOP("SettingWidget", "Privacy on Pause")},
    {SettingStrings::SkipTime, QT_TRANSLATE_NOOP("SettingWidget", "Skip Time")},
    {SettingStrings::SkipTenSeconds, QT_TRANSLATE_NOOP("SettingWidget", "10 seconds")},
    {SettingStrings::SkipFifteenSeconds, QT_TRANSLATE_NOOP("SettingWidget", "15 seconds")},
    {SettingStrings::SkipTwentySeconds, QT_TRANSLATE_NOOP("SettingWidget", "20 seconds")},
    {SettingStrings::SkipThirtySeconds, QT_TRANSLATE_NOOP("SettingWidget", "30 seconds")},
    {SettingStrings::SkipOneMinute, QT_TRANSLATE_NOOP("SettingWidget", "1 minute")},
    {SettingStrings::BookmarkControls, QT_TRANSLATE_NOOP("SettingWidget", "Bookmark Controls")},
    {SettingStrings::SpeedControls, QT_TRANSLATE_NOOP("SettingWidget", "Speed Controls")},
    {SettingStrings::RepeatAbControls, QT_TRANSLATE_NOOP("SettingWidget", "Repeat AB Controls")},
    {SettingStrings::AfterPlayback, QT_TRANSLATE_NOOP("SettingWidget", "After Playback Finishes")},
    {SettingStrings::PlayNextFile, QT_TRANSLATE_NOOP("SettingWidget", "Play Next File")},
    {SettingStrings::Stop, QT_TRANSLATE_NOOP("SettingWidget", "Stop")},
    {SettingStrings::RepeatCurrentFile, QT_TRANSLATE_NOOP("SettingWidget", "Repeat Current File")},
    {SettingStrings::ScanVideo, QT_TRANSLATE_NOOP("SettingWidget", "Scan Video")},
    {SettingStrings::SeekBarOnly, QT_TRANSLATE_NOOP("SettingWidget", "Seek Bar Only")},
    {SettingStrings::VideoKeyFrames, QT_TRANSLATE_NOOP("SettingWidget", "Video Key Frames")},
    {SettingStrings::Version, QT_TRANSLATE_NOOP("SettingWidget", "Version")},
    {SettingStrings::Notice,
     QT_TRANSLATE_NOOP("SettingWidget", "Video player built on Qt (LGPL 3), mpv and FFmpeg (GPL 2 or later).\n"
                                        "Nanum fonts: SIL Open Font License 1.1.")},
    {SettingStrings::VideoHeading, QT_TRANSLATE_NOOP("SettingWidget", "Video")},
    {SettingStrings::AudioHeading, QT_TRANSLATE_NOOP("SettingWidget", "Audio")},
    {SettingStrings::Codec, QT_TRANSLATE_NOOP("SettingWidget", "Codec : ")},
    {SettingStrings::Resolution, QT_TRANSLATE_NOOP("SettingWidget", "Resolution : ")},
    {SettingStrings::FrameRate, QT_TRANSLATE_NOOP("SettingWidget", "Frame Rate : ")},
    {SettingStrings::Channels, QT_TRANSLATE_NOOP("SettingWidget", "Channels : ")},
    {SettingStrings::SamplingRate, QT_TRANSLATE_NOOP("SettingWidget", "Sampling Rate : ")},
};

using ComboMember = QComboBox* SettingBase::*;
using SliderMember = QSlider* SettingBase::*;
using LabelMember = QLabel* SettingBase::*;
using ButtonMember = QPushButton* SettingBase::*;

/// A tab's text; the rows stand in the order of SettingBase::Page.
inline constexpr SettingStrings tabs[] = {
    SettingStrings::VideoTab,    SettingStrings::SoundTab, SettingStrings::SubtitleTab, SettingStrings::DisplayTab,
    SettingStrings::PlaybackTab, SettingStrings::InfoTab,  SettingStrings::AboutTab,
};

struct LabelText {
    LabelMember label;
    SettingStrings text;
};

inline constexpr LabelText labels[] = {
    {&SettingBase::video_label_red, SettingStrings::RedLabel},
    {&SettingBase::video_label_green, SettingStrings::GreenLabel},
    {&SettingBase::video_label_blue, SettingStrings::BlueLabel},
    {&SettingBase::sound_label_audiotrack, SettingStrings::AudioTrack},
    {&SettingBase::sound_label_spdif, SettingStrings::SpdifOutput},
    {&SettingBase::subtitle_label_display, SettingStrings::Subtitles},
    {&SettingBase::subtitle_label_size, SettingStrings::Size},
    {&SettingBase::subtitle_label_color, SettingStrings::Color},
    {&SettingBase::subtitle_label_pos, SettingStrings::Position},
    {&SettingBase::subtitle_label_track, SettingStrings::SubtitleTrack},
    {&SettingBase::subtitle_label_sync, SettingStrings::Sync},
    {&SettingBase::display_label_menutime, SettingStrings::MenuDisplayTime},
    {&SettingBase::display_label_transparancy, SettingStrings::MenuOpacity},
    {&SettingBase::display_label_aspect_ratio, SettingStrings::AspectRatio},
    {&SettingBase::display_label_info, SettingStrings::DisplayInfo},
    {&SettingBase::display_label_privacy_mode, SettingStrings::PrivacyOnPause},
    {&SettingBase::playback_label_seektime, SettingStrings::SkipTime},
    {&SettingBase::playback_label_playwithspeed, SettingStrings::SpeedControls},
    {&SettingBase::playback_label_repeat_mode, SettingStrings::RepeatAbControls},
    {&SettingBase::playback_label_bookmark, SettingStrings::BookmarkControls},
    {&SettingBase::playback_label_next_action, SettingStrings::AfterPlayback},
    {&SettingBase::playback_label_trickmode, SettingStrings::ScanVideo},
    {&SettingBase::info_label_audio, SettingStrings::AudioHeading},
    {&SettingBase::info_label_video, SettingStrings::VideoHeading},
    {&SettingBase::about_label_version, SettingStrings::Version},
    {&SettingBase::about_label_notice, SettingStrings::Notice},
};

struct ButtonText {
    ButtonMember button;
    SettingStrings text;
};

inline constexpr ButtonText buttons[] = {
    {&SettingBase::video_button_red_default, SettingStrings::ResetColor},
    {&SettingBase::video_button_green_default, SettingStrings::ResetColor},
    {&SettingBase::video_button_blue_default, SettingStrings::ResetColor},
    {&SettingBase::video_button_alldefault, SettingStrings::ResetPage},
    {&SettingBase::sound_button_alldefault, SettingStrings::ResetPage},
    {&SettingBase::subtitle_button_alldefault, SettingStrings::ResetPage},
    {&SettingBase::display_button_alldefault, SettingStrings::ResetPage},
    {&SettingBase::playback_button_alldefault, SettingStrings::ResetPage},
};

/// A label of the Info page: its text, and the engine's answers that follow it.
struct InfoRow {
    LabelMember label;
    SettingStrings text;
    const char* section;
    const char* item;
    const char* second_item; ///< joined to the first by " x "; null for none
};

inline constexpr InfoRow info_rows[] = {
    {&SettingBase::info_label_audio_codec, SettingStrings::Codec, "audio", "name", nullptr},
    {&SettingBase::info_label_audio_channels, SettingStrings::Channels, "audio", "channels", nullptr},
    {&SettingBase::info_label_audio_sampling_rate, SettingStrings::SamplingRate, "audio", "sample_rate", nullptr},
    {&SettingBase::info_label_video_codec, SettingStrings::Codec, "video", "name", nullptr},
    {&SettingBase::info_label_video_resolution, SettingStrings::Resolution, "video", "width", "height"},
    {&SettingBase::info_label_video_frame_rate, SettingStrings::FrameRate, "video", "framerate", nullptr},
};

/// A choice of a combo box and what it means to the player.
struct Choice {
    SettingStrings text;
    int value;
};

// Each list stands in the order of its combo box: the index of a row is what the file holds.
inline constexpr Choice on_off[] = {{SettingStrings::On, 1}, {SettingStrings::Off, 0}};
inline constexpr Choice show_hide[] = {{SettingStrings::Show, 1}, {SettingStrings::Hide, 0}};
inline constexpr Choice first_track[] = {{SettingStrings::Number1, 1}};
inline constexpr Choice subtitle_sizes[] = {
    {SettingStrings::Large, 0}, {SettingStrings::Medium, 1}, {SettingStrings::Small, 2}};
inline constexpr Choice subtitle_colors[] = {
    {SettingStrings::White, 0xffffff},    {SettingStrings::Gray, 0x969696},   {SettingStrings::SkyBlue, 0x00b4ff},
    {SettingStrings::Green, 0x00ff00},    {SettingStrings::Orange, 0xf07800}, {SettingStrings::Violet, 0xc800f0},
    {SettingStrings::DeepPink, 0xf00078},
};
inline constexpr Choice subtitle_locations[] = {
    {SettingStrings::High, 0}, {SettingStrings::Middle, 1}, {SettingStrings::Low, 2}};
inline constexpr Choice menu_timeouts[] = {{SettingStrings::Always, -1},
                                           {SettingStrings::MenuThreeSeconds, 3},
                                           {SettingStrings::MenuFiveSeconds, 5},
                                           {SettingStrings::MenuTenSeconds, 10}};
inline constexpr Choice opacities[] = {{SettingStrings::Percent30, 76},
                                       {SettingStrings::Percent50, 128},
                                       {SettingStrings::Percent70, 179},
                                       {SettingStrings::Percent100, 255}};
inline constexpr Choice aspect_ratios[] = {{SettingStrings::FullScreen, 0}, {SettingStrings::Original, 1}};
inline constexpr Choice skip_times[] = {{SettingStrings::SkipTenSeconds, 10000},
                                        {SettingStrings::SkipFifteenSeconds, 15000},
                                        {SettingStrings::SkipTwentySeconds, 20000},
                                        {SettingStrings::SkipThirtySeconds, 30000},
                                        {SettingStrings::SkipOneMinute, 60000}};
// "Repeat Current File" stands before "Stop" in the combo box.
inline constexpr Choice after_playback[] = {
    {SettingStrings::PlayNextFile, 1}, {SettingStrings::RepeatCurrentFile, 2}, {SettingStrings::Stop, 0}};
inline constexpr Choice trick_modes[] = {{SettingStrings::SeekBarOnly, 0}, {SettingStrings::VideoKeyFrames, 1}};

/// A combo box, the page whose "Reset" it belongs to, its choices and the choice that a reset makes.
struct ComboRow {
    ComboMember combo;
    SettingBase::Page page;
    std::span<const Choice> choices;
    SettingStrings standard;
};

inline constexpr ComboRow combos[] = {
    {&SettingBase::sound_combo_audiotrack, SettingBase::Page::Sound, first_track, SettingStrings::Number1},
    {&SettingBase::sound_combo_spdif, SettingBase::Page::Sound, on_off, SettingStrings::Off},
    {&SettingBase::subtitle_combo_display, SettingBase::Page::Subtitle, show_hide, SettingStrings::Show},
    {&SettingBase::subtitle_combo_size, SettingBase::Page::Subtitle, subtitle_sizes, SettingStrings::Medium},
    {&SettingBase::subtitle_combo_color, SettingBase::Page::Subtitle, subtitle_colors, SettingStrings::White},
    {&SettingBase::subtitle_combo_pos, SettingBase::Page::Subtitle, subtitle_locations, SettingStrings::Low},
    {&SettingBase::subtitle_combo_track, SettingBase::Page::Subtitle, first_track, SettingStrings::Number1},
    {&SettingBase::display_combo_menutime, SettingBase::Page::Screen, menu_timeouts, SettingStrings::MenuFiveSeconds},
    {&SettingBase::display_combo_transparancy, SettingBase::Page::Screen, opacities, SettingStrings::Percent100},
    {&SettingBase::display_combo_aspect_ratio, SettingBase::Page::Screen, aspect_ratios, SettingStrings::Original},
    {&SettingBase::display_combo_info, SettingBase::Page::Screen, show_hide, SettingStrings::Show},
    {&SettingBase::display_combo_privacy_mode, SettingBase::Page::Screen, on_off, SettingStrings::Off},
    {&SettingBase::playback_combo_seektime, SettingBase::Page::Playback, skip_times, SettingStrings::SkipTenSeconds},
    {&SettingBase::playback_combo_playwithspeed, SettingBase::Page::Playback, show_hide, SettingStrings::Hide},
    {&SettingBase::playback_combo_repeat_mode, SettingBase::Page::Playback, show_hide, SettingStrings::Hide},
    {&SettingBase::playback_combo_bookmark, SettingBase::Page::Playback, show_hide, SettingStrings::Hide},
    {&SettingBase::playback_combo_next_action, SettingBase::Page::Playback, after_playback,
     SettingStrings::PlayNextFile},
    {&SettingBase::playback_combo_trickmode, SettingBase::Page::Playback, trick_modes, SettingStrings::SeekBarOnly},
};

/// Stored values that no combo box or slider holds.
enum class Plain : int {
    Volume = 0, ///< the volume member
    Sync = 1,   ///< the sync field, tenths of a second
};

/// What a stored value's change means when the dialog closes.
enum class OnChange : int {
    Nothing = 0,
    Spdif = 1,
    Subtitles = 2,
    Opacity = 3,
    Controls = 4,
};

/// A line of the settings file. Combo boxes are stored as the index of their choice.
struct FileRow {
    const char* group;
    const char* key;
    std::variant<SliderMember, ComboMember, Plain> value;
    int read_default;
    OnChange on_change;
};

inline constexpr FileRow file_rows[] = {
    {"video", "red", &SettingBase::color_slider_red, 50, OnChange::Nothing},
    {"video", "green", &SettingBase::color_slider_green, 50, OnChange::Nothing},
    {"video", "blue", &SettingBase::color_slider_blue, 50, OnChange::Nothing},
    {"audio", "track", &SettingBase::sound_combo_audiotrack, 0, OnChange::Nothing},
    {"audio", "spdif", &SettingBase::sound_combo_spdif, 1, OnChange::Spdif},
    {"audio", "volume", Plain::Volume, 20, OnChange::Nothing},
    {"subtitle", "display", &SettingBase::subtitle_combo_display, 0, OnChange::Subtitles},
    {"subtitle", "color", &SettingBase::subtitle_combo_color, 0, OnChange::Subtitles},
    {"subtitle", "size", &SettingBase::subtitle_combo_size, 1, OnChange::Subtitles},
    {"subtitle", "pos", &SettingBase::subtitle_combo_pos, 2, OnChange::Subtitles},
    {"subtitle", "track", &SettingBase::subtitle_combo_track, 0, OnChange::Subtitles},
    {"subtitle", "adjust", Plain::Sync, 0, OnChange::Subtitles},
    {"display", "menutime", &SettingBase::display_combo_menutime, 2, OnChange::Nothing},
    {"display", "transparency", &SettingBase::display_combo_transparancy, 3, OnChange::Opacity},
    {"display", "aspect", &SettingBase::display_combo_aspect_ratio, 1, OnChange::Nothing},
    {"display", "info", &SettingBase::display_combo_info, 0, OnChange::Nothing},
    {"display", "privacy", &SettingBase::display_combo_privacy_mode, 1, OnChange::Nothing},
    {"playback", "skiptime", &SettingBase::playback_combo_seektime, 0, OnChange::Nothing},
    {"playback", "speed_show", &SettingBase::playback_combo_playwithspeed, 1, OnChange::Controls},
    {"playback", "repeatab_show", &SettingBase::playback_combo_repeat_mode, 1, OnChange::Controls},
    {"playback", "bookmark_show", &SettingBase::playback_combo_bookmark, 1, OnChange::Controls},
    {"playback", "next_action", &SettingBase::playback_combo_next_action, 0, OnChange::Nothing},
    {"playback", "trickmode", &SettingBase::playback_combo_trickmode, 0, OnChange::Nothing},
};

} // namespace setting_tables
