#include "media_player.h"
#include "report_recorder.h"
#include "test_main.h"

#ifdef TAVEL_SCRIPTED_ENGINE
#include "scripted_engine.h"
#else
#include "films.h"
#include "video_plane.h"
#endif

using namespace std::chrono_literals;

namespace
{

constexpr Time middle = 3000;
constexpr Time length = 6000;

// The few things that the real and the scripted engine need to be told differently.
#ifdef TAVEL_SCRIPTED_ENGINE
void set_up()
{
    scripted_engine::clear();
    scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QString::number(length));
}
QByteArray film()
{
    return "/film.mp4";
}
QByteArray film_without_picture()
{
    scripted_engine::remove_info(QStringLiteral("video"));
    return "/sound.m4a";
}
void run_to_the_end()
{
    scripted_engine::run_to(length);
}
void run_to_the_beginning()
{
    scripted_engine::run_to(0);
}
/// How long a report too many is waited for.
constexpr auto settling = 10ms;
#else
void set_up()
{
    VideoPlane::instance().set_mapping({1.0, {}, true});
    VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
}
QByteArray film()
{
    return test_films::path("h264.mp4").toUtf8();
}
QByteArray film_without_picture()
{
    return test_films::path("sound_only.m4a").toUtf8();
}
void run_to_the_end() {}
void run_to_the_beginning() {}
constexpr auto settling = 150ms;
#endif

bool seek_and_wait(MediaPlayer& player, ReportRecorder& recorder, Time target)
{
    recorder.clear();
    return player.seek(SeekMode::Forward, target) == rask::ok && recorder.wait_for_reports(1, 5s);
}

using Arrange = bool (*)(MediaPlayer&, ReportRecorder&);

bool open(MediaPlayer& player, ReportRecorder&)
{
    return player.open(film().constData()) == rask::ok;
}
bool prepare(MediaPlayer& player, ReportRecorder& recorder)
{
    return open(player, recorder) && player.prepare(film().constData()) == rask::ok;
}
bool play(MediaPlayer& player, ReportRecorder& recorder)
{
    return prepare(player, recorder) && player.play() == rask::ok;
}
bool pause(MediaPlayer& player, ReportRecorder& recorder)
{
    return play(player, recorder) && player.pause() == rask::ok;
}
bool end(MediaPlayer& player, ReportRecorder& recorder)
{
    if (!play(player, recorder) || !seek_and_wait(player, recorder, length - 100))
        return false;
    run_to_the_end();
    return recorder.wait_for_reports(3, 5s);
}
bool play_last_moments(MediaPlayer& player, ReportRecorder& recorder)
{
    return play(player, recorder) && seek_and_wait(player, recorder, length - 300);
}
bool scan(MediaPlayer& player, ReportRecorder& recorder)
{
    return play(player, recorder) && seek_and_wait(player, recorder, middle) && player.scan_forward(3) == rask::ok;
}
bool scan_to_beginning(MediaPlayer& player, ReportRecorder& recorder)
{
    if (!play(player, recorder) || !seek_and_wait(player, recorder, 600) || player.scan_backward(3) != rask::ok)
        return false;
    run_to_the_beginning();
    return recorder.wait_for_position([](long long position) { return position == 0; }, 5s);
}
bool scan_to_end(MediaPlayer& player, ReportRecorder& recorder)
{
    if (!play(player, recorder) || !seek_and_wait(player, recorder, length - 600) || player.scan_forward(3) != rask::ok)
        return false;
    run_to_the_end();
    return recorder.wait_for_reports(3, 5s);
}

const QMap<QString, Arrange> states = {
    {QStringLiteral("no film"), [](MediaPlayer&, ReportRecorder&) { return true; }},
    {QStringLiteral("open"), open},
    {QStringLiteral("prepared"), prepare},
    {QStringLiteral("playing"), play},
    {QStringLiteral("playing its last moments"), play_last_moments},
    {QStringLiteral("paused"), pause},
    {QStringLiteral("scanning"), scan},
    {QStringLiteral("scanned to the beginning"), scan_to_beginning},
    {QStringLiteral("scanned to the end"), scan_to_end},
    {QStringLiteral("ended"), end},
};

using Act = unsigned (*)(MediaPlayer&);

