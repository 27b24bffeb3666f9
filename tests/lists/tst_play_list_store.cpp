#include "config.h"
#include "list_box_skin.h"
#include "lists_fixture.h"
#include "media_file.h"
#include "play_list_widget.h"
#include "qpe_application.h"
#include "test_main.h"

#include <unistd.h>

/// The playlist as a list: what its operations do to rows, cursor and now-playing entry, and its file.
class TestPlayListStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void it_is_empty_on_a_device_fresh_from_the_box();
    void the_first_file_added_is_now_playing();
    void adding_numbers_the_rows_and_does_not_save();
    void the_same_path_may_be_added_twice_and_the_first_is_found();
    void there_is_no_file_name_outside_the_list_data();
    void there_is_no_file_name_outside_the_list();
    void the_store_takes_more_than_the_adder_lets_in();

    void removing_the_cursor_row_data();
    void removing_the_cursor_row();
    void removing_from_an_empty_list_does_nothing();
    void removing_does_not_announce_the_cursor_and_later_moves_do();
    void removing_the_now_playing_row_prints_its_index();
    void the_mark_stays_on_its_file_when_a_row_above_goes();
    void nothing_is_painted_while_rows_go();
    void removing_does_not_save();
    void removing_the_now_playing_entry_keeps_the_cursor_on_its_file_data();
    void removing_the_now_playing_entry_keeps_the_cursor_on_its_file();
    void removing_the_now_playing_entry_without_one_does_nothing();
    void removing_the_only_entry_leaves_none();
    void a_now_playing_index_past_the_end_takes_no_row_with_it();

    void moving_exchanges_the_paths_and_keeps_the_numbers_data();
    void moving_exchanges_the_paths_and_keeps_the_numbers();
    void moving_takes_the_mark_along();
    void moving_scrolls_no_further_than_the_list_has_to_data();
    void moving_scrolls_no_further_than_the_list_has_to();
    void moving_is_not_announced_and_does_not_save();

    void the_mark_is_there_only_while_something_plays();
    void the_mark_goes_to_the_new_now_playing_row();
    void a_now_playing_index_past_the_end_draws_nothing();
    void the_next_file_is_played_data();
    void the_next_file_is_played();
    void no_next_file_without_a_now_playing_entry();
    void the_now_playing_entry_is_loaded_and_played_from_its_position();
    void nothing_is_loaded_or_played_without_a_now_playing_entry();
    void clearing_forgets_everything_but_the_file();

    void the_list_comes_back_as_it_was();
    void any_name_comes_back_as_it_was_data();
    void any_name_comes_back_as_it_was();
    void nine_hundred_and_ninety_nine_entries_come_back();
    void the_file_has_its_groups_and_keys();
    void a_file_without_now_playing_makes_the_first_row_now_playing_data();
    void a_file_without_now_playing_makes_the_first_row_now_playing();
    void a_now_playing_index_past_the_end_is_kept_as_it_is();
    void rows_of_missing_files_are_kept();
    void each_saving_is_followed_by_sync();
    void saving_the_position_and_going_away_save_the_list();

    void the_crash_guard_blocks_only_when_it_is_set_data();
    void the_crash_guard_blocks_only_when_it_is_set();
    void the_crash_guard_survives_a_restart_and_the_saving_of_the_list();
    void the_crash_guard_is_followed_by_sync();

    void a_good_directory_is_left_alone();
    void a_missing_directory_is_made_with_its_parents();
    void a_file_in_the_directory_s_place_goes();
    void remaking_the_directory_never_reaches_beside_it();
    void a_directory_that_cannot_be_made_is_said_in_one_line();
    void a_full_disk_costs_one_line_and_no_list();
    void a_read_only_directory_costs_one_line_and_no_list();
    void a_file_without_memory_is_said_and_left_alone();

private:
    void make_panel();
    void add(const QStringList& names);
    QStringList files() const;
    QList<int> numbers() const;
    MediaFile* row(int index) const;
    QString file_path() const { return lists_fixture::data_directory() + QStringLiteral("/playlist.dat"); }

    std::unique_ptr<lists_fixture::ShellCommands> shell_;
    std::unique_ptr<lists_fixture::MainWindow> window_;
    PlayListWidget* panel_ = nullptr;
};

namespace
{

QStringList letters(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(QString(QLatin1Char(static_cast<char>('a' + i))));
    return names;
}

} // namespace

void TestPlayListStore::init()
{
    lists_fixture::start_from_scratch();
    QDir().mkpath(lists_fixture::data_directory());
    shell_ = std::make_unique<lists_fixture::ShellCommands>();
    make_panel();
}

void TestPlayListStore::cleanup()
{
    window_.reset();
    shell_.reset();
    panel_ = nullptr;
}

void TestPlayListStore::make_panel()
{
    window_.reset();
    window_ = std::make_unique<lists_fixture::MainWindow>();
    panel_ = new PlayListWidget(window_.get(), "PLAYLIST");
}

