#include "background_task.h"
#include "colour_balance.h"
#include "digital_output.h"
#include "engine_core.h"
#include "films.h"
#include "media_names.h"
#include "media_probe.h"
#include "picture_size.h"
#include "sound_output.h"
#include "sound_volume.h"
#include "subtitle.h"
#include "test_main.h"
#include "video_plane.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

using namespace std::chrono_literals;

Q_DECLARE_METATYPE(picture_size::Scaling)

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
        core->set("vd-lavc-threads", QByteArray("1")); // as for every small film
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

    void large_frames_are_decoded_by_more_threads()
    {
        for (const int height : {1, 272, 480})
            QCOMPARE(picture_size::decoder_threads(height), 1);
        for (const int height : {481, 576, 720})
            QCOMPARE(picture_size::decoder_threads(height), 2);
        QVERIFY(picture_size::decoder_threads(721) >= 2);
        QVERIFY(picture_size::decoder_threads(4320) <= 16);
    }

    void a_frame_is_compared_with_what_is_seen_of_it_data()
    {
        using picture_size::Scaling;
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<double>("pixel_aspect");
        QTest::addColumn<QSize>("place");
        QTest::addColumn<bool>("keeps_shape");
        QTest::addColumn<Scaling>("scaling");
        QTest::newRow("as large as its place") << QSize(480, 272) << 1.0 << QSize(480, 272) << true << Scaling::None;
        QTest::newRow("as large between bars") << QSize(640, 360) << 1.0 << QSize(640, 480) << true << Scaling::None;
        QTest::newRow("stretched over the bars")
            << QSize(640, 360) << 1.0 << QSize(640, 480) << false << Scaling::Larger;
        QTest::newRow("wide pixels") << QSize(480, 272) << 1.5 << QSize(480, 272) << true << Scaling::Smaller;
        QTest::newRow("wide pixels that fill") << QSize(480, 272) << 1.5 << QSize(480, 272) << false << Scaling::None;
        QTest::newRow("wide pixels with room")
            << QSize(720, 576) << 1.4222 << QSize(1024, 576) << true << Scaling::Larger;
        QTest::newRow("large") << QSize(1920, 1080) << 1.0 << QSize(480, 272) << true << Scaling::Smaller;
        QTest::newRow("settings' preview") << QSize(480, 272) << 1.0 << QSize(221, 126) << true << Scaling::Smaller;
        QTest::newRow("small") << QSize(320, 180) << 1.0 << QSize(480, 272) << true << Scaling::Larger;
        QTest::newRow("nothing known") << QSize(0, 0) << 1.0 << QSize(480, 272) << true << Scaling::None;
        QTest::newRow("no place") << QSize(480, 272) << 1.0 << QSize(0, 0) << true << Scaling::None;
        QTest::newRow("nonsense") << QSize(480, 272) << std::nan("") << QSize(480, 272) << true << Scaling::None;
    }
    void a_frame_is_compared_with_what_is_seen_of_it()
    {
        QFETCH(QSize, frame);
        QFETCH(double, pixel_aspect);
        QFETCH(QSize, place);
        QFETCH(bool, keeps_shape);
        QTEST(picture_size::scaling_of(frame, pixel_aspect, place, keeps_shape), "scaling");
    }

    void each_scaling_has_its_scaler_data()
    {
        using picture_size::Scaling;
        QTest::addColumn<Scaling>("scaling");
        QTest::addColumn<QString>("allows_zimg");
        QTest::addColumn<QString>("filter");
        QTest::newRow("larger") << Scaling::Larger << "yes"
                                << "bicubic";
        QTest::newRow("smaller") << Scaling::Smaller << "yes"
                                 << "bilinear";
        QTest::newRow("none") << Scaling::None << "no"
                              << "bilinear";
    }
    void each_scaling_has_its_scaler()
    {
        QFETCH(picture_size::Scaling, scaling);
        QFETCH(QString, allows_zimg);
        QFETCH(QString, filter);
        const std::unique_ptr<EngineCore> core = EngineCore::create();
        QVERIFY(core);
        core->use_scaler(scaling == picture_size::Scaling::None ? picture_size::Scaling::Larger
                                                                : picture_size::Scaling::None);
        core->use_scaler(scaling);
        const auto value = [&](const char* property) {
            const std::unique_ptr<char, void (*)(void*)> text(mpv_get_property_string(core->handle(), property),
                                                              mpv_free);
            return QString::fromUtf8(text.get());
        };
        QTRY_COMPARE(value("zimg-scaler"), filter);
        QTRY_COMPARE(value("sws-allow-zimg"), allows_zimg);
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
