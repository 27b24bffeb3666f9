#include "resource.h"

#include "qpe_application.h"

#include <QFileInfo>
#include <QMutex>
#include <QSet>

namespace
{

// The order in which a name without suffix is looked up.
constexpr const char* suffixes[] = {"", ".png", ".jpg", ".jpeg", ".bmp", ".gif", ".xpm"};

void report_once(const QString& name, const char* fault)
{
    static QMutex mutex;
    static QSet<QString> reported;
    const QMutexLocker lock(&mutex);
    if (reported.contains(name))
        return;
    reported.insert(name);
    qWarning("picture \"%s\": %s", qUtf8Printable(name), fault);
}

} // namespace

QString Resource::findPixmap(const QString& name)
{
    if (name.isEmpty())
        return {};
    const QString base = QPEApplication::qpeDir() + QStringLiteral("pics/") + name;
    for (const char* suffix : suffixes) {
        const QString path = base + QLatin1String(suffix);
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}

QImage Resource::loadImage(const QString& name)
{
    const QString path = findPixmap(name);
    if (path.isEmpty()) {
        report_once(name, "not found");
        return {};
    }
    QImage image(path);
    if (image.isNull())
        report_once(name, "cannot be read");
    return image;
}

QPixmap Resource::loadPixmap(const QString& name)
{
    return QPixmap::fromImage(loadImage(name));
}
