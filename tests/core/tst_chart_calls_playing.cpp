#include "call_recorder.h"
#include "chart_calls.h"
#include "device_screen.h"
#include "player.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>

using namespace chart_calls;

/// Each action of the states of a film that was started, by the calls it makes, in their order.
class ChartCallsPlayingTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("3600000"));
        player = std::make_unique<Player>();
        player->settle();
        file = player->make_files(1).first();
        player->play_a_film();
    }
    void cleanup() { player.reset(); }

    // ---- streaming_state

    void stop_leaves_the_film_and_opens_it_again()
    {
        run_to(4000);
        act(player_event::stop);
        COMPARE_CALLS(player->log(), QStringList({"-> stop_state", "settings set_playing 0"}) +
                                         leave_file_loaded(4000) + enter_stop() +
                                         QStringList({"open " + file, "settings refresh_subtitle",
                                                      "settings update_information", "time_bar set_slidervalue 0"}));
        QCOMPARE(player->window()->position(), Time(0));
    }

    void a_reopening_that_fails_after_stop_is_reported_and_shows_nothing()
    {
        scripted_engine::set_next_result(QStringLiteral("open"), rask::no_such_file);
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::stop);
        QTRY_COMPARE(player->notices().size(), 1);
        const qsizetype open = at_notice.indexOf("open " + file);
        COMPARE_CALLS(at_notice.mid(open, 4), QStringList({"open " + file, "settings refresh_subtitle", "post 3000",
                                                           "playlist remove_now_playing"}));
    }

    void a_seek_goes_through_seeking_state_and_back()
    {
        act_seek(5000);
        COMPARE_CALLS(player->log(),
                      QStringList({"-> seeking_state", "settings set_playing 0", "seek 3 5000", "-> play_state",
                                   "settings set_playing 1", "time_bar set_slidervalue 5", "play",
                                   "bar hideButton play", "bar showFocus pause", "window show_subtitle_due"}));
    }

    void a_seek_that_is_refused_is_reported()
    {
        scripted_engine::set_next_result(QStringLiteral("seek"), rask::engine_failed);
        QStringList at_notice;
        player->at_next_notice([&] {
            at_notice = player->log();
            QVERIFY(player->in(&TavelVideo::seeking_state));
        });
        act_seek(5000);
        QTRY_COMPARE(player->notices().size(), 1);
        COMPARE_CALLS(at_notice.mid(0, 5), QStringList({"-> seeking_state", "settings set_playing 0", "seek 3 5000",
                                                        "post 3000", "playlist remove_now_playing"}));
    }

    void a_bookmark_is_added_and_announced()
    {
        run_to(3999);
        act(player_event::add_bookmark);
        COMPARE_CALLS(player->log(),
                      QStringList({"window add_bookmark " + file + " 3", "window display_information [ BOOKMARK ]"}));
    }

    void a_full_list_of_bookmarks_is_told_and_nothing_is_added()
    {
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(file, i);
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        QCOMPARE(at_notice.value(0), QStringLiteral("window show_notice Bookmark list is full."));
        player->settle();
        QVERIFY(player->log().filter(QStringLiteral("add_bookmark")).isEmpty());
        QVERIFY(!player->informs(QStringLiteral("[ BOOKMARK ]")));
    }

    void a_b_and_neither_go_step_by_step()
    {
        allow_repeat();
        run_to(2000);
        act(player_event::repeat_ab);
        COMPARE_CALLS(player->log(), QStringList({"time_bar set_repeatA 2", "bar hideButton repeatA",
                                                  "bar showFocus repeatB", "window display_information [ A SET ]"}));
        run_to(5000);
        act(player_event::repeat_ab);
        COMPARE_CALLS(player->log(),
                      QStringList({"time_bar set_repeatA 2", "time_bar set_repeatB 5", "bar hideButton repeatB",
                                   "bar showFocus repeatAB", "window display_information [ B SET ]"}));
        act(player_event::repeat_ab);
        COMPARE_CALLS(player->log(),
                      QStringList({"time_bar clear_repeatAB", "bar hideButton repeatAB", "bar showFocus repeatA",
                                   "window display_information [ AB RELEASED ]"}));
        // And from the beginning.
        act(player_event::repeat_ab);
        QVERIFY(player->log().contains(QStringLiteral("window display_information [ A SET ]")));
    }

    void a_passage_ends_with_its_film_though_it_was_switched_off_meanwhile()
    {
        allow_repeat();
        run_to(2000);
        act(player_event::repeat_ab);
        run_to(5000);
        act(player_event::repeat_ab);
        // The settings are still open: the buttons have not been told yet.
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(1);
        act(player_event::stop);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->clear_log();
        run_to(6000);
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    void the_passage_can_be_set_while_paused()
    {
        allow_repeat();
        run_to(2000);
        act(player_event::pause);
        act(player_event::repeat_ab);
        QVERIFY(player->log().contains(QStringLiteral("window display_information [ A SET ]")));
    }

    void full_screen_is_entered_unless_a_window_is_in_the_way()
    {
        act(player_event::enter_full_screen);
        COMPARE_CALLS(player->log(), QStringList("window enter_full_screen"));
        act(player_event::leave_full_screen);
        act(player_event::enter_full_screen);
        COMPARE_CALLS(player->log(),
                      QStringList({"window enter_full_screen", "qcop QPE/System hideTaskBar(QString) tavel_video"}));
        for (const int window : {int(player_event::open_settings), int(player_event::open_browser)}) {
            act(window);
            act(player_event::enter_full_screen);
            COMPARE_CALLS(player->log(), QStringList());
            player->settings()->close();
            player->file_manager()->close();
            player->settle();
        }
    }

    void the_end_of_the_stream_leads_to_the_end_state_and_waits_there()
    {
        scripted_engine::set_automatic_reports(false);
        player->clear_log();
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        player->settle();
        COMPARE_CALLS(player->log(), QStringList({"-> end_of_stream_state", "settings set_playing 0"}));
    }

    void closing_passes_through_to_the_application()
    {
        act(player_event::pause);
        act(player_event::close);
        QVERIFY(player->log().contains(QStringLiteral("-> exit_state")));
    }

    void engine_states_that_nobody_waits_for_change_nothing()
    {
        for (const int number : {3002, 3003, 3004, 3007, 2010, 3010, 2006}) {
            act(number);
            COMPARE_CALLS(player->log(), QStringList());
            QVERIFY(player->in(&TavelVideo::play_state));
        }
    }

    // ---- play_state

    void pause_goes_step_by_step()
    {
        act(player_event::pause);
        COMPARE_CALLS(player->log(),
                      QStringList({"pause", "window display_information [ PAUSE]", "-> pause_state",
                                   "settings set_playing 0", "qcop QPE/System releaseLCDOff()",
                                   "set_application_volume 1", "bar hideButton pause", "bar showFocus play"}));
    }

    void a_pause_that_is_refused_is_reported_and_nothing_else()
    {
        scripted_engine::set_next_result(QStringLiteral("pause"), rask::engine_failed);
        check_refused(player_event::pause, {"pause", "post 3000"}, &TavelVideo::play_state);
    }

    void play_while_playing_does_nothing()
    {
        act(player_event::play);
        COMPARE_CALLS(player->log(), QStringList());
        act(player_event::start_loaded);
        COMPARE_CALLS(player->log(), QStringList("post 2000"));
    }

    void a_speed_is_shown_when_the_engine_takes_it_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("call");
        QTest::newRow("down") << 2012 << "set_speed 2";
        QTest::newRow("normal") << 2013 << "set_speed 1";
        QTest::newRow("up") << 2014 << "set_speed 0";
    }
    void a_speed_is_shown_when_the_engine_takes_it()
    {
        QFETCH(int, number);
        QFETCH(QString, call);
        act(number);
        COMPARE_CALLS(player->log(), QStringList({call, "window draw_speed_info"}));
        scripted_engine::set_next_result(QStringLiteral("set_speed"), rask::out_of_range);
        act(number);
        COMPARE_CALLS(player->log(), QStringList(call));
    }

    void a_scan_of_the_bar_begins_step_by_step_data() { directions(); }
    void a_scan_of_the_bar_begins_step_by_step()
    {
        QFETCH(int, number);
        QFETCH(QString, text);
        QFETCH(bool, forward);
        run_to(60000);
        act(number);
        COMPARE_CALLS(
            player->log(),
            QStringList({"window display_information " + text, "bar hideButton pause", "bar showFocus play",
                         "-> speed_playing_state", "settings set_playing 0", "window enter_full_screen",
                         "time_bar set_disable", "move 0 262 TIME", "show TIME", "time_bar set_slidervalue 60",
                         forward ? "time_bar start_forward_scan" : "time_bar start_reverse_scan"}));
    }

    void a_scan_of_key_frames_begins_step_by_step_data() { directions(); }
    void a_scan_of_key_frames_begins_step_by_step()
    {
        QFETCH(int, number);
        QFETCH(QString, text);
        QFETCH(bool, forward);
        use_key_frames();
        run_to(60000);
        act(player_event::leave_full_screen);
        act(number);
        COMPARE_CALLS(player->log(),
                      QStringList({forward ? "scan_forward 3" : "scan_backward 3", "window display_information " + text,
                                   "bar hideButton pause", "bar showFocus play", "-> speed_playing_state",
                                   "settings set_playing 0", "window enter_full_screen",
                                   "qcop QPE/System hideTaskBar(QString) tavel_video"}));
    }

    void a_scan_of_key_frames_that_is_refused_is_reported_and_nothing_else_data() { directions(); }
    void a_scan_of_key_frames_that_is_refused_is_reported_and_nothing_else()
    {
        QFETCH(int, number);
        QFETCH(bool, forward);
        use_key_frames();
        scripted_engine::set_next_result(forward ? QStringLiteral("scan_forward") : QStringLiteral("scan_backward"),
                                         rask::engine_failed);
        check_refused(number, {forward ? "scan_forward 3" : "scan_backward 3", "post 3000"}, &TavelVideo::play_state);
    }

    void reports_are_acted_on_again_after_a_refused_scan()
    {
        use_key_frames();
        scripted_engine::set_next_result(QStringLiteral("scan_forward"), rask::engine_failed);
        player->post(player_event::scan_forward);
        EventCounter counter(player->window());
        QCoreApplication::sendPostedEvents(player->window(), player_event::scan_forward);
        scripted_engine::report_state(PlayerState::Playing);
        scripted_engine::report_time(1500);
        QCOMPARE(player->window()->position(), Time(1500));
        player->at_next_notice();
        QTRY_COMPARE(counter.count(player_event::engine_playing), 1);
        QTRY_COMPARE(player->notices().size(), 1);
    }

    // ---- pause_state

    void play_goes_on_step_by_step()
    {
        act(player_event::pause);
        act(player_event::play);
        COMPARE_CALLS(player->log(),
                      QStringList({"play", "window display_information [ PLAY ]", "bar hideButton play",
                                   "bar showFocus pause", "-> play_state", "qcop QPE/System preventLCDOff()",
                                   "set_application_volume 20", "settings set_playing 1"}));
    }

    void going_on_that_is_refused_is_reported_and_nothing_else()
    {
        act(player_event::pause);
        scripted_engine::set_next_result(QStringLiteral("play"), rask::engine_failed);
        check_refused(player_event::play, {"play", "post 3000"}, &TavelVideo::pause_state);
    }

    void privacy_hides_the_picture_first_and_brings_it_back_first()
    {
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        act(player_event::pause);
        COMPARE_CALLS(player->log(),
                      QStringList({"pause", "window display_information [ PAUSE]", "-> pause_state",
                                   "settings set_playing 0", "fb /dev/fb1 enable 0", "qcop QPE/System releaseLCDOff()",
                                   "set_application_volume 1", "bar hideButton pause", "bar showFocus play"}));
        act(player_event::play);
        COMPARE_CALLS(player->log(), QStringList({"play", "window display_information [ PLAY ]", "bar hideButton play",
                                                  "bar showFocus pause", "-> play_state", "fb /dev/fb1 enable 1",
                                                  "qcop QPE/System preventLCDOff()", "set_application_volume 20",
                                                  "settings set_playing 1"}));
    }

    void a_pause_without_privacy_leaves_the_picture_alone_whatever_was_before()
    {
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        act(player_event::pause);
        act(player_event::play);
        player->combo("display_combo_privacy_mode")->setCurrentIndex(1);
        for (const int number : {int(player_event::pause), int(player_event::play)}) {
            act(number);
            COMPARE_CALLS(player->log_of({"fb"}), QStringList());
        }
    }

    void a_pause_that_the_navigation_program_waits_for_is_answered_before_the_sound_is_given_back()
    {
        player->clear_log();
        player->window()->receive_socket_message(QStringLiteral("PAUSE"));
        COMPARE_CALLS(player->log(),
                      QStringList({"post 2001", "pause", "window display_information [ PAUSE]", "-> pause_state",
                                   "settings set_playing 0", "qcop QPE/System releaseLCDOff()", "socket OK",
                                   "set_application_volume 1", "bar hideButton pause", "bar showFocus play"}));
    }

    void stop_while_paused_takes_screen_and_sound_back_before_it_gives_them_up()
    {
        act(player_event::pause);
        act(player_event::stop);
        const QStringList expected =
            QStringList({"-> stop_state", "qcop QPE/System preventLCDOff()", "set_application_volume 20"}) +
            leave_file_loaded(0);
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
    }

    void speeds_and_scans_are_for_a_playing_film_only()
    {
        act(player_event::pause);
        for (const int number : {2001, 2012, 2013, 2014, 2015, 2016}) {
            act(number);
            COMPARE_CALLS(player->log(), QStringList());
        }
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    // ---- speed_playing_state

    void play_ends_a_scan_of_the_bar_step_by_step()
    {
        run_to(60000);
        act(player_event::scan_forward);
        act(player_event::play);
        const QStringList expected =
            QStringList({"time_bar end_scan", "bar hideButton play", "bar showFocus pause", "-> play_state"}) +
            leave_bar_scan() + QStringList({"settings set_playing 1", "-> seeking_state"});
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
    }

    void play_ends_a_scan_of_key_frames_step_by_step()
    {
        use_key_frames();
        act(player_event::scan_forward);
        act(player_event::play);
        COMPARE_CALLS(player->log(), QStringList({"play", "bar hideButton play", "bar showFocus pause", "-> play_state",
                                                  "settings set_playing 1"}));
    }

    void a_scan_of_key_frames_that_cannot_be_ended_goes_on_data()
    {
        QTest::addColumn<int>("number");
        for (const int number : {2000, 2001, 2004, 2005, 2107})
            QTest::addRow("%d", number) << number;
    }
    void a_scan_of_key_frames_that_cannot_be_ended_goes_on()
    {
        QFETCH(int, number);
        use_key_frames();
        act(player_event::scan_forward);
        scripted_engine::set_next_result(QStringLiteral("play"), rask::engine_failed);
        check_refused(number, {"play", "post 3000"}, &TavelVideo::speed_playing_state);
    }

    void requests_that_need_the_controls_are_repeated_after_the_scan_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<bool>("key_frames");
        for (const bool key_frames : {false, true})
            for (const int number : {2001, 2004, 2005, 2107})
                QTest::addRow("%d %s", number, key_frames ? "key frames" : "bar") << number << key_frames;
    }
    void requests_that_need_the_controls_are_repeated_after_the_scan()
    {
        QFETCH(int, number);
        QFETCH(bool, key_frames);
        if (key_frames)
            use_key_frames();
        act(player_event::scan_forward);
        act(number);
        const QStringList expected =
            QStringList({key_frames ? "play" : "time_bar end_scan", "bar hideButton play", "bar showFocus pause",
                         QStringLiteral("post %1").arg(number), "-> play_state"}) +
            (key_frames ? QStringList() : leave_bar_scan()) + QStringList("settings set_playing 1");
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
    }

    void a_seek_during_a_scan_is_ignored_data() { trick_modes(); }
    void a_seek_during_a_scan_is_ignored()
    {
        QFETCH(bool, key_frames);
        if (key_frames)
            use_key_frames();
        act(player_event::scan_forward);
        act_seek(5000);
        COMPARE_CALLS(player->log(), QStringList());
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
    }

    void the_end_during_a_scan_is_ignored_by_the_bar_and_passed_on_by_key_frames_data() { trick_modes(); }
    void the_end_during_a_scan_is_ignored_by_the_bar_and_passed_on_by_key_frames()
    {
        QFETCH(bool, key_frames);
        if (key_frames)
            use_key_frames();
        act(player_event::scan_forward);
        act(player_event::end_of_stream);
        COMPARE_CALLS(player->log(), key_frames ? QStringList("-> end_of_stream_state") : QStringList());
    }

    void stop_ends_a_scan_of_the_bar_without_a_seek()
    {
        act(player_event::scan_forward);
        act(player_event::stop);
        QStringList leave = leave_bar_scan();
        leave.prepend(QStringLiteral("time_bar cancel_scan"));
        const QStringList expected = QStringList("-> stop_state") + leave + leave_file_loaded(0);
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    void a_bookmark_can_be_added_during_a_scan()
    {
        use_key_frames();
        act(player_event::scan_forward);
        act(player_event::add_bookmark);
        QVERIFY(player->log().contains(QStringLiteral("window display_information [ BOOKMARK ]")));
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
    }

    // ---- seeking_state

    void a_seek_while_paused_rests_again()
    {
        act(player_event::pause);
        act_seek(5000);
        COMPARE_CALLS(player->log(),
                      QStringList({"-> seeking_state", "qcop QPE/System preventLCDOff()", "set_application_volume 20",
                                   "seek 3 5000", "-> pause_state", "qcop QPE/System releaseLCDOff()",
                                   "set_application_volume 1", "time_bar set_slidervalue 5", "pause",
                                   "bar hideButton pause", "bar showFocus play", "window show_subtitle_due"}));
    }

    void positions_count_again_once_the_seek_is_left()
    {
        scripted_engine::set_automatic_reports(false);
        act_seek(5000);
        QVERIFY(player->in(&TavelVideo::seeking_state));
        scripted_engine::report_time(1000);
        QCOMPARE(player->window()->position(), Time(0));
        act(player_event::close_file);
        scripted_engine::report_time(1000);
        QCOMPARE(player->window()->position(), Time(1000));
    }

    void what_a_seek_does_not_need_goes_to_the_loaded_film()
    {
        scripted_engine::set_automatic_reports(false);
        act_seek(5000);
        act(player_event::audio_track);
        COMPARE_CALLS(player->log(), QStringList("select_stream 2 1"));
        act(player_event::leave_full_screen);
        QVERIFY(player->log().contains(QStringLiteral("window leave_full_screen")));
        for (const int number : {2009, 2011, 2012, 2015, 2106, 3004, 3005}) {
            act(number);
            COMPARE_CALLS(player->log(), QStringList());
        }
        QVERIFY(player->in(&TavelVideo::seeking_state));
    }

    // ---- end_of_stream_state

    void the_end_takes_what_the_settings_say_and_stops_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("choice");
        QTest::addColumn<QStringList>("calls");
        const QList<std::pair<const char*, QStringList>> choices{
            {"next file",
             {"playlist play_next_file", "playlist set_now_playing 0", "playlist play_now_playing", "post 2101 0 0"}},
            {"same file", {"playlist play_now_playing", "post 2101 0 0"}},
            {"stop", {"playlist load_now_playing", "post 2100 0 0"}},
        };
        for (const int number : {3004, 3005})
            for (int i = 0; i < choices.size(); ++i)
                QTest::addRow("%d %s", number, choices[i].first) << number << i << choices[i].second;
    }
    void the_end_takes_what_the_settings_say_and_stops()
    {
        QFETCH(int, number);
        QFETCH(int, choice);
        QFETCH(QStringList, calls);
        player->combo("playback_combo_next_action")->setCurrentIndex(choice);
        end_the_stream();
        act(number);
        const QStringList expected = QStringList("playlist save_now_playing 0") + calls + QStringList("-> stop_state") +
                                     leave_file_loaded(0) + enter_stop();
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
    }

    void the_end_beside_an_open_window_reloads_the_entry_data()
    {
        QTest::addColumn<int>("window");
        QTest::newRow("settings") << 2005;
        QTest::newRow("browser") << 2004;
    }
    void the_end_beside_an_open_window_reloads_the_entry()
    {
        QFETCH(int, window);
        for (const int choice : {0, 1, 2}) {
            player->combo("playback_combo_next_action")->setCurrentIndex(choice);
            act(window);
            end_the_stream();
            act(player_event::engine_stopped);
            COMPARE_CALLS(player->log().mid(0, 4),
                          QStringList({"playlist save_now_playing 0", "playlist load_now_playing", "post 2100 0 0",
                                       "-> stop_state"}));
            player->settings()->close();
            player->file_manager()->close();
            scripted_engine::set_automatic_reports(true);
            player->settle();
            player->post(player_event::play);
            QTRY_VERIFY(player->in(&TavelVideo::play_state));
            player->settle();
        }
    }

    void what_the_end_does_not_need_goes_to_the_loaded_film()
    {
        end_the_stream();
        act(player_event::audio_track);
        COMPARE_CALLS(player->log(), QStringList("select_stream 2 1"));
        for (const int number : {2001, 2002, 2003, 2009, 2011, 2012, 2015, 2106, 3002, 3003, 3007}) {
            act(number);
            COMPARE_CALLS(player->log(), QStringList());
        }
        QVERIFY(player->in(&TavelVideo::end_of_stream_state));
    }

    // ---- the engine's reports

    void each_report_is_posted_and_the_gui_thread_woken()
    {
        const auto here = scripted_engine::From::Caller;
        const auto calls_of = [this](const std::function<void()>& report) {
            player->clear_log();
            report();
            return player->log();
        };
        const QList<std::pair<PlayerState, const char*>> states{{PlayerState::Prepared, "post 3007"},
                                                                {PlayerState::Playing, "post 3002"},
                                                                {PlayerState::Stopped, "post 3004"},
                                                                {PlayerState::Paused, "post 3003"}};
        for (const auto& [state, post] : states)
            COMPARE_CALLS(calls_of([state = state, here] { scripted_engine::report_state(state, here); }),
                          QStringList({post, "wake"}));
        COMPARE_CALLS(calls_of([here] { scripted_engine::report_time(1500, here); }),
                      QStringList({"post 2104", "wake"}));
        COMPARE_CALLS(
            calls_of([here] { scripted_engine::report_stream(StreamType::Film, StreamState::Started, here); }),
            QStringList({"post 3006", "wake"}));
        COMPARE_CALLS(calls_of([here] { scripted_engine::report_stream(StreamType::Film, StreamState::Ended, here); }),
                      QStringList({"post 3005", "wake"}));
        COMPARE_CALLS(calls_of([here] { scripted_engine::report_error(37, here); }), QStringList());
        COMPARE_CALLS(calls_of([here] { scripted_engine::report_error(7, here); }), QStringList({"post 3000", "wake"}));
        // Handling the error shows a notice.
        player->at_next_notice();
        QTRY_COMPARE(player->notices().size(), 1);
    }

    void a_subtitle_is_posted_and_the_gui_thread_woken()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1200, 2000, "one"}});
        player->play_a_film();
        run_to(1000);
        player->clear_log();
        scripted_engine::report_time(1500, scripted_engine::From::Caller);
        COMPARE_CALLS(player->log(), QStringList({"post 2103", "wake"}));
    }

    void passing_b_is_posted_and_the_gui_thread_woken()
    {
        allow_repeat();
        run_to(2000);
        act(player_event::repeat_ab);
        run_to(5000);
        act(player_event::repeat_ab);
        player->clear_log();
        scripted_engine::report_time(5100, scripted_engine::From::Caller);
        COMPARE_CALLS(player->log(), QStringList({"post 2003 4 2000", "wake"}));
    }

    // ---- the end of the window

    void what_is_to_be_kept_is_saved_before_the_engine_goes()
    {
        // Of the position the low 32 bits are kept.
        scripted_engine::report_time((Time(1) << 32) + 4500);
        player->settle();
        player->clear_log();
        QStringList log;
        connect(player->window(), &QObject::destroyed, this, [&log] { log = scripted_engine::log(); });
        player.reset();
        COMPARE_CALLS(log, QStringList({"playlist save_now_playing 4500", "bookmarks save", "settings save_settings",
                                        "settings set_player 0", "release", "~MediaPlayer"}));
    }

