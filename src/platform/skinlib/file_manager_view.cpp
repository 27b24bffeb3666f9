#include "file_manager_view.h"

#include "file_manager_delegate.h"
#include "file_manager_look.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace
{

namespace look = file_manager_look;

constexpr int drag_threshold = 8;    ///< pixels that a thumb may slip and still tap
constexpr int scroll_mark_width = 4; ///< the strip that shows which part of the list is seen
constexpr int shortest_scroll_mark = 18;

} // namespace

FileManagerView::FileManagerView(QWidget* parent) : QListView(parent)
{
    setObjectName(QStringLiteral("file_list"));
    setFrameShape(QFrame::NoFrame);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setItemDelegate(new FileManagerDelegate(this));
    viewport()->setAutoFillBackground(false);
    setAutoFillBackground(false);
}

void FileManagerView::set_empty_text(const QString& text)
{
    empty_text_ = text;
    viewport()->update();
}

int FileManagerView::first_visible_row() const
{
    return indexAt(QPoint(0, 0)).row();
}

int FileManagerView::last_visible_row() const
{
    const QModelIndex last = indexAt(QPoint(0, viewport()->height() - 1));
    return last.isValid() || !model() ? last.row() : model()->rowCount() - 1;
}

void FileManagerView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (currentIndex().isValid() && !event->isAutoRepeat())
            emit row_entered(currentIndex().row());
        event->accept();
        break;
    case Qt::Key_Left:
        if (!event->isAutoRepeat())
            emit left_pressed();
        event->accept();
        break;
    case Qt::Key_Right:
        emit right_pressed();
        event->accept();
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        QListView::keyPressEvent(event);
        event->accept();
        break;
    case Qt::Key_Escape:
        event->ignore();
        break;
    default:
        if (event->text().isEmpty())
            event->ignore();
        else
            QListView::keyPressEvent(event);
        break;
    }
}

void FileManagerView::mousePressEvent(QMouseEvent* event)
{
    press_position_ = event->position().toPoint();
    press_scroll_ = verticalScrollBar()->value();
    pressed_row_ = indexAt(press_position_);
    is_dragging_ = false;
    if (pressed_row_.isValid())
        setCurrentIndex(pressed_row_);
    event->accept();
}

void FileManagerView::mouseMoveEvent(QMouseEvent* event)
{
    const int moved = event->position().toPoint().y() - press_position_.y();
    if (!(event->buttons() & Qt::LeftButton))
        return;
    is_dragging_ = is_dragging_ || std::abs(moved) > drag_threshold;
    if (is_dragging_)
        verticalScrollBar()->setValue(press_scroll_ - moved);
    event->accept();
}

void FileManagerView::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    const QModelIndex tapped = pressed_row_;
    pressed_row_ = QPersistentModelIndex();
    event->accept();
    if (is_dragging_ || !tapped.isValid() || indexAt(position) != tapped)
        return;
    if (position.x() < look::check_width)
        emit row_marked(tapped.row());
    else
        emit row_entered(tapped.row());
}

void FileManagerView::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void FileManagerView::paintEvent(QPaintEvent* event)
{
    QListView::paintEvent(event);
    QPainter painter(viewport());
    const QRect area = viewport()->rect();
    if (!empty_text_.isEmpty()) {
        painter.setFont(look::name_font());
        painter.setPen(look::quiet_text);
        painter.drawText(area, Qt::AlignCenter, empty_text_);
    }
    const QScrollBar* scroll = verticalScrollBar();
    if (scroll->maximum() <= 0)
        return;
    const int range = scroll->maximum() + scroll->pageStep();
    const int length = std::max(area.height() * scroll->pageStep() / range, shortest_scroll_mark);
    const int y = static_cast<int>(qint64{area.height() - length} * scroll->value() / scroll->maximum());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 90));
    painter.drawRoundedRect(QRect(area.right() - scroll_mark_width, y, scroll_mark_width, length), 2, 2);
}

#include "moc_file_manager_view.cpp"
