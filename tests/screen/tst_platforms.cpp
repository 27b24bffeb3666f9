#include "child_program.h"
#include "device_screen.h"
#include "test_main.h"
#include "video_plane.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QProcess>
#include <QScreen>

#include <cstdio>
#include <cstring>

namespace
{

/// Shows a window over a frame on whatever platform the environment names, and prints what came of it, "name=value" a
/// line. With "tv" among the arguments the output goes to the TV and back afterwards.
int show_display(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.setGeometry(80, 104, 240, 272);
    window.setStyleSheet(QStringLiteral("background: red"));
    DeviceScreen* const screen = DeviceScreen::instance();
    window.show();
    QElapsedTimer clock;
    clock.start();
    while (VideoPlane::instance().pixel_size().isEmpty() && clock.elapsed() < test_support::stretched(5000))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    const auto print = [](const char* name, const QString& value) { std::printf("%s=%s\n", name, qPrintable(value)); };
    const auto print_size = [&](const char* name, QSize size) {
        print(name, QStringLiteral("%1x%2").arg(size.width()).arg(size.height()));
    };
    const auto print_display = [&](const char* prefix) {
        QCoreApplication::processEvents();
        const QByteArray name(prefix);
        print_size(name + "window", screen->size());
        print_size(name + "frame", VideoPlane::instance().pixel_size());
        VideoPlane& plane = VideoPlane::instance();
        plane.begin_frame(plane.pixel_size()).fill(QColor(0, 0, 255));
        plane.end_frame();
        QCoreApplication::processEvents();
        const QImage shot = screen->grab_output();
        print_size(name + "grab", shot.size());
        print(name + "left", shot.pixelColor(shot.width() / 4, shot.height() / 2).name());
        print(name + "right", shot.pixelColor(shot.width() - 1, shot.height() - 1).name());
        print(name + "full_screen", QString::number(screen->isFullScreen()));
        print(name + "x", QString::number(screen->geometry().x()));
    };
    print("platform", QGuiApplication::platformName());
    print("active", QString::number(window.isActiveWindow()));
    print_display("");
    if (argc > 2 && std::strcmp(argv[2], "tv") == 0) {
        screen->set_output(DeviceScreen::Output::Tv);
        screen->control(QStringLiteral("/dev/fb1 size 640 480"));
        VideoPlane::instance().set_window(QRect(0, 0, 640, 480));
        print_display("tv_");
        screen->set_output(DeviceScreen::Output::Lcd);
        VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
        print_display("lcd_");
    }
    return 0;
}

using Report = QMap<QByteArray, QByteArray>;

/// Runs show_display() in a process of its own. An empty report means that it did not end well.
Report report_of(const QString& platform, const QStringList& arguments = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    process.setProcessEnvironment(environment);
    ChildProgram::start_built(process, QCoreApplication::applicationFilePath(),
                              QStringList{QStringLiteral("--display")} + arguments);
    if (!process.waitForFinished(test_support::stretched(30'000)) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0) {
        process.kill();
        process.waitForFinished();
        qWarning("%s: %s", qPrintable(platform), process.readAllStandardError().constData());
        return {};
    }
    Report report;
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    for (const QByteArray& line : lines)
        report.insert(line.left(line.indexOf('=')), line.mid(line.indexOf('=') + 1));
    return report;
}

bool has_plugin(const char* name)
{
    return QFile::exists(QLibraryInfo::path(QLibraryInfo::PluginsPath) +
                         QStringLiteral("/platforms/libq%1.so").arg(QLatin1StringView(name)));
}

} // namespace

/// The display on the toolkit's platforms, a process each.
class TstPlatforms : public QObject
{
    Q_OBJECT

private slots:
    void the_display_is_a_window_where_there_is_a_window_system_data();
    void the_display_is_a_window_where_there_is_a_window_system();
    void the_display_fills_a_vnc_screen();
    void the_display_fills_a_bare_frame_buffer();
    void the_tv_takes_the_second_screen_and_gives_it_back();
    void a_high_density_screen_is_used_pixel_by_pixel();

private:
    QString screens(const QByteArray& json);
    QTemporaryDir m_directory;
};

QString TstPlatforms::screens(const QByteArray& json)
{
    QFile file(m_directory.filePath(QStringLiteral("screens.json")));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(json);
    return QStringLiteral("offscreen:configfile=") + file.fileName();
}

void TstPlatforms::the_display_is_a_window_where_there_is_a_window_system_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("offscreen") << "offscreen";
    QTest::newRow("minimal") << "minimal";
}

void TstPlatforms::the_display_is_a_window_where_there_is_a_window_system()
{
    QFETCH(QString, platform);
    if (!has_plugin(qPrintable(platform)))
        QSKIP("the toolkit's plugin for this platform is not installed");
    const Report report = report_of(platform);
    QCOMPARE(report["platform"], platform.toLatin1());
    QCOMPARE(report["window"], QByteArray("480x272"));
    QCOMPARE(report["full_screen"], QByteArray("0"));
    QCOMPARE(report["frame"], QByteArray("480x272"));
    QCOMPARE(report["grab"], QByteArray("480x272"));
    QCOMPARE(report["left"], QByteArray("#ff0000"));
    QCOMPARE(report["right"], QByteArray("#0000ff"));
    QCOMPARE(report["active"], QByteArray("1"));
}

void TstPlatforms::the_display_fills_a_vnc_screen()
{
    if (!has_plugin("vnc"))
        QSKIP("the toolkit's VNC plugin is not installed");
    const qint64 port = 20'000 + QCoreApplication::applicationPid() % 20'000;
    const Report report = report_of(QStringLiteral("vnc:size=1024x600:port=%1").arg(port), {QStringLiteral("tv")});
    QCOMPARE(report["platform"], QByteArray("vnc"));
    QCOMPARE(report["full_screen"], QByteArray("1"));
    QCOMPARE(report["window"], QByteArray("1024x600"));
    QCOMPARE(report["frame"], QByteArray("1024x580"));
    QCOMPARE(report["left"], QByteArray("#ff0000"));
    QCOMPARE(report["right"], QByteArray("#0000ff"));
    QCOMPARE(report["tv_window"], QByteArray("1024x600"));
    QCOMPARE(report["tv_frame"], QByteArray("800x600"));
    QCOMPARE(report["lcd_frame"], QByteArray("1024x580"));
}

void TstPlatforms::the_display_fills_a_bare_frame_buffer()
{
    if (!has_plugin("linuxfb"))
        QSKIP("the toolkit's frame-buffer plugin is not installed");
    if (!QFileInfo(QStringLiteral("/dev/fb0")).isWritable())
        QSKIP("this machine has no frame buffer that we may write to");
    const Report report = report_of(QStringLiteral("linuxfb"));
    QCOMPARE(report["full_screen"], QByteArray("1"));
    QCOMPARE(report["left"], QByteArray("#ff0000"));
    QCOMPARE(report["right"], QByteArray("#0000ff"));
}

void TstPlatforms::the_tv_takes_the_second_screen_and_gives_it_back()
{
    const Report report = report_of(screens(R"({"screens": [
            {"name": "desk", "x": 0, "y": 0, "width": 1280, "height": 1024},
            {"name": "tv", "x": 1280, "y": 0, "width": 1920, "height": 1080}]})"),
                                    {QStringLiteral("tv")});
    QCOMPARE(report["window"], QByteArray("480x272"));
    QCOMPARE(report["tv_full_screen"], QByteArray("1"));
    QCOMPARE(report["tv_x"], QByteArray("1280"));
    QCOMPARE(report["tv_window"], QByteArray("1920x1080"));
    QCOMPARE(report["tv_frame"], QByteArray("1440x1080"));
    QCOMPARE(report["tv_grab"], QByteArray("1440x1080"));
    QCOMPARE(report["lcd_full_screen"], QByteArray("0"));
    QCOMPARE(report["lcd_x"], report["x"]);
    QCOMPARE(report["lcd_window"], QByteArray("480x272"));
    QCOMPARE(report["lcd_frame"], QByteArray("480x272"));
}

void TstPlatforms::a_high_density_screen_is_used_pixel_by_pixel()
{
    const Report report =
        report_of(screens(R"({"screens": [{"name": "desk", "width": 1280, "height": 1024, "dpr": 2}]})"));
    QCOMPARE(report["window"], QByteArray("480x272"));
    QCOMPARE(report["frame"], QByteArray("960x544"));
    QCOMPARE(report["grab"], QByteArray("960x544"));
    QCOMPARE(report["left"], QByteArray("#ff0000"));
    QCOMPARE(report["right"], QByteArray("#0000ff"));
}

int main(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--display") == 0)
        return show_display(argc, argv);
    test_support::prepare_process();
    QCoreApplication application(argc, argv);
    TstPlatforms test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_platforms.moc"
