#include "subtitle_control.h"
#include "subtitles/timed_text.h"
#include "test_main.h"
#include "track_text.h"

namespace
{

const std::atomic<bool> never = false;

using Lines = std::vector<TimedText>;

TimedText line(long long start, std::optional<long long> end, const char* text)
{
    return {start, end, QString::fromUtf8(text)};
}

/// What the display gets for @p lines: each record's start, end and text, its rows parted by "|".
QStringList shown(const Lines& lines)
{
    QStringList result;
    for (const Subtitle& record : in_order(lines, never))
        result += QStringLiteral("%1-%2 %3")
                      .arg(record.start)
                      .arg(record.end)
                      .arg(QString::fromStdString(record.text).replace(u'\n', u'|'));
    return result;
}

/// Whether at most one record is due at any time, and none for no time.
bool take_turns(const std::vector<Subtitle>& records)
{
    const auto is_short = [](const Subtitle& record) { return record.end <= record.start; };
    const auto meet = [](const Subtitle& left, const Subtitle& right) { return right.start < left.end; };
    return std::none_of(records.begin(), records.end(), is_short) &&
           std::adjacent_find(records.begin(), records.end(), meet) == records.end();
}

} // namespace

class TstOverlappingLines : public QObject
{
    Q_OBJECT

private slots:
    void two_speakers_at_the_same_time_stand_below_each_other()
    {
        QCOMPARE(shown({line(1000, 2000, "- Who?"), line(1000, 2000, "- Me.")}),
                 QStringList({"1000-2000 - Who?|- Me."}));
    }

    void a_speaker_who_began_with_another_and_talks_longer_stays()
    {
        QCOMPARE(shown({line(1000, 2000, "Short"), line(1000, 4000, "Long")}),
                 QStringList({"1000-2000 Short|Long", "2000-4000 Long"}));
    }

    void a_long_line_stands_above_a_short_one_inside_it_and_comes_back()
    {
        QCOMPARE(shown({line(1000, 9000, "Sign"), line(3000, 5000, "Said")}),
                 QStringList({"1000-3000 Sign", "3000-5000 Sign|Said", "5000-9000 Sign"}));
    }

    void a_sign_outlasts_all_that_is_said_below_it()
    {
        QCOMPARE(shown({line(1000, 9000, "Sign"), line(2000, 3000, "One"), line(3000, 4000, "Two"),
                        line(6000, 9000, "Three"), line(10000, 11000, "Four")}),
                 QStringList({"1000-2000 Sign", "2000-3000 Sign|One", "3000-4000 Sign|Two", "4000-6000 Sign",
                              "6000-9000 Sign|Three", "10000-11000 Four"}));
    }

    void three_in_a_chain_are_each_shown_while_they_are_due()
    {
        QCOMPARE(shown({line(1000, 4000, "One"), line(2000, 6000, "Two"), line(3000, 8000, "Three")}),
                 QStringList({"1000-2000 One", "2000-3000 One|Two", "3000-4000 One|Two|Three", "4000-6000 Two|Three",
                              "6000-8000 Three"}));
    }

    void the_order_in_the_file_does_not_matter()
    {
        QCOMPARE(shown({line(3000, 5000, "Said"), line(1000, 9000, "Sign")}),
                 QStringList({"1000-3000 Sign", "3000-5000 Sign|Said", "5000-9000 Sign"}));
    }

    void untidy_times_do_not_flash_both_lines_data()
    {
        QTest::addColumn<long long>("end_of_first");
        QTest::addColumn<long long>("end_of_second");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("a millisecond") << 3001LL << 6000LL << QStringList{"1000-3000 One", "3000-6000 Two"};
        QTest::newRow("just below the limit") << 3299LL << 6000LL << QStringList{"1000-3000 One", "3000-6000 Two"};
        QTest::newRow("the limit") << 3300LL << 6000LL
                                   << QStringList{"1000-3000 One", "3000-3300 One|Two", "3300-6000 Two"};
        QTest::newRow("a second line of no more than twice that length")
            << 3200LL << 3500LL << QStringList{"1000-3000 One", "3000-3200 One|Two", "3200-3500 Two"};
    }

