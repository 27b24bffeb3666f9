// The way from the start of the process to its first picture, in steps: when each was over by the clock, and the
// processor time of the main thread and of the whole process until then.
//
// Usage: BENCH_STARTED=NS bench_start FILM
// NS is the monotonic clock in nanoseconds just before the program was started. Needs an X screen, a session bus and a
// home directory of its own. Prints "step<TAB>wall ms<TAB>main thread ms<TAB>process ms<TAB>own MB<TAB>file MB" for
// each step.

#include "device_screen.h"
#include "loop_watch.h"
#include "player_event.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "translation.h"
#include "video_plane.h"

#include <QtCore/QTimer>

#include <malloc.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int patience_ms = 20000;

struct Step {
    std::string name;
    double wall_ms;
    double main_ms; ///< below 0: another thread's step
    double process_ms;
    double own_mb;
    double file_mb;
};

std::mutex mutex;
std::vector<Step> steps;       ///< guarded by mutex
bool picture_is_there = false; ///< guarded by mutex

double monotonic_ms()
{
    return processor_seconds(CLOCK_MONOTONIC) * 1000;
}

void note(const char* name)
{
    static const double started_ms = std::atof(std::getenv("BENCH_STARTED")) / 1e6;
    long total_pages = 0;
    long resident_pages = 0;
    long file_pages = 0;
    if (FILE* const statm = std::fopen("/proc/self/statm", "re")) {
        if (std::fscanf(statm, "%ld %ld %ld", &total_pages, &resident_pages, &file_pages) != 3)
            resident_pages = file_pages = 0;
        std::fclose(statm);
    }
    const double page_mb = static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
    const double main_ms = gettid() == getpid() ? processor_seconds(CLOCK_THREAD_CPUTIME_ID) * 1000 : -1;
    const std::lock_guard lock(mutex);
    steps.push_back({name, monotonic_ms() - started_ms, main_ms, processor_seconds(CLOCK_PROCESS_CPUTIME_ID) * 1000,
                     static_cast<double>(resident_pages - file_pages) * page_mb,
                     static_cast<double>(file_pages) * page_mb});
}

void note_once(const char* name, bool& noted)
{
    if (!noted) {
        noted = true;
        note(name);
    }
}

/// Ends the player after the first painting that follows the first picture.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(TavelVideo* window) : window_(window) {}

    bool complete() const { return complete_; }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        note_once("display: first painting begins", begun_);
        const std::lock_guard lock(mutex);
        if (picture_is_there && !std::exchange(complete_, true)) {
            QTimer::singleShot(0, window_, [this] {
                note("display: first picture painted");
                window_->postCustomEvent(player_event::close);
            });
        }
        return false;
    }

private:
    TavelVideo* window_;
    bool begun_ = false;
    bool complete_ = false;
};

} // namespace

// The linker leads the engine's calls here, and ours to the real functions.
struct mpv_handle;
extern "C" {
mpv_handle* __real_mpv_create();
int __real_mpv_initialize(mpv_handle* handle);
void __real__ZN10VideoPlane9end_frameEv(VideoPlane* plane);
mpv_handle* __wrap_mpv_create();
int __wrap_mpv_initialize(mpv_handle* handle);
void __wrap__ZN10VideoPlane9end_frameEv(VideoPlane* plane);

mpv_handle* __wrap_mpv_create()
{
    note("engine: asked for");
    return __real_mpv_create();
}

int __wrap_mpv_initialize(mpv_handle* handle)
{
    const int status = __real_mpv_initialize(handle);
    note("engine: library ready");
    return status;
}

void __wrap__ZN10VideoPlane9end_frameEv(VideoPlane* plane)
{
    static bool noted = false;
    note_once("engine: first picture rendered", noted);
    {
        const std::lock_guard lock(mutex);
        picture_is_there = true;
    }
    __real__ZN10VideoPlane9end_frameEv(plane);
}
}

int main(int argc, char** argv)
{
    if (argc != 2 || std::getenv("BENCH_STARTED") == nullptr) {
        std::fprintf(stderr, "usage: BENCH_STARTED=NS bench_start FILM\n");
        return 2;
    }
    note("libraries loaded, main() begins");
    FILE* const table = fdopen(dup(STDOUT_FILENO), "w");
    if (table == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        return 2;
    mallopt(M_ARENA_MAX, 1); // as the player does
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    QPEApplication application(argc, argv);
    note("application object");
    install_translation(application);
    note("translation");
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    note("main window");
    application.showMainWidget(window);
    PaintWatch watch(window);
    DeviceScreen::instance()->viewport()->installEventFilter(&watch);
    note("display shown");
    QTimer::singleShot(0, [] { note("event loop: first turn"); });
    QTimer::singleShot(patience_ms, window, [window] { window->postCustomEvent(player_event::close); });
    QPEApplication::exec();
    delete window;
    for (const Step& step : steps)
        std::fprintf(table, "%s\t%.1f\t%.1f\t%.1f\t%.1f\t%.1f\n", step.name.c_str(), step.wall_ms, step.main_ms,
                     step.process_ms, step.own_mb, step.file_mb);
    std::fclose(table);
    return watch.complete() ? 0 : 1;
}
