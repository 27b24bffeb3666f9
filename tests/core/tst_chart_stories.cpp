#include "player.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QComboBox>

/// Whole stories on the scripted engine, each told to its end: after whatever happened the player plays films.
class ChartStoriesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { player.reset(); }

    void an_evening_with_three_films()
    {
        start(3);
        // The first film: from the stop, with a pause and a skip in it.
        player->control_event("play");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(2000);
        player->click(Qt::Key_Return);
        QTRY_VERIFY(player->in(&TavelVideo::pause_state));
        player->click(Qt::Key_Return);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->clear_log();
        player->window()->seek_event(5);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList("seek 3 5000"));
        player->settle();
        player->post(player_event::add_bookmark);
        player->settle();
        QCOMPARE(player->bookmarks()->get_count(), 1);
        // Stopped, it begins at its beginning.
        player->click(Qt::Key_F4);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->clear_log();
        player->control_event("play");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
        // One film after the other, and the first again after the last.
        for (const int next : {1, 2, 0, 1}) {
            scripted_engine::run_to(10000);
            QTRY_COMPARE(player->playlist()->get_now_playing(), next);
            QTRY_VERIFY(player->in(&TavelVideo::play_state));
            player->settle();
            QCOMPARE(player->window()->position(), Time(0));
        }
        // The bookmark leads back to the first film.
        player->clear_log();
        emit player->bookmarks()->selected_file_play(files[0], 5000);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList("seek 3 5000"));
        player->settle();
        QCOMPARE(player->playlist()->get_now_playing(), 0);
        scripted_engine::run_to(7000);
        player->settle();
        // Closed by Escape, it goes on there.
        player->click(Qt::Key_Tab);
        player->settle();
        player->click(Qt::Key_Escape);
        QTRY_VERIFY(player->in(&TavelVideo::exit_state));
        player.reset();
        player = std::make_unique<Player>(Player::Device{.keep_files = true});
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 3);
        QCOMPARE(player->playlist()->get_now_playing(), 0);
        QCOMPARE(player->bookmarks()->get_count(), 1);
        player->control_event("play");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList("seek 3 7000"));
        plays_to_its_end();
    }

    // ---- an error in each engine call

    void a_film_that_fails_gives_way_to_the_next_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QList<int>>("before");
        QTest::addColumn<int>("request");
        QTest::addColumn<bool>("key_frames");
        const QList<int> nothing;
        QTest::newRow("initialize") << "initialize" << nothing << 2000 << false;
        QTest::newRow("open in loading") << "open" << nothing << 2000 << false;
        QTest::newRow("prepare") << "prepare" << nothing << 2000 << false;
        QTest::newRow("play in loading") << "play" << nothing << 2000 << false;
        QTest::newRow("pause") << "pause" << QList<int>{2000} << 2001 << false;
        QTest::newRow("play after a pause") << "play" << QList<int>{2000, 2001} << 2000 << false;
        QTest::newRow("seek") << "seek" << QList<int>{2000} << 2003 << false;
        QTest::newRow("seek while paused") << "seek" << QList<int>{2000, 2001} << 2003 << false;
        QTest::newRow("play after a seek") << "play" << QList<int>{2000} << 2003 << false;
        QTest::newRow("pause after a seek while paused") << "pause" << QList<int>{2000, 2001} << 2003 << false;
        QTest::newRow("scan forward") << "scan_forward" << QList<int>{2000} << 2015 << true;
        QTest::newRow("scan back") << "scan_backward" << QList<int>{2000} << 2016 << true;
        QTest::newRow("play after a scan") << "play" << QList<int>{2000, 2015} << 2000 << true;
        QTest::newRow("pause after a scan") << "play" << QList<int>{2000, 2015} << 2001 << true;
        QTest::newRow("seek after a scan of the bar") << "seek" << QList<int>{2000, 2015} << 2000 << false;
        QTest::newRow("open after a stop") << "open" << QList<int>{2000} << 2002 << false;
    }
    void a_film_that_fails_gives_way_to_the_next()
    {
        QFETCH(QString, operation);
        QFETCH(QList<int>, before);
        QFETCH(int, request);
        QFETCH(bool, key_frames);
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("3600000"));
        start(2);
        player->combo("playback_combo_trickmode")->setCurrentIndex(key_frames ? 1 : 0);
        for (const int number : before) {
            player->post(number);
            player->settle();
        }
        scripted_engine::set_next_result(operation, rask::engine_failed);
        // Whatever is asked for while the notice is up changes nothing about that.
        player->at_next_notice([&] { player->post(player_event::seek, seek_request(9000)); });
        player->post(request, request == player_event::seek ? std::any(seek_request(5000)) : std::any());
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        the_second_film_takes_over();
    }

    void calls_that_may_fail_do_not_stop_a_film()
    {
        start(1);
        for (const char* operation : {"set_video_window", "set_aspect", "set_parameter", "select_stream", "set_option",
                                      "set_speed", "close", "release"})
            scripted_engine::set_result(QLatin1String(operation), rask::not_supported);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        for (const int number : {2201, 2204, 2205, 2014, 2012, 2013, 2005}) {
            player->post(number);
            player->settle();
        }
        player->settings()->close();
        player->settle();
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->notices().isEmpty());
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->post(player_event::close);
        QTRY_VERIFY(player->in(&TavelVideo::exit_state));
        QVERIFY(player->log().contains(QStringLiteral("release")));
    }

    void an_error_of_the_engine_itself_gives_way_to_the_next_film_data()
    {
        QTest::addColumn<QList<int>>("before");
        QTest::newRow("stopped") << QList<int>{};
        QTest::newRow("playing") << QList<int>{2000};
        QTest::newRow("paused") << QList<int>{2000, 2001};
        QTest::newRow("scanning") << QList<int>{2000, 2015};
        QTest::newRow("beside the settings") << QList<int>{2000, 2005};
    }
    void an_error_of_the_engine_itself_gives_way_to_the_next_film()
    {
        QFETCH(QList<int>, before);
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("3600000"));
        start(2);
        for (const int number : before) {
            player->post(number);
            player->settle();
        }
        player->at_next_notice();
        scripted_engine::report_error(9);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        player->settings()->close();
        the_second_film_takes_over();
    }

    // ---- a file that vanishes

    void a_film_that_vanishes_gives_way_to_the_next_data()
    {
        QTest::addColumn<QList<int>>("before");
        QTest::addColumn<int>("request");
        QTest::newRow("before it is played") << QList<int>{} << 2000;
        QTest::newRow("while it plays, then stop") << QList<int>{2000} << 2002;
        QTest::newRow("while it is paused, then stop") << QList<int>{2000, 2001} << 2002;
        QTest::newRow("while it plays, then replay") << QList<int>{2000} << 2202;
    }
    void a_film_that_vanishes_gives_way_to_the_next()
    {
        QFETCH(QList<int>, before);
        QFETCH(int, request);
        start(2);
        for (const int number : before) {
            player->post(number);
            player->settle();
        }
        QVERIFY(QFile::remove(files[0]));
        // A film that was not played yet is looked for before the engine is asked.
        if (!before.isEmpty())
            scripted_engine::set_next_result(QStringLiteral("open"), rask::no_such_file);
        player->at_next_notice();
        player->post(request);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("FILE NOT FOUND.")));
        the_second_film_takes_over();
    }

    void a_next_film_that_has_vanished_gives_way_to_the_one_after_it()
    {
        start(3);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(QFile::remove(files[1]));
        // The opening after the end is the next film's.
        scripted_engine::set_next_result(QStringLiteral("open"), rask::no_such_file);
        player->at_next_notice();
        scripted_engine::run_to(10000);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("FILE NOT FOUND.")));
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_filename(player->playlist()->get_now_playing()), files[2]);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void the_only_film_vanishes_and_another_one_is_handed_over()
    {
        start(1);
        QVERIFY(QFile::remove(files[0]));
        player->at_next_notice();
        player->post(player_event::play);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("FILE NOT FOUND.")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("open"));
        QCOMPARE(player->state_of("play"), SkinButton::State::Disabled);
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->shows("pause"));
        plays_to_its_end();
    }

    // ---- the navigation program

    void the_film_starts_once_the_navigation_program_has_gone()
    {
        start(1);
        auto navigation = std::make_unique<QCopChannel>("QPE/Brevaton/navi");
        for (int attempt = 1; attempt <= 2; ++attempt) {
            player->at_next_notice();
            player->post(player_event::play);
            QTRY_COMPARE(player->notices().size(), attempt);
            player->settle();
            QVERIFY(player->in(&TavelVideo::stop_state));
            QCOMPARE(player->playlist()->get_count(), 1);
            QVERIFY(!player->window()->is_full_screen());
        }
        navigation.reset();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        plays_to_its_end();
    }

    void films_handed_over_while_the_navigation_program_runs_rest_in_the_list()
    {
        start(0);
        QCopChannel navigation("QPE/Brevaton/navi");
        player->at_next_notice();
        files = player->make_files(2);
        player->hand_over(files);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_count(), 2);
        QCOMPARE(player->notices().size(), 1);
    }

    void a_stop_that_is_never_answered_leaves_every_way_open_data()
    {
        QTest::addColumn<int>("request");
        QTest::addColumn<QByteArray>("state");
        QTest::newRow("close") << 2007 << QByteArray("exit");
        QTest::newRow("flush") << 2008 << QByteArray("exit");
        QTest::newRow("close the file") << 2102 << QByteArray("stop");
        QTest::newRow("give it up") << 2302 << QByteArray("no file");
        QTest::newRow("play") << 2000 << QByteArray("play");
    }
    void a_stop_that_is_never_answered_leaves_every_way_open()
    {
        QFETCH(int, request);
        QFETCH(QByteArray, state);
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        player->post(request);
        player->settle();
        if (state == "exit")
            QTRY_VERIFY(player->in(&TavelVideo::exit_state));
        else if (state == "stop")
            QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        else if (state == "no file")
            QTRY_VERIFY(player->in(&TavelVideo::no_file_state));
        else
            QTRY_VERIFY(player->in(&TavelVideo::play_state));
        // The wait is over: no step of it is left behind.
        player->clear_log();
        player->settle();
        QVERIFY(player->log_of({"wait"}).isEmpty());
        QVERIFY(player->loading()->isHidden());
    }

    void settings_and_browser_can_be_used_while_a_stop_is_not_answered()
    {
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        player->post(player_event::open_settings);
        player->settle();
        QVERIFY(player->settings()->isVisible());
        player->settings()->close();
        player->post(player_event::open_browser);
        player->settle();
        QVERIFY(player->file_manager()->isVisible());
        player->file_manager()->close();
        player->settle();
        QVERIFY(player->in(&TavelVideo::file_loaded_state));
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        peer.write("OK\n");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        plays_to_its_end();
    }

    void an_error_of_the_opening_before_does_not_hurt_the_film_that_was_opened_since()
    {
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        // Reported before the film is opened once more, acted on after it.
        player->post(player_event::play);
        scripted_engine::report_error(7);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->notices().isEmpty());
        QCOMPARE(player->playlist()->get_count(), 1);
        plays_to_its_end();
    }

    void a_pause_during_the_wait_holds_the_film_once_it_has_started()
    {
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        player->post(player_event::pause);
        player->settle();
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        peer.write("OK\n");
        QTRY_VERIFY(player->in(&TavelVideo::pause_state));
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        plays_to_its_end();
    }

    void play_during_the_wait_takes_back_what_was_asked_for_before_data()
    {
        QTest::addColumn<int>("request");
        QTest::newRow("pause") << 2001;
        QTest::newRow("stop") << 2002;
    }
    void play_during_the_wait_takes_back_what_was_asked_for_before()
    {
        QFETCH(int, request);
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        player->post(request);
        player->settle();
        player->click(Qt::Key_Return);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        plays_to_its_end();
    }

    void a_resume_takes_the_pause_back_that_waits_for_the_film_data()
    {
        QTest::addColumn<QByteArray>("pause");
        QTest::addColumn<QByteArray>("resume");
        QTest::newRow("navigation") << QByteArray("PAUSE\n") << QByteArray("RESUME\n");
        QTest::newRow("sound") << QByteArray("AUDIO_PAUSE\n") << QByteArray("AUDIO_RESUME\n");
        QTest::newRow("asked twice") << QByteArray("PAUSE\nPAUSE\n") << QByteArray("RESUME\n");
    }
    void a_resume_takes_the_pause_back_that_waits_for_the_film()
    {
        QFETCH(QByteArray, pause);
        QFETCH(QByteArray, resume);
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        say(peer, pause + resume + "OK\n");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        plays_to_its_end();
    }

    void a_resume_leaves_the_viewers_own_pause()
    {
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        player->post(player_event::pause);
        player->settle();
        say(peer, "PAUSE\nRESUME\nOK\n");
        QTRY_VERIFY(player->in(&TavelVideo::pause_state));
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    void a_resume_during_a_seek_takes_the_pause_back_and_is_answered_once()
    {
        start(1);
        QTcpSocket peer;
        wait_with_peer(peer);
        QByteArray heard;
        connect(&peer, &QTcpSocket::readyRead, &peer, [&] { heard += peer.readAll(); });
        QTRY_VERIFY((heard += peer.readAll()).contains("STOP\n"));
        say(peer, "OK\n");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::set_automatic_reports(false);
        player->post(player_event::seek, seek_request(5000));
        player->settle();
        QVERIFY(player->in(&TavelVideo::seeking_state));
        heard.clear();
        say(peer, "PAUSE\nRESUME\n");
        QTRY_COMPARE(heard, QByteArray("OK\n"));
        scripted_engine::set_automatic_reports(true);
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QCOMPARE(heard, QByteArray("OK\n"));
        plays_to_its_end();
    }

    // ---- the crash guard

    void a_film_over_which_the_player_died_is_set_aside_once()
    {
        start(3);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        // The files as a kill at this moment leaves them.
        QFile list(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat"));
        QVERIFY(list.open(QIODevice::ReadOnly));
        const QByteArray left = list.readAll();
        list.close();
        player.reset();
        QVERIFY(list.open(QIODevice::WriteOnly | QIODevice::Truncate));
        list.write(left);
        list.close();

        player = std::make_unique<Player>(Player::Device{.keep_files = true});
        player->at_next_notice();
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(player->notices()[0].startsWith(QStringLiteral("A system error occured")));
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_filename(player->playlist()->get_now_playing()), files[1]);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->post(player_event::close);
        QTRY_VERIFY(player->in(&TavelVideo::exit_state));
        player.reset();

        player = std::make_unique<Player>(Player::Device{.keep_files = true});
        player->settle();
        QVERIFY(player->notices().isEmpty());
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    // ---- bookmarks, the passage, scans

    void a_full_list_of_bookmarks_takes_one_again_when_one_is_gone()
    {
        start(1);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        for (unsigned int second = 0; second < 99; ++second)
            player->bookmarks()->add_track(files[0], second);
        player->at_next_notice();
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QCOMPARE(player->bookmarks()->get_count(), 99);
        QVERIFY(player->in(&TavelVideo::play_state));
        player->bookmarks()->remove_track();
        player->post(player_event::add_bookmark);
        player->settle();
        QCOMPARE(player->bookmarks()->get_count(), 99);
        QCOMPARE(player->notices().size(), 1);
        QVERIFY(player->informs(QStringLiteral("[ BOOKMARK ]")));
        plays_to_its_end();
    }

    void a_passage_is_repeated_until_it_is_released()
    {
        start(1);
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        player->post(player_event::refresh_buttons);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(2000);
        player->control_event("repeatA");
        player->settle();
        scripted_engine::run_to(4000);
        player->control_event("repeatB");
        player->settle();
        player->clear_log();
        for (int round = 1; round <= 3; ++round) {
            scripted_engine::run_to(4100);
            QTRY_COMPARE(player->log_of({"seek 4 2000"}).size(), round);
            player->settle();
            QVERIFY(player->in(&TavelVideo::play_state));
            scripted_engine::run_to(2100);
        }
        player->control_event("repeatAB");
        player->settle();
        player->clear_log();
        scripted_engine::run_to(4100);
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
        plays_to_its_end();
    }

    void a_scan_ends_in_play_pause_or_stop_and_the_film_goes_on_data()
    {
        QTest::addColumn<bool>("key_frames");
        QTest::addColumn<int>("scan");
        QTest::addColumn<int>("end");
        for (const bool key_frames : {false, true})
            for (const int scan : {2015, 2016})
                for (const int end : {2000, 2001, 2002, 2102})
                    QTest::addRow("%s %d %d", key_frames ? "key frames" : "bar", scan, end)
                        << key_frames << scan << end;
    }
    void a_scan_ends_in_play_pause_or_stop_and_the_film_goes_on()
    {
        QFETCH(bool, key_frames);
        QFETCH(int, scan);
        QFETCH(int, end);
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("3600000"));
        start(1);
        player->combo("playback_combo_trickmode")->setCurrentIndex(key_frames ? 1 : 0);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(1800000);
        player->post(scan);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        player->post(end);
        player->settle();
        QVERIFY(!player->in(&TavelVideo::speed_playing_state));
        QCOMPARE(player->time_bar()->scan_direction(), TimeWidget::ScanDirection::None);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        // Positions are shown and reports acted on as ever.
        scripted_engine::run_to(2000000);
        player->settle();
        QCOMPARE(player->window()->position(), Time(2000000));
        QCOMPARE(player->time_bar()->get_slidervalue(), 2000U);
        plays_to_its_end();
    }

    // ---- tracks, giving up and taking up

    void tracks_are_changed_in_the_settings_while_the_film_plays()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("audio_streams"), QStringLiteral("2"));
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("2"));
        scripted_engine::set_subtitles(0, {{1000, 9000, "one"}});
        scripted_engine::set_subtitles(1, {{1000, 9000, "two"}});
        start(1);
        player->settings()->save_settings();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(2000);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
        player->clear_log();
        player->post(player_event::open_settings);
        player->settle();
        auto* const sound = player->combo("sound_combo_audiotrack");
        auto* const lines = player->combo("subtitle_combo_track");
        sound->setCurrentIndex(1);
        emit sound->activated(1);
        lines->setCurrentIndex(1);
        emit lines->activated(1);
        player->settings()->close();
        player->settle();
        QVERIFY(player->log_of({"select_stream"}).contains(QStringLiteral("select_stream 2 2")));
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("two"));
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->window()->position(), Time(2000));
        plays_to_its_end();
    }

    void a_film_given_up_and_taken_up_goes_on_where_it_was()
    {
        start(2);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        for (const Time place : {3000, 5000}) {
            scripted_engine::run_to(place);
            player->post(player_event::unload);
            player->settle();
            QVERIFY(player->in(&TavelVideo::no_file_state));
            player->window()->reload_slot();
            player->settle();
            QVERIFY(player->in(&TavelVideo::stop_state));
            player->clear_log();
            player->post(player_event::play);
            QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 %1").arg(place)));
            player->settle();
            QVERIFY(player->in(&TavelVideo::play_state));
        }
        plays_to_its_end();
    }

