#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>

/// Stands for the desktop's screen saver on the session bus; like the real ones it forgets a program that goes.
class ScreenSaverDouble : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    static constexpr const char* service = "org.freedesktop.ScreenSaver";

    ScreenSaverDouble()
        : connection_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("screen saver")))
    {
        watcher_.setConnection(connection_);
        watcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
        connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& owner) {
            for (const uint cookie : holders_.keys(owner))
                holders_.remove(cookie);
        });
        start();
    }
    ~ScreenSaverDouble() override
    {
        stop();
        connection_.unregisterObject(QStringLiteral("/org/freedesktop/ScreenSaver"));
    }

    void start()
    {
        connection_.registerObject(QStringLiteral("/org/freedesktop/ScreenSaver"), this,
                                   QDBusConnection::ExportScriptableSlots);
        connection_.registerService(QLatin1String(service));
    }
    void stop()
    {
        connection_.unregisterService(QLatin1String(service));
        holders_.clear();
    }

    /// How many programs hold it off now, and how often it was asked in all.
    qsizetype holders() const { return holders_.size(); }
    int times_asked() const { return times_asked_; }
    QString last_application() const { return last_application_; }
    QString last_reason() const { return last_reason_; }

public slots:
    Q_SCRIPTABLE uint Inhibit(const QString& application, const QString& reason)
    {
        ++times_asked_;
        last_application_ = application;
        last_reason_ = reason;
        const uint cookie = ++last_cookie_;
        holders_.insert(cookie, message().service());
        watcher_.addWatchedService(message().service());
        return cookie;
    }
    Q_SCRIPTABLE void UnInhibit(uint cookie) { holders_.remove(cookie); }

private:
    QDBusConnection connection_;
    QDBusServiceWatcher watcher_;
    QHash<uint, QString> holders_;
    uint last_cookie_ = 6;
    int times_asked_ = 0;
    QString last_application_;
    QString last_reason_;
};
