#include "file_manager_button.h"

#include "file_manager_look.h"

#include <QKeyEvent>
#include <QPainter>

namespace
{

namespace look = file_manager_look;

constexpr qreal corner = 5;

} // namespace

FileManagerButton::FileManagerButton(const QString& text, const char* name, Look look, QWidget* parent)
    : QAbstractButton(parent), look_(look)
{
    setText(text);
    setObjectName(QString::fromLatin1(name));
    setFocusPolicy(look == Look::Cross ? Qt::NoFocus : Qt::StrongFocus);
}

void FileManagerButton::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            setDown(true);
        break;
    case Qt::Key_Up:
        emit step_requested(-1);
        break;
    case Qt::Key_Down:
        emit step_requested(1);
        break;
    case Qt::Key_Left:
        emit left_pressed();
        break;
    case Qt::Key_Right:
        break;
    default:
        event->ignore();
        break;
    }
}

void FileManagerButton::keyReleaseEvent(QKeyEvent* event)
{
    const bool is_press_key =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    event->setAccepted(is_press_key);
    if (!is_press_key || event->isAutoRepeat() || !isDown())
        return;
    setDown(false);
    click();
}

void FileManagerButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (look_ == Look::Cross) {
        const QPointF centre = QRectF(rect()).center();
        painter.setPen(QPen(isDown() ? look::accent : look::caption_text, 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(centre + QPointF(-6, -6), centre + QPointF(6, 6));
        painter.drawLine(centre + QPointF(-6, 6), centre + QPointF(6, -6));
        return;
    }
    const QRectF ground = QRectF(rect()).adjusted(1, 1, -1, -1);
    QColor lit = look::accent;
    lit.setAlpha(isDown() ? 255 : hasFocus() ? 110 : 0);
    painter.setPen(QPen(hasFocus() || isDown() ? look::accent : look::line, hasFocus() ? 2 : 1));
    painter.setBrush(hasFocus() || isDown() ? lit : look::raised);
    painter.drawRoundedRect(ground, corner, corner);
    painter.setFont(look::button_font());
    painter.setPen(look_ == Look::Primary && !hasFocus() && !isDown() ? look::accent : look::text);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void FileManagerButton::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    update();
}

void FileManagerButton::focusOutEvent(QFocusEvent* event)
{
    setDown(false);
    QAbstractButton::focusOutEvent(event);
    update();
}

#include "moc_file_manager_button.cpp"
