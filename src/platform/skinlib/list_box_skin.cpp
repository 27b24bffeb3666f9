#include "list_box_skin.h"

#include "skin_group.h"
#include "skin_slices.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace
{

constexpr int line_margin = 4;
constexpr QRgb plain_cursor = 0x30ffffff;
constexpr QRgb plain_cursor_focus = 0x90ff6600;

} // namespace

ListBoxSkin::ListBoxSkin(QWidget* parent, const char* name, unsigned int flags) : ScrollViewSkin(parent, name, flags)
{
    read_layout();
    contents_changed();
}

ListBoxSkin::~ListBoxSkin()
{
    clear();
}

void ListBoxSkin::read_layout()
{
    const SkinGroup layout(this, QStringLiteral("LISTBOX"));
    m_cursor = layout.image(QStringLiteral("cursor"));
    m_cursor_focus = layout.image(QStringLiteral("cursor_focus"));
}

// Rows

void ListBoxSkin::setRowHeight(int height)
{
    m_row_height = std::max(0, height);
    contents_changed();
}

int ListBoxSkin::rowHeight() const
{
    return m_row_height > 0 ? m_row_height : fontMetrics().lineSpacing() + line_margin;
}

void ListBoxSkin::contents_changed()
{
    setContents(rowHeight(), count());
}

ListBoxSkinItem* ListBoxSkin::item(int index) const
{
    return has_row(index) ? m_items[static_cast<std::size_t>(index)] : nullptr;
}

int ListBoxSkin::index(const ListBoxSkinItem* item) const
{
    if (!item || item->m_list_box != this)
        return -1;
    return static_cast<int>(std::find(m_items.begin(), m_items.end(), item) - m_items.begin());
}

void ListBoxSkin::insertItem(ListBoxSkinItem* item, int index)
{
    if (!item || item->m_list_box)
        return;
    const int place = index < 0 || index > count() ? count() : index;
    m_items.insert(m_items.begin() + place, item);
    item->m_list_box = this;
    if (count() == 1)
        m_current = 0;
    else if (place <= m_current)
        ++m_current;
    contents_changed();
}

void ListBoxSkin::changeItem(ListBoxSkinItem* item, int index)
{
    if (!item || item->m_list_box)
        return;
    if (!has_row(index)) {
        delete item;
        return;
    }
    delete std::exchange(m_items[static_cast<std::size_t>(index)], item);
    item->m_list_box = this;
    updateItem(item);
}

void ListBoxSkin::removeItem(int index)
{
    if (!has_row(index))
        return;
    ListBoxSkinItem* const removed = item(index);
    m_items.erase(m_items.begin() + index);
    delete removed;

    const bool under_cursor = index == m_current;
    if (index < m_current)
        --m_current;
    m_current = std::min(m_current, count() - 1);
    // The rows in view stay where they are.
    if (index < firstStep())
        setFirstStep(firstStep() - 1);
    contents_changed();
    if (under_cursor && m_current >= 0) {
        bring_into_view(m_current);
        emit highlighted(item(m_current));
    }
}

void ListBoxSkin::clear()
{
    qDeleteAll(m_items);
    m_items.clear();
    m_current = -1;
    contents_changed();
}

// Cursor and view

void ListBoxSkin::setCurrentItem(int index)
{
    if (!has_row(index))
        return;
    const bool moved = index != m_current;
    const ListBoxSkinItem* const before = item(m_current);
    m_current = index;
    updateItem(before);
    updateItem(item(index));
    bring_into_view(index);
    if (moved)
        emit highlighted(item(index));
}

void ListBoxSkin::setCurrentItem(const ListBoxSkinItem* item)
{
    setCurrentItem(index(item));
}

void ListBoxSkin::bring_into_view(int index)
{
    if (index < firstStep())
        setFirstStep(index);
    else if (index >= firstStep() + visibleSteps())
        setFirstStep(index - visibleSteps() + 1);
}

void ListBoxSkin::setTopItem(int index)
{
    setFirstStep(index);
}

