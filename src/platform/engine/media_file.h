#pragma once

#include "media_types.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <atomic>
#include <chrono>
#include <stop_token>
#include <vector>

/// What FFmpeg finds out about a file without playing it.
struct MediaFile {
    RaskStatus status = rask::not_a_film; ///< ok, or why it cannot be played
    QByteArray path;                      ///< as it was given: the bytes that name it in the file system
    /// Tells whether the file of that name is still the same: device, inode, size and time of change.
    std::vector<long long> identity;
    QMap<QString, QMap<QString, QString>> infos; ///< groups and items as MediaPlayer::get_info() hands them out
    Time length = 0;                             ///< 0 when unknown
    bool seekable = false;
    int width = 0;
    int height = 0;
    double pixel_aspect = 1.0; ///< how much wider than high a pixel is
    int rotation = 0;          ///< how far the picture is to be turned clockwise: 0, 90, 180 or 270 degrees
    bool has_palette = false;  ///< the picture's pixels are numbers of colours
    bool lacks_index = false;  ///< the format: where a time lies is found by trying
    int audio_streams = 0;
    int text_streams = 0;          ///< subtitle streams that hold text
    bool compressed_sound = false; ///< the first sound is of a kind that a digital output takes as it is

    /// Looks into @p path on the calling thread. Anything but a plain readable file is refused without being opened.
    /// @param cancelled ends it early; reading a file that does not answer cannot be ended.
    static MediaFile look(const QByteArray& path, const std::atomic<bool>& cancelled);

    /// The same within @p limit, whatever the disk does.
    /// @param stop ends it early, as far as the disk answers
    /// @param known what an earlier look found, or null; a file that has not changed since is not looked into again
    static MediaFile look_within(const QByteArray& path, std::chrono::milliseconds limit,
                                 const std::stop_token& stop = {}, const MediaFile* known = nullptr);

    /// Pictures a second; 0 when unknown.
    double frame_rate() const;

    /// The identity of the file of that name now; empty when it is not a plain readable one.
    static std::vector<long long> identify(const QByteArray& path);
};
