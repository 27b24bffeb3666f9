#include "films.h"
#include "global.h"
#include "qpe_application.h"
#include "random_use.h"
#include "test_main.h"

#include <cstdio>

/// Random use from a seed on the whole player with the real engine and real films.
///
/// TAVEL_SOAK_STEPS sets how many steps are taken (2000 without it), TAVEL_SOAK_SEED the seed, TAVEL_SOAK_TALK lets
/// everything be said.
class SoakRealFilmsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Global::set_sleeper([](std::chrono::microseconds) {});
        for (const char* film :
             {"h264.mp4", "mpeg4.avi", "h264.ts", "subtitles.mkv", "two_sounds.mkv", "sound_only.m4a"})
            files.append(test_films::path(QString::fromLatin1(film)));
        files.append(directory.filePath(QStringLiteral("garbage.avi")));
        QFile garbage(files.last());
        QVERIFY(garbage.open(QIODevice::WriteOnly));
        garbage.write(QByteArray(50000, '\x5A'));
        files.append(directory.filePath(QStringLiteral("missing.avi")));
    }
    void cleanupTestCase() { Global::set_sleeper({}); }
    void cleanup() { player.reset(); }

    void any_use_leaves_the_player_whole()
    {
        const auto seed = static_cast<quint32>(
            qEnvironmentVariableIsSet("TAVEL_SOAK_SEED") ? qEnvironmentVariableIntValue("TAVEL_SOAK_SEED") : 13);
        const int steps =
            qEnvironmentVariableIsSet("TAVEL_SOAK_STEPS") ? qEnvironmentVariableIntValue("TAVEL_SOAK_STEPS") : 2000;
        const MachineAsserts asserts;
        RandomUse use(seed, files, [](RandomUse& giver) { pass_time(giver.below(20)); });
        player = std::make_unique<PlayerWindow>(PlayerWindow::Device());
        for (int step = 0; step < steps; ++step) {
            take_step(use);
            if (step % 100 == 0) {
                pass_time(0);
                const QString fault = RandomUse::fault_of(*player);
                QVERIFY2(fault.isEmpty(), qPrintable(QStringLiteral("after step %1: %2").arg(step).arg(fault)));
            }
        }
        rest();
        QCOMPARE(RandomUse::fault_of(*player), QString());
        // It plays as well as ever. The first list may still be one that somebody asked to add.
        player->hand_over({files.first()});
        player->hand_over({files.first()});
        QTRY_VERIFY_WITH_TIMEOUT(player->in(&TavelVideo::play_state) && player->window()->position() > 200, 30000);
        player.reset();
        QCOMPARE(asserts.count(), 0);
        QCOMPARE(use.fault_of_files(), QString());
    }

    void the_same_use_over_and_over_takes_no_more_memory()
    {
        const MachineAsserts asserts;
        Remains remains;
        player = std::make_unique<PlayerWindow>(PlayerWindow::Device());
        for (int round = 0; round < 6; ++round) {
            RandomUse use(21, files, [](RandomUse& giver) { pass_time(giver.below(20)); });
            for (int step = 0; step < 150; ++step)
                take_step(use);
            rest();
            remains.note(*player);
        }
        std::printf("left after each round: %s\n", qPrintable(remains.describe()));
        QVERIFY2(!remains.has_new_objects(), qPrintable(remains.describe()));
        QVERIFY2(remains.least_growth(2) <= 32768, qPrintable(remains.describe()));
        QCOMPARE(asserts.count(), 0);
    }

private:
    /// Lets the engine play for a while; what comes of it is seen to meanwhile.
    static void pass_time(int milliseconds)
    {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }

    void take_step(RandomUse& use)
    {
        use.take_step(*player);
        if (use.chance(4))
            QCoreApplication::processEvents();
        if (player->in(&TavelVideo::exit_state)) {
            player.reset();
            player = std::make_unique<PlayerWindow>(PlayerWindow::Device{.keep_files = true});
        }
    }

    void rest()
    {
        const auto resting = [this] {
            return player->in(&TavelVideo::no_file_state) || player->in(&TavelVideo::stop_state);
        };
        // A seek that is under way keeps a stop for after it, and a failing file is taken out with a notice.
        QTRY_VERIFY_WITH_TIMEOUT((player->post(player_event::stop), resting()), 30000);
        RandomUse::put_to_rest(*player, [] { pass_time(0); });
        QTRY_VERIFY_WITH_TIMEOUT(player->in(&TavelVideo::no_file_state), 30000);
    }

    QTemporaryDir directory;
    QStringList files;
    std::unique_ptr<PlayerWindow> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, SoakRealFilmsTest)
#include "tst_soak_real_films.moc"
