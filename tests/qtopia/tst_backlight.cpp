#include "backlight.h"
#include "test_main.h"

/// The display's brightness, on a directory like the kernel's.
class TestBacklight : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> directory_;

    void add_device(const QString& name, const QByteArray& type, const QByteArray& most)
    {
        QVERIFY(QDir(directory_->path()).mkpath(name));
        write(name + QStringLiteral("/type"), type + '\n');
        write(name + QStringLiteral("/max_brightness"), most + '\n');
        write(name + QStringLiteral("/brightness"), "1\n");
    }
    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(directory_->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray brightness(const QString& device)
    {
        QFile file(directory_->filePath(device + QStringLiteral("/brightness")));
        return file.open(QIODevice::ReadOnly) ? file.readLine().trimmed() : QByteArray();
    }

private slots:
    void init() { directory_ = std::make_unique<QTemporaryDir>(); }

    void levels_are_scaled_to_the_device_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QByteArray>("most");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("full") << 255 << QByteArray("96000") << QByteArray("96000");
        QTest::newRow("off") << 0 << QByteArray("96000") << QByteArray("0");
        QTest::newRow("half") << 128 << QByteArray("15") << QByteArray("8");
        QTest::newRow("above full") << 1000 << QByteArray("15") << QByteArray("15");
        QTest::newRow("below nothing") << -3 << QByteArray("15") << QByteArray("0");
        QTest::newRow("a very fine device") << 255 << QByteArray("2147483647") << QByteArray("2147483647");
    }

    void levels_are_scaled_to_the_device()
    {
        QFETCH(int, level);
        QFETCH(QByteArray, most);
        QFETCH(QByteArray, value);
        add_device(QStringLiteral("panel"), "raw", most);
        QVERIFY(Backlight(directory_->path()).set(level));
        QCOMPARE(brightness(QStringLiteral("panel")), value);
    }

    void the_most_trusted_device_is_used()
    {
        add_device(QStringLiteral("a_raw"), "raw", "15");
        add_device(QStringLiteral("b_firmware"), "firmware", "15");
        add_device(QStringLiteral("c_platform"), "platform", "15");
        QVERIFY(Backlight(directory_->path()).set(255));
        QCOMPARE(brightness(QStringLiteral("b_firmware")), QByteArray("15"));
        QCOMPARE(brightness(QStringLiteral("a_raw")), QByteArray("1"));
        QCOMPARE(brightness(QStringLiteral("c_platform")), QByteArray("1"));
    }

    void without_a_usable_device_nothing_happens()
    {
        QVERIFY(!Backlight(directory_->path()).set(255));
        QVERIFY(!Backlight(directory_->filePath(QStringLiteral("none"))).set(255));
        add_device(QStringLiteral("broken"), "raw", "much");
        QVERIFY(!Backlight(directory_->path()).set(255));
        add_device(QStringLiteral("zero"), "firmware", "0");
        QVERIFY(!Backlight(directory_->path()).set(255));
        QCOMPARE(brightness(QStringLiteral("broken")), QByteArray("1"));
    }
};

TAVEL_TEST_MAIN(TestBacklight)
#include "tst_backlight.moc"
