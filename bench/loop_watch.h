#pragma once

#include <QtCore/QBasicTimer>
#include <QtCore/QObject>

#include <chrono>
#include <ctime>

/// Processor time in seconds: CLOCK_THREAD_CPUTIME_ID or CLOCK_PROCESS_CPUTIME_ID.
inline double processor_seconds(clockid_t clock)
{
    timespec t{};
    clock_gettime(clock, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

/// Notes the longest time that its thread was away from its event loop, and what was being done then.
class LoopWatch : public QObject
{
public:
    struct Absence {
        double wall_ms = 0;
        double busy_ms = 0; ///< processor time of the thread in it: the rest is waiting or other programs' turn
        const char* doing = "nothing";
    };

    void start()
    {
        last_ = std::chrono::steady_clock::now();
        last_busy_ = processor_seconds(CLOCK_THREAD_CPUTIME_ID);
        timer_.start(interval_ms, Qt::PreciseTimer, this);
    }

    void stop() { timer_.stop(); }

    /// From here on absences are counted under this name, and apart when the wait is by design.
    void doing(const char* what, bool by_design = false)
    {
        tick();
        what_ = what;
        by_design_ = by_design;
    }

    const Absence& in_use() const { return in_use_; }
    const Absence& in_waits() const { return in_waits_; }
    int above_30_ms() const { return above_30_ms_; }

protected:
    void timerEvent(QTimerEvent*) override { tick(); }

private:
    static constexpr int interval_ms = 5;

    void tick()
    {
        if (!timer_.isActive())
            return;
        const auto now = std::chrono::steady_clock::now();
        const double busy = processor_seconds(CLOCK_THREAD_CPUTIME_ID);
        const double away_ms = std::chrono::duration<double, std::milli>(now - last_).count() - interval_ms;
        Absence& longest = by_design_ ? in_waits_ : in_use_;
        if (away_ms > longest.wall_ms)
            longest = {away_ms, (busy - last_busy_) * 1000, what_};
        if (!by_design_ && away_ms > 30)
            ++above_30_ms_;
        last_ = now;
        last_busy_ = busy;
    }

    QBasicTimer timer_;
    std::chrono::steady_clock::time_point last_;
    double last_busy_ = 0;
    const char* what_ = "nothing";
    bool by_design_ = false;
    Absence in_use_;
    Absence in_waits_;
    int above_30_ms_ = 0;
};
