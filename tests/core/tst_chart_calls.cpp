#include "call_recorder.h"
#include "chart_calls.h"
#include "device_screen.h"
#include "player.h"
#include "printed_text.h"
#include "qpe_application.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QtNetwork/QTcpSocket>
#include <QtWidgets/QComboBox>

using namespace chart_calls;

/// Each action of the states that choose, stop and load a film, by the calls it makes, in their order.
class ChartCallsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(files_directory.isValid()); }
    void cleanup()
    {
        player.reset();
        qunsetenv("TAVEL_DIGITAL_OUT");
    }

    // ---- initial

    void the_start_makes_its_calls_in_their_order()
    {
        player = std::make_unique<Player>();
        const QStringList log = player->log();
        const qsizetype begin = log.indexOf(QStringLiteral("bar showFocus play"));
        const QStringList expected{
            // The pseudo-state
            "window reset_repeatAB",
            "bar showFocus play",
            "bar hideButton pause",
            "bar disableButton stop",
            "bar disableButton pageup",
            "bar disableButton pagedown",
            "hide BOOKMARK",
            "hide FILEMANAGER",
            "time_bar set_disable",
            "hide PLAYLIST",
            "playlist update_now_playing 0",
            "bar showFocus play",
            // video_player_state, get_file_state
            "MediaPlayer",
            "post 2101 -1 0",
            // The first word on the socket
            "socket HIDE",
        };
        COMPARE_CALLS(log.mid(begin - 1, expected.size()), expected);
        QCOMPARE(log.indexOf(QStringLiteral("socket HIDE")), begin - 1 + expected.size() - 1);
        QVERIFY(log.indexOf(QStringLiteral("fb /dev/fb0 enable 0")) < begin);
        // Before that: the window was shown with its controls, which is told to the task bar.
        QVERIFY(log.lastIndexOf(QStringLiteral("show subtitle_control")) < begin);
    }

    // ---- get_file_state

    void a_now_playing_entry_is_loaded_from_where_it_was()
    {
        start_stopped(2, 1, 4500);
        // The window may be activated meanwhile.
        const QStringList log = without_activation(player->log());
        COMPARE_CALLS(log.mid(log.indexOf(QStringLiteral("playlist load_now_playing"))),
                      QStringList({"playlist load_now_playing", "post 2100 1 4500", "activate tavel_video",
                                   "-> file_parsed_state"}) +
                          enter_file_parsed(1, files[1], 4500) + enter_stop());
    }

    // ---- no_file_state

    void without_an_entry_everything_is_put_to_nothing()
    {
        start_stopped(1);
        act(player_event::load_and_play, player_event::EntryRequest{-1, 0});
        COMPARE_CALLS(player->log(), QStringList("-> no_file_state") + leave_file_parsed() + enter_no_file());
    }

    void a_reload_in_no_file_state_asks_for_the_stored_entry()
    {
        start_stopped(1);
        act(player_event::unload);
        COMPARE_CALLS(player->log(), QStringList("-> no_file_state") + leave_file_parsed() + enter_no_file());
        act(player_event::reload);
        COMPARE_CALLS(player->log(), QStringList({"post 2100", "-> file_parsed_state"}) +
                                         enter_file_parsed(0, files[0]) + enter_stop());
    }

    void a_reload_elsewhere_does_nothing()
    {
        start_stopped(1);
        act(player_event::reload);
        COMPARE_CALLS(player->log(), QStringList());
    }

    // ---- video_player_state

    void opening_the_browser_goes_step_by_step_data() { controls_data(); }
    void opening_the_browser_goes_step_by_step()
    {
        QFETCH(bool, hidden);
        start_stopped(1);
        if (hidden)
            play();
        act(player_event::open_browser);
        QStringList expected{"window leave_full_screen"};
        if (hidden)
            expected += "qcop QPE/System showTaskBar(QString) tavel_video";
        expected += "show FILEMANAGER";
        // The window is no longer the active one.
        expected += "qcop QPE/System showTaskBar(QString) tavel_video";
        expected += QStringList{"raise FILEMANAGER", "activate FILEMANAGER", "setFocus FILEMANAGER"};
        COMPARE_CALLS(player->log(), expected);
    }

    void the_controls_stay_beside_an_open_window_when_a_film_is_loaded_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("browser") << 2004;
        QTest::newRow("settings") << 2005;
    }
    void the_controls_stay_beside_an_open_window_when_a_film_is_loaded()
    {
        QFETCH(int, number);
        start_stopped(1);
        act(number);
        DeviceScreen::instance()->activate(player->window());
        play();
        QVERIFY(!player->window()->is_full_screen());
    }

    void opening_the_settings_goes_step_by_step()
    {
        start_stopped(1);
        play();
        act(player_event::open_settings);
        COMPARE_CALLS(
            player->log(),
            QStringList({"window leave_full_screen", "qcop QPE/System showTaskBar(QString) tavel_video", "set_aspect 0",
                         "fb /dev/fb1 enable 0", "set_video_window 12 64 221 126", "fb /dev/fb1 enable 1",
                         "show VIDEO SETTING", "qcop QPE/System showTaskBar(QString) tavel_video",
                         "raise VIDEO SETTING", "activate VIDEO SETTING", "setFocus VIDEO SETTING"}));
    }

    void opening_the_settings_on_the_tv_places_the_film_beside_the_moved_window()
    {
        start_stopped(1);
        player->post(player_event::switch_screen);
        player->settle();
        play();
        player->click(Qt::Key_Up);
        player->click(Qt::Key_Up);
        player->settle();
        act(player_event::open_settings);
        const QStringList log = player->log();
        QVERIFY2(log.contains(QStringLiteral("set_video_window 93 142 221 126")), qPrintable(describe(log)));
        QVERIFY(log.indexOf(QStringLiteral("set_video_window 93 142 221 126")) >
                log.indexOf(QStringLiteral("fb /dev/fb1 enable 0")));
    }

    void once_the_settings_are_closed_the_controls_can_be_hidden_again()
    {
        start_stopped(1);
        play();
        act(player_event::open_settings);
        act(player_event::settings_closed);
        COMPARE_CALLS(player->log(), QStringList());
        player->settings()->hide();
        DeviceScreen::instance()->activate(player->window());
        act(player_event::enter_full_screen);
        QVERIFY(player->window()->is_full_screen());
    }

    void closing_and_flushing_end_the_program_step_by_step_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<bool>("playing");
        QTest::newRow("close while stopped") << 2007 << false;
        QTest::newRow("flush while stopped") << 2008 << false;
        QTest::newRow("close while playing") << 2007 << true;
        QTest::newRow("flush while playing") << 2008 << true;
    }
    void closing_and_flushing_end_the_program_step_by_step()
    {
        QFETCH(int, number);
        QFETCH(bool, playing);
        start_stopped(1);
        if (playing)
            play();
        player->control_bar()->set_volume(27);
        scripted_engine::run_to(4000);
        player->settle();
        act(number);
        QStringList expected{
            "close",
            "window switch_spdif_off",
            "settings set_volume 27",
            "settings save_settings",
            "settings clear_information",
            "-> exit_state",
        };
        if (playing)
            expected += QStringList("settings set_playing 0") + leave_file_loaded(4000);
        expected += leave_file_parsed() + QStringList{"release", "~MediaPlayer", "quit"};
        COMPARE_CALLS(player->log(), expected);
        QVERIFY(player->in(&TavelVideo::exit_state));
    }

    void the_machine_rests_in_exit_state()
    {
        start_stopped(1);
        act(player_event::close);
        for (int number = 2000; number <= 3010; ++number)
            if (number != player_event::subtitle_redraw && number != player_event::time_display)
                player->post(number);
        player->clear_log();
        player->settle();
        COMPARE_CALLS(player->log(), QStringList());
    }

    void a_load_request_opens_the_entry_or_none_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("load") << 2100;
        QTest::newRow("load and play") << 2101;
    }
    void a_load_request_opens_the_entry_or_none()
    {
        QFETCH(int, number);
        start_stopped(2);
        act(number, player_event::EntryRequest{1, 3000});
        if (number == player_event::load) {
            COMPARE_CALLS(player->log(), QStringList("-> file_parsed_state") + leave_file_parsed() +
                                             enter_file_parsed(1, files[1], 3000) + enter_stop());
        } else {
            COMPARE_CALLS(player->log().mid(0, loading_from_stop(1, 3000).size()), loading_from_stop(1, 3000));
            QVERIFY(player->in(&TavelVideo::play_state));
        }
        act(number, player_event::EntryRequest{2, 0});
        QVERIFY(player->in(&TavelVideo::no_file_state));
        QCOMPARE(player->log().filter(QStringLiteral("-> ")), QStringList("-> no_file_state"));
    }

    void the_buttons_are_refreshed_and_the_sound_is_muted_in_any_state()
    {
        start_stopped(1);
        act(player_event::refresh_buttons);
        COMPARE_CALLS(player->log(), QStringList({"window update_buttons"}));
        act(player_event::mute);
        COMPARE_CALLS(player->log(), QStringList({"bar set_mute 1"}));
        act(player_event::mute);
        COMPARE_CALLS(player->log(), QStringList({"bar set_mute 0"}));
    }

    // ---- file_parsed_state

    void a_chosen_file_is_asked_for_its_picture_container_and_length()
    {
        start_stopped(1);
        const QStringList questions = scripted_engine::full_log().filter(QStringLiteral("_info "));
        COMPARE_CALLS(questions.filter(QRegularExpression(QStringLiteral("^(has|get)_info"))).mid(0, 3),
                      QStringList({"has_info video", "get_info container name", "get_info video time"}));
        const QStringList log = scripted_engine::full_log();
        QVERIFY(log.indexOf("open " + files[0]) < log.indexOf(QStringLiteral("has_info video")));
        QVERIFY(log.indexOf(QStringLiteral("has_info video")) <
                log.indexOf("title set_filename " + QFileInfo(files[0]).fileName()));
        QVERIFY(log.indexOf("title set_filename " + QFileInfo(files[0]).fileName()) <
                log.indexOf(QStringLiteral("get_info container name")));
        QVERIFY(log.indexOf(QStringLiteral("get_info video time")) <
                log.indexOf(QStringLiteral("settings set_player 1")));
    }

    void a_cursor_that_is_nowhere_goes_to_the_row_that_was_playing()
    {
        start_stopped(3, 1);
        {
            const call_recorder::WithoutCursor nowhere;
            act(player_event::load, player_event::EntryRequest{2, 0});
        }
        COMPARE_CALLS(player->log(), QStringList("-> file_parsed_state") + leave_file_parsed() +
                                         QStringList("playlist set_current_index 1") + enter_file_parsed(2, files[2]) +
                                         enter_stop());
        QCOMPARE(player->playlist()->get_now_playing(), 2);
    }

    void an_mpeg_file_disables_the_time_bar_and_starts_from_0()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("name"), QStringLiteral("MPEG"));
        start_stopped(1, 0, 4500);
        const QStringList log = player->log();
        QStringList expected = enter_file_parsed(0, files[0], 0);
        expected[expected.indexOf(QStringLiteral("playlist save_now_playing 0"))] = "playlist save_now_playing 4500";
        expected[expected.indexOf(QStringLiteral("time_bar set_enable"))] = "time_bar set_disable";
        COMPARE_CALLS(log.mid(log.indexOf(QStringLiteral("playlist set_now_playing 0")), expected.size()), expected);
    }

    void a_file_name_without_a_slash_is_the_title_as_it_stands()
    {
        start_stopped(1);
        player->playlist()->add_track(QStringLiteral("film of tomorrow.avi"));
        act(player_event::load, player_event::EntryRequest{1, 0});
        QVERIFY(player->log().contains(QStringLiteral("title set_filename film of tomorrow.avi")));
    }

    void the_crash_guard_goes_step_by_step()
    {
        start_stopped(2);
        act(player_event::unload);
        // What a killed player would have left behind.
        player->playlist()->start_entry();
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::load, player_event::EntryRequest{0, 2000});
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        COMPARE_CALLS(
            up_to_notice(at_notice),
            QStringList({"-> file_parsed_state", "playlist set_now_playing 0", "playlist update_now_playing 1",
                         "playlist save_now_playing 2000", "playlist can_entry", "playlist remove_now_playing",
                         "playlist set_now_playing 0", "post 2102", "playlist save_now_playing 0",
                         "window show_notice A system error occured while attempting"}));
        // Nothing was opened before the file that takes the place of the one set aside.
        const QStringList after = without_activation(player->log().mid(at_notice.size()));
        COMPARE_CALLS(after.mid(0, 1 + enter_stop().size() + 1),
                      QStringList("post 2002") + enter_stop() + QStringList("-> get_file_state"));
        QCOMPARE(player->log_of({"open "}), QStringList("open " + files[1]));
    }

    void a_file_that_does_not_open_is_marked_and_reported_and_nothing_else()
    {
        start_stopped(2, 0);
        scripted_engine::set_next_result(QStringLiteral("open"), rask::not_a_film);
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::load, player_event::EntryRequest{1, 0});
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QStringList entry = enter_file_parsed(1, files[1]);
        entry = entry.mid(0, entry.indexOf("open " + files[1]) + 2);
        COMPARE_CALLS(up_to_notice(at_notice), QStringList("-> file_parsed_state") + leave_file_parsed() + entry +
                                                   QStringList({"playlist set_now_playing 1", "post 3000"}) +
                                                   enter_stop() + failure_steps(0) +
                                                   QStringList("window show_notice CAN NOT EXECUTE FILE."));
    }

    void a_failure_says_whether_the_file_is_gone_data()
    {
        QTest::addColumn<bool>("gone");
        QTest::addColumn<QString>("notice");
        QTest::newRow("there") << false << "CAN NOT EXECUTE FILE.";
        QTest::newRow("gone") << true << "FILE NOT FOUND.";
    }
    void a_failure_says_whether_the_file_is_gone()
    {
        QFETCH(bool, gone);
        QFETCH(QString, notice);
        start_stopped(2, 0, 4500);
        if (gone)
            QFile::remove(files[0]);
        QStringList at_notice;
        player->at_next_notice([&] {
            at_notice = player->log();
            QVERIFY(player->in(&TavelVideo::stop_state));
            QCOMPARE(player->window()->position(), Time(0));
        });
        player->clear_log();
        scripted_engine::report_error(7);
        QTRY_COMPARE(player->notices(), QStringList(notice));
        COMPARE_CALLS(up_to_notice(at_notice), failure_steps(0) + QStringList("window show_notice " + notice));
        // The next film starts at its beginning: the place of the one that is gone is not its own.
        player->settle();
        QCOMPARE(player->window()->position(), Time(0));
    }

    void closing_the_chosen_file_leaves_it_and_loads_now_playing()
    {
        start_stopped(1, 0, 4500);
        act(player_event::close_file);
        COMPARE_CALLS(player->log(),
                      QStringList("-> get_file_state") + leave_file_parsed() +
                          QStringList({"playlist load_now_playing", "post 2100 0 4500", "-> file_parsed_state"}) +
                          enter_file_parsed(0, files[0], 4500) + enter_stop());
    }

    // ---- stop_state

    void play_in_stop_state_loads_the_file_that_is_there()
    {
        start_stopped(1);
        act(player_event::play);
        COMPARE_CALLS(player->log(), QStringList("-> file_loaded_state") + enter_file_loaded() + end_of_wait() +
                                         load_and_show(files[0]) + after_start());
    }

    void play_in_stop_state_on_a_missing_file_reports_it()
    {
        start_stopped(1);
        QFile::remove(files[0]);
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::play);
        QTRY_COMPARE(player->notices().size(), 1);
        COMPARE_CALLS(up_to_notice(at_notice),
                      QStringList("post 3000") + failure_steps(-1) + QStringList("window show_notice FILE NOT FOUND."));
    }

    void a_stop_that_is_owed_an_answer_is_answered_in_stop_state()
    {
        start_stopped(1);
        act(player_event::stop);
        COMPARE_CALLS(player->log(), QStringList());
        player->clear_log();
        player->window()->receive_socket_message(QStringLiteral("NAVI_START"));
        COMPARE_CALLS(player->log(), QStringList("post 2002"));
        // By the request itself, not by what comes after it.
        QCoreApplication::sendPostedEvents(player->window(), player_event::stop);
        COMPARE_CALLS(player->log(), QStringList({"post 2002", "socket OK"}));
        player->settle();
        act(player_event::stop);
        COMPARE_CALLS(player->log(), QStringList());
    }

    void a_stop_that_is_owed_an_answer_is_answered_on_entering_stop_state()
    {
        start_stopped(1);
        play();
        player->window()->receive_socket_message(QStringLiteral("NAVI_START"));
        player->clear_log();
        player->settle();
        COMPARE_CALLS(player->log(), QStringList({"-> stop_state", "settings set_playing 0"}) + leave_file_loaded(0) +
                                         enter_stop() +
                                         QStringList({"socket OK", "open " + files[0], "settings refresh_subtitle",
                                                      "settings update_information", "time_bar set_slidervalue 0"}));
    }

    void a_seek_in_stop_state_moves_the_slider_alone()
    {
        start_stopped(1);
        act(player_event::seek, player_event::SeekRequest{SeekMode::Forward, 0, 6700, 0});
        COMPARE_CALLS(player->log(), QStringList("time_bar set_slidervalue 6"));
        QCOMPARE(player->window()->position(), Time(6700));
        act(player_event::play);
        QVERIFY(player->log().contains(QStringLiteral("post 2003 3 6700")));
    }

    // ---- file_loaded_state

    void a_running_navigation_program_has_the_file_closed_and_nothing_else_done()
    {
        start_stopped(1);
        QCopChannel navigation("QPE/Brevaton/navi");
        player->at_next_notice();
        act(player_event::play);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        // The notice takes the window's place and gives it back.
        const QStringList log = without_activation(player->log());
        const QStringList expected{"-> file_loaded_state", "window is_navi_activated", "post 2102",
                                   "-> get_file_state"};
        COMPARE_CALLS(log.mid(0, expected.size()), expected);
        COMPARE_CALLS(log.mid(expected.size()),
                      leave_file_loaded(0, Controls::Shown) + leave_file_parsed() +
                          QStringList({"playlist load_now_playing", "post 2100 0 0", "-> file_parsed_state"}) +
                          enter_file_parsed(0, files[0]) + enter_stop());
    }

    void a_file_without_a_picture_is_not_loaded()
    {
        start_stopped(2, 0);
        scripted_engine::set_next_result(QStringLiteral("open"), rask::no_video);
        QStringList at_notice;
        player->at_next_notice([&] {
            at_notice = player->log();
            QVERIFY(player->in(&TavelVideo::file_loaded_state));
        });
        act(player_event::load_and_play, player_event::EntryRequest{1, 0});
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QStringList entry = enter_file_parsed(1, files[1]);
        entry = entry.mid(0, entry.indexOf("open " + files[1]) + 2);
        COMPARE_CALLS(up_to_notice(at_notice),
                      QStringList("-> file_loaded_state") + leave_file_parsed() + entry +
                          QStringList({"playlist set_now_playing 1", "post 3000", "window is_navi_activated"}) +
                          failure_steps(0) + QStringList("window show_notice CAN NOT EXECUTE FILE."));
    }

    void the_number_of_recipients_is_printed()
    {
        start_stopped(1);
        QTcpSocket first;
        QTcpSocket second;
        connect_peer(first);
        connect_peer(second);
        PrintedText printed;
        act(player_event::play);
        const QByteArray text = printed.take();
        QVERIFY2(text.contains("SEND STOP: 2\n"), text.constData());
        QCOMPARE(text.count("SEND STOP"), 1);
    }

    void each_step_of_the_wait_asks_for_the_next_one()
    {
        start_stopped(1);
        QTcpSocket peer;
        connect_peer(peer);
        player->post(player_event::play);
        QTRY_VERIFY(player->log().count(QStringLiteral("wait 10")) > 2);
        QVERIFY(player->in(&TavelVideo::file_loaded_state));
        const QStringList log = player->log();
        const qsizetype first = log.indexOf(QStringLiteral("post 3009"));
        COMPARE_CALLS(log.mid(first, 5), QStringList({"post 3009", "wait 10", "post 3009", "wait 10", "post 3009"}));
        peer.write("OK\n");
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        const QStringList rest =
            player->log().mid(first).filter(QRegularExpression(QStringLiteral("^(?!.*(3009|wait 10))")));
        const QStringList expected = end_of_wait().mid(1) + load_and_show(files[0]);
        COMPARE_CALLS(rest.mid(0, expected.size()), expected);
    }

    void a_film_with_digital_sound_says_so_at_the_end_of_its_start()
    {
        start_stopped(1);
        qputenv("TAVEL_DIGITAL_OUT", "1");
        player->combo("sound_combo_spdif")->setCurrentIndex(0);
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("channels"), QStringLiteral("6"));
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::play);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("SPDIF 5.1CH OUT.")));
        COMPARE_CALLS(
            up_to_notice(at_notice).mid(at_notice.indexOf(QStringLiteral("hide NOW LOADING"))),
            QStringList({"hide NOW LOADING", "window show_resolution_warning", "window show_notice SPDIF 5.1CH OUT."}));
        // Leaving the film switches the digital output off, between the controls and the screen saver.
        player->settle();
        act(player_event::stop);
        const QStringList log = player->log();
        const qsizetype off = log.indexOf(QStringLiteral("window switch_spdif_off"));
        COMPARE_CALLS(log.mid(off - 1, 4),
                      QStringList({"qcop QPE/System showTaskBar(QString) tavel_video", "window switch_spdif_off",
                                   "set_option 1 0", "qcop QPE/System releaseLCDOff()"}));
    }

    void a_loading_that_fails_returns_to_stop_without_showing_anything_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::newRow("open") << "open";
        QTest::newRow("prepare") << "prepare";
        QTest::newRow("play") << "play";
    }
    void a_loading_that_fails_returns_to_stop_without_showing_anything()
    {
        QFETCH(QString, operation);
        start_stopped(1);
        scripted_engine::set_next_result(operation, rask::engine_failed);
        QStringList at_notice;
        player->at_next_notice([&] { at_notice = player->log(); });
        act(player_event::play);
        QTRY_COMPARE(player->notices().size(), 1);
        QStringList loading = load_and_show(files[0]);
        const QRegularExpression failing(operation + QStringLiteral(".*"));
        // "open" is followed by what the window does with any opening.
        loading = loading.mid(0, loading.indexOf(failing) + (operation == QStringLiteral("open") ? 2 : 1));
        COMPARE_CALLS(up_to_notice(at_notice),
                      QStringList("-> file_loaded_state") + enter_file_loaded() + end_of_wait() + loading +
                          QStringList({"post 3000", "-> stop_state"}) + leave_file_loaded(0) + enter_stop() +
                          failure_steps(-1) + QStringList("window show_notice CAN NOT EXECUTE FILE."));
    }

    void the_settings_of_the_film_reach_the_engine_while_it_is_loaded()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("audio_streams"), QStringLiteral("2"));
        start_stopped(1);
        player->combo("display_combo_aspect_ratio")->setCurrentIndex(0);
        player->settings()->findChild<QSlider*>(QStringLiteral("color_slider_red"))->setValue(10);
        player->settings()->findChild<QSlider*>(QStringLiteral("color_slider_blue"))->setValue(30);
        const int aspect = player->settings()->get_aspect_ratio();
        act(player_event::play);
        const QStringList log = player->log();
        QVERIFY(log.contains(QStringLiteral("set_parameter 4 10 50 30")));
        QCOMPARE(log.count(QStringLiteral("set_aspect %1").arg(aspect)), 2);
        player->combo("sound_combo_audiotrack")->setCurrentIndex(1);
        act(player_event::audio_track);
        COMPARE_CALLS(player->log(), QStringList("select_stream 2 2"));
        act(player_event::picture_colour);
        COMPARE_CALLS(player->log(), QStringList("set_parameter 4 10 50 30"));
        act(player_event::reset_display);
        COMPARE_CALLS(player->log(), QStringList({"window reset_display", "set_video_window 0 0 480 272",
                                                  QStringLiteral("set_aspect %1").arg(aspect)}));
        act(player_event::reload_subtitles);
        COMPARE_CALLS(player->log(), QStringList("window reload_subtitles"));
    }

    void requests_of_a_loaded_film_are_for_nobody_else_data()
    {
        QTest::addColumn<int>("number");
        for (const int number : {2201, 2203, 2204, 2205, 2202, 2107, 2105, 3009, 3004, 3005, 3006, 3002, 3003,
                                 3007, 2001, 2006, 2009, 2010, 2011, 2012, 2013, 2014, 2015, 2016, 2106, 3010})
            QTest::addRow("%d", number) << number;
    }
    void requests_of_a_loaded_film_are_for_nobody_else()
    {
        QFETCH(int, number);
        start_stopped(1);
        act(number);
        COMPARE_CALLS(player->log(), QStringList());
        QVERIFY(player->in(&TavelVideo::stop_state));
        act(player_event::unload);
        act(number);
        COMPARE_CALLS(player->log(), QStringList());
        QVERIFY(player->in(&TavelVideo::no_file_state));
    }

    void a_load_request_while_loaded_is_swallowed()
    {
        start_stopped(2);
        play();
        act(player_event::load, player_event::EntryRequest{1, 9000});
        COMPARE_CALLS(player->log(), QStringList());
    }

    void full_screen_is_left_by_request_whether_on_or_not()
    {
        start_stopped(1);
        play();
        act(player_event::leave_full_screen);
        COMPARE_CALLS(player->log(),
                      QStringList({"window leave_full_screen", "qcop QPE/System showTaskBar(QString) tavel_video"}));
        act(player_event::leave_full_screen);
        COMPARE_CALLS(player->log(), QStringList("window leave_full_screen"));
    }

    void a_replay_request_asks_for_the_now_playing_entry_from_here()
    {
        start_stopped(2, 1);
        play();
        scripted_engine::run_to(4000);
        player->settle();
        act(player_event::replay);
        const QStringList expected =
            QStringList({"post 2101 1 4000", "-> file_loaded_state", "settings set_playing 0"}) +
            leave_file_loaded(4000) + leave_file_parsed() + enter_file_parsed(1, files[1], 4000) + enter_file_loaded() +
            end_of_wait() + load_and_show(files[1], 4000);
        COMPARE_CALLS(player->log().mid(0, expected.size()), expected);
    }

    void a_loaded_film_given_up_is_taken_up_from_where_it_was()
    {
        start_stopped(1);
        play();
        scripted_engine::run_to(4000);
        player->settle();
        act(player_event::unload);
        COMPARE_CALLS(player->log(), QStringList({"-> no_file_state", "settings set_playing 0"}) +
                                         leave_file_loaded(4000) + leave_file_parsed() + enter_no_file());
        act(player_event::reload);
        COMPARE_CALLS(player->log(), QStringList({"post 2100", "-> file_parsed_state"}) +
                                         enter_file_parsed(0, files[0], 4000) + enter_stop());
    }

    void leaving_a_film_on_the_tv_puts_the_controls_back()
    {
        start_stopped(1);
        player->post(player_event::switch_screen);
        player->settle();
        play();
        player->click(Qt::Key_Up);
        player->settle();
        act(player_event::stop);
        const QStringList log = player->log();
        const qsizetype moved = log.indexOf(QStringLiteral("window move_controls 0"));
        COMPARE_CALLS(log.mid(moved - 1, 4),
                      QStringList({"window close_subtitles", "window move_controls 0",
                                   "qcop QPE/TaskBar move(int,int) 80 356", "window leave_full_screen"}));
    }

    void a_close_that_fails_is_printed_and_keeps_the_media_information()
    {
        start_stopped(1);
        play();
        scripted_engine::set_next_result(QStringLiteral("close"), 0x1234);
        PrintedText printed;
        act(player_event::stop);
        const QByteArray text = printed.take();
        QVERIFY2(text.contains("File Close Error = 0x00001234 \n"), text.constData());
        const QStringList log = player->log();
        const qsizetype close = log.indexOf(QStringLiteral("close"));
        QCOMPARE(log.value(close + 1), QStringLiteral("bar showFocus play"));
        QVERIFY(!log.contains(QStringLiteral("settings clear_information")));
    }

    void each_close_that_fails_is_printed_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("the file is given up") << 2302;
        QTest::newRow("the application is closed") << 2007;
    }
    void each_close_that_fails_is_printed()
    {
        QFETCH(int, number);
        start_stopped(1);
        scripted_engine::set_next_result(QStringLiteral("close"), 0x1234);
        PrintedText printed;
        act(number);
        const QByteArray text = printed.take();
        QCOMPARE(text.count("File Close Error = 0x00001234 \n"), 1);
        QVERIFY(player->log().contains(QStringLiteral("settings clear_information")));
    }

    // ---- load_movie

    void a_film_on_the_tv_fills_the_tv()
    {
        start_stopped(1);
        player->post(player_event::switch_screen);
        player->settle();
        act(player_event::play);
        QCOMPARE(player->log_of({"set_video_window"}),
                 QStringList({"set_video_window 0 0 640 480", "set_video_window 0 0 640 480"}));
    }

    void the_chosen_subtitle_track_is_fetched_data()
    {
        QTest::addColumn<int>("tracks");
        QTest::addColumn<int>("choice");
        QTest::addColumn<QString>("question");
        QTest::newRow("none") << 0 << -1 << QString();
        QTest::newRow("first") << 8 << 0 << "get_subtitles 0";
        QTest::newRow("last") << 8 << 7 << "get_subtitles 7";
        QTest::newRow("beyond the last") << 9 << 8 << QString();
    }
    void the_chosen_subtitle_track_is_fetched()
    {
        QFETCH(int, tracks);
        QFETCH(int, choice);
        QFETCH(QString, question);
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"),
                                  QString::number(tracks));
        start_stopped(1);
        player->combo("subtitle_combo_track")->setCurrentIndex(choice);
        QCOMPARE(player->combo("subtitle_combo_track")->currentIndex(), choice);
        act(player_event::play);
        const QStringList log = scripted_engine::full_log();
        const QStringList asked =
            log.mid(log.indexOf(QStringLiteral("set_parameter 4 50 50 50"))).filter(QStringLiteral("get_subtitles"));
        QCOMPARE(asked.value(0), question);
        QVERIFY(log.lastIndexOf(QStringLiteral("settings refresh_subtitle")) <
                log.indexOf(QStringLiteral("select_stream 2 1")));
    }

