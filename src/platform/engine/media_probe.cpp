#include "media_probe.h"

#include "media_file.h"

#include <QFile>

std::optional<MediaSummary> probe_media(const QString& path, int limit_ms, const std::stop_token& stop)
{
    const MediaFile file = MediaFile::look_within(QFile::encodeName(path), std::chrono::milliseconds(limit_ms), stop);
    if (file.status != rask::ok)
        return std::nullopt;
    return MediaSummary{file.infos[QStringLiteral("container")][QStringLiteral("name")], file.length};
}
