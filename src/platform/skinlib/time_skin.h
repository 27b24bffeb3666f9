#pragma once

#include "skin_widget.h"

#include <QtGui/QColor>
#include <QtGui/QFont>

/// A time readout: minutes and seconds ("05:09"), from an hour on hours too ("1:05:09"). GUI thread only.
///
/// Drawn with the skin's digit pictures if the group names them, else as text.
class TimeSkin : public SkinWidget
{
    Q_OBJECT

public:
    /// The cells of the digit picture, side by side and of one width: 0 to 9 and the colon.
    static constexpr int digit_cells = 11;
    /// The characters of the longest text that a readout has room for, "9:59:59", unless the skin gives its width.
    static constexpr int widest_text = 7;

    TimeSkin(QWidget* parent, const QString& name, unsigned int flags = 0);

    /// What is shown now.
    const QString& text() const { return m_text; }
    /// The text shown for a number of seconds.
    static QString time_text(unsigned int seconds);

public slots:
    /// Shows a time, in seconds.
    void update_time(unsigned int seconds);

protected:
    void draw(QPainter* painter) override;

private:
    void read_layout();

    QString m_text;
    QImage m_digits; // digit_cells of them
    QFont m_font;
    QColor m_color;
    Qt::Alignment m_alignment;
};
