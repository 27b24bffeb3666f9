#include "tavel_video.h"

#include "bookmark_widget.h"
#include "config.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "global.h"
#include "info_control.h"
#include "main_title.h"
#include "media_player.h"
#include "play_list_widget.h"
#include "subtitle_control.h"
#include "time_widget.h"
#include "title_skin.h"
#include "window_flags.h"

#include <algorithm>
#include <cstdio>

namespace
{

/// Indexed by TavelVideo::FrameBufferWrite.
constexpr std::array<const char*, 8> FRAME_BUFFER_WRITES{{
    "/dev/fb0 enable 0",
    "/dev/fb1 enable 0",
    "/dev/fb2 enable 0",
    "/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1",
    "/dev/fb1 size 640 480",
    "/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1",
    "/dev/fb1 size 480 272",
    "/dev/fb1 enable 1",
}};

constexpr QSize LCD_OUTPUT(480, 272);
constexpr QSize TV_OUTPUT(640, 480);
constexpr QRect WINDOW_PLACE(80, 104, 480, 272);
constexpr int PLANE_WAIT_S = 1;

/// Where the information text stands beside the title bar, and without it.
constexpr QPoint INFORMATION_PLACE(0, 26);
constexpr QPoint INFORMATION_PLACE_FULL_SCREEN(0, 0);

/// Offsets of the controls from here on would lift them off a TV.
constexpr int OFFSET_LIMIT = 106;
constexpr int TASKBAR_Y = 356;

/// Codecs whose larger pictures the device may not play in time.
constexpr std::array<const char*, 5> DEMANDING_CODECS{{
    "WMV7",
    "WMV8",
    "MS Mpeg 4 v1",
    "MS Mpeg 4 v2",
    "MS Mpeg 4 v3",
}};

constexpr unsigned int SURROUND_CHANNELS = 5;

void wait_for_plane()
{
    Global::sleep(PLANE_WAIT_S);
}

} // namespace

// ---------------------------------------------------------------- LCD and TV

void TavelVideo::write_frame_buffer(FrameBufferWrite write)
{
    frame_buffer_.control(FRAME_BUFFER_WRITES.at(static_cast<std::size_t>(write)));
}

void TavelVideo::set_picture_plane(bool on)
{
    write_frame_buffer(on ? FrameBufferWrite::EnableVideo : FrameBufferWrite::DisableVideo);
    picture_plane_on_ = on;
}

QSize TavelVideo::output_size() const
{
    return tv_out_ ? TV_OUTPUT : LCD_OUTPUT;
}

void TavelVideo::toggle_video_out()
{
    if (!media_player_)
        return;
    if (!tv_out_)
        time_bar_->move(TIME_BAR_PLACE);
    tv_out_ = !tv_out_;
    change_video_out();
}

void TavelVideo::change_video_out()
{
    // Without an engine the program is ending.
    if (!media_player_)
        return;
    if (isIn(&TavelVideo::speed_playing_state)) {
        const QCustomEvent play(player_event::play);
        dispatch(&play);
    }
    const bool playing = isIn(&TavelVideo::play_state) ||
                         (isIn(&TavelVideo::seeking_state) && history_ == State(&TavelVideo::play_state));
    if (playing)
        media_player_->pause();
    set_picture_plane(false);
    write_frame_buffer(FrameBufferWrite::DisableControls);
    wait_for_plane();
    gate_.shut();

    if (tv_out_)
        to_tv();
    else
        to_lcd();

    subtitle_->show();
    setGeometry(WINDOW_PLACE);

    const bool hidden = full_screen_;
    full_screen_ = !full_screen_;
    toggle_fullscreen();
    if (full_screen_ != hidden) {
        // Hiding was refused: what is on the screen must be what the flag says.
        full_screen_ = true;
        toggle_fullscreen();
    }
    repaint();

    reset_display();
    wait_for_plane();
    if (playing)
        media_player_->play();
    wait_for_plane();
    set_picture_plane(true);
    if (hidden_for_privacy_)
        set_picture_plane(false);
    if (settings_open_)
        place_settings_preview();

    if (tv_out_)
        window_timer_->start(WINDOW_TIMER_INTERVAL_MS);
    else
        window_timer_->stop();
    post_held_back(gate_.open());
}

void TavelVideo::to_tv()
{
    screen_control_.V28_ScreenSetTvMode();
    wait_for_plane();
    write_frame_buffer(FrameBufferWrite::ControlsOnTv);
    wait_for_plane();
    write_frame_buffer(FrameBufferWrite::VideoOnTv);
    wait_for_plane();
    subtitle_->setParent(nullptr, window_flags(OWN_WINDOW_FLAGS));
    subtitle_->move(0, 0);
    // A window of its own, but the keys stay with the player's.
    subtitle_->setAttribute(Qt::WA_ShowWithoutActivating);
    subtitle_->setFocusPolicy(Qt::NoFocus);
    set_subtitle_widget(SUBTITLE_STATE::FullScreen);
    subtitle_->setEnabled(true);
}

