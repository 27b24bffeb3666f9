#include "key_pad_navigator.h"

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTabBar>

#include <limits>
#include <optional>

namespace
{

bool is_sideways(int key)
{
    return key == Qt::Key_Left || key == Qt::Key_Right;
}

/// How far two stretches lie apart; 0 when they overlap.
int gap(int first_low, int first_high, int second_low, int second_high)
{
    return std::max({0, second_low - first_high, first_low - second_high});
}

/// How hard it is to get from one rectangle to another with an arrow key; nothing when the other does not lie that way.
std::optional<int> effort(const QRect& from, const QRect& to, int key)
{
    const QPoint step = to.center() - from.center();
    const bool lies_there = (key == Qt::Key_Up && step.y() < 0) || (key == Qt::Key_Down && step.y() > 0) ||
                            (key == Qt::Key_Left && step.x() < 0) || (key == Qt::Key_Right && step.x() > 0);
    if (!lies_there)
        return std::nullopt;
    const int across = gap(from.left(), from.right(), to.left(), to.right());
    const int down = gap(from.top(), from.bottom(), to.top(), to.bottom());
    const int along = is_sideways(key) ? across : down;
    const int beside = is_sideways(key) ? down : across;
    // A neighbour that overlaps in the key's own direction is beside the control, not beyond it.
    if (along == 0)
        return std::nullopt;
    return along + 3 * beside;
}

} // namespace

KeyPadNavigator::KeyPadNavigator(QWidget* form) : QObject(form), form_(form)
{
    const auto children = form->findChildren<QWidget*>();
    for (QWidget* child : children) {
        // The list of a combo box is a window of its own with keys of its own.
        if (child->focusPolicy() == Qt::StrongFocus && child->window() == form->window()) {
            controls_.append(child);
            child->installEventFilter(this);
        }
    }
}

bool KeyPadNavigator::eventFilter(QObject* watched, QEvent* event)
{
    auto* control = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::KeyPress || control == nullptr)
        return QObject::eventFilter(watched, event);
    if (handle_key(control, *static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        // A combo box would keep it for its type-ahead; ignored here, it goes on to the form.
        event->ignore();
        return true;
    }
    return false;
}

bool KeyPadNavigator::handle_key(QWidget* control, const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (qobject_cast<QSlider*>(control) != nullptr || qobject_cast<QTabBar*>(control) != nullptr)
            return false;
        [[fallthrough]];
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (QWidget* next = neighbour(control, key.key()))
            next->setFocus(Qt::TabFocusReason);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto* combo = qobject_cast<QComboBox*>(control)) {
            if (!key.isAutoRepeat())
                combo->showPopup();
            return true;
        }
        if (auto* button = qobject_cast<QAbstractButton*>(control)) {
            button->click();
            return true;
        }
        return false;
    default:
        return false;
    }
}

QWidget* KeyPadNavigator::neighbour(const QWidget* control, int key) const
{
    const auto place = [this](const QWidget* widget) {
        return QRect(widget->mapTo(form_, QPoint(0, 0)), widget->size());
    };
    const QRect from = place(control);
    QWidget* best = nullptr;
    int best_effort = std::numeric_limits<int>::max();
    for (const QPointer<QWidget>& candidate : controls_) {
        if (candidate.isNull() || candidate == control || !candidate->isVisibleTo(form_) || !candidate->isEnabled())
            continue;
        const std::optional<int> needed = effort(from, place(candidate), key);
        if (needed && *needed < best_effort) {
            best_effort = *needed;
            best = candidate;
        }
    }
    return best;
}
