#pragma once

#include <QtGui/QImage>

#include <chrono>
#include <mutex>
#include <optional>

/// Waits for a picture among those that the engine gives to the video plane: noted on the engine's thread, read by the
/// GUI thread.
class FrameLog
{
public:
    static FrameLog& instance();

    /// Engine's thread.
    void note(const QImage& picture);

    /// From here on seen() tells when a picture came whose middle has this colour.
    void await(QRgb mark)
    {
        const std::lock_guard lock(mutex_);
        seen_.reset();
        awaited_ = mark;
    }

    std::optional<std::chrono::steady_clock::time_point> seen() const
    {
        const std::lock_guard lock(mutex_);
        return seen_;
    }

private:
    mutable std::mutex mutex_;
    std::optional<QRgb> awaited_;
    std::optional<std::chrono::steady_clock::time_point> seen_;
};
