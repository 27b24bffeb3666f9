#include "tavel_hsm.h"

#include "custom_event.h"

#include <QtCore/QtGlobal>

namespace
{

QCustomEvent reserved_empty(empty_event);
QCustomEvent reserved_init(init_event);
QCustomEvent reserved_entry(entry_event);
QCustomEvent reserved_exit(exit_event);

/// A check of the machine: its text and the line number that bug reports name it by.
struct Check {
    const char* text;
    int line;
};

constexpr Check starts_at_top{"myState == &TavelHsm::top && mySource != 0", 45};
constexpr Check starts_one_level_down{"s == TRIGGER(myState, Q_EMPTY_SIG)", 49};
constexpr Check drills_one_level_down{"s == TRIGGER(myState, Q_EMPTY_SIG)", 54};
constexpr Check target_is_not_top{"target != &TavelHsm::top", 73};
constexpr Check source_is_above{"s", 76};
constexpr Check has_common_ancestor{"0", 171};
constexpr Check entry_path_fits{"e < &entry[DIM(entry)]", 173};
constexpr Check initial_is_a_child{"target == TRIGGER(myState, Q_EMPTY_SIG)", 180};
constexpr Check chain_fits{
    "tran->myChain[0] != 0 && c < &tran->myChain[(sizeof(tran->myChain)/sizeof(*(tran->myChain)))]", 191};

bool check(bool holds, const Check& what)
{
    if (!holds)
        qWarning("ASSERT: \"%s\" in %s (%d)", what.text, "tavel_hsm", what.line);
    return holds;
}

/// What a first run performs, in the order of its replay.
class Recorder
{
public:
    explicit Recorder(TavelHsm::Tran* tran) : tran_(tran) { tran_->myActionBits = 0; }

    void add(TavelHsm::State state, ReservedSignal signal)
    {
        if (actions_ < TavelHsm::Tran::max_actions) {
            tran_->myChain[actions_] = state;
            tran_->myActionBits |= static_cast<std::uint64_t>(signal) << (2 * actions_);
        }
        ++actions_;
    }

    /// Closes the record with the state that the transition ends in.
    /// @return false when there were too many actions; the record is then empty, and the next run searches again.
    bool finish(TavelHsm::State last)
    {
        if (actions_ > TavelHsm::Tran::max_actions) {
            tran_->myChain[0] = {};
            tran_->myActionBits = 0;
            return false;
        }
        tran_->myChain[actions_] = last;
        return true;
    }

private:
    TavelHsm::Tran* tran_;
    unsigned actions_ = 0;
};

/// The states to enter, from the target upward; place 0 is the end mark.
class EntryPath
{
public:
    static constexpr int dim =
        8; ///< a longer path is reported; the room behind it keeps the report from becoming a fault

    explicit EntryPath(TavelHsm::State target) { path_[1] = target; }

    void store(TavelHsm::State state)
    {
        if (e_ + 1 < static_cast<int>(path_.size()))
            path_[static_cast<std::size_t>(++e_)] = state;
    }

    void step_back() { --e_; }

    /// Looks for @p state from the last stored place down; found, it and what lies above it are not entered.
    bool cut_at(TavelHsm::State state)
    {
        for (int k = e_; k > 0; --k) {
            if (path_[static_cast<std::size_t>(k)] == state) {
                e_ = k - 1;
                return true;
            }
        }
        return false;
    }

    bool fits() const { return e_ < dim; }

    /// The next state to enter, the outermost first; none at the end.
    TavelHsm::State take() { return e_ > 0 ? path_[static_cast<std::size_t>(e_--)] : TavelHsm::State(); }

private:
    std::array<TavelHsm::State, 128> path_{};
    int e_ = 1;
};

} // namespace

QCustomEvent* const pkgStdEvt[4] = {&reserved_empty, &reserved_init, &reserved_entry, &reserved_exit};

TavelHsm::TavelHsm(State initial) : myState(&TavelHsm::top), mySource(initial) {}

TavelHsm::~TavelHsm() = default;

TavelHsm::State TavelHsm::top(const QEvent*)
{
    return {};
}

