#pragma once

#include <QPoint>
#include <QSize>
#include <QString>

#include <optional>
#include <vector>

/// State of one plane of the display.
struct FrameBuffer {
    bool enabled = true;
    QSize size{640, 480}; ///< extent of the plane in pixels
    QPoint origin;        ///< the plane's pixel that is shown at #position
    QPoint position;      ///< in output coordinates
    bool operator==(const FrameBuffer&) const = default;
};

/// A frame-buffer control string, understood: the plane and its states, one after each word of the string.
struct FrameBufferCommand {
    int plane = 0;                   ///< 0 to 2
    std::vector<FrameBuffer> states; ///< in order; never empty
};

/// Reads a control string: the name of a plane, then any of "enable 0|1", "size WIDTH HEIGHT", "origin X Y" and
/// "position X Y", in any number and order. @p planes are the present states of "/dev/fb0" to "/dev/fb2".
/// @return nothing for an unknown plane or word, a missing or malformed number, or one out of range (sizes are 1 to
/// 4096, places -4096 to 4096).
std::optional<FrameBufferCommand> read_frame_buffer_command(const QString& text, const FrameBuffer* planes);
