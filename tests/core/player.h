#pragma once

#include "player_window.h"
#include "scripted_engine.h"

/// What is around a player in a test: files, and a log of what it does to planes, screen controller, waits and other
/// programs, which is the scripted engine's.
class TestDevice
{
public:
    TestDevice();
    ~TestDevice();
    Q_DISABLE_COPY_MOVE(TestDevice)

    /// Makes empty files "a.avi", "b.avi" ... in a directory of the test's own and returns their paths.
    QStringList make_files(int count);
    QString directory() const { return files_.path(); }

private:
    void listen(const char* channel);

    QTemporaryDir files_;
    std::vector<std::unique_ptr<QCopChannel>> channels_;
};

/// A whole player on the scripted engine, with its window on the display and directories fresh from the box.
///
/// Everything it does to engine, planes, screen controller, waits and other programs is written into one log, in order.
/// Waits take no time.
class Player : public TestDevice, public PlayerWindow
{
public:
    Player();
    explicit Player(const Device& device);
    ~Player() override;

    /// Lets everything that is under way happen: posted events, reports, and what they lead to.
    void settle();
    /// Hands one file over and waits until it plays.
    void play_a_film(const QString& container = QStringLiteral("AVI"));

    /// The log, one step a line: engine operations ("play", "seek 3 5000"), "fb ..." control strings, "screen ..."
    /// controller operations, "wait ..." in milliseconds, "qcop channel message arguments".
    QStringList log() const { return scripted_engine::log(); }
    /// The lines that begin with one of @p beginnings.
    QStringList log_of(const QStringList& beginnings) const;
    void clear_log() { scripted_engine::clear_log(); }
};

/// A log as a message, line by line.
QString describe(const QStringList& log);
