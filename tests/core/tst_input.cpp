#include "device_screen.h"
#include "dic_dialog.h"
#include "player_test.h"
#include "q_select_edit.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>

/// Keys, skin buttons and taps, as they come from the host's window.
class InputTest : public CountingPlayerTest
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        CountingPlayerTest::cleanup();
        TitleSkin::set_dictionary_program(QString());
    }

    // ---- keys with the controls hidden

    void tab_shows_the_hidden_controls()
    {
        play_in_full_screen();
        player->click(Qt::Key_Tab);
        player->settle();
        QCOMPARE(counter->numbers, QList<int>({2107}));
        QVERIFY(!player->window()->is_full_screen());
    }

    void return_and_enter_pause_and_play_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
        QTest::newRow("space acts as return") << int(Qt::Key_Space);
    }
    void return_and_enter_pause_and_play()
    {
        QFETCH(int, key);
        play_in_full_screen();
        player->click(key);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        player->click(key);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_held_return_does_not_toggle()
    {
        play_in_full_screen();
        player->press(Qt::Key_Return, true);
        player->press(Qt::Key_Return, true);
        player->settle();
        QVERIFY(!counter->numbers.contains(int(player_event::pause)));
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void left_released_early_skips_back_by_the_skip_time()
    {
        play_in_full_screen();
        scripted_engine::run_to(9000);
        player->settle();
        counter->numbers.clear();
        player->press(Qt::Key_Left);
        player->settle();
        QVERIFY(counter->seeks.isEmpty());
        QVERIFY(player->timer("long_key_timer")->isActive());
        QCOMPARE(player->timer("long_key_timer")->interval(), 1000);
        player->release(Qt::Key_Left);
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Backward);
        QCOMPARE(counter->seeks[0].reserved, 0U);
        // The target stays as computed; the chart brings it inside the film.
        QCOMPARE(counter->seeks[0].target_ms, Time(-1000));
        QVERIFY(player->informs(QStringLiteral("[ SEEK ]")));
        QVERIFY(!player->timer("long_key_timer")->isActive());
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 0")));
    }

    void right_released_early_skips_forward_by_the_chosen_skip_time()
    {
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("60000"));
        play_in_full_screen();
        player->combo("playback_combo_seektime")->setCurrentIndex(1);
        scripted_engine::run_to(2000);
        player->settle();
        player->click(Qt::Key_Right);
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Forward);
        QCOMPARE(counter->seeks[0].target_ms, Time(17000));
        QVERIFY(player->informs(QStringLiteral("[ SEEK ]")));
    }

    void a_held_left_or_right_scans_once_and_the_release_does_nothing_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("number");
        QTest::newRow("left") << int(Qt::Key_Left) << 2016;
        QTest::newRow("right") << int(Qt::Key_Right) << 2015;
    }
    void a_held_left_or_right_scans_once_and_the_release_does_nothing()
    {
        QFETCH(int, key);
        QFETCH(int, number);
        play_in_full_screen();
        scripted_engine::run_to(5000);
        player->press(key);
        for (int i = 0; i < 3; ++i) {
            // As a window system sends a held key.
            player->release(key, true);
            player->press(key, true);
        }
        QTRY_COMPARE_WITH_TIMEOUT(counter->count(number), 1, 10000);
        player->release(key);
        player->settle();
        QCOMPARE(counter->count(number), 1);
        QVERIFY(counter->seeks.isEmpty());
    }

    void a_second_key_takes_over_the_long_press()
    {
        play_in_full_screen();
        player->press(Qt::Key_Left);
        player->press(Qt::Key_Right);
        player->release(Qt::Key_Right);
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Forward);
        player->release(Qt::Key_Left);
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
    }

    void a_second_key_starts_the_long_press_anew()
    {
        play_in_full_screen();
        player->press(Qt::Key_Left);
        player->timer("long_key_timer")->start(100000);
        player->press(Qt::Key_Right);
        QVERIFY(player->timer("long_key_timer")->isActive());
        QVERIFY(player->timer("long_key_timer")->isSingleShot());
        QCOMPARE(player->timer("long_key_timer")->interval(), 1000);
    }

    void the_release_of_another_key_ends_a_long_press_without_a_skip()
    {
        play_in_full_screen();
        player->press(Qt::Key_Left);
        player->click(Qt::Key_F12);
        QVERIFY(!player->timer("long_key_timer")->isActive());
        player->release(Qt::Key_Left);
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
    }

    void a_release_after_the_long_press_leaves_the_next_press_alone()
    {
        play_in_full_screen();
        scripted_engine::run_to(5000);
        player->press(Qt::Key_Left);
        player->timer("long_key_timer")->start(0);
        QTRY_COMPARE(counter->count(player_event::scan_back), 1);
        player->release(Qt::Key_Left);
        player->post(player_event::play);
        player->settle();
        counter->seeks.clear();
        player->click(Qt::Key_Right);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Forward);
    }

    void left_and_right_are_no_skips_while_the_controls_are_shown()
    {
        play_with_controls();
        player->click(Qt::Key_Left);
        player->click(Qt::Key_Right);
        player->settle();
        QVERIFY(!player->timer("long_key_timer")->isActive());
        QVERIFY(counter->seeks.isEmpty());
    }

    void a_skip_is_not_made_when_the_controls_came_before_the_release()
    {
        play_in_full_screen();
        player->press(Qt::Key_Left);
        player->post(player_event::leave_full_screen);
        player->settle();
        player->release(Qt::Key_Left);
        player->settle();
        QVERIFY(counter->seeks.isEmpty());
    }

    void return_plays_on_from_a_scan()
    {
        play_in_full_screen();
        player->post(player_event::scan_forward);
        player->settle();
        QVERIFY(player->in(&TavelVideo::speed_playing_state));
        counter->numbers.clear();
        player->press(Qt::Key_Return);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers.value(0), int(player_event::play));
    }

    void a_held_key_of_the_hidden_controls_acts_once_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("tab") << int(Qt::Key_Tab);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }
    void a_held_key_of_the_hidden_controls_acts_once()
    {
        QFETCH(int, key);
        play_in_full_screen();
        for (int i = 0; i < 3; ++i) {
            QKeyEvent repeated(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
            player->window()->keyPressEvent(&repeated);
        }
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
    }

    void a_held_key_of_the_table_goes_on_acting()
    {
        play_in_full_screen();
        player->press(Qt::Key_F7);
        player->press(Qt::Key_F7, true);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers, QList<int>({2011, 2011}));
    }

    void left_and_right_do_nothing_where_seeking_is_not_allowed()
    {
        play_in_full_screen(QStringLiteral("MPEG"));
        player->click(Qt::Key_Left);
        player->click(Qt::Key_Right);
        player->settle();
        QVERIFY(counter->seeks.isEmpty());
        QVERIFY(!player->informs(QStringLiteral("[ SEEK ]")));
    }

    void up_and_down_do_nothing_without_a_tv()
    {
        play_in_full_screen();
        player->click(Qt::Key_Up);
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
        QCOMPARE(player->window()->y(), 104);
    }

    void up_and_down_move_the_controls_on_a_tv_data()
    {
        QTest::addColumn<bool>("full_screen");
        QTest::newRow("hidden") << true;
        QTest::newRow("shown") << false;
    }
    void up_and_down_move_the_controls_on_a_tv()
    {
        QFETCH(bool, full_screen);
        play_in_full_screen();
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        if (!full_screen) {
            player->post(player_event::leave_full_screen);
            player->settle();
        }
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
        player->click(Qt::Key_Down);
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 114);
        for (int i = 0; i < 13; ++i)
            player->click(Qt::Key_Up);
        // 120 is asked for; 100 is the last step that is taken.
        QCOMPARE(player->window()->y(), 4);
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 4);
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 4);
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 14);
    }

    void a_held_up_goes_on_moving_the_controls_of_a_tv()
    {
        play_in_full_screen();
        player->post(player_event::switch_screen);
        player->settle();
        player->press(Qt::Key_Up);
        player->press(Qt::Key_Up, true);
        player->press(Qt::Key_Up, true);
        player->release(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 74);
    }

    void up_and_down_move_nothing_on_a_tv_without_a_loaded_film()
    {
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        player->clear_log();
        player->click(Qt::Key_Up);
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->y(), 104);
        QVERIFY(player->log_of({"qcop QPE/TaskBar"}).isEmpty());
    }

    void up_and_down_go_to_an_open_list_before_they_move_the_controls_of_a_tv()
    {
        play_with_controls();
        player->post(player_event::switch_screen);
        player->settle();
        for (const char* panel : {"listopen", "bookmark_list"}) {
            player->control_event(panel);
            player->click(Qt::Key_Up);
            QCOMPARE(player->window()->y(), 104);
            QCOMPARE(player->window()->focusWidget()->objectName(), QStringLiteral("file_listbox"));
        }
        player->control_event("bookmark_list");
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->y(), 94);
    }

    // ---- the key table

    void a_key_with_an_event_is_taken_and_every_other_goes_the_toolkits_way_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("full_screen");
        QTest::addColumn<bool>("taken");
        const QList<int> taken{Qt::Key_Escape, Qt::Key_F2, Qt::Key_F4, Qt::Key_F5, Qt::Key_F7, Qt::Key_F9, Qt::Key_F10};
        const QList<int> others{Qt::Key_Tab,   Qt::Key_Return, Qt::Key_Enter, Qt::Key_Left,
                                Qt::Key_Right, Qt::Key_Up,     Qt::Key_Down,  TavelVideo::HIDE_CONTROLS_KEY,
                                Qt::Key_F1,    Qt::Key_F3,     Qt::Key_F6,    Qt::Key_F8,
                                Qt::Key_F11,   Qt::Key_A};
        for (const bool full_screen : {true, false})
            for (const int key : taken + others)
                QTest::addRow("%x %s", static_cast<unsigned int>(key), full_screen ? "hidden" : "shown")
                    << key << full_screen << taken.contains(key);
    }
    void a_key_with_an_event_is_taken_and_every_other_goes_the_toolkits_way()
    {
        QFETCH(int, key);
        QFETCH(bool, full_screen);
        QFETCH(bool, taken);
        if (full_screen)
            play_in_full_screen();
        QCOMPARE(player->window()->is_full_screen(), full_screen);
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        player->window()->keyPressEvent(&event);
        QCOMPARE(event.isAccepted(), taken);
    }

    void each_key_of_the_table_posts_its_event_in_both_modes_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("number");
        QTest::addColumn<bool>("full_screen");
        const QList<std::pair<int, int>> rows{{Qt::Key_Escape, 2007}, {Qt::Key_F2, 2004}, {Qt::Key_F4, 2002},
                                              {Qt::Key_F5, 2005},     {Qt::Key_F7, 2011}, {Qt::Key_F9, 2016},
                                              {Qt::Key_F10, 2015}};
        for (const bool full_screen : {true, false})
            for (const auto& [key, number] : rows)
                QTest::addRow("%d %s", number, full_screen ? "hidden" : "shown") << key << number << full_screen;
    }
    void each_key_of_the_table_posts_its_event_in_both_modes()
    {
        QFETCH(int, key);
        QFETCH(int, number);
        QFETCH(bool, full_screen);
        play_in_full_screen();
        if (!full_screen) {
            player->post(player_event::leave_full_screen);
            player->settle();
        }
        counter->numbers.clear();
        player->press(key);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->count(number), 1);
    }

    void the_device_key_hides_the_shown_controls_only()
    {
        play_in_full_screen();
        player->click(TavelVideo::HIDE_CONTROLS_KEY);
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
        player->post(player_event::leave_full_screen);
        player->settle();
        counter->numbers.clear();
        player->click(TavelVideo::HIDE_CONTROLS_KEY);
        player->settle();
        QCOMPARE(counter->numbers, QList<int>({2106}));
        QVERIFY(player->window()->is_full_screen());
    }

    void the_repeated_device_key_asks_for_hidden_controls_even_where_they_are_hidden()
    {
        play_in_full_screen();
        player->press(TavelVideo::HIDE_CONTROLS_KEY, true);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers, QList<int>({2106}));
        QVERIFY(player->window()->is_full_screen());
    }

    void a_key_is_handled_once_whatever_panel_has_the_focus()
    {
        play_with_controls();
        for (QWidget* panel : {static_cast<QWidget*>(player->control_bar()), static_cast<QWidget*>(player->window())}) {
            panel->setFocus();
            counter->numbers.clear();
            player->click(Qt::Key_F7);
            player->settle();
            QCOMPARE(counter->count(player_event::repeat_ab), 1);
        }
        player->control_event("listopen");
        player->playlist()->focus_filelist();
        counter->numbers.clear();
        player->click(Qt::Key_F7);
        player->settle();
        QCOMPARE(counter->count(player_event::repeat_ab), 1);
    }

    void each_panel_hands_its_keys_to_the_window_once_data()
    {
        QTest::addColumn<QString>("panel");
        for (const char* panel : {"VIDEO_CONTROL", "VIDEO_TITLE", "PLAYLIST", "BOOKMARK"})
            QTest::newRow(panel) << QString::fromLatin1(panel);
    }
    void each_panel_hands_its_keys_to_the_window_once()
    {
        QFETCH(QString, panel);
        play_with_controls();
        player->timer("menu_timer")->start(100000);
        auto* const receiver = player->window()->findChild<QWidget*>(panel);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_F7, Qt::NoModifier);
        QCoreApplication::sendEvent(receiver, &key);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers, QList<int>({2011}));
        // What comes after the handing over is done, too.
        QVERIFY(!player->timer("menu_timer")->isActive());
    }

    void escape_on_the_title_bar_closes_the_program()
    {
        play_with_controls();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(player->title_bar(), &key);
        player->settle();
        QCOMPARE(counter->count(player_event::close), 1);
    }

    // ---- list panels and keys

    void up_and_down_go_to_the_list_that_is_open()
    {
        play_with_controls();
        player->control_event("listopen");
        player->playlist()->setFocus();
        player->click(Qt::Key_Down);
        QCOMPARE(player->window()->focusWidget(),
                 player->playlist()->findChild<QWidget*>(QStringLiteral("file_listbox")));
        player->control_event("bookmark_list");
        player->bookmarks()->setFocus();
        player->click(Qt::Key_Up);
        QCOMPARE(player->window()->focusWidget(),
                 player->bookmarks()->findChild<QWidget*>(QStringLiteral("file_listbox")));
    }

    void escape_closes_the_open_playlist_and_nothing_else()
    {
        play_with_controls();
        player->control_event("listopen");
        QVERIFY(player->playlist()->isVisible());
        player->click(Qt::Key_Escape);
        player->settle();
        QVERIFY(!player->playlist()->isVisible());
        QCOMPARE(counter->count(player_event::close), 0);
        QCOMPARE(player->window()->focusWidget(), player->control_bar());
    }

    void escape_in_the_list_closes_the_panel_too()
    {
        play_with_controls();
        player->control_event("listopen");
        player->playlist()->focus_filelist();
        player->click(Qt::Key_Escape);
        player->settle();
        QVERIFY(!player->playlist()->isVisible());
        QCOMPARE(counter->count(player_event::close), 0);
    }

    void escape_closes_the_open_bookmarks_and_nothing_else()
    {
        play_with_controls();
        player->control_event("bookmark_list");
        QVERIFY(player->bookmarks()->isVisible());
        player->click(Qt::Key_Escape);
        player->settle();
        QVERIFY(!player->bookmarks()->isVisible());
        QCOMPARE(counter->count(player_event::close), 0);
    }

    void escape_on_a_hidden_list_panel_is_swallowed()
    {
        play_with_controls();
        for (QWidget* panel : {static_cast<QWidget*>(player->playlist()), static_cast<QWidget*>(player->bookmarks())}) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QCoreApplication::sendEvent(panel, &escape);
            player->settle();
            QCOMPARE(counter->count(player_event::close), 0);
        }
    }

    void escape_on_the_control_bar_closes_the_program()
    {
        play_with_controls();
        player->control_bar()->setFocus();
        player->click(Qt::Key_Escape);
        player->settle();
        QVERIFY(player->in(&TavelVideo::exit_state));
    }

    void escape_closes_the_file_manager_and_nothing_else()
    {
        play_with_controls();
        player->post(player_event::open_browser);
        player->settle();
        counter->numbers.clear();
        player->click(Qt::Key_Escape);
        player->settle();
        QVERIFY(!player->file_manager()->isVisible());
        QVERIFY(counter->numbers.isEmpty());
        // It may be hidden again now.
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(player->window()->is_full_screen());
    }

    void escape_on_the_file_managers_window_is_consumed()
    {
        play_with_controls();
        player->post(player_event::open_browser);
        player->settle();
        player->timer("menu_timer")->start(100000);
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QCoreApplication::sendEvent(player->file_manager(), &escape);
        QVERIFY(!player->file_manager()->isVisible());
        // Nobody else has seen it.
        QCOMPARE(player->timer("menu_timer")->interval(), 100000);
        QVERIFY(player->timer("menu_timer")->isActive());
    }

    // ---- buttons

    void each_button_of_the_table_posts_its_event_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("number");
        const QList<std::pair<const char*, int>> rows{
            {"play", 2000},       {"pause", 2001},        {"stop", 2002},        {"open", 2004},
            {"bookmark", 2009},   {"repeatA", 2011},      {"repeatB", 2011},     {"repeatAB", 2011},
            {"speed_down", 2012}, {"speed_normal", 2013}, {"speed_up", 2014},    {"mute", 2017},
            {"setting", 2005},    {"close", 2007},        {"pageup_long", 2015}, {"pagedown_long", 2016}};
        for (const auto& [button, number] : rows)
            QTest::newRow(button) << QString::fromLatin1(button) << number;
    }
    void each_button_of_the_table_posts_its_event()
    {
        QFETCH(QString, button);
        QFETCH(int, number);
        counter = std::make_unique<EventCounter>(player->window());
        emit player->control_bar()->button_clicked(player->control_bar(), button);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers.value(0), number);
        QCOMPARE(player->window()->button_event(button), static_cast<unsigned int>(number));
    }

    void a_button_without_a_meaning_posts_nothing()
    {
        counter = std::make_unique<EventCounter>(player->window());
        emit player->title_bar()->button_clicked(player->title_bar(), QStringLiteral("nonsense"));
        QCoreApplication::sendPostedEvents(player->window());
        QVERIFY(counter->numbers.isEmpty());
    }

    void the_buttons_taken_by_name_share_a_number_that_they_do_not_post()
    {
        for (const char* name : {"pageup", "pagedown", "listopen"})
            QCOMPARE(player->window()->button_event(QLatin1String(name)), 3010U);
        QCOMPARE(player->window()->button_event(QStringLiteral("bookmark_list")), 2010U);
    }

    void page_up_skips_forward()
    {
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QStringLiteral("60000"));
        play_with_controls();
        scripted_engine::run_to(1000);
        player->control_event("pageup");
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Forward);
        QCOMPARE(counter->seeks[0].target_ms, Time(11000));
        QVERIFY(player->informs(QStringLiteral("[ SKIP FORWARD ]")));
    }

    void page_down_skips_backward()
    {
        play_with_controls();
        scripted_engine::run_to(9500);
        player->control_event("pagedown");
        player->settle();
        QCOMPARE(counter->seeks.size(), 1);
        QCOMPARE(counter->seeks[0].mode, SeekMode::Backward);
        QCOMPARE(counter->seeks[0].target_ms, Time(-500));
        QVERIFY(player->informs(QStringLiteral("[ SKIP BACKWARD ]")));
    }

    void where_seeking_is_not_allowed_page_up_does_nothing_and_page_down_posts_3010()
    {
        play_in_full_screen(QStringLiteral("MPEG"));
        counter->numbers.clear();
        player->control_event("pageup");
        QCoreApplication::sendPostedEvents(player->window());
        QVERIFY(counter->numbers.isEmpty());
        QVERIFY(!player->informs(QStringLiteral("[ SKIP FORWARD ]")));
        player->control_event("pagedown");
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter->numbers, QList<int>({3010}));
        QVERIFY(!player->informs(QStringLiteral("[ SKIP BACKWARD ]")));
    }

    void list_buttons_open_and_close_their_panels()
    {
        play_with_controls();
        player->control_event("listopen");
        QVERIFY(player->playlist()->isVisible());
        player->control_event("bookmark_list");
        QVERIFY(player->bookmarks()->isVisible());
        QVERIFY(!player->playlist()->isVisible());
        player->control_event("bookmark_list");
        QVERIFY(!player->bookmarks()->isVisible());
        player->control_event("listopen");
        player->control_event("listopen");
        QVERIFY(!player->playlist()->isVisible());
    }

    void the_dictionary_button_pauses_and_opens_the_dialog_with_the_last_subtitle()
    {
        QTemporaryFile program;
        QVERIFY(program.open());
        TitleSkin::set_dictionary_program(program.fileName());
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "a word"}});
        play_with_controls();
        QCOMPARE(player->title_bar()->button(QStringLiteral("dic"))->state(), SkinButton::State::Normal);
        scripted_engine::run_to(2000);
        player->settle();
        QString shown;
        bool paused = false;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&] {
            if (auto* const dialog = player->window()->findChild<DicDialog*>(); dialog && dialog->isVisible()) {
                shown = dialog->m_SubtitleEdit->toPlainText();
                paused = player->in(&TavelVideo::pause_state);
                if (paused)
                    dialog->accept();
            }
        });
        look.start(5);
        player->control_event("dic");
        QCOMPARE(shown, QStringLiteral("a word"));
        QVERIFY(paused);
        QVERIFY(!player->window()->findChild<DicDialog*>());
    }

    // ---- taps

    void a_tap_hides_the_shown_controls_and_shows_the_hidden_ones()
    {
        play_in_full_screen();
        player->tap(QPoint(240, 130));
        player->settle();
        QCOMPARE(counter->numbers, QList<int>({2107}));
        QVERIFY(!player->window()->is_full_screen());
        counter->numbers.clear();
        player->tap(QPoint(400, 50));
        player->settle();
        QCOMPARE(counter->numbers, QList<int>({2106}));
        QVERIFY(player->window()->is_full_screen());
    }

    void a_tap_on_a_text_counts_as_a_tap_on_the_picture()
    {
        play_in_full_screen();
        player->seek_to(1000);
        player->settle();
        QVERIFY(player->information()->isVisible());
        counter->numbers.clear();
        player->tap(player->information()->geometry().center());
        player->settle();
        QCOMPARE(counter->count(player_event::leave_full_screen), 1);
        counter->numbers.clear();
        player->tap(QPoint(240, 120));
        player->settle();
        QCOMPARE(counter->count(player_event::enter_full_screen), 1);
    }

    // ---- notices

    void a_key_takes_a_notice_down_and_does_nothing_else()
    {
        play_in_full_screen();
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(QStringLiteral("/a"), i);
        bool taken_down = false;
        player->at_next_notice([&] {
            player->click(Qt::Key_Escape);
            taken_down = !player->notice()->isVisible();
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(taken_down);
        player->settle();
        QCOMPARE(counter->count(player_event::close), 0);
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    // ---- focus

    void the_focus_follows_what_is_shown()
    {
        play_in_full_screen();
        QCOMPARE(player->window()->focusWidget(), player->window());
        player->post(player_event::leave_full_screen);
        player->settle();
        QCOMPARE(player->window()->focusWidget(), player->control_bar());
        player->control_event("listopen");
        player->post(player_event::enter_full_screen);
        player->settle();
        player->post(player_event::leave_full_screen);
        player->settle();
        QVERIFY(player->playlist()->isVisible());
        QCOMPARE(player->window()->focusWidget(), player->playlist());
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, InputTest)
#include "tst_input.moc"
