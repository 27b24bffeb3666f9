#include "setting_pictures.h"

#include "resource.h"

QPixmap setting_pictures::skin(const QString& name)
{
    return Resource::loadPixmap(QStringLiteral("tavel_video/") + name);
}
