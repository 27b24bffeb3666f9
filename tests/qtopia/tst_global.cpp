#include "global.h"
#include "test_main.h"

/// The waits, and the one place in which tests shorten them.
class TestGlobal : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Global::set_sleeper({}); }

    void a_test_sees_every_wait_and_none_takes_time()
    {
        std::vector<std::chrono::microseconds> waits;
        Global::set_sleeper([&](std::chrono::microseconds duration) { waits.push_back(duration); });
        QElapsedTimer timer;
        timer.start();
        Global::msleep(500);
        Global::usleep(250);
        Global::sleep(3600);
        using namespace std::chrono_literals;
        QCOMPARE(waits, (std::vector<std::chrono::microseconds>{500ms, 250us, 3600s}));
        QVERIFY(timer.elapsed() < test_support::stretched(60000));
    }

    void without_a_test_the_thread_waits_at_least_that_long()
    {
        QElapsedTimer timer;
        timer.start();
        Global::msleep(20);
        QVERIFY(timer.nsecsElapsed() >= 20'000'000);
        timer.start();
        Global::usleep(1500);
        QVERIFY(timer.nsecsElapsed() >= 1'500'000);
        timer.start();
        Global::sleep(1);
        QVERIFY(timer.elapsed() >= 1000);
    }

    void nothing_or_less_is_no_wait()
    {
        Global::msleep(0);
        Global::msleep(-5);
        Global::usleep(-5);
        Global::sleep(-1);
    }
};

TAVEL_TEST_MAIN(TestGlobal)
#include "tst_global.moc"
