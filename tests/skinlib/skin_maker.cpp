#include "skin_maker.h"

#include "qpe_application.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QKeyEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QWidget>

SkinMaker::SkinMaker(const QString& window) : m_directory(QPEApplication::qpeDir() + QLatin1String("pics/") + window)
{
    QDir(m_directory).removeRecursively();
    QDir().mkpath(m_directory);
}

void SkinMaker::file(const QString& name, const QByteArray& bytes) const
{
    QFile target(m_directory + QLatin1Char('/') + name);
    if (!target.open(QIODevice::WriteOnly) || target.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(target.fileName()));
}

void SkinMaker::layout(const QString& text) const
{
    file(QStringLiteral("config"), text.toUtf8());
}

void SkinMaker::picture(const QString& name, const QImage& image) const
{
    if (!image.save(m_directory + QLatin1Char('/') + name, "PNG"))
        qFatal("cannot write %s", qPrintable(name));
}

void SkinMaker::picture(const QString& name, const QSize& size, const QColor& color) const
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    picture(name, image);
}

const QString& SkinMaker::panel_layout()
{
    static const QString text = [] {
        QString lines = QStringLiteral("[PANEL]\nbackground = panel.png\nbuttons = one two three four\n");
        int x = 4;
        for (const char* name : {"one", "two", "three", "four"}) {
            lines += QStringLiteral("%1_xpos = %2\n%1_ypos = 4\n").arg(QLatin1String(name)).arg(x);
            for (const char* state : {"normal", "focus", "press", "disable"})
                lines += QStringLiteral("%1_%2 = %2.png\n").arg(QLatin1String(name), QLatin1String(state));
            x += 40;
        }
        return lines;
    }();
    return text;
}

void SkinMaker::panel() const
{
    const QSize button(32, 32);
    picture(QStringLiteral("panel.png"), QSize(200, 40), QColor(0, 0, 255, 80));
    picture(QStringLiteral("normal.png"), button, QColor(0x80, 0x80, 0x80));
    picture(QStringLiteral("focus.png"), button, Qt::white);
    picture(QStringLiteral("press.png"), button, Qt::red);
    picture(QStringLiteral("disable.png"), button, Qt::black);
    layout(panel_layout());
}

void send_repeated_key(QWidget* widget, QEvent::Type type, Qt::Key key)
{
    QKeyEvent event(type, key, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(widget, &event);
}

void turn_wheel(QWidget* widget, const QPoint& position, int angle)
{
    QWheelEvent event(position, widget->mapToGlobal(position), QPoint(), QPoint(0, angle), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}
