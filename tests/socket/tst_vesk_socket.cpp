#include "client.h"
#include "test_main.h"
#include "vesk_socket.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <csignal>
#include <sys/wait.h>

/// The local text socket, with programs that behave and programs that do not.
class TestVeskSocket : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<VeskSocket> socket_;
    QStringList texts_;

    std::vector<std::unique_ptr<Client>> connect_clients(int count)
    {
        std::vector<std::unique_ptr<Client>> clients;
        const int before = socket_->peer_count();
        for (int i = 0; i < count; ++i) {
            clients.push_back(std::make_unique<Client>(socket_->port()));
            if (!clients.back()->is_connected())
                qFatal("a test client cannot connect");
            // The system's queue of connections is short.
            QCoreApplication::processEvents();
        }
        if (!QTest::qWaitFor([&] { return socket_->peer_count() == before + count; }, test_support::stretched(5000)))
            qFatal("the test clients are not let in");
        return clients;
    }

    std::unique_ptr<Client> connect_client() { return std::move(connect_clients(1).front()); }

private slots:
    void init()
    {
        socket_ = std::make_unique<VeskSocket>(quint16(0));
        QVERIFY(socket_->port() != 0);
        texts_.clear();
        connect(socket_.get(), &VeskSocket::received, this, [this](const QString& text) { texts_.append(text); });
    }
    void cleanup() { socket_.reset(); }

    void texts_go_both_ways();
    void only_this_machine_can_connect();
    void a_text_is_one_line_of_utf8();
    void lines_may_come_in_pieces_or_together();
    void send_tells_how_many_it_went_to();
    void a_hundred_programs_at_once_are_served();
    void one_ok_a_peer_and_stop_is_passed_on();
    void stop_is_the_only_text_that_wants_an_answer();
    void a_program_that_dies_between_stop_and_ok_counts_as_ok_data();
    void a_program_that_dies_between_stop_and_ok_counts_as_ok();
    void what_a_program_said_before_it_went_is_heard_first();
    void no_answer_is_reported_before_send_returns();
    void a_killed_program_cannot_keep_a_film_from_starting();
    void a_text_is_handled_with_all_it_posts_before_the_next_is_read();
    void texts_arrive_while_a_receiver_runs_a_dialog();
    void a_quiet_program_is_never_dropped();
    void a_slow_program_is_heard();
    void a_line_that_is_too_long_ends_the_connection();
    void the_longest_line_is_still_heard();
    void a_line_that_never_ends_ends_the_connection();
    void a_flood_ends_the_connection_and_costs_little();
    void a_program_that_does_not_read_is_dropped();
    void a_half_open_connection_is_dropped_after_it_was_heard();
    void more_programs_than_allowed_are_turned_away();
    void a_program_of_another_user_is_turned_away();
    void a_port_that_is_taken_is_said_once_and_the_player_goes_on();
    void destroying_it_reports_nothing();
};

void TestVeskSocket::texts_go_both_ways()
{
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("HIDE")), 1);
    QTRY_COMPARE(client->read(), QByteArray("HIDE\n"));
    client->write("PAUSE\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("PAUSE")});
}

void TestVeskSocket::only_this_machine_can_connect()
{
    // Another address of this machine stands for the rest of the network: the port must not be open there.
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(socket_->port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
    const int result = ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    ::close(probe);
    QCOMPARE(result, -1);
}

void TestVeskSocket::a_text_is_one_line_of_utf8()
{
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("길\n안내")), 1);
    QTRY_COMPARE(client->read(), QByteArray("길 안내\n"));
    QTest::ignoreMessage(QtWarningMsg, "socket: a text that is not UTF-8 is left out");
    client->write("길 안내\n\n\r\nRESUME\r\n\xFF\xFE\nSTOP\n");
    const QStringList expected{QStringLiteral("길 안내"), QStringLiteral("RESUME"), QStringLiteral("STOP")};
    QTRY_COMPARE(texts_, expected);
}

void TestVeskSocket::lines_may_come_in_pieces_or_together()
{
    const auto client = connect_client();
    client->write("PAU");
    QCoreApplication::processEvents();
    client->write("SE\nRESUME\nST");
    const QStringList two{QStringLiteral("PAUSE"), QStringLiteral("RESUME")};
    QTRY_COMPARE(texts_, two);
    client->write("OP\n");
    QTRY_COMPARE(texts_.size(), 3);
    QCOMPARE(texts_.last(), QStringLiteral("STOP"));
}

