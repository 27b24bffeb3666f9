#include "background_pixmap.h"
#include "device_screen.h"
#include "probe_window.h"
#include "test_main.h"
#include "video_plane.h"

#include <QWindow>

namespace
{

constexpr QRect whole(80, 104, 480, 272);

/// Counts the paint events of an object and adds up what they exposed.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QObject* object) { object->installEventFilter(this); }
    int count = 0;
    QRegion region;

protected:
    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++count;
            region += static_cast<QPaintEvent*>(event)->region();
        }
        return QObject::eventFilter(object, event);
    }
};

/// A widget with a background pixmap and a child over a part of it, as the player's panels have.
class Panel : public QWidget
{
public:
    explicit Panel(QWidget* parent) : QWidget(parent) {}
    BackgroundPixmap background;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        background.paint(this, event);
        QPainter painter(this);
        painter.fillRect(QRect(0, 0, 10, 10), QColor(0, 0, 255, 128));
    }
};

QPixmap filled_pixmap(QSize size, const QColor& colour)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(colour);
    return QPixmap::fromImage(image);
}

/// One frame as an engine makes it; each pixel tells its place.
QImage pattern(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y,
                           qRgb(x / 16 * 16 * 255 / size.width(), y / 16 * 16 * 255 / size.height(), (x ^ y) & 128));
    }
    return image;
}

void show_frame(const QImage& frame)
{
    VideoPlane& plane = VideoPlane::instance();
    QImage& back = plane.begin_frame(frame.size());
    QPainter(&back).drawImage(0, 0, frame);
    plane.end_frame();
    QCoreApplication::processEvents();
}

void show_frame(const QColor& colour)
{
    QImage frame(VideoPlane::instance().pixel_size(), QImage::Format_RGB32);
    frame.fill(colour);
    show_frame(frame);
}

QColor at(const QImage& shot, int x, int y)
{
    return shot.pixelColor(x, y);
}

bool is_near(const QColor& a, const QColor& b, int tolerance)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

QImage golden(const char* name)
{
    return QImage(QFINDTESTDATA(QStringLiteral("golden/%1.png").arg(QLatin1StringView(name))))
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

/// The picture on the two outputs: planes, alpha, scaling, and what is repainted when.
class TstDeviceOutput : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void the_lcd_shows_the_plane_from_80_104_pixel_by_pixel();
    void the_tv_shows_the_whole_plane_pixel_by_pixel();
    void a_frame_of_the_size_asked_for_is_shown_unchanged();
    void a_window_of_the_picture_is_given_in_output_coordinates();
    void a_cleared_plane_is_black();
    void black_with_alpha_0_lets_the_moving_picture_through();
    void half_transparent_panels_mix_with_each_new_frame();
    void a_background_pixmap_replaces_what_is_under_it();
    void a_background_pixmap_paints_only_what_is_exposed();

    void control_strings_act_on_the_planes_data();
    void control_strings_act_on_the_planes();
    void a_refused_control_string_warns_once_and_changes_nothing();
    void a_plane_switched_off_and_on_again_does_not_show_the_old_frame();
    void a_disabled_window_plane_leaves_its_windows_shown();
    void the_video_plane_ends_where_its_size_ends();
    void the_window_plane_ends_where_its_size_ends();

    void a_larger_host_window_keeps_the_aspect_and_asks_for_real_pixels();
    void text_is_drawn_at_the_size_of_the_host_window();
    void pictures_of_a_window_are_smooth_at_any_scale();
    void clicks_land_on_the_right_pixel_of_a_scaled_output();
    void windows_outside_the_output_are_not_seen_in_the_margins();
    void the_tv_enlarges_the_host_window_and_the_lcd_restores_it();

    void a_resized_picture_calls_the_hook();
    void nothing_is_rendered_for_a_hidden_or_minimised_display();
    void nothing_is_repainted_while_nothing_changes();
    void a_frame_repaints_its_rectangle_only_and_no_window();
    void a_window_repaints_itself_only();
    void frames_that_come_faster_than_repaints_are_merged();
};

void TstDeviceOutput::initTestCase()
{
    DeviceScreen::instance()->show();
    QVERIFY(QTest::qWaitForWindowExposed(DeviceScreen::instance()));
}

void TstDeviceOutput::init()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->resize(480, 272);
    QCoreApplication::processEvents();
}

