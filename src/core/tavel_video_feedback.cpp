#include "tavel_video.h"

#include "bookmark_widget.h"
#include "config.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_font.h"
#include "info_control.h"
#include "media_player.h"
#include "osd_control.h"
#include "play_list_widget.h"
#include "subtitle_control.h"
#include "time_widget.h"
#include "title_skin.h"

#include <limits>
#include <utility>

namespace
{

/// What the host's window is called.
constexpr const char* PROGRAM_NAME = "Tavel";

constexpr int INFORMATION_POINTS = 14;
constexpr int INFORMATION_TIME_MS = 5000;
constexpr int DEFAULT_MASTER_VOLUME = 30;

/// Where the subtitle stands on the LCD; indexed by SUBTITLE_STATE.
struct SubtitleGeometry {
    bool small; ///< the small font whatever the settings say
    QRect place;
};

constexpr std::array<SubtitleGeometry, 4> LCD_SUBTITLES{{
    {true, QRect(0, 70, 288, 120)},
    {true, QRect(0, 70, 268, 120)},
    {false, QRect(0, 70, 480, 120)},
    {false, QRect(0, 80, 480, 180)},
}};

/// On the TV the subtitle stands under the window, whatever is shown.
constexpr int TV_SUBTITLE_BELOW = 272;
constexpr QSize TV_SUBTITLE_SIZE(640, 124);
constexpr int TV_SUBTITLE_ALIGNMENT = Qt::TextWordWrap | Qt::AlignTop | Qt::AlignHCenter;

} // namespace

// ---------------------------------------------------------------- texts

void TavelVideo::display_information(const QString& information)
{
    information_->setFont(device_font(QStringLiteral("V28"), INFORMATION_POINTS, 50));
    information_->set_timer(INFORMATION_TIME_MS);
    information_->set_text_color(Qt::white, false);
    information_->draw(information);
}

void TavelVideo::draw_speed_info()
{
    display_information(text(TavelVideoString::Speed) + QStringLiteral("\n ") +
                        QString::number(media_player_->get_speed()) + u'%');
}

void TavelVideo::draw_media_info(const QString& information)
{
    QString shown = information;
    if (settings_->get_info_on() && media_player_)
        shown = QStringList{shown, text(TavelVideoString::Audio), media_player_->get_info("container", "audio_streams"),
                            text(TavelVideoString::Subtitle), media_player_->get_info("container", "subtitle_streams")}
                    .join(u' ');
    display_information(shown);
    qWarning("%s", qPrintable(shown));
}

void TavelVideo::show_loading_screen()
{
    loading_->draw(text(TavelVideoString::NowLoading));
    draw_media_info(text(TavelVideoString::Play) + u'\n');
    loading_->show();
    loading_->repaint();
    repaint();
}

void TavelVideo::display_volume(bool muted)
{
    if (muted) {
        display_information(text(TavelVideoString::Mute));
        return;
    }
    Config sound(QStringLiteral("Sound"));
    sound.setGroup(QStringLiteral("System"));
    display_information(text(TavelVideoString::MasterVolume) + QStringLiteral("\n ") +
                        QString::number(sound.readNumEntry(QStringLiteral("Volume"), DEFAULT_MASTER_VOLUME)));
}

/// Puts the chosen film's name into the title bar and the host's window; an empty one for no film.
void TavelVideo::show_file_name(const QString& name)
{
    title_bar_->set_filename(name);
    const QString program = QString::fromLatin1(PROGRAM_NAME);
    // The toolkit would take a "[*]" for its own mark of unsaved changes.
    setWindowTitle(name.isEmpty() ? program
                                  : QString(name).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")) +
                                        QStringLiteral(" - ") + program);
}

// ---------------------------------------------------------------- seeking

void TavelVideo::seek_event(unsigned int seconds)
{
    display_information(text(TavelVideoString::Seek));
    if (!seek_allowed_)
        return;
    const unsigned int target = seconds * 1000U;
    const Time position = position_;
    const bool forward = position <= std::numeric_limits<unsigned int>::max() && position <= target;
    post_seek(forward ? SeekMode::Forward : SeekMode::Backward, target);
}

