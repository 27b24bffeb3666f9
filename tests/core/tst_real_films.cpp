#include "bookmark_widget.h"
#include "control_skin.h"
#include "custom_event.h"
#include "device_screen.h"
#include "films.h"
#include "global.h"
#include "main_title.h"
#include "message_box.h"
#include "play_list_widget.h"
#include "player_event.h"
#include "qcop_channel.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "setting_widget.h"
#include "shell.h"
#include "subtitle_control.h"
#include "tavel_video.h"
#include "test_main.h"
#include "time_widget.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtTest/QtTest>
#include <QtWidgets/QComboBox>

/// The main stories once more, told by the real engine with real films.
class RealFilmsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        TavelVideo::set_socket_port(0);
        connect(&notice_timer, &QTimer::timeout, this, &RealFilmsTest::take_notice_down);
    }

    void init()
    {
        test_support::reset_directories();
        QFile::link(QStringLiteral(TAVEL_SKIN_DIR), QPEApplication::qpeDir() + QStringLiteral("pics"));
        TavelVideo::forget_seek_return();
        Global::set_sleeper([](std::chrono::microseconds) {});
        Shell::set_recorder([](const QByteArray&) { return 0; });
        start();
    }
    void cleanup()
    {
        end();
        Global::set_sleeper({});
        Shell::set_recorder({});
    }

    void each_kind_of_film_plays_data()
    {
        QTest::addColumn<QString>("film");
        for (const char* film :
             {"h264.mp4", "h264.mkv", "h264.ts", "mpeg4.avi", "wmv2.asf", "mpeg1.mpg", "theora.ogg", "video_only.mp4"})
            QTest::newRow(film) << QString::fromLatin1(film);
    }
    void each_kind_of_film_plays()
    {
        QFETCH(QString, film);
        play({test_films::path(film)});
        const int first = frame();
        QTRY_VERIFY_WITH_TIMEOUT(frame() > first, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 500, 10000);
    }

    void the_picture_rests_while_paused_and_goes_on_after_it()
    {
        play({test_films::path("h264.mp4")});
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 300, 10000);
        click(Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::pause_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(rests(), 10000);
        const Time held = window->position();
        click(Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > held + 200, 10000);
    }

    void left_and_right_skip()
    {
        play({test_films::path("minute.mp4")});
        click(Qt::Key_Right);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 9500, 10000);
        click(Qt::Key_Right);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 19000, 10000);
        click(Qt::Key_Left);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() < 15000, 10000);
        QTRY_VERIFY(in(&TavelVideo::play_state));
    }

    void a_seek_while_paused_shows_the_frame_there_and_stays_paused()
    {
        play({test_films::path("h264.mp4")});
        click(Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::pause_state), 10000);
        window->seek_event(4);
        QTRY_COMPARE_WITH_TIMEOUT(window->position(), Time(4000), 10000);
        QTRY_VERIFY(in(&TavelVideo::pause_state));
        QTRY_VERIFY_WITH_TIMEOUT(qAbs(frame() - 100) <= 1, 10000);
    }

    void stop_and_play_start_from_the_beginning()
    {
        play({test_films::path("minute.mp4")});
        window->seek_event(40);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 40000, 15000);
        click(Qt::Key_F4);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        QCOMPARE(window->position(), Time(0));
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 200, 10000);
        QVERIFY(window->position() < 30000);
    }

    void the_end_of_one_film_is_the_beginning_of_the_next_data()
    {
        QTest::addColumn<unsigned int>("second");
        QTest::newRow("before the end") << 5U;
        QTest::newRow("past the end") << 600U;
    }
    void the_end_of_one_film_is_the_beginning_of_the_next()
    {
        QFETCH(unsigned int, second);
        play({test_films::path("h264.mkv"), test_films::path("mpeg4.avi")});
        QCOMPARE(playlist()->get_now_playing(), 0);
        window->seek_event(second);
        QTRY_COMPARE_WITH_TIMEOUT(playlist()->get_now_playing(), 1, 20000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 20000);
        QVERIFY(window->position() < 4000);
    }

    void the_end_of_the_last_film_stops_when_the_settings_say_so()
    {
        play({test_films::path("h264.mkv")});
        combo("playback_combo_next_action")->setCurrentIndex(2);
        window->seek_event(600);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 20000);
        QCOMPARE(window->position(), Time(0));
    }

    void the_same_film_plays_again_when_the_settings_say_so()
    {
        play({test_films::path("h264.mkv"), test_films::path("mpeg4.avi")});
        combo("playback_combo_next_action")->setCurrentIndex(1);
        window->seek_event(600);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::end_of_stream_state) || in(&TavelVideo::stop_state) ||
                                     !in(&TavelVideo::streaming_state),
                                 20000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200 &&
                                     window->position() < length_less_a_second(),
                                 20000);
        QCOMPARE(playlist()->get_now_playing(), 0);
        QVERIFY(notices.isEmpty());
    }

    void the_film_goes_on_where_it_was_after_a_restart()
    {
        play({test_films::path("minute.mp4")});
        window->seek_event(30);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        post(player_event::close);
        QTRY_VERIFY(in(&TavelVideo::exit_state));
        end();
        start();
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        QVERIFY(window->position() >= 30000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 30200, 15000);
        QVERIFY(window->position() < 45000);
    }

    void files_that_are_no_films_are_taken_out_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"garbage", "empty", "missing", "sound alone", "directory"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }
    void files_that_are_no_films_are_taken_out()
    {
        QFETCH(QString, kind);
        QTemporaryDir directory;
        QString file = directory.filePath(QStringLiteral("broken.avi"));
        if (kind == QStringLiteral("sound alone")) {
            file = test_films::path("sound_only.m4a");
        } else if (kind == QStringLiteral("directory")) {
            QDir().mkpath(file);
        } else if (kind != QStringLiteral("missing")) {
            QFile broken(file);
            QVERIFY(broken.open(QIODevice::WriteOnly));
            if (kind == QStringLiteral("garbage"))
                broken.write(QByteArray(100000, '\x5A'));
        }
        hand_over({file, test_films::path("h264.mp4")});
        QTRY_COMPARE_WITH_TIMEOUT(notices,
                                  QStringList(kind == QStringLiteral("missing")
                                                  ? QStringLiteral("FILE NOT FOUND.")
                                                  : QStringLiteral("CAN NOT EXECUTE FILE.")),
                                  20000);
        QTRY_COMPARE_WITH_TIMEOUT(playlist()->get_count(), 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 15000);
    }

    void a_film_that_vanishes_while_it_plays_does_not_take_the_player_with_it()
    {
        QTemporaryDir directory;
        const QString file = test_films::copy(QStringLiteral("h264.mp4"), directory.path(), QStringLiteral("gone.mp4"));
        play({file});
        QVERIFY(QFile::remove(file));
        click(Qt::Key_F4);
        // It cannot be opened again.
        QTRY_COMPARE_WITH_TIMEOUT(notices, QStringList(QStringLiteral("FILE NOT FOUND.")), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::no_file_state), 10000);
    }

    void a_next_film_that_has_vanished_is_taken_out()
    {
        QTemporaryDir directory;
        const QString file = test_films::copy(QStringLiteral("h264.mp4"), directory.path(), QStringLiteral("gone.mp4"));
        play({test_films::path("h264.mkv"), file, test_films::path("mpeg4.avi")});
        QVERIFY(QFile::remove(file));
        window->seek_event(600);
        QTRY_COMPARE_WITH_TIMEOUT(notices, QStringList(QStringLiteral("FILE NOT FOUND.")), 20000);
        QTRY_COMPARE_WITH_TIMEOUT(playlist()->get_count(), 2, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 15000);
    }

    void a_film_given_up_and_taken_up_goes_on_where_it_was()
    {
        play({test_films::path("minute.mp4")});
        window->seek_event(30);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        post(player_event::unload);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::no_file_state), 10000);
        window->reload_slot();
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        QVERIFY(window->position() >= 30000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 30200, 15000);
    }

    void a_replay_goes_on_where_it_was()
    {
        play({test_films::path("minute.mp4")});
        window->seek_event(30);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        post(player_event::replay);
        QTRY_VERIFY_WITH_TIMEOUT(!in(&TavelVideo::streaming_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 30200, 15000);
    }

    void a_running_navigation_program_keeps_the_film_stopped()
    {
        hand_over({test_films::path("h264.mp4")});
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state), 20000);
        click(Qt::Key_F4);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        auto navigation = std::make_unique<QCopChannel>("QPE/Brevaton/navi");
        post(player_event::play);
        QTRY_COMPARE_WITH_TIMEOUT(
            notices, QStringList(QStringLiteral("Navigation Application running!\nCan't Execute Video Player")), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        navigation.reset();
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 15000);
    }

    void the_film_waits_for_the_navigation_program_and_obeys_it()
    {
        QTcpSocket navigation;
        QByteArray heard;
        connect(&navigation, &QTcpSocket::readyRead, this, [&] { heard += navigation.readAll(); });
        navigation.connectToHost(QHostAddress::LocalHost, window->socket()->port());
        QTRY_COMPARE(window->socket()->peer_count(), 1);
        hand_over({test_films::path("minute.mp4")});
        QTRY_VERIFY_WITH_TIMEOUT(heard.contains("STOP\n"), 10000);
        // Not answered: the film does not start.
        QVERIFY(in(&TavelVideo::file_loaded_state));
        QVERIFY(rests());
        QVERIFY(!in(&TavelVideo::streaming_state));
        navigation.write("OK\n");
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 15000);
        heard.clear();
        navigation.write("PAUSE\n");
        QTRY_VERIFY_WITH_TIMEOUT(heard.contains("OK\n"), 10000);
        QVERIFY(in(&TavelVideo::pause_state));
        navigation.write("RESUME\n");
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state), 10000);
        window->seek_event(30);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        heard.clear();
        navigation.write("STOP\n");
        QTRY_VERIFY_WITH_TIMEOUT(heard.contains("OK\n"), 10000);
        QVERIFY(in(&TavelVideo::stop_state));
        // Played again, it goes on from there.
        heard.clear();
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(heard.contains("STOP\n"), 10000);
        navigation.write("OK\n");
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 30200, 15000);
    }

    void a_film_over_which_the_player_died_is_set_aside_once()
    {
        play({test_films::path("h264.mp4"), test_films::path("mpeg4.avi")});
        // The list's file as a kill at this moment leaves it.
        QFile list(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat"));
        QVERIFY(list.open(QIODevice::ReadOnly));
        const QByteArray left = list.readAll();
        list.close();
        end();
        QVERIFY(list.open(QIODevice::WriteOnly | QIODevice::Truncate));
        list.write(left);
        list.close();
        start();
        QTRY_COMPARE_WITH_TIMEOUT(notices.size(), 1, 10000);
        QVERIFY(notices[0].startsWith(QStringLiteral("A system error occured")));
        QTRY_COMPARE_WITH_TIMEOUT(playlist()->get_count(), 1, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 10000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 200, 15000);
        QCOMPARE(playlist()->get_filename(0), test_films::path("mpeg4.avi"));
    }

    void a_bookmark_leads_back_and_a_full_list_takes_no_more()
    {
        play({test_films::path("minute.mp4"), test_films::path("h264.mp4")});
        window->seek_event(30);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        post(player_event::add_bookmark);
        QTRY_COMPARE_WITH_TIMEOUT(bookmarks()->get_count(), 1, 10000);
        while (bookmarks()->get_count() < 99)
            bookmarks()->add_track(test_films::path("h264.mp4"), 1);
        post(player_event::add_bookmark);
        QTRY_COMPARE_WITH_TIMEOUT(
            notices, QStringList(QStringLiteral("Bookmark list is full.\nPlease remove some before adding new ones.")),
            10000);
        QCOMPARE(bookmarks()->get_count(), 99);
        // In the film that plays, and from another film.
        window->seek_event(2);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() < 20000, 10000);
        emit bookmarks()->selected_file_play(test_films::path("minute.mp4"), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 30000, 10000);
        window->play_event(1, 0);
        QTRY_VERIFY_WITH_TIMEOUT(
            in(&TavelVideo::play_state) && playlist()->get_now_playing() == 1 && window->position() > 0, 15000);
        emit bookmarks()->selected_file_play(test_films::path("minute.mp4"), 30000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 30200, 15000);
        QCOMPARE(playlist()->get_now_playing(), 0);
    }

    void korean_subtitles_are_shown_and_tracks_can_be_changed()
    {
        play({test_films::path("subtitles.mkv")});
        QTRY_VERIFY_WITH_TIMEOUT(!subtitle()->get_last_subtitle().isEmpty(), 15000);
        const QString first = subtitle()->get_last_subtitle();
        QVERIFY(
            std::any_of(first.begin(), first.end(), [](QChar each) { return each.script() == QChar::Script_Hangul; }));
        combo("subtitle_combo_track")->setCurrentIndex(1);
        window->seek_event(1);
        QTRY_VERIFY_WITH_TIMEOUT(!subtitle()->get_last_subtitle().isEmpty() && subtitle()->get_last_subtitle() != first,
                                 15000);
    }

    void another_audio_track_is_taken_while_playing()
    {
        play({test_films::path("two_sounds.mkv")});
        QCOMPARE(combo("sound_combo_audiotrack")->count(), 2);
        combo("sound_combo_audiotrack")->setCurrentIndex(1);
        post(player_event::audio_track);
        const Time before = window->position();
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > before + 300, 10000);
        QVERIFY(notices.isEmpty());
    }

    void the_passage_is_repeated()
    {
        combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        play({test_films::path("minute.mp4")});
        window->seek_event(20);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 20000, 10000);
        post(player_event::repeat_ab);
        const Time a = window->position();
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > a + 600, 10000);
        post(player_event::repeat_ab);
        Time highest = 0;
        Time last = 0;
        int returns = 0;
        QTRY_VERIFY_WITH_TIMEOUT((returns += window->position() + 500 < last, last = window->position(),
                                  highest = qMax(highest, last), returns >= 2),
                                 20000);
        // The film would go on for forty seconds.
        QVERIFY2(highest < a + 20000, qPrintable(QString::number(highest - a)));
    }

    void key_frames_are_scanned_to_the_end()
    {
        combo("playback_combo_trickmode")->setCurrentIndex(1);
        combo("playback_combo_next_action")->setCurrentIndex(2);
        play({test_films::path("h264.mkv")});
        post(player_event::scan_forward);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::speed_playing_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::stop_state), 20000);
    }

    void key_frames_are_scanned_back_to_the_beginning()
    {
        combo("playback_combo_trickmode")->setCurrentIndex(1);
        play({test_films::path("h264.mkv")});
        window->seek_event(4);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() >= 4000, 10000);
        post(player_event::scan_back);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::speed_playing_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state), 20000);
        QVERIFY(window->position() < 4000);
    }

    void the_bar_is_scanned_and_the_film_sought_once()
    {
        play({test_films::path("minute.mp4")});
        post(player_event::scan_forward);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::speed_playing_state), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(time_bar()->get_slidervalue() > 5, 10000);
        post(player_event::play);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 5500, 10000);
    }

    void the_speed_changes()
    {
        play({test_films::path("minute.mp4")});
        for (int i = 0; i < 12; ++i)
            post(player_event::speed_up);
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > 1500, 15000);
        post(player_event::speed_normal);
        QTRY_VERIFY(in(&TavelVideo::play_state));
        QVERIFY(notices.isEmpty());
    }

    void the_film_goes_to_the_tv_and_back()
    {
        play({test_films::path("minute.mp4")});
        post(player_event::switch_screen);
        QTRY_VERIFY_WITH_TIMEOUT(window->is_tv_out(), 10000);
        Time before = window->position();
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > before + 200, 10000);
        post(player_event::switch_screen);
        QTRY_VERIFY_WITH_TIMEOUT(!window->is_tv_out(), 10000);
        before = window->position();
        QTRY_VERIFY_WITH_TIMEOUT(window->position() > before + 200, 10000);
        QVERIFY(in(&TavelVideo::play_state));
    }

    void the_film_runs_small_beside_the_settings()
    {
        play({test_films::path("minute.mp4")});
        click(Qt::Key_F5);
        QTRY_VERIFY_WITH_TIMEOUT(settings->isVisible(), 10000);
        const QRect preview(12, 64, 221, 126);
        QTRY_VERIFY_WITH_TIMEOUT(test_films::frame_number(DeviceScreen::instance()->grab_output().copy(preview)) >= 0,
                                 10000);
        click(Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!settings->isVisible(), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state), 10000);
    }

    void changing_films_in_quick_succession_ends_with_the_last_one()
    {
        const QStringList films{test_films::path("h264.mp4"), test_films::path("mpeg4.avi"),
                                test_films::path("h264.mkv")};
        hand_over(films);
        for (int round = 0; round < 3; ++round)
            for (int i = 0; i < films.size(); ++i)
                window->play_event(i, 0);
        QTRY_VERIFY_WITH_TIMEOUT(
            in(&TavelVideo::play_state) && playlist()->get_now_playing() == 2 && window->position() > 200, 30000);
        QCOMPARE(playlist()->get_count(), 3);
    }

