#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QImage>

/// Writes a small skin into the Qtopia directory of the test process. Made anew, the directory starts empty.
class SkinMaker
{
public:
    /// @param window object name of the window that the skin dresses
    explicit SkinMaker(const QString& window = QStringLiteral("skin_test"));

    QString directory() const { return m_directory; }

    /// Writes the layout file, in the place of an earlier one.
    void layout(const QString& text) const;
    /// Writes a PNG picture of one colour.
    void picture(const QString& name, const QSize& size, const QColor& color) const;
    void picture(const QString& name, const QImage& image) const;
    /// Writes any file.
    void file(const QString& name, const QByteArray& bytes) const;

    /// A panel "PANEL" of 200 by 40, half opaque blue (80), with the buttons one to four of 32 by 32, each with a grey
    /// picture at rest (0xff808080), a white one with the focus, a red pressed one and a black disabled one.
    void panel() const;
    static const QString& panel_layout();

private:
    QString m_directory;
};

/// Sends a press, or a release, that the keyboard repeats.
void send_repeated_key(QWidget* widget, QEvent::Type type, Qt::Key key);

/// Turns the wheel over a point of a widget, by eighths of a degree; up is positive.
void turn_wheel(QWidget* widget, const QPoint& position, int angle);
