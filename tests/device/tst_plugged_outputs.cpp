#include "plugged_outputs.h"
#include "test_main.h"

/// What is plugged in, on files like the kernel's.
class TestPluggedOutputs : public QObject
{
    Q_OBJECT

private:
    static void write(const QString& path, const QByteArray& bytes)
    {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

private slots:
    void connected_displays_are_counted()
    {
        const QTemporaryDir directory;
        const auto connector = [&](const char* name, const QByteArray& status) {
            write(directory.filePath(QStringLiteral("class/drm/%1/status").arg(QLatin1String(name))), status);
        };
        const PluggedOutputs outputs(directory.path(), directory.path());
        QCOMPARE(outputs.connected_displays(), 0);
        connector("card0-eDP-1", "connected\n");
        connector("card0-HDMI-A-1", "disconnected\n");
        connector("card0-DP-1", "unknown\n");
        connector("version", "connected\n");
        QCOMPARE(outputs.connected_displays(), 1);
        connector("card0-HDMI-A-1", "connected\n");
        QCOMPARE(outputs.connected_displays(), 2);
    }

    void a_digital_output_is_found_in_the_list_of_sound_devices_data()
    {
        QTest::addColumn<QByteArray>("list");
        QTest::addColumn<bool>("digital");
        QTest::newRow("no list") << QByteArray() << false;
        QTest::newRow("analog only") << QByteArray("00-00: ALC257 Analog : ALC257 Analog : playback 1 : capture 1\n")
                                     << false;
        QTest::newRow("HDMI")
            << QByteArray("00-00: ALC257 Analog : ALC257 Analog : playback 1\n00-03: HDMI 0 : HDMI 0 : playback 1\n")
            << true;
        QTest::newRow("IEC958") << QByteArray("01-01: USB Audio : IEC958 : playback 1\n") << true;
        QTest::newRow("S/PDIF") << QByteArray("00-01: ALC S/PDIF : out : playback 1\n") << true;
        QTest::newRow("digital input") << QByteArray("00-01: ALC Digital : in : capture 1\n") << false;
    }

    void a_digital_output_is_found_in_the_list_of_sound_devices()
    {
        QFETCH(QByteArray, list);
        QFETCH(bool, digital);
        const QTemporaryDir directory;
        if (!list.isEmpty())
            write(directory.filePath(QStringLiteral("asound/pcm")), list);
        QCOMPARE(PluggedOutputs(directory.path(), directory.path()).has_digital_sound(), digital);
    }

    void the_environment_answers_yes_no_or_nothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("answer");
        for (const char* yes : {"1", "yes", "on", "true", " YES "})
            QTest::newRow(yes) << QByteArray(yes) << 1;
        for (const char* no : {"0", "no", "off", "false"})
            QTest::newRow(no) << QByteArray(no) << 0;
        for (const char* nothing : {"", "2", "maybe"})
            QTest::newRow(nothing) << QByteArray(nothing) << -1;
    }

    void the_environment_answers_yes_no_or_nothing()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, answer);
        qputenv("TAVEL_TEST_ANSWER", text);
        const auto result = PluggedOutputs::environment_answer("TAVEL_TEST_ANSWER");
        QCOMPARE(result ? int(*result) : -1, answer);
        qunsetenv("TAVEL_TEST_ANSWER");
        QVERIFY(!PluggedOutputs::environment_answer("TAVEL_TEST_ANSWER"));
    }
};

TAVEL_TEST_MAIN(TestPluggedOutputs)
#include "tst_plugged_outputs.moc"
