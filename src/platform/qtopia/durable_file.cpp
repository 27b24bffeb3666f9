#include "durable_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

// How long a writer waits for another one's turn to end.
constexpr std::chrono::milliseconds turn_limit{2000};
constexpr std::chrono::milliseconds turn_pause{2};

class Descriptor
{
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return number_; }
    bool is_open() const { return number_ >= 0; }
    void close()
    {
        if (number_ >= 0)
            ::close(number_);
        number_ = -1;
    }
    void take(int number)
    {
        close();
        number_ = number;
    }

private:
    int number_;
};

QString reason(const char* step)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(step), QString::fromLocal8Bit(std::strerror(errno)));
}

bool write_all(int descriptor, const QByteArray& content)
{
    const char* position = content.constData();
    qsizetype left = content.size();
    while (left > 0) {
        const ssize_t written = ::write(descriptor, position, static_cast<size_t>(left));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        position += written;
        left -= written;
    }
    return true;
}

// Opens the file that becomes the new content, and holds it against other writers. It has one fixed name, so that a
// writer who was killed leaves at most one such file, which the next one uses.
// @return an empty string, or what went wrong.
QString open_for_turn(const QByteArray& name, Descriptor& file)
{
    const auto give_up = std::chrono::steady_clock::now() + turn_limit;
    for (;;) {
        file.take(::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666));
        if (!file.is_open())
            return reason("open");
        if (::flock(file.number(), LOCK_EX | LOCK_NB) == 0) {
            // The one before us may have renamed the file that we opened.
            struct stat ours {
            };
            struct stat named {
            };
            if (::fstat(file.number(), &ours) == 0 && ::stat(name.constData(), &named) == 0 &&
                ours.st_ino == named.st_ino && ours.st_dev == named.st_dev)
                return {};
            continue;
        }
        if (errno != EWOULDBLOCK && errno != EINTR)
            return reason("lock");
        if (std::chrono::steady_clock::now() > give_up)
            return QStringLiteral("another program does not stop writing it");
        std::this_thread::sleep_for(turn_pause);
    }
}

} // namespace

DurableFile::DurableFile(const QString& path) : path_(path)
{
    const QFileInfo info(path);
    if (info.isSymLink() && info.exists())
        path_ = info.canonicalFilePath();
}

DurableFile::State DurableFile::read(QByteArray& content, QString& fault) const
{
    content.clear();
    // Without O_NONBLOCK a pipe of that name would hold us up for ever.
    const Descriptor file(::open(QFile::encodeName(path_).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.is_open()) {
        if (errno == ENOENT)
            return State::Missing;
        fault = reason("open");
        return State::Unreadable;
    }
    struct stat status {
    };
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        fault = QStringLiteral("not a regular file");
        return State::Unreadable;
    }
    // Room ahead for what is usual; a file's size does not fit a byte array on every machine.
    constexpr off_t room_ahead = 1 << 20;
    content.reserve(static_cast<qsizetype>(std::min(status.st_size, room_ahead)));
    char block[65536];
    for (;;) {
        const ssize_t count = ::read(file.number(), block, sizeof block);
        if (count == 0)
            return State::Read;
        if (count < 0) {
            if (errno == EINTR)
                continue;
            fault = reason("read");
            content.clear();
            return State::Unreadable;
        }
        content.append(block, count);
    }
}

QString DurableFile::update(const std::function<QByteArray(const QByteArray&)>& change) const
{
    const QFileInfo info(path_);
    const QString directory = info.absolutePath();
    if (!QDir().mkpath(directory))
        return QStringLiteral("the directory cannot be made");
    const QByteArray target = QFile::encodeName(path_);
    const QByteArray fresh =
        QFile::encodeName(directory + QStringLiteral("/.") + info.fileName() + QStringLiteral(".new"));

    Descriptor file(-1);
    if (const QString fault = open_for_turn(fresh, file); !fault.isEmpty())
        return fault;
    const auto abandon = [&](const QString& fault) {
        ::unlink(fresh.constData());
        return fault;
    };
    QByteArray old_content;
    QString fault;
    if (read(old_content, fault) == State::Unreadable)
        return abandon(fault);
    if (::ftruncate(file.number(), 0) != 0)
        return abandon(reason("truncate"));
    struct stat old_status {
    };
    if (::stat(target.constData(), &old_status) == 0 && ::fchmod(file.number(), old_status.st_mode & 07777) != 0)
        return abandon(reason("chmod"));
    if (!write_all(file.number(), change(old_content)))
        return abandon(reason("write"));
    if (::fsync(file.number()) != 0)
        return abandon(reason("fsync"));
    if (::rename(fresh.constData(), target.constData()) != 0)
        return abandon(reason("rename"));
    const Descriptor folder(::open(QFile::encodeName(directory).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems cannot do this; the content itself is durable by now.
    if (folder.is_open())
        ::fsync(folder.number());
    return {};
}
