#include "audio_device.h"
#include "cfbio.h"
#include "device_screen.h"
#include "sound_output.h"
#include "test_main.h"
#include "tolmi2c.h"

namespace
{

std::vector<int> engine_volumes;

} // namespace

// Stands for the engine's.
void set_application_volume(unsigned char volume)
{
    engine_volumes.push_back(volume);
}

/// The device's controls: frame buffers, screen controller, volume.
class TestDevice : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        engine_volumes.clear();
        qunsetenv("TAVEL_TV");
        qunsetenv("TAVEL_DIGITAL_OUT");
    }
    void cleanup()
    {
        CFbio::set_recorder({});
        TolmI2c::set_recorder({});
        audio_device_set_recorder({});
    }

    void a_frame_buffer_string_reaches_the_screen_and_the_recorder()
    {
        QList<QByteArray> strings;
        CFbio::set_recorder([&](const QByteArray& text) { strings.append(text); });
        CFbio frame_buffers;
        QVERIFY(frame_buffers.control("/dev/fb1 size 640 480"));
        QCOMPARE(DeviceScreen::instance()->frame_buffer(1).size, QSize(640, 480));
        QVERIFY(frame_buffers.control("/dev/fb1 size 480 272"));
        QCOMPARE(DeviceScreen::instance()->frame_buffer(1).size, QSize(480, 272));
        QCOMPARE(strings, (QList<QByteArray>{"/dev/fb1 size 640 480", "/dev/fb1 size 480 272"}));
    }

    void a_string_that_is_not_understood_is_refused()
    {
        CFbio frame_buffers;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(".")));
        QVERIFY(!frame_buffers.control("/dev/fb1 size large"));
        QCOMPARE(DeviceScreen::instance()->frame_buffer(1).size, QSize(480, 272));
    }

    void the_screen_controller_switches_the_output()
    {
        QList<QByteArray> operations;
        TolmI2c::set_recorder([&](const char* operation) { operations.append(operation); });
        TolmI2c controller;
        controller.V28_ScreenSetTvMode();
        QCOMPARE(DeviceScreen::instance()->output(), DeviceScreen::Output::Tv);
        controller.V28_ScreenSetLcdMode();
        QCOMPARE(DeviceScreen::instance()->output(), DeviceScreen::Output::Lcd);
        controller.V28_ReadProcFile_ScreenStatus();
        controller.Is24PinConnect();
        QCOMPARE(operations, (QList<QByteArray>{"V28_ScreenSetTvMode", "V28_ScreenSetLcdMode",
                                                "V28_ReadProcFile_ScreenStatus", "Is24PinConnect"}));
    }

    void a_desk_does_not_start_on_the_tv_unless_the_environment_says_so()
    {
        const TolmI2c controller;
        QCOMPARE(controller.V28_ReadProcFile_ScreenStatus(), 0);
        qputenv("TAVEL_TV", "1");
        QVERIFY(controller.V28_ReadProcFile_ScreenStatus() > 0);
        qputenv("TAVEL_TV", "0");
        QCOMPARE(controller.V28_ReadProcFile_ScreenStatus(), 0);
    }

    void the_environment_decides_about_the_digital_output()
    {
        const TolmI2c controller;
        qputenv("TAVEL_DIGITAL_OUT", "1");
        QVERIFY(controller.Is24PinConnect() > 0);
        qputenv("TAVEL_DIGITAL_OUT", "0");
        QVERIFY(controller.Is24PinConnect() < 1);
    }

    void the_volume_reaches_the_engine_in_its_range()
    {
        std::vector<int> recorded;
        audio_device_set_recorder([&](unsigned char volume) { recorded.push_back(volume); });
        for (const int volume : {0, 1, 20, 40, 41, 255})
            audio_device_set_appvolume(static_cast<unsigned char>(volume));
        QCOMPARE(engine_volumes, (std::vector<int>{0, 1, 20, 40, 40, 40}));
        QCOMPARE(recorded, (std::vector<int>{0, 1, 20, 40, 41, 255}));
    }
};

TAVEL_TEST_MAIN(TestDevice)
#include "tst_device.moc"
