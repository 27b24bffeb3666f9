#pragma once

#include "list_box_skin.h"
#include "skin_base.h"

#include <QSignalBlocker>
#include <QTimer>

#include <array>
#include <memory>

class Config;
class ListRow;

/// What a button of the skin does in a panel of the class @p Panel; each panel has a table of these.
template<typename Panel> struct ButtonAction {
    const char* name;
    void (Panel::*action)();
};

/// What the playlist panel and the bookmark panel have in common: a skinned panel that carries a list box, fades
/// together with it, lets a long name run through the current row, and hands the list's events on to the main window.
/// GUI thread only.
class ListPanel : public SkinBase
{
    Q_OBJECT

public:
    ~ListPanel() override;

    /// Passes the list box's events, all but the press of Return, to the filter of the window the panel stands in,
    /// which sees them as the panel's own. Other objects' events are not filtered.
    bool eventFilter(QObject* object, QEvent* event) override;
    void setBackgroundPixmap(const QPixmap& pixmap) override;
    /// Composes the picture on the panel's background and gives it the picture's own alpha, faded by the override.
    void redrawImage(QImage& image, int x, int y) override;
    void setAlphaOverride(unsigned char alpha) override;

protected:
    /// Suspends the repainting of the list box as long as it lives.
    class RepaintPause
    {
    public:
        explicit RepaintPause(ListBoxSkin* list_box) : list_box_(list_box) { list_box_->suspendRepaints(); }
        ~RepaintPause() { list_box_->resumeRepaints(); }
        Q_DISABLE_COPY_MOVE(RepaintPause)

    private:
        ListBoxSkin* list_box_;
    };

    /// Loads the skin's group @p group and makes the list box where the group @p list_box_group says.
    ListPanel(QWidget* parent, const char* name, const QString& group, const QString& list_box_group);

    /// The list box "file_listbox"; it holds the data.
    ListBoxSkin* list_box() const { return list_box_.get(); }
    /// The timer of the running name. It ticks while the panel is visible.
    QTimer* marquee_timer() { return &marquee_timer_; }

    /// Does on @p panel what @p actions says for the button @p name; nothing for a name that is not there.
    template<typename Panel, std::size_t Count>
    static void act_on_button(Panel* panel, const std::array<ButtonAction<Panel>, Count>& actions, const QString& name);

    /// Whether the list box told of a row; says in one line when it did not.
    static bool is_row(const ListBoxSkinItem* item);

    /// The directory that holds the lists' files: "etc/" of the device's tree and the name of the main window.
    QString data_directory() const;
    /// Opens a list's file. @return null, said in one line, when there is no memory for it.
    static std::unique_ptr<Config> open_file(const QString& path);

    /// The row at @p index, null when there is none. All rows of the list are of the class @p Row.
    template<typename Row> Row* row(int index) const { return static_cast<Row*>(list_box_->item(index)); }

    /// Removes the row under the cursor. The cursor goes to the row that takes its place, or to the new last row; the
    /// rows behind are numbered anew. There must be a row.
    template<typename Row> void remove_cursor_row();

    /// Exchanges what the row under the cursor holds with its neighbour @p step (1 or -1) away; the numbers stay where
    /// they are. The cursor goes with its file, without telling. A row that goes up past the top of the view becomes
    /// the first row in view, a row that goes down to a place out of view the last one; else nothing scrolls.
    /// @return false at the list's end, where nothing happens.
    template<typename Row> bool move_cursor_row(int step);

    /// Lets the current row's name run on by one step.
    void scroll_name(ListRow* row);

    /// The pen and font of the panel's title.
    void prepare_title(QPainter* painter) const;

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::unique_ptr<ListBoxSkin> list_box_;
    QTimer marquee_timer_{this};
};

template<typename Panel, std::size_t Count>
void ListPanel::act_on_button(Panel* panel, const std::array<ButtonAction<Panel>, Count>& actions, const QString& name)
{
    for (const ButtonAction<Panel>& row : actions) {
        if (name == QLatin1String(row.name))
            (panel->*row.action)();
    }
}

template<typename Row> void ListPanel::remove_cursor_row()
{
    const int removed = list_box_->currentItem();
    if (removed < list_box_->count() - 1) {
        list_box_->setCurrentItem(removed + 1);
        for (int index = removed + 1; index < list_box_->count(); ++index) {
            row<Row>(index)->set_number(index);
            row<Row>(index)->setStrings();
        }
    } else if (removed > 0) {
        list_box_->setCurrentItem(removed - 1);
    }
    list_box_->removeItem(removed);
}

template<typename Row> bool ListPanel::move_cursor_row(int step)
{
    const int cursor = list_box_->currentItem();
    const int neighbour = cursor + step;
    if (cursor < 0 || neighbour < 0 || neighbour >= list_box_->count())
        return false;
    const RepaintPause pause(list_box_.get());
    Row* at_cursor = row<Row>(neighbour)->moved_to(row<Row>(cursor)->number());
    Row* at_neighbour = row<Row>(cursor)->moved_to(row<Row>(neighbour)->number());
    list_box_->changeItem(at_cursor, cursor);
    list_box_->changeItem(at_neighbour, neighbour);
    const int top = list_box_->topItem();
    const QSignalBlocker silence(list_box_.get());
    list_box_->setCurrentItem(neighbour);
    // Undoes the scrolling of setCurrentItem(), which takes the shortest way.
    list_box_->setTopItem(top);
    if (step < 0 && neighbour < top)
        list_box_->setTopItem(neighbour);
    else if (step > 0 && !list_box_->itemVisible(neighbour))
        list_box_->setBottomItem(neighbour);
    return true;
}