void TavelVideo::post_seek(SeekMode mode, Time target_ms)
{
    post_custom_event(this, player_event::seek, player_event::SeekRequest{mode, 0, target_ms, 0});
}

// ---------------------------------------------------------------- subtitles

void TavelVideo::set_subtitle_widget(SUBTITLE_STATE state)
{
    subtitle_->hide();
    if (tv_out_) {
        subtitle_->setFont(large_font_);
        subtitle_->setGeometry(tv_subtitle_place());
        subtitle_->set_align(TV_SUBTITLE_ALIGNMENT);
    } else if (const auto row = static_cast<std::size_t>(state); row < LCD_SUBTITLES.size()) {
        subtitle_->setFont(LCD_SUBTITLES[row].small ? small_font_ : chosen_subtitle_font());
        subtitle_->setGeometry(LCD_SUBTITLES[row].place);
    }
    subtitle_->show();
}

QRect TavelVideo::tv_subtitle_place() const
{
    return QRect(QPoint(0, y() + TV_SUBTITLE_BELOW), TV_SUBTITLE_SIZE);
}

/// The subtitle's font where no panel stands beside it on the LCD.
const QFont& TavelVideo::chosen_subtitle_font() const
{
    switch (settings_->get_subtitle_size()) {
    case SettingWidget::SubtitleSize::Large:
        return large_font_;
    case SettingWidget::SubtitleSize::Medium:
        return medium_font_;
    case SettingWidget::SubtitleSize::Small:
        return small_font_;
    }
    return medium_font_;
}

/// Brings the subtitle's look in line with the settings and the screen.
void TavelVideo::update_subtitles()
{
    subtitles_on_ = settings_->get_subtitle_on();
    const auto location = static_cast<SubtitleLocation>(settings_->get_subtitle_location());
    subtitle_->set_location(location);
    if (const SubtitlePlacement* placement = subtitle_placement(location))
        subtitle_->set_align(placement->alignment);
    subtitle_->set_text_color(settings_->get_subtitle_color(), true);
    if (subtitle_->isVisible())
        set_subtitle_widget(subtitle_state());
    redraw_subtitles();
}

TavelVideo::SUBTITLE_STATE TavelVideo::subtitle_state() const
{
    if (full_screen_)
        return SUBTITLE_STATE::FullScreen;
    if (playlist_shown_)
        return SUBTITLE_STATE::Playlist;
    return bookmark_shown_ ? SUBTITLE_STATE::Bookmarks : SUBTITLE_STATE::Normal;
}

/// Draws the line that is due; clears the widget while subtitles are switched off.
void TavelVideo::redraw_subtitles()
{
    if (settings_->get_subtitle_on())
        subtitle_->draw();
    else
        subtitle_->clear();
}

/// Takes the chosen track's list from the engine, and how it is shifted in time from the settings.
void TavelVideo::select_subtitles()
{
    // Track 0 is none: as an unsigned number it is far beyond the last one.
    const unsigned int track = settings_->get_subtitle_track() - 1;
    const std::vector<Subtitle>* const list =
        track < most_subtitle_tracks ? media_player_->get_subtitles(track) : nullptr;
    // First, or the engine's thread could choose a line of the new list by the old shift.
    subtitle_->set_offset(settings_->get_time_adjust());
    subtitle_->set_subtitle(list);
    const bool had_none = !std::exchange(has_subtitles_, list && !list->empty());
    update_dictionary_button();
    // What has been read only now is to be seen in the settings, too.
    if (had_none && has_subtitles_)
        settings_->refresh_subtitle();
}

void TavelVideo::reload_subtitles()
{
    select_subtitles();
    subtitle_->update(position_);
    update_subtitles();
    settings_->draw_subtitles(position_);
}

/// After a jump: takes the list anew, since a line that was shown before would not be shown again, and draws.
void TavelVideo::show_subtitle_due()
{
    select_subtitles();
    subtitle_->update(position_);
    redraw_subtitles();
    settings_->draw_subtitles(position_);
}

void TavelVideo::close_subtitles()
{
    subtitle_->close();
    has_subtitles_ = false;
    update_dictionary_button();
}