void TavelVideo::to_lcd()
{
    move_controls(0);
    wait_for_plane();
    screen_control_.V28_ScreenSetLcdMode();
    wait_for_plane();
    write_frame_buffer(FrameBufferWrite::ControlsOnLcd);
    wait_for_plane();
    write_frame_buffer(FrameBufferWrite::VideoOnLcd);
    wait_for_plane();
    set_lcd_brightness();
    const QPoint place = subtitle_->pos();
    subtitle_->setParent(this);
    subtitle_->move(place);
    // Between the information text and the panels, as it was made.
    subtitle_->stackUnder(control_bar_);
    subtitle_->setFocusPolicy(Qt::NoFocus);
    subtitle_->setEnabled(true);
    controls_offset_ = 0;
    update_subtitles();
}

void TavelVideo::reset_display()
{
    if (!media_player_)
        return;
    const QSize output = output_size();
    media_player_->set_video_window(0, 0, output.width(), output.height());
    media_player_->set_aspect(settings_->get_aspect_ratio());
}

// ---------------------------------------------------------------- full screen

void TavelVideo::toggle_fullscreen()
{
    setFixedSize(DeviceScreen::instance()->desktop_geometry().size());
    if (full_screen_)
        show_controls();
    else if (!settings_open_ && !browser_open_ && !hide_controls())
        return;
    if (settings_->get_subtitle_on())
        redraw_subtitles();
}

void TavelVideo::show_controls()
{
    if (playlist_shown_)
        playlist_->show();
    if (bookmark_shown_)
        bookmarks_->show();
    time_bar_->show();
    title_bar_->show();
    subtitle_->show();
    control_bar_->show();
    display_taskbar(true);
    if (playlist_shown_)
        set_subtitle_widget(SUBTITLE_STATE::Playlist);
    else if (bookmark_shown_)
        set_subtitle_widget(SUBTITLE_STATE::Bookmarks);
    else
        set_subtitle_widget(SUBTITLE_STATE::Normal);
    information_->hide();
    information_->setGeometry(QRect(INFORMATION_PLACE, information_->size()));
    information_->show();
    full_screen_ = false;
    reset_menu_timer();
    place_focus();
}

/// @return false when another window is active: the controls stay, and it is tried again later.
bool TavelVideo::hide_controls()
{
    if (!DeviceScreen::instance()->is_active(this)) {
        reset_menu_timer();
        std::puts("tavel video main widget is not active window. so retry fullscreen");
        return false;
    }
    bookmarks_->hide();
    playlist_->hide();
    title_bar_->hide();
    control_bar_->hide();
    time_bar_->hide();
    information_->hide();
    information_->setGeometry(QRect(INFORMATION_PLACE_FULL_SCREEN, information_->size()));
    information_->show();
    display_taskbar(false);
    set_subtitle_widget(SUBTITLE_STATE::FullScreen);
    full_screen_ = true;
    place_focus();
    return true;
}

void TavelVideo::enter_full_screen()
{
    if (!full_screen_)
        toggle_fullscreen();
}

void TavelVideo::leave_full_screen()
{
    if (full_screen_)
        toggle_fullscreen();
}

void TavelVideo::set_black_background()
{
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
}

void TavelVideo::move_controls(int offset)
{
    if (offset >= OFFSET_LIMIT)
        return;
    set_black_background();
    const int top = WINDOW_PLACE.y() - offset;
    setGeometry(WINDOW_PLACE.x(), top, width(), height());
    settings_->move(x(), top);
    file_manager_->move(x(), top);
    move_taskbar(DeviceScreen::instance()->desktop_geometry().x(), TASKBAR_Y - offset);
    subtitle_->setGeometry(tv_subtitle_place());
}

// ---------------------------------------------------------------- what the film asks of screen and sound

void TavelVideo::show_resolution_warning()
{
    const QString codec = media_player_->get_info("video", "name");
    const bool demanding = std::any_of(DEMANDING_CODECS.begin(), DEMANDING_CODECS.end(),
                                       [&](const char* each) { return codec == QLatin1String(each); });
    if (!demanding)
        return;
    // The limits are the LCD's, although the text names others.
    if (media_player_->get_info("video", "width").toInt() > LCD_OUTPUT.width() ||
        media_player_->get_info("video", "height").toInt() > LCD_OUTPUT.height())
        show_notice(text(TavelVideoString::ResolutionWarning));
}

void TavelVideo::check_spdif()
{
    if (media_player_->initialize() != rask::ok) {
        post_failure();
        return;
    }
    const unsigned int channels = media_player_->get_info("audio", "channels").toUInt();
    if (channels < SURROUND_CHANNELS || screen_control_.Is24PinConnect() < 1 || !settings_->get_spdif_enabled()) {
        spdif_active_ = false;
        return;
    }
    spdif_active_ = media_player_->set_option(static_cast<int>(Option::DigitalOutput), true) == rask::ok;
    if (spdif_active_)
        set_spdif(true);
}

void TavelVideo::set_spdif(bool on)
{
    Config config(QStringLiteral("Sound"));
    config.setGroup(QStringLiteral("System"));
    config.writeEntry(QStringLiteral("spdif"), on);
}

void TavelVideo::switch_spdif_off()
{
    if (spdif_active_)
        media_player_->set_option(static_cast<int>(Option::DigitalOutput), false);
    set_spdif(false);
    spdif_active_ = false;
}

void TavelVideo::paintEvent(QPaintEvent*)
{
    // Nothing: the film is behind the panels.
}
