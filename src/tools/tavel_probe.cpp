#include "media_file.h"
#include "subtitles/subtitle_files.h"
#include "subtitles/subtitle_reader.h"
#include "text_codec.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>

extern "C" {
#include <libavutil/log.h>
}

namespace
{

constexpr int exit_good = 0;
constexpr int exit_bad = 2;

int fail(const QString& reason)
{
    std::fprintf(stderr, "tavel_probe: %s\n", qPrintable(reason));
    return exit_bad;
}

/// What the engine sees of a file.
struct Findings {
    MediaFile film; ///< its status is not ok for a subtitle file alone
    std::vector<SubtitleTrack> tracks;
};

Findings look(const QString& file)
{
    const std::atomic<bool> never = false;
    Findings findings;
    if (!has_subtitle_suffix(file))
        findings.film = MediaFile::look(QFile::encodeName(file), never);
    if (findings.film.status != rask::ok) {
        findings.tracks = read_subtitle_file(file, 0, never);
        return findings;
    }
    findings.tracks = read_subtitle_files(file, findings.film.frame_rate(), never);
    if (findings.film.text_streams > 0) {
        for (SubtitleTrack& track : read_embedded_subtitles(file, never))
            findings.tracks.push_back(std::move(track));
    }
    findings.tracks.resize(std::min(findings.tracks.size(), most_subtitle_tracks));
    findings.film.infos[QStringLiteral("container")][QStringLiteral("subtitle_streams")] =
        QString::number(findings.tracks.size());
    return findings;
}

void print(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

void print_summary(const Findings& findings)
{
    for (auto group = findings.film.infos.begin(); group != findings.film.infos.end(); ++group) {
        for (auto item = group->begin(); item != group->end(); ++item)
            print(group.key() + u'\t' + item.key() + u'\t' + item.value());
    }
    for (std::size_t track = 0; track < findings.tracks.size(); ++track) {
        print(QStringLiteral("subtitles\t%1\t%2\t%3 lines")
                  .arg(track + 1)
                  .arg(QString(findings.tracks[track].name).replace(u'\n', u' '))
                  .arg(findings.tracks[track].lines.size()));
    }
}

void print_track(const SubtitleTrack& track)
{
    const QTextCodec& codec = *QTextCodec::codecForName("CP949");
    for (const Subtitle& line : track.lines) {
        const QString text = codec.toUnicode(QByteArray::fromStdString(line.text));
        print(QStringLiteral("%1\t%2\t").arg(line.start).arg(line.end) +
              QString(text).replace(u'\n', QLatin1String("\\n")));
    }
}

} // namespace

/// Tells what the engine sees of a film: "tavel_probe FILE" every group with its items and the subtitle tracks, parted
/// by tabs; "tavel_probe --subtitles N FILE" the lines of track N, counted from 1. FILE may be a subtitle file alone.
/// Exit status 0, or 2 with a line on standard error for what cannot be read.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    av_log_set_level(AV_LOG_QUIET);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    std::size_t track = 0;
    if (arguments.size() == 3 && arguments.first() == QLatin1String("--subtitles")) {
        track = arguments.at(1).toUInt();
        if (track == 0)
            return fail(QStringLiteral("tracks are counted from 1: ") + arguments.at(1));
        arguments = arguments.mid(2);
    }
    if (arguments.size() != 1)
        return fail(QStringLiteral("usage: tavel_probe [--subtitles N] FILE"));

    const QString file = arguments.first();
    if (!QFileInfo(file).isFile())
        return fail(QStringLiteral("no such file: ") + file);
    const Findings findings = look(file);
    if (findings.film.status != rask::ok && findings.tracks.empty())
        return fail(QStringLiteral("neither a film nor subtitles: ") + file);
    if (track > findings.tracks.size())
        return fail(QStringLiteral("%1 subtitle tracks only: %2").arg(findings.tracks.size()).arg(file));
    if (track == 0)
        print_summary(findings);
    else
        print_track(findings.tracks[track - 1]);
    return exit_good;
}
