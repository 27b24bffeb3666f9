#pragma once

#include <QByteArray>
#include <QObject>

using QCString = QByteArray;

/// One end of a named channel between programs: receives every message that any program, this one included, sends to
/// it.
///
/// Channels are carried by the session bus (docs/qcop.md describes how, for other programs). Without a bus, which is
/// said once, messages reach the listeners inside this program only. A message whose arguments do not decode by the
/// types in its name is dropped with a warning and reaches nobody. Everything here belongs to the GUI thread.
class QCopChannel : public QObject
{
    Q_OBJECT

public:
    /// When a message that this program itself sends arrives.
    enum class Delivery {
        Queued = 0, ///< from the event loop, like a message of another program
        Direct = 1  ///< before send() returns, for a listener on which the sender waits
    };
    /// Whether isRegistered() knows about this end.
    enum class Presence {
        Open = 0,  ///< somebody answers here
        Hidden = 1 ///< only listens to what others are asked
    };

    explicit QCopChannel(const QCString& channel, QObject* parent = nullptr);
    QCopChannel(const QCString& channel, Delivery delivery, Presence presence, QObject* parent = nullptr);
    ~QCopChannel() override;

    QCString channel() const { return channel_; }

    /// Whether no other program has had the channel open for longer than this one. Asks the bus and waits a second at
    /// most.
    bool is_first() const;

    /// Whether any program, this one included, has @p channel open. Asks the bus and waits a second at most.
    static bool isRegistered(const QCString& channel);

    /// Sends @p message, "name(type,...)", with its arguments in @p data. Never waits. A message without listeners is
    /// lost.
    /// @return false when it was refused: no channel, no name, larger than 16 MiB, or arguments that do not decode.
    static bool send(const QCString& channel, const QCString& message, const QByteArray& data = QByteArray());

    /// Waits until the bus has taken what was sent, a second at most. For a program that is about to end.
    static void flush();

signals:
    void received(const QCString& message, const QByteArray& data);

private:
    friend class QCopBus;
    QCString channel_;
    Delivery delivery_;
    Presence presence_;
};
