#include "shell.h"
#include "test_main.h"

#include <csignal>

/// The shell's commands: quoting that cannot be broken out of, and a sync that nobody waits for.
class TestShell : public QObject
{
    Q_OBJECT

private:
    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void cleanup() { Shell::set_recorder({}); }

    void a_plain_path_is_left_as_it_is_data();
    void a_plain_path_is_left_as_it_is();
    void a_quoted_name_reaches_a_program_unchanged_data();
    void a_quoted_name_reaches_a_program_unchanged();
    void removing_a_directory_of_any_name_reaches_nothing_beside_it_data();
    void removing_a_directory_of_any_name_reaches_nothing_beside_it();
    void the_exit_status_is_returned();
    void a_command_cut_by_a_zero_byte_is_not_run();
    void signals_of_the_player_stay_as_they_are_during_a_command();
    void directories_are_made_with_their_parents();
    void sync_runs_beside_the_player_one_at_a_time();
    void a_recorder_sees_the_commands_instead_of_the_shell();
};

void TestShell::a_plain_path_is_left_as_it_is_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("word");
    QTest::newRow("plain") << QStringLiteral("/opt/Qtopia/etc/tavel_video")
                           << QByteArray("/opt/Qtopia/etc/tavel_video");
    QTest::newRow("dots and dashes") << QStringLiteral("/a.b/c-d_e+f") << QByteArray("/a.b/c-d_e+f");
    QTest::newRow("blank") << QStringLiteral("/a b") << QByteArray("'/a b'");
    QTest::newRow("quote") << QStringLiteral("/a'b") << QByteArray("'/a'\\''b'");
    QTest::newRow("Korean") << QStringLiteral("/영화") << QByteArray("'/영화'");
    QTest::newRow("tilde") << QStringLiteral("~") << QByteArray("'~'");
    QTest::newRow("empty") << QString() << QByteArray("''");
    QTest::newRow("dash first") << QStringLiteral("-rf") << QByteArray("./-rf");
}

void TestShell::a_plain_path_is_left_as_it_is()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, word);
    QCOMPARE(Shell::quote(path), word);
}

namespace
{

// Names made to break out of a word, or to be taken for something else.
constexpr const char* nasty_names[] = {
    "a b",
    "  ",
    "a'b",
    "''",
    "'; touch broken; '",
    "\"x\"",
    "$(touch broken)",
    "`touch broken`",
    "$HOME",
    "${IFS}",
    "*",
    "?",
    "[a-z]",
    "{a,b}",
    "~",
    "~root",
    "a;b",
    "a&b",
    "a|b",
    "a>broken",
    "<broken",
    "(x)",
    "a\nb",
    "a\n\ntouch broken",
    "a\\",
    "\\'",
    "a\tb",
    "#comment",
    "!history",
    "a=b",
    "-rf",
    "--",
    "\xEC\x98\x81\xED\x99\x94",
    "%s%n",
    "^",
    "a\\\nb",
    "x' -o -name '*",
    "\x01\x7F",
    "..a",
    "\xC2\xA0",
};

} // namespace

void TestShell::a_quoted_name_reaches_a_program_unchanged_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : nasty_names)
        QTest::newRow(name) << QString::fromUtf8(name);
    QString all;
    for (char16_t unit = 1; unit < 0x180; ++unit)
        all += QChar(unit);
    QTest::newRow("everything") << all;
}

