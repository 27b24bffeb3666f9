#include "child_program.h"
#include "player.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtCore/QProcess>

/// Another process talks to the player over the session bus.
class MessagesFromOutsideTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        player = std::make_unique<Player>();
        player->settle();
    }
    void cleanup() { player.reset(); }

    void a_list_from_another_process_plays()
    {
        const QStringList files = player->make_files(2);
        QProcess other;
        other.setProcessEnvironment(sender_environment());
        ChildProgram::start_built(other, QCoreApplication::applicationFilePath(), files);
        QVERIFY(other.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(player->in(&TavelVideo::play_state), 20000);
        QCOMPARE(player->playlist()->get_count(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(other.state(), QProcess::NotRunning, 20000);
        QCOMPARE(other.exitCode(), 0);
    }

private:
    static QProcessEnvironment sender_environment()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TAVEL_TEST_SENDER"), QStringLiteral("1"));
        return environment;
    }

    std::unique_ptr<Player> player;
};

namespace
{

/// The other program: hands its arguments over and ends.
int send_files(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    {
        QCopEnvelope envelope("QPE/Brevaton/video", "transmit_filename(QString)");
        envelope << QCoreApplication::arguments().mid(1).join(u'\n') + u'\n';
    }
    QCopChannel::flush();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsSet("TAVEL_TEST_SENDER"))
        return send_files(argc, argv);
    test_support::prepare_process();
    QPEApplication application(argc, argv);
    MessagesFromOutsideTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_messages_from_outside.moc"
