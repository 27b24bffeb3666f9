// Drives the real player on real films and measures it from inside: hand-over and seek to picture, processor time, how
// long the GUI thread stays away from its loop, frames shown, memory over films in a row.
//
// Usage: bench_player DIRECTORY [SECONDS [USE_SECONDS]]
// Needs an X screen, a session bus and a home directory of its own. DIRECTORY holds the films that bench/run makes:
// one.mkv and two.mkv (40 s; a mark in the middle, magenta then blue in the one, lime then red in the other, changed at
// 20 s), subtitled.mkv with subtitled.srt, and 480x272.mkv, 1280x720.mkv, 1920x1080.mkv (10 s, 25 frames a second).
// Each processor time is of SECONDS (10), the GUI thread is watched for USE_SECONDS (30). Ends with 0 when all was
// measured.

#include "config.h"
#include "device_screen.h"
#include "frame_log.h"
#include "loop_watch.h"
#include "player_event.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "translation.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtTest/QTest>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int patience_ms = 20000;
constexpr int film_frames = 250;
constexpr double frame_ms = 40;
constexpr double late_factor = 1.6;

constexpr QRgb magenta = 0xff00ff;
constexpr QRgb blue = 0x0000ff;
constexpr QRgb lime = 0x00ff00;
constexpr QRgb red = 0xff0000;

double ms_between(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::milli>(to - from).count();
}

/// The median, and behind it the smallest and the largest.
QString spread(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    if (values.empty() || values.front() < 0)
        return QStringLiteral("not measured");
    return QStringLiteral("%1 (%2 to %3)")
        .arg(values[values.size() / 2], 0, 'f', 0)
        .arg(values.front(), 0, 'f', 0)
        .arg(values.back(), 0, 'f', 0);
}

/// Resident memory of this process in MB.
double resident_mb()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray status = file.readAll();
    const QByteArray rest = status.mid(status.indexOf("VmRSS:") + 6);
    return rest.left(rest.indexOf("kB")).trimmed().toDouble() / 1024;
}

FILE* table = nullptr; ///< the standard output; what the player prints goes nowhere

void row(const char* name, const char* unit, const QString& figure)
{
    std::fprintf(table, "| %-46s | %-6s | %s\n", name, unit, qPrintable(figure));
    std::fflush(table);
}

QString number(double value, int decimals = 0)
{
    return value < 0 ? QStringLiteral("not measured") : QString::number(value, 'f', decimals);
}

class Bench
{
public:
    Bench(TavelVideo* window, const QDir& films) : window_(window), films_(films) {}

    bool complete() const { return complete_; }

    void measure(int seconds, int use_seconds)
    {
        measure_films_in_a_row();
        measure_seeks();
        measure_processor_time(seconds);
        measure_absences(use_seconds);
        for (const char* size : {"480x272", "1280x720", "1920x1080"})
            measure_frames(size);
    }

private:
    /// Lets the event loop run; QTest's waits would keep the thread away from it.
    static void settle(int ms)
    {
        QEventLoop loop;
        QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    }

    bool wait_until(const char* what, const std::function<bool()>& condition)
    {
        const auto start = Clock::now();
        while (!condition() && ms_between(start, Clock::now()) < patience_ms)
            settle(10);
        if (condition())
            return true;
        std::fprintf(table, "%s: did not happen\n", what);
        complete_ = false;
        return false;
    }

    /// Milliseconds until the mark's colour is in a frame, -1 when it never is.
    double until_picture(QRgb mark, const std::function<void()>& request)
    {
        FrameLog::instance().await(mark);
        const auto start = Clock::now();
        request();
        return wait_until("the picture", [] { return FrameLog::instance().seen().has_value(); })
                   ? ms_between(start, *FrameLog::instance().seen())
                   : -1;
    }

    void hand_over(const char* film) const
    {
        QCopEnvelope envelope("QPE/Brevaton/video", "transmit_filename(QString)");
        envelope << QString(films_.absoluteFilePath(QLatin1String(film)) + QLatin1Char('\n'));
    }

    double play(const char* film, QRgb mark)
    {
        return until_picture(mark, [&] { hand_over(film); });
    }

    bool is_playing() const { return window_->isIn(&TavelVideo::play_state) != 0; }

    void set_full_screen(bool on)
    {
        window_->postCustomEvent(on ? player_event::enter_full_screen : player_event::leave_full_screen);
        wait_until("full screen or the controls", [&] { return window_->is_full_screen() == on; });
    }

    void measure_films_in_a_row()
    {
        std::vector<double> times;
        for (int film = 1; film <= 20; ++film) {
            const double time = film % 2 != 0 ? play("one.mkv", magenta) : play("two.mkv", lime);
            settle(1000);
            if (film > 1 && film <= 6)
                times.push_back(time);
            if (film == 1 || film == 5 || film == 10 || film == 20)
                row(qPrintable(QStringLiteral("resident memory, films in a row: %1").arg(film)), "MB",
                    number(resident_mb(), 1));
        }
        row("hand-over to first picture, median of 5", "ms", spread(times));
    }

    void measure_seeks()
    {
        play("one.mkv", magenta);
        wait_until("playing", [this] { return is_playing() && window_->is_seek_allowed(); });
        std::vector<double> times;
        for (int seek = 0; seek < 5; ++seek) {
            settle(1000);
            const bool forward = seek % 2 == 0;
            times.push_back(until_picture(forward ? blue : magenta, [&] { window_->seek_event(forward ? 25U : 5U); }));
        }
        row("seek to picture, median of 5", "ms", spread(times));
    }

