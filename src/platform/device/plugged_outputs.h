#pragma once

#include <QString>
#include <optional>

/// What is plugged into the machine, read from the kernel's files.
class PluggedOutputs
{
public:
    /// @param system_directory and @param process_directory are "/sys" and "/proc"; tests bring their own.
    explicit PluggedOutputs(const QString& system_directory = QStringLiteral("/sys"),
                            const QString& process_directory = QStringLiteral("/proc"));

    /// How many display connectors have a display plugged in.
    int connected_displays() const;

    /// Whether the sound system lists a digital output (S/PDIF or HDMI).
    bool has_digital_sound() const;

    /// What the environment variable @p name says: no value when it is not set or is neither a yes nor a no.
    static std::optional<bool> environment_answer(const char* name);

private:
    QString system_directory_;
    QString process_directory_;
};
