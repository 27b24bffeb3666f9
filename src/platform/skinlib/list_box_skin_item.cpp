#include "list_box_skin_item.h"

#include "list_box_skin.h"

bool ListBoxSkinItem::isCurrent() const
{
    return m_list_box && m_list_box->item(m_list_box->currentItem()) == this;
}
