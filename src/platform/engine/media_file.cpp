#include "media_file.h"

#include "background_task.h"
#include "media_names.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>

namespace
{

/// How much of a file may be read to find out what is in it. Enough for a stream that starts some seconds in.
constexpr long long most_bytes = 5'000'000;

struct FormatCloser {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
using Format = std::unique_ptr<AVFormatContext, FormatCloser>;

int is_cancelled(void* cancelled)
{
    return static_cast<const std::atomic<bool>*>(cancelled)->load() ? 1 : 0;
}

QString frame_rate_of(const AVStream& stream)
{
    const AVRational rate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    if (rate.num <= 0 || rate.den <= 0)
        return {};
    return QString::number(std::round(av_q2d(rate) * 1000.0) / 1000.0);
}

bool holds_text(const AVStream& stream)
{
    const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(stream.codecpar->codec_id);
    return descriptor && (descriptor->props & AV_CODEC_PROP_TEXT_SUB) != 0;
}

bool is_picture(const AVStream& stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0 && stream.codecpar->codec_id != AV_CODEC_ID_NONE;
}

/// The turn that the film asks for, clockwise, to the nearest right angle.
int rotation_of(const AVStream& stream)
{
    size_t size = 0;
    const quint8* const data = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    std::array<std::int32_t, 9> matrix = {};
    if (!data || size < sizeof matrix)
        return 0;
    std::memcpy(matrix.data(), data, sizeof matrix);
    const double degrees = -av_display_rotation_get(matrix.data());
    if (!std::isfinite(degrees))
        return 0;
    return ((static_cast<int>(std::lround(degrees / 90.0)) % 4 + 4) % 4) * 90;
}

/// 1 when the film tells none, or nonsense.
double pixel_aspect_of(AVFormatContext* format, unsigned stream)
{
    const AVRational aspect = av_guess_sample_aspect_ratio(format, format->streams[stream], nullptr);
    return aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0;
}

bool is_compressed_sound(AVCodecID codec)
{
    return codec == AV_CODEC_ID_AC3 || codec == AV_CODEC_ID_DTS || codec == AV_CODEC_ID_EAC3;
}

} // namespace

std::vector<long long> MediaFile::identify(const QByteArray& path)
{
    struct stat found = {};
    if (path.isEmpty() || ::stat(path.constData(), &found) != 0 ||
        !(S_ISREG(found.st_mode) || S_ISBLK(found.st_mode)) || ::access(path.constData(), R_OK) != 0)
        return {};
    return {static_cast<long long>(found.st_dev), static_cast<long long>(found.st_ino),
            static_cast<long long>(found.st_size), static_cast<long long>(found.st_mtim.tv_sec),
            static_cast<long long>(found.st_mtim.tv_nsec)};
}

MediaFile MediaFile::look(const QByteArray& path, const std::atomic<bool>& cancelled)
{
    MediaFile file;
    file.path = path;
    file.identity = identify(path);
    if (file.identity.empty()) {
        file.status = rask::no_such_file;
        return file;
    }

    AVFormatContext* opening = avformat_alloc_context();
    if (!opening) {
        file.status = rask::engine_failed;
        return file;
    }
    // FFmpeg wants a plain pointer; it only reads through it.
    opening->interrupt_callback = {is_cancelled, const_cast<std::atomic<bool>*>(&cancelled)};
    opening->probesize = most_bytes;
    // The "file:" keeps a name with a colon from being taken for a protocol.
    if (avformat_open_input(&opening, ("file:" + path).constData(), nullptr, nullptr) < 0)
        return file; // it frees the context itself
    const Format format(opening);
    // Its failure is no verdict: some streams may be known all the same.
    avformat_find_stream_info(format.get(), nullptr);

    auto& container = file.infos[QStringLiteral("container")];
    container[QStringLiteral("name")] = container_name(format->iformat->name);
    file.lacks_index = container[QStringLiteral("name")] == QLatin1String("MPEG") ||
                       container[QStringLiteral("name")] == QLatin1String("Ogg");
    const int best_video = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    for (unsigned index = 0; index < format->nb_streams; ++index) {
        const AVStream& stream = *format->streams[index];
        const AVCodecParameters& parameters = *stream.codecpar;
        if (is_picture(stream) &&
            (best_video < 0 || !is_picture(*format->streams[best_video]) || static_cast<int>(index) == best_video)) {
            auto& video = file.infos[QStringLiteral("video")];
            file.width = parameters.width;
            file.height = parameters.height;
            file.pixel_aspect = pixel_aspect_of(format.get(), index);
            file.rotation = rotation_of(stream);
            file.has_palette = parameters.format == AV_PIX_FMT_PAL8;
            video = {{QStringLiteral("name"), codec_name(parameters)},
                     {QStringLiteral("width"), QString::number(parameters.width)},
                     {QStringLiteral("height"), QString::number(parameters.height)},
                     {QStringLiteral("framerate"), frame_rate_of(stream)}};
        } else if (parameters.codec_type == AVMEDIA_TYPE_AUDIO) {
            if (file.audio_streams++ > 0)
                continue;
            file.infos[QStringLiteral("audio")] = {
                {QStringLiteral("name"), codec_name(parameters)},
                {QStringLiteral("channels"), QString::number(parameters.ch_layout.nb_channels)},
                {QStringLiteral("sample_rate"), QString::number(parameters.sample_rate)}};
            file.compressed_sound = is_compressed_sound(parameters.codec_id);
        } else if (parameters.codec_type == AVMEDIA_TYPE_SUBTITLE && holds_text(stream)) {
            ++file.text_streams;
        }
    }
    container[QStringLiteral("audio_streams")] = QString::number(file.audio_streams);
    if (!file.infos.contains(QStringLiteral("video"))) {
        file.status = file.audio_streams > 0 ? rask::no_video : rask::not_a_film;
        return file;
    }

    file.length = format->duration > 0 ? format->duration / (AV_TIME_BASE / 1000) : 0;
    file.infos[QStringLiteral("video")][QStringLiteral("time")] = QString::number(file.length);
    file.seekable = format->pb && (format->pb->seekable & AVIO_SEEKABLE_NORMAL) != 0;
    file.status = rask::ok;
    return file;
}

double MediaFile::frame_rate() const
{
    return infos[QStringLiteral("video")][QStringLiteral("framerate")].toDouble();
}

MediaFile MediaFile::look_within(const QByteArray& path, std::chrono::milliseconds limit, const std::stop_token& stop,
                                 const MediaFile* known)
{
    struct Shared {
        std::atomic<bool> cancelled = false;
        std::mutex mutex;
        MediaFile file; ///< guarded by mutex
    };
    const auto shared = std::make_shared<Shared>();
    BackgroundTask task([shared, path, before = known ? *known : MediaFile()] {
        const bool same = before.status == rask::ok && before.path == path && before.identity == identify(path);
        MediaFile file = same ? before : look(path, shared->cancelled);
        const std::lock_guard lock(shared->mutex);
        shared->file = std::move(file);
    });
    const std::stop_callback stopping(stop, [shared] { shared->cancelled = true; });
    if (task.wait_for(limit) && !shared->cancelled) {
        const std::lock_guard lock(shared->mutex);
        return std::move(shared->file);
    }
    shared->cancelled = true;
    MediaFile file;
    file.path = path;
    file.status = rask::timed_out;
    return file;
}
