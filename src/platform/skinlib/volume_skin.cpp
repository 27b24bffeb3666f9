#include "volume_skin.h"

#include "skin_group.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

#include <algorithm>

namespace
{

constexpr int notch_angle = 120; // what one notch of a wheel reports
constexpr int muted_opacity_percent = 40;

} // namespace

VolumeSkin::VolumeSkin(QWidget* parent, const QString& name, unsigned int flags) : SkinWidget(parent, name, flags)
{
    read_layout();
}

void VolumeSkin::read_layout()
{
    const SkinGroup layout(this, objectName());
    m_bar_off = layout.image(QStringLiteral("bar_off"));
    m_bar_on = layout.image(QStringLiteral("bar_on"));
    m_mute_off = layout.image(QStringLiteral("mute_off"));
    m_mute_on = layout.image(QStringLiteral("mute_on"));
    const auto place = [&layout](const char* name, const QImage& first, const QImage& second) {
        const QString key = QString::fromLatin1(name);
        const QSize size = first.isNull() ? second.size() : first.size();
        return QRect(
            QPoint(layout.position(key + QLatin1String("_xpos"), 0), layout.position(key + QLatin1String("_ypos"), 0)),
            size);
    };
    m_bar = place("bar", m_bar_off, m_bar_on);
    m_mute = place("mute", m_mute_off, m_mute_on);

    const QRect pictures = m_bar.united(m_mute);
    const int width = layout.size(QStringLiteral("width"));
    const int height = layout.size(QStringLiteral("height"));
    resize(width == 0 ? std::max(pictures.right() + 1, 0) : width,
           height == 0 ? std::max(pictures.bottom() + 1, 0) : height);
}

void VolumeSkin::set_volumeRange(int minimum, int maximum, int step)
{
    m_minimum = std::max(minimum, 0);
    m_maximum = std::max(maximum, m_minimum);
    m_step = std::max(step, 1);
    m_value = std::clamp(m_value, m_minimum, m_maximum);
    update();
}

void VolumeSkin::set_volumeValue(unsigned int value)
{
    m_value =
        static_cast<int>(std::clamp(value, static_cast<unsigned int>(m_minimum), static_cast<unsigned int>(m_maximum)));
    update();
}

void VolumeSkin::set_mute(bool mute)
{
    m_muted = mute;
    update();
}

void VolumeSkin::choose(int value)
{
    const int chosen = std::clamp(value, m_minimum, m_maximum);
    if (chosen == m_value)
        return;
    m_value = chosen;
    update();
    emit app_volumes(static_cast<unsigned int>(chosen));
}

int VolumeSkin::value_at(int x) const
{
    const int travel = m_bar.width() - 1;
    if (travel <= 0)
        return m_value;
    const int offset = std::clamp(x - m_bar.left(), 0, travel);
    const qint64 range = m_maximum - m_minimum;
    return m_minimum + static_cast<int>((offset * range + travel / 2) / travel);
}

void VolumeSkin::draw(QPainter* painter)
{
    painter->drawImage(m_bar.topLeft(), m_bar_off);
    const qint64 range = m_maximum - m_minimum;
    const int lit = range == 0 ? 0 : static_cast<int>(m_bar.width() * static_cast<qint64>(m_value - m_minimum) / range);
    const qreal opacity = painter->opacity();
    if (m_muted)
        painter->setOpacity(opacity * muted_opacity_percent / 100);
    // An empty source would stand for the whole picture.
    if (lit > 0)
        painter->drawImage(m_bar.topLeft(), m_bar_on, QRect(0, 0, lit, m_bar.height()));
    painter->setOpacity(opacity);
    painter->drawImage(m_mute.topLeft(), m_muted && !m_mute_on.isNull() ? m_mute_on : m_mute_off);
}

void VolumeSkin::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    const QPoint position = event->position().toPoint();
    if (m_mute.contains(position)) {
        m_muted = !m_muted;
        update();
        emit app_mute(m_muted);
    } else if (!m_bar.isEmpty()) {
        m_dragging = true;
        choose(value_at(position.x()));
    }
}

void VolumeSkin::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (m_dragging)
        choose(value_at(event->position().toPoint().x()));
}

void VolumeSkin::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() == Qt::LeftButton)
        m_dragging = false;
}

void VolumeSkin::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void VolumeSkin::wheelEvent(QWheelEvent* event)
{
    event->accept();
    m_wheel_angle += event->angleDelta().y();
    const int notches = m_wheel_angle / notch_angle;
    m_wheel_angle %= notch_angle;
    if (notches != 0)
        choose(m_value + notches * m_step);
}

void VolumeSkin::hideEvent(QHideEvent*)
{
    // The release goes to somebody else.
    m_dragging = false;
}
