#include "device_screen.h"

#include "device_font.h"
#include "host_screen.h"
#include "key_pad.h"
#include "video_item.h"
#include "video_plane.h"
#include "window_item.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QGraphicsRectItem>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <cmath>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace
{

constexpr QSize lcd_size(480, 272);
constexpr QSize tv_size(640, 480);
constexpr QRect desktop(80, 104, 480, 272);

/// Index of each plane in the table of planes.
constexpr std::size_t video_plane = 1;
constexpr std::size_t user_plane = 2;

bool is_pop_up(const QWidget* widget)
{
    const Qt::WindowType type = widget->windowType();
    return type == Qt::Popup || type == Qt::ToolTip;
}

bool takes_activation(const QWidget* widget)
{
    return !is_pop_up(widget) && widget->windowType() != Qt::SplashScreen &&
           !widget->testAttribute(Qt::WA_ShowWithoutActivating) &&
           !widget->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
}

QPointer<DeviceScreen>& only_display()
{
    static QPointer<DeviceScreen> display;
    return display;
}

} // namespace

DeviceScreen* DeviceScreen::instance()
{
    QPointer<DeviceScreen>& display = only_display();
    if (!display) {
        display = new DeviceScreen;
        // Once per application object; it has to go before the toolkit's platform does.
        qAddPostRoutine([] { delete only_display(); });
    }
    return display;
}

DeviceScreen::DeviceScreen()
{
    install_device_fonts();
    m_planes[video_plane].size = lcd_size;
    m_planes[user_plane].origin = desktop.topLeft();

    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // One rectangle and never a region of several: only for that does the toolkit copy pictures line by line.
    setViewportUpdateMode(QGraphicsView::BoundingRectViewportUpdate);
    setOptimizationFlags(QGraphicsView::DontSavePainterState | QGraphicsView::DontAdjustForAntialiasing);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    black.setColor(QPalette::Base, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
    // The picture covers every pixel of the viewport; nothing has to be erased under it.
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);

    m_scene.setItemIndexMethod(QGraphicsScene::NoIndex);
    m_video = new VideoItem;
    m_scene.addItem(m_video);
    m_user = new QGraphicsRectItem;
    m_user->setPen(Qt::NoPen);
    m_user->setFlag(QGraphicsItem::ItemHasNoContents);
    m_scene.addItem(m_user);
    setScene(&m_scene);
    // The device's windows are active and focused among themselves, whatever has the host's focus.
    QEvent activate(QEvent::WindowActivate);
    QCoreApplication::sendEvent(&m_scene, &activate);
    QFocusEvent focus(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QCoreApplication::sendEvent(&m_scene, &focus);

    VideoPlane::instance().attach(this);
    resize(lcd_size);
    setMinimumSize(lcd_size / 2);
    lay_out();

    qApp->installEventFilter(this);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->isVisible()) {
            embed(window);
            window_shown(window);
        }
    }
}

DeviceScreen::~DeviceScreen()
{
    VideoPlane::instance().attach(nullptr);
    VideoPlane::instance().set_mapping({});
    qApp->removeEventFilter(this);
    const QList<QGraphicsItem*> items = m_user->childItems();
    for (QGraphicsItem* item : items) {
        if (auto* window = dynamic_cast<WindowItem*>(item))
            window->release();
    }
    setScene(nullptr);
}

QSize DeviceScreen::output_size() const
{
    return m_output == Output::Tv ? tv_size : lcd_size;
}

QRect DeviceScreen::desktop_geometry() const
{
    return desktop;
}

// Windows

WindowItem* DeviceScreen::item_of(const QWidget* widget) const
{
    return widget ? qobject_cast<WindowItem*>(widget->window()->graphicsProxyWidget()) : nullptr;
}

