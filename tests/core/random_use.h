#pragma once

#include "player_window.h"

#include <QtCore/QRandomGenerator>

#include <functional>

/// Somebody who uses a player at random: keys, taps, buttons, requests, messages, socket texts and settings, in any
/// order, and closes every dialog that opens. The same seed leads to the same choices.
class RandomUse : public QObject
{
    Q_OBJECT

public:
    /// @param files are what the playlist is filled from
    /// @param use_the_engine is one of the steps: what the engine has to say
    RandomUse(quint32 seed, const QStringList& files, std::function<void(RandomUse&)> use_the_engine);

    void take_step(PlayerWindow& player);

    int below(int bound) { return static_cast<int>(random_.bounded(bound)); }
    bool chance(int one_in) { return below(one_in) == 0; }
    template<typename Container> auto any_of(const Container& container)
    {
        return *(std::begin(container) + below(static_cast<int>(std::size(container))));
    }

    /// What of the player is not as it should be, in words; empty when all is well. Nothing may be under way.
    static QString fault_of(PlayerWindow& player);
    /// The same for the files that a player has left.
    QString fault_of_files() const;
    /// Brings any player to the same rest: on the LCD, nothing open, lists empty, every setting at its first choice.
    /// @p settle lets happen what is under way.
    static void put_to_rest(PlayerWindow& player, const std::function<void()>& settle);

private:
    void use_a_key(PlayerWindow& player);
    void use_a_button(PlayerWindow& player);
    void use_a_request(PlayerWindow& player);
    void use_a_message(PlayerWindow& player);
    void use_the_socket(PlayerWindow& player);
    void use_a_setting(PlayerWindow& player);

    QRandomGenerator random_;
    QStringList files_;
    std::function<void(RandomUse&)> use_the_engine_;
    QTimer dialog_timer_;
};

/// Asserts of the state machine that were said while it lives; everything but what is critical is kept from the screen.
class MachineAsserts
{
public:
    MachineAsserts();
    ~MachineAsserts();
    Q_DISABLE_COPY_MOVE(MachineAsserts)

    int count() const;
};

/// How much each of several rounds of the same use left behind.
class Remains
{
public:
    /// Notes what a player at rest holds now.
    void note(PlayerWindow& player);

    /// The least growth in bytes of heap from one round to the next, the first @p warm_up rounds apart, in which caches
    /// fill; a leak in what is used grows each time. 0 where the heap cannot be asked (under a sanitizer).
    qint64 least_growth(qsizetype warm_up) const;
    /// Whether the window has as many objects as it had after the first round.
    bool has_new_objects() const { return objects_.first() < objects_.last(); }
    QString describe() const;

private:
    QList<qint64> heap_;
    QList<qsizetype> objects_;
};
