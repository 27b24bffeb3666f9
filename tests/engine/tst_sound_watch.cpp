#include "sound_watch.h"
#include "test_main.h"

using namespace std::chrono_literals;

/// The watch over the sound, with moved clocks.
class TstSoundWatch : public QObject
{
    Q_OBJECT

private slots:
    void sound_is_trusted_once_a_film_has_run_with_it()
    {
        SoundWatch watch;
        QVERIFY(watch.trust(m_start) == SoundWatch::Trust::Unsure);
        watch.film_runs();
        QVERIFY(watch.trust(m_start) == SoundWatch::Trust::Full);
    }

    void sound_that_was_given_up_is_tried_again_after_a_while()
    {
        SoundWatch watch;
        watch.film_runs();
        watch.give_up(m_start);
        QVERIFY(watch.trust(m_start) == SoundWatch::Trust::None);
        QVERIFY(watch.trust(m_start + SoundWatch::silence - 1ms) == SoundWatch::Trust::None);
        QVERIFY(watch.trust(m_start + SoundWatch::silence) == SoundWatch::Trust::Unsure);
    }

    void an_answer_in_time_is_no_reason_to_worry()
    {
        SoundWatch watch;
        QVERIFY(!watch.deadline());
        watch.asked(m_start, 0ms);
        QCOMPARE(*watch.deadline(), m_start + SoundWatch::answer_limit);
        QVERIFY(!watch.is_held_up(m_start + SoundWatch::answer_limit - 1ms, 0ms));
        watch.answered();
        QVERIFY(!watch.deadline());
        QVERIFY(!watch.is_held_up(m_start + 1h, 0ms));
    }

    void an_answer_that_stays_out_in_an_idle_process_is_told()
    {
        SoundWatch watch;
        watch.asked(m_start, 10s);
        watch.asked(m_start + 1s, 10s); // asking once more gives no more time
        QVERIFY(watch.is_held_up(m_start + SoundWatch::answer_limit, 10s + 10ms));
    }

    void a_process_that_works_is_given_more_time()
    {
        SoundWatch watch;
        watch.asked(m_start, 10s);
        const auto later = m_start + SoundWatch::answer_limit;
        QVERIFY(!watch.is_held_up(later, 10s + 500ms));
        QCOMPARE(*watch.deadline(), later + SoundWatch::answer_limit);
        QVERIFY(watch.is_held_up(later + SoundWatch::answer_limit, 10s + 510ms));
    }

    void giving_up_forgets_what_is_owed()
    {
        SoundWatch watch;
        watch.asked(m_start, 0ms);
        watch.give_up(m_start + SoundWatch::answer_limit);
        QVERIFY(!watch.deadline());
    }

    void somebody_looks_once_a_second_while_the_film_stands_still()
    {
        SoundWatch watch;
        QVERIFY(!watch.wants_look(m_start));
        watch.position_moved(m_start);
        QVERIFY(!watch.wants_look(m_start + SoundWatch::look_interval - 1ms));
        QVERIFY(watch.wants_look(m_start + SoundWatch::look_interval));
        QVERIFY(!watch.wants_look(m_start + SoundWatch::look_interval + 50ms));
        QVERIFY(watch.wants_look(m_start + 2 * SoundWatch::look_interval));
        watch.position_moved(m_start + 2500ms);
        QVERIFY(!watch.wants_look(m_start + 3s));
    }

    void sound_that_stands_still_with_more_to_play_is_told()
    {
        SoundWatch watch;
        watch.position_moved(m_start);
        QVERIFY(!watch.stands_still(4.95, 6.2));
        QVERIFY(watch.stands_still(4.95, 6.2));
    }

    void what_stands_still_for_another_reason_is_left_alone_data()
    {
        QTest::addColumn<double>("before");
        QTest::addColumn<double>("now");
        QTest::addColumn<double>("buffered");
        QTest::newRow("one picture for many seconds of sound") << 4.0 << 5.0 << 6.5;
        QTest::newRow("the disk does not come after") << 4.0 << 4.0 << 4.2;
        QTest::newRow("no sound") << -1.0 << -1.0 << 9.0;
        QTest::newRow("sound that has just begun") << -1.0 << 4.0 << 9.0;
        QTest::newRow("nobody knows how much is there") << 4.0 << 4.0 << -1.0;
    }

    void what_stands_still_for_another_reason_is_left_alone()
    {
        QFETCH(double, before);
        QFETCH(double, now);
        QFETCH(double, buffered);
        const auto known = [](double value) { return value < 0 ? std::nullopt : std::optional(value); };
        SoundWatch watch;
        watch.position_moved(m_start);
        QVERIFY(!watch.stands_still(known(before), known(buffered)));
        QVERIFY(!watch.stands_still(known(now), known(buffered)));
    }

private:
    const SoundWatch::Clock::time_point m_start = SoundWatch::Clock::now();
};

TAVEL_TEST_MAIN(TstSoundWatch)
#include "tst_sound_watch.moc"