void TestPlayListStore::add(const QStringList& names)
{
    for (const QString& name : names)
        panel_->add_track(name);
}

QStringList TestPlayListStore::files() const
{
    QStringList result;
    for (int i = 0; i < panel_->get_count(); ++i)
        result.append(panel_->get_filename(i));
    return result;
}

MediaFile* TestPlayListStore::row(int index) const
{
    return static_cast<MediaFile*>(lists_fixture::list_box_of(panel_)->item(index));
}

QList<int> TestPlayListStore::numbers() const
{
    QList<int> result;
    for (int i = 0; i < panel_->get_count(); ++i)
        result.append(row(i)->number_string().toInt());
    return result;
}

void TestPlayListStore::it_is_empty_on_a_device_fresh_from_the_box()
{
    QCOMPARE(panel_->get_count(), 0);
    QCOMPARE(panel_->get_current_index(), -1);
    QCOMPARE(panel_->get_now_playing(), -1);
    QVERIFY(panel_->can_entry());
}

void TestPlayListStore::the_first_file_added_is_now_playing()
{
    add({"/a.avi"});
    QCOMPARE(panel_->get_now_playing(), 0);
    QCOMPARE(panel_->get_current_index(), 0);
    add({"/b.avi"});
    QCOMPARE(panel_->get_now_playing(), 0);
}

void TestPlayListStore::adding_numbers_the_rows_and_does_not_save()
{
    add({"/a.avi", "/b.avi", "/c.avi"});
    QCOMPARE(numbers(), (QList<int>{1, 2, 3}));
    QCOMPARE(files(), (QStringList{"/a.avi", "/b.avi", "/c.avi"}));
    QVERIFY(!QFile::exists(file_path()));
    QCOMPARE(shell_->commands, QByteArrayList());
}

void TestPlayListStore::the_same_path_may_be_added_twice_and_the_first_is_found()
{
    QCOMPARE(panel_->get_current_index(QStringLiteral("/a.avi")), -1);
    add({"/x.avi", "/a.avi", "/a.avi"});
    QCOMPARE(panel_->get_count(), 3);
    QCOMPARE(panel_->get_current_index(QStringLiteral("/a.avi")), 1);
    QCOMPARE(panel_->get_current_index(QStringLiteral("/A.avi")), -1);
    QCOMPARE(panel_->get_current_index(QStringLiteral("a.avi")), -1);
}

void TestPlayListStore::there_is_no_file_name_outside_the_list_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("before") << -1;
    QTest::newRow("behind") << 2;
    QTest::newRow("far behind") << 1000000;
}

void TestPlayListStore::there_is_no_file_name_outside_the_list()
{
    add({"/a.avi", "/b.avi"});
    QFETCH(int, index);
    QVERIFY(panel_->get_filename(index).isEmpty());
    QCOMPARE(panel_->get_filename(1), QStringLiteral("/b.avi"));
}

void TestPlayListStore::the_store_takes_more_than_the_adder_lets_in()
{
    for (int i = 0; i < PlayListWidget::capacity + 1; ++i)
        panel_->add_track(QStringLiteral("/%1.avi").arg(i));
    QCOMPARE(panel_->get_count(), 1000);
    QCOMPARE(row(998)->number_string(), QStringLiteral("999"));
    QCOMPARE(row(999)->number_string(), QStringLiteral("1000"));
}

void TestPlayListStore::removing_the_cursor_row_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("now_playing");
    QTest::addColumn<QStringList>("files_left");
    QTest::addColumn<int>("new_cursor");
    QTest::addColumn<int>("new_now_playing");
    QTest::addColumn<int>("stops");
    QTest::newRow("first of several") << 4 << 0 << 2 << QStringList{"b", "c", "d"} << 0 << 1 << 0;
    QTest::newRow("before now playing") << 4 << 1 << 2 << QStringList{"a", "c", "d"} << 1 << 1 << 0;
    QTest::newRow("behind now playing") << 4 << 2 << 0 << QStringList{"a", "b", "d"} << 2 << 0 << 0;
    QTest::newRow("last behind now playing") << 4 << 3 << 0 << QStringList{"a", "b", "c"} << 2 << 0 << 0;
    QTest::newRow("now playing in the middle") << 4 << 1 << 1 << QStringList{"a", "c", "d"} << 1 << 1 << 1;
    QTest::newRow("now playing first") << 4 << 0 << 0 << QStringList{"b", "c", "d"} << 0 << 0 << 1;
    QTest::newRow("now playing last") << 4 << 3 << 3 << QStringList{"a", "b", "c"} << 2 << 2 << 1;
    QTest::newRow("the only row") << 1 << 0 << 0 << QStringList{} << -1 << -1 << 1;
    QTest::newRow("the only row, nothing now playing") << 1 << 0 << -1 << QStringList{} << -1 << -1 << 0;
}

