#include "bench.h"
#include "test_main.h"
#include "text_codec.h"

#include <QSemaphore>

using namespace std::chrono_literals;

namespace
{

QString text_of(const Subtitle& line)
{
    return QTextCodec::codecForName("CP949")->toUnicode(QByteArray::fromStdString(line.text));
}

void write_subtitles(const QString& path, const QByteArray& text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("1\n00:00:00,500 --> 00:00:01,500\n" + text + "\n\n");
}

} // namespace

/// How a player hands over the subtitles of its film.
class TstFilmSubtitles : public QObject
{
    Q_OBJECT

private slots:
    void the_streams_inside_a_film_are_read_behind_its_back()
    {
        Bench bench;
        QSemaphore ready;
        std::atomic<std::thread::id> thread{};
        bench.player.set_subtitles_ready_hook([&] {
            thread = std::this_thread::get_id();
            ready.release();
        });
        QVERIFY(bench.open(test_films::path("subtitles.mkv")));
        QCOMPARE(bench.player.get_info("container", "subtitle_streams"), QStringLiteral("2"));
        QVERIFY(!bench.player.get_subtitles(0));
        QVERIFY(bench.load(test_films::path("subtitles.mkv")));
        QVERIFY(ready.tryAcquire(1, 10000));
        QVERIFY(thread.load() != std::this_thread::get_id());

        const std::vector<Subtitle>* const korean = bench.player.get_subtitles(0);
        QVERIFY(korean);
        QCOMPARE(korean->size(), std::size_t(2));
        // The sound's encoder begins a little early and so shifts everything else by some 20 ms.
        QVERIFY(std::abs(korean->front().start - 1000) <= 25);
        QCOMPARE(korean->front().end - korean->front().start, 1000);
        QCOMPARE(text_of(korean->front()), QStringLiteral("\ud55c\uad6d\uc5b4"));
        const std::vector<Subtitle>* const english = bench.player.get_subtitles(1);
        QVERIFY(english);
        QCOMPARE(text_of(english->front()), QStringLiteral("English"));
        QCOMPARE(text_of(english->back()), QStringLiteral("Two\nlines"));
        QVERIFY(!bench.player.get_subtitles(2));
        QVERIFY(!bench.player.get_subtitles(8));
        QCOMPARE(bench.player.get_subtitles(0), korean);
        bench.player.set_subtitles_ready_hook({});
    }

    void a_file_beside_the_film_comes_before_the_streams_inside()
    {
        QTemporaryDir directory;
        const QString film =
            test_films::copy(QStringLiteral("subtitles.mkv"), directory.path(), QStringLiteral("film.mkv"));
        write_subtitles(directory.filePath(QStringLiteral("film.srt")), "Beside");
        Bench bench;
        QVERIFY(bench.load(film));
        QCOMPARE(bench.player.get_info("container", "subtitle_streams"), QStringLiteral("3"));
        QVERIFY(bench.player.get_subtitles(0));
        QCOMPARE(text_of(bench.player.get_subtitles(0)->front()), QStringLiteral("Beside"));
        QTRY_VERIFY(bench.player.get_subtitles(2));
        QCOMPARE(text_of(bench.player.get_subtitles(2)->front()), QStringLiteral("English"));
    }

    void a_list_lives_until_the_next_film_is_opened()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("subtitles.mkv")));
        QTRY_VERIFY(bench.player.get_subtitles(0));
        const std::vector<Subtitle>* const list = bench.player.get_subtitles(0);
        QCOMPARE(bench.player.close(), rask::ok);
        QVERIFY(!bench.player.get_subtitles(0));
        QVERIFY(std::abs(list->front().start - 1000) <= 25);
    }

    void closing_while_subtitles_are_being_read_does_not_call_the_hook()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("subtitles.mkv")));
        QVERIFY(bench.open(test_films::path("h264.mp4")));
        QSemaphore ready;
        bench.player.set_subtitles_ready_hook([&] { ready.release(); });
        QVERIFY(!ready.tryAcquire(1, 300));
        QCOMPARE(bench.player.get_info("container", "subtitle_streams"), QStringLiteral("0"));
        bench.player.set_subtitles_ready_hook({});
    }
};

TAVEL_TEST_MAIN(TstFilmSubtitles)
#include "tst_film_subtitles.moc"
