#include "bench.h"
#include "test_main.h"

using namespace std::chrono_literals;

namespace
{

/// The ways in which a film is damaged; each seed takes one or several.
QByteArray damage(QByteArray film, quint32 seed)
{
    QRandomGenerator random(seed);
    const auto anywhere = [&] { return static_cast<qsizetype>(random.bounded(static_cast<quint32>(film.size()))); };
    const quint32 kinds = 1 + random.bounded(31U);
    if (kinds & 1U) { // single bytes, most of them in the headers
        for (int count = static_cast<int>(1 + random.bounded(200U)); count > 0; --count) {
            const qsizetype place = random.bounded(2U) ? anywhere() : anywhere() % 4096 % film.size();
            film[place] = static_cast<char>(random.bounded(256U));
        }
    }
    if (kinds & 2U) { // a block of noise
        const qsizetype place = anywhere();
        for (qsizetype index = place; index < std::min(film.size(), place + 5000); ++index)
            film[index] = static_cast<char>(random.bounded(256U));
    }
    if (kinds & 4U) { // a block twice
        const qsizetype place = anywhere();
        film.insert(anywhere(), film.mid(place, 20000));
    }
    if (kinds & 8U) { // a block missing
        const qsizetype place = anywhere();
        film.remove(place, 1 + static_cast<qsizetype>(random.bounded(30000U)));
    }
    if ((kinds & 16U) && film.size() > 2) // the end missing
        film.truncate(std::max<qsizetype>(1, anywhere()));
    return film;
}

} // namespace

/// Damaged films: nothing crashes, nothing hangs, and what happens is an error or playback. TAVEL_DAMAGED_FILMS chooses
/// how many (1000 before a release), TAVEL_DAMAGED_FIRST the first seed.
class TstDamagedFilms : public QObject
{
    Q_OBJECT

private slots:
    void a_damaged_film_neither_crashes_nor_hangs()
    {
        const QStringList films = {QStringLiteral("h264.mp4"),      QStringLiteral("h264.mkv"),
                                   QStringLiteral("h264.ts"),       QStringLiteral("mpeg4.avi"),
                                   QStringLiteral("wmv2.asf"),      QStringLiteral("mpeg1.mpg"),
                                   QStringLiteral("vp9.webm"),      QStringLiteral("theora.ogg"),
                                   QStringLiteral("subtitles.mkv"), QStringLiteral("wmv1.wmv")};
        QTemporaryDir directory;
        Bench bench;
        const int count = chosen("TAVEL_DAMAGED_FILMS", 40);
        const int first = chosen("TAVEL_DAMAGED_FIRST", 1);
        int played = 0;
        for (int seed = first; seed < first + count; ++seed) {
            const QString name = films[seed % films.size()];
            QFile whole(test_films::path(name));
            QVERIFY(whole.open(QIODevice::ReadOnly));
            const QString path = directory.filePath(QStringLiteral("damaged_") + name);
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(damage(whole.readAll(), static_cast<quint32>(seed)));
            file.close();

            QElapsedTimer clock;
            clock.start();
            bench.recorder.clear();
            if (bench.load(path)) {
                QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("state 2")}));
                QCOMPARE(bench.player.play(), rask::ok);
                while (bench.player.set_speed(0) == rask::ok) {
                }
                // Some play, some end at once, some stand still: whatever they do in two seconds of film.
                bench.recorder.wait_for_position([](Time position) { return position >= 2000; }, 1s);
                bench.recorder.clear();
                const Time half = bench.player.get_info("video", "time").toLongLong() / 2;
                if (bench.player.seek(SeekMode::Forward, half) == rask::ok)
                    QVERIFY2(bench.recorder.wait_for_reports(1, 6s), qPrintable(QString::number(seed)));
                ++played;
            }
            QCOMPARE(bench.player.close(), rask::ok);
            QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(seed)));
        }
        QVERIFY(played > count / 4);
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }
};

TAVEL_TEST_MAIN(TstDamagedFilms)
#include "tst_damaged_films.moc"
