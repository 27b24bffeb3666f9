#include "skin_group.h"

#include "skin_layout.h"

#include <QtCore/QRegularExpression>

SkinGroup::SkinGroup(const QWidget* widget, const QString& group)
    : m_directory(SkinLayout::directory(widget)), m_config(SkinLayout::file(widget), Config::File)
{
    m_config.setGroup(group);
}

int SkinGroup::position(const QString& key, int fallback) const
{
    return SkinLayout::bounded_position(number(key, fallback));
}

int SkinGroup::size(const QString& key) const
{
    return SkinLayout::bounded_size(number(key, 0));
}

int SkinGroup::number(const QString& key, int fallback) const
{
    return m_config.readNumEntry(key, fallback);
}

QString SkinGroup::text(const QString& key) const
{
    return m_config.readEntry(key);
}

QStringList SkinGroup::words(const QString& key) const
{
    return text(key).simplified().split(u' ', Qt::SkipEmptyParts);
}

QImage SkinGroup::image(const QString& key) const
{
    return SkinLayout::load_image(m_directory, text(key));
}

QColor SkinGroup::color(const QString& key, const QColor& fallback) const
{
    const QColor color(text(key));
    return color.isValid() ? color : fallback;
}