void TestPlayListStore::removing_the_cursor_row()
{
    QFETCH(int, count);
    QFETCH(int, cursor);
    QFETCH(int, now_playing);
    QFETCH(int, stops);
    add(letters(count));
    panel_->set_now_playing(now_playing);
    panel_->set_current_index(cursor);
    const QSignalSpy stop(panel_, &PlayListWidget::stop_signal);
    lists_fixture::StandardOutput output;
    panel_->remove_track();
    QTEST(files(), "files_left");
    QTEST(panel_->get_current_index(), "new_cursor");
    QTEST(panel_->get_now_playing(), "new_now_playing");
    QCOMPARE(stop.count(), stops);
    for (int i = 0; i < panel_->get_count(); ++i)
        QCOMPARE(row(i)->number_string(), QStringLiteral("00%1").arg(i + 1));
}

void TestPlayListStore::removing_from_an_empty_list_does_nothing()
{
    const QSignalSpy stop(panel_, &PlayListWidget::stop_signal);
    panel_->remove_track();
    QCOMPARE(stop.count(), 0);
    QCOMPARE(panel_->get_now_playing(), -1);
}

void TestPlayListStore::removing_does_not_announce_the_cursor_and_later_moves_do()
{
    add(letters(4));
    const lists_fixture::StandardOutput output;
    panel_->set_current_index(1);
    const QSignalSpy announced(panel_, &PlayListWidget::selected_file);
    panel_->remove_track();
    panel_->set_now_playing(0);
    panel_->remove_now_playing();
    QCOMPARE(announced.count(), 0);
    panel_->set_current_index(1);
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0), (QVariantList{1, 0U}));
}

void TestPlayListStore::removing_the_now_playing_row_prints_its_index()
{
    add(letters(4));
    panel_->set_now_playing(2);
    lists_fixture::StandardOutput output;
    panel_->set_current_index(1);
    panel_->remove_track();
    QCOMPARE(output.text(), QByteArray());
    panel_->remove_track();
    QCOMPARE(output.text(), QByteArray("NOW PLAYING INDEX: 1\n"));
}

void TestPlayListStore::the_mark_stays_on_its_file_when_a_row_above_goes()
{
    add(letters(4));
    panel_->set_now_playing(2);
    panel_->update_now_playing(true);
    panel_->set_current_index(0);
    panel_->remove_track();
    QCOMPARE(panel_->get_filename(panel_->get_now_playing()), QStringLiteral("c"));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(row(i)->now_playing(), i == 1);
}

void TestPlayListStore::nothing_is_painted_while_rows_go()
{
    add(letters(3));
    const auto* list = lists_fixture::list_box_of(panel_);
    bool was_suspended = false;
    connect(panel_, &PlayListWidget::stop_signal, this, [&] { was_suspended = list->repaintsSuspended(); });
    const lists_fixture::StandardOutput output;
    panel_->remove_track();
    QVERIFY(was_suspended);
    QVERIFY(!list->repaintsSuspended());
    was_suspended = false;
    panel_->remove_now_playing();
    QVERIFY(was_suspended);
    QVERIFY(!list->repaintsSuspended());
}

void TestPlayListStore::removing_does_not_save()
{
    add(letters(3));
    panel_->remove_track();
    QVERIFY(!QFile::exists(file_path()));
}

void TestPlayListStore::removing_the_now_playing_entry_keeps_the_cursor_on_its_file_data()
{
    QTest::addColumn<int>("now_playing");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QStringList>("files_left");
    QTest::addColumn<int>("new_cursor");
    QTest::addColumn<int>("new_now_playing");
    QTest::newRow("above the cursor") << 1 << 3 << QStringList{"a", "c", "d", "e"} << 2 << 1;
    QTest::newRow("below the cursor") << 3 << 1 << QStringList{"a", "b", "c", "e"} << 1 << 3;
    QTest::newRow("under the cursor") << 2 << 2 << QStringList{"a", "b", "d", "e"} << 2 << 2;
    QTest::newRow("last, cursor above") << 4 << 0 << QStringList{"a", "b", "c", "d"} << 0 << 3;
    QTest::newRow("last, under the cursor") << 4 << 4 << QStringList{"a", "b", "c", "d"} << 3 << 3;
    QTest::newRow("first, cursor last") << 0 << 4 << QStringList{"b", "c", "d", "e"} << 3 << 0;
}

void TestPlayListStore::removing_the_now_playing_entry_keeps_the_cursor_on_its_file()
{
    QFETCH(int, now_playing);
    QFETCH(int, cursor);
    add(letters(5));
    panel_->set_now_playing(now_playing);
    panel_->set_current_index(cursor);
    const QSignalSpy stop(panel_, &PlayListWidget::stop_signal);
    const QSignalSpy announced(panel_, &PlayListWidget::selected_file);
    lists_fixture::StandardOutput output;
    panel_->remove_now_playing();
    QTEST(files(), "files_left");
    QTEST(panel_->get_current_index(), "new_cursor");
    QTEST(panel_->get_now_playing(), "new_now_playing");
    QCOMPARE(stop.count(), 1);
    QCOMPARE(announced.count(), 0);
}

