#include "config.h"
#include "device_font.h"
#include "player_test.h"
#include "qpe_application.h"
#include "slider_skin.h"
#include "test_main.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>

/// Texts over the film, where the subtitle stands, the list panels and the buttons.
class FeedbackTest : public PlayerTest
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        PlayerTest::cleanup();
        TitleSkin::set_dictionary_program(QString());
    }

    // ---- texts

    void the_media_information_names_the_streams()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("audio_streams"), QStringLiteral("2"));
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("3"));
        QTest::ignoreMessage(QtWarningMsg, " AUDIO :  2 SUBTITLE : 3");
        QTest::ignoreMessage(QtWarningMsg, "[ PLAY ]\n AUDIO :  2 SUBTITLE : 3");
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->informs(QStringLiteral("[ PLAY ]\n AUDIO :  2 SUBTITLE : 3")));
    }

    void without_the_information_setting_the_text_stands_alone()
    {
        player->combo("display_combo_info")->setCurrentIndex(1);
        QTest::ignoreMessage(QtWarningMsg, "[ PLAY ]\n");
        player->hand_over(player->make_files(1));
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QVERIFY(player->informs(QStringLiteral("[ PLAY ]\n")));
    }

    void the_speed_is_shown_as_a_number()
    {
        player->play_a_film();
        for (int i = 0; i < 8; ++i)
            player->post(player_event::speed_up);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ SPEED ]\n 200%")));
    }

    void the_systems_volume_is_shown()
    {
        player->play_a_film();
        emit static_cast<QPEApplication*>(qApp)->volumeChanged(false);
        QVERIFY(player->informs(QStringLiteral("MASTER VOLUME\n 30")));
        {
            Config sound(QStringLiteral("Sound"));
            sound.setGroup(QStringLiteral("System"));
            sound.writeEntry(QStringLiteral("Volume"), 12);
        }
        emit static_cast<QPEApplication*>(qApp)->volumeChanged(false);
        QVERIFY(player->informs(QStringLiteral("MASTER VOLUME\n 12")));
        emit static_cast<QPEApplication*>(qApp)->volumeChanged(true);
        QVERIFY(player->informs(QStringLiteral("MUTE")));
    }

    void a_new_text_takes_the_place_of_the_old_one_and_goes_by_itself()
    {
        player->play_a_film();
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ PAUSE]")));
        player->post(player_event::play);
        player->settle();
        QVERIFY(player->informs(QStringLiteral("[ PLAY ]")));
        auto* const timer = player->information()->findChild<QTimer*>();
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 5000);
        timer->start(0);
        QTRY_VERIFY(player->information()->isHidden());
    }

    // ---- the time bar's seek

    void a_place_on_the_time_bar_is_sought_data()
    {
        QTest::addColumn<Time>("position");
        QTest::addColumn<unsigned int>("seconds");
        QTest::addColumn<int>("mode");
        QTest::addColumn<Time>("target");
        QTest::newRow("forward") << Time(2000) << 5000U << 3 << Time(5'000'000);
        QTest::newRow("backward") << Time(6000'000) << 5000U << 4 << Time(5'000'000);
        QTest::newRow("where it is") << Time(5000) << 5U << 3 << Time(5000);
        QTest::newRow("the product wraps") << Time(0) << 4'294'968U << 3 << Time(704);
        QTest::newRow("from beyond 32 bits") << Time(5'000'000'000LL) << 6U << 4 << Time(6000);
    }
    void a_place_on_the_time_bar_is_sought()
    {
        QFETCH(Time, position);
        QFETCH(unsigned int, seconds);
        QFETCH(int, mode);
        QFETCH(Time, target);
        player->play_a_film();
        scripted_engine::report_time(position);
        player->settle();
        EventCounter counter(player->window());
        player->window()->seek_event(seconds);
        QVERIFY(player->informs(QStringLiteral("[ SEEK ]")));
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter.seeks.size(), 1);
        QCOMPARE(static_cast<int>(counter.seeks[0].mode), mode);
        QCOMPARE(counter.seeks[0].target_ms, target);
    }

    void an_mpeg_file_is_not_sought()
    {
        player->play_a_film(QStringLiteral("MPEG"));
        EventCounter counter(player->window());
        player->window()->seek_event(3);
        QVERIFY(player->informs(QStringLiteral("[ SEEK ]")));
        QCoreApplication::sendPostedEvents(player->window());
        QVERIFY(counter.seeks.isEmpty());
    }

    // ---- where the subtitle stands

    void the_subtitle_makes_room_for_the_panels()
    {
        player->play_a_film();
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 80, 480, 180));
        QCOMPARE(player->subtitle()->font().pixelSize(), 20);
        player->post(player_event::leave_full_screen);
        player->settle();
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 70, 480, 120));
        QCOMPARE(player->subtitle()->font().pixelSize(), 20);
        player->control_event("listopen");
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 70, 288, 120));
        QCOMPARE(player->subtitle()->font().pixelSize(), 17);
        player->control_event("bookmark_list");
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 70, 268, 120));
        QCOMPARE(player->subtitle()->font().pixelSize(), 17);
        player->control_event("bookmark_list");
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 70, 480, 120));
        QVERIFY(player->subtitle()->isVisible());
    }

    void on_the_tv_the_subtitle_stands_under_the_window()
    {
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(player->subtitle()->font().pixelSize(), 28);
        player->post(player_event::leave_full_screen);
        player->settle();
        player->control_event("listopen");
        QCOMPARE(player->subtitle()->geometry(), QRect(0, 376, 640, 124));
        QCOMPARE(player->subtitle()->font().pixelSize(), 28);
    }

    void on_the_tv_the_subtitle_is_broken_at_words_at_the_top_in_the_middle()
    {
        const char* const text = "one long line of words that does not fit on a single line of the television";
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, text}});
        player->play_a_film();
        player->post(player_event::switch_screen);
        player->settle();
        scripted_engine::run_to(2000);
        player->settle();
        SubtitleControl expected(nullptr, "expected", 0);
        expected.setAttribute(Qt::WA_DontShowOnScreen);
        expected.setFont(device_font(QStringLiteral("v28"), 28, 50));
        expected.setGeometry(0, 0, 640, 124);
        expected.set_location(static_cast<SubtitleLocation>(player->settings()->get_subtitle_location()));
        expected.set_text_color(player->settings()->get_subtitle_color(), true);
        const std::vector<Subtitle> lines{{1000, 3000, text}};
        expected.set_subtitle(&lines);
        expected.show();
        expected.set_align(Qt::TextWordWrap | Qt::AlignTop | Qt::AlignHCenter);
        QVERIFY(expected.update(2000));
        expected.draw();
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), expected.background_pixmap().toImage());
        expected.set_subtitle(nullptr);
    }

    void the_three_sizes_are_three_fonts_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<int>("pixels");
        QTest::newRow("large") << 0 << 28;
        QTest::newRow("medium") << 1 << 20;
        QTest::newRow("small") << 2 << 17;
    }
    void the_three_sizes_are_three_fonts()
    {
        QFETCH(int, choice);
        QFETCH(int, pixels);
        player->play_a_film();
        player->combo("subtitle_combo_size")->setCurrentIndex(choice);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(player->subtitle()->font().pixelSize(), pixels);
    }

    void a_change_of_the_subtitle_settings_is_seen_at_once()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->settle();
        const QImage white = player->subtitle()->background_pixmap().toImage();
        player->combo("subtitle_combo_color")->setCurrentIndex(3);
        player->post(player_event::reload_subtitles);
        player->settle();
        const QImage green = player->subtitle()->background_pixmap().toImage();
        QVERIFY(green != white);
        player->combo("subtitle_combo_pos")->setCurrentIndex(0);
        player->post(player_event::reload_subtitles);
        player->settle();
        QVERIFY(player->subtitle()->background_pixmap().toImage() != green);
        player->combo("subtitle_combo_display")->setCurrentIndex(1);
        player->post(player_event::reload_subtitles);
        player->settle();
        const QImage off = player->subtitle()->background_pixmap().toImage();
        QVERIFY(off.convertToFormat(QImage::Format_ARGB32).pixelColor(240, 160).alpha() <= 1);
        player->subtitle()->clear();
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), off);
    }

    void a_shift_in_time_moves_the_film_s_own_subtitle()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        player->settings()->findChild<QLineEdit*>(QStringLiteral("subtitle_edit_sync"))->setText("+0.5seconds");
        player->post(player_event::reload_subtitles);
        player->settle();
        scripted_engine::run_to(499);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QString());
        scripted_engine::run_to(500);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
    }

    void a_film_that_leaves_the_playlist_takes_its_line_along()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        const QImage blank = player->subtitle()->background_pixmap().toImage();
        scripted_engine::run_to(2000);
        player->settle();
        QVERIFY(player->subtitle()->background_pixmap().toImage() != blank);
        player->playlist()->remove_track();
        QTRY_VERIFY(player->in(&TavelVideo::no_file_state));
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), blank);
    }

    void a_line_that_was_due_before_subtitles_were_switched_off_is_not_drawn_after_that()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        const QImage blank = player->subtitle()->background_pixmap().toImage();
        player->combo("subtitle_combo_display")->setCurrentIndex(1);
        player->post(player_event::reload_subtitles);
        // The engine's thread learns of the setting when it is acted on.
        scripted_engine::run_to(2000);
        player->settle();
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), blank);
        player->post(player_event::subtitle_redraw);
        player->settle();
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), blank);
        player->combo("subtitle_combo_display")->setCurrentIndex(0);
        player->post(player_event::subtitle_redraw);
        player->settle();
        QVERIFY(player->subtitle()->background_pixmap().toImage() != blank);
    }

    void another_track_is_taken_from_the_engine()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("2"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        scripted_engine::set_subtitles(1, {{1000, 3000, "two"}});
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
        player->combo("subtitle_combo_track")->setCurrentIndex(1);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("two"));
    }

    void a_shift_in_time_is_seen_at_once_while_the_film_rests()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 2500, "sooner"}, {2600, 5000, "later"}});
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->post(player_event::pause);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("sooner"));
        const QImage sooner = player->subtitle()->background_pixmap().toImage();
        auto* const shift = player->settings()->findChild<QLineEdit*>(QStringLiteral("subtitle_edit_sync"));
        const QString none = shift->text();
        auto* const forward =
            player->settings()->findChild<QAbstractButton*>(QStringLiteral("subtitle_button_forward"));
        forward->click();
        forward->click();
        QCOMPARE(player->settings()->get_time_adjust(), 1000);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("later"));
        QVERIFY(player->subtitle()->background_pixmap().toImage() != sooner);
        shift->setText(none);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("sooner"));
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), sooner);
    }

    void subtitles_that_are_read_later_are_taken_up()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        player->play_a_film();
        scripted_engine::run_to(2000);
        scripted_engine::set_subtitles(0, {{1000, 3000, "late"}});
        scripted_engine::announce_subtitles();
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("late"));
    }

    // ---- the dictionary button

    void the_dictionary_button_needs_the_program_and_subtitles()
    {
        QVERIFY(player->title_bar()->button(QStringLiteral("dic"))->isHidden());
        QTemporaryFile program;
        QVERIFY(program.open());
        TitleSkin::set_dictionary_program(program.fileName());
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        player->play_a_film();
        const auto dic = [&] { return player->title_bar()->button(QStringLiteral("dic"))->state(); };
        QVERIFY(!player->title_bar()->button(QStringLiteral("dic"))->isHidden());
        QCOMPARE(dic(), SkinButton::State::Disabled);
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        scripted_engine::announce_subtitles();
        player->settle();
        QCOMPARE(dic(), SkinButton::State::Normal);
        player->combo("subtitle_combo_display")->setCurrentIndex(1);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(dic(), SkinButton::State::Disabled);
        player->combo("subtitle_combo_display")->setCurrentIndex(0);
        player->post(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(dic(), SkinButton::State::Normal);
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(dic(), SkinButton::State::Disabled);
    }

    // ---- list panels

    void the_playlist_opens_with_its_add_button_focused_and_closes_the_bookmarks()
    {
        player->window()->show_bookmark();
        QVERIFY(player->bookmarks()->isVisible());
        QCOMPARE(player->bookmarks()->focusButton()->name(), QStringLiteral("minus"));
        player->window()->show_playlist();
        QVERIFY(player->playlist()->isVisible());
        QVERIFY(!player->bookmarks()->isVisible());
        QCOMPARE(player->playlist()->focusButton()->name(), QStringLiteral("add"));
        QCOMPARE(player->window()->focusWidget(), player->playlist());
        player->window()->show_bookmark();
        QVERIFY(!player->playlist()->isVisible());
        QCOMPARE(player->window()->focusWidget(), player->bookmarks());
    }

    void an_open_list_is_not_opened_again()
    {
        player->play_a_film();
        player->post(player_event::leave_full_screen);
        player->settle();
        player->window()->show_playlist();
        player->playlist()->focus_filelist();
        const QWidget* const list = player->window()->focusWidget();
        player->playlist()->showFocus(QStringLiteral("close"));
        player->window()->show_playlist();
        QCOMPARE(player->window()->focusWidget(), list);
        QCOMPARE(player->playlist()->focusButton()->name(), QStringLiteral("close"));
        player->window()->show_bookmark();
        player->bookmarks()->showFocus(QStringLiteral("close"));
        player->window()->show_bookmark();
        QCOMPARE(player->bookmarks()->focusButton()->name(), QStringLiteral("close"));
    }

    void closing_a_list_that_is_not_open_does_nothing()
    {
        player->window()->show_bookmark();
        const QRect beside = player->subtitle()->geometry();
        player->window()->hide_playlist();
        QVERIFY(player->bookmarks()->isVisible());
        QCOMPARE(player->subtitle()->geometry(), beside);
        QCOMPARE(player->window()->focusWidget(), player->bookmarks());
        player->window()->show_playlist();
        player->window()->hide_bookmark();
        QVERIFY(player->playlist()->isVisible());
        QCOMPARE(player->subtitle()->width(), 288);
        QCOMPARE(player->window()->focusWidget(), player->playlist());
    }

    void the_subtitle_is_drawn_anew_beside_each_panel()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}});
        player->play_a_film();
        scripted_engine::run_to(2000);
        player->settle();
        const auto shows_a_text = [&] {
            const QImage now = player->subtitle()->background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
            for (int y = 0; y < now.height(); ++y)
                for (int x = 0; x < now.width(); ++x)
                    if (now.pixelColor(x, y).alpha() > 200)
                        return true;
            return false;
        };
        QVERIFY(shows_a_text());
        player->post(player_event::leave_full_screen);
        player->settle();
        QVERIFY(shows_a_text());
        for (const char* button : {"listopen", "bookmark_list", "bookmark_list", "listopen", "listopen"}) {
            player->control_event(button);
            QVERIFY2(shows_a_text(), button);
        }
        player->post(player_event::enter_full_screen);
        player->settle();
        QVERIFY(shows_a_text());
    }

    void the_panels_close_by_their_own_buttons()
    {
        player->window()->show_playlist();
        emit player->playlist()->close_signal();
        QVERIFY(!player->playlist()->isVisible());
        QCOMPARE(player->window()->focusWidget(), player->control_bar());
        player->window()->show_bookmark();
        emit player->bookmarks()->close_signal();
        QVERIFY(!player->bookmarks()->isVisible());
        QCOMPARE(player->window()->focusWidget(), player->control_bar());
    }

    void closing_the_bookmarks_from_their_list_gives_the_keys_to_the_control_bar()
    {
        player->window()->show_bookmark();
        player->bookmarks()->focus_filelist();
        player->window()->hide_bookmark();
        QCOMPARE(player->window()->focusWidget(), player->control_bar());
    }

    void closing_the_bookmarks_leaves_the_focus_where_it_is_otherwise()
    {
        player->window()->show_bookmark();
        player->window()->setFocus();
        player->window()->hide_bookmark();
        QCOMPARE(player->window()->focusWidget(), player->window());
    }

    void a_bookmark_of_the_playing_film_is_sought()
    {
        player->play_a_film();
        emit player->bookmarks()->selected_file_play(player->playlist()->get_filename(0), 7000);
        player->settle();
        QCOMPARE(player->log_of({"seek", "open"}), QStringList(QStringLiteral("seek 4 7000")));
    }

    void a_bookmark_of_a_playing_film_that_cannot_be_sought_in_does_nothing()
    {
        player->play_a_film(QStringLiteral("MPEG"));
        EventCounter counter(player->window());
        emit player->bookmarks()->selected_file_play(player->playlist()->get_filename(0), 7000);
        player->settle();
        QVERIFY(counter.numbers.isEmpty());
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void a_bookmark_reaches_the_end_of_an_unsigned_number()
    {
        player->play_a_film();
        EventCounter counter(player->window());
        emit player->bookmarks()->selected_file_play(player->playlist()->get_filename(0), 4'294'967'295U);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter.seeks.size(), 1);
        QCOMPARE(counter.seeks[0].target_ms, Time(4'294'967'295LL));
    }

    void a_bookmark_of_another_film_plays_it_from_there()
    {
        const QStringList files = player->make_files(2);
        player->hand_over({files[0]});
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        player->settle();
        player->clear_log();
        emit player->bookmarks()->selected_file_play(files[1], 7000);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 7000")));
        QCOMPARE(player->playlist()->get_count(), 2);
        QCOMPARE(player->playlist()->get_now_playing(), 1);
        QVERIFY(player->log().contains(QStringLiteral("prepare ") + files[1]));
    }

    void a_bookmark_of_the_chosen_but_stopped_film_plays_it_from_there()
    {
        player->play_a_film();
        player->post(player_event::stop);
        player->settle();
        player->clear_log();
        emit player->bookmarks()->selected_file_play(player->playlist()->get_filename(0), 7000);
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 7000")));
        QCOMPARE(player->playlist()->get_count(), 1);
    }

    // ---- buttons

    void the_settings_choose_which_buttons_are_there_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<QStringList>("shown");
        QTest::addColumn<QStringList>("hidden");
        QTest::newRow("bookmarks") << QByteArray("playback_combo_bookmark")
                                   << QStringList({"bookmark", "bookmark_list"}) << QStringList();
        QTest::newRow("speed") << QByteArray("playback_combo_playwithspeed")
                               << QStringList({"speed_down", "speed_normal", "speed_up"}) << QStringList();
        QTest::newRow("repeat") << QByteArray("playback_combo_repeat_mode") << QStringList({"repeatA"})
                                << QStringList({"repeatB", "repeatAB"});
    }
    void the_settings_choose_which_buttons_are_there()
    {
        QFETCH(QByteArray, setting);
        QFETCH(QStringList, shown);
        QFETCH(QStringList, hidden);
        for (const QString& button : shown + hidden)
            QVERIFY2(!player->shows(button), qPrintable(button));
        player->combo(setting.constData())->setCurrentIndex(0);
        player->post(player_event::refresh_buttons);
        player->settle();
        for (const QString& button : shown)
            QVERIFY2(player->shows(button), qPrintable(button));
        for (const QString& button : hidden)
            QVERIFY2(!player->shows(button), qPrintable(button));
    }

    void hiding_the_bookmark_controls_closes_the_bookmarks()
    {
        player->window()->show_bookmark();
        player->post(player_event::refresh_buttons);
        player->settle();
        QVERIFY(!player->bookmarks()->isVisible());
    }

    void hiding_the_speed_controls_returns_to_normal_speed()
    {
        player->play_a_film();
        player->post(player_event::speed_up);
        player->settle();
        player->clear_log();
        player->post(player_event::refresh_buttons);
        player->settle();
        QCOMPARE(player->log_of({"set_speed"}), QStringList(QStringLiteral("set_speed 1")));
    }

    void shown_controls_keep_the_speed_and_restart_the_passage()
    {
        player->play_a_film();
        for (const char* setting : {"playback_combo_playwithspeed", "playback_combo_repeat_mode"})
            player->combo(setting)->setCurrentIndex(0);
        player->post(player_event::refresh_buttons);
        player->post(player_event::repeat_ab);
        player->settle();
        QVERIFY(player->shows("repeatB") && !player->shows("repeatA"));
        EventCounter counter(player->window());
        player->post(player_event::refresh_buttons);
        player->settle();
        QCOMPARE(counter.numbers, QList<int>({2200}));
        QVERIFY(player->shows("repeatA") && !player->shows("repeatB") && !player->shows("repeatAB"));
        auto* const slider = player->time_bar()->findChild<SliderSkin*>();
        QVERIFY(!slider->marker(SliderSkin::Marker::A));
    }

    void hiding_the_repeat_controls_releases_the_passage()
    {
        player->play_a_film();
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(0);
        player->post(player_event::refresh_buttons);
        player->settle();
        player->post(player_event::repeat_ab);
        player->settle();
        auto* const slider = player->time_bar()->findChild<SliderSkin*>();
        QVERIFY(slider->marker(SliderSkin::Marker::A));
        player->combo("playback_combo_repeat_mode")->setCurrentIndex(1);
        player->post(player_event::refresh_buttons);
        player->settle();
        QVERIFY(!slider->marker(SliderSkin::Marker::A));
        QVERIFY(!player->shows("repeatA"));
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, FeedbackTest)
#include "tst_feedback.moc"
