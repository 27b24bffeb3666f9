#include "child_program.h"
#include "films.h"
#include "test_main.h"
#include "track_text.h"

namespace
{

struct Answer {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

Answer probe(const QStringList& arguments)
{
    QProcess process;
    ChildProgram::start_built(process, QStringLiteral(TAVEL_PROBE), arguments);
    if (!process.waitForFinished(test_support::stretched(30000)) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QString fixture(const char* name)
{
    return QStringLiteral(TAVEL_SUBTITLE_FIXTURES "/") + QLatin1String(name);
}

} // namespace

class TstTavelProbe : public QObject
{
    Q_OBJECT

private slots:
    void a_film_is_told_with_its_items_and_tracks()
    {
        QTemporaryDir directory;
        const QString film =
            test_films::copy(QStringLiteral("subtitles.mkv"), directory.path(), QStringLiteral("film.mkv"));
        QVERIFY(QFile::copy(fixture("two_classes_in_one_sync.smi"), directory.filePath(QStringLiteral("film.smi"))));
        const Answer answer = probe({film});
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.errors, QByteArray());
        for (const char* const line :
             {"container\tname\tMatroska\n", "container\tsubtitle_streams\t4\n", "video\twidth\t480\n",
              "subtitles\t1\tKRCC\t2 lines\n", "subtitles\t2\tENCC\t2 lines\n", "subtitles\t3\tkor\t2 lines\n"})
            QVERIFY2(answer.output.contains(line), answer.output.constData());
    }

    void a_track_is_told_line_by_line_in_utf8()
    {
        const Answer answer = probe({QStringLiteral("--subtitles"), QStringLiteral("1"), fixture("overrides.ass")});
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.output, QByteArray("1000\t2500\tOne, two\\nthree four\n5000\t6000\t한글, <tag>\\nsoft\n"));
        QCOMPARE(answer.errors, QByteArray());
    }

    void a_subtitle_file_alone_is_told_with_its_tracks()
    {
        const Answer answer = probe({fixture("two_classes_in_one_sync.smi")});
        QCOMPARE(answer.status, 0);
        QCOMPARE(answer.output, QByteArray("subtitles\t1\tKRCC\t2 lines\nsubtitles\t2\tENCC\t2 lines\n"));
    }

    void what_cannot_be_read_is_told_in_one_line_data()
    {
        QTest::addColumn<QStringList>("arguments");
        const QString track = QStringLiteral("--subtitles");
        const QString good = fixture("overrides.ass");
        QTest::newRow("nothing") << QStringList();
        QTest::newRow("no file") << QStringList{QStringLiteral("/nowhere/film.mkv")};
        QTest::newRow("a directory") << QStringList{QStringLiteral("/")};
        QTest::newRow("neither film nor subtitles") << QStringList{fixture("only_text.srt")};
        QTest::newRow("a text") << QStringList{fixture("plain.smi.expected")};
        QTest::newRow("no such track") << QStringList{track, QStringLiteral("2"), good};
        QTest::newRow("track 0") << QStringList{track, QStringLiteral("0"), good};
        QTest::newRow("track x") << QStringList{track, QStringLiteral("x"), good};
        QTest::newRow("too many words") << QStringList{good, good};
    }

    void what_cannot_be_read_is_told_in_one_line()
    {
        QFETCH(const QStringList, arguments);
        const Answer answer = probe(arguments);
        QCOMPARE(answer.status, 2);
        QCOMPARE(answer.output, QByteArray());
        QCOMPARE(answer.errors.count('\n'), 1);
    }
};

TAVEL_TEST_MAIN(TstTavelProbe)
#include "tst_tavel_probe.moc"
