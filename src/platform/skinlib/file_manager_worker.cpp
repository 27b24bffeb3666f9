#include "file_manager_worker.h"

#include "custom_event.h"

#include <utility>

namespace
{

/// Tells the worker's object in the GUI thread that there is a result.
constexpr int result_event = 1100;

} // namespace

FileManagerWorker::~FileManagerWorker()
{
    cancel();
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

void FileManagerWorker::start(Job job)
{
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back({stop_.get_token(), std::move(job)});
    }
    if (!thread_.joinable())
        thread_ = std::thread(&FileManagerWorker::work, this);
    wake_.notify_one();
}

void FileManagerWorker::cancel()
{
    stop_.request_stop();
    stop_ = std::stop_source();
    std::deque<Cancellable<Job>> dropped_jobs;
    std::deque<Cancellable<Result>> dropped_results;
    const std::lock_guard lock(mutex_);
    dropped_jobs.swap(jobs_);
    dropped_results.swap(results_);
}

void FileManagerWorker::deliver(const std::stop_token& cancelled, Result result)
{
    {
        const std::lock_guard lock(mutex_);
        if (cancelled.stop_requested())
            return;
        results_.push_back({cancelled, std::move(result)});
    }
    post_custom_event(this, new QCustomEvent(result_event));
}

bool FileManagerWorker::is_busy() const
{
    const std::lock_guard lock(mutex_);
    return is_running_ || !jobs_.empty() || !results_.empty();
}

bool FileManagerWorker::event(QEvent* event)
{
    if (event->type() != static_cast<QEvent::Type>(result_event))
        return QObject::event(event);
    Cancellable<Result> next;
    {
        const std::lock_guard lock(mutex_);
        if (results_.empty())
            return true;
        next = std::move(results_.front());
        results_.pop_front();
    }
    if (!next.cancelled.stop_requested())
        next.work();
    return true;
}

void FileManagerWorker::work()
{
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return is_ending_ || !jobs_.empty(); });
        if (is_ending_)
            return;
        {
            const Cancellable<Job> next = std::move(jobs_.front());
            jobs_.pop_front();
            is_running_ = true;
            lock.unlock();
            if (!next.cancelled.stop_requested())
                next.work(next.cancelled);
        }
        lock.lock();
        is_running_ = false;
    }
}