void TstDeviceOutput::cleanup()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->showNormal();
    screen->set_output(DeviceScreen::Output::Lcd);
    screen->resize(480, 272);
    screen->control(QStringLiteral("/dev/fb1 enable 1 size 480 272 origin 0 0 position 0 0"));
    screen->control(QStringLiteral("/dev/fb2 enable 1 size 640 480 origin 80 104 position 0 0"));
    VideoPlane::instance().set_resize_hook({});
    VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
    VideoPlane::instance().clear();
    QCoreApplication::processEvents();
}

/// Windows over a patterned picture, the way the player arranges them.
struct Scene {
    ProbeWindow main{QColor(0, 0, 0, 0), whole};
    Panel controls{&main};
    Panel title{&main};
    ProbeWindow beside{QColor(200, 30, 30, 255), QRect(0, 0, 100, 120)};

    Scene()
    {
        controls.setGeometry(0, 212, 480, 60);
        QImage gradient(480, 60, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 480; ++x)
                gradient.setPixel(x, y, qPremultiply(qRgba(x / 2, 40, 90, y * 4)));
        }
        controls.background.set(QPixmap::fromImage(gradient));
        title.setGeometry(0, 0, 480, 26);
        title.background.set(filled_pixmap(QSize(480, 26), QColor(255, 255, 255, 64)));
        main.show();
        beside.show();
    }
};

void TstDeviceOutput::the_lcd_shows_the_plane_from_80_104_pixel_by_pixel()
{
    Scene scene;
    show_frame(pattern(QSize(480, 272)));
    const QImage shot = DeviceScreen::instance()->grab_output();
    shot.save(QStringLiteral("lcd.png")); // for a look when the comparison fails
    QCOMPARE(shot, golden("lcd"));
    // The corner of the window at 0,0 reaches 20 by 16 pixels into the output.
    QCOMPARE(at(shot, 19, 15), QColor(200, 30, 30));
    QVERIFY(at(shot, 20, 15) != QColor(200, 30, 30));
}

void TstDeviceOutput::the_tv_shows_the_whole_plane_pixel_by_pixel()
{
    Scene scene;
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->control(QStringLiteral("/dev/fb1 enable 0"));
    screen->control(QStringLiteral("/dev/fb2 enable 0"));
    screen->set_output(DeviceScreen::Output::Tv);
    screen->control(QStringLiteral("/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1"));
    screen->control(QStringLiteral("/dev/fb1 size 640 480"));
    VideoPlane::instance().set_window(QRect(0, 0, 640, 480));
    screen->control(QStringLiteral("/dev/fb1 enable 1"));
    QCoreApplication::processEvents();
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(640, 480));
    show_frame(pattern(QSize(640, 480)));
    const QImage shot = screen->grab_output();
    shot.save(QStringLiteral("tv.png"));
    QCOMPARE(shot.size(), QSize(640, 480));
    QCOMPARE(shot, golden("tv"));
}

void TstDeviceOutput::a_frame_of_the_size_asked_for_is_shown_unchanged()
{
    const QImage frame = pattern(QSize(480, 272));
    show_frame(frame);
    QCOMPARE(DeviceScreen::instance()->grab_output(), frame);

    DeviceScreen::instance()->resize(731, 500);
    QCoreApplication::processEvents();
    const QImage large = pattern(VideoPlane::instance().pixel_size());
    show_frame(large);
    QCOMPARE(DeviceScreen::instance()->grab_output(), large);
}

void TstDeviceOutput::a_window_of_the_picture_is_given_in_output_coordinates()
{
    VideoPlane::instance().set_window(QRect(12, 64, 221, 126));
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(221, 126));
    show_frame(QColor(Qt::white));
    const QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(at(shot, 12, 64), QColor(Qt::white));
    QCOMPARE(at(shot, 232, 189), QColor(Qt::white));
    QCOMPARE(at(shot, 11, 64), QColor(Qt::black));
    QCOMPARE(at(shot, 233, 189), QColor(Qt::black));
    QCOMPARE(at(shot, 12, 63), QColor(Qt::black));
    QCOMPARE(at(shot, 12, 190), QColor(Qt::black));
    VideoPlane::instance().set_window(QRect());
    QVERIFY(VideoPlane::instance().pixel_size().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(at(DeviceScreen::instance()->grab_output(), 100, 100), QColor(Qt::black));
}

