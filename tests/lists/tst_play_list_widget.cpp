#include "device_font.h"
#include "list_box_skin.h"
#include "lists_fixture.h"
#include "media_file.h"
#include "paint_record.h"
#include "play_list_widget.h"
#include "qpe_application.h"
#include "test_main.h"

/// The playlist's panel: what it shows, its buttons and keys, and how it fades.
class TestPlayListWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void it_is_hidden_at_first_also_when_its_window_is_shown();
    void the_list_stands_where_the_layout_says();
    void a_layout_without_the_list_box_does_no_harm();
    void a_list_box_without_a_size_has_no_background();
    void the_list_shows_the_panel_s_background_behind_it();

    void moving_the_cursor_announces_the_row();
    void return_plays_the_row_from_its_start();
    void a_tap_on_the_current_row_plays_it();
    void a_missing_row_is_a_file_error();

    void each_button_does_its_work_data();
    void each_button_does_its_work();
    void other_buttons_do_nothing();

    void a_long_name_runs_while_its_row_is_current();
    void a_name_that_fits_its_line_never_runs();
    void nothing_runs_in_an_empty_list_or_a_hidden_panel();
    void a_step_of_the_running_name_repaints_its_row();
    void a_row_that_is_marked_or_loses_the_mark_is_repainted();

    void the_title_is_white_and_stands_in_its_place();
    void the_title_fades_with_the_panel();
    void the_list_s_background_fades_with_the_panel_data();
    void the_list_s_background_fades_with_the_panel();
    void a_new_background_reaches_the_list();
    void pictures_are_composed_on_the_background_and_keep_their_own_alpha_data();
    void pictures_are_composed_on_the_background_and_keep_their_own_alpha();
    void every_button_is_composed_on_the_background();

    void the_main_window_sees_the_list_s_keys_as_the_panel_s_but_return();
    void the_main_window_sees_the_list_s_other_events_too();
    void a_key_that_the_main_window_takes_does_not_reach_the_list();
    void other_objects_are_not_filtered();
    void the_list_takes_the_focus();

private:
    ListBoxSkin* list() const { return lists_fixture::list_box_of(panel_.get()); }
    MediaFile* row(int index) const { return static_cast<MediaFile*>(list()->item(index)); }
    void show();
    void click(const char* button);

    std::unique_ptr<lists_fixture::ShellCommands> shell_;
    std::unique_ptr<lists_fixture::MainWindow> window_;
    std::unique_ptr<PlayListWidget> panel_;
};

namespace
{

const QString long_name = QStringLiteral("/f/봄날의 어느 오후에 우리가 함께 걸었던 그 길고 긴 골목길 이야기 3부.avi");

} // namespace

void TestPlayListWidget::init()
{
    lists_fixture::start_from_scratch();
    QDir().mkpath(lists_fixture::data_directory());
    shell_ = std::make_unique<lists_fixture::ShellCommands>();
    window_ = std::make_unique<lists_fixture::MainWindow>();
    panel_ = std::make_unique<PlayListWidget>(window_.get(), "PLAYLIST");
}

void TestPlayListWidget::cleanup()
{
    panel_.reset();
    window_.reset();
    shell_.reset();
}

