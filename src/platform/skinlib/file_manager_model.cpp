#include "file_manager_model.h"

#include "media_probe.h"

#include <QDir>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace
{

using Kind = FileManagerEntry::Kind;

/// Rows that are taken in at once: enough to fill the window many times over, few enough not to be felt.
constexpr std::size_t batch_rows = 500;

/// The most that a file may hold up the ones behind it.
constexpr int probe_limit_ms = 500;

QString upper_suffix(const QString& name)
{
    return name.mid(name.lastIndexOf(QLatin1Char('.')) + 1).toUpper();
}

QString folder_of(const QString& path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

QString name_of(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

bool choice_less(const FileManagerChoice& left, const FileManagerChoice& right)
{
    const QString left_folder = folder_of(left.path);
    const QString right_folder = folder_of(right.path);
    if (left_folder != right_folder)
        return natural_less(left_folder, right_folder);
    if (left.kind != right.kind)
        return left.kind < right.kind;
    return natural_less(name_of(left.path), name_of(right.path));
}

} // namespace

FileManagerModel::FileManagerModel(QObject* parent) : QAbstractListModel(parent) {}

FileManagerModel::~FileManagerModel() = default;

void FileManagerModel::open(const QString& path)
{
    reader_.cancel();
    prober_.cancel();
    beginResetModel();
    folder_ = path;
    entries_.clear();
    film_count_ = 0;
    if (!QDir(path).isRoot())
        entries_.push_back({Kind::Parent, QStringLiteral(".."), -1, {}, -1});
    endResetModel();

    reader_.start([this, path](const std::stop_token& cancelled) {
        const auto contents = std::make_shared<FolderContents>(read_folder(path, cancelled));
        auto& found = contents->entries;
        for (std::size_t first = 0; first < found.size(); first += batch_rows) {
            const auto begin = std::next(found.begin(), static_cast<std::ptrdiff_t>(first));
            const auto end = std::next(begin, static_cast<std::ptrdiff_t>(std::min(batch_rows, found.size() - first)));
            auto batch = std::make_shared<std::vector<FileManagerEntry>>(std::make_move_iterator(begin),
                                                                         std::make_move_iterator(end));
            reader_.deliver(cancelled, [this, batch] { append(std::move(*batch)); });
        }
        reader_.deliver(cancelled, [this, failure = contents->failure, names_left_out = contents->names_left_out] {
            if (failure.isEmpty())
                emit finished(names_left_out);
            else
                emit failed(failure);
        });
    });
}

int FileManagerModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

QVariant FileManagerModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const FileManagerEntry& row = entry(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return row.name;
    case KindRole:
        return static_cast<int>(row.kind);
    case SizeRole:
        return row.size;
    case TypeRole:
        return row.type.isEmpty() ? upper_suffix(row.name) : row.type;
    case LengthRole:
        return row.length_ms;
    case ChosenRole:
        return is_chosen(index.row());
    case PathRole:
        return path(index.row());
    default:
        return {};
    }
}

QString FileManagerModel::path(int row) const
{
    if (entry(row).kind == Kind::Parent)
        return QDir::cleanPath(folder_ + QStringLiteral("/.."));
    return QDir(folder_).filePath(entry(row).name);
}

int FileManagerModel::row_of(const QString& name) const
{
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [&](const FileManagerEntry& row) { return row.name == name; });
    return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
}

void FileManagerModel::set_chosen(int row, bool on)
{
    if (entry(row).kind == Kind::Parent || is_chosen(row) == on)
        return;
    if (on)
        choices_.insert(path(row), entry(row).kind);
    else
        choices_.remove(path(row));
    emit dataChanged(index(row), index(row), {ChosenRole});
    emit choices_changed();
}

bool FileManagerModel::is_chosen(int row) const
{
    return !choices_.isEmpty() && choices_.contains(path(row));
}

void FileManagerModel::choose_all_films()
{
    QStringList films;
    for (int row = 0; row < rowCount(); ++row) {
        if (entry(row).kind == Kind::Film)
            films.append(path(row));
    }
    const bool all_chosen =
        std::all_of(films.cbegin(), films.cend(), [this](const QString& film) { return choices_.contains(film); });
    for (const QString& film : std::as_const(films)) {
        if (all_chosen)
            choices_.remove(film);
        else
            choices_.insert(film, Kind::Film);
    }
    tell_of_choices();
}

void FileManagerModel::clear_choices()
{
    choices_.clear();
    tell_of_choices();
}

std::vector<FileManagerChoice> FileManagerModel::choices() const
{
    std::vector<FileManagerChoice> sorted;
    sorted.reserve(static_cast<std::size_t>(choices_.size()));
    for (auto choice = choices_.cbegin(); choice != choices_.cend(); ++choice)
        sorted.push_back({choice.key(), choice.value()});
    std::sort(sorted.begin(), sorted.end(), choice_less);
    return sorted;
}

void FileManagerModel::look_up_lengths(int first_row, int last_row)
{
    prober_.cancel();
    for (int row = std::max(first_row, 0); row <= std::min(last_row, rowCount() - 1); ++row) {
        if (entry(row).kind != Kind::Film || entry(row).length_ms >= 0)
            continue;
        prober_.start([this, row, film = path(row)](const std::stop_token& cancelled) {
            const MediaSummary summary = probe_media(film, probe_limit_ms, cancelled).value_or(MediaSummary{});
            prober_.deliver(cancelled, [this, row, summary] { set_summary(row, summary.type, summary.duration_ms); });
        });
    }
}

void FileManagerModel::append(std::vector<FileManagerEntry> entries)
{
    const int first = rowCount();
    beginInsertRows({}, first, first + static_cast<int>(entries.size()) - 1);
    for (FileManagerEntry& row : entries) {
        if (row.kind == Kind::Film || row.kind == Kind::PlayList)
            ++film_count_;
        entries_.push_back(std::move(row));
    }
    endInsertRows();
}

void FileManagerModel::set_summary(int row, const QString& type, qint64 length_ms)
{
    FileManagerEntry& film = entries_[static_cast<std::size_t>(row)];
    film.type = type;
    film.length_ms = std::max(length_ms, qint64{0});
    emit dataChanged(index(row), index(row), {TypeRole, LengthRole});
}

void FileManagerModel::tell_of_choices()
{
    if (!entries_.empty())
        emit dataChanged(index(0), index(rowCount() - 1), {ChosenRole});
    emit choices_changed();
}

// Kept out of the library's common object, so that only programs with a file manager need the engine's probe_media().
#include "moc_file_manager_model.cpp"