void TstDeviceOutput::a_cleared_plane_is_black()
{
    show_frame(QColor(Qt::white));
    VideoPlane::instance().clear();
    QCoreApplication::processEvents();
    QCOMPARE(at(DeviceScreen::instance()->grab_output(), 240, 136), QColor(Qt::black));
}

void TstDeviceOutput::black_with_alpha_0_lets_the_moving_picture_through()
{
    ProbeWindow window(QColor(0, 0, 0, 0), whole);
    window.show();
    for (const QColor& colour : {QColor(Qt::green), QColor(Qt::white), QColor(1, 2, 3)}) {
        show_frame(colour);
        QCOMPARE(at(DeviceScreen::instance()->grab_output(), 240, 136), colour);
    }
}

void TstDeviceOutput::half_transparent_panels_mix_with_each_new_frame()
{
    ProbeWindow window(QColor(255, 0, 0, 128), whole);
    window.show();
    for (const QColor& colour : {QColor(0, 200, 0), QColor(0, 0, 0), QColor(0, 0, 100)}) {
        show_frame(colour);
        const QColor mixed(128, colour.green() * 127 / 255, colour.blue() * 127 / 255);
        const QColor seen = at(DeviceScreen::instance()->grab_output(), 240, 136);
        QVERIFY2(is_near(seen, mixed, 1), qPrintable(seen.name()));
    }
}

void TstDeviceOutput::a_background_pixmap_replaces_what_is_under_it()
{
    ProbeWindow window(QColor(Qt::red), whole);
    Panel panel(&window);
    panel.setGeometry(100, 100, 50, 50);
    panel.background.set(filled_pixmap(QSize(40, 40), QColor(0, 0, 0, 0)));
    window.show();
    show_frame(QColor(0, 100, 0));
    const QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(at(shot, 99, 99), QColor(Qt::red));
    QCOMPARE(at(shot, 120, 120), QColor(0, 100, 0));
    QCOMPARE(at(shot, 145, 145), QColor(Qt::red));
    // What the widget paints after its background is laid over it, as usual.
    QVERIFY(is_near(at(shot, 105, 105), QColor(0, 50, 128), 1));
}

void TstDeviceOutput::a_background_pixmap_paints_only_what_is_exposed()
{
    ProbeWindow window(QColor(Qt::red), whole);
    Panel panel(&window);
    panel.setGeometry(0, 0, 100, 100);
    panel.background.set(filled_pixmap(QSize(100, 100), QColor(Qt::blue)));
    window.show();
    DeviceScreen::instance()->grab_output();
    panel.background.set(filled_pixmap(QSize(100, 100), QColor(Qt::green)));
    panel.update(50, 50, 10, 10);
    const QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(at(shot, 55, 55), QColor(Qt::green));
    // The toolkit adds a margin of a few pixels.
    QCOMPARE(at(shot, 65, 65), QColor(Qt::blue));
    QCOMPARE(at(shot, 45, 45), QColor(Qt::blue));
}

void TstDeviceOutput::control_strings_act_on_the_planes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<QColor>("colour");
    // A blue picture lies under a window that is red in fb2's rectangle 80,104 100x100.
    const QColor red(Qt::red);
    const QColor blue(Qt::blue);
    QTest::newRow("fb0 off shows no difference") << "/dev/fb0 enable 0" << QPoint(50, 50) << red;
    QTest::newRow("fb0 on shows no difference") << "/dev/fb0 enable 1" << QPoint(50, 50) << red;
    QTest::newRow("fb1 off") << "/dev/fb1 enable 0" << QPoint(200, 200) << QColor(Qt::black);
    QTest::newRow("fb1 off leaves fb2") << "/dev/fb1 enable 0" << QPoint(50, 50) << red;
    QTest::newRow("fb2 off") << "/dev/fb2 enable 0" << QPoint(50, 50) << blue;
    QTest::newRow("fb2 to the TV's place")
        << "/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1" << QPoint(85, 109) << red;
    QTest::newRow("fb2 has gone from the LCD's place")
        << "/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1" << QPoint(50, 50) << blue;
    QTest::newRow("fb2 to the LCD's place")
        << "/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1" << QPoint(0, 0) << red;
    QTest::newRow("fb2 position") << "/dev/fb2 position 300 100" << QPoint(300, 100) << red;
    QTest::newRow("fb1 position") << "/dev/fb1 position 100 0" << QPoint(110, 200) << blue;
    QTest::newRow("fb1 position leaves black") << "/dev/fb1 position 120 0" << QPoint(110, 200) << QColor(Qt::black);
    QTest::newRow("fb1 origin") << "/dev/fb1 origin 300 0" << QPoint(190, 200) << QColor(Qt::black);
    QTest::newRow("fb1 size of the TV") << "/dev/fb1 size 640 480" << QPoint(479, 271) << blue;
}

