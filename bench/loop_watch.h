#pragma once

#include <QtCore/QBasicTimer>
#include <QtCore/QObject>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>

/// Processor time in seconds: CLOCK_THREAD_CPUTIME_ID or CLOCK_PROCESS_CPUTIME_ID; or what another clock shows.
inline double processor_seconds(clockid_t clock)
{
    timespec t{};
    clock_gettime(clock, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

/// Milliseconds that this thread was ready to run while other programs had the processors; 0 when the kernel does not
/// say.
inline double queued_ms()
{
    double queued_ns = 0;
    if (FILE* const file = std::fopen("/proc/thread-self/schedstat", "re")) {
        if (std::fscanf(file, "%*s %lf", &queued_ns) != 1)
            queued_ns = 0;
        std::fclose(file);
    }
    return queued_ns / 1e6;
}

/// Notes how long its thread is away from its event loop, by what is being done meanwhile.
class LoopWatch : public QObject
{
public:
    struct Absence {
        double wall_ms = 0;   ///< the time in which other programs had the processors is not in it
        double busy_ms = 0;   ///< processor time of the thread in it: the rest is waiting
        double queued_ms = 0; ///< other programs' turn in the same time
    };

    struct Activity {
        Absence longest;
        int above_limit = 0; ///< absences of more than 30 ms
    };

    void start()
    {
        last_ = Moment::now();
        timer_.start(interval_ms, Qt::PreciseTimer, this);
    }

    void stop()
    {
        tick();
        timer_.stop();
    }

    /// From here on absences are counted under this name.
    void doing(const char* what)
    {
        tick();
        what_ = what;
    }

    const std::map<std::string, Activity>& activities() const { return activities_; }

protected:
    void timerEvent(QTimerEvent*) override { tick(); }

private:
    static constexpr int interval_ms = 5;
    static constexpr double limit_ms = 30;

    struct Moment {
        std::chrono::steady_clock::time_point wall;
        double busy_ms;
        double queued_ms;
        static Moment now()
        {
            return {std::chrono::steady_clock::now(), processor_seconds(CLOCK_THREAD_CPUTIME_ID) * 1000, ::queued_ms()};
        }
    };

    void tick()
    {
        if (!timer_.isActive())
            return;
        const Moment now = Moment::now();
        const double queued = now.queued_ms - last_.queued_ms;
        const double away =
            std::chrono::duration<double, std::milli>(now.wall - last_.wall).count() - interval_ms - queued;
        Activity& activity = activities_[what_];
        if (away > activity.longest.wall_ms)
            activity.longest = {away, now.busy_ms - last_.busy_ms, queued};
        if (away > limit_ms)
            ++activity.above_limit;
        last_ = now;
    }

    QBasicTimer timer_;
    Moment last_{};
    const char* what_ = "nothing";
    std::map<std::string, Activity> activities_;
};
