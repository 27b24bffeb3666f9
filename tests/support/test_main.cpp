#include "test_main.h"

namespace
{

QTemporaryDir& home()
{
    static QTemporaryDir directory;
    return directory;
}

} // namespace

namespace test_support
{

void prepare_process()
{
    const QByteArray root = home().path().toLocal8Bit();
    const auto set = [&](const char* name, const char* below) {
        QDir().mkpath(home().path() + QLatin1String(below));
        qputenv(name, root + below);
    };
    set("HOME", "/home");
    set("XDG_CONFIG_HOME", "/config");
    set("XDG_DATA_HOME", "/data");
    set("XDG_CACHE_HOME", "/cache");
    set("QPEDIR", "/qpe/");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

void reset_directories()
{
    for (const char* name : {"XDG_CONFIG_HOME", "QPEDIR"}) {
        const QString path = QString::fromLocal8Bit(qgetenv(name));
        QDir(path).removeRecursively();
        QDir().mkpath(path);
    }
}

} // namespace test_support
