#include "config.h"
#include "device_screen.h"
#include "player.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtCore/QRandomGenerator>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>

/// Random use from a seed: keys, taps, buttons, messages, engine reports and settings, in any order, on the whole
/// player.
///
/// TAVEL_SOAK_STEPS sets how many steps a seed takes (2000 without it), TAVEL_SOAK_SEED which seed is used alone.
class SoakTest : public QObject
{
    Q_OBJECT

private slots:
    void any_use_leaves_the_player_whole_data()
    {
        QTest::addColumn<quint32>("seed");
        if (qEnvironmentVariableIsSet("TAVEL_SOAK_SEED")) {
            const auto seed = static_cast<quint32>(qEnvironmentVariableIntValue("TAVEL_SOAK_SEED"));
            QTest::addRow("seed %u", seed) << seed;
            return;
        }
        for (const quint32 seed : {1U, 2U, 3U, 5U, 8U})
            QTest::addRow("seed %u", seed) << seed;
    }
    void any_use_leaves_the_player_whole()
    {
        QFETCH(quint32, seed);
        random = QRandomGenerator(seed);
        assertions = 0;
        previous_handler = qInstallMessageHandler(&SoakTest::look_at_message);
        const int steps =
            qEnvironmentVariableIsSet("TAVEL_SOAK_STEPS") ? qEnvironmentVariableIntValue("TAVEL_SOAK_STEPS") : 2000;
        start(Player::Device());
        for (int step = 0; step < steps; ++step) {
            take_step();
            if (chance(4))
                player->settle();
            if (player->in(&TavelVideo::exit_state)) {
                player.reset();
                start(Player::Device{.keep_files = true});
            }
            if (step % 50 == 0)
                QVERIFY2(is_whole(), qPrintable(QStringLiteral("after step %1: %2").arg(step).arg(fault)));
        }
        settle_down();
        QVERIFY2(is_whole(), qPrintable(fault));
        player.reset();
        qInstallMessageHandler(previous_handler);
        QCOMPARE(assertions, 0);
        QCOMPARE(scripted_engine::players(), 0);
        check_files();
    }

    void cleanup()
    {
        dialog_timer.stop();
        player.reset();
        qInstallMessageHandler(nullptr);
    }

private:
    void start(const Player::Device& device)
    {
        player = std::make_unique<Player>(device);
        if (files.isEmpty() || !QFile::exists(files[0])) {
            for (int i = 0; i < 5; ++i) {
                files.append(directory.filePath(QStringLiteral("film %1.avi").arg(i)));
                QFile file(files.last());
                if (!file.open(QIODevice::WriteOnly))
                    qFatal("no test file");
            }
            files.append(directory.filePath(QStringLiteral("missing.avi")));
        }
        // Dialogs run loops of their own; like a viewer, this one closes them.
        dialog_timer.disconnect();
        connect(&dialog_timer, &QTimer::timeout, this, [] {
            const QWidgetList windows = QApplication::topLevelWidgets();
            for (QWidget* window : windows)
                if (auto* const dialog = qobject_cast<QDialog*>(window); dialog && dialog->isVisible())
                    dialog->done(0);
        });
        dialog_timer.start(1);
    }

    int below(int bound) { return static_cast<int>(random.bounded(bound)); }
    bool chance(int one_in) { return below(one_in) == 0; }
    template<typename Container> auto any_of(const Container& container)
    {
        return *(std::begin(container) + below(static_cast<int>(std::size(container))));
    }

    void take_step()
    {
        switch (below(12)) {
        case 0:
        case 1:
            use_a_key();
            break;
        case 2:
        case 3:
            player->tap(QPoint(below(640), below(480)));
            break;
        case 4:
        case 5:
            use_a_button();
            break;
        case 6:
            use_a_report();
            break;
        case 7:
            use_a_request();
            break;
        case 8:
            use_a_message();
            break;
        case 9:
            use_the_socket();
            break;
        case 10:
            use_a_setting();
            break;
        default:
            if (QTimer* const timer = player->timer(any_of(std::array{"menu_timer", "long_key_timer"}));
                timer->isActive())
                timer->start(0);
            scripted_engine::set_next_result(
                any_of(std::array{QStringLiteral("open"), QStringLiteral("prepare"), QStringLiteral("play"),
                                  QStringLiteral("pause"), QStringLiteral("seek"), QStringLiteral("scan_forward"),
                                  QStringLiteral("close"), QStringLiteral("set_speed"), QStringLiteral("initialize")}),
                chance(6) ? rask::engine_failed : rask::ok);
            break;
        }
    }

