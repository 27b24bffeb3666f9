#include "bookmark.h"
#include "bookmark_widget.h"
#include "config.h"
#include "device_font.h"
#include "list_box_skin.h"
#include "lists_fixture.h"
#include "paint_record.h"
#include "qpe_application.h"
#include "test_main.h"

/// The bookmarks: the panel, the list in its rows, and its file.
class TestBookmarkWidget : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void it_is_empty_and_hidden_at_first();
    void adding_saves_and_numbers_the_rows();
    void the_same_place_may_be_marked_twice();
    void the_store_takes_more_than_the_player_lets_in();

    void removing_the_cursor_row_data();
    void removing_the_cursor_row();
    void nothing_is_painted_while_a_row_goes();
    void removing_from_an_empty_list_does_nothing();
    void moving_exchanges_the_bookmarks_and_keeps_the_numbers_data();
    void moving_exchanges_the_bookmarks_and_keeps_the_numbers();
    void moving_scrolls_no_further_than_the_list_has_to_and_is_not_announced_data();
    void moving_scrolls_no_further_than_the_list_has_to_and_is_not_announced();

    void any_bookmark_comes_back_as_it_was();
    void the_file_has_its_group_and_key();
    void no_shell_command_is_run();
    void an_unreadable_time_is_the_start_data();
    void an_unreadable_time_is_the_start();
    void a_trailing_path_without_a_time_is_kept_at_the_start();
    void going_away_saves_the_list();
    void a_missing_directory_does_no_harm();
    void a_full_disk_costs_one_line_and_no_list();

    void moving_the_cursor_announces_the_file();
    void choosing_a_bookmark_asks_for_its_position_in_milliseconds_data();
    void choosing_a_bookmark_asks_for_its_position_in_milliseconds();
    void a_missing_row_is_a_file_error();
    void each_button_does_its_work_data();
    void each_button_does_its_work();

    void the_list_stands_where_the_layout_says();
    void a_long_name_runs_while_its_row_is_current();
    void a_name_of_114_pixels_never_runs_and_one_of_115_does();
    void a_step_of_the_running_name_repaints_its_row();
    void both_titles_are_centred_in_their_boxes();
    void the_titles_fade_with_the_panel();
    void the_list_s_background_fades_with_the_panel();
    void every_button_is_composed_on_the_background();
    void the_main_window_sees_the_list_s_keys_but_return();
    void the_list_takes_the_focus();

private:
    void make_panel();
    void show();
    QStringList rows() const;
    Bookmark* row(int index) const { return static_cast<Bookmark*>(list()->item(index)); }
    ListBoxSkin* list() const { return lists_fixture::list_box_of(panel_.get()); }
    QStringList saved() const;
    QString file_path() const { return lists_fixture::data_directory() + QStringLiteral("/bookmark.dat"); }

    std::unique_ptr<lists_fixture::ShellCommands> shell_;
    std::unique_ptr<lists_fixture::MainWindow> window_;
    std::unique_ptr<BookmarkWidget> panel_;
};

void TestBookmarkWidget::init()
{
    lists_fixture::start_from_scratch();
    QDir().mkpath(lists_fixture::data_directory());
    shell_ = std::make_unique<lists_fixture::ShellCommands>();
    window_ = std::make_unique<lists_fixture::MainWindow>();
    make_panel();
}

void TestBookmarkWidget::cleanup()
{
    panel_.reset();
    window_.reset();
    shell_.reset();
}

void TestBookmarkWidget::make_panel()
{
    panel_.reset();
    panel_ = std::make_unique<BookmarkWidget>(window_.get(), "BOOKMARK");
}

