#include "plugged_outputs.h"

#include <QDir>
#include <QFile>

namespace
{

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// How the sound system names digital outputs in its list of devices.
constexpr const char* digital_names[] = {"iec958", "s/pdif", "spdif", "digital", "hdmi"};

} // namespace

PluggedOutputs::PluggedOutputs(const QString& system_directory, const QString& process_directory)
    : system_directory_(system_directory), process_directory_(process_directory)
{
}

int PluggedOutputs::connected_displays() const
{
    const QDir connectors(system_directory_ + QStringLiteral("/class/drm"));
    int count = 0;
    for (const QString& connector : connectors.entryList({QStringLiteral("card*-*")}, QDir::Dirs | QDir::System)) {
        if (content(connectors.filePath(connector + QStringLiteral("/status"))).trimmed() == "connected")
            ++count;
    }
    return count;
}

bool PluggedOutputs::has_digital_sound() const
{
    for (const QByteArray& line : content(process_directory_ + QStringLiteral("/asound/pcm")).toLower().split('\n')) {
        // "00-03: HDMI 0 : HDMI 0 : playback 1"
        if (!line.contains("playback"))
            continue;
        for (const char* name : digital_names) {
            if (line.contains(name))
                return true;
        }
    }
    return false;
}

std::optional<bool> PluggedOutputs::environment_answer(const char* name)
{
    const QByteArray text = qgetenv(name).trimmed().toLower();
    if (text == "1" || text == "yes" || text == "on" || text == "true")
        return true;
    if (text == "0" || text == "no" || text == "off" || text == "false")
        return false;
    return std::nullopt;
}
