// The way from the start of the process to its first picture, in steps: when each was over by the clock, and the
// processor time of the main thread and of the whole process until then.
//
// Usage: BENCH_STARTED=NS bench_start FILM
// NS is the monotonic clock in nanoseconds just before the program was started. Needs an X screen, a session bus and a
// home directory of its own. Prints "step<TAB>wall ms<TAB>main thread ms<TAB>process ms<TAB>own MB<TAB>file MB" for
// each step.

#include "device_screen.h"
#include "engine_loader.h"
#include "heap.h"
#include "loop_watch.h"
#include "picture_watch.h"
#include "player_event.h"
#include "qpe_application.h"
#include "resident_memory.h"
#include "tavel_video.h"
#include "translation.h"

#include <QtCore/QTimer>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace
{

constexpr int patience_ms = 20000;
constexpr QRgb magenta = 0xff00ff;

struct Step {
    std::string name;
    double wall_ms;
    double main_ms;
    double process_ms;
    double own_mb;
    double file_mb;
};

std::vector<Step> steps;

double monotonic_ms()
{
    return processor_seconds(CLOCK_MONOTONIC) * 1000;
}

void note(const char* name)
{
    static const double started_ms = std::atof(std::getenv("BENCH_STARTED")) / 1e6;
    const ResidentMemory memory = ResidentMemory::now();
    steps.push_back({name, monotonic_ms() - started_ms, processor_seconds(CLOCK_THREAD_CPUTIME_ID) * 1000,
                     processor_seconds(CLOCK_PROCESS_CPUTIME_ID) * 1000, memory.own_mb, memory.file_mb});
}

/// Ends the player after the first painting that follows the first picture.
class StartWatch : public QObject
{
public:
    explicit StartWatch(TavelVideo* window) : window_(window)
    {
        DeviceScreen::instance()->viewport()->installEventFilter(this);
        picture_watch_.await(magenta);
        startTimer(1, Qt::PreciseTimer);
    }

    bool complete() const { return painted_; }

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && !std::exchange(painting_, true))
            note("first painting begins");
        return false;
    }

    void timerEvent(QTimerEvent*) override
    {
        if (picture_watch_.arrived() && !std::exchange(arrived_, true))
            note("first picture has come");
        if (picture_watch_.painted() && !std::exchange(painted_, true)) {
            note("first picture painted");
            window_->postCustomEvent(player_event::close);
        }
    }

private:
    TavelVideo* window_;
    PictureWatch picture_watch_;
    bool painting_ = false;
    bool arrived_ = false;
    bool painted_ = false;
};

} // namespace

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
    set_up_heap();
    QPEApplication application(argc, argv);
    note("application object");
    begin_to_load_engine();
    install_translation(application);
    note("translation");
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    note("main window");
    application.showMainWidget(window);
    const StartWatch watch(window);
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
