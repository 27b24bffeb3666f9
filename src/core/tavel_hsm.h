#pragma once

#include <QtCore/QEvent>

#include <array>
#include <cstdint>

class QCustomEvent;

/// The reserved signals; their events are asked for with pkgStdEvt.
enum ReservedSignal : unsigned {
    Q_EMPTY_SIG = 0, ///< asks for the parent; a handler must not act on it
    Q_INIT_SIG = 1,  ///< take the initial transition to one direct child, if there is one
    Q_ENTRY_SIG = 2, ///< run the entry action
    Q_EXIT_SIG = 3,  ///< run the exit action
};

/// The event types of the reserved events, for the `switch` of a state handler.
enum ReservedEvent : int {
    empty_event = 1000,
    init_event = 1001,
    entry_event = 1002,
    exit_event = 1003,
};

/// The four reserved events, indexed by ReservedSignal. They live from static initialisation to the end of the process.
extern QCustomEvent* const pkgStdEvt[4];

/// A hierarchical state machine whose states are member functions of the derived class.
///
/// A handler answers 0 (State()) to an event that it has handled and its parent to any other, so that the tree is what
/// the handlers return. Everything runs on the GUI thread; nothing here allocates memory. A check that fails prints one
/// warning and goes on.
class TavelHsm
{
public:
    /// A state: a handler bound to the machine it is called on. The default value is no state, "handled".
    class State
    {
    public:
        using Handler = State (TavelHsm::*)(const QEvent*);

        State() = default;

        /// Takes a handler of the machine or of a class derived from it (which may have other bases before the
        /// machine).
        template<class Machine>
        // NOLINTNEXTLINE(google-explicit-constructor): a state is named by its handler
        State(State (Machine::*handler)(const QEvent*)) : handler_(static_cast<Handler>(handler))
        {
        }

        /// Calls the handler. The stored pointer shifts the object from this base to the derived class; the sanitizer's
        /// check of the object's type looks at the shifted address with the base's eyes and is left out here.
        [[gnu::no_sanitize("vptr")]] State operator()(TavelHsm* machine, const QEvent* e) const
        {
            return (machine->*handler_)(e);
        }
        explicit operator bool() const { return handler_ != nullptr; }
        bool operator==(const State& other) const { return handler_ == other.handler_; }

    private:
        Handler handler_ = nullptr;
    };

    /// The cache of one transition: what its first run did, replayed by every later one.
    ///
    /// Each place that takes a transition owns one, static and zero-initialised, and never frees it. The action word
    /// has 64 bits, two for each action: random state trees record more than the 7 actions that 16 bits hold. A
    /// transition of more than 31 actions is not kept and searched anew each time.
    struct Tran {
        static constexpr unsigned max_actions = 31;

        std::array<State, 128> myChain{};
        std::uint64_t myActionBits = 0;
    };

    /// @param initial the pseudo-state: called once by init(), it sets myState to a direct child of top.
    explicit TavelHsm(State initial);
    virtual ~TavelHsm();

    TavelHsm(const TavelHsm&) = delete;
    TavelHsm& operator=(const TavelHsm&) = delete;

    /// The root: handles everything, is never entered or exited, and never a target.
    State top(const QEvent* e);

    /// Runs the top-most initial transition and drills down to the initial leaf. Call it once, when the object is
    /// whole.
    void init(const QEvent* e = nullptr);

    /// Delivers @p e to the current state and, while it is left unhandled, to one ancestor after the other.
    void dispatch(const QEvent* e);

    /// @return 1 when @p state is the current state or one of its ancestors, else 0.
    int isIn(State state);

protected:
    /// Takes a transition from the handler that is running (mySource) to @p target. Only from inside a handler, which
    /// then returns 0.
    /// @param tran the cache of this place and target.
    void tranStat(Tran* tran, State target);

    State myState;  ///< the current state: a leaf after init() and after every transition
    State mySource; ///< during dispatch() the state whose handler is asked; before init() the pseudo-state

private:
    void tranSetup(Tran* tran, State target);
    State trigger(State state, ReservedSignal signal);
};
