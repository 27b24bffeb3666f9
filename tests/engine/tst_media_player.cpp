#include "bench.h"
#include "library_faults.h"
#include "sound_output.h"
#include "test_main.h"

#include <QtEndian>

#include <sys/stat.h>

#include <thread>

using namespace std::chrono_literals;

namespace
{

const QStringList started = {QStringLiteral("state 2"), QStringLiteral("stream 0 0"), QStringLiteral("state 4")};
const QStringList ended = {QStringLiteral("stream 0 2"), QStringLiteral("state 6")};

/// One kind of film and what the information page says about it.
struct Kind {
    const char* film;
    const char* container;
    const char* video;
    const char* audio; ///< null without sound
    const char* channels;
};

constexpr std::array<Kind, 16> kinds = {{
    {"h264.mp4", "MP4", "H.264", "AAC", "2"},
    {"h264.mkv", "Matroska", "H.264", "AAC", "2"},
    {"h264.ts", "MPEG", "H.264", "AAC", "2"},
    {"mpeg4.avi", "AVI", "MPEG-4", "MP3", "1"},
    {"xvid.avi", "AVI", "MPEG-4", "MP3", "1"},
    {"wmv2.asf", "ASF", "WMV8", "WMA8", "1"},
    {"wmv1.wmv", "ASF", "WMV7", "WMA8", "1"},
    {"msmpeg4v2.avi", "AVI", "MS Mpeg 4 v2", "MP3", "1"},
    {"msmpeg4v3.avi", "AVI", "MS Mpeg 4 v3", "MP3", "1"},
    {"mpeg1.mpg", "MPEG", "MPEG-1", "MP2", "1"},
    {"vp9.webm", "Matroska", "VP9", "Opus", "1"},
    {"theora.ogg", "Ogg", "Theora", "Vorbis", "1"},
    {"surround.mkv", "Matroska", "H.264", "AC3", "6"},
    {"video_only.mp4", "MP4", "H.264", nullptr, nullptr},
    {"variable_rate.mkv", "Matroska", "H.264", "AAC", "1"},
    {"one_key_frame.mp4", "MP4", "H.264", "AAC", "1"},
}};

void write_file(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

double lightness(const QImage& picture, const QRect& area)
{
    double sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            sum += qGray(picture.pixel(x, y));
    }
    return sum / (area.width() * area.height());
}

} // namespace

