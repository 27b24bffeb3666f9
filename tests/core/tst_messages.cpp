#include "config.h"
#include "player.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QComboBox>

/// What other programs say to the player and what it says to them.
class MessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        player = std::make_unique<Player>();
        player->settle();
    }
    void cleanup()
    {
        counter.reset();
        player.reset();
    }

    // ---- files handed over

    void three_paths_with_line_feeds_are_three_entries_and_the_first_plays()
    {
        const QStringList files = player->make_files(3);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 3);
        QCOMPARE(player->playlist()->get_now_playing(), 0);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(player->playlist()->get_filename(i), files[i]);
    }

    void a_list_replaces_the_one_before()
    {
        player->hand_over({QStringLiteral("/old1"), QStringLiteral("/old2")});
        player->settle();
        player->hand_over({QStringLiteral("/new")});
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), QStringLiteral("/new"));
    }

    void a_path_without_its_line_feed_is_left_out()
    {
        send_list(QStringLiteral("/a.avi\n/b.avi"));
        QCOMPARE(player->playlist()->get_count(), 1);
    }

    void an_empty_line_ends_the_list()
    {
        send_list(QStringLiteral("/a.avi\n\n/b.avi\n"));
        QCOMPARE(player->playlist()->get_count(), 1);
    }

    void a_message_without_one_complete_line_changes_nothing_data()
    {
        QTest::addColumn<QString>("list");
        QTest::newRow("empty") << QString();
        QTest::newRow("no line feed") << QStringLiteral("/a.avi");
        QTest::newRow("an empty line") << QStringLiteral("\n/a.avi\n");
    }
    void a_message_without_one_complete_line_changes_nothing()
    {
        QFETCH(QString, list);
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        send_list(list);
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void paths_of_every_character_arrive_whole()
    {
        QStringList files{QStringLiteral("/with blank.avi"),
                          QStringLiteral("/quote'\"$`;|&.avi"),
                          QString::fromUtf8("/한국어 영화.avi"),
                          QString::fromUtf8("/فيلم.mkv"),
                          QString::fromUtf8("/\xF0\x9F\x8E\xAC=[x]\\.mp4"),
                          QStringLiteral("/tab\there\r.avi")};
        player->hand_over(files);
        player->settle();
        QCOMPARE(player->playlist()->get_count(), static_cast<int>(files.size()));
        for (int i = 0; i < files.size(); ++i)
            QCOMPARE(player->playlist()->get_filename(i), files[i]);
    }

    void of_a_thousand_files_999_are_added_and_the_notice_is_shown_once()
    {
        player->at_next_notice();
        player->hand_over(numbered(1000));
        QCOMPARE(player->playlist()->get_count(), 999);
        QCOMPARE(player->notices(),
                 QStringList(QStringLiteral("Playlist is full.  Please remove files before adding new ones.")));
        player->settle();
        QCOMPARE(player->playlist()->get_now_playing(), 0);
    }

    void added_to_998_entries_one_file_goes_in_and_then_the_notice_comes()
    {
        scripted_engine::set_result(QStringLiteral("open"), rask::ok);
        player->hand_over(numbered(998));
        player->settle();
        player->window()->open_playlist_browser();
        player->settle();
        QVERIFY(player->file_manager()->isVisible());
        player->at_next_notice();
        player->hand_over({QStringLiteral("/x"), QStringLiteral("/y")});
        QCOMPARE(player->playlist()->get_count(), 999);
        QCOMPARE(player->notices().size(), 1);
        QCOMPARE(player->playlist()->get_filename(998), QStringLiteral("/x"));
        QVERIFY(!player->file_manager()->isVisible());
    }

    void a_full_list_stays_as_it_is()
    {
        player->hand_over(numbered(999));
        player->settle();
        player->window()->open_playlist_browser();
        player->settle();
        player->at_next_notice();
        player->hand_over({QStringLiteral("/x")});
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 999);
        QCOMPARE(player->playlist()->get_now_playing(), 0);
    }

    void files_chosen_for_the_playlist_go_behind_it_and_do_not_interrupt()
    {
        const QStringList files = player->make_files(3);
        player->hand_over({files[0]});
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        emit player->playlist()->open_playlist_browser();
        player->settle();
        QVERIFY(player->file_manager()->isVisible());
        player->clear_log();
        player->hand_over({files[1], files[2]});
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 3);
        QCOMPARE(player->playlist()->get_current_index(), 1);
        QCOMPARE(player->playlist()->get_now_playing(), 0);
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log_of({"open"}).isEmpty());
        // The next list replaces again.
        player->hand_over({files[2]});
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 1);
    }

    void a_list_that_comes_while_one_is_added_waits_its_turn()
    {
        player->at_next_notice([&] { player->hand_over({QStringLiteral("/later")}); });
        player->hand_over(numbered(1000));
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), QStringLiteral("/later"));
    }

    // ---- other messages

    void a_screen_message_switches_only_when_it_is_the_other_screen()
    {
        counter = std::make_unique<EventCounter>(player->window());
        send_screen(0);
        player->settle();
        QCOMPARE(counter->count(player_event::switch_screen), 0);
        send_screen(1);
        player->settle();
        QCOMPARE(counter->count(player_event::switch_screen), 1);
        QVERIFY(player->window()->is_tv_out());
        send_screen(1);
        send_screen(7);
        player->settle();
        QCOMPARE(counter->count(player_event::switch_screen), 1);
        send_screen(0);
        player->settle();
        QCOMPARE(counter->count(player_event::switch_screen), 2);
        QVERIFY(!player->window()->is_tv_out());
    }

    void a_changed_clock_holds_the_playing_film_for_half_a_second()
    {
        player->play_a_film();
        QTest::ignoreMessage(QtWarningMsg, "********** timeChange(QString)\n");
        player->message("timeChange(QString)", [](QDataStream& stream) { stream << QString(); });
        QCOMPARE(player->log(), QStringList({"pause", "wait 500", "play"}));
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->message("timeChange(QString)", [](QDataStream& stream) { stream << QString(); });
        QVERIFY(player->log().isEmpty());
    }

    void unknown_and_unreadable_messages_are_ignored()
    {
        player->play_a_film();
        player->message("unknown(int)", [](QDataStream& stream) { stream << 5; });
        QTest::ignoreMessage(QtWarningMsg,
                             "tavel_video: the argument of \"transmit_filename(QString)\" cannot be read");
        player->window()->receive_message("transmit_filename(QString)", QByteArray("\xFF\xFF\xFF\x00 nonsense", 10));
        QTest::ignoreMessage(QtWarningMsg,
                             "tavel_video: the argument of \"DoScreenChange(unsigned char)\" cannot be read");
        player->window()->receive_message("DoScreenChange(unsigned char)", QByteArray());
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 1);
        QVERIFY(!player->window()->is_tv_out());
    }

    // ---- the navigation program

    void stop_while_a_film_plays_stops_it_answers_and_keeps_the_place()
    {
        connect_navigation();
        play_with_navigation();
        scripted_engine::run_to(6000);
        say("STOP");
        QTRY_VERIFY(heard.contains("OK\n"));
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(heard.count("OK\n"), 1);
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(heard.endsWith("STOP\n"));
        say("OK");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 6000")));
    }

    void navi_start_stops_and_is_answered_too()
    {
        connect_navigation();
        play_with_navigation();
        say("NAVI_START");
        QTRY_VERIFY(heard.contains("OK\n"));
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(heard.count("OK\n"), 1);
    }

    void stop_and_start_with_nothing_loaded_are_answered_at_once_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char* text : {"STOP", "NAVI_START", "PAUSE", "AUDIO_PAUSE"})
            QTest::newRow(text) << QByteArray(text);
    }
    void stop_and_start_with_nothing_loaded_are_answered_at_once()
    {
        QFETCH(QByteArray, text);
        connect_navigation();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        say(text);
        QTRY_COMPARE(heard.count("OK\n"), 1);
        // The reply is not owed any more: stopping a film later says nothing.
        play_with_navigation();
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        flush_socket();
        QCOMPARE(heard.count("OK\n"), 0);
    }

    void pause_pauses_and_answers_and_resume_plays_on_data()
    {
        QTest::addColumn<QByteArray>("pause");
        QTest::addColumn<QByteArray>("resume");
        QTest::newRow("picture and sound") << QByteArray("PAUSE") << QByteArray("RESUME");
        QTest::newRow("sound") << QByteArray("AUDIO_PAUSE") << QByteArray("AUDIO_RESUME");
    }
    void pause_pauses_and_answers_and_resume_plays_on()
    {
        QFETCH(QByteArray, pause);
        QFETCH(QByteArray, resume);
        connect_navigation();
        play_with_navigation();
        say(pause);
        QTRY_COMPARE(heard.count("OK\n"), 1);
        QVERIFY(player->in(&TavelVideo::pause_state));
        say(resume);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(heard.count("OK\n"), 1);
    }

    void the_viewers_own_pause_outlasts_the_navigation_programs()
    {
        connect_navigation();
        play_with_navigation();
        player->post(player_event::pause);
        player->settle();
        say("PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 1);
        say("RESUME");
        flush_socket();
        QVERIFY(player->in(&TavelVideo::pause_state));
        // Only once: the next one is the navigation program's.
        say("RESUME");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void a_pause_that_the_viewer_ended_is_forgotten_by_the_next_one()
    {
        connect_navigation();
        play_with_navigation();
        pause_as_viewer_and_navigation_and_play_on();
        say("PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 2);
        QVERIFY(player->in(&TavelVideo::pause_state));
        say("RESUME");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void the_viewers_own_pause_counts_for_one_resume_wherever_that_comes()
    {
        connect_navigation();
        play_with_navigation();
        pause_as_viewer_and_navigation_and_play_on();
        scripted_engine::set_busy(false);
        say("RESUME");
        QTRY_COMPARE(heard.count("OK\n"), 2);
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        say("RESUME");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void pause_while_stopped_is_answered_at_once()
    {
        connect_navigation();
        play_with_navigation();
        player->post(player_event::stop);
        player->settle();
        say("PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 1);
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    void resume_while_stopped_is_answered()
    {
        connect_navigation();
        play_with_navigation();
        player->post(player_event::stop);
        player->settle();
        say("RESUME");
        QTRY_COMPARE(heard.count("OK\n"), 1);
    }

    void resume_in_other_states_is_answered_unless_the_engine_is_busy()
    {
        connect_navigation();
        play_with_navigation();
        say("RESUME");
        flush_socket();
        QCOMPARE(heard.count("OK\n"), 0);
        scripted_engine::set_busy(false);
        say("RESUME");
        QTRY_COMPARE(heard.count("OK\n"), 1);
    }

    void resume_starts_the_menu_timer_when_the_controls_are_shown()
    {
        connect_navigation();
        play_with_navigation();
        player->post(player_event::leave_full_screen);
        player->post(player_event::pause);
        player->settle();
        player->timer("menu_timer")->stop();
        say("RESUME");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->timer("menu_timer")->isActive());
    }

    void pause_during_a_seek_is_answered_when_the_film_rests()
    {
        connect_navigation();
        play_with_navigation();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(3000);
        player->settle();
        say("PAUSE");
        flush_socket();
        QCOMPARE(heard.count("OK\n"), 0);
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        QTRY_COMPARE(heard.count("OK\n"), 1);
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    void stop_takes_a_notice_down_and_is_answered()
    {
        connect_navigation();
        play_with_navigation();
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(QStringLiteral("/a"), i);
        QTimer::singleShot(0, this, [&] { say("STOP"); });
        player->post(player_event::add_bookmark);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(!player->notice()->isVisible());
        QTRY_COMPARE(heard.count("OK\n"), 1);
    }

    void unknown_texts_change_nothing()
    {
        connect_navigation();
        play_with_navigation();
        player->clear_log();
        for (const char* text : {"", "ok", "STOP NOW", "PLAY", "\xFF\xFE", "%s%n"})
            say(text);
        flush_socket();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log().isEmpty());
        QCOMPARE(heard.count("OK\n"), 0);
    }

    void hide_is_said_when_the_window_is_activated_outside_playback()
    {
        connect_navigation();
        QEvent activate(QEvent::WindowActivate);
        QCoreApplication::sendEvent(player->window(), &activate);
        QTRY_COMPARE(heard.count("HIDE\n"), 1);
        play_with_navigation();
        heard.clear();
        QCoreApplication::sendEvent(player->window(), &activate);
        flush_socket();
        QCOMPARE(heard.count("HIDE\n"), 0);
    }

    // ---- volume, screen, task bar

    void the_volume_reaches_the_sound_of_a_loaded_film_only()
    {
        player->window()->send_volume(30);
        QVERIFY(player->log_of({"set_application_volume"}).isEmpty());
        player->play_a_film();
        player->control_bar()->set_volume(12);
        QCOMPARE(player->log(), QStringList(QStringLiteral("set_application_volume 12")));
        player->clear_log();
        player->window()->send_volume(256 + 7);
        QCOMPARE(player->log(), QStringList(QStringLiteral("set_application_volume 7")));
    }

    void the_volume_is_kept_for_the_next_start()
    {
        player->control_bar()->set_volume(33);
        player->post(player_event::close);
        player->settle();
        player.reset();
        player = std::make_unique<Player>(Player::Device{.keep_files = true});
        QCOMPARE(player->control_bar()->get_volume(), 33U);
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->log().contains(QStringLiteral("set_application_volume 33")));
    }

    void the_screen_applet_hears_of_the_film()
    {
        player->clear_log();
        player->window()->send_screenchageapplet(true);
        player->window()->send_screenchageapplet(false);
        QCOMPARE(player->log(), QStringList({"qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 1",
                                             "qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 0"}));
    }

    void back_on_the_lcd_the_users_backlight_is_set()
    {
        {
            Config qpe(QStringLiteral("qpe"));
            qpe.writeEntry(QStringLiteral("Brightness"), 77);
        }
        send_screen(1);
        player->settle();
        player->clear_log();
        send_screen(0);
        player->settle();
        QCOMPARE(player->log_of({"qcop QPE/System setBacklight"}),
                 QStringList(QStringLiteral("qcop QPE/System setBacklight(int) 77")));
    }

    void without_a_stored_backlight_it_is_set_to_255()
    {
        send_screen(1);
        player->settle();
        send_screen(0);
        player->settle();
        QCOMPARE(player->log_of({"qcop QPE/System setBacklight"}),
                 QStringList(QStringLiteral("qcop QPE/System setBacklight(int) 255")));
    }

private:
    void send_list(const QString& list)
    {
        player->message("transmit_filename(QString)", [&](QDataStream& stream) { stream << list; });
    }
    void send_screen(int screen)
    {
        player->message("DoScreenChange(unsigned char)",
                        [&](QDataStream& stream) { stream << static_cast<quint8>(screen); });
    }
    static QStringList numbered(int count)
    {
        QStringList files;
        for (int i = 0; i < count; ++i)
            files.append(QStringLiteral("/film %1.avi").arg(i));
        return files;
    }

    void connect_navigation()
    {
        heard.clear();
        peer = std::make_unique<QTcpSocket>();
        connect(peer.get(), &QTcpSocket::readyRead, this, [this] { heard += peer->readAll(); });
        peer->connectToHost(QHostAddress::LocalHost, player->window()->socket()->port());
        QTRY_COMPARE(peer->state(), QAbstractSocket::ConnectedState);
        QTRY_COMPARE(player->window()->socket()->peer_count(), 1);
    }
    void say(const QByteArray& text)
    {
        peer->write(text + '\n');
        peer->flush();
    }
    /// Waits until everything said has been heard.
    void flush_socket()
    {
        QSignalSpy received(player->window()->socket(), SIGNAL(received(QString)));
        say("MARK");
        QTRY_VERIFY(std::any_of(received.cbegin(), received.cend(),
                                [](const QVariantList& each) { return each.at(0) == QStringLiteral("MARK"); }));
        player->settle();
    }
    void play_with_navigation()
    {
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(heard.contains("STOP\n"));
        say("OK");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        heard.clear();
        player->clear_log();
    }

    /// The viewer pauses, then the navigation program does, then the viewer plays on.
    void pause_as_viewer_and_navigation_and_play_on()
    {
        player->post(player_event::pause);
        player->settle();
        say("PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 1);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    std::unique_ptr<Player> player;
    std::unique_ptr<EventCounter> counter;
    std::unique_ptr<QTcpSocket> peer;
    QByteArray heard;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, MessagesTest)
#include "tst_messages.moc"
