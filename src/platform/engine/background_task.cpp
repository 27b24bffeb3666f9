#include "background_task.h"

#include <utility>

BackgroundTask::BackgroundTask(std::function<void()> work)
    : m_shared(std::make_shared<Shared>()), m_thread([shared = m_shared, work = std::move(work)]() mutable {
        work();
        work = nullptr; // frees what it holds on this thread, before anybody is told
        const std::lock_guard lock(shared->mutex);
        shared->done = true;
        shared->changed.notify_all();
    })
{
}

BackgroundTask& BackgroundTask::operator=(BackgroundTask&& other) noexcept
{
    BackgroundTask old = std::move(*this);
    m_shared = std::move(other.m_shared);
    m_thread = std::move(other.m_thread);
    return *this;
}

BackgroundTask::~BackgroundTask()
{
    if (!m_thread.joinable())
        return;
    if (wait_for(std::chrono::milliseconds(0)))
        m_thread.join();
    else
        m_thread.detach();
}

bool BackgroundTask::wait_for(std::chrono::milliseconds limit)
{
    if (!m_shared)
        return true;
    std::unique_lock lock(m_shared->mutex);
    return m_shared->changed.wait_for(lock, limit, [this] { return m_shared->done; });
}
