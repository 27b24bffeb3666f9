#include "list_box_skin_text.h"

#include "list_box_skin.h"

#include <QtGui/QPainter>

namespace
{

constexpr int left_margin = 6;

} // namespace

ListBoxSkinText::ListBoxSkinText(const QString& text) : m_text(text) {}

ListBoxSkinText::~ListBoxSkinText() = default;

QString ListBoxSkinText::text() const
{
    return m_text;
}

const QPixmap* ListBoxSkinText::pixmap() const
{
    return nullptr;
}

int ListBoxSkinText::height(const ListBoxSkin* list_box) const
{
    return list_box ? list_box->rowHeight() : 0;
}

int ListBoxSkinText::width(const ListBoxSkin* list_box) const
{
    return list_box ? left_margin + list_box->fontMetrics().horizontalAdvance(m_text) : 0;
}

void ListBoxSkinText::paint(QPainter* painter)
{
    if (!listBox())
        return;
    const QRect row(left_margin, 0, listBox()->visibleWidth() - left_margin, listBox()->rowHeight());
    painter->drawText(row, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, m_text);
}

void ListBoxSkinText::setText(const QString& text)
{
    m_text = text;
    if (listBox())
        listBox()->updateItem(this);
}