void TestPlayListStore::removing_the_now_playing_entry_without_one_does_nothing()
{
    add(letters(3));
    panel_->set_now_playing(-1);
    panel_->remove_now_playing();
    QCOMPARE(files(), letters(3));
}

void TestPlayListStore::removing_the_only_entry_leaves_none()
{
    add({"/a.avi"});
    const QSignalSpy stop(panel_, &PlayListWidget::stop_signal);
    const lists_fixture::StandardOutput output;
    panel_->remove_now_playing();
    QCOMPARE(panel_->get_count(), 0);
    QCOMPARE(panel_->get_current_index(), -1);
    QCOMPARE(panel_->get_now_playing(), -1);
    QCOMPARE(stop.count(), 1);
}

void TestPlayListStore::a_now_playing_index_past_the_end_takes_no_row_with_it()
{
    add(letters(3));
    panel_->set_now_playing(7);
    panel_->remove_now_playing();
    QCOMPARE(files(), letters(3));
    QCOMPARE(panel_->get_now_playing(), -1);
}

void TestPlayListStore::moving_exchanges_the_paths_and_keeps_the_numbers_data()
{
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("now_playing");
    QTest::addColumn<QStringList>("moved");
    QTest::addColumn<int>("new_cursor");
    QTest::addColumn<int>("new_now_playing");
    QTest::newRow("up, now playing moves up") << true << 2 << 2 << QStringList{"a", "c", "b", "d"} << 1 << 1;
    QTest::newRow("up, now playing makes room") << true << 2 << 1 << QStringList{"a", "c", "b", "d"} << 1 << 2;
    QTest::newRow("up, now playing elsewhere") << true << 2 << 3 << QStringList{"a", "c", "b", "d"} << 1 << 3;
    QTest::newRow("up at the top") << true << 0 << 0 << QStringList{"a", "b", "c", "d"} << 0 << 0;
    QTest::newRow("down, now playing moves down") << false << 1 << 1 << QStringList{"a", "c", "b", "d"} << 2 << 2;
    QTest::newRow("down, now playing makes room") << false << 1 << 2 << QStringList{"a", "c", "b", "d"} << 2 << 1;
    QTest::newRow("down, now playing elsewhere") << false << 1 << 0 << QStringList{"a", "c", "b", "d"} << 2 << 0;
    QTest::newRow("down at the bottom") << false << 3 << 0 << QStringList{"a", "b", "c", "d"} << 3 << 0;
}

void TestPlayListStore::moving_exchanges_the_paths_and_keeps_the_numbers()
{
    QFETCH(bool, up);
    QFETCH(int, cursor);
    QFETCH(int, now_playing);
    add(letters(4));
    panel_->set_now_playing(now_playing);
    panel_->set_current_index(cursor);
    if (up)
        panel_->move_up();
    else
        panel_->move_down();
    QTEST(files(), "moved");
    QTEST(panel_->get_current_index(), "new_cursor");
    QTEST(panel_->get_now_playing(), "new_now_playing");
    QCOMPARE(numbers(), (QList<int>{1, 2, 3, 4}));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(row(i)->display_name(), panel_->get_filename(i));
}

void TestPlayListStore::moving_takes_the_mark_along()
{
    add(letters(4));
    panel_->set_now_playing(2);
    panel_->update_now_playing(true);
    panel_->set_current_index(2);
    panel_->move_up();
    for (int i = 0; i < 4; ++i)
        QCOMPARE(row(i)->now_playing(), i == 1);
    panel_->set_current_index(0);
    panel_->move_down();
    for (int i = 0; i < 4; ++i)
        QCOMPARE(row(i)->now_playing(), i == 0);
}

void TestPlayListStore::moving_scrolls_no_further_than_the_list_has_to_data()
{
    lists_fixture::add_moves_to_scroll_after();
}

void TestPlayListStore::moving_scrolls_no_further_than_the_list_has_to()
{
    QFETCH(int, step);
    QFETCH(int, cursor);
    QFETCH(int, top);
    for (int i = 0; i < lists_fixture::moved_list_length; ++i)
        panel_->add_track(QString::number(i));
    auto* list = lists_fixture::list_box_of(panel_);
    panel_->set_current_index(cursor);
    list->setTopItem(top);
    if (step < 0)
        panel_->move_up();
    else
        panel_->move_down();
    QTEST(list->topItem(), "top_after");
    QCOMPARE(panel_->get_current_index(), cursor + step);
}

