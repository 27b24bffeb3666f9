#pragma once

#include "background_pixmap.h"

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

/// A view of contents that are higher than itself, with the skin's scroll bar at its right edge. GUI thread only.
///
/// The contents scroll in steps of a fixed height, so that the first line is always whole. The bar is there only when
/// the contents do not fit. Wheel, a drag on the contents and the bar scroll; a tap is handed to contentsTapped().
/// The pictures come from the layout file's group "LISTBOX"; without them the bar is drawn plainly.
class ScrollViewSkin : public QWidget
{
    Q_OBJECT

public:
    ScrollViewSkin(QWidget* parent, const char* name, unsigned int flags = 0);
    ~ScrollViewSkin() override;

    /// The background, alpha included; it replaces what is under the view. Null: the parent shows through.
    void setBackgroundPixmap(const QPixmap& pixmap);
    const QPixmap& backgroundPixmap() const { return m_background.pixmap(); }

    /// The part of the view that shows contents, in pixels (the rest is the scroll bar).
    int visibleWidth() const;
    int visibleHeight() const { return height(); }
    /// Whether the scroll bar is there.
    bool scrollBarShown() const;
    /// The scroll bar and its handle, in widget coordinates; empty while the bar is not there.
    QRect scrollBarRectangle() const;
    QRect scrollHandleRectangle() const;

    /// Suspends repainting until resumeRepaints() has been called as often; the two may be nested.
    void suspendRepaints();
    void resumeRepaints();
    bool repaintsSuspended() const { return m_suspended > 0; }

    /// The first step that is shown, and the last one that could be the first.
    int firstStep() const { return m_first; }
    int lastFirstStep() const;
    /// Scrolls so that @p step is the first, as far as the contents allow.
    void setFirstStep(int step);

protected:
    /// Height of one step in pixels, at least 1, and the contents' height in steps. The position is brought inside.
    void setContents(int step_height, int steps);
    int stepHeight() const { return m_step_height; }
    int stepCount() const { return m_steps; }
    /// Steps that are wholly visible, at least 1.
    int visibleSteps() const;
    /// Repaints @p rectangle, or everything once repainting is resumed.
    void updateContents(const QRect& rectangle);
    void updateContents();

    /// Draws the contents; @p clip is the rectangle to paint, in widget coordinates.
    virtual void drawContents(QPainter* painter, const QRect& clip);
    /// A press and release on one spot of the contents.
    virtual void contentsTapped(const QPoint& position);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    enum class Hold { None, Tap, Contents, Handle };

    void read_layout();
    void draw_scroll_bar(QPainter* painter) const;
    void drag_handle(int y);

    BackgroundPixmap m_background;
    QImage m_bar_track;
    QImage m_bar_handle;
    int m_bar_width;
    int m_step_height = 1;
    int m_steps = 0;
    int m_first = 0;
    int m_suspended = 0;
    bool m_repaint_wanted = false; // something changed while repainting was suspended
    int m_wheel_angle = 0;         // eighths of a degree that have not made a step yet
    Hold m_hold = Hold::None;
    QPoint m_press_position;
    int m_press_first = 0; // the first step when the press began
    int m_grip = 0;        // from the handle's top to where it was taken
};