private:
    void start(int count)
    {
        files.clear();
        for (int i = 0; i < count; ++i) {
            files.append(directory.filePath(QStringLiteral("film %1.avi").arg(i)));
            QFile file(files.last());
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        player = std::make_unique<Player>(Player::Device{{}, files});
        player->settle();
    }

    static player_event::SeekRequest seek_request(Time target) { return {SeekMode::Forward, 0, target, 0}; }

    /// The first of two films is out of the list, the second one stands ready and plays.
    void the_second_film_takes_over()
    {
        player->settle();
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), files[1]);
        QCOMPARE(player->playlist()->get_now_playing(), 0);
        QVERIFY(!player->window()->is_full_screen());
        QCOMPARE(player->notices().size(), 1);
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->log().contains("prepare " + files[1]));
        // From its own beginning, not from where the other one was.
        QVERIFY2(player->log_of({"seek"}).isEmpty(), qPrintable(describe(player->log())));
        plays_to_its_end();
    }

    /// The film on screen plays, moves the time bar, and ends as the settings say.
    void plays_to_its_end()
    {
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->shows("pause"));
        QVERIFY(!player->shows("play"));
        player->combo("playback_combo_next_action")->setCurrentIndex(2);
        scripted_engine::run_to(9'999'999'999LL);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->window()->position(), Time(0));
        QVERIFY(player->shows("play"));
    }

    /// Plays, and waits for @p peer, who says nothing.
    void wait_with_peer(QTcpSocket& peer)
    {
        peer.connectToHost(QHostAddress::LocalHost, player->window()->socket()->port());
        QTRY_COMPARE(peer.state(), QAbstractSocket::ConnectedState);
        QTRY_COMPARE(player->window()->socket()->peer_count(), 1);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        player->settle();
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        QVERIFY(player->loading()->isVisible());
    }

    static void say(QTcpSocket& peer, const QByteArray& text)
    {
        peer.write(text);
        peer.flush();
    }

    QTemporaryDir directory;
    QStringList files;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartStoriesTest)
#include "tst_chart_stories.moc"
