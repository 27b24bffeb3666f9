#include "file_manager_delegate.h"

#include "file_manager_look.h"
#include "file_manager_model.h"

#include <QPainter>
#include <QPainterPath>

namespace
{

using Kind = FileManagerEntry::Kind;
namespace look = file_manager_look;

constexpr int icon_size = 20;
constexpr int box_size = 18;
constexpr int name_baseline = 18;   ///< from the row's top
constexpr int detail_baseline = 34; ///< from the row's top
constexpr int cursor_bar = 3;       ///< width of the bar at the left edge of the row under the cursor

void draw_cursor(QPainter* painter, const QRect& row, bool has_keys)
{
    if (!has_keys) {
        painter->fillRect(row, look::raised);
        return;
    }
    QLinearGradient glow(row.topLeft(), row.topRight());
    QColor strong = look::accent;
    strong.setAlpha(120);
    QColor weak = look::accent;
    weak.setAlpha(28);
    glow.setColorAt(0, strong);
    glow.setColorAt(1, weak);
    painter->fillRect(row, glow);
    painter->fillRect(QRect(row.topLeft(), QSize(cursor_bar, row.height())), look::accent);
}

void draw_check_box(QPainter* painter, const QRectF& box, bool on)
{
    painter->setPen(QPen(on ? look::accent : QColor(255, 255, 255, 110), 1.5));
    painter->setBrush(on ? QBrush(look::accent) : Qt::NoBrush);
    painter->drawRoundedRect(box, 4, 4);
    if (!on)
        return;
    const QPolygonF hook{QPointF(box.left() + 4, box.center().y()), QPointF(box.left() + 7.5, box.bottom() - 5),
                         QPointF(box.right() - 3.5, box.top() + 5)};
    painter->setPen(QPen(look::text, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(hook);
}

void draw_folder(QPainter* painter, const QRectF& box)
{
    QPainterPath shape;
    shape.setFillRule(Qt::WindingFill);
    shape.addRoundedRect(QRectF(box.left(), box.top() + 3, box.width() * 0.48, 6), 1.5, 1.5);
    shape.addRoundedRect(QRectF(box.left(), box.top() + 5.5, box.width(), box.height() - 8), 2, 2);
    painter->fillPath(shape, look::caption_text);
}

void draw_way_up(QPainter* painter, const QRectF& box)
{
    const qreal x = box.center().x();
    painter->setPen(QPen(look::caption_text, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolyline(
        QPolygonF{QPointF(x - 6, box.top() + 9), QPointF(x, box.top() + 3), QPointF(x + 6, box.top() + 9)});
    painter->drawLine(QPointF(x, box.top() + 4), QPointF(x, box.bottom() - 2));
}

void draw_film(QPainter* painter, const QRectF& box)
{
    const QRectF frame = box.adjusted(0, 2.5, 0, -2.5);
    painter->setPen(Qt::NoPen);
    painter->setBrush(look::quiet_text);
    QPainterPath shape;
    shape.addRoundedRect(frame, 2, 2);
    for (const qreal x : {2.0, 7.0, 12.0, 16.5}) {
        shape.addRect(QRectF(frame.left() + x, frame.top() + 1.5, 2, 2));
        shape.addRect(QRectF(frame.left() + x, frame.bottom() - 3.5, 2, 2));
    }
    const QPointF centre = frame.center();
    shape.addPolygon(QPolygonF{centre + QPointF(-2.5, -3.2), centre + QPointF(3.5, 0), centre + QPointF(-2.5, 3.2),
                               centre + QPointF(-2.5, -3.2)});
    shape.setFillRule(Qt::OddEvenFill);
    painter->drawPath(shape);
}

void draw_play_list(QPainter* painter, const QRectF& box)
{
    painter->setPen(QPen(look::quiet_text, 2, Qt::SolidLine, Qt::RoundCap));
    for (const qreal y : {5.0, 10.0, 15.0}) {
        painter->drawLine(QPointF(box.left() + 6, box.top() + y), QPointF(box.right() - 1, box.top() + y));
        painter->drawPoint(QPointF(box.left() + 1.5, box.top() + y));
    }
}

void draw_icon(QPainter* painter, const QRectF& box, Kind kind)
{
    switch (kind) {
    case Kind::Parent:
        draw_way_up(painter, box);
        break;
    case Kind::Folder:
        draw_folder(painter, box);
        break;
    case Kind::PlayList:
        draw_play_list(painter, box);
        break;
    case Kind::Film:
    case Kind::Other:
        draw_film(painter, box);
        break;
    }
}

QString detail_text(const QModelIndex& index, Kind kind)
{
    switch (kind) {
    case Kind::Parent:
        return FileManagerDelegate::tr("Folder above");
    case Kind::Folder:
        return FileManagerDelegate::tr("Folder");
    case Kind::PlayList:
        return FileManagerDelegate::tr("Play list");
    case Kind::Film:
    case Kind::Other:
        break;
    }
    QStringList details{index.data(FileManagerModel::TypeRole).toString(),
                        FileManagerDelegate::length_text(index.data(FileManagerModel::LengthRole).toLongLong()),
                        FileManagerDelegate::size_text(index.data(FileManagerModel::SizeRole).toLongLong())};
    details.removeAll(QString());
    return details.join(QStringLiteral("  \u00b7  "));
}

} // namespace

void FileManagerDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QRect row = option.rect;
    const auto kind = static_cast<Kind>(index.data(FileManagerModel::KindRole).toInt());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (option.state.testFlag(QStyle::State_Selected))
        draw_cursor(painter, row, option.state.testFlag(QStyle::State_HasFocus));
    painter->fillRect(QRect(row.left(), row.bottom(), row.width(), 1), look::line);

    const qreal middle = row.top() + row.height() / 2.0;
    if (kind != Kind::Parent) {
        const QRectF box(row.left() + (look::check_width - box_size) / 2.0 + 1, middle - box_size / 2.0, box_size,
                         box_size);
        draw_check_box(painter, box, index.data(FileManagerModel::ChosenRole).toBool());
    }
    draw_icon(painter, QRectF(row.left() + look::check_width, middle - icon_size / 2.0, icon_size, icon_size), kind);

    const int text_x = row.left() + look::check_width + icon_size + look::margin;
    const int text_width = row.right() - text_x - look::margin;
    painter->setFont(look::name_font());
    painter->setPen(look::text);
    painter->drawText(text_x, row.top() + name_baseline,
                      painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, text_width));
    painter->setFont(look::detail_font());
    painter->setPen(look::quiet_text);
    painter->drawText(text_x, row.top() + detail_baseline,
                      painter->fontMetrics().elidedText(detail_text(index, kind), Qt::ElideRight, text_width));
    painter->restore();
}

QSize FileManagerDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const
{
    return {look::check_width, look::row_height};
}

QString FileManagerDelegate::size_text(qint64 bytes)
{
    constexpr double step = 1024;
    if (bytes < 0)
        return {};
    double amount = static_cast<double>(bytes) / step;
    if (amount < step)
        return tr("%1 KB").arg(amount, 0, 'f', 0);
    amount /= step;
    if (amount < step)
        return tr("%1 MB").arg(amount, 0, 'f', amount < 100 ? 1 : 0);
    return tr("%1 GB").arg(amount / step, 0, 'f', 1);
}

QString FileManagerDelegate::length_text(qint64 milliseconds)
{
    if (milliseconds <= 0)
        return {};
    const qint64 seconds = (milliseconds + 500) / 1000;
    const QLatin1Char zero('0');
    const QString end = QStringLiteral("%1:%2");
    if (seconds < 3600)
        return end.arg(seconds / 60).arg(seconds % 60, 2, 10, zero);
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, zero)
        .arg(seconds % 60, 2, 10, zero);
}

#include "moc_file_manager_delegate.cpp"
