#include "child_program.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "screen_saver_double.h"
#include "system_agent.h"
#include "test_main.h"

#include <QDBusMessage>
#include <csignal>
#include <cstdio>

/// The agent on "QPE/System".
class TestSystemAgent : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> directory_;
    std::unique_ptr<SystemAgent> agent_;

    QString file(const QString& name) const { return directory_->filePath(name); }
    static QByteArray content(const QString& path)
    {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }
    static void write(const QString& path, const QByteArray& bytes, bool executable = false)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile target(path);
        QVERIFY(target.open(QIODevice::WriteOnly));
        target.write(bytes);
        target.close();
        if (executable)
            QVERIFY(target.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    // A program that notes that it ran, with its arguments and QPEDIR, and stays until it is told to go.
    void add_program(const QString& name)
    {
        write(file(QStringLiteral("bin/") + name),
              "#!/bin/sh\n"
              "echo \"$# $QPEDIR\" >> \"" +
                  file(QStringLiteral("log")).toUtf8() +
                  "\"\n"
                  "while [ -d \"" +
                  directory_->path().toUtf8() + "\" -a ! -e \"" + file(QStringLiteral("go")).toUtf8() +
                  "\" ]; do sleep 0.02; done\n"
                  "echo gone >> \"" +
                  file(QStringLiteral("log")).toUtf8() + "\"\n",
              true);
    }
    static void execute(const QString& name)
    {
        QCopEnvelope envelope("QPE/System", "execute(QString)");
        envelope << name;
    }

private slots:
    void init()
    {
        directory_ = std::make_unique<QTemporaryDir>();
        qputenv("QPEDIR", directory_->path().toUtf8());
        agent_ = std::make_unique<SystemAgent>(Backlight(file(QStringLiteral("backlight"))));
    }
    void cleanup()
    {
        write(file(QStringLiteral("go")), "");
        agent_.reset();
    }

    void the_channel_is_registered();
    void the_screen_saver_is_held_off_and_released();
    void holding_twice_is_holding_once();
    void a_release_before_the_answer_is_kept();
    void a_screen_saver_that_starts_later_or_again_is_asked_then();
    void the_screen_saver_is_released_when_the_agent_goes();
    void the_screen_saver_is_released_when_the_player_is_killed();
    void without_a_screen_saver_it_is_said_once();
    void the_backlight_is_set();
    void a_program_of_the_bin_directory_is_started_before_send_returns();
    void a_program_that_runs_is_asked_to_come_forward_and_not_started_again();
    void only_programs_of_the_bin_directory_are_started_data();
    void only_programs_of_the_bin_directory_are_started();
    void requests_of_other_programs_are_answered();
    void unknown_messages_are_ignored();
};

void TestSystemAgent::the_channel_is_registered()
{
    QVERIFY(QCopChannel::isRegistered("QPE/System"));
    agent_.reset();
    QVERIFY(!QCopChannel::isRegistered("QPE/System"));
}

void TestSystemAgent::the_screen_saver_is_held_off_and_released()
{
    const ScreenSaverDouble saver;
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.holders(), 1);
    QCOMPARE(saver.last_application(), QStringLiteral("tavel_video"));
    QVERIFY(!saver.last_reason().isEmpty());
    QVERIFY(agent_->screen_saver().is_held());
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QVERIFY(!agent_->screen_saver().is_held());
    QTRY_COMPARE(saver.holders(), 0);
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.holders(), 1);
}

void TestSystemAgent::holding_twice_is_holding_once()
{
    const ScreenSaverDouble saver;
    for (int i = 0; i < 3; ++i)
        QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.holders(), 1);
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QTRY_COMPARE(saver.holders(), 0);
    QCOMPARE(saver.times_asked(), 1);
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QCOMPARE(saver.holders(), 0);
}

void TestSystemAgent::a_release_before_the_answer_is_kept()
{
    const ScreenSaverDouble saver;
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QTRY_COMPARE(saver.times_asked(), 1);
    QTRY_COMPARE(saver.holders(), 0);
    // And the other way round: what counts is the last word.
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.times_asked(), 2);
    QCOMPARE(saver.holders(), 1);
}

void TestSystemAgent::a_screen_saver_that_starts_later_or_again_is_asked_then()
{
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("the screen saver cannot be held off")));
    QSignalSpy nothing(agent_.get(), &QObject::destroyed);
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    ScreenSaverDouble saver;
    QTRY_COMPARE(saver.holders(), 1);
    saver.stop();
    saver.start();
    QTRY_COMPARE(saver.holders(), 1);
    QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
    QTRY_COMPARE(saver.holders(), 0);
    saver.stop();
    const int asked = saver.times_asked();
    saver.start();
    QCopChannel::flush();
    QCoreApplication::processEvents();
    QCOMPARE(saver.times_asked(), asked);
}

void TestSystemAgent::the_screen_saver_is_released_when_the_agent_goes()
{
    const ScreenSaverDouble saver;
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.holders(), 1);
    agent_.reset();
    QTRY_COMPARE(saver.holders(), 0);
}

void TestSystemAgent::the_screen_saver_is_released_when_the_player_is_killed()
{
    agent_.reset();
    const ScreenSaverDouble saver;
    ChildProgram player;
    player.start_role("hold");
    QTRY_COMPARE(saver.holders(), 1);
    player.kill();
    QTRY_COMPARE(saver.holders(), 0);
}

