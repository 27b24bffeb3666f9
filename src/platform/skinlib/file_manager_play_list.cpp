#include "file_manager_play_list.h"

#include "file_manager_entry.h"
#include "text_codec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QUrl>

namespace
{

constexpr qint64 longest_list_bytes = 4 * 1024 * 1024;

QString decode(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    if (!text.contains(QChar::ReplacementCharacter))
        return text;
    const QTextCodec* codec = QTextCodec::codecForName("CP949");
    return codec ? codec->toUnicode(bytes) : text;
}

QStringList lines_of(const QString& text)
{
    QString unified = text;
    unified.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    unified.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return unified.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList entries_of_m3u(const QString& text)
{
    QStringList entries;
    for (const QString& line : lines_of(text)) {
        if (!line.startsWith(QLatin1Char('#')))
            entries.append(line);
    }
    return entries;
}

QStringList entries_of_pls(const QString& text)
{
    constexpr QLatin1String key("file");
    QMap<int, QString> by_number;
    for (const QString& line : lines_of(text)) {
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (equals < 0 || !line.startsWith(key, Qt::CaseInsensitive))
            continue;
        bool is_number = false;
        const int number = QStringView(line).mid(key.size(), equals - key.size()).trimmed().toInt(&is_number);
        if (is_number)
            by_number.insert(number, line.mid(equals + 1));
    }
    return by_number.values();
}

/// The absolute path that an entry means, or an empty one when it is no local file.
QString path_of(const QString& entry, const QDir& folder)
{
    if (entry.startsWith(QLatin1String("file:"), Qt::CaseInsensitive))
        return QDir::cleanPath(QUrl(entry).toLocalFile());
    if (entry.contains(QLatin1String("://")))
        return {};
    QString path = folder.absoluteFilePath(entry);
    if (entry.contains(QLatin1Char('\\')) && !QFile::exists(path)) {
        QString with_slashes = entry;
        with_slashes.replace(QLatin1Char('\\'), QLatin1Char('/'));
        path = folder.absoluteFilePath(with_slashes);
    }
    return QDir::cleanPath(path);
}

} // namespace

PlayListFilms films_of_play_list(const QString& path)
{
    PlayListFilms result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.failure = file.errorString();
        return result;
    }
    QByteArray bytes = file.read(longest_list_bytes);
    if (!file.atEnd())
        bytes.truncate(bytes.lastIndexOf('\n') + 1);
    const QString text = decode(bytes);
    const bool is_pls = path.endsWith(QLatin1String(".pls"), Qt::CaseInsensitive);
    const QDir folder = QFileInfo(path).absoluteDir();
    for (const QString& entry : is_pls ? entries_of_pls(text) : entries_of_m3u(text)) {
        const QString trimmed = entry.trimmed();
        if (trimmed.isEmpty())
            continue;
        const QString film = path_of(trimmed, folder);
        if (film.isEmpty() || film.contains(QLatin1Char('\n')))
            ++result.names_left_out;
        else if (kind_of_file(film) == FileManagerEntry::Kind::Film)
            result.films.append(film);
    }
    return result;
}
