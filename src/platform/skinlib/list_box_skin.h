#pragma once

#include "list_box_skin_item.h"
#include "scroll_view_skin.h"

#include <vector>

/// A list of rows of one height with a cursor. GUI thread only.
///
/// The list box owns its rows. The first row that is inserted gets the cursor, silently; after that the cursor stays on
/// its row while others come and go. Up, Down, PageUp, PageDown, Home and End move it and keep it in view; Left and
/// Right hand the keyboard focus to the parent (the panel's buttons). Return, Enter, Space and a tap on the current row
/// choose it. Every key is accepted.
class ListBoxSkin : public ScrollViewSkin
{
    Q_OBJECT

public:
    explicit ListBoxSkin(QWidget* parent = nullptr, const char* name = nullptr, unsigned int flags = 0);
    ~ListBoxSkin() override;

    /// Height of every row in pixels; 0 or less goes back to the font's line height and 4.
    void setRowHeight(int height);
    int rowHeight() const;

    int count() const { return static_cast<int>(m_items.size()); }
    /// The row at @p index, or null.
    ListBoxSkinItem* item(int index) const;
    /// The index of a row, -1 when it is not in the list.
    int index(const ListBoxSkinItem* item) const;

    /// Inserts a row before @p index; at the end when the index is negative or past it. Takes ownership. Null is
    /// ignored.
    void insertItem(ListBoxSkinItem* item, int index = -1);
    /// Puts @p item in the place of the row at @p index, which is deleted. The cursor stays where it is, silently.
    /// Takes ownership; without such a row @p item is deleted.
    void changeItem(ListBoxSkinItem* item, int index);
    /// Deletes a row. If the cursor was on it, the next row gets it (the last one at the end) and highlighted() is
    /// sent. Nothing happens when there is no such row.
    void removeItem(int index);
    /// Deletes all rows, silently.
    void clear();

    /// The cursor's row, -1 in an empty list.
    int currentItem() const { return m_current; }
    /// Moves the cursor, brings its row into view and sends highlighted() if it moved. No such row: nothing happens.
    void setCurrentItem(int index);
    void setCurrentItem(const ListBoxSkinItem* item);

    /// The first row in view; 0 in an empty list.
    int topItem() const { return firstStep(); }
    /// Scrolls so that a row is the first one, or the last whole one, in view, as far as the list allows. The cursor
    /// stays.
    void setTopItem(int index);
    void setBottomItem(int index);
    /// Whether a row is wholly in view.
    bool itemVisible(int index) const;
    bool itemVisible(const ListBoxSkinItem* item) const;
    /// A row's rectangle in widget coordinates, also partly in view; empty when it is not in view or not in the list.
    QRect itemRect(const ListBoxSkinItem* item) const;
    /// Repaints one row.
    void updateItem(const ListBoxSkinItem* item);

signals:
    /// The cursor moved to this row.
    void highlighted(ListBoxSkinItem* item);
    /// This row was chosen.
    void selected(ListBoxSkinItem* item);

protected:
    void drawContents(QPainter* painter, const QRect& clip) override;
    void contentsTapped(const QPoint& position) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void read_layout();
    bool has_row(int index) const { return index >= 0 && index < count(); }
    QRect row_rectangle(int index) const;
    void bring_into_view(int index);
    void contents_changed();
    void choose_current();
    void draw_cursor(QPainter* painter, const QRect& row) const;

    std::vector<ListBoxSkinItem*> m_items;
    int m_current = -1;
    int m_row_height = 0;
    QImage m_cursor;
    QImage m_cursor_focus;
};