void DeviceScreen::embed(QWidget* widget)
{
    if (!widget || widget == this || !widget->isWindow() || widget->windowType() == Qt::Desktop ||
        widget->windowFlags().testFlag(Qt::BypassGraphicsProxyWidget) || item_of(widget))
        return;
    if (QGraphicsProxyWidget* inner = widget->graphicsProxyWidget()) {
        // The toolkit puts the windows of an embedded parent into the parent's item. Pop-ups are well off there; a
        // dialog is a window like all others, with a position of its own on the plane.
        if (is_pop_up(widget)) {
            inner->setCacheMode(QGraphicsItem::DeviceCoordinateCache);
            return;
        }
        inner->setWidget(nullptr);
        inner->deleteLater();
    }
    auto* item = new WindowItem(m_user);
    // The toolkit would show a window that was neither shown nor hidden yet.
    if (!widget->isVisible())
        widget->hide();
    item->setVisible(widget->isVisible());
    item->setWidget(widget);
    // The toolkit copies the window's limits once; later ones would hold the item back while the window grows.
    item->setMinimumSize(0, 0);
    item->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

void DeviceScreen::release(QWidget* widget)
{
    if (WindowItem* item = item_of(widget)) {
        item->release();
        item->deleteLater();
    }
    window_hidden(widget);
}

void DeviceScreen::window_shown(QWidget* widget)
{
    if (is_pop_up(widget)) {
        m_pop_ups.removeAll(widget);
        m_pop_ups.append(widget);
        keep_pop_up_on_screen(widget);
        return;
    }
    WindowItem* const item = item_of(widget);
    if (!item)
        return;
    if (qobject_cast<QDialog*>(widget) && !widget->testAttribute(Qt::WA_Moved)) {
        // The toolkit centres a dialog that nobody placed on the host's screen, each time it is shown.
        widget->move(desktop.center() - widget->rect().center());
        widget->setAttribute(Qt::WA_Moved, false);
    }
    item->setPanelModality(widget->isModal() ? QGraphicsItem::SceneModal : QGraphicsItem::NonModal);
    raise_window(widget);
    present();
    if (takes_activation(widget))
        activate(widget);
    else
        restore_activation();
}

/// A window that lies wholly under another one is not drawn: on the plane the upper window's pixels stand in place of
/// the lower one's, and what its alpha lets through is the video.
void DeviceScreen::omit_covered_windows()
{
    const QList<QGraphicsItem*> items = m_user->childItems();
    for (qsizetype at = 0; at < items.size(); ++at) {
        const auto covers = [lower = items[at]](const QGraphicsItem* upper) {
            const auto* window = qgraphicsitem_cast<const QGraphicsProxyWidget*>(upper);
            return window && window->widget() && window->widget()->isVisible() &&
                   upper->mapRectToParent(upper->boundingRect())
                       .contains(lower->mapRectToParent(lower->boundingRect()));
        };
        items[at]->setOpacity(std::any_of(items.cbegin() + at + 1, items.cend(), covers) ? 0 : 1);
    }
}

void DeviceScreen::window_hidden(QWidget* widget)
{
    m_pop_ups.removeAll(widget);
    m_pop_ups.removeAll(nullptr);
    m_activation_order.removeAll(widget);
    restore_activation();
    omit_covered_windows();
}

void DeviceScreen::restore_activation()
{
    m_activation_order.removeAll(nullptr);
    if (m_activation_order.isEmpty())
        return;
    const WindowItem* const modal = modal_item();
    const auto last = std::find_if(m_activation_order.rbegin(), m_activation_order.rend(), [&](const QWidget* window) {
        return window->isVisible() && (!modal || item_of(window) == modal);
    });
    if (last != m_activation_order.rend())
        activate(*last);
}

WindowItem* DeviceScreen::modal_item() const
{
    const QList<QGraphicsItem*> items = m_user->childItems();
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
        if ((*item)->isVisible() && (*item)->panelModality() == QGraphicsItem::SceneModal)
            return dynamic_cast<WindowItem*>(*item);
    }
    return nullptr;
}

void DeviceScreen::activate(QWidget* widget)
{
    WindowItem* const item = item_of(widget);
    const WindowItem* const modal = modal_item();
    if (!item || !item->isVisible() || (modal && modal != item))
        return;
    QWidget* const window = item->widget();
    m_activation_order.removeAll(window);
    m_activation_order.append(window);
    m_scene.setActivePanel(item);
    if (!m_scene.focusItem() || m_scene.focusItem()->panel() != item)
        item->setFocus(Qt::ActiveWindowFocusReason);
}

QWidget* DeviceScreen::active_window() const
{
    const QGraphicsItem* panel = m_scene.activePanel();
    while (panel && !dynamic_cast<const WindowItem*>(panel))
        panel = panel->parentItem();
    return panel ? static_cast<const WindowItem*>(panel)->widget() : nullptr;
}

bool DeviceScreen::is_active(const QWidget* widget) const
{
    return widget && widget->window() == active_window();
}

