#include "subtitle_reader.h"

#include "media_types.h"
#include "text_codec.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <map>

namespace
{

struct FormatCloser {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
struct DecoderCloser {
    void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
};
struct PacketCloser {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

struct Stream {
    std::unique_ptr<AVCodecContext, DecoderCloser> decoder;
    AVRational time_base{1, 1000};
    SubtitleTrack track;
};

int is_cancelled(void* cancelled)
{
    return static_cast<const std::atomic<bool>*>(cancelled)->load() ? 1 : 0;
}

/// The text of a dialogue line of the decoder's common form: what follows the eighth comma, without its codes.
QString plain_text(const char* ass)
{
    QString text = QString::fromUtf8(ass).section(u',', 8);
    static const QRegularExpression codes(QStringLiteral("\\{[^}]*\\}|<[^>]*>"));
    text.remove(codes);
    text.replace(QLatin1String("\\N"), QLatin1String("\n"), Qt::CaseInsensitive);
    text.replace(QLatin1String("\\h"), QLatin1String(" "));
    return text.trimmed();
}

void add_line(Stream& stream, AVPacket& packet, Time start_of_film)
{
    AVSubtitle decoded = {};
    int complete = 0;
    if (avcodec_decode_subtitle2(stream.decoder.get(), &decoded, &complete, &packet) < 0 || !complete)
        return;
    QStringList texts;
    for (unsigned index = 0; index < decoded.num_rects; ++index) {
        if (decoded.rects[index]->ass)
            texts += plain_text(decoded.rects[index]->ass);
    }
    avsubtitle_free(&decoded);
    const QString text = texts.join(u'\n');
    if (text.isEmpty() || packet.pts == AV_NOPTS_VALUE)
        return;
    constexpr AVRational milliseconds = {1, 1000};
    Subtitle line;
    const long long start = av_rescale_q(packet.pts, stream.time_base, milliseconds) - start_of_film;
    line.start = std::max<long long>(1, start);
    line.end = start + av_rescale_q(packet.duration, stream.time_base, milliseconds);
    line.text = QTextCodec::codecForName("CP949")->fromUnicode(text).toStdString();
    stream.track.lines.push_back(std::move(line));
}

/// @param inside the file is the film itself, whose positions count from its start
std::vector<SubtitleTrack> read_streams(const QString& file, bool inside, const std::atomic<bool>& cancelled)
{
    AVFormatContext* opening = avformat_alloc_context();
    if (!opening)
        return {};
    opening->interrupt_callback = {is_cancelled, const_cast<std::atomic<bool>*>(&cancelled)};
    if (avformat_open_input(&opening, ("file:" + QFile::encodeName(file)).constData(), nullptr, nullptr) < 0)
        return {};
    const std::unique_ptr<AVFormatContext, FormatCloser> format(opening);
    avformat_find_stream_info(format.get(), nullptr);

    const bool shifted = inside && format->start_time != AV_NOPTS_VALUE;
    const Time start_of_film = shifted ? format->start_time / (AV_TIME_BASE / 1000) : 0;

    std::map<int, Stream> streams;
    for (unsigned index = 0; index < format->nb_streams; ++index) {
        AVStream& source = *format->streams[index];
        const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(source.codecpar->codec_id);
        const AVCodec* const codec = avcodec_find_decoder(source.codecpar->codec_id);
        source.discard = AVDISCARD_ALL;
        if (source.codecpar->codec_type != AVMEDIA_TYPE_SUBTITLE || !descriptor || !codec ||
            (descriptor->props & AV_CODEC_PROP_TEXT_SUB) == 0)
            continue;
        Stream stream;
        stream.decoder.reset(avcodec_alloc_context3(codec));
        if (!stream.decoder || avcodec_parameters_to_context(stream.decoder.get(), source.codecpar) < 0)
            continue;
        stream.decoder->pkt_timebase = source.time_base;
        if (avcodec_open2(stream.decoder.get(), codec, nullptr) < 0)
            continue;
        stream.time_base = source.time_base;
        const AVDictionaryEntry* const language = av_dict_get(source.metadata, "language", nullptr, 0);
        stream.track.name = language ? QString::fromUtf8(language->value) : QString::number(streams.size() + 1);
        source.discard = AVDISCARD_DEFAULT;
        streams.emplace(static_cast<int>(index), std::move(stream));
    }

    const std::unique_ptr<AVPacket, PacketCloser> packet(av_packet_alloc());
    while (packet && !cancelled && !streams.empty() && av_read_frame(format.get(), packet.get()) >= 0) {
        if (const auto found = streams.find(packet->stream_index); found != streams.end())
            add_line(found->second, *packet, start_of_film);
        av_packet_unref(packet.get());
    }

    std::vector<SubtitleTrack> tracks;
    for (auto& [index, stream] : streams) {
        std::stable_sort(stream.track.lines.begin(), stream.track.lines.end(), less_mag());
        tracks.push_back(std::move(stream.track));
    }
    return tracks;
}

} // namespace

std::vector<SubtitleTrack> read_subtitle_files(const QString& film)
{
    const QFileInfo info(film);
    const QString file = info.dir().filePath(info.completeBaseName() + QStringLiteral(".srt"));
    if (!QFileInfo(file).isFile())
        return {};
    const std::atomic<bool> never = false;
    std::vector<SubtitleTrack> tracks = read_streams(file, false, never);
    std::erase_if(tracks, [](const SubtitleTrack& track) { return track.lines.empty(); });
    for (SubtitleTrack& track : tracks)
        track.name = QFileInfo(file).fileName();
    return tracks;
}

std::vector<SubtitleTrack> read_embedded_subtitles(const QString& film, const std::atomic<bool>& cancelled)
{
    return read_streams(film, true, cancelled);
}
