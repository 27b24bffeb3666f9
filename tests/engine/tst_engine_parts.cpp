#include "background_task.h"
#include "colour_balance.h"
#include "digital_output.h"
#include "engine_core.h"
#include "films.h"
#include "media_names.h"
#include "media_probe.h"
#include "sound_output.h"
#include "sound_volume.h"
#include "subtitle.h"
#include "test_main.h"
#include "video_plane.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

using namespace std::chrono_literals;

/// The small parts that the real engine is made of.
class TstEngineParts : public QObject
{
    Q_OBJECT

private slots:
    void fifty_leaves_a_colour_as_it_is()
    {
        ColourBalance balance;
        QVERIFY(balance.is_neutral());
        balance.set(50, 50, 50);
        QVERIFY(balance.is_neutral());
        QImage picture(1, 1, QImage::Format_RGB32);
        picture.fill(qRgb(10, 20, 30));
        balance.apply(picture);
        QCOMPARE(picture.pixel(0, 0), qRgb(10, 20, 30));
    }

    void each_colour_is_scaled_by_its_own_value()
    {
        ColourBalance balance;
        balance.set(0, 75, 100);
        QVERIFY(!balance.is_neutral());
        QImage picture(2, 1, QImage::Format_RGB32);
        picture.setPixel(0, 0, qRgb(100, 100, 100));
        picture.setPixel(1, 0, qRgb(200, 200, 200));
        balance.apply(picture);
        QCOMPARE(picture.pixel(0, 0), qRgb(0, 150, 200));
        QCOMPARE(picture.pixel(1, 0), qRgb(0, 255, 255));
    }

    void colours_out_of_range_count_as_the_nearest()
    {
        ColourBalance balance;
        balance.set(-5, 50, 1000);
        QImage picture(1, 1, QImage::Format_RGB32);
        picture.fill(qRgb(100, 100, 100));
        balance.apply(picture);
        QCOMPARE(picture.pixel(0, 0), qRgb(0, 100, 200));
    }

    void a_frame_that_came_before_the_picture_was_let_through_is_shown_afterwards()
    {
        VideoPlane& plane = VideoPlane::instance();
        plane.set_mapping({1.0, {}, true});
        plane.clear();
        const std::unique_ptr<EngineCore> core = EngineCore::create();
        QVERIFY(core);
        QVERIFY(core->command({"loadfile", QFile::encodeName(test_films::path("h264.mp4"))}));
        const auto has_begun = [&] {
            return mpv_wait_event(core->handle(), 0.1)->event_id == MPV_EVENT_PLAYBACK_RESTART;
        };
        QVERIFY(QTest::qWaitFor(has_begun, test_support::stretched(10000)));
        QVERIFY(plane.newest_frame().isNull());
        core->picture().show(true);
        core->picture().show_missed();
        QTRY_VERIFY(!plane.newest_frame().isNull());
    }

