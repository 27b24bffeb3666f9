#include "osd_control.h"

#include <array>
#include <vector>

#include <QMouseEvent>

#include "display_scale.h"
#include "text_codec.h"
#include "window_flags.h"

namespace
{

constexpr unsigned int INNER_RING = 0xFF000000;
constexpr unsigned int OUTER_RING = 0xC0000000;

const QTextCodec* device_codec()
{
    const QTextCodec* codec = QTextCodec::codecForName("CP949");
    return codec ? codec : QTextCodec::codecForName("eucKR");
}

/// Which pixels of a row spread their ring, as all-ones words beside a margin of one word at either end.
/// @return whether there is one
bool find_sources(const QImage& image, int row, unsigned int colour, quint32* sources)
{
    const int width = image.width();
    std::fill_n(sources, width + 2, 0U);
    if (row < 1 || row > image.height() - 2)
        return false;
    const auto* pixels = reinterpret_cast<const quint32*>(image.constScanLine(row));
    quint32 any = 0;
    for (int x = 1; x < width - 1; ++x) {
        const quint32 source =
            pixels[x] != OsdControl::TRANSPARENT_PIXEL && pixels[x] != colour ? ~quint32(0) : quint32(0);
        sources[x + 1] = source;
        any |= source;
    }
    return any != 0;
}

} // namespace

OsdControl::OsdControl(QWidget* parent, const char* name, unsigned int flags)
    : QWidget(parent, window_flags(flags)), codec_(device_codec())
{
    setObjectName(QString::fromLatin1(name));
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
}

OsdControl::~OsdControl() = default;

void OsdControl::setGeometry(int x, int y, int w, int h)
{
    QWidget::setGeometry(x, y, w, h);
    if (blank_background_.size() == size()) {
        update();
        return;
    }
    clear_background();
}

void OsdControl::setGeometry(const QRect& rectangle)
{
    setGeometry(rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height());
}

QString OsdControl::toUniString(const QString& text) const
{
    return codec_ ? codec_->toUnicode(text.toLatin1()) : text;
}

void OsdControl::set_text_color(const QColor& color, bool outlined)
{
    text_color_ = color;
    outlined_ = outlined;
}

void OsdControl::set_align(int flags)
{
    alignment_ = flags;
}

void OsdControl::set_bgcolor(unsigned int pixel)
{
    background_color_ = pixel;
}

void OsdControl::clear()
{
    clear_background();
}

void OsdControl::draw(const QString& text)
{
    text_ = text;
    render();
    update();
}

void OsdControl::render()
{
    fit_blank_background();
    QImage image = blank_background_.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        background_.set(QPixmap());
        return;
    }
    const qreal scale = display_scale(this);
    if (scale != 1) {
        image = image.scaled((QSizeF(size()) * scale).toSize());
        image.setDevicePixelRatio(scale);
    }
    if (outlined_)
        draw_outlined(image);
    else
        draw_shadowed(image);
    background_.set(QPixmap::fromImage(std::move(image)));
}

void OsdControl::draw_shadowed(QImage& image)
{
    painter_.begin(&image);
    painter_.setFont(font());
    painter_.setPen(Qt::black);
    painter_.drawText(QRect(QPoint(1, 1), size()), alignment_, text_);
    painter_.setPen(text_color_);
    painter_.drawText(rect(), alignment_, text_);
    painter_.end();
}

void OsdControl::draw_outlined(QImage& image)
{
    QFont whole_pixel_font = font();
    // The blue byte stands for the coverage of the whole pixel.
    whole_pixel_font.setStyleStrategy(
        QFont::StyleStrategy(whole_pixel_font.styleStrategy() | QFont::NoSubpixelAntialias));
    painter_.begin(&image);
    painter_.setFont(whole_pixel_font);
    painter_.setPen(Qt::white);
    painter_.drawText(rect(), alignment_, text_);
    painter_.end();

    std::array<quint32, 256> pixel_of_coverage;
    for (int coverage = 0; coverage < 256; ++coverage) {
        const auto scaled = [&](int channel) { return channel * coverage >> 8; };
        pixel_of_coverage[static_cast<std::size_t>(coverage)] =
            coverage < COVERAGE_LIMIT
                ? TRANSPARENT_PIXEL
                : qRgb(scaled(text_color_.red()), scaled(text_color_.green()), scaled(text_color_.blue()));
    }
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto* pixels = reinterpret_cast<quint32*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            pixels[x] = pixel_of_coverage[pixels[x] & 0xFF];
    }

    // All the pixels from here on are opaque or black, or as good as black where the further passes of a wide ring
    // count in the blue: with and without premultiplied alpha they are the same words, or look the same.
    image.reinterpretAsFormat(QImage::Format_ARGB32);
    const int ring_width = std::max(1, qRound(image.devicePixelRatio()));
    add_ring(image, INNER_RING, ring_width);
    add_ring(image, OUTER_RING, ring_width);
    image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
}

void OsdControl::add_ring(QImage& image, unsigned int colour, int width)
{
    // Pixels of the pass's own colour give no ring: each further pass has a blue that nobody can tell from the last
    // one.
    for (int pass = 0; pass < width; ++pass)
        draw_outline(image, colour + static_cast<unsigned int>(pass));
}

void OsdControl::draw_outline(QImage& image, unsigned int colour)
{
    const int width = image.width();
    const int height = image.height();
    if (width < 3 || height < 3)
        return;

    // A pixel that was transparent never spreads, whether or not it has taken the colour by now, so the order in which
    // pixels are visited does not matter: each transparent pixel looks at its four neighbours, a row at a time.
    const auto stride = static_cast<std::size_t>(width) + 2;
    std::vector<quint32> rows(3 * stride);
    quint32* above = rows.data();
    quint32* here = above + stride;
    quint32* below = here + stride;
    bool any_above = false;
    bool any_here = false;
    bool any_below = find_sources(image, 1, colour, below);
    for (int y = 0; y < height; ++y) {
        if (y > 0) {
            std::swap(above, here);
            std::swap(here, below);
            any_above = any_here;
            any_here = any_below;
            any_below = find_sources(image, y + 1, colour, below);
        }
        if (!any_above && !any_here && !any_below)
            continue;
        auto* pixels = reinterpret_cast<quint32*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const quint32 beside = above[x + 1] | below[x + 1] | here[x] | here[x + 2];
            const quint32 ringed = pixels[x] == TRANSPARENT_PIXEL ? beside : 0;
            pixels[x] = (colour & ringed) | (pixels[x] & ~ringed);
        }
    }
}

void OsdControl::mousePressEvent(QMouseEvent* event)
{
    emit click_button(event);
}

void OsdControl::paintEvent(QPaintEvent* event)
{
    if (!text_.isEmpty() && background_.pixmap().devicePixelRatio() != display_scale(this))
        render();
    background_.paint(this, event);
}

void OsdControl::clear_background()
{
    text_.clear();
    fit_blank_background();
    background_.set(blank_background_);
    update();
}

void OsdControl::fit_blank_background()
{
    if (blank_background_.size() == size())
        return;
    blank_background_ = QPixmap(size());
    blank_background_.fill(QColor::fromRgba(background_color_));
}
