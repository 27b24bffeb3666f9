#include "player_test.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QComboBox>

/// What arrives while a state's action still runs, because that shows a notice, and the stories that once ended badly.
class RunToCompletionTest : public PlayerTest
{
    Q_OBJECT

private slots:
    void events_posted_while_a_notice_is_up_wait_in_their_order()
    {
        fill_bookmarks();
        player->clear_log();
        QStringList during;
        player->at_next_notice([&] {
            player->post(player_event::speed_up);
            player->post(player_event::pause);
            player->settle();
            during = player->log_of({"set_speed", "pause"});
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QVERIFY2(during.isEmpty(), qPrintable(describe(during)));
        QCOMPARE(player->log_of({"set_speed", "pause"}), QStringList({"set_speed 0", "pause"}));
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    void a_waiting_seek_keeps_its_target()
    {
        fill_bookmarks();
        player->clear_log();
        player->at_next_notice([&] {
            player->seek_to(3000);
            player->settle();
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 3000")));
    }

    void positions_and_subtitles_are_shown_while_a_notice_is_up()
    {
        fill_bookmarks();
        unsigned int slider = 0;
        player->at_next_notice([&] {
            scripted_engine::run_to(7000);
            player->settle();
            slider = player->time_bar()->get_slidervalue();
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        QCOMPARE(slider, 7U);
    }

    void the_screen_is_not_switched_in_the_middle_of_an_action()
    {
        fill_bookmarks();
        bool during = true;
        player->at_next_notice([&] {
            player->post(player_event::switch_screen);
            player->settle();
            during = player->window()->is_tv_out();
        });
        player->post(player_event::add_bookmark);
        QTRY_VERIFY(player->window()->is_tv_out());
        QVERIFY(!during);
    }

    void closing_takes_the_notice_down()
    {
        for (const int number : {int(player_event::close), int(player_event::flush)}) {
            player.reset();
            player = std::make_unique<Player>();
            player->settle();
            fill_bookmarks();
            QTimer::singleShot(0, player->window(), [&] { player->post(number); });
            player->post(player_event::add_bookmark);
            QTRY_VERIFY(player->in(&TavelVideo::exit_state));
            QVERIFY(!player->notice()->isVisible());
        }
    }

    void the_systems_flush_request_is_carried_out_at_once()
    {
        player->play_a_film();
        player->window()->flush_slot();
        QVERIFY(player->in(&TavelVideo::exit_state));
    }

    void the_machines_own_signals_cannot_be_posted()
    {
        player->play_a_film();
        for (int number = 1000; number <= 1003; ++number)
            player->post(number);
        player->settle();
        QVERIFY(player->log().isEmpty());
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_second_notice_takes_the_place_of_the_first()
    {
        fill_bookmarks();
        // More files than the playlist holds are handed over while the notice of the full list of bookmarks is up.
        player->at_next_notice([&] {
            QStringList many;
            for (int i = 0; i < 1000; ++i)
                many.append(QStringLiteral("/f%1.avi").arg(i));
            player->hand_over(many);
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        QTRY_COMPARE(player->notice()->text(),
                     QStringLiteral("Playlist is full.  Please remove files before adding new ones."));
    }

    void a_stale_step_of_an_earlier_loading_starts_nothing()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        // The number that this film was loaded with.
        player->post(player_event::wait_for_players, player_event::LoadNumber{0});
        player->post(player_event::start_loaded, player_event::LoadNumber{0});
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        QVERIFY(player->log().isEmpty());
    }

    void an_end_of_a_file_that_is_no_longer_open_is_dropped()
    {
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::set_automatic_reports(false);
        // The viewer chooses the second file just as the first one ends.
        player->window()->play_event(1, 0);
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        scripted_engine::report_state(PlayerState::Stopped);
        QTRY_VERIFY(player->in(&TavelVideo::play_state) && player->playlist()->get_now_playing() == 1);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_now_playing(), 1);
    }

    // ---- waiting for other players

    void the_film_waits_until_every_other_player_has_answered()
    {
        QTcpSocket first;
        QTcpSocket second;
        connect_peer(first);
        connect_peer(second);
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        QByteArray heard;
        connect(&first, &QTcpSocket::readyRead, this, [&] { heard += first.readAll(); });
        QTRY_VERIFY((heard += first.readAll()).contains("STOP\n"));
        player->settle();
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        QVERIFY(player->log().filter(QStringLiteral("wait 10")).size() > 1);
        say(first, "OK");
        player->settle();
        // One answer twice is one answer.
        say(first, "OK");
        player->settle();
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        say(second, "OK");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void an_answer_about_the_film_before_does_not_count_for_the_next()
    {
        QTcpSocket first;
        QTcpSocket second;
        connect_peer(first);
        connect_peer(second);
        QSignalSpy answers(player->window()->socket(), &VeskSocket::received);
        player->hand_over(player->make_files(2));
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        say(first, "OK");
        QTRY_COMPARE(answers.size(), 1);
        player->window()->play_event(1, 0);
        QTRY_COMPARE(player->playlist()->get_now_playing(), 1);
        say(first, "OK");
        QTRY_COMPARE(answers.size(), 2);
        player->settle();
        QVERIFY(player->in(&TavelVideo::file_loaded_state));
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        say(second, "OK");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void a_player_that_goes_away_does_not_keep_the_film_waiting()
    {
        QTcpSocket peer;
        connect_peer(peer);
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        player->settle();
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        peer.disconnectFromHost();
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void a_stop_during_the_wait_is_kept_until_the_film_has_started()
    {
        QTcpSocket peer;
        connect_peer(peer);
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        player->post(player_event::stop);
        player->settle();
        QVERIFY(!player->in(&TavelVideo::stop_state));
        say(peer, "OK");
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
    }

    void the_program_can_be_closed_during_the_wait()
    {
        QTcpSocket peer;
        connect_peer(peer);
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        player->post(player_event::close);
        QTRY_VERIFY(player->in(&TavelVideo::exit_state));
    }

    void another_file_during_the_wait_is_loaded_and_starts_once()
    {
        QTcpSocket peer;
        connect_peer(peer);
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::file_loaded_state));
        player->window()->play_event(1, 0);
        player->settle();
        // One answer does for both questions.
        say(peer, "OK");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QCOMPARE(player->log_of({"prepare"}), QStringList("prepare " + files[1]));
    }

private:
    void fill_bookmarks()
    {
        player->play_a_film();
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(QStringLiteral("/film.avi"), i);
    }

    void connect_peer(QTcpSocket& peer)
    {
        const int before = player->window()->socket()->peer_count();
        peer.connectToHost(QHostAddress::LocalHost, player->window()->socket()->port());
        QTRY_COMPARE(peer.state(), QAbstractSocket::ConnectedState);
        QTRY_COMPARE(player->window()->socket()->peer_count(), before + 1);
    }

    static void say(QTcpSocket& peer, const char* text)
    {
        peer.write(QByteArray(text) + '\n');
        peer.flush();
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, RunToCompletionTest)
#include "tst_run_to_completion.moc"
