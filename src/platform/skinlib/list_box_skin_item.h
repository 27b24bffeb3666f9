#pragma once

#include <QtCore/QString>
#include <QtGui/QPixmap>

class ListBoxSkin;
class QPainter;

/// One row of a ListBoxSkin, which owns it once it is inserted. GUI thread only.
class ListBoxSkinItem
{
public:
    ListBoxSkinItem() = default;
    virtual ~ListBoxSkinItem() = default;
    ListBoxSkinItem(const ListBoxSkinItem&) = delete;
    ListBoxSkinItem& operator=(const ListBoxSkinItem&) = delete;

    virtual QString text() const = 0;
    /// The row's picture; null for none.
    virtual const QPixmap* pixmap() const = 0;
    /// What the row would like to have, in pixels. A list box gives all rows its own row height.
    virtual int height(const ListBoxSkin* list_box) const = 0;
    virtual int width(const ListBoxSkin* list_box) const = 0;
    /// Draws the row. The painter's origin is the row's top left corner, its font the list box's, its pen white, and it
    /// is clipped to the row; the cursor's picture is already there.
    virtual void paint(QPainter* painter) = 0;
    virtual void setText(const QString& text) = 0;

    /// The list box that the row is in, or null.
    ListBoxSkin* listBox() const { return m_list_box; }
    /// Whether the list box's cursor is on this row.
    bool isCurrent() const;

private:
    friend class ListBoxSkin;
    ListBoxSkin* m_list_box = nullptr;
};
