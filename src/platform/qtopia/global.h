#pragma once

#include <chrono>
#include <functional>

/// The player's waits. They block the calling thread; tests can shorten or record them in one place.
class Global
{
public:
    static void msleep(int milliseconds);
    static void usleep(int microseconds);
    static void sleep(int seconds);

    /// Replaces the waiting itself, for tests: @p sleeper is called on the thread that would have waited. An empty
    /// function restores the real wait.
    static void set_sleeper(std::function<void(std::chrono::microseconds)> sleeper);
};