void DeviceScreen::stack_under(QWidget* lower, QWidget* upper)
{
    embed(lower->window());
    embed(upper->window());
    WindowItem* const lower_item = item_of(lower);
    const WindowItem* const upper_item = item_of(upper);
    if (!lower_item || !upper_item || lower_item == upper_item)
        return;
    QList<QGraphicsItem*> items = m_user->childItems();
    if (items.indexOf(lower_item) < items.indexOf(upper_item))
        return;
    items.removeOne(lower_item);
    items.insert(items.indexOf(upper_item), lower_item);
    for (qsizetype at = 0; at < items.size(); ++at)
        items[at]->setZValue(static_cast<qreal>(at));
    omit_covered_windows();
}

void DeviceScreen::raise_window(QWidget* widget)
{
    WindowItem* const item = item_of(widget);
    if (!item)
        return;
    const QGraphicsItem* const top = m_user->childItems().last();
    if (top != item)
        item->setZValue(top->zValue() + 1);
    omit_covered_windows();
}

void DeviceScreen::keep_pop_up_on_screen(QWidget* pop_up)
{
    QGraphicsProxyWidget* const item = pop_up->graphicsProxyWidget();
    if (!item)
        return;
    const QRectF output(QPointF(), output_size());
    QRectF place = item->sceneBoundingRect();
    const QSizeF size = place.size().boundedTo(output.size());
    if (size != place.size()) {
        pop_up->resize(size.toSize());
        place = item->sceneBoundingRect();
    }
    // A list that does not fit under its combo box opens above it rather than over it.
    if (const QWidget* owner = pop_up->parentWidget(); owner && place.bottom() > output.bottom()) {
        const WindowItem* const window = item_of(owner);
        const qreal top = window ? window->mapToScene(QPointF(owner->mapTo(owner->window(), QPoint()))).y() : 0;
        if (top >= place.height()) {
            item->moveBy(0, top - place.bottom());
            place = item->sceneBoundingRect();
        }
    }
    const QPointF inside(std::clamp(place.x(), 0.0, std::max(0.0, output.width() - place.width())),
                         std::clamp(place.y(), 0.0, std::max(0.0, output.height() - place.height())));
    item->moveBy(inside.x() - place.x(), inside.y() - place.y());
}

bool DeviceScreen::eventFilter(QObject* object, QEvent* event)
{
    // Events of other objects may still belong to the thread that sent them.
    if (!object->isWidgetType())
        return false;
#if defined(__SANITIZE_THREAD__)
    // The other half of the order stated where the video plane posts its event; nobody looks at the event before.
    __tsan_acquire(event);
#endif
    switch (event->type()) {
    case QEvent::ParentChange:
    case QEvent::Polish:
    case QEvent::Show:
        // These come to a widget under construction, too; it has no window of the host's yet and must not be looked at.
        if (auto* widget = qobject_cast<QWidget*>(object);
            widget && widget->isWindow() && widget->testAttribute(Qt::WA_WState_Created))
            embed(widget);
        break;
    case QEvent::ParentAboutToChange:
        if (auto* widget = qobject_cast<QWidget*>(object); widget && widget->isWindow() && item_of(widget))
            release(widget);
        break;
    case QEvent::ShowToParent:
        if (auto* widget = qobject_cast<QWidget*>(object); widget && widget->isWindow() && widget != this)
            window_shown(widget);
        break;
    case QEvent::HideToParent:
        if (auto* widget = qobject_cast<QWidget*>(object); widget && widget->isWindow() && widget != this)
            window_hidden(widget);
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (auto* widget = qobject_cast<QWidget*>(object); widget && widget->isWindow() && item_of(widget))
            omit_covered_windows();
        break;
    default:
        break;
    }
    return QGraphicsView::eventFilter(object, event);
}

// Keys and pointer

bool DeviceScreen::event(QEvent* event)
{
    if (event->type() == VideoPlane::frame_event_type()) {
        VideoPlane::instance().acknowledge();
        update_video();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        // The toolkit would take Tab for itself, or deliver it twice.
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    return QGraphicsView::event(event);
}

bool DeviceScreen::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
        // The host's activation must not reach the scene.
        return QAbstractScrollArea::viewportEvent(event);
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const QPoint place = static_cast<QMouseEvent*>(event)->position().toPoint();
        if (const QGraphicsItem* item = itemAt(place)) {
            const auto* const window = dynamic_cast<const WindowItem*>(item->topLevelItem() == m_user ? item : nullptr);
            if (window && takes_activation(window->widget()))
                activate(window->widget());
        }
        const bool handled = QGraphicsView::viewportEvent(event);
        // Whatever the toolkit made of a press beside the windows, or on one that is never active.
        restore_activation();
        return handled;
    }
    default:
        return QGraphicsView::viewportEvent(event);
    }
}

