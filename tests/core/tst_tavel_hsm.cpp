#include "custom_event.h"
#include "tavel_hsm.h"
#include "test_main.h"

#include <random>

namespace
{

constexpr int node_count = 24;
constexpr int none = -1;

/// A machine whose tree, actions and transitions are data, so that any hierarchy can be built by a test.
///
/// Node n's handler is TableMachine::node<n>; the root is none. What the nodes do is written into a log.
class TableMachine : public QObject, public TavelHsm
{
public:
    struct Node {
        int parent = none;
        int initial = none; ///< child that the initial transition goes to
        bool has_entry = true;
        bool has_exit = true;
        std::map<int, int> transitions; ///< event type to target
    };

    explicit TableMachine(std::vector<Node> nodes, int start, bool cached)
        : TavelHsm(&TableMachine::initial), nodes_(std::move(nodes)), start_(start), cached_(cached)
    {
    }

    void start() { init(); }

    QStringList send(int type)
    {
        log_.clear();
        const QEvent event{static_cast<QEvent::Type>(type)};
        dispatch(&event);
        return log_;
    }

    int current() const { return index_of(myState); }
    QStringList log() const { return log_; }
    const Tran& tran(int source, int target) { return trans_[{source, target}]; }
    void set_has_entry(int node, bool on) { nodes_[static_cast<std::size_t>(node)].has_entry = on; }
    void set_source_for_test(int node) { mySource = state_of(node); }
    using TavelHsm::tranStat;

    static State state_of(int node)
    {
        return node == none ? State(&TavelHsm::top) : states()[static_cast<std::size_t>(node)];
    }

    static int index_of(State state)
    {
        for (int i = 0; i < node_count; ++i) {
            if (states()[static_cast<std::size_t>(i)] == state)
                return i;
        }
        return none;
    }

private:
    template<int... N> static std::array<State, node_count> make_states(std::integer_sequence<int, N...>)
    {
        return {State(&TableMachine::node<N>)...};
    }

    static const std::array<State, node_count>& states()
    {
        static const auto all = make_states(std::make_integer_sequence<int, node_count>());
        return all;
    }

    State initial(const QEvent*)
    {
        myState = state_of(start_);
        return {};
    }

    template<int N> State node(const QEvent* e) { return handle(N, e); }

    State handle(int n, const QEvent* e)
    {
        const Node& self = nodes_[static_cast<std::size_t>(n)];
        switch (static_cast<int>(e->type())) {
        case empty_event:
            break;
        case init_event:
            if (self.initial == none)
                break;
            log_ << QStringLiteral("init %1").arg(n);
            myState = state_of(self.initial);
            return {};
        case entry_event:
            if (!self.has_entry)
                break;
            log_ << QStringLiteral("enter %1").arg(n);
            return {};
        case exit_event:
            if (!self.has_exit)
                break;
            log_ << QStringLiteral("exit %1").arg(n);
            return {};
        default:
            if (const auto found = self.transitions.find(e->type()); found != self.transitions.end()) {
                Tran once;
                tranStat(cached_ ? &trans_[{n, found->second}] : &once, state_of(found->second));
                return {};
            }
        }
        return state_of(self.parent);
    }

    std::vector<Node> nodes_;
    int start_;
    bool cached_;
    QStringList log_;
    std::map<std::pair<int, int>, Tran> trans_;
};

/// The same semantics, written apart: it works on the tree itself and searches the common ancestor every time.
class Reference
{
public:
    Reference(std::vector<TableMachine::Node> nodes, int start) : nodes_(std::move(nodes)), current_(start)
    {
        enter(start);
        drill();
    }

    QStringList send(int type)
    {
        log_.clear();
        for (int s = current_; s != none; s = at(s).parent) {
            if (const auto found = at(s).transitions.find(type); found != at(s).transitions.end()) {
                go(s, found->second);
                break;
            }
        }
        return log_;
    }

    int current() const { return current_; }
    QStringList log() const { return log_; }

private:
    const TableMachine::Node& at(int n) const { return nodes_[static_cast<std::size_t>(n)]; }

    std::vector<int> path(int n) const
    {
        std::vector<int> up;
        for (; n != none; n = at(n).parent)
            up.insert(up.begin(), n);
        return up;
    }

    void enter(int n)
    {
        if (at(n).has_entry)
            log_ << QStringLiteral("enter %1").arg(n);
        current_ = n;
    }

    void leave(int n)
    {
        if (at(n).has_exit)
            log_ << QStringLiteral("exit %1").arg(n);
    }

    void drill()
    {
        while (at(current_).initial != none) {
            log_ << QStringLiteral("init %1").arg(current_);
            enter(at(current_).initial);
        }
    }

