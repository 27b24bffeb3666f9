#include "host_screen.h"
#include "test_main.h"

/// Which of the toolkit's platforms gives the player a window, a remote screen or the machine's displays.
class TstHostScreen : public QObject
{
    Q_OBJECT

private slots:
    void each_platform_gives_its_kind_of_screen_data();
    void each_platform_gives_its_kind_of_screen();
};

void TstHostScreen::each_platform_gives_its_kind_of_screen_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<HostScreen>("screen");
    for (const char* platform : {"xcb", "wayland", "wayland-egl", "offscreen", "minimal", "", "unknown"})
        QTest::addRow("%s", *platform ? platform : "none") << QString::fromLatin1(platform) << HostScreen::Windowed;
    for (const char* platform : {"linuxfb", "eglfs", "minimalegl", "vkkhrdisplay", "directfb"})
        QTest::newRow(platform) << QString::fromLatin1(platform) << HostScreen::Displays;
    QTest::newRow("vnc") << QStringLiteral("vnc") << HostScreen::Remote;
}

void TstHostScreen::each_platform_gives_its_kind_of_screen()
{
    QFETCH(QString, platform);
    QFETCH(HostScreen, screen);
    QCOMPARE(host_screen(platform), screen);
}

TAVEL_TEST_MAIN(TstHostScreen)
#include "tst_host_screen.moc"