void ListBoxSkin::setBottomItem(int index)
{
    setFirstStep(index - visibleSteps() + 1);
}

QRect ListBoxSkin::row_rectangle(int index) const
{
    return QRect(0, (index - firstStep()) * stepHeight(), visibleWidth(), stepHeight());
}

bool ListBoxSkin::itemVisible(int index) const
{
    return has_row(index) && index >= firstStep() && index < firstStep() + visibleSteps();
}

bool ListBoxSkin::itemVisible(const ListBoxSkinItem* item) const
{
    return itemVisible(index(item));
}

QRect ListBoxSkin::itemRect(const ListBoxSkinItem* item) const
{
    const int row = index(item);
    if (row < firstStep())
        return {};
    const QRect rectangle = row_rectangle(row);
    return rectangle.intersects(rect()) ? rectangle : QRect();
}

void ListBoxSkin::updateItem(const ListBoxSkinItem* item)
{
    const QRect rectangle = itemRect(item);
    if (!rectangle.isEmpty())
        updateContents(rectangle);
}

void ListBoxSkin::resizeEvent(QResizeEvent* event)
{
    ScrollViewSkin::resizeEvent(event);
    if (m_current >= 0)
        bring_into_view(m_current);
}

void ListBoxSkin::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange)
        contents_changed();
    ScrollViewSkin::changeEvent(event);
}

// Drawing

void ListBoxSkin::draw_cursor(QPainter* painter, const QRect& row) const
{
    const bool focused = window()->focusWidget() == this;
    const QImage& image = focused && !m_cursor_focus.isNull() ? m_cursor_focus : m_cursor;
    if (image.isNull())
        painter->fillRect(row, QColor::fromRgba(focused ? plain_cursor_focus : plain_cursor));
    else
        draw_slices(painter, row, image, Qt::Horizontal);
}

void ListBoxSkin::drawContents(QPainter* painter, const QRect& clip)
{
    const int first = firstStep() + clip.top() / stepHeight();
    const int last = std::min(firstStep() + clip.bottom() / stepHeight(), count() - 1);
    for (int index = first; index <= last; ++index) {
        const QRect row = row_rectangle(index);
        painter->save();
        painter->setClipRect(row, Qt::IntersectClip);
        if (index == m_current)
            draw_cursor(painter, row);
        painter->translate(row.topLeft());
        painter->setFont(font());
        painter->setPen(Qt::white);
        item(index)->paint(painter);
        painter->restore();
    }
}

// Input

void ListBoxSkin::choose_current()
{
    if (ListBoxSkinItem* const chosen = item(m_current))
        emit selected(chosen);
}

void ListBoxSkin::contentsTapped(const QPoint& position)
{
    const int tapped = firstStep() + position.y() / stepHeight();
    if (tapped == m_current)
        choose_current();
    else
        setCurrentItem(tapped);
}

void ListBoxSkin::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    switch (event->key()) {
    case Qt::Key_Up:
        setCurrentItem(m_current - 1);
        break;
    case Qt::Key_Down:
        setCurrentItem(m_current + 1);
        break;
    case Qt::Key_PageUp:
        setCurrentItem(std::max(0, m_current - visibleSteps()));
        break;
    case Qt::Key_PageDown:
        setCurrentItem(std::min(count() - 1, m_current + visibleSteps()));
        break;
    case Qt::Key_Home:
        setCurrentItem(0);
        break;
    case Qt::Key_End:
        setCurrentItem(count() - 1);
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (QWidget* const panel = parentWidget(); panel && panel->focusPolicy() != Qt::NoFocus)
            panel->setFocus(Qt::OtherFocusReason);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Select:
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            choose_current();
        break;
    default:
        break;
    }
}

void ListBoxSkin::keyReleaseEvent(QKeyEvent* event)
{
    event->accept();
}

void ListBoxSkin::focusInEvent(QFocusEvent*)
{
    updateItem(item(m_current));
}

void ListBoxSkin::focusOutEvent(QFocusEvent*)
{
    updateItem(item(m_current));
}