    void go(int source, int target)
    {
        for (int s = current_; s != source; s = at(s).parent)
            leave(s);
        const auto from = path(source);
        const auto to = path(target);
        std::size_t common = 0;
        while (common < from.size() && common < to.size() && from[common] == to[common])
            ++common;
        if (source == target)
            --common;
        for (std::size_t i = from.size(); i > common; --i)
            leave(from[i - 1]);
        current_ = target;
        for (std::size_t i = common; i < to.size(); ++i)
            enter(to[i]);
        current_ = target;
        drill();
    }

    std::vector<TableMachine::Node> nodes_;
    int current_;
    QStringList log_;
};

using Node = TableMachine::Node;

/// 0 > 1 > 2 (> 3 leaf, 4 leaf), 1 > 5 > 6 > 7, 8 > 9 beside 0; every composite has its first child as initial.
std::vector<Node> family_tree()
{
    std::vector<Node> nodes(10);
    const int parents[] = {none, 0, 1, 2, 2, 1, 5, 6, none, 8};
    const int initials[] = {1, 2, 3, none, none, 6, 7, none, 9, none};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i].parent = parents[i];
        nodes[i].initial = initials[i];
    }
    return nodes;
}

std::vector<Node> random_tree(std::mt19937& random, int size)
{
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::vector<Node> nodes(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        Node& node = nodes[static_cast<std::size_t>(i)];
        int depth = 0;
        node.parent = i == 0 ? none : below(i + 1) - 1;
        for (int s = node.parent; s != none; s = nodes[static_cast<std::size_t>(s)].parent)
            ++depth;
        if (depth > 5)
            node.parent = none;
        node.has_entry = below(4) != 0;
        node.has_exit = below(4) != 0;
    }
    for (int i = 0; i < size; ++i) {
        std::vector<int> children;
        for (int j = 0; j < size; ++j) {
            if (nodes[static_cast<std::size_t>(j)].parent == i)
                children.push_back(j);
        }
        if (!children.empty() && below(5) != 0)
            nodes[static_cast<std::size_t>(i)].initial =
                children[static_cast<std::size_t>(below(static_cast<int>(children.size())))];
        for (int event = 2000; event < 2012; ++event) {
            if (below(4) == 0)
                nodes[static_cast<std::size_t>(i)].transitions[event] = below(size);
        }
    }
    return nodes;
}

} // namespace

class TestTavelHsm : public QObject
{
    Q_OBJECT

private slots:
    void start_enters_one_state_after_the_other_down_to_the_leaf();
    void unhandled_event_ends_at_the_root_without_a_word();
    void every_topology_gives_the_same_log_cold_replayed_and_searched_data();
    void every_topology_gives_the_same_log_cold_replayed_and_searched();
    void self_transition_exits_enters_and_drills();
    void transition_to_the_parent_does_not_enter_it_again();
    void composite_handling_for_a_leaf_first_exits_up_to_itself();
    void replay_calls_what_answered_on_the_first_run_even_if_it_would_answer_otherwise_now();
    void transition_without_actions_only_sets_the_state();
    void is_in_knows_the_state_and_its_ancestors_only();
    void is_in_top_always();
    void targeting_the_root_is_reported();
    void started_twice_is_reported();
    void initial_transition_over_two_levels_is_reported();
    void drilling_over_two_levels_is_reported();
    void source_not_above_the_current_state_is_reported_and_survived();
    void entry_path_beyond_eight_is_reported_and_still_entered();
    void a_target_without_a_place_in_the_tree_is_reported_and_survived();
    void a_transition_from_no_state_to_none_leaves_an_empty_record_and_is_reported();
    void reserved_events_stand_in_their_table();
    void a_transition_of_31_actions_is_kept_and_a_longer_one_searched_every_time_data();
    void a_transition_of_31_actions_is_kept_and_a_longer_one_searched_every_time();
    void random_trees_behave_as_the_reference();
};

void TestTavelHsm::start_enters_one_state_after_the_other_down_to_the_leaf()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    QCOMPARE(machine.log(), (QStringList{"enter 0", "init 0", "enter 1", "init 1", "enter 2", "init 2", "enter 3"}));
    QCOMPARE(machine.current(), 3);
}

void TestTavelHsm::unhandled_event_ends_at_the_root_without_a_word()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    QTest::failOnWarning(QRegularExpression(".*"));
    QCOMPARE(machine.send(2999), QStringList());
    QCOMPARE(machine.current(), 3);
}

