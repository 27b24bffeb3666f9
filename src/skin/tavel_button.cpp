#include "tavel_button.h"

#include <QPainter>

TavelButton::TavelButton(QWidget* parent, const char* name) : QPushButton(parent)
{
    setObjectName(QString::fromLatin1(name));
}

void TavelButton::set_image(const QImage& strip)
{
    strip_ = strip;
    update();
}

TavelButton::Frame TavelButton::frame() const
{
    if (!isEnabled())
        return Frame::Disabled;
    if (isDown())
        return Frame::Pressed;
    return hasFocus() ? Frame::Focused : Frame::Normal;
}

void TavelButton::paintEvent(QPaintEvent*)
{
    const int frame_width = strip_.width() / FRAME_COUNT;
    QPainter painter(this);
    painter.drawImage(QPoint(0, 0), strip_,
                      QRect(static_cast<int>(frame()) * frame_width, 0, frame_width, strip_.height()));
}
