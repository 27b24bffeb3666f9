#pragma once

#include "media_callback.h"

#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// Writes down what an engine reports: "state 4", "stream 0 2", "error 2"; positions apart.
class ReportRecorder : public MediaCallback
{
public:
    int notify_state_change(PlayerState state) override
    {
        return add(QStringLiteral("state %1").arg(static_cast<int>(state)));
    }
    int notify_time_update(long long position) override
    {
        const std::lock_guard lock(m_mutex);
        m_positions.push_back(position);
        m_thread = std::this_thread::get_id();
        m_changed.notify_all();
        return 1;
    }
    int notify_error(unsigned int status) override { return add(QStringLiteral("error %1").arg(status)); }
    int notify_stream_change(StreamType type, StreamState state) override
    {
        return add(QStringLiteral("stream %1 %2").arg(static_cast<int>(type)).arg(static_cast<int>(state)));
    }

    QStringList reports() const
    {
        const std::lock_guard lock(m_mutex);
        return m_reports;
    }
    std::vector<long long> positions() const
    {
        const std::lock_guard lock(m_mutex);
        return m_positions;
    }
    long long position() const
    {
        const std::lock_guard lock(m_mutex);
        return m_positions.empty() ? -1 : m_positions.back();
    }
    std::thread::id thread() const
    {
        const std::lock_guard lock(m_mutex);
        return m_thread;
    }
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_reports.clear();
        m_positions.clear();
    }
    /// @return false when there are fewer than @p count reports after @p limit
    bool wait_for_reports(qsizetype count, std::chrono::milliseconds limit) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit, [&] { return m_reports.size() >= count; });
    }
    /// @return false when no position fulfils the condition after @p limit
    bool wait_for_position(const std::function<bool(long long)>& condition, std::chrono::milliseconds limit) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit,
                                  [&] { return std::any_of(m_positions.begin(), m_positions.end(), condition); });
    }

private:
    int add(const QString& report)
    {
        const std::lock_guard lock(m_mutex);
        m_reports += report;
        m_thread = std::this_thread::get_id();
        m_changed.notify_all();
        return 1;
    }

    mutable std::mutex m_mutex; ///< guards all below
    mutable std::condition_variable m_changed;
    QStringList m_reports;
    std::vector<long long> m_positions;
    std::thread::id m_thread;
};
