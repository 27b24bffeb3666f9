#include "touch_combo_box.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QStyledItemDelegate>

namespace
{

constexpr int arrow_width = 9;
constexpr int arrow_height = 5;
constexpr int arrow_margin = 6;

} // namespace

TouchComboBox::TouchComboBox(QWidget* parent, const char* name) : QComboBox(parent)
{
    setObjectName(QString::fromLatin1(name));
    // The combo box's own delegate ignores the row height of the style sheet.
    setItemDelegate(new QStyledItemDelegate(this));
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setFocusPolicy(Qt::StrongFocus);
}

void TouchComboBox::paintEvent(QPaintEvent* event)
{
    QComboBox::paintEvent(event);
    const QPointF tip(width() - arrow_margin - arrow_width / 2.0, (height() + arrow_height) / 2.0);
    QPainterPath arrow(tip);
    arrow.lineTo(tip + QPointF(-arrow_width / 2.0, -arrow_height));
    arrow.lineTo(tip + QPointF(arrow_width / 2.0, -arrow_height));
    arrow.closeSubpath();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(arrow, palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
}
