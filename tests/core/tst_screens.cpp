#include "config.h"
#include "device_screen.h"
#include "global.h"
#include "player_test.h"
#include "printed_text.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>

/// LCD and TV, controls and full screen, warnings about the film, digital sound.
class ScreensTest : public PlayerTest
{
    Q_OBJECT

private slots:
    void init()
    {
        qunsetenv("TAVEL_TV");
        qunsetenv("TAVEL_DIGITAL_OUT");
        PlayerTest::init();
    }
    void cleanup()
    {
        PlayerTest::cleanup();
        qunsetenv("TAVEL_TV");
        qunsetenv("TAVEL_DIGITAL_OUT");
    }

    // ---- the switch

    void the_switch_to_the_tv_goes_step_by_step()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        const QStringList expected{
            "pause",
            "fb /dev/fb1 enable 0",
            "fb /dev/fb2 enable 0",
            "wait 1000",
            "screen V28_ScreenSetTvMode",
            "wait 1000",
            "fb /dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1",
            "wait 1000",
            "fb /dev/fb1 size 640 480",
            "wait 1000",
            "qcop QPE/System hideTaskBar(QString) tavel_video",
            "set_video_window 0 0 640 480",
            "set_aspect 1",
            "wait 1000",
            "play",
            "wait 1000",
            "fb /dev/fb1 enable 1",
        };
        QVERIFY2(player->log() == expected, qPrintable(describe(player->log())));
        QVERIFY(player->window()->is_tv_out());
        QVERIFY(player->window()->is_full_screen());
        QVERIFY(player->subtitle()->isWindow());
        QVERIFY(player->subtitle()->isVisible());
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 376, 640, 124));
        QCOMPARE(player->window()->geometry(), QRect(80, 104, 480, 272));
        QVERIFY(player->timer("window_timer")->isActive());
        QCOMPARE(player->timer("window_timer")->interval(), 500);
        QVERIFY(DeviceScreen::instance()->is_active(player->window()));
        QCOMPARE(DeviceScreen::instance()->output(), DeviceScreen::Output::Tv);
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void the_switch_back_to_the_lcd_goes_step_by_step()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
        player->clear_log();
        player->post(player_event::switch_screen);
        player->settle();
        const QStringList expected{
            "pause",
            "fb /dev/fb1 enable 0",
            "fb /dev/fb2 enable 0",
            "wait 1000",
            "qcop QPE/TaskBar move(int,int) 80 356",
            "wait 1000",
            "screen V28_ScreenSetLcdMode",
            "wait 1000",
            "fb /dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1",
            "wait 1000",
            "fb /dev/fb1 size 480 272",
            "wait 1000",
            "qcop QPE/System setBacklight(int) 255",
            "qcop QPE/System hideTaskBar(QString) tavel_video",
            "set_video_window 0 0 480 272",
            "set_aspect 1",
            "wait 1000",
            "play",
            "wait 1000",
            "fb /dev/fb1 enable 1",
        };
        QVERIFY2(player->log() == expected, qPrintable(describe(player->log())));
        QVERIFY(!player->window()->is_tv_out());
        QVERIFY(!player->subtitle()->isWindow());
        QCOMPARE(player->subtitle()->parentWidget(), player->window());
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 80, 480, 180));
        QCOMPARE(player->window()->geometry(), QRect(80, 104, 480, 272));
        QVERIFY(!player->timer("window_timer")->isActive());
    }

    void the_switch_takes_six_seconds_to_the_tv_and_seven_back()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->log_of({"wait 1000"}).size(), 6);
        player->clear_log();
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->log_of({"wait 1000"}).size(), 7);
    }

    void a_film_that_the_viewer_paused_stays_paused()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->log_of({"play", "pause"}).isEmpty());
        QVERIFY(player->in(&TavelVideo::pause_state));
    }

    void a_picture_hidden_for_privacy_stays_hidden()
    {
        player->play_a_film();
        player->combo("display_combo_privacy_mode")->setCurrentIndex(0);
        player->post(player_event::pause);
        player->settle();
        player->clear_log();
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->log_of({"fb /dev/fb1 enable"}).last(), QStringLiteral("fb /dev/fb1 enable 0"));
    }

    void a_scan_is_left_before_the_switch()
    {
        player->play_a_film();
        player->combo("playback_combo_trickmode")->setCurrentIndex(1);
        player->post(player_event::scan_forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        player->clear_log();
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log_of({"play", "pause"}), QStringList({"play", "pause", "play"}));
    }

    void an_end_during_the_switch_is_acted_on_after_it()
    {
        player->play_a_film();
        player->combo("playback_combo_next_action")->setCurrentIndex(2);
        EventCounter counter(player->window());
        PrintedText printed;
        bool in_play = false;
        int ends_during = -1;
        int waits = 0;
        Global::set_sleeper([&](std::chrono::microseconds) {
            if (++waits != 3)
                return;
            scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
            scripted_engine::report_state(PlayerState::Stopped);
            QCoreApplication::sendPostedEvents(player->window());
            in_play = player->in(&TavelVideo::play_state);
            ends_during = counter.count(player_event::end_of_stream);
        });
        player->post(player_event::switch_screen);
        player->settle();
        const QByteArray text = printed.take();
        QVERIFY(in_play);
        QCOMPARE(ends_during, 0);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(counter.count(player_event::end_of_stream), 1);
        QCOMPARE(text.count("EOS!!!\n"), 1);
    }

    void of_the_engines_reports_during_the_switch_only_a_start_is_acted_on()
    {
        player->play_a_film();
        EventCounter counter(player->window());
        int waits = 0;
        Global::set_sleeper([&](std::chrono::microseconds) {
            if (++waits != 3)
                return;
            scripted_engine::report_state(PlayerState::Paused);
            scripted_engine::report_state(PlayerState::Prepared);
            scripted_engine::report_stream(static_cast<StreamType>(1), StreamState::Ended);
            scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        });
        scripted_engine::set_automatic_reports(false);
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(waits, 6);
        QCOMPARE(counter.numbers, QList<int>({2300, 3006}));
    }

    void the_panels_come_back_as_they_were()
    {
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        player->control_event("listopen");
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->playlist()->isVisible());
        QVERIFY(player->control_bar()->isVisible());
        QVERIFY(player->title_bar()->isVisible());
    }

    void the_controls_come_out_on_the_other_screen_where_another_window_keeps_them_from_hiding()
    {
        player->play_a_film();
        QVERIFY(player->window()->is_full_screen());
        QWidget other;
        other.resize(40, 40);
        other.show();
        DeviceScreen::instance()->activate(&other);
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->control_bar()->isVisible());
        QVERIFY(player->title_bar()->isVisible());
        QVERIFY(player->timer("menu_timer")->isActive());
    }

    void each_list_panel_comes_back_after_the_switch_data() { list_panels(); }
    void each_list_panel_comes_back_after_the_switch()
    {
        QWidget* const list = play_beside_list();
        for (int i = 0; i < 2; ++i) {
            player->post(player_event::switch_screen);
            player->settle();
            QVERIFY(list->isVisible());
            QVERIFY(!player->window()->is_full_screen());
        }
        QCOMPARE(player->subtitle()->width(), list == player->playlist() ? 288 : 268);
    }

    void the_subtitles_window_on_the_tv_goes_with_the_player()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        const QPointer<SubtitleControl> subtitle(player->subtitle());
        QVERIFY(subtitle->isWindow());
        player.reset();
        QVERIFY(!subtitle);
    }

    void the_subtitle_on_the_tv_is_a_window_that_takes_no_keys()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(!player->subtitle()->parentWidget());
        QVERIFY(player->subtitle()->windowFlags().testFlag(Qt::FramelessWindowHint));
        QCOMPARE(player->subtitle()->focusPolicy(), Qt::NoFocus);
        QVERIFY(player->subtitle()->isEnabled());
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->subtitle()->focusPolicy(), Qt::NoFocus);
        QVERIFY(player->subtitle()->isEnabled());
        QVERIFY(player->subtitle()->isVisible());
    }

    void reports_before_and_after_the_switch_are_acted_on()
    {
        player->play_a_film();
        scripted_engine::set_automatic_reports(false);
        player->post(player_event::switch_screen);
        player->settle();
        EventCounter counter(player->window());
        scripted_engine::report_state(PlayerState::Paused);
        player->settle();
        QCOMPARE(counter.count(player_event::engine_paused), 1);
    }

    void the_chosen_shape_is_kept_on_both_screens_data()
    {
        QTest::addColumn<int>("choice");
        QTest::newRow("full screen") << 0;
        QTest::newRow("original") << 1;
    }
    void the_chosen_shape_is_kept_on_both_screens()
    {
        QFETCH(int, choice);
        player->play_a_film();
        player->combo("display_combo_aspect_ratio")->setCurrentIndex(choice);
        const QString shape = QStringLiteral("set_aspect %1").arg(player->settings()->get_aspect_ratio());
        for (const char* place : {"set_video_window 0 0 640 480", "set_video_window 0 0 480 272"}) {
            player->clear_log();
            player->post(player_event::switch_screen);
            player->settle();
            QCOMPARE(player->log_of({"set_"}), QStringList({QString::fromLatin1(place), shape}));
            player->clear_log();
            player->window()->reset_display();
            QCOMPARE(player->log(), QStringList({QString::fromLatin1(place), shape}));
        }
    }

    void the_task_bar_and_the_subtitle_move_with_the_controls()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        player->clear_log();
        player->click(Qt::Key_Up);
        player->click(Qt::Key_Down);
        player->click(Qt::Key_Down);
        QCOMPARE(player->log(),
                 QStringList({"qcop QPE/TaskBar move(int,int) 80 346", "qcop QPE/TaskBar move(int,int) 80 356",
                              "qcop QPE/TaskBar move(int,int) 80 366"}));
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 386, 640, 124));
        QCOMPARE(player->window()->geometry(), QRect(80, 114, 480, 272));
        // Downwards there is no limit, upwards the step to 110 is kept but not taken.
        for (int i = 0; i < 40; ++i)
            player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 514);
        for (int i = 0; i < 41 + 11; ++i)
            player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 4);
        player->clear_log();
        player->click(Qt::Key_Down);
        QCOMPARE(player->log(), QStringList(QStringLiteral("qcop QPE/TaskBar move(int,int) 80 256")));
        QCOMPARE(player->window()->y(), 4);
    }

    void back_on_the_lcd_the_controls_start_from_their_place_again()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        for (int i = 0; i < 3; ++i)
            player->click(Qt::Key_Up);
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->settings()->y(), 104);
        QCOMPARE(player->file_manager()->y(), 104);
        player->post(player_event::switch_screen);
        player->settle();
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
    }

    void after_a_stop_on_the_tv_the_controls_start_from_their_place_again()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        for (int i = 0; i < 3; ++i)
            player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 74);
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(player->window()->y(), 104);
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
    }

    void a_tv_at_the_start_is_taken_at_once()
    {
        player.reset();
        qputenv("TAVEL_TV", "1");
        player = std::make_unique<Player>();
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        QCOMPARE(player->log_of({"screen"}), QStringList(QStringLiteral("screen V28_ScreenSetTvMode")));
    }

    void films_on_the_tv_fill_it()
    {
        player->post(player_event::switch_screen);
        player->settle();
        player->clear_log();
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log_of({"set_video_window"}),
                 QStringList({"set_video_window 0 0 640 480", "set_video_window 0 0 640 480"}));
        player->clear_log();
        player->post(player_event::open_settings);
        player->settle();
        QCOMPARE(player->log_of({"set_video_window"}), QStringList(QStringLiteral("set_video_window 93 162 221 126")));
    }

    void the_settings_picture_is_filled_on_the_other_screen_too()
    {
        player->play_a_film();
        player->post(player_event::open_settings);
        player->settle();
        for (const QStringList& expected : {QStringList{"set_video_window 0 0 640 480", "set_aspect 1", "set_aspect 0",
                                                        "set_video_window 93 162 221 126"},
                                            QStringList{"set_video_window 0 0 480 272", "set_aspect 1", "set_aspect 0",
                                                        "set_video_window 12 64 221 126"}}) {
            player->clear_log();
            player->post(player_event::switch_screen);
            player->settle();
            QVERIFY2(player->log_of({"set_"}) == expected, qPrintable(describe(player->log())));
        }
    }

    void the_settings_picture_moves_with_the_controls_on_the_tv()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        player->click(Qt::Key_Up);
        player->click(Qt::Key_Up);
        player->clear_log();
        player->post(player_event::open_settings);
        player->settle();
        QCOMPARE(player->log_of({"set_video_window"}), QStringList(QStringLiteral("set_video_window 93 142 221 126")));
        QCOMPARE(player->settings()->pos(), QPoint(80, 84));
        QCOMPARE(player->file_manager()->pos(), QPoint(80, 84));
        QCOMPARE(player->subtitle()->y(), 356);
    }

    void stopping_on_the_tv_puts_the_controls_back()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(player->window()->y(), 104);
    }

    // ---- full screen

    void hidden_controls_are_all_hidden_and_shown_ones_all_shown()
    {
        player->play_a_film();
        const QList<QWidget*> controls{player->control_bar(), player->title_bar(), player->time_bar()};
        for (QWidget* each : controls)
            QVERIFY(!each->isVisible());
        QVERIFY(player->subtitle()->isVisible());
        QVERIFY(player->information()->isVisible());
        QCOMPARE(player->information()->pos(), QPoint(0, 0));
        player->clear_log();
        player->post(player_event::leave_full_screen);
        player->settle();
        for (QWidget* each : controls)
            QVERIFY(each->isVisible());
        QCOMPARE(player->information()->pos(), QPoint(0, 26));
        QCOMPARE(player->log(), QStringList(QStringLiteral("qcop QPE/System showTaskBar(QString) tavel_video")));
        QVERIFY(player->timer("menu_timer")->isActive());
        QCOMPARE(player->window()->size(), QSize(480, 272));
    }

    void the_controls_stay_while_the_file_manager_is_open()
    {
        player->play_a_film();
        player->post(player_event::open_browser);
        player->settle();
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->control_bar()->isVisible());
    }

    void the_information_text_moves_and_keeps_its_size()
    {
        player->play_a_film();
        const QSize size = player->information()->size();
        QCOMPARE(player->information()->geometry(), QRect(QPoint(0, 0), size));
        player->post(player_event::leave_full_screen);
        player->settle();
        QCOMPARE(player->information()->geometry(), QRect(QPoint(0, 26), size));
        QVERIFY(player->information()->isVisible());
    }

    void a_list_panel_hidden_with_the_controls_comes_back_with_them_data() { list_panels(); }
    void a_list_panel_hidden_with_the_controls_comes_back_with_them()
    {
        QWidget* const list = play_beside_list();
        const QRect beside = player->subtitle()->geometry();
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!list->isVisible());
        player->post(player_event::leave_full_screen);
        player->settle();
        QVERIFY(list->isVisible());
        QCOMPARE(player->subtitle()->geometry(), beside);
        QCOMPARE(player->window()->focusWidget(), list);
    }

    void the_controls_stay_while_a_film_is_loaded_beside_the_settings()
    {
        player->play_a_film();
        player->post(player_event::open_settings);
        player->settle();
        player->hand_over(player->make_files(2));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->settings()->isVisible());
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->control_bar()->isVisible());
    }

    void a_retry_is_printed()
    {
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        QWidget other;
        other.resize(40, 40);
        other.show();
        DeviceScreen::instance()->activate(&other);
        PrintedText printed;
        player->post(player_event::enter_full_screen);
        player->settle();
        QCOMPARE(printed.take(), QByteArray("tavel video main widget is not active window. so retry fullscreen\n"));
    }

    void no_retry_is_made_where_the_menu_stays()
    {
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        player->combo("display_combo_menutime")->setCurrentIndex(0);
        player->timer("menu_timer")->stop();
        QWidget other;
        other.resize(40, 40);
        other.show();
        DeviceScreen::instance()->activate(&other);
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(!player->timer("menu_timer")->isActive());
    }

    void the_controls_stay_while_another_window_is_active_and_it_is_tried_again()
    {
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        QWidget other;
        other.resize(40, 40);
        other.show();
        DeviceScreen::instance()->activate(&other);
        player->timer("menu_timer")->stop();
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(!player->window()->is_full_screen());
        QVERIFY(player->control_bar()->isVisible());
        QVERIFY(player->timer("menu_timer")->isActive());
        other.hide();
        player->timer("menu_timer")->start(0);
        QTRY_VERIFY(player->window()->is_full_screen());
    }

    // ---- the film's demands

    void large_films_of_demanding_codecs_are_warned_about_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("warned");
        for (const char* codec : {"WMV7", "WMV8", "MS Mpeg 4 v1", "MS Mpeg 4 v2", "MS Mpeg 4 v3"}) {
            QTest::addRow("%s large", codec) << QString::fromLatin1(codec) << 640 << 360 << true;
            QTest::addRow("%s of the LCD's size", codec) << QString::fromLatin1(codec) << 480 << 272 << false;
        }
        QTest::newRow("one column too many") << "WMV8" << 481 << 272 << true;
        QTest::newRow("one row too many") << "WMV8" << 480 << 273 << true;
        QTest::newRow("another codec") << "H.264" << 640 << 360 << false;
    }
    void large_films_of_demanding_codecs_are_warned_about()
    {
        QFETCH(QString, codec);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, warned);
        const QString video = QStringLiteral("video");
        scripted_engine::set_info(video, QStringLiteral("name"), codec);
        scripted_engine::set_info(video, QStringLiteral("width"), QString::number(width));
        scripted_engine::set_info(video, QStringLiteral("height"), QString::number(height));
        player->at_next_notice();
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        if (warned)
            QTRY_COMPARE(player->notices(),
                         QStringList(QStringLiteral("This video has a resolution\ngreater than 480*360 and is not\n"
                                                    "guaranteed to play back properly.")));
        player->settle();
        QCOMPARE(player->notices().size(), warned ? 1 : 0);
    }

    void digital_sound_needs_channels_a_cable_and_the_setting_data()
    {
        QTest::addColumn<QString>("channels");
        QTest::addColumn<bool>("cable");
        QTest::addColumn<bool>("setting");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<bool>("active");
        QTest::newRow("all there") << "6" << true << true << false << true;
        QTest::newRow("five channels") << "5" << true << true << false << true;
        QTest::newRow("four channels") << "4" << true << true << false << false;
        QTest::newRow("no number") << "many" << true << true << false << false;
        QTest::newRow("no cable") << "6" << false << true << false << false;
        QTest::newRow("not wanted") << "6" << true << false << false << false;
        QTest::newRow("refused by the engine") << "6" << true << true << true << false;
    }
    void digital_sound_needs_channels_a_cable_and_the_setting()
    {
        QFETCH(QString, channels);
        QFETCH(bool, cable);
        QFETCH(bool, setting);
        QFETCH(bool, refused);
        QFETCH(bool, active);
        qputenv("TAVEL_DIGITAL_OUT", cable ? "1" : "0");
        player->combo("sound_combo_spdif")->setCurrentIndex(setting ? 0 : 1);
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("channels"), channels);
        if (refused)
            scripted_engine::set_result(QStringLiteral("set_option"), rask::not_supported);
        player->at_next_notice();
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        if (active)
            QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("SPDIF 5.1CH OUT.")));
        player->settle();
        QCOMPARE(player->notices().size(), active ? 1 : 0);
        QCOMPARE(spdif_in_the_configuration(), active);
        QCOMPARE(player->log().contains(QStringLiteral("set_option 1 1")), active || refused);
        player->post(player_event::stop);
        player->settle();
        QVERIFY(!spdif_in_the_configuration());
        QCOMPARE(player->log().contains(QStringLiteral("set_option 1 0")), active);
    }

    void an_engine_that_does_not_start_is_a_playback_failure()
    {
        qputenv("TAVEL_DIGITAL_OUT", "1");
        player->combo("sound_combo_spdif")->setCurrentIndex(0);
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("channels"), QStringLiteral("6"));
        scripted_engine::set_next_result(QStringLiteral("initialize"), rask::engine_failed);
        player->at_next_notice();
        player->hand_over(player->make_files(1));
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        player->settle();
        QVERIFY(player->log_of({"set_option 1 1"}).isEmpty());
    }

private:
    static void list_panels()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("panel");
        QTest::newRow("playlist") << QStringLiteral("listopen") << QStringLiteral("PLAYLIST");
        QTest::newRow("bookmarks") << QStringLiteral("bookmark_list") << QStringLiteral("BOOKMARK");
    }
    /// Opens the list panel of the test's row beside a film.
    QWidget* play_beside_list()
    {
        QFETCH(QString, button);
        QFETCH(QString, panel);
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        player->control_event(qPrintable(button));
        return player->window()->findChild<QWidget*>(panel);
    }
    static bool spdif_in_the_configuration()
    {
        Config sound(QStringLiteral("Sound"));
        sound.setGroup(QStringLiteral("System"));
        return sound.readBoolEntry(QStringLiteral("spdif"));
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ScreensTest)
#include "tst_screens.moc"
