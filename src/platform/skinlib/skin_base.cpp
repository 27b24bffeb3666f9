#include "skin_base.h"

#include "skin_group.h"
#include "skin_layout.h"
#include "window_flags.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <utility>

namespace
{

/// A state and what follows the button's name in the key of its picture.
struct StateImage {
    SkinButton::State state;
    const char* suffix;
};

constexpr StateImage state_images[] = {
    {SkinButton::State::Normal, "_normal"},
    {SkinButton::State::Pressed, "_press"},
    {SkinButton::State::Focus, "_focus"},
    {SkinButton::State::Disabled, "_disable"},
};

// More buttons than any screen holds; a damaged layout may name as many as fit into a file.
constexpr qsizetype most_buttons = 256;

bool is_press_key(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select || key == Qt::Key_Space;
}

} // namespace

SkinBase::SkinBase(QWidget* parent, const char* name, unsigned int flags) : QWidget(parent, window_flags(flags))
{
    setObjectName(QString::fromLatin1(name));
    setAttribute(Qt::WA_NoSystemBackground);
    // Never by Tab, which belongs to the main window.
    setFocusPolicy(Qt::ClickFocus);
}

SkinBase::~SkinBase()
{
    remove_buttons();
}

void SkinBase::do_configloading(QString group)
{
    const SkinGroup layout(this, group);

    m_background_image = layout.image(QStringLiteral("background"));
    resize(m_background_image.isNull() ? QSize(0, 0) : m_background_image.size());

    remove_buttons();
    for (const QString& name : layout.words(QStringLiteral("buttons"))) {
        if (m_order.size() == most_buttons)
            break;
        if (m_buttons.contains(name))
            continue;
        auto* button = new SkinButton(name, QPoint(layout.position(name + QLatin1String("_xpos")),
                                                   layout.position(name + QLatin1String("_ypos"))));
        for (const StateImage& row : state_images)
            button->setImage(row.state, layout.image(name + QLatin1String(row.suffix)));
        button->setReplaces(layout.text(name + QLatin1String("_replaces")));
        button->setHidden(!button->replaces().isEmpty());
        m_buttons.insert(name, button);
        m_order.append(name);
    }
    m_images_stale = true;
    // Virtual operations would meet a derived panel that is still being built.
    SkinBase::setBackgroundPixmap(QPixmap::fromImage(SkinLayout::with_alpha(m_background_image, m_alpha_override)));
}

void SkinBase::remove_buttons()
{
    qDeleteAll(m_buttons);
    m_buttons.clear();
    m_order.clear();
    m_focus.clear();
    m_key_press.clear();
    m_pointer_press.clear();
    m_pressed = false;
}

// Presses

void SkinBase::pressButton(QString name)
{
    SkinButton* const pressed = button(name);
    if (m_pressed || !pressed || !pressed->isUsable())
        return;
    setButtonFocus(name);
    m_pressed = true;
    pressed->setState(SkinButton::State::Pressed);
    drawButton(pressed);
}

void SkinBase::releaseButton(QString name)
{
    SkinButton* const released = button(name);
    if (!m_pressed || !released || released->state() != SkinButton::State::Pressed)
        return;
    m_pressed = false;
    released->setState(SkinButton::State::Focus);
    drawButton(released);
    emit button_clicked(this, name);
}

void SkinBase::cancelButton(QString name)
{
    SkinButton* const cancelled = button(name);
    if (!cancelled || cancelled->state() != SkinButton::State::Pressed)
        return;
    m_pressed = false;
    cancelled->setState(SkinButton::State::Focus);
    drawButton(cancelled);
}

void SkinBase::take_back_presses()
{
    m_key_press.clear();
    m_pointer_press.clear();
    if (const SkinButton* pressed = pressed_button())
        cancelButton(pressed->name());
    m_pressed = false;
}

