#pragma once

#include "list_panel.h"

#include <QStringList>

class ListBoxSkinItem;

/// The bookmarks: the panel, and in its rows the list of files and positions.
///
/// The list is kept in "bookmark.dat" in the directory of the lists, which the playlist panel makes. It is read by the
/// constructor and written after each change; each writing holds the whole list. GUI thread only.
class BookmarkWidget : public ListPanel
{
    Q_OBJECT

public:
    /// The most bookmarks that whoever makes them lets the list grow to; add_track() does not look.
    static constexpr int capacity = 99;

    /// Loads the skin's groups "BOOKMARK" and "BOOKMARK_LISTBOX" and reads the list.
    BookmarkWidget(QWidget* parent, const char* name);
    ~BookmarkWidget() override;

    void drawTitle(QPainter* painter) override;

public slots:
    /// Tells that the cursor has moved to a row.
    virtual void get_listboxitem_slot(ListBoxSkinItem* item);
    /// Tells that a row was chosen to be played.
    virtual void get_listboxitemplay_slot(ListBoxSkinItem* item);
    /// Does what the skin's button @p name stands for; other names do nothing.
    virtual void button_event(const QObject* sender, QString name);
    /// One step of the running name.
    virtual void update_scroll_text();

public:
    /// Adds a bookmark at the end and saves. The same file and position may be there more than once.
    virtual void add_track(const QString& path, unsigned int seconds);
    /// Removes the row under the cursor, announces the row that the cursor goes to, and saves.
    virtual void remove_track();
    /// Exchanges the bookmark under the cursor with the one above and saves. The cursor goes with it, unannounced.
    virtual void move_up();
    /// The same with the one below.
    virtual void move_down();
    /// Writes the list.
    virtual void save();
    /// Gives the keyboard focus to the list.
    virtual void focus_filelist();

    int get_count() const;

signals:
    /// The cursor moved to the bookmark of this file.
    void selected_file(const QString& path);
    /// The file is to be played from @p position_ms.
    void selected_file_play(const QString& path, unsigned int position_ms);
    void close_signal();

private:
    void load();

    QString bookmark_path_;
    QStringList still_to_load_; ///< what the file holds behind the rows that are loaded already; saved behind them
};
