#pragma once

#include "skin_widget.h"

/// A volume indicator that can be set by pointer, touch and wheel, with a mute switch. GUI thread only.
class VolumeSkin : public SkinWidget
{
    Q_OBJECT

public:
    VolumeSkin(QWidget* parent, const QString& name, unsigned int flags = 0);

    /// Sets the lowest and highest volume and what one notch of the wheel changes (at least 1). A maximum below the
    /// minimum counts as the minimum.
    void set_volumeRange(int minimum, int maximum, int step);
    /// Shows a volume, brought inside the range. Sends nothing.
    void set_volumeValue(unsigned int value);
    unsigned int volumeValue() const { return static_cast<unsigned int>(m_value); }

    /// Shows sound as muted or not. Sends nothing.
    void set_mute(bool mute);
    bool isMuted() const { return m_muted; }

    /// Where the bar is, and where the mute switch is, in widget coordinates. Empty without a skin.
    const QRect& barRectangle() const { return m_bar; }
    const QRect& muteRectangle() const { return m_mute; }

signals:
    /// The user chose another volume.
    void app_volumes(unsigned int value);
    /// The user switched mute.
    void app_mute(bool mute);

protected:
    void draw(QPainter* painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void read_layout();
    int value_at(int x) const;
    void choose(int value);

    int m_minimum = 0;
    int m_maximum = 100;
    int m_step = 1;
    int m_value = 0;
    int m_wheel_angle = 0; // eighths of a degree that have not made a notch yet
    bool m_muted = false;
    bool m_dragging = false;

    QRect m_bar;
    QRect m_mute;
    QImage m_bar_off;
    QImage m_bar_on;
    QImage m_mute_off;
    QImage m_mute_on;
};
