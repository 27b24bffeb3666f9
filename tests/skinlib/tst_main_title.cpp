#include "config.h"
#include "file_manager.h"
#include "file_manager_button.h"
#include "file_manager_delegate.h"
#include "file_manager_entry.h"
#include "file_manager_look.h"
#include "file_manager_play_list.h"
#include "file_manager_view.h"
#include "main_title.h"
#include "paint_record.h"
#include "qcop_channel.h"
#include "qpe_application.h"
#include "scripted_engine.h"
#include "text_codec.h"

#include <fcntl.h>
#include <unistd.h>

/// The file manager window: what it lists, how things are chosen, and what it sends.
class TestMainTitle : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void names_are_ordered_as_people_do_data();
    void names_are_ordered_as_people_do();
    void files_are_known_by_their_suffix_data();
    void files_are_known_by_their_suffix();
    void sizes_and_lengths_are_short_data();
    void sizes_and_lengths_are_short();

    void it_is_a_window_without_a_frame_as_large_as_the_screen();
    void it_shows_its_caption();
    void another_caption_comes_to_the_screen();
    void another_word_for_nothing_comes_to_the_screen();
    void the_film_shines_through();
    void everything_is_large_enough_for_a_thumb();
    void a_hidden_window_reads_nothing();
    void the_last_folder_is_remembered();
    void a_last_folder_that_is_gone_gives_way_to_the_one_above();
    void showing_it_again_reads_the_folder_again();

    void folders_come_first_then_play_lists_then_films_in_natural_order();
    void names_that_cannot_travel_are_left_out_with_one_line();
    void an_unreadable_folder_says_so();
    void an_empty_folder_says_so();
    void ten_thousand_films_come_in_small_portions();
    void going_on_at_once_leaves_the_large_folder_behind();
    void type_and_length_of_the_films_in_view_are_looked_up();
    void a_film_that_tells_nothing_shows_its_suffix();

    void a_tap_chooses_a_film_and_another_takes_it_back();
    void a_tap_opens_a_folder_and_one_on_its_box_chooses_it();
    void a_drag_scrolls_and_chooses_nothing();
    void return_chooses_a_film_and_opens_a_folder();
    void left_goes_up_to_the_row_of_the_folder_left();
    void all_chooses_the_films_and_then_none();
    void select_chooses_and_moves_on();
    void choices_outlive_a_change_of_folder();

    void play_and_add_send_the_choice_data();
    void play_and_add_send_the_choice();
    void without_a_choice_the_row_under_the_cursor_is_taken();
    void the_way_up_cannot_be_taken();
    void the_choice_is_empty_after_it_was_sent();
    void a_folder_is_taken_with_all_films_in_it();
    void links_that_lead_back_do_no_harm();
    void no_more_than_a_thousand_films_are_taken();
    void play_lists_are_read_data();
    void play_lists_are_read();
    void a_play_list_is_taken_as_its_films();
    void vanished_films_are_said_and_the_others_sent();
    void nothing_is_sent_when_all_films_are_gone();
    void a_folder_without_films_says_so();

    void the_key_pad_alone_is_enough();
    void a_held_return_chooses_once();
    void escape_reaches_the_window_from_everywhere();
    void escape_closes_a_window_that_nobody_filters();
    void the_cross_closes();

private:
    void make_file(const QString& path, const QByteArray& content = "film");
    void show(const QString& folder);
    void wait_for(const QString& folder);
    QStringList names() const;
    int row_of(const char* name) const;
    void tap(int row, int x = 200);
    void press(Qt::Key key);
    FileManagerButton* button(const char* name) const;
    void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    QAbstractItemModel* model() const { return view_->model(); }
    QString in(const char* name) const { return films_->filePath(QString::fromUtf8(name)); }
    QStringList chosen() const;
    QStringList last_message() const;

    std::unique_ptr<QTemporaryDir> films_;
    std::unique_ptr<mainTitle> window_;
    FileManager* manager_ = nullptr;
    FileManagerView* view_ = nullptr;
    std::unique_ptr<QCopChannel> channel_;
    std::unique_ptr<QSignalSpy> messages_;
};

namespace
{

using Kind = FileManagerEntry::Kind;

} // namespace

