#include "child_program.h"
#include "player_test.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "test_main.h"

#include <QtCore/QProcess>

/// Another process talks to the player over the session bus.
class MessagesFromOutsideTest : public PlayerTest
{
    Q_OBJECT

private slots:
    void a_list_from_another_process_plays()
    {
        const QStringList files = player->make_files(2);
        send({QStringLiteral("list")}, files.join(u'\n') + u'\n');
        QTRY_VERIFY_WITH_TIMEOUT(player->in(&TavelVideo::play_state), 20000);
        QCOMPARE(player->playlist()->get_count(), 2);
    }

    void a_thousand_long_paths_from_another_process_fill_the_list()
    {
        QString list;
        for (int i = 0; i < 1000; ++i)
            list += u'/' + QString(200, u'\uD55C') + QString::number(i) + QStringLiteral(" =\\'\"[x].avi\n");
        player->at_next_notice();
        send({QStringLiteral("list")}, list);
        QTRY_COMPARE_WITH_TIMEOUT(player->notices().size(), 1, 20000);
        QTRY_COMPARE_WITH_TIMEOUT(player->playlist()->get_count(), 999, 20000);
        QCOMPARE(player->playlist()->get_filename(998), list.split(u'\n').at(998));
    }

    void the_screen_is_switched_from_another_process()
    {
        send({QStringLiteral("screen"), QStringLiteral("1")});
        QTRY_VERIFY_WITH_TIMEOUT(player->window()->is_tv_out(), 20000);
        send({QStringLiteral("screen"), QStringLiteral("0")});
        QTRY_VERIFY_WITH_TIMEOUT(!player->window()->is_tv_out(), 20000);
    }

    void a_changed_clock_told_by_another_process_holds_the_film()
    {
        player->play_a_film();
        send({QStringLiteral("clock")});
        QTRY_COMPARE_WITH_TIMEOUT(player->log(), QStringList({"pause", "wait 500", "play"}), 20000);
    }

    void garbage_from_another_process_changes_nothing()
    {
        player->play_a_film();
        send({QStringLiteral("garbage")});
        // What it says last, once everything before has been heard.
        send({QStringLiteral("clock")});
        QTRY_COMPARE_WITH_TIMEOUT(player->log(), QStringList({"pause", "wait 500", "play"}), 20000);
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 1);
        QVERIFY(!player->window()->is_tv_out());
    }

private:
    /// Lets the other program say one thing; a long @p text goes by its standard input.
    void send(const QStringList& arguments, const QString& text = QString())
    {
        QProcess other;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TAVEL_TEST_SENDER"), QStringLiteral("1"));
        other.setProcessEnvironment(environment);
        ChildProgram::start_built(other, QCoreApplication::applicationFilePath(), arguments);
        QVERIFY(other.waitForStarted(test_support::stretched(30000)));
        other.write(text.toUtf8());
        other.closeWriteChannel();
        QTRY_COMPARE_WITH_TIMEOUT(other.state(), QProcess::NotRunning, 20000);
        QCOMPARE(other.exitCode(), 0);
    }
};

namespace
{

/// The other program: says one thing to the player and ends.
int speak(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    constexpr const char* channel = "QPE/Brevaton/video";
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const QString what = arguments.value(0);
    if (what == QStringLiteral("list")) {
        QFile input;
        if (!input.open(stdin, QIODevice::ReadOnly))
            return 1;
        QCopEnvelope envelope(channel, "transmit_filename(QString)");
        envelope << QString::fromUtf8(input.readAll());
    } else if (what == QStringLiteral("screen")) {
        QCopEnvelope envelope(channel, "DoScreenChange(unsigned char)");
        envelope << static_cast<quint8>(arguments.value(1).toUInt());
    } else if (what == QStringLiteral("clock")) {
        QCopEnvelope envelope(channel, "timeChange(QString)");
        envelope << QString();
    } else {
        QCopChannel::send(channel, "transmit_filename(QString)", QByteArray("\xFF\xFF\xFF\x00 nonsense", 10));
        QCopChannel::send(channel, "DoScreenChange(unsigned char)", QByteArray());
        QCopChannel::send(channel, "nothing of ours(int)", QByteArray(100000, '\xFF'));
        QCopChannel::send(channel, QByteArray("\xFF\xFE\x00", 3), QByteArray());
    }
    QCopChannel::flush();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsSet("TAVEL_TEST_SENDER"))
        return speak(argc, argv);
    test_support::prepare_process();
    QPEApplication application(argc, argv);
    MessagesFromOutsideTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_messages_from_outside.moc"
