#pragma once

#include "file_manager_folder.h"
#include "file_manager_worker.h"

#include <QAbstractListModel>
#include <QHash>

#include <vector>

/// The rows of one folder, read by a thread of its own and taken in a few hundred at a time, and what of them is
/// chosen.
///
/// Choices outlive a change of folder. GUI thread only.
class FileManagerModel : public QAbstractListModel
{
    Q_OBJECT
public:
    enum Role : int {
        KindRole = Qt::UserRole, ///< FileManagerEntry::Kind as int
        SizeRole,                ///< bytes, -1 when not known
        TypeRole,                ///< the container's name or the suffix
        LengthRole,              ///< milliseconds, -1 when not looked up yet, 0 when the file does not tell
        ChosenRole,              ///< bool
        PathRole                 ///< absolute path
    };

    explicit FileManagerModel(QObject* parent = nullptr);
    ~FileManagerModel() override;

    /// Begins to read the folder at the absolute path @p path; what was shown goes at once. finished() or failed()
    /// follows.
    void open(const QString& path);

    /// Absolute path of the folder shown.
    const QString& folder() const { return folder_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    /// @p row must be one of the rows.
    const FileManagerEntry& entry(int row) const { return entries_[static_cast<std::size_t>(row)]; }
    QString path(int row) const;
    /// The row with that name, or -1.
    int row_of(const QString& name) const;
    /// How many rows are films or play lists.
    int film_count() const { return film_count_; }

    /// The way up cannot be chosen.
    void set_chosen(int row, bool on);
    bool is_chosen(int row) const;
    /// Chooses every film of the folder, or none of them when all are chosen already.
    void choose_all_films();
    void clear_choices();
    /// What is chosen, here and in the folders seen before, in the order of the folders' rows.
    std::vector<FileManagerChoice> choices() const;
    qsizetype choice_count() const { return choices_.size(); }

    /// Has the playing time of the films in these rows looked up, instead of the ones asked for before; dataChanged()
    /// tells of each.
    void look_up_lengths(int first_row, int last_row);

    /// True while rows are still to come.
    bool is_reading() const { return reader_.is_busy(); }

signals:
    /// All rows are there. @p names_left_out of the folder's files have names that cannot be handed over.
    void finished(int names_left_out);
    /// The folder could not be read, for the system's reason @p reason; there are no rows but the way up.
    void failed(const QString& reason);
    void choices_changed();

private:
    void append(std::vector<FileManagerEntry> entries);
    void tell_of_choices();
    void set_summary(int row, const QString& type, qint64 length_ms);

    QString folder_;
    std::vector<FileManagerEntry> entries_;
    QHash<QString, FileManagerEntry::Kind> choices_; ///< by absolute path
    int film_count_ = 0;
    FileManagerWorker reader_;
    FileManagerWorker prober_;
};