void TestVeskSocket::send_tells_how_many_it_went_to()
{
    QCOMPARE(socket_->send(QStringLiteral("HIDE")), 0);
    auto clients = connect_clients(3);
    QCOMPARE(socket_->send(QStringLiteral("HIDE")), 3);
    clients[1]->close();
    QTRY_COMPARE(socket_->peer_count(), 2);
    QCOMPARE(socket_->send(QStringLiteral("HIDE")), 2);
    QVERIFY(texts_.isEmpty());
}

void TestVeskSocket::a_hundred_programs_at_once_are_served()
{
    const auto clients = connect_clients(100);
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 100);
    for (size_t i = 0; i < clients.size(); ++i)
        clients[i]->write("OK\ntext " + QByteArray::number(static_cast<int>(i)) + "\n");
    QTRY_COMPARE(texts_.size(), 200);
    QCOMPARE(texts_.count(QStringLiteral("OK")), 100);
    for (int i = 0; i < 100; ++i)
        QCOMPARE(texts_.count(QStringLiteral("text %1").arg(i)), 1);
    for (const auto& client : clients)
        QTRY_COMPARE(client->read(), QByteArray("STOP\n"));
}

void TestVeskSocket::one_ok_a_peer_and_stop_is_passed_on()
{
    const auto clients = connect_clients(2);
    clients[0]->write("OK\nfirst\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("first")});
    texts_.clear();
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 2);
    clients[0]->write("OK\nOK\nOK\nagain\n");
    const QStringList one{QStringLiteral("OK"), QStringLiteral("again")};
    QTRY_COMPARE(texts_, one);
    clients[1]->write("OK\n");
    QTRY_COMPARE(texts_.size(), 3);
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 2);
    clients[0]->write("OK\n");
    QTRY_COMPARE(texts_.size(), 4);
    QCOMPARE(texts_.count(QStringLiteral("OK")), 3);
}

void TestVeskSocket::stop_is_the_only_text_that_wants_an_answer()
{
    const auto client = connect_client();
    socket_->send(QStringLiteral("HIDE"));
    socket_->send(QStringLiteral("OK"));
    client->write("OK\nend\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("end")});
    client->close();
    QTRY_COMPARE(socket_->peer_count(), 0);
    QCOMPARE(texts_.size(), 1);
}

void TestVeskSocket::a_program_that_dies_between_stop_and_ok_counts_as_ok_data()
{
    QTest::addColumn<bool>("by_reset");
    QTest::addColumn<bool>("answered");
    QTest::newRow("closed") << false << false;
    QTest::newRow("reset") << true << false;
    QTest::newRow("closed after its answer") << false << true;
}

void TestVeskSocket::a_program_that_dies_between_stop_and_ok_counts_as_ok()
{
    QFETCH(bool, by_reset);
    QFETCH(bool, answered);
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 1);
    if (answered)
        client->write("OK\n");
    by_reset ? client->reset() : client->close();
    QTRY_COMPARE(socket_->peer_count(), 0);
    QCOMPARE(texts_, QStringList{QStringLiteral("OK")});
}

void TestVeskSocket::what_a_program_said_before_it_went_is_heard_first()
{
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 1);
    QByteArray many;
    for (int i = 0; i < 90; ++i)
        many +=
            "text number " + QByteArray::number(i) + " with some words to make it longer than the buffer of one read\n";
    client->write(many + "cut off");
    client->close();
    QTRY_COMPARE(socket_->peer_count(), 0);
    QCOMPARE(texts_.size(), 91);
    QVERIFY(texts_[89].startsWith(QStringLiteral("text number 89 ")));
    QCOMPARE(texts_[90], QStringLiteral("OK"));
}

void TestVeskSocket::no_answer_is_reported_before_send_returns()
{
    const auto clients = connect_clients(2);
    // The player does not know yet that one has gone.
    clients[0]->reset();
    int count = 0;
    for (int i = 0; i < 5; ++i) {
        count = socket_->send(QStringLiteral("STOP"));
        QCOMPARE(texts_, QStringList());
    }
    QVERIFY(count >= 1);
    clients[1]->write("OK\n");
    QTRY_COMPARE(socket_->peer_count(), 1);
    QTRY_COMPARE(texts_.size(), 2);
    QCOMPARE(texts_.count(QStringLiteral("OK")), 2);
}

void TestVeskSocket::a_killed_program_cannot_keep_a_film_from_starting()
{
    // A navigation program that has a thread of its own and dies without a word.
    const quint16 port = socket_->port();
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        const Client client(port);
        for (;;)
            ::pause();
    }
    QTRY_COMPARE(socket_->peer_count(), 1);
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 1);
    QCOMPARE(::kill(child, SIGKILL), 0);
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("OK")});
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 0);
}

