#include "bench.h"
#include "test_main.h"

#include <QApplication>

#include <set>

/// One film from beginning to end on the real engine, on a processor of any speed: nothing here counts on real time.
class TstOneFilm : public QObject
{
    Q_OBJECT

private slots:
    void a_film_is_loaded_shown_and_ended()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("h264.mp4")));
        QCOMPARE(bench.player.get_info("video", "width"), QStringLiteral("480"));
        QCOMPARE(bench.player.get_info("video", "height"), QStringLiteral("272"));

        std::set<int> frames;
        QCOMPARE(bench.player.play(), rask::ok);
        const bool some_seen = QTest::qWaitFor(
            [&] {
                if (const int frame = bench.frame(); frame >= 0)
                    frames.insert(frame);
                return frames.size() >= 5;
            },
            test_support::stretched(60'000));
        QVERIFY2(some_seen, qPrintable(QString::number(frames.size())));
        QVERIFY(*frames.rbegin() < 150);

        QVERIFY(bench.recorder.wait_for_reports(5, std::chrono::milliseconds(test_support::stretched(180'000))));
        QCOMPARE(bench.recorder.reports(),
                 (QStringList{QStringLiteral("state 2"), QStringLiteral("stream 0 0"), QStringLiteral("state 4"),
                              QStringLiteral("stream 0 2"), QStringLiteral("state 6")}));
    }
};

TAVEL_TEST_MAIN(TstOneFilm)
#include "tst_one_film.moc"
