#include "shell.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <condition_variable>
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
    std::condition_variable asked;
    bool started = false; // guarded by mutex: the thread is there
    bool wanted = false;  // guarded by mutex: one more run is asked for
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
int run(const char* program, char* const* arguments)
{
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
    pid_t child = -1;
    const int failure = posix_spawnp(&child, program, nullptr, &attributes, arguments, environ);
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

int run_in_shell(const QByteArray& command)
{
    if (command.contains('\0'))
        return -1;
    QByteArray text = command;
    char shell[] = "sh";
    char option[] = "-c";
    char* arguments[] = {shell, option, text.data(), nullptr};
    return run("/bin/sh", arguments);
}

// A shell between would only cost time.
void run_sync()
{
    char program[] = "sync";
    char* arguments[] = {program, nullptr};
    run(program, arguments);
}

void sync_when_asked()
{
    SyncState& state = sync_state();
    std::unique_lock lock(state.mutex);
    for (;;) {
        state.asked.wait(lock, [&state] { return state.wanted; });
        state.wanted = false;
        lock.unlock();
        run_sync();
        lock.lock();
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
    return run_in_shell(command);
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
    start();
    SyncState& state = sync_state();
    const std::lock_guard lock(state.mutex);
    state.wanted = true;
    state.asked.notify_one();
}

void Shell::start()
{
    SyncState& state = sync_state();
    const std::lock_guard lock(state.mutex);
    if (std::exchange(state.started, true))
        return;
    std::thread(sync_when_asked).detach();
}

void Shell::set_recorder(std::function<int(const QByteArray&)> recorder)
{
    const std::lock_guard lock(recorder_mutex);
    current_recorder() = std::move(recorder);
}
