#include "config.h"
#include "device_font.h"
#include "device_screen.h"
#include "player.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>

/// The window as it is put together, its tables, and its end.
class TavelVideoTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        player.reset();
        messages.clear();
    }

    void the_version_is_made_of_the_revision_data()
    {
        QTest::addColumn<QByteArray>("revision");
        QTest::addColumn<QString>("version");
        QTest::newRow("ours") << QByteArray("$Revision: 7481 $") << "1.07.481";
        QTest::newRow("five digits") << QByteArray("$Revision: 12345 $") << "2.12.345";
        QTest::newRow("three digits") << QByteArray("$Revision: 481 $") << "1.00.481";
        QTest::newRow("no number") << QByteArray("$Revision$") << "1.00.000";
    }
    void the_version_is_made_of_the_revision()
    {
        QFETCH(QByteArray, revision);
        QFETCH(QString, version);
        QCOMPARE(TavelVideo::make_version(revision.constData()), version);
    }

    void the_settings_show_the_version()
    {
        player = std::make_unique<Player>();
        const auto labels = player->settings()->findChildren<QLabel*>();
        QVERIFY(std::any_of(labels.begin(), labels.end(),
                            [](const QLabel* each) { return each->text().endsWith(QStringLiteral(" : 1.07.481")); }));
    }

    void each_display_text_stands_as_it_should_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("text");
        const QList<std::pair<int, const char*>> rows{
            {0, "[ PLAY ]"},
            {1, "[ STOP ]"},
            {2, "[ PAUSE]"},
            {3, "[ SEEK ]"},
            {4, "FORWARD "},
            {5, "BACKWARD "},
            {6, "[ SKIP FORWARD ]"},
            {7, "[ SKIP BACKWARD ]"},
            {8, " SEC"},
            {9, "[ BOOKMARK ]"},
            {10, "[ A SET ]"},
            {11, "[ B SET ]"},
            {12, "[ AB RELEASED ]"},
            {13, "[ FAST FORWARD ]"},
            {14, "[ FAST REWIND ]"},
            {15, "[ SPEED ]"},
            {16, "MUTE"},
            {17, "MASTER VOLUME"},
            {18, "AUDIO : "},
            {19, "SUBTITLE :"},
            {20, "Now Loading..."},
            {21, "Stopping..."},
            {22, "VIDEO"},
            {23, "FILE NOT FOUND."},
            {24, "CAN NOT EXECUTE FILE."},
            {25, "SPDIF 5.1CH OUT."},
            {26, "This video has a resolution\ngreater than 480*360 and is not\nguaranteed to play back properly."},
            {27, "Bookmark list is full.\nPlease remove some before adding new ones."},
            {28, "Navigation Application running!\nCan't Execute Video Player"},
            {29, "TV-OUT UNSUPPORT MEDIA"},
            {30, "A system error occured while attempting\n to play the last video file."},
            {31, ""},
            {37, ""},
            {38, "YES"},
            {39, "NO"},
        };
        for (const auto& [key, text] : rows)
            QTest::addRow("%d", key) << key << QString::fromLatin1(text);
    }
    void each_display_text_stands_as_it_should()
    {
        QFETCH(int, key);
        QFETCH(QString, text);
        player = std::make_unique<Player>();
        QCOMPARE(player->window()->text(static_cast<TavelVideoString>(key)), text);
    }

    void the_window_is_the_player_and_its_state_machine()
    {
        player = std::make_unique<Player>();
        QCOMPARE(player->window()->objectName(), QStringLiteral("tavel_video"));
        QVERIFY(static_cast<TavelHsm*>(player->window()));
        QVERIFY(static_cast<QWidget*>(player->window()));
        QVERIFY(player->window()->windowFlags().testFlag(Qt::FramelessWindowHint));
        QCOMPARE(player->window()->geometry(), QRect(80, 104, 480, 272));
        QCOMPARE(player->window()->palette().color(QPalette::Window), QColor(Qt::black));
    }

    void the_public_slots_stand_in_their_order()
    {
        const QStringList expected{
            "update_state(PlayerState)",
            "update_time(Time)",
            "handle_error(RaskStatus)",
            "stream_event(StreamType,StreamState)",
            "control_event(const QObject*,QString)",
            "mousePressEvent(QMouseEvent*)",
            "keyPressEvent(QKeyEvent*)",
            "keyReleaseEvent(QKeyEvent*)",
            "receive_message(QCString,QByteArray)",
            "seek_event(uint)",
            "play_event(int,uint)",
            "play_event()",
            "load_event(int,uint)",
            "load_bookmark(QString,uint)",
            "close_event()",
            "change_video_out()",
            "postCustomEvent(int)",
            "menu_timeout()",
            "window_timeout()",
            "long_key_timeout()",
            "set_alpha(uchar)",
            "update_subtitles()",
            "flush_slot()",
            "reload_slot()",
            "send_screenchageapplet(bool)",
            "show_dicdialog()",
            "show_playlist()",
            "hide_playlist()",
            "open_playlist_browser()",
            "add_bookmark(QString,uint)",
            "show_bookmark()",
            "hide_bookmark()",
            "show_loading_screen()",
            "reset_menu_timer()",
            "reset_display()",
            "send_volume(int)",
            "receive_socket_message(QString)",
            "display_volume(bool)",
        };
        QStringList slots_of_the_window;
        const QMetaObject& meta = TavelVideo::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QVERIFY(meta.method(i).methodType() != QMetaMethod::Signal);
            if (meta.method(i).methodType() == QMetaMethod::Slot)
                slots_of_the_window.append(QString::fromLatin1(meta.method(i).methodSignature()));
        }
        QVERIFY2(slots_of_the_window == expected, qPrintable(describe(slots_of_the_window)));
    }

    void the_panels_stand_where_the_skin_says()
    {
        player = std::make_unique<Player>();
        QCOMPARE(player->title_bar()->pos(), QPoint(0, 0));
        QCOMPARE(player->control_bar()->pos(), QPoint(0, 210));
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 192));
        QCOMPARE(player->playlist()->pos(), QPoint(288, 26));
        QCOMPARE(player->bookmarks()->pos(), QPoint(268, 26));
    }

    void without_a_skin_every_panel_stands_at_minus_one_and_the_player_starts()
    {
        player = std::make_unique<Player>(Player::Device{.with_skin = false});
        player->settle();
        for (QWidget* panel : {static_cast<QWidget*>(player->title_bar()), static_cast<QWidget*>(player->control_bar()),
                               static_cast<QWidget*>(player->time_bar()), static_cast<QWidget*>(player->playlist()),
                               static_cast<QWidget*>(player->bookmarks())})
            QCOMPARE(panel->pos(), QPoint(-1, -1));
        QVERIFY(player->in(&TavelVideo::no_file_state));
    }

    void lists_and_settings_are_hidden_and_the_controls_shown_at_the_start()
    {
        player = std::make_unique<Player>();
        player->settle();
        QVERIFY(!player->playlist()->isVisible());
        QVERIFY(!player->bookmarks()->isVisible());
        QVERIFY(!player->settings()->isVisible());
        QVERIFY(!player->file_manager()->isVisible());
        QVERIFY(!player->loading()->isVisible());
        QVERIFY(player->control_bar()->isVisible());
        QVERIFY(player->title_bar()->isVisible());
        QVERIFY(player->time_bar()->isVisible());
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(!player->window()->is_tv_out());
        QCOMPARE(player->settings()->minimumSize(), player->settings()->maximumSize());
        QCOMPARE(player->file_manager()->pos(), QPoint(80, 104));
        QCOMPARE(player->file_manager()->caption(), QStringLiteral("Video File Manager"));
    }

    void the_loading_text_has_its_place_and_its_size()
    {
        player = std::make_unique<Player>();
        const QFontMetrics metrics(device_font(QStringLiteral("v28"), 24, 50));
        QCOMPARE(player->loading()->geometry(),
                 QRect(20, 210, metrics.horizontalAdvance(QStringLiteral("Now Loading...")), metrics.height() + 10));
        QCOMPARE(player->loading()->focusPolicy(), Qt::NoFocus);
    }

    void the_stored_opacity_and_volume_are_taken_over()
    {
        player = std::make_unique<Player>(Player::Device{
            .settings = {{QStringLiteral("display/transparency"), 0}, {QStringLiteral("audio/volume"), 31}}});
        QCOMPARE(player->control_bar()->alphaOverride(), static_cast<unsigned char>(76));
        QCOMPARE(player->control_bar()->get_volume(), 31U);
    }

    void page_buttons_are_long_press_buttons()
    {
        player = std::make_unique<Player>();
        player->play_a_film();
        EventCounter counter(player->window());
        QTimer* hold = nullptr;
        for (QTimer* each : player->control_bar()->findChildren<QTimer*>())
            hold = each;
        QVERIFY(hold);
        for (const auto& [button, number] : {std::pair("pageup", 2015), std::pair("pagedown", 2016)}) {
            counter.numbers.clear();
            player->control_bar()->pressButton(QString::fromLatin1(button));
            QVERIFY(hold->isActive());
            hold->start(0);
            QTRY_COMPARE(counter.count(number), 1);
            player->control_bar()->releaseButton(QString::fromLatin1(button));
            player->settle();
            QCOMPARE(counter.count(number), 1);
            player->post(player_event::play);
            player->settle();
        }
    }

    void the_graphics_plane_is_switched_off_before_anything_plays()
    {
        player = std::make_unique<Player>();
        QCOMPARE(player->log_of({"fb"}), QStringList(QStringLiteral("fb /dev/fb0 enable 0")));
        QVERIFY(player->log().indexOf(QStringLiteral("fb /dev/fb0 enable 0")) <
                player->log().indexOf(QStringLiteral("MediaPlayer")));
    }

    void the_first_connection_names_a_signal_that_does_not_exist()
    {
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& message) { messages.append(message); });
        player = std::make_unique<Player>();
        qInstallMessageHandler(before);
        const QStringList complaints = messages.filter(QStringLiteral("QObject::connect"));
        QCOMPARE(complaints.filter(QStringLiteral("No such")).size(), 1);
        QVERIFY(complaints[0].contains(QStringLiteral("No such signal TavelCallbacks::time_signal(PlayerState)")));
    }

    void the_channel_is_open_while_the_player_lives()
    {
        player = std::make_unique<Player>();
        QVERIFY(QCopChannel::isRegistered("QPE/Brevaton/video"));
        player.reset();
        QVERIFY(!QCopChannel::isRegistered("QPE/Brevaton/video"));
    }

    void flush_and_reload_are_acted_on_before_they_return()
    {
        player = std::make_unique<Player>();
        player->settle();
        EventCounter counter(player->window());
        player->window()->reload_slot();
        QCOMPARE(counter.count(player_event::reload), 1);
        player->window()->flush_slot();
        QCOMPARE(counter.count(player_event::flush), 1);
        QVERIFY(player->in(&TavelVideo::exit_state));
    }

    void lists_settings_and_place_are_saved_at_the_end()
    {
        player = std::make_unique<Player>();
        player->play_a_film();
        scripted_engine::run_to(6543);
        player->combo("playback_combo_seektime")->setCurrentIndex(2);
        player.reset();
        Config list(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat"), Config::File);
        list.setGroup(QStringLiteral("Playlist"));
        QCOMPARE(list.readNumEntry(QStringLiteral("now_playing_time")), 6543);
        Config settings(QStringLiteral("tavel_video_setting.cfg"));
        settings.setGroup(QStringLiteral("playback"));
        QCOMPARE(settings.readNumEntry(QStringLiteral("skiptime")), 2);
        QCOMPARE(scripted_engine::players(), 0);
    }

    void reports_that_come_while_the_window_goes_do_no_harm()
    {
        player = std::make_unique<Player>();
        player->play_a_film();
        std::atomic<bool> going = true;
        std::thread engine([&] {
            while (going) {
                scripted_engine::report_time(1234);
                scripted_engine::report_state(PlayerState::Playing);
            }
        });
        player.reset();
        going = false;
        engine.join();
        QCOMPARE(scripted_engine::players(), 0);
    }

private:
    static inline QStringList messages;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, TavelVideoTest)
#include "tst_tavel_video.moc"