void TestBookmarkWidget::show()
{
    window_->show();
    panel_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

/// Number, path and time of each row.
QStringList TestBookmarkWidget::rows() const
{
    QStringList result;
    for (int i = 0; i < panel_->get_count(); ++i)
        result.append(QStringLiteral("%1 %2 %3").arg(row(i)->number()).arg(row(i)->text()).arg(row(i)->time()));
    return result;
}

QStringList TestBookmarkWidget::saved() const
{
    Config file(file_path(), Config::File);
    file.setGroup(QStringLiteral("Bookmarks"));
    return file.readListEntry(QStringLiteral("bookmarks"));
}

void TestBookmarkWidget::it_is_empty_and_hidden_at_first()
{
    window_->show();
    QCOMPARE(panel_->get_count(), 0);
    QVERIFY(!panel_->isVisible());
}

void TestBookmarkWidget::adding_saves_and_numbers_the_rows()
{
    panel_->add_track(QStringLiteral("/a.avi"), 10);
    QCOMPARE(saved(), (QStringList{"/a.avi", "10"}));
    panel_->add_track(QStringLiteral("/b.avi"), 3725);
    QCOMPARE(saved(), (QStringList{"/a.avi", "10", "/b.avi", "3725"}));
    QCOMPARE(rows(), (QStringList{"1 /a.avi 10", "2 /b.avi 3725"}));
    QCOMPARE(row(1)->time_string(), QStringLiteral("01:02:05"));
}

void TestBookmarkWidget::the_same_place_may_be_marked_twice()
{
    panel_->add_track(QStringLiteral("/a.avi"), 10);
    panel_->add_track(QStringLiteral("/a.avi"), 10);
    QCOMPARE(panel_->get_count(), 2);
}

void TestBookmarkWidget::the_store_takes_more_than_the_player_lets_in()
{
    for (int i = 0; i < BookmarkWidget::capacity + 1; ++i)
        panel_->add_track(QStringLiteral("/a.avi"), static_cast<unsigned int>(i));
    QCOMPARE(panel_->get_count(), 100);
}

void TestBookmarkWidget::removing_the_cursor_row_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<int>("new_cursor");
    QTest::addColumn<QStringList>("announced");
    QTest::newRow("first") << 3 << 0 << QStringList{"1 /1 1", "2 /2 2"} << 0 << QStringList{"/1"};
    QTest::newRow("middle") << 3 << 1 << QStringList{"1 /0 0", "2 /2 2"} << 1 << QStringList{"/2"};
    QTest::newRow("last") << 3 << 2 << QStringList{"1 /0 0", "2 /1 1"} << 1 << QStringList{"/1"};
    QTest::newRow("the only one") << 1 << 0 << QStringList{} << -1 << QStringList{};
}

void TestBookmarkWidget::removing_the_cursor_row()
{
    QFETCH(int, count);
    QFETCH(int, cursor);
    for (int i = 0; i < count; ++i)
        panel_->add_track(QStringLiteral("/%1").arg(i), static_cast<unsigned int>(i));
    list()->setCurrentItem(cursor);
    QSignalSpy spy(panel_.get(), &BookmarkWidget::selected_file);
    panel_->remove_track();
    QTEST(rows(), "left");
    QTEST(list()->currentItem(), "new_cursor");
    QCOMPARE(saved().size(), 2 * (count - 1));
    QStringList announced;
    for (const QVariantList& arguments : std::as_const(spy))
        announced.append(arguments.first().toString());
    QTEST(announced, "announced");
}

void TestBookmarkWidget::nothing_is_painted_while_a_row_goes()
{
    panel_->add_track(QStringLiteral("/a.avi"), 0);
    panel_->add_track(QStringLiteral("/b.avi"), 0);
    bool was_suspended = false;
    connect(panel_.get(), &BookmarkWidget::selected_file, this, [&] { was_suspended = list()->repaintsSuspended(); });
    panel_->remove_track();
    QVERIFY(was_suspended);
    QVERIFY(!list()->repaintsSuspended());
}

void TestBookmarkWidget::removing_from_an_empty_list_does_nothing()
{
    panel_->remove_track();
    QCOMPARE(panel_->get_count(), 0);
    QVERIFY(!QFile::exists(file_path()));
}