    void containers_have_their_usual_names_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("name");
        const auto row = [](const char* format, const char* name) {
            QTest::newRow(format) << QString::fromLatin1(format) << QString::fromLatin1(name);
        };
        row("mpeg", "MPEG");
        row("mpegts", "MPEG");
        row("mpegvideo", "MPEG");
        row("avi", "AVI");
        row("mov,mp4,m4a,3gp,3g2,mj2", "MP4");
        row("matroska,webm", "Matroska");
        row("asf", "ASF");
        row("ogg", "Ogg");
        row("flv", "Flash Video");
        row("rm", "RealMedia");
        row("smjpeg", "SMJPEG");
    }

    void containers_have_their_usual_names()
    {
        QFETCH(QString, format);
        QFETCH(QString, name);
        QCOMPARE(container_name(format.toLatin1().constData()), name);
    }

    void codecs_have_the_names_that_the_player_knows_data()
    {
        QTest::addColumn<int>("codec");
        QTest::addColumn<QString>("name");
        const auto row = [](AVCodecID codec, const char* name) {
            QTest::newRow(name) << static_cast<int>(codec) << QString::fromLatin1(name);
        };
        row(AV_CODEC_ID_WMV1, "WMV7");
        row(AV_CODEC_ID_WMV2, "WMV8");
        row(AV_CODEC_ID_WMV3, "WMV9");
        row(AV_CODEC_ID_MSMPEG4V1, "MS Mpeg 4 v1");
        row(AV_CODEC_ID_MSMPEG4V2, "MS Mpeg 4 v2");
        row(AV_CODEC_ID_MSMPEG4V3, "MS Mpeg 4 v3");
        row(AV_CODEC_ID_H264, "H.264");
        row(AV_CODEC_ID_PCM_S16LE, "PCM");
        row(AV_CODEC_ID_CINEPAK, "CINEPAK");
    }

    void codecs_have_the_names_that_the_player_knows()
    {
        QFETCH(int, codec);
        QFETCH(QString, name);
        AVCodecParameters parameters = {};
        parameters.codec_id = static_cast<AVCodecID>(codec);
        QCOMPARE(codec_name(parameters), name);
    }

    void a_digital_output_is_found_where_the_sound_system_lists_one_data()
    {
        QTest::addColumn<QByteArray>("info");
        QTest::addColumn<bool>("found");
        QTest::newRow("analogue") << QByteArray("id: ALC269 Analog\nname: ALC269 Analog\n") << false;
        QTest::newRow("S/PDIF") << QByteArray("id: ALC1220 Digital\nname: ALC1220 Digital\n") << true;
        QTest::newRow("IEC958") << QByteArray("id: USB Audio #1\nname: IEC958 output\n") << true;
        QTest::newRow("HDMI") << QByteArray("id: HDMI 0\nname: HDMI 0\n") << true;
    }

    void a_digital_output_is_found_where_the_sound_system_lists_one()
    {
        QFETCH(QByteArray, info);
        QFETCH(bool, found);
        QTemporaryDir root;
        QVERIFY(!has_digital_output(root.path()));
        QVERIFY(QDir(root.path()).mkpath(QStringLiteral("card0/pcm0p")));
        QFile file(root.filePath(QStringLiteral("card0/pcm0p/info")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(info);
        file.close();
        QCOMPARE(has_digital_output(root.path()), found);
    }

    void a_digital_input_is_no_digital_output()
    {
        QTemporaryDir root;
        QVERIFY(QDir(root.path()).mkpath(QStringLiteral("card0/pcm0c")));
        QFile file(root.filePath(QStringLiteral("card0/pcm0c/info")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("id: Digital\n");
        file.close();
        QVERIFY(!has_digital_output(root.path()));
    }

    void the_volume_reaches_the_newest_listener_in_percent()
    {
        QList<double> first;
        QList<double> second;
        set_application_volume(10);
        set_volume_listener(&first, [&first](double percent) { first += percent; });
        QCOMPARE(first, QList<double>({25}));
        set_application_volume(40);
        set_application_volume(200);
        set_volume_listener(&second, [&second](double percent) { second += percent; });
        set_application_volume(0);
        QCOMPARE(first, QList<double>({25, 100, 100}));
        QCOMPARE(second, QList<double>({100, 0}));
        remove_volume_listener(&first);
        set_application_volume(20);
        remove_volume_listener(&second);
        set_application_volume(40);
        QCOMPARE(second, QList<double>({100, 0, 50}));
    }

    void a_task_can_be_waited_for_with_a_limit_and_left_behind()
    {
        struct Shared {
            std::mutex mutex;
            std::condition_variable changed;
            bool released = false;
            bool ended = false;
        };
        const auto shared = std::make_shared<Shared>();
        {
            BackgroundTask task([shared] {
                std::unique_lock lock(shared->mutex);
                shared->changed.wait(lock, [&] { return shared->released; });
                shared->ended = true;
                shared->changed.notify_all();
            });
            QVERIFY(!task.wait_for(20ms));
        }
        std::unique_lock lock(shared->mutex);
        QVERIFY(!shared->ended);
        shared->released = true;
        shared->changed.notify_all();
        QVERIFY(shared->changed.wait_for(lock, 10s * TAVEL_WAIT_FACTOR, [&] { return shared->ended; }));
    }

    void a_task_that_was_never_given_is_done()
    {
        BackgroundTask task;
        QVERIFY(task.wait_for(0ms));
    }

    void a_probe_tells_type_and_length()
    {
        const std::optional<MediaSummary> summary = probe_media(test_films::path("theora.ogg"), 5000);
        QVERIFY(summary.has_value());
        QCOMPARE(summary->type, QStringLiteral("Ogg"));
        QVERIFY(std::abs(summary->duration_ms - test_films::length_ms) < 100);
        QVERIFY(!probe_media(QStringLiteral("/missing.avi"), 5000));
        std::stop_source stopped;
        stopped.request_stop();
        QVERIFY(!probe_media(test_films::path("theora.ogg"), 5000, stopped.get_token()));
        QVERIFY(!probe_media(test_films::path("sound_only.m4a"), 5000));
    }

    void lines_are_ordered_by_their_start_alone()
    {
        const Subtitle early{1, 9, "b"};
        const Subtitle late{2, 3, "a"};
        QVERIFY(less_mag()(early, late));
        QVERIFY(!less_mag()(late, early));
        QVERIFY(!less_mag()(early, Subtitle{1, 2, "a"}));
    }
};

TAVEL_TEST_MAIN(TstEngineParts)
#include "tst_engine_parts.moc"
