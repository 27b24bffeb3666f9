#include "custom_event.h"
#include "qpe_application.h"
#include "test_main.h"

/// Requests to the player: they carry their number and their value, from any thread.
class TestCustomEvent : public QObject
{
    Q_OBJECT

private:
    struct Target {
        int mode;
        long long position;
    };

    class Receiver : public QObject
    {
    public:
        std::vector<int> types;
        std::vector<long long> positions;

    protected:
        bool event(QEvent* event) override
        {
            if (event->type() < 1000)
                return QObject::event(event);
            types.push_back(event->type());
            if (const auto* const target = static_cast<QCustomEvent*>(event)->data<Target>())
                positions.push_back(target->position);
            return true;
        }
    };

private slots:
    void an_event_carries_its_number_and_value()
    {
        const QCustomEvent event(2003, Target{3, 61000});
        QCOMPARE(static_cast<int>(event.type()), 2003);
        QVERIFY(event.data<Target>());
        QCOMPARE(event.data<Target>()->mode, 3);
        QCOMPARE(event.data<Target>()->position, 61000);
        QVERIFY(!event.data<int>());
        QVERIFY(!QCustomEvent(2000).data<int>());
    }

    void a_clone_owns_its_own_copy()
    {
        auto original = std::make_unique<QCustomEvent>(2003, std::string(1000, 'x'));
        const std::unique_ptr<QCustomEvent> copy(original->clone());
        QVERIFY(copy->data<std::string>() != original->data<std::string>());
        original.reset();
        QCOMPARE(static_cast<int>(copy->type()), 2003);
        QCOMPARE(*copy->data<std::string>(), std::string(1000, 'x'));
    }

    void posted_events_arrive_in_order_from_the_event_loop()
    {
        Receiver receiver;
        post_custom_event(&receiver, 2000);
        post_custom_event(&receiver, new QCustomEvent(2003, Target{4, 5}));
        post_custom_event(&receiver, 2003, Target{4, 6});
        QVERIFY(receiver.types.empty());
        QCoreApplication::processEvents();
        QCOMPARE(receiver.types, (std::vector<int>{2000, 2003, 2003}));
        QCOMPARE(receiver.positions, (std::vector<long long>{5, 6}));
    }

    void an_event_for_nobody_is_let_go()
    {
        auto payload = std::make_shared<int>(1);
        post_custom_event(nullptr, new QCustomEvent(2000, payload));
        QCOMPARE(payload.use_count(), 1L);
    }

    void events_of_other_threads_arrive_whole()
    {
        constexpr int count = 1000;
        Receiver receiver;
        std::thread engine([&] {
            for (int i = 0; i < count; ++i) {
                post_custom_event(&receiver, 2003, Target{3, i});
                QPEApplication::wakeUpGuiThread();
            }
        });
        const auto finish = qScopeGuard([&] { engine.join(); });
        QTRY_COMPARE(receiver.positions.size(), size_t{count});
        for (int i = 0; i < count; ++i)
            QCOMPARE(receiver.positions[static_cast<size_t>(i)], i);
    }
};

TAVEL_TEST_MAIN_WITH(QPEApplication, TestCustomEvent)
#include "tst_custom_event.moc"
