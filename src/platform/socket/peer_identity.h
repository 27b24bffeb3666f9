#pragma once

#include <QString>
#include <QtGlobal>

/// Whose program stands at the other end of a connection inside this machine.
class PeerIdentity
{
public:
    /// @param directory holds the kernel's lists of connections; tests bring their own.
    explicit PeerIdentity(const QString& directory = QStringLiteral("/proc/net"));

    /// Whether the program that connected from @p peer_port to our @p own_port, both on 127.0.0.1, runs for the user
    /// who runs this one. False also when it cannot be found, for one that has closed its end already.
    bool is_same_user(quint16 peer_port, quint16 own_port) const;

private:
    QString directory_;
};