    void untidy_times_do_not_flash_both_lines()
    {
        QFETCH(const long long, end_of_first);
        QFETCH(const long long, end_of_second);
        QFETCH(const QStringList, expected);
        QCOMPARE(shown({line(1000, end_of_first, "One"), line(3000, end_of_second, "Two")}), expected);
    }

    void untidy_ends_of_two_speakers_both_make_way()
    {
        QCOMPARE(shown({line(1000, 3050, "One"), line(1000, 3100, "Two"), line(3000, 6000, "Three")}),
                 QStringList({"1000-3000 One|Two", "3000-6000 Three"}));
    }

    void a_sign_that_changes_with_every_frame_loses_nothing_to_the_tidying()
    {
        QCOMPARE(shown({line(1000, 1080, "a"), line(1040, 1120, "b")}),
                 QStringList({"1000-1040 a", "1040-1080 a|b", "1080-1120 b"}));
    }

    void the_same_text_is_shown_once_data()
    {
        QTest::addColumn<Lines>("lines");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("in two layers") << Lines{line(1000, 2000, "Sign"), line(1000, 2000, "Sign")}
                                       << QStringList{"1000-2000 Sign"};
        QTest::newRow("one after the other")
            << Lines{line(1000, 4000, "Sign"), line(2000, 6000, "Sign")} << QStringList{"1000-6000 Sign"};
        QTest::newRow("as a row of the earlier line")
            << Lines{line(1000, 4000, "a\nb"), line(2000, 4000, "b")} << QStringList{"1000-4000 a|b"};
        QTest::newRow("as a row of the later line")
            << Lines{line(1000, 4000, "a"), line(2000, 4000, "a\nb")} << QStringList{"1000-2000 a", "2000-4000 a|b"};
        QTest::newRow("with another between")
            << Lines{line(1000, 4000, "a"), line(1000, 4000, "b"), line(1000, 4000, "a")}
            << QStringList{"1000-4000 a|b"};
        QTest::newRow("rows that only begin alike")
            << Lines{line(1000, 4000, "No"), line(1000, 4000, "No!")} << QStringList{"1000-4000 No|No!"};
        QTest::newRow("twice in one line") << Lines{line(1000, 4000, "No\nNo"), line(2000, 4000, "Yes")}
                                           << QStringList{"1000-2000 No|No", "2000-4000 No|No|Yes"};
    }

    void the_same_text_is_shown_once()
    {
        QFETCH(const Lines, lines);
        QFETCH(const QStringList, expected);
        QCOMPARE(shown(lines), expected);
    }

    void four_rows_are_shown_at_most_of_the_lines_that_began_last()
    {
        QCOMPARE(shown({line(1000, 9000, "a\nb"), line(2000, 9000, "c"), line(3000, 9000, "d\ne"),
                        line(8000, 9000, "1\n2\n3\n4\n5")}),
                 QStringList({"1000-2000 a|b", "2000-3000 a|b|c", "3000-8000 c|d|e", "8000-9000 1|2|3|4|5"}));
    }

    void of_a_hundred_at_once_the_last_four_are_shown()
    {
        Lines lines;
        for (int number = 1; number <= 100; ++number)
            lines.push_back({1000, 2000, QString::number(number)});
        QCOMPARE(shown(lines), QStringList({"1000-2000 97|98|99|100"}));
    }

    void a_hundred_layers_of_one_text_are_that_text_and_hide_no_other()
    {
        Lines lines{line(500, 2000, "Said")};
        lines.insert(lines.end(), 20, line(1000, 2000, "Sign"));
        QCOMPARE(shown(lines), QStringList({"500-1000 Said", "1000-2000 Said|Sign"}));
    }

    void lines_that_only_touch_come_out_as_they_are()
    {
        QCOMPARE(shown({line(1000, 2000, "One"), line(2000, 3000, "One"), line(3000, 4000, "a\nb\nc\nd\ne"),
                        line(5000, 5001, "Tick")}),
                 QStringList({"1000-2000 One", "2000-3000 One", "3000-4000 a|b|c|d|e", "5000-5001 Tick"}));
        QCOMPARE(shown({line(2000, 3000, "One"), line(3000, 3000, "Flash")}),
                 QStringList({"2000-3000 One", "3000-3000 Flash"}));
    }

