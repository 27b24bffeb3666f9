#include "file_manager.h"

#include "file_manager_button.h"
#include "file_manager_look.h"
#include "file_manager_view.h"

#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace
{

using Kind = FileManagerEntry::Kind;
namespace look = file_manager_look;

/// How long the list has to be at rest before the films in view are looked into.
constexpr int rest_ms = 150;

/// The folder itself, or the nearest one above it that is there.
QString nearest_folder(const QString& path)
{
    QString folder = QDir::cleanPath(path);
    while (!QFileInfo(folder).isDir() && !QDir(folder).isRoot())
        folder = folder.left(std::max(folder.lastIndexOf(QLatin1Char('/')), qsizetype{1}));
    return folder;
}

QString name_of(const QString& path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace

FileManager::FileManager(QWidget* parent) : QWidget(parent), view_(new FileManagerView(this))
{
    view_->setModel(&model_);
    const auto add_button = [this](const QString& text, const char* name, FileManagerButton::Look kind, auto action) {
        auto* button = new FileManagerButton(text, name, kind, this);
        connect(button, &FileManagerButton::clicked, this, action);
        connect(button, &FileManagerButton::step_requested, this, &FileManager::step_through_buttons);
        connect(button, &FileManagerButton::left_pressed, view_, qOverload<>(&QWidget::setFocus));
        buttons_.push_back(button);
    };
    using Look = FileManagerButton::Look;
    add_button(tr("Play"), "play", Look::Primary, [this] { take(false); });
    add_button(tr("Add"), "add", Look::Plain, [this] { take(true); });
    add_button(tr("Select"), "select", Look::Plain, [this] { mark_current_row(); });
    add_button(tr("All"), "all", Look::Plain, [this] { model_.choose_all_films(); });

    connect(view_, &FileManagerView::row_entered, this, &FileManager::enter_row);
    connect(view_, &FileManagerView::row_marked, this, &FileManager::mark_row);
    connect(view_, &FileManagerView::left_pressed, this, &FileManager::go_up);
    connect(view_, &FileManagerView::right_pressed, this, [this] { buttons_.front()->setFocus(); });
    connect(&model_, &FileManagerModel::finished, this, &FileManager::reading_finished);
    connect(&model_, &FileManagerModel::failed, this, &FileManager::reading_failed);
    connect(&model_, &FileManagerModel::choices_changed, this, [this] { update(status_rectangle()); });

    look_up_timer_.setSingleShot(true);
    look_up_timer_.setInterval(rest_ms);
    connect(&look_up_timer_, &QTimer::timeout, this, &FileManager::look_up_visible_lengths);
    const auto wait_for_rest = qOverload<>(&QTimer::start);
    connect(view_->verticalScrollBar(), &QScrollBar::valueChanged, &look_up_timer_, wait_for_rest);
    connect(&model_, &FileManagerModel::rowsInserted, &look_up_timer_, wait_for_rest);

    setFocusProxy(view_);
}

FileManager::~FileManager() = default;

void FileManager::open_folder(const QString& path, const QString& name)
{
    const QString folder = nearest_folder(path);
    name_to_find_ = name;
    collector_.cancel();
    say(folder == QDir::cleanPath(path) ? QString() : tr("No longer there: %1").arg(name_of(path)));
    model_.open(folder);
    view_->set_empty_text(tr("Reading\u2026"));
    if (model_.rowCount() > 0)
        view_->setCurrentIndex(model_.index(0));
}

void FileManager::refresh()
{
    const QModelIndex current = view_->currentIndex();
    open_folder(folder(), current.isValid() ? current.data().toString() : QString());
}

void FileManager::take(bool append)
{
    std::vector<FileManagerChoice> choices = model_.choices();
    if (choices.empty()) {
        const int row = view_->currentIndex().row();
        if (row >= 0 && model_.entry(row).kind != Kind::Parent)
            choices.push_back({model_.path(row), model_.entry(row).kind});
    }
    if (choices.empty()) {
        say(tr("Choose a film first."));
        return;
    }
    say(tr("Looking for films\u2026"));
    collector_.cancel();
    collector_.start([this, choices, append](const std::stop_token& cancelled) {
        const CollectedFilms collected = collect_films(choices, most_films, cancelled);
        collector_.deliver(cancelled, [this, collected, append] { films_collected(collected, append); });
    });
}

void FileManager::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const int list_height = height() - look::status_height;
    view_->setGeometry(0, 0, width() - look::button_column, list_height);
    const int count = static_cast<int>(buttons_.size());
    const int pitch = (list_height - look::margin) / count;
    for (int row = 0; row < count; ++row) {
        buttons_[static_cast<std::size_t>(row)]->setGeometry(view_->width() + look::margin, look::margin + row * pitch,
                                                             look::button_column - 2 * look::margin,
                                                             pitch - look::margin);
    }
}

void FileManager::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    look_up_timer_.start();
}

void FileManager::hideEvent(QHideEvent* event)
{
    look_up_timer_.stop();
    collector_.cancel();
    model_.look_up_lengths(0, -1);
    QWidget::hideEvent(event);
}

