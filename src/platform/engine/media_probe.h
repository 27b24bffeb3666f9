#pragma once

#include <QString>

#include <optional>
#include <stop_token>

/// What a list of files shows of one film.
struct MediaSummary {
    QString type;              ///< the container's name as MediaPlayer::get_info("container", "name") gives it
    long long duration_ms = 0; ///< 0 when unknown
};

/// Looks into a file just far enough for its type and length. Any thread; does not disturb a MediaPlayer.
///
/// @param limit_ms how long it may take.
/// @param stop ends it early; a disk that does not answer is left behind at the limit all the same.
/// @return nothing for what is not a film, when the limit passed or when it was stopped.
std::optional<MediaSummary> probe_media(const QString& path, int limit_ms = 500, const std::stop_token& stop = {});
