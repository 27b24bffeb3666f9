// What the playlist and the bookmarks cost by the number of their rows: reading and writing the file, removing and
// moving rows, and one step of the running name.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

#include "bookmark_widget.h"
#include "list_box_skin.h"
#include "play_list_widget.h"
#include "qpe_application.h"
#include "shell.h"

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int rounds = 15;
constexpr int repeats = 1000; ///< removals and moves in a round
constexpr int ticks = 200;    ///< steps of the running name in a round

/// Median of @p rounds runs of @p work, in microseconds for each of the @p count things done in a run.
template<typename Work> double median_us(int count, Work work)
{
    std::vector<double> runs;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        work();
        const std::chrono::duration<double, std::micro> spent = Clock::now() - start;
        runs.push_back(spent.count() / count);
    }
    std::nth_element(runs.begin(), runs.begin() + rounds / 2, runs.end());
    return runs[rounds / 2];
}

QString path_of(int number)
{
    return QString::fromUtf8("/media/카드/드라마/시즌 %1/봄날의 어느 오후에 함께 걸었던 골목길 이야기 제 %2 화.avi")
        .arg(number / 20)
        .arg(number);
}

/// Gives the list box a place, since a device without a skin leaves it without one.
ListBoxSkin* placed_list_box(QWidget* panel, const QSize& size)
{
    panel->resize(size.width() + 4, size.height() + 56);
    auto* list_box = panel->findChild<ListBoxSkin*>();
    list_box->setGeometry(QRect(QPoint(2, 26), size));
    panel->show();
    return list_box;
}

void bench_playlist(QWidget* window, int count)
{
    auto panel = std::make_unique<PlayListWidget>(window, "PLAYLIST");
    panel->clear();
    for (int row = 0; row < count; ++row)
        panel->add_track(path_of(row));
    unsigned int time = 0;
    const double save = median_us(1, [&] { panel->save_now_playing(++time); });
    // The destructor finds nothing new to write.
    const double load = median_us(1, [&] { const PlayListWidget loaded(window, "PLAYLIST"); });

    ListBoxSkin* list_box = placed_list_box(panel.get(), {188, 110});
    panel->set_now_playing(-1);
    const double remove = median_us(repeats, [&] {
        for (int step = 0; step < repeats; ++step) {
            panel->set_current_index(0);
            panel->remove_track();
            panel->add_track(path_of(step));
            panel->set_now_playing(-1);
        }
    });
    const double move = median_us(repeats, [&] {
        for (int step = 0; step < repeats; ++step) {
            if (panel->get_current_index() + 1 < count)
                panel->move_down();
            else
                panel->set_current_index(0);
        }
    });
    const double tick = median_us(ticks, [&] {
        for (int step = 0; step < ticks; ++step) {
            panel->update_scroll_text();
            list_box->repaint(list_box->itemRect(list_box->item(list_box->currentItem())));
        }
    });
    std::printf("| playlist  | %4d | %10.0f | %10.0f | %10.2f | %10.2f | %10.2f |\n", count, load, save, remove, move,
                tick);
}

void bench_bookmarks(QWidget* window, int count)
{
    auto panel = std::make_unique<BookmarkWidget>(window, "BOOKMARK");
    while (panel->get_count() > 0)
        panel->remove_track();
    for (int row = 0; row < count; ++row)
        panel->add_track(path_of(row), static_cast<unsigned int>(row));
    const double load = median_us(1, [&] { const BookmarkWidget loaded(window, "BOOKMARK"); });

    // Each of these writes the file.
    constexpr int changes = 20;
    const double remove = median_us(changes, [&] {
        for (int step = 0; step < changes; ++step) {
            panel->add_track(path_of(step), 5);
            panel->remove_track();
        }
    });
    bool is_down = false;
    const double move = median_us(changes, [&] {
        for (int step = 0; step < changes; ++step) {
            if (is_down)
                panel->move_up();
            else
                panel->move_down();
            is_down = !is_down;
        }
    });
    ListBoxSkin* list_box = placed_list_box(panel.get(), {208, 110});
    const double tick = median_us(ticks, [&] {
        for (int step = 0; step < ticks; ++step) {
            panel->update_scroll_text();
            list_box->repaint(list_box->itemRect(list_box->item(list_box->currentItem())));
        }
    });
    std::printf("| bookmarks | %4d | %10.0f | %10s | %10.2f | %10.2f | %10.2f |\n", count, load, "-", remove, move,
                tick);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir device;
    qputenv("QPEDIR", device.path().toUtf8() + "/");
    qputenv("XDG_CONFIG_HOME", device.path().toUtf8());
    QApplication application(argc, argv);
    // "sync" is not the lists' own work, and has a thread to itself.
    Shell::set_recorder([](const QByteArray&) { return 0; });
    QWidget window;
    window.setObjectName(QStringLiteral("tavel_video"));
    window.resize(480, 272);
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QDir().mkpath(device.filePath(QStringLiteral("etc/tavel_video")));

    std::puts(
        "The lists by their rows, microseconds (medians); a bookmark's removal is preceded by an addition, and both "
        "write the file, as does a move");
    std::puts("");
    std::puts("| list      | rows |       load |       save |     remove |       move |       tick |");
    std::puts("|-----------|------|------------|------------|------------|------------|------------|");
    for (const int count : {10, 100, 999})
        bench_playlist(&window, count);
    for (const int count : {10, 99})
        bench_bookmarks(&window, count);
    return 0;
}
