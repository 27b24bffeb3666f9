#include "tavel_video.h"

#include "bookmark_widget.h"
#include "custom_event.h"
#include "device_font.h"
#include "media_player.h"
#include "play_list_widget.h"
#include "subtitle_control.h"
#include "vesk_socket.h"
#include "window_flags.h"

namespace
{

struct ButtonEvent {
    const char* name;
    player_event::Number number;
};

constexpr std::array<ButtonEvent, 20> BUTTON_EVENTS{{
    {"pageup", player_event::taken_by_name},
    {"play", player_event::play},
    {"pause", player_event::pause},
    {"stop", player_event::stop},
    {"open", player_event::open_browser},
    {"bookmark", player_event::add_bookmark},
    {"bookmark_list", player_event::bookmark_list},
    {"repeatA", player_event::repeat_ab},
    {"repeatB", player_event::repeat_ab},
    {"repeatAB", player_event::repeat_ab},
    {"speed_down", player_event::speed_down},
    {"speed_normal", player_event::speed_normal},
    {"speed_up", player_event::speed_up},
    {"mute", player_event::mute},
    {"listopen", player_event::taken_by_name},
    {"setting", player_event::open_settings},
    {"pagedown", player_event::taken_by_name},
    {"close", player_event::close},
    {"pageup_long", player_event::scan_forward},
    {"pagedown_long", player_event::scan_back},
}};

struct DisplayText {
    TavelVideoString key;
    const char* text;
};

constexpr std::array<DisplayText, 33> DISPLAY_TEXTS{{
    {TavelVideoString::Play, QT_TRANSLATE_NOOP("TavelVideo", "[ PLAY ]")},
    {TavelVideoString::Stop, QT_TRANSLATE_NOOP("TavelVideo", "[ STOP ]")},
    {TavelVideoString::Pause, QT_TRANSLATE_NOOP("TavelVideo", "[ PAUSE]")},
    {TavelVideoString::Seek, QT_TRANSLATE_NOOP("TavelVideo", "[ SEEK ]")},
    {TavelVideoString::Forward, QT_TRANSLATE_NOOP("TavelVideo", "FORWARD ")},
    {TavelVideoString::Backward, QT_TRANSLATE_NOOP("TavelVideo", "BACKWARD ")},
    {TavelVideoString::SkipForward, QT_TRANSLATE_NOOP("TavelVideo", "[ SKIP FORWARD ]")},
    {TavelVideoString::SkipBackward, QT_TRANSLATE_NOOP("TavelVideo", "[ SKIP BACKWARD ]")},
    {TavelVideoString::Seconds, QT_TRANSLATE_NOOP("TavelVideo", " SEC")},
    {TavelVideoString::Bookmark, QT_TRANSLATE_NOOP("TavelVideo", "[ BOOKMARK ]")},
    {TavelVideoString::SetA, QT_TRANSLATE_NOOP("TavelVideo", "[ A SET ]")},
    {TavelVideoString::SetB, QT_TRANSLATE_NOOP("TavelVideo", "[ B SET ]")},
    {TavelVideoString::ReleasedAB, QT_TRANSLATE_NOOP("TavelVideo", "[ AB RELEASED ]")},
    {TavelVideoString::FastForward, QT_TRANSLATE_NOOP("TavelVideo", "[ FAST FORWARD ]")},
    {TavelVideoString::FastRewind, QT_TRANSLATE_NOOP("TavelVideo", "[ FAST REWIND ]")},
    {TavelVideoString::Speed, QT_TRANSLATE_NOOP("TavelVideo", "[ SPEED ]")},
    {TavelVideoString::Mute, QT_TRANSLATE_NOOP("TavelVideo", "MUTE")},
    {TavelVideoString::MasterVolume, QT_TRANSLATE_NOOP("TavelVideo", "MASTER VOLUME")},
    {TavelVideoString::Audio, QT_TRANSLATE_NOOP("TavelVideo", "AUDIO : ")},
    {TavelVideoString::Subtitle, QT_TRANSLATE_NOOP("TavelVideo", "SUBTITLE :")},
    {TavelVideoString::NowLoading, QT_TRANSLATE_NOOP("TavelVideo", "Now Loading...")},
    {TavelVideoString::Stopping, QT_TRANSLATE_NOOP("TavelVideo", "Stopping...")},
    {TavelVideoString::Video, QT_TRANSLATE_NOOP("TavelVideo", "VIDEO")},
    {TavelVideoString::FileNotFound, QT_TRANSLATE_NOOP("TavelVideo", "FILE NOT FOUND.")},
    {TavelVideoString::CannotExecuteFile, QT_TRANSLATE_NOOP("TavelVideo", "CAN NOT EXECUTE FILE.")},
    {TavelVideoString::SpdifOut, QT_TRANSLATE_NOOP("TavelVideo", "SPDIF 5.1CH OUT.")},
    {TavelVideoString::ResolutionWarning,
     QT_TRANSLATE_NOOP(
         "TavelVideo",
         "This video has a resolution\ngreater than 480*360 and is not\nguaranteed to play back properly.")},
    {TavelVideoString::BookmarkListFull,
     QT_TRANSLATE_NOOP("TavelVideo", "Bookmark list is full.\nPlease remove some before adding new ones.")},
    {TavelVideoString::NavigationRunning,
     QT_TRANSLATE_NOOP("TavelVideo", "Navigation Application running!\nCan't Execute Video Player")},
    {TavelVideoString::TvOutUnsupported, QT_TRANSLATE_NOOP("TavelVideo", "TV-OUT UNSUPPORT MEDIA")},
    {TavelVideoString::SystemError,
     QT_TRANSLATE_NOOP("TavelVideo", "A system error occured while attempting\n to play the last video file.")},
    {TavelVideoString::Yes, QT_TRANSLATE_NOOP("TavelVideo", "YES")},
    {TavelVideoString::No, QT_TRANSLATE_NOOP("TavelVideo", "NO")},
}};

constexpr const char* REVISION = "$Revision: 7481 $";

} // namespace

