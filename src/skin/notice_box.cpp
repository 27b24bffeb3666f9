#include "notice_box.h"

#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QStaticText>
#include <QTextOption>
#include <QtMath>

#include "device_font.h"
#include "window_flags.h"

namespace
{

// Geometry of the box, in pixels: a caption with a line under it, then the warning sign and the text beside it.
constexpr int SIDE_MARGIN = 18;
constexpr int CAPTION_HEIGHT = 28;
constexpr int CONTENT_MARGIN = 14; ///< above and below sign and text
constexpr int ICON_SIZE = 32;
constexpr int ICON_GAP = 14;
constexpr int TEXT_LEFT = SIDE_MARGIN + ICON_SIZE + ICON_GAP;
constexpr int LEAST_WIDTH = 220;
constexpr int WINDOW_MARGIN = 20; ///< kept free on each side by a long notice
constexpr QSize DEVICE_WINDOW(480, 272);
constexpr qreal CORNER_RADIUS = 7;

const QColor panel_color(16, 15, 14, 226);
const QColor edge_color(255, 255, 255, 48);
const QColor caption_color(255, 249, 178);
const QColor text_color(255, 255, 255);
const QColor accent_color(255, 148, 32);

/// A triangle with an exclamation mark, ICON_SIZE pixels square.
void draw_warning_sign(QPainter& painter, const QPointF& top_left)
{
    painter.save();
    painter.translate(top_left);
    QPainterPath triangle;
    triangle.moveTo(16, 4.5);
    triangle.lineTo(29, 27);
    triangle.lineTo(3, 27);
    triangle.closeSubpath();
    painter.setPen(QPen(accent_color, 2.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(triangle);
    painter.drawLine(QPointF(16, 13), QPointF(16, 18.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent_color);
    painter.drawEllipse(QPointF(16, 23), 1.6, 1.6);
    painter.restore();
}

/// @p text set in @p font and wrapped between words, or inside a word that is too long for @p width.
QStaticText wrapped_text(const QString& text, const QFont& font, int width)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    // Static text breaks at line separators, not at line feeds.
    QStaticText wrapped(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator));
    wrapped.setTextFormat(Qt::PlainText);
    wrapped.setTextOption(option);
    wrapped.setTextWidth(width);
    wrapped.prepare(QTransform(), font);
    return wrapped;
}

} // namespace

NoticeBox::NoticeBox(const QString& caption, const QString& text, QWidget* parent, int display_time_ms)
    : QMessageBox(Warning, caption, text, NoButton, parent, window_flags(0x40)), display_time_ms_(display_time_ms)
{
    // The constructor adds an OK button where none is asked for.
    setStandardButtons(NoButton);
    setModal(true);
    setAttribute(Qt::WA_TranslucentBackground);
    setFont(device_font(QStringLiteral("v28"), 16, 50));
    timer_.setSingleShot(true);
    connect(&timer_, SIGNAL(timeout()), this, SLOT(time_out()));
}

int NoticeBox::exec()
{
    fit_to_window();
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
    // The toolkit has just sized the box for its own layout.
    if (event->type() == QEvent::LayoutRequest && size() != sizeHint())
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

QSize NoticeBox::sizeHint() const
{
    const QSize host = parentWidget() ? parentWidget()->window()->size() : DEVICE_WINDOW;
    const QSize widest = (host - QSize(2 * WINDOW_MARGIN, 2 * WINDOW_MARGIN)).expandedTo(QSize(LEAST_WIDTH, 0));
    const int frame_width = TEXT_LEFT + SIDE_MARGIN;
    const int frame_height = CAPTION_HEIGHT + 2 * CONTENT_MARGIN;
    const QSizeF content = wrapped_text(text(), font(), widest.width() - frame_width).size();
    const QSize needed(frame_width + qCeil(content.width()),
                       frame_height + std::max(qCeil(content.height()), ICON_SIZE));
    return needed.boundedTo(widest.expandedTo(QSize(0, frame_height + ICON_SIZE))).expandedTo(QSize(LEAST_WIDTH, 0));
}

void NoticeBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(edge_color, 1));
    painter.setBrush(panel_color);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), CORNER_RADIUS, CORNER_RADIUS);

    const int content_width = width() - 2 * SIDE_MARGIN;
    painter.setPen(caption_color);
    painter.setFont(device_font(QStringLiteral("v28"), 13, 75));
    painter.drawText(QRect(SIDE_MARGIN, 0, content_width, CAPTION_HEIGHT), Qt::AlignLeft | Qt::AlignVCenter,
                     windowTitle());
    painter.fillRect(QRect(SIDE_MARGIN, CAPTION_HEIGHT - 1, content_width, 1), accent_color);

    const QRect content(SIDE_MARGIN, CAPTION_HEIGHT, content_width, height() - CAPTION_HEIGHT);
    draw_warning_sign(painter, QPointF(content.left(), content.top() + (content.height() - ICON_SIZE) / 2.0));
    painter.setPen(text_color);
    painter.setFont(font());
    const QStaticText wrapped = wrapped_text(text(), font(), width() - TEXT_LEFT - SIDE_MARGIN);
    painter.setClipRect(content);
    const qreal above = std::max<qreal>(CONTENT_MARGIN, (content.height() - wrapped.size().height()) / 2);
    painter.drawStaticText(QPointF(TEXT_LEFT, content.top() + above), wrapped);
}

void NoticeBox::fit_to_window()
{
    // The toolkit's own labels would be laid out for the host's display and its style; the notice is painted whole.
    const QList<QLabel*> labels = findChildren<QLabel*>();
    for (QLabel* label : labels)
        label->hide();
    setFixedSize(sizeHint());
    if (parentWidget())
        move(parentWidget()->window()->geometry().center() - rect().center());
    update();
}
