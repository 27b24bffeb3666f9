#include "stream_reader.h"

#include "subtitle_encoding.h"
#include "subtitle_markup.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <QFile>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>

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
struct BytesCloser {
    void operator()(AVIOContext* bytes) const
    {
        av_freep(&bytes->buffer);
        avio_context_free(&bytes);
    }
};
using Format = std::unique_ptr<AVFormatContext, FormatCloser>;

/// A packet's text, still in the stream's own form.
struct RawLine {
    long long start = 0;
    std::optional<long long> end;
    QByteArray text;
};

/// One text stream while its packets come.
struct Stream {
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::unique_ptr<AVCodecContext, DecoderCloser> decoder; ///< null where the packets' bytes are the text
    AVRational time_base{1, 1000};
    QString name;
    std::vector<RawLine> lines;
};

int is_cancelled(void* cancelled)
{
    return static_cast<const std::atomic<bool>*>(cancelled)->load() ? 1 : 0;
}

bool holds_its_text(AVCodecID codec)
{
    constexpr std::array codecs = {AV_CODEC_ID_SUBRIP, AV_CODEC_ID_TEXT, AV_CODEC_ID_WEBVTT,
                                   AV_CODEC_ID_ASS,    AV_CODEC_ID_SSA,  AV_CODEC_ID_MOV_TEXT};
    return std::find(codecs.begin(), codecs.end(), codec) != codecs.end();
}

/// What follows the eighth comma: the text of an event as containers and decoders hand it over.
QString event_text(const QString& event)
{
    return subtitle_markup::plain_event(event.section(u',', 8));
}

QString plain_text(AVCodecID codec, const QString& text)
{
    switch (codec) {
    case AV_CODEC_ID_SUBRIP:
    case AV_CODEC_ID_TEXT:
        return subtitle_markup::plain_cue(text, subtitle_markup::Tags::Known);
    case AV_CODEC_ID_WEBVTT:
        return subtitle_markup::plain_cue(text, subtitle_markup::Tags::All);
    case AV_CODEC_ID_MOV_TEXT:
        return subtitle_markup::tidy(QString(text).replace(u'\r', u'\n'));
    default:
        return event_text(text);
    }
}

/// The text of a packet of MP4: it tells its length, and may be UTF-16 by its mark.
QByteArray mov_text(QByteArrayView packet)
{
    constexpr qsizetype header = 2;
    if (packet.size() < header)
        return {};
    const qsizetype told = static_cast<uchar>(packet[0]) << 8 | static_cast<uchar>(packet[1]);
    const QByteArrayView text = packet.sliced(header, std::min(told, packet.size() - header));
    if (text.startsWith("\xFE\xFF"))
        return decode(text, SubtitleEncoding::Utf16BigEndian).toUtf8();
    return text.toByteArray();
}

/// What the decoder makes of a packet, one event a rectangle.
QByteArray decoded_text(AVCodecContext* decoder, AVPacket& packet)
{
    AVSubtitle subtitle = {};
    int complete = 0;
    if (avcodec_decode_subtitle2(decoder, &subtitle, &complete, &packet) < 0 || complete == 0)
        return {};
    QStringList texts;
    for (unsigned index = 0; index < subtitle.num_rects; ++index) {
        if (subtitle.rects[index]->ass)
            texts += QString::fromUtf8(subtitle.rects[index]->ass).section(u',', 8);
    }
    avsubtitle_free(&subtitle);
    return (QStringLiteral(",,,,,,,,") + texts.join(QLatin1String("\\N"))).toUtf8();
}

void add_packet(Stream& stream, AVPacket& packet)
{
    if (packet.pts == AV_NOPTS_VALUE)
        return;
    constexpr AVRational milliseconds = {1, 1000};
    RawLine line;
    line.start = av_rescale_q(packet.pts, stream.time_base, milliseconds);
    // Some programs wrap an end before the start round to one many days later.
    constexpr long long longest = 24LL * 60 * 60 * 1000;
    const long long duration = av_rescale_q(packet.duration, stream.time_base, milliseconds);
    if (duration > 0 && duration <= longest)
        line.end = line.start + duration;
    const QByteArrayView bytes(packet.data, packet.size);
    line.text = stream.decoder                         ? decoded_text(stream.decoder.get(), packet)
                : stream.codec == AV_CODEC_ID_MOV_TEXT ? mov_text(bytes)
                                                       : bytes.toByteArray();
    stream.lines.push_back(std::move(line));
}

