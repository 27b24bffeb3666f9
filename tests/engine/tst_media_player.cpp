#include "films.h"
#include "media_player.h"
#include "report_recorder.h"
#include "test_main.h"
#include "video_plane.h"

using namespace std::chrono_literals;

namespace
{

const QStringList started = {QStringLiteral("state 2"), QStringLiteral("stream 0 0"), QStringLiteral("state 4")};

/// A player with its recorder, and the plane visible at one pixel a unit.
struct Bench {
    Bench()
    {
        VideoPlane::instance().set_mapping({1.0, {}, true});
        VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
    }
    bool start(const QString& film)
    {
        const QByteArray path = film.toUtf8();
        return player.open(path.constData()) == rask::ok && player.prepare(path.constData()) == rask::ok &&
               player.play() == rask::ok;
    }
    bool load(const QString& film)
    {
        const QByteArray path = film.toUtf8();
        return player.open(path.constData()) == rask::ok && player.prepare(path.constData()) == rask::ok;
    }
    /// The number of the frame on the plane; -1 without one.
    static int frame()
    {
        const QImage* const picture = &VideoPlane::instance().newest_frame();
        return picture->isNull() ? -1 : test_films::frame_number(*picture);
    }

    ReportRecorder recorder;
    MediaPlayer player{&recorder};
};

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
        QVERIFY(bench.recorder.wait_for_reports(5, 10s));
        QCOMPARE(bench.recorder.reports(),
                 started + QStringList({QStringLiteral("stream 0 2"), QStringLiteral("state 6")}));
        QVERIFY(bench.recorder.positions().size() > 100);
    }
};

TAVEL_TEST_MAIN(TstMediaPlayer)
#include "tst_media_player.moc"
