#include "player.h"
#include "printed_text.h"
#include "qpe_application.h"
#include "tavel_callbacks.h"
#include "test_main.h"

#include <QtTest/QtTest>

class EngineBridgeTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        player = std::make_unique<Player>();
        QTRY_VERIFY(player->in(&TavelVideo::no_file_state));
        player->settle();
        scripted_engine::set_automatic_reports(false);
        counter = std::make_unique<EventCounter>(player->window());
    }

    void cleanup()
    {
        counter.reset();
        player.reset();
    }

    void the_callbacks_emit_a_signal_for_each_report_and_answer_1()
    {
        TavelCallbacks callbacks;
        QCOMPARE(QString::fromLatin1(callbacks.metaObject()->className()), QStringLiteral("TavelCallbacks"));
        for (const char* signal : {"state_signal(PlayerState)", "time_signal(Time)", "error_signal(RaskStatus)",
                                   "stream_signal(StreamType,StreamState)"})
            QVERIFY2(callbacks.metaObject()->indexOfSignal(signal) >= 0, signal);
        QStringList seen;
        connect(&callbacks, &TavelCallbacks::state_signal,
                [&](PlayerState state) { seen.append(QStringLiteral("state %1").arg(static_cast<int>(state))); });
        connect(&callbacks, &TavelCallbacks::time_signal,
                [&](Time time) { seen.append(QStringLiteral("time %1").arg(time)); });
        connect(&callbacks, &TavelCallbacks::error_signal,
                [&](RaskStatus status) { seen.append(QStringLiteral("error %1").arg(status)); });
        connect(&callbacks, &TavelCallbacks::stream_signal, [&](StreamType type, StreamState state) {
            seen.append(QStringLiteral("stream %1 %2").arg(static_cast<int>(type)).arg(static_cast<int>(state)));
        });
        MediaCallback& engine_side = callbacks;
        QCOMPARE(engine_side.notify_state_change(PlayerState::Playing), 1);
        QCOMPARE(engine_side.notify_time_update(6000000000LL), 1);
        QCOMPARE(engine_side.notify_error(0x80000001U), 1);
        QCOMPARE(engine_side.notify_stream_change(StreamType::Film, StreamState::Ended), 1);
        QCOMPARE(seen, QStringList({"state 4", "time 6000000000", "error 2147483649", "stream 0 2"}));
    }

    void each_state_report_posts_its_event_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("number");
        QTest::newRow("playing") << 4 << 3002;
        QTest::newRow("paused") << 10 << 3003;
        QTest::newRow("stopped") << 6 << 3004;
        QTest::newRow("prepared") << 2 << 3007;
    }
    void each_state_report_posts_its_event()
    {
        QFETCH(int, state);
        QFETCH(int, number);
        scripted_engine::report_state(static_cast<PlayerState>(state));
        QTRY_COMPARE(counter->count(number), 1);
        QCOMPARE(counter->numbers.size(), 1);
    }

    void a_state_without_meaning_posts_nothing()
    {
        for (const int state : {0, 1, 3, 5, 7, 8, 9, 11})
            scripted_engine::report_state(static_cast<PlayerState>(state));
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
    }

    void an_error_is_kept_and_posts_3000()
    {
        QCOMPARE(player->window()->last_error(), 0U);
        scripted_engine::report_error(0x1234);
        QTRY_COMPARE(counter->count(player_event::engine_error), 1);
        QCOMPARE(player->window()->last_error(), 0x1234U);
    }

    void success_and_status_37_never_reach_the_chart()
    {
        scripted_engine::report_error(0);
        scripted_engine::report_error(37);
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
        QCOMPARE(player->window()->last_error(), 0U);
    }

    void a_stream_that_starts_posts_3006_whatever_its_type()
    {
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        scripted_engine::report_stream(static_cast<StreamType>(3), StreamState::Started);
        QTRY_COMPARE(counter->count(player_event::stream_started), 2);
    }

    void only_the_end_of_the_film_itself_posts_3005()
    {
        scripted_engine::report_stream(static_cast<StreamType>(1), StreamState::Ended);
        scripted_engine::report_stream(StreamType::Film, static_cast<StreamState>(1));
        player->settle();
        QVERIFY(counter->numbers.isEmpty());
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        QTRY_COMPARE(counter->count(player_event::end_of_stream), 1);
    }

    void positions_within_a_second_post_2104_once()
    {
        scripted_engine::report_time(1000);
        scripted_engine::report_time(1400);
        scripted_engine::report_time(1999);
        player->settle();
        QCOMPARE(counter->count(player_event::time_display), 1);
        scripted_engine::report_time(2000);
        player->settle();
        QCOMPARE(counter->count(player_event::time_display), 2);
        QCOMPARE(player->window()->position(), Time(2000));
    }

    void the_position_is_64_bits_wide()
    {
        scripted_engine::report_time(5'000'000'000LL);
        QCOMPARE(player->window()->position(), Time(5'000'000'000LL));
    }

    void a_position_that_changes_the_subtitle_posts_2103_while_subtitles_are_on()
    {
        counter.reset();
        scripted_engine::set_automatic_reports(true);
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), QStringLiteral("1"));
        scripted_engine::set_subtitles(0, {{1000, 2000, "one"}, {3000, 4000, "two"}});
        player->play_a_film();
        counter = std::make_unique<EventCounter>(player->window());
        scripted_engine::report_time(1500);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 1);
        scripted_engine::report_time(1600);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 1);
        scripted_engine::report_time(2500);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 2);

        player->combo("subtitle_combo_display")->setCurrentIndex(1);
        player->post(player_event::reload_subtitles);
        player->settle();
        counter->numbers.clear();
        scripted_engine::report_time(3500);
        player->settle();
        QCOMPARE(counter->count(player_event::subtitle_redraw), 0);
    }

    void every_error_and_the_end_of_the_film_are_printed()
    {
        PrintedText printed;
        scripted_engine::report_error(0x12ab);
        scripted_engine::report_error(0);
        scripted_engine::report_error(37);
        scripted_engine::report_stream(StreamType::Film, StreamState::Ended);
        scripted_engine::report_stream(StreamType::Film, StreamState::Started);
        const QByteArray text = printed.take();
        QCOMPARE(text.count("handle_error: "), 3);
        QVERIFY2(text.contains("handle_error: 0x000012ab \nhandle_error: 0x00000000 \nhandle_error: 0x00000025 \n"),
                 text.constData());
        QCOMPARE(text.count("EOS!!!\n"), 1);
    }

    void reports_wait_for_the_event_loop()
    {
        scripted_engine::report_state(PlayerState::Playing);
        QVERIFY(counter->numbers.isEmpty());
        QTRY_COMPARE(counter->count(player_event::engine_playing), 1);
    }

private:
    std::unique_ptr<Player> player;
    std::unique_ptr<EventCounter> counter;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, EngineBridgeTest)
#include "tst_engine_bridge.moc"
