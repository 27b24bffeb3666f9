#include "list_panel.h"

#include "config.h"
#include "device_font.h"
#include "list_row.h"
#include "qpe_application.h"

#include <QKeyEvent>
#include <QPainter>

#include <cstdio>
#include <new>

namespace
{

constexpr int row_height = 22;       ///< pixels
constexpr int marquee_tick_ms = 300; ///< how often the name moves
constexpr int marquee_step = 3;      ///< how far it moves, in pixels
constexpr int font_points = 12;
constexpr int normal_weight = 50;
constexpr int black_weight = 87;

/// @p image with its colours as they are and every alpha multiplied by @p alpha / 256.
QImage faded(const QImage& image, unsigned int alpha)
{
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x)
            line[x] = (line[x] & RGB_MASK) | ((static_cast<unsigned int>(qAlpha(line[x])) * alpha) >> 8) << 24;
    }
    return result;
}

} // namespace

ListPanel::ListPanel(QWidget* parent, const char* name, const QString& group, const QString& list_box_group)
    : SkinBase(parent, name)
{
    do_configloading(group);
    Config layout(QPEApplication::qpeDir() + QStringLiteral("pics/") + window()->objectName() +
                      QStringLiteral("/config"),
                  Config::File);
    layout.setGroup(list_box_group);
    const QRect rectangle(layout.readNumEntry(QStringLiteral("xpos")), layout.readNumEntry(QStringLiteral("ypos")),
                          layout.readNumEntry(QStringLiteral("width")), layout.readNumEntry(QStringLiteral("height")));

    list_box_ = std::make_unique<ListBoxSkin>(this, "file_listbox");
    list_box_->setBackgroundPixmap(QPixmap::fromImage(background_behind(rectangle)));
    list_box_->setGeometry(rectangle);
    list_box_->setFont(device_font(QStringLiteral("v28"), font_points, normal_weight));
    list_box_->setRowHeight(row_height);
    list_box_->installEventFilter(this);

    marquee_timer_.setInterval(marquee_tick_ms);
}

ListPanel::~ListPanel()
{
    list_box_->removeEventFilter(this);
}

bool ListPanel::eventFilter(QObject* object, QEvent* event)
{
    if (object != list_box_.get())
        return false;
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return)
        return false;
    QWidget* const owner = window();
    return owner != this && owner->eventFilter(this, event);
}

void ListPanel::setBackgroundPixmap(const QPixmap& pixmap)
{
    SkinBase::setBackgroundPixmap(pixmap);
    list_box_->setBackgroundPixmap(backgroundPixmap().copy(list_box_->geometry()));
}

void ListPanel::setAlphaOverride(unsigned char alpha)
{
    SkinBase::setAlphaOverride(alpha);
    list_box_->setBackgroundPixmap(QPixmap::fromImage(faded(background_behind(list_box_->geometry()), alpha)));
}

void ListPanel::redrawImage(QImage& image, int x, int y)
{
    const QImage original = image.convertToFormat(QImage::Format_ARGB32);
    QImage composed = background_behind(QRect(QPoint(x, y), image.size()));
    QPainter(&composed).drawImage(0, 0, original);
    composed = composed.convertToFormat(QImage::Format_ARGB32);
    const unsigned int alpha = alphaOverride();
    for (int row = 0; row < composed.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(composed.scanLine(row));
        const auto* original_line = reinterpret_cast<const QRgb*>(original.constScanLine(row));
        for (int column = 0; column < composed.width(); ++column) {
            const auto own_alpha = static_cast<unsigned int>(qAlpha(original_line[column]));
            line[column] = (line[column] & RGB_MASK) | ((own_alpha * alpha) >> 8) << 24;
        }
    }
    image = composed;
}

QString ListPanel::data_directory() const
{
    return QPEApplication::qpeDir() + QStringLiteral("etc/") + window()->objectName();
}

std::unique_ptr<Config> ListPanel::open_file(const QString& path)
{
    std::unique_ptr<Config> file(new (std::nothrow) Config(path, Config::File));
    if (!file)
        std::puts("save : Config file Create Failed! ");
    return file;
}

void ListPanel::scroll_name(ListRow* row)
{
    row->set_scroll_offset(row->scroll_offset() + marquee_step);
    list_box_->updateItem(row);
}

void ListPanel::prepare_title(QPainter* painter) const
{
    painter->setFont(device_font(QStringLiteral("v28"), font_points, black_weight));
    painter->setPen(QColor(255, 255, 255, alphaOverride()));
}

void ListPanel::showEvent(QShowEvent* event)
{
    SkinBase::showEvent(event);
    marquee_timer_.start();
}

void ListPanel::hideEvent(QHideEvent* event)
{
    marquee_timer_.stop();
    SkinBase::hideEvent(event);
}

QImage ListPanel::background_behind(const QRect& rectangle) const
{
    QImage cut(rectangle.size().expandedTo(QSize(0, 0)), QImage::Format_ARGB32_Premultiplied);
    cut.fill(Qt::transparent);
    QPainter painter(&cut);
    painter.drawImage(-rectangle.topLeft(), backgroundImage());
    return cut;
}
