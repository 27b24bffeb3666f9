#pragma once

#include <QtGui/QPixmap>
#include <QtWidgets/QAbstractButton>

/// The close button of the settings dialog, drawn with the skin's images "close_normal", "close_press" and
/// "close_focus".
///
/// Without the images it draws a plain cross of its own, so that the dialog can always be closed.
class ExitButton : public QAbstractButton
{
    Q_OBJECT

public:
    ExitButton(QWidget* parent, const char* name);

    /// The size of the skin's normal image, or a finger's width without it.
    QSize sizeHint() const override;

public slots:
    /// Takes the pressed look until draw_released(). Connected to pressed().
    void draw_pressed();
    /// Takes the released look: the focus image while the button has the focus, else the normal one. Connected to
    /// released().
    void draw_released();

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QPixmap normal_image_;
    QPixmap press_image_;
    QPixmap focus_image_;
    bool drawn_pressed_ = false;
};