void TestMainTitle::init()
{
    test_support::reset_directories();
    scripted_engine::clear();
    films_ = std::make_unique<QTemporaryDir>();
    channel_ = std::make_unique<QCopChannel>("QPE/Brevaton/video");
    messages_ = std::make_unique<QSignalSpy>(channel_.get(), &QCopChannel::received);
    window_ = std::make_unique<mainTitle>(nullptr, "FILEMANAGER", 0x200010);
    manager_ = window_->findChild<FileManager*>();
    view_ = window_->findChild<FileManagerView*>();
}

void TestMainTitle::cleanup()
{
    window_.reset();
    messages_.reset();
    channel_.reset();
    films_.reset();
}

void TestMainTitle::make_file(const QString& path, const QByteArray& content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void TestMainTitle::show(const QString& folder)
{
    {
        Config settings(QStringLiteral("file_manager"));
        settings.setGroup(QStringLiteral("Folder"));
        settings.writeEntry(QStringLiteral("last"), folder);
    }
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    wait_for(folder);
}

void TestMainTitle::wait_for(const QString& folder)
{
    QTRY_COMPARE(manager_->folder(), folder);
    QTRY_VERIFY(!static_cast<FileManagerModel*>(model())->is_reading());
}

QStringList TestMainTitle::names() const
{
    QStringList result;
    for (int row = 0; row < model()->rowCount(); ++row)
        result.append(model()->index(row, 0).data().toString());
    return result;
}

int TestMainTitle::row_of(const char* name) const
{
    return static_cast<int>(names().indexOf(QString::fromUtf8(name)));
}

void TestMainTitle::tap(int row, int x)
{
    view_->scrollTo(model()->index(row, 0));
    const QRect place = view_->visualRect(model()->index(row, 0));
    QTest::mouseClick(view_->viewport(), Qt::LeftButton, {}, QPoint(x, place.center().y()));
}

void TestMainTitle::press(Qt::Key key)
{
    QWidget* receiver = window_->focusWidget();
    QTest::keyClick(receiver ? receiver : window_.get(), key);
}

FileManagerButton* TestMainTitle::button(const char* name) const
{
    return window_->findChild<FileManagerButton*>(QString::fromLatin1(name));
}

QStringList TestMainTitle::chosen() const
{
    QStringList result;
    for (int row = 0; row < model()->rowCount(); ++row) {
        if (model()->index(row, 0).data(FileManagerModel::ChosenRole).toBool())
            result.append(model()->index(row, 0).data().toString());
    }
    return result;
}

/// The lines of the newest message, without their ends.
QStringList TestMainTitle::last_message() const
{
    QDataStream stream(messages_->last().at(1).toByteArray());
    stream.setVersion(QDataStream::Qt_6_0);
    QString text;
    stream >> text;
    if (!text.endsWith(QLatin1Char('\n')))
        return {QStringLiteral("the last line has no end")};
    text.chop(1);
    return text.split(QLatin1Char('\n'));
}

void TestMainTitle::names_are_ordered_as_people_do_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("numbers by value") << "Episode 2.avi"
                                      << "Episode 10.avi";
    QTest::newRow("numbers before letters") << "10.avi"
                                            << "a.avi";
    QTest::newRow("without regard to case") << "alpha"
                                            << "Beta";
    QTest::newRow("case only decides at last") << "A"
                                               << "a";
    QTest::newRow("leading zeros do not count") << "ep 007"
                                                << "ep 8";
    QTest::newRow("fewer zeros first, but fixed") << "ep 07 a"
                                                  << "ep 007 b";
    QTest::newRow("a beginning comes first") << "film"
                                             << "film 2";
    QTest::newRow("several numbers") << "s1e9"
                                     << "s1e10";
    QTest::newRow("later numbers") << "s1e10"
                                   << "s2e1";
    QTest::newRow("numbers beyond any integer") << "99999999999999999999998"
                                                << "99999999999999999999999";
    QTest::newRow("Latin before Hangul") << "zeta" << QStringLiteral("가");
    QTest::newRow("Hangul in its order") << QStringLiteral("가을") << QStringLiteral("나비");
    QTest::newRow("Hangul with numbers") << QStringLiteral("제 2 화") << QStringLiteral("제 10 화");
}

void TestMainTitle::names_are_ordered_as_people_do()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QVERIFY(natural_less(first, second));
    QVERIFY(!natural_less(second, first));
    QVERIFY(!natural_less(first, first));
}

