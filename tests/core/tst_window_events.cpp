#include "device_screen.h"
#include "player_test.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTabWidget>

namespace
{

/// Asks a question at each release of the pointer over a widget, before anybody acts on the release.
class ReleaseWatch : public QObject
{
public:
    ReleaseWatch(QWidget* watched, std::function<bool()> question) : watched_(watched), question_(std::move(question))
    {
        // The filter that was installed last is asked first.
        qApp->installEventFilter(this);
    }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object == watched_ && event->type() == QEvent::MouseButtonRelease)
            answers.append(question_());
        return false;
    }

    QList<bool> answers;

private:
    QWidget* watched_;
    std::function<bool()> question_;
};

} // namespace

/// What the window makes of its own events, of everybody's keys and presses, and of its timers.
class WindowEventsTest : public CountingPlayerTest
{
    Q_OBJECT

private slots:
    // ---- the menu timer

    void the_controls_hide_themselves_after_the_last_release()
    {
        play_with_controls();
        QTimer* const menu = player->timer("menu_timer");
        player->press(Qt::Key_F12);
        QVERIFY(!menu->isActive());
        player->release(Qt::Key_F12);
        QVERIFY(menu->isActive());
        QVERIFY(menu->isSingleShot());
        QCOMPARE(menu->interval(), 5000);
        menu->start(0);
        QTRY_VERIFY(player->window()->is_full_screen());
    }

    void the_menu_timer_follows_the_setting_data()
    {
        QTest::addColumn<int>("choice");
        QTest::addColumn<int>("interval");
        QTest::newRow("always") << 0 << -1;
        QTest::newRow("3 s") << 1 << 3000;
        QTest::newRow("10 s") << 3 << 10000;
    }
    void the_menu_timer_follows_the_setting()
    {
        QFETCH(int, choice);
        QFETCH(int, interval);
        play_with_controls();
        player->combo("display_combo_menutime")->setCurrentIndex(choice);
        player->click(Qt::Key_F12);
        QCOMPARE(player->timer("menu_timer")->isActive(), interval != -1);
        if (interval != -1)
            QCOMPARE(player->timer("menu_timer")->interval(), interval);
    }

    void the_menu_timer_is_for_a_loaded_film_with_controls()
    {
        player->click(Qt::Key_F12);
        QVERIFY(!player->timer("menu_timer")->isActive());
        play_in_full_screen();
        player->click(Qt::Key_F12);
        QVERIFY(!player->timer("menu_timer")->isActive());
    }

    void a_press_of_the_pointer_stops_the_menu_timer_and_its_release_starts_it()
    {
        play_with_controls();
        QTimer* const menu = player->timer("menu_timer");
        QVERIFY(menu->isActive());
        player->touch(BLANK);
        QVERIFY(!menu->isActive());
        player->settle();
        QVERIFY(!menu->isActive());
        player->lift(BLANK);
        QVERIFY(menu->isActive());
        QVERIFY(menu->isSingleShot());
        QCOMPARE(menu->interval(), 5000);
    }

    void the_second_press_of_a_double_tap_stops_the_menu_timer_too()
    {
        play_with_controls();
        QTimer* const menu = player->timer("menu_timer");
        const ReleaseWatch watch(DeviceScreen::instance()->viewport(), [&] { return menu->isActive(); });
        player->double_tap(BLANK);
        QCOMPARE(watch.answers, QList<bool>({false, false}));
        QVERIFY(menu->isActive());
    }

    void a_press_on_a_panel_is_no_tap_on_the_picture_data()
    {
        QTest::addColumn<QPoint>("place");
        QTest::newRow("title bar") << BLANK;
        QTest::newRow("time bar") << QPoint(30, 200);
        QTest::newRow("control bar") << QPoint(478, 271);
    }
    void a_press_on_a_panel_is_no_tap_on_the_picture()
    {
        QFETCH(QPoint, place);
        play_with_controls();
        player->tap(place);
        player->settle();
        QCOMPARE(counter->count(player_event::enter_full_screen), 0);
        QVERIFY(!player->window()->is_full_screen());
    }