/// The button is there with the dictionary program, and usable with subtitles to look words up in.
void TavelVideo::update_dictionary_button()
{
    const QString button = QStringLiteral("dic");
    if (!title_bar_->hasDicSupport())
        title_bar_->hideButton(button);
    else if (settings_->get_subtitle_on() && has_subtitles_)
        title_bar_->showNormal(button);
    else
        title_bar_->disableButton(button);
}

// ---------------------------------------------------------------- list panels

void TavelVideo::show_playlist()
{
    if (playlist_shown_)
        return;
    hide_bookmark();
    set_subtitle_widget(SUBTITLE_STATE::Playlist);
    playlist_->show();
    playlist_->setFocus();
    playlist_->showFocus(QStringLiteral("add"));
    playlist_shown_ = true;
    redraw_subtitles();
}

void TavelVideo::hide_playlist()
{
    if (!playlist_shown_)
        return;
    set_subtitle_widget(SUBTITLE_STATE::Normal);
    playlist_->hide();
    subtitle_->show();
    playlist_shown_ = false;
    control_bar_->setFocus();
    redraw_subtitles();
}

void TavelVideo::show_bookmark()
{
    if (bookmark_shown_)
        return;
    hide_playlist();
    set_subtitle_widget(SUBTITLE_STATE::Bookmarks);
    bookmarks_->show();
    bookmarks_->setFocus();
    bookmarks_->showFocus(QStringLiteral("minus"));
    bookmark_shown_ = true;
    redraw_subtitles();
}

void TavelVideo::hide_bookmark()
{
    if (!bookmark_shown_)
        return;
    const bool has_focus = bookmarks_->isAncestorOf(focusWidget());
    set_subtitle_widget(SUBTITLE_STATE::Normal);
    bookmarks_->hide();
    subtitle_->show();
    bookmark_shown_ = false;
    // The focus stays where it is, but a hidden panel would keep all keys to itself.
    if (has_focus)
        place_focus();
    redraw_subtitles();
}

void TavelVideo::add_bookmark(QString file, unsigned int seconds)
{
    bookmarks_->add_track(file, seconds);
}

void TavelVideo::load_bookmark(const QString& file, unsigned int position_ms)
{
    int index = playlist_->get_current_index(file);
    if (index == -1) {
        playlist_->add_track(file);
        index = playlist_->get_current_index(file);
    }
    if (index == playlist_->get_now_playing() && isIn(&TavelVideo::file_loaded_state)) {
        if (seek_allowed_)
            post_seek(SeekMode::Backward, position_ms);
        return;
    }
    play_event(index, position_ms);
}

// ---------------------------------------------------------------- buttons

void TavelVideo::update_buttons()
{
    const bool bookmarks = settings_->get_bookmark_enabled();
    if (!bookmarks)
        hide_bookmark();
    control_bar_->show_bookmark(bookmarks);

    const bool speed = settings_->get_speed_enabled();
    if (!speed)
        post(player_event::speed_normal);
    control_bar_->show_speed_controls(speed);

    if (settings_->get_repeatab_enabled()) {
        reset_repeatAB();
    } else {
        repeat_mode_ = RepeatMode::Off;
        time_bar_->clear_repeatAB();
        control_bar_->show_repeatab(false);
    }
}

void TavelVideo::reset_repeatAB()
{
    if (!settings_->get_repeatab_enabled())
        return;
    repeat_mode_ = RepeatMode::Off;
    control_bar_->showNormal(QStringLiteral("repeatA"));
    control_bar_->hideButton(QStringLiteral("repeatB"));
    control_bar_->hideButton(QStringLiteral("repeatAB"));
    time_bar_->clear_repeatAB();
}

void TavelVideo::disable_playback_buttons()
{
    control_bar_->hideButton(QStringLiteral("pause"));
    control_bar_->disableButton(QStringLiteral("pageup"));
    control_bar_->disableButton(QStringLiteral("pagedown"));
    control_bar_->disableButton(QStringLiteral("play"));
    control_bar_->disableButton(QStringLiteral("stop"));
}