void TestPlayListWidget::show()
{
    window_->show();
    panel_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

void TestPlayListWidget::click(const char* button)
{
    const SkinButton* found = panel_->button(QString::fromLatin1(button));
    QVERIFY(found);
    QTest::mouseClick(panel_.get(), Qt::LeftButton, {}, found->rectangle().center());
}

void TestPlayListWidget::it_is_hidden_at_first_also_when_its_window_is_shown()
{
    window_->show();
    QVERIFY(!panel_->isVisible());
    QCOMPARE(panel_->objectName(), QStringLiteral("PLAYLIST"));
}

void TestPlayListWidget::the_list_stands_where_the_layout_says()
{
    QCOMPARE(panel_->size(), lists_fixture::play_list_size);
    QCOMPARE(list()->geometry(), lists_fixture::play_list_box);
    QCOMPARE(list()->rowHeight(), 22);
    QCOMPARE(list()->font(), device_font(QStringLiteral("v28"), 12, 50));
    QCOMPARE(list()->parentWidget(), panel_.get());
}

void TestPlayListWidget::a_list_box_without_a_size_has_no_background()
{
    panel_.reset();
    QFile layout(QPEApplication::qpeDir() + QStringLiteral("pics/tavel_video/config"));
    QVERIFY(layout.open(QIODevice::ReadOnly));
    const QByteArray text = layout.readAll().replace("[PLAYLIST_LISTBOX]", "[ANOTHER_LISTBOX]");
    layout.close();
    QVERIFY(layout.open(QIODevice::WriteOnly));
    QCOMPARE(layout.write(text), text.size());
    layout.close();
    panel_ = std::make_unique<PlayListWidget>(window_.get(), "PLAYLIST");
    QVERIFY(list()->geometry().isEmpty());
    QVERIFY(list()->backgroundPixmap().isNull());
    QVERIFY(!panel_->backgroundPixmap().isNull());
    panel_->setBackgroundPixmap(panel_->backgroundPixmap());
    QVERIFY(list()->backgroundPixmap().isNull());
    panel_->setAlphaOverride(100);
    QVERIFY(list()->backgroundPixmap().isNull());
}

void TestPlayListWidget::a_layout_without_the_list_box_does_no_harm()
{
    panel_.reset();
    QFile::remove(QPEApplication::qpeDir() + QStringLiteral("pics/tavel_video/config"));
    panel_ = std::make_unique<PlayListWidget>(window_.get(), "PLAYLIST");
    show();
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->setAlphaOverride(100);
    panel_->update_scroll_text();
    QCOMPARE(list()->pos(), QPoint(-1, -1));
    QCOMPARE(panel_->get_count(), 1);
}

void TestPlayListWidget::the_list_shows_the_panel_s_background_behind_it()
{
    const QImage expected =
        lists_fixture::panel_background(lists_fixture::play_list_size).copy(lists_fixture::play_list_box);
    QCOMPARE(list()->backgroundPixmap().toImage(), QPixmap::fromImage(expected).toImage());
}

void TestPlayListWidget::moving_the_cursor_announces_the_row()
{
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(QStringLiteral("/b.avi"));
    show();
    const QSignalSpy announced(panel_.get(), &PlayListWidget::selected_file);
    const QSignalSpy played(panel_.get(), &PlayListWidget::selected_file_play);
    QTest::keyClick(list(), Qt::Key_Down);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0), (QVariantList{1, 0U}));
    QCOMPARE(played.count(), 0);
}

void TestPlayListWidget::return_plays_the_row_from_its_start()
{
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(QStringLiteral("/b.avi"));
    panel_->save_now_playing(5000);
    panel_->set_current_index(1);
    show();
    const QSignalSpy played(panel_.get(), &PlayListWidget::selected_file_play);
    QTest::keyClick(list(), Qt::Key_Return);
    QCOMPARE(played.count(), 1);
    QCOMPARE(played.at(0), (QVariantList{1, 0U}));
}

void TestPlayListWidget::a_tap_on_the_current_row_plays_it()
{
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(QStringLiteral("/b.avi"));
    show();
    const QSignalSpy announced(panel_.get(), &PlayListWidget::selected_file);
    const QSignalSpy played(panel_.get(), &PlayListWidget::selected_file_play);
    const QPoint second_row = list()->itemRect(row(1)).center();
    QTest::mouseClick(list(), Qt::LeftButton, {}, second_row);
    QCOMPARE(announced.count(), 1);
    QTest::mouseClick(list(), Qt::LeftButton, {}, second_row);
    QCOMPARE(played.count(), 1);
    QCOMPARE(played.at(0), (QVariantList{1, 0U}));
}

void TestPlayListWidget::a_missing_row_is_a_file_error()
{
    const QSignalSpy announced(panel_.get(), &PlayListWidget::selected_file);
    const QSignalSpy played(panel_.get(), &PlayListWidget::selected_file_play);
    QTest::ignoreMessage(QtWarningMsg, "File Error\n");
    panel_->get_listboxitem_slot(nullptr);
    QTest::ignoreMessage(QtWarningMsg, "File Error\n");
    panel_->get_listboxitemplay_slot(nullptr);
    QCOMPARE(announced.count() + played.count(), 0);
}

void TestPlayListWidget::each_button_does_its_work_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<int>("browsers");
    QTest::addColumn<int>("closes");
    QTest::newRow("up") << "up" << QStringList{"b", "a", "c"} << 0 << 0;
    QTest::newRow("down") << "down" << QStringList{"a", "c", "b"} << 0 << 0;
    QTest::newRow("add") << "add" << QStringList{"a", "b", "c"} << 1 << 0;
    QTest::newRow("minus") << "minus" << QStringList{"a", "c"} << 0 << 0;
    QTest::newRow("close") << "close" << QStringList{"a", "b", "c"} << 0 << 1;
}

