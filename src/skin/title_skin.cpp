#include "title_skin.h"

#include <QFile>
#include <QPainter>

#include "device_font.h"
#include "display_scale.h"

namespace
{

constexpr Qt::Alignment TEXT_ALIGNMENT = Qt::AlignLeft | Qt::AlignVCenter;
constexpr unsigned char INITIAL_ALPHA = 128;
/// Pixels beyond both texts after which the name starts over, and between the name and its second copy.
constexpr int WRAP_MARGIN = 33;
constexpr int COPY_MARGIN = 30;

QString device_dictionary_program()
{
    return QStringLiteral("/opt/Qtopia/bin/glossa");
}

QString& dictionary_program_path()
{
    static QString path = device_dictionary_program();
    return path;
}

/// @p value / 255, rounded, for products of two bytes.
constexpr int divided_by_255(int value)
{
    return ((value + 128) + ((value + 128) >> 8)) >> 8;
}

} // namespace

TitleSkin::TitleSkin(QWidget* parent, const char* name, unsigned int flags)
    : SkinBase(parent, name, flags), label_(tr("VIDEO"))
{
    do_configloading(QStringLiteral("VIDEO_TITLE"));
    showFocus(QStringLiteral("close"));
    setFont(device_font(QStringLiteral("v28"), 12, 50));
    if (TitleSkin::hasDicSupport())
        disableButton(QStringLiteral("dic"));
    else
        hideButton(QStringLiteral("dic"));
    connect(&scroll_timer_, SIGNAL(timeout()), this, SLOT(update_scroll_text()));
    storeAlphaOverride(INITIAL_ALPHA);
    setFocusPolicy(Qt::NoFocus);
    label_width_ = fontMetrics().horizontalAdvance(label_) + NAME_GAP;
}

bool TitleSkin::hasDicSupport() const
{
    return QFile::exists(dictionary_program());
}

QString TitleSkin::dictionary_program()
{
    return dictionary_program_path();
}

void TitleSkin::set_dictionary_program(const QString& path)
{
    dictionary_program_path() = path.isEmpty() ? device_dictionary_program() : path;
}

void TitleSkin::set_filename(const QString& name)
{
    scroll_timer_.stop();
    scroll_offset_ = 0;
    file_name_ = name;
    if (name_scrolls())
        scroll_timer_.start(SCROLL_INTERVAL_MS);
    refresh();
}

void TitleSkin::setVisible(bool visible)
{
    if (!visible)
        scroll_timer_.stop();
    else if (name_scrolls())
        scroll_timer_.start(SCROLL_INTERVAL_MS);
    SkinBase::setVisible(visible);
}

bool TitleSkin::name_scrolls() const
{
    return label_width_ + fontMetrics().horizontalAdvance(file_name_) + NAME_GAP >= SCROLL_LIMIT;
}

void TitleSkin::update_scroll_text()
{
    refresh();
    scroll_offset_ += SCROLL_STEP;
}

void TitleSkin::setAlphaOverride(unsigned char alpha)
{
    storeAlphaOverride(alpha);
    redrawButtonImages();
    refresh();
}

void TitleSkin::refresh()
{
    const QSize strip_size = backgroundPixmap().deviceIndependentSize().toSize();
    if (strip_size.isEmpty())
        return;
    strip_scale_ = display_scale(this);
    QPixmap strip = scaled_pixmap(strip_size, QColor(0, 0, 0, alphaOverride() / 2));
    QPainter painter(&strip);
    painter.setFont(font());
    draw_label(painter);
    if (scroll_timer_.isActive()) {
        draw_scrolling_name(painter);
    } else {
        painter.setPen(name_color_);
        painter.drawText(QRect(QPoint(label_width_ + NAME_GAP, 0), size()), TEXT_ALIGNMENT, file_name_);
    }
    painter.end();
    setBackgroundPixmap(strip);
}

void TitleSkin::draw_label(QPainter& painter)
{
    painter.setPen(label_color_);
    painter.drawText(QRect(QPoint(NAME_GAP, 0), size()), TEXT_ALIGNMENT, label_);
}

void TitleSkin::draw_scrolling_name(QPainter& painter)
{
    painter.save();
    painter.setPen(name_color_);
    const QFontMetrics metrics = painter.fontMetrics();
    const int name_width = metrics.horizontalAdvance(file_name_);
    if (scroll_offset_ > name_width + label_width_ + WRAP_MARGIN)
        scroll_offset_ = 0;
    const int left = label_width_ + NAME_GAP;
    painter.setClipRect(left, 0, width() - left, height());
    const int above_baseline = metrics.ascent() + metrics.leading() / 2;
    const int baseline = above_baseline + above_baseline / 2;
    const int first = left - scroll_offset_;
    painter.drawText(first, baseline, file_name_);
    painter.drawText(first + name_width + label_width_ + COPY_MARGIN, baseline, file_name_);
    painter.restore();
}

QPixmap TitleSkin::scaled_pixmap(const QSize& size, const QColor& fill) const
{
    const qreal scale = display_scale(this);
    QPixmap pixmap((QSizeF(size) * scale).toSize());
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(fill);
    return pixmap;
}

void TitleSkin::setBackgroundPixmap(const QPixmap& pixmap)
{
    if (size().isEmpty()) {
        SkinBase::setBackgroundPixmap(QPixmap());
        return;
    }
    QPixmap labelled = scaled_pixmap(size(), Qt::transparent);
    QPainter painter(&labelled);
    painter.drawPixmap(pixmap.deviceIndependentSize().toSize() == size() ? QPoint() : -pos(), pixmap);
    painter.setFont(font());
    draw_label(painter);
    painter.end();
    SkinBase::setBackgroundPixmap(labelled);
}

void TitleSkin::drawTitle(QPainter*)
{
    // The display has changed its scale since. A strip is not exchanged while it is painted.
    if (strip_scale_ != 0 && strip_scale_ != display_scale(this))
        QMetaObject::invokeMethod(this, &TitleSkin::refresh, Qt::QueuedConnection);
}

void TitleSkin::redrawImage(QImage& image, int x, int y)
{
    const QImage& background = backgroundImage();
    const int alpha_override = alphaOverride();
    for (int row = 0; row < image.height(); ++row) {
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < image.width(); ++column) {
            const QRgb over = pixels[column];
            const QPoint place(x + column, y + row);
            const QRgb under = background.valid(place) ? background.pixel(place) : 0;
            const int over_alpha = qAlpha(over);
            const int under_alpha = divided_by_255((255 - over_alpha) * qAlpha(under));
            const int alpha = over_alpha + under_alpha;
            const auto blended = [&](int over_channel, int under_channel) {
                return alpha == 0 ? 0 : (over_channel * over_alpha + under_channel * under_alpha + alpha / 2) / alpha;
            };
            pixels[column] = qRgba(blended(qRed(over), qRed(under)), blended(qGreen(over), qGreen(under)),
                                   blended(qBlue(over), qBlue(under)), divided_by_255(alpha * alpha_override));
        }
    }
}
