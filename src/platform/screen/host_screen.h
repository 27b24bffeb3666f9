#pragma once

#include <QGuiApplication>
#include <QString>

/// What the host gives the player to show itself on.
enum class HostScreen : int {
    Windowed = 0, ///< a window beside those of other programs, or nothing that anybody sees
    Remote = 1,   ///< a whole screen that is none of this machine's displays (VNC)
    Displays = 2, ///< this machine's own displays, without a window system
};

/// What the toolkit's platform @p platform gives.
///
/// On a whole screen, remote or not, the player's display fills it. Only where it drives the machine's displays itself
/// may a second connected one be the TV: what is plugged into a machine whose screen is shown by VNC says nothing about
/// that screen, and it may well be a desk with two monitors.
HostScreen host_screen(const QString& platform = QGuiApplication::platformName());