void TestPlayListWidget::each_button_does_its_work()
{
    for (const char* name : {"a", "b", "c"})
        panel_->add_track(QString::fromLatin1(name));
    panel_->set_current_index(1);
    show();
    const QSignalSpy browsers(panel_.get(), &PlayListWidget::open_playlist_browser);
    const QSignalSpy closes(panel_.get(), &PlayListWidget::close_signal);
    QFETCH(QString, button);
    click(button.toLatin1().constData());
    QStringList files;
    for (int i = 0; i < panel_->get_count(); ++i)
        files.append(panel_->get_filename(i));
    QTEST(files, "files");
    QTEST(int(browsers.count()), "browsers");
    QTEST(int(closes.count()), "closes");
}

void TestPlayListWidget::other_buttons_do_nothing()
{
    panel_->add_track(QStringLiteral("/a.avi"));
    const QSignalSpy browsers(panel_.get(), &PlayListWidget::open_playlist_browser);
    const QSignalSpy closes(panel_.get(), &PlayListWidget::close_signal);
    for (const char* name : {"", "play", "UP", "minus_long", "listopen"})
        emit panel_->button_clicked(panel_.get(), QString::fromLatin1(name));
    QCOMPARE(panel_->get_count(), 1);
    QCOMPARE(browsers.count() + closes.count(), 0);
}

void TestPlayListWidget::a_long_name_runs_while_its_row_is_current()
{
    panel_->add_track(long_name);
    panel_->add_track(long_name);
    show();
    QTRY_COMPARE(row(0)->scroll_offset(), 3);
    QTRY_COMPARE(row(0)->scroll_offset(), 6);
    QCOMPARE(row(1)->scroll_offset(), 0);
    panel_->set_current_index(1);
    QTRY_VERIFY(row(1)->scroll_offset() > 0);
    panel_->set_current_index(0);
    list()->repaint();
    QCOMPARE(row(0)->scroll_offset(), 0);
}

void TestPlayListWidget::a_name_that_fits_its_line_never_runs()
{
    // The longest name that fits, and the shortest that does not.
    QString name = QStringLiteral("/i");
    panel_->add_track(name);
    while (row(0)->display_name_width() + 33 <= list()->visibleWidth()) {
        panel_->clear();
        name += QLatin1Char('i');
        panel_->add_track(name);
    }
    panel_->update_scroll_text();
    QCOMPARE(row(0)->scroll_offset(), 3);
    panel_->clear();
    name.chop(1);
    panel_->add_track(name);
    panel_->update_scroll_text();
    QCOMPARE(row(0)->scroll_offset(), 0);
}

void TestPlayListWidget::nothing_runs_in_an_empty_list_or_a_hidden_panel()
{
    panel_->update_scroll_text();
    const auto* timer = panel_->findChild<QTimer*>(QStringLiteral("marquee"));
    QVERIFY(timer);
    QCOMPARE(timer->interval(), 300);
    QVERIFY(!timer->isActive());
    show();
    QVERIFY(timer->isActive());
    panel_->hide();
    QVERIFY(!timer->isActive());
}

void TestPlayListWidget::a_step_of_the_running_name_repaints_its_row()
{
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(long_name);
    panel_->set_current_index(1);
    show();
    panel_->findChild<QTimer*>(QStringLiteral("marquee"))->stop();
    PaintRecord record(list());
    QVERIFY(record.begin());
    panel_->update_scroll_text();
    QTRY_VERIFY(record.covers(list()->itemRect(row(1))));
}

void TestPlayListWidget::a_row_that_is_marked_or_loses_the_mark_is_repainted()
{
    for (const char* name : {"/a.avi", "/b.avi", "/c.avi"})
        panel_->add_track(QString::fromLatin1(name));
    panel_->set_now_playing(1);
    show();
    panel_->findChild<QTimer*>(QStringLiteral("marquee"))->stop();
    PaintRecord record(list());
    QVERIFY(record.begin());
    panel_->update_now_playing(true);
    QTRY_VERIFY(record.covers(list()->itemRect(row(1))));
    QVERIFY(record.begin());
    panel_->set_now_playing(2);
    QTRY_VERIFY(record.covers(list()->itemRect(row(1))) && record.covers(list()->itemRect(row(2))));
    QVERIFY(record.begin());
    panel_->update_now_playing(false);
    QTRY_VERIFY(record.covers(list()->itemRect(row(2))));
}

