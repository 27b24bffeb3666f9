#pragma once

#include "player.h"

/// Tests of which each has a player of its own: fresh from the box and at rest when the test begins.
class PlayerTest : public QObject
{
    Q_OBJECT

protected slots:
    void init();
    void cleanup();

protected:
    std::unique_ptr<Player> player;
};

/// The same for tests that count what reaches the window while a film plays.
class CountingPlayerTest : public PlayerTest
{
    Q_OBJECT

protected slots:
    void cleanup();

protected:
    /// Plays a film with the controls hidden, and counts from then on.
    void play_in_full_screen(const QString& container = QStringLiteral("AVI"));
    /// The same with the controls shown.
    void play_with_controls();

    std::unique_ptr<EventCounter> counter;
};