void TstDeviceOutput::control_strings_act_on_the_planes()
{
    QFETCH(QString, text);
    QFETCH(QPoint, place);
    QFETCH(QColor, colour);
    ProbeWindow window(Qt::red, QRect(80, 104, 100, 100));
    window.show();
    show_frame(QColor(Qt::blue));
    QVERIFY(DeviceScreen::instance()->control(text));
    QCOMPARE(at(DeviceScreen::instance()->grab_output(), place.x(), place.y()), colour);
}

void TstDeviceOutput::a_refused_control_string_warns_once_and_changes_nothing()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    const FrameBuffer before = screen->frame_buffer(2);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QTest::ignoreMessage(QtWarningMsg, "Frame buffer control not understood: \"/dev/fb2 enable 0 colour 3\"");
    QVERIFY(!screen->control(QStringLiteral("/dev/fb2 enable 0 colour 3")));
    QCOMPARE(screen->frame_buffer(2), before);
}

void TstDeviceOutput::a_plane_switched_off_and_on_again_does_not_show_the_old_frame()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    show_frame(QColor(Qt::white));
    screen->control(QStringLiteral("/dev/fb1 enable 0"));
    QVERIFY(VideoPlane::instance().pixel_size().isEmpty());
    screen->control(QStringLiteral("/dev/fb1 enable 1"));
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(480, 272));
    QCOMPARE(at(screen->grab_output(), 240, 136), QColor(Qt::black));
    show_frame(QColor(Qt::white));
    QCOMPARE(at(screen->grab_output(), 240, 136), QColor(Qt::white));
}

void TstDeviceOutput::a_disabled_window_plane_leaves_its_windows_shown()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb2 enable 0"));
    QVERIFY(window.isVisible());
    QVERIFY(window.isActiveWindow());
    QCOMPARE(window.log, QStringList{"activate"});
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb2 enable 1"));
    QCOMPARE(at(DeviceScreen::instance()->grab_output(), 5, 5), QColor(Qt::red));
}

void TstDeviceOutput::the_video_plane_ends_where_its_size_ends()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->control(QStringLiteral("/dev/fb1 size 100 50"));
    const QImage frame = pattern(QSize(480, 272));
    show_frame(frame);
    const QImage shot = screen->grab_output();
    QCOMPARE(at(shot, 99, 49), at(frame, 99, 49));
    QCOMPARE(at(shot, 100, 49), QColor(Qt::black));
    QCOMPARE(at(shot, 99, 50), QColor(Qt::black));
}

void TstDeviceOutput::the_window_plane_ends_where_its_size_ends()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(Qt::red, whole);
    window.show();
    screen->control(QStringLiteral("/dev/fb2 size 180 204"));
    const QImage shot = screen->grab_output();
    QCOMPARE(at(shot, 99, 99), QColor(Qt::red));
    QCOMPARE(at(shot, 100, 99), QColor(Qt::black));
    QCOMPARE(at(shot, 99, 100), QColor(Qt::black));
}

void TstDeviceOutput::a_larger_host_window_keeps_the_aspect_and_asks_for_real_pixels()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(QColor(0, 0, 0, 0), whole);
    window.show();
    screen->resize(1200, 544);
    QCoreApplication::processEvents();
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(960, 544));
    QCOMPARE(screen->viewport()->geometry(), QRect(120, 0, 960, 544));
    show_frame(QColor(Qt::white));
    const QImage host = screen->grab().toImage();
    QCOMPARE(at(host, 119, 300), QColor(Qt::black));
    QCOMPARE(at(host, 120, 300), QColor(Qt::white));
    QCOMPARE(at(host, 1079, 300), QColor(Qt::white));
    QCOMPARE(at(host, 1080, 300), QColor(Qt::black));
    screen->resize(480, 400);
    QCoreApplication::processEvents();
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(480, 272));
    QCOMPARE(screen->viewport()->geometry(), QRect(0, 64, 480, 272));
}