class TstMediaPlayer : public QObject
{
    Q_OBJECT

private slots:
    void a_film_plays_to_its_end()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QCOMPARE(bench.recorder.reports(), started);
        QTRY_VERIFY(bench.frame() > 10);
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
    }

    void each_kind_of_film_plays_and_tells_about_itself_data()
    {
        QTest::addColumn<int>("kind");
        for (std::size_t kind = 0; kind < kinds.size(); ++kind)
            QTest::newRow(kinds[kind].film) << static_cast<int>(kind);
    }

    void each_kind_of_film_plays_and_tells_about_itself()
    {
        QFETCH(int, kind);
        const Kind& expected = kinds[static_cast<std::size_t>(kind)];
        Bench bench;
        QVERIFY(bench.load(test_films::path(expected.film)));
        QCOMPARE(bench.player.get_info("container", "name"), QString::fromLatin1(expected.container));
        QCOMPARE(bench.player.get_info("container", "audio_streams"), QString::fromLatin1(expected.audio ? "1" : "0"));
        QCOMPARE(bench.player.get_info("container", "subtitle_streams"), QStringLiteral("0"));
        QCOMPARE(bench.player.get_info("video", "name"), QString::fromLatin1(expected.video));
        QCOMPARE(bench.player.get_info("video", "width"), QStringLiteral("480"));
        QCOMPARE(bench.player.get_info("video", "height"), QStringLiteral("272"));
        const int length = bench.player.get_info("video", "time").toInt();
        QVERIFY2(length > 2800 && length < 6300, qPrintable(QString::number(length)));
        QCOMPARE(bench.player.has_info("audio"), expected.audio != nullptr);
        QCOMPARE(bench.player.get_info("audio", "name"), QString::fromLatin1(expected.audio));
        QCOMPARE(bench.player.get_info("audio", "channels"), QString::fromLatin1(expected.channels));
        QCOMPARE(bench.player.get_info("audio", "sample_rate"),
                 QString::fromLatin1(expected.audio ? "48000" : nullptr));
        QTRY_VERIFY(bench.frame() >= 0);
        QVERIFY(bench.frame() <= 1);
        QCOMPARE(bench.player.play(), rask::ok);
        QVERIFY(bench.runs_on(400));
        QTRY_VERIFY(bench.frame() > 5);
        QVERIFY(!bench.recorder.reports().contains(QStringLiteral("error")));
    }

    void the_frame_rate_is_told()
    {
        Bench bench;
        QVERIFY(bench.open(test_films::path("h264.mp4")));
        QCOMPARE(bench.player.get_info("video", "framerate"), QStringLiteral("25"));
    }

    void what_is_no_film_is_refused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<unsigned>("status");
        QTest::newRow("missing") << QStringLiteral("missing.avi") << rask::no_such_file;
        QTest::newRow("no bytes") << QStringLiteral("empty.avi") << rask::not_a_film;
        QTest::newRow("text") << QStringLiteral("text.avi") << rask::not_a_film;
        QTest::newRow("noise") << QStringLiteral("noise.mp4") << rask::not_a_film;
        QTest::newRow("head of an MP4 alone") << QStringLiteral("truncated.mp4") << rask::not_a_film;
        QTest::newRow("directory") << QStringLiteral("directory.avi") << rask::no_such_file;
        QTest::newRow("pipe") << QStringLiteral("pipe.avi") << rask::no_such_file;
        QTest::newRow("no name") << QString() << rask::no_such_file;
        QTest::newRow("sound only") << QStringLiteral("sound.m4a") << rask::no_video;
    }

    void what_is_no_film_is_refused()
    {
        QFETCH(QString, name);
        QFETCH(unsigned, status);
        QTemporaryDir directory;
        const auto path = [&directory](const char* file) { return directory.filePath(QString::fromLatin1(file)); };
        write_file(path("empty.avi"), {});
        write_file(path("text.avi"), QByteArray("No film, but a text that tells so.\n").repeated(200));
        QByteArray noise(200000, '\0');
        QRandomGenerator random(1);
        for (char& byte : noise)
            byte = static_cast<char>(random.bounded(256));
        write_file(path("noise.mp4"), noise);
        QFile whole(test_films::path("h264.mp4"));
        QVERIFY(whole.open(QIODevice::ReadOnly));
        write_file(path("truncated.mp4"), whole.read(20000));
        QVERIFY(QDir(directory.path()).mkdir(QStringLiteral("directory.avi")));
        QCOMPARE(::mkfifo(qPrintable(path("pipe.avi")), 0600), 0);
        test_films::copy(QStringLiteral("sound_only.m4a"), directory.path(), QStringLiteral("sound.m4a"));

        Bench bench;
        const QByteArray file = name.isEmpty() ? QByteArray() : QFile::encodeName(directory.filePath(name));
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(bench.player.open(file.constData()), status);
        QVERIFY(!bench.player.has_info("container"));
        QVERIFY(!bench.player.has_info("video"));
        QCOMPARE(bench.player.prepare(file.constData()), status);
        QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(bench.player.play(), rask::wrong_state);
        QCOMPARE(bench.recorder.reports(), QStringList());
        // The player is none the worse for it.
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }

    void a_cut_film_plays_as_far_as_it_goes()
    {
        QTemporaryDir directory;
        QFile whole(test_films::path("mpeg4.avi"));
        QVERIFY(whole.open(QIODevice::ReadOnly));
        const QString cut = directory.filePath(QStringLiteral("cut.avi"));
        write_file(cut, whole.read(whole.size() / 6));
        Bench bench;
        QVERIFY(bench.start(cut));
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
        QVERIFY(bench.recorder.position() < 3000);
    }

    void any_file_name_can_be_played_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"with blanks.mp4", "-dash.mp4", "per%cent %d.mp4", "colon: a.mp4", "http:.mp4",
                                 "\xed\x95\x9c\xea\xb5\xad.mp4", "quote'\".mp4", "line\nfeed.mp4", "no_suffix",
                                 "wrong_suffix.txt", "#hash?.mp4", "[x].mp4", "play.m3u"})
            QTest::newRow(name) << QString::fromUtf8(name);
    }

    void any_file_name_can_be_played()
    {
        QFETCH(QString, name);
        QTemporaryDir directory;
        Bench bench;
        QVERIFY(bench.start(test_films::copy(QStringLiteral("video_only.mp4"), directory.path(), name)));
        QVERIFY(bench.runs_on(100));
    }

    void a_relative_name_means_a_file_in_the_working_directory()
    {
        QTemporaryDir directory;
        test_films::copy(QStringLiteral("h264.mp4"), directory.path(), QStringLiteral("film.mp4"));
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directory.path()));
        Bench bench;
        const bool works = bench.start(QStringLiteral("film.mp4"));
        QDir::setCurrent(before);
        QVERIFY(works);
    }

    void a_film_removed_while_open_plays_on()
    {
        QTemporaryDir directory;
        const QString film = test_films::copy(QStringLiteral("h264.mkv"), directory.path(), QStringLiteral("film.mkv"));
        Bench bench;
        QVERIFY(bench.start(film));
        QVERIFY(QFile::remove(film));
        QVERIFY(bench.seek(3000));
        QVERIFY(bench.runs_on(300));
        QCOMPARE(bench.player.close(), rask::ok);
        QCOMPARE(bench.player.open(QFile::encodeName(film).constData()), rask::no_such_file);
    }

    void a_film_that_has_changed_is_looked_into_again()
    {
        QTemporaryDir directory;
        const QString film = test_films::copy(QStringLiteral("h264.mkv"), directory.path(), QStringLiteral("film.mkv"));
        Bench bench;
        QVERIFY(bench.open(film));
        QVERIFY(bench.open(film));
        QCOMPARE(bench.player.get_info("video", "width"), QStringLiteral("480"));
        QVERIFY(QFile::remove(film));
        test_films::copy(QStringLiteral("sound_only.m4a"), directory.path(), QStringLiteral("film.mkv"));
        QCOMPARE(bench.player.open(QFile::encodeName(film).constData()), rask::no_video);
        QVERIFY(!bench.player.has_info("video"));
        QVERIFY(QFile::remove(film));
        test_films::copy(QStringLiteral("h264.mkv"), directory.path(), QStringLiteral("film.mkv"));
        QVERIFY(bench.open(film));
        QCOMPARE(bench.player.get_info("video", "width"), QStringLiteral("480"));
    }

    void a_film_removed_between_opening_and_loading_is_told()
    {
        QTemporaryDir directory;
        const QString film = test_films::copy(QStringLiteral("h264.mkv"), directory.path(), QStringLiteral("film.mkv"));
        Bench bench;
        QVERIFY(bench.open(film));
        QVERIFY(QFile::remove(film));
        QVERIFY(bench.player.prepare(QFile::encodeName(film).constData()) != rask::ok);
        QCOMPARE(bench.recorder.reports(), QStringList());
    }

    void positions_come_every_fifty_milliseconds()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.runs_on(2000));
        const std::vector<long long> positions = bench.recorder.positions();
        std::vector<long long> steps;
        for (std::size_t index = 1; index < positions.size(); ++index)
            steps.push_back(positions[index] - positions[index - 1]);
        QVERIFY(std::all_of(steps.begin(), steps.end(), [](long long step) { return step >= 0; }));
        std::sort(steps.begin(), steps.end());
        QVERIFY(steps[steps.size() / 2] <= 80);
    }

    void a_seek_arrives_within_one_frame_data()
    {
        QTest::addColumn<QString>("film");
        QTest::addColumn<bool>("playing");
        QTest::addColumn<int>("target");
        for (const char* film : {"h264.mp4", "h264.mkv", "h264.ts", "mpeg4.avi", "mpeg1.mpg", "wmv2.asf", "theora.ogg",
                                 "one_key_frame.mp4"}) {
            for (const int target : {0, 40, 1010, 2500, 5800}) {
                QTest::addRow("%s resting, to %d", film, target) << QString::fromLatin1(film) << false << target;
            }
            QTest::addRow("%s playing, to %d", film, 3210) << QString::fromLatin1(film) << true << 3210;
        }
    }

    void a_seek_arrives_within_one_frame()
    {
        QFETCH(QString, film);
        QFETCH(bool, playing);
        QFETCH(int, target);
        Bench bench;
        QVERIFY(bench.start(test_films::path(film)));
        if (!playing)
            QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(target));
        QCOMPARE(bench.recorder.reports().constFirst(), QStringLiteral("stream 0 0"));
        const std::vector<long long> positions = bench.recorder.positions();
        QVERIFY(!positions.empty());
        QVERIFY2(std::abs(positions.front() - target) <= 44, qPrintable(QString::number(positions.front())));
        if (!playing) {
            const int wanted = target / 40;
            QTRY_VERIFY2(std::abs(bench.frame() - wanted) <= 1, qPrintable(QString::number(bench.frame())));
        }
    }

    void a_seek_before_the_beginning_goes_to_it()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(-5000));
        QVERIFY(bench.recorder.position() <= 40);
        QTRY_COMPARE(bench.frame(), 0);
    }

    void after_the_end_a_seek_plays_on()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.seek(5800));
        QVERIFY(bench.recorder.wait_for_reports(3, 5s));
        QVERIFY(bench.seek(1000));
        QVERIFY(bench.runs_on(300));
        QVERIFY(bench.recorder.position() < 3000);
    }

    void a_scan_walks_at_three_times_speed_data()
    {
        QTest::addColumn<bool>("forward");
        QTest::addColumn<int>("from");
        QTest::newRow("forward") << true << 10000;
        QTest::newRow("backward") << false << 50000;
    }

    void a_scan_walks_at_three_times_speed()
    {
        QFETCH(bool, forward);
        QFETCH(int, from);
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.seek(from));
        bench.recorder.clear();
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(forward ? bench.player.scan_forward(3) : bench.player.scan_backward(3), rask::ok);
        QVERIFY(
            bench.recorder.wait_for_position([=](Time position) { return std::abs(position - from) >= 6000; }, 20s));
        const auto elapsed = static_cast<double>(clock.elapsed());
        const std::vector<long long> positions = bench.recorder.positions();
        QVERIFY(positions.size() >= 8);
        QVERIFY(std::is_sorted(positions.begin(), positions.end(),
                               [=](Time a, Time b) { return forward ? a < b : a > b; }));
        const double rate = static_cast<double>(std::abs(positions.back() - from)) / elapsed;
        QVERIFY2(rate > 2.0 && rate < 4.0, qPrintable(QString::number(rate)));
        // What is seen is a key frame not far from the position.
        const int frame = bench.frame();
        QVERIFY2(frame % test_films::frame_rate <= 1, qPrintable(QString::number(frame)));

        QCOMPARE(bench.player.play(), rask::ok);
        const Time left_at = positions.back();
        bench.recorder.clear();
        QVERIFY(bench.runs_on(200));
        QVERIFY(std::abs(bench.recorder.positions().front() - left_at) < 1500);
    }

    void the_speed_of_playback_follows_the_steps()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.runs_on(200));
        while (bench.player.set_speed(static_cast<int>(SpeedCode::Up)) == rask::ok) {
        }
        QCOMPARE(bench.player.get_speed(), 200);
        QVERIFY(bench.runs_on(500));
        QElapsedTimer clock;
        clock.start();
        const Time from = bench.recorder.position();
        QVERIFY(bench.runs_on(16000));
        const double rate =
            static_cast<double>(bench.recorder.position() - from) / static_cast<double>(clock.elapsed());
        QVERIFY2(rate > 1.6 && rate < 2.4, qPrintable(QString::number(rate)));
    }

    void another_sound_track_brings_no_long_gap()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("two_sounds.mkv")));
        QCOMPARE(bench.player.get_info("container", "audio_streams"), QStringLiteral("2"));
        QVERIFY(bench.runs_on(300));
        QElapsedTimer clock;
        clock.start();
        const Time from = bench.recorder.position();
        QCOMPARE(bench.player.select_stream(2, 2), rask::ok);
        QVERIFY(bench.runs_on(1000));
        QVERIFY2(clock.elapsed() < (bench.recorder.position() - from) + 500,
                 qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(bench.player.select_stream(2, 3), rask::out_of_range);
        QCOMPARE(bench.player.select_stream(2, 0), rask::out_of_range);
        QCOMPARE(bench.player.select_stream(1, 1), rask::out_of_range);
        QVERIFY(bench.runs_on(300));
    }

    void the_colour_balance_is_seen_at_once_also_while_paused()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(2000));
        const auto highest = [](int (*channel)(QRgb)) {
            const QImage picture = Bench::picture();
            int value = 0;
            for (int y = 80; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x)
                    value = std::max(value, channel(picture.pixel(x, y)));
            }
            return value;
        };
        QTRY_VERIFY(highest(qRed) > 200);
        const QImage before = bench.picture();
        const std::array<qint32, 3> no_red = {0, 50, 50};
        QCOMPARE(bench.player.set_parameter(4, no_red.data(), sizeof no_red), rask::ok);
        QTRY_COMPARE(highest(qRed), 0);
        QVERIFY(highest(qGreen) > 200);
        QVERIFY(highest(qBlue) > 200);
        const std::array<qint32, 3> neutral = {50, 50, 50};
        QCOMPARE(bench.player.set_parameter(4, neutral.data(), sizeof neutral), rask::ok);
        QTRY_COMPARE(bench.picture().convertToFormat(QImage::Format_RGB32), before);
        QCOMPARE(bench.player.set_parameter(4, neutral.data(), 8), rask::out_of_range);
        QCOMPARE(bench.player.set_parameter(4, nullptr, 12), rask::out_of_range);
        QCOMPARE(bench.player.set_parameter(5, neutral.data(), sizeof neutral), rask::out_of_range);
    }

    void the_aspect_fills_the_window_or_keeps_the_films_shape_data()
    {
        QTest::addColumn<QString>("film");
        QTest::addColumn<QRect>("bar"); ///< what stays black when the shape is kept
        QTest::newRow("anamorphic") << QStringLiteral("anamorphic.mp4") << QRect(0, 0, 480, 60);
        QTest::newRow("rotated") << QStringLiteral("rotated.mp4") << QRect(0, 0, 150, 272);
    }

    void the_aspect_fills_the_window_or_keeps_the_films_shape()
    {
        QFETCH(QString, film);
        QFETCH(QRect, bar);
        Bench bench;
        QVERIFY(bench.load(test_films::path(film)));
        QVERIFY(bench.seek(1400));
        QCOMPARE(bench.player.set_aspect(1), rask::ok);
        QTRY_VERIFY(!bench.picture().isNull());
        QTRY_VERIFY(lightness(bench.picture(), bar) < 3);
        QCOMPARE(bench.player.set_aspect(0), rask::ok);
        QTRY_VERIFY(lightness(bench.picture(), bar) > 20);
        QCOMPARE(bench.player.set_aspect(1), rask::ok);
        QTRY_VERIFY(lightness(bench.picture(), bar) < 3);
    }

    // Each size of the picture has a scaler of its own.
    void colours_are_the_same_at_each_size_of_the_picture()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("patches.mkv")));
        const auto green_at = [](qreal factor) {
            VideoPlane::instance().set_mapping({factor, {}, true});
            const QSize size = VideoPlane::instance().pixel_size();
            if (!QTest::qWaitFor([&] { return Bench::picture().size() == size; }, test_support::stretched(5000)))
                return QColor();
            return Bench::picture().pixelColor(size.width() / 2, size.height() * 3 / 4);
        };
        QCOMPARE(bench.player.set_video_window(0, 0, 640, 480), rask::ok);
        const QColor green = green_at(1.0);
        QVERIFY2(green.red() < 5 && std::abs(green.green() - 128) < 5 && green.blue() < 5, qPrintable(green.name()));
        for (const qreal factor : {0.5, 2.0}) {
            const QColor scaled = green_at(factor);
            QVERIFY2(scaled.isValid() && std::abs(scaled.red() - green.red()) < 5 &&
                         std::abs(scaled.green() - green.green()) < 5 && std::abs(scaled.blue() - green.blue()) < 5,
                     qPrintable(scaled.name()));
        }
    }

    void an_enlarged_edge_is_crisp()
    {
        Bench bench;
        QCOMPARE(bench.player.set_video_window(0, 0, 640, 480), rask::ok);
        VideoPlane::instance().set_mapping({2.0, {}, true});
        QVERIFY(bench.load(test_films::path("patches.mkv")));
        QTRY_COMPARE(bench.picture().size(), QSize(1280, 960));
        const auto darkest_beside_the_edge = [] {
            const QImage picture = Bench::picture();
            int darkest = 255;
            for (int x = 600; x < 640; ++x)
                darkest = std::min(darkest, qGray(picture.pixel(x, 200)));
            return darkest;
        };
        // A sharp filter goes a little too far on the dark side of an edge, a soft one never does.
        QTRY_VERIFY(darkest_beside_the_edge() < 98);
    }

    void a_film_with_a_palette_shows_its_colours()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("palette.mkv")));
        QTRY_VERIFY(!bench.picture().isNull());
        const QRgb pixel = bench.picture().pixel(240, 136);
        QVERIFY2(qRed(pixel) > 245 && qGreen(pixel) < 10 && qBlue(pixel) < 10, qPrintable(QColor(pixel).name()));
    }

    void a_turned_film_is_shown_upright()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("rotated.mp4")));
        QCOMPARE(bench.player.set_aspect(0), rask::ok);
        QVERIFY(bench.seek(1400));
        const auto turned_back = [] {
            const QImage picture = Bench::picture();
            return picture.isNull() ? -1 : test_films::frame_number(picture.transformed(QTransform().rotate(90)));
        };
        QTRY_COMPARE(turned_back(), 35);
    }

    void the_picture_follows_its_window_while_playing_and_while_paused()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QTRY_COMPARE(bench.picture().size(), QSize(480, 272));
        QCOMPARE(bench.player.set_video_window(12, 64, 221, 126), rask::ok);
        QTRY_COMPARE(bench.picture().size(), QSize(221, 126));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(2000));
        QTRY_VERIFY(std::abs(bench.frame() - 50) <= 1);
        QCOMPARE(bench.player.set_video_window(0, 0, 640, 480), rask::ok);
        VideoPlane::instance().acknowledge();
        QTRY_COMPARE(bench.picture().size(), QSize(640, 480));
        QCOMPARE(bench.player.set_aspect(0), rask::ok);
        QTRY_VERIFY(std::abs(bench.frame() - 50) <= 1);
    }

    void a_hidden_plane_costs_no_pictures_and_the_film_plays_on()
    {
        Bench bench;
        VideoPlane::instance().set_mapping({1.0, {}, false});
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.runs_on(500));
        QVERIFY(bench.picture().isNull());
        VideoPlane::instance().set_mapping({1.0, {}, true});
        QTRY_VERIFY(bench.frame() > 10);
    }

    void closing_leaves_a_black_plane()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QTRY_VERIFY(!bench.picture().isNull());
        QCOMPARE(bench.player.close(), rask::ok);
        QVERIFY(bench.picture().isNull());
    }

    void initialize_leaves_the_open_film_alone()
    {
        Bench bench;
        QCOMPARE(bench.player.initialize(), rask::ok);
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.runs_on(200));
        QCOMPARE(bench.player.initialize(), rask::ok);
        QVERIFY(bench.player.has_info("video"));
        QVERIFY(bench.runs_on(200));
        QCOMPARE(bench.recorder.reports(), started);
    }

    void another_film_replaces_the_open_one_without_its_reports()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.runs_on(500));
        QVERIFY(bench.open(test_films::path("theora.ogg")));
        bench.recorder.clear();
        QCOMPARE(bench.player.get_info("video", "name"), QStringLiteral("Theora"));
        QCOMPARE(bench.player.prepare(test_films::path("theora.ogg").toUtf8().constData()), rask::ok);
        QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("state 2")}));
        QCOMPARE(bench.recorder.positions().size(), std::size_t(0));
    }

    void a_film_that_was_not_opened_is_opened_by_prepare()
    {
        Bench bench;
        QVERIFY(bench.open(test_films::path("h264.mp4")));
        QCOMPARE(bench.player.prepare(test_films::path("theora.ogg").toUtf8().constData()), rask::ok);
        QCOMPARE(bench.player.get_info("video", "name"), QStringLiteral("Theora"));
    }

    void digital_sound_is_refused_without_the_hardware()
    {
        if (QDir(QStringLiteral("/proc/asound")).exists())
            QSKIP("this machine has sound cards");
        Bench bench;
        QVERIFY(bench.start(test_films::path("surround.mkv")));
        QCOMPARE(bench.player.set_option(1, true), rask::not_supported);
        QCOMPARE(bench.player.set_option(1, false), rask::ok);
        QCOMPARE(bench.player.set_option(2, true), rask::out_of_range);
        QVERIFY(bench.runs_on(200));
    }

    void odd_films_play_data()
    {
        QTest::addColumn<QString>("film");
        for (const char* film : {"late_start.mkv", "offset.ts", "tiny.mkv", "huge_still.mkv", "many_sounds.mkv",
                                 "wmv2_640x360.wmv", "subtitles.mkv"})
            QTest::newRow(film) << QString::fromLatin1(film);
    }

    void odd_films_play()
    {
        QFETCH(QString, film);
        Bench bench;
        QVERIFY(bench.start(test_films::path(film)));
        QTRY_VERIFY_WITH_TIMEOUT(!bench.picture().isNull(), 10000);
        QVERIFY(bench.seek(500));
        QVERIFY(bench.recorder.position() >= 0 && bench.recorder.position() < 10000);
        QVERIFY(!bench.recorder.reports().join(u' ').contains(QStringLiteral("error")));
    }

    void a_film_whose_timestamps_jump_plays_to_its_end_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("an hour ahead") << QStringLiteral("h264.ts") << QStringLiteral("offset.ts");
        QTest::newRow("an hour back") << QStringLiteral("offset.ts") << QStringLiteral("h264.ts");
    }

    void a_film_whose_timestamps_jump_plays_to_its_end()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QTemporaryDir directory;
        QFile before(test_films::path(first));
        QFile after(test_films::path(second));
        QVERIFY(before.open(QIODevice::ReadOnly) && after.open(QIODevice::ReadOnly));
        const QString jump = directory.filePath(QStringLiteral("jump.ts"));
        write_file(jump, before.readAll() + after.readAll());
        Bench bench;
        QVERIFY(bench.start(jump));
        // The numbers of the frames start again where the second film does.
        int highest = -1;
        const auto has_started_again = [&highest] {
            const int frame = Bench::frame();
            highest = std::max(highest, frame);
            return highest > 100 && frame >= 0 && frame < 75;
        };
        QTRY_VERIFY_WITH_TIMEOUT(has_started_again(), 15000);
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
    }

    void a_film_of_unknown_length_plays_but_is_not_scanned()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("unknown_length.mkv")));
        QCOMPARE(bench.player.get_info("video", "time").toInt(), 0);
        QVERIFY(bench.runs_on(300));
        QCOMPARE(bench.player.scan_forward(3), rask::not_supported);
        QCOMPARE(bench.player.scan_backward(3), rask::not_supported);
        QVERIFY(bench.runs_on(300));
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
    }

    void a_film_that_tells_a_wrong_length_ends_where_it_ends_data()
    {
        QTest::addColumn<double>("told");
        QTest::newRow("too long") << 60000.0;
        QTest::newRow("too short") << 2000.0;
    }

    void a_film_that_tells_a_wrong_length_ends_where_it_ends()
    {
        QFETCH(double, told);
        QTemporaryDir directory;
        QFile whole(test_films::path("h264.mkv"));
        QVERIFY(whole.open(QIODevice::ReadOnly));
        QByteArray film = whole.readAll();
        const qsizetype place = film.indexOf(QByteArray("\x44\x89\x88"));
        QVERIFY(place > 0);
        std::uint64_t bits = 0;
        std::memcpy(&bits, &told, sizeof bits);
        qToBigEndian(bits, film.data() + place + 3);
        const QString liar = directory.filePath(QStringLiteral("liar.mkv"));
        write_file(liar, film);
        Bench bench;
        QVERIFY(bench.start(liar));
        QCOMPARE(bench.player.get_info("video", "time").toDouble(), told);
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
        QVERIFY2(std::abs(bench.recorder.position() - test_films::length_ms) < 300,
                 qPrintable(QString::number(bench.recorder.position())));
        QVERIFY(bench.seek(static_cast<Time>(told) / 2));
        QVERIFY(!bench.recorder.reports().join(u' ').contains(QStringLiteral("error")));
    }

    void a_film_with_one_key_frame_is_scanned_to_its_end()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("one_key_frame.mp4")));
        QVERIFY(bench.runs_on(200));
        QCOMPARE(bench.player.scan_forward(3), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(5, 10s));
        QCOMPARE(bench.recorder.reports(), started + ended);
    }

    void a_film_paused_after_its_last_picture_ends_when_it_is_played_on_data()
    {
        QTest::addColumn<int>("at");
        QTest::newRow("last picture") << 1970;
        QTest::newRow("sound alone") << 2300;
        QTest::newRow("last sound") << 2960;
    }

    void a_film_paused_after_its_last_picture_ends_when_it_is_played_on()
    {
        QFETCH(int, at);
        Bench bench;
        QVERIFY(bench.start(test_films::path("long_sound.mkv")));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(at));
        QTRY_VERIFY(std::abs(bench.frame() - 49) <= 1);
        bench.recorder.clear();
        QCOMPARE(bench.player.play(), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(3, 20s));
        QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("state 4")}) + ended);
    }

    void a_film_that_breaks_off_tells_an_error_and_nothing_more_data()
    {
        QTest::addColumn<int>("scan_rate");
        QTest::newRow("while it plays") << 0;
        QTest::newRow("while it is scanned") << 3;
    }

    void a_film_that_breaks_off_tells_an_error_and_nothing_more()
    {
        QFETCH(int, scan_rate);
        Bench bench;
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        if (scan_rate > 0)
            QCOMPARE(bench.player.scan_forward(scan_rate), rask::ok);
        bench.recorder.clear();
        library_faults::break_off();
        QVERIFY(bench.recorder.wait_for_reports(1, 10s));
        QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("error 2")}));
        bench.recorder.clear();
        // By then the scan would have come to the end.
        QVERIFY(!bench.recorder.wait_for_reports(1, 4s));
        QCOMPARE(bench.recorder.position(), -1);
        QCOMPARE(bench.player.play(), rask::wrong_state);
        QVERIFY(!bench.is_busy());
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }

    void each_of_many_sound_tracks_can_be_chosen()
    {
        Bench bench;
        QVERIFY(bench.load(test_films::path("many_sounds.mkv")));
        QCOMPARE(bench.player.get_info("container", "audio_streams"), QStringLiteral("32"));
        for (int track = 1; track <= 32; ++track)
            QCOMPARE(bench.player.select_stream(2, track), rask::ok);
        QCOMPARE(bench.player.select_stream(2, 33), rask::out_of_range);
        QCOMPARE(bench.player.play(), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(bench.recorder.reports(), started + ended);
    }

    void a_late_picture_keeps_its_time()
    {
        Bench bench;
        QVERIFY(bench.start(test_films::path("late_start.mkv")));
        QVERIFY(bench.seek(3000));
        QCOMPARE(bench.player.pause(), rask::ok);
        QVERIFY(bench.seek(3000));
        QTRY_VERIFY2(std::abs(bench.frame() - 25) <= 1, qPrintable(QString::number(bench.frame())));
    }

    void many_rounds_leave_nothing_behind()
    {
        const int rounds = chosen("TAVEL_ROUNDS", 12);
        const QStringList films = {test_films::path("h264.mp4"), test_films::path("mpeg4.avi"),
                                   test_films::path("theora.ogg")};
        const auto round = [](const QString& film) {
            Bench bench;
            QVERIFY(bench.start(film));
            QVERIFY(bench.recorder.wait_for_position([](Time) { return true; }, 10s));
            QVERIFY(bench.seek(2000));
            QCOMPARE(bench.player.close(), rask::ok);
        };
        round(films[0]);
        const qsizetype threads = Bench::count("task");
        const qsizetype files = Bench::count("fd");
        for (int number = 0; number < rounds; ++number)
            round(films[number % films.size()]);
        QTRY_COMPARE(Bench::count("task"), threads);
        QTRY_COMPARE(Bench::count("fd"), files);
    }

    void many_films_in_one_player_leave_nothing_behind()
    {
        const int rounds = chosen("TAVEL_ROUNDS", 12);
        Bench bench;
        const auto round = [&bench](const QString& film) {
            bench.recorder.clear();
            QVERIFY(bench.start(film));
            QVERIFY(bench.recorder.wait_for_position([](Time) { return true; }, 10s));
            QVERIFY(bench.seek(2000));
            QCOMPARE(bench.player.close(), rask::ok);
        };
        round(test_films::path("h264.mp4"));
        QTRY_VERIFY(Bench::count("task") < 20);
        const qsizetype threads = Bench::settled_count("task");
        for (int number = 0; number < rounds; ++number)
            round(test_films::path(number % 2 ? "h264.mp4" : "mpeg4.avi"));
        QTRY_VERIFY(Bench::count("task") <= threads);
    }

    void every_operation_returns_in_time_whenever_it_is_called()
    {
        const QByteArray film = test_films::path("h264.mp4").toUtf8();
        const std::array<qint32, 3> colour = {50, 50, 50};
        bool busy = false;
        using Operation = std::function<void(MediaPlayer&)>;
        const std::vector<Operation> operations = {
            [&](MediaPlayer& player) { player.initialize(); },
            [&](MediaPlayer& player) { player.open(film.constData()); },
            [&](MediaPlayer& player) { player.prepare(film.constData()); },
            [&](MediaPlayer& player) { player.play(); },
            [&](MediaPlayer& player) { player.pause(); },
            [&](MediaPlayer& player) { player.seek(SeekMode::Forward, 2000); },
            [&](MediaPlayer& player) { player.scan_forward(3); },
            [&](MediaPlayer& player) { player.scan_backward(3); },
            [&](MediaPlayer& player) { player.set_speed(0); },
            [&](MediaPlayer& player) { player.set_aspect(1); },
            [&](MediaPlayer& player) { player.set_video_window(0, 0, 480, 272); },
            [&](MediaPlayer& player) { player.set_parameter(4, colour.data(), sizeof colour); },
            [&](MediaPlayer& player) { player.select_stream(2, 1); },
            [&](MediaPlayer& player) { player.set_option(1, false); },
            [&](MediaPlayer& player) { player.query(5, &busy); },
            [&](MediaPlayer& player) { player.has_info("video"); },
            [&](MediaPlayer& player) { player.get_info("video", "name"); },
            [&](MediaPlayer& player) { player.get_subtitles(0); },
            [&](MediaPlayer& player) { player.get_subtitles(99); },
            [&](MediaPlayer& player) { player.get_speed(); },
            [&](MediaPlayer& player) { player.close(); },
        };
        qint64 slowest = 0;
        const auto timed = [&slowest](const Operation& operation, MediaPlayer& player) {
            QElapsedTimer clock;
            clock.start();
            operation(player);
            slowest = std::max(slowest, clock.elapsed());
        };
        // Each operation in the state that each other one leaves, from a playing film, twice.
        Bench bench;
        for (const Operation& before : operations) {
            for (const Operation& operation : operations) {
                bench.player.open(film.constData());
                bench.player.prepare(film.constData());
                bench.player.play();
                timed(before, bench.player);
                timed(operation, bench.player);
                timed(operation, bench.player);
            }
        }
        timed([](MediaPlayer& player) { player.release(); }, bench.player);
        for (const Operation& operation : operations)
            timed(operation, bench.player);
        timed([](MediaPlayer& player) { player.release(); }, bench.player);
        QVERIFY2(slowest < 3000, qPrintable(QString::number(slowest)));
    }

    void the_volume_may_be_set_at_any_time()
    {
        set_application_volume(20);
        Bench bench;
        set_application_volume(0);
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        std::thread other([] {
            for (int volume = 0; volume <= 60; ++volume)
                set_application_volume(static_cast<unsigned char>(volume));
        });
        other.join();
        QVERIFY(bench.runs_on(200));
        QCOMPARE(bench.player.release(), rask::ok);
        set_application_volume(1);
    }

    void films_work_without_anybody_to_report_to()
    {
        MediaPlayer player(nullptr);
        const QByteArray film = test_films::path("h264.mp4").toUtf8();
        QCOMPARE(player.prepare(film.constData()), rask::ok);
        QCOMPARE(player.play(), rask::ok);
        QCOMPARE(player.seek(SeekMode::Forward, 6000), rask::ok);
        QCOMPARE(player.close(), rask::ok);
    }

    void a_callback_that_hangs_costs_closing_a_second_at_most()
    {
        struct Hanging : ReportRecorder {
            int notify_time_update(long long position) override
            {
                if (position > 200) {
                    std::unique_lock lock(mutex);
                    hangs = true;
                    changed.notify_all();
                    changed.wait(lock, [this] { return released; });
                }
                return 1;
            }
            std::mutex mutex;
            std::condition_variable changed;
            bool hangs = false;
            bool released = false;
        } callback;
        MediaPlayer player(&callback);
        QCOMPARE(player.prepare(test_films::path("h264.mp4").toUtf8().constData()), rask::ok);
        QCOMPARE(player.play(), rask::ok);
        {
            std::unique_lock lock(callback.mutex);
            QVERIFY(callback.changed.wait_for(lock, 10s, [&] { return callback.hangs; }));
        }
        QElapsedTimer clock;
        clock.start();
        player.close();
        QVERIFY2(clock.elapsed() < 1500, qPrintable(QString::number(clock.elapsed())));
        {
            const std::lock_guard lock(callback.mutex);
            callback.released = true;
        }
        callback.changed.notify_all();
        QCOMPARE(player.prepare(test_films::path("h264.mp4").toUtf8().constData()), rask::ok);
    }
};

TAVEL_TEST_MAIN(TstMediaPlayer)
#include "tst_media_player.moc"
