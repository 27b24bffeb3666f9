#pragma once

#include "list_panel.h"

class ListBoxSkinItem;
class MediaFile;

/// The playlist: the panel, and in its rows the list itself with the entry that is now playing.
///
/// The list is kept in "playlist.dat" in the directory of the lists. It is read by the constructor and written by
/// save(), by save_now_playing() and by the destructor. The same file holds a note of its own, whether an entry is
/// being started or played, which start_entry() and finish_entry() write and can_entry() reads. Each writing leaves the
/// old or the new content whatever happens, and a list that cannot be written stays as it is in memory. Indexes count
/// from 0. GUI thread only.
class PlayListWidget : public ListPanel
{
    Q_OBJECT

public:
    /// The most entries that whoever adds files from outside lets the list grow to; add_track() does not look.
    static constexpr int capacity = 999;

    /// Loads the skin's groups "PLAYLIST" and "PLAYLIST_LISTBOX", makes the lists' directory if there is none (what is
    /// in its place goes) and reads the list. Stays hidden.
    PlayListWidget(QWidget* parent, const char* name);
    ~PlayListWidget() override;

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
    /// Adds a file at the end. The first one becomes now playing. Does not save.
    virtual void add_track(const QString& path);
    /// Removes the row under the cursor, without announcing where the cursor goes; sends stop_signal() when it was now
    /// playing. Does not save.
    virtual void remove_track();
    /// Exchanges the file under the cursor with the one above. The cursor and the now-playing mark go with their files.
    /// Does not save.
    virtual void move_up();
    /// The same with the one below.
    virtual void move_down();
    /// Removes all rows; nothing is now playing. Does not save.
    virtual void clear();
    /// Writes the list and has the disk brought up to date.
    virtual void save();
    /// Notes in the file that an entry is being started; finish_entry() takes it back. A note that is still there at
    /// the next start tells that the player died over the entry.
    virtual void start_entry();
    virtual void finish_entry();
    /// False when a note of start_entry() is there.
    virtual bool can_entry();
    /// Full path of a row; empty when there is no such row.
    virtual QString get_filename(int index) const;
    /// The cursor's row, -1 in an empty list.
    virtual int get_current_index() const;
    /// The first row with exactly this path, else -1.
    virtual int get_current_index(const QString& path) const;
    virtual int get_count() const;
    /// Moves the cursor.
    virtual void set_current_index(int index);
    /// Stores how far the now-playing file has come (the unit is the caller's) and saves.
    virtual void save_now_playing(unsigned int time);
    /// Removes the now-playing row; the cursor stays on its file. An index past the end is only forgotten. Does not
    /// save.
    virtual void remove_now_playing();
    /// Sends selected_file() for the now-playing entry, if there is one.
    virtual void load_now_playing();
    /// Sends selected_file_play() for the now-playing entry, if there is one.
    virtual void play_now_playing();
    /// Index of the now-playing entry, -1 for none.
    virtual int get_now_playing();
    /// Makes a row now playing; -1 for none. Not checked against the number of rows.
    virtual void set_now_playing(int index);
    /// Makes the next row, behind the last one the first, now playing and plays it from the stored position.
    virtual void play_next_file();
    /// Tells whether the player plays; the now-playing row is marked only then.
    virtual void update_now_playing(bool on);
    /// Gives the keyboard focus to the list.
    virtual void focus_filelist();
    /// Draws the now-playing row with its mark or without; nothing happens while nothing plays.
    virtual void draw_now_playing(bool on);

signals:
    /// The cursor moved to row @p index, or the now-playing row @p index is to be loaded at position @p time.
    void selected_file(int index, unsigned int time);
    /// Row @p index is to be played from @p time.
    void selected_file_play(int index, unsigned int time);
    /// The row that was playing is gone.
    void stop_signal();
    void close_signal();
    /// The user wants to choose files to add.
    void open_playlist_browser();

private:
    class Unannounced;

    void prepare_directory(const QString& directory);
    void load();
    void write_entry(int value);

    QString playlist_path_;
    int now_playing_ = -1;
    unsigned int now_playing_time_ = 0;
    bool playing_ = false;
};
