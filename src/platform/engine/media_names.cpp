#include "media_names.h"

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <array>

namespace
{

struct ContainerName {
    const char* format; ///< one of FFmpeg's short names
    const char* name;
};

constexpr std::array<ContainerName, 19> container_names = {{
    {"mpeg", "MPEG"},  {"mpegts", "MPEG"},     {"mpegtsraw", "MPEG"},    {"mpegvideo", "MPEG"}, {"vob", "MPEG"},
    {"avi", "AVI"},    {"mp4", "MP4"},         {"matroska", "Matroska"}, {"webm", "Matroska"},  {"asf", "ASF"},
    {"ogg", "Ogg"},    {"flv", "Flash Video"}, {"rm", "RealMedia"},      {"dv", "DV"},          {"gif", "GIF"},
    {"h264", "H.264"}, {"hevc", "H.265"},      {"mxf", "MXF"},           {"nut", "NUT"},
}};

struct CodecName {
    AVCodecID codec;
    const char* name;
};

constexpr std::array<CodecName, 42> codec_names = {{
    {AV_CODEC_ID_WMV1, "WMV7"},
    {AV_CODEC_ID_WMV2, "WMV8"},
    {AV_CODEC_ID_WMV3, "WMV9"},
    {AV_CODEC_ID_VC1, "VC-1"},
    {AV_CODEC_ID_MSMPEG4V1, "MS Mpeg 4 v1"},
    {AV_CODEC_ID_MSMPEG4V2, "MS Mpeg 4 v2"},
    {AV_CODEC_ID_MSMPEG4V3, "MS Mpeg 4 v3"},
    {AV_CODEC_ID_MPEG1VIDEO, "MPEG-1"},
    {AV_CODEC_ID_MPEG2VIDEO, "MPEG-2"},
    {AV_CODEC_ID_MPEG4, "MPEG-4"},
    {AV_CODEC_ID_H263, "H.263"},
    {AV_CODEC_ID_H264, "H.264"},
    {AV_CODEC_ID_HEVC, "H.265"},
    {AV_CODEC_ID_VP6, "VP6"},
    {AV_CODEC_ID_VP8, "VP8"},
    {AV_CODEC_ID_VP9, "VP9"},
    {AV_CODEC_ID_AV1, "AV1"},
    {AV_CODEC_ID_THEORA, "Theora"},
    {AV_CODEC_ID_FLV1, "Sorenson Spark"},
    {AV_CODEC_ID_MJPEG, "Motion JPEG"},
    {AV_CODEC_ID_RV30, "RealVideo 8"},
    {AV_CODEC_ID_RV40, "RealVideo 9"},
    {AV_CODEC_ID_DVVIDEO, "DV"},
    {AV_CODEC_ID_FFV1, "FFV1"},
    {AV_CODEC_ID_MP1, "MP1"},
    {AV_CODEC_ID_MP2, "MP2"},
    {AV_CODEC_ID_MP3, "MP3"},
    {AV_CODEC_ID_AAC, "AAC"},
    {AV_CODEC_ID_AC3, "AC3"},
    {AV_CODEC_ID_EAC3, "E-AC3"},
    {AV_CODEC_ID_DTS, "DTS"},
    {AV_CODEC_ID_TRUEHD, "TrueHD"},
    {AV_CODEC_ID_VORBIS, "Vorbis"},
    {AV_CODEC_ID_OPUS, "Opus"},
    {AV_CODEC_ID_FLAC, "FLAC"},
    {AV_CODEC_ID_ALAC, "ALAC"},
    {AV_CODEC_ID_WMAV1, "WMA7"},
    {AV_CODEC_ID_WMAV2, "WMA8"},
    {AV_CODEC_ID_WMAPRO, "WMA Pro"},
    {AV_CODEC_ID_WMALOSSLESS, "WMA Lossless"},
    {AV_CODEC_ID_COOK, "RealAudio"},
    {AV_CODEC_ID_AMR_NB, "AMR"},
}};

} // namespace

QString container_name(const char* format)
{
    const QStringList names = QString::fromLatin1(format).split(u',');
    for (const ContainerName& known : container_names) {
        if (names.contains(QLatin1String(known.format)))
            return QString::fromLatin1(known.name);
    }
    return names.constFirst().toUpper();
}

QString codec_name(const AVCodecParameters& parameters)
{
    for (const CodecName& known : codec_names) {
        if (known.codec == parameters.codec_id)
            return QString::fromLatin1(known.name);
    }
    const QString name = QString::fromLatin1(avcodec_get_name(parameters.codec_id));
    return name.startsWith(QLatin1String("pcm_")) ? QStringLiteral("PCM") : name.toUpper();
}
