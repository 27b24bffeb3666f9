// What each choice means to the rest of the player.

#include "setting_widget.h"

#include "setting_tables.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSlider>

namespace
{

/// The name under which the getters report a choice they do not know.
constexpr const char* source_name = "tavel_setting_widget";

} // namespace

QString SettingWidget::get_string(SettingStrings key) const
{
    return strings_.value(key);
}

int SettingWidget::value_of(const QComboBox* combo, std::span<const setting_tables::Choice> choices, const char* getter,
                            int fallback) const
{
    const QString text = combo->currentText();
    for (const setting_tables::Choice& choice : choices) {
        if (text == get_string(choice.text))
            return choice.value;
    }
    qWarning("%s, %s: Unknown selection: %s", source_name, getter, qUtf8Printable(text));
    return fallback;
}

SettingWidget::TrickMode SettingWidget::get_trick_mode() const
{
    return static_cast<TrickMode>(value_of(playback_combo_trickmode, setting_tables::trick_modes, "get_trick_mode", 0));
}

SettingWidget::AfterEos SettingWidget::get_after_eos() const
{
    return static_cast<AfterEos>(
        value_of(playback_combo_next_action, setting_tables::after_playback, "get_after_eos", 1));
}

bool SettingWidget::get_repeatab_enabled() const
{
    return value_of(playback_combo_repeat_mode, setting_tables::show_hide, "get_repeatab_enabled", 0) != 0;
}

bool SettingWidget::get_bookmark_enabled() const
{
    return value_of(playback_combo_bookmark, setting_tables::show_hide, "get_bookmark_enabled", 0) != 0;
}

bool SettingWidget::get_speed_enabled() const
{
    return value_of(playback_combo_playwithspeed, setting_tables::show_hide, "get_speed_enabled", 0) != 0;
}

bool SettingWidget::get_info_on() const
{
    return value_of(display_combo_info, setting_tables::show_hide, "get_info_on", 0) != 0;
}

bool SettingWidget::get_subtitle_on() const
{
    return value_of(subtitle_combo_display, setting_tables::show_hide, "get_subtitle_on", 1) != 0;
}

bool SettingWidget::get_privacy_on() const
{
    return value_of(display_combo_privacy_mode, setting_tables::on_off, "get_privacy_on", 0) != 0;
}

bool SettingWidget::get_spdif_enabled() const
{
    return value_of(sound_combo_spdif, setting_tables::on_off, "get_spdif_enabled", 0) != 0;
}

int SettingWidget::get_skip_time() const
{
    return value_of(playback_combo_seektime, setting_tables::skip_times, "get_skip_time", 10);
}

int SettingWidget::get_aspect_ratio() const
{
    return value_of(display_combo_aspect_ratio, setting_tables::aspect_ratios, "get_aspect_ratio", 1);
}

unsigned char SettingWidget::get_transparency() const
{
    return static_cast<unsigned char>(
        value_of(display_combo_transparancy, setting_tables::opacities, "get_transparency", 128));
}

int SettingWidget::get_menu_timeout() const
{
    return value_of(display_combo_menutime, setting_tables::menu_timeouts, "get_menu_timeout", 5);
}

int SettingWidget::get_subtitle_location() const
{
    return value_of(subtitle_combo_pos, setting_tables::subtitle_locations, "get_subtitle_location", 2);
}

SettingWidget::SubtitleSize SettingWidget::get_subtitle_size() const
{
    return static_cast<SubtitleSize>(
        value_of(subtitle_combo_size, setting_tables::subtitle_sizes, "get_subtitle_size", 2));
}

QColor SettingWidget::get_subtitle_color() const
{
    const int rgb = value_of(subtitle_combo_color, setting_tables::subtitle_colors, "get_subtitle_color", 0xffffff);
    return QColor::fromRgb(static_cast<QRgb>(rgb));
}

int SettingWidget::get_red_value() const
{
    return color_slider_red->value();
}

int SettingWidget::get_green_value() const
{
    return color_slider_green->value();
}

int SettingWidget::get_blue_value() const
{
    return color_slider_blue->value();
}

unsigned int SettingWidget::get_audio_track() const
{
    return static_cast<unsigned int>(sound_combo_audiotrack->currentIndex() + 1);
}

unsigned int SettingWidget::get_subtitle_track() const
{
    return static_cast<unsigned int>(subtitle_combo_track->currentIndex() + 1);
}

int SettingWidget::get_time_adjust() const
{
    return map_string_to_value(subtitle_edit_sync->text()) * 100;
}

int SettingWidget::get_volume() const
{
    return volume_;
}

void SettingWidget::set_volume(int volume)
{
    volume_ = volume;
}
