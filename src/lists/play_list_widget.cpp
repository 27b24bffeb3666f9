#include "play_list_widget.h"

#include "config.h"
#include "media_file.h"
#include "shell.h"

#include <QFileInfo>
#include <QFontMetrics>
#include <QPainter>

#include <array>
#include <cstdio>

namespace
{

constexpr QPoint title_position(13, 8); ///< left edge, and what stands above the line
constexpr int entry_is_open = 1;        ///< value of the crash guard while an entry is started or played
constexpr int entry_is_closed = 0;

constexpr std::array button_actions = {
    ButtonAction<PlayListWidget>{"up", &PlayListWidget::move_up},
    ButtonAction<PlayListWidget>{"down", &PlayListWidget::move_down},
    ButtonAction<PlayListWidget>{"add", &PlayListWidget::open_playlist_browser},
    ButtonAction<PlayListWidget>{"minus", &PlayListWidget::remove_track},
    ButtonAction<PlayListWidget>{"close", &PlayListWidget::close_signal},
};

} // namespace

/// Keeps moves of the cursor to itself as long as it lives.
class PlayListWidget::Unannounced
{
public:
    explicit Unannounced(PlayListWidget* panel) : panel_(panel)
    {
        disconnect(panel_->list_box(), &ListBoxSkin::highlighted, panel_, &PlayListWidget::get_listboxitem_slot);
    }
    ~Unannounced()
    {
        connect(panel_->list_box(), &ListBoxSkin::highlighted, panel_, &PlayListWidget::get_listboxitem_slot);
    }
    Q_DISABLE_COPY_MOVE(Unannounced)

private:
    PlayListWidget* panel_;
};

PlayListWidget::PlayListWidget(QWidget* parent, const char* name)
    : ListPanel(parent, name, QStringLiteral("PLAYLIST"), QStringLiteral("PLAYLIST_LISTBOX"))
{
    const QString directory = data_directory();
    prepare_directory(directory);
    playlist_path_ = directory + QStringLiteral("/playlist.dat");
    load();

    connect(marquee_timer(), &QTimer::timeout, this, &PlayListWidget::update_scroll_text);
    connect(list_box(), &ListBoxSkin::highlighted, this, &PlayListWidget::get_listboxitem_slot);
    connect(list_box(), &ListBoxSkin::selected, this, &PlayListWidget::get_listboxitemplay_slot);
    connect(this, &PlayListWidget::button_clicked, this, &PlayListWidget::button_event);
    hide();
}

PlayListWidget::~PlayListWidget()
{
    PlayListWidget::save();
}

void PlayListWidget::drawTitle(QPainter* painter)
{
    prepare_title(painter);
    const QFontMetrics metrics = painter->fontMetrics();
    painter->drawText(title_position.x(), metrics.ascent() + metrics.leading() / 2 + title_position.y(),
                      tr("PLAY LIST"));
}

void PlayListWidget::get_listboxitem_slot(ListBoxSkinItem* item)
{
    if (is_row(item))
        emit selected_file(list_box()->index(item), 0);
}

void PlayListWidget::get_listboxitemplay_slot(ListBoxSkinItem* item)
{
    if (is_row(item))
        emit selected_file_play(list_box()->index(item), 0);
}

void PlayListWidget::button_event(const QObject* /*sender*/, QString name)
{
    act_on_button(this, button_actions, name);
}

void PlayListWidget::update_scroll_text()
{
    auto* current = row<MediaFile>(list_box()->currentItem());
    if (current && list_box()->visibleWidth() < current->display_name_width() + MediaFile::name_x)
        scroll_name(current);
}

void PlayListWidget::add_track(const QString& path)
{
    const RepaintPause pause(list_box());
    list_box()->insertItem(new MediaFile(path, get_count() + 1));
    if (now_playing_ == -1)
        set_now_playing(get_count() - 1);
}

void PlayListWidget::remove_track()
{
    if (get_count() == 0)
        return;
    const int removed = list_box()->currentItem();
    const RepaintPause pause(list_box());
    const Unannounced silence(this);
    remove_cursor_row<MediaFile>();
    if (removed == now_playing_) {
        std::printf("NOW PLAYING INDEX: %d\n", now_playing_);
        set_now_playing(list_box()->currentItem());
        emit stop_signal();
    } else if (removed < now_playing_) {
        --now_playing_;
    }
}

void PlayListWidget::move_up()
{
    const int cursor = list_box()->currentItem();
    if (!move_cursor_row<MediaFile>(-1))
        return;
    if (now_playing_ == cursor)
        now_playing_ = cursor - 1;
    else if (now_playing_ == cursor - 1)
        now_playing_ = cursor;
}

void PlayListWidget::move_down()
{
    const int cursor = list_box()->currentItem();
    if (!move_cursor_row<MediaFile>(1))
        return;
    if (now_playing_ == cursor)
        now_playing_ = cursor + 1;
    else if (now_playing_ == cursor + 1)
        now_playing_ = cursor;
}

void PlayListWidget::clear()
{
    list_box()->clear();
    now_playing_ = -1;
    now_playing_time_ = 0;
}

