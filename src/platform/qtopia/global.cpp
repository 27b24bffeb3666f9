#include "global.h"

#include <mutex>
#include <thread>
#include <utility>

namespace
{

std::mutex sleeper_mutex;

// Guarded by sleeper_mutex.
std::function<void(std::chrono::microseconds)>& current_sleeper()
{
    static std::function<void(std::chrono::microseconds)> sleeper;
    return sleeper;
}

void wait(std::chrono::microseconds duration)
{
    std::function<void(std::chrono::microseconds)> sleeper;
    {
        const std::lock_guard lock(sleeper_mutex);
        sleeper = current_sleeper();
    }
    if (sleeper)
        sleeper(duration);
    else
        std::this_thread::sleep_for(duration);
}

} // namespace

void Global::msleep(int milliseconds)
{
    wait(std::chrono::milliseconds(milliseconds));
}

void Global::usleep(int microseconds)
{
    wait(std::chrono::microseconds(microseconds));
}

void Global::sleep(int seconds)
{
    wait(std::chrono::seconds(seconds));
}

void Global::set_sleeper(std::function<void(std::chrono::microseconds)> sleeper)
{
    const std::lock_guard lock(sleeper_mutex);
    current_sleeper() = std::move(sleeper);
}
