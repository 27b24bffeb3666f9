#include "report_gate.h"

#include <utility>

void ReportGate::shut()
{
    const std::lock_guard lock(mutex_);
    shut_ = true;
}

ReportGate::Held ReportGate::open()
{
    const std::lock_guard lock(mutex_);
    shut_ = false;
    return std::exchange(held_, Held());
}

bool ReportGate::is_shut() const
{
    const std::lock_guard lock(mutex_);
    return shut_;
}

bool ReportGate::hold_end_of_stream(unsigned int file)
{
    return hold(&Held::end_of_stream, file);
}

bool ReportGate::hold_stopped(unsigned int file)
{
    return hold(&Held::stopped, file);
}

bool ReportGate::hold(unsigned int Held::*report, unsigned int file)
{
    const std::lock_guard lock(mutex_);
    if (shut_)
        held_.*report = file;
    return shut_;
}
