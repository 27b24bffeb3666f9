#include "rounds.h"
#include "test_main.h"
#include "track_text.h"

#include <ctime>
#include <random>

namespace
{

const std::atomic<bool> never = false;

constexpr const char* suffixes[] = {"smi", "srt", "ass", "ssa", "vtt", "sub"};

/// Damage of the kinds that copying, cutting and careless programs do.
QByteArray damaged(QByteArray bytes, std::mt19937& random)
{
    static constexpr const char* words[] = {
        "<!--", "-->", "<SYNC Start=", "<STYLE>",    "<P Class=",  "{",        "{\\",   "&#x",
        "\n\n", "1\n", " --> ",        "[Events]\n", "Dialogue: ", "WEBVTT\n", "{1}{1}"};
    const auto any = [&random](qsizetype limit) {
        return static_cast<qsizetype>(random() % static_cast<std::mt19937::result_type>(std::max<qsizetype>(limit, 1)));
    };
    for (int times = static_cast<int>(any(8)) + 1; times > 0; --times) {
        const qsizetype at = any(bytes.size());
        switch (any(6)) {
        case 0:
            if (!bytes.isEmpty())
                bytes[at] = static_cast<char>(any(256));
            break;
        case 1:
            bytes.remove(at, any(40));
            break;
        case 2:
            bytes.insert(at, bytes.mid(any(bytes.size()), any(200)));
            break;
        case 3:
            bytes.truncate(at);
            break;
        case 4:
            bytes.insert(at, words[any(std::size(words))]);
            break;
        default:
            bytes.insert(at, QByteArray(any(20), static_cast<char>(any(256))));
            break;
        }
    }
    return bytes;
}

bool is_in_order(const std::vector<SubtitleTrack>& tracks)
{
    return std::all_of(tracks.begin(), tracks.end(), [](const SubtitleTrack& track) {
        return !track.lines.empty() && std::is_sorted(track.lines.begin(), track.lines.end(), less_mag()) &&
               std::all_of(track.lines.begin(), track.lines.end(), [](const Subtitle& line) {
                   return line.start >= 1 && line.end >= line.start && !line.text.empty();
               });
    });
}

QByteArray repeated(const QByteArray& text, qsizetype size)
{
    QByteArray result;
    result.reserve(size + text.size());
    while (result.size() < size)
        result += text;
    return result;
}

} // namespace

class TstDamagedSubtitles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_directory;

    std::vector<SubtitleTrack> read(const QByteArray& content, const char* suffix)
    {
        const QString file = m_directory.filePath(QStringLiteral("film.") + QLatin1String(suffix));
        return write_content(file, content) ? read_subtitle_file(file, 25, never) : std::vector<SubtitleTrack>();
    }

private slots:
    void whatever_is_damaged_what_comes_out_is_in_order()
    {
        constexpr std::mt19937::result_type seed = 20240229;
        constexpr int rounds = test_support::rounds(20);
        std::mt19937 random(seed);
        const QDir fixtures(QStringLiteral(TAVEL_SUBTITLE_FIXTURES));
        int with_lines = 0;
        for (const QString& name : fixtures.entryList(QDir::Files, QDir::Name)) {
            if (name.endsWith(QLatin1String(".expected")))
                continue;
            const QByteArray content = content_of(fixtures.filePath(name)).left(20000);
            for (int round = 0; round < rounds; ++round) {
                const char* const suffix = suffixes[random() % std::size(suffixes)];
                const QByteArray bytes = damaged(content, random);
                const std::vector<SubtitleTrack> tracks = read(bytes, suffix);
                if (!is_in_order(tracks))
                    QFAIL(qPrintable(QStringLiteral("%1, round %2: %3")
                                         .arg(name)
                                         .arg(round)
                                         .arg(QString::fromLatin1(bytes.toPercentEncoding()))));
                with_lines += tracks.empty() ? 0 : 1;
            }
        }
        // The damage must leave most of them something to get wrong.
        QVERIFY(with_lines > 25 * rounds);
    }

    void binary_garbage_under_each_suffix_is_no_track()
    {
        std::mt19937 random(7);
        QByteArray garbage(1'000'000, Qt::Uninitialized);
        std::generate(garbage.begin(), garbage.end(), [&random] { return static_cast<char>(random()); });
        for (const char* const suffix : suffixes)
            QVERIFY2(read(garbage, suffix).empty(), suffix);
    }

    void text_made_of_openings_only_does_not_take_for_ever_data()
    {
        QTest::addColumn<QByteArray>("opening");
        for (const char* const opening :
             {"<!--", "<SYNC Start=1><STYLE>", "<SYNC Start=1><P Class=", "<", "<a", "&#", "&", "{", "{\\", "{\\p1",
              "\xb0", "\xec\x95", "\n1\n", "00:00:01,000 --> 00:00:02,000\n<", "00:00:01,000 --> 00:00:02,000\n1\n",
              "<SYNC Start=1>x<P Class=a>", "[0][1]", "{1}{1}", "Dialogue: 0,0:0:1,0:0:2,,,,,,,{"})
            QTest::newRow(opening) << QByteArray(opening);
    }

    void text_made_of_openings_only_does_not_take_for_ever()
    {
        QFETCH(const QByteArray, opening);
        // The quickest of quadratic readers would keep a processor busy for minutes; a second is usual for all of it.
        constexpr qsizetype size = test_support::rounds(2'000'000);
        const QByteArray content = "<SYNC Start=1>\n00:00:01,000 --> 00:00:02,000\n" + repeated(opening, size);
        const std::clock_t begin = std::clock();
        for (const char* const beginning : {"", "WEBVTT\n\n", "[Script Info]\nDialogue: 0,0:0:1,0:0:2,,,,,,,", "1\n"}) {
            read(beginning + content, "srt");
            read(beginning + content.mid(16), "srt");
        }
        const auto busy_ms = static_cast<int>((std::clock() - begin) / (CLOCKS_PER_SEC / 1000));
        QVERIFY2(busy_ms < test_support::stretched(60000), qPrintable(QString::number(busy_ms)));
    }

    void a_file_of_50_megabytes_is_read_whole()
    {
        QByteArray content = "<SAMI><BODY>\n";
        const QByteArray text =
            QTextCodec::codecForName("CP949")->fromUnicode(QStringLiteral("우리는 오늘 영화를 봅니다"));
        std::size_t lines = 0;
        for (; content.size() < 50'000'000; ++lines) {
            const auto start = static_cast<long long>(lines + 1) * 1000;
            content += "<SYNC Start=" + QByteArray::number(start) + "><P Class=KRCC>" + text +
                       "\n<SYNC Start=" + QByteArray::number(start + 500) + "><P Class=KRCC>&nbsp;\n";
        }
        const std::vector<SubtitleTrack> tracks = read(content, "smi");
        QCOMPARE(tracks.size(), std::size_t(1));
        QCOMPARE(tracks.front().lines.size(), lines);
        QCOMPARE(tracks.front().lines.back().start, static_cast<long long>(lines) * 1000);
        QCOMPARE(QByteArray::fromStdString(tracks.front().lines.back().text), text);
    }
};

TAVEL_TEST_MAIN(TstDamagedSubtitles)
#include "tst_damaged_subtitles.moc"
