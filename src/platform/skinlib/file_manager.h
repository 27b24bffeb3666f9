#pragma once

#include "file_manager_model.h"

#include <QStringList>
#include <QTimer>
#include <QWidget>

class FileManagerButton;
class FileManagerView;

/// The file manager: the rows of one folder, what is chosen of them, and buttons that take the choice. GUI thread only.
///
/// Key pad: Up and Down move through the rows, Return opens a folder and chooses a film, Left goes to the folder above,
/// Right to the buttons and Left back from them. Everything works by tap as well. Whatever cannot be done is said in
/// the line at the bottom.
class FileManager : public QWidget
{
    Q_OBJECT

public:
    /// The most films that are taken at once: one more than the player's list holds, so that the player says that it is
    /// full.
    static constexpr int most_films = 1000;

    explicit FileManager(QWidget* parent = nullptr);
    ~FileManager() override;

    /// Shows the folder @p path, or the nearest one above that is there. The cursor goes to the row @p name if there is
    /// one.
    void open_folder(const QString& path, const QString& name = QString());
    /// Absolute path of the folder that is shown; empty before the first.
    const QString& folder() const { return model_.folder(); }
    /// Reads the folder anew; the cursor stays on its row.
    void refresh();

    /// Takes the choice, or the row under the cursor when nothing is chosen: films_taken() follows once the films are
    /// found.
    /// @param append whether they are to be added behind what the player has.
    void take(bool append);

    /// The line at the bottom, if it says anything but the folder.
    const QString& notice() const { return notice_; }

signals:
    /// These films, absolute paths, at least one, are to be played or added.
    void films_taken(const QStringList& films, bool append);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void enter_row(int row);
    void mark_row(int row);
    void mark_current_row();
    void go_up();
    void reading_finished(int names_left_out);
    void reading_failed(const QString& reason);
    void films_collected(const CollectedFilms& collected, bool append);
    void look_up_visible_lengths();
    void step_through_buttons(int direction);
    void say(const QString& line);
    QRect status_rectangle() const;

    FileManagerModel model_;
    FileManagerWorker collector_;
    FileManagerView* view_;
    std::vector<FileManagerButton*> buttons_; ///< from top to bottom
    QTimer look_up_timer_;                    ///< waits until the list has come to rest
    QString name_to_find_;                    ///< where the cursor goes once the rows are there
    QString notice_;
};
