#include <cstdlib>

#include "device_font.h"
#include "subtitle_control.h"
#include "test_main.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool counts_allocations = false;
#else
constexpr bool counts_allocations = true;

// Every allocation of the process, the toolkit's included, goes through these.
namespace
{
std::atomic<long> allocations = 0;
}

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);

extern "C" void* malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* block, std::size_t size)
{
    ++allocations;
    return __libc_realloc(block, size);
}
#endif

namespace
{

using Lines = std::vector<Subtitle>;

const Lines two_lines{{1000, 2000, "first"}, {3000, 4000, "second"}};

QImage shown(const OsdControl& overlay)
{
    return overlay.background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

/// What an overlay set up like @p like shows for @p text.
QImage drawn(const SubtitleControl& like, int alignment, const QString& text)
{
    OsdControl overlay(nullptr, "reference", 0);
    overlay.setFont(like.font());
    overlay.setGeometry(0, 0, like.width(), like.height());
    overlay.set_align(alignment);
    if (text.isEmpty())
        overlay.clear();
    else
        overlay.draw(text);
    return shown(overlay);
}

/// Chooses lines by a plain search, without any shortcut.
class PlainDisplay
{
public:
    explicit PlainDisplay(const Lines& lines) : lines_(lines) {}

    bool update(long long position)
    {
        Subtitle key;
        key.start = position + offset;
        const auto found = std::lower_bound(lines_.begin(), lines_.end(), key, less_mag());
        const Subtitle& candidate = found == lines_.begin() ? *found : *std::prev(found);
        if (candidate.start != last_start_ && candidate.start <= key.start && key.start <= candidate.end) {
            last_start_ = candidate.start;
            cleared_ = false;
            last = candidate.text;
            return true;
        }
        if (candidate.end >= key.start || cleared_)
            return false;
        cleared_ = true;
        return true;
    }

    int offset = 0;
    std::string last;

private:
    const Lines& lines_;
    long long last_start_ = 0;
    bool cleared_ = true;
};

} // namespace

class tst_SubtitleControl : public QObject
{
    Q_OBJECT

private:
    static constexpr int bottom = Qt::TextWordWrap | Qt::AlignHCenter | Qt::AlignBottom;
    static constexpr int middle = Qt::TextWordWrap | Qt::AlignCenter;

    std::unique_ptr<QWidget> window;
    SubtitleControl* subtitles = nullptr;

    /// The line that draw() would paint now.
    QString current() const
    {
        subtitles->draw();
        const QImage image = shown(*subtitles);
        for (const QString& text : {QString(), QString("first"), QString("second"), QString("third")}) {
            if (image == drawn(*subtitles, bottom, text))
                return text;
        }
        return "?";
    }

private slots:
    void init()
    {
        window = std::make_unique<QWidget>();
        window->resize(480, 272);
        subtitles = new SubtitleControl(window.get(), "subtitle_control", 0x200010);
        window->show();
    }

    void starts_empty_near_the_bottom_with_wrapped_centred_text()
    {
        QCOMPARE(subtitles->objectName(), QString("subtitle_control"));
        QCOMPARE(subtitles->geometry(), QRect(0, 110, 480, 80));
        QCOMPARE(subtitles->font(), device_font("V28", 16, 50));
        QVERIFY(!subtitles->isWindow());
        QCOMPARE(subtitles->get_last_subtitle(), QString());
        QVERIFY(!subtitles->update(1500));
        QCOMPARE(current(), QString());
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        QCOMPARE(current(), QString("first"));
    }

    void first_line_is_shown_at_its_exact_start_and_not_before()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(!subtitles->update(0));
        QVERIFY(!subtitles->update(999));
        QCOMPARE(current(), QString());
        QVERIFY(subtitles->update(1000));
        QCOMPARE(current(), QString("first"));
    }

