#include "heard_bench.h"
#include "media_probe.h"
#include "slow_disk.h"
#include "test_main.h"

#include <QSemaphore>

using namespace std::chrono_literals;

namespace
{

/// The longest that the thread which draws may be held up by an operation on a playing film.
constexpr qint64 longest_ms = 30;

qint64 time_of(const std::function<void()>& operation)
{
    QElapsedTimer clock;
    clock.start();
    operation();
    return clock.elapsed();
}

} // namespace

/// Films on a disk that stops to answer.
class TstSlowDisk : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_film = test_films::copy(QStringLiteral("minute.mp4"), m_directory->path(), QStringLiteral("slow_film.mp4"));
    }

    void cleanup()
    {
        slow_disk::release();
        // What was left behind ends now that the disk answers.
        QTRY_VERIFY(Bench::count("task") < 8);
    }

    void no_operation_on_a_playing_film_waits_for_the_disk()
    {
        Bench bench;
        QVERIFY(bench.start(m_film));
        QVERIFY(bench.runs_on(100));
        slow_disk::hold("slow_film");
        QVERIFY(time_of([&] { bench.player.seek(SeekMode::Forward, 40000); }) <= longest_ms);
        QTRY_VERIFY(slow_disk::held() > 0);
        const std::array<qint32, 3> colour = {60, 50, 40};
        QVERIFY(time_of([&] { bench.player.pause(); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.play(); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.set_aspect(1); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.set_video_window(10, 10, 200, 100); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.set_parameter(4, colour.data(), sizeof colour); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.set_speed(0); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.select_stream(2, 1); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.seek(SeekMode::Backward, 20000); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.scan_forward(3); }) <= longest_ms);
        QVERIFY(time_of([&] { bench.player.play(); }) <= longest_ms);
        slow_disk::release();
        QVERIFY(bench.runs_on(300));
    }

    void a_seek_on_a_stuck_disk_ends_all_the_same()
    {
        Bench bench;
        QVERIFY(bench.start(m_film));
        QVERIFY(bench.runs_on(100));
        slow_disk::hold("slow_film");
        bench.recorder.clear();
        QCOMPARE(bench.player.seek(SeekMode::Forward, 40000), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(1, 7s));
        QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("stream 0 0")}));
    }

    void a_paused_film_is_busy_until_a_seek_has_arrived()
    {
        Bench bench;
        QVERIFY(bench.start(m_film));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(!bench.is_busy());
        slow_disk::hold("slow_film");
        QCOMPARE(bench.player.seek(SeekMode::Forward, 40000), rask::ok);
        QVERIFY(bench.is_busy());
        slow_disk::release();
        QTRY_VERIFY(!bench.is_busy());
    }

    void closing_during_a_blocked_read_returns_within_a_second()
    {
        Bench bench;
        QVERIFY(bench.start(m_film));
        QVERIFY(bench.runs_on(100));
        slow_disk::hold("slow_film");
        QCOMPARE(bench.player.seek(SeekMode::Forward, 40000), rask::ok);
        QTRY_VERIFY(slow_disk::held() > 0);
        QVERIFY(time_of([&] { QCOMPARE(bench.player.close(), rask::ok); }) <= longest_ms);
        // Another film, on a disk that answers, does not have to wait for the stuck one.
        const qint64 next = time_of([&] { QVERIFY(bench.start(test_films::path("h264.mp4"))); });
        QVERIFY2(next < 3000, qPrintable(QString::number(next)));
        QVERIFY(bench.runs_on(300));
    }

    void releasing_during_a_blocked_read_returns_within_two_seconds()
    {
        auto bench = std::make_unique<Bench>();
        QVERIFY(bench->start(m_film));
        QVERIFY(bench->runs_on(100));
        slow_disk::hold("slow_film");
        QCOMPARE(bench->player.seek(SeekMode::Forward, 40000), rask::ok);
        QTRY_VERIFY(slow_disk::held() > 0);
        const qint64 elapsed = time_of([&] { bench.reset(); });
        QVERIFY2(elapsed < test_support::stretched(2000), qPrintable(QString::number(elapsed)));
    }

    void a_film_that_waited_for_the_disk_is_heard_again()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(m_film));
        QTRY_VERIFY(bench.server.loudness() > SoundServer::audible);
        slow_disk::hold("slow_film");
        // Longer than a sound server may hold a film up, first in the flow of the film and then in a seek.
        constexpr std::size_t four_seconds = 4 * SoundServer::rate;
        QTRY_VERIFY(slow_disk::held() > 0);
        bench.server.forget();
        QTRY_VERIFY_WITH_TIMEOUT(bench.server.heard().size() > four_seconds, 20000);
        QCOMPARE(bench.player.seek(SeekMode::Forward, 30000), rask::ok);
        bench.server.forget();
        QTRY_VERIFY_WITH_TIMEOUT(bench.server.heard().size() > four_seconds, 20000);
        QCOMPARE(bench.server.loudness(), 0);
        slow_disk::release();
        QTRY_VERIFY(bench.server.loudness() > SoundServer::audible);
        QVERIFY(bench.recorder.position() < 40000);
    }

    void opening_on_a_stuck_disk_gives_up()
    {
        Bench bench;
        slow_disk::hold("slow_film");
        const qint64 elapsed = time_of([&] { QVERIFY(!bench.open(m_film)); });
        QVERIFY2(elapsed < 6000, qPrintable(QString::number(elapsed)));
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }

    void loading_on_a_stuck_disk_gives_up()
    {
        Bench bench;
        QVERIFY(bench.open(m_film));
        slow_disk::hold("slow_film");
        const qint64 elapsed =
            time_of([&] { QCOMPARE(bench.player.prepare(QFile::encodeName(m_film).constData()), rask::timed_out); });
        QVERIFY2(elapsed < 11500, qPrintable(QString::number(elapsed)));
        QCOMPARE(bench.recorder.reports(), QStringList());
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }

    void subtitles_on_a_stuck_disk_do_not_keep_the_film_and_come_later()
    {
        QFile subtitles(m_directory->filePath(QStringLiteral("slow_film.srt")));
        QVERIFY(subtitles.open(QIODevice::WriteOnly));
        subtitles.write("1\n00:00:01,000 --> 00:00:02,000\nLate\n");
        subtitles.close();
        Bench bench;
        QSemaphore ready;
        bench.player.set_subtitles_ready_hook([&] { ready.release(); });
        slow_disk::hold("slow_film.srt");
        QVERIFY(bench.start(m_film));
        QVERIFY(slow_disk::held() > 0);
        QVERIFY(bench.runs_on(100));
        QCOMPARE(bench.player.get_info("container", "subtitle_streams"), QStringLiteral("1"));
        QVERIFY(!bench.player.get_subtitles(0));
        QCOMPARE(slow_disk::held(), 1); // nobody has begun once more
        slow_disk::release();
        QVERIFY(ready.tryAcquire(1, 10000));
        QVERIFY(bench.player.get_subtitles(0));
        QCOMPARE(bench.player.get_subtitles(0)->front().text, std::string("Late"));
        bench.player.set_subtitles_ready_hook({});
    }

    void probing_on_a_stuck_disk_gives_up()
    {
        slow_disk::hold("slow_film");
        const qint64 elapsed = time_of([&] { QVERIFY(!probe_media(m_film, 200)); });
        QVERIFY2(elapsed < 1000, qPrintable(QString::number(elapsed)));
    }

private:
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_film;
};

TAVEL_TEST_MAIN(TstSlowDisk)
#include "tst_slow_disk.moc"
