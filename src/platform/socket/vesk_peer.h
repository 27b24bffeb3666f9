#pragma once

#include "vesk_socket.h"

#include <QElapsedTimer>
#include <QTimer>

class QTcpSocket;

/// One connection of the local text socket, and what its program may still cost.
class VeskPeer : public QObject
{
    Q_OBJECT

public:
    /// Takes @p connection over.
    VeskPeer(QTcpSocket* connection, const VeskSocket::Limits& limits);
    ~VeskPeer() override;

    /// @return whether the line was taken for sending.
    bool send(const QByteArray& line);
    /// From now on the peer owes one "OK".
    void expect_answer() { owes_answer_ = true; }

signals:
    void received(const QString& text);
    /// The connection is over; everything the peer had to say has been reported. Comes from the event loop, once.
    void gone();

private:
    void read_one();
    void report(QByteArray line);
    void report_end();
    void drop(const char* why);
    void lose_connection();
    bool is_flooding();

    QTcpSocket* connection_; // ours
    VeskSocket::Limits limits_;
    QByteArray buffer_; // read and not yet reported; a line at most
    QTimer next_line_;  // one line each time the event loop has nothing more urgent
    QTimer unfinished_line_;
    QElapsedTimer second_;
    int lines_in_second_ = 0;
    bool owes_answer_ = false;
    bool lost_ = false;
    bool dropped_ = false;
};
