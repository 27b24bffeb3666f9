#include "window_item.h"

#include <QPainter>
#include <QWidget>

WindowItem::WindowItem(QGraphicsItem* plane) : QGraphicsProxyWidget(plane)
{
    setFlag(ItemIsPanel);
    setCacheMode(DeviceCoordinateCache);
}

void WindowItem::release()
{
    QWidget* const window = widget();
    setWidget(nullptr);
    if (window)
        window->setAttribute(Qt::WA_DontShowOnScreen, false);
}

void WindowItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* viewport)
{
    // Pictures of a skin look well at any scale. This paints into the cache; the display's own painter must stay
    // without the hint, which costs it the fast ways of laying the cache over each film frame.
    painter->setRenderHint(QPainter::SmoothPixmapTransform,
                           painter->combinedTransform().type() > QTransform::TxTranslate);
    QGraphicsProxyWidget::paint(painter, option, viewport);
}

bool WindowItem::focusNextPrevChild(bool next)
{
    // Tab walks through the widgets of this window only, and when there is no other one, the key is the window's to
    // handle.
    QWidget* const window = widget();
    if (!window)
        return false;
    QWidget* const current = window->focusWidget() ? window->focusWidget() : window;
    for (QWidget* candidate = next ? current->nextInFocusChain() : current->previousInFocusChain();
         candidate != current; candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain()) {
        if (candidate->window() == window && candidate->isVisible() && candidate->isEnabled() &&
            !candidate->focusProxy() && (candidate->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return false;
}