void TstDeviceOutput::text_is_drawn_at_the_size_of_the_host_window()
{
    class Text : public QWidget
    {
    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter(this);
            painter.fillRect(rect(), Qt::black);
            QFont font(QStringLiteral("v28"));
            font.setPixelSize(28);
            painter.setFont(font);
            painter.setPen(Qt::white);
            painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("VIDEO \uc601\uc0c1"));
        }
    };
    DeviceScreen* const screen = DeviceScreen::instance();
    Text window;
    window.setGeometry(whole);
    window.show();
    const QImage small = screen->grab_output();
    screen->resize(1440, 816);
    QCoreApplication::processEvents();
    const QImage large = screen->grab_output();
    QCOMPARE(large.size(), QSize(1440, 816));
    // Letters scaled up from 480x272 are smeared; letters drawn at this size have hard edges: far fewer grey pixels for
    // the same amount of white.
    const auto grey_share = [](const QImage& image) {
        int grey = 0;
        int white = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const int level = qGray(image.pixel(x, y));
                grey += level > 24 && level < 231;
                white += level >= 231;
            }
        }
        return double(grey) / (grey + white);
    };
    const double scaled_up = grey_share(small.scaled(large.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    const double drawn = grey_share(large);
    QVERIFY(drawn > 0);
    QVERIFY2(drawn < scaled_up / 2, qPrintable(QStringLiteral("%1 %2").arg(drawn).arg(scaled_up)));
}

void TstDeviceOutput::pictures_of_a_window_are_smooth_at_any_scale()
{
    ProbeWindow window(Qt::black, whole);
    Panel panel(&window);
    panel.setGeometry(100, 0, 100, 100);
    QImage halves(100, 100, QImage::Format_ARGB32_Premultiplied);
    halves.fill(Qt::black);
    QPainter(&halves).fillRect(50, 0, 50, 100, Qt::white);
    panel.background.set(QPixmap::fromImage(halves));
    window.show();
    DeviceScreen::instance()->resize(1440, 816);
    QCoreApplication::processEvents();
    const QImage shot = DeviceScreen::instance()->grab_output();
    QSet<QRgb> shades;
    for (int x = 430; x < 470; ++x)
        shades.insert(shot.pixel(x, 150));
    QVERIFY2(shades.size() > 2, "an edge between black and white has shades at three times its size");
}

void TstDeviceOutput::clicks_land_on_the_right_pixel_of_a_scaled_output()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(Qt::red, whole);
    window.show();
    screen->resize(1200, 544);
    QCoreApplication::processEvents();
    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(120 + 200, 100));
    QCOMPARE(window.log.filter("click"), QStringList{"click 100 50"});
}

void TstDeviceOutput::windows_outside_the_output_are_not_seen_in_the_margins()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(Qt::red, QRect(0, 0, 640, 480));
    window.show();
    screen->resize(480, 400);
    QCoreApplication::processEvents();
    const QImage host = screen->grab().toImage();
    QCOMPARE(at(host, 240, 63), QColor(Qt::black));
    QCOMPARE(at(host, 240, 64), QColor(Qt::red));
    QCOMPARE(at(host, 240, 336), QColor(Qt::black));
}

void TstDeviceOutput::the_tv_enlarges_the_host_window_and_the_lcd_restores_it()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->set_output(DeviceScreen::Output::Tv);
    QCOMPARE(screen->size(), QSize(640, 480));
    screen->set_output(DeviceScreen::Output::Lcd);
    QCOMPARE(screen->size(), QSize(480, 272));
    screen->resize(960, 544);
    screen->set_output(DeviceScreen::Output::Tv);
    QCOMPARE(screen->size(), QSize(1280, 960));
    screen->set_output(DeviceScreen::Output::Lcd);
    QCOMPARE(screen->size(), QSize(960, 544));
}

