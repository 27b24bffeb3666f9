// What a subtitle costs during playback: finding the line for a position, and drawing a line when it changes.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "device_font.h"
#include "subtitle_control.h"

namespace
{

using Clock = std::chrono::steady_clock;

/// Median of @p rounds runs of @p work, in nanoseconds for each of the @p repeats done in a run.
template<typename Work> double median_ns(int rounds, long repeats, Work work)
{
    std::vector<double> runs;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        work();
        const std::chrono::duration<double, std::nano> spent = Clock::now() - start;
        runs.push_back(spent.count() / static_cast<double>(repeats));
    }
    std::nth_element(runs.begin(), runs.begin() + rounds / 2, runs.end());
    return runs[static_cast<std::size_t>(rounds) / 2];
}

std::vector<Subtitle> lines(int count)
{
    std::vector<Subtitle> list;
    list.reserve(static_cast<std::size_t>(count));
    for (int line = 1; line <= count; ++line)
        list.push_back({line * 3000LL, line * 3000LL + 2000, "A line of a film, number " + std::to_string(line)});
    return list;
}

void bench_update(SubtitleControl& subtitles, int count)
{
    constexpr long repeats = 100000;
    const std::vector<Subtitle> list = lines(count);
    subtitles.set_subtitle(&list);

    const long long middle = count / 2 * 3000LL;
    subtitles.update(middle + 1);
    long changes = 0;
    const double same = median_ns(21, repeats, [&] {
        for (long step = 0; step < repeats; ++step)
            changes += subtitles.update(middle + 1 + step % 1999);
    });

    // Places all over the film that lie in no line, so that the whole cost is the search.
    const double jump = median_ns(21, repeats, [&] {
        unsigned int place = 12345;
        for (long step = 0; step < repeats; ++step) {
            place = place * 1664525U + 1013904223U;
            changes += subtitles.update((place >> 8) % static_cast<unsigned int>(count) * 3000LL + 2500);
        }
    });
    const double change = median_ns(21, 1000, [&] {
        for (int step = 0; step < 1000; ++step)
            changes += subtitles.update((1 + step % count) * 3000LL + 1);
    });
    std::printf("%9d records   unchanged %7.1f ns   after a jump %7.1f ns   new line %7.1f ns   (%ld changes)\n", count,
                same, jump, change, changes);
    subtitles.close();
}

void bench_draw(SubtitleControl& subtitles, const char* name, const QSize& size, int points, const QString& text)
{
    constexpr int repeats = 20;
    subtitles.setGeometry(0, 70, size.width(), size.height());
    subtitles.setFont(device_font(QStringLiteral("v28"), points, 50));
    subtitles.set_text_color(Qt::white, true);
    const double whole = median_ns(21, repeats, [&] {
        for (int step = 0; step < repeats; ++step)
            subtitles.OsdControl::draw(text);
    });
    QImage image = subtitles.background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    const double ring = median_ns(21, repeats, [&] {
        for (int step = 0; step < repeats; ++step)
            subtitles.draw_outline(image, 0xFF000000U + static_cast<unsigned int>(step));
    });
    std::printf("%-28s %dx%d   drawn in %6.3f ms, of it one ring %6.3f ms\n", name, size.width(), size.height(),
                whole / 1e6, ring / 1e6);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QWidget window;
    window.resize(480, 272);
    SubtitleControl subtitles(&window, "subtitle_control", 0x200010);
    window.show();

    for (const int count : {100, 10000, 1000000})
        bench_update(subtitles, count);

    const QString korean = QString::fromUtf8("이 영화의 자막은 두 줄로 되어 있습니다.\n두 번째 줄은 조금 더 짧습니다.");
    bench_draw(subtitles, "two Korean lines", {480, 120}, 20, korean);
    bench_draw(subtitles, "two Latin lines", {480, 120}, 20,
               "The subtitle of this film has two lines.\nThe second one is shorter.");
    bench_draw(subtitles, "two Korean lines, TV", {640, 124}, 28, korean);
    return 0;
}
