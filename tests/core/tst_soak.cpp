#include "player.h"
#include "qpe_application.h"
#include "random_use.h"
#include "rounds.h"
#include "test_main.h"

#include <cstdio>

namespace
{

/// What the engine might say, at any time.
void use_a_report(RandomUse& use)
{
    switch (use.below(5)) {
    case 0:
        scripted_engine::report_state(static_cast<PlayerState>(use.below(12)));
        break;
    case 1:
        scripted_engine::report_time(use.below(12000));
        break;
    case 2:
        scripted_engine::report_stream(static_cast<StreamType>(use.below(2)), static_cast<StreamState>(use.below(3)));
        break;
    case 3:
        scripted_engine::run_to(use.below(10001));
        break;
    default:
        if (use.chance(20))
            scripted_engine::report_error(static_cast<RaskStatus>(use.below(50)));
        break;
    }
}

/// Reports, and the next failures of the engine.
void use_the_engine(RandomUse& use)
{
    if (use.chance(2)) {
        use_a_report(use);
        return;
    }
    scripted_engine::set_next_result(
        use.any_of(std::array{QStringLiteral("open"), QStringLiteral("prepare"), QStringLiteral("play"),
                              QStringLiteral("pause"), QStringLiteral("seek"), QStringLiteral("scan_forward"),
                              QStringLiteral("close"), QStringLiteral("set_speed"), QStringLiteral("initialize")}),
        use.chance(6) ? rask::engine_failed : rask::ok);
}

} // namespace

/// Random use from a seed on the whole player.
///
/// TAVEL_SOAK_STEPS sets how many steps a seed takes (2000 without it), TAVEL_SOAK_SEED which seed is used alone,
/// TAVEL_SOAK_TALK lets everything be said.
class SoakTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (int i = 0; i < 5; ++i) {
            files.append(directory.filePath(QStringLiteral("film %1.avi").arg(i)));
            QFile file(files.last());
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        files.append(directory.filePath(QStringLiteral("missing.avi")));
    }

    void any_use_leaves_the_player_whole_data()
    {
        QTest::addColumn<quint32>("seed");
        if (qEnvironmentVariableIsSet("TAVEL_SOAK_SEED")) {
            const auto seed = static_cast<quint32>(qEnvironmentVariableIntValue("TAVEL_SOAK_SEED"));
            QTest::addRow("seed %u", seed) << seed;
            return;
        }
        for (const quint32 seed : {1U, 2U, 3U, 5U, 8U})
            QTest::addRow("seed %u", seed) << seed;
    }
    void any_use_leaves_the_player_whole()
    {
        QFETCH(quint32, seed);
        const MachineAsserts asserts;
        RandomUse use(seed, files, use_the_engine);
        const int steps = qEnvironmentVariableIsSet("TAVEL_SOAK_STEPS")
                              ? qEnvironmentVariableIntValue("TAVEL_SOAK_STEPS")
                              : test_support::rounds(2000);
        player = std::make_unique<Player>();
        for (int step = 0; step < steps; ++step) {
            take_step(use);
            if (step % 50 == 0)
                QVERIFY2(is_whole(), qPrintable(QStringLiteral("after step %1: %2").arg(step).arg(fault)));
        }
        settle_down();
        QVERIFY2(is_whole(), qPrintable(fault));
        player.reset();
        QCOMPARE(asserts.count(), 0);
        QCOMPARE(scripted_engine::players(), 0);
        QCOMPARE(use.fault_of_files(), QString());
    }

    void the_same_use_over_and_over_takes_no_more_memory()
    {
        const MachineAsserts asserts;
        Remains remains;
        player = std::make_unique<Player>();
        for (int round = 0; round < 8; ++round) {
            RandomUse use(13, files, use_the_engine);
            for (int step = 0; step < 400; ++step)
                take_step(use);
            settle_down();
            RandomUse::put_to_rest(*player, [this] { player->settle(); });
            QVERIFY(player->in(&TavelVideo::no_file_state));
            player->clear_log();
            remains.note(*player);
        }
        std::printf("left after each round: %s\n", qPrintable(remains.describe()));
        QVERIFY2(!remains.has_new_objects(), qPrintable(remains.describe()));
        QVERIFY2(remains.least_growth(3) <= 2048, qPrintable(remains.describe()));
        QCOMPARE(asserts.count(), 0);
    }

    void cleanup() { player.reset(); }

private:
    void take_step(RandomUse& use)
    {
        use.take_step(*player);
        if (use.chance(4))
            player->settle();
        if (player->in(&TavelVideo::exit_state)) {
            player.reset();
            player = std::make_unique<Player>(Player::Device{.keep_files = true});
        }
    }

    /// Closes what is open and stops what plays, as a viewer would.
    void settle_down()
    {
        player->settle();
        player->settings()->close();
        player->file_manager()->close();
        for (int i = 0; i < 3; ++i) {
            player->post(player_event::stop);
            scripted_engine::report_stream(StreamType::Film, StreamState::Started);
            player->settle();
        }
    }

    bool is_whole()
    {
        player->settle();
        fault = RandomUse::fault_of(*player);
        if (fault.isEmpty() && scripted_engine::players() != (player->in(&TavelVideo::exit_state) ? 0 : 1))
            fault = QStringLiteral("there is one engine");
        return fault.isEmpty();
    }

    QTemporaryDir directory;
    QStringList files;
    QString fault;
    std::unique_ptr<Player> player;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, SoakTest)
#include "tst_soak.moc"
