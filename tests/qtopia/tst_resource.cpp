#include "qpe_application.h"
#include "resource.h"
#include "test_main.h"

/// Pictures by name.
class TestResource : public QObject
{
    Q_OBJECT

private:
    static void make_picture(const QString& name, QRgb colour)
    {
        const QString path = QPEApplication::qpeDir() + QStringLiteral("pics/") + name;
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QImage image(4, 3, QImage::Format_ARGB32);
        image.fill(colour);
        QVERIFY(image.save(path));
    }

private slots:
    void init() { test_support::reset_directories(); }

    void a_picture_is_found_with_and_without_its_suffix()
    {
        make_picture(QStringLiteral("tavel_video/DIC/search_bt.png"), qRgba(1, 2, 3, 128));
        for (const char* name : {"tavel_video/DIC/search_bt.png", "tavel_video/DIC/search_bt"}) {
            const QImage image = Resource::loadImage(QString::fromLatin1(name));
            QCOMPARE(image.size(), QSize(4, 3));
            QCOMPARE(image.pixel(0, 0), qRgba(1, 2, 3, 128));
            QCOMPARE(Resource::loadPixmap(QString::fromLatin1(name)).size(), QSize(4, 3));
        }
    }

    void the_exact_name_comes_before_a_suffix_and_png_before_others()
    {
        make_picture(QStringLiteral("a.bmp"), qRgb(1, 0, 0));
        make_picture(QStringLiteral("a.png"), qRgb(2, 0, 0));
        QCOMPARE(qRed(Resource::loadImage(QStringLiteral("a")).pixel(0, 0)), 2);
        QCOMPARE(qRed(Resource::loadImage(QStringLiteral("a.bmp")).pixel(0, 0)), 1);
    }

    void what_is_not_there_or_no_picture_is_null_and_said_once()
    {
        make_picture(QStringLiteral("good.png"), 0);
        QFile broken(QPEApplication::qpeDir() + QStringLiteral("pics/broken.png"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("no picture");
        broken.close();
        QTest::ignoreMessage(QtWarningMsg, "picture \"missing\": not found");
        QTest::ignoreMessage(QtWarningMsg, "picture \"broken\": cannot be read");
        QTest::ignoreMessage(QtWarningMsg, "picture \"\": not found");
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(Resource::loadImage(QStringLiteral("missing")).isNull());
            QVERIFY(Resource::loadPixmap(QStringLiteral("broken")).isNull());
            QVERIFY(Resource::loadImage(QString()).isNull());
        }
        QVERIFY(Resource::findPixmap(QStringLiteral("missing")).isEmpty());
    }
};

TAVEL_TEST_MAIN(TestResource)
#include "tst_resource.moc"
