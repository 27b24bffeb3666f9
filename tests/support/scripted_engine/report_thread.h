#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

/// Runs tasks one after the other on a thread of its own, as the real engine does with its reports.
class ReportThread
{
public:
    ReportThread();
    /// Runs what is still waiting, then ends the thread.
    ~ReportThread();
    ReportThread(const ReportThread&) = delete;
    ReportThread& operator=(const ReportThread&) = delete;

    /// Puts @p task behind the others.
    void post(std::function<void()> task);
    /// Waits until all tasks have run. Must not be called by one of them.
    void finish();

private:
    void run();

    std::mutex m_mutex; ///< guards all below but the thread
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_tasks;
    bool m_running = false;
    bool m_ending = false;
    std::thread m_thread;
};