SkinButton* SkinBase::pressed_button() const
{
    for (SkinButton* candidate : m_buttons) {
        if (candidate->state() == SkinButton::State::Pressed)
            return candidate;
    }
    return nullptr;
}

SkinButton* SkinBase::button_at(const QPoint& position) const
{
    for (const QString& name : m_order) {
        SkinButton* candidate = m_buttons.value(name);
        if (candidate->isUsable() && candidate->rectangle().contains(position))
            return candidate;
    }
    return nullptr;
}

// States and focus

void SkinBase::change_state(SkinButton* button, SkinButton::State state, bool hidden)
{
    // A panel that still believed in the press would refuse every later one.
    if (button->state() == SkinButton::State::Pressed)
        m_pressed = false;
    // The highlight goes elsewhere when the button can no longer have it, and comes back with it.
    drawButton(focusButton());
    button->setState(state);
    button->setHidden(hidden);
    drawButton(button);
    drawButton(focusButton());
}

void SkinBase::showFocus(const QString& name)
{
    SkinButton* const shown = button(name);
    if (!shown)
        return;
    change_state(shown, SkinButton::State::Focus, false);
    setButtonFocus(name);
}

void SkinBase::showNormal(const QString& name)
{
    if (SkinButton* const shown = button(name))
        change_state(shown, SkinButton::State::Normal, false);
}

void SkinBase::disableButton(const QString& name)
{
    if (SkinButton* const disabled = button(name))
        change_state(disabled, SkinButton::State::Disabled, false);
}

void SkinBase::hideButton(const QString& name)
{
    if (SkinButton* const hidden = button(name))
        change_state(hidden, SkinButton::State::Normal, true);
}

void SkinBase::setButtonFocus(const QString& name)
{
    SkinButton* const focused = button(name);
    if (!focused)
        return;
    SkinButton* const before = button(m_focus);
    if (before && before != focused && before->state() == SkinButton::State::Focus)
        before->setState(SkinButton::State::Normal);
    // The highlight may have been on a button that stood in for a hidden one.
    drawButton(focusButton());
    m_focus = name;
    if (focused->state() == SkinButton::State::Normal)
        focused->setState(SkinButton::State::Focus);
    drawButton(focused);
}

QString SkinBase::place_of(const SkinButton& button) const
{
    const SkinButton* first = &button;
    // Two buttons of a damaged layout may each replace the other: no more steps than there are buttons.
    for (qsizetype steps = 0; steps < m_order.size(); ++steps) {
        const SkinButton* replaced = m_buttons.value(first->replaces(), nullptr);
        if (!replaced)
            break;
        first = replaced;
    }
    return first->name();
}

SkinButton* SkinBase::usable_from(qsizetype position, int step) const
{
    const qsizetype size = m_order.size();
    for (qsizetype tried = 0; tried < size; ++tried) {
        const qsizetype index = ((position + step * tried) % size + size) % size;
        SkinButton* candidate = m_buttons.value(m_order.at(index));
        if (candidate->isUsable())
            return candidate;
    }
    return nullptr;
}

SkinButton* SkinBase::focusButton() const
{
    SkinButton* const focused = button(m_focus);
    if (!focused)
        return usable_from(0, 1);
    if (focused->isUsable())
        return focused;
    const QString place = place_of(*focused);
    for (const QString& name : m_order) {
        SkinButton* candidate = m_buttons.value(name);
        if (candidate->isUsable() && place_of(*candidate) == place)
            return candidate;
    }
    return usable_from(m_order.indexOf(m_focus), 1);
}

void SkinBase::move_focus(int step)
{
    const SkinButton* const focused = focusButton();
    if (!focused || m_pressed)
        return;
    setButtonFocus(usable_from(m_order.indexOf(focused->name()) + step, step)->name());
}

// Pictures

void SkinBase::setAlphaOverride(unsigned char alpha)
{
    m_alpha_override = alpha;
    setBackgroundPixmap(QPixmap::fromImage(SkinLayout::with_alpha(m_background_image, alpha)));
    redrawButtonImages();
}

