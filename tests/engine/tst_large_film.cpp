#include "bench.h"
#include "media_probe.h"
#include "spread_film.h"
#include "test_main.h"

#include <QApplication>

#include <sys/stat.h>

/// Films whose bytes or milliseconds do not fit into 31 or 32 bits, on the real engine and on a processor of any speed.
class TstLargeFilm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_film = m_directory.filePath(QStringLiteral("film.mp4"));
        QVERIFY(m_directory.isValid());
        QFile probe(m_directory.filePath(QStringLiteral("probe")));
        QVERIFY(probe.open(QIODevice::WriteOnly));
        m_sparse = probe.resize(five_gibibytes) && blocks_of(probe.fileName()) < 1024;
        QVERIFY(probe.remove());
        if (m_sparse)
            QVERIFY(spread_film(test_films::path("h264.mp4"), m_film, five_gibibytes));
    }

    void a_film_of_five_gibibytes_opens_with_its_length()
    {
        if (!m_sparse)
            QSKIP("this file system keeps no sparse files");
        QCOMPARE(QFileInfo(m_film).size(), five_gibibytes);
        Bench bench;
        QVERIFY(bench.load(m_film));
        QCOMPARE(bench.player.get_info("video", "width"), QStringLiteral("480"));
        QVERIFY(std::abs(bench.player.get_info("video", "time").toInt() - test_films::length_ms) < 100);
        const auto summary = probe_media(m_film, test_support::stretched(10'000));
        QVERIFY(summary.has_value());
        QVERIFY(std::abs(summary->duration_ms - test_films::length_ms) < 100);
    }

    void it_is_sought_beyond_two_and_four_gibibytes_data()
    {
        QTest::addColumn<int>("target");
        QTest::newRow("below 2^31 bytes") << 1000;
        QTest::newRow("beyond 2^31 bytes") << 3200;
        QTest::newRow("beyond 2^32 bytes") << 5400;
    }

    void it_is_sought_beyond_two_and_four_gibibytes()
    {
        QFETCH(int, target);
        if (!m_sparse)
            QSKIP("this file system keeps no sparse files");
        Bench bench;
        QVERIFY(bench.start(m_film));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(target));
        const int wanted = target * test_films::frame_rate / 1000;
        QTRY_VERIFY2(std::abs(bench.frame() - wanted) <= 1, qPrintable(QString::number(bench.frame())));
    }

    void a_film_of_a_month_is_sought_in_its_last_days()
    {
        // A picture an hour; 2^31 milliseconds are 596 hours.
        constexpr Time length = 800LL * hour_ms;
        const QString film = m_directory.filePath(QStringLiteral("month.mkv"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {"-v", "error", "-nostdin", "-f", "lavfi", "-i", "testsrc2=size=96x64:rate=25:duration=32", "-vf",
                      "setpts=N*3600/TB", "-vsync", "passthrough", "-c:v", "mpeg4", "-g", "1", film});
        QVERIFY(ffmpeg.waitForFinished(60'000));
        QVERIFY2(ffmpeg.exitCode() == 0, ffmpeg.readAllStandardError().constData());

        Bench bench;
        QVERIFY(bench.load(film));
        const Time told = bench.player.get_info("video", "time").toLongLong();
        QVERIFY2(std::abs(told - length) <= hour_ms, qPrintable(QString::number(told)));
        QCOMPARE(bench.player.play(), rask::ok);
        QCOMPARE(bench.player.pause(), rask::ok);
        constexpr Time target = 700LL * hour_ms;
        QVERIFY(bench.seek(target));
        const std::vector<long long> positions = bench.recorder.positions();
        QVERIFY(!positions.empty());
        QVERIFY2(std::abs(positions.front() - target) <= 44, qPrintable(QString::number(positions.front())));
    }

private:
    static constexpr qint64 five_gibibytes = 5LL << 30;
    static constexpr Time hour_ms = 3'600'000;

    /// What a file takes on the disk, in units of 512 bytes.
    static qint64 blocks_of(const QString& file)
    {
        struct stat info {
        };
        return ::stat(QFile::encodeName(file).constData(), &info) == 0 ? qint64(info.st_blocks) : five_gibibytes;
    }

    QTemporaryDir m_directory;
    QString m_film;
    bool m_sparse = false;
};

TAVEL_TEST_MAIN(TstLargeFilm)
#include "tst_large_film.moc"