void TestMainTitle::files_are_known_by_their_suffix_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("kind");
    const auto row = [](const char* name, Kind kind) { QTest::newRow(name) << QString::fromLatin1(name) << int(kind); };
    row("a.avi", Kind::Film);
    row("a.AVI", Kind::Film);
    row("a.b.mkv", Kind::Film);
    row("a.mp4", Kind::Film);
    row("a.mpg", Kind::Film);
    row("a.wmv", Kind::Film);
    row("a.ts", Kind::Film);
    row("a.m3u", Kind::PlayList);
    row("a.m3u8", Kind::PlayList);
    row("a.PLS", Kind::PlayList);
    row("a.smi", Kind::Other);
    row("a.txt", Kind::Other);
    row("avi", Kind::Other);
    row(".avi", Kind::Other);
    row("a.", Kind::Other);
}

void TestMainTitle::files_are_known_by_their_suffix()
{
    QFETCH(QString, name);
    QTEST(int(kind_of_file(name)), "kind");
}

void TestMainTitle::sizes_and_lengths_are_short_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("size");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("length");
    QTest::newRow("unknown") << qint64{-1} << "" << qint64{-1} << "";
    QTest::newRow("nothing") << qint64{0} << "0 KB" << qint64{0} << "";
    QTest::newRow("small") << qint64{800 * 1024} << "800 KB" << qint64{7000} << "0:07";
    QTest::newRow("megabytes") << qint64{12'900'000} << "12.3 MB" << qint64{187'000} << "3:07";
    QTest::newRow("hundreds of megabytes") << qint64{734'003'200} << "700 MB" << qint64{3'599'600} << "1:00:00";
    QTest::newRow("gigabytes") << qint64{4'509'715'661} << "4.2 GB" << qint64{6'125'000} << "1:42:05";
}

void TestMainTitle::sizes_and_lengths_are_short()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, milliseconds);
    QTEST(FileManagerDelegate::size_text(bytes), "size");
    QTEST(FileManagerDelegate::length_text(milliseconds), "length");
}