private:
    /// Posts an event and lets everything happen that it leads to; the log begins with what it does.
    void act(int number, std::any payload = {})
    {
        player->post(number, std::move(payload));
        player->clear_log();
        player->settle();
    }
    void act_seek(Time target) { act(player_event::seek, player_event::SeekRequest{SeekMode::Forward, 0, target, 0}); }
    void run_to(Time position)
    {
        scripted_engine::run_to(position);
        player->settle();
    }
    void use_key_frames() { player->combo("playback_combo_trickmode")->setCurrentIndex(1); }
    void allow_repeat()
    {
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        act(player_event::refresh_buttons);
    }
    void end_the_stream()
    {
        scripted_engine::set_automatic_reports(false);
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        player->settle();
        QVERIFY(player->in(&TavelVideo::end_of_stream_state));
    }

    /// The request is refused by the engine: @p calls and the notice's, and @p state is not left.
    void check_refused(int number, const QStringList& calls, TavelHsm::State state)
    {
        QStringList at_notice;
        bool stayed = false;
        player->at_next_notice([&] {
            at_notice = player->log();
            stayed = player->in(state);
        });
        act(number);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QVERIFY(stayed);
        const qsizetype handled = at_notice.indexOf(QStringLiteral("playlist remove_now_playing"));
        COMPARE_CALLS(at_notice.mid(0, handled), calls);
    }

    static QStringList leave_bar_scan()
    {
        return {"time_bar set_enable", "hide TIME", "move 0 192 TIME", "window display_information [ PLAY ]"};
    }

    static void directions()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("forward");
        QTest::newRow("forward") << 2015 << "[ FAST FORWARD ]" << true;
        QTest::newRow("back") << 2016 << "[ FAST REWIND ]" << false;
    }
    static void trick_modes()
    {
        QTest::addColumn<bool>("key_frames");
        QTest::newRow("bar") << false;
        QTest::newRow("key frames") << true;
    }

    call_recorder::Recording recording;
    QString file;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartCallsPlayingTest)
#include "tst_chart_calls_playing.moc"