const QMap<QString, Act> operations = {
    {QStringLiteral("initialize"), [](MediaPlayer& player) { return player.initialize(); }},
    {QStringLiteral("open"), [](MediaPlayer& player) { return player.open(film().constData()); }},
    {QStringLiteral("open without picture"),
     [](MediaPlayer& player) { return player.open(film_without_picture().constData()); }},
    {QStringLiteral("prepare"), [](MediaPlayer& player) { return player.prepare(film().constData()); }},
    {QStringLiteral("play"), [](MediaPlayer& player) { return player.play(); }},
    {QStringLiteral("pause"), [](MediaPlayer& player) { return player.pause(); }},
    {QStringLiteral("seek"), [](MediaPlayer& player) { return player.seek(SeekMode::Forward, middle); }},
    {QStringLiteral("seek past the end"),
     [](MediaPlayer& player) { return player.seek(SeekMode::Forward, length + 5000); }},
    {QStringLiteral("scan_forward"), [](MediaPlayer& player) { return player.scan_forward(3); }},
    {QStringLiteral("scan_forward too fast"), [](MediaPlayer& player) { return player.scan_forward(17); }},
    {QStringLiteral("scan_backward"), [](MediaPlayer& player) { return player.scan_backward(3); }},
    {QStringLiteral("set_speed"), [](MediaPlayer& player) { return player.set_speed(0); }},
    {QStringLiteral("select_stream"), [](MediaPlayer& player) { return player.select_stream(2, 1); }},
    {QStringLiteral("select_stream unknown"), [](MediaPlayer& player) { return player.select_stream(2, 2); }},
    {QStringLiteral("set_video_window"), [](MediaPlayer& player) { return player.set_video_window(12, 64, 221, 126); }},
    {QStringLiteral("set_aspect"), [](MediaPlayer& player) { return player.set_aspect(1); }},
    {QStringLiteral("set_parameter"),
     [](MediaPlayer& player) {
         const std::array<qint32, 3> colour = {50, 60, 40};
         return player.set_parameter(static_cast<int>(Parameter::Colour), colour.data(), sizeof colour);
     }},
    {QStringLiteral("set_parameter unknown"),
     [](MediaPlayer& player) {
         const std::array<qint32, 3> colour = {50, 60, 40};
         return player.set_parameter(3, colour.data(), sizeof colour);
     }},
    {QStringLiteral("set_option off"),
     [](MediaPlayer& player) { return player.set_option(static_cast<int>(Option::DigitalOutput), false); }},
    {QStringLiteral("set_option unknown"), [](MediaPlayer& player) { return player.set_option(2, false); }},
    {QStringLiteral("query"),
     [](MediaPlayer& player) {
         bool busy = false;
         return player.query(static_cast<int>(Query::Busy), &busy);
     }},
    {QStringLiteral("query unknown"),
     [](MediaPlayer& player) {
         bool busy = false;
         return player.query(4, &busy);
     }},
    {QStringLiteral("close"), [](MediaPlayer& player) { return player.close(); }},
    {QStringLiteral("release"), [](MediaPlayer& player) { return player.release(); }},
    {QStringLiteral("(the film ends)"),
     [](MediaPlayer&) {
         run_to_the_end();
         return rask::ok;
     }},
    {QStringLiteral("(the scan reaches the end)"),
     [](MediaPlayer&) {
         run_to_the_end();
         return rask::ok;
     }},
};

const QMap<QString, unsigned> answers = {
    {QStringLiteral("ok"), rask::ok},
    {QStringLiteral("no_video"), rask::no_video},
    {QStringLiteral("wrong_state"), rask::wrong_state},
    {QStringLiteral("out_of_range"), rask::out_of_range},
};

} // namespace

/// Holds an engine to the table in docs/engine.md. Built once for the real and once for the scripted engine.
class TstEngineContract : public QObject
{
    Q_OBJECT

private slots:
    void init() { set_up(); }