    void a_line_of_no_length_beside_others_is_left_out()
    {
        QCOMPARE(shown({line(1000, 9000, "Sign"), line(3000, 3000, "Flash")}), QStringList({"1000-9000 Sign"}));
        QCOMPARE(shown({line(3000, 3000, "Flash"), line(3000, 4000, "Said")}), QStringList({"3000-4000 Said"}));
    }

    void a_line_without_an_end_lasts_to_the_next_one_and_never_beside_it()
    {
        const std::optional<long long> unknown;
        QCOMPARE(shown({line(1000, unknown, "One"), line(3000, unknown, "Two"), line(5000, unknown, ""),
                        line(7000, unknown, "Three")}),
                 QStringList({"1000-3000 One", "3000-5000 Two", "7000-12000 Three"}));
        QCOMPARE(shown({line(1000, 9000, "Sign"), line(3000, unknown, "Said"), line(5000, 6000, "More")}),
                 QStringList({"1000-3000 Sign", "3000-5000 Sign|Said", "5000-6000 Sign|More", "6000-9000 Sign"}));
    }

    void lines_without_an_end_that_begin_together_are_one_line_of_many_rows()
    {
        Lines lines;
        for (const char* const text : {"a", "b", "c", "d", "e", "a"})
            lines.push_back(line(1000, std::nullopt, text));
        lines.push_back(line(2000, std::nullopt, ""));
        QCOMPARE(shown(lines), QStringList({"1000-2000 a|b|c|d|e"}));
    }

    void a_hundred_thousand_lines_apart_come_out_one_by_one()
    {
        Lines lines;
        for (long long number = 1; number <= 100'000; ++number)
            lines.push_back({number * 1000, number * 1000 + 900, QString::number(number)});
        const std::vector<Subtitle> records = in_order(lines, never);
        QCOMPARE(records.size(), lines.size());
        for (std::size_t index = 0; index < records.size(); ++index) {
            QCOMPARE(records[index].start, lines[index].start);
            QCOMPARE(records[index].end, *lines[index].end);
            QCOMPARE(records[index].text, lines[index].text.toStdString());
        }
    }

    void a_hundred_thousand_lines_over_each_other_make_two_records_each_at_most_data()
    {
        QTest::addColumn<int>("step_ms");
        QTest::addColumn<bool>("same_text");
        QTest::newRow("all at once") << 0 << false;
        QTest::newRow("one a millisecond") << 1 << false;
        QTest::newRow("one a second") << 1000 << false;
        QTest::newRow("one text") << 1 << true;
    }

    void a_hundred_thousand_lines_over_each_other_make_two_records_each_at_most()
    {
        QFETCH(const int, step_ms);
        QFETCH(const bool, same_text);
        constexpr int count = 100'000;
        constexpr long long behind = 1'000'000'000;
        Lines lines;
        for (int number = 0; number < count; ++number)
            lines.push_back({1000 + static_cast<long long>(number) * step_ms, behind - number,
                             same_text ? QStringLiteral("x") : QString::number(number)});
        const std::vector<Subtitle> records = in_order(lines, never);
        QVERIFY(!records.empty() && records.size() <= 2 * lines.size());
        QVERIFY(take_turns(records));
        QCOMPARE(records.front().start, 1000);
        QCOMPARE(records.back().end, behind);
        QVERIFY(std::all_of(records.begin(), records.end(), [](const Subtitle& record) {
            return std::count(record.text.begin(), record.text.end(), '\n') < 4;
        }));
        if (same_text)
            QCOMPARE(records.size(), std::size_t(1));
    }

    void a_damaged_files_endless_line_is_not_told_again_without_end()
    {
        constexpr qsizetype length = 100'000;
        constexpr std::size_t count = 10'000;
        Lines lines{{1000, 100'000'000, QString(length, u'x')}};
        for (std::size_t number = 1; number <= count; ++number)
            lines.push_back(
                line(static_cast<long long>(number) * 5000, static_cast<long long>(number) * 5000 + 2000, "Said"));
        const std::vector<Subtitle> records = in_order(lines, never);
        QVERIFY(take_turns(records));
        std::size_t bytes = 0;
        std::size_t said = 0;
        for (const Subtitle& record : records) {
            bytes += record.text.size();
            said += record.text.find("Said") != std::string::npos ? 1 : 0;
        }
        QCOMPARE(said, count);
        QVERIFY2(bytes < 20'000'000, qPrintable(QString::number(bytes)));
    }

    void a_cancelled_reading_leaves_the_rest()
    {
        const std::atomic<bool> cancelled = true;
        QVERIFY(in_order({line(1000, 3000, "One"), line(1000, 3000, "Two")}, cancelled).empty());
    }

    void files_of_each_kind_show_lines_at_the_same_time_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("SubRip") << "srt"
                                << QByteArray("1\n00:00:01,000 --> 00:00:09,000\nSign\n\n"
                                              "2\n00:00:03,000 --> 00:00:05,000\nSaid\n");
        QTest::newRow("WebVTT") << "vtt"
                                << QByteArray("WEBVTT\n\n00:01.000 --> 00:09.000 line:0\nSign\n\n"
                                              "00:03.000 --> 00:05.000\nSaid\n");
        QTest::newRow("ASS") << "ass"
                             << QByteArray("[Script Info]\n[Events]\n"
                                           "Dialogue: 0,0:00:03.00,0:00:05.00,D,,0,0,0,,Said\n"
                                           "Dialogue: 1,0:00:01.00,0:00:09.00,S,,0,0,0,,{\\an8}Sign\n"
                                           "Dialogue: 2,0:00:01.00,0:00:09.00,S,,0,0,0,,{\\blur3}Sign\n");
        QTest::newRow("MicroDVD") << "sub" << QByteArray("{10}{90}Sign\n{30}{50}Said\n");
    }

