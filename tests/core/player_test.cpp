#include "player_test.h"

void PlayerTest::init()
{
    player = std::make_unique<Player>();
    player->settle();
}

void PlayerTest::cleanup()
{
    player.reset();
}

void CountingPlayerTest::cleanup()
{
    counter.reset();
    PlayerTest::cleanup();
}

void CountingPlayerTest::play_in_full_screen(const QString& container)
{
    player->play_a_film(container);
    QVERIFY(player->window()->is_full_screen());
    counter = std::make_unique<EventCounter>(player->window());
}

void CountingPlayerTest::play_with_controls()
{
    player->play_a_film();
    player->post(player_event::leave_full_screen);
    player->settle();
    QVERIFY(!player->window()->is_full_screen());
    counter = std::make_unique<EventCounter>(player->window());
}
