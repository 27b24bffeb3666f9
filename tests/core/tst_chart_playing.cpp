#include "cfbio.h"
#include "device_screen.h"
#include "player_test.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>

/// The states of a loaded film: play, pause, stop, seek, the end, and the requests that go with them.
class ChartPlayingTest : public PlayerTest
{
    Q_OBJECT

private slots:
    // ---- play and pause

    void pause_holds_the_picture_and_play_goes_on()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        QCOMPARE(player->log(), QStringList({"pause", "qcop QPE/System releaseLCDOff()", "set_application_volume 1"}));
        QVERIFY(player->informs(QStringLiteral("[ PAUSE]")));
        QVERIFY(!player->shows("pause"));
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("play"));

        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log(), QStringList({"play", "qcop QPE/System preventLCDOff()", "set_application_volume 20"}));
        QVERIFY(player->informs(QStringLiteral("[ PLAY ]")));
        QVERIFY(!player->shows("play"));
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("pause"));
    }

    void play_while_playing_and_pause_while_paused_do_nothing()
    {
        player->play_a_film();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->log().isEmpty());
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->log().isEmpty());
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    void a_pause_that_fails_is_a_playback_failure()
    {
        player->play_a_film();
        scripted_engine::set_next_result(QStringLiteral("pause"), rask::engine_failed);
        bool still_playing = false;
        player->at_next_notice([&] { still_playing = player->in(&TavelVideo::play_state); });
        player->post(player_event::pause);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QVERIFY(still_playing);
    }

    void a_resume_that_fails_is_a_playback_failure()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        scripted_engine::set_next_result(QStringLiteral("play"), rask::engine_failed);
        bool still_paused = false;
        player->at_next_notice([&] { still_paused = player->in(&TavelVideo::pause_state); });
        player->post(player_event::play);
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(still_paused);
    }

    void privacy_hides_the_picture_while_paused()
    {
        player->play_a_film();
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        player->post(player_event::pause);
        player->settle();
        QCOMPARE(player->log_of({"fb"}), QStringList(QStringLiteral("fb /dev/fb1 enable 0")));
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QCOMPARE(player->log_of({"fb"}), QStringList(QStringLiteral("fb /dev/fb1 enable 1")));
    }

    void privacy_switched_off_while_paused_still_brings_the_picture_back()
    {
        player->play_a_film();
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        player->post(player_event::pause);
        player->settle();
        player->combo("display_combo_privacy_mode")->setCurrentIndex(1);
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QCOMPARE(player->log_of({"fb"}), QStringList(QStringLiteral("fb /dev/fb1 enable 1")));
    }

    // ---- stop

    void stop_closes_the_film_step_by_step_and_opens_it_again()
    {
        player->play_a_film();
        scripted_engine::run_to(4000);
        player->settle();
        player->clear_log();
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        const QStringList expected{
            "fb /dev/fb1 enable 0",
            "qcop QPE/System showTaskBar(QString) tavel_video",
            "qcop QPE/System releaseLCDOff()",
            "set_application_volume 1",
            "qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 0",
            "close",
            "open " + player->playlist()->get_filename(0),
        };
        QVERIFY2(player->log() == expected, qPrintable(describe(player->log())));
        QVERIFY(player->informs(QStringLiteral("[ STOP ]")));
        QVERIFY(!player->window()->is_full_screen());
        QCOMPARE(player->window()->position(), Time(0));
        QCOMPARE(player->time_bar()->get_slidervalue(), 0U);
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("play"));
        QCOMPARE(player->state_of("stop"), SkinButton::State::Disabled);
    }

    void a_reopening_that_fails_after_stop_is_a_playback_failure()
    {
        player->play_a_film();
        scripted_engine::set_next_result(QStringLiteral("open"), rask::no_such_file);
        player->at_next_notice();
        player->post(player_event::stop);
        QTRY_COMPARE(player->notices().size(), 1);
    }

    void a_close_that_fails_keeps_the_media_information()
    {
        player->play_a_film();
        scripted_engine::set_result(QStringLiteral("close"), 0x1234);
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->notices().isEmpty());
        QCOMPARE(player->playlist()->get_count(), 1);
    }

    void play_after_stop_starts_from_the_beginning()
    {
        player->play_a_film();
        scripted_engine::run_to(4000);
        player->post(player_event::stop);
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    // ---- seek

    void a_seek_goes_to_the_engine_and_playback_goes_on()
    {
        player->play_a_film();
        player->seek_to(5000);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 5000")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(!player->shows("play"));
    }

    void positions_are_ignored_until_the_seek_is_done()
    {
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->settle();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(8000, SeekMode::Forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::seeking_state));
        QVERIFY(!player->in(&TavelVideo::streaming_state));
        scripted_engine::report_time(2400);
        QCOMPARE(player->window()->position(), Time(2000));
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        scripted_engine::report_time(8000);
        QCOMPARE(player->window()->position(), Time(8000));
    }

    void a_target_is_brought_inside_the_film_data()
    {
        QTest::addColumn<Time>("target");
        QTest::addColumn<QString>("call");
        QTest::newRow("before the beginning") << Time(-9000) << "seek 4 0";
        QTest::newRow("the beginning") << Time(0) << "seek 4 0";
        QTest::newRow("inside") << Time(9999) << "seek 4 9999";
        QTest::newRow("past the end") << Time(60000) << "seek 4 10000";
    }
    void a_target_is_brought_inside_the_film()
    {
        QFETCH(Time, target);
        QFETCH(QString, call);
        player->play_a_film();
        player->seek_to(target, SeekMode::Backward);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(call));
    }

    void a_seek_that_fails_is_a_playback_failure()
    {
        player->play_a_film();
        scripted_engine::set_next_result(QStringLiteral("seek"), rask::engine_failed);
        player->at_next_notice();
        player->seek_to(5000);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
    }

    void a_seek_to_the_end_does_not_play_the_film_anew_data()
    {
        QTest::addColumn<Time>("target");
        QTest::newRow("the end") << Time(10000);
        QTest::newRow("past the end") << Time(60000);
    }
    void a_seek_to_the_end_does_not_play_the_film_anew()
    {
        QFETCH(Time, target);
        player->play_a_film();
        player->combo("playback_combo_next_action")->setCurrentIndex(2);
        player->seek_to(target);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->settle();
        QCOMPARE(player->log_of({"seek", "play"}), QStringList(QStringLiteral("seek 3 10000")));
    }

    void after_a_seek_a_film_of_unknown_length_plays_on()
    {
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QString());
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(5000);
        player->settle();
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log_of({"seek", "play"}), QStringList({"seek 3 5000", "play"}));
    }

    void after_a_seek_while_playing_a_seek_while_paused_returns_to_play()
    {
        player->play_a_film();
        player->seek_to(2000);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        player->clear_log();
        player->seek_to(5000);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        // Engine and buttons are in line with the state.
        QCOMPARE(player->log_of({"seek", "play", "pause"}), QStringList({"seek 3 5000", "play"}));
        QVERIFY(!player->shows("play"));
        QVERIFY(player->shows("pause"));
    }

    void after_a_seek_while_paused_a_seek_while_playing_returns_to_pause()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        player->seek_to(2000);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        player->post(player_event::play);
        player->settle();
        player->clear_log();
        player->seek_to(5000);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        QCOMPARE(player->log_of({"seek", "play", "pause"}), QStringList({"seek 3 5000", "pause"}));
        QVERIFY(player->shows("play"));
        QVERIFY(!player->shows("pause"));
    }

    void a_seek_while_paused_shows_where_it_went()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(7500);
        player->settle();
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        QCOMPARE(player->window()->position(), Time(7500));
        QCOMPARE(player->time_bar()->get_slidervalue(), 7U);
    }

    void what_nobody_takes_during_a_seek_is_kept_for_after_it()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(2000);
        player->settle();
        player->clear_log();
        player->seek_to(3000);
        player->seek_to(4000);
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->log().isEmpty());
        scripted_engine::set_automatic_reports(true);
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        // Only the newest seek; then the pause.
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 4000")));
        QTRY_VERIFY(player->in(&TavelVideo::pause_state));
    }

    void a_stop_during_a_seek_is_kept_for_after_it()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(2000);
        player->post(player_event::stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::seeking_state));
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    void play_during_a_seek_loads_anew_and_goes_to_the_target()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        player->seek_to(6000);
        player->settle();
        scripted_engine::set_automatic_reports(true);
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QCOMPARE(player->log_of({"prepare", "play", "seek"}).mid(1, 2), QStringList({"play", "seek 3 6000"}));
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_subtitle_shown_before_a_seek_is_shown_again_after_it()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->settle();
        const QImage line = player->subtitle()->background_pixmap().toImage();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
        player->seek_to(1500, SeekMode::Backward);
        player->settle();
        scripted_engine::run_to(1600);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), line);
    }

    // ---- the end

    void the_end_does_what_the_settings_say_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<int>("next");
        QTest::addColumn<bool>("plays");
        QTest::newRow("next file") << 0 << 1 << true;
        QTest::newRow("same file") << 1 << 0 << true;
        QTest::newRow("stop") << 2 << 0 << false;
    }
    void the_end_does_what_the_settings_say()
    {
        QFETCH(int, choice);
        QFETCH(int, next);
        QFETCH(bool, plays);
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->combo("playback_combo_next_action")->setCurrentIndex(choice);
        player->clear_log();
        scripted_engine::run_to(10000);
        if (plays)
            QTRY_COMPARE(player->log_of({"prepare"}), QStringList("prepare " + files[next]));
        else
            QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->settle();
        QCOMPARE(player->in(&TavelVideo::play_state), plays);
        QCOMPARE(player->in(&TavelVideo::stop_state), !plays);
        QCOMPARE(player->playlist()->get_now_playing(), next);
        // Whatever comes next starts at its beginning.
        QVERIFY(player->log_of({"seek"}).isEmpty());
        QCOMPARE(player->window()->position(), Time(0));
    }

    void after_the_last_file_the_first_one_plays()
    {
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(10000);
        QTRY_COMPARE(player->playlist()->get_now_playing(), 1);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(10000);
        QTRY_COMPARE(player->playlist()->get_now_playing(), 0);
    }

    void the_end_with_the_settings_open_rests_at_the_same_file()
    {
        const QStringList files = player->make_files(2);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->post(player_event::open_settings);
        player->settle();
        scripted_engine::run_to(10000);
        QTRY_VERIFY(player->in(&TavelVideo::stop_state));
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_now_playing(), 0);
    }

    void the_end_waits_for_the_second_report()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        player->settle();
        QVERIFY(player->in(&TavelVideo::end_of_stream_state));
        QVERIFY(player->in(&TavelVideo::file_loaded_state));
        scripted_engine::report_state(PlayerState::Stopped);
        player->settle();
        QVERIFY(!player->in(&TavelVideo::end_of_stream_state));
    }

    void play_at_the_end_plays_the_film_again()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log().contains(QStringLiteral("play")));
    }

    void a_stopped_report_outside_the_end_changes_nothing()
    {
        player->play_a_film();
        scripted_engine::report_state(PlayerState::Stopped);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log().isEmpty());
    }

    // ---- speed

    void speed_steps_go_to_the_engine_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("call");
        QTest::newRow("down") << 2012 << "set_speed 2";
        QTest::newRow("normal") << 2013 << "set_speed 1";
        QTest::newRow("up") << 2014 << "set_speed 0";
    }
    void speed_steps_go_to_the_engine()
    {
        QFETCH(int, number);
        QFETCH(QString, call);
        player->play_a_film();
        player->post(number);
        player->settle();
        QCOMPARE(player->log(), QStringList(call));
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_new_speed_is_shown_and_a_refused_one_is_not()
    {
        player->play_a_film();
        for (int step = 0; step < 4; ++step)
            player->post(player_event::speed_up);
        player->settle();
        QVERIFY(!player->informs(QStringLiteral("[ SPEED ]\n 100%")));
        player->post(player_event::speed_normal);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ SPEED ]\n 100%")));
        player->post(player_event::pause);
        player->settle();
        scripted_engine::set_result(QStringLiteral("set_speed"), rask::out_of_range);
        player->post(player_event::play);
        player->settle();
        player->post(player_event::speed_up);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ PLAY ]")));
        QVERIFY(player->notices().isEmpty());
    }

    void speed_changes_are_for_the_playing_film_only()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::speed_up);
        player->settle();
        QVERIFY(player->log().isEmpty());
    }

    // ---- bookmarks

    void a_bookmark_holds_file_and_whole_seconds()
    {
        player->play_a_film();
        const QString file = player->playlist()->get_filename(0);
        scripted_engine::run_to(3725);
        player->post(player_event::add_bookmark);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ BOOKMARK ]")));
        QCOMPARE(player->bookmarks()->get_count(), 1);
        QSignalSpy chosen(player->bookmarks(), &BookmarkWidget::selected_file_play);
        player->click(Qt::Key_Tab);
        player->settle();
        player->control_event("bookmark_list");
        player->bookmarks()->focus_filelist();
        player->click(Qt::Key_Return);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(chosen[0][0].toString(), file);
        QCOMPARE(chosen[0][1].toUInt(), 3000U);
    }

    void the_hundredth_bookmark_is_refused_with_a_notice()
    {
        player->play_a_film();
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(player->playlist()->get_filename(0), i);
        player->at_next_notice();
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices(),
                     QStringList(QStringLiteral("Bookmark list is full.\nPlease remove some before adding new ones.")));
        QCOMPARE(player->bookmarks()->get_count(), 99);
    }

    // ---- requests of the settings

    void each_settings_request_reaches_the_engine()
    {
        player->play_a_film();
        player->post(player_event::audio_track);
        player->settle();
        QCOMPARE(player->log(), QStringList(QStringLiteral("select_stream 2 1")));
        player->clear_log();
        player->post(player_event::reset_display);
        player->settle();
        QCOMPARE(player->log(), QStringList({"set_video_window 0 0 480 272", "set_aspect 1"}));
        player->clear_log();
        player->settings()->findChild<QSlider*>(QStringLiteral("color_slider_green"))->setValue(70);
        player->settle();
        QCOMPARE(player->log(), QStringList(QStringLiteral("set_parameter 4 50 70 50")));
    }

    void the_replay_request_plays_on_from_the_same_place()
    {
        player->play_a_film();
        scripted_engine::run_to(4000);
        player->clear_log();
        player->post(player_event::replay);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 4000")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void refused_settings_are_no_playback_failure()
    {
        player->play_a_film();
        for (const char* operation : {"select_stream", "set_parameter", "set_speed", "set_option"})
            scripted_engine::set_result(QLatin1String(operation), rask::not_supported);
        for (const int number : {2201, 2205, 2014})
            player->post(number);
        player->settle();
        QVERIFY(player->notices().isEmpty());
        QCOMPARE(player->playlist()->get_count(), 1);
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void opening_the_settings_makes_the_film_small_and_keeps_it_visible()
    {
        player->settings()->save_settings();
        player->play_a_film();
        QVERIFY(player->window()->is_full_screen());
        player->post(player_event::open_settings);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->settings()->isVisible());
        QVERIFY(DeviceScreen::instance()->is_active(player->settings()));
        QCOMPARE(player->log_of({"set_aspect", "fb", "set_video"}),
                 QStringList({"set_aspect 0", "fb /dev/fb1 enable 0", "set_video_window 12 64 221 126",
                              "fb /dev/fb1 enable 1"}));
        QVERIFY(player->in(&TavelVideo::play_state));
        player->clear_log();
        player->settings()->close();
        player->settle();
        QCOMPARE(player->log_of({"set_aspect", "set_video"}),
                 QStringList({"set_video_window 0 0 480 272", "set_aspect 1"}));
    }

    void opening_the_settings_leaves_a_hidden_picture_hidden()
    {
        player->play_a_film();
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::open_settings);
        player->settle();
        QCOMPARE(player->log_of({"fb"}), QStringList(QStringLiteral("fb /dev/fb1 enable 0")));
    }

    void opening_the_browser_shows_the_file_manager()
    {
        player->play_a_film();
        player->post(player_event::open_browser);
        player->settle();
        QVERIFY(player->file_manager()->isVisible());
        QVERIFY(DeviceScreen::instance()->is_active(player->file_manager()));
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    // ---- full screen

    void full_screen_comes_and_goes_by_request()
    {
        player->play_a_film();
        QVERIFY(player->window()->is_full_screen());
        player->post(player_event::leave_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(player->window()->is_full_screen());
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(player->window()->is_full_screen());
    }

    void full_screen_is_not_entered_beside_the_settings()
    {
        player->play_a_film();
        player->post(player_event::open_settings);
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
    }

    void full_screen_is_for_a_loaded_film()
    {
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
    }

    // ---- mute

    void the_mute_request_toggles_the_sound()
    {
        player->play_a_film();
        player->post(player_event::mute);
        player->settle();
        QCOMPARE(player->log(), QStringList(QStringLiteral("set_application_volume 0")));
        player->clear_log();
        player->post(player_event::mute);
        player->settle();
        QCOMPARE(player->log(), QStringList(QStringLiteral("set_application_volume 20")));
    }

    // ---- where the viewer was

    void leaving_the_film_for_another_row_does_not_carry_its_position_over()
    {
        const QStringList files = player->make_files(3);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(5000);
        // The row that plays is removed: the next one takes its place in the list.
        player->playlist()->set_current_index(0);
        player->playlist()->remove_track();
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->playlist()->get_filename(player->playlist()->get_now_playing()), files[1]);
        QCOMPARE(player->window()->position(), Time(0));
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartPlayingTest)
#include "tst_chart_playing.moc"
