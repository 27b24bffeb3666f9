#pragma once

#include <QByteArray>
#include <functional>

/// The frame buffers' control: hands control strings to the device screen. GUI thread.
class CFbio
{
public:
    /// Carries out @p text, for example "/dev/fb1 size 640 480".
    /// @return false when the screen does not understand it; it then changes nothing and says so.
    bool control(const char* text);

    /// Tests see every string before the screen gets it. An empty function ends that.
    static void set_recorder(std::function<void(const QByteArray&)> recorder);
};
