#include "subtitle_files.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <iterator>
#include <tuple>
#include <vector>

namespace
{

constexpr const char* suffixes[] = {"smi", "srt", "ass", "ssa", "vtt", "sub"};

/// What stands between a film's name and the suffix beside the codes of languages.
constexpr const char* marks[] = {
    "kr",      "jp",       "cn",      "tw",     "us",  "uk", "br", "chs",  "cht",     "korean",
    "english", "japanese", "chinese", "forced", "sdh", "cc", "hi", "full", "default",
};

/// What lies beside subtitles under their name and is no film.
constexpr const char* companions[] = {
    "idx", "txt", "nfo", "jpg", "jpeg", "png", "xml", "html", "url", "log", "bak", "old", "orig",
    "tmp", "zip", "rar", "7z",  "sup",  "mks", "mka", "mp3",  "aac", "ac3", "dts", "wav", "flac",
};

constexpr qsizetype not_a_suffix = std::size(suffixes);

/// The suffix's place in the table.
qsizetype rank(const QString& suffix)
{
    const auto* const found = std::find_if(std::begin(suffixes), std::end(suffixes), [&suffix](const char* known) {
        return suffix.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
    });
    return std::distance(std::begin(suffixes), found);
}

/// Whether "ko", "pt-BR" or "forced" stands there.
bool is_mark(const QString& text)
{
    const QString lower = text.toLower();
    if (std::any_of(std::begin(marks), std::end(marks), [&](const char* mark) { return lower == QLatin1String(mark); }))
        return true;
    const QString language = lower.section(u'-', 0, 0).section(u'_', 0, 0);
    constexpr qsizetype longest_region = 8;
    return (language.size() == 2 || language.size() == 3) && lower.size() <= language.size() + 1 + longest_region &&
           QLocale::codeToLanguage(language) != QLocale::AnyLanguage;
}

bool is_companion(const QString& suffix)
{
    return std::any_of(std::begin(companions), std::end(companions), [&suffix](const char* known) {
        return suffix.compare(QLatin1String(known), Qt::CaseInsensitive) == 0;
    });
}

/// One name has several spellings in Unicode; files from other systems bring them.
QString composed(const QString& name)
{
    return name.normalized(QString::NormalizationForm_C);
}

} // namespace

bool has_subtitle_suffix(const QString& file)
{
    return rank(QFileInfo(file).suffix()) != not_a_suffix;
}

QStringList subtitle_files_of(const QString& film)
{
    const QFileInfo info(film);
    const QString name = composed(info.completeBaseName());
    const QFileInfoList entries = info.absoluteDir().entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    QSet<QString> other_films;
    for (const QFileInfo& entry : entries) {
        const bool may_be_film = !has_subtitle_suffix(entry.fileName()) && !is_companion(entry.suffix());
        if (may_be_film && entry.fileName() != info.fileName())
            other_films.insert(composed(entry.completeBaseName()));
    }

    std::vector<std::tuple<bool, qsizetype, QString, QString>> found;
    for (const QFileInfo& entry : entries) {
        const qsizetype suffix = rank(entry.suffix());
        const QString own = composed(entry.completeBaseName());
        if (suffix == not_a_suffix || (own != name && (!own.startsWith(name + u'.') || other_films.contains(own))))
            continue;
        const QStringList between = own == name ? QStringList() : own.mid(name.size() + 1).split(u'.');
        if (std::all_of(between.begin(), between.end(), is_mark))
            found.emplace_back(own != name, suffix, entry.fileName(), entry.absoluteFilePath());
    }
    std::sort(found.begin(), found.end());
    QStringList files;
    for (const auto& file : found)
        files += std::get<3>(file);
    return files;
}
