#include "device_font.h"
#include "list_box_skin.h"
#include "lists_fixture.h"
#include "media_file.h"
#include "qpe_application.h"
#include "test_main.h"

/// One row of the playlist: its texts, and what it draws where.
class TestMediaFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void the_number_has_three_digits_data();
    void the_number_has_three_digits();
    void the_display_name_is_what_follows_the_last_slash_data();
    void the_display_name_is_what_follows_the_last_slash();
    void a_new_row_is_at_rest_and_not_marked();
    void the_path_is_kept_as_it_was_added_data();
    void the_path_is_kept_as_it_was_added();

    void number_and_name_stand_in_their_columns();
    void the_text_is_centred_in_its_row();
    void rows_are_white();
    void the_now_playing_row_is_orange_unless_it_is_current();
    void a_running_name_stays_out_of_the_number();
    void a_running_name_is_followed_by_a_second_copy();
    void the_name_begins_anew_when_it_has_run_through();
    void a_row_that_is_not_current_does_not_run();
    void becoming_current_again_brings_the_name_back_to_rest();

private:
    MediaFile* add(const QString& path);
    QImage grab();
    /// The row as it is shown.
    QImage row_image(int row);

    std::unique_ptr<lists_fixture::MainWindow> window_;
    ListBoxSkin* list_ = nullptr;
};

namespace
{

constexpr int row_height = 22;
const QString long_name = QStringLiteral("/f/WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW.avi");

} // namespace

void TestMediaFile::initTestCase()
{
    lists_fixture::start_from_scratch();
}

void TestMediaFile::init()
{
    window_ = std::make_unique<lists_fixture::MainWindow>();
    list_ = new ListBoxSkin(window_.get(), "file_listbox");
    list_->resize(188, 110);
    list_->setFont(device_font(QStringLiteral("v28"), 12, 50));
    list_->setRowHeight(row_height);
    QPixmap black(188, 110);
    black.fill(Qt::black);
    list_->setBackgroundPixmap(black);
}

void TestMediaFile::cleanup()
{
    window_.reset();
}

MediaFile* TestMediaFile::add(const QString& path)
{
    auto* row = new MediaFile(path, list_->count() + 1);
    list_->insertItem(row);
    return row;
}

QImage TestMediaFile::grab()
{
    return list_->grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QImage TestMediaFile::row_image(int row)
{
    return grab().copy(0, row * row_height, list_->visibleWidth(), row_height);
}

void TestMediaFile::the_number_has_three_digits_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("shown");
    QTest::newRow("first") << 1 << "001";
    QTest::newRow("one digit") << 7 << "007";
    QTest::newRow("last of one digit") << 9 << "009";
    QTest::newRow("first of two digits") << 10 << "010";
    QTest::newRow("two digits") << 42 << "042";
    QTest::newRow("last of two digits") << 99 << "099";
    QTest::newRow("three digits") << 123 << "123";
    QTest::newRow("last") << 999 << "999";
    QTest::newRow("beyond the list's capacity") << 1000 << "1000";
}

void TestMediaFile::the_number_has_three_digits()
{
    QFETCH(int, number);
    QTEST(MediaFile(QStringLiteral("/a.avi"), number).number_string(), "shown");
}

void TestMediaFile::the_display_name_is_what_follows_the_last_slash_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::newRow("path") << "/media/films/a b.avi"
                          << "a b.avi";
    QTest::newRow("no slash") << "a.avi"
                              << "a.avi";
    QTest::newRow("folder") << "/films/"
                            << "";
    QTest::newRow("backslash is no slash") << "/films/a\\b.avi"
                                           << "a\\b.avi";
    QTest::newRow("Korean") << QStringLiteral("/영화/봄날은 간다.avi") << QStringLiteral("봄날은 간다.avi");
}

void TestMediaFile::the_display_name_is_what_follows_the_last_slash()
{
    QFETCH(QString, path);
    QTEST(MediaFile(path, 1).display_name(), "name");
}

void TestMediaFile::a_new_row_is_at_rest_and_not_marked()
{
    const MediaFile row(QStringLiteral("/a.avi"), 5);
    QCOMPARE(row.scroll_offset(), 0);
    QVERIFY(!row.now_playing());
    QCOMPARE(row.number(), 5);
}

void TestMediaFile::the_path_is_kept_as_it_was_added_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << "/films/a.avi";
    QTest::newRow("dots and double slashes") << "/films//./x/../a.avi";
    QTest::newRow("decomposed Hangul") << QStringLiteral("/films/가.avi");
    QTest::newRow("blanks at the ends") << " /films/a.avi ";
}

void TestMediaFile::the_path_is_kept_as_it_was_added()
{
    QFETCH(QString, path);
    QCOMPARE(MediaFile(path, 1).text(), path);
}

