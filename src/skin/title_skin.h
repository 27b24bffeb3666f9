#pragma once

#include <QColor>
#include <QTimer>

#include "skin_base.h"

/// The strip at the top: a label and the film's name, which scrolls when the two do not fit. GUI thread only.
class TitleSkin : public SkinBase
{
    Q_OBJECT

public:
    /// A name scrolls when the label's width, the name's width and NAME_GAP make this many pixels or more. The limit
    /// does not follow the panel's width.
    static constexpr int SCROLL_LIMIT = 431;
    static constexpr int SCROLL_INTERVAL_MS = 300;
    static constexpr int SCROLL_STEP = 3;
    /// Pixels before the label, and between label and name.
    static constexpr int NAME_GAP = 10;

    TitleSkin(QWidget* parent, const char* name, unsigned int flags);

    /// Draws @p pixmap with the label on top and makes it the background. A pixmap of the panel's size is the panel's
    /// own; of a larger one (the window's) the panel takes the piece at its own place.
    void setBackgroundPixmap(const QPixmap& pixmap) override;
    void setAlphaOverride(unsigned char alpha) override;
    /// Blends a button picture with the skin's background at its place, then applies the panel's alpha.
    void redrawImage(QImage& image, int x, int y) override;
    void drawTitle(QPainter* painter) override;
    /// Whether the dictionary program is installed; looked up at each call.
    virtual bool hasDicSupport() const;

    /// Shows another name, from its beginning.
    void set_filename(const QString& name);
    /// Draws the strip anew, at the display's own pixels.
    void refresh();
    /// Scrolling goes on where it was when the strip is shown again.
    void setVisible(bool visible) override;

    /// How far the name has moved left, in pixels.
    int scroll_offset() const { return scroll_offset_; }
    bool is_scrolling() const { return scroll_timer_.isActive(); }
    int label_width() const { return label_width_; }

    /// The program that hasDicSupport() looks for.
    static QString dictionary_program();
    /// Tests look for the dictionary program elsewhere; an empty path restores the device's.
    static void set_dictionary_program(const QString& path);

private slots:
    void update_scroll_text();

private:
    QPixmap scaled_pixmap(const QSize& size, const QColor& fill) const;
    bool name_scrolls() const;
    void draw_label(QPainter& painter);
    void draw_scrolling_name(QPainter& painter);

    QString label_;
    QString file_name_;
    QColor label_color_{255, 249, 178};
    QColor name_color_{255, 255, 255};
    int label_width_ = 0;
    QTimer scroll_timer_{this};
    int scroll_offset_ = 0;
    qreal strip_scale_ = 0; ///< the display's scale that the strip was drawn for; 0 before the first strip
};