void TestSystemAgent::without_a_screen_saver_it_is_said_once()
{
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression(QStringLiteral("the screen saver cannot be held off")));
    QStringList messages;
    static QStringList* collected = nullptr;
    collected = &messages;
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_VERIFY(agent_->screen_saver().is_refused());
    const auto old = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { collected->append(text); });
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QVERIFY(!agent_->screen_saver().is_refused());
    const bool again =
        QTest::qWaitFor([&] { return agent_->screen_saver().is_refused(); }, test_support::stretched(5000));
    qInstallMessageHandler(old);
    QVERIFY(again);
    QCOMPARE(messages, QStringList());
}

void TestSystemAgent::the_backlight_is_set()
{
    for (const char* name : {"type", "max_brightness", "brightness"})
        write(file(QStringLiteral("backlight/panel/") + QLatin1String(name)),
              qstrcmp(name, "type") == 0 ? "raw" : "510");
    {
        QCopEnvelope envelope("QPE/System", "setBacklight(int)");
        envelope << 100;
    }
    QCOMPARE(content(file(QStringLiteral("backlight/panel/brightness"))), QByteArray("200"));
}

void TestSystemAgent::a_program_of_the_bin_directory_is_started_before_send_returns()
{
    add_program(QStringLiteral("glossa"));
    execute(QStringLiteral("glossa"));
    // No event loop runs here, as in the dictionary dialog.
    const QByteArray expected = "0 " + directory_->path().toUtf8() + "/\n";
    QElapsedTimer timer;
    timer.start();
    while (content(file(QStringLiteral("log"))) != expected && timer.elapsed() < test_support::stretched(10000))
        std::this_thread::yield();
    QCOMPARE(content(file(QStringLiteral("log"))), expected);
}

void TestSystemAgent::a_program_that_runs_is_asked_to_come_forward_and_not_started_again()
{
    QCopChannel glossa("QPE/Application/glossa");
    QSignalSpy spy(&glossa, &QCopChannel::received);
    add_program(QStringLiteral("glossa"));
    execute(QStringLiteral("glossa"));
    const QByteArray once = "0 " + directory_->path().toUtf8() + "/\n";
    QTRY_COMPARE(content(file(QStringLiteral("log"))), once);
    QVERIFY(spy.isEmpty());
    execute(QStringLiteral("glossa"));
    QVERIFY(spy.wait(test_support::stretched(5000)));
    QCOMPARE(spy[0][0].toByteArray(), QByteArray("raise()"));
    // Once it has ended it is started anew.
    write(file(QStringLiteral("go")), "");
    QTRY_COMPARE(content(file(QStringLiteral("log"))), once + "gone\n");
    QTRY_VERIFY(
        (execute(QStringLiteral("glossa")), content(file(QStringLiteral("log"))).startsWith(once + "gone\n" + once)));
}

void TestSystemAgent::only_programs_of_the_bin_directory_are_started_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing") << QString();
    QTest::newRow("not there") << QStringLiteral("missing");
    QTest::newRow("above") << QStringLiteral("../outside");
    QTest::newRow("below") << QStringLiteral("below/program");
    QTest::newRow("absolute") << QStringLiteral("/bin/touch");
    QTest::newRow("the directory") << QStringLiteral(".");
    QTest::newRow("its parent") << QStringLiteral("..");
    QTest::newRow("a directory in it") << QStringLiteral("below");
    QTest::newRow("not executable") << QStringLiteral("text");
    QTest::newRow("with an argument") << QStringLiteral("glossa -x");
    QTest::newRow("with a command") << QStringLiteral("glossa;touch x");
    QTest::newRow("cut by a zero byte") << QStringLiteral("glossa%1x").arg(QChar(u'\0'));
    QTest::newRow("line feed") << QStringLiteral("glossa\n");
}

void TestSystemAgent::only_programs_of_the_bin_directory_are_started()
{
    QFETCH(QString, name);
    add_program(QStringLiteral("glossa"));
    add_program(QStringLiteral("below/program"));
    add_program(QStringLiteral("../outside"));
    write(file(QStringLiteral("bin/text")), "#!/bin/sh\necho x > " + file(QStringLiteral("log")).toUtf8());
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("is not started: there is no such program")));
    execute(name);
    // One that may be started comes behind it and shows that the first would have been seen by now.
    execute(QStringLiteral("glossa"));
    QTRY_COMPARE(content(file(QStringLiteral("log"))), "0 " + directory_->path().toUtf8() + "/\n");
}

void TestSystemAgent::requests_of_other_programs_are_answered()
{
    const ScreenSaverDouble saver;
    ChildProgram other;
    other.start_role("ask");
    QVERIFY(other.waitForFinished(test_support::stretched(30000)));
    QTRY_COMPARE(saver.holders(), 1);
}

void TestSystemAgent::unknown_messages_are_ignored()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    const ScreenSaverDouble saver;
    {
        QCopEnvelope envelope("QPE/System", "showTaskBar(QString)");
        envelope << QStringLiteral("tavel_video");
    }
    QVERIFY(QCopChannel::send("QPE/System", "shutdown()"));
    QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
    QTRY_COMPARE(saver.holders(), 1);
}

int main(int argc, char** argv)
{
    const QByteArray role = ChildProgram::role();
    if (role == "hold") {
        const QCoreApplication application(argc, argv);
        const SystemAgent agent;
        QCopChannel::send("QPE/System", "preventLCDOff()");
        return QCoreApplication::exec();
    }
    if (role == "ask") {
        const QCoreApplication application(argc, argv);
        QCopChannel::send("QPE/System", "preventLCDOff()");
        QCopChannel::flush();
        return 0;
    }
    test_support::prepare_process();
    const QApplication application(argc, argv);
    TestSystemAgent test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_system_agent.moc"