void TestMediaFile::number_and_name_stand_in_their_columns()
{
    add(QStringLiteral("/first.avi"));
    add(QStringLiteral("/■■■"));
    const QImage row = row_image(1);
    QImage ground = row;
    ground.fill(Qt::black);
    const auto number = lists_fixture::inked_columns(row, QRect(0, 0, 33, row_height), ground);
    const auto name = lists_fixture::inked_columns(row, QRect(33, 0, 100, row_height), ground);
    QVERIFY2(number.first >= 6 && number.first <= 8, qPrintable(QString::number(number.first)));
    QVERIFY2(name.first >= 33 && name.first <= 36, qPrintable(QString::number(name.first)));
}

void TestMediaFile::the_text_is_centred_in_its_row()
{
    add(QStringLiteral("/first.avi"));
    add(QStringLiteral("/■■■"));
    const QImage row = row_image(1);
    QImage ground = row;
    ground.fill(Qt::black);
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < row_height; ++y) {
        if (lists_fixture::inked_columns(row, QRect(33, y, 100, 1), ground).first < 0)
            continue;
        top = top < 0 ? y : top;
        bottom = y;
    }
    QVERIFY(top > 0);
    const int above = top;
    const int below = row_height - 1 - bottom;
    QVERIFY2(std::abs(above - below) <= 3, qPrintable(QStringLiteral("%1 above, %2 below").arg(above).arg(below)));
}

void TestMediaFile::rows_are_white()
{
    add(QStringLiteral("/first.avi"));
    add(QStringLiteral("/■■■"));
    QCOMPARE(lists_fixture::brightest(row_image(1), QRect(0, 0, 180, row_height)), QColor(255, 255, 255));
}

void TestMediaFile::the_now_playing_row_is_orange_unless_it_is_current()
{
    add(QStringLiteral("/first.avi"));
    MediaFile* row = add(QStringLiteral("/■■■"));
    row->set_now_playing(true);
    const QColor at_rest = lists_fixture::brightest(row_image(1), QRect(0, 0, 180, row_height));
    QCOMPARE(at_rest, QColor(255, 102, 0));
    list_->setCurrentItem(1);
    const QColor current = lists_fixture::brightest(row_image(1), QRect(0, 0, 180, row_height));
    QCOMPARE(current, QColor(255, 255, 255));
}

void TestMediaFile::a_running_name_stays_out_of_the_number()
{
    MediaFile* row = add(long_name);
    grab();
    const QImage at_rest = row_image(0);
    row->set_scroll_offset(9);
    const QImage running = row_image(0);
    QCOMPARE(running.copy(0, 0, 33, row_height), at_rest.copy(0, 0, 33, row_height));
    QVERIFY(running.copy(33, 0, 100, row_height) != at_rest.copy(33, 0, 100, row_height));
    // The name has moved by exactly the offset.
    QCOMPARE(running.copy(33, 0, 90, row_height), at_rest.copy(33 + 9, 0, 90, row_height));
}

void TestMediaFile::a_running_name_is_followed_by_a_second_copy()
{
    MediaFile* row = add(long_name);
    grab();
    const QImage at_rest = row_image(0);
    // Far enough that the first copy has just left: the second begins the gap's width behind the column's left edge.
    row->set_scroll_offset(row->display_name_width());
    const QImage running = row_image(0);
    QCOMPARE(running.copy(33 + 30, 0, 80, row_height), at_rest.copy(33, 0, 80, row_height));
}

void TestMediaFile::the_name_begins_anew_when_it_has_run_through()
{
    MediaFile* row = add(long_name);
    grab();
    row->set_scroll_offset(row->display_name_width() + 33);
    grab();
    QCOMPARE(row->scroll_offset(), row->display_name_width() + 33);
    row->set_scroll_offset(row->display_name_width() + 34);
    grab();
    QCOMPARE(row->scroll_offset(), 0);
}

void TestMediaFile::a_row_that_is_not_current_does_not_run()
{
    add(QStringLiteral("/first.avi"));
    MediaFile* row = add(long_name);
    const QImage at_rest = row_image(1);
    row->set_scroll_offset(12);
    QCOMPARE(row_image(1), at_rest);
}

void TestMediaFile::becoming_current_again_brings_the_name_back_to_rest()
{
    MediaFile* row = add(long_name);
    add(QStringLiteral("/second.avi"));
    grab();
    row->set_scroll_offset(30);
    grab();
    QCOMPARE(row->scroll_offset(), 30);
    list_->setCurrentItem(1);
    grab();
    list_->setCurrentItem(0);
    grab();
    QCOMPARE(row->scroll_offset(), 0);
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestMediaFile)
#include "tst_media_file.moc"
