#include "films.h"
#include "subtitles/subtitle_encoding.h"
#include "subtitles/subtitle_files.h"
#include "subtitles/timed_text.h"
#include "test_main.h"
#include "track_text.h"

namespace
{

const std::atomic<bool> never = false;

/// Frame counting fixtures without a rate of their own are ten frames a second.
constexpr double frame_rate = 10;

QByteArray cue(const QByteArray& text)
{
    return "1\n00:00:01,000 --> 00:00:02,000\n" + text + "\n";
}

/// A directory with files of one cue each, its text the file's name.
class Shelf
{
public:
    explicit Shelf(const QStringList& names)
    {
        for (const QString& name : names) {
            if (!write_content(m_directory.filePath(name), cue(name.toUtf8())))
                qFatal("cannot write %s", qPrintable(name));
        }
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }

    QStringList files_of(const QString& film) const
    {
        QStringList names;
        for (const QString& file : subtitle_files_of(path(film)))
            names += QFileInfo(file).fileName();
        return names;
    }

private:
    QTemporaryDir m_directory;
};

QByteArray encoded(const QString& text, SubtitleEncoding encoding)
{
    return encoding == SubtitleEncoding::Utf8 ? text.toUtf8() : QTextCodec::codecForName("CP949")->fromUnicode(text);
}

void make_film(const QStringList& arguments, const QString& film)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), QStringList{"-v", "error", "-y"} + arguments + QStringList{film});
    QVERIFY(ffmpeg.waitForFinished(test_support::stretched(30000)));
    QVERIFY2(ffmpeg.exitCode() == 0, ffmpeg.readAllStandardError().constData());
}

} // namespace

class TstSubtitleReader : public QObject
{
    Q_OBJECT

private slots:
    void each_fixture_reads_as_expected_data()
    {
        QTest::addColumn<QString>("file");
        const QDir fixtures(QStringLiteral(TAVEL_SUBTITLE_FIXTURES));
        const QStringList names = fixtures.entryList({QStringLiteral("*.expected")}, QDir::Files, QDir::Name);
        QVERIFY(names.size() >= 40);
        for (const QString& name : names)
            QTest::newRow(qPrintable(name)) << fixtures.filePath(name.chopped(9));
    }

    void each_fixture_reads_as_expected()
    {
        QFETCH(const QString, file);
        const QByteArray read = track_text(read_subtitle_file(file, frame_rate, never));
        const QByteArray expected = content_of(file + QStringLiteral(".expected"));
        QCOMPARE(read, expected);
    }

