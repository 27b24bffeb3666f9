#include "tavel_video.h"

#include "bookmark_widget.h"
#include "control_skin.h"
#include "device_font.h"
#include "device_screen.h"
#include "info_control.h"
#include "main_title.h"
#include "message_box.h"
#include "osd_control.h"
#include "play_list_widget.h"
#include "skin_group.h"
#include "subtitle_control.h"
#include "time_widget.h"
#include "title_skin.h"
#include "vesk_socket.h"

#include <QtGui/QFontMetrics>

namespace
{

/// The layout file's keys for the places of five panels, in the order in which the panels are moved.
struct PanelPlace {
    const char* x;
    const char* y;
};

constexpr std::array<PanelPlace, 5> PANEL_PLACES{{
    {"title_xpos", "title_ypos"},
    {"control_xpos", "control_ypos"},
    {"time_xpos", "time_ypos"},
    {"playlist_xpos", "playlist_ypos"},
    {"bookmark_xpos", "bookmark_ypos"},
}};

constexpr QPoint LOADING_TEXT_PLACE(20, 210);
constexpr int LOADING_TEXT_POINTS = 24;
constexpr int LOADING_TEXT_MARGIN = 10;

} // namespace

void TavelVideo::create_panels()
{
    information_ = new InfoControl(this, "info_control", 0);
    subtitle_ = new SubtitleControl(this, "subtitle_control", OWN_WINDOW_FLAGS);
    control_bar_ = new ControlSkin(this, "VIDEO_CONTROL", 0);
    time_bar_ = new TimeWidget(this, "TIME", 0);
    playlist_ = new PlayListWidget(this, "PLAYLIST");
    bookmarks_ = new BookmarkWidget(this, "BOOKMARK");
    title_bar_ = new TitleSkin(this, "VIDEO_TITLE", 0);
    file_manager_ = new mainTitle(nullptr, "FILEMANAGER", OWN_WINDOW_FLAGS);
    loading_ = new OsdControl(this, "NOW LOADING", 0);
    settings_ = new SettingWidget(nullptr, "VIDEO SETTING", OWN_WINDOW_FLAGS);
    message_box_ = new MessageBox(text(TavelVideoString::Video), QString(), this);
}

void TavelVideo::init_widgets()
{
    const SkinGroup layout(this, QStringLiteral("MAIN"));
    const std::array<QWidget*, PANEL_PLACES.size()> panels{title_bar_, control_bar_, time_bar_, playlist_, bookmarks_};
    for (std::size_t i = 0; i < panels.size(); ++i)
        panels[i]->move(layout.position(QString::fromLatin1(PANEL_PLACES[i].x)),
                        layout.position(QString::fromLatin1(PANEL_PLACES[i].y)));

    controls_offset_ = 0;
    settings_->hide();
    settings_->setFixedSize(settings_->size());
    settings_->set_version(version_);
    playlist_->hide();

    loading_->setFont(device_font(QStringLiteral("v28"), LOADING_TEXT_POINTS, 50));
    loading_->set_text_color(Qt::white, false);
    const QFontMetrics metrics(loading_->font());
    loading_->setGeometry(LOADING_TEXT_PLACE.x(), LOADING_TEXT_PLACE.y(),
                          metrics.horizontalAdvance(text(TavelVideoString::NowLoading)),
                          metrics.height() + LOADING_TEXT_MARGIN);
    loading_->hide();
    loading_->setFocusPolicy(Qt::NoFocus);

    control_bar_->set_longbutton(QStringLiteral("pageup"));
    control_bar_->set_longbutton(QStringLiteral("pagedown"));
    update_buttons();

    show_file_name(QString());
    file_manager_->setCaption(tr("Video File Manager"));
    DeviceScreen* const screen = DeviceScreen::instance();
    const QPoint desktop = screen->desktop_geometry().topLeft();
    file_manager_->move(desktop);
    settings_->move(desktop);
    move(desktop);

    screen->stack_under(this, settings_);
    screen->stack_under(this, file_manager_);
    screen->stack_under(this, playlist_);

    qApp->installEventFilter(this);

    set_alpha(settings_->get_transparency());
    volume_ = settings_->get_volume();
    control_bar_->set_volume(static_cast<unsigned int>(volume_));
    active_window_ = this;
}

