#include "subtitle_reader.h"

#include "ass_reader.h"
#include "cue_reader.h"
#include "micro_dvd_reader.h"
#include "sami_reader.h"
#include "stream_reader.h"
#include "subtitle_encoding.h"
#include "subtitle_files.h"
#include "timed_text.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace
{

enum class Kind {
    Sami = 0,
    SubRip = 1,
    Ass = 2,
    WebVtt = 3,
    Frames = 4, ///< MicroDVD
    Rare = 5,   ///< what else comes as ".sub"
};

struct SuffixKind {
    const char* suffix;
    Kind kind;
};

constexpr SuffixKind suffix_kinds[] = {
    {"smi", Kind::Sami}, {"srt", Kind::SubRip}, {"ass", Kind::Ass},
    {"ssa", Kind::Ass},  {"vtt", Kind::WebVtt}, {"sub", Kind::Rare},
};

/// No subtitles are longer; what is, is something else under their name.
constexpr qint64 most_bytes = 256LL * 1024 * 1024;

/// What the beginning of a file says. Many carry the wrong suffix.
std::optional<Kind> kind_by_content(const QString& text)
{
    constexpr qsizetype looked_at = 8192;
    const QStringView beginning = QStringView(text).first(std::min(text.size(), looked_at));
    const auto has = [beginning](const char* word) {
        return beginning.contains(QLatin1String(word), Qt::CaseInsensitive);
    };
    if (beginning.trimmed().startsWith(QLatin1String("WEBVTT")))
        return Kind::WebVtt;
    if (has("<sami") || has("<sync"))
        return Kind::Sami;
    if (has("[script info]") || has("\ndialogue:"))
        return Kind::Ass;
    static const QRegularExpression times(QStringLiteral("\\d\\s*-->"));
    if (times.match(beginning.toString()).hasMatch())
        return Kind::SubRip;
    // A few lines may come before the first one with a time, such as "{DEFAULT}{}{F:Arial}".
    constexpr qsizetype first_lines = 10;
    const QList<QStringView> lines = beginning.split(u'\n', Qt::SkipEmptyParts).mid(0, first_lines);
    return std::any_of(lines.begin(), lines.end(), is_micro_dvd_line) ? std::optional(Kind::Frames) : std::nullopt;
}

std::optional<Kind> kind_by_suffix(const QString& file)
{
    const QString suffix = QFileInfo(file).suffix();
    for (const SuffixKind& known : suffix_kinds) {
        if (suffix.compare(QLatin1String(known.suffix), Qt::CaseInsensitive) == 0)
            return known.kind;
    }
    return std::nullopt;
}

std::vector<TimedText> read_lines(Kind kind, const QString& text, double frame_rate, const std::atomic<bool>& cancelled)
{
    switch (kind) {
    case Kind::SubRip:
        return read_sub_rip(text, cancelled);
    case Kind::Ass:
        return read_ass(text, cancelled);
    case Kind::WebVtt:
        return read_web_vtt(text, cancelled);
    case Kind::Frames:
        return read_micro_dvd(text, frame_rate, cancelled);
    case Kind::Rare:
        return read_rare_text(text, cancelled);
    case Kind::Sami:
        break;
    }
    return {};
}

} // namespace

std::vector<SubtitleTrack> read_subtitle_file(const QString& file, double frame_rate,
                                              const std::atomic<bool>& cancelled)
{
    QFile source(file);
    // A pipe or a device would hold up the start of the film.
    if (!QFileInfo(file).isFile() || source.size() > most_bytes || !source.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(source.size()));
    constexpr qint64 block = 1024 * 1024;
    for (QByteArray read = source.read(block); !read.isEmpty() && !cancelled; read = source.read(block)) {
        const bool is_beginning = bytes.isEmpty();
        bytes += read;
        if (is_beginning && !is_text(bytes))
            return {};
    }
    QString text = decode_guessed(bytes, cancelled);
    bytes.clear();
    const std::optional<Kind> told = kind_by_content(text);
    const std::optional<Kind> kind = told ? told : kind_by_suffix(file);
    if (!kind || cancelled)
        return {};

    const QString name = QFileInfo(file).fileName();
    if (*kind == Kind::Sami) {
        std::vector<SubtitleTrack> tracks = read_sami(text, cancelled);
        for (SubtitleTrack& track : tracks) {
            if (track.name.isEmpty())
                track.name = name;
        }
        return tracks;
    }
    std::vector<TimedText> lines = read_lines(*kind, text, frame_rate, cancelled);
    // A long file's text is as large as all that is made of it.
    text.clear();
    SubtitleTrack track{name, in_order(std::move(lines), cancelled)};
    if (track.lines.empty())
        return {};
    return {std::move(track)};
}

std::vector<SubtitleTrack> read_subtitle_files(const QString& film, double frame_rate,
                                               const std::atomic<bool>& cancelled)
{
    std::vector<SubtitleTrack> tracks;
    for (const QString& file : subtitle_files_of(film)) {
        for (SubtitleTrack& track : read_subtitle_file(file, frame_rate, cancelled)) {
            if (tracks.size() < most_subtitle_tracks)
                tracks.push_back(std::move(track));
        }
        if (tracks.size() == most_subtitle_tracks || cancelled)
            break;
    }
    return tracks;
}