    void measure_processor_time(int seconds)
    {
        const auto used = [&](const char* name, const char* film, QRgb mark, bool full_screen) {
            play(film, mark);
            wait_until("playing", [this] { return is_playing(); });
            set_full_screen(full_screen);
            settle(1000);
            const double before = processor_seconds(CLOCK_PROCESS_CPUTIME_ID);
            settle(seconds * 1000);
            row(qPrintable(QStringLiteral("processor time, %1 s, %2").arg(seconds).arg(QLatin1String(name))), "s",
                number(processor_seconds(CLOCK_PROCESS_CPUTIME_ID) - before, 2));
        };
        used("controls shown", "one.mkv", magenta, false);
        used("full screen", "two.mkv", lime, true);
        used("full screen, subtitles", "subtitled.mkv", magenta, true);
    }

    void key(Qt::Key key)
    {
        QTest::sendKeyEvent(QTest::Click, DeviceScreen::instance()->viewport(), key, QString(), Qt::NoModifier, 0);
        settle(300);
    }

    void measure_absences(int use_seconds)
    {
        LoopWatch watch;
        const auto start = Clock::now();
        watch.start();
        for (int round = 0; ms_between(start, Clock::now()) < use_seconds * 1000.0; ++round) {
            watch.doing("film changed", true);
            play(round % 2 == 0 ? "two.mkv" : "subtitled.mkv", round % 2 == 0 ? lime : magenta);
            wait_until("playing", [this] { return is_playing() && window_->is_seek_allowed(); });
            settle(500);
            watch.doing("controls shown");
            set_full_screen(false);
            settle(1000);
            for (const Qt::Key each : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Left})
                key(each);
            watch.doing("playlist");
            window_->show_playlist();
            key(Qt::Key_Down);
            window_->hide_playlist();
            watch.doing("bookmarks");
            window_->add_bookmark(films_.absoluteFilePath(QStringLiteral("one.mkv")), 5);
            window_->show_bookmark();
            key(Qt::Key_Down);
            window_->hide_bookmark();
            watch.doing("seek");
            window_->seek_event(round % 3 == 0 ? 12U : 8U);
            settle(1000);
            watch.doing("pause");
            window_->postCustomEvent(player_event::pause);
            settle(700);
            window_->postCustomEvent(player_event::play);
            settle(700);
            watch.doing("settings");
            window_->postCustomEvent(player_event::open_settings);
            settle(1000);
            key(Qt::Key_Escape);
            watch.doing("full screen");
            set_full_screen(true);
            settle(2000);
        }
        watch.stop();
        const auto told = [](const LoopWatch::Absence& absence) {
            return QStringLiteral("%1 (%2 of them busy; %3)")
                .arg(number(absence.wall_ms), number(absence.busy_ms), QLatin1String(absence.doing));
        };
        row(qPrintable(QStringLiteral("GUI thread away at longest, %1 s of use").arg(use_seconds)), "ms",
            told(watch.in_use()));
        row("  how often above 30 ms", "times", number(watch.above_30_ms()));
        row("  at longest while a film is changed", "ms", told(watch.in_waits()));
    }

    void measure_frames(const char* size)
    {
        window_->postCustomEvent(player_event::stop);
        wait_until("the stop", [this] { return !is_playing(); });
        settle(500);
        FrameLog::instance().take();
        hand_over(qPrintable(QLatin1String(size) + QStringLiteral(".mkv")));
        if (!wait_until("playing", [this] { return is_playing() && window_->position() > 0; }))
            return;
        const auto started = Clock::now();
        wait_until("the film's end", [this] { return !is_playing() || window_->position() == 0; });
        const std::vector<Clock::time_point> times = FrameLog::instance().take();
        int late = 0;
        for (std::size_t i = 1; i < times.size(); ++i) {
            if (times[i - 1] > started && ms_between(times[i - 1], times[i]) > late_factor * frame_ms)
                ++late;
        }
        row(qPrintable(QStringLiteral("frames shown of %1, film of %2").arg(film_frames).arg(QLatin1String(size))),
            "frames", QStringLiteral("%1, of them %2 late").arg(times.size()).arg(late));
    }

    TavelVideo* window_;
    QDir films_;
    bool complete_ = true;
};

/// The controls stay until they are told to go, and a film's end is the end.
void write_settings()
{
    Config config(QStringLiteral("tavel_video_setting.cfg"), Config::User);
    config.setGroup(QStringLiteral("display"));
    config.writeEntry(QStringLiteral("menutime"), 0);
    config.setGroup(QStringLiteral("playback"));
    config.writeEntry(QStringLiteral("next_action"), 0);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_player DIRECTORY [SECONDS [USE_SECONDS]]\n");
        return 2;
    }
    const QDir films(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 10;
    const int use_seconds = argc > 3 ? std::atoi(argv[3]) : 30;
    table = fdopen(dup(STDOUT_FILENO), "w");
    if (table == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
        return 2;
    mallopt(M_ARENA_MAX, 1); // as the player does
    int player_argc = 1;
    QPEApplication application(player_argc, argv);
    install_translation(application);
    write_settings();
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    application.showMainWidget(window);
    Bench bench(window, films);
    QTimer::singleShot(600, window, [&] {
        bench.measure(seconds, use_seconds);
        window->postCustomEvent(player_event::close);
    });
    QPEApplication::exec();
    delete window;
    return bench.complete() ? 0 : 1;
}
