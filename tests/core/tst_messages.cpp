#include "config.h"
#include "device_screen.h"
#include "player_test.h"
#include "printed_text.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QComboBox>

/// What other programs say to the player and what it says to them.
class MessagesTest : public CountingPlayerTest
{
    Q_OBJECT

private slots:
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

    void a_list_is_on_the_disk_at_once()
    {
        const QStringList files = player->make_files(3);
        player->hand_over(files);
        Config stored(QPEApplication::qpeDir() + QStringLiteral("etc/tavel_video/playlist.dat"), Config::File);
        stored.setGroup(QStringLiteral("Playlist"));
        QCOMPARE(stored.readListEntry(QStringLiteral("files")), files);
    }

    void a_list_closes_the_file_manager_and_the_window_takes_over()
    {
        player->post(player_event::open_browser);
        player->settle();
        QVERIFY(DeviceScreen::instance()->is_active(player->file_manager()));
        player->hand_over({QStringLiteral("/a.avi")});
        QVERIFY(!player->file_manager()->isVisible());
        QVERIFY(DeviceScreen::instance()->is_active(player->window()));
        QVERIFY(player->window()->focusWidget());
        QCOMPARE(player->playlist()->get_current_index(), 0);
    }

    void a_list_gives_the_window_the_focus_beside_open_settings_too()
    {
        player->post(player_event::open_settings);
        player->settle();
        QVERIFY(DeviceScreen::instance()->is_active(player->settings()));
        player->hand_over({QStringLiteral("/a.avi")});
        QVERIFY(DeviceScreen::instance()->is_active(player->window()));
    }

    void a_new_list_starts_from_the_beginning()
    {
        player->play_a_film();
        scripted_engine::run_to(6000);
        player->window()->receive_socket_message(QStringLiteral("STOP"));
        QVERIFY(player->in(&TavelVideo::stop_state));
        player->clear_log();
        player->hand_over(player->make_files(2));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
        QCOMPARE(player->window()->position(), Time(0));
    }

