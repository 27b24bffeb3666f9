#pragma once

#include <mutex>

/// Holds the engine's reports back while the display is switched or the key frames are scanned.
///
/// An end of stream and a stop are remembered, so that they are not lost; everything else that is held back is
/// forgotten. Errors and starts of a stream do not pass through here. May be used from any thread.
class ReportGate
{
public:
    /// What was held back: for each report the number of the file it was about, 0 when there was none.
    struct Held {
        unsigned int end_of_stream = 0;
        unsigned int stopped = 0;
    };

    /// From now on reports are held back.
    void shut();
    /// Lets reports through again. @return what was held back since shut().
    Held open();
    bool is_shut() const;

    /// @return true when the report is held back; it is remembered then.
    bool hold_end_of_stream(unsigned int file);
    bool hold_stopped(unsigned int file);

private:
    bool hold(unsigned int Held::*report, unsigned int file);

    /// Guards everything below.
    mutable std::mutex mutex_;
    bool shut_ = false;
    Held held_;
};
