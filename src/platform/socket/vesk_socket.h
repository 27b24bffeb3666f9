#pragma once

#include <QObject>
#include <QString>
#include <QTcpServer>
#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class QTcpSocket;
class VeskPeer;

/// The local text socket: the player listens on 127.0.0.1, other programs of the same user connect; one UTF-8 text a
/// line.
///
/// A peer that sends lines without end, floods, does not read what it is sent, or closes its half of the connection is
/// dropped. One that is merely quiet never is. GUI thread; a port that is taken is said once, and the socket then has
/// no peers.
class VeskSocket : public QObject
{
    Q_OBJECT

public:
    /// What a peer may cost.
    struct Limits {
        int peers = 256;                                      ///< connections at one time; more are turned away
        qint64 line_bytes = 1024;                             ///< longest text
        int lines_a_second = 100;                             ///< a peer that sends more is flooding
        qint64 unread_bytes = 65536;                          ///< sent to a peer and not read by it
        std::chrono::milliseconds unfinished_line{60 * 1000}; ///< how long a line may stay without its end
    };

    /// @param port 0 lets the system choose one.
    explicit VeskSocket(quint16 port, QObject* parent = nullptr);
    ~VeskSocket() override;

    /// Sends @p text to every peer. @return how many it went to.
    ///
    /// After "STOP" each of these owes one "OK": its answer, or its going away. Neither is reported before send() has
    /// returned.
    int send(const QString& text);

    /// The port listened on; 0 when it was taken.
    quint16 port() const;
    int peer_count() const { return static_cast<int>(peers_.size()); }

    void set_limits(const Limits& limits) { limits_ = limits; }
    /// Replaces the question whose program a peer is, for tests: gets the peer's port and ours, returns whether to let
    /// it in.
    void set_peer_check(std::function<bool(const QTcpSocket&)> check) { peer_check_ = std::move(check); }

signals:
    /// A text of a peer. "OK" comes once a peer for each "STOP" sent; others are left out.
    void received(QString text);

private:
    friend class VeskPeer;
    void accept_peers();
    void remove(VeskPeer* peer);

    QTcpServer server_;
    Limits limits_;
    std::function<bool(const QTcpSocket&)> peer_check_;
    std::vector<std::unique_ptr<VeskPeer>> peers_;
    bool turned_away_ = false; // said, and nobody was let in since
};
