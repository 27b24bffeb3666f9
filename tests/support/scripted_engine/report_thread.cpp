#include "report_thread.h"

ReportThread::ReportThread() : m_thread([this] { run(); }) {}

ReportThread::~ReportThread()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ReportThread::post(std::function<void()> task)
{
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(std::move(task));
    }
    m_changed.notify_all();
}

void ReportThread::finish()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_tasks.empty() && !m_running; });
}

void ReportThread::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ending || !m_tasks.empty(); });
        if (m_tasks.empty())
            return;
        const std::function<void()> task = std::move(m_tasks.front());
        m_tasks.pop_front();
        m_running = true;
        lock.unlock();
        task();
        lock.lock();
        m_running = false;
        m_changed.notify_all();
    }
}