void TestPlayListStore::moving_is_not_announced_and_does_not_save()
{
    add(letters(4));
    const QSignalSpy announced(panel_, &PlayListWidget::selected_file);
    panel_->move_down();
    panel_->move_up();
    panel_->move_up();
    QCOMPARE(announced.count(), 0);
    QVERIFY(!QFile::exists(file_path()));
}

void TestPlayListStore::the_mark_is_there_only_while_something_plays()
{
    add(letters(2));
    QVERIFY(!row(0)->now_playing());
    panel_->update_now_playing(true);
    QVERIFY(row(0)->now_playing());
    panel_->update_now_playing(false);
    QVERIFY(!row(0)->now_playing());
}

void TestPlayListStore::the_mark_goes_to_the_new_now_playing_row()
{
    add(letters(3));
    panel_->update_now_playing(true);
    panel_->set_now_playing(2);
    QVERIFY(!row(0)->now_playing());
    QVERIFY(row(2)->now_playing());
    panel_->set_now_playing(-1);
    QVERIFY(!row(2)->now_playing());
}

void TestPlayListStore::a_now_playing_index_past_the_end_draws_nothing()
{
    add(letters(2));
    panel_->update_now_playing(true);
    panel_->set_now_playing(2);
    QCOMPARE(panel_->get_now_playing(), 2);
    QVERIFY(!row(0)->now_playing());
    QVERIFY(!row(1)->now_playing());
    panel_->draw_now_playing(true);
    panel_->update_now_playing(false);
}

void TestPlayListStore::the_next_file_is_played_data()
{
    QTest::addColumn<int>("now_playing");
    QTest::addColumn<int>("next");
    QTest::newRow("first") << 0 << 1;
    QTest::newRow("middle") << 1 << 2;
    QTest::newRow("behind the last comes the first") << 2 << 0;
    QTest::newRow("an index past the end") << 8 << 0;
}

void TestPlayListStore::the_next_file_is_played()
{
    add(letters(3));
    QFETCH(int, now_playing);
    QFETCH(int, next);
    panel_->set_now_playing(now_playing);
    panel_->save_now_playing(4711);
    const QSignalSpy played(panel_, &PlayListWidget::selected_file_play);
    panel_->play_next_file();
    QCOMPARE(panel_->get_now_playing(), next);
    QCOMPARE(played.count(), 1);
    QCOMPARE(played.at(0), (QVariantList{next, 4711U}));
}

void TestPlayListStore::no_next_file_without_a_now_playing_entry()
{
    const QSignalSpy played(panel_, &PlayListWidget::selected_file_play);
    panel_->play_next_file();
    QCOMPARE(played.count(), 0);
    QCOMPARE(panel_->get_now_playing(), -1);
}

void TestPlayListStore::the_now_playing_entry_is_loaded_and_played_from_its_position()
{
    add(letters(3));
    panel_->set_now_playing(1);
    panel_->save_now_playing(90000);
    const QSignalSpy loaded(panel_, &PlayListWidget::selected_file);
    const QSignalSpy played(panel_, &PlayListWidget::selected_file_play);
    panel_->load_now_playing();
    QCOMPARE(loaded.count(), 1);
    QCOMPARE(loaded.at(0), (QVariantList{1, 90000U}));
    QCOMPARE(played.count(), 0);
    panel_->play_now_playing();
    QCOMPARE(played.count(), 1);
    QCOMPARE(played.at(0), (QVariantList{1, 90000U}));
}

void TestPlayListStore::nothing_is_loaded_or_played_without_a_now_playing_entry()
{
    const QSignalSpy loaded(panel_, &PlayListWidget::selected_file);
    const QSignalSpy played(panel_, &PlayListWidget::selected_file_play);
    panel_->load_now_playing();
    panel_->play_now_playing();
    QCOMPARE(loaded.count() + played.count(), 0);
}

void TestPlayListStore::clearing_forgets_everything_but_the_file()
{
    add(letters(3));
    panel_->set_now_playing(2);
    panel_->save_now_playing(5);
    const QSignalSpy announced(panel_, &PlayListWidget::selected_file);
    panel_->clear();
    QCOMPARE(panel_->get_count(), 0);
    QCOMPARE(panel_->get_now_playing(), -1);
    QCOMPARE(announced.count(), 0);
    Config file(file_path(), Config::File);
    file.setGroup(QStringLiteral("Playlist"));
    QCOMPARE(file.readListEntry(QStringLiteral("files")), letters(3));
    add({"/x.avi"});
    const QSignalSpy played(panel_, &PlayListWidget::selected_file_play);
    panel_->play_now_playing();
    QCOMPARE(played.at(0), (QVariantList{0, 0U}));
}

void TestPlayListStore::the_list_comes_back_as_it_was()
{
    add(letters(5));
    panel_->set_now_playing(3);
    const unsigned int beyond_int = 4000000000U;
    panel_->save_now_playing(beyond_int);
    make_panel();
    QCOMPARE(files(), letters(5));
    QCOMPARE(numbers(), (QList<int>{1, 2, 3, 4, 5}));
    QCOMPARE(panel_->get_now_playing(), 3);
    QCOMPARE(panel_->get_current_index(), 3);
    const QSignalSpy loaded(panel_, &PlayListWidget::selected_file);
    panel_->load_now_playing();
    QCOMPARE(loaded.at(0), (QVariantList{3, beyond_int}));
}