void TestPlayListWidget::the_title_is_white_and_stands_in_its_place()
{
    const QFontMetrics metrics(device_font(QStringLiteral("v28"), 12, 87));
    QImage shown(120, 26, QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::black);
    QImage expected = shown;
    {
        QPainter painter(&shown);
        panel_->drawTitle(&painter);
    }
    {
        QPainter painter(&expected);
        painter.setFont(device_font(QStringLiteral("v28"), 12, 87));
        painter.setPen(Qt::white);
        painter.drawText(13, metrics.ascent() + metrics.leading() / 2 + 8, QStringLiteral("PLAY LIST"));
    }
    QCOMPARE(shown, expected);
    const auto columns = lists_fixture::inked_columns(shown, shown.rect(), QImage(shown.size(), shown.format()));
    QVERIFY(columns.first >= 0);
}

void TestPlayListWidget::the_title_fades_with_the_panel()
{
    QImage shown(120, 26, QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::black);
    panel_->setAlphaOverride(100);
    {
        QPainter painter(&shown);
        panel_->drawTitle(&painter);
    }
    const QColor brightest = lists_fixture::brightest(shown, shown.rect());
    QVERIFY2(brightest.red() >= 90 && brightest.red() <= 100, qPrintable(brightest.name()));
}

void TestPlayListWidget::the_list_s_background_fades_with_the_panel_data()
{
    QTest::addColumn<int>("alpha");
    for (const int alpha : {0, 1, 100, 128, 254, 255})
        QTest::addRow("%d", alpha) << alpha;
}

void TestPlayListWidget::the_list_s_background_fades_with_the_panel()
{
    QFETCH(int, alpha);
    panel_->setAlphaOverride(static_cast<unsigned char>(alpha));
    QImage expected = lists_fixture::panel_background(lists_fixture::play_list_size).copy(lists_fixture::play_list_box);
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb pixel = expected.pixel(x, y);
            expected.setPixel(x, y, qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), (qAlpha(pixel) * alpha) >> 8));
        }
    }
    QCOMPARE(list()->backgroundPixmap().toImage(), QPixmap::fromImage(expected).toImage());
}

void TestPlayListWidget::a_new_background_reaches_the_list()
{
    QPixmap blue(lists_fixture::play_list_size);
    blue.fill(QColor(0, 0, 200, 77));
    panel_->setBackgroundPixmap(blue);
    QCOMPARE(panel_->backgroundPixmap().toImage(), blue.toImage());
    QCOMPARE(list()->backgroundPixmap().toImage(), blue.copy(lists_fixture::play_list_box).toImage());
}

void TestPlayListWidget::pictures_are_composed_on_the_background_and_keep_their_own_alpha_data()
{
    QTest::addColumn<int>("own_alpha");
    QTest::addColumn<int>("override_alpha");
    QTest::newRow("opaque") << 255 << 255;
    QTest::newRow("half") << 128 << 255;
    QTest::newRow("half, faded") << 128 << 100;
    QTest::newRow("transparent") << 0 << 255;
    QTest::newRow("invisible panel") << 255 << 0;
}

void TestPlayListWidget::pictures_are_composed_on_the_background_and_keep_their_own_alpha()
{
    QFETCH(int, own_alpha);
    QFETCH(int, override_alpha);
    panel_->setAlphaOverride(static_cast<unsigned char>(override_alpha));
    QImage picture(20, 10, QImage::Format_ARGB32);
    picture.fill(QColor(250, 10, 200, own_alpha));
    panel_->redrawImage(picture, 30, 40);
    QCOMPARE(picture.size(), QSize(20, 10));

    const QImage background = panel_->backgroundImage();
    const auto blend = [](int over, int over_alpha, int under, int under_alpha) {
        const double a = over_alpha / 255.0;
        const double b = under_alpha / 255.0 * (1 - a);
        return (over * a + under * b) / (a + b);
    };
    for (const QPoint& place : {QPoint(0, 0), QPoint(19, 9), QPoint(7, 3)}) {
        const QColor under = background.pixelColor(place + QPoint(30, 40));
        const QRgb pixel = picture.pixel(place);
        QCOMPARE(qAlpha(pixel), (own_alpha * override_alpha) >> 8);
        const double red = blend(250, own_alpha, under.red(), under.alpha());
        const double green = blend(10, own_alpha, under.green(), under.alpha());
        QVERIFY2(std::abs(qRed(pixel) - red) <= 3, qPrintable(QStringLiteral("%1 %2").arg(qRed(pixel)).arg(red)));
        QVERIFY2(std::abs(qGreen(pixel) - green) <= 3,
                 qPrintable(QStringLiteral("%1 %2").arg(qGreen(pixel)).arg(green)));
    }
}

