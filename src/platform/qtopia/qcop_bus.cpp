#include "qcop_bus.h"

#include "qcop_message.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDBusMessage>
#include <QFileInfo>
#include <QPointer>
#include <algorithm>

namespace
{

constexpr char interface[] = "tavel.QCop";
constexpr char member[] = "message";
constexpr char bus_service[] = "org.freedesktop.DBus";
constexpr char bus_path[] = "/org/freedesktop/DBus";

// Questions to the bus itself; it answers at once or is in trouble.
constexpr int answer_limit_ms = 1000;

// The longest escaped channel that fits into a bus name, which may have 255 bytes.
constexpr qsizetype longest_escaped_channel = 230;

QPointer<QCopBus> current;

// The channel's name in the characters that the bus allows in names and paths.
QString element_name(const QCString& channel)
{
    QByteArray escaped;
    for (const char byte : channel) {
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
        if (plain)
            escaped += byte;
        else
            escaped += '_' + QByteArray(1, byte).toHex();
    }
    if (escaped.size() > longest_escaped_channel)
        escaped = "_long_" + QCryptographicHash::hash(channel, QCryptographicHash::Sha1).toHex();
    return QStringLiteral("channel_") + QString::fromLatin1(escaped);
}

} // namespace

QCopBus* QCopBus::instance()
{
    if (!current && QCoreApplication::instance())
        current = new QCopBus(QCoreApplication::instance());
    return current;
}

QCopBus::QCopBus(QObject* parent) : QObject(parent), connection_(session_bus()) {}

QCopBus::~QCopBus() = default;

