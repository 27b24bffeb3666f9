#pragma once

class QKeyEvent;
class QWidget;

/// The device key that hides the controls; it has no name in the toolkit.
inline constexpr int hide_controls_key = 0x2103;

/// The device's key for a key of the host: a row of the key-pad table, else the key itself. Keys with Ctrl, Alt or Meta
/// stay themselves, and so do letters and blanks while @p receiver takes text.
int device_key(const QKeyEvent& event, const QWidget* receiver);
