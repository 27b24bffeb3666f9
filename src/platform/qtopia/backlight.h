#pragma once

#include <QString>

/// The brightness of the built-in display.
class Backlight
{
public:
    static constexpr int brightest = 255;

    /// @param directory where the kernel lists backlights; tests bring their own.
    explicit Backlight(const QString& directory = QStringLiteral("/sys/class/backlight"));

    /// Sets the brightness, 0 to 255; more counts as 255, less as 0. Where the user may not write the kernel's file the
    /// login manager is asked, without waiting for its answer.
    /// @return false when there is no backlight.
    bool set(int level) const;

private:
    QString directory_;
};
