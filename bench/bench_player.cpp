// Drives the real player on real films and measures it from inside.
//
// Usage: bench_player DIRECTORY handover TIMES | seek TIMES | films COUNT | use SECONDS
// Needs an X screen, a session bus and a home directory of its own. DIRECTORY holds films that bench/run makes: one.mkv
// and two.mkv (40 s; a mark in the middle, magenta then blue in the one, lime then red in the other, changed at 20 s),
// subtitled.mkv with subtitled.srt (as one.mkv).
//
//   handover  milliseconds from a list of files handed over to the painted first picture, in a player that plays
//   seek      milliseconds from a request on the time bar to the painted picture
//   films     memory while one film follows another: "COUNT resident MB, own MB" after some of them
//   use       what the GUI thread does not come back to its event loop for, in SECONDS of changing films, moving
//             about, opening panels and settings: "WHAT longest ms, of them busy ms, other programs' turn ms, times
//             above 30 ms"
//
// Fields are separated by tabs. Ends with 0 when all was measured.

#include "config.h"
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

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int patience_ms = 20000;

constexpr QRgb magenta = 0xff00ff;
constexpr QRgb blue = 0x0000ff;
constexpr QRgb lime = 0x00ff00;

FILE* table = nullptr; ///< the standard output; what the player prints goes nowhere

double ms_between(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::milli>(to - from).count();
}

/// Lets the event loop run; QTest's waits would keep the thread away from it.
void settle(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

class Bench
{
public:
    Bench(TavelVideo* window, const QDir& films) : window_(window), films_(films) {}

    bool complete() const { return complete_; }

    void measure_handovers(int times)
    {
        play("two.mkv", lime);
        for (int time = 0; time < times; ++time) {
            settle(1000);
            const double ms = time % 2 == 0 ? play("one.mkv", magenta) : play("two.mkv", lime);
            std::fprintf(table, "%.0f\n", ms);
        }
    }

    void measure_seeks(int times)
    {
        play_and_wait("one.mkv", magenta);
        for (int time = 0; time < times; ++time) {
            settle(1000);
            const bool forward = time % 2 == 0;
            const double ms = until_picture(forward ? blue : magenta, [&] { window_->seek_event(forward ? 25U : 5U); });
            std::fprintf(table, "%.0f\n", ms);
        }
    }

    void measure_films_in_a_row(int count)
    {
        for (int film = 1; film <= count; ++film) {
            if (film % 2 != 0)
                play_and_wait("one.mkv", magenta);
            else
                play_and_wait("two.mkv", lime);
            settle(1000);
            if (film == 1 || film == 2 || film % 5 == 0)
                print_memory(film);
        }
    }

    void measure_absences(int seconds)
    {
        LoopWatch watch;
        const auto start = Clock::now();
        watch.start();
        for (int round = 0; ms_between(start, Clock::now()) < seconds * 1000.0; ++round) {
            watch.doing("film changed");
            if (round % 2 == 0)
                play_and_wait("two.mkv", lime);
            else
                play_and_wait("subtitled.mkv", magenta);
            settle(500);
            use_everything(&watch, round);
        }
        watch.stop();
        for (const auto& [what, activity] : watch.activities()) {
            std::fprintf(table, "%s\t%.1f\t%.1f\t%.1f\t%d\n", what.c_str(), activity.longest.wall_ms,
                         activity.longest.busy_ms, activity.longest.queued_ms, activity.above_limit);
        }
    }

private:
    bool wait_until(const char* what, const std::function<bool()>& condition)
    {
        const auto start = Clock::now();
        while (!condition() && ms_between(start, Clock::now()) < patience_ms)
            settle(5);
        if (condition())
            return true;
        std::fprintf(stderr, "bench_player: did not happen: %s\n", what);
        complete_ = false;
        return false;
    }

    /// Milliseconds until the display shows the mark's colour, -1 when it never does.
    double until_picture(QRgb mark, const std::function<void()>& request)
    {
        picture_watch_.await(mark);
        const auto start = Clock::now();
        request();
        return wait_until("the picture", [this] { return picture_watch_.painted().has_value(); })
                   ? ms_between(start, *picture_watch_.painted())
                   : -1;
    }

    double play(const char* film, QRgb mark)
    {
        return until_picture(mark, [&] { QPEApplication::send_files({films_.absoluteFilePath(QLatin1String(film))}); });
    }

    void play_and_wait(const char* film, QRgb mark)
    {
        play(film, mark);
        wait_until("playing", [this] { return is_playing() && window_->is_seek_allowed(); });
    }

    bool is_playing() const { return window_->isIn(&TavelVideo::play_state) != 0; }

    void set_full_screen(bool on)
    {
        window_->postCustomEvent(on ? player_event::enter_full_screen : player_event::leave_full_screen);
        wait_until("full screen or the controls", [&] { return window_->is_full_screen() == on; });
    }

    static void key(Qt::Key key)
    {
        QTest::sendKeyEvent(QTest::Click, DeviceScreen::instance()->viewport(), key, QString(), Qt::NoModifier, 0);
        settle(300);
    }

    void use_everything(LoopWatch* watch, int round)
    {
        watch->doing("controls shown");
        set_full_screen(false);
        settle(1000);
        watch->doing("keys");
        for (const Qt::Key each : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left, Qt::Key_Up, Qt::Key_Down})
            key(each);
        watch->doing("playlist");
        window_->show_playlist();
        key(Qt::Key_Down);
        window_->hide_playlist();
        watch->doing("bookmark added");
        window_->add_bookmark(films_.absoluteFilePath(QStringLiteral("one.mkv")), 5);
        watch->doing("bookmarks");
        window_->show_bookmark();
        key(Qt::Key_Down);
        window_->hide_bookmark();
        watch->doing("seek");
        window_->seek_event(round % 3 == 0 ? 12U : 8U);
        settle(1000);
        watch->doing("pause");
        window_->postCustomEvent(player_event::pause);
        settle(700);
        window_->postCustomEvent(player_event::play);
        settle(700);
        watch->doing("settings opened");
        window_->postCustomEvent(player_event::open_settings);
        settle(1000);
        watch->doing("settings turned over");
        for (int page = 0; page < 6; ++page)
            key(Qt::Key_Right);
        watch->doing("settings closed");
        key(Qt::Key_Escape);
        watch->doing("full screen");
        set_full_screen(true);
        settle(2000);
    }

    static void print_memory(int film)
    {
        const ResidentMemory memory = ResidentMemory::now();
        std::fprintf(table, "%d\t%.1f\t%.1f\n", film, memory.own_mb + memory.file_mb, memory.own_mb);
    }

    TavelVideo* window_;
    QDir films_;
    PictureWatch picture_watch_;
    bool complete_ = true;
};