private:
    void start_stopped(int count, int now_playing = 0, unsigned int position_ms = 0)
    {
        files.clear();
        for (int i = 0; i < count; ++i) {
            files.append(files_directory.filePath(QStringLiteral("film %1.avi").arg(i)));
            QFile file(files.last());
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        player = std::make_unique<Player>(Player::Device{{}, files, now_playing, position_ms});
        player->settle();
    }
    void play()
    {
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->clear_log();
    }
    /// Posts an event and lets everything happen that it leads to; the log begins with what it does.
    void act(int number, std::any payload = {})
    {
        player->post(number, std::move(payload));
        player->clear_log();
        player->settle();
    }

    static QStringList enter_no_file()
    {
        return {
            "bar showFocus open",     "window disable_playback_buttons", "title set_filename ",
            "window close_subtitles", "time_bar set_slidervalue 0",      "settings clear_information",
        };
    }
    /// The calls up to the last notice; showing it takes the window's place, which is told to the task bar.
    static QStringList up_to_notice(const QStringList& log)
    {
        return log.mid(0, log.lastIndexOf(QRegularExpression(QStringLiteral("window show_notice.*"))) + 1);
    }
    /// Without what a notice leads to by taking the window's place and giving it back.
    static QStringList without_activation(const QStringList& log)
    {
        return log.filter(QRegularExpression(QStringLiteral("^(?!.*(TaskBar|socket HIDE))")));
    }
    /// @param next the row that is now playing once the file is out of the list
    static QStringList failure_steps(int next)
    {
        return {
            "playlist remove_now_playing",
            QStringLiteral("playlist set_now_playing %1").arg(next),
            "post 2102",
            "playlist save_now_playing 0",
            "time_bar set_slidervalue 0",
        };
    }
    QStringList loading_from_stop(int index, unsigned int position_ms) const
    {
        return QStringList("-> file_loaded_state") + leave_file_parsed() +
               enter_file_parsed(index, files[index], position_ms) + enter_file_loaded() + end_of_wait() +
               load_and_show(files[index], position_ms);
    }
    /// The engine's own report of the start.
    static QStringList after_start() { return {"window show_subtitle_due"}; }

    static void controls_data()
    {
        QTest::addColumn<bool>("hidden");
        QTest::newRow("controls hidden") << true;
        QTest::newRow("controls shown") << false;
    }

    void connect_peer(QTcpSocket& peer)
    {
        const int before = player->window()->socket()->peer_count();
        peer.connectToHost(QHostAddress::LocalHost, player->window()->socket()->port());
        QTRY_COMPARE(peer.state(), QAbstractSocket::ConnectedState);
        QTRY_COMPARE(player->window()->socket()->peer_count(), before + 1);
    }

    call_recorder::Recording recording;
    QTemporaryDir files_directory;
    QStringList files;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartCallsTest)
#include "tst_chart_calls.moc"
