#pragma once

#include <QtGlobal>

class QWidget;

/// How many of the display's own pixels one pixel of the player's plane is wide where @p widget is shown: 1 on the
/// device and for a widget that is not on the display yet, more in an enlarged window, 4 at most. GUI thread only.
///
/// Text that is drawn into a pixmap once is sharp when the pixmap has this device pixel ratio.
qreal display_scale(const QWidget* widget);
