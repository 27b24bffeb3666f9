#include "vesk_peer.h"

#include <QTcpSocket>

namespace
{

constexpr char answer[] = "OK";

} // namespace

VeskPeer::VeskPeer(QTcpSocket* connection, const VeskSocket::Limits& limits) : connection_(connection), limits_(limits)
{
    connection_->setParent(this);
    // What does not fit stays with the sender.
    connection_->setReadBufferSize(limits_.line_bytes + 1);
    connection_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connection_->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    next_line_.setSingleShot(true);
    unfinished_line_.setSingleShot(true);
    connect(&next_line_, &QTimer::timeout, this, &VeskPeer::read_one);
    connect(&unfinished_line_, &QTimer::timeout, this, [this] { drop("it never ends its line"); });
    // Read from the event loop, not from this signal: it does not come again while a receiver runs an event loop of its
    // own.
    connect(connection_, &QTcpSocket::readyRead, this, [this] { next_line_.start(0); });
    connect(connection_, &QTcpSocket::disconnected, this, &VeskPeer::lose_connection);
    if (connection_->state() != QAbstractSocket::ConnectedState)
        lose_connection();
    else if (connection_->bytesAvailable() > 0)
        next_line_.start(0);
}

VeskPeer::~VeskPeer()
{
    connection_->disconnect(this);
    connection_->abort();
}

bool VeskPeer::send(const QByteArray& line)
{
    if (lost_ || connection_->state() != QAbstractSocket::ConnectedState)
        return false;
    if (connection_->bytesToWrite() + line.size() > limits_.unread_bytes) {
        drop("it does not read");
        return false;
    }
    if (connection_->write(line) != line.size())
        return false;
    connection_->flush();
    return true;
}

void VeskPeer::read_one()
{
    // Asking for more than there is makes the connection listen again after its own buffer was full.
    if (!dropped_ && connection_->isOpen())
        buffer_ += connection_->read(limits_.line_bytes + 1 - buffer_.size());
    const qsizetype end = dropped_ ? -1 : buffer_.indexOf('\n');
    if (end < 0) {
        if (lost_) {
            report_end();
        } else if (buffer_.size() > limits_.line_bytes) {
            drop("its line is too long");
        } else if (!buffer_.isEmpty() && !unfinished_line_.isActive()) {
            unfinished_line_.start(limits_.unfinished_line);
        }
        return;
    }
    unfinished_line_.stop();
    const QByteArray line = buffer_.first(end);
    buffer_.remove(0, end + 1);
    if (is_flooding()) {
        drop("it sends too much");
        return;
    }
    // Before the receiver runs, which may run the event loop; what it posts is handled before the next line all the
    // same, since timers come after posted events.
    next_line_.start(0);
    report(line);
}

void VeskPeer::report_end()
{
    if (owes_answer_) {
        owes_answer_ = false;
        emit received(QString::fromLatin1(answer));
    }
    emit gone();
}

void VeskPeer::report(QByteArray line)
{
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.isEmpty())
        return;
    if (!line.isValidUtf8()) {
        qWarning("socket: a text that is not UTF-8 is left out");
        return;
    }
    if (line == answer) {
        if (!owes_answer_)
            return;
        owes_answer_ = false;
    }
    emit received(QString::fromUtf8(line));
}

void VeskPeer::drop(const char* why)
{
    if (lost_)
        return;
    qWarning("socket: a program is cut off: %s", why);
    dropped_ = true;
    connection_->abort();
    lose_connection();
}

void VeskPeer::lose_connection()
{
    if (lost_)
        return;
    lost_ = true;
    unfinished_line_.stop();
    // First what it said before it went; never inside send().
    next_line_.start(0);
}

bool VeskPeer::is_flooding()
{
    if (!second_.isValid() || second_.hasExpired(1000)) {
        second_.start();
        lines_in_second_ = 0;
    }
    return ++lines_in_second_ > limits_.lines_a_second;
}