std::vector<TimedText> timed_lines(const Stream& stream, const std::atomic<bool>& cancelled)
{
    // Some films were given texts that are not in UTF-8, whatever the container says.
    QByteArray all;
    for (const RawLine& line : stream.lines)
        all += line.text + '\n';
    const SubtitleEncoding encoding = guess_encoding(all, cancelled);
    std::vector<TimedText> lines;
    for (const RawLine& line : stream.lines) {
        if (cancelled)
            break;
        lines.push_back({line.start, line.end, plain_text(stream.codec, decode(line.text, encoding))});
    }
    return lines;
}

/// The text streams of an opened format, by their index; all others are left out from reading.
std::map<int, Stream> text_streams(AVFormatContext& format)
{
    std::map<int, Stream> streams;
    for (unsigned index = 0; index < format.nb_streams; ++index) {
        AVStream& source = *format.streams[index];
        const AVCodecParameters& parameters = *source.codecpar;
        const AVCodecDescriptor* const descriptor = avcodec_descriptor_get(parameters.codec_id);
        source.discard = AVDISCARD_ALL;
        if (parameters.codec_type != AVMEDIA_TYPE_SUBTITLE || !descriptor ||
            (descriptor->props & AV_CODEC_PROP_TEXT_SUB) == 0)
            continue;
        Stream stream;
        stream.codec = parameters.codec_id;
        stream.time_base = source.time_base;
        const AVDictionaryEntry* language = av_dict_get(source.metadata, "language", nullptr, 0);
        if (!language || std::strcmp(language->value, "und") == 0)
            language = av_dict_get(source.metadata, "title", nullptr, 0);
        stream.name = language ? QString::fromUtf8(language->value) : QString::number(streams.size() + 1);
        const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
        if (!holds_its_text(stream.codec) && codec) {
            stream.decoder.reset(avcodec_alloc_context3(codec));
            if (stream.decoder && avcodec_parameters_to_context(stream.decoder.get(), &parameters) >= 0) {
                stream.decoder->pkt_timebase = source.time_base;
                if (avcodec_open2(stream.decoder.get(), codec, nullptr) < 0)
                    stream.decoder.reset();
            }
        }
        if (holds_its_text(stream.codec) || stream.decoder)
            source.discard = AVDISCARD_DEFAULT;
        streams.emplace(static_cast<int>(index), std::move(stream));
    }
    return streams;
}

void read_packets(AVFormatContext& format, std::map<int, Stream>& streams, const std::atomic<bool>& cancelled)
{
    const std::unique_ptr<AVPacket, PacketCloser> packet(av_packet_alloc());
    while (packet && !cancelled && !streams.empty() && av_read_frame(&format, packet.get()) >= 0) {
        const auto found = streams.find(packet->stream_index);
        if (found != streams.end() && (found->second.decoder || holds_its_text(found->second.codec)))
            add_packet(found->second, *packet);
        av_packet_unref(packet.get());
    }
}

AVFormatContext* new_format(const std::atomic<bool>& cancelled)
{
    AVFormatContext* const format = avformat_alloc_context();
    // FFmpeg wants a plain pointer; it only reads through it.
    if (format)
        format->interrupt_callback = {is_cancelled, const_cast<std::atomic<bool>*>(&cancelled)};
    return format;
}

/// Bytes in memory as FFmpeg reads them.
struct Memory {
    QByteArray bytes;
    qsizetype at = 0;
};

int read_memory(void* opaque, std::uint8_t* buffer, int size)
{
    Memory& memory = *static_cast<Memory*>(opaque);
    const qsizetype count = std::min<qsizetype>(size, memory.bytes.size() - memory.at);
    if (count <= 0)
        return AVERROR_EOF;
    std::memcpy(buffer, memory.bytes.constData() + memory.at, static_cast<std::size_t>(count));
    memory.at += count;
    return static_cast<int>(count);
}