void TestBookmarkWidget::moving_exchanges_the_bookmarks_and_keeps_the_numbers_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QStringList>("moved");
    QTest::addColumn<int>("new_cursor");
    const QStringList as_before{"1 /0 0", "2 /1 1", "3 /2 2"};
    QTest::newRow("up") << true << 2 << QStringList{"1 /0 0", "2 /2 2", "3 /1 1"} << 1;
    QTest::newRow("up at the top") << true << 0 << as_before << 0;
    QTest::newRow("down") << false << 0 << QStringList{"1 /1 1", "2 /0 0", "3 /2 2"} << 1;
    QTest::newRow("down at the bottom") << false << 2 << as_before << 2;
}

void TestBookmarkWidget::moving_exchanges_the_bookmarks_and_keeps_the_numbers()
{
    QFETCH(bool, up);
    QFETCH(int, cursor);
    QFETCH(QStringList, moved);
    for (int i = 0; i < 3; ++i)
        panel_->add_track(QStringLiteral("/%1").arg(i), static_cast<unsigned int>(i));
    list()->setCurrentItem(cursor);
    if (up)
        panel_->move_up();
    else
        panel_->move_down();
    QCOMPARE(rows(), moved);
    QTEST(list()->currentItem(), "new_cursor");
    QStringList in_file;
    for (const QString& line : std::as_const(moved))
        in_file << line.split(u' ').mid(1);
    QCOMPARE(saved(), in_file);
}

void TestBookmarkWidget::moving_scrolls_no_further_than_the_list_has_to_and_is_not_announced_data()
{
    lists_fixture::add_moves_to_scroll_after();
}

void TestBookmarkWidget::moving_scrolls_no_further_than_the_list_has_to_and_is_not_announced()
{
    QFETCH(int, step);
    QFETCH(int, cursor);
    QFETCH(int, top);
    for (int i = 0; i < lists_fixture::moved_list_length; ++i)
        panel_->add_track(QString::number(i), 0);
    list()->setCurrentItem(cursor);
    list()->setTopItem(top);
    const QSignalSpy announced(panel_.get(), &BookmarkWidget::selected_file);
    if (step < 0)
        panel_->move_up();
    else
        panel_->move_down();
    QTEST(list()->topItem(), "top_after");
    QCOMPARE(list()->currentItem(), cursor + step);
    QCOMPARE(announced.count(), 0);
}

void TestBookmarkWidget::any_bookmark_comes_back_as_it_was()
{
    const QStringList paths{QStringLiteral("/영화/봄날은 간다.avi"),
                            QStringLiteral("/영화.avi").normalized(QString::NormalizationForm_D),
                            QStringLiteral("/[a]=b, c;d\\n\".avi"),
                            QStringLiteral(" /blanks  "),
                            QStringLiteral("/two\nlines"),
                            QString(),
                            QStringLiteral("12")};
    for (int i = 0; i < paths.size(); ++i)
        panel_->add_track(paths[i], static_cast<unsigned int>(i * 1000));
    const QStringList before = rows();
    make_panel();
    QCOMPARE(rows(), before);
    QCOMPARE(row(3)->text(), paths[3]);
}

void TestBookmarkWidget::the_file_has_its_group_and_key()
{
    panel_->add_track(QStringLiteral("/a.avi"), 90);
    QFile file(file_path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    QVERIFY(content.startsWith("[Bookmarks]\n"));
    QVERIFY(content.contains("\nbookmarks = "));
}

void TestBookmarkWidget::no_shell_command_is_run()
{
    panel_->add_track(QStringLiteral("/a.avi"), 90);
    panel_->save();
    panel_->remove_track();
    make_panel();
    QCOMPARE(shell_->commands, QByteArrayList());
}

void TestBookmarkWidget::an_unreadable_time_is_the_start_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<unsigned int>("seconds");
    QTest::newRow("number") << "90" << 90U;
    QTest::newRow("letters") << "abc" << 0U;
    QTest::newRow("empty") << "" << 0U;
    QTest::newRow("number and letters") << "90s" << 0U;
    QTest::newRow("fraction") << "1.5" << 0U;
    QTest::newRow("hexadecimal") << "0x10" << 0U;
    QTest::newRow("too large") << "99999999999" << 0U;
    QTest::newRow("negative") << "-5" << 0U;
}