    void the_menu_timer_is_started_anew_by_request_under_the_same_conditions()
    {
        QTimer* const menu = player->timer("menu_timer");
        player->window()->reset_menu_timer();
        QVERIFY(!menu->isActive());
        play_in_full_screen();
        player->window()->reset_menu_timer();
        QVERIFY(!menu->isActive());
        player->post(player_event::leave_full_screen);
        player->settle();
        menu->start(100000);
        player->window()->reset_menu_timer();
        QVERIFY(menu->isSingleShot());
        QCOMPARE(menu->interval(), 5000);
        menu->stop();
        player->combo("display_combo_menutime")->setCurrentIndex(0);
        player->window()->reset_menu_timer();
        QVERIFY(!menu->isActive());
    }

    void the_menu_timer_asks_for_full_screen_once()
    {
        play_with_controls();
        player->timer("menu_timer")->start(0);
        QTRY_VERIFY(player->window()->is_full_screen());
        QCOMPARE(counter->count(player_event::enter_full_screen), 1);
        QVERIFY(!player->timer("menu_timer")->isActive());
    }

    // ---- the window's own events

    void activation_of_a_window_that_does_not_play_sends_hide_and_shows_the_task_bar()
    {
        player->clear_log();
        QEvent activate(QEvent::WindowActivate);
        QCoreApplication::sendEvent(player->window(), &activate);
        QCOMPARE(player->log(), QStringList(QStringLiteral("qcop QPE/System showTaskBar(QString) tavel_video")));
        player->clear_log();
        QEvent deactivate(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(player->window(), &deactivate);
        QCOMPARE(player->log(), QStringList(QStringLiteral("qcop QPE/System showTaskBar(QString) tavel_video")));
        play_in_full_screen();
        player->clear_log();
        QCoreApplication::sendEvent(player->window(), &activate);
        QCOMPARE(player->log(), QStringList(QStringLiteral("qcop QPE/System hideTaskBar(QString) tavel_video")));
    }

    void the_time_event_moves_the_slider_to_the_whole_second()
    {
        play_with_controls();
        scripted_engine::run_to(3999);
        player->settle();
        QCOMPARE(player->time_bar()->get_slidervalue(), 3U);
    }

    void the_window_timer_brings_the_right_window_to_the_front()
    {
        play_with_controls();
        DeviceScreen* const screen = DeviceScreen::instance();
        player->settings()->show();
        player->file_manager()->show();
        screen->activate(player->window());
        player->window()->window_timeout();
        QVERIFY(screen->is_active(player->window()));
        screen->activate(player->settings());
        player->window()->window_timeout();
        QVERIFY(screen->is_active(player->file_manager()));
        player->file_manager()->close();
        screen->activate(player->window());
        player->window()->window_timeout();
        QVERIFY(screen->is_active(player->settings()));
    }

    void the_window_timer_leaves_a_notice_alone()
    {
        play_in_full_screen();
        for (unsigned int i = 0; i < 99; ++i)
            player->bookmarks()->add_track(QStringLiteral("/a"), i);
        bool in_front = false;
        player->at_next_notice([&] {
            player->window()->window_timeout();
            in_front = DeviceScreen::instance()->is_active(player->notice());
        });
        player->post(player_event::add_bookmark);
        QTRY_COMPARE(player->notices().size(), 1);
        QVERIFY(in_front);
        // Nor has it taken the notice for one of the player's windows.
        DeviceScreen::instance()->activate(player->window());
        player->window()->window_timeout();
        QVERIFY(DeviceScreen::instance()->is_active(player->window()));
    }

    void the_task_bar_follows_activation_and_the_controls()
    {
        const QString shown = QStringLiteral("qcop QPE/System showTaskBar(QString) tavel_video");
        const QString hidden = QStringLiteral("qcop QPE/System hideTaskBar(QString) tavel_video");
        play_in_full_screen();
        player->post(player_event::pause);
        player->settle();
        QVERIFY(player->in(&TavelVideo::pause_state));
        player->clear_log();
        activate();
        QCOMPARE(player->log(), QStringList(hidden));
        player->clear_log();
        deactivate();
        QCOMPARE(player->log(), QStringList(shown));
        player->post(player_event::leave_full_screen);
        player->settle();
        player->clear_log();
        activate();
        deactivate();
        QCOMPARE(player->log(), QStringList({shown, shown}));
    }

    void a_subtitle_that_is_due_is_drawn_over_the_film_and_in_the_settings()
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 3000, "one"}, {5000, 7000, "two"}});
        play_with_controls();
        player->post(player_event::open_settings);
        player->settle();
        auto* const preview = player->settings()->findChild<SubtitleControl*>();
        QVERIFY(preview && preview->isVisible());
        const QImage blank = player->subtitle()->background_pixmap().toImage();
        const QImage blank_preview = preview->background_pixmap().toImage();
        scripted_engine::run_to(2000);
        // The engine's thread has chosen the line, nobody has drawn it yet.
        QCOMPARE(player->subtitle()->background_pixmap().toImage(), blank);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 1);
        QVERIFY(player->subtitle()->background_pixmap().toImage() != blank);
        QVERIFY(preview->background_pixmap().toImage() != blank_preview);
        QCOMPARE(preview->get_last_subtitle(), QStringLiteral("one"));
        // The settings draw what belongs to the position.
        scripted_engine::run_to(6000);
        player->settle();
        QCOMPARE(preview->get_last_subtitle(), QStringLiteral("two"));
    }

    void open_settings_show_the_line_that_is_due()
    {
        play_with_settings({{1000, 3000, "one"}, {5000, 7000, "two"}}, 2000);
        QCOMPARE(preview()->get_last_subtitle(), QStringLiteral("one"));
        // Opened again later, they do not show the line of then.
        const QImage line = preview()->background_pixmap().toImage();
        player->settings()->close();
        scripted_engine::run_to(4000);
        player->settle();
        player->post(player_event::open_settings);
        player->settle();
        QVERIFY(preview()->background_pixmap().toImage() != line);
    }

    void a_shift_is_seen_over_the_film_and_in_the_settings_at_once()
    {
        play_with_settings({{1000, 3000, "one"}}, 700);
        QVERIFY(player->subtitle()->get_last_subtitle().isEmpty());
        QTest::mouseClick(player->settings()->findChild<QPushButton*>(QStringLiteral("subtitle_button_forward")),
                          Qt::LeftButton);
        player->settle();
        QCOMPARE(player->subtitle()->get_last_subtitle(), QStringLiteral("one"));
        QCOMPARE(preview()->get_last_subtitle(), QStringLiteral("one"));
    }

    void subtitles_switched_on_in_the_settings_are_seen_before_those_close()
    {
        player->combo("subtitle_combo_display")->setCurrentIndex(1);
        play_with_settings({{1000, 3000, "one"}, {5000, 7000, "two"}}, 2000);
        scripted_engine::run_to(4000);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 0);
        const QImage blank = preview()->background_pixmap().toImage();
        player->combo("subtitle_combo_display")->setCurrentIndex(0);
        emit player->combo("subtitle_combo_display")->activated(0);
        player->settle();
        QCOMPARE(preview()->background_pixmap().toImage(), blank);
        scripted_engine::run_to(6000);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 1);
        QVERIFY(preview()->background_pixmap().toImage() != blank);
    }

    void subtitles_that_are_read_later_reach_the_settings()
    {
        play_with_settings({}, 2000);
        const QImage blank = preview()->background_pixmap().toImage();
        scripted_engine::set_subtitles(0, {{1000, 3000, "late"}});
        scripted_engine::announce_subtitles();
        player->settle();
        QCOMPARE(preview()->get_last_subtitle(), QStringLiteral("late"));
        QVERIFY(preview()->background_pixmap().toImage() != blank);
        // What tells the settings and the film of each other's news comes to an end.
        const int reports = counter->count(player_event::reload_subtitles);
        player->settle();
        QCOMPARE(counter->count(player_event::reload_subtitles), reports);
    }

    void a_line_is_shown_again_in_the_settings_after_a_seek_back()
    {
        play_with_settings({{1000, 3000, "one"}}, 2000);
        const QImage line = preview()->background_pixmap().toImage();
        scripted_engine::run_to(4000);
        player->settle();
        QVERIFY(preview()->background_pixmap().toImage() != line);
        player->seek_to(1500, SeekMode::Backward);
        player->settle();
        scripted_engine::run_to(1600);
        player->settle();
        QCOMPARE(preview()->background_pixmap().toImage(), line);
    }

    void open_settings_keep_the_preview_over_the_film_on_either_screen()
    {
        play_with_settings({{1000, 3000, "one"}}, 2000);
        const QImage line = preview()->background_pixmap().toImage();
        for (const QPoint place : {QPoint(13, 58), QPoint(12, 64)}) {
            player->post(player_event::switch_screen);
            player->settle();
            QVERIFY(player->settings()->isVisible());
            QCOMPARE(preview()->geometry(), QRect(place, QSize(221, 126)));
            QCOMPARE(preview()->background_pixmap().toImage(), line);
        }
    }

    void a_change_of_the_subtitles_leaves_the_settings_in_front_on_the_tv()
    {
        player->post(player_event::switch_screen);
        player->settle();
        play_with_settings({{1000, 3000, "one"}}, 2000);
        auto* const button = player->settings()->findChild<QPushButton*>(QStringLiteral("subtitle_button_forward"));
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        player->settle();
        QVERIFY(DeviceScreen::instance()->is_active(player->settings()));
        QCOMPARE(player->settings()->focusWidget(), button);
        QVERIFY(player->subtitle()->isVisible());
    }

    void only_the_way_to_the_tv_puts_the_time_bar_in_its_place()
    {
        player->time_bar()->move(5, 6);
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->window()->is_tv_out());
        QCOMPARE(player->time_bar()->pos(), QPoint(0, 192));
        player->time_bar()->move(5, 6);
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(!player->window()->is_tv_out());
        QCOMPARE(player->time_bar()->pos(), QPoint(5, 6));
    }

    void events_of_the_toolkit_never_reach_the_chart()
    {
        play_in_full_screen();
        for (int type = QEvent::User - 1; type > QEvent::User - 30; --type) {
            QEvent event(static_cast<QEvent::Type>(type));
            QCoreApplication::sendEvent(player->window(), &event);
        }
        // A number of the chart's in an event that is not one of its own.
        QEvent stop(static_cast<QEvent::Type>(player_event::stop));
        QCoreApplication::sendEvent(player->window(), &stop);
        player->settle();
        QVERIFY(player->in(&TavelVideo::play_state));
    }

    void the_window_timer_runs_on_the_tv_and_acts_by_itself()
    {
        play_with_controls();
        player->post(player_event::switch_screen);
        player->settle();
        QTimer* const timer = player->timer("window_timer");
        QVERIFY(timer->isActive() && !timer->isSingleShot());
        DeviceScreen* const screen = DeviceScreen::instance();
        player->file_manager()->show();
        player->settings()->show();
        QVERIFY(screen->is_active(player->settings()));
        timer->start(0);
        QTRY_VERIFY(screen->is_active(player->file_manager()));
    }

    void escape_in_a_list_of_the_file_manager_closes_it()
    {
        play_with_controls();
        player->post(player_event::open_browser);
        player->settle();
        for (QWidget* child : player->file_manager()->findChildren<QWidget*>()) {
            if (!child->isVisible() || child->focusPolicy() == Qt::NoFocus)
                continue;
            child->setFocus();
            player->click(Qt::Key_Escape);
            player->settle();
            QVERIFY2(!player->file_manager()->isVisible(), child->metaObject()->className());
            QCOMPARE(counter->count(player_event::close), 0);
            player->post(player_event::open_browser);
            player->settle();
        }
    }

private:
    /// A film at @p position behind the settings, opened at the page of the subtitles.
    void play_with_settings(std::vector<Subtitle> lines, Time position)
    {
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, std::move(lines));
        play_with_controls();
        scripted_engine::run_to(position);
        player->settle();
        player->settings()->setting_tab->setCurrentIndex(static_cast<int>(SettingBase::Page::Subtitle));
        player->post(player_event::open_settings);
        player->settle();
        counter->numbers.clear();
    }
    SubtitleControl* preview() { return player->settings()->findChild<SubtitleControl*>(); }

    void activate()
    {
        QEvent event(QEvent::WindowActivate);
        QCoreApplication::sendEvent(player->window(), &event);
    }
    void deactivate()
    {
        QEvent event(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(player->window(), &event);
    }

    /// On the title bar, beside its buttons.
    static constexpr QPoint BLANK{200, 12};
};

TAVEL_TEST_MAIN_WITH(QPEApplication, WindowEventsTest)
#include "tst_window_events.moc"
