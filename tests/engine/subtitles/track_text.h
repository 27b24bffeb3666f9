#pragma once

#include "subtitles/subtitle_reader.h"
#include "text_codec.h"

#include <QByteArray>
#include <QFile>

/// Tracks in the form of the ".expected" files: "track", tab, its name; then each line's start, end and text.
inline QByteArray track_text(const std::vector<SubtitleTrack>& tracks)
{
    QByteArray result;
    for (const SubtitleTrack& track : tracks) {
        result += "track\t" + track.name.toUtf8() + '\n';
        for (const Subtitle& line : track.lines) {
            const QString text = QTextCodec::codecForName("CP949")->toUnicode(QByteArray::fromStdString(line.text));
            result += QByteArray::number(line.start) + '\t' + QByteArray::number(line.end) + '\t' +
                      QString(text).replace(u'\n', QLatin1String("\\n")).toUtf8() + '\n';
        }
    }
    return result;
}

inline QByteArray content_of(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool write_content(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}
