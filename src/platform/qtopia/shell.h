#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

/// The player's commands to the shell, and the two things they need.
namespace Shell
{

/// Runs @p command by "/bin/sh -c" and waits for it; "sync" alone is handed to sync() instead.
/// @return the command's exit status, or -1 when it could not be run or was killed.
int system(const QByteArray& command);

/// @p path as one word of a shell command: unchanged when it holds nothing that a shell would interpret, else in single
/// quotes.
QByteArray quote(const QString& path);

/// Makes the directory and its parents. @return true when it is there afterwards.
bool make_directory(const QString& path);

/// Runs "sync" on a thread of its own and returns at once. One runs at a time; requests that come meanwhile are
/// answered by one more run after it.
void sync();

/// Starts that thread; without it the first sync() does, which may have to wait where another thread loads libraries.
void start();

/// Tests see each command, on the thread that asks for it, instead of having it run; the result is what system()
/// returns. An empty function restores the shell.
void set_recorder(std::function<int(const QByteArray&)> recorder);

} // namespace Shell
