#pragma once

#include "frame_buffer.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHash>
#include <QImage>
#include <QPointer>

#include <array>

class VideoItem;
class WindowItem;

/// The device's display in one host window.
///
/// The scene is the output: 480x272 pixels on the LCD, 640x480 on the TV, scaled to the host window with its aspect
/// kept. At the bottom lies the video plane "/dev/fb1" (VideoPlane), above it the plane "/dev/fb2" that carries the
/// player's windows. Every top-level widget of the process is embedded in fb2 by itself as soon as it is shown or loses
/// its parent; a window with Qt::BypassGraphicsProxyWidget stays with the host. Window positions are fb2's. GUI thread
/// only.
class DeviceScreen : public QGraphicsView
{
    Q_OBJECT

public:
    enum class Output {
        Lcd = 0, ///< 480x272
        Tv = 1,  ///< 640x480
    };

    /// The display; made on first use (an application object must exist), destroyed with the application object. It
    /// shows itself when the first embedded window is shown.
    static DeviceScreen* instance();
    ~DeviceScreen() override;

    /// Chooses the output. The TV takes a second host display full screen where there is one; otherwise the host window
    /// grows in proportion. Going back to the LCD restores the host window. The planes are left alone.
    void set_output(Output output);
    Output output() const { return m_output; }

    /// Size of the output in its own pixels: 480x272 or 640x480.
    QSize output_size() const;

    /// The desktop as the player sees it, (80, 104, 480, 272) in fb2, on both outputs.
    QRect desktop_geometry() const;

    /// Puts the window @p widget on the display; nothing happens when it is there already or is no window. The display
    /// takes no ownership: a widget is deleted by whoever owns it and leaves the display then.
    void embed(QWidget* widget);

    /// Makes the window of @p widget the active one: it gets WindowActivate, the keys and its focus widget the focus.
    /// Ignored for a window that is hidden, not embedded or blocked by a modal one.
    void activate(QWidget* widget);

    /// The active window whatever the host's focus; null when no window is shown. A pop-up counts as the window it
    /// belongs to.
    QWidget* active_window() const;

    /// Whether @p widget lies in the active window.
    bool is_active(const QWidget* widget) const;

    /// Places the window of @p lower directly under the window of @p upper, unless it lies under it already. Does
    /// nothing when both are the same window.
    void stack_under(QWidget* lower, QWidget* upper);

    /// Places the window of @p widget above all others. Showing a window does this, activating does not.
    void raise_window(QWidget* widget);

    /// Carries out a frame-buffer control string such as "/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0
    /// enable 1".
    /// @return false, after one warning and without any change, for a string that is not understood.
    bool control(const QString& frame_buffer_string);

    /// State of a plane: 0 to 2 for "/dev/fb0" to "/dev/fb2".
    const FrameBuffer& frame_buffer(int plane) const { return m_planes.at(static_cast<std::size_t>(plane)); }

    /// What the output shows now, in real pixels (the output's size times the host window's scale), also on platforms
    /// without a screen. Pending repaints are done first.
    QImage grab_output();

signals:
    /// The user wants to close the host window, which stays open.
    void close_requested();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& exposed) override;

private:
    DeviceScreen();

    // Windows
    void release(QWidget* widget);
    void window_shown(QWidget* widget);
    void window_hidden(QWidget* widget);
    void restore_activation();
    void keep_pop_up_on_screen(QWidget* pop_up);
    void omit_covered_windows();
    WindowItem* item_of(const QWidget* widget) const;
    WindowItem* modal_item() const;

    // Keys
    void deliver_key(QWidget* receiver, QEvent::Type type, int key, const QKeyEvent& host, bool repeated);
    QWidget* key_receiver() const;

    // Planes and output
    void present();
    void lay_out();
    void move_to_tv();
    void move_to_lcd();
    void apply_planes();
    void update_video();

    QGraphicsScene m_scene;
    VideoItem* m_video = nullptr;        ///< fb1; the scene's
    QGraphicsRectItem* m_user = nullptr; ///< fb2: parent of the windows; the scene's
    std::array<FrameBuffer, 3> m_planes;
    Output m_output = Output::Lcd;
    QRect m_lcd_geometry;                        ///< the host window before the TV took over
    Qt::WindowStates m_lcd_state;                ///< and its state
    QRect m_video_place;                         ///< where the picture was last, in viewport coordinates
    QList<QPointer<QWidget>> m_activation_order; ///< windows that were active and are shown, the last one last
    QList<QPointer<QWidget>> m_pop_ups;          ///< pop-ups that are shown, the topmost last
    QHash<int, int> m_held_keys;                 ///< host keys that are down, with the device keys they stand for
};