    void any_damaged_byte_costs_its_character_alone_even_in_two_lines_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<SubtitleEncoding>("encoding");
        for (const char* const text :
             {"네.\n뭐?\n", "안녕하세요\n반갑습니다\n", "사랑해요, 엄마.\n나도 사랑한다\n",
              "우리는 오늘 밤 영화를 보러 갑니다. 정말?\n고맙습니다, 여러분!\n",
              "그 사람이 어디로 갔는지 알아요?\n글쎄, 잘 모르겠는데\n",
              "빨리 도망쳐, 괴물이 온다\n꽉 잡아 떨어지지 않게\n", "똠방각하 펲시 햏햏\n뷁 쀍\n",
              "FBI 요원 John은 LA로 갔다\nOK, 알았어 Bob\n", "제1화 시작\n2009년 3월\n",
              "뭐라고요? 그럴 리가 없어요. 그 아이는 죽었다고요!\n진정하세요, 부인\n"}) {
            QTest::addRow("cp949: %s", text) << QString::fromUtf8(text) << SubtitleEncoding::Cp949;
            QTest::addRow("utf-8: %s", text) << QString::fromUtf8(text) << SubtitleEncoding::Utf8;
        }
    }

    void any_damaged_byte_costs_its_character_alone_even_in_two_lines()
    {
        QFETCH(const QString, text);
        QFETCH(const SubtitleEncoding, encoding);
        for (qsizetype index = 0; index < text.size(); ++index) {
            const QString before = text.first(index);
            const QString behind = text.sliced(index + 1);
            const QByteArray character = encoded(text.mid(index, 1), encoding);
            if (character.size() == 1)
                continue;
            for (qsizetype place = 0; place < character.size(); ++place) {
                for (int damage = 0; damage < 256; ++damage) {
                    QByteArray damaged = character;
                    damaged[place] = static_cast<char>(damage);
                    // Those end lines, so that what stands behind them is another text.
                    if (damage == '\n' || damage == '\r')
                        continue;
                    const QByteArray bytes = encoded(before, encoding) + damaged + encoded(behind, encoding);
                    QCOMPARE(guess_encoding(bytes), encoding);
                    const QString read = decode_guessed(bytes);
                    const bool rest_is_whole = read.startsWith(before) && read.endsWith(behind) &&
                                               read.size() >= before.size() + behind.size();
                    QVERIFY2(rest_is_whole, qPrintable(QString::number(damage, 16) + u' ' + read));
                }
            }
        }
    }

    void every_hangul_syllable_is_read_from_cp949()
    {
        QString text;
        for (char16_t syllable = 0xAC00; syllable <= 0xD7A3; ++syllable) {
            text += QChar(syllable);
            if (syllable % 16 == 0)
                text += u'\n';
        }
        const QByteArray bytes = QTextCodec::codecForName("CP949")->fromUnicode(text);
        QCOMPARE(guess_encoding(bytes), SubtitleEncoding::Cp949);
        QCOMPARE(decode_guessed(bytes), text);
    }

    void a_syllable_alone_in_a_file_is_enough()
    {
        for (char16_t syllable = 0xAC00; syllable <= 0xD7A3; ++syllable) {
            const QString text = QStringLiteral("1\n00:00:01,000 --> 00:00:02,000\n<i>%1!</i>\n").arg(QChar(syllable));
            QCOMPARE(decode_guessed(encoded(text, SubtitleEncoding::Cp949)), text);
            QCOMPARE(decode_guessed(encoded(text, SubtitleEncoding::Utf8)), text);
        }
    }

    void a_few_accented_letters_are_not_taken_for_hangul()
    {
        for (const char* const words : {"È vero. C'è.", "à la carte", "Más o menos, ¿sí?", "Å, nei!", "Ö! Vad?",
                                        "Ah, ó Maria", "déjà vu", "où?", "À bientôt", "It costs £50.", "£50?", "20 °C",
                                        "Ő jött, nem én", "Ça va ? « Oui »", "Łódź", "İyi günler"}) {
            const QString text = QStringLiteral("1\n00:00:01,000 --> 00:00:02,000\n") + QString::fromUtf8(words);
            QCOMPARE(decode_guessed(text.toUtf8()), text);
        }
    }

    void files_of_a_film_have_its_name_and_any_suffix_in_any_case()
    {
        const Shelf shelf({QStringLiteral("film.mkv"), QStringLiteral("film.SMI"), QStringLiteral("film.Srt"),
                           QStringLiteral("film.ass"), QStringLiteral("film.ssa"), QStringLiteral("film.vtt"),
                           QStringLiteral("film.sub"), QStringLiteral("film.txt"), QStringLiteral("film.srt.bak")});
        QCOMPARE(shelf.files_of(QStringLiteral("film.mkv")),
                 QStringList({QStringLiteral("film.SMI"), QStringLiteral("film.Srt"), QStringLiteral("film.ass"),
                              QStringLiteral("film.ssa"), QStringLiteral("film.vtt"), QStringLiteral("film.sub")}));
    }

    void files_with_a_language_between_come_after_the_very_name()
    {
        const Shelf shelf({QStringLiteral("film.mkv"), QStringLiteral("film.ko.srt"), QStringLiteral("film.srt"),
                           QStringLiteral("film.pt-BR.smi"), QStringLiteral("film.eng.forced.srt")});
        QCOMPARE(shelf.files_of(QStringLiteral("film.mkv")),
                 QStringList({QStringLiteral("film.srt"), QStringLiteral("film.pt-BR.smi"),
                              QStringLiteral("film.eng.forced.srt"), QStringLiteral("film.ko.srt")}));
    }

    void another_films_files_are_left_alone()
    {
        const Shelf shelf({QStringLiteral("film.mkv"), QStringLiteral("film 2.srt"), QStringLiteral("film.2.srt"),
                           QStringLiteral("film2.srt"), QStringLiteral("film.part2.srt"), QStringLiteral("Film.srt"),
                           QStringLiteral("film.ko.mkv"), QStringLiteral("film.ko.srt"), QStringLiteral("other.srt"),
                           QStringLiteral(".srt"), QStringLiteral("fil.srt")});
        QCOMPARE(shelf.files_of(QStringLiteral("film.mkv")), QStringList());
        QCOMPARE(shelf.files_of(QStringLiteral("film.ko.mkv")), QStringList({QStringLiteral("film.ko.srt")}));
    }

    void what_lies_beside_subtitles_under_their_name_is_no_other_film()
    {
        const Shelf shelf({QStringLiteral("film.mkv"), QStringLiteral("film.ko.smi"), QStringLiteral("film.ko.NFO"),
                           QStringLiteral("film.ko.idx"), QStringLiteral("film.ko.smi.bak")});
        QCOMPARE(shelf.files_of(QStringLiteral("film.mkv")), QStringList({QStringLiteral("film.ko.smi")}));
    }

    void names_with_dots_brackets_and_hangul_find_their_files()
    {
        const QString name = QStringLiteral("[그룹] 영화.2023.1080p (1)*");
        const Shelf shelf({name + QStringLiteral(".mp4"), name + QStringLiteral(".smi"),
                           name.normalized(QString::NormalizationForm_D) + QStringLiteral(".ko.srt")});
        QCOMPARE(shelf.files_of(name + QStringLiteral(".mp4")).size(), 2);
    }

    void a_film_gets_eight_tracks_at_most()
    {
        QStringList names{QStringLiteral("film.mkv")};
        for (const char* const language : {"ko", "en", "ja", "de", "fr", "es", "it", "nl", "pl", "sv"})
            names += QStringLiteral("film.%1.srt").arg(QLatin1String(language));
        const Shelf shelf(names);
        const std::vector<SubtitleTrack> tracks = read_subtitle_files(shelf.path(QStringLiteral("film.mkv")), 0, never);
        QCOMPARE(tracks.size(), most_subtitle_tracks);
        QCOMPARE(tracks.front().name, QStringLiteral("film.de.srt"));
    }

    void a_directory_or_a_link_to_nowhere_under_a_films_name_is_no_track()
    {
        const Shelf shelf({QStringLiteral("film.mkv")});
        QVERIFY(QDir().mkpath(shelf.path(QStringLiteral("film.srt"))));
        QVERIFY(QFile::link(shelf.path(QStringLiteral("nowhere")), shelf.path(QStringLiteral("film.smi"))));
        QVERIFY(read_subtitle_files(shelf.path(QStringLiteral("film.mkv")), 0, never).empty());
    }

    void the_films_frame_rate_times_lines_that_count_frames()
    {
        const Shelf shelf({QStringLiteral("film.mkv")});
        QVERIFY(write_content(shelf.path(QStringLiteral("film.sub")), "{25}{50}One\n"));
        const auto lines = read_subtitle_files(shelf.path(QStringLiteral("film.mkv")), 25, never).at(0).lines;
        QCOMPARE(lines.at(0).start, 1000);
        QCOMPARE(lines.at(0).end, 2000);
        const auto unknown = read_subtitle_files(shelf.path(QStringLiteral("film.mkv")), 0, never).at(0).lines;
        QCOMPARE(unknown.at(0).start, 1043);
    }

    void texts_travel_in_cp949_and_what_it_lacks_as_marked_utf8()
    {
        const Shelf shelf({});
        QVERIFY(write_content(shelf.path(QStringLiteral("a.srt")), cue("가 \xc3\xa9")));
        const auto lines = read_subtitle_file(shelf.path(QStringLiteral("a.srt")), 0, never).at(0).lines;
        QCOMPARE(QByteArray::fromStdString(lines.at(0).text), QByteArray("\xb0\xa1 \xff\xc3\xa9"));
    }

    void streams_of_matroska_and_mp4_read_alike_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<QStringList>("codec");
        QTest::newRow("matroska, subrip") << "mkv" << QStringList{"-c:s", "srt"};
        QTest::newRow("matroska, ass") << "mkv" << QStringList{"-c:s", "ass"};
        QTest::newRow("matroska, webvtt") << "mkv" << QStringList{"-c:s", "webvtt"};
        QTest::newRow("mp4") << "mp4" << QStringList{"-c:s", "mov_text"};
    }

    void streams_of_matroska_and_mp4_read_alike()
    {
        QFETCH(const QString, container);
        QFETCH(const QStringList, codec);
        const Shelf shelf({});
        QVERIFY(write_content(shelf.path(QStringLiteral("in.srt")),
                              "1\n00:00:01,000 --> 00:00:02,000\n<i>한글</i>, one\ntwo\n\n"
                              "2\n00:00:03,000 --> 00:00:03,500\ncafé مرحبا\n"));
        const QString film = shelf.path(QStringLiteral("film.") + container);
        make_film(QStringList{"-i", shelf.path(QStringLiteral("in.srt")), "-map", "0:s", "-map", "0:s",
                              "-metadata:s:s:0", "language=kor", "-metadata:s:s:1", "language=eng"} +
                      codec,
                  film);
        const QByteArray lines = "1000\t2000\t한글, one\\ntwo\n3000\t3500\tcafé مرحبا\n";
        QByteArray read = track_text(read_embedded_subtitles(film, never));
        QCOMPARE(read, "track\tkor\n" + lines + "track\teng\n" + lines);
    }

    void streams_without_a_language_are_named_by_title_or_number()
    {
        const Shelf shelf({QStringLiteral("in.srt")});
        const QString film = shelf.path(QStringLiteral("film.mp4"));
        make_film({"-i", shelf.path(QStringLiteral("in.srt")), "-map", "0:s", "-map", "0:s", "-c:s", "mov_text"}, film);
        const std::vector<SubtitleTrack> tracks = read_embedded_subtitles(film, never);
        QCOMPARE(tracks.size(), std::size_t(2));
        QCOMPARE(tracks.front().name, QStringLiteral("1"));
        QCOMPARE(tracks.back().name, QStringLiteral("2"));

        const QString titled = shelf.path(QStringLiteral("film.mkv"));
        make_film({"-i", shelf.path(QStringLiteral("in.srt")), "-metadata:s:s:0", "language=und", "-metadata:s:s:0",
                   "title=한글", "-c:s", "srt"},
                  titled);
        QCOMPARE(read_embedded_subtitles(titled, never).front().name, QStringLiteral("한글"));
    }

    void a_stream_line_that_ends_before_it_begins_lasts_to_the_next()
    {
        const Shelf shelf({});
        QVERIFY(write_content(shelf.path(QStringLiteral("in.ass")),
                              "[Script Info]\n[Events]\n"
                              "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
                              "Dialogue: 0,0:00:02.00,0:00:01.00,D,,0,0,0,,{\\k20}Back{\\k30}wards, one\n"
                              "Dialogue: 0,0:00:03.00,0:00:04.00,D,,0,0,0,,{\\p1}m 0 0{\\p0}Next\n"));
        const QString film = shelf.path(QStringLiteral("film.mkv"));
        make_film({"-i", shelf.path(QStringLiteral("in.ass")), "-c:s", "ass"}, film);
        QCOMPARE(track_text(read_embedded_subtitles(film, never)),
                 QByteArray("track\t1\n2000\t3000\tBackwards, one\n3000\t4000\tNext\n"));
    }

    void a_line_that_is_over_before_the_film_begins_is_left_out()
    {
        const std::vector<Subtitle> lines = in_order({{-3000, -1000, QStringLiteral("Before")},
                                                      {-500, 500, QStringLiteral("At once")},
                                                      {2000, 3000, QStringLiteral("One")}},
                                                     never);
        QCOMPARE(lines.size(), std::size_t{2});
        QCOMPARE(lines[0].text, std::string("At once"));
        QCOMPARE(lines[0].end, 500LL);
        QCOMPARE(lines[1].start, 2000LL);
    }

    void a_cancelled_reading_ends_at_once()
    {
        const Shelf shelf({QStringLiteral("film.srt")});
        const std::atomic<bool> cancelled = true;
        QVERIFY(read_subtitle_files(shelf.path(QStringLiteral("film.mkv")), 0, cancelled).empty());
        QVERIFY(read_subtitle_file(shelf.path(QStringLiteral("film.srt")), 0, cancelled).empty());
        const QByteArray korean = encoded(QStringLiteral("하나 둘 셋\n").repeated(100'000), SubtitleEncoding::Cp949);
        QVERIFY(decode(korean, SubtitleEncoding::Cp949, cancelled).isEmpty());
        QVERIFY(decode(korean, SubtitleEncoding::Utf8, cancelled).isEmpty());
        QVERIFY(in_order({{1000, 2000, QStringLiteral("One")}}, cancelled).empty());
        const std::vector<SubtitleTrack> inside = read_embedded_subtitles(test_films::path("subtitles.mkv"), cancelled);
        QVERIFY(std::all_of(inside.begin(), inside.end(), [](const auto& track) { return track.lines.empty(); }));
    }
};

TAVEL_TEST_MAIN(TstSubtitleReader)
#include "tst_subtitle_reader.moc"