void TestTavelHsm::every_topology_gives_the_same_log_cold_replayed_and_searched_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("target");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("self, a leaf") << 3 << 3 << QStringList{"exit 3", "enter 3"};
    QTest::newRow("child") << 2 << 4 << QStringList{"exit 3", "enter 4"};
    QTest::newRow("sibling") << 3 << 4 << QStringList{"exit 3", "enter 4"};
    QTest::newRow("parent") << 3 << 2 << QStringList{"exit 3", "init 2", "enter 3"};
    QTest::newRow("grandparent") << 3 << 1 << QStringList{"exit 3", "exit 2", "init 1", "enter 2", "init 2", "enter 3"};
    QTest::newRow("grandchild") << 1 << 7 << QStringList{"exit 3", "exit 2", "enter 5", "enter 6", "enter 7"};
    QTest::newRow("uncle") << 3 << 5
                           << QStringList{"exit 3", "exit 2", "enter 5", "init 5", "enter 6", "init 6", "enter 7"};
    QTest::newRow("nephew") << 2 << 6 << QStringList{"exit 3", "exit 2", "enter 5", "enter 6", "init 6", "enter 7"};
    QTest::newRow("cousin") << 3 << 6 << QStringList{"exit 3", "exit 2", "enter 5", "enter 6", "init 6", "enter 7"};
    QTest::newRow("deep, over the root") << 3 << 9
                                         << QStringList{"exit 3", "exit 2", "exit 1", "exit 0", "enter 8", "enter 9"};
    QTest::newRow("over the root, from the outermost")
        << 0 << 8 << QStringList{"exit 3", "exit 2", "exit 1", "exit 0", "enter 8", "init 8", "enter 9"};
}

void TestTavelHsm::every_topology_gives_the_same_log_cold_replayed_and_searched()
{
    QFETCH(int, source);
    QFETCH(int, target);
    QFETCH(QStringList, log);

    constexpr int there = 2001;
    constexpr int back = 2002;
    std::vector<Node> nodes = family_tree();
    nodes[static_cast<std::size_t>(source)].transitions[there] = target;
    for (const int root : {0, 8})
        nodes[static_cast<std::size_t>(root)].transitions[back] = 3;
    TableMachine cached(nodes, 0, true);
    TableMachine searched(nodes, 0, false);
    Reference reference(nodes, 0);
    cached.start();
    searched.start();

    QCOMPARE(cached.send(there), log);
    QVERIFY(bool(cached.tran(source, target).myChain[0]));
    const int reached = cached.current();
    for (int run = 0; run < 3; ++run) {
        QCOMPARE(searched.send(there), log);
        QCOMPARE(reference.send(there), log);
        QCOMPARE(searched.current(), reached);
        QCOMPARE(reference.current(), reached);
        cached.send(back);
        searched.send(back);
        reference.send(back);
        QCOMPARE(cached.current(), 3);
        QCOMPARE(cached.send(there), log);
        QCOMPARE(cached.current(), reached);
    }
}

void TestTavelHsm::self_transition_exits_enters_and_drills()
{
    std::vector<Node> nodes = family_tree();
    nodes[1].transitions[2001] = 1;
    TableMachine machine(nodes, 0, true);
    machine.start();
    const QStringList expected{"exit 3", "exit 2", "exit 1", "enter 1", "init 1", "enter 2", "init 2", "enter 3"};
    QCOMPARE(machine.send(2001), expected);
    QCOMPARE(machine.send(2001), expected);
}

void TestTavelHsm::transition_to_the_parent_does_not_enter_it_again()
{
    std::vector<Node> nodes = family_tree();
    nodes[4].transitions[2001] = 2;
    nodes[3].transitions[2002] = 4;
    TableMachine machine(nodes, 0, true);
    machine.start();
    machine.send(2002);
    QCOMPARE(machine.current(), 4);
    QCOMPARE(machine.send(2001), (QStringList{"exit 4", "init 2", "enter 3"}));
}

void TestTavelHsm::composite_handling_for_a_leaf_first_exits_up_to_itself()
{
    std::vector<Node> nodes = family_tree();
    nodes[0].transitions[2001] = 9;
    TableMachine machine(nodes, 0, true);
    machine.start();
    QCOMPARE(machine.send(2001), (QStringList{"exit 3", "exit 2", "exit 1", "exit 0", "enter 8", "enter 9"}));
}

void TestTavelHsm::replay_calls_what_answered_on_the_first_run_even_if_it_would_answer_otherwise_now()
{
    std::vector<Node> nodes = family_tree();
    nodes[3].transitions[2001] = 4;
    nodes[4].transitions[2002] = 3;
    nodes[4].has_entry = false;
    TableMachine machine(nodes, 0, true);
    machine.start();
    QCOMPARE(machine.send(2001), (QStringList{"exit 3"}));
    machine.set_has_entry(4, true);
    machine.send(2002);
    QCOMPARE(machine.send(2001), (QStringList{"exit 3"}));
    QCOMPARE(machine.current(), 4);
}