void TestMainTitle::it_is_a_window_without_a_frame_as_large_as_the_screen()
{
    QVERIFY(window_->isWindow());
    QVERIFY(window_->windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(window_->size(), QSize(480, 272));
    QCOMPARE(window_->objectName(), QStringLiteral("FILEMANAGER"));
    QVERIFY(!window_->isVisible());
}

void TestMainTitle::it_shows_its_caption()
{
    show(films_->path());
    const QImage without = window_->grab(QRect(10, 0, 300, 33)).toImage();
    window_->setCaption(QStringLiteral("Video File Manager"));
    QCOMPARE(window_->caption(), QStringLiteral("Video File Manager"));
    QVERIFY(window_->grab(QRect(10, 0, 300, 33)).toImage() != without);
}

void TestMainTitle::another_caption_comes_to_the_screen()
{
    PaintRecord painted(window_.get());
    QVERIFY(painted.begin());
    window_->setCaption(QStringLiteral("Films"));
    QTRY_VERIFY(painted.covers_all());
}

void TestMainTitle::another_word_for_nothing_comes_to_the_screen()
{
    PaintRecord painted(view_->viewport());
    QVERIFY(painted.begin());
    view_->set_empty_text(QStringLiteral("Nothing"));
    QTRY_VERIFY(painted.covers_all());
}

void TestMainTitle::the_film_shines_through()
{
    show(films_->path());
    QImage image(window_->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    window_->render(&image, QPoint(), QRegion(), QWidget::DrawWindowBackground | QWidget::DrawChildren);
    const int ground = image.pixelColor(300, 180).alpha();
    QVERIFY2(ground > 150 && ground < 255, qPrintable(QString::number(ground)));
}

void TestMainTitle::everything_is_large_enough_for_a_thumb()
{
    make_file(in("a.avi"));
    show(films_->path());
    for (const char* name : {"play", "add", "select", "all", "close"}) {
        QVERIFY2(button(name)->width() >= 32 && button(name)->height() >= 32, name);
        QVERIFY2(window_->rect().contains(QRect(button(name)->mapTo(window_.get(), QPoint()), button(name)->size())),
                 name);
    }
    QVERIFY(view_->visualRect(model()->index(0, 0)).height() >= 32);
    QVERIFY(file_manager_look::check_width >= 32);
}

void TestMainTitle::a_hidden_window_reads_nothing()
{
    QVERIFY(manager_->folder().isEmpty());
    QCOMPARE(model()->rowCount(), 0);
}

void TestMainTitle::the_last_folder_is_remembered()
{
    make_file(in("sub/a.avi"));
    show(films_->path());
    tap(row_of("sub"));
    wait_for(in("sub"));
    window_->close();
    window_ = std::make_unique<mainTitle>(nullptr, "FILEMANAGER", 0x200010);
    manager_ = window_->findChild<FileManager*>();
    view_ = window_->findChild<FileManagerView*>();
    window_->show();
    wait_for(in("sub"));
    QTRY_COMPARE(names(), (QStringList{"..", "a.avi"}));
}

void TestMainTitle::a_last_folder_that_is_gone_gives_way_to_the_one_above()
{
    {
        Config settings(QStringLiteral("file_manager"));
        settings.setGroup(QStringLiteral("Folder"));
        settings.writeEntry(QStringLiteral("last"), in("gone/deeper"));
    }
    window_->show();
    wait_for(films_->path());
    QVERIFY(manager_->notice().contains(QStringLiteral("deeper")));
}

void TestMainTitle::showing_it_again_reads_the_folder_again()
{
    make_file(in("a.avi"));
    make_file(in("b.avi"));
    show(films_->path());
    view_->setCurrentIndex(model()->index(row_of("b.avi"), 0));
    window_->hide();
    make_file(in("a2.avi"));
    window_->show();
    QTRY_COMPARE(names(), (QStringList{"..", "a.avi", "a2.avi", "b.avi"}));
    QTRY_COMPARE(view_->currentIndex().data().toString(), QStringLiteral("b.avi"));
}

void TestMainTitle::folders_come_first_then_play_lists_then_films_in_natural_order()
{
    for (const char* name : {"Episode 10.avi", "episode 2.mkv", "봄.mp4", "list.m3u", "notes.txt", "film.smi",
                             ".hidden.avi", "z folder/x", "A folder/x", ".secret/x"})
        make_file(in(name));
    show(films_->path());
    QCOMPARE(names(), (QStringList{"..", "A folder", "z folder", "list.m3u", "episode 2.mkv", "Episode 10.avi",
                                   QStringLiteral("봄.mp4")}));
    QCOMPARE(view_->currentIndex().data().toString(), QStringLiteral("A folder"));
    QCOMPARE(model()->index(row_of("episode 2.mkv"), 0).data(FileManagerModel::SizeRole).toLongLong(), qint64{4});
}

void TestMainTitle::names_that_cannot_travel_are_left_out_with_one_line()
{
    make_file(in("good.avi"));
    make_file(in("two\nlines.avi"));
    const QByteArray not_utf8 = films_->path().toUtf8() + "/\xb0\xa1.avi";
    const int file = ::open(not_utf8.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    QVERIFY(file >= 0);
    ::close(file);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("left out 2 names")));
    show(films_->path());
    ::unlink(not_utf8.constData());
    QCOMPARE(names(), (QStringList{"..", "good.avi"}));
    QVERIFY(manager_->notice().contains(QLatin1Char('2')));
}

void TestMainTitle::an_unreadable_folder_says_so()
{
    make_file(in("locked/a.avi"));
    show(films_->path());
    QFile::setPermissions(in("locked"), QFileDevice::Permissions());
    // root may read everything: become nobody for a moment, who has to get as far as the folder.
    const uid_t user = ::geteuid();
    QFile::setPermissions(films_->path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                                              QFileDevice::ReadGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther);
    if (user == 0)
        QCOMPARE(::seteuid(65534), 0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("locked cannot be read")));
    tap(row_of("locked"));
    QTRY_VERIFY(manager_->notice().contains(QStringLiteral("locked")));
    const QStringList shown = names();
    if (user == 0)
        QCOMPARE(::seteuid(user), 0);
    QFile::setPermissions(in("locked"), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QCOMPARE(shown, QStringList{".."});
}

void TestMainTitle::an_empty_folder_says_so()
{
    show(films_->path());
    QCOMPARE(names(), QStringList{".."});
    const QImage with_text = view_->grab().toImage();
    view_->set_empty_text(QString());
    QVERIFY(view_->grab().toImage() != with_text);
}

void TestMainTitle::ten_thousand_films_come_in_small_portions()
{
    constexpr int films = 10000;
    for (int i = 0; i < films; ++i)
        make_file(in("many/") + QStringLiteral("film %1.avi").arg(i), QByteArray());
    int largest = 0;
    connect(model(), &QAbstractItemModel::rowsInserted, this,
            [&](const QModelIndex&, int first, int last) { largest = std::max(largest, last - first + 1); });
    show(films_->path());
    tap(row_of("many"));
    QTRY_COMPARE_WITH_TIMEOUT(model()->rowCount(), films + 1, 30000);
    QVERIFY2(largest <= 500, qPrintable(QString::number(largest)));
    QCOMPARE(model()->index(1, 0).data().toString(), QStringLiteral("film 0.avi"));
    QCOMPARE(model()->index(films, 0).data().toString(), QStringLiteral("film 9999.avi"));
    QTRY_COMPARE(view_->currentIndex().row(), 1);
    press(Qt::Key_End);
    QCOMPARE(view_->currentIndex().row(), films);
}

void TestMainTitle::going_on_at_once_leaves_the_large_folder_behind()
{
    for (int i = 0; i < 3000; ++i)
        make_file(in("many/") + QStringLiteral("film %1.avi").arg(i), QByteArray());
    make_file(in("few/a.avi"));
    show(films_->path());
    manager_->open_folder(in("many"));
    manager_->open_folder(in("few"));
    wait_for(in("few"));
    QTRY_COMPARE(names(), (QStringList{"..", "a.avi"}));
}

void TestMainTitle::type_and_length_of_the_films_in_view_are_looked_up()
{
    scripted_engine::set_media_summary(MediaSummary{QStringLiteral("Matroska"), 187000});
    for (int i = 0; i < 100; ++i)
        make_file(in("film ") + QStringLiteral("%1.avi").arg(i));
    show(films_->path());
    const auto length = [this](int row) {
        return model()->index(row, 0).data(FileManagerModel::LengthRole).toLongLong();
    };
    QTRY_COMPARE(length(1), qint64{187000});
    QCOMPARE(model()->index(1, 0).data(FileManagerModel::TypeRole).toString(), QStringLiteral("Matroska"));
    QTRY_COMPARE(length(4), qint64{187000});
    QCOMPARE(length(60), qint64{-1});
    view_->scrollTo(model()->index(60, 0), QAbstractItemView::PositionAtCenter);
    QTRY_COMPARE(length(60), qint64{187000});
}

void TestMainTitle::a_film_that_tells_nothing_shows_its_suffix()
{
    make_file(in("a.avi"));
    show(films_->path());
    QTRY_COMPARE(model()->index(1, 0).data(FileManagerModel::LengthRole).toLongLong(), qint64{0});
    QCOMPARE(model()->index(1, 0).data(FileManagerModel::TypeRole).toString(), QStringLiteral("AVI"));
}

void TestMainTitle::a_tap_chooses_a_film_and_another_takes_it_back()
{
    make_file(in("a.avi"));
    make_file(in("b.avi"));
    show(films_->path());
    tap(row_of("b.avi"));
    tap(row_of("a.avi"), 10);
    QCOMPARE(chosen(), (QStringList{"a.avi", "b.avi"}));
    tap(row_of("b.avi"));
    QCOMPARE(chosen(), QStringList{"a.avi"});
}

void TestMainTitle::a_tap_opens_a_folder_and_one_on_its_box_chooses_it()
{
    make_file(in("sub/a.avi"));
    show(films_->path());
    tap(row_of("sub"), 10);
    QCOMPARE(chosen(), QStringList{"sub"});
    QCOMPARE(manager_->folder(), films_->path());
    tap(row_of("sub"));
    wait_for(in("sub"));
    tap(0, 10);
    wait_for(films_->path());
}

void TestMainTitle::a_drag_scrolls_and_chooses_nothing()
{
    for (int i = 0; i < 30; ++i)
        make_file(in("film ") + QStringLiteral("%1.avi").arg(i));
    show(films_->path());
    view_->scrollToTop();
    QTest::mousePress(view_->viewport(), Qt::LeftButton, {}, QPoint(200, 150));
    QMouseEvent move(QEvent::MouseMove, QPointF(200, 60), QPointF(200, 60), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(view_->viewport(), &move);
    QCOMPARE(view_->verticalScrollBar()->value(), 90);
    QTest::mouseRelease(view_->viewport(), Qt::LeftButton, {}, QPoint(200, 60));
    QCOMPARE(chosen(), QStringList());
}

void TestMainTitle::return_chooses_a_film_and_opens_a_folder()
{
    make_file(in("sub/x.avi"));
    make_file(in("a.avi"));
    show(films_->path());
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    QCOMPARE(chosen(), QStringList{"a.avi"});
    press(Qt::Key_Return);
    QCOMPARE(chosen(), QStringList());
    press(Qt::Key_Up);
    press(Qt::Key_Enter);
    wait_for(in("sub"));
}

void TestMainTitle::left_goes_up_to_the_row_of_the_folder_left()
{
    make_file(in("a/x.avi"));
    make_file(in("b/x.avi"));
    make_file(in("c/x.avi"));
    show(in("b"));
    press(Qt::Key_Left);
    wait_for(films_->path());
    QTRY_COMPARE(view_->currentIndex().data().toString(), QStringLiteral("b"));
}

void TestMainTitle::all_chooses_the_films_and_then_none()
{
    for (const char* name : {"sub/x.avi", "a.avi", "b.avi", "l.m3u"})
        make_file(in(name));
    show(films_->path());
    tap(row_of("a.avi"));
    click("all");
    QCOMPARE(chosen(), (QStringList{"a.avi", "b.avi"}));
    click("all");
    QCOMPARE(chosen(), QStringList());
}

void TestMainTitle::select_chooses_and_moves_on()
{
    for (const char* name : {"sub/x.avi", "a.avi", "b.avi"})
        make_file(in(name));
    show(films_->path());
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    QCOMPARE(window_->focusWidget(), button("select"));
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    QCOMPARE(chosen(), (QStringList{"sub", "a.avi"}));
    QCOMPARE(view_->currentIndex().data().toString(), QStringLiteral("b.avi"));
    press(Qt::Key_Return);
    QCOMPARE(chosen(), (QStringList{"sub", "a.avi", "b.avi"}));
}

void TestMainTitle::choices_outlive_a_change_of_folder()
{
    make_file(in("sub/x.avi"));
    make_file(in("a.avi"));
    show(films_->path());
    tap(row_of("a.avi"));
    tap(row_of("sub"));
    wait_for(in("sub"));
    tap(row_of("x.avi"));
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), (QStringList{in("a.avi"), in("sub/x.avi")}));
}

