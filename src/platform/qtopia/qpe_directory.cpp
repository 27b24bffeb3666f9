#include "qpe_directory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>

namespace
{

QMutex mutex;

// The last directory that was filled; guarded by mutex.
QString& filled_directory()
{
    static QString directory;
    return directory;
}

} // namespace

QString QpeDirectory::path()
{
    const bool own = qEnvironmentVariableIsEmpty("QPEDIR");
    QString directory =
        own ? QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/tavel_video/qpe")
            : QDir::fromNativeSeparators(qEnvironmentVariable("QPEDIR"));
    if (!directory.endsWith(u'/'))
        directory += u'/';
    if (own || !qEnvironmentVariableIsEmpty("TAVEL_SKINS")) {
        const QMutexLocker lock(&mutex);
        if (filled_directory() != directory) {
            filled_directory() = directory;
            fill(directory);
        }
    }
    return directory;
}

QString QpeDirectory::installed_skins()
{
    const QString places[] = {
        qEnvironmentVariable("TAVEL_SKINS"),
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/tavel_video/skins"),
        QStringLiteral(TAVEL_BUILT_SKINS),
        QStringLiteral(TAVEL_INSTALLED_SKINS),
    };
    for (const QString& place : places) {
        if (!place.isEmpty() && QFileInfo(place).isDir())
            return QDir(place).canonicalPath();
    }
    return {};
}

void QpeDirectory::fill(const QString& directory)
{
    for (const char* name : {"etc", "bin"}) {
        if (!QDir().mkpath(directory + QLatin1String(name)))
            qWarning("%s%s: cannot be made", qUtf8Printable(directory), name);
    }
    const QString pictures = directory + QStringLiteral("pics");
    const QFileInfo info(pictures);
    // A directory of that name is the user's own; a link is ours and follows the skins to where they are installed now.
    if (info.exists() && !info.isSymLink())
        return;
    const QString skins = installed_skins();
    if (skins.isEmpty()) {
        if (!info.exists())
            qWarning("%s: there are no skins", qUtf8Printable(pictures));
        return;
    }
    if (info.isSymLink()) {
        if (info.symLinkTarget() == skins)
            return;
        QFile::remove(pictures);
    }
    if (!QFile::link(skins, pictures))
        qWarning("%s: cannot be linked to %s", qUtf8Printable(pictures), qUtf8Printable(skins));
}
