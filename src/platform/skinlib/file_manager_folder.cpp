#include "file_manager_folder.h"

#include "file_manager_play_list.h"

#include <QDir>
#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <set>
#include <utility>

namespace
{

using Kind = FileManagerEntry::Kind;

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

/// False for a name that a list of lines in UTF-8 cannot carry.
bool can_travel(const QByteArray& raw, const QString& name)
{
    return !raw.contains('\n') && name.toUtf8() == raw;
}

/// A folder's identity on its disk, to recognise it when a link leads back to it.
using FolderIdentity = std::pair<dev_t, ino_t>;

class Collector
{
public:
    Collector(int most, const std::stop_token& cancelled) : most_(most), cancelled_(cancelled) {}

    void take(const FileManagerChoice& choice)
    {
        switch (choice.kind) {
        case Kind::Film:
            take_film(choice.path);
            break;
        case Kind::PlayList:
            take_play_list(choice.path);
            break;
        case Kind::Folder:
            take_folder(choice.path);
            break;
        case Kind::Parent:
        case Kind::Other:
            break;
        }
    }

    CollectedFilms result;

private:
    bool is_done() const { return cancelled_.stop_requested() || result.films.size() >= most_; }

    void take_film(const QString& path)
    {
        struct stat info;
        if (is_done())
            return;
        if (::stat(path.toUtf8().constData(), &info) == 0 && S_ISREG(info.st_mode))
            result.films.append(path);
        else
            ++result.vanished;
    }

    void take_play_list(const QString& path)
    {
        const PlayListFilms list = films_of_play_list(path);
        if (!list.failure.isEmpty())
            ++result.unreadable;
        result.names_left_out += list.names_left_out;
        for (const QString& film : list.films)
            take_film(film);
    }

    void take_folder(const QString& path)
    {
        struct stat info;
        if (is_done())
            return;
        if (::stat(path.toUtf8().constData(), &info) != 0) {
            ++result.vanished;
            return;
        }
        if (!walked_.insert({info.st_dev, info.st_ino}).second)
            return;
        const FolderContents contents = read_folder(path, cancelled_);
        if (!contents.failure.isEmpty())
            ++result.unreadable;
        result.names_left_out += contents.names_left_out;
        const QDir folder(path);
        for (const FileManagerEntry& entry : contents.entries) {
            if (entry.kind == Kind::Folder)
                take_folder(folder.filePath(entry.name));
            else if (entry.kind == Kind::Film)
                take_film(folder.filePath(entry.name));
        }
    }

    const int most_;
    const std::stop_token& cancelled_;
    std::set<FolderIdentity> walked_;
};

} // namespace

FolderContents read_folder(const QString& path, const std::stop_token& cancelled)
{
    FolderContents contents;
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(path.toUtf8().constData()));
    if (!directory) {
        contents.failure = QString::fromLocal8Bit(std::strerror(errno));
        return contents;
    }
    while (!cancelled.stop_requested()) {
        errno = 0;
        const dirent* found = readdir(directory.get());
        if (!found) {
            if (errno != 0)
                contents.failure = QString::fromLocal8Bit(std::strerror(errno));
            break;
        }
        const QByteArray raw(found->d_name);
        if (raw.startsWith('.'))
            continue;
        const QString name = QString::fromUtf8(raw);
        const Kind by_name = kind_of_file(name);
        if (by_name == Kind::Other && found->d_type == DT_REG)
            continue;
        struct stat info;
        if (fstatat(dirfd(directory.get()), found->d_name, &info, 0) != 0)
            continue;
        const Kind kind = S_ISDIR(info.st_mode) ? Kind::Folder : S_ISREG(info.st_mode) ? by_name : Kind::Other;
        if (kind == Kind::Other)
            continue;
        if (!can_travel(raw, name)) {
            ++contents.names_left_out;
            continue;
        }
        contents.entries.push_back({kind, name, kind == Kind::Folder ? -1 : qint64{info.st_size}, {}, -1});
    }
    std::sort(contents.entries.begin(), contents.entries.end(), entry_less);
    return contents;
}

CollectedFilms collect_films(const std::vector<FileManagerChoice>& choices, int most, const std::stop_token& cancelled)
{
    Collector collector(most, cancelled);
    for (const FileManagerChoice& choice : choices)
        collector.take(choice);
    return collector.result;
}

QStringList films_behind(const QString& path, int most)
{
    const QFileInfo info(path);
    const auto kind = info.isDir() ? FileManagerEntry::Kind::Folder : kind_of_file(info.fileName());
    if (kind != FileManagerEntry::Kind::Folder && kind != FileManagerEntry::Kind::PlayList)
        return {path};
    const CollectedFilms found = collect_films({{path, kind}}, most, {});
    if (found.films.isEmpty() || found.vanished + found.unreadable + found.names_left_out > 0)
        qWarning("%s: films taken %d, no longer there %d, unreadable %d, unusable names %d", qUtf8Printable(path),
                 static_cast<int>(found.films.size()), found.vanished, found.unreadable, found.names_left_out);
    return found.films;
}
