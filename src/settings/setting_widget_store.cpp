// The settings' file, their defaults, and the way between a stored number and its control.

#include "setting_widget.h"

#include "config.h"
#include "setting_tables.h"
#include "shell.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSlider>

#include <cmath>
#include <cstdio>
#include <limits>

namespace
{

using setting_tables::FileRow;
using setting_tables::OnChange;
using setting_tables::Plain;

/// Largest volume that the sound output knows.
constexpr int largest_volume = 40;
/// Largest shift, in tenths of a second, whose milliseconds an int holds.
constexpr int largest_shift = std::numeric_limits<int>::max() / 100;
/// What a press on "<<" or ">>" shifts, in tenths of a second.
constexpr int shift_step = 5;
constexpr int color_default = 50;

/// Makes the choice of @p index; one that the list does not have leaves the current choice as it is.
void choose(QComboBox* combo, int index)
{
    if (index >= 0 && index < combo->count())
        combo->setCurrentIndex(index);
}

} // namespace

bool SettingWidget::load_settings()
{
    const std::unique_ptr<Config> file(new (std::nothrow) Config(file_name_, Config::User));
    if (file == nullptr)
        return false;
    for (const FileRow& row : setting_tables::file_rows) {
        file->setGroup(QString::fromLatin1(row.group));
        apply_stored_value(row, file->readNumEntry(QString::fromLatin1(row.key), row.read_default));
    }
    return true;
}

bool SettingWidget::save_settings()
{
    const std::unique_ptr<Config> file(new (std::nothrow) Config(file_name_, Config::User));
    if (file == nullptr) {
        std::puts("Tavel Video: save file create failed!!");
        return false;
    }
    qWarning("Tavel Video: saving settings\n");
    for (const FileRow& row : setting_tables::file_rows) {
        file->setGroup(QString::fromLatin1(row.group));
        file->writeEntry(QString::fromLatin1(row.key), stored_value(row));
    }
    if (!file->rewrite()) {
        std::puts("Tavel Video: save file create failed!!");
        return false;
    }
    Shell::sync();
    return true;
}

int SettingWidget::stored_value(const FileRow& row) const
{
    if (const auto* slider = std::get_if<setting_tables::SliderMember>(&row.value))
        return (this->**slider)->value();
    if (const auto* combo = std::get_if<setting_tables::ComboMember>(&row.value)) {
        // A track list without a film has no choice; the first track stands for it.
        return std::max(0, (this->**combo)->currentIndex());
    }
    switch (std::get<Plain>(row.value)) {
    case Plain::Volume:
        return volume_;
    case Plain::Sync:
        return map_string_to_value(subtitle_edit_sync->text());
    }
    return row.read_default;
}

void SettingWidget::apply_stored_value(const FileRow& row, int value)
{
    if (const auto* slider = std::get_if<setting_tables::SliderMember>(&row.value)) {
        (this->**slider)->setValue(value);
        return;
    }
    if (const auto* combo = std::get_if<setting_tables::ComboMember>(&row.value)) {
        choose(this->**combo, value);
        return;
    }
    switch (std::get<Plain>(row.value)) {
    case Plain::Volume:
        volume_ = std::clamp(value, 0, largest_volume);
        break;
    case Plain::Sync:
        show_shift(std::clamp(value, -largest_shift, largest_shift));
        break;
    }
}

void SettingWidget::store_track(const char* group, const QComboBox* combo)
{
    Config file(file_name_, Config::User);
    file.setGroup(QString::fromLatin1(group));
    file.writeEntry(QStringLiteral("track"), combo->currentIndex());
}

void SettingWidget::send_change_signals()
{
    QSet<OnChange> changes;
    Config file(file_name_, Config::User);
    for (const FileRow& row : setting_tables::file_rows) {
        file.setGroup(QString::fromLatin1(row.group));
        if (file.readNumEntry(QString::fromLatin1(row.key), -1) != stored_value(row))
            changes.insert(row.on_change);
    }
    send_change(ChangeCode::Closed);
    if (changes.contains(OnChange::Spdif))
        send_change(ChangeCode::SpdifChanged);
    if (changes.contains(OnChange::Subtitles))
        send_change(ChangeCode::SubtitlesChanged);
    if (changes.contains(OnChange::Opacity))
        emit update_transparency(get_transparency());
    send_change(ChangeCode::DisplayChanged);
    if (changes.contains(OnChange::Controls))
        send_change(ChangeCode::ControlsChanged);
}

void SettingWidget::load_default_settings()
{
    load_default_audio_settings();
    load_default_subtitle_settings();
    load_default_ui_settings();
    load_default_playback_settings();
}

void SettingWidget::load_default_audio_settings()
{
    reset_combos(Page::Sound);
}

void SettingWidget::load_default_subtitle_settings()
{
    reset_combos(Page::Subtitle);
    show_shift(0);
    choose_list();
    update_subtitles(0);
}

void SettingWidget::load_default_display_settings()
{
    load_default_red();
    load_default_green();
    load_default_blue();
}

void SettingWidget::load_default_ui_settings()
{
    reset_combos(Page::Screen);
}

void SettingWidget::load_default_playback_settings()
{
    reset_combos(Page::Playback);
}

void SettingWidget::load_default_red()
{
    color_slider_red->setValue(color_default);
}

void SettingWidget::load_default_green()
{
    color_slider_green->setValue(color_default);
}

void SettingWidget::load_default_blue()
{
    color_slider_blue->setValue(color_default);
}

void SettingWidget::reset_combo(const setting_tables::ComboRow& row)
{
    QComboBox* combo = this->*row.combo;
    choose(combo, combo->findText(get_string(row.standard), Qt::MatchFixedString | Qt::MatchCaseSensitive));
}

void SettingWidget::reset_combos(Page page)
{
    for (const setting_tables::ComboRow& row : setting_tables::combos) {
        if (row.page == page)
            reset_combo(row);
    }
}

QString SettingWidget::map_value_to_string(int tenths) const
{
    // -5 / 10 is 0 and has no sign; smaller values than a step do not come up.
    if (tenths == -shift_step)
        return QStringLiteral("-0.5");
    return QStringLiteral("%1%2.%3")
        .arg(tenths >= 1 ? QStringLiteral("+") : QString())
        .arg(tenths / 10)
        .arg(std::abs(tenths % 10));
}

int SettingWidget::map_string_to_value(const QString& text) const
{
    const qsizetype word = text.indexOf(get_string(SettingStrings::Seconds));
    const float tenths = (word > 0 ? text.left(word) : text).toFloat() * 10.0F;
    if (!std::isfinite(tenths))
        return 0;
    return static_cast<int>(std::clamp(tenths, -static_cast<float>(largest_shift), static_cast<float>(largest_shift)));
}

void SettingWidget::show_shift(int tenths)
{
    subtitle_edit_sync->setText(map_value_to_string(tenths) + get_string(SettingStrings::Seconds));
}

void SettingWidget::subtitle_adjust_back()
{
    show_shift(map_string_to_value(subtitle_edit_sync->text()) - shift_step);
    update_subtitles(0);
}

void SettingWidget::subtitle_adjust_forward()
{
    show_shift(map_string_to_value(subtitle_edit_sync->text()) + shift_step);
    update_subtitles(0);
}
