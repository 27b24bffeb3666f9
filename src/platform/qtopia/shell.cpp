#include "shell.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace
{

constexpr char sync_command[] = "sync";

struct SyncState {
    std::mutex mutex;
    bool running = false; // guarded by mutex
    bool again = false;   // guarded by mutex
};

// Never destroyed: a slow disk may keep the thread longer than the program lives.
SyncState& sync_state()
{
    static auto* const state = new SyncState;
    return *state;
}

std::mutex recorder_mutex;

// Guarded by recorder_mutex.
std::function<int(const QByteArray&)>& current_recorder()
{
    static std::function<int(const QByteArray&)> recorder;
    return recorder;
}

std::function<int(const QByteArray&)> recorder_copy()
{
    const std::lock_guard lock(recorder_mutex);
    return current_recorder();
}

// Not ::system(), which makes the whole program deaf to SIGINT and SIGCHLD as long as the command runs.
int run(const QByteArray& command)
{
    if (command.contains('\0'))
        return -1;
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t reset;
    sigemptyset(&reset);
    for (const int signal : {SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGHUP})
        sigaddset(&reset, signal);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &reset);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    QByteArray text = command;
    char shell[] = "sh";
    char option[] = "-c";
    char* arguments[] = {shell, option, text.data(), nullptr};
    pid_t child = -1;
    const int failure = posix_spawn(&child, "/bin/sh", nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    if (failure != 0)
        return -1;
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void sync_until_nobody_asks()
{
    SyncState& state = sync_state();
    for (;;) {
        run(sync_command);
        const std::lock_guard lock(state.mutex);
        if (!state.again) {
            state.running = false;
            return;
        }
        state.again = false;
    }
}

bool is_plain(uchar byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '/' || byte == '.' || byte == '_' || byte == '-' || byte == '+' || byte == ':' || byte == '@' ||
           byte == '%';
}

} // namespace

int Shell::system(const QByteArray& command)
{
    if (command == sync_command) {
        sync();
        return 0;
    }
    if (const auto recorder = recorder_copy())
        return recorder(command);
    return run(command);
}

QByteArray Shell::quote(const QString& path)
{
    QByteArray bytes = QFile::encodeName(path);
    // A name that begins with a dash would be taken for an option, quoted or not.
    if (bytes.startsWith('-'))
        bytes.prepend("./");
    if (!bytes.isEmpty() &&
        std::all_of(bytes.cbegin(), bytes.cend(), [](char c) { return is_plain(static_cast<uchar>(c)); }))
        return bytes;
    return '\'' + bytes.replace('\'', "'\\''") + '\'';
}

bool Shell::make_directory(const QString& path)
{
    return QDir().mkpath(path) && QFileInfo(path).isDir();
}

void Shell::sync()
{
    if (const auto recorder = recorder_copy()) {
        recorder(sync_command);
        return;
    }
    SyncState& state = sync_state();
    const std::lock_guard lock(state.mutex);
    if (state.running) {
        state.again = true;
        return;
    }
    state.running = true;
    std::thread(sync_until_nobody_asks).detach();
}

void Shell::set_recorder(std::function<int(const QByteArray&)> recorder)
{
    const std::lock_guard lock(recorder_mutex);
    current_recorder() = std::move(recorder);
}