    void the_first_new_entry_is_under_the_cursor_wherever_it_was_before()
    {
        player->hand_over(player->make_files(3));
        player->settle();
        player->playlist()->set_current_index(2);
        player->settle();
        player->window()->open_playlist_browser();
        player->hand_over({QStringLiteral("/x"), QStringLiteral("/y")});
        QCOMPARE(player->playlist()->get_current_index(), 3);
        QCOMPARE(player->playlist()->get_filename(3), QStringLiteral("/x"));
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

    void of_screen_messages_close_together_the_last_one_counts_data()
    {
        QTest::addColumn<QList<int>>("screens");
        QTest::newRow("the TV twice") << QList<int>{1, 1};
        QTest::newRow("the TV and back") << QList<int>{1, 0};
        QTest::newRow("back and forth") << QList<int>{1, 0, 0, 1, 1};
        QTest::newRow("the LCD, the TV and back") << QList<int>{0, 1, 0};
    }
    void of_screen_messages_close_together_the_last_one_counts()
    {
        QFETCH(QList<int>, screens);
        for (const int screen : screens)
            send_screen(screen);
        player->settle();
        QCOMPARE(player->window()->is_tv_out(), screens.last() == 1);
        // And they are forgotten then.
        send_screen(1);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
    }

    void a_screen_message_that_comes_before_the_tv_of_the_start_is_taken_agrees_with_it()
    {
        player.reset();
        qputenv("TAVEL_TV", "1");
        player = std::make_unique<Player>();
        qunsetenv("TAVEL_TV");
        QVERIFY(!player->window()->is_tv_out());
        send_screen(1);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
    }

    void a_screen_message_after_a_switch_that_nobody_sent_goes_by_the_screen()
    {
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        send_screen(1);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        send_screen(0);
        player->settle();
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

    void damaged_arguments_are_said_in_one_line_and_change_nothing_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("arguments");
        const QByteArray list("transmit_filename(QString)");
        const QByteArray path = argument(QStringLiteral("/a.avi\n"));
        QTest::newRow("nothing") << list << QByteArray();
        QTest::newRow("half a length") << list << path.left(3);
        QTest::newRow("a length alone") << list << path.left(4);
        QTest::newRow("half a text") << list << path.chopped(5);
        QTest::newRow("half a character") << list << path.chopped(1);
        QTest::newRow("a length of 4 GB") << list << QByteArray("\xFF\xFF\xFF\xF0", 4) + path.mid(4);
        QTest::newRow("an odd length") << list << QByteArray("\x00\x00\x00\x03", 4) + path.mid(4);
        QTest::newRow("no screen") << QByteArray("DoScreenChange(unsigned char)") << QByteArray();
    }
    void damaged_arguments_are_said_in_one_line_and_change_nothing()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, arguments);
        player->play_a_film();
        const QString file = player->playlist()->get_filename(0);
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!tavel_video: the argument of)")));
        QTest::ignoreMessage(QtWarningMsg, "tavel_video: the argument of \"" + message + "\" cannot be read");
        player->window()->receive_message(message, arguments);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), file);
        QVERIFY(!player->window()->is_tv_out());
        QVERIFY(player->log().isEmpty());
    }

    void what_is_not_ours_is_ignored_without_a_word_data()
    {
        QTest::addColumn<QByteArray>("message");
        for (const char* message :
             {"", "transmit_filename", "transmit_filename(QString) ", "Transmit_Filename(QString)",
              "DoScreenChange(int)", "timeChange()", "QPE/Brevaton/video", "%s%n%n%n"})
            QTest::newRow(message) << QByteArray(message);
        QTest::newRow("a long one") << QByteArray(1 << 20, 'x');
        QTest::newRow("with a zero") << QByteArray("timeChange(QString)\0", 20);
    }
    void what_is_not_ours_is_ignored_without_a_word()
    {
        QFETCH(QByteArray, message);
        player->play_a_film();
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        player->window()->receive_message(message, argument(QStringLiteral("/a.avi\n")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 1);
        QVERIFY(player->log().isEmpty());
    }

    void what_follows_the_argument_is_not_looked_at()
    {
        player->window()->receive_message("transmit_filename(QString)",
                                          argument(QStringLiteral("/a.avi\n")) + QByteArray(1000, '\xFF'));
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), QStringLiteral("/a.avi"));
    }

    void a_hostile_list_ends_in_a_notice_and_the_player_goes_on_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("a megabyte") << u'/' + QString(1 << 20, u'x');
        QTest::newRow("a zero") << QString(QStringLiteral("/a\0b.avi"));
        QTest::newRow("half a surrogate pair") << QStringLiteral("/a") + QChar(0xD83C) + QStringLiteral(".avi");
        QTest::newRow("upwards") << QStringLiteral("../../../../../../etc/passwd");
        QTest::newRow("a device") << QStringLiteral("/dev/zero");
        QTest::newRow("formats") << QStringLiteral("/%s%n%1%2.avi");
        QTest::newRow("a command") << QStringLiteral("/$(reboot);`reboot`|reboot.avi");
    }
    void a_hostile_list_ends_in_a_notice_and_the_player_goes_on()
    {
        QFETCH(QString, path);
        // No film is behind such a name.
        scripted_engine::set_next_result(QStringLiteral("open"), rask::engine_failed);
        player->at_next_notice();
        player->hand_over({path});
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 0);
        QVERIFY(player->in(&TavelVideo::no_file_state));
        player->play_a_film();
        QCOMPARE(player->playlist()->get_count(), 1);
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

    void stop_before_a_film_has_started_keeps_its_place_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char* text : {"STOP", "NAVI_START"})
            QTest::newRow(text) << QByteArray(text);
    }
    void stop_before_a_film_has_started_keeps_its_place()
    {
        QFETCH(QByteArray, text);
        connect_navigation();
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(heard.contains("STOP\n"));
        player->window()->play_event(0, 4500);
        QTRY_COMPARE(heard.count("STOP\n"), 2);
        heard.clear();
        say(text);
        flush_socket();
        QVERIFY(player->in(&TavelVideo::file_loaded_state));
        say("OK");
        say("OK");
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->settle();
        player->clear_log();
        heard.clear();
        player->post(player_event::play);
        QTRY_VERIFY(heard.endsWith("STOP\n"));
        say("OK");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 4500")));
    }

    void navi_start_stops_answers_and_keeps_the_place_too()
    {
        connect_navigation();
        play_with_navigation();
        scripted_engine::run_to(6000);
        say("NAVI_START");
        QTRY_VERIFY(heard.contains("OK\n"));
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(heard.count("OK\n"), 1);
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(heard.endsWith("STOP\n"));
        say("OK");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 6000")));
    }

    void a_second_request_to_stop_keeps_the_place_of_the_first_data()
    {
        QTest::addColumn<QByteArray>("first");
        QTest::addColumn<QByteArray>("second");
        for (const char* first : {"STOP", "NAVI_START"})
            for (const char* second : {"STOP", "NAVI_START"})
                QTest::addRow("%s, %s", first, second) << QByteArray(first) << QByteArray(second);
    }
    void a_second_request_to_stop_keeps_the_place_of_the_first()
    {
        QFETCH(QByteArray, first);
        QFETCH(QByteArray, second);
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("600000"));
        connect_navigation();
        play_with_navigation();
        scripted_engine::run_to(60000);
        say(first);
        QTRY_COMPARE(heard.count("OK\n"), 1);
        QVERIFY(player->in(&TavelVideo::stop_state));
        say(second);
        QTRY_COMPARE(heard.count("OK\n"), 2);
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(heard.endsWith("STOP\n"));
        say("OK");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 60000")));
    }

    void a_request_to_stop_keeps_the_place_sought_while_stopped()
    {
        connect_navigation();
        play_with_navigation();
        player->post(player_event::stop);
        player->settle();
        player->seek_to(4000);
        player->settle();
        say("STOP");
        QTRY_COMPARE(heard.count("OK\n"), 1);
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(heard.endsWith("STOP\n"));
        say("OK");
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 4000")));
    }

    void which_texts_are_acted_on_before_the_next_one_is_read_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("at_once");
        for (const char* text : {"STOP", "PAUSE", "AUDIO_PAUSE", "anything else", ""})
            QTest::newRow(text) << QString::fromLatin1(text) << true;
        for (const char* text : {"OK", "NAVI_START"})
            QTest::newRow(text) << QString::fromLatin1(text) << false;
    }
    void which_texts_are_acted_on_before_the_next_one_is_read()
    {
        QFETCH(QString, text);
        QFETCH(bool, at_once);
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->window()->receive_socket_message(text);
        QCOMPARE(!player->window()->is_full_screen(), at_once);
        if (text == QStringLiteral("STOP"))
            QVERIFY(player->in(&TavelVideo::stop_state));
        else if (text.endsWith(QStringLiteral("PAUSE")))
            QVERIFY(player->in(&TavelVideo::pause_state));
        else
            QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_resume_is_acted_on_before_the_next_text_is_read_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"RESUME", "AUDIO_RESUME"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void a_resume_is_acted_on_before_the_next_text_is_read()
    {
        QFETCH(QString, text);
        player->play_a_film();
        player->window()->receive_socket_message(QStringLiteral("PAUSE"));
        QVERIFY(player->in(&TavelVideo::pause_state));
        player->window()->receive_socket_message(text);
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void texts_are_known_to_the_letter_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text :
             {"stop", "STOP ", " STOP", "STOPP", "STO", "PAUSE\r", "Pause", "NAVI_STOP", "NAVI START"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void texts_are_known_to_the_letter()
    {
        QFETCH(QString, text);
        player->play_a_film();
        player->window()->receive_socket_message(text);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log().isEmpty());
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

    void a_second_pause_of_the_navigation_program_needs_a_second_resume()
    {
        connect_navigation();
        play_with_navigation();
        say("PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 1);
        say("AUDIO_PAUSE");
        QTRY_COMPARE(heard.count("OK\n"), 2);
        say("RESUME");
        flush_socket();
        QVERIFY(player->in(&TavelVideo::pause_state));
        say("AUDIO_RESUME");
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

    void resume_is_not_answered_when_the_engine_cannot_tell()
    {
        connect_navigation();
        play_with_navigation();
        scripted_engine::set_busy(false);
        scripted_engine::set_result(QStringLiteral("query"), rask::engine_failed);
        say("RESUME");
        flush_socket();
        QCOMPARE(heard.count("OK\n"), 0);
        QVERIFY(scripted_engine::full_log().contains(QStringLiteral("query 5")));
    }

    void resume_leaves_the_menu_timer_alone_where_the_menu_stays()
    {
        connect_navigation();
        play_with_navigation();
        player->combo("display_combo_menutime")->setCurrentIndex(0);
        player->post(player_event::leave_full_screen);
        player->post(player_event::pause);
        player->settle();
        say("RESUME");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(!player->timer("menu_timer")->isActive());
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

    void a_volume_chosen_before_the_film_is_the_films()
    {
        player->control_bar()->set_volume(27);
        QVERIFY(player->log_of({"set_application_volume"}).isEmpty());
        player->clear_log();
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log_of({"set_application_volume"}).value(0), QStringLiteral("set_application_volume 27"));
        // Afterwards the sound is the system's again.
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(player->log_of({"set_application_volume"}).last(), QStringLiteral("set_application_volume 1"));
    }

    void the_screen_is_kept_on_while_a_film_plays_and_only_then()
    {
        const auto said = [&] {
            const QStringList lines =
                player->log_of({"qcop QPE/System releaseLCDOff", "qcop QPE/System preventLCDOff"});
            player->clear_log();
            return lines;
        };
        const QString prevent = QStringLiteral("qcop QPE/System preventLCDOff()");
        const QString release = QStringLiteral("qcop QPE/System releaseLCDOff()");
        QVERIFY(said().isEmpty());
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(said(), QStringList(prevent));
        player->post(player_event::pause);
        player->settle();
        QCOMPARE(said(), QStringList(release));
        player->post(player_event::play);
        player->settle();
        QCOMPARE(said(), QStringList(prevent));
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(said(), QStringList(release));
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

    void the_settings_know_the_volume_at_any_time()
    {
        const auto stored = [] {
            Config file(QStringLiteral("tavel_video_setting.cfg"), Config::User);
            file.setGroup(QStringLiteral("audio"));
            return file.readNumEntry(QStringLiteral("volume"));
        };
        player->control_bar()->set_volume(33);
        QCOMPARE(player->settings()->get_volume(), 33);
        player->settings()->close();
        QCOMPARE(stored(), 33);
        // Silence is not kept.
        player->control_bar()->set_mute(true);
        QCOMPARE(player->settings()->get_volume(), 33);
        player->control_bar()->set_volume(12);
        player->control_bar()->set_mute(false);
        player->settings()->close();
        QCOMPARE(stored(), 12);
    }

    void the_screen_applet_hears_of_the_film()
    {
        player->clear_log();
        PrintedText printed;
        player->window()->send_screenchageapplet(true);
        player->window()->send_screenchageapplet(false);
        QCOMPARE(printed.take(), QByteArray("tavel video send message =1\ntavel video send message =0\n"));
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
    static QByteArray argument(const QString& text)
    {
        QByteArray data;
        QDataStream stream(&data, QIODevice::WriteOnly);
        stream.setVersion(QCopEnvelope::stream_version);
        stream << text;
        return data;
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

    std::unique_ptr<QTcpSocket> peer;
    QByteArray heard;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, MessagesTest)
#include "tst_messages.moc"