void TavelVideo::connect_signals()
{
    // The first row names a signal that the callbacks do not emit; the toolkit says so at each start.
    connect(&callbacks_, SIGNAL(time_signal(PlayerState)), control_bar_, SLOT(setValue(PlayerState)));
    connect(&callbacks_, SIGNAL(state_signal(PlayerState)), this, SLOT(update_state(PlayerState)),
            Qt::DirectConnection);
    connect(&callbacks_, SIGNAL(time_signal(Time)), this, SLOT(update_time(Time)), Qt::DirectConnection);
    connect(&callbacks_, SIGNAL(error_signal(RaskStatus)), this, SLOT(handle_error(RaskStatus)), Qt::DirectConnection);
    connect(&callbacks_, SIGNAL(stream_signal(StreamType, StreamState)), this,
            SLOT(stream_event(StreamType, StreamState)), Qt::DirectConnection);
    connect(control_bar_, SIGNAL(button_clicked(const QObject*, const QString)), this,
            SLOT(control_event(const QObject*, const QString)));
    connect(title_bar_, SIGNAL(button_clicked(const QObject*, const QString)), this,
            SLOT(control_event(const QObject*, const QString)));
    connect(time_bar_, SIGNAL(play_signal()), this, SLOT(play_event()));
    connect(playlist_, SIGNAL(selected_file_play(int, unsigned int)), this, SLOT(play_event(int, unsigned int)));
    connect(playlist_, SIGNAL(selected_file(int, unsigned int)), this, SLOT(load_event(int, unsigned int)));
    connect(playlist_, SIGNAL(close_signal()), this, SLOT(hide_playlist()));
    connect(playlist_, SIGNAL(open_playlist_browser()), this, SLOT(open_playlist_browser()));
    connect(playlist_, SIGNAL(stop_signal()), this, SLOT(close_event()));
    connect(bookmarks_, SIGNAL(selected_file_play(const QString&, unsigned int)), this,
            SLOT(load_bookmark(const QString&, unsigned int)));
    connect(bookmarks_, SIGNAL(close_signal()), this, SLOT(hide_bookmark()));
    connect(subtitle_, SIGNAL(click_button(QMouseEvent*)), this, SLOT(mousePressEvent(QMouseEvent*)));
    connect(information_, SIGNAL(click_button(QMouseEvent*)), this, SLOT(mousePressEvent(QMouseEvent*)));
    connect(channel_, SIGNAL(received(const QCString&, const QByteArray&)), this,
            SLOT(receive_message(const QCString&, const QByteArray&)));
    connect(menu_timer_, SIGNAL(timeout()), this, SLOT(menu_timeout()));
    connect(window_timer_, SIGNAL(timeout()), this, SLOT(window_timeout()));
    connect(long_key_timer_, SIGNAL(timeout()), this, SLOT(long_key_timeout()));
    connect(settings_, SIGNAL(update_signal(int)), this, SLOT(postCustomEvent(int)));
    connect(settings_, SIGNAL(update_transparency(unsigned char)), this, SLOT(set_alpha(unsigned char)));
    connect(control_bar_, SIGNAL(update_volume(int)), this, SLOT(send_volume(int)));
    connect(socket_, SIGNAL(received(QString)), this, SLOT(receive_socket_message(QString)));
    connect(qApp, SIGNAL(volumeChanged(bool)), this, SLOT(display_volume(bool)));
    connect(file_manager_, &mainTitle::append_requested, this, &TavelVideo::note_append_request);
}

void TavelVideo::disconnect_signals()
{
    qApp->removeEventFilter(this);
    callbacks_.disconnect();
    const std::array<QObject*, 14> senders{control_bar_,  title_bar_,  time_bar_,     playlist_,      bookmarks_,
                                           file_manager_, subtitle_,   information_,  channel_,       settings_,
                                           socket_,       menu_timer_, window_timer_, long_key_timer_};
    for (QObject* sender : senders)
        sender->disconnect(this);
    qApp->disconnect(this);
}

void TavelVideo::set_alpha(unsigned char alpha)
{
    control_bar_->setAlphaOverride(alpha);
    title_bar_->setAlphaOverride(alpha);
    time_bar_->setAlphaOverride(alpha);
    playlist_->setAlphaOverride(alpha);
    bookmarks_->setAlphaOverride(alpha);
}
