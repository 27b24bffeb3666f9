#include "child_program.h"
#include "qcop_channel.h"
#include "test_main.h"

#include <QtNetwork/QTcpSocket>

/// The program itself, started as a user's system starts it: what the system says reaches the state chart.
class ProgramTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        test_support::reset_directories();
        said.clear();
        player = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // The chart's trace tells an event and where it led, a line each.
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("tavel.chart.debug=true"));
        player->setProcessEnvironment(environment);
        player->setProcessChannelMode(QProcess::MergedChannels);
        ChildProgram::start_built(*player, QStringLiteral(PLAYER_PROGRAM), {});
        QTRY_VERIFY2_WITH_TIMEOUT(says("2101: get_file_state -> no_file_state"), said.constData(), limit_ms);
    }
    void cleanup()
    {
        player->kill();
        player->waitForFinished();
        player.reset();
    }

    void the_systems_reload_reaches_the_chart()
    {
        QVERIFY(!says("2100: "));
        tell_system("reload()");
        QTRY_VERIFY2_WITH_TIMEOUT(says("2100: no_file_state -> no_file_state"), said.constData(), limit_ms);
        QCOMPARE(player->state(), QProcess::Running);
    }

    void the_systems_flush_ends_the_program()
    {
        tell_system("flush()");
        QTRY_VERIFY2_WITH_TIMEOUT(says("2008: no_file_state -> exit_state"), said.constData(), limit_ms);
        QTRY_COMPARE_WITH_TIMEOUT(player->state(), QProcess::NotRunning, limit_ms);
        QCOMPARE(player->exitStatus(), QProcess::NormalExit);
        QCOMPARE(player->exitCode(), 0);
    }

    void other_programs_find_it_at_port_11883()
    {
        // A player started beside this test may be there already; then this one has said which port it wanted.
        if (says("nobody can connect to port 11883"))
            return;
        QTcpSocket peer;
        peer.connectToHost(QHostAddress::LocalHost, 11883);
        QVERIFY2(peer.waitForConnected(limit_ms), qPrintable(peer.errorString()));
        QCOMPARE(player->state(), QProcess::Running);
    }

    void a_folder_and_a_play_list_stand_for_the_films_in_them()
    {
        const QTemporaryDir directory;
        const QDir folder(directory.path());
        QVERIFY(folder.mkpath(QStringLiteral("films/more")));
        for (const char* name :
             {"films/b.avi", "films/a10.mkv", "films/a9.mkv", "films/notes.txt", "films/more/c.mp4", "listed.avi"}) {
            QFile file(folder.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QFile list(folder.filePath(QStringLiteral("list.m3u")));
        QVERIFY(list.open(QIODevice::WriteOnly));
        list.write("listed.avi\n");
        list.close();
        // The player that runs gets them; what it took is in its playlist.
        QProcess second;
        ChildProgram::start_built(second, QStringLiteral(PLAYER_PROGRAM),
                                  {folder.filePath(QStringLiteral("films")), list.fileName()});
        QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, limit_ms);
        QCOMPARE(second.exitCode(), 0);
        // The first is no film at all, so it does not stay in the list.
        QStringList expected;
        for (const char* name : {"films/a9.mkv", "films/a10.mkv", "films/b.avi", "listed.avi"})
            expected.append(folder.filePath(QString::fromLatin1(name)));
        const QByteArray row = "\nfiles = " + expected.join(u',').toUtf8() + '\n';
        const QString lists = qEnvironmentVariable("QPEDIR") + QStringLiteral("etc/tavel_video/playlist.dat");
        const auto stored = [&lists] {
            QFile file(lists);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(stored().contains(row), stored().constData(), limit_ms);
    }

private:
    static constexpr int limit_ms = 60'000;

    bool says(const char* text)
    {
        said += player->readAll();
        return said.contains(text);
    }
    static void tell_system(const char* message)
    {
        QCopChannel::send("QPE/System", message);
        QCopChannel::flush();
    }

    std::unique_ptr<QProcess> player;
    QByteArray said;
};

TAVEL_TEST_MAIN(ProgramTest)
#include "tst_program.moc"