void DeviceScreen::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    QWidget* const receiver = key_receiver();
    if (!receiver)
        return;
    // Some hosts repeat a held key without saying so.
    const bool repeated = event->isAutoRepeat() || m_held_keys.contains(event->key());
    const int key =
        repeated ? m_held_keys.value(event->key(), device_key(*event, receiver)) : device_key(*event, receiver);
    m_held_keys.insert(event->key(), key);
    deliver_key(receiver, QEvent::KeyPress, key, *event, repeated);
}

void DeviceScreen::keyReleaseEvent(QKeyEvent* event)
{
    event->accept();
    // A held key is released once, at its end.
    if (event->isAutoRepeat() || !m_held_keys.contains(event->key()))
        return;
    const int key = m_held_keys.take(event->key());
    if (QWidget* receiver = key_receiver())
        deliver_key(receiver, QEvent::KeyRelease, key, *event, false);
}

void DeviceScreen::deliver_key(QWidget* receiver, QEvent::Type type, int key, const QKeyEvent& host, bool repeated)
{
    QString text = host.text();
    if (key != host.key())
        text = key == Qt::Key_Return ? QStringLiteral("\r") : QString();
    QKeyEvent event(type, key, host.modifiers(), text, repeated);
    QCoreApplication::sendEvent(receiver, &event);
}

QWidget* DeviceScreen::key_receiver() const
{
    QWidget* window = nullptr;
    for (auto pop_up = m_pop_ups.rbegin(); pop_up != m_pop_ups.rend() && !window; ++pop_up) {
        if (*pop_up && (*pop_up)->isVisible() && (*pop_up)->windowType() == Qt::Popup)
            window = *pop_up;
    }
    if (!window)
        window = active_window();
    if (!window)
        return nullptr;
    return window->focusWidget() ? window->focusWidget() : window;
}

void DeviceScreen::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
}

void DeviceScreen::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    // The host sends the releases to whoever has its focus now.
    const QHash<int, int> held = std::exchange(m_held_keys, {});
    for (auto key = held.cbegin(); key != held.cend(); ++key) {
        const QKeyEvent host(QEvent::KeyRelease, key.key(), Qt::NoModifier);
        if (QWidget* receiver = key_receiver())
            deliver_key(receiver, QEvent::KeyRelease, key.value(), host, false);
    }
}

// Planes and output

bool DeviceScreen::control(const QString& frame_buffer_string)
{
    const std::optional<FrameBufferCommand> command = read_frame_buffer_command(frame_buffer_string, m_planes.data());
    if (!command) {
        qWarning("Frame buffer control not understood: \"%s\"", qUtf8Printable(frame_buffer_string));
        return false;
    }
    const auto plane = static_cast<std::size_t>(command->plane);
    for (const FrameBuffer& state : command->states) {
        // What was on a plane that was switched off is not shown again.
        if (plane == video_plane && m_planes[plane].enabled && !state.enabled)
            VideoPlane::instance().clear();
        m_planes[plane] = state;
    }
    apply_planes();
    return true;
}

void DeviceScreen::apply_planes()
{
    const FrameBuffer& user = m_planes[user_plane];
    const QRectF user_rectangle(QPointF(), user.size);
    const QPoint user_offset = user.position - user.origin;
    m_user->setRect(user_rectangle);
    m_user->setPos(user_offset);
    // Hiding the item would hide the windows, which know nothing of planes.
    m_user->setOpacity(user.enabled ? 1 : 0);
    // Clipping costs something with each film frame: only where the plane ends within the output.
    const QRectF output(QPointF(), output_size());
    m_user->setFlag(QGraphicsItem::ItemClipsChildrenToShape, !user_rectangle.translated(user_offset).contains(output));

    const FrameBuffer& video = m_planes[video_plane];
    m_video->setVisible(video.enabled);
    VideoPlane::instance().set_mapping({transform().m11() * devicePixelRatioF(), video.position - video.origin,
                                        video.enabled && isVisible() && !isMinimized()});
    update_video();
}

