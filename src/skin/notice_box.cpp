#include "notice_box.h"

#include <QEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

#include "device_font.h"
#include "window_flags.h"

namespace
{

constexpr QMargins CONTENT_MARGINS(18, 38, 22, 18);
constexpr int CAPTION_HEIGHT = 28;
constexpr int WINDOW_MARGIN = 20; ///< kept free at either side of a long notice
constexpr qreal CORNER_RADIUS = 7;
constexpr int ICON_SIZE = 32;

const QColor panel_color(16, 15, 14, 224);
const QColor caption_color(255, 249, 178);
const QColor text_color(255, 255, 255);
const QColor accent_color(255, 148, 32);

/// The warning sign in the skin's accent.
QPixmap warning_picture(qreal pixel_ratio)
{
    QPixmap picture(QSize(ICON_SIZE, ICON_SIZE) * pixel_ratio);
    picture.setDevicePixelRatio(pixel_ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath triangle;
    triangle.moveTo(16, 4.5);
    triangle.lineTo(29, 27);
    triangle.lineTo(3, 27);
    triangle.closeSubpath();
    painter.setPen(QPen(accent_color, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(triangle);
    painter.drawLine(QPointF(16, 13), QPointF(16, 19));
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent_color);
    painter.drawEllipse(QPointF(16, 23.2), 1.7, 1.7);
    return picture;
}

} // namespace

NoticeBox::NoticeBox(const QString& caption, const QString& text, QWidget* parent, int display_time_ms)
    : QMessageBox(Warning, caption, text, NoButton, parent, window_flags(0x40)), display_time_ms_(display_time_ms)
{
    // The constructor adds an OK button where none is asked for.
    setStandardButtons(NoButton);
    setModal(true);
    apply_look();
    timer_.setSingleShot(true);
    connect(&timer_, SIGNAL(timeout()), this, SLOT(time_out()));
}

int NoticeBox::exec()
{
    adjustSize();
    timer_.start(display_time_ms_);
    return isVisible() ? 0 : QDialog::exec();
}

void NoticeBox::stop()
{
    timer_.stop();
    done(0);
}

void NoticeBox::set_display_time(int display_time_ms)
{
    display_time_ms_ = display_time_ms;
}

void NoticeBox::time_out()
{
    done(0);
}

bool NoticeBox::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        // A key that was held when the notice came up says nothing about it.
        if (!static_cast<QKeyEvent*>(event)->isAutoRepeat())
            stop();
        return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        stop();
        return true;
    default:
        return QMessageBox::eventFilter(object, event);
    }
}

bool NoticeBox::event(QEvent* event)
{
    const bool handled = QMessageBox::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fit_to_window();
    return handled;
}

void NoticeBox::showEvent(QShowEvent* event)
{
    QMessageBox::showEvent(event);
    fit_to_window();
    qApp->installEventFilter(this);
}

void NoticeBox::hideEvent(QHideEvent* event)
{
    qApp->removeEventFilter(this);
    QMessageBox::hideEvent(event);
}

void NoticeBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF outline = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(QColor(255, 255, 255, 48), 1));
    painter.setBrush(panel_color);
    painter.drawRoundedRect(outline, CORNER_RADIUS, CORNER_RADIUS);

    painter.setPen(caption_color);
    painter.setFont(device_font(QStringLiteral("v28"), 13, 75));
    painter.drawText(QRect(CONTENT_MARGINS.left(), 0, width() - 2 * CONTENT_MARGINS.left(), CAPTION_HEIGHT),
                     Qt::AlignLeft | Qt::AlignVCenter, windowTitle());
    painter.fillRect(QRect(CONTENT_MARGINS.left(), CAPTION_HEIGHT, width() - 2 * CONTENT_MARGINS.left(), 1),
                     accent_color);
}

void NoticeBox::apply_look()
{
    setAttribute(Qt::WA_TranslucentBackground);
    setFont(device_font(QStringLiteral("v28"), 15, 50));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, text_color);
    setPalette(colors);
    layout()->setContentsMargins(CONTENT_MARGINS);
    if (auto* icon_label = findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label")))
        icon_label->setPixmap(warning_picture(2));
}

void NoticeBox::fit_to_window()
{
    if (!parentWidget() || !isVisible())
        return;
    const QRect host = parentWidget()->window()->geometry();
    // The toolkit's own limit follows the host's display, which may be much wider than the player's window.
    const int widest = host.width() - 2 * WINDOW_MARGIN;
    if (width() > widest) {
        if (auto* text_label = findChild<QLabel*>(QStringLiteral("qt_msgbox_label")))
            text_label->setWordWrap(true);
        layout()->activate();
        setFixedSize(widest, layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(widest) : height());
    }
    move(host.center() - rect().center());
}
