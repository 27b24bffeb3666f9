#include "device_screen.h"
#include "global.h"
#include "osd_control.h"
#include "player.h"
#include "qpe_application.h"
#include "shell.h"
#include "test_main.h"
#include "vesk_socket.h"

namespace
{

/// The widgets that are made while it lives, in their order.
class MadeWidgets : public QObject
{
public:
    MadeWidgets() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Create)
            made_.append(object);
        return false;
    }
    /// How many were made before @p widget; what stood at its address earlier is gone.
    qsizetype rank(const QObject* widget) const { return made_.lastIndexOf(const_cast<QObject*>(widget)); }

private:
    QList<QObject*> made_;
};

struct Place {
    const char* panel;
    const char* x_key;
    const char* y_key;
    int x;
    int y;
};

/// A layout with ten different numbers.
constexpr std::array<Place, 5> PLACES{{
    {"VIDEO_TITLE", "title_xpos", "title_ypos", 3, 5},
    {"VIDEO_CONTROL", "control_xpos", "control_ypos", 7, 211},
    {"TIME", "time_xpos", "time_ypos", 11, 193},
    {"PLAYLIST", "playlist_xpos", "playlist_ypos", 251, 29},
    {"BOOKMARK", "bookmark_xpos", "bookmark_ypos", 239, 31},
}};

/// A connection by the names that the toolkit knows it by.
struct Connection {
    QObject* sender;
    const char* signal;
    const char* slot;
};

} // namespace

