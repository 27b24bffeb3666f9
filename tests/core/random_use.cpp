#include "random_use.h"

#include "config.h"
#include "device_screen.h"
#include "qpe_application.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>

#include <atomic>
#include <malloc.h>

namespace
{

std::atomic<int> asserts = 0;
QtMessageHandler handler_before = nullptr;

void look_at_message(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const bool is_assert = message.contains(QLatin1String("ASSERT"));
    asserts += is_assert;
    static const bool talkative = qEnvironmentVariableIsSet("TAVEL_SOAK_TALK");
    if (type == QtCriticalMsg || type == QtFatalMsg || is_assert || talkative)
        handler_before(type, context, message);
}

qint64 heap_in_use()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

} // namespace

RandomUse::RandomUse(quint32 seed, const QStringList& files, std::function<void(RandomUse&)> use_the_engine)
    : random_(seed), files_(files), use_the_engine_(std::move(use_the_engine))
{
    // Dialogs run loops of their own; like a viewer, this one closes them.
    connect(&dialog_timer_, &QTimer::timeout, this, [] {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget* window : windows)
            if (auto* const dialog = qobject_cast<QDialog*>(window); dialog && dialog->isVisible())
                dialog->done(0);
    });
    dialog_timer_.start(1);
}

void RandomUse::take_step(PlayerWindow& player)
{
    switch (below(12)) {
    case 0:
    case 1:
        use_a_key(player);
        break;
    case 2:
    case 3:
        player.tap(QPoint(below(640), below(480)));
        break;
    case 4:
    case 5:
        use_a_button(player);
        break;
    case 6:
        use_the_engine_(*this);
        break;
    case 7:
        use_a_request(player);
        break;
    case 8:
        use_a_message(player);
        break;
    case 9:
        use_the_socket(player);
        break;
    case 10:
        use_a_setting(player);
        break;
    default:
        if (QTimer* const timer = player.timer(any_of(std::array{"menu_timer", "long_key_timer"})); timer->isActive())
            timer->start(0);
        break;
    }
}

void RandomUse::use_a_key(PlayerWindow& player)
{
    static constexpr std::array keys{
        int(Qt::Key_Tab),  int(Qt::Key_Return), int(Qt::Key_Left),  int(Qt::Key_Right), int(Qt::Key_Up),
        int(Qt::Key_Down), int(Qt::Key_F2),     int(Qt::Key_F4),    int(Qt::Key_F5),    int(Qt::Key_F7),
        int(Qt::Key_F9),   int(Qt::Key_F10),    int(Qt::Key_Space), int(Qt::Key_A),     TavelVideo::HIDE_CONTROLS_KEY};
    const int key = chance(60) ? int(Qt::Key_Escape) : any_of(keys);
    player.press(key);
    if (chance(3))
        player.press(key, true);
    player.release(key);
}

void RandomUse::use_a_button(PlayerWindow& player)
{
    static constexpr std::array names{"pageup",     "play",          "pause",       "stop",          "open",
                                      "bookmark",   "bookmark_list", "repeatA",     "repeatB",       "repeatAB",
                                      "speed_down", "speed_normal",  "speed_up",    "mute",          "listopen",
                                      "setting",    "pagedown",      "pageup_long", "pagedown_long", "dic"};
    player.control_event(any_of(names));
    if (chance(3)) {
        player.playlist()->button_event(player.playlist(),
                                        QLatin1String(any_of(std::array{"up", "down", "minus", "add", "close"})));
        player.bookmarks()->button_event(player.bookmarks(),
                                         QLatin1String(any_of(std::array{"up", "down", "minus", "close"})));
    }
}