void TestShell::a_quoted_name_reaches_a_program_unchanged()
{
    QFETCH(QString, name);
    const QTemporaryDir directory;
    const QString output = directory.filePath(QStringLiteral("output"));
    const QByteArray command =
        "cd " + Shell::quote(directory.path()) + " && printf %s " + Shell::quote(name) + " > output";
    QCOMPARE(Shell::system(command), 0);
    const QByteArray expected = name.startsWith(u'-') ? "./" + name.toUtf8() : name.toUtf8();
    QCOMPARE(content(output), expected);
    QCOMPARE(QDir(directory.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

void TestShell::removing_a_directory_of_any_name_reaches_nothing_beside_it_data()
{
    a_quoted_name_reaches_a_program_unchanged_data();
}

void TestShell::removing_a_directory_of_any_name_reaches_nothing_beside_it()
{
    QFETCH(QString, name);
    if (name.contains(u'/'))
        name.remove(u'/');
    name.truncate(60);
    const QTemporaryDir directory;
    const QString home = directory.filePath(QStringLiteral("qpe/") + name);
    const QString damaged = home + QStringLiteral("/etc/tavel_video");
    QVERIFY(Shell::make_directory(damaged));
    QVERIFY(Shell::make_directory(damaged + QStringLiteral(" 2")));
    QVERIFY(Shell::make_directory(directory.filePath(QStringLiteral("beside"))));
    QVERIFY(Shell::make_directory(directory.filePath(QStringLiteral("qpe/other"))));
    QVERIFY(Shell::make_directory(home + QStringLiteral("/etc/kept")));
    QCOMPARE(Shell::system("rm -rf " + Shell::quote(damaged) + "*"), 0);
    QCOMPARE(QDir(home + QStringLiteral("/etc")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("kept")});
    QVERIFY(QFileInfo(directory.filePath(QStringLiteral("beside"))).isDir());
    QVERIFY(QFileInfo(directory.filePath(QStringLiteral("qpe/other"))).isDir());
}

void TestShell::the_exit_status_is_returned()
{
    QCOMPARE(Shell::system("exit 0"), 0);
    QCOMPARE(Shell::system("exit 7"), 7);
    QCOMPARE(Shell::system("kill -9 $$"), -1);
    QCOMPARE(Shell::system("/there/is/no/such/program 2>/dev/null"), 127);
}

void TestShell::a_command_cut_by_a_zero_byte_is_not_run()
{
    const QTemporaryDir directory;
    const QString mark = directory.filePath(QStringLiteral("mark"));
    QCOMPARE(Shell::system("touch " + Shell::quote(mark) + QByteArray(1, '\0') + "x"), -1);
    QVERIFY(!QFile::exists(mark));
}

void TestShell::signals_of_the_player_stay_as_they_are_during_a_command()
{
    static std::atomic<int> seen;
    seen = 0;
    const auto old = std::signal(SIGINT, [](int) { ++seen; });
    QCOMPARE(Shell::system("kill -INT $PPID"), 0);
    std::signal(SIGINT, old);
    QCOMPARE(seen.load(), 1);
}

void TestShell::directories_are_made_with_their_parents()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("a/b c/'d'/\n"));
    QVERIFY(Shell::make_directory(path));
    QVERIFY(QFileInfo(path).isDir());
    QVERIFY(Shell::make_directory(path));
    QFile file(directory.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(!Shell::make_directory(file.fileName()));
    QVERIFY(!Shell::make_directory(file.fileName() + QStringLiteral("/below")));
}

void TestShell::sync_runs_beside_the_player_one_at_a_time()
{
    // A "sync" of our own: it waits until it is let go, and notes when one finds another one running.
    const QTemporaryDir directory;
    const QString script = directory.filePath(QStringLiteral("sync"));
    QFile file(script);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n"
               "cd \"${0%/*}\"\n"
               "mkdir running || echo twice > collision\n"
               "echo started >> log\n"
               "while [ ! -e go ]; do sleep 0.01; done\n"
               "rmdir running\n"
               "echo ended >> log\n");
    file.close();
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray old_path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(directory.path()) + ':' + old_path);
    const auto restore = qScopeGuard([&] { qputenv("PATH", old_path); });
    const QString log = directory.filePath(QStringLiteral("log"));

    QCOMPARE(Shell::system("sync"), 0);
    QTRY_COMPARE(content(log), QByteArray("started\n"));
    for (int i = 0; i < 5; ++i)
        Shell::sync();
    QCOMPARE(content(log), QByteArray("started\n"));
    QFile go(directory.filePath(QStringLiteral("go")));
    QVERIFY(go.open(QIODevice::WriteOnly));
    // The five that came meanwhile are one more run.
    QTRY_COMPARE(content(log), QByteArray("started\nended\nstarted\nended\n"));
    Shell::sync();
    QTRY_COMPARE(content(log), QByteArray("started\nended\nstarted\nended\nstarted\nended\n"));
    QVERIFY(!QFile::exists(directory.filePath(QStringLiteral("collision"))));
}

void TestShell::a_recorder_sees_the_commands_instead_of_the_shell()
{
    QList<QByteArray> commands;
    Shell::set_recorder([&](const QByteArray& command) {
        commands.append(command);
        return 3;
    });
    const QTemporaryDir directory;
    QCOMPARE(Shell::system("rm -rf " + Shell::quote(directory.path()) + "*"), 3);
    Shell::sync();
    QCOMPARE(Shell::system("sync"), 0);
    QCOMPARE(commands, (QList<QByteArray>{"rm -rf " + QFile::encodeName(directory.path()) + "*", "sync", "sync"}));
    QVERIFY(QFileInfo(directory.path()).isDir());
}

TAVEL_TEST_MAIN(TestShell)
#include "tst_shell.moc"
