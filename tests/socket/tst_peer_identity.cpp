#include "client.h"
#include "peer_identity.h"
#include "test_main.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <sys/wait.h>

/// Whose program is at the other end.
class TestPeerIdentity : public QObject
{
    Q_OBJECT

private slots:
    void our_own_program_is_let_in()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const Client client(server.serverPort());
        QVERIFY(client.is_connected());
        QVERIFY(PeerIdentity().is_same_user(client.port(), server.serverPort()));
        // The connection's two ends are two entries; only the peer's own counts.
        QVERIFY(!PeerIdentity().is_same_user(server.serverPort(), client.port() == 1 ? 2 : 1));
    }

    void a_program_of_another_user_is_not()
    {
        if (::geteuid() != 0)
            QSKIP("only the system administrator can be another user");
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        int to_parent[2];
        int to_child[2];
        QCOMPARE(::pipe(to_parent), 0);
        QCOMPARE(::pipe(to_child), 0);
        const quint16 server_port = server.serverPort();
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(to_child[1]);
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(1);
            const Client client(server_port);
            const quint16 port = client.is_connected() ? client.port() : quint16(0);
            char byte = 0;
            [[maybe_unused]] const ssize_t told = ::write(to_parent[1], &port, sizeof port);
            [[maybe_unused]] const ssize_t asked = ::read(to_child[0], &byte, 1);
            ::_exit(0);
        }
        quint16 port = 0;
        QCOMPARE(::read(to_parent[0], &port, sizeof port), ssize_t{sizeof port});
        QVERIFY(port != 0);
        const bool let_in = PeerIdentity().is_same_user(port, server_port);
        for (const int end : {to_child[0], to_child[1], to_parent[0], to_parent[1]})
            ::close(end);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(!let_in);
    }

    void the_kernels_lists_are_read_data()
    {
        QTest::addColumn<QByteArray>("tcp");
        QTest::addColumn<QByteArray>("tcp6");
        QTest::addColumn<bool>("same");
        const QByteArray own = QByteArray::number(::geteuid());
        const QByteArray other = QByteArray::number(::geteuid() + 1);
        const auto row = [](const QByteArray& local, const QByteArray& remote, const QByteArray& user,
                            const QByteArray& inode) {
            return "   1: " + local + " " + remote + " 01 00000000:00000000 00:00000000 00000000  " + user +
                   "        0 " + inode + " 1 0000000000000000 20 4 30 10 -1\n";
        };
        const QByteArray header =
            "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n";
        // 5000 is 0x1388, 11883 is 0x2E6B.
        const QByteArray peer = "0100007F:1388";
        const QByteArray player = "0100007F:2E6B";
        const QByteArray wrapped_peer = "0000000000000000FFFF00000100007F:1388";
        const QByteArray wrapped_player = "0000000000000000FFFF00000100007F:2E6B";
        QTest::newRow("ours") << header + row(peer, player, own, "77") << QByteArray() << true;
        QTest::newRow("ours over IPv6") << header << header + row(wrapped_peer, wrapped_player, own, "77") << true;
        QTest::newRow("another user's") << header + row(peer, player, other, "77") << QByteArray() << false;
        QTest::newRow("another user's over IPv6")
            << header << header + row(wrapped_peer, wrapped_player, other, "77") << false;
        QTest::newRow("held by no program") << header + row(peer, player, own, "0") << QByteArray() << false;
        QTest::newRow("our own end") << header + row(player, peer, own, "77") << QByteArray() << false;
        QTest::newRow("another port") << header + row("0100007F:1389", player, own, "77") << QByteArray() << false;
        QTest::newRow("another address") << header + row("0200007F:1388", player, own, "77") << QByteArray() << false;
        QTest::newRow("garbage") << QByteArray("1: x y\n\n\xFF\n") << QByteArray("x") << false;
        QTest::newRow("no lists") << QByteArray() << QByteArray() << false;
    }

    void the_kernels_lists_are_read()
    {
        QFETCH(QByteArray, tcp);
        QFETCH(QByteArray, tcp6);
        QFETCH(bool, same);
        const QTemporaryDir directory;
        for (const auto& [name, bytes] : {std::pair("tcp", tcp), std::pair("tcp6", tcp6)}) {
            if (bytes.isEmpty())
                continue;
            QFile file(directory.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        QCOMPARE(PeerIdentity(directory.path()).is_same_user(5000, 11883), same);
    }
};

TAVEL_TEST_MAIN(TestPeerIdentity)
#include "tst_peer_identity.moc"
