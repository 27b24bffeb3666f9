#include "list_panel.h"

#include "config.h"
#include "device_font.h"
#include "list_row.h"
#include "qpe_application.h"
#include "skin_group.h"
#include "skin_layout.h"

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

/// Gives each pixel of @p image the alpha that @p source has there, times @p factor / 256; colours stay. Both are
/// Format_ARGB32 and of one size.
void take_alpha(QImage& image, const QImage& source, unsigned int factor)
{
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const auto* source_line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto alpha = static_cast<unsigned int>(qAlpha(source_line[x]));
            line[x] = (line[x] & RGB_MASK) | ((alpha * factor) >> 8) << 24;
        }
    }
}

} // namespace

ListPanel::ListPanel(QWidget* parent, const char* name, const QString& group, const QString& list_box_group)
    : SkinBase(parent, name)
{
    do_configloading(group);
    const SkinGroup layout(this, list_box_group);
    const QRect rectangle(layout.position(QStringLiteral("xpos")), layout.position(QStringLiteral("ypos")),
                          layout.size(QStringLiteral("width")), layout.size(QStringLiteral("height")));

    list_box_ = std::make_unique<ListBoxSkin>(this, "file_listbox");
    list_box_->setBackgroundPixmap(QPixmap::fromImage(SkinLayout::piece_of(backgroundImage(), rectangle)));
    list_box_->setGeometry(rectangle);
    list_box_->setFont(device_font(QStringLiteral("v28"), font_points, normal_weight));
    list_box_->setRowHeight(row_height);
    list_box_->installEventFilter(this);

    marquee_timer_.setObjectName(QStringLiteral("marquee"));
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
    list_box_->setBackgroundPixmap(SkinLayout::piece_of(backgroundPixmap(), list_box_->geometry()));
}

void ListPanel::setAlphaOverride(unsigned char alpha)
{
    SkinBase::setAlphaOverride(alpha);
    QImage background = SkinLayout::piece_of(backgroundImage(), list_box_->geometry());
    take_alpha(background, background.copy(), alpha);
    list_box_->setBackgroundPixmap(QPixmap::fromImage(background));
}

void ListPanel::redrawImage(QImage& image, int x, int y)
{
    const QImage original = image.convertToFormat(QImage::Format_ARGB32);
    QImage composed(original.size(), QImage::Format_ARGB32);
    composed.fill(Qt::transparent);
    QPainter painter(&composed);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(-x, -y, backgroundImage());
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(0, 0, original);
    painter.end();
    take_alpha(composed, original, alphaOverride());
    image = composed;
}

bool ListPanel::is_row(const ListBoxSkinItem* item)
{
    if (!item)
        qWarning("File Error\n");
    return item != nullptr;
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