struct Part {
    const char* name;
    void (Bench::*measure)(int);
};

constexpr std::array<Part, 4> parts{{
    {"handover", &Bench::measure_handovers},
    {"seek", &Bench::measure_seeks},
    {"films", &Bench::measure_films_in_a_row},
    {"use", &Bench::measure_absences},
}};

/// The controls stay until they are told to go, and a film's end is the end.
void write_settings()
{
    Config config(QStringLiteral("tavel_video_setting.cfg"), Config::User);
    config.setGroup(QStringLiteral("display"));
    config.writeEntry(QStringLiteral("menutime"), 0);
    config.setGroup(QStringLiteral("playback"));
    config.writeEntry(QStringLiteral("next_action"), 2);
}

} // namespace

int main(int argc, char** argv)
{
    const auto* part = argc == 4 ? std::find_if(parts.begin(), parts.end(),
                                                [&](const Part& each) { return std::string(argv[2]) == each.name; })
                                 : parts.end();
    if (part == parts.end()) {
        std::fprintf(stderr, "usage: bench_player DIRECTORY handover TIMES | seek TIMES | films COUNT | use SECONDS\n");
        return 2;
    }
    const QDir films(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    const int amount = std::atoi(argv[3]);
    table = fdopen(dup(STDOUT_FILENO), "w");
    if (table == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        return 2;
    set_up_heap();
    int player_argc = 1;
    QPEApplication application(player_argc, argv);
    begin_to_load_engine();
    install_translation(application);
    write_settings();
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    application.showMainWidget(window);
    Bench bench(window, films);
    QTimer::singleShot(600, window, [&] {
        (bench.*part->measure)(amount);
        window->postCustomEvent(player_event::close);
    });
    QPEApplication::exec();
    delete window;
    std::fclose(table);
    return bench.complete() ? 0 : 1;
}
