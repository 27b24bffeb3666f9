#include "setting_widget.h"

#include "device_font.h"
#include "device_screen.h"
#include "exit_button.h"
#include "media_player.h"
#include "setting_tables.h"
#include "subtitle_control.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTabWidget>

#include <cstdio>

namespace
{

/// Widget flags of the preview, those of the subtitles over the film.
constexpr unsigned int preview_flags = 0x200010;

/// Point sizes of the preview, by SettingWidget::SubtitleSize: those of the film, in the proportion of the small
/// picture.
constexpr std::array<int, 3> preview_points{12, 10, 8};

/// More tracks than any film has; a file that claims more is not believed.
constexpr unsigned int most_tracks = 99;

/// Fills a list with the numbers of @p total tracks; without one it is empty and disabled.
void fill_track_list(QComboBox* combo, unsigned int total)
{
    combo->clear();
    for (unsigned int number = 1; number <= std::min(total, most_tracks); ++number)
        combo->addItem(QString::number(number));
    combo->setEnabled(total > 0);
}

void show_percent(QLabel* label, int value)
{
    label->setText(QString::number(value) + QStringLiteral(" %"));
}

} // namespace

SettingWidget::SettingWidget(QWidget* parent, const char* name, unsigned int flags)
    : SettingBase(parent, name, flags), file_name_(QStringLiteral("tavel_video_setting.cfg"))
{
    init_string_table();
    init_widgets();
    connect_signals();
    if (!load_settings())
        load_default_settings();
    refresh_subtitle();
    dress_preview();
}

void SettingWidget::init_string_table()
{
    for (const setting_tables::Text& text : setting_tables::texts)
        strings_.insert(text.key, tr(text.english));
}

void SettingWidget::init_widgets()
{
    setWindowTitle(get_string(SettingStrings::Caption));
    caption_label->setText(get_string(SettingStrings::Caption));
    int page = 0;
    for (const SettingStrings tab : setting_tables::tabs)
        setting_tab->setTabText(page++, get_string(tab));
    for (const setting_tables::LabelText& row : setting_tables::labels)
        (this->*row.label)->setText(get_string(row.text));
    for (const setting_tables::ButtonText& row : setting_tables::buttons)
        (this->*row.button)->setText(get_string(row.text));
    for (const setting_tables::ComboRow& row : setting_tables::combos) {
        for (const setting_tables::Choice& choice : row.choices)
            (this->*row.combo)->addItem(get_string(choice.text));
        // What the file says nothing sensible about stays at its default.
        reset_combo(row);
    }
    show_percent(video_label_red_precent, color_slider_red->value());
    show_percent(video_label_green_percent, color_slider_green->value());
    show_percent(video_label_blue_percent, color_slider_blue->value());
    sound_combo_audiotrack->setEnabled(false);
    subtitle_combo_track->setEnabled(false);
    clear_information();

    preview_ = new SubtitleControl(this, "subtitle control", preview_flags);
    preview_->setFocusPolicy(Qt::NoFocus);
    place_preview();
}

void SettingWidget::connect_signals()
{
    connect(exit_button, &QAbstractButton::clicked, this, &QWidget::close);
    connect(video_button_red_default, &QAbstractButton::released, this, &SettingWidget::load_default_red);
    connect(video_button_green_default, &QAbstractButton::released, this, &SettingWidget::load_default_green);
    connect(video_button_blue_default, &QAbstractButton::released, this, &SettingWidget::load_default_blue);
    connect(color_slider_red, &QSlider::valueChanged, this, &SettingWidget::update_red);
    connect(color_slider_green, &QSlider::valueChanged, this, &SettingWidget::update_green);
    connect(color_slider_blue, &QSlider::valueChanged, this, &SettingWidget::update_blue);
    connect(video_button_alldefault, &QAbstractButton::released, this, &SettingWidget::load_default_display_settings);
    connect(sound_button_alldefault, &QAbstractButton::released, this, &SettingWidget::load_default_audio_settings);
    connect(subtitle_button_alldefault, &QAbstractButton::released, this,
            &SettingWidget::load_default_subtitle_settings);
    connect(display_button_alldefault, &QAbstractButton::released, this, &SettingWidget::load_default_ui_settings);
    connect(playback_button_alldefault, &QAbstractButton::released, this,
            &SettingWidget::load_default_playback_settings);
    connect(sound_combo_audiotrack, &QComboBox::activated, this, &SettingWidget::audio_track_activated);
    connect(subtitle_combo_track, &QComboBox::activated, this, &SettingWidget::subtitle_track_activated);
    for (QComboBox* combo : {subtitle_combo_display, subtitle_combo_size, subtitle_combo_color, subtitle_combo_pos})
        connect(combo, &QComboBox::activated, this, &SettingWidget::update_subtitles);
    connect(subtitle_button_forward, &QAbstractButton::clicked, this, &SettingWidget::subtitle_adjust_forward);
    connect(subtitle_button_back, &QAbstractButton::clicked, this, &SettingWidget::subtitle_adjust_back);
    connect(setting_tab, &QTabWidget::currentChanged, this, &SettingWidget::place_preview);
}