void TestPlayListStore::any_name_comes_back_as_it_was_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("Korean") << QStringLiteral("/영화/봄날은 간다.avi");
    QTest::newRow("decomposed Hangul") << QStringLiteral("/영화.avi").normalized(QString::NormalizationForm_D);
    QTest::newRow("composed and decomposed accents") << QStringLiteral("/caf\u00e9 cafe\u0301.avi");
    QTest::newRow("beyond the basic plane") << QStringLiteral("/\U0001F3AC.avi");
    QTest::newRow("separators") << QStringLiteral("/a,b;c|d^e:f.avi");
    QTest::newRow("equals sign and brackets") << QStringLiteral("/[Group] a=b #1.avi");
    QTest::newRow("quotes and backslashes") << QStringLiteral("/it's \"x\" \\n \\\\.avi");
    QTest::newRow("blanks at the ends") << QStringLiteral(" /a.avi  ");
    QTest::newRow("line breaks") << QStringLiteral("/a\nb\r.avi");
    QTest::newRow("tab and other controls") << QStringLiteral("/a\tb\u0001\u007f.avi");
    QTest::newRow("per cent signs") << QStringLiteral("/100%25 %s %1.avi");
    QTest::newRow("empty") << QString();
    QTest::newRow("right to left") << QStringLiteral("/\u0641\u064a\u0644\u0645.avi");
    QTest::newRow("longest path") << QString(4095, QLatin1Char('x'));
}

void TestPlayListStore::any_name_comes_back_as_it_was()
{
    QFETCH(QString, path);
    add({"/before.avi", path, "/behind.avi"});
    panel_->save();
    make_panel();
    QCOMPARE(files(), (QStringList{"/before.avi", path, "/behind.avi"}));
}

void TestPlayListStore::nine_hundred_and_ninety_nine_entries_come_back()
{
    QStringList names;
    for (int i = 0; i < PlayListWidget::capacity; ++i)
        names.append(QStringLiteral("/media/카드/시리즈 %1/제 %2 화.avi").arg(i / 20).arg(i));
    add(names);
    panel_->set_now_playing(998);
    panel_->save();
    make_panel();
    QCOMPARE(files(), names);
    QCOMPARE(row(998)->number_string(), QStringLiteral("999"));
    QCOMPARE(panel_->get_now_playing(), 998);
    QVERIFY(lists_fixture::list_box_of(panel_)->itemVisible(998));
}

void TestPlayListStore::the_file_has_its_groups_and_keys()
{
    add({"/a.avi", "/b.avi"});
    panel_->set_now_playing(1);
    panel_->save_now_playing(1234);
    panel_->start_entry();
    Config file(file_path(), Config::File);
    file.setGroup(QStringLiteral("Playlist"));
    QCOMPARE(file.readNumEntry(QStringLiteral("now_playing"), -9), 1);
    QCOMPARE(file.readNumEntry(QStringLiteral("now_playing_time"), -9), 1234);
    QCOMPARE(file.readListEntry(QStringLiteral("files")), (QStringList{"/a.avi", "/b.avi"}));
    file.setGroup(QStringLiteral("ENTRY"));
    QCOMPARE(file.readNumEntry(QStringLiteral("entry"), -9), 1);
}

void TestPlayListStore::a_file_without_now_playing_makes_the_first_row_now_playing_data()
{
    QTest::addColumn<bool>("has_key");
    QTest::newRow("no key") << false;
    QTest::newRow("-1") << true;
}

void TestPlayListStore::a_file_without_now_playing_makes_the_first_row_now_playing()
{
    QFETCH(bool, has_key);
    {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("Playlist"));
        file.writeEntry(QStringLiteral("files"), QStringList{"/a.avi", "/b.avi"});
        if (has_key)
            file.writeEntry(QStringLiteral("now_playing"), -1);
    }
    panel_ = new PlayListWidget(window_.get(), "PLAYLIST");
    QCOMPARE(panel_->get_now_playing(), 0);
    QCOMPARE(panel_->get_count(), 2);
}

void TestPlayListStore::a_now_playing_index_past_the_end_is_kept_as_it_is()
{
    {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("Playlist"));
        file.writeEntry(QStringLiteral("files"), QStringList{"/a.avi", "/b.avi"});
        file.writeEntry(QStringLiteral("now_playing"), 5);
    }
    panel_ = new PlayListWidget(window_.get(), "PLAYLIST");
    QCOMPARE(panel_->get_now_playing(), 5);
    QCOMPARE(panel_->get_current_index(), 0);
    QVERIFY(panel_->get_filename(panel_->get_now_playing()).isEmpty());
}