/// The panels of the main window: their order, their places and what they are connected to.
class AssemblyTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        player.reset();
        Shell::set_recorder({});
        Global::set_sleeper({});
    }

    void the_panels_are_made_in_their_order()
    {
        const MadeWidgets made;
        player = std::make_unique<Player>();
        const QList<QWidget*> panels{player->information(), player->subtitle(),     player->control_bar(),
                                     player->time_bar(),    player->playlist(),     player->bookmarks(),
                                     player->title_bar(),   player->file_manager(), player->loading(),
                                     player->settings(),    player->notice()};
        qsizetype last = made.rank(player->window());
        QVERIFY(last >= 0);
        for (QWidget* panel : panels) {
            QVERIFY(panel);
            QVERIFY2(made.rank(panel) > last, qPrintable(panel->objectName()));
            last = made.rank(panel);
        }
    }

    void the_panels_are_children_of_the_window_and_two_windows_stand_by_themselves()
    {
        player = std::make_unique<Player>();
        for (QWidget* panel : QList<QWidget*>{player->information(), player->subtitle(), player->control_bar(),
                                              player->time_bar(), player->playlist(), player->bookmarks(),
                                              player->title_bar(), player->loading(), player->notice()})
            QCOMPARE(panel->parentWidget(), player->window());
        for (QWidget* window : QList<QWidget*>{player->file_manager(), player->settings()}) {
            QVERIFY(!window->parentWidget());
            QVERIFY(window->isWindow());
            QVERIFY(window->windowFlags().testFlag(Qt::FramelessWindowHint));
        }
        QVERIFY(!player->subtitle()->isWindow());
        QVERIFY(player->subtitle()->windowFlags().testFlag(Qt::FramelessWindowHint));
        QCOMPARE(player->notice()->windowTitle(), QStringLiteral("VIDEO"));
        QVERIFY(player->notice()->text().isEmpty());
    }

    void each_panel_goes_where_its_two_keys_say()
    {
        player = std::make_unique<Player>(Player::Device{.layout = layout_without({})});
        for (const Place& place : PLACES)
            QCOMPARE(panel(place)->pos(), QPoint(place.x, place.y));
    }

    void a_key_that_is_missing_leaves_minus_one_for_its_coordinate_alone_data()
    {
        QTest::addColumn<QByteArray>("key");
        for (const Place& place : PLACES) {
            QTest::newRow(place.x_key) << QByteArray(place.x_key);
            QTest::newRow(place.y_key) << QByteArray(place.y_key);
        }
    }
    void a_key_that_is_missing_leaves_minus_one_for_its_coordinate_alone()
    {
        QFETCH(QByteArray, key);
        player = std::make_unique<Player>(Player::Device{.layout = layout_without(key)});
        for (const Place& place : PLACES)
            QCOMPARE(panel(place)->pos(), QPoint(key == place.x_key ? -1 : place.x, key == place.y_key ? -1 : place.y));
    }

    void a_place_beyond_any_screen_is_one_that_a_widget_can_have_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("coordinate");
        QTest::newRow("largest") << std::numeric_limits<int>::max() << 16384;
        QTest::newRow("smallest") << std::numeric_limits<int>::min() << -16384;
    }
    void a_place_beyond_any_screen_is_one_that_a_widget_can_have()
    {
        QFETCH(int, number);
        QFETCH(int, coordinate);
        QByteArray layout = "[MAIN]\n";
        for (const Place& place : PLACES)
            for (const char* key : {place.x_key, place.y_key})
                layout += QByteArray(key) + " = " + QByteArray::number(number) + '\n';
        player = std::make_unique<Player>(Player::Device{.layout = layout});
        for (const Place& place : PLACES)
            QCOMPARE(panel(place)->pos(), QPoint(coordinate, coordinate));
    }

    void the_window_lies_under_settings_and_file_manager_when_it_is_made()
    {
        Player::lay_out({});
        Shell::set_recorder([](const QByteArray&) { return 0; });
        Global::set_sleeper([](std::chrono::microseconds) {});
        TavelVideo::set_socket_port(0);
        // They outlive the window, as in the player.
        std::vector<std::unique_ptr<QWidget>> others;
        const TavelVideo window(nullptr, "tavel_video", 16);
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const char* name : {"VIDEO SETTING", "FILEMANAGER"})
            for (QWidget* each : windows)
                if (each->objectName() == QLatin1String(name))
                    others.emplace_back(each);
        QCOMPARE(others.size(), std::size_t(2));
        const QList<QGraphicsItem*> from_the_bottom = window.graphicsProxyWidget()->parentItem()->childItems();
        const qsizetype height = from_the_bottom.indexOf(window.graphicsProxyWidget());
        for (const auto& other : others)
            QVERIFY2(from_the_bottom.indexOf(other->graphicsProxyWidget()) > height, qPrintable(other->objectName()));
    }

    void the_subtitle_lies_behind_the_panels_also_after_a_visit_to_the_tv()
    {
        player = std::make_unique<Player>();
        player->settle();
        const QStringList before = from_the_bottom();
        QVERIFY(before.indexOf(QStringLiteral("subtitle_control")) < before.indexOf(QStringLiteral("VIDEO_CONTROL")));
        player->post(player_event::switch_screen);
        player->settle();
        QVERIFY(player->subtitle()->isWindow());
        player->post(player_event::switch_screen);
        player->settle();
        QCOMPARE(from_the_bottom(), before);
    }

    void the_stored_opacity_reaches_all_five_panels_and_so_does_a_new_one()
    {
        player = std::make_unique<Player>(Player::Device{.settings = {{QStringLiteral("display/transparency"), 0}}});
        for (const int alpha : {76, 200}) {
            for (SkinBase* each : QList<SkinBase*>{player->control_bar(), player->title_bar(), player->time_bar(),
                                                   player->playlist(), player->bookmarks()})
                QVERIFY2(each->alphaOverride() == alpha, qPrintable(each->objectName()));
            emit player->settings()->update_transparency(200);
        }
    }

    void the_stored_choice_of_buttons_is_there_from_the_start()
    {
        player = std::make_unique<Player>(Player::Device{.settings = {{QStringLiteral("playback/bookmark_show"), 0},
                                                                      {QStringLiteral("playback/speed_show"), 0},
                                                                      {QStringLiteral("playback/repeatab_show"), 0}}});
        for (const char* button : {"bookmark", "bookmark_list", "speed_down", "speed_normal", "speed_up", "repeatA"})
            QVERIFY2(player->shows(QLatin1String(button)), button);
        player.reset();
        player = std::make_unique<Player>();
        for (const char* button : {"bookmark", "bookmark_list", "speed_down", "speed_normal", "speed_up", "repeatA"})
            QVERIFY2(!player->shows(QLatin1String(button)), button);
    }

    void the_loading_text_is_white_on_nothing()
    {
        player = std::make_unique<Player>();
        OsdControl expected(nullptr, "expected", 0);
        expected.setFont(player->loading()->font());
        expected.set_text_color(Qt::white, false);
        expected.setGeometry(player->loading()->geometry());
        expected.draw(QStringLiteral("Now Loading..."));
        player->window()->show_loading_screen();
        QVERIFY(player->loading()->isVisible());
        QCOMPARE(player->loading()->background_pixmap().toImage(), expected.background_pixmap().toImage());
    }

    void every_connection_of_a_panel_is_there()
    {
        player = std::make_unique<Player>();
        const QList<Connection> connections{
            {player->control_bar(), SIGNAL(button_clicked(const QObject*, const QString)),
             SLOT(control_event(const QObject*, const QString))},
            {player->title_bar(), SIGNAL(button_clicked(const QObject*, const QString)),
             SLOT(control_event(const QObject*, const QString))},
            {player->time_bar(), SIGNAL(play_signal()), SLOT(play_event())},
            {player->playlist(), SIGNAL(selected_file_play(int, unsigned int)), SLOT(play_event(int, unsigned int))},
            {player->playlist(), SIGNAL(selected_file(int, unsigned int)), SLOT(load_event(int, unsigned int))},
            {player->playlist(), SIGNAL(close_signal()), SLOT(hide_playlist())},
            {player->playlist(), SIGNAL(open_playlist_browser()), SLOT(open_playlist_browser())},
            {player->playlist(), SIGNAL(stop_signal()), SLOT(close_event())},
            {player->bookmarks(), SIGNAL(selected_file_play(const QString&, unsigned int)),
             SLOT(load_bookmark(const QString&, unsigned int))},
            {player->bookmarks(), SIGNAL(close_signal()), SLOT(hide_bookmark())},
            {player->subtitle(), SIGNAL(click_button(QMouseEvent*)), SLOT(mousePressEvent(QMouseEvent*))},
            {player->information(), SIGNAL(click_button(QMouseEvent*)), SLOT(mousePressEvent(QMouseEvent*))},
            {player->window()->findChild<QCopChannel*>(), SIGNAL(received(const QCString&, const QByteArray&)),
             SLOT(receive_message(const QCString&, const QByteArray&))},
            {player->timer("menu_timer"), SIGNAL(timeout()), SLOT(menu_timeout())},
            {player->timer("window_timer"), SIGNAL(timeout()), SLOT(window_timeout())},
            {player->timer("long_key_timer"), SIGNAL(timeout()), SLOT(long_key_timeout())},
            {player->settings(), SIGNAL(update_signal(int)), SLOT(postCustomEvent(int))},
            {player->settings(), SIGNAL(update_transparency(unsigned char)), SLOT(set_alpha(unsigned char))},
            {player->control_bar(), SIGNAL(update_volume(int)), SLOT(send_volume(int))},
            {const_cast<VeskSocket*>(player->window()->socket()), SIGNAL(received(QString)),
             SLOT(receive_socket_message(QString))},
            {qApp, SIGNAL(volumeChanged(bool)), SLOT(display_volume(bool))},
        };
        for (const Connection& row : connections) {
            const QString name = row.sender->objectName() + u' ' + QLatin1String(row.signal);
            // Only what is connected can be disconnected.
            QVERIFY2(QObject::disconnect(row.sender, row.signal, player->window(), row.slot), qPrintable(name));
            QVERIFY2(!QObject::disconnect(row.sender, row.signal, player->window(), nullptr),
                     qPrintable(name + QStringLiteral(" is connected to more")));
        }
    }

    void what_a_panel_asks_for_is_posted_to_the_chart_data()
    {
        QTest::addColumn<std::function<void(Player&)>>("ask");
        QTest::addColumn<int>("number");
        const auto row = [](const char* name, int number, std::function<void(Player&)> ask) {
            QTest::newRow(name) << std::move(ask) << number;
        };
        row("time bar", 2000, [](Player& of) { emit of.time_bar()->play_signal(); });
        row("a row to play", 2101, [](Player& of) { emit of.playlist()->selected_file_play(4, 77); });
        row("a row to load", 2100, [](Player& of) { emit of.playlist()->selected_file(4, 77); });
        row("the playing row removed", 2102, [](Player& of) { emit of.playlist()->stop_signal(); });
        row("files to add", 2004, [](Player& of) { emit of.playlist()->open_playlist_browser(); });
        row("a setting", 2204, [](Player& of) { emit of.settings()->update_signal(2204); });
        row("a button of the control bar", 2017,
            [](Player& of) { emit of.control_bar()->button_clicked(nullptr, QStringLiteral("mute")); });
        row("a button of the title bar", 2007,
            [](Player& of) { emit of.title_bar()->button_clicked(nullptr, QStringLiteral("close")); });
    }
    void what_a_panel_asks_for_is_posted_to_the_chart()
    {
        QFETCH(std::function<void(Player&)>, ask);
        QFETCH(int, number);
        player = std::make_unique<Player>();
        player->settle();
        EventCounter counter(player->window());
        ask(*player);
        QCoreApplication::sendPostedEvents(player->window());
        QCOMPARE(counter.numbers.value(0), number);
        if (number == 2101 || number == 2100) {
            QCOMPARE(counter.entries.size(), 1);
            QCOMPARE(counter.entries[0].index, 4);
            QCOMPARE(counter.entries[0].position_ms, 77U);
        }
    }

    // ---- the host's window

    void the_host_window_carries_the_films_name()
    {
        player = std::make_unique<Player>();
        player->settle();
        const QWidget* const host = DeviceScreen::instance()->window();
        QCOMPARE(host->windowTitle(), QStringLiteral("Tavel"));
        const QStringList files = player->make_files(1);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(host->windowTitle(), QStringLiteral("a.avi - Tavel"));
        // It stays chosen while it is stopped.
        player->post(player_event::stop);
        player->settle();
        QCOMPARE(host->windowTitle(), QStringLiteral("a.avi - Tavel"));
        player->window()->show_playlist();
        player->playlist()->remove_track();
        player->settle();
        QVERIFY(player->in(&TavelVideo::no_file_state));
        QCOMPARE(host->windowTitle(), QStringLiteral("Tavel"));
    }

    void a_name_with_the_toolkits_own_mark_is_shown_as_it_is()
    {
        player = std::make_unique<Player>();
        const QString file = player->directory() + QString::fromUtf8("/영화 [*] [1].avi");
        QFile film(file);
        QVERIFY(film.open(QIODevice::WriteOnly));
        player->hand_over({file});
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        const QWindow* const host = DeviceScreen::instance()->window()->windowHandle();
        QCOMPARE(host->title(), QString::fromUtf8("영화 [*] [1].avi - Tavel"));
    }

private:
    static QByteArray layout_without(const QByteArray& key)
    {
        QByteArray layout = "[MAIN]\n";
        for (const Place& place : PLACES)
            for (const auto& [name, value] : {std::pair(place.x_key, place.x), std::pair(place.y_key, place.y)})
                if (key != name)
                    layout += QByteArray(name) + " = " + QByteArray::number(value) + '\n';
        return layout;
    }
    QWidget* panel(const Place& place)
    {
        return player->window()->findChild<QWidget*>(QString::fromLatin1(place.panel));
    }
    /// The window's panels in the order in which they are drawn.
    QStringList from_the_bottom()
    {
        QStringList names;
        for (const QObject* child : player->window()->children())
            if (const auto* const widget = qobject_cast<const QWidget*>(child); widget && !widget->isWindow())
                names.append(widget->objectName());
        return names;
    }

    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, AssemblyTest)
#include "tst_assembly.moc"
