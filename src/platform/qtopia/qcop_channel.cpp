#include "qcop_channel.h"

#include "qcop_bus.h"

QCopChannel::QCopChannel(const QCString& channel, QObject* parent)
    : QCopChannel(channel, Delivery::Queued, Presence::Open, parent)
{
}

QCopChannel::QCopChannel(const QCString& channel, Delivery delivery, Presence presence, QObject* parent)
    : QObject(parent), channel_(channel), delivery_(delivery), presence_(presence)
{
    if (QCopBus* const bus = QCopBus::instance())
        bus->open(this);
}

QCopChannel::~QCopChannel()
{
    if (QCopBus* const bus = QCopBus::instance())
        bus->close(this);
}

bool QCopChannel::is_first() const
{
    const QCopBus* const bus = QCopBus::instance();
    return !bus || bus->is_first(channel_);
}

bool QCopChannel::isRegistered(const QCString& channel)
{
    const QCopBus* const bus = QCopBus::instance();
    return bus && bus->is_registered(channel);
}

bool QCopChannel::send(const QCString& channel, const QCString& message, const QByteArray& data)
{
    QCopBus* const bus = QCopBus::instance();
    return bus && bus->send(channel, message, data);
}

void QCopChannel::flush()
{
    if (const QCopBus* const bus = QCopBus::instance())
        bus->flush();
}