/// Sends a reserved event to @p state. Asking no state answers no state, so that a broken hierarchy ends a search
/// instead of the program.
TavelHsm::State TavelHsm::trigger(State state, ReservedSignal signal)
{
    return state ? state(this, pkgStdEvt[signal]) : State();
}

void TavelHsm::init(const QEvent* e)
{
    if (!check(myState == State(&TavelHsm::top) && bool(mySource), starts_at_top) && !mySource)
        return;
    State s = myState;
    mySource(this, e);
    check(s == trigger(myState, Q_EMPTY_SIG), starts_one_level_down);
    s = myState;
    trigger(s, Q_ENTRY_SIG);
    while (!trigger(s, Q_INIT_SIG) && s) {
        if (myState == s)
            break; // a handler that answers "handled" without moving would drill for ever
        check(s == trigger(myState, Q_EMPTY_SIG), drills_one_level_down);
        s = myState;
        trigger(s, Q_ENTRY_SIG);
    }
}

void TavelHsm::dispatch(const QEvent* e)
{
    mySource = myState;
    while (mySource)
        mySource = mySource(this, e);
}

int TavelHsm::isIn(State state)
{
    for (State s = myState; s; s = trigger(s, Q_EMPTY_SIG)) {
        if (s == state)
            return 1;
    }
    return 0;
}

void TavelHsm::tranStat(Tran* tran, State target)
{
    check(!(target == State(&TavelHsm::top)), target_is_not_top);
    for (State s = myState; !(s == mySource);) {
        if (!check(bool(s), source_is_above))
            break;
        const State parent = trigger(s, Q_EXIT_SIG);
        s = parent ? parent : trigger(s, Q_EMPTY_SIG);
    }
    if (!tran->myChain[0]) {
        tranSetup(tran, target);
        return;
    }
    const State* c = tran->myChain.data();
    for (std::uint64_t a = tran->myActionBits; a != 0; a >>= 2)
        trigger(*c++, static_cast<ReservedSignal>(a & 3));
    myState = *c;
}

void TavelHsm::tranSetup(Tran* tran, State target)
{
    Recorder recorder(tran);
    EntryPath entry(target);
    const auto record = [&](State state, ReservedSignal signal) {
        if (!trigger(state, signal))
            recorder.add(state, signal);
    };
    const auto leave_source = [&] {
        if (mySource == target) { // (a) to itself
            record(mySource, Q_EXIT_SIG);
            return;
        }
        const State p = trigger(target, Q_EMPTY_SIG);
        if (mySource == p) // (b) to a child
            return;
        const State q = trigger(mySource, Q_EMPTY_SIG);
        if (q == p) { // (c) to a sibling
            record(mySource, Q_EXIT_SIG);
            return;
        }
        if (q == target) { // (d) to the parent
            record(mySource, Q_EXIT_SIG);
            entry.step_back();
            return;
        }
        entry.store(p);
        for (State s = trigger(p, Q_EMPTY_SIG); s; s = trigger(s, Q_EMPTY_SIG)) {
            if (mySource == s) // (e) to a deeper descendant
                return;
            entry.store(s);
        }
        record(mySource, Q_EXIT_SIG);
        if (entry.cut_at(q)) // (f) the source's parent is above the target
            return;
        for (State s = q; s; s = trigger(s, Q_EMPTY_SIG)) { // (g) anywhere else
            if (entry.cut_at(s))
                return;
            record(s, Q_EXIT_SIG);
        }
        check(false, has_common_ancestor);
    };

    leave_source();
    check(entry.fits(), entry_path_fits);
    while (const State s = entry.take())
        record(s, Q_ENTRY_SIG);
    myState = target;
    while (target && !trigger(target, Q_INIT_SIG)) {
        if (myState == target)
            break; // a handler that answers "handled" without moving would drill for ever
        check(target == trigger(myState, Q_EMPTY_SIG), initial_is_a_child);
        recorder.add(target, Q_INIT_SIG);
        target = myState;
        record(target, Q_ENTRY_SIG);
    }
    if (recorder.finish(target))
        check(bool(tran->myChain[0]), chain_fits);
}
