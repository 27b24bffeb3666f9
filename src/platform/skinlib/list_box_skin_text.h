#pragma once

#include "list_box_skin_item.h"

/// A row that is one line of text. GUI thread only.
class ListBoxSkinText : public ListBoxSkinItem
{
public:
    explicit ListBoxSkinText(const QString& text = QString());
    ~ListBoxSkinText() override;

    QString text() const override;
    /// Null: the row has no picture.
    const QPixmap* pixmap() const override;
    int height(const ListBoxSkin* list_box) const override;
    int width(const ListBoxSkin* list_box) const override;
    /// Draws the text in one line, vertically centred, cut at the row's right edge.
    void paint(QPainter* painter) override;
    /// Changes the text and repaints the row if it is in a list box.
    void setText(const QString& text) override;

private:
    QString m_text;
};
