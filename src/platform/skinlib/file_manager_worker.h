#pragma once

#include <QObject>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <stop_token>
#include <thread>

/// A thread that does slow work for the file manager, one job after the other, and brings the results to the GUI
/// thread.
///
/// Owned and called by the GUI thread, but for deliver(). The thread starts with the first job. The destructor cancels
/// and waits for the running job, so jobs have to look at their stop token often.
class FileManagerWorker : public QObject
{
public:
    using Job = std::function<void(const std::stop_token& cancelled)>;
    using Result = std::function<void()>;

    FileManagerWorker() = default;
    ~FileManagerWorker() override;
    Q_DISABLE_COPY_MOVE(FileManagerWorker)

    /// Does @p job behind the ones that wait.
    void start(Job job);

    /// Drops the jobs that wait and the results that were not taken, and asks the running job to stop. Does not wait.
    void cancel();

    /// For jobs, on the worker's thread: has @p result called on the GUI thread, in order, unless the job was cancelled
    /// meanwhile.
    void deliver(const std::stop_token& cancelled, Result result);

    /// True while a job waits or runs, or a result was not taken yet.
    bool is_busy() const;

    bool event(QEvent* event) override;

private:
    template<typename Work> struct Cancellable {
        std::stop_token cancelled;
        Work work;
    };

    void work();

    std::stop_source stop_; ///< of the jobs started since the last cancel(); GUI thread
    std::thread thread_;

    mutable std::mutex mutex_; ///< guards the fields below
    std::condition_variable wake_;
    std::deque<Cancellable<Job>> jobs_;
    std::deque<Cancellable<Result>> results_;
    bool is_running_ = false; ///< a job is being done
    bool is_ending_ = false;  ///< the thread is to end
};