void TestMainTitle::play_and_add_send_the_choice_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("append");
    QTest::newRow("play") << "play" << false;
    QTest::newRow("add") << "add" << true;
}

void TestMainTitle::play_and_add_send_the_choice()
{
    QFETCH(QString, button);
    QFETCH(bool, append);
    for (const char* name : {"Episode 10.avi", "Episode 2.avi", "봄날은 간다.avi", "left.avi"})
        make_file(in(name));
    show(films_->path());
    for (const char* name : {"봄날은 간다.avi", "Episode 10.avi", "Episode 2.avi"})
        tap(row_of(name));
    qsizetype messages_at_request = -1;
    const QSignalSpy requests(window_.get(), &mainTitle::append_requested);
    connect(window_.get(), &mainTitle::append_requested, this, [&] { messages_at_request = messages_->count(); });
    click(button.toLatin1().constData());
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(messages_->at(0).at(0).toByteArray(), QByteArray("transmit_filename(QString)"));
    QCOMPARE(last_message(), (QStringList{in("Episode 2.avi"), in("Episode 10.avi"), in("봄날은 간다.avi")}));
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.at(0).at(0).toBool(), append);
    QCOMPARE(messages_at_request, 0);
}

void TestMainTitle::without_a_choice_the_row_under_the_cursor_is_taken()
{
    make_file(in("a.avi"));
    make_file(in("b.avi"));
    show(films_->path());
    view_->setCurrentIndex(model()->index(row_of("b.avi"), 0));
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), QStringList{in("b.avi")});
}

