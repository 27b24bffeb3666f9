#include "films.h"
#include "test_main.h"

#include <QProcess>

#include <csignal>
#include <unistd.h>

namespace
{

/// A program that writes down how it was called, an argument a line with line feeds shown as "|".
constexpr char recorder[] =
    "#!/bin/bash\n"
    "for argument; do printf '%s\\n' \"${argument//$'\\n'/|}\"; done >\"$RECORD/$(basename \"$0\")\"\n"
    "printf '%s\\n' \"HOME=${HOME-}\" \"DBUS=${DBUS_SESSION_BUS_ADDRESS-}\" \"PLATFORM=${QT_QPA_PLATFORM-}\" "
    ">\"$RECORD/environment\"\n";

} // namespace

/// The command at the root of the source tree, on a copy of it whose build has nothing left to do.
class TestFrontDoor : public QObject
{
    Q_OBJECT

private:
    struct Result {
        int exit_code = -1;
        QString said;
    };

    static constexpr int limit_ms = 60'000;

    std::unique_ptr<QTemporaryDir> directory_;
    QProcessEnvironment environment_;

    QString place(const char* name) const { return directory_->filePath(QString::fromUtf8(name)); }

    void write(const char* name, const QByteArray& content)
    {
        QFile file(place(name));
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
        file.close();
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// Not through the toolkit's file names, which cannot hold every byte.
    void write_film(const QByteArray& name)
    {
        const QByteArray path = QFile::encodeName(place("films/")) + name;
        const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.constData(), "w"), &std::fclose);
        QVERIFY(file != nullptr);
    }

    QStringList lines_of(const char* name) const
    {
        QFile file(place(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    QString told(const char* variable) const
    {
        const QString start = QString::fromLatin1(variable) + u'=';
        return lines_of("record/environment").filter(QRegularExpression(u'^' + start)).value(0).mid(start.size());
    }
    bool was_started(const char* program) const { return QFile::exists(place("record/") + QLatin1String(program)); }

    void prepare(QProcess& process, const QString& in = {})
    {
        process.setProcessEnvironment(environment_);
        process.setWorkingDirectory(in.isEmpty() ? place("films") : in);
        process.setProcessChannelMode(QProcess::MergedChannels);
    }

    /// @param arguments text for a shell, which can name every file
    Result run(const QByteArray& arguments)
    {
        QProcess process;
        prepare(process);
        process.start(QStringLiteral("/bin/bash"),
                      {QStringLiteral("-c"), QStringLiteral("exec ../root/tavel ") + QString::fromUtf8(arguments)});
        if (!process.waitForFinished(limit_ms))
            return {};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAll())};
    }

private slots:
    void init()
    {
        directory_ = std::make_unique<QTemporaryDir>();
        for (const char* name : {"films", "record", "home", "tmp"})
            QVERIFY(QDir().mkpath(place(name)));
        QVERIFY(QDir().mkpath(place("root/packaging")));
        QVERIFY(QFile::copy(QStringLiteral(SOURCE_DIR "/tavel"), place("root/tavel")));
        QVERIFY(QFile::copy(QStringLiteral(SOURCE_DIR "/packaging/packages"), place("root/packaging/packages")));
        write("root/packaging/make-demonstration", "#!/bin/bash\nprintf film >\"$1\"\nprintf . >>\"$RECORD/made\"\n");
        write("root/build/release/build.ninja", "");
        write("root/build/release/bin/tavel_video", recorder);
        write("root/build/release/bin/tavel_watch", recorder);
        write("bin/cmake", recorder);
        write("bin/apt-get", "#!/bin/bash\nprintf '%s\\n' \"$*\" >>\"$RECORD/apt-get\"\n");
        // Everything is installed but what the test names.
        write("bin/dpkg-query", "#!/bin/bash\nfor name in \"${@:3}\"; do\n"
                                "    [ \"$name\" = \"${MISSING-}\" ] || echo \"$name installed\"\ndone\n");
        environment_ = QProcessEnvironment();
        environment_.insert(QStringLiteral("PATH"), place("bin") + QStringLiteral(":/usr/bin:/bin"));
        environment_.insert(QStringLiteral("HOME"), place("home"));
        environment_.insert(QStringLiteral("TMPDIR"), place("tmp"));
        environment_.insert(QStringLiteral("RECORD"), place("record"));
        environment_.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment_.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    }

    void any_file_name_reaches_the_player_whole_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("blanks") << QByteArray(" two  blanks ");
        QTest::newRow("quotes") << QByteArray("it's \"quoted\"");
        QTest::newRow("what a shell would act on") << QByteArray("$HOME `id` $(id) ; & | > < * ? [a] {b} ! ~ #");
        QTest::newRow("a backslash") << QByteArray("back\\slash\\n");
        QTest::newRow("a tab") << QByteArray("tab\there");
        QTest::newRow("Hangul") << QByteArray("영화.mkv");
        QTest::newRow("per cent") << QByteArray("100%20.mkv");
        QTest::newRow("an address") << QByteArray("file:name");
        QTest::newRow("an operator") << QByteArray("=");
        QTest::newRow("a parenthesis") << QByteArray("(");
    }
    void any_file_name_reaches_the_player_whole()
    {
        QFETCH(QByteArray, name);
        write_film(name);
        const QByteArray quoted = '\'' + QByteArray(name).replace('\'', "'\\''") + '\'';
        const QString path = place("films/") + QString::fromUtf8(name);
        for (const QByteArray& way : {quoted, "./" + quoted, "\"$PWD\"/" + quoted}) {
            const Result result = run("play " + way);
            QCOMPARE(result.exit_code, 0);
            const QStringList got = lines_of("record/tavel_video");
            QCOMPARE(got.size(), 1);
            QVERIFY(got[0].startsWith(u'/'));
            QCOMPARE(QDir::cleanPath(got[0]), QDir::cleanPath(path));
        }
    }

    void a_name_that_begins_with_a_dash_is_a_file()
    {
        write_film("-dash.mkv");
        write_film("--");
        QCOMPARE(run("play -dash.mkv").exit_code, 0);
        QCOMPARE(lines_of("record/tavel_video"), QStringList(place("films/-dash.mkv")));
        QCOMPARE(run("play -- -- -dash.mkv").exit_code, 0);
        QCOMPARE(lines_of("record/tavel_video"), QStringList({place("films/--"), place("films/-dash.mkv")}));
    }

    void several_files_keep_their_order()
    {
        for (const char* name : {"c", "a", "b"})
            write_film(name);
        QCOMPARE(run("play c a b").exit_code, 0);
        QCOMPARE(lines_of("record/tavel_video"), QStringList({place("films/c"), place("films/a"), place("films/b")}));
    }

    void a_name_that_no_message_can_carry_is_refused_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("a line feed") << QByteArray("new\\nline");
        QTest::newRow("not UTF-8") << QByteArray("bad\\xff");
        QTest::newRow("half a character") << QByteArray("\\xea\\xb0");
    }
    void a_name_that_no_message_can_carry_is_refused()
    {
        QFETCH(QByteArray, name);
        write_film("good");
        QProcess touch;
        prepare(touch);
        touch.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), QString::fromUtf8("touch $'" + name + "'")});
        QVERIFY(touch.waitForFinished());
        QCOMPARE(touch.exitCode(), 0);
        const Result refused = run("play good $'" + name + "'");
        QCOMPARE(refused.exit_code, 1);
        QVERIFY2(refused.said.contains(QStringLiteral("holds a line feed or is not UTF-8")), qPrintable(refused.said));
        QVERIFY(!was_started("tavel_video"));
    }

    void a_file_that_is_not_there_is_named_and_nothing_is_played()
    {
        write_film("there");
        const Result result = run("play there 'not there' nor\\ here");
        QCOMPARE(result.exit_code, 1);
        QVERIFY(result.said.contains(QStringLiteral("no such file: not there\n")));
        QVERIFY(result.said.contains(QStringLiteral("no such file: nor here\n")));
        QVERIFY(!result.said.contains(QStringLiteral("no such file: there\n")));
        QVERIFY(!was_started("tavel_video"));
    }

    void the_players_exit_code_is_the_commands_data()
    {
        QTest::addColumn<bool>("with_bus");
        QTest::newRow("on the session's bus") << true;
        QTest::newRow("on a bus of its own") << false;
    }
    void the_players_exit_code_is_the_commands()
    {
        QFETCH(bool, with_bus);
        write_film("film");
        write("root/build/release/bin/tavel_video", "#!/bin/bash\nexit 7\n");
        if (with_bus)
            environment_.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
        QCOMPARE(run("play film").exit_code, 7);
    }

    void without_a_session_bus_there_is_one_as_long_as_the_player_runs()
    {
        write_film("film");
        write("root/build/release/bin/tavel_video",
              QByteArray(recorder) + "[ -S \"${DBUS_SESSION_BUS_ADDRESS#unix:path=}\" ] || exit 9\n");
        QCOMPARE(run("play film").exit_code, 0);
        const QString address = told("DBUS");
        QVERIFY(address.startsWith(QStringLiteral("unix:path=") + place("tmp/")));
        const QStringList pid = lines_of("tmp/tavel-" + QByteArray::number(geteuid()) + "/pid");
        QCOMPARE(pid.size(), 1);
        QTRY_VERIFY(::kill(pid[0].toInt(), 0) != 0);
    }

    void the_sessions_own_bus_is_left_alone()
    {
        write_film("film");
        environment_.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/the/session"));
        QCOMPARE(run("play film").exit_code, 0);
        QCOMPARE(told("DBUS"), QStringLiteral("unix:path=/the/session"));
    }

    void asked_to_end_it_asks_the_player()
    {
        write_film("film");
        write("root/build/release/bin/tavel_video", "#!/bin/bash\ntrap 'echo asked; exit 3' TERM\necho ready\n"
                                                    "while :; do sleep 0.05; done\n");
        QProcess process;
        prepare(process);
        process.start(QStringLiteral("../root/tavel"), {QStringLiteral("play"), QStringLiteral("film")});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += process.readAll()).contains("ready"), limit_ms);
        QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
        QVERIFY(process.waitForFinished(limit_ms));
        QCOMPARE(process.exitCode(), 3);
        QVERIFY((said += process.readAll()).contains("asked"));
    }

    void without_a_file_a_film_is_made_once_and_shown()
    {
        for (int start = 0; start < 2; ++start) {
            QCOMPARE(run("play").exit_code, 0);
            QCOMPARE(lines_of("record/tavel_video"), QStringList(place("root/build/demo/Tavel demonstration.mkv")));
        }
        QCOMPARE(lines_of("record/made"), QStringList(QStringLiteral(".")));
    }

    void without_a_display_it_says_so_and_the_film_is_watched()
    {
        write_film("film");
        environment_.remove(QStringLiteral("QT_QPA_PLATFORM"));
        const Result result = run("play film");
        QCOMPARE(result.exit_code, 0);
        QVERIFY(result.said.contains(QStringLiteral("there is no display")));
        QVERIFY(!was_started("tavel_video"));
        QCOMPARE(lines_of("record/tavel_watch"),
                 QStringList({QStringLiteral("--pictures"), place("root/build/pictures"), place("films/film")}));
        QCOMPARE(told("PLATFORM"), QStringLiteral("offscreen"));
    }

    void only_what_is_missing_is_installed()
    {
        write_film("film");
        QCOMPARE(run("play film").exit_code, 0);
        QVERIFY(!was_started("apt-get"));
        environment_.insert(QStringLiteral("MISSING"), QStringLiteral("fonts-nanum"));
        write("bin/id", "#!/bin/bash\necho 0\n");
        QVERIFY(run("play film").said.contains(QStringLiteral("installing: fonts-nanum\n")));
        QVERIFY(lines_of("record/apt-get").value(1).endsWith(QStringLiteral("install fonts-nanum")));
    }

    void who_may_not_install_is_told_what_to_install()
    {
        write_film("film");
        environment_.insert(QStringLiteral("MISSING"), QStringLiteral("fonts-nanum"));
        write("bin/id", "#!/bin/bash\necho 1234\n");
        write("bin/sudo", "#!/bin/bash\nexec \"$@\"\n");
        QCOMPARE(run("play film").exit_code, 0);
        QCOMPARE(lines_of("record/apt-get").size(), 2);
        QVERIFY(QFile::remove(place("bin/sudo")) && QFile::remove(place("record/apt-get")));
        if (QFile::exists(QStringLiteral("/usr/bin/sudo")))
            QSKIP("this machine has sudo");
        const Result refused = run("play film");
        QCOMPARE(refused.exit_code, 1);
        QVERIFY(refused.said.contains(QStringLiteral("apt-get install --no-install-recommends fonts-nanum")));
        QVERIFY(!was_started("apt-get"));
    }

    void a_wayland_desktop_needs_its_plugin()
    {
        write_film("film");
        environment_.insert(QStringLiteral("MISSING"), QStringLiteral("qt6-wayland"));
        environment_.insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
        write("bin/id", "#!/bin/bash\necho 0\n");
        environment_.insert(QStringLiteral("DISPLAY"), QStringLiteral(":9"));
        QCOMPARE(run("play film").exit_code, 0);
        QVERIFY(!was_started("apt-get"));
        environment_.remove(QStringLiteral("DISPLAY"));
        QCOMPARE(run("play film").exit_code, 0);
        QVERIFY(lines_of("record/apt-get").value(1).endsWith(QStringLiteral("install qt6-wayland")));
    }

    void without_a_home_things_are_kept_in_a_private_directory()
    {
        write_film("film");
        environment_.insert(QStringLiteral("HOME"), QStringLiteral("/nonexistent"));
        const Result result = run("play film");
        QCOMPARE(result.exit_code, 0);
        const QString home = told("HOME");
        QVERIFY(home.startsWith(place("tmp/")));
        QVERIFY(QFileInfo(home).isDir());
        QVERIFY(
            result.said.contains(QStringLiteral("there is no home directory: settings and lists are kept in ") + home));
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFileInfo(QFileInfo(home).path()).permissions() & others));
    }

    void the_home_that_the_system_knows_counts_when_none_is_named()
    {
        write_film("film");
        environment_.remove(QStringLiteral("HOME"));
        write("bin/getent", "#!/bin/bash\necho \"me:x:0:0::" + place("home").toUtf8() + ":/bin/sh\"\n");
        QCOMPARE(run("play film").exit_code, 0);
        QCOMPARE(told("HOME"), place("home"));
    }

    void a_build_that_fails_is_shown_and_nothing_is_played()
    {
        write_film("film");
        write("bin/cmake", "#!/bin/bash\necho 'wrong in line 12'\nexit 1\n");
        const Result result = run("play film");
        QCOMPARE(result.exit_code, 1);
        QVERIFY(result.said.contains(QStringLiteral("wrong in line 12")));
        QVERIFY(!was_started("tavel_video"));
    }

    void what_there_is_can_be_listed_and_the_rest_is_refused()
    {
        for (const char* way : {"help", "--help", ""}) {
            const Result help = run(way);
            QCOMPARE(help.exit_code, 0);
            for (const char* command : {"play", "test", "shots", "bench", "help"})
                QVERIFY(help.said.contains(QStringLiteral("./tavel ") + QLatin1String(command)));
        }
        QCOMPARE(run("dance").exit_code, 2);
        const Result variant = run("test fast");
        QCOMPARE(variant.exit_code, 1);
        QVERIFY(variant.said.contains(QStringLiteral("fast")));
    }

    void a_second_start_hands_its_film_to_the_running_player()
    {
        const QString program = place("root/build/release/bin/tavel_video");
        QVERIFY(QFile::remove(program));
        QVERIFY(QFile::link(QStringLiteral(PLAYER_PROGRAM), program));
        environment_.insert(QStringLiteral("TAVEL_SKINS"), QStringLiteral(BUILT_SKINS));
        for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
            environment_.insert(QLatin1String(name), qEnvironmentVariable(name));
        const QString films = place("films");
        const QString first_film = test_films::copy(QStringLiteral("h264.mp4"), films, QStringLiteral("it's one.mp4"));
        const QString second_film = test_films::copy(QStringLiteral("h264.mkv"), films, QStringLiteral("둘 \"2\".mkv"));
        QProcess first;
        prepare(first);
        first.start(QStringLiteral("../root/tavel"), {QStringLiteral("play"), QStringLiteral("it's one.mp4")});
        QByteArray said;
        QTRY_VERIFY2_WITH_TIMEOUT((said += first.readAll()).contains("[ PLAY ]"), said.constData(), limit_ms);
        const Result second = run("play '둘 \"2\".mkv'");
        QCOMPARE(second.exit_code, 0);
        QCOMPARE(first.state(), QProcess::Running);
        // The new film replaces the list and is played.
        said.clear();
        QTRY_VERIFY2_WITH_TIMEOUT((said += first.readAll()).contains("[ PLAY ]"), said.constData(), limit_ms);
        QCOMPARE(::kill(static_cast<pid_t>(first.processId()), SIGTERM), 0);
        QVERIFY(first.waitForFinished(limit_ms));
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
        QCOMPARE(first.exitCode(), 0);
        QFile list(place("home/.local/share/tavel_video/qpe/etc/tavel_video/playlist.dat"));
        QVERIFY(list.open(QIODevice::ReadOnly));
        const QString stored = QString::fromUtf8(list.readAll());
        QVERIFY2(stored.contains(second_film), qPrintable(stored));
        QVERIFY2(!stored.contains(first_film), qPrintable(stored));
    }
};

TAVEL_TEST_MAIN(TestFrontDoor)
#include "tst_front_door.moc"