void TestVeskSocket::a_text_is_handled_with_all_it_posts_before_the_next_is_read()
{
    QStringList log;
    connect(socket_.get(), &VeskSocket::received, this, [&](const QString& text) {
        log.append(text);
        QMetaObject::invokeMethod(
            this, [&log, text] { log.append(QStringLiteral("handled ") + text); }, Qt::QueuedConnection);
        QCoreApplication::processEvents();
        log.append(QStringLiteral("end ") + text);
    });
    const auto client = connect_client();
    client->write("STOP\nRESUME\nPAUSE\n");
    QTRY_COMPARE(log.size(), 9);
    for (const char* text : {"STOP", "RESUME", "PAUSE"}) {
        const auto place = log.indexOf(QString::fromLatin1(text));
        QCOMPARE(log[place + 1], QStringLiteral("handled ") + QString::fromLatin1(text));
    }
    QVERIFY(log.indexOf(QStringLiteral("RESUME")) > log.indexOf(QStringLiteral("handled STOP")));
    QVERIFY(log.indexOf(QStringLiteral("PAUSE")) > log.indexOf(QStringLiteral("handled RESUME")));
}

void TestVeskSocket::texts_arrive_while_a_receiver_runs_a_dialog()
{
    QEventLoop dialog;
    QStringList log;
    const auto client = connect_client();
    connect(socket_.get(), &VeskSocket::received, this, [&](const QString& text) {
        log.append(text);
        if (text == QStringLiteral("RESUME"))
            dialog.exec();
        else if (text == QStringLiteral("PAUSE"))
            client->write("STOP\n");
        else
            dialog.quit();
    });
    // One text behind it in the same packet, and one in another.
    client->write("RESUME\nPAUSE\n");
    const QStringList expected{QStringLiteral("RESUME"), QStringLiteral("PAUSE"), QStringLiteral("STOP")};
    QTRY_COMPARE(log, expected);
    QVERIFY(!dialog.isRunning());
}

void TestVeskSocket::a_quiet_program_is_never_dropped()
{
    VeskSocket::Limits limits;
    limits.unfinished_line = std::chrono::milliseconds(50);
    socket_->set_limits(limits);
    const auto quiet = connect_client();
    const auto quiet_after_a_line = connect_client();
    quiet_after_a_line->write("PAUSE\n");
    QTRY_COMPARE(texts_.size(), 1);
    // A third one that trips the limit shows that the time has passed for the others, too.
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is cut off: it never ends its line");
    const auto unfinished = connect_client();
    unfinished->write("x");
    QTRY_VERIFY(unfinished->is_ended());
    QCOMPARE(socket_->peer_count(), 2);
    QVERIFY(!quiet->is_ended());
    QVERIFY(!quiet_after_a_line->is_ended());
    quiet->write("STOP\n");
    QTRY_COMPARE(texts_.size(), 2);
}