void SettingWidget::send_change(ChangeCode code)
{
    emit update_signal(static_cast<int>(code));
}

void SettingWidget::closeEvent(QCloseEvent* event)
{
    qWarning("Close signal sent\n");
    send_change_signals();
    save_settings();
    event->accept();
}

void SettingWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        SettingBase::keyPressEvent(event);
}

void SettingWidget::showEvent(QShowEvent* event)
{
    SettingBase::showEvent(event);
    // The film has gone on since the dialog was closed.
    time_.reset();
    place_preview();
    dress_preview();
}

void SettingWidget::place_preview()
{
    preview_->setGeometry(picture_rectangle());
    preview_->setVisible(picture_visible());
    preview_->raise();
    update();
    // While it was hidden it did not follow the film.
    show_line();
}

void SettingWidget::update_red(int value)
{
    show_percent(video_label_red_precent, value);
    send_change(ChangeCode::ColorChanged);
}

void SettingWidget::update_green(int value)
{
    show_percent(video_label_green_percent, value);
    send_change(ChangeCode::ColorChanged);
}

void SettingWidget::update_blue(int value)
{
    show_percent(video_label_blue_percent, value);
    send_change(ChangeCode::ColorChanged);
}

void SettingWidget::audio_track_activated(int index)
{
    std::printf("Audio Track activated: %d\n", index);
    store_track("audio", sound_combo_audiotrack);
    send_change(ChangeCode::AudioTrackChosen);
}

void SettingWidget::subtitle_track_activated(int index)
{
    std::printf("Subtitle Track activated: %d\n", index);
    store_track("subtitle", subtitle_combo_track);
    if (choose_list())
        send_change(ChangeCode::SubtitlesChanged);
    show_line();
}

void SettingWidget::set_player(MediaPlayer* player)
{
    player_ = player;
    if (player_ != nullptr)
        fill_track_list(sound_combo_audiotrack, player_->get_info("container", "audio_streams").toUInt());
    const unsigned int subtitles = player_ == nullptr ? 0 : player_->get_info("container", "subtitle_streams").toUInt();
    fill_track_list(subtitle_combo_track, subtitles);
    if (subtitles > 0)
        subtitle_track_activated(0);
    refresh_subtitle();
}

void SettingWidget::update_information()
{
    if (player_ == nullptr)
        return;
    for (const setting_tables::InfoRow& row : setting_tables::info_rows) {
        QString text = get_string(row.text) + player_->get_info(row.section, row.item);
        if (row.second_item != nullptr)
            text += QStringLiteral(" x ") + player_->get_info(row.section, row.second_item);
        (this->*row.label)->setText(text);
    }
}

void SettingWidget::clear_information()
{
    for (const setting_tables::InfoRow& row : setting_tables::info_rows)
        (this->*row.label)->setText(get_string(row.text));
}

void SettingWidget::set_version(const QString& version)
{
    about_label_version->setText(get_string(SettingStrings::Version) + QStringLiteral(" : ") + version);
}

void SettingWidget::set_playing(bool playing)
{
    playing_ = playing;
}

void SettingWidget::refresh_subtitle()
{
    time_.reset();
    if (choose_list())
        send_change(ChangeCode::SubtitlesChanged);
    show_line();
}

/// Takes the chosen track's list from the engine.
/// @return whether it is another one than before.
bool SettingWidget::choose_list()
{
    // Without a choice it is -1, as an unsigned number far beyond the last track.
    const auto track = static_cast<unsigned int>(subtitle_combo_track->currentIndex());
    const bool there_is_one = player_ != nullptr && subtitle_combo_track->isEnabled() && track < most_subtitle_tracks;
    const std::vector<Subtitle>* list = there_is_one ? player_->get_subtitles(track) : nullptr;
    return std::exchange(list_, list) != list;
}

/// Shows the line that is due in the list, or none.
void SettingWidget::show_line()
{
    // Given the list anew, since a line that was shown before would not be shown again.
    preview_->set_subtitle(list_);
    if (time_)
        preview_->update(*time_);
    if (get_subtitle_on())
        preview_->draw();
    else
        preview_->clear();
}

void SettingWidget::update_subtitles(int)
{
    dress_preview();
    send_change(ChangeCode::SubtitlesChanged);
}

/// Brings the preview in line with the subtitle settings.
void SettingWidget::dress_preview()
{
    preview_->setFont(
        device_font(QStringLiteral("v28"), preview_points.at(static_cast<std::size_t>(get_subtitle_size())), 50));
    const auto location = static_cast<SubtitleLocation>(get_subtitle_location());
    preview_->set_location(location);
    if (const SubtitlePlacement* placement = subtitle_placement(location))
        preview_->set_align(placement->alignment);
    preview_->set_text_color(get_subtitle_color(), true);
    preview_->set_offset(get_time_adjust());
    if (!get_subtitle_on())
        std::puts("CLEARING SUBTITLES!!");
    show_line();
}

void SettingWidget::draw_subtitles(long long time)
{
    if (!subtitle_combo_track->isEnabled() || !playing_ || !DeviceScreen::instance()->is_active(this))
        return;
    time_ = time;
    show_line();
}
