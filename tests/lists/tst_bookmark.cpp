#include "bookmark.h"
#include "device_font.h"
#include "list_box_skin.h"
#include "lists_fixture.h"
#include "qpe_application.h"
#include "test_main.h"

/// One row of the bookmark list: its texts, and what it draws where.
class TestBookmark : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void the_time_is_shown_as_hours_minutes_and_seconds_data();
    void the_time_is_shown_as_hours_minutes_and_seconds();
    void the_display_name_is_what_follows_the_last_slash();
    void a_long_name_ends_before_the_time();
    void the_time_stands_in_its_column();
    void rows_are_white_also_when_current();
    void a_running_name_stays_in_its_column();
    void a_running_name_is_followed_by_a_second_copy();
    void the_name_begins_anew_when_it_has_run_through();
    void becoming_current_again_brings_the_name_back_to_rest();

private:
    Bookmark* add(const QString& path, unsigned int seconds);
    QImage row_image(int row);

    std::unique_ptr<lists_fixture::MainWindow> window_;
    ListBoxSkin* list_ = nullptr;
};

namespace
{

constexpr int row_height = 22;
const QString long_name = QStringLiteral("/f/WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW.avi");

} // namespace

void TestBookmark::initTestCase()
{
    lists_fixture::start_from_scratch();
}

void TestBookmark::init()
{
    window_ = std::make_unique<lists_fixture::MainWindow>();
    list_ = new ListBoxSkin(window_.get(), "file_listbox");
    list_->resize(lists_fixture::bookmark_box.size());
    list_->setFont(device_font(QStringLiteral("v28"), 12, 50));
    list_->setRowHeight(row_height);
    QPixmap black(list_->size());
    black.fill(Qt::black);
    list_->setBackgroundPixmap(black);
}

void TestBookmark::cleanup()
{
    window_.reset();
}

Bookmark* TestBookmark::add(const QString& path, unsigned int seconds)
{
    auto* row = new Bookmark(path, list_->count() + 1, seconds);
    list_->insertItem(row);
    return row;
}

QImage TestBookmark::row_image(int row)
{
    const QImage image = list_->grab().toImage().convertToFormat(QImage::Format_RGB32);
    return image.copy(0, row * row_height, list_->visibleWidth(), row_height);
}

void TestBookmark::the_time_is_shown_as_hours_minutes_and_seconds_data()
{
    QTest::addColumn<unsigned int>("seconds");
    QTest::addColumn<QString>("shown");
    QTest::newRow("start") << 0U << "00:00:00";
    QTest::newRow("one second") << 1U << "00:00:01";
    QTest::newRow("a minute less a second") << 59U << "00:00:59";
    QTest::newRow("a minute") << 60U << "00:01:00";
    QTest::newRow("minute and a half") << 90U << "00:01:30";
    QTest::newRow("an hour less a second") << 3599U << "00:59:59";
    QTest::newRow("an hour") << 3600U << "01:00:00";
    QTest::newRow("all fields") << 3725U << "01:02:05";
    QTest::newRow("ten hours") << 36000U << "10:00:00";
    QTest::newRow("last with digits only") << 359999U << "99:59:59";
    QTest::newRow("a hundred hours") << 360000U << ":0:00:00";
}

void TestBookmark::the_time_is_shown_as_hours_minutes_and_seconds()
{
    QFETCH(unsigned int, seconds);
    const Bookmark row(QStringLiteral("/a.avi"), 1, seconds);
    QTEST(row.time_string(), "shown");
    QCOMPARE(row.time(), seconds);
}

void TestBookmark::the_display_name_is_what_follows_the_last_slash()
{
    const Bookmark row(QStringLiteral("/films/x/a b.avi"), 3, 0);
    QCOMPARE(row.display_name(), QStringLiteral("a b.avi"));
    QCOMPARE(row.text(), QStringLiteral("/films/x/a b.avi"));
    QCOMPARE(row.number(), 3);
    QCOMPARE(row.scroll_offset(), 0);
}

void TestBookmark::a_long_name_ends_before_the_time()
{
    add(QStringLiteral("/first.avi"), 0);
    add(long_name, 3725);
    const QImage row = row_image(1);
    QImage black = row;
    black.fill(Qt::black);
    const auto name = lists_fixture::inked_columns(row, QRect(0, 0, 135, row_height), black);
    QVERIFY2(name.first >= 6 && name.first <= 8, qPrintable(QString::number(name.first)));
    QVERIFY2(name.second >= 115 && name.second <= 119, qPrintable(QString::number(name.second)));
}

void TestBookmark::the_time_stands_in_its_column()
{
    add(QStringLiteral("/first.avi"), 0);
    add(QStringLiteral("/x"), 3725);
    const QImage row = row_image(1);
    QImage black = row;
    black.fill(Qt::black);
    const auto time = lists_fixture::inked_columns(row, QRect(60, 0, row.width() - 60, row_height), black);
    QVERIFY2(time.first >= 135 && time.first <= 137, qPrintable(QString::number(time.first)));
}

void TestBookmark::rows_are_white_also_when_current()
{
    add(QStringLiteral("/■■■"), 5);
    add(QStringLiteral("/■■■"), 5);
    QCOMPARE(lists_fixture::brightest(row_image(0), QRect(0, 0, 119, row_height)), QColor(255, 255, 255));
    QCOMPARE(lists_fixture::brightest(row_image(1), QRect(0, 0, 119, row_height)), QColor(255, 255, 255));
}

void TestBookmark::a_running_name_stays_in_its_column()
{
    Bookmark* row = add(long_name, 3725);
    const QImage at_rest = row_image(0);
    row->set_scroll_offset(9);
    const QImage running = row_image(0);
    QCOMPARE(running.copy(0, 0, 6, row_height), at_rest.copy(0, 0, 6, row_height));
    const int right = 120;
    QCOMPARE(running.copy(right, 0, 80, row_height), at_rest.copy(right, 0, 80, row_height));
    QCOMPARE(running.copy(6, 0, 100, row_height), at_rest.copy(6 + 9, 0, 100, row_height));
}

void TestBookmark::a_running_name_is_followed_by_a_second_copy()
{
    Bookmark* row = add(long_name, 0);
    const QImage at_rest = row_image(0);
    row->set_scroll_offset(row->display_name_width());
    const QImage running = row_image(0);
    QCOMPARE(running.copy(6 + 60, 0, 50, row_height), at_rest.copy(6, 0, 50, row_height));
}

void TestBookmark::the_name_begins_anew_when_it_has_run_through()
{
    Bookmark* row = add(long_name, 0);
    row_image(0);
    const int last_offset = row->display_name_width() + 60 - 3;
    row->set_scroll_offset(last_offset);
    row_image(0);
    QCOMPARE(row->scroll_offset(), last_offset);
    row->set_scroll_offset(last_offset + 1);
    row_image(0);
    QCOMPARE(row->scroll_offset(), 0);
}

void TestBookmark::becoming_current_again_brings_the_name_back_to_rest()
{
    Bookmark* row = add(long_name, 0);
    add(QStringLiteral("/second.avi"), 0);
    row_image(0);
    row->set_scroll_offset(30);
    row_image(0);
    QCOMPARE(row->scroll_offset(), 30);
    list_->setCurrentItem(1);
    row_image(0);
    list_->setCurrentItem(0);
    row_image(0);
    QCOMPARE(row->scroll_offset(), 0);
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestBookmark)
#include "tst_bookmark.moc"
