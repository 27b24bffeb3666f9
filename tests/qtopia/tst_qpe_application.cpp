#include "child_program.h"
#include "device_screen.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "test_main.h"

#include <clocale>
#include <csignal>
#include <cstdio>

namespace
{

void say(const QByteArray& line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

/// A player: listens on the player's channel and tells what comes; "late" opens the channel only when told to.
int play(int argc, char** argv)
{
    // A path that ends in "+" stands for two.
    const auto files_behind = [](const QString& path) {
        return path.endsWith(u'+') ? QStringList{path + u'1', path + u'2'} : QStringList{path};
    };
    QPEApplication application(argc, argv, files_behind);
    say("made");
    if (qEnvironmentVariableIsSet("TAVEL_TEST_LATE")) {
        while (!QFile::exists(qEnvironmentVariable("TAVEL_TEST_LATE")))
            std::this_thread::sleep_for(std::chrono::milliseconds(5)); // stands for a slow start
    }
    QCopChannel channel("QPE/Brevaton/video");
    QObject::connect(&channel, &QCopChannel::received, &channel, [](const QCString& message, const QByteArray& data) {
        QDataStream stream(data);
        stream.setVersion(QCopEnvelope::stream_version);
        QString text;
        stream >> text;
        say(message + ' ' + text.toUtf8().replace('\n', '|'));
    });
    QObject::connect(&application, &QPEApplication::flush, &channel, [] {
        say("flush");
        QCoreApplication::quit();
    });
    // Nothing may arrive before the event loop runs.
    QCoreApplication::processEvents();
    say("ready");
    const int result = QPEApplication::exec();
    say("end");
    return result;
}

} // namespace

/// The application object.
class TestQPEApplication : public QObject
{
    Q_OBJECT

private:
    static QByteArray absolute(const char* name)
    {
        return QFileInfo(QString::fromUtf8(name)).absoluteFilePath().toUtf8();
    }

private slots:
    void init()
    {
        // This process is no player as far as the others are concerned.
        QVERIFY(!QCopChannel::isRegistered("QPE/Brevaton/video"));
    }