    void later_line_is_found_once_its_start_has_passed()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1000));
        QVERIFY(subtitles->update(2500));
        QCOMPARE(current(), QString());
        QVERIFY(!subtitles->update(2600));
        QVERIFY(!subtitles->update(3000));
        QCOMPARE(current(), QString());
        QVERIFY(subtitles->update(3001));
        QCOMPARE(current(), QString("second"));
    }

    void line_on_screen_is_not_reported_again()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1000));
        for (long long position = 1001; position <= 2000; position += 37)
            QVERIFY(!subtitles->update(position));
        QCOMPARE(current(), QString("first"));
    }

    void line_is_still_shown_at_its_end()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(2000));
        QVERIFY(!subtitles->update(2000));
        QVERIFY(subtitles->update(2001));
        QCOMPARE(current(), QString());
    }

    void gap_clears_the_line_once_and_the_last_text_is_kept()
    {
        subtitles->set_subtitle(&two_lines);
        subtitles->update(1500);
        QVERIFY(subtitles->update(2001));
        QVERIFY(!subtitles->update(2002));
        QVERIFY(!subtitles->update(2900));
        QCOMPARE(subtitles->get_last_subtitle(), QString("first"));
    }

    void lines_that_meet_follow_each_other_without_a_gap()
    {
        const Lines lines{{1000, 2000, "first"}, {2000, 3000, "second"}, {3001, 4000, "third"}};
        subtitles->set_subtitle(&lines);
        QVERIFY(subtitles->update(1999));
        QVERIFY(!subtitles->update(2000));
        QVERIFY(subtitles->update(2001));
        QCOMPARE(current(), QString("second"));
        QVERIFY(subtitles->update(3002));
        QCOMPARE(current(), QString("third"));
    }

    void after_the_last_line_nothing_is_shown()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(3500));
        QVERIFY(subtitles->update(4001));
        QVERIFY(!subtitles->update(1LL << 40));
        QCOMPARE(current(), QString());
    }

    void offset_shifts_the_lines_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<long long>("not_yet");
        QTest::addColumn<long long>("shown_at");
        QTest::newRow("none") << 0 << 999LL << 1000LL;
        QTest::newRow("negative, later") << -500 << 1499LL << 1500LL;
        QTest::newRow("positive, earlier") << 500 << 499LL << 500LL;
    }

    void offset_shifts_the_lines()
    {
        QFETCH(int, offset);
        QFETCH(long long, not_yet);
        QFETCH(long long, shown_at);
        subtitles->set_offset(offset);
        subtitles->set_subtitle(&two_lines);
        QVERIFY(!subtitles->update(not_yet));
        QVERIFY(subtitles->update(shown_at));
        QCOMPARE(current(), QString("first"));
    }

    void offset_before_the_film_finds_nothing()
    {
        subtitles->set_subtitle(&two_lines);
        subtitles->set_offset(-20000);
        QVERIFY(!subtitles->update(1500));
        QVERIFY(!subtitles->update(0));
        QCOMPARE(current(), QString());
    }

    void empty_list_is_like_none()
    {
        const Lines empty;
        for (const Lines* list : {static_cast<const Lines*>(nullptr), &empty}) {
            subtitles->set_subtitle(&two_lines);
            QVERIFY(subtitles->update(1500));
            subtitles->draw();
            subtitles->set_subtitle(list);
            QCOMPARE(shown(*subtitles), drawn(*subtitles, bottom, ""));
            QVERIFY(!subtitles->update(1500));
            QCOMPARE(current(), QString());
            QCOMPARE(subtitles->get_last_subtitle(), QString("first"));
        }
    }

    void new_list_forgets_the_line_and_shows_its_own_at_once()
    {
        const Lines other{{1000, 2000, "third"}};
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        subtitles->set_subtitle(&other);
        QCOMPARE(subtitles->get_last_subtitle(), QString());
        QCOMPARE(current(), QString());
        QVERIFY(subtitles->update(1500));
        QCOMPARE(current(), QString("third"));
    }

    void shorter_list_after_a_longer_one_is_searched_from_its_beginning()
    {
        Lines many;
        for (int line = 1; line <= 500; ++line)
            many.push_back({line * 1000, line * 1000 + 500, "first"});
        subtitles->set_subtitle(&many);
        QVERIFY(subtitles->update(480100));
        subtitles->set_subtitle(&two_lines);
        QVERIFY(!subtitles->update(480100));
        QVERIFY(subtitles->update(3100));
        QCOMPARE(current(), QString("second"));
    }

    void hidden_widget_changes_nothing_and_catches_up_when_shown()
    {
        subtitles->set_subtitle(&two_lines);
        subtitles->hide();
        QVERIFY(!subtitles->update(1500));
        QCOMPARE(subtitles->get_last_subtitle(), QString());
        subtitles->show();
        QVERIFY(subtitles->update(1600));
        QCOMPARE(current(), QString("first"));
    }

    void widget_in_a_hidden_window_counts_as_hidden()
    {
        subtitles->set_subtitle(&two_lines);
        window->hide();
        QVERIFY(!subtitles->update(1500));
        window->show();
        QVERIFY(subtitles->update(1500));
    }

    void widget_keeps_working_as_a_window_of_its_own()
    {
        subtitles->set_subtitle(&two_lines);
        subtitles->setParent(nullptr, Qt::FramelessWindowHint);
        QVERIFY(!subtitles->update(1500));
        subtitles->show();
        QVERIFY(subtitles->update(1500));
        subtitles->setParent(window.get(), Qt::FramelessWindowHint);
        QVERIFY(!subtitles->update(3500));
        subtitles->show();
        QVERIFY(subtitles->update(3500));
    }

    void draw_does_nothing_while_hidden()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        subtitles->hide();
        const QImage before = shown(*subtitles);
        subtitles->draw();
        QCOMPARE(shown(*subtitles), before);
    }

    void close_forgets_list_and_line_and_stays_visible()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        subtitles->draw();
        subtitles->close();
        QVERIFY(subtitles->isVisible());
        QCOMPARE(shown(*subtitles), drawn(*subtitles, bottom, ""));
        QVERIFY(!subtitles->update(1500));
        QCOMPARE(current(), QString());
        QCOMPARE(subtitles->get_last_subtitle(), QString("first"));
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
    }

    void clear_takes_the_picture_away_and_the_line_stays_current()
    {
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        subtitles->draw();
        subtitles->clear();
        QCOMPARE(shown(*subtitles), drawn(*subtitles, bottom, ""));
        QVERIFY(!subtitles->update(1600));
        QCOMPARE(current(), QString("first"));
    }

    void location_pads_the_text_data()
    {
        QTest::addColumn<int>("location");
        QTest::addColumn<int>("alignment");
        QTest::addColumn<QString>("text");
        QTest::newRow("high") << 0 << middle << QString("first\n\n");
        QTest::newRow("middle") << 1 << middle << QString("\n\nfirst");
        QTest::newRow("low") << 2 << bottom << QString("first");
        QTest::newRow("unknown") << 7 << bottom << QString("first");
        QTest::newRow("negative") << -1 << bottom << QString("first");
    }

    void location_pads_the_text()
    {
        QFETCH(int, location);
        QFETCH(int, alignment);
        QFETCH(QString, text);
        subtitles->set_location(SubtitleLocation::Middle);
        subtitles->set_location(static_cast<SubtitleLocation>(location));
        subtitles->set_align(alignment);
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        subtitles->draw();
        QCOMPARE(shown(*subtitles), drawn(*subtitles, alignment, text));
    }

    void alignment_of_each_location_stands_in_the_table()
    {
        QCOMPARE(SUBTITLE_PLACEMENTS.size(), 3U);
        const std::array<int, 3> alignments{middle, middle, bottom};
        for (std::size_t value = 0; value < alignments.size(); ++value) {
            const SubtitlePlacement* placement = subtitle_placement(static_cast<SubtitleLocation>(value));
            QCOMPARE(placement, &SUBTITLE_PLACEMENTS[value]);
            QCOMPARE(placement->alignment, alignments[value]);
        }
        QVERIFY(!subtitle_placement(static_cast<SubtitleLocation>(3)));
        QVERIFY(!subtitle_placement(static_cast<SubtitleLocation>(-1)));
    }

    void high_stands_above_middle_and_low_on_the_bottom_edge()
    {
        subtitles->setGeometry(0, 70, 480, 120);
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1500));
        std::vector<int> bottoms;
        for (const SubtitlePlacement& placement : SUBTITLE_PLACEMENTS) {
            subtitles->set_location(placement.location);
            subtitles->set_align(placement.alignment);
            subtitles->draw();
            const QImage image = shown(*subtitles);
            int lowest = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    if (qAlpha(image.pixel(x, y)) > 128)
                        lowest = y;
                }
            }
            bottoms.push_back(lowest);
        }
        QVERIFY(bottoms[0] < 60);
        QVERIFY(bottoms[1] > 65);
        QVERIFY(bottoms[1] < bottoms[2]);
        QVERIFY(bottoms[2] > 105);
    }

    void code_page_text_becomes_korean_with_its_line_breaks()
    {
        // "자막" and a second line with "뷁", which is not in the older code page, and "ñ" in the widened form.
        const Lines lines{{1000, 2000, "\xC0\xDA\xB8\xB7\n\x94\xEE \xFF\xC3\xB1"}};
        subtitles->set_subtitle(&lines);
        QVERIFY(subtitles->update(1000));
        QCOMPARE(subtitles->get_last_subtitle(), QString::fromUtf8("자막\n뷁 ñ"));
    }

    void outlined_colour_is_used()
    {
        subtitles->set_text_color(QColor(255, 255, 255), true);
        subtitles->set_subtitle(&two_lines);
        QVERIFY(subtitles->update(1000));
        subtitles->draw();
        OsdControl reference(nullptr, "reference", 0);
        reference.setFont(subtitles->font());
        reference.setGeometry(0, 0, 480, 80);
        reference.set_align(bottom);
        reference.set_text_color(QColor(255, 255, 255), true);
        reference.draw("first");
        QCOMPARE(shown(*subtitles), shown(reference));
    }

    void any_walk_through_a_film_reports_what_a_plain_search_reports()
    {
        std::srand(7);
        for (int round = 0; round < 60; ++round) {
            Lines lines;
            long long start = 1;
            const int count = 1 + std::rand() % 60;
            for (int line = 0; line < count; ++line) {
                // Equal starts, overlaps, gaps and ends before the start.
                start += std::rand() % 40;
                lines.push_back({start, start + std::rand() % 60 - 5, std::to_string(line)});
            }
            subtitles->set_subtitle(&lines);
            PlainDisplay plain(lines);
            plain.offset = std::rand() % 21 - 10;
            subtitles->set_offset(plain.offset);
            long long position = 0;
            for (int step = 0; step < 400; ++step) {
                position = std::rand() % 50 == 0 ? std::rand() % (start + 50) : position + std::rand() % 12;
                QCOMPARE(subtitles->update(position), plain.update(position));
                QCOMPARE(subtitles->get_last_subtitle(), QString::fromStdString(plain.last));
            }
            subtitles->close();
        }
    }

    void update_allocates_nothing_while_nothing_changes()
    {
        if (!counts_allocations)
            QSKIP("the sanitizer has the allocator");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        Lines lines;
        for (int line = 1; line <= 1000; ++line)
            lines.push_back({line * 1000, line * 1000 + 500, "a line that is too long for the small string"});
        subtitles->set_subtitle(&lines);
        const long before_the_line = allocations;
        QVERIFY(subtitles->update(500100));
        QVERIFY(allocations > before_the_line);
        bool changed = false;
        const long before = allocations;
        for (long long position = 500101; position <= 500500; ++position)
            changed |= subtitles->update(position);
        const long after = allocations;
        QVERIFY(!changed);
        QCOMPARE(after, before);

        QVERIFY(subtitles->update(500600));
        const long cleared = allocations;
        for (long long position = 500601; position <= 501000; ++position)
            changed |= subtitles->update(position);
        QCOMPARE(allocations.load(), cleared);
        QVERIFY(!changed);
#endif
    }

    void lines_change_on_one_thread_while_another_paints()
    {
        Lines lines;
        for (int line = 1; line <= 400; ++line)
            lines.push_back({line * 10, line * 10 + 6, "line " + std::to_string(line)});
        const Lines other{{5, 4000, "other"}};
        subtitles->setGeometry(0, 110, 120, 40);
        subtitles->set_subtitle(&lines);

        std::atomic<bool> stop = false;
        std::atomic<int> changes = 0;
        std::thread engine([&] {
            for (long long position = 0; !stop; position = (position + 3) % 4100) {
                if (subtitles->update(position))
                    ++changes;
                subtitles->get_last_subtitle();
            }
        });
        for (int round = 0; round < 300; ++round) {
            subtitles->draw();
            subtitles->set_offset(round % 7 - 3);
            if (round % 20 == 5)
                subtitles->set_subtitle(&other);
            if (round % 20 == 10)
                subtitles->set_subtitle(&lines);
            if (round % 50 == 20)
                subtitles->hide();
            if (round % 50 == 30)
                subtitles->show();
            if (round % 60 == 40) {
                subtitles->close();
                subtitles->set_subtitle(&lines);
            }
            subtitles->set_location(static_cast<SubtitleLocation>(round % 3));
        }
        subtitles->show();
        subtitles->set_subtitle(&lines);
        const int before = changes;
        QTRY_VERIFY(changes > before);
        stop = true;
        engine.join();
        const QString last = subtitles->get_last_subtitle();
        QVERIFY2(last.startsWith("line "), qPrintable(last));
    }
};

TAVEL_TEST_MAIN(tst_SubtitleControl)
#include "tst_subtitle_control.moc"