void TestPlayListWidget::every_button_is_composed_on_the_background()
{
    panel_->setAlphaOverride(200);
    for (const char* name : {"up", "down", "add", "minus", "close"}) {
        const SkinButton* button = panel_->button(QString::fromLatin1(name));
        QImage expected = button->image(SkinButton::State::Normal);
        panel_->redrawImage(expected, button->rectangle().x(), button->rectangle().y());
        QVERIFY(expected != button->image(SkinButton::State::Normal));
        QCOMPARE(button->pixmap(SkinButton::State::Normal).toImage(), QPixmap::fromImage(expected).toImage());
    }
}

void TestPlayListWidget::the_main_window_sees_the_list_s_keys_as_the_panel_s_but_return()
{
    show();
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(QStringLiteral("/b.avi"));
    const auto presses = [this] {
        QList<int> keys;
        for (const auto& seen : std::as_const(window_->seen)) {
            if (seen.type == QEvent::KeyPress && seen.object == panel_.get())
                keys.append(seen.key);
        }
        return keys;
    };
    window_->seen.clear();
    QTest::keyClick(list(), Qt::Key_Escape);
    QTest::keyClick(list(), Qt::Key_Return);
    QTest::keyClick(list(), Qt::Key_F5);
    QTest::keyClick(list(), Qt::Key_Down);
    QCOMPARE(presses(), (QList<int>{Qt::Key_Escape, Qt::Key_F5, Qt::Key_Down}));
    // What the main window does not take goes on to the list.
    QCOMPARE(panel_->get_current_index(), 1);
}

void TestPlayListWidget::the_main_window_sees_the_list_s_other_events_too()
{
    show();
    const auto seen_of_the_panel = [this](QEvent::Type type) {
        return std::any_of(window_->seen.cbegin(), window_->seen.cend(),
                           [&](const auto& seen) { return seen.type == type && seen.object == panel_.get(); });
    };
    window_->seen.clear();
    QTest::keyPress(list(), Qt::Key_Return);
    QVERIFY(!seen_of_the_panel(QEvent::KeyPress));
    QTest::keyRelease(list(), Qt::Key_Return);
    QVERIFY(seen_of_the_panel(QEvent::KeyRelease));
    QTest::mouseClick(list(), Qt::LeftButton);
    QVERIFY(seen_of_the_panel(QEvent::MouseButtonPress));
    QVERIFY(seen_of_the_panel(QEvent::MouseButtonRelease));
}

void TestPlayListWidget::a_key_that_the_main_window_takes_does_not_reach_the_list()
{
    show();
    panel_->add_track(QStringLiteral("/a.avi"));
    panel_->add_track(QStringLiteral("/b.avi"));
    window_->filters_all = true;
    QTest::keyClick(list(), Qt::Key_Down);
    QCOMPARE(panel_->get_current_index(), 0);
    const QSignalSpy played(panel_.get(), &PlayListWidget::selected_file_play);
    QTest::keyPress(list(), Qt::Key_Return);
    QCOMPARE(played.count(), 1);
}

void TestPlayListWidget::other_objects_are_not_filtered()
{
    window_->filters_all = true;
    window_->seen.clear();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QVERIFY(!panel_->eventFilter(panel_.get(), &press));
    QVERIFY(!panel_->eventFilter(window_.get(), &press));
    QVERIFY(window_->seen.isEmpty());
    QVERIFY(panel_->eventFilter(list(), &press));
}

void TestPlayListWidget::the_list_takes_the_focus()
{
    show();
    panel_->focus_filelist();
    QCOMPARE(window_->focusWidget(), list());
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestPlayListWidget)
#include "tst_play_list_widget.moc"
