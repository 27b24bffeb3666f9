#pragma once

#include <Qt>

/// The toolkit's flags for a device's window flags: 16 and 0x200010 are a window without a frame, 0x40 is a dialog
/// without one, anything else is an ordinary widget. None of the first two makes a window of a widget that has a
/// parent.
Qt::WindowFlags window_flags(unsigned int device_flags);
