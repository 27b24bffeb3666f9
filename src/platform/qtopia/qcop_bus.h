#pragma once

#include "qcop_channel.h"

#include <QDBusConnection>
#include <QHash>
#include <vector>

class QDBusMessage;

/// This program's side of all channels: who listens here, and the session bus behind it. GUI thread.
class QCopBus : public QObject
{
    Q_OBJECT

public:
    /// Lives as long as the application object; null without one.
    static QCopBus* instance();
    ~QCopBus() override;

    void open(QCopChannel* channel);
    void close(QCopChannel* channel);
    bool is_registered(const QCString& channel) const;
    bool is_first(const QCString& channel) const;
    bool send(const QCString& channel, const QCString& message, const QByteArray& data);
    void flush() const;

    /// The session bus, or a connection that is not connected when there is none; never starts one.
    static QDBusConnection session_bus();

    /// The object path that messages to a channel carry.
    static QString object_path(const QCString& channel);

    /// The name on the bus that stands for an open channel.
    static QString service_name(const QCString& channel);

private slots:
    void receive(const QDBusMessage& signal);

private:
    explicit QCopBus(QObject* parent);
    bool is_connected() const;
    bool is_open_here(const QCString& channel) const;
    QDBusMessage ask_bus(const char* question, const QVariantList& arguments) const;
    void listen(const QCString& channel, bool on);
    void deliver(const QCString& channel, const QCString& message, const QByteArray& data, bool from_here);

    QDBusConnection connection_;
    std::vector<QCopChannel*> channels_;
    mutable bool loss_reported_ = false;
};