void SkinBase::setBackgroundPixmap(const QPixmap& pixmap)
{
    m_background.set(pixmap);
    update();
}

void SkinBase::setBackgroundImage(const QImage& image)
{
    m_background_image = image.isNull() ? QImage() : image.convertToFormat(QImage::Format_ARGB32);
    SkinBase::setBackgroundPixmap(QPixmap::fromImage(SkinLayout::with_alpha(m_background_image, m_alpha_override)));
    m_images_stale = true;
}

void SkinBase::redrawImage(QImage& image, int, int)
{
    image = SkinLayout::with_alpha(image, m_alpha_override);
}

void SkinBase::drawTitle(QPainter*) {}

void SkinBase::redrawButtonImages()
{
    m_images_stale = false;
    for (const QString& name : std::as_const(m_order)) {
        SkinButton* const redrawn = m_buttons.value(name);
        for (const StateImage& row : state_images) {
            QImage image = redrawn->image(row.state);
            if (!image.isNull())
                redrawImage(image, redrawn->rectangle().x(), redrawn->rectangle().y());
            redrawn->setPixmap(row.state, QPixmap::fromImage(image));
        }
    }
    update();
}

void SkinBase::drawButton(const SkinButton* button)
{
    if (button)
        update(button->rectangle());
}

SkinButton::State SkinBase::look_of(const SkinButton& button, const SkinButton* focus) const
{
    if (button.state() == SkinButton::State::Pressed || button.state() == SkinButton::State::Disabled)
        return button.state();
    return &button == focus ? SkinButton::State::Focus : SkinButton::State::Normal;
}

void SkinBase::paintEvent(QPaintEvent* event)
{
    if (m_images_stale)
        redrawButtonImages();

    m_background.paint(this, event);
    QPainter painter(this);
    painter.setClipRect(event->rect());
    painter.save();
    drawTitle(&painter);
    painter.restore();

    // Asked of the window, since without a window manager nobody has the application's focus.
    const SkinButton* const focus = window()->focusWidget() == this ? focusButton() : nullptr;
    for (const QString& name : std::as_const(m_order)) {
        const SkinButton* const drawn = m_buttons.value(name);
        if (!drawn->isHidden())
            painter.drawPixmap(drawn->rectangle().topLeft(), drawn->pixmap(look_of(*drawn, focus)));
    }
}

// Input

void SkinBase::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    if (event->key() == Qt::Key_Left) {
        move_focus(-1);
    } else if (event->key() == Qt::Key_Right) {
        move_focus(1);
    } else if (is_press_key(event->key()) && !event->isAutoRepeat()) {
        if (const SkinButton* const focused = focusButton()) {
            m_key_press = focused->name();
            pressButton(m_key_press);
        }
    }
}

void SkinBase::keyReleaseEvent(QKeyEvent* event)
{
    event->accept();
    if (!is_press_key(event->key()) || event->isAutoRepeat())
        return;
    const QString name = std::exchange(m_key_press, QString());
    if (!name.isEmpty())
        releaseButton(name);
}

void SkinBase::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    if (const SkinButton* const hit = button_at(event->position().toPoint())) {
        m_pointer_press = hit->name();
        pressButton(m_pointer_press);
    }
}

void SkinBase::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
}

void SkinBase::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const QString name = std::exchange(m_pointer_press, QString());
    const SkinButton* const held = button(name);
    if (!held)
        return;
    if (held->rectangle().contains(event->position().toPoint()))
        releaseButton(name);
    else
        cancelButton(name);
}

void SkinBase::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void SkinBase::focusInEvent(QFocusEvent*)
{
    update();
}

void SkinBase::focusOutEvent(QFocusEvent*)
{
    // The release of the key goes to somebody else.
    cancelButton(std::exchange(m_key_press, QString()));
    update();
}

void SkinBase::hideEvent(QHideEvent*)
{
    take_back_presses();
}
