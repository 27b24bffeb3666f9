#pragma once

#include <functional>

/// The screen controller: chooses LCD or TV and knows what is plugged in. GUI thread.
class TolmI2c
{
public:
    /// Shows the whole user interface plane, 640x480, on the TV.
    void V28_ScreenSetTvMode();
    /// Shows the LCD's part of it, 480x272.
    void V28_ScreenSetLcdMode();

    /// Above 0 when a TV is connected. With a window system, and on a remote screen, it is 0 unless the environment
    /// variable TAVEL_TV says otherwise, since a desk with two monitors must not start on the TV; where the player has
    /// the machine's displays to itself the second connected display connector counts.
    int V28_ReadProcFile_ScreenStatus() const;

    /// Above 0 when a digital audio output is there: the sound system lists one, or TAVEL_DIGITAL_OUT says so.
    int Is24PinConnect() const;

    /// Tests see the name of every operation, before it acts. An empty function ends that.
    static void set_recorder(std::function<void(const char* operation)> recorder);
};
