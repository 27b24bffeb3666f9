// The real player with every allocation counted: what the process holds by itself, apart from the pages of libraries,
// step by step; and who holds the most.
//
// Usage: bench_memory [--holders] FILM [FILM...]
// The first FILM is played alone, then all are handed over and the second is played from among them. Without a screen,
// QT_QPA_PLATFORM=offscreen. Needs a home directory of its own. Prints lines of fields separated by tabs:
// "step, NAME, held MB, most so far MB, blocks", and with --holders "library, NAME, MB, blocks" and "asker, NAME, MB,
// blocks" at the end of the steps, the largest first.

#include "engine_loader.h"
#include "heap.h"
#include "heap_count.h"
#include "picture_watch.h"
#include "player_event.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "translation.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

// In an emulator a film takes its time.
constexpr int patience_ms = 180000;
constexpr int settle_ms = 2000;
constexpr std::int64_t still_bytes = 200 * 1024;
constexpr std::size_t most_holders = 14;

constexpr QRgb magenta = 0xff00ff;

FILE* table = nullptr; ///< the standard output; what the player prints goes nowhere

double megabytes(std::int64_t bytes)
{
    return static_cast<double>(bytes) / (1024 * 1024);
}

void step(const char* name)
{
    const heap_count::Totals totals = heap_count::totals();
    std::fprintf(table, "step\t%s\t%.2f\t%.2f\t%lld\n", name, megabytes(totals.live_bytes),
                 megabytes(totals.peak_bytes), static_cast<long long>(totals.live_blocks));
    std::fflush(table);
}

void print(const char* kind, const std::vector<heap_count::Holder>& holders)
{
    std::int64_t bytes = 0;
    std::int64_t blocks = 0;
    for (std::size_t at = 0; at < holders.size(); ++at) {
        const heap_count::Holder& holder = holders[at];
        if (at < most_holders) {
            std::fprintf(table, "%s\t%s\t%.2f\t%lld\n", kind, holder.name.c_str(), megabytes(holder.bytes),
                         static_cast<long long>(holder.blocks));
        } else {
            bytes += holder.bytes;
            blocks += holder.blocks;
        }
    }
    std::fprintf(table, "%s\tall others\t%.2f\t%lld\n", kind, megabytes(bytes), static_cast<long long>(blocks));
}

void settle(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Lets the event loop run until the process neither takes nor gives back memory.
void settle()
{
    for (std::int64_t before = -1; std::abs(heap_count::totals().live_bytes - before) > still_bytes;) {
        before = heap_count::totals().live_bytes;
        settle(settle_ms);
    }
}

/// Whether the films' picture came.
bool play(TavelVideo& window, const QStringList& films)
{
    PictureWatch picture_watch;
    picture_watch.await(magenta);
    QPEApplication::send_files(films);
    for (int waited = 0; waited < patience_ms; waited += 50) {
        if (picture_watch.painted() && window.isIn(&TavelVideo::play_state) != 0) {
            settle();
            return true;
        }
        settle(50);
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const bool tells_holders = argc > 1 && std::strcmp(argv[1], "--holders") == 0;
    const int first = tells_holders ? 2 : 1;
    if (argc <= first) {
        std::fprintf(stderr, "usage: bench_memory [--holders] FILM [FILM...]\n");
        return 2;
    }
    table = fdopen(dup(STDOUT_FILENO), "w");
    if (table == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        return 2;
    step("libraries loaded");
    if (tells_holders)
        heap_count::note_holders();
    set_up_heap();
    int player_argc = 1;
    QPEApplication application(player_argc, argv);
    step("application object");
    begin_to_load_engine();
    install_translation(application);
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    step("main window");
    application.showMainWidget(window);
    QStringList films;
    for (int at = first; at < argc; ++at)
        films.append(QDir().absoluteFilePath(QString::fromLocal8Bit(argv[at])));
    bool complete = true;
    QTimer::singleShot(1000, window, [&] {
        step("idle");
        complete = play(*window, films.mid(0, 1));
        step("film played");
        if (films.size() > 1) {
            complete = play(*window, films.mid(1)) && complete;
            step("all films in the list, the second played");
        }
        if (tells_holders) {
            print("library", heap_count::by_library());
            print("asker", heap_count::by_asker());
        }
        window->postCustomEvent(player_event::close);
    });
    QPEApplication::exec();
    delete window;
    std::fclose(table);
    return complete ? 0 : 1;
}
