#pragma once

#include "background_pixmap.h"
#include "skin_button.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

/// A panel drawn from a skin: a background and buttons, blended over the video with one alpha. GUI thread only.
///
/// The panel shows its background pixmap in place of whatever is under it (its alpha lets the video through), then what
/// drawTitle() draws, then the buttons. Key pad: Left and Right move the focus through the buttons in the layout's
/// order, round the ends, past hidden and disabled ones; Return, Enter and Space press and release. Pointer and touch
/// press the button under them; a release beside it takes the press back. The panel accepts every key and press, so
/// that none comes to its parent by propagation.
///
/// The focus picture is drawn only while the panel is its window's focus widget.
class SkinBase : public QWidget
{
    Q_OBJECT

public:
    /// @param name object name (Latin-1)
    /// @param flags window flags of the device, see window_flags()
    SkinBase(QWidget* parent, const char* name, unsigned int flags = 0);
    ~SkinBase() override;

    /// Takes back a press and, if its button is still pressed, sends button_clicked(this, name). Anything else is
    /// ignored.
    virtual void releaseButton(QString name);
    /// Presses a button: it gets the focus and state 1. Ignored while one is pressed and for unknown or unusable
    /// buttons.
    virtual void pressButton(QString name);
    /// Sets how opaque the panel is (255 as the skin has it, 0 invisible), and shows background and buttons anew.
    virtual void setAlphaOverride(unsigned char alpha);
    /// Makes @p pixmap the background, alpha included. A null pixmap removes it. The panel's size stays.
    virtual void setBackgroundPixmap(const QPixmap& pixmap);
    /// Prepares a button picture for the panel: called by redrawButtonImages() with a copy (Format_ARGB32) and the
    /// button's place. What it leaves in @p image is drawn over the background. This one multiplies the alpha by the
    /// override.
    virtual void redrawImage(QImage& image, int x, int y);
    /// Draws what stands between background and buttons. Called while painting, in panel coordinates; this one draws
    /// nothing.
    virtual void drawTitle(QPainter* painter);
    /// Makes all buttons' pixmaps anew by redrawImage() and repaints. Done by itself before the first painting.
    virtual void redrawButtonImages();
    /// Takes back a press without a click: the button gets state 2. Ignored for a button that is not pressed.
    virtual void cancelButton(QString name);

    /// Reads background and buttons of @p group from the skin's layout file and takes the background's size. What is
    /// missing or damaged is silently left out; without a background the panel is 0 by 0. Calls no virtual operation.
    void do_configloading(QString group);

    /// Shows a button, usable, and gives it the focus (state 2). Unknown names are ignored, here and below.
    void showFocus(const QString& name);
    /// Shows a button, usable, at rest (state 0).
    void showNormal(const QString& name);
    /// Shows a button that takes no input (state 3).
    void disableButton(const QString& name);
    /// Takes a button away; its place shows the background.
    void hideButton(const QString& name);
    /// Makes @p name the button that the key pad acts on: it gets state 2 unless it is pressed or disabled, the one
    /// before it state 0.
    void setButtonFocus(const QString& name);
    /// Shows a button's present state. Null is ignored.
    void drawButton(const SkinButton* button);

    /// The button of that name, or null.
    SkinButton* button(const QString& name) const { return m_buttons.value(name, nullptr); }
    /// All buttons by name. They belong to the panel.
    const QMap<QString, SkinButton*>& buttons() const { return m_buttons; }
    /// The names in the order of the layout file, which is the key pad's order.
    const QStringList& buttonOrder() const { return m_order; }
    /// The button that Return presses now: the one with the focus or, while that is hidden or disabled, the one that
    /// stands in its place, or else the next usable one. Null without a usable button.
    SkinButton* focusButton() const;

    unsigned char alphaOverride() const { return m_alpha_override; }
    /// The background as the skin has it (Format_ARGB32), null without one.
    const QImage& backgroundImage() const { return m_background_image; }
    /// The background as it is shown.
    const QPixmap& backgroundPixmap() const { return m_background.pixmap(); }

signals:
    /// A button was pressed and released. @p panel is the sender, @p name the button's name (or a command made of it).
    void button_clicked(const QObject* panel, const QString name);

protected:
    /// True from an accepted press until its release. The panel itself clears it when the pressed button is hidden,
    /// disabled or set to another state by showFocus() or showNormal(), or when the panel is hidden.
    bool isPressed() const { return m_pressed; }
    void setPressed(bool pressed) { m_pressed = pressed; }

    /// Stores the alpha without drawing anything.
    void storeAlphaOverride(unsigned char alpha) { m_alpha_override = alpha; }
    /// Keeps @p image as the skin's background and shows it with the present alpha (calls no virtual operation). The
    /// panel's size stays.
    void setBackgroundImage(const QImage& image);

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    SkinButton* button_at(const QPoint& position) const;
    SkinButton* pressed_button() const;
    SkinButton* usable_from(qsizetype position, int step) const;
    QString place_of(const SkinButton& button) const;
    void change_state(SkinButton* button, SkinButton::State state, bool hidden);
    void move_focus(int step);
    void take_back_presses();
    void remove_buttons();
    SkinButton::State look_of(const SkinButton& button, const SkinButton* focus) const;

    QMap<QString, SkinButton*> m_buttons;
    QStringList m_order;
    QString m_focus;
    QString m_key_press;     // the button held by a key; empty without one
    QString m_pointer_press; // the button held by the pointer; empty without one
    QImage m_background_image;
    BackgroundPixmap m_background;
    unsigned char m_alpha_override = 255;
    bool m_pressed = false;
    bool m_images_stale = true;
};
