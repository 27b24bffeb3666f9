#pragma once

#include <QString>

/// Whether the sound system lists a digital output (S/PDIF or HDMI) that takes compressed sound.
/// @param root where the sound system describes its devices
bool has_digital_output(const QString& root = QStringLiteral("/proc/asound"));
