#include "screen_saver_hold.h"

#include "qcop_bus.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace
{

constexpr char service[] = "org.freedesktop.ScreenSaver";
constexpr char path[] = "/org/freedesktop/ScreenSaver";

QDBusMessage call_of(const char* operation)
{
    return QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path), QLatin1String(service),
                                          QLatin1String(operation));
}

} // namespace

ScreenSaverHold::ScreenSaverHold(QObject* parent) : QObject(parent), connection_(QCopBus::session_bus())
{
    if (!connection_.isConnected())
        return;
    // A screen saver that is started anew knows nothing of what the old one was asked.
    watcher_.setConnection(connection_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& new_owner) { owner_changed(new_owner); });
    watcher_.addWatchedService(QLatin1String(service));
}

ScreenSaverHold::~ScreenSaverHold()
{
    release();
    if (grant_ != Grant::Asked)
        return;
    // The answer is still to come; what it grants has to be given back by somebody.
    pending_->disconnect(this);
    pending_->setParent(QCoreApplication::instance());
    connect(pending_, &QDBusPendingCallWatcher::finished, pending_,
            [connection = connection_](QDBusPendingCallWatcher* late) {
                const QDBusPendingReply<uint> reply = *late;
                if (!reply.isError())
                    give_back(connection, reply.value());
                late->deleteLater();
            });
}

void ScreenSaverHold::hold()
{
    wanted_ = true;
    if (grant_ == Grant::None)
        ask();
}

void ScreenSaverHold::release()
{
    wanted_ = false;
    if (grant_ == Grant::Given) {
        grant_ = Grant::None;
        give_back(connection_, cookie_);
    }
}

void ScreenSaverHold::owner_changed(const QString& new_owner)
{
    if (grant_ == Grant::Asked) {
        // Who answers is not known yet, the old one or already the new one.
        new_owner_ = new_owner;
        return;
    }
    if (grant_ == Grant::Given && new_owner == giver_)
        return;
    grant_ = Grant::None;
    if (wanted_ && !new_owner.isEmpty())
        ask();
}

void ScreenSaverHold::ask()
{
    if (!connection_.isConnected())
        return;
    grant_ = Grant::Asked;
    refused_ = false;
    QDBusMessage call = call_of("Inhibit");
    call << QStringLiteral("tavel_video") << tr("Playing a video");
    pending_ = new QDBusPendingCallWatcher(connection_.asyncCall(call), this);
    connect(pending_, &QDBusPendingCallWatcher::finished, this, &ScreenSaverHold::answered);
}

void ScreenSaverHold::answered(QDBusPendingCallWatcher* watcher)
{
    watcher->deleteLater();
    const QDBusPendingReply<uint> reply = *watcher;
    const QString new_owner = std::exchange(new_owner_, QString());
    if (reply.isError()) {
        grant_ = Grant::None;
        refused_ = true;
        if (!refusal_reported_)
            qInfo("the screen saver cannot be held off: %s", qUtf8Printable(reply.error().message()));
        refusal_reported_ = true;
    } else {
        grant_ = Grant::Given;
        cookie_ = reply.value();
        giver_ = reply.reply().service();
        if (!wanted_)
            release();
    }
    if (!new_owner.isEmpty())
        owner_changed(new_owner);
}

void ScreenSaverHold::give_back(QDBusConnection connection, uint cookie)
{
    QDBusMessage call = call_of("UnInhibit");
    call << cookie;
    connection.send(call);
}