void RandomUse::use_a_request(PlayerWindow& player)
{
    const int number = any_of(std::array{2000, 2001, 2002, 2004, 2005, 2006, 2009, 2010, 2011, 2012, 2013, 2014,
                                         2015, 2016, 2017, 2100, 2101, 2102, 2103, 2104, 2105, 2106, 2107, 2200,
                                         2201, 2202, 2203, 2204, 2205, 2300, 2302, 2303, 3010, 1001, 2999});
    if (number == player_event::switch_screen && !chance(4))
        return;
    if (number == 2100 || number == 2101)
        player.post(number, player_event::EntryRequest{below(8) - 1, static_cast<unsigned int>(below(12000))});
    else
        player.post(number);
    if (chance(3))
        player.seek_to(below(20000) - 5000, chance(2) ? SeekMode::Forward : SeekMode::Backward);
    if (chance(3))
        player.window()->seek_event(static_cast<unsigned int>(below(12)));
}

void RandomUse::use_a_message(PlayerWindow& player)
{
    switch (below(5)) {
    case 0: {
        QStringList list;
        for (int i = below(6); i >= 0; --i)
            list.append(any_of(files_));
        player.hand_over(list);
        break;
    }
    case 1:
        player.message("DoScreenChange(unsigned char)",
                       [&](QDataStream& stream) { stream << static_cast<quint8>(below(3)); });
        break;
    case 2:
        player.message("timeChange(QString)", [](QDataStream&) {});
        break;
    case 3: {
        QByteArray garbage(below(40), Qt::Uninitialized);
        for (char& byte : garbage)
            byte = static_cast<char>(below(256));
        player.window()->receive_message(
            any_of(std::array{QByteArray("transmit_filename(QString)"), QByteArray("DoScreenChange(unsigned char)"),
                              QByteArray("nothing()")}),
            garbage);
        break;
    }
    default:
        emit player.bookmarks()->selected_file_play(any_of(files_), static_cast<unsigned int>(below(12000)));
        break;
    }
}

void RandomUse::use_the_socket(PlayerWindow& player)
{
    player.window()->receive_socket_message(QLatin1String(
        any_of(std::array{"OK", "NAVI_START", "STOP", "PAUSE", "AUDIO_PAUSE", "RESUME", "AUDIO_RESUME", "HELLO", ""})));
}

void RandomUse::use_a_setting(PlayerWindow& player)
{
    const auto combos = player.settings()->findChildren<QComboBox*>();
    QComboBox* const combo = combos[below(static_cast<int>(combos.size()))];
    if (combo->count() > 0)
        combo->setCurrentIndex(below(combo->count()));
    if (chance(3))
        player.settings()->close();
}

QString RandomUse::fault_of(PlayerWindow& player)
{
    QString fault;
    const auto demand = [&fault](bool condition, const char* what) {
        if (!condition && fault.isEmpty())
            fault = QString::fromLatin1(what);
    };
    TavelVideo* const window = player.window();
    int leaves = 0;
    for (const TavelHsm::State& leaf :
         {TavelHsm::State(&TavelVideo::get_file_state), TavelHsm::State(&TavelVideo::no_file_state),
          TavelHsm::State(&TavelVideo::stop_state), TavelHsm::State(&TavelVideo::play_state),
          TavelHsm::State(&TavelVideo::pause_state), TavelHsm::State(&TavelVideo::speed_playing_state),
          TavelHsm::State(&TavelVideo::seeking_state), TavelHsm::State(&TavelVideo::end_of_stream_state),
          TavelHsm::State(&TavelVideo::exit_state)})
        leaves += window->isIn(leaf);
    demand(leaves == 1 || (leaves == 0 && player.in(&TavelVideo::file_loaded_state)), "the chart is in one leaf");
    demand(window->x() == 80 && (window->is_tv_out() || window->y() == 104), "the window is in its place");
    demand(window->size() == QSize(480, 272), "the window has its size");
    demand(player.control_bar()->isVisible() != window->is_full_screen(), "the control bar follows full screen");
    demand(player.title_bar()->isVisible() != window->is_full_screen(), "the title bar follows full screen");
    demand(player.control_bar()->pos() == QPoint(0, 210), "the control bar is in its place");
    demand(player.title_bar()->pos() == QPoint(0, 0), "the title bar is in its place");
    demand(player.time_bar()->pos() == (player.in(&TavelVideo::speed_playing_state) &&
                                                player.time_bar()->scan_direction() != TimeWidget::ScanDirection::None
                                            ? QPoint(0, 262)
                                            : QPoint(0, 192)),
           "the time bar is in its place");
    demand(!window->is_full_screen() || player.in(&TavelVideo::file_loaded_state), "full screen is for a loaded film");
    demand(!(player.playlist()->isVisible() && player.bookmarks()->isVisible()), "one list panel at a time");
    demand(player.subtitle()->isWindow() == window->is_tv_out(), "the subtitle belongs to the screen in use");
    demand(player.subtitle()->isVisible(), "the subtitle's widget is shown");
    demand(!player.loading()->isVisible() || player.in(&TavelVideo::file_loaded_state),
           "the loading text is for a film that loads");
    demand(player.playlist()->get_count() <= 999, "the playlist is not too long");
    demand(player.playlist()->get_now_playing() < qMax(1, player.playlist()->get_count()), "now playing is a row");
    if (player.in(&TavelVideo::play_state))
        demand(!player.shows("play") && player.shows("pause"), "a playing film can be paused");
    if (player.in(&TavelVideo::pause_state) || player.in(&TavelVideo::stop_state))
        demand(player.shows("play") && !player.shows("pause"), "a resting film can be played");
    return fault;
}