void TestBookmarkWidget::an_unreadable_time_is_the_start()
{
    QFETCH(QString, time);
    panel_.reset();
    {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("Bookmarks"));
        file.writeEntry(QStringLiteral("bookmarks"), QStringList{"/a.avi", time, "/b.avi", "7"});
    }
    make_panel();
    QTEST(row(0)->time(), "seconds");
    QCOMPARE(row(1)->time(), 7U);
    QCOMPARE(panel_->get_count(), 2);
}

void TestBookmarkWidget::a_trailing_path_without_a_time_is_kept_at_the_start()
{
    panel_.reset();
    {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("Bookmarks"));
        file.writeEntry(QStringLiteral("bookmarks"), QStringList{"/a.avi", "7", "/b.avi"});
    }
    make_panel();
    QCOMPARE(rows(), (QStringList{"1 /a.avi 7", "2 /b.avi 0"}));
    QCOMPARE(saved(), (QStringList{"/a.avi", "7", "/b.avi", "0"}));
}

void TestBookmarkWidget::going_away_saves_the_list()
{
    panel_->add_track(QStringLiteral("/a.avi"), 7);
    QVERIFY(QFile::remove(file_path()));
    panel_.reset();
    QCOMPARE(saved(), (QStringList{"/a.avi", "7"}));
}

void TestBookmarkWidget::a_missing_directory_does_no_harm()
{
    panel_.reset();
    QDir(lists_fixture::data_directory()).removeRecursively();
    make_panel();
    panel_->add_track(QStringLiteral("/a.avi"), 7);
    QCOMPARE(panel_->get_count(), 1);
}

void TestBookmarkWidget::a_full_disk_costs_one_line_and_no_list()
{
    panel_->add_track(QStringLiteral("/a.avi"), 7);
    const lists_fixture::Warnings warnings(QStringLiteral("bookmark.dat"));
    {
        const lists_fixture::FullDisk full(4);
        panel_->add_track(QStringLiteral("/b.avi"), 8);
        panel_->add_track(QStringLiteral("/c.avi"), 9);
    }
    QCOMPARE(warnings.count(), 1);
    QCOMPARE(panel_->get_count(), 3);
    QCOMPARE(saved(), (QStringList{"/a.avi", "7"}));
    panel_->save();
    QCOMPARE(saved().size(), 6);
}

void TestBookmarkWidget::moving_the_cursor_announces_the_file()
{
    panel_->add_track(QStringLiteral("/a.avi"), 7);
    panel_->add_track(QStringLiteral("/b.avi"), 8);
    show();
    const QSignalSpy announced(panel_.get(), &BookmarkWidget::selected_file);
    const QSignalSpy played(panel_.get(), &BookmarkWidget::selected_file_play);
    QTest::keyClick(list(), Qt::Key_Down);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0), QVariantList{"/b.avi"});
    QCOMPARE(played.count(), 0);
}

void TestBookmarkWidget::choosing_a_bookmark_asks_for_its_position_in_milliseconds_data()
{
    QTest::addColumn<unsigned int>("seconds");
    QTest::addColumn<unsigned int>("milliseconds");
    QTest::newRow("start") << 0U << 0U;
    QTest::newRow("a minute and a half") << 90U << 90000U;
    QTest::newRow("the last whole hour of 32 bits") << 4294800U << 4294800000U;
}

void TestBookmarkWidget::choosing_a_bookmark_asks_for_its_position_in_milliseconds()
{
    QFETCH(unsigned int, seconds);
    QFETCH(unsigned int, milliseconds);
    panel_->add_track(QStringLiteral("/a.avi"), seconds);
    show();
    const QSignalSpy played(panel_.get(), &BookmarkWidget::selected_file_play);
    QTest::keyClick(list(), Qt::Key_Return);
    QCOMPARE(played.count(), 1);
    QCOMPARE(played.at(0), (QVariantList{"/a.avi", milliseconds}));
}

