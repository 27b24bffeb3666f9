#include "peer_identity.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <unistd.h>

namespace
{

// 127.0.0.1 as the kernel writes it, plain and inside IPv6: the bytes of the address as numbers of this machine.
constexpr quint32 loopback_bytes = 0x7F000001;

QByteArray end_point(bool wrapped, quint16 port)
{
    const quint32 address = qToBigEndian(loopback_bytes);
    const QByteArray plain = QByteArray::number(address, 16).rightJustified(8, '0').toUpper();
    const QByteArray mark = QByteArray::number(qToBigEndian(quint32{0xFFFF}), 16).rightJustified(8, '0').toUpper();
    return (wrapped ? QByteArray(16, '0') + mark + plain : plain) + ':' +
           QByteArray::number(port, 16).rightJustified(4, '0').toUpper();
}

} // namespace

PeerIdentity::PeerIdentity(const QString& directory) : directory_(directory) {}

bool PeerIdentity::is_same_user(quint16 peer_port, quint16 own_port) const
{
    for (const bool wrapped : {false, true}) {
        QFile list(directory_ + (wrapped ? QStringLiteral("/tcp6") : QStringLiteral("/tcp")));
        if (!list.open(QIODevice::ReadOnly))
            continue;
        const QByteArray local = end_point(wrapped, peer_port);
        const QByteArray remote = end_point(wrapped, own_port);
        // The columns: number, local end, remote end, state, queues, timer, retransmits, user.
        for (const QByteArray& line : list.readAll().split('\n')) {
            const QList<QByteArray> columns = line.simplified().split(' ');
            if (columns.size() < 10 || columns[1] != local || columns[2] != remote)
                continue;
            bool ok = false;
            const uint user = columns[7].toUInt(&ok);
            // A connection that no program holds any more (it has no inode) is listed as the system administrator's.
            return ok && user == geteuid() && columns[9] != "0";
        }
    }
    return false;
}