void PlayListWidget::save()
{
    auto file = open_file(playlist_path_);
    if (!file)
        return;
    QStringList paths;
    paths.reserve(get_count());
    for (int index = 0; index < get_count(); ++index)
        paths.append(get_filename(index));
    file->setGroup(QStringLiteral("Playlist"));
    file->writeEntry(QStringLiteral("now_playing"), now_playing_);
    file->writeEntry(QStringLiteral("now_playing_time"), static_cast<int>(now_playing_time_));
    file->writeEntry(QStringLiteral("files"), paths);
    file.reset();
    Shell::system("sync");
}

void PlayListWidget::start_entry()
{
    write_entry(entry_is_open);
}

void PlayListWidget::finish_entry()
{
    write_entry(entry_is_closed);
}

bool PlayListWidget::can_entry()
{
    auto file = open_file(playlist_path_);
    if (!file)
        return true;
    file->setGroup(QStringLiteral("ENTRY"));
    const int entry = file->readNumEntry(QStringLiteral("entry"), -1);
    file.reset();
    Shell::system("sync");
    return entry != entry_is_open;
}

QString PlayListWidget::get_filename(int index) const
{
    const ListBoxSkinItem* item = list_box()->item(index);
    return item ? item->text() : QString();
}

int PlayListWidget::get_current_index() const
{
    return list_box()->currentItem();
}

int PlayListWidget::get_current_index(const QString& path) const
{
    for (int index = 0; index < get_count(); ++index) {
        if (list_box()->item(index)->text() == path)
            return index;
    }
    return -1;
}

int PlayListWidget::get_count() const
{
    return list_box()->count();
}

void PlayListWidget::set_current_index(int index)
{
    list_box()->setCurrentItem(index);
}

void PlayListWidget::save_now_playing(unsigned int time)
{
    now_playing_time_ = time;
    save();
}

void PlayListWidget::remove_now_playing()
{
    if (now_playing_ == -1)
        return;
    if (now_playing_ >= get_count()) {
        now_playing_ = -1;
        return;
    }
    const RepaintPause pause(list_box());
    const int cursor = list_box()->currentItem();
    {
        const Unannounced silence(this);
        list_box()->setCurrentItem(now_playing_);
    }
    remove_track();
    const Unannounced silence(this);
    list_box()->setCurrentItem(now_playing_ < cursor ? cursor - 1 : cursor);
}

void PlayListWidget::load_now_playing()
{
    if (now_playing_ != -1)
        emit selected_file(now_playing_, now_playing_time_);
}

void PlayListWidget::play_now_playing()
{
    if (now_playing_ != -1)
        emit selected_file_play(now_playing_, now_playing_time_);
}

int PlayListWidget::get_now_playing()
{
    return now_playing_;
}

void PlayListWidget::set_now_playing(int index)
{
    if (now_playing_ >= 0 && now_playing_ < get_count())
        draw_now_playing(false);
    now_playing_ = index;
    if (index >= 0)
        draw_now_playing(true);
}

void PlayListWidget::play_next_file()
{
    if (now_playing_ == -1)
        return;
    set_now_playing(now_playing_ + 1 < get_count() ? now_playing_ + 1 : 0);
    play_now_playing();
}

void PlayListWidget::update_now_playing(bool on)
{
    if (!on)
        draw_now_playing(false);
    playing_ = on;
    if (on)
        draw_now_playing(true);
}

void PlayListWidget::focus_filelist()
{
    list_box()->setFocus();
}

void PlayListWidget::draw_now_playing(bool on)
{
    if (now_playing_ == -1 || now_playing_ >= get_count() || !playing_)
        return;
    auto* current = row<MediaFile>(now_playing_);
    current->set_now_playing(on);
    list_box()->updateItem(current);
}

/// Makes the lists' directory when there is none. What stands in its place, and beside it under a longer name, goes.
void PlayListWidget::prepare_directory(const QString& directory)
{
    if (QFileInfo(directory).isDir())
        return;
    std::puts("tavel_video: directory is not correct! Remake it");
    Shell::system("rm -rf " + Shell::quote(directory) + "*");
    if (!Shell::make_directory(directory))
        std::puts("Can't make directory! : ");
    Shell::system("sync");
}

void PlayListWidget::load()
{
    const auto file = open_file(playlist_path_);
    if (!file)
        return;
    file->setGroup(QStringLiteral("Playlist"));
    for (const QString& path : file->readListEntry(QStringLiteral("files")))
        add_track(path);
    const int index = file->readNumEntry(QStringLiteral("now_playing"), -1);
    now_playing_time_ = static_cast<unsigned int>(file->readNumEntry(QStringLiteral("now_playing_time"), 0));
    if (index >= 0) {
        set_now_playing(index);
        list_box()->setCurrentItem(index);
    }
}

void PlayListWidget::write_entry(int value)
{
    auto file = open_file(playlist_path_);
    if (!file)
        return;
    file->setGroup(QStringLiteral("ENTRY"));
    file->writeEntry(QStringLiteral("entry"), value);
    file.reset();
    Shell::system("sync");
}