    void files_of_the_command_line_arrive_once_the_event_loop_runs();
    void a_second_start_hands_its_files_over_and_ends_with_0();
    void a_second_start_without_files_ends_with_0();
    void a_second_start_waits_for_a_first_that_is_still_starting();
    void a_player_starts_again_after_one_was_killed();
    void signals_ask_to_flush_data();
    void signals_ask_to_flush();
    void a_signal_without_a_receiver_ends_the_program();
    void the_system_can_ask_to_flush_and_reload_and_tell_the_volume();
    void closing_the_host_window_asks_the_main_widget();
    void waking_up_reaches_a_sleeping_event_loop_from_any_thread();
    void the_last_window_does_not_end_the_program();
    void decimal_points_are_points();
};

void TestQPEApplication::files_of_the_command_line_arrive_once_the_event_loop_runs()
{
    ChildProgram player;
    player.start_role("play", {QStringLiteral("a b.avi"), QStringLiteral("/media/영화.avi"),
                               QStringLiteral("--no-such-option"), QStringLiteral("file:///x%20y.avi"),
                               QStringLiteral("line\nfeed.avi"), QStringLiteral("file:z.avi"), QStringLiteral("--"),
                               QStringLiteral("-dash.avi"), QStringLiteral("/folder+")});
    const QByteArray files = absolute("a b.avi") + "|/media/영화.avi|/x y.avi|" + absolute("file:z.avi") + '|' +
                             absolute("-dash.avi") + "|/folder+1|/folder+2|";
    QTRY_COMPARE(player.lines(), (QList<QByteArray>{"made", "ready", "transmit_filename(QString) " + files}));
}

void TestQPEApplication::a_second_start_hands_its_files_over_and_ends_with_0()
{
    ChildProgram first;
    first.start_role("play", {});
    QTRY_COMPARE(first.lines(), (QList<QByteArray>{"made", "ready"}));
    ChildProgram second;
    second.start_role("play", {QStringLiteral("/a.avi"), QStringLiteral("b.avi")});
    QVERIFY(second.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(second.exitStatus(), QProcess::NormalExit);
    QCOMPARE(second.exitCode(), 0);
    QVERIFY(second.lines().isEmpty());
    QTRY_COMPARE(first.lines().value(2), "transmit_filename(QString) /a.avi|" + absolute("b.avi") + '|');
    QCOMPARE(first.lines().size(), 3);
}

void TestQPEApplication::a_second_start_without_files_ends_with_0()
{
    ChildProgram first;
    first.start_role("play", {});
    QTRY_COMPARE(first.lines(), (QList<QByteArray>{"made", "ready"}));
    ChildProgram second;
    second.start_role("play", {});
    QVERIFY(second.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(second.exitCode(), 0);
    QVERIFY(second.lines().isEmpty());
    // What comes behind shows that nothing was sent to the first.
    QVERIFY(QCopChannel::send("QPE/Brevaton/video", "last()"));
    QTRY_COMPARE(first.lines().value(2), QByteArray("last() "));
}

void TestQPEApplication::a_second_start_waits_for_a_first_that_is_still_starting()
{
    const QTemporaryDir directory;
    const QString go = directory.filePath(QStringLiteral("go"));
    qputenv("TAVEL_TEST_LATE", go.toUtf8());
    ChildProgram first;
    first.start_role("play", {});
    qunsetenv("TAVEL_TEST_LATE");
    QTRY_COMPARE(first.lines(), QList<QByteArray>{"made"});
    ChildProgram second;
    second.start_role("play", {QStringLiteral("/a.avi")});
    QVERIFY(!second.waitForFinished(300));
    QFile file(go);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(second.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(second.exitCode(), 0);
    QTRY_COMPARE(first.lines(), (QList<QByteArray>{"made", "ready", "transmit_filename(QString) /a.avi|"}));
}

void TestQPEApplication::a_player_starts_again_after_one_was_killed()
{
    ChildProgram first;
    first.start_role("play", {});
    QTRY_COMPARE(first.lines().size(), 2);
    first.kill();
    QVERIFY(first.waitForFinished(test_support::stretched(30000)));
    QTRY_VERIFY(!QCopChannel::isRegistered("QPE/Brevaton/video"));
    ChildProgram second;
    second.start_role("play", {});
    QTRY_COMPARE(second.lines(), (QList<QByteArray>{"made", "ready"}));
}

void TestQPEApplication::signals_ask_to_flush_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestQPEApplication::signals_ask_to_flush()
{
    QFETCH(int, number);
    ChildProgram player;
    player.start_role("play", {});
    QTRY_COMPARE(player.lines().size(), 2);
    QCOMPARE(::kill(static_cast<pid_t>(player.processId()), number), 0);
    QVERIFY(player.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(player.exitStatus(), QProcess::NormalExit);
    QCOMPARE(player.lines(), (QList<QByteArray>{"made", "ready", "flush", "end"}));
}

void TestQPEApplication::a_signal_without_a_receiver_ends_the_program()
{
    ChildProgram tool;
    tool.start_role("tool");
    QTRY_COMPARE(tool.lines(), QList<QByteArray>{"ready"});
    QCOMPARE(::kill(static_cast<pid_t>(tool.processId()), SIGTERM), 0);
    QVERIFY(tool.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
    QCOMPARE(tool.exitCode(), 0);
}

void TestQPEApplication::the_system_can_ask_to_flush_and_reload_and_tell_the_volume()
{
    ChildProgram tool;
    tool.start_role("system");
    QTRY_COMPARE(tool.lines(), QList<QByteArray>{"ready"});
    QVERIFY(QCopChannel::send("QPE/System", "flush()"));
    QVERIFY(QCopChannel::send("QPE/System", "reload()"));
    for (const bool muted : {true, false}) {
        QCopEnvelope envelope("QPE/System", "volumeChange(bool)");
        envelope << muted;
    }
    QTRY_COMPARE(tool.lines(), (QList<QByteArray>{"ready", "flush", "reload", "volume 1", "volume 0"}));
}

void TestQPEApplication::closing_the_host_window_asks_the_main_widget()
{
    ChildProgram tool;
    tool.start_role("window");
    QVERIFY(tool.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(tool.lines(), (QList<QByteArray>{"embedded", "event 2007"}));
    QCOMPARE(tool.exitCode(), 0);
}

void TestQPEApplication::waking_up_reaches_a_sleeping_event_loop_from_any_thread()
{
    // A loop that waits for events without a limit goes on once it is woken up, without any event.
    std::thread other([] { QPEApplication::wakeUpGuiThread(); });
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    QSignalSpy awake(dispatcher, &QAbstractEventDispatcher::awake);
    QTRY_VERIFY(!awake.isEmpty());
    other.join();
}

void TestQPEApplication::the_last_window_does_not_end_the_program()
{
    ChildProgram tool;
    tool.start_role("last_window");
    QVERIFY(tool.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(tool.lines(), (QList<QByteArray>{"closed", "still there"}));
}

void TestQPEApplication::decimal_points_are_points()
{
    ChildProgram tool;
    qputenv("LC_ALL", "de_DE.UTF-8");
    tool.start_role("locale");
    qputenv("LC_ALL", "C.UTF-8");
    QVERIFY(tool.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(tool.lines(), QList<QByteArray>{"C"});
}

namespace
{

int be_tool(int argc, char** argv)
{
    const QPEApplication application(argc, argv);
    say("ready");
    return QPEApplication::exec();
}

int tell_system_requests(int argc, char** argv)
{
    const QPEApplication application(argc, argv);
    QObject::connect(&application, &QPEApplication::flush, [] { say("flush"); });
    QObject::connect(&application, &QPEApplication::reload, [] { say("reload"); });
    QObject::connect(&application, &QPEApplication::volumeChanged,
                     [](bool muted) { say("volume " + QByteArray::number(muted)); });
    say("ready");
    return QPEApplication::exec();
}

class Window : public QWidget
{
protected:
    bool event(QEvent* event) override
    {
        if (event->type() >= 1000) {
            say("event " + QByteArray::number(event->type()));
            QCoreApplication::exit(0);
            return true;
        }
        return QWidget::event(event);
    }
};

int close_window(int argc, char** argv)
{
    QPEApplication application(argc, argv);
    Window window;
    application.showMainWidget(&window);
    if (window.isVisible() && window.graphicsProxyWidget() && application.mainWidget() == &window)
        say("embedded");
    QTimer::singleShot(0, [] {
        // As it comes from the host's window manager.
        QCloseEvent by_the_user;
        QSpontaneKeyEvent::setSpontaneous(&by_the_user);
        qApp->notify(DeviceScreen::instance(), &by_the_user);
    });
    const int result = QPEApplication::exec();
    return DeviceScreen::instance()->isVisible() ? result : 1;
}

int close_last_window(int argc, char** argv)
{
    const QPEApplication application(argc, argv);
    QWindow window;
    window.show();
    QTimer::singleShot(0, &window, [&] {
        window.close();
        say("closed");
        // A quit that the window had caused would come before this.
        QTimer::singleShot(50, [] {
            say("still there");
            QCoreApplication::quit();
        });
    });
    return QPEApplication::exec();
}

int tell_locale(int argc, char** argv)
{
    const QPEApplication application(argc, argv);
    say(std::setlocale(LC_NUMERIC, nullptr));
    return 0;
}

struct Role {
    const char* name;
    int (*run)(int, char**);
};

constexpr Role roles[] = {
    {"play", play},
    {"tool", be_tool},
    {"system", tell_system_requests},
    {"window", close_window},
    {"last_window", close_last_window},
    {"locale", tell_locale},
};

} // namespace

int main(int argc, char** argv)
{
    for (const Role& role : roles) {
        if (ChildProgram::role() == role.name)
            return role.run(argc, argv);
    }
    test_support::prepare_process();
    const QApplication application(argc, argv);
    TestQPEApplication test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_qpe_application.moc"