    void use_a_key()
    {
        static constexpr std::array keys{int(Qt::Key_Tab),   int(Qt::Key_Return), int(Qt::Key_Left),
                                         int(Qt::Key_Right), int(Qt::Key_Up),     int(Qt::Key_Down),
                                         int(Qt::Key_F2),    int(Qt::Key_F4),     int(Qt::Key_F5),
                                         int(Qt::Key_F7),    int(Qt::Key_F9),     int(Qt::Key_F10),
                                         int(Qt::Key_Space), int(Qt::Key_A),      TavelVideo::HIDE_CONTROLS_KEY};
        const int key = chance(60) ? int(Qt::Key_Escape) : any_of(keys);
        player->press(key);
        if (chance(3))
            player->press(key, true);
        player->release(key);
    }

    void use_a_button()
    {
        static constexpr std::array names{"pageup",     "play",          "pause",       "stop",          "open",
                                          "bookmark",   "bookmark_list", "repeatA",     "repeatB",       "repeatAB",
                                          "speed_down", "speed_normal",  "speed_up",    "mute",          "listopen",
                                          "setting",    "pagedown",      "pageup_long", "pagedown_long", "dic"};
        player->control_event(any_of(names));
        if (chance(3)) {
            player->playlist()->button_event(player->playlist(),
                                             QLatin1String(any_of(std::array{"up", "down", "minus", "add", "close"})));
            player->bookmarks()->button_event(player->bookmarks(),
                                              QLatin1String(any_of(std::array{"up", "down", "minus", "close"})));
        }
    }

    void use_a_report()
    {
        switch (below(5)) {
        case 0:
            scripted_engine::report_state(static_cast<PlayerState>(below(12)));
            break;
        case 1:
            scripted_engine::report_time(below(12000));
            break;
        case 2:
            scripted_engine::report_stream(static_cast<StreamType>(below(2)), static_cast<StreamState>(below(3)));
            break;
        case 3:
            scripted_engine::run_to(below(10001));
            break;
        default:
            if (chance(20))
                scripted_engine::report_error(static_cast<RaskStatus>(below(50)));
            break;
        }
    }

    void use_a_request()
    {
        const int number = any_of(std::array{2000, 2001, 2002, 2004, 2005, 2006, 2009, 2010, 2011, 2012, 2013, 2014,
                                             2015, 2016, 2017, 2100, 2101, 2102, 2103, 2104, 2105, 2106, 2107, 2200,
                                             2201, 2202, 2203, 2204, 2205, 2300, 2302, 2303, 3010, 1001, 2999});
        if (number == player_event::switch_screen && !chance(4))
            return;
        if (number == 2100 || number == 2101)
            player->post(number, player_event::EntryRequest{below(8) - 1, static_cast<unsigned int>(below(12000))});
        else
            player->post(number);
        if (chance(3))
            player->seek_to(below(20000) - 5000, chance(2) ? SeekMode::Forward : SeekMode::Backward);
        if (chance(3))
            player->window()->seek_event(static_cast<unsigned int>(below(12)));
    }

    void use_a_message()
    {
        switch (below(5)) {
        case 0: {
            QStringList list;
            for (int i = below(6); i >= 0; --i)
                list.append(any_of(files));
            player->hand_over(list);
            break;
        }
        case 1:
            player->message("DoScreenChange(unsigned char)",
                            [&](QDataStream& stream) { stream << static_cast<quint8>(below(3)); });
            break;
        case 2:
            player->message("timeChange(QString)", [](QDataStream&) {});
            break;
        case 3: {
            QByteArray garbage(below(40), Qt::Uninitialized);
            for (char& byte : garbage)
                byte = static_cast<char>(below(256));
            player->window()->receive_message(
                any_of(std::array{QByteArray("transmit_filename(QString)"), QByteArray("DoScreenChange(unsigned char)"),
                                  QByteArray("nothing()")}),
                garbage);
            break;
        }
        default:
            emit player->bookmarks()->selected_file_play(any_of(files), static_cast<unsigned int>(below(12000)));
            break;
        }
    }

    void use_the_socket()
    {
        player->window()->receive_socket_message(QLatin1String(any_of(
            std::array{"OK", "NAVI_START", "STOP", "PAUSE", "AUDIO_PAUSE", "RESUME", "AUDIO_RESUME", "HELLO", ""})));
    }

    void use_a_setting()
    {
        const auto combos = player->settings()->findChildren<QComboBox*>();
        QComboBox* const combo = combos[below(static_cast<int>(combos.size()))];
        if (combo->count() > 0)
            combo->setCurrentIndex(below(combo->count()));
        if (chance(3))
            player->settings()->close();
    }

