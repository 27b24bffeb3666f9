#include "bench.h"
#include "child_program.h"
#include "engine_loader.h"
#include "media_probe.h"
#include "sound_output.h"
#include "test_main.h"

#include <QApplication>
#include <QTemporaryDir>

using namespace std::chrono_literals;

/// The engine behind its loader: what comes before the module is there, and a module that never comes.
class TstLoadedEngine : public QObject
{
    Q_OBJECT

private slots:
    /// The first to run, so that all of this meets a module that is still being loaded.
    void all_that_comes_before_the_module_waits_for_it_or_is_kept()
    {
        begin_to_load_engine();
        set_application_volume(10);
        set_application_volume(40);
        ReportRecorder gone_before;
        {
            const MediaPlayer unused(&gone_before);
        }
        Bench bench;
        std::atomic<int> calls = 0;
        bench.player.set_subtitles_ready_hook([&calls] { ++calls; });
        QVERIFY(bench.load(test_films::path("subtitles.mkv")));
        QTRY_VERIFY(calls > 0);
        QCOMPARE(bench.recorder.reports(), QStringList{QStringLiteral("state 2")});
        bench.player.set_subtitles_ready_hook({});
    }

    void the_module_draws_on_the_plane_of_the_program_that_loads_it()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("h264.mp4")));
        QTRY_COMPARE(bench.frame(), 0);
        QCOMPARE(bench.player.play(), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(5, 60s));
        QCOMPARE(bench.recorder.reports(),
                 (QStringList{QStringLiteral("state 2"), QStringLiteral("stream 0 0"), QStringLiteral("state 4"),
                              QStringLiteral("stream 0 2"), QStringLiteral("state 6")}));
    }

    void a_file_is_looked_into_without_a_player()
    {
        const auto summary = probe_media(test_films::path("h264.mp4"), 60'000);
        QVERIFY(summary.has_value());
        QVERIFY2(qAbs(summary->duration_ms - test_films::length_ms) < 50,
                 qPrintable(QString::number(summary->duration_ms)));
    }

    void a_module_that_is_missing_ends_the_program_with_a_line()
    {
        const QTemporaryDir elsewhere;
        const QString program = elsewhere.filePath(QStringLiteral("program"));
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));
        QProcess process;
        ChildProgram::start_built(process, program, {QStringLiteral("a_file_is_looked_into_without_a_player")});
        QVERIFY(process.waitForFinished(60'000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 1);
        const QByteArray said = process.readAllStandardError();
        QVERIFY2(said.contains("the engine cannot be loaded: ") && said.contains("tavel_engine.so"), said.constData());
    }
};

TAVEL_TEST_MAIN(TstLoadedEngine)
#include "tst_loaded_engine.moc"
