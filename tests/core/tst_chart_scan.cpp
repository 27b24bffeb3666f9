#include "player_test.h"
#include "printed_text.h"
#include "qpe_application.h"
#include "slider_skin.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>

/// Scanning in both trick modes, and the repeated passage.
class ChartScanTest : public PlayerTest
{
    Q_OBJECT

private slots:
    // ---- the seek bar alone (trick mode 0)

    void a_bar_scan_moves_the_bar_from_where_the_film_is()
    {
        play_at(4000);
        player->clear_log();
        player->post(player_event::scan_forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        QVERIFY(player->in(&TavelVideo::streaming_state));
        QVERIFY2(player->log_of({"scan", "play", "pause", "seek"}).isEmpty(), qPrintable(describe(player->log())));
        QVERIFY(player->informs(QStringLiteral("[ FAST FORWARD ]")));
        QVERIFY(player->window()->is_full_screen());
        QVERIFY(player->time_bar()->isVisible());
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 262));
        QVERIFY(player->time_bar()->get_slidervalue() >= 4U);
        QCOMPARE(player->time_bar()->scan_direction(), TimeWidget::ScanDirection::Forward);
        QVERIFY(player->shows("play"));
        QVERIFY(!player->shows("pause"));
        QTRY_VERIFY(player->time_bar()->get_slidervalue() > 5U);
        // The film plays on, but its position is not shown meanwhile.
        const Time before = player->window()->position();
        scripted_engine::report_time(8000);
        QCOMPARE(player->window()->position(), before);
    }

    void play_ends_a_bar_scan_with_a_seek_to_where_the_bar_is()
    {
        play_at(4000);
        player->post(player_event::scan_forward);
        player->settle();
        QTRY_VERIFY(player->time_bar()->get_slidervalue() > 5U);
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        const QStringList seeks = player->log_of({"seek"});
        QCOMPARE(seeks.size(), 1);
        QVERIFY2(seeks[0].startsWith(QStringLiteral("seek 3 ")), qPrintable(seeks[0]));
        QVERIFY(seeks[0].section(u' ', 2).toInt() >= 6000);
        QCOMPARE(player->time_bar()->scan_direction(), TimeWidget::ScanDirection::None);
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 192));
        QVERIFY(!player->time_bar()->isVisible());
        QVERIFY(!player->shows("play"));
    }

    void a_backward_bar_scan_shows_rewind_and_seeks_backward()
    {
        play_at(8000);
        player->clear_log();
        player->post(player_event::scan_back);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ FAST REWIND ]")));
        QCOMPARE(player->time_bar()->scan_direction(), TimeWidget::ScanDirection::Reverse);
        QTRY_VERIFY(player->time_bar()->get_slidervalue() < 7U);
        player->post(player_event::play);
        player->settle();
        QCOMPARE(player->log_of({"seek"}).size(), 1);
        QVERIFY(player->log_of({"seek"})[0].startsWith(QStringLiteral("seek 4 ")));
    }

    void a_bar_scan_at_the_end_plays_on_by_itself()
    {
        play_at(8000);
        player->post(player_event::scan_forward);
        player->settle();
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void leaving_a_bar_scan_another_way_does_not_seek()
    {
        play_at(4000);
        player->post(player_event::scan_forward);
        player->settle();
        player->clear_log();
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->log_of({"seek"}).isEmpty());
        QCOMPARE(player->time_bar()->scan_direction(), TimeWidget::ScanDirection::None);
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 192));
        QVERIFY(player->time_bar()->isVisible());
        QCOMPARE(player->window()->position(), Time(0));
    }

    void a_bar_scan_beside_shown_controls_leaves_them_their_time_bar()
    {
        play_at(4000);
        // The controls are not hidden while another window is the active one.
        player->post(player_event::open_browser);
        player->settle();
        player->post(player_event::scan_forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        QVERIFY(!player->window()->is_full_screen());
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 192));
        QVERIFY(player->time_bar()->isVisible());
    }

    void a_seek_and_the_end_are_ignored_during_a_bar_scan()
    {
        play_at(4000);
        player->post(player_event::scan_forward);
        player->settle();
        player->clear_log();
        player->seek_to(1000);
        player->settle();
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        QCoreApplication::sendPostedEvents();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    // ---- the film's key frames (trick mode 1)

    void a_key_frame_scan_asks_the_engine_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("text");
        QTest::newRow("forward") << 2015 << "scan_forward 3"
                                 << "[ FAST FORWARD ]";
        QTest::newRow("back") << 2016 << "scan_backward 3"
                              << "[ FAST REWIND ]";
    }
    void a_key_frame_scan_asks_the_engine()
    {
        QFETCH(int, number);
        QFETCH(QString, call);
        QFETCH(QString, text);
        play_at(4000);
        use_key_frames();
        player->clear_log();
        player->post(number);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        QCOMPARE(player->log(), QStringList(call));
        QVERIFY(player->informs(text));
        // Positions are shown, states are not acted on.
        scripted_engine::report_time(5000);
        QCOMPARE(player->window()->position(), Time(5000));
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log(), QStringList(QStringLiteral("play")));
    }

    void a_scan_that_is_refused_leaves_the_film_playing_and_is_reported()
    {
        play_at(4000);
        use_key_frames();
        scripted_engine::set_next_result(QStringLiteral("scan_forward"), rask::engine_failed);
        bool playing = false;
        player->at_next_notice([&] { playing = player->in(&TavelVideo::play_state); });
        player->post(player_event::scan_forward);
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(playing);
    }

    void a_scan_that_cannot_be_ended_goes_on_and_repeats_nothing()
    {
        play_at(4000);
        use_key_frames();
        player->post(player_event::scan_forward);
        player->settle();
        scripted_engine::set_next_result(QStringLiteral("play"), rask::engine_failed);
        bool scanning = false;
        player->at_next_notice([&] { scanning = player->in(&TavelVideo::speed_playing_state); });
        player->post(player_event::open_settings);
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(scanning);
        player->settle();
        QVERIFY(!player->settings()->isVisible());
    }

    void requests_that_need_the_controls_end_the_scan_first_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("trick_mode");
        for (const int mode : {0, 1})
            for (const int number : {2001, 2004, 2005, 2107})
                QTest::addRow("%d in mode %d", number, mode) << number << mode;
    }
    void requests_that_need_the_controls_end_the_scan_first()
    {
        QFETCH(int, number);
        QFETCH(int, trick_mode);
        play_at(4000);
        if (trick_mode == 1)
            use_key_frames();
        player->post(player_event::scan_forward);
        player->settle();
        player->post(number);
        player->settle();
        QVERIFY(!player->in(&TavelVideo::speed_playing_state));
        switch (number) {
        case 2001:
            QVERIFY(player->in(&TavelVideo::pause_state));
            break;
        case 2004:
            QVERIFY(player->file_manager()->isVisible());
            break;
        case 2005:
            QVERIFY(player->settings()->isVisible());
            break;
        default:
            QVERIFY(!player->window()->is_full_screen());
            break;
        }
    }

    void a_key_frame_scan_that_reaches_the_end_gives_way_to_the_end()
    {
        play_at(4000);
        use_key_frames();
        player->combo("playback_combo_next_action")->setCurrentIndex(2);
        player->post(player_event::scan_forward);
        player->settle();
        player->clear_log();
        scripted_engine::run_to(10000);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->log().contains(QStringLiteral("play")));
    }

    void a_key_frame_scan_that_reaches_the_beginning_plays_from_there()
    {
        play_at(4000);
        use_key_frames();
        player->post(player_event::scan_back);
        player->settle();
        scripted_engine::run_to(0);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void an_end_that_came_during_a_key_frame_scan_is_not_lost()
    {
        play_at(4000);
        use_key_frames();
        player->combo("playback_combo_next_action")->setCurrentIndex(2);
        scripted_engine::set_automatic_reports(false);
        player->post(player_event::scan_forward);
        player->settle();
        EventCounter counter(player->window());
        PrintedText printed;
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        scripted_engine::report_state(PlayerState::Stopped);
        player->settle();
        const QByteArray text = printed.take();
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        // The film may be shorter than it says: its end ends the scan, and only then is acted on.
        QCOMPARE(counter.numbers.mid(0, 3), QList<int>({2000, 3005, 3004}));
        QCOMPARE(counter.count(player_event::end_of_stream), 1);
        QCOMPARE(text.count("EOS!!!\n"), 1);
    }

    void an_error_during_a_key_frame_scan_is_reported()
    {
        play_at(4000);
        use_key_frames();
        player->post(player_event::scan_forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        player->at_next_notice();
        scripted_engine::report_error(0x1234);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QCOMPARE(player->window()->last_error(), 0x1234U);
    }

    // ---- the repeated passage

    void a_and_b_and_neither()
    {
        play_at(2000);
        allow_repeat();
        press_repeat();
        QVERIFY(player->informs(QStringLiteral("[ A SET ]")));
        QVERIFY(!player->shows("repeatA"));
        QVERIFY(player->shows("repeatB"));
        QCOMPARE(*slider()->marker(SliderSkin::Marker::A), 2U);
        QVERIFY(!slider()->marker(SliderSkin::Marker::B));
        scripted_engine::run_to(5000);
        press_repeat();
        QVERIFY(player->informs(QStringLiteral("[ B SET ]")));
        QVERIFY(!player->shows("repeatB"));
        QVERIFY(player->shows("repeatAB"));
        QCOMPARE(*slider()->marker(SliderSkin::Marker::B), 5U);
        press_repeat();
        QVERIFY(player->informs(QStringLiteral("[ AB RELEASED ]")));
        QVERIFY(!player->shows("repeatAB"));
        QVERIFY(player->shows("repeatA"));
        QVERIFY(!slider()->marker(SliderSkin::Marker::A));
        QVERIFY(!slider()->marker(SliderSkin::Marker::B));
    }

    void passing_b_asks_for_one_seek_to_a()
    {
        repeat_from_2_to_5_seconds();
        player->clear_log();
        scripted_engine::set_automatic_reports(false);
        scripted_engine::report_time(5000);
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
        scripted_engine::report_time(5040);
        scripted_engine::report_time(5080);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 2000")));
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        scripted_engine::report_time(2040);
        scripted_engine::report_time(5040);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList({"seek 4 2000", "seek 4 2000"}));
    }

    void b_passed_during_a_scan_is_returned_from_after_it()
    {
        repeat_from_2_to_5_seconds();
        use_key_frames();
        player->post(player_event::scan_forward);
        player->settle();
        scripted_engine::report_time(6000);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        player->post(player_event::play);
        player->settle();
        player->clear_log();
        scripted_engine::report_time(6100);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 2000")));
    }

    void b_before_a_is_exchanged_with_it()
    {
        play_at(5000);
        allow_repeat();
        press_repeat();
        scripted_engine::report_time(1000);
        press_repeat();
        QCOMPARE(*slider()->marker(SliderSkin::Marker::A), 1U);
        QCOMPARE(*slider()->marker(SliderSkin::Marker::B), 5U);
        player->clear_log();
        scripted_engine::report_time(5040);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 1000")));
    }

    void the_passage_is_at_least_a_second_long()
    {
        play_at(2000);
        allow_repeat();
        press_repeat();
        press_repeat();
        QCOMPARE(*slider()->marker(SliderSkin::Marker::B), 3U);
        player->clear_log();
        scripted_engine::report_time(2900);
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    void a_passage_in_the_last_second_grows_backward_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("a");
        QTest::addColumn<int>("b");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::newRow("at one place") << 10000 << 9600 << 9600 << 8600 << 9600;
        QTest::newRow("short") << 10000 << 9300 << 9700 << 8700 << 9700;
        QTest::newRow("exchanged") << 10000 << 9700 << 9300 << 8700 << 9700;
        QTest::newRow("with just room enough") << 10000 << 8900 << 8950 << 8900 << 9900;
        QTest::newRow("to the very end") << 10000 << 9000 << 10000 << 9000 << 10000;
        QTest::newRow("a short film") << 1500 << 700 << 800 << 0 << 1000;
    }
    void a_passage_in_the_last_second_grows_backward()
    {
        QFETCH(int, length);
        QFETCH(int, a);
        QFETCH(int, b);
        QFETCH(int, first);
        QFETCH(int, last);
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QString::number(length));
        player->play_a_film();
        allow_repeat();
        scripted_engine::set_automatic_reports(false);
        scripted_engine::report_time(a);
        press_repeat();
        scripted_engine::report_time(b);
        press_repeat();
        player->clear_log();
        scripted_engine::report_time(last);
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
        scripted_engine::report_time(last + 1);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 %1").arg(first)));
    }

    void nothing_is_repeated_while_the_setting_hides_the_controls()
    {
        play_at(2000);
        press_repeat();
        QVERIFY(!slider()->marker(SliderSkin::Marker::A));
        QVERIFY(!player->informs(QStringLiteral("[ A SET ]")));
    }

    void an_mpeg_file_ignores_the_repeat_button()
    {
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        player->play_a_film(QStringLiteral("MPEG"));
        press_repeat();
        QVERIFY(!slider()->marker(SliderSkin::Marker::A));
    }

    void leaving_the_film_releases_the_passage()
    {
        play_at(2000);
        allow_repeat();
        press_repeat();
        player->post(player_event::stop);
        player->settle();
        QVERIFY(!slider()->marker(SliderSkin::Marker::A));
        QVERIFY(player->shows("repeatA"));
        QVERIFY(!player->shows("repeatB"));
    }

private:
    void play_at(Time position)
    {
        player->play_a_film();
        scripted_engine::run_to(position);
        player->settle();
    }
    void use_key_frames() { player->combo("playback_combo_trickmode")->setCurrentIndex(1); }
    void allow_repeat()
    {
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        player->post(player_event::refresh_buttons);
        player->settle();
    }
    void press_repeat()
    {
        player->post(player_event::repeat_ab);
        player->settle();
    }
    void repeat_from_2_to_5_seconds()
    {
        play_at(2000);
        allow_repeat();
        press_repeat();
        scripted_engine::run_to(5000);
        press_repeat();
    }
    SliderSkin* slider() { return player->time_bar()->findChild<SliderSkin*>(); }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartScanTest)
#include "tst_chart_scan.moc"