void TestPlayListStore::rows_of_missing_files_are_kept()
{
    add({"/nowhere/at/all.avi"});
    panel_->save();
    make_panel();
    QCOMPARE(files(), QStringList{"/nowhere/at/all.avi"});
}

void TestPlayListStore::each_saving_is_followed_by_sync()
{
    add({"/a.avi"});
    panel_->save();
    QCOMPARE(shell_->commands, QByteArrayList{"sync"});
    panel_->save_now_playing(1);
    QCOMPARE(shell_->commands, (QByteArrayList{"sync", "sync"}));
}

void TestPlayListStore::saving_the_position_and_going_away_save_the_list()
{
    add(letters(3));
    panel_->save_now_playing(7);
    add({"z"});
    make_panel();
    QCOMPARE(files(), (QStringList{"a", "b", "c", "z"}));
    const QSignalSpy loaded(panel_, &PlayListWidget::selected_file);
    panel_->load_now_playing();
    QCOMPARE(loaded.at(0), (QVariantList{0, 7U}));
}

void TestPlayListStore::the_crash_guard_blocks_only_when_it_is_set_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("can");
    QTest::newRow("no entry") << QString() << true;
    QTest::newRow("0") << "0" << true;
    QTest::newRow("1") << "1" << false;
    QTest::newRow("2") << "2" << true;
    QTest::newRow("-1") << "-1" << true;
    QTest::newRow("no number") << "yes" << true;
}

void TestPlayListStore::the_crash_guard_blocks_only_when_it_is_set()
{
    QFETCH(QString, entry);
    if (!entry.isNull()) {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("ENTRY"));
        file.writeEntry(QStringLiteral("entry"), entry);
    }
    QTEST(panel_->can_entry(), "can");
}

void TestPlayListStore::the_crash_guard_survives_a_restart_and_the_saving_of_the_list()
{
    add({"/a.avi"});
    panel_->start_entry();
    panel_->save();
    make_panel();
    QVERIFY(!panel_->can_entry());
    panel_->finish_entry();
    QVERIFY(panel_->can_entry());
    make_panel();
    QVERIFY(panel_->can_entry());
    QCOMPARE(files(), QStringList{"/a.avi"});
}

void TestPlayListStore::the_crash_guard_is_followed_by_sync()
{
    panel_->start_entry();
    QCOMPARE(shell_->commands.size(), 1);
    panel_->can_entry();
    QCOMPARE(shell_->commands.size(), 2);
    panel_->finish_entry();
    QCOMPARE(shell_->commands, (QByteArrayList{"sync", "sync", "sync"}));
}

void TestPlayListStore::a_good_directory_is_left_alone()
{
    shell_->commands.clear();
    lists_fixture::StandardOutput output;
    const PlayListWidget another(window_.get(), "PLAYLIST");
    QCOMPARE(output.text(), QByteArray());
    QCOMPARE(shell_->commands, QByteArrayList());
}

void TestPlayListStore::a_missing_directory_is_made_with_its_parents()
{
    window_.reset();
    const QString directory = lists_fixture::data_directory();
    QDir(QFileInfo(directory).path()).removeRecursively();
    shell_->commands.clear();
    lists_fixture::StandardOutput output;
    make_panel();
    QCOMPARE(output.text(), QByteArray("tavel_video: directory is not correct! Remake it\n"));
    QCOMPARE(shell_->commands, (QByteArrayList{"rm -rf " + directory.toUtf8() + "*", "sync"}));
    QVERIFY(QFileInfo(directory).isDir());
}

void TestPlayListStore::a_file_in_the_directory_s_place_goes()
{
    window_.reset();
    shell_.reset();
    const QString directory = lists_fixture::data_directory();
    QVERIFY(QDir(directory).removeRecursively());
    QFile intruder(directory);
    QVERIFY(intruder.open(QIODevice::WriteOnly));
    intruder.close();
    lists_fixture::StandardOutput output;
    make_panel();
    QCOMPARE(output.text(), QByteArray("tavel_video: directory is not correct! Remake it\n"));
    QVERIFY(QFileInfo(directory).isDir());
    add({"/a.avi"});
    panel_->save();
    QVERIFY(QFile::exists(file_path()));
}