    /// Closes what is open and stops what plays, as a viewer would.
    void settle_down()
    {
        player->settle();
        player->settings()->close();
        player->file_manager()->close();
        for (int i = 0; i < 3; ++i) {
            player->post(player_event::stop);
            scripted_engine::report_stream(StreamType::Film, StreamState::Started);
            player->settle();
        }
    }

    bool is_whole()
    {
        fault.clear();
        player->settle();
        const auto demand = [this](bool condition, const char* what) {
            if (!condition && fault.isEmpty())
                fault = QString::fromLatin1(what);
        };
        TavelVideo* const window = player->window();
        int leaves = 0;
        for (const TavelHsm::State& leaf :
             {TavelHsm::State(&TavelVideo::get_file_state), TavelHsm::State(&TavelVideo::no_file_state),
              TavelHsm::State(&TavelVideo::stop_state), TavelHsm::State(&TavelVideo::play_state),
              TavelHsm::State(&TavelVideo::pause_state), TavelHsm::State(&TavelVideo::speed_playing_state),
              TavelHsm::State(&TavelVideo::seeking_state), TavelHsm::State(&TavelVideo::end_of_stream_state),
              TavelHsm::State(&TavelVideo::exit_state)})
            leaves += window->isIn(leaf);
        demand(leaves == 1 || (leaves == 0 && player->in(&TavelVideo::file_loaded_state)), "the chart is in one leaf");
        demand(scripted_engine::players() == (player->in(&TavelVideo::exit_state) ? 0 : 1), "there is one engine");
        demand(window->x() == 80 && (window->is_tv_out() || window->y() == 104), "the window is in its place");
        demand(window->size() == QSize(480, 272), "the window has its size");
        demand(player->control_bar()->isVisible() != window->is_full_screen(), "the control bar follows full screen");
        demand(player->title_bar()->isVisible() != window->is_full_screen(), "the title bar follows full screen");
        demand(player->control_bar()->pos() == QPoint(0, 210), "the control bar is in its place");
        demand(player->title_bar()->pos() == QPoint(0, 0), "the title bar is in its place");
        demand(player->time_bar()->pos() ==
                   (player->in(&TavelVideo::speed_playing_state) &&
                            player->time_bar()->scan_direction() != TimeWidget::ScanDirection::None
                        ? QPoint(0, 262)
                        : QPoint(0, 192)),
               "the time bar is in its place");
        demand(!window->is_full_screen() || player->in(&TavelVideo::file_loaded_state),
               "full screen is for a loaded film");
        demand(!(player->playlist()->isVisible() && player->bookmarks()->isVisible()), "one list panel at a time");
        demand(player->subtitle()->isWindow() == window->is_tv_out(), "the subtitle belongs to the screen in use");
        demand(player->subtitle()->isVisible(), "the subtitle's widget is shown");
        demand(!player->loading()->isVisible() || player->in(&TavelVideo::file_loaded_state),
               "the loading text is for a film that loads");
        demand(player->playlist()->get_count() <= 999, "the playlist is not too long");
        demand(player->playlist()->get_now_playing() < qMax(1, player->playlist()->get_count()),
               "now playing is a row");
        if (player->in(&TavelVideo::play_state))
            demand(!player->shows("play") && player->shows("pause"), "a playing film can be paused");
        if (player->in(&TavelVideo::pause_state) || player->in(&TavelVideo::stop_state))
            demand(player->shows("play") && !player->shows("pause"), "a resting film can be played");
        return fault.isEmpty();
    }

    void check_files()
    {
        Config list(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat"), Config::File);
        list.setGroup(QStringLiteral("Playlist"));
        QVERIFY(list.hasKey(QStringLiteral("now_playing")));
        for (const QString& file : list.readListEntry(QStringLiteral("files")))
            QVERIFY(files.contains(file));
        Config bookmarks(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/bookmark.dat"), Config::File);
        bookmarks.setGroup(QStringLiteral("Bookmarks"));
        QCOMPARE(bookmarks.readListEntry(QStringLiteral("bookmarks")).size() % 2, 0);
    }

    static void look_at_message(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (message.contains(QLatin1String("ASSERT")))
            ++assertions;
        if (type == QtCriticalMsg || type == QtFatalMsg || message.contains(QLatin1String("ASSERT")))
            previous_handler(type, context, message);
    }

    static inline int assertions = 0;
    static inline QtMessageHandler previous_handler = nullptr;

    QTemporaryDir directory;
    QStringList files;
    QRandomGenerator random;
    QString fault;
    QTimer dialog_timer;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, SoakTest)
#include "tst_soak.moc"