TavelVideo::TavelVideo(QWidget* parent, const char* name, unsigned int flags)
    : QWidget(parent, window_flags(flags))
    , TavelHsm(&TavelVideo::initial)
    , large_font_(device_font(QStringLiteral("v28"), 28, 50))
    , medium_font_(device_font(QStringLiteral("v28"), 20, 50))
    , small_font_(device_font(QStringLiteral("v28"), 17, 50))
{
    setObjectName(QString::fromLatin1(name));
    // The main window paints nothing: what is behind the panels is the film.
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_NoSystemBackground);

    init_string_table();
    version_ = make_version(REVISION);

    create_panels();

    menu_timer_ = new QTimer(this);
    menu_timer_->setObjectName(QStringLiteral("menu_timer"));
    window_timer_ = new QTimer(this);
    window_timer_->setObjectName(QStringLiteral("window_timer"));
    long_key_timer_ = new QTimer(this);
    long_key_timer_->setObjectName(QStringLiteral("long_key_timer"));
    socket_ = new VeskSocket(socket_port_);

    init_signal_table();
    init_widgets();

    set_black_background();

    write_frame_buffer(FrameBufferWrite::DisablePlane0);
    channel_ = new QCopChannel(CHANNEL, this);
    connect_signals();

    full_screen_ = true;
    tv_out_ = false;
    toggle_fullscreen();

    init();

    if (screen_control_.V28_ReadProcFile_ScreenStatus() > 0)
        post_screen_switch();
    socket_->send(QStringLiteral("HIDE"));
}

TavelVideo::~TavelVideo()
{
    disconnect_signals();

    playlist_->save_now_playing(static_cast<unsigned int>(position_.load()));
    bookmarks_->save();
    settings_->save_settings();

    subtitle_->set_subtitle(nullptr);
    settings_->set_player(nullptr);
    if (media_player_) {
        media_player_->set_subtitles_ready_hook({});
        media_player_->release();
        delete media_player_;
        media_player_ = nullptr;
    }
    delete socket_;
    socket_ = nullptr;
    // On a TV it is no child of this window.
    if (subtitle_->isWindow())
        delete subtitle_;
}

quint16 TavelVideo::socket_port_ = TavelVideo::SOCKET_PORT;

void TavelVideo::set_socket_port(quint16 port)
{
    socket_port_ = port;
}

void TavelVideo::init_string_table()
{
    for (const DisplayText& row : DISPLAY_TEXTS)
        strings_.insert(row.key, tr(row.text));
}

void TavelVideo::init_signal_table()
{
    for (const ButtonEvent& row : BUTTON_EVENTS)
        button_events_.insert(QString::fromLatin1(row.name), row.number);
}

QString TavelVideo::make_version(const char* revision)
{
    QString number = QString::fromLatin1(revision);
    number.remove(0, number.indexOf(u' ') + 1);
    number.truncate(number.indexOf(u' ') + 1);
    const unsigned int r = number.trimmed().toUInt();
    // The middle field is not reduced: from revision 10000 on it carries the ten-thousands again.
    return QString::asprintf("%01u.%02u.%03u", r / 10000 + 1, r / 1000, r % 1000);
}