void TestVeskSocket::a_slow_program_is_heard()
{
    const auto client = connect_client();
    for (const char byte : QByteArray("AUDIO_RESUME")) {
        client->write(QByteArray(1, byte));
        QCoreApplication::processEvents();
        QVERIFY(texts_.isEmpty());
    }
    client->write("\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("AUDIO_RESUME")});
}

void TestVeskSocket::a_line_that_is_too_long_ends_the_connection()
{
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 1);
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is cut off: its line is too long");
    client->write(QByteArray(100'000, 'x'));
    QTRY_VERIFY(client->is_ended());
    QTRY_COMPARE(socket_->peer_count(), 0);
    QCOMPARE(texts_, QStringList{QStringLiteral("OK")});
}

void TestVeskSocket::the_longest_line_is_still_heard()
{
    const auto client = connect_client();
    const QByteArray longest(static_cast<qsizetype>(VeskSocket::Limits().line_bytes), 'x');
    client->write(longest + '\n');
    QTRY_COMPARE(texts_, QStringList{QString::fromLatin1(longest)});
    QCOMPARE(socket_->peer_count(), 1);
}

void TestVeskSocket::a_line_that_never_ends_ends_the_connection()
{
    VeskSocket::Limits limits;
    limits.unfinished_line = std::chrono::milliseconds(100);
    socket_->set_limits(limits);
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is cut off: it never ends its line");
    const auto client = connect_client();
    // More bytes do not buy more time.
    QTRY_VERIFY((client->write("x"), client->is_ended()));
    QTRY_COMPARE(socket_->peer_count(), 0);
    QVERIFY(texts_.isEmpty());
}

void TestVeskSocket::a_flood_ends_the_connection_and_costs_little()
{
    const auto good = connect_client();
    const auto client = connect_client();
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is cut off: it sends too much");
    const QByteArray block = QByteArray("PAUSE\n").repeated(10'000);
    QTRY_VERIFY((client->write(block), client->is_ended()));
    QTRY_COMPARE(socket_->peer_count(), 1);
    QVERIFY2(texts_.size() <= VeskSocket::Limits().lines_a_second * 3, qPrintable(QString::number(texts_.size())));
    texts_.clear();
    good->write("STOP\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("STOP")});
}

void TestVeskSocket::a_program_that_does_not_read_is_dropped()
{
    const auto good = connect_client();
    const auto client = connect_client();
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is cut off: it does not read");
    const QString text(60'000, u'x');
    QElapsedTimer timer;
    timer.start();
    // The system's own buffers take some megabytes first.
    while (socket_->send(text) == 2) {
        good->read();
        QCoreApplication::processEvents();
        QVERIFY(timer.elapsed() < test_support::stretched(20'000));
    }
    QTRY_COMPARE(socket_->peer_count(), 1);
    good->write("PAUSE\n");
    QTRY_COMPARE(texts_, QStringList{QStringLiteral("PAUSE")});
}

void TestVeskSocket::a_half_open_connection_is_dropped_after_it_was_heard()
{
    const auto client = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 1);
    client->write("PAUSE\nhalf");
    client->shut_down_writing();
    QTRY_COMPARE(socket_->peer_count(), 0);
    const QStringList expected{QStringLiteral("PAUSE"), QStringLiteral("OK")};
    QCOMPARE(texts_, expected);
    QTRY_VERIFY(client->is_ended());
}

void TestVeskSocket::more_programs_than_allowed_are_turned_away()
{
    VeskSocket::Limits limits;
    limits.peers = 3;
    socket_->set_limits(limits);
    auto clients = connect_clients(3);
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is turned away: there are too many");
    Client fourth(socket_->port());
    Client fifth(socket_->port());
    QTRY_VERIFY(fourth.is_ended() && fifth.is_ended());
    QCOMPARE(socket_->peer_count(), 3);
    clients.pop_back();
    QTRY_COMPARE(socket_->peer_count(), 2);
    const auto next = connect_client();
    QCOMPARE(socket_->send(QStringLiteral("HIDE")), 3);
}

void TestVeskSocket::a_program_of_another_user_is_turned_away()
{
    const quint16 port = socket_->port();
    const bool administrator = ::geteuid() == 0;
    // Only the system administrator can become another user; for others the answer about the peer is replaced.
    if (!administrator)
        socket_->set_peer_check([](const QTcpSocket&) { return false; });
    QTest::ignoreMessage(QtWarningMsg, "socket: a program is turned away: it is not this user's");
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        if (administrator && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        Client client(port);
        client.write("STOP\n");
        QElapsedTimer timer;
        timer.start();
        while (!client.is_ended()) {
            if (timer.elapsed() > test_support::stretched(10'000))
                ::_exit(1);
            ::poll(nullptr, 0, 10);
        }
        ::_exit(client.read().isEmpty() ? 0 : 3);
    }
    int status = -1;
    pid_t ended = 0;
    QTRY_VERIFY(ended == child || (ended = ::waitpid(child, &status, WNOHANG)) == child);
    QCOMPARE(status, 0);
    QCOMPARE(socket_->peer_count(), 0);
    QVERIFY(texts_.isEmpty());
}

void TestVeskSocket::a_port_that_is_taken_is_said_once_and_the_player_goes_on()
{
    QTest::ignoreMessage(
        QtWarningMsg, QRegularExpression(QStringLiteral("socket: nobody can connect to port %1").arg(socket_->port())));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    VeskSocket second(socket_->port());
    QCOMPARE(second.port(), quint16(0));
    QCOMPARE(second.send(QStringLiteral("HIDE")), 0);
    QCOMPARE(second.send(QStringLiteral("STOP")), 0);
    const auto client = connect_client();
    QCOMPARE(second.peer_count(), 0);
}

void TestVeskSocket::destroying_it_reports_nothing()
{
    const auto clients = connect_clients(2);
    QCOMPARE(socket_->send(QStringLiteral("STOP")), 2);
    clients[0]->write("PAUSE\n");
    socket_.reset();
    QCoreApplication::processEvents();
    QVERIFY(texts_.isEmpty());
    QTRY_VERIFY(clients[0]->is_ended() && clients[1]->is_ended());
}

TAVEL_TEST_MAIN(TestVeskSocket)
#include "tst_vesk_socket.moc"