void FileManager::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect status = status_rectangle();
    painter.fillRect(status, look::bar);
    painter.fillRect(QRect(view_->width(), 0, 1, view_->height()), look::line);
    painter.setFont(look::detail_font());
    const QFontMetrics metrics = painter.fontMetrics();
    QRect line = status.adjusted(look::margin + 4, 0, -look::margin, 0);
    const QString count = model_.choice_count() > 0 ? tr("%1 chosen").arg(model_.choice_count())
                                                    : tr("%1 films").arg(model_.film_count());
    painter.setPen(model_.choice_count() > 0 ? look::accent : look::quiet_text);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, count);
    line.setRight(line.right() - metrics.horizontalAdvance(count) - 2 * look::margin);
    painter.setPen(notice_.isEmpty() ? look::quiet_text : look::caption_text);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(notice_.isEmpty() ? folder() : notice_,
                                        notice_.isEmpty() ? Qt::ElideLeft : Qt::ElideMiddle, line.width()));
}

void FileManager::enter_row(int row)
{
    switch (model_.entry(row).kind) {
    case Kind::Parent:
        go_up();
        break;
    case Kind::Folder:
        open_folder(model_.path(row));
        break;
    case Kind::PlayList:
    case Kind::Film:
    case Kind::Other:
        mark_row(row);
        break;
    }
}

void FileManager::mark_row(int row)
{
    if (model_.entry(row).kind == Kind::Parent) {
        go_up();
        return;
    }
    say(QString());
    model_.set_chosen(row, !model_.is_chosen(row));
}

void FileManager::mark_current_row()
{
    const int row = view_->currentIndex().row();
    if (row < 0)
        return;
    if (model_.entry(row).kind != Kind::Parent)
        mark_row(row);
    if (row + 1 < model_.rowCount())
        view_->setCurrentIndex(model_.index(row + 1));
}

void FileManager::go_up()
{
    if (!QDir(folder()).isRoot())
        open_folder(QDir::cleanPath(folder() + QStringLiteral("/..")), name_of(folder()));
}

void FileManager::reading_finished(int names_left_out)
{
    const int first_below_way_up = model_.rowCount() > 0 && model_.entry(0).kind == Kind::Parent ? 1 : 0;
    view_->set_empty_text(model_.rowCount() > first_below_way_up ? QString() : tr("No films here"));
    if (view_->currentIndex().row() <= 0) {
        const int found = model_.row_of(name_to_find_);
        const int row = std::min(found >= 0 ? found : first_below_way_up, model_.rowCount() - 1);
        view_->setCurrentIndex(model_.index(row));
        view_->scrollTo(model_.index(row), QAbstractItemView::PositionAtCenter);
    }
    if (names_left_out > 0) {
        say(tr("Left out, names that cannot be used: %1").arg(names_left_out));
        qWarning("file manager: left out %d names in %s that are not UTF-8 or hold a line feed", names_left_out,
                 qUtf8Printable(folder()));
    }
    update(status_rectangle());
}

void FileManager::reading_failed(const QString& reason)
{
    view_->set_empty_text(QString());
    const QString name = name_of(folder());
    say(tr("%1 cannot be read: %2").arg(name.isEmpty() ? folder() : name, reason));
    qWarning("file manager: %s cannot be read: %s", qUtf8Printable(folder()), qUtf8Printable(reason));
}

void FileManager::films_collected(const CollectedFilms& collected, bool append)
{
    QStringList lines;
    if (collected.vanished > 0)
        lines.append(tr("No longer there: %1").arg(collected.vanished));
    if (collected.unreadable > 0)
        lines.append(tr("Cannot be read: %1").arg(collected.unreadable));
    if (collected.names_left_out > 0)
        lines.append(tr("Left out, names that cannot be used: %1").arg(collected.names_left_out));
    if (collected.films.isEmpty() && lines.isEmpty())
        lines.append(tr("There are no films in this choice."));
    if (collected.vanished > 0)
        refresh();
    say(lines.join(QStringLiteral("  \u00b7  ")));
    if (!lines.isEmpty())
        qWarning("file manager: films taken %d, no longer there %d, unreadable %d, unusable names %d",
                 static_cast<int>(collected.films.size()), collected.vanished, collected.unreadable,
                 collected.names_left_out);
    model_.clear_choices();
    if (!collected.films.isEmpty())
        emit films_taken(collected.films, append);
}

void FileManager::look_up_visible_lengths()
{
    if (isVisible())
        model_.look_up_lengths(view_->first_visible_row(), view_->last_visible_row());
}

void FileManager::step_through_buttons(int direction)
{
    const auto count = static_cast<int>(buttons_.size());
    for (int row = 0; row < count; ++row) {
        const int next = row + direction;
        if (buttons_[static_cast<std::size_t>(row)]->hasFocus() && next >= 0 && next < count) {
            buttons_[static_cast<std::size_t>(next)]->setFocus();
            return;
        }
    }
}

void FileManager::say(const QString& line)
{
    notice_ = line;
    update(status_rectangle());
}

QRect FileManager::status_rectangle() const
{
    return {0, height() - look::status_height, width(), look::status_height};
}

#include "moc_file_manager.cpp"
