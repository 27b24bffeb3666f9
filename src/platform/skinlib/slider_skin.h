#pragma once

#include "skin_widget.h"

#include <array>
#include <optional>

/// A horizontal slider for a position, with marks for the two ends of a repeated passage. GUI thread only.
///
/// A press beside the handle jumps there, and the handle then follows the pointer; valueChanged() is sent on the way,
/// seekReleased() once at the release. While the handle is held, setValue() moves nothing; if the hold is taken back
/// (disabled, hidden), the slider goes to the value that was set last.
class SliderSkin : public SkinWidget
{
    Q_OBJECT

public:
    /// The kinds of marks.
    enum class Marker : int {
        A = 0, ///< where the repeated passage begins
        B = 1, ///< where it ends
    };
    static constexpr int marker_count = 2;

    SliderSkin(QWidget* parent, const QString& name, unsigned int flags = 0);

    unsigned int value() const { return m_value; }
    unsigned int minimum() const { return m_minimum; }
    unsigned int maximum() const { return m_maximum; }
    /// Sets a bound. The other one follows if it would be passed; the value is brought inside. Marks stay.
    void setMinimum(unsigned int minimum);
    void setMaximum(unsigned int maximum);

    /// Puts a mark of type 0 (A) or 1 (B) at a position; there is one of each type. Other types are ignored.
    void insertMarker(int type, unsigned int position);
    void clearMarkers();
    /// The position of a mark, none while it is not set.
    std::optional<unsigned int> marker(Marker type) const;

    /// Disabled, the slider is drawn so and ignores the pointer; setValue() still moves it.
    void setDisable(bool disable);
    bool isDisabled() const { return m_disabled; }
    /// True while the handle is held.
    bool isHeld() const { return m_held; }

    /// The handle's rectangle for the present value, in widget coordinates. Empty height without a skin.
    QRect handleRectangle() const;

public slots:
    /// Moves the slider; the value is brought inside the bounds.
    void setValue(unsigned int value);

signals:
    /// The value changed, by setValue() or by the pointer.
    void valueChanged(unsigned int value);
    /// The pointer let go of the handle here.
    void seekReleased(unsigned int value);

protected:
    void draw(QPainter* painter) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void read_layout();
    unsigned int bounded(unsigned int value) const;
    void bring_inside();
    void show_value(unsigned int value);
    int position_of(unsigned int value) const;
    unsigned int value_at(int x) const;
    int handle_width() const;
    void take_back_hold();

    unsigned int m_minimum = 0;
    unsigned int m_maximum = 0;
    unsigned int m_value = 0;
    unsigned int m_set_value = 0; // what setValue() asked for last; differs from m_value only while the handle is held
    std::array<std::optional<unsigned int>, marker_count> m_markers;
    bool m_disabled = false;
    bool m_held = false;
    int m_grip = 0; // from the handle's centre to where it was taken

    QImage m_track;
    QImage m_fill;
    QImage m_handle;
    QImage m_handle_press;
    QImage m_handle_disable;
    std::array<QImage, marker_count> m_marker_images;
};