void TestMainTitle::the_way_up_cannot_be_taken()
{
    show(films_->path());
    click("play");
    QVERIFY(!manager_->notice().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(messages_->count(), 0);
    tap(0, 10);
    QCOMPARE(chosen(), QStringList());
}

void TestMainTitle::the_choice_is_empty_after_it_was_sent()
{
    make_file(in("a.avi"));
    make_file(in("b.avi"));
    show(films_->path());
    click("all");
    click("add");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(chosen(), QStringList());
    QVERIFY(manager_->notice().isEmpty());
}

void TestMainTitle::a_folder_is_taken_with_all_films_in_it()
{
    for (const char* name :
         {"sub/10.avi", "sub/2.avi", "sub/deep/er/x.mkv", "sub/notes.txt", "sub/list.m3u", "sub/.hidden/y.avi"})
        make_file(in(name));
    show(films_->path());
    tap(row_of("sub"), 10);
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), (QStringList{in("sub/deep/er/x.mkv"), in("sub/2.avi"), in("sub/10.avi")}));
}

void TestMainTitle::links_that_lead_back_do_no_harm()
{
    make_file(in("sub/a.avi"));
    QVERIFY(QFile::link(films_->path(), in("sub/back")));
    QVERIFY(QFile::link(in("nowhere.avi"), in("sub/dangling.avi")));
    show(films_->path());
    tap(row_of("sub"), 10);
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), QStringList{in("sub/a.avi")});
}