std::int64_t seek_memory(void* opaque, std::int64_t offset, int whence)
{
    Memory& memory = *static_cast<Memory*>(opaque);
    if (whence == AVSEEK_SIZE)
        return memory.bytes.size();
    const std::int64_t from = whence == SEEK_CUR ? memory.at : whence == SEEK_END ? memory.bytes.size() : 0;
    memory.at = static_cast<qsizetype>(std::clamp<std::int64_t>(from + offset, 0, memory.bytes.size()));
    return memory.at;
}

/// Which of the rarer formats a text is in, by its beginning; null for none of them.
const AVInputFormat* rare_format(const QByteArray& text)
{
    static constexpr std::array names = {"subviewer", "subviewer1", "mpl2", "vplayer", "mpsub", "jacosub", "pjs"};
    constexpr qsizetype looked_at = 4096;
    QByteArray beginning = text.left(looked_at);
    const auto size = static_cast<int>(beginning.size());
    beginning.append(AVPROBE_PADDING_SIZE, '\0');
    AVProbeData probed = {};
    probed.filename = "";
    probed.buf = reinterpret_cast<unsigned char*>(beginning.data());
    probed.buf_size = size;
    const AVInputFormat* const format = av_probe_input_format(&probed, 1);
    const bool is_rare = format && std::any_of(names.begin(), names.end(), [format](const char* name) {
                             return std::strcmp(format->name, name) == 0;
                         });
    return is_rare ? format : nullptr;
}

} // namespace

std::vector<TimedText> read_rare_text(const QString& source, const std::atomic<bool>& cancelled)
{
    constexpr int buffer_size = 4096;
    Memory memory{source.toUtf8(), 0};
    const AVInputFormat* const format_of_text = rare_format(memory.bytes);
    if (!format_of_text)
        return {};
    auto* const buffer = static_cast<unsigned char*>(av_malloc(buffer_size));
    AVIOContext* const opening_bytes =
        buffer ? avio_alloc_context(buffer, buffer_size, 0, &memory, read_memory, nullptr, seek_memory) : nullptr;
    if (!opening_bytes) {
        av_free(buffer);
        return {};
    }
    const std::unique_ptr<AVIOContext, BytesCloser> bytes(opening_bytes);
    AVFormatContext* opening = new_format(cancelled);
    if (!opening)
        return {};
    opening->pb = bytes.get();
    if (avformat_open_input(&opening, nullptr, format_of_text, nullptr) < 0)
        return {};
    const Format format(opening);
    std::map<int, Stream> streams = text_streams(*format);
    read_packets(*format, streams, cancelled);
    return streams.empty() ? std::vector<TimedText>() : timed_lines(streams.begin()->second, cancelled);
}

std::vector<SubtitleTrack> read_embedded_subtitles(const QString& film, const std::atomic<bool>& cancelled)
{
    AVFormatContext* opening = new_format(cancelled);
    // The "file:" keeps a name with a colon from being taken for a protocol.
    if (!opening ||
        avformat_open_input(&opening, ("file:" + QFile::encodeName(film)).constData(), nullptr, nullptr) < 0)
        return {};
    const Format format(opening);
    avformat_find_stream_info(format.get(), nullptr);
    std::map<int, Stream> streams = text_streams(*format);
    read_packets(*format, streams, cancelled);
    // Positions in a film count from its start.
    const long long start_of_film =
        format->start_time != AV_NOPTS_VALUE ? format->start_time / (AV_TIME_BASE / 1000) : 0;
    std::vector<SubtitleTrack> tracks;
    for (const auto& [index, stream] : streams) {
        std::vector<TimedText> lines = timed_lines(stream, cancelled);
        for (TimedText& line : lines) {
            line.start -= start_of_film;
            if (line.end)
                *line.end -= start_of_film;
        }
        tracks.push_back({stream.name, in_order(std::move(lines), cancelled)});
    }
    return tracks;
}
