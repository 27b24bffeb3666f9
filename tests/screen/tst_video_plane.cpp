#include "device_screen.h"
#include "test_main.h"
#include "video_plane.h"

#include <atomic>
#include <thread>

/// The video plane between an engine's thread and the display.
class TstVideoPlane : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void a_frame_buffer_has_the_size_and_format_asked_for();
    void frames_rendered_while_the_display_paints_are_never_seen_half_done();
    void windows_change_and_pictures_go_while_frames_come();
    void no_hook_runs_any_more_once_it_was_taken_away();
    void a_hook_may_take_itself_away();
};

void TstVideoPlane::initTestCase()
{
    DeviceScreen::instance()->show();
    QVERIFY(QTest::qWaitForWindowExposed(DeviceScreen::instance()));
}

void TstVideoPlane::a_frame_buffer_has_the_size_and_format_asked_for()
{
    VideoPlane& plane = VideoPlane::instance();
    for (const QSize size : {QSize(480, 272), QSize(33, 7), QSize(480, 272)}) {
        QImage& buffer = plane.begin_frame(size);
        QCOMPARE(buffer.size(), size);
        QCOMPARE(buffer.format(), QImage::Format_RGB32);
        plane.end_frame();
    }
    // Nobody drew into these frames.
    plane.clear();
}

void TstVideoPlane::frames_rendered_while_the_display_paints_are_never_seen_half_done()
{
    VideoPlane& plane = VideoPlane::instance();
    std::atomic<bool> stop = false;
    std::atomic<int> frames = 0;
    std::thread engine([&] {
        for (int i = 0; !stop; ++i) {
            const QSize size = plane.pixel_size();
            if (size.isEmpty())
                continue;
            plane.begin_frame(size).fill(QColor(i % 200, i % 200, i % 200));
            plane.end_frame();
            ++frames;
        }
    });
    int seen = 0;
    bool whole = true;
    QElapsedTimer clock;
    clock.start();
    while ((frames < 300 || seen < 30) && clock.elapsed() < test_support::stretched(20'000)) {
        QCoreApplication::processEvents();
        const QImage shot = DeviceScreen::instance()->grab_output();
        const QRgb first = shot.pixel(0, 0);
        for (int y = 0; y < shot.height() && whole; y += 3)
            whole = shot.pixel(0, y) == first && shot.pixel(479, y) == first;
        ++seen;
    }
    stop = true;
    engine.join();
    QVERIFY(whole);
    QVERIFY(frames >= 300);
}

void TstVideoPlane::windows_change_and_pictures_go_while_frames_come()
{
    VideoPlane& plane = VideoPlane::instance();
    std::atomic<bool> stop = false;
    std::atomic<int> hooks = 0;
    std::thread engine([&] {
        plane.set_resize_hook([&] { ++hooks; });
        for (int i = 0; !stop; ++i) {
            const QSize size = plane.pixel_size();
            if (!size.isEmpty()) {
                plane.begin_frame(size).fill(Qt::white);
                plane.end_frame();
            }
            if (i % 16 == 0)
                plane.clear();
            if (i % 8 == 0)
                plane.set_window(QRect(i % 100, i % 50, 200 + i % 32, 100));
            std::this_thread::yield();
        }
        plane.set_resize_hook({});
    });
    DeviceScreen* const screen = DeviceScreen::instance();
    for (int i = 0; i < 60; ++i) {
        screen->resize(480 + i, 272 + i);
        if (i % 10 == 0)
            screen->control(QStringLiteral("/dev/fb1 enable %1").arg(i / 10 % 2));
        QCoreApplication::processEvents();
        screen->grab_output();
    }
    screen->control(QStringLiteral("/dev/fb1 enable 1"));
    QTRY_VERIFY(hooks > 0);
    stop = true;
    engine.join();
    plane.set_window(QRect(0, 0, 480, 272));
    screen->resize(480, 272);
    QTRY_COMPARE(plane.pixel_size(), QSize(480, 272));
}

void TstVideoPlane::no_hook_runs_any_more_once_it_was_taken_away()
{
    VideoPlane& plane = VideoPlane::instance();
    std::atomic<bool> stop = false;
    std::thread engine([&] {
        while (!stop) {
            // The hook's object is gone as soon as it was taken away: a late call is a use after free.
            auto calls = std::make_unique<std::atomic<int>>(0);
            plane.set_resize_hook([target = calls.get()] { ++*target; });
            std::this_thread::yield();
            plane.set_resize_hook({});
        }
    });
    for (int i = 0; i < 200; ++i) {
        plane.set_window(QRect(0, 0, 100 + i, 100));
        QCoreApplication::processEvents();
    }
    stop = true;
    engine.join();
    plane.set_window(QRect(0, 0, 480, 272));
    QCoreApplication::processEvents();
    QCOMPARE(plane.pixel_size(), QSize(480, 272));
}

void TstVideoPlane::a_hook_may_take_itself_away()
{
    VideoPlane& plane = VideoPlane::instance();
    int calls = 0;
    plane.set_resize_hook([&] {
        ++calls;
        plane.set_resize_hook({});
    });
    plane.set_window(QRect(0, 0, 100, 100));
    QTRY_COMPARE(calls, 1);
    plane.set_window(QRect(0, 0, 480, 272));
    QCoreApplication::processEvents();
    QCOMPARE(calls, 1);
}

TAVEL_TEST_MAIN(TstVideoPlane)
#include "tst_video_plane.moc"