void TestBookmarkWidget::a_missing_row_is_a_file_error()
{
    const QSignalSpy announced(panel_.get(), &BookmarkWidget::selected_file);
    const QSignalSpy played(panel_.get(), &BookmarkWidget::selected_file_play);
    QTest::ignoreMessage(QtWarningMsg, "File Error\n");
    panel_->get_listboxitem_slot(nullptr);
    QTest::ignoreMessage(QtWarningMsg, "File Error\n");
    panel_->get_listboxitemplay_slot(nullptr);
    QCOMPARE(announced.count() + played.count(), 0);
}

void TestBookmarkWidget::each_button_does_its_work_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("left");
    QTest::addColumn<int>("closes");
    QTest::newRow("up") << "up" << QStringList{"1 /1 1", "2 /0 0", "3 /2 2"} << 0;
    QTest::newRow("down") << "down" << QStringList{"1 /0 0", "2 /2 2", "3 /1 1"} << 0;
    QTest::newRow("add changes nothing") << "add" << QStringList{"1 /0 0", "2 /1 1", "3 /2 2"} << 0;
    QTest::newRow("minus") << "minus" << QStringList{"1 /0 0", "2 /2 2"} << 0;
    QTest::newRow("close") << "close" << QStringList{"1 /0 0", "2 /1 1", "3 /2 2"} << 1;
}

void TestBookmarkWidget::each_button_does_its_work()
{
    QFETCH(QString, button);
    for (int i = 0; i < 3; ++i)
        panel_->add_track(QStringLiteral("/%1").arg(i), static_cast<unsigned int>(i));
    list()->setCurrentItem(1);
    show();
    const QSignalSpy closes(panel_.get(), &BookmarkWidget::close_signal);
    QTest::mouseClick(panel_.get(), Qt::LeftButton, {}, panel_->button(button)->rectangle().center());
    QTEST(rows(), "left");
    QTEST(int(closes.count()), "closes");
}

void TestBookmarkWidget::the_list_stands_where_the_layout_says()
{
    QCOMPARE(panel_->size(), lists_fixture::bookmark_size);
    QCOMPARE(list()->geometry(), lists_fixture::bookmark_box);
    QCOMPARE(list()->rowHeight(), 22);
    QCOMPARE(list()->font(), device_font(QStringLiteral("v28"), 12, 50));
    const QImage expected =
        lists_fixture::panel_background(lists_fixture::bookmark_size).copy(lists_fixture::bookmark_box);
    QCOMPARE(list()->backgroundPixmap().toImage(), QPixmap::fromImage(expected).toImage());
}

void TestBookmarkWidget::a_long_name_runs_while_its_row_is_current()
{
    const QString name = QStringLiteral("/봄날의 어느 오후에 우리가 함께 걸었던 골목길.avi");
    panel_->add_track(name, 0);
    panel_->add_track(name, 0);
    show();
    QTRY_COMPARE(row(0)->scroll_offset(), 3);
    QTRY_COMPARE(row(0)->scroll_offset(), 6);
    QCOMPARE(row(1)->scroll_offset(), 0);
    panel_->hide();
    QVERIFY(!panel_->findChild<QTimer*>(QStringLiteral("marquee"))->isActive());
}

void TestBookmarkWidget::a_name_of_114_pixels_never_runs_and_one_of_115_does()
{
    const QFontMetrics metrics(device_font(QStringLiteral("v28"), 12, 50));
    // Put together from a wide and a narrow letter until the width fits to the pixel.
    const auto name_of_width = [&](int width) {
        for (int wide = 0; wide < 30; ++wide) {
            for (int narrow = 0; narrow < 60; ++narrow) {
                const QString name = QString(wide, QLatin1Char('W')) + QString(narrow, QLatin1Char('i'));
                if (metrics.horizontalAdvance(name) == width)
                    return name;
            }
        }
        return QString();
    };
    for (const auto& [width, offset] : {std::pair(114, 0), std::pair(115, 3)}) {
        const QString name = name_of_width(width);
        QVERIFY(!name.isEmpty());
        panel_->add_track(u'/' + name, 0);
        list()->setCurrentItem(panel_->get_count() - 1);
        QCOMPARE(row(list()->currentItem())->display_name_width(), width);
        panel_->update_scroll_text();
        QCOMPARE(row(list()->currentItem())->scroll_offset(), offset);
    }
}

