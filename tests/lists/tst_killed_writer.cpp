#include "bookmark_widget.h"
#include "child_program.h"
#include "config.h"
#include "lists_fixture.h"
#include "play_list_widget.h"
#include "qpe_application.h"
#include "test_main.h"

#include <cstdio>

/// The lists' files survive the death of the program at any moment. The program that dies is this one, started again as
/// a writer.
class TestKilledWriter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void a_killed_save_leaves_the_old_playlist_or_the_new_one();
    void a_killed_start_keeps_every_bookmark();
    void a_killed_crash_guard_keeps_the_playlist();

private:
    void kill_writer(const char* work, int after_lines, int then_wait_us);
    QStringList saved(const char* file, const char* group, const char* key) const;
};

namespace
{

constexpr int kills = 25;
constexpr int bookmarks = BookmarkWidget::capacity;

QStringList playlist_of(const char* kind, int count)
{
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths.append(QStringLiteral("/films/%1/%2.avi").arg(QLatin1String(kind)).arg(i));
    return paths;
}

QStringList short_list()
{
    return playlist_of("short", 300);
}

QStringList long_list()
{
    return playlist_of("long", 999);
}

/// The bookmarks as a careless hand wrote them: each row that is loaded changes the file.
QStringList careless_bookmarks()
{
    QStringList elements;
    for (int i = 0; i < bookmarks; ++i)
        elements << QStringLiteral("/films/%1.avi").arg(i) << QStringLiteral("00%1").arg(i);
    return elements;
}

/// Tells the test that one more step is done.
void report_step()
{
    std::puts("");
    std::fflush(stdout);
}

void fill(PlayListWidget& panel, const QStringList& paths)
{
    panel.clear();
    for (const QString& path : paths)
        panel.add_track(path);
}

[[noreturn]] void save_playlists_for_ever()
{
    lists_fixture::MainWindow window;
    PlayListWidget panel(&window, "PLAYLIST");
    while (true) {
        fill(panel, long_list());
        panel.save();
        report_step();
        fill(panel, short_list());
        panel.save();
        report_step();
    }
}

[[noreturn]] void guard_entries_for_ever()
{
    lists_fixture::MainWindow window;
    PlayListWidget panel(&window, "PLAYLIST");
    while (true) {
        panel.start_entry();
        report_step();
        panel.finish_entry();
        report_step();
    }
}

[[noreturn]] void load_bookmarks_for_ever()
{
    lists_fixture::MainWindow window;
    while (true) {
        {
            Config file(lists_fixture::data_directory() + QStringLiteral("/bookmark.dat"), Config::File);
            file.setGroup(QStringLiteral("Bookmarks"));
            file.writeEntry(QStringLiteral("bookmarks"), careless_bookmarks());
        }
        report_step();
        const BookmarkWidget panel(&window, "BOOKMARK");
    }
}

int work_as_writer(const QString& work)
{
    lists_fixture::ShellCommands no_shell;
    if (work == QLatin1String("playlist"))
        save_playlists_for_ever();
    if (work == QLatin1String("guard"))
        guard_entries_for_ever();
    if (work == QLatin1String("bookmarks"))
        load_bookmarks_for_ever();
    return 2;
}

} // namespace

void TestKilledWriter::initTestCase()
{
    lists_fixture::start_from_scratch();
}

void TestKilledWriter::init()
{
    QDir(lists_fixture::data_directory()).removeRecursively();
    QDir().mkpath(lists_fixture::data_directory());
}

/// Starts a writer, waits until it has done some steps and a little more, and kills it in the middle of what it does
/// then.
void TestKilledWriter::kill_writer(const char* work, int after_lines, int then_wait_us)
{
    QProcess writer;
    writer.setProcessChannelMode(QProcess::SeparateChannels);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    writer.setProcessEnvironment(environment);
    ChildProgram::start_built(writer, QCoreApplication::applicationFilePath(),
                              {QStringLiteral("--writer"), QString::fromLatin1(work)});
    int lines = 0;
    while (lines < after_lines) {
        QVERIFY(writer.waitForReadyRead(test_support::stretched(30000)));
        lines += static_cast<int>(writer.readAllStandardOutput().count('\n'));
    }
    // Not to wait for anything, but to hit another instruction each time.
    QThread::usleep(static_cast<unsigned long>(then_wait_us));
    writer.kill();
    QVERIFY(writer.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
}

QStringList TestKilledWriter::saved(const char* file, const char* group, const char* key) const
{
    Config config(lists_fixture::data_directory() + u'/' + QString::fromLatin1(file), Config::File);
    config.setGroup(QString::fromLatin1(group));
    return config.readListEntry(QString::fromLatin1(key));
}

void TestKilledWriter::a_killed_save_leaves_the_old_playlist_or_the_new_one()
{
    int long_ones = 0;
    for (int i = 0; i < kills; ++i) {
        kill_writer("playlist", 1 + i % 3, 137 * i);
        const QStringList found = saved("playlist.dat", "Playlist", "files");
        QVERIFY2(found == short_list() || found == long_list(), qPrintable(QString::number(found.size())));
        long_ones += found == long_list();
    }
    QVERIFY2(long_ones > 0 && long_ones < kills, "the kills always hit the same place");
}

void TestKilledWriter::a_killed_start_keeps_every_bookmark()
{
    for (int i = 0; i < kills; ++i) {
        kill_writer("bookmarks", 1 + i % 2, 531 * i);
        const QStringList found = saved("bookmark.dat", "Bookmarks", "bookmarks");
        QCOMPARE(found.size(), 2 * bookmarks);
        for (int row = 0; row < bookmarks; ++row) {
            QCOMPARE(found[2 * row], QStringLiteral("/films/%1.avi").arg(row));
            QCOMPARE(found[2 * row + 1].toInt(), row);
        }
    }
}

void TestKilledWriter::a_killed_crash_guard_keeps_the_playlist()
{
    {
        lists_fixture::ShellCommands no_shell;
        lists_fixture::MainWindow window;
        PlayListWidget panel(&window, "PLAYLIST");
        fill(panel, short_list());
    }
    for (int i = 0; i < kills; ++i) {
        kill_writer("guard", 1 + i % 4, 73 * i);
        QCOMPARE(saved("playlist.dat", "Playlist", "files"), short_list());
    }
}

int main(int argc, char** argv)
{
    // A writer works in the directories of the test that started it.
    const bool is_writer = argc == 3 && qstrcmp(argv[1], "--writer") == 0;
    if (!is_writer)
        test_support::prepare_process();
    int own_argc = 1;
    QPEApplication application(own_argc, argv);
    if (is_writer)
        return work_as_writer(QString::fromLatin1(argv[2]));
    TestKilledWriter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_killed_writer.moc"
