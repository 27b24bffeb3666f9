#include "bookmark_widget.h"

#include "bookmark.h"
#include "config.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace
{

constexpr int ms_per_second = 1000;
constexpr int elements_per_row = 2; ///< of the list in the file: path, seconds

constexpr QRect title_box(0, 0, 124, 26);
constexpr QRect time_box(QPoint(124, 0), QPoint(191, 25));

constexpr std::array button_actions = {
    ButtonAction<BookmarkWidget>{"up", &BookmarkWidget::move_up},
    ButtonAction<BookmarkWidget>{"down", &BookmarkWidget::move_down},
    ButtonAction<BookmarkWidget>{"minus", &BookmarkWidget::remove_track},
    ButtonAction<BookmarkWidget>{"close", &BookmarkWidget::close_signal},
};

} // namespace

BookmarkWidget::BookmarkWidget(QWidget* parent, const char* name)
    : ListPanel(parent, name, QStringLiteral("BOOKMARK"), QStringLiteral("BOOKMARK_LISTBOX"))
    , bookmark_path_(data_directory() + QStringLiteral("/bookmark.dat"))
{
    load();

    connect(marquee_timer(), &QTimer::timeout, this, &BookmarkWidget::update_scroll_text);
    connect(list_box(), &ListBoxSkin::highlighted, this, &BookmarkWidget::get_listboxitem_slot);
    connect(list_box(), &ListBoxSkin::selected, this, &BookmarkWidget::get_listboxitemplay_slot);
    connect(this, &BookmarkWidget::button_clicked, this, &BookmarkWidget::button_event);
    hide();
}

BookmarkWidget::~BookmarkWidget()
{
    BookmarkWidget::save();
}

void BookmarkWidget::drawTitle(QPainter* painter)
{
    prepare_title(painter);
    painter->drawText(title_box, Qt::AlignHCenter | Qt::AlignVCenter, tr("BOOKMARKS"));
    painter->drawText(time_box, Qt::AlignHCenter | Qt::AlignVCenter, tr("TIME"));
}

void BookmarkWidget::get_listboxitem_slot(ListBoxSkinItem* item)
{
    if (is_row(item))
        emit selected_file(item->text());
}

void BookmarkWidget::get_listboxitemplay_slot(ListBoxSkinItem* item)
{
    if (is_row(item))
        emit selected_file_play(item->text(), static_cast<Bookmark*>(item)->time() * ms_per_second);
}

void BookmarkWidget::button_event(const QObject* /*sender*/, QString name)
{
    act_on_button(this, button_actions, name);
}

void BookmarkWidget::update_scroll_text()
{
    auto* current = row<Bookmark>(list_box()->currentItem());
    if (current && current->display_name_width() + Bookmark::name_x > Bookmark::name_right + 1)
        scroll_name(current);
}

void BookmarkWidget::add_track(const QString& path, unsigned int seconds)
{
    list_box()->insertItem(new Bookmark(path, get_count() + 1, seconds));
    save();
}

void BookmarkWidget::remove_track()
{
    if (get_count() == 0)
        return;
    const RepaintPause pause(list_box());
    remove_cursor_row<Bookmark>();
    save();
}

void BookmarkWidget::move_up()
{
    if (move_cursor_row<Bookmark>(-1))
        save();
}

void BookmarkWidget::move_down()
{
    if (move_cursor_row<Bookmark>(1))
        save();
}

void BookmarkWidget::save()
{
    const auto file = open_file(bookmark_path_);
    if (!file)
        return;
    QStringList elements;
    elements.reserve(get_count() * elements_per_row + still_to_load_.size());
    for (int index = 0; index < get_count(); ++index)
        elements << row<Bookmark>(index)->text() << QString::number(row<Bookmark>(index)->time());
    elements += still_to_load_;
    file->setGroup(QStringLiteral("Bookmarks"));
    file->writeEntry(QStringLiteral("bookmarks"), elements);
}

void BookmarkWidget::focus_filelist()
{
    list_box()->setFocus();
}

int BookmarkWidget::get_count() const
{
    return list_box()->count();
}

void BookmarkWidget::load()
{
    {
        const auto file = open_file(bookmark_path_);
        if (!file)
            return;
        file->setGroup(QStringLiteral("Bookmarks"));
        still_to_load_ = file->readListEntry(QStringLiteral("bookmarks"));
    }
    while (!still_to_load_.isEmpty()) {
        const QString path = still_to_load_.takeFirst();
        const int seconds = still_to_load_.isEmpty() ? 0 : still_to_load_.takeFirst().toInt();
        add_track(path, static_cast<unsigned int>(std::max(seconds, 0)));
    }
}
