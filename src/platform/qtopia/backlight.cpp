#include "backlight.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <algorithm>

namespace
{

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
}

// The kinds of backlight, the one to trust most first.
constexpr const char* kinds[] = {"firmware", "platform", "raw"};

QString best_device(const QDir& directory)
{
    const QStringList devices = directory.entryList(QDir::Dirs | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const char* kind : kinds) {
        for (const QString& device : devices) {
            if (content(directory.filePath(device + QStringLiteral("/type"))) == kind)
                return device;
        }
    }
    return {};
}

} // namespace

Backlight::Backlight(const QString& directory) : directory_(directory) {}

bool Backlight::set(int level) const
{
    const QDir directory(directory_);
    const QString device = best_device(directory);
    bool ok = false;
    const qint64 most = content(directory.filePath(device + QStringLiteral("/max_brightness"))).toLongLong(&ok);
    if (device.isEmpty() || !ok || most <= 0)
        return false;
    const qint64 value = (std::clamp(level, 0, brightest) * most + brightest / 2) / brightest;
    QFile file(directory.filePath(device + QStringLiteral("/brightness")));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered | QIODevice::ExistingOnly) &&
        file.write(QByteArray::number(value)) > 0)
        return true;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1/session/auto"),
        QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("SetBrightness"));
    call << QStringLiteral("backlight") << device << static_cast<uint>(value);
    QDBusConnection::systemBus().send(call);
    return true;
}