void TestTavelHsm::transition_without_actions_only_sets_the_state()
{
    std::vector<Node> nodes(3);
    nodes[1].parent = nodes[2].parent = 0;
    nodes[0].initial = 1;
    for (Node& node : nodes)
        node.has_entry = node.has_exit = false;
    nodes[1].transitions[2001] = 2;
    nodes[2].transitions[2001] = 1;
    TableMachine machine(nodes, 0, true);
    machine.start();
    for (int run = 0; run < 3; ++run) {
        QCOMPARE(machine.send(2001), QStringList());
        QCOMPARE(machine.current(), 2);
        QCOMPARE(machine.tran(1, 2).myActionBits, std::uint64_t(0));
        QVERIFY(machine.tran(1, 2).myChain[0] == TableMachine::state_of(2));
        machine.send(2001);
        QCOMPARE(machine.current(), 1);
    }
}

void TestTavelHsm::is_in_knows_the_state_and_its_ancestors_only()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    for (const int inside : {0, 1, 2, 3})
        QCOMPARE(machine.isIn(TableMachine::state_of(inside)), 1);
    for (const int outside : {4, 5, 6, 7, 8, 9})
        QCOMPARE(machine.isIn(TableMachine::state_of(outside)), 0);
}

void TestTavelHsm::is_in_top_always()
{
    std::vector<Node> nodes = family_tree();
    for (std::size_t i = 0; i < nodes.size(); ++i)
        nodes[i].transitions[2000 + static_cast<int>((i + 1) % nodes.size())] =
            static_cast<int>((i + 1) % nodes.size());
    TableMachine machine(nodes, 0, true);
    machine.start();
    QCOMPARE(machine.isIn(&TavelHsm::top), 1);
    for (int event = 2000; event < 2010; ++event) {
        machine.send(event);
        QCOMPARE(machine.isIn(&TavelHsm::top), 1);
    }
}

void TestTavelHsm::targeting_the_root_is_reported()
{
    std::vector<Node> nodes = family_tree();
    nodes[3].transitions[2001] = none;
    TableMachine machine(nodes, 0, false);
    machine.start();
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"target != &TavelHsm::top\" in tavel_hsm (73)");
    machine.send(2001);
}

void TestTavelHsm::started_twice_is_reported()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"myState == &TavelHsm::top && mySource != 0\" in tavel_hsm (45)");
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"s == TRIGGER(myState, Q_EMPTY_SIG)\" in tavel_hsm (49)");
    machine.start();
    QCOMPARE(machine.current(), 3);
}

void TestTavelHsm::initial_transition_over_two_levels_is_reported()
{
    TableMachine machine(family_tree(), 2, true);
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"s == TRIGGER(myState, Q_EMPTY_SIG)\" in tavel_hsm (49)");
    machine.start();
    QCOMPARE(machine.current(), 3);
}

void TestTavelHsm::drilling_over_two_levels_is_reported()
{
    std::vector<Node> nodes = family_tree();
    nodes[1].initial = 3;
    nodes[5].initial = 7;
    nodes[3].transitions[2001] = 5;
    TableMachine machine(nodes, 0, true);
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"s == TRIGGER(myState, Q_EMPTY_SIG)\" in tavel_hsm (54)");
    machine.start();
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"target == TRIGGER(myState, Q_EMPTY_SIG)\" in tavel_hsm (180)");
    machine.send(2001);
    QCOMPARE(machine.current(), 7);
}

void TestTavelHsm::source_not_above_the_current_state_is_reported_and_survived()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    machine.set_source_for_test(9);
    TavelHsm::Tran tran;
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"s\" in tavel_hsm (76)");
    machine.tranStat(&tran, TableMachine::state_of(4));
    QCOMPARE(machine.current(), 4);
}

void TestTavelHsm::entry_path_beyond_eight_is_reported_and_still_entered()
{
    std::vector<Node> nodes(12);
    for (int i = 1; i < 11; ++i)
        nodes[static_cast<std::size_t>(i)].parent = i - 1;
    nodes[11].parent = none;
    nodes[11].transitions[2001] = 10;
    TableMachine machine(nodes, 11, true);
    machine.start();
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"e < &entry[DIM(entry)]\" in tavel_hsm (173)");
    const QStringList log = machine.send(2001);
    QCOMPARE(log.size(), 12);
    QCOMPARE(log.first(), QString("exit 11"));
    QCOMPARE(log.at(1), QString("enter 0"));
    QCOMPARE(log.last(), QString("enter 10"));
}