void DeviceScreen::update_video()
{
    const VideoPlane& plane = VideoPlane::instance();
    const FrameBuffer& video = m_planes[video_plane];
    const QRect picture = plane.window().translated(video.position - video.origin);
    m_video->place(picture, picture & QRect(video.position, video.size));

    const QRect pixels = plane.pixel_rectangle();
    const qreal ratio = devicePixelRatioF();
    const QRect place =
        QRectF(QPointF(pixels.topLeft()) / ratio, QSizeF(pixels.size()) / ratio).toAlignedRect() & viewport()->rect();
    // Straight to the viewport: the scene's own bookkeeping of dirty items would only find the same rectangle again.
    viewport()->update(m_video_place | place);
    m_video_place = place;
}

void DeviceScreen::drawBackground(QPainter* painter, const QRectF& exposed)
{
    QRegion bare(exposed.toAlignedRect());
    if (m_video->isVisible())
        bare -= m_video->boundingRect().toAlignedRect();
    for (const QRect& rectangle : bare)
        painter->fillRect(rectangle, Qt::black);
}

void DeviceScreen::set_output(Output output)
{
    if (m_output == output)
        return;
    m_output = output;
    if (host_screen() == HostScreen::Windowed) {
        if (output == Output::Tv)
            move_to_tv();
        else
            move_to_lcd();
    }
    lay_out();
}

void DeviceScreen::move_to_tv()
{
    m_lcd_geometry = geometry();
    m_lcd_state = windowState();
    const QList<QScreen*> screens = QGuiApplication::screens();
    const auto second =
        std::find_if(screens.begin(), screens.end(), [&](const QScreen* candidate) { return candidate != screen(); });
    if (second != screens.end()) {
        setWindowState(Qt::WindowNoState);
        setGeometry((*second)->geometry());
        setWindowState(Qt::WindowFullScreen);
    } else if (m_lcd_state == Qt::WindowNoState) {
        resize((QSizeF(tv_size) * transform().m11()).toSize());
    }
}

void DeviceScreen::move_to_lcd()
{
    setWindowState(m_lcd_state);
    if (m_lcd_state == Qt::WindowNoState)
        setGeometry(m_lcd_geometry);
}

void DeviceScreen::lay_out()
{
    const QSizeF output = output_size();
    const QSizeF shown = output.scaled(size(), Qt::KeepAspectRatio);
    const qreal factor = shown.width() / output.width();
    const QSize picture = shown.toSize();
    const int left = (width() - picture.width()) / 2;
    const int top = (height() - picture.height()) / 2;
    // The viewport is the output and nothing else: windows beyond its edges are cut off by the host.
    setViewportMargins(left, top, width() - picture.width() - left, height() - picture.height() - top);
    setTransform(QTransform::fromScale(factor, factor));
    // Half a pixel less than the viewport, or rounding could leave something to scroll.
    setSceneRect(QRectF(QPointF(), (QSizeF(picture) - QSizeF(0.5, 0.5)) / factor));
    apply_planes();
    viewport()->update();
}

void DeviceScreen::present()
{
    if (isVisible())
        return;
    if (host_screen() == HostScreen::Windowed)
        show();
    else
        showFullScreen();
}

QImage DeviceScreen::grab_output()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    const qreal ratio = devicePixelRatioF();
    QImage image((QSizeF(viewport()->size()) * ratio).toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    image.setDevicePixelRatio(ratio);
    viewport()->render(&image);
    image.setDevicePixelRatio(1);
    return image;
}

void DeviceScreen::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    lay_out();
}

void DeviceScreen::showEvent(QShowEvent* event)
{
    QGraphicsView::showEvent(event);
    if (windowHandle())
        connect(windowHandle(), &QWindow::screenChanged, this, &DeviceScreen::lay_out, Qt::UniqueConnection);
    lay_out();
}

void DeviceScreen::hideEvent(QHideEvent* event)
{
    QGraphicsView::hideEvent(event);
    apply_planes();
}

void DeviceScreen::changeEvent(QEvent* event)
{
    QGraphicsView::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        apply_planes();
}

void DeviceScreen::closeEvent(QCloseEvent* event)
{
    if (event->spontaneous()) {
        event->ignore();
        emit close_requested();
    } else {
        event->accept();
    }
}