void TestBookmarkWidget::a_step_of_the_running_name_repaints_its_row()
{
    panel_->add_track(QStringLiteral("/a.avi"), 0);
    panel_->add_track(u'/' + QString(60, QLatin1Char('W')), 0);
    list()->setCurrentItem(1);
    show();
    panel_->findChild<QTimer*>(QStringLiteral("marquee"))->stop();
    PaintRecord record(list());
    QVERIFY(record.begin());
    panel_->update_scroll_text();
    QTRY_VERIFY(record.covers(list()->itemRect(row(1))));
}

void TestBookmarkWidget::both_titles_are_centred_in_their_boxes()
{
    QImage shown(lists_fixture::bookmark_size.width(), 26, QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::black);
    QImage expected = shown;
    {
        QPainter painter(&shown);
        panel_->drawTitle(&painter);
    }
    QPainter painter(&expected);
    painter.setFont(device_font(QStringLiteral("v28"), 12, 87));
    painter.setPen(Qt::white);
    painter.drawText(QRect(0, 0, 124, 26), Qt::AlignCenter, QStringLiteral("BOOKMARKS"));
    QImage left_only = expected;
    painter.drawText(QRect(QPoint(124, 0), QPoint(191, 25)), Qt::AlignCenter, QStringLiteral("TIME"));
    painter.end();
    QCOMPARE(shown, expected);
    QVERIFY(shown != left_only);
}

void TestBookmarkWidget::the_titles_fade_with_the_panel()
{
    panel_->setAlphaOverride(100);
    QImage shown(lists_fixture::bookmark_size.width(), 26, QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::black);
    {
        QPainter painter(&shown);
        panel_->drawTitle(&painter);
    }
    const QColor brightest = lists_fixture::brightest(shown, shown.rect());
    QVERIFY2(brightest.red() >= 90 && brightest.red() <= 100, qPrintable(brightest.name()));
}

void TestBookmarkWidget::the_list_s_background_fades_with_the_panel()
{
    panel_->setAlphaOverride(100);
    QImage expected = lists_fixture::panel_background(lists_fixture::bookmark_size).copy(lists_fixture::bookmark_box);
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb pixel = expected.pixel(x, y);
            expected.setPixel(x, y, qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), (qAlpha(pixel) * 100) >> 8));
        }
    }
    QCOMPARE(list()->backgroundPixmap().toImage(), QPixmap::fromImage(expected).toImage());
}

void TestBookmarkWidget::every_button_is_composed_on_the_background()
{
    panel_->setAlphaOverride(200);
    for (const char* name : {"up", "down", "minus", "close"}) {
        const SkinButton* button = panel_->button(QString::fromLatin1(name));
        QImage expected = button->image(SkinButton::State::Normal);
        panel_->redrawImage(expected, button->rectangle().x(), button->rectangle().y());
        QCOMPARE(button->pixmap(SkinButton::State::Normal).toImage(), QPixmap::fromImage(expected).toImage());
    }
}

void TestBookmarkWidget::the_main_window_sees_the_list_s_keys_but_return()
{
    panel_->add_track(QStringLiteral("/a.avi"), 0);
    show();
    window_->seen.clear();
    QTest::keyClick(list(), Qt::Key_Return);
    QTest::keyClick(list(), Qt::Key_Escape);
    QList<int> keys;
    for (const auto& seen : std::as_const(window_->seen)) {
        if (seen.type == QEvent::KeyPress && seen.object == panel_.get())
            keys.append(seen.key);
    }
    QCOMPARE(keys, QList<int>{Qt::Key_Escape});
}

void TestBookmarkWidget::the_list_takes_the_focus()
{
    show();
    panel_->focus_filelist();
    QCOMPARE(window_->focusWidget(), list());
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestBookmarkWidget)
#include "tst_bookmark_widget.moc"
