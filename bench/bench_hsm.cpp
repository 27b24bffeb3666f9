// The state machine engine beside QStateMachine and Boost.Statechart: a transition between two siblings with entry and
// exit actions, and an event that the innermost of four nested states leaves to the outermost.

#include "custom_event.h"
#include "tavel_hsm.h"

#include <QtCore/QCoreApplication>
#include <QtStateMachine/QAbstractTransition>
#include <QtStateMachine/QState>
#include <QtStateMachine/QStateMachine>

#include <boost/mpl/list.hpp>
#include <boost/statechart/custom_reaction.hpp>
#include <boost/statechart/event.hpp>
#include <boost/statechart/simple_state.hpp>
#include <boost/statechart/state_machine.hpp>
#include <boost/statechart/transition.hpp>

#include <chrono>
#include <cstdio>

namespace
{

constexpr int go = 2000;
constexpr int bubble = 2001;
long actions = 0;

/// outer > second > third > { left, right }; go changes between left and right, bubble is handled by outer.
class Ours : public TavelHsm
{
public:
    Ours() : TavelHsm(&Ours::initial) { init(); }

private:
    State initial(const QEvent*)
    {
        myState = &Ours::outer;
        return {};
    }
    template<State (Ours::*Child)(const QEvent*)> State composite(const QEvent* e, State parent)
    {
        if (static_cast<int>(e->type()) == init_event) {
            myState = Child;
            return {};
        }
        return parent;
    }
    State outer(const QEvent* e)
    {
        if (static_cast<int>(e->type()) == bubble) {
            ++actions;
            return {};
        }
        return composite<&Ours::second>(e, &TavelHsm::top);
    }
    State second(const QEvent* e) { return composite<&Ours::third>(e, &Ours::outer); }
    State third(const QEvent* e) { return composite<&Ours::left>(e, &Ours::second); }
    State leaf(const QEvent* e, Tran* tran, State other)
    {
        switch (static_cast<int>(e->type())) {
        case entry_event:
        case exit_event:
            ++actions;
            return {};
        case go:
            tranStat(tran, other);
            return {};
        default:
            return &Ours::third;
        }
    }
    State left(const QEvent* e)
    {
        static Tran tran;
        return leaf(e, &tran, &Ours::right);
    }
    State right(const QEvent* e)
    {
        static Tran tran;
        return leaf(e, &tran, &Ours::left);
    }
};

namespace sc = boost::statechart;

struct EventGo : sc::event<EventGo> {
};
struct EventBubble : sc::event<EventBubble> {
};
struct Outer;
struct Second;
struct Third;
struct Left;
struct Right;
struct Chart : sc::state_machine<Chart, Outer> {
};
struct Outer : sc::simple_state<Outer, Chart, Second> {
    using reactions = sc::custom_reaction<EventBubble>;
    sc::result react(const EventBubble&)
    {
        ++actions;
        return discard_event();
    }
};
struct Second : sc::simple_state<Second, Outer, Third> {
};
struct Third : sc::simple_state<Third, Second, Left> {
};
struct Left : sc::simple_state<Left, Third> {
    using reactions = sc::transition<EventGo, Right>;
    Left() { ++actions; }
    ~Left() { ++actions; }
};
struct Right : sc::simple_state<Right, Third> {
    using reactions = sc::transition<EventGo, Left>;
    Right() { ++actions; }
    ~Right() { ++actions; }
};

class OnType : public QAbstractTransition
{
public:
    OnType(int type, QAbstractState* target) : type_(type)
    {
        if (target != nullptr)
            setTargetState(target);
    }

protected:
    bool eventTest(QEvent* event) override { return event->type() == type_; }
    void onTransition(QEvent*) override { ++actions; }

private:
    int type_;
};

class Leaf : public QState
{
public:
    using QState::QState;

protected:
    void onEntry(QEvent*) override { ++actions; }
    void onExit(QEvent*) override { ++actions; }
};

template<typename Step> double nanoseconds(long rounds, Step step)
{
    using Clock = std::chrono::steady_clock;
    double best = 1e18;
    for (int repeat = 0; repeat < 5; ++repeat) {
        const auto start = Clock::now();
        for (long i = 0; i < rounds; ++i)
            step();
        best = std::min(best, std::chrono::duration<double, std::nano>(Clock::now() - start).count() /
                                  static_cast<double>(rounds));
    }
    return best;
}

void print(const char* name, double transition, double dispatch, double ours_transition, double ours_dispatch)
{
    std::printf("| %-18s | %10.1f | %8.1fx | %10.1f | %8.1fx |\n", name, transition, transition / ours_transition,
                dispatch, dispatch / ours_dispatch);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);

    Ours ours;
    const QEvent event_go{static_cast<QEvent::Type>(go)};
    const QEvent event_bubble{static_cast<QEvent::Type>(bubble)};
    const double ours_transition = nanoseconds(2'000'000, [&] { ours.dispatch(&event_go); });
    const double ours_dispatch = nanoseconds(2'000'000, [&] { ours.dispatch(&event_bubble); });

    Chart chart;
    chart.initiate();
    const EventGo chart_go;
    const EventBubble chart_bubble;
    const double boost_transition = nanoseconds(1'000'000, [&] { chart.process_event(chart_go); });
    const double boost_dispatch = nanoseconds(1'000'000, [&] { chart.process_event(chart_bubble); });

    QStateMachine machine;
    auto* outer = new QState(&machine);
    auto* second = new QState(outer);
    auto* third = new QState(second);
    auto* left = new Leaf(third);
    auto* right = new Leaf(third);
    machine.setInitialState(outer);
    outer->setInitialState(second);
    second->setInitialState(third);
    third->setInitialState(left);
    left->addTransition(new OnType(go, right));
    right->addTransition(new OnType(go, left));
    outer->addTransition(new OnType(bubble, nullptr));
    machine.start();
    QCoreApplication::processEvents();
    const auto post = [&](int type) {
        machine.postEvent(new QEvent(static_cast<QEvent::Type>(type)));
        QCoreApplication::processEvents();
    };
    const double qt_transition = nanoseconds(50'000, [&] { post(go); });
    const double qt_dispatch = nanoseconds(50'000, [&] { post(bubble); });

    std::printf("| state machine      | transition |    ratio | dispatch 4 |    ratio |\n");
    std::printf("|                    |         ns |          | levels, ns |          |\n");
    std::printf("|--------------------|------------|----------|------------|----------|\n");
    print("TavelHsm", ours_transition, ours_dispatch, ours_transition, ours_dispatch);
    print("Boost.Statechart", boost_transition, boost_dispatch, ours_transition, ours_dispatch);
    print("QStateMachine", qt_transition, qt_dispatch, ours_transition, ours_dispatch);
    return actions > 0 ? 0 : 1;
}
