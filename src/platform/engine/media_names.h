#pragma once

#include <QString>

struct AVCodecParameters;

/// What the information page calls a container.
/// @param format FFmpeg's short name or names ("mov,mp4,m4a,3gp,3g2,mj2")
/// @return "MPEG" for program and transport streams; the usual name for others, in upper case for unknown ones.
QString container_name(const char* format);

/// What the information page calls a codec: "WMV8", "MS Mpeg 4 v3", "H.264" ...
QString codec_name(const AVCodecParameters& parameters);
