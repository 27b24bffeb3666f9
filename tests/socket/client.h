#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

/// A program at the other end of the socket: plain system calls, so that it can misbehave in every way.
class Client
{
public:
    explicit Client(quint16 port) : descriptor_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connected_ = ::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
        ::fcntl(descriptor_, F_SETFL, O_NONBLOCK);
    }
    ~Client() { close(); }
    Client(Client&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)), connected_(other.connected_) {}
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool is_connected() const { return connected_; }

    /// @return how many bytes the system took, or -1.
    ssize_t write(const QByteArray& bytes) const
    {
        return ::send(descriptor_, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
    }

    /// What has arrived so far.
    QByteArray read()
    {
        char block[4096];
        ssize_t count = 0;
        while ((count = ::recv(descriptor_, block, sizeof block, 0)) > 0)
            received_.append(block, count);
        if (count == 0 || (count < 0 && errno != EAGAIN))
            ended_ = true;
        return received_;
    }

    /// Whether the player has ended the connection.
    bool is_ended()
    {
        read();
        return ended_;
    }

    quint16 port() const
    {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        ::getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &size);
        return ntohs(address.sin_port);
    }

    /// Ends only what we send.
    void shut_down_writing() const { ::shutdown(descriptor_, SHUT_WR); }

    /// Goes away like a program that crashed with unread data: by a reset.
    void reset()
    {
        const linger hard{1, 0};
        ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        close();
    }

    void close()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
        descriptor_ = -1;
    }

private:
    int descriptor_;
    bool connected_ = false;
    bool ended_ = false;
    QByteArray received_;
};
