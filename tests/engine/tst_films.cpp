#include "films.h"
#include "test_main.h"

#include <QFileInfo>
#include <QProcess>

class TstFilms : public QObject
{
    Q_OBJECT

private slots:
    void every_film_can_be_made_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString& name : test_films::names())
            QTest::newRow(qPrintable(name)) << name;
    }

    void every_film_can_be_made()
    {
        QFETCH(QString, name);
        QVERIFY(QFileInfo(test_films::path(name)).size() > 100);
    }

    void the_bars_spell_the_number_of_the_frame()
    {
        QTemporaryDir directory;
        QProcess ffmpeg;
        const QString picture = directory.filePath(QStringLiteral("frame.png"));
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), test_films::path("h264.mp4"),
                      QStringLiteral("-vf"), QStringLiteral("select=eq(n\\,117)"), QStringLiteral("-frames:v"),
                      QStringLiteral("1"), picture});
        QVERIFY(ffmpeg.waitForFinished());
        QCOMPARE(test_films::frame_number(QImage(picture)), 117);
        QCOMPARE(test_films::frame_number(QImage(picture).scaled(160, 90)), 117);
    }
};

TAVEL_TEST_MAIN(TstFilms)
#include "tst_films.moc"