QDBusConnection QCopBus::session_bus()
{
    // Asking for a bus that is not there would make the D-Bus library start one of its own on an X display.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const bool exists = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
                        (!runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/bus")));
    return exists ? QDBusConnection::sessionBus() : QDBusConnection(QStringLiteral("tavel_no_bus"));
}

QString QCopBus::service_name(const QCString& channel)
{
    return QStringLiteral("tavel.QCop.") + element_name(channel);
}

QString QCopBus::object_path(const QCString& channel)
{
    return QStringLiteral("/tavel/QCop/") + element_name(channel);
}

void QCopBus::open(QCopChannel* channel)
{
    const bool listened = std::any_of(channels_.begin(), channels_.end(),
                                      [&](const QCopChannel* other) { return other->channel_ == channel->channel_; });
    const bool was_open = is_open_here(channel->channel_);
    channels_.push_back(channel);
    if (!is_connected())
        return;
    // The bus keeps the order of what we ask: whoever finds the name finds us listening.
    if (!listened)
        listen(channel->channel_, true);
    if (!was_open && channel->presence_ == QCopChannel::Presence::Open) {
        const QDBusMessage answer = ask_bus("RequestName", {service_name(channel->channel_), 0U});
        if (answer.type() != QDBusMessage::ReplyMessage)
            qWarning("QCop: other programs cannot see \"%s\" (%s)", channel->channel_.constData(),
                     qUtf8Printable(answer.errorMessage()));
    }
}

void QCopBus::close(QCopChannel* channel)
{
    const QCString name = channel->channel_;
    const bool was_open = is_open_here(name);
    channels_.erase(std::remove(channels_.begin(), channels_.end(), channel), channels_.end());
    if (!connection_.isConnected())
        return;
    if (was_open && !is_open_here(name))
        ask_bus("ReleaseName", {service_name(name)});
    const bool listened = std::any_of(channels_.begin(), channels_.end(),
                                      [&](const QCopChannel* other) { return other->channel_ == name; });
    if (!listened)
        listen(name, false);
}

bool QCopBus::is_registered(const QCString& channel) const
{
    if (is_open_here(channel))
        return true;
    if (!is_connected())
        return false;
    const QDBusMessage answer = ask_bus("NameHasOwner", {service_name(channel)});
    return answer.type() == QDBusMessage::ReplyMessage && answer.arguments().value(0).toBool();
}

bool QCopBus::is_first(const QCString& channel) const
{
    if (!is_connected())
        return true;
    const QDBusMessage answer = ask_bus("GetNameOwner", {service_name(channel)});
    return answer.type() != QDBusMessage::ReplyMessage ||
           answer.arguments().value(0).toString() == connection_.baseService();
}

bool QCopBus::send(const QCString& channel, const QCString& message, const QByteArray& data)
{
    const char* fault = QCopMessage::fault(message, data);
    if (channel.isEmpty() || channel.size() > QCopMessage::longest_name)
        fault = "the channel has no usable name";
    if (fault) {
        qWarning("QCop: \"%s\" to \"%s\" is not sent: %s", message.left(80).constData(), channel.left(80).constData(),
                 fault);
        return false;
    }
    if (is_connected()) {
        QDBusMessage signal =
            QDBusMessage::createSignal(object_path(channel), QLatin1String(interface), QLatin1String(member));
        signal << QString::fromUtf8(channel) << QString::fromUtf8(message) << data;
        connection_.send(signal);
    }
    deliver(channel, message, data, true);
    return true;
}

void QCopBus::flush() const
{
    // The bus works off what one program sends in its order.
    if (connection_.isConnected())
        ask_bus("GetId", {});
}

void QCopBus::receive(const QDBusMessage& signal)
{
    // Our own messages have been delivered without the bus.
    if (signal.service() == connection_.baseService())
        return;
    const QVariantList arguments = signal.arguments();
    if (signal.signature() != QLatin1String("ssay")) {
        qWarning("QCop: a message of %s is dropped: its form is \"%s\"", qUtf8Printable(signal.service()),
                 qUtf8Printable(signal.signature()));
        return;
    }
    const QByteArray channel = arguments[0].toString().toUtf8();
    const QByteArray message = arguments[1].toString().toUtf8();
    const QByteArray data = arguments[2].toByteArray();
    const char* fault = QCopMessage::fault(message, data);
    if (signal.path() != object_path(channel))
        fault = "its path is another channel's";
    if (fault) {
        qWarning("QCop: \"%s\" of %s to \"%s\" is dropped: %s", message.left(80).constData(),
                 qUtf8Printable(signal.service()), channel.constData(), fault);
        return;
    }
    deliver(channel, message, data, false);
}

bool QCopBus::is_connected() const
{
    if (connection_.isConnected())
        return true;
    if (!loss_reported_)
        qWarning("QCop: there is no session bus, messages stay inside this program");
    loss_reported_ = true;
    return false;
}

bool QCopBus::is_open_here(const QCString& channel) const
{
    return std::any_of(channels_.begin(), channels_.end(), [&](const QCopChannel* other) {
        return other->channel_ == channel && other->presence_ == QCopChannel::Presence::Open;
    });
}

QDBusMessage QCopBus::ask_bus(const char* question, const QVariantList& arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(bus_service), QLatin1String(bus_path),
                                                       QLatin1String(bus_service), QLatin1String(question));
    call.setArguments(arguments);
    return connection_.call(call, QDBus::Block, answer_limit_ms);
}

void QCopBus::listen(const QCString& channel, bool on)
{
    const QString path = object_path(channel);
    if (on)
        connection_.connect(QString(), path, QLatin1String(interface), QLatin1String(member), this,
                            SLOT(receive(QDBusMessage)));
    else
        connection_.disconnect(QString(), path, QLatin1String(interface), QLatin1String(member), this,
                               SLOT(receive(QDBusMessage)));
}

void QCopBus::deliver(const QCString& channel, const QCString& message, const QByteArray& data, bool from_here)
{
    // A receiver may open or close channels.
    std::vector<QPointer<QCopChannel>> receivers;
    for (QCopChannel* receiver : channels_) {
        if (receiver->channel_ == channel)
            receivers.emplace_back(receiver);
    }
    for (const QPointer<QCopChannel>& receiver : receivers) {
        if (!receiver)
            continue;
        if (from_here && receiver->delivery_ == QCopChannel::Delivery::Direct)
            emit receiver->received(message, data);
        else
            QMetaObject::invokeMethod(
                receiver, [=] { emit receiver->received(message, data); }, Qt::QueuedConnection);
    }
}