void TestPlayListStore::remaking_the_directory_never_reaches_beside_it()
{
    window_.reset();
    shell_.reset();
    const QTemporaryDir device;
    // Without quoting, the shell would take this path for several, one of them the bystander.
    const QString root =
        device.path() + QStringLiteral("/my device; rm -rf ") + device.path() + QStringLiteral("/bystander '$(x)/");
    const QString bystander = device.path() + QStringLiteral("/bystander");
    QVERIFY(QDir().mkpath(bystander + QStringLiteral("/films")));
    QVERIFY(QDir().mkpath(device.path() + QStringLiteral("/my")));
    QVERIFY(QDir().mkpath(root + QStringLiteral("etc")));
    QFile intruder(root + QStringLiteral("etc/tavel_video"));
    QVERIFY(intruder.open(QIODevice::WriteOnly));
    intruder.close();
    const QByteArray usual = qgetenv("QPEDIR");
    qputenv("QPEDIR", root.toUtf8());
    {
        lists_fixture::StandardOutput output;
        make_panel();
    }
    window_.reset();
    qputenv("QPEDIR", usual);
    QVERIFY(QFileInfo(root + QStringLiteral("etc/tavel_video")).isDir());
    QVERIFY(QFileInfo::exists(bystander + QStringLiteral("/films")));
    QVERIFY(QFileInfo::exists(device.path() + QStringLiteral("/my")));
}

void TestPlayListStore::a_directory_that_cannot_be_made_is_said_in_one_line()
{
    window_.reset();
    const QString parent = QFileInfo(lists_fixture::data_directory()).path();
    QVERIFY(QDir(parent).removeRecursively());
    QFile in_the_way(parent);
    QVERIFY(in_the_way.open(QIODevice::WriteOnly));
    in_the_way.close();
    shell_->commands.clear();
    const lists_fixture::Warnings warnings(QStringLiteral("playlist.dat"));
    lists_fixture::StandardOutput output;
    make_panel();
    QCOMPARE(output.text(), QByteArray("tavel_video: directory is not correct! Remake it\nCan't make directory! : \n"));
    QCOMPARE(shell_->commands, (QByteArrayList{"rm -rf " + lists_fixture::data_directory().toUtf8() + "*", "sync"}));
    add({"/a.avi"});
    QCOMPARE(panel_->get_count(), 1);
    window_.reset();
    in_the_way.remove();
}

void TestPlayListStore::a_full_disk_costs_one_line_and_no_list()
{
    add(letters(3));
    panel_->save();
    const lists_fixture::Warnings warnings(QStringLiteral("playlist.dat"));
    {
        const lists_fixture::FullDisk full(4);
        add({"/new.avi"});
        panel_->save();
        panel_->save();
        panel_->start_entry();
    }
    QCOMPARE(warnings.count(), 1);
    QCOMPARE(files(), letters(3) + QStringList{"/new.avi"});
    {
        Config file(file_path(), Config::File);
        file.setGroup(QStringLiteral("Playlist"));
        QCOMPARE(file.readListEntry(QStringLiteral("files")), letters(3));
    }
    // There is room again.
    panel_->save();
    make_panel();
    QCOMPARE(files(), letters(3) + QStringList{"/new.avi"});
}

void TestPlayListStore::a_read_only_directory_costs_one_line_and_no_list()
{
    add(letters(3));
    panel_->save();
    const QString directory = lists_fixture::data_directory();
    constexpr auto read_only = QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                               QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
    QFile::setPermissions(directory, read_only);
    // root may write everywhere: become nobody for a moment, who has to get as far as the directory.
    const uid_t user = ::geteuid();
    if (user == 0) {
        QFile::setPermissions(QDir::cleanPath(QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("..")),
                              read_only | QFileDevice::WriteOwner);
        QCOMPARE(::seteuid(65534), 0);
    }
    const bool can_write = QFile(directory + QStringLiteral("/x")).open(QIODevice::WriteOnly);
    const lists_fixture::Warnings warnings(QStringLiteral("playlist.dat"));
    add({"/new.avi"});
    panel_->save();
    panel_->save();
    const int lines = warnings.count();
    if (user == 0)
        QCOMPARE(::seteuid(user), 0);
    QFile::setPermissions(directory, read_only | QFileDevice::WriteOwner);
    QVERIFY(!can_write);
    QCOMPARE(lines, 1);
    QCOMPARE(files(), letters(3) + QStringList{"/new.avi"});
    panel_->save();
    make_panel();
    QCOMPARE(files(), letters(3) + QStringList{"/new.avi"});
}

void TestPlayListStore::a_file_without_memory_is_said_and_left_alone()
{
    add(letters(2));
    panel_->save();
    panel_->start_entry();
    shell_->commands.clear();
    const QByteArray line("save : Config file Create Failed! \n");
    lists_fixture::StandardOutput output;
    bool can = false;
    {
        const lists_fixture::NoMemory no_memory;
        add({"/new.avi"});
        panel_->save();
        panel_->start_entry();
        panel_->finish_entry();
        can = panel_->can_entry();
    }
    QCOMPARE(output.text(), line.repeated(4));
    QVERIFY(can);
    QCOMPARE(shell_->commands, QByteArrayList());
    QVERIFY(!panel_->can_entry());
    Config file(file_path(), Config::File);
    file.setGroup(QStringLiteral("Playlist"));
    QCOMPARE(file.readListEntry(QStringLiteral("files")), letters(2));
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestPlayListStore)
#include "tst_play_list_store.moc"
