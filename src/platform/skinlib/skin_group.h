#pragma once

#include "config.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QImage>

class QWidget;

/// One group of the layout file that dresses a widget, opened for reading. GUI thread only; keep it no longer than the
/// reading takes. Missing entries are silent.
class SkinGroup
{
public:
    SkinGroup(const QWidget* widget, const QString& group);

    /// A coordinate in pixels, @p fallback when it is missing or not a number.
    int position(const QString& key, int fallback = -1) const;
    /// A width or height in pixels, 0 when it is missing, negative or not a number.
    int size(const QString& key) const;
    /// Any number.
    int number(const QString& key, int fallback) const;
    QString text(const QString& key) const;
    /// The words of a value, separated by blanks or tabs.
    QStringList words(const QString& key) const;
    /// A picture named by the value, null when there is none that can be read.
    QImage image(const QString& key) const;
    /// A colour as "#rrggbb", "#aarrggbb" or a name.
    QColor color(const QString& key, const QColor& fallback) const;

private:
    QString m_directory;
    Config m_config;
};
