#include "global.h"
#include "player.h"
#include "qpe_application.h"
#include "test_main.h"

/// The states around choosing a file: start, no file, chosen and stopped, failures, the crash guard, closing.
class ChartFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { player.reset(); }

    void an_empty_playlist_ends_in_no_file_state_with_open_focused()
    {
        player = std::make_unique<Player>();
        QVERIFY(player->in(&TavelVideo::get_file_state));
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        QVERIFY(player->in(&TavelVideo::video_player_state));
        QVERIFY(player->in(&TavelVideo::top));
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("open"));
        QVERIFY(!player->shows("pause"));
        for (const char* name : {"play", "stop", "pageup", "pagedown"})
            QCOMPARE(player->state_of(QLatin1String(name)), SkinButton::State::Disabled);
        QVERIFY(player->playlist()->isHidden());
        QVERIFY(player->bookmarks()->isHidden());
        QVERIFY(player->file_manager()->isHidden());
    }

    void the_engine_is_made_at_the_start_and_released_at_the_end()
    {
        player = std::make_unique<Player>();
        player->settle();
        QCOMPARE(scripted_engine::players(), 1);
        QCOMPARE(player->log().filter(QStringLiteral("MediaPlayer")).size(), 1);
        player.reset();
        QCOMPARE(scripted_engine::players(), 0);
    }

    void the_stored_now_playing_entry_is_opened_and_rests_stopped()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 1, 4500});
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->log().contains(QStringLiteral("open ") + files[1]));
        QCOMPARE(player->log().filter(QStringLiteral("open ")).size(), 1);
        QVERIFY(!player->log().contains(QStringLiteral("play")));
        QCOMPARE(player->window()->position(), Time(4500));
        QCOMPARE(player->time_bar()->get_slidervalue(), 4U);
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("play"));
        QCOMPARE(player->state_of("stop"), SkinButton::State::Disabled);
        QVERIFY(!player->shows("pause"));
        QCOMPARE(player->playlist()->get_current_index(), 1);
        QVERIFY(player->window()->is_seek_allowed());
    }

    void an_mpeg_file_starts_from_0_and_cannot_be_sought_in()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 1);
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("name"), QStringLiteral("MPEG"));
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 4500});
        player->settle();
        QVERIFY(!player->window()->is_seek_allowed());
        QCOMPARE(player->window()->position(), Time(0));
        QCOMPARE(player->time_bar()->get_slidervalue(), 0U);
    }

    void play_loads_the_file_step_by_step()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 1);
        player = std::make_unique<Player>(Player::Device{{{QStringLiteral("audio/volume"), 17}}, files, 0, 0});
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        const QStringList expected{
            // entering file_loaded_state
            "set_application_volume 17",
            "qcop QPE/Applet/screenchage videoWindowActivate(unsigned char) 1",
            "qcop QPE/System hideTaskBar(QString) tavel_video",
            "qcop QPE/System preventLCDOff()",
            // everybody else is silent
            "wait 10",
            "wait 0.01",
            "initialize",
            // load_movie
            "set_video_window 0 0 480 272",
            "set_aspect 1",
            "open " + files[0],
            "prepare " + files[0],
            "set_video_window 0 0 480 272",
            "set_aspect 1",
            "play",
            "set_parameter 4 50 50 50",
            "select_stream 2 1",
            // shown
            "fb /dev/fb1 enable 1",
            "set_application_volume 17",
        };
        QVERIFY2(player->log() == expected, qPrintable(describe(player->log())));
        QVERIFY(player->window()->is_full_screen());
        QVERIFY(!player->shows("play"));
        QCOMPARE(player->control_bar()->focusButton()->name(), QStringLiteral("pause"));
        QCOMPARE(player->state_of("stop"), SkinButton::State::Normal);
        QCOMPARE(player->state_of("pageup"), SkinButton::State::Normal);
        QCOMPARE(player->state_of("pagedown"), SkinButton::State::Normal);
        QVERIFY(player->loading()->isHidden());
        QVERIFY(player->subtitle()->isVisible());
    }

    void the_loading_text_is_up_until_the_film_plays()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1)});
        player->settle();
        QVERIFY(player->loading()->isHidden());
        int seen = 0;
        Global::set_sleeper([&](std::chrono::microseconds) {
            if (player->in(&TavelVideo::file_loaded_state) && player->loading()->isVisible())
                ++seen;
        });
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(seen, 2);
        QVERIFY(player->loading()->isHidden());
    }

    void a_stored_position_is_sought_once_playback_has_started()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1), 0, 4500});
        player->settle();
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->log().contains(QStringLiteral("seek 3 4500")));
        QVERIFY(player->log().indexOf(QStringLiteral("play")) < player->log().indexOf(QStringLiteral("seek 3 4500")));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    void a_stop_that_comes_before_the_stored_position_is_sought_holds()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1), 0, 4500});
        player->settle();
        // The stop is posted when the film is about to be started, the seek when it has been.
        bool stopped = false;
        EventCounter counter(player->window(), [&](int number) {
            if (number == player_event::play && player->in(&TavelVideo::file_loaded_state) &&
                !std::exchange(stopped, true))
                player->post(player_event::stop);
        });
        player->post(player_event::play);
        QTRY_COMPARE(counter.count(player_event::seek), 1);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->window()->position(), Time(0));
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QVERIFY(player->log_of({"seek"}).isEmpty());
    }

    void play_on_a_deleted_file_reports_it_and_stays_stopped()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        QFile::remove(files[0]);
        player->clear_log();
        bool stopped = false;
        player->at_next_notice([&] { stopped = player->in(&TavelVideo::stop_state); });
        player->post(player_event::play);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("FILE NOT FOUND.")));
        QVERIFY(stopped);
        QVERIFY(!player->log().contains(QStringLiteral("play")));
        player->settle();
        // The file is out of the list, the next one is chosen.
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), files[1]);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->log().contains(QStringLiteral("open ") + files[1]));
    }

    void a_file_that_does_not_open_is_taken_out_with_a_notice()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>();
        player->settle();
        scripted_engine::set_next_result(QStringLiteral("open"), rask::not_a_film);
        player->at_next_notice();
        player->hand_over(files);
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), files[1]);
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    void a_file_without_a_picture_is_refused()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>();
        player->settle();
        scripted_engine::remove_info(QStringLiteral("video"));
        player->at_next_notice();
        player->hand_over(real_files(directory, 1));
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        QCOMPARE(player->playlist()->get_count(), 0);
    }

    void a_failure_in_loading_returns_to_stop_and_is_reported_once_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::newRow("open") << "open";
        QTest::newRow("prepare") << "prepare";
        QTest::newRow("play") << "play";
    }
    void a_failure_in_loading_returns_to_stop_and_is_reported_once()
    {
        QFETCH(QString, operation);
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 3);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        scripted_engine::set_next_result(operation, rask::engine_failed);
        // The engine says the same once more, a little later.
        player->at_next_notice([] { scripted_engine::report_error(rask::engine_failed); });
        player->post(player_event::play);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QCOMPARE(player->notices(), QStringList(QStringLiteral("CAN NOT EXECUTE FILE.")));
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(!player->window()->is_full_screen());
    }

    void two_reports_of_one_failure_remove_one_file()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 3);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->at_next_notice([] { scripted_engine::report_error(7); });
        scripted_engine::report_error(7);
        scripted_engine::report_error(7);
        QTRY_COMPARE(player->notices().size(), 1);
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 2);
        QCOMPARE(player->notices().size(), 1);
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    void an_error_of_a_file_that_is_no_longer_open_harms_nothing()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        // The error is reported, but before the window acts on it the next file has been opened.
        player->post(player_event::load, player_event::EntryRequest{1, 0});
        scripted_engine::report_error(7);
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 2);
        QVERIFY(player->notices().isEmpty());
        QVERIFY(player->in(&TavelVideo::stop_state));
    }

    void the_crash_guard_sets_the_file_aside()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->playlist()->start_entry();
        player->post(player_event::close_file);
        player->settle();
        // Closing the chosen file has taken the note back: nothing is set aside.
        QCOMPARE(player->playlist()->get_count(), 2);
        player.reset();

        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->playlist()->start_entry();
        player->at_next_notice();
        QTRY_COMPARE(player->notices(), QStringList(QStringLiteral(
                                            "A system error occured while attempting\n to play the last video file.")));
        player->settle();
        QCOMPARE(player->playlist()->get_count(), 1);
        QCOMPARE(player->playlist()->get_filename(0), files[1]);
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(player->playlist()->can_entry() == false);
        QVERIFY(!player->log().contains(QStringLiteral("open ") + files[0]));
        QVERIFY(player->log().contains(QStringLiteral("open ") + files[1]));
    }

    void a_seek_while_stopped_moves_slider_and_start_only()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1), 0, 0});
        player->settle();
        player->clear_log();
        player->seek_to(6700);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY2(player->log().isEmpty(), qPrintable(describe(player->log())));
        QCOMPARE(player->time_bar()->get_slidervalue(), 6U);
        QCOMPARE(player->window()->position(), Time(6700));
        player->seek_to(99'000'000);
        player->settle();
        QCOMPARE(player->window()->position(), Time(10'000));
        player->seek_to(-5000, SeekMode::Backward);
        player->settle();
        QCOMPARE(player->window()->position(), Time(0));
        player->seek_to(3000);
        player->post(player_event::play);
        QTRY_VERIFY(player->log().contains(QStringLiteral("seek 3 3000")));
    }

    void closing_the_file_opens_the_now_playing_one_again()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 1);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->clear_log();
        player->post(player_event::close_file);
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->log_of({"close", "open"}), QStringList({"close", "open " + files[0]}));
    }

    void a_file_given_up_for_the_time_being_is_taken_up_where_it_was()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 1);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(4200);
        player->post(player_event::unload);
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        player->window()->reload_slot();
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QCOMPARE(player->window()->position(), Time(4200));
    }

    void a_load_request_without_a_file_of_that_number_leads_to_no_file()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1), 0, 0});
        player->settle();
        for (const int number : {int(player_event::load), int(player_event::load_and_play)}) {
            player->post(number, player_event::EntryRequest{7, 0});
            player->settle();
            QVERIFY(player->in(&TavelVideo::no_file_state));
        }
    }

    void a_load_request_is_swallowed_while_a_file_is_loaded_and_changes_nothing()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->clear_log();
        player->post(player_event::load, player_event::EntryRequest{1, 9000});
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->log().isEmpty());
        // A reload takes the entry that is stored: still the one that plays.
        player->post(player_event::unload);
        player->post(player_event::reload);
        player->settle();
        QVERIFY(player->log().contains(QStringLiteral("open ") + files[0]));
        QVERIFY(!player->log().contains(QStringLiteral("open ") + files[1]));
    }

    void choosing_another_file_while_one_plays_closes_it_and_plays_the_other()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 2);
        player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
        player->settle();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        scripted_engine::run_to(5000);
        player->clear_log();
        player->post(player_event::load_and_play, player_event::EntryRequest{1, 0});
        QTRY_VERIFY(player->log().contains(QStringLiteral("prepare ") + files[1]));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_now_playing(), 1);
        QCOMPARE(player->log_of({"open", "close"}),
                 QStringList({"close", "close", "open " + files[1], "open " + files[1]}));
    }

    void the_position_is_saved_at_the_end_of_the_program()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 1);
        for (const int number : {int(player_event::close), int(player_event::flush)}) {
            player = std::make_unique<Player>(Player::Device{{}, files, 0, 0});
            player->settle();
            player->post(player_event::play);
            QTRY_VERIFY(player->in(&TavelVideo::play_state));
            player->settle();
            scripted_engine::run_to(7300);
            player->clear_log();
            player->post(number);
            QTRY_VERIFY(player->in(&TavelVideo::exit_state));
            QVERIFY(player->log().contains(QStringLiteral("release")));
            QVERIFY(player->log().contains(QStringLiteral("close")));
            player.reset();
            player = std::make_unique<Player>(Player::Device{.keep_files = true});
            player->settle();
            QCOMPARE(player->window()->position(), Time(7300));
            player.reset();
        }
    }

    void nothing_brings_the_exit_state_back_to_life()
    {
        player = std::make_unique<Player>();
        player->settle();
        player->post(player_event::close);
        player->settle();
        for (int number = 2000; number <= 3010; ++number)
            player->post(number);
        player->settle();
        player->window()->change_video_out();
        player->window()->reset_display();
        player->window()->show_loading_screen();
        QVERIFY(player->in(&TavelVideo::exit_state));
    }

    void the_navigation_program_keeps_a_film_from_starting()
    {
        QTemporaryDir directory;
        player = std::make_unique<Player>(Player::Device{{}, real_files(directory, 1), 0, 0});
        player->settle();
        player->clear_log();
        QCopChannel navigation("QPE/Brevaton/navi");
        player->at_next_notice();
        player->post(player_event::play);
        QTRY_COMPARE(player->notices(),
                     QStringList(QStringLiteral("Navigation Application running!\nCan't Execute Video Player")));
        player->settle();
        QVERIFY(player->in(&TavelVideo::stop_state));
        QVERIFY(!player->log().contains(QStringLiteral("play")));
        QVERIFY(!player->log().contains(QStringLiteral("qcop QPE/System preventLCDOff()")));
    }

    void the_cursor_moved_by_the_program_does_not_load_a_file()
    {
        QTemporaryDir directory;
        const QStringList files = real_files(directory, 3);
        player = std::make_unique<Player>();
        player->settle();
        player->clear_log();
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        QCOMPARE(player->log_of({"open"}), QStringList({"open " + files[0], "open " + files[0]}));
    }

private:
    static QStringList real_files(const QTemporaryDir& directory, int count)
    {
        QStringList files;
        for (int i = 0; i < count; ++i) {
            files.append(directory.filePath(QStringLiteral("film %1.avi").arg(i)));
            QFile file(files.last());
            if (!file.open(QIODevice::WriteOnly))
                qFatal("no test file");
        }
        return files;
    }

    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, ChartFilesTest)
#include "tst_chart_files.moc"
