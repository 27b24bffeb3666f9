#include "exit_button.h"

#include "setting_look.h"
#include "setting_pictures.h"

#include <QtGui/QPainter>

ExitButton::ExitButton(QWidget* parent, const char* name)
    : QAbstractButton(parent)
    , normal_image_(setting_pictures::skin(QStringLiteral("close_normal")))
    , press_image_(setting_pictures::skin(QStringLiteral("close_press")))
    , focus_image_(setting_pictures::skin(QStringLiteral("close_focus")))
{
    setObjectName(QString::fromLatin1(name));
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::pressed, this, &ExitButton::draw_pressed);
    connect(this, &QAbstractButton::released, this, &ExitButton::draw_released);
}

QSize ExitButton::sizeHint() const
{
    return normal_image_.isNull() ? QSize(30, 28) : normal_image_.size();
}

void ExitButton::draw_pressed()
{
    drawn_pressed_ = true;
    repaint();
}

void ExitButton::draw_released()
{
    drawn_pressed_ = false;
    repaint();
}

void ExitButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPixmap& image = drawn_pressed_ ? press_image_ : hasFocus() ? focus_image_ : normal_image_;
    if (!image.isNull()) {
        painter.drawPixmap((width() - image.width()) / 2, (height() - image.height()) / 2, image);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF cross = QRectF(rect()).adjusted(9, 8, -9, -8);
    if (hasFocus() || drawn_pressed_) {
        painter.setPen(QPen(setting_look::accent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), 4, 4);
    }
    painter.setPen(QPen(drawn_pressed_ ? setting_look::accent : setting_look::text, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
}

void ExitButton::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    update();
}

void ExitButton::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    update();
}
