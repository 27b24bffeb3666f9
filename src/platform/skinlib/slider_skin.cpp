#include "slider_skin.h"

#include "skin_group.h"
#include "skin_slices.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

#include <algorithm>

namespace
{

/// What a slider without pictures is drawn with.
constexpr QRgb plain_track = 0x50ffffff;
constexpr QRgb plain_fill = 0xffff9933;
constexpr QRgb plain_handle = 0xffffffff;
constexpr QRgb plain_marker = 0xfffff9b2;
constexpr int plain_thickness = 4;
constexpr int plain_handle_width = 10;
constexpr int plain_marker_width = 2;

constexpr const char* marker_keys[SliderSkin::marker_count] = {"marker_a", "marker_b"};

} // namespace

SliderSkin::SliderSkin(QWidget* parent, const QString& name, unsigned int flags) : SkinWidget(parent, name, flags)
{
    read_layout();
}

void SliderSkin::read_layout()
{
    const SkinGroup layout(this, objectName());
    m_track = layout.image(QStringLiteral("track"));
    m_fill = layout.image(QStringLiteral("fill"));
    m_handle = layout.image(QStringLiteral("handle"));
    m_handle_press = layout.image(QStringLiteral("handle_press"));
    m_handle_disable = layout.image(QStringLiteral("handle_disable"));
    for (std::size_t type = 0; type < m_marker_images.size(); ++type)
        m_marker_images[type] = layout.image(QString::fromLatin1(marker_keys[type]));

    int width = layout.size(QStringLiteral("width"));
    int height = layout.size(QStringLiteral("height"));
    if (width == 0)
        width = m_track.width();
    if (height == 0)
        height = std::max(m_track.height(), m_handle.height());
    resize(width, height);
}

// Values

unsigned int SliderSkin::bounded(unsigned int value) const
{
    return std::clamp(value, m_minimum, m_maximum);
}

void SliderSkin::setMinimum(unsigned int minimum)
{
    m_minimum = minimum;
    m_maximum = std::max(m_maximum, minimum);
    bring_inside();
}

void SliderSkin::setMaximum(unsigned int maximum)
{
    m_maximum = maximum;
    m_minimum = std::min(m_minimum, maximum);
    bring_inside();
}

void SliderSkin::bring_inside()
{
    m_set_value = bounded(m_set_value);
    update();
    show_value(bounded(m_value));
}

void SliderSkin::setValue(unsigned int value)
{
    m_set_value = bounded(value);
    if (!m_held)
        show_value(m_set_value);
}

void SliderSkin::show_value(unsigned int value)
{
    if (value == m_value)
        return;
    m_value = value;
    update();
    emit valueChanged(value);
}

void SliderSkin::insertMarker(int type, unsigned int position)
{
    if (type < 0 || type >= marker_count)
        return;
    m_markers[static_cast<std::size_t>(type)] = position;
    update();
}

void SliderSkin::clearMarkers()
{
    m_markers.fill(std::nullopt);
    update();
}

std::optional<unsigned int> SliderSkin::marker(Marker type) const
{
    return m_markers[static_cast<std::size_t>(type)];
}

void SliderSkin::setDisable(bool disable)
{
    m_disabled = disable;
    if (disable)
        take_back_hold();
    update();
}

void SliderSkin::take_back_hold()
{
    if (!m_held)
        return;
    m_held = false;
    show_value(m_set_value);
}

// Geometry

int SliderSkin::handle_width() const
{
    return std::min(m_handle.isNull() ? plain_handle_width : m_handle.width(), width());
}

int SliderSkin::position_of(unsigned int value) const
{
    const int first = handle_width() / 2;
    const unsigned int range = m_maximum - m_minimum;
    if (range == 0)
        return first;
    const auto travel = static_cast<quint64>(width() - handle_width());
    return first + static_cast<int>(travel * (bounded(value) - m_minimum) / range);
}

unsigned int SliderSkin::value_at(int x) const
{
    const int travel = width() - handle_width();
    if (travel <= 0)
        return m_value;
    const auto offset = static_cast<quint64>(std::clamp(x - handle_width() / 2, 0, travel));
    const quint64 range = m_maximum - m_minimum;
    return m_minimum + static_cast<unsigned int>((offset * range + static_cast<quint64>(travel) / 2) /
                                                 static_cast<quint64>(travel));
}

QRect SliderSkin::handleRectangle() const
{
    const int handle_height = m_handle.isNull() ? height() : m_handle.height();
    return QRect(position_of(m_value) - handle_width() / 2, (height() - handle_height) / 2, handle_width(),
                 handle_height);
}

// Drawing

void SliderSkin::draw(QPainter* painter)
{
    const auto bar = [this](const QImage& image, int length) {
        const int thickness = image.isNull() ? std::min(plain_thickness, height()) : image.height();
        return QRect(0, (height() - thickness) / 2, length, thickness);
    };
    if (m_track.isNull())
        painter->fillRect(bar(m_track, width()), QColor::fromRgba(plain_track));
    else
        draw_slices(painter, bar(m_track, width()), m_track, Qt::Horizontal);

    // The fill is cut, not squeezed, so that its left end keeps its shape.
    painter->save();
    painter->setClipRect(0, 0, position_of(m_value), height(), Qt::IntersectClip);
    if (m_disabled)
        painter->setOpacity(painter->opacity() / 2);
    if (m_fill.isNull())
        painter->fillRect(bar(m_fill, width()), QColor::fromRgba(plain_fill));
    else
        draw_slices(painter, bar(m_fill, width()), m_fill, Qt::Horizontal);
    painter->restore();

    for (std::size_t type = 0; type < m_markers.size(); ++type) {
        if (!m_markers[type])
            continue;
        const QImage& image = m_marker_images[type];
        const int x = position_of(*m_markers[type]);
        if (image.isNull())
            painter->fillRect(x - plain_marker_width / 2, 0, plain_marker_width, height(),
                              QColor::fromRgba(plain_marker));
        else
            painter->drawImage(x - image.width() / 2, (height() - image.height()) / 2, image);
    }

    const QImage* handle = &m_handle;
    if (m_disabled && !m_handle_disable.isNull())
        handle = &m_handle_disable;
    else if (m_held && !m_handle_press.isNull())
        handle = &m_handle_press;
    if (m_disabled && m_handle_disable.isNull())
        painter->setOpacity(painter->opacity() / 2);
    if (handle->isNull())
        painter->fillRect(handleRectangle(), QColor::fromRgba(plain_handle));
    else
        painter->drawImage(position_of(m_value) - handle->width() / 2, (height() - handle->height()) / 2, *handle);
}

// Pointer

void SliderSkin::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton || m_disabled || m_minimum == m_maximum || width() <= handle_width())
        return;
    const int x = event->position().toPoint().x();
    const QRect handle = handleRectangle();
    const bool on_handle = x >= handle.left() && x <= handle.right();
    m_grip = on_handle ? x - position_of(m_value) : 0;
    m_held = true;
    update();
    if (!on_handle)
        show_value(value_at(x));
}

void SliderSkin::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (m_held)
        show_value(value_at(event->position().toPoint().x() - m_grip));
}

void SliderSkin::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton || !m_held)
        return;
    m_held = false;
    m_set_value = m_value;
    update();
    emit seekReleased(m_value);
}

void SliderSkin::hideEvent(QHideEvent*)
{
    take_back_hold();
}