    void files_of_each_kind_show_lines_at_the_same_time()
    {
        QFETCH(const QString, suffix);
        QFETCH(const QByteArray, content);
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("film.") + suffix);
        QVERIFY(write_content(file, content));
        QCOMPARE(track_text(read_subtitle_file(file, 10, never)),
                 "track\tfilm." + suffix.toUtf8() + "\n1000\t3000\tSign\n3000\t5000\tSign\\nSaid\n5000\t9000\tSign\n");
    }

    void a_text_stream_in_a_film_shows_lines_at_the_same_time()
    {
        const QTemporaryDir directory;
        const QString file = directory.filePath(QStringLiteral("in.srt"));
        const QString film = directory.filePath(QStringLiteral("film.mkv"));
        QVERIFY(write_content(file, "1\n00:00:01,000 --> 00:00:09,000\nSign\n\n"
                                    "2\n00:00:03,000 --> 00:00:05,000\nSaid\n"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"), {"-v", "error", "-i", file, "-c:s", "srt", film});
        QVERIFY(ffmpeg.waitForFinished(test_support::stretched(30000)));
        QCOMPARE(track_text(read_embedded_subtitles(film, never)),
                 QByteArray("track\t1\n1000\t3000\tSign\n3000\t5000\tSign\\nSaid\n5000\t9000\tSign\n"));
    }

    void the_display_shows_at_every_position_what_is_due_and_never_goes_blank_between()
    {
        const std::vector<Subtitle> records =
            in_order({line(1000, 9000, "Sign"), line(3000, 5000, "Said"), line(5050, 7000, "More")}, never);
        SubtitleControl display(nullptr, "subtitle_control", 0);
        display.show();
        display.set_subtitle(&records);
        QString now;
        for (long long position = 0; position <= 10000; ++position) {
            if (display.update(position))
                now = now == display.get_last_subtitle() ? QString() : display.get_last_subtitle();
            const QString said = position > 3000 && position <= 5000   ? QStringLiteral("Sign\nSaid")
                                 : position > 5050 && position <= 7000 ? QStringLiteral("Sign\nMore")
                                                                       : QStringLiteral("Sign");
            QCOMPARE(now, position >= 1000 && position <= 9000 ? said : QString());
        }
    }
};

TAVEL_TEST_MAIN(TstOverlappingLines)
#include "tst_overlapping_lines.moc"