void TestTavelHsm::a_target_without_a_place_in_the_tree_is_reported_and_survived()
{
    std::vector<Node> nodes = family_tree();
    TableMachine machine(nodes, 0, true);
    machine.start();
    machine.set_source_for_test(3);
    TavelHsm::Tran tran;
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"0\" in tavel_hsm (171)");
    machine.tranStat(&tran, {});
    QCOMPARE(machine.log().mid(7), (QStringList{"exit 3", "exit 2", "exit 1", "exit 0"}));
    QCOMPARE(machine.isIn(TableMachine::state_of(0)), 0);
}

void TestTavelHsm::a_transition_from_no_state_to_none_leaves_an_empty_record_and_is_reported()
{
    TableMachine machine(family_tree(), 0, true);
    machine.start();
    // No handler runs any more.
    machine.send(2999);
    TavelHsm::Tran tran;
    QTest::ignoreMessage(QtWarningMsg, "ASSERT: \"tran->myChain[0] != 0 && c < &tran->myChain[(sizeof(tran->myChain)/"
                                       "sizeof(*(tran->myChain)))]\" in tavel_hsm (191)");
    machine.tranStat(&tran, {});
    QVERIFY(!tran.myChain[0]);
    QCOMPARE(machine.isIn(&TavelHsm::top), 0);
}

void TestTavelHsm::reserved_events_stand_in_their_table()
{
    const int types[] = {1000, 1001, 1002, 1003};
    for (unsigned i = 0; i < 4; ++i)
        QCOMPARE(static_cast<int>(pkgStdEvt[i]->type()), types[i]);
}

void TestTavelHsm::a_transition_of_31_actions_is_kept_and_a_longer_one_searched_every_time_data()
{
    QTest::addColumn<int>("levels");
    QTest::addColumn<bool>("has_exit");
    QTest::addColumn<bool>("kept");
    QTest::newRow("31 actions") << 15 << false << true;
    QTest::newRow("32 actions") << 15 << true << false;
    QTest::newRow("34 actions") << 16 << true << false;
}

void TestTavelHsm::a_transition_of_31_actions_is_kept_and_a_longer_one_searched_every_time()
{
    QFETCH(int, levels);
    QFETCH(bool, has_exit);
    QFETCH(bool, kept);
    // Out of the last node into node 0, which drills down: one entry, then an init and an entry a level.
    const int last = levels + 1;
    std::vector<Node> nodes(static_cast<std::size_t>(last + 1));
    for (int i = 1; i <= levels; ++i) {
        nodes[static_cast<std::size_t>(i)].parent = i - 1;
        nodes[static_cast<std::size_t>(i - 1)].initial = i;
    }
    nodes.back().has_exit = has_exit;
    nodes.back().transitions[2001] = 0;
    nodes[0].transitions[2002] = last;
    TableMachine machine(nodes, last, true);
    Reference reference(nodes, last);
    machine.start();
    for (int run = 0; run < 3; ++run) {
        QCOMPARE(machine.send(2001), reference.send(2001));
        QCOMPARE(machine.current(), levels);
        QCOMPARE(bool(machine.tran(last, 0).myChain[0]), kept);
        QCOMPARE(machine.send(2002), reference.send(2002));
    }
}

void TestTavelHsm::random_trees_behave_as_the_reference()
{
    QTest::failOnWarning(QRegularExpression("ASSERT"));
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        std::mt19937 random(seed);
        const int size = 2 + static_cast<int>(random() % (node_count - 1));
        const std::vector<Node> nodes = random_tree(random, size);
        TableMachine cached(nodes, 0, true);
        TableMachine searched(nodes, 0, false);
        Reference reference(nodes, 0);
        cached.start();
        searched.start();
        QCOMPARE(cached.log(), reference.log());
        for (int step = 0; step < 40; ++step) {
            const int event = 2000 + static_cast<int>(random() % 12);
            const QStringList expected = reference.send(event);
            QVERIFY2(cached.send(event) == expected,
                     qPrintable(QStringLiteral("seed %1, step %2").arg(seed).arg(step)));
            QVERIFY2(searched.send(event) == expected,
                     qPrintable(QStringLiteral("seed %1, step %2").arg(seed).arg(step)));
            QCOMPARE(cached.current(), reference.current());
            QCOMPARE(searched.current(), reference.current());
        }
    }
}

TAVEL_TEST_MAIN(TestTavelHsm)
#include "tst_tavel_hsm.moc"