QString RandomUse::fault_of_files() const
{
    const QString directory = QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/");
    Config list_file(directory + QStringLiteral("playlist.dat"), Config::File);
    list_file.setGroup(QStringLiteral("Playlist"));
    if (!list_file.hasKey(QStringLiteral("now_playing")))
        return QStringLiteral("no row is said to be now playing");
    for (const QString& file : list_file.readListEntry(QStringLiteral("files")))
        // The file manager may have gone anywhere, but it only offers what is there.
        if (!files_.contains(file) && !QFileInfo::exists(file))
            return QStringLiteral("the playlist holds ") + file;
    Config bookmarks(directory + QStringLiteral("bookmark.dat"), Config::File);
    bookmarks.setGroup(QStringLiteral("Bookmarks"));
    if (bookmarks.readListEntry(QStringLiteral("bookmarks")).size() % 2 != 0)
        return QStringLiteral("a bookmark is without its place");
    return {};
}

void RandomUse::put_to_rest(PlayerWindow& player, const std::function<void()>& settle)
{
    settle();
    player.settings()->close();
    player.file_manager()->close();
    player.message("DoScreenChange(unsigned char)", [](QDataStream& stream) { stream << quint8(0); });
    settle();
    player.post(player_event::stop);
    settle();
    while (player.bookmarks()->get_count() > 0)
        player.bookmarks()->remove_track();
    while (player.playlist()->get_count() > 0)
        player.playlist()->remove_track();
    settle();
    const auto combos = player.settings()->findChildren<QComboBox*>();
    for (QComboBox* combo : combos)
        combo->setCurrentIndex(0);
    player.settings()->close();
    player.window()->hide_playlist();
    player.window()->hide_bookmark();
    settle();
    player.information()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

MachineAsserts::MachineAsserts()
{
    asserts = 0;
    handler_before = qInstallMessageHandler(look_at_message);
}

MachineAsserts::~MachineAsserts()
{
    qInstallMessageHandler(handler_before);
}

int MachineAsserts::count() const
{
    return asserts;
}

void Remains::note(PlayerWindow& player)
{
    heap_.append(heap_in_use());
    objects_.append(player.window()->findChildren<QObject*>().size() +
                    player.settings()->findChildren<QObject*>().size() +
                    player.file_manager()->findChildren<QObject*>().size() + QApplication::topLevelWidgets().size());
}

qint64 Remains::least_growth(qsizetype warm_up) const
{
    qint64 least = std::numeric_limits<qint64>::max();
    for (qsizetype round = warm_up; round < heap_.size(); ++round)
        least = std::min(least, heap_[round] - heap_[round - 1]);
    return least;
}

QString Remains::describe() const
{
    QStringList rounds;
    for (qsizetype round = 0; round < heap_.size(); ++round)
        rounds.append(QStringLiteral("%1 bytes, %2 objects").arg(heap_[round]).arg(objects_[round]));
    return rounds.join(QStringLiteral("; "));
}