void TestMainTitle::no_more_than_a_thousand_films_are_taken()
{
    for (int i = 0; i < 1100; ++i)
        make_file(in("many/") + QStringLiteral("%1.avi").arg(i), QByteArray());
    show(films_->path());
    tap(row_of("many"), 10);
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message().size(), FileManager::most_films);
}

void TestMainTitle::play_lists_are_read_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("films");
    QTest::addColumn<int>("left_out");
    const QByteArray here = "@HERE@";
    QTest::newRow("m3u") << "l.m3u" << QByteArray("#EXTM3U\n#EXTINF:12,Title\na.avi\n\n  sub/b.mkv  \n")
                         << QStringList{"a.avi", "sub/b.mkv"} << 0;
    QTest::newRow("m3u with line ends of other systems")
        << "l.m3u" << QByteArray("a.avi\r\nb.avi\rc.avi") << QStringList{"a.avi", "b.avi", "c.avi"} << 0;
    QTest::newRow("backslashes") << "l.m3u" << QByteArray("sub\\b.mkv\n") << QStringList{"sub/b.mkv"} << 0;
    QTest::newRow("parents") << "l.m3u" << QByteArray("sub/../a.avi\n") << QStringList{"a.avi"} << 0;
    QTest::newRow("absolute") << "l.m3u" << here + "/a.avi\n" << QStringList{"a.avi"} << 0;
    QTest::newRow("file address") << "l.m3u"
                                  << "file://" + here + "/a%20b.avi\n"
                                  << QStringList{"a b.avi"} << 0;
    QTest::newRow("address in the network")
        << "l.m3u" << QByteArray("http://x.org/a.avi\na.avi\n") << QStringList{"a.avi"} << 1;
    QTest::newRow("a line feed in an address") << "l.m3u"
                                               << "file://" + here + "/a%0Ab.avi\na.avi\n"
                                               << QStringList{"a.avi"} << 1;
    QTest::newRow("no films") << "l.m3u" << QByteArray("a.mp3\nb.txt\n") << QStringList{} << 0;
    QTest::newRow("empty") << "l.m3u" << QByteArray() << QStringList{} << 0;
    QTest::newRow("m3u8") << "l.m3u8" << QByteArray("봄.avi\n") << QStringList{QStringLiteral("봄.avi")} << 0;
    QTest::newRow("byte order mark") << "l.m3u8" << QByteArray("\xEF\xBB\xBF") + "a.avi\n" << QStringList{"a.avi"} << 0;
    QTest::newRow("m3u of a Korean desk")
        << "l.m3u" << QTextCodec::codecForName("CP949")->fromUnicode(QStringLiteral("봄날 똠.avi\n"))
        << QStringList{QStringLiteral("봄날 똠.avi")} << 0;
    QTest::newRow("pls")
        << "l.pls"
        << QByteArray("[playlist]\nNumberOfEntries=2\nFile10=b.avi\nTitle2=x\nFile2=a.avi\nLength2=5\nVersion=2\n")
        << QStringList{"a.avi", "b.avi"} << 0;
    QTest::newRow("pls in lower case") << "l.pls" << QByteArray("[playlist]\nfile1=a=b.avi\nfilex=c.avi\n")
                                       << QStringList{"a=b.avi"} << 0;
}

void TestMainTitle::play_lists_are_read()
{
    QFETCH(QString, list);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, films);
    const QString path = films_->filePath(list);
    make_file(path, content.replace("@HERE@", films_->path().toUtf8()));
    const PlayListFilms found = films_of_play_list(path);
    QStringList expected;
    for (const QString& film : std::as_const(films))
        expected.append(films_->filePath(film));
    QCOMPARE(found.films, expected);
    QTEST(found.names_left_out, "left_out");
    QVERIFY(found.failure.isEmpty());
    QVERIFY(!films_of_play_list(in("none.m3u")).failure.isEmpty());
}

