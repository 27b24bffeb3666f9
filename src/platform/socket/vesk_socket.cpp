#include "vesk_socket.h"

#include "peer_identity.h"
#include "vesk_peer.h"

#include <QNetworkProxy>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>

namespace
{

// The one text that wants an answer.
constexpr char question[] = "STOP";

constexpr std::chrono::milliseconds deaf_time{500};

} // namespace

VeskSocket::VeskSocket(quint16 port, QObject* parent)
    : QObject(parent)
    , peer_check_([](const QTcpSocket& peer) { return PeerIdentity().is_same_user(peer.peerPort(), peer.localPort()); })
{
    server_.setProxy(QNetworkProxy::NoProxy);
    connect(&server_, &QTcpServer::newConnection, this, &VeskSocket::accept_peers);
    // Too few descriptors for one more peer pass; without this the port would stay deaf.
    connect(&server_, &QTcpServer::acceptError, this,
            [this] { QTimer::singleShot(deaf_time, &server_, &QTcpServer::resumeAccepting); });
    if (!server_.listen(QHostAddress::LocalHost, port))
        qWarning("socket: nobody can connect to port %d (%s)", port, qUtf8Printable(server_.errorString()));
}

VeskSocket::~VeskSocket() = default;

quint16 VeskSocket::port() const
{
    return server_.serverPort();
}

int VeskSocket::send(const QString& text)
{
    QByteArray line = text.toUtf8();
    // A text is one line.
    line.replace('\n', ' ');
    const bool wants_answer = line == question;
    line += '\n';
    int count = 0;
    for (const std::unique_ptr<VeskPeer>& peer : peers_) {
        if (!peer->send(line))
            continue;
        ++count;
        if (wants_answer)
            peer->expect_answer();
    }
    return count;
}

void VeskSocket::accept_peers()
{
    while (server_.hasPendingConnections()) {
        QTcpSocket* const connection = server_.nextPendingConnection();
        const bool full = peer_count() >= limits_.peers;
        if (full || !peer_check_(*connection)) {
            if (!turned_away_)
                qWarning("socket: a program is turned away: %s", full ? "there are too many" : "it is not this user's");
            turned_away_ = true;
            connection->abort();
            connection->deleteLater();
            continue;
        }
        turned_away_ = false;
        auto peer = std::make_unique<VeskPeer>(connection, limits_);
        VeskPeer* const raw = peer.get();
        peers_.push_back(std::move(peer));
        connect(raw, &VeskPeer::received, this, &VeskSocket::received);
        connect(raw, &VeskPeer::gone, this, [this, raw] { remove(raw); });
    }
}

void VeskSocket::remove(VeskPeer* peer)
{
    const auto place = std::find_if(peers_.begin(), peers_.end(),
                                    [&](const std::unique_ptr<VeskPeer>& other) { return other.get() == peer; });
    if (place == peers_.end())
        return;
    // It is reporting this; a receiver of its last text may be further up the stack.
    place->release()->deleteLater();
    peers_.erase(place);
}