    void each_operation_reports_what_the_table_says_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("reports");
        QTest::addColumn<QString>("when");
        QTest::addColumn<int>("within");
        QFile table(QStringLiteral(TAVEL_ENGINE_TABLE));
        QVERIFY(table.open(QIODevice::ReadOnly));
        int rows = 0;
        for (const QString& line : QString::fromUtf8(table.readAll()).split(u'\n')) {
            const QStringList cells = line.split(u'|');
            if (cells.size() != 8 || cells[1].trimmed() == QLatin1String("Operation") || cells[1].startsWith(u'-'))
                continue;
            const QString name = cells[1].trimmed() + QStringLiteral(", ") + cells[2].trimmed();
            QTest::newRow(qPrintable(name)) << cells[1].trimmed() << cells[2].trimmed() << cells[3].trimmed()
                                            << cells[4].trimmed() << cells[5].trimmed() << cells[6].trimmed().toInt();
            ++rows;
        }
        QVERIFY(rows > 70);
    }

    void each_operation_reports_what_the_table_says()
    {
        QFETCH(QString, operation);
        QFETCH(QString, state);
        QFETCH(QString, answer);
        QFETCH(QString, reports);
        QFETCH(QString, when);
        QFETCH(int, within);
        within = test_support::stretched(within);
        QVERIFY(operations.contains(operation));
        QVERIFY(states.contains(state));
        QVERIFY(answers.contains(answer));
        const QStringList expected =
            reports == QLatin1String("none") ? QStringList() : reports.split(QStringLiteral(", "));

        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        QVERIFY(states[state](player, recorder));
        recorder.clear();

        QElapsedTimer clock;
        clock.start();
        QCOMPARE(operations[operation](player), answers[answer]);
        QVERIFY2(clock.elapsed() <= within, qPrintable(QString::number(clock.elapsed())));
        if (when == QLatin1String("before"))
            QCOMPARE(recorder.reports(), expected);
        else
            QVERIFY(recorder.wait_for_reports(expected.size(), std::chrono::milliseconds(within)));
        if (operation == QLatin1String("seek") && !expected.isEmpty())
            QVERIFY(
                recorder.wait_for_position([](long long position) { return std::abs(position - middle) <= 40; }, 0s));
        if (!expected.isEmpty())
            QVERIFY(recorder.thread() != std::this_thread::get_id());

        // A scan that is left alone would come to its end.
        if (!operation.startsWith(QLatin1String("scan")) || answer != QLatin1String("ok"))
            QVERIFY(!recorder.wait_for_reports(expected.size() + 1, settling));
        player.close();
        QCOMPARE(recorder.reports(), expected);
    }

    void nothing_is_reported_after_close()
    {
        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        QVERIFY(play(player, recorder));
        QCOMPARE(player.seek(SeekMode::Forward, length), rask::ok);
        QCOMPARE(player.close(), rask::ok);
        const QStringList before = recorder.reports();
        const std::size_t positions = recorder.positions().size();
        QVERIFY(!recorder.wait_for_reports(before.size() + 1, 2 * settling));
        QCOMPARE(recorder.positions().size(), positions);
    }

    void each_of_several_seeks_is_answered()
    {
        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        QVERIFY(play(player, recorder));
        recorder.clear();
        for (const Time target : {1000, 4000, 2000, 3000})
            QCOMPARE(player.seek(SeekMode::Backward, target), rask::ok);
        QVERIFY(recorder.wait_for_reports(4, 5s));
        QCOMPARE(recorder.reports(), QStringList(4, QStringLiteral("stream 0 0")));
        QVERIFY(recorder.wait_for_position([](long long position) { return std::abs(position - 3000) <= 40; }, 0s));
    }

    void the_speed_steps_end_at_half_and_double()
    {
        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        QVERIFY(play(player, recorder));
        QCOMPARE(player.get_speed(), 100);
        QList<int> speeds;
        while (player.set_speed(static_cast<int>(SpeedCode::Up)) == rask::ok)
            speeds += player.get_speed();
        QCOMPARE(speeds, QList<int>({125, 150, 175, 200}));
        QCOMPARE(player.set_speed(static_cast<int>(SpeedCode::Normal)), rask::ok);
        QCOMPARE(player.get_speed(), 100);
        speeds.clear();
        while (player.set_speed(static_cast<int>(SpeedCode::Down)) == rask::ok)
            speeds += player.get_speed();
        QCOMPARE(speeds, QList<int>({75, 50}));
        QVERIFY(player.set_speed(3) != rask::ok);
        QVERIFY(prepare(player, recorder));
        QCOMPARE(player.get_speed(), 100);
    }

    void the_engine_is_busy_while_something_moves()
    {
        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        bool busy = true;
        QCOMPARE(player.query(static_cast<int>(Query::Busy), &busy), rask::ok);
        QVERIFY(!busy);
        QVERIFY(play(player, recorder));
        QCOMPARE(player.query(static_cast<int>(Query::Busy), &busy), rask::ok);
        QVERIFY(busy);
        QCOMPARE(player.pause(), rask::ok);
        QCOMPARE(player.query(static_cast<int>(Query::Busy), &busy), rask::ok);
        QVERIFY(!busy);
        QCOMPARE(player.scan_forward(3), rask::ok);
        QCOMPARE(player.query(static_cast<int>(Query::Busy), &busy), rask::ok);
        QVERIFY(busy);
        QVERIFY(player.query(4, &busy) != rask::ok);
        QVERIFY(player.query(static_cast<int>(Query::Busy), nullptr) != rask::ok);
    }

    void an_open_file_tells_about_itself()
    {
        ReportRecorder recorder;
        MediaPlayer player(&recorder);
        QVERIFY(!player.has_info("video"));
        QVERIFY(open(player, recorder));
        QVERIFY(player.has_info("container"));
        QVERIFY(player.has_info("video"));
        QVERIFY(!player.has_info("picture"));
        QCOMPARE(player.get_info("container", "name"), QStringLiteral("MP4"));
        QCOMPARE(player.get_info("video", "width"), QStringLiteral("480"));
        QCOMPARE(player.get_info("video", "colour"), QString());
        player.open(film_without_picture().constData());
        QVERIFY(!player.has_info("container"));
        QVERIFY(!player.has_info("video"));
    }
};

TAVEL_TEST_MAIN(TstEngineContract)
#include "tst_engine_contract.moc"