void TestMainTitle::a_play_list_is_taken_as_its_films()
{
    make_file(in("a.avi"));
    make_file(in("sub/b.avi"));
    make_file(in("list.m3u"), "sub/b.avi\ngone.avi\na.avi\n");
    show(films_->path());
    tap(row_of("list.m3u"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("taken 2, no longer there 1")));
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), (QStringList{in("sub/b.avi"), in("a.avi")}));
}

void TestMainTitle::vanished_films_are_said_and_the_others_sent()
{
    make_file(in("a.avi"));
    make_file(in("b.avi"));
    show(films_->path());
    click("all");
    QVERIFY(QFile::remove(in("a.avi")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer there 1")));
    click("play");
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), QStringList{in("b.avi")});
    QCOMPARE(manager_->notice(), QStringLiteral("No longer there: 1"));
    QTRY_COMPARE(names(), (QStringList{"..", "b.avi"}));
}

void TestMainTitle::nothing_is_sent_when_all_films_are_gone()
{
    make_file(in("a.avi"));
    show(films_->path());
    QVERIFY(QFile::remove(in("a.avi")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("no longer there 1")));
    click("play");
    QTRY_COMPARE(names(), QStringList{".."});
    QCOMPARE(manager_->notice(), QStringLiteral("No longer there: 1"));
    QCOMPARE(messages_->count(), 0);
}

void TestMainTitle::a_folder_without_films_says_so()
{
    make_file(in("sub/notes.txt"));
    show(films_->path());
    tap(row_of("sub"), 10);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("taken 0")));
    click("play");
    QTRY_COMPARE(manager_->notice(), QStringLiteral("There are no films in this choice."));
    QCOMPARE(messages_->count(), 0);
}

void TestMainTitle::the_key_pad_alone_is_enough()
{
    for (const char* name : {"season/1.avi", "season/2.avi", "season/3.avi"})
        make_file(in(name));
    show(films_->path());
    const QSignalSpy requests(window_.get(), &mainTitle::append_requested);
    press(Qt::Key_Return);
    wait_for(in("season"));
    QTRY_COMPARE(view_->currentIndex().row(), 1);
    press(Qt::Key_Return);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    press(Qt::Key_Right);
    QCOMPARE(window_->focusWidget(), button("play"));
    press(Qt::Key_Up);
    QCOMPARE(window_->focusWidget(), button("play"));
    press(Qt::Key_Left);
    QCOMPARE(window_->focusWidget(), view_);
    press(Qt::Key_Right);
    press(Qt::Key_Down);
    QCOMPARE(window_->focusWidget(), button("add"));
    press(Qt::Key_Return);
    QTRY_COMPARE(messages_->count(), 1);
    QCOMPARE(last_message(), (QStringList{in("season/1.avi"), in("season/3.avi")}));
    QVERIFY(requests.at(0).at(0).toBool());
}

void TestMainTitle::a_held_return_chooses_once()
{
    make_file(in("a.avi"));
    show(films_->path());
    for (const bool is_repeat : {false, true, true}) {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), is_repeat);
        QCoreApplication::sendEvent(view_, &event);
    }
    QCOMPARE(chosen(), QStringList{"a.avi"});
}

void TestMainTitle::escape_reaches_the_window_from_everywhere()
{
    // What the player does: a filter on the application that looks at the keys of the window itself.
    class Filter : public QObject
    {
    public:
        explicit Filter(QObject* watched) : watched_(watched) { qApp->installEventFilter(this); }
        bool eventFilter(QObject* object, QEvent* event) override
        {
            const bool is_escape =
                event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
            if (!is_escape || object != watched_)
                return false;
            ++count;
            return true;
        }
        int count = 0;

    private:
        QObject* watched_;
    };
    make_file(in("a.avi"));
    show(films_->path());
    const Filter filter(window_.get());
    press(Qt::Key_Escape);
    QCOMPARE(filter.count, 1);
    for (const char* name : {"play", "add", "select", "all"}) {
        button(name)->setFocus();
        press(Qt::Key_Escape);
    }
    QCOMPARE(filter.count, 5);
    QVERIFY(window_->isVisible());
}

void TestMainTitle::escape_closes_a_window_that_nobody_filters()
{
    show(films_->path());
    press(Qt::Key_Escape);
    QVERIFY(!window_->isVisible());
}

void TestMainTitle::the_cross_closes()
{
    show(films_->path());
    click("close");
    QVERIFY(!window_->isVisible());
}

TAVEL_TEST_MAIN_WITH(QPEApplication, TestMainTitle)
#include "tst_main_title.moc"
