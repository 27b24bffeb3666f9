#include "scroll_view_skin.h"

#include "skin_group.h"
#include "skin_slices.h"
#include "window_flags.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>

#include <algorithm>

namespace
{

constexpr int plain_bar_width = 8;
constexpr QRgb plain_track = 0x30ffffff;
constexpr QRgb plain_handle = 0xa0ffffff;
constexpr int shortest_handle = 20;
constexpr int step_angle = 40; // a notch of the wheel is 120: three steps

} // namespace

ScrollViewSkin::ScrollViewSkin(QWidget* parent, const char* name, unsigned int flags)
    : QWidget(parent, window_flags(flags)), m_bar_width(plain_bar_width)
{
    setObjectName(QString::fromLatin1(name));
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::ClickFocus);
    read_layout();
}

ScrollViewSkin::~ScrollViewSkin() = default;

void ScrollViewSkin::read_layout()
{
    const SkinGroup layout(this, QStringLiteral("LISTBOX"));
    m_bar_track = layout.image(QStringLiteral("scroll_track"));
    m_bar_handle = layout.image(QStringLiteral("scroll_handle"));
    const int width = std::max(m_bar_track.width(), m_bar_handle.width());
    if (width > 0)
        m_bar_width = width;
}

void ScrollViewSkin::setBackgroundPixmap(const QPixmap& pixmap)
{
    m_background.set(pixmap);
    updateContents();
}

// Geometry

int ScrollViewSkin::visibleSteps() const
{
    return std::max(1, height() / m_step_height);
}

int ScrollViewSkin::lastFirstStep() const
{
    return std::max(0, m_steps - visibleSteps());
}

bool ScrollViewSkin::scrollBarShown() const
{
    return m_steps > visibleSteps() && width() > m_bar_width;
}

int ScrollViewSkin::visibleWidth() const
{
    return scrollBarShown() ? width() - m_bar_width : width();
}

QRect ScrollViewSkin::scrollBarRectangle() const
{
    return scrollBarShown() ? QRect(visibleWidth(), 0, m_bar_width, height()) : QRect();
}

QRect ScrollViewSkin::scrollHandleRectangle() const
{
    const QRect bar = scrollBarRectangle();
    if (bar.isEmpty())
        return {};
    const int share = static_cast<int>(static_cast<qint64>(height()) * visibleSteps() / m_steps);
    const int length = std::min(std::max(share, shortest_handle), height());
    const int travel = height() - length;
    const int top = static_cast<int>(static_cast<qint64>(travel) * m_first / std::max(1, lastFirstStep()));
    return QRect(bar.x(), top, bar.width(), length);
}

void ScrollViewSkin::setContents(int step_height, int steps)
{
    m_step_height = std::max(1, step_height);
    m_steps = std::max(0, steps);
    m_first = std::clamp(m_first, 0, lastFirstStep());
    updateContents();
}

void ScrollViewSkin::setFirstStep(int step)
{
    const int first = std::clamp(step, 0, lastFirstStep());
    if (first == m_first)
        return;
    m_first = first;
    updateContents();
}

void ScrollViewSkin::resizeEvent(QResizeEvent*)
{
    m_first = std::clamp(m_first, 0, lastFirstStep());
}

// Painting

void ScrollViewSkin::suspendRepaints()
{
    ++m_suspended;
}

void ScrollViewSkin::resumeRepaints()
{
    if (m_suspended == 0 || --m_suspended > 0)
        return;
    if (m_repaint_wanted)
        update();
    m_repaint_wanted = false;
}

void ScrollViewSkin::updateContents(const QRect& rectangle)
{
    if (m_suspended > 0)
        m_repaint_wanted = true;
    else
        update(rectangle);
}

void ScrollViewSkin::updateContents()
{
    updateContents(rect());
}

void ScrollViewSkin::drawContents(QPainter*, const QRect&) {}

void ScrollViewSkin::draw_scroll_bar(QPainter* painter) const
{
    if (m_bar_track.isNull())
        painter->fillRect(scrollBarRectangle(), QColor::fromRgba(plain_track));
    else
        draw_slices(painter, scrollBarRectangle(), m_bar_track, Qt::Vertical);
    if (m_bar_handle.isNull())
        painter->fillRect(scrollHandleRectangle(), QColor::fromRgba(plain_handle));
    else
        draw_slices(painter, scrollHandleRectangle(), m_bar_handle, Qt::Vertical);
}

void ScrollViewSkin::paintEvent(QPaintEvent* event)
{
    m_background.paint(this, event);
    QPainter painter(this);
    painter.setClipRect(event->rect());
    // One rectangle at a time: between two rows that changed there may be many that did not.
    for (const QRect& exposed : event->region()) {
        const QRect contents = exposed.intersected(QRect(0, 0, visibleWidth(), height()));
        if (contents.isEmpty())
            continue;
        painter.save();
        painter.setClipRect(contents);
        drawContents(&painter, contents);
        painter.restore();
    }
    if (scrollBarShown())
        draw_scroll_bar(&painter);
}

// Pointer

void ScrollViewSkin::contentsTapped(const QPoint&) {}

void ScrollViewSkin::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    m_press_position = event->position().toPoint();
    m_press_first = m_first;
    if (!scrollBarRectangle().contains(m_press_position)) {
        m_hold = Hold::Tap;
        return;
    }
    const QRect handle = scrollHandleRectangle();
    if (handle.contains(m_press_position)) {
        m_hold = Hold::Handle;
        m_grip = m_press_position.y() - handle.top();
    } else {
        setFirstStep(m_first + (m_press_position.y() < handle.top() ? -visibleSteps() : visibleSteps()));
    }
}

void ScrollViewSkin::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    const QPoint position = event->position().toPoint();
    const int moved = position.y() - m_press_position.y();
    if (m_hold == Hold::Tap && std::abs(moved) >= QApplication::startDragDistance())
        m_hold = Hold::Contents;
    if (m_hold == Hold::Contents)
        setFirstStep(m_press_first - qRound(static_cast<double>(moved) / m_step_height));
    else if (m_hold == Hold::Handle)
        drag_handle(position.y());
}

void ScrollViewSkin::drag_handle(int y)
{
    const int travel = height() - scrollHandleRectangle().height();
    if (travel > 0)
        setFirstStep(qRound(static_cast<double>(y - m_grip) * lastFirstStep() / travel));
}

void ScrollViewSkin::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    if (std::exchange(m_hold, Hold::None) == Hold::Tap)
        contentsTapped(m_press_position);
}

void ScrollViewSkin::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void ScrollViewSkin::wheelEvent(QWheelEvent* event)
{
    event->accept();
    m_wheel_angle += event->angleDelta().y();
    const int steps = m_wheel_angle / step_angle;
    m_wheel_angle %= step_angle;
    setFirstStep(m_first - steps);
}

void ScrollViewSkin::hideEvent(QHideEvent*)
{
    m_hold = Hold::None;
}
