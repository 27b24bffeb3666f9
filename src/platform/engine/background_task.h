#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// Work on a thread of its own that can be waited for with a limit, and left behind when a disk or a library does not
/// answer.
///
/// What the work touches must belong to it (shared pointers, copies): it may still run when the object is gone.
class BackgroundTask
{
public:
    BackgroundTask() = default;
    explicit BackgroundTask(std::function<void()> work);
    BackgroundTask(BackgroundTask&& other) noexcept = default;
    BackgroundTask& operator=(BackgroundTask&& other) noexcept;
    /// Joins the thread when the work is done, otherwise leaves it behind.
    ~BackgroundTask();

    /// @return true when the work is done, at once without any.
    bool wait_for(std::chrono::milliseconds limit);

private:
    struct Shared {
        std::mutex mutex;
        std::condition_variable changed;
        bool done = false; ///< guarded by mutex
    };

    std::shared_ptr<Shared> m_shared;
    std::thread m_thread;
};
