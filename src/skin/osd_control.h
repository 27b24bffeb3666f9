#pragma once

#include <QFont>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include "background_pixmap.h"

class QTextCodec;

/// Text over the film: a transparent widget that renders a string once and keeps it as its background.
///
/// Repainting costs no text drawing. The text has either a drop shadow or an outline of two rings, one pixel each. On a
/// display that shows the player enlarged the text is rendered at the display's own pixels, with rings as wide there.
/// GUI thread only, but for toUniString().
class OsdControl : public QWidget
{
    Q_OBJECT

public:
    /// The pixel value that the outline renderer uses for "nothing here": black, all but fully transparent.
    static constexpr unsigned int TRANSPARENT_PIXEL = 0x01000000;
    /// Least coverage (0 to 255) of the anti-aliased text that is drawn by the outline renderer.
    static constexpr int COVERAGE_LIMIT = 64;

    /// @p flags are the device's widget flags, see window_flags().
    OsdControl(QWidget* parent, const char* name, unsigned int flags);
    ~OsdControl() override;

    /// Moves the widget; a new size also empties it and takes up the background colour.
    void setGeometry(int x, int y, int w, int h);
    void setGeometry(const QRect& rectangle);

    /// What is shown now: the blank background, or the text on a copy of it. Null before the first size. Its device
    /// pixel ratio is the display's scale when the text was rendered, 1 where the player is not enlarged.
    QPixmap background_pixmap() const { return background_.pixmap(); }

    /// Turns a string that carries code page bytes (one a character) into Unicode; any thread.
    /// A string that cannot be converted, because the platform has no such codec, comes back as it is.
    QString toUniString(const QString& text) const;

    /// @p outlined chooses the outline renderer instead of the shadow. Shown from the next draw() on.
    virtual void set_text_color(const QColor& color, bool outlined);
    /// Removes the text.
    virtual void clear();
    /// Renders @p text and shows it.
    virtual void draw(const QString& text);
    /// @p flags are Qt::AlignmentFlag and Qt::TextFlag as for QPainter::drawText; used from the next draw() on.
    virtual void set_align(int flags);
    /// @p pixel is a raw ARGB value; it takes effect at the next change of size.
    virtual void set_bgcolor(unsigned int pixel);
    /// Gives what is drawn in @p image (Format_ARGB32) a ring of @p colour, one pixel wide, in place.
    ///
    /// Each transparent pixel (TRANSPARENT_PIXEL) beside one that is neither transparent nor @p colour takes that
    /// colour. Pixels of the outermost rows and columns get no ring of their own.
    virtual void draw_outline(QImage& image, unsigned int colour);

signals:
    /// The overlay was pressed. The event is the overlay's own and lives as long as the emission.
    void click_button(QMouseEvent* event);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void clear_background();
    void fit_blank_background();
    void render();
    void draw_shadowed(QImage& image);
    void draw_outlined(QImage& image);
    void add_ring(QImage& image, unsigned int colour, int width);

    int alignment_ = Qt::AlignBottom | Qt::AlignHCenter;
    QPixmap blank_background_;
    QColor text_color_{255, 255, 0};
    bool outlined_ = false;
    unsigned int background_color_ = 0;
    const QTextCodec* codec_;
    QPainter painter_;
    QString text_; ///< what is shown; kept for a display that changes its scale
    BackgroundPixmap background_;
};