private:
    void start()
    {
        window = std::make_unique<TavelVideo>(nullptr, "tavel_video", 16);
        const auto widgets = QApplication::topLevelWidgets();
        for (QWidget* each : widgets) {
            if (each->objectName() == QStringLiteral("VIDEO SETTING"))
                settings = qobject_cast<SettingWidget*>(each);
            else if (each->objectName() == QStringLiteral("FILEMANAGER"))
                file_manager = qobject_cast<mainTitle*>(each);
        }
        static_cast<QPEApplication*>(qApp)->showMainWidget(window.get());
        DeviceScreen::instance()->activate(window.get());
        notices.clear();
        notice_timer.start(20);
    }
    void end()
    {
        notice_timer.stop();
        window.reset();
        delete std::exchange(settings, nullptr);
        delete std::exchange(file_manager, nullptr);
    }

    void hand_over(const QStringList& files)
    {
        QByteArray data;
        QDataStream stream(&data, QIODevice::WriteOnly);
        stream.setVersion(QCopEnvelope::stream_version);
        stream << files.join(u'\n') + QStringLiteral("\n");
        window->receive_message("transmit_filename(QString)", data);
    }
    void play(const QStringList& files)
    {
        hand_over(files);
        QTRY_VERIFY_WITH_TIMEOUT(in(&TavelVideo::play_state) && window->position() > 0, 20000);
    }
    void post(int number) { post_custom_event(window.get(), number); }
    static void click(int key)
    {
        QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(host, &event);
        }
    }
    bool in(TavelHsm::State state) { return window->isIn(state) == 1; }
    static int frame() { return test_films::frame_number(DeviceScreen::instance()->grab_output()); }
    /// A notice runs an event loop of its own, in which no test goes on: it is noted and taken down from inside.
    void take_notice_down()
    {
        auto* const notice = window->findChild<MessageBox*>();
        if (!notice->isVisible())
            return;
        notices.append(notice->text());
        notice->stop();
    }
    /// Whether two looks at the position, with the event loop between them, see the same.
    bool rests()
    {
        const Time before = window->position();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
        return window->position() == before;
    }
    static Time length_less_a_second() { return test_films::length_ms - 1000; }
    BookmarkWidget* bookmarks() { return window->findChild<BookmarkWidget*>(); }
    PlayListWidget* playlist() { return window->findChild<PlayListWidget*>(); }
    TimeWidget* time_bar() { return window->findChild<TimeWidget*>(); }
    SubtitleControl* subtitle() { return window->findChild<SubtitleControl*>(); }
    QComboBox* combo(const char* name) { return settings->findChild<QComboBox*>(QString::fromLatin1(name)); }

    std::unique_ptr<TavelVideo> window;
    SettingWidget* settings = nullptr;
    mainTitle* file_manager = nullptr;
    QTimer notice_timer;
    QStringList notices;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, RealFilmsTest)
#include "tst_real_films.moc"