void TstDeviceOutput::a_resized_picture_calls_the_hook()
{
    int calls = 0;
    VideoPlane::instance().set_resize_hook([&] { ++calls; });
    DeviceScreen::instance()->resize(960, 544);
    QTRY_COMPARE(calls, 1);
    VideoPlane::instance().set_window(QRect(12, 64, 221, 126));
    QTRY_COMPARE(calls, 2);
    // Moved, not resized.
    VideoPlane::instance().set_window(QRect(13, 64, 221, 126));
    QCoreApplication::processEvents();
    QCOMPARE(calls, 2);
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb1 enable 0"));
    QCOMPARE(calls, 3);
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb1 enable 1"));
    QCOMPARE(calls, 4);
    VideoPlane::instance().set_resize_hook({});
    VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
    QCoreApplication::processEvents();
    QCOMPARE(calls, 4);
}

void TstDeviceOutput::nothing_is_rendered_for_a_hidden_or_minimised_display()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(480, 272));
    screen->showMinimized();
    QTRY_VERIFY(VideoPlane::instance().pixel_size().isEmpty());
    screen->showNormal();
    QTRY_COMPARE(VideoPlane::instance().pixel_size(), QSize(480, 272));
    screen->hide();
    QVERIFY(VideoPlane::instance().pixel_size().isEmpty());
    screen->show();
    QCOMPARE(VideoPlane::instance().pixel_size(), QSize(480, 272));
}

void TstDeviceOutput::nothing_is_repainted_while_nothing_changes()
{
    Scene scene;
    show_frame(QColor(Qt::white));
    DeviceScreen::instance()->grab_output();
    QCoreApplication::processEvents();
    PaintCounter viewport(DeviceScreen::instance()->viewport());
    const int paints = scene.main.paints;
    // The time is the subject: a display at rest paints nothing in any span of it.
    QTest::qWait(300);
    QCOMPARE(viewport.count, 0);
    QCOMPARE(scene.main.paints, paints);
    VideoPlane::instance().set_window(VideoPlane::instance().window());
    DeviceScreen::instance()->activate(&scene.beside);
    QTest::qWait(50);
    QCOMPARE(viewport.count, 0);
}

void TstDeviceOutput::a_frame_repaints_its_rectangle_only_and_no_window()
{
    Scene scene;
    VideoPlane::instance().set_window(QRect(100, 50, 221, 126));
    show_frame(QColor(Qt::white));
    DeviceScreen::instance()->grab_output();
    QCoreApplication::processEvents();
    PaintCounter viewport(DeviceScreen::instance()->viewport());
    PaintCounter controls(&scene.controls);
    const int paints = scene.main.paints;
    for (int i = 0; i < 5; ++i) {
        const int before = viewport.count;
        show_frame(QColor(i, i, i));
        QTRY_COMPARE(viewport.count, before + 1);
    }
    QCOMPARE(viewport.region, QRegion(100, 50, 221, 126));
    QCOMPARE(scene.main.paints, paints);
    QCOMPARE(controls.count, 0);
}

void TstDeviceOutput::a_window_repaints_itself_only()
{
    Scene scene;
    show_frame(QColor(Qt::white));
    DeviceScreen::instance()->grab_output();
    QCoreApplication::processEvents();
    PaintCounter viewport(DeviceScreen::instance()->viewport());
    const int paints = scene.beside.paints;
    scene.title.update(10, 5, 20, 10);
    QTRY_COMPARE(viewport.count, 1);
    // The toolkit repaints a margin of a few pixels around what changed.
    QVERIFY2(QRect(6, 1, 28, 18).contains(viewport.region.boundingRect()),
             qPrintable(QDebug::toString(viewport.region.boundingRect())));
    QCOMPARE(scene.beside.paints, paints);
}

void TstDeviceOutput::frames_that_come_faster_than_repaints_are_merged()
{
    show_frame(QColor(Qt::white));
    DeviceScreen::instance()->grab_output();
    QCoreApplication::processEvents();
    PaintCounter viewport(DeviceScreen::instance()->viewport());
    VideoPlane& plane = VideoPlane::instance();
    for (int i = 0; i < 100; ++i) {
        plane.begin_frame(plane.pixel_size()).fill(QColor(i, 0, 0));
        plane.end_frame();
    }
    QCoreApplication::processEvents();
    QTRY_COMPARE(viewport.count, 1);
    QCOMPARE(at(DeviceScreen::instance()->grab_output(), 5, 5), QColor(99, 0, 0));
}

TAVEL_TEST_MAIN(TstDeviceOutput)
#include "tst_device_output.moc"
