#include "child_program.h"
#include "qcop_bus.h"
#include "qcop_envelope.h"
#include "qcop_message.h"
#include "test_main.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <csignal>
#include <cstdio>

namespace
{

constexpr char channel_name[] = "QPE/Test/channel";

void say(const QByteArray& line)
{
    std::fputs((line + '\n').constData(), stdout);
    std::fflush(stdout);
}

/// Listens on the channels that are named and tells what comes.
int listen(const QStringList& names)
{
    std::vector<std::unique_ptr<QCopChannel>> channels;
    for (const QString& name : names) {
        channels.push_back(std::make_unique<QCopChannel>(name.toUtf8()));
        QObject::connect(channels.back().get(), &QCopChannel::received, channels.back().get(),
                         [name](const QCString& message, const QByteArray& data) {
                             say(name.toUtf8() + ' ' + message + ' ' + data.toHex());
                         });
    }
    say("ready");
    return QCoreApplication::exec();
}

/// Sends one text, and is gone without any farewell.
int send_and_die(const QStringList& arguments)
{
    {
        QCopEnvelope envelope(arguments[0].toUtf8(), "transmit_filename(QString)");
        envelope << arguments[1];
    }
    QCopChannel::flush();
    ::kill(::getpid(), SIGKILL);
    return 1;
}

QByteArray encoded(const QString& text)
{
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream.setVersion(QCopEnvelope::stream_version);
    stream << text;
    return data;
}

} // namespace

/// Channels between programs, on a session bus.
class TestQCopChannel : public QObject
{
    Q_OBJECT

private:
    using Messages = QList<std::pair<QByteArray, QByteArray>>;

    static void collect(QCopChannel& channel, Messages& messages)
    {
        connect(&channel, &QCopChannel::received, &channel,
                [&messages](const QCString& message, const QByteArray& data) {
                    messages.append({message, data});
                });
    }

    // Waits until what was sent to the channel before has arrived, behind a message of its own.
    static void send_raw(const QVariantList& arguments)
    {
        QDBusMessage signal = QDBusMessage::createSignal(QCopBus::object_path(channel_name),
                                                         QStringLiteral("tavel.QCop"), QStringLiteral("message"));
        signal.setArguments(arguments);
        QVERIFY(hostile().send(signal));
    }

    static QDBusConnection hostile()
    {
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("hostile"));
    }

private slots:
    void initTestCase() { QVERIFY(QDBusConnection::sessionBus().isConnected()); }

    void a_message_reaches_every_listener_in_this_program_from_the_event_loop();
    void a_direct_listener_has_it_before_send_returns();
    void a_message_reaches_every_other_program_once();
    void messages_of_one_sender_keep_their_order();
    void programs_hear_only_their_channels();
    void the_message_of_a_program_that_died_arrives();
    void a_channel_is_registered_while_somebody_has_it_open();
    void a_channel_of_a_killed_program_is_not_registered();
    void a_hidden_listener_hears_and_is_not_registered();
    void the_program_that_was_first_is_known();
    void a_listener_may_go_while_a_message_is_delivered();
    void names_of_any_kind_work_data();
    void names_of_any_kind_work();
    void the_bus_name_of_a_channel_is_stable();
    void arguments_are_checked_by_their_types_data();
    void arguments_are_checked_by_their_types();
    void what_is_malformed_is_not_sent();
    void what_is_malformed_is_dropped_on_arrival_data();
    void what_is_malformed_is_dropped_on_arrival();
    void a_large_list_of_files_arrives_whole();
};

void TestQCopChannel::a_message_reaches_every_listener_in_this_program_from_the_event_loop()
{
    QCopChannel one(channel_name);
    QCopChannel two(channel_name);
    QCopChannel other("QPE/Test/other");
    Messages first;
    Messages second;
    Messages third;
    collect(one, first);
    collect(two, second);
    collect(other, third);
    {
        QCopEnvelope envelope(channel_name, "setBacklight(int)");
        envelope << 5;
        QVERIFY(first.isEmpty());
    }
    QVERIFY(first.isEmpty());
    const Messages expected{{"setBacklight(int)", QByteArray::fromHex("00000005")}};
    QTRY_COMPARE(first, expected);
    QCOMPARE(second, expected);
    // Its echo from the bus is not heard a second time.
    QCopChannel::flush();
    QVERIFY(QCopChannel::send(channel_name, "last()"));
    QTRY_COMPARE(first.size(), 2);
    QCOMPARE(first.last().first, QByteArray("last()"));
    QVERIFY(third.isEmpty());
}

void TestQCopChannel::a_direct_listener_has_it_before_send_returns()
{
    QCopChannel channel(channel_name, QCopChannel::Delivery::Direct, QCopChannel::Presence::Open);
    Messages messages;
    collect(channel, messages);
    QVERIFY(QCopChannel::send(channel_name, "preventLCDOff()"));
    QCOMPARE(messages, (Messages{{"preventLCDOff()", ""}}));
}

void TestQCopChannel::a_message_reaches_every_other_program_once()
{
    ChildProgram programs[3];
    for (ChildProgram& program : programs)
        program.start_role("listen", {QString::fromLatin1(channel_name)});
    for (ChildProgram& program : programs)
        QTRY_COMPARE(program.lines(), QList<QByteArray>{"ready"});
    const QString files = QStringLiteral("/media/영화.avi\n/b.avi\n");
    {
        QCopEnvelope envelope(channel_name, "transmit_filename(QString)");
        envelope << files;
    }
    QVERIFY(QCopChannel::send(channel_name, "end()"));
    const QByteArray start = QByteArray(channel_name) + ' ';
    const QList<QByteArray> expected{"ready", start + "transmit_filename(QString) " + encoded(files).toHex(),
                                     start + "end() "};
    for (ChildProgram& program : programs)
        QTRY_COMPARE(program.lines(), expected);
}

void TestQCopChannel::messages_of_one_sender_keep_their_order()
{
    ChildProgram program;
    program.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(program.lines().size(), 1);
    for (int i = 0; i < 500; ++i) {
        QCopEnvelope envelope(channel_name, "setBacklight(int)");
        envelope << i;
    }
    QTRY_COMPARE(program.lines().size(), 501);
    const QList<QByteArray> lines = program.lines();
    for (int i = 0; i < 500; ++i)
        QVERIFY(lines[i + 1].endsWith(' ' + QByteArray::number(i, 16).rightJustified(8, '0')));
}

void TestQCopChannel::programs_hear_only_their_channels()
{
    ChildProgram program;
    program.start_role("listen", {QStringLiteral("QPE/A"), QStringLiteral("QPE/B")});
    QTRY_COMPARE(program.lines().size(), 1);
    QVERIFY(QCopChannel::send("QPE/AB", "wrong()"));
    QVERIFY(QCopChannel::send("QPE", "wrong()"));
    QVERIFY(QCopChannel::send("QPE/A", "a()"));
    QVERIFY(QCopChannel::send("QPE/B", "b()"));
    QTRY_COMPARE(program.lines(), (QList<QByteArray>{"ready", "QPE/A a() ", "QPE/B b() "}));
}

void TestQCopChannel::the_message_of_a_program_that_died_arrives()
{
    QCopChannel channel(channel_name);
    Messages messages;
    collect(channel, messages);
    ChildProgram program;
    program.start_role("send_and_die", {QString::fromLatin1(channel_name), QStringLiteral("/a.avi\n")});
    QVERIFY(program.waitForFinished(test_support::stretched(30000)));
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QTRY_COMPARE(messages, (Messages{{"transmit_filename(QString)", encoded(QStringLiteral("/a.avi\n"))}}));
}

void TestQCopChannel::a_channel_is_registered_while_somebody_has_it_open()
{
    QVERIFY(!QCopChannel::isRegistered(channel_name));
    {
        const QCopChannel one(channel_name);
        QVERIFY(QCopChannel::isRegistered(channel_name));
        {
            const QCopChannel two(channel_name);
        }
        QVERIFY(QCopChannel::isRegistered(channel_name));
        QVERIFY(!QCopChannel::isRegistered("QPE/Test"));
    }
    QVERIFY(!QCopChannel::isRegistered(channel_name));
}

void TestQCopChannel::a_channel_of_a_killed_program_is_not_registered()
{
    ChildProgram first;
    first.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(first.lines().size(), 1);
    ChildProgram second;
    second.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(second.lines().size(), 1);
    QVERIFY(QCopChannel::isRegistered(channel_name));
    first.kill();
    QVERIFY(first.waitForFinished(test_support::stretched(30000)));
    QVERIFY(QCopChannel::isRegistered(channel_name));
    second.kill();
    QVERIFY(second.waitForFinished(test_support::stretched(30000)));
    QTRY_VERIFY(!QCopChannel::isRegistered(channel_name));
}

void TestQCopChannel::a_hidden_listener_hears_and_is_not_registered()
{
    QCopChannel hidden(channel_name, QCopChannel::Delivery::Queued, QCopChannel::Presence::Hidden);
    Messages messages;
    collect(hidden, messages);
    QVERIFY(!QCopChannel::isRegistered(channel_name));
    ChildProgram program;
    program.start_role("send_and_die", {QString::fromLatin1(channel_name), QStringLiteral("x")});
    QTRY_COMPARE(messages.size(), 1);
    QVERIFY(QCopChannel::send(channel_name, "own()"));
    QTRY_COMPARE(messages.size(), 2);
    {
        const QCopChannel open(channel_name);
        QVERIFY(QCopChannel::isRegistered(channel_name));
    }
    QVERIFY(!QCopChannel::isRegistered(channel_name));
    QVERIFY(QCopChannel::send(channel_name, "own()"));
    QTRY_COMPARE(messages.size(), 3);
}

void TestQCopChannel::the_program_that_was_first_is_known()
{
    ChildProgram program;
    program.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(program.lines().size(), 1);
    const QCopChannel channel(channel_name);
    QVERIFY(!channel.is_first());
    program.kill();
    QVERIFY(program.waitForFinished(test_support::stretched(30000)));
    QTRY_VERIFY(channel.is_first());
    ChildProgram later;
    later.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(later.lines().size(), 1);
    QVERIFY(channel.is_first());
}

void TestQCopChannel::a_listener_may_go_while_a_message_is_delivered()
{
    auto first = std::make_unique<QCopChannel>(channel_name);
    auto second = std::make_unique<QCopChannel>(channel_name);
    int count = 0;
    connect(first.get(), &QCopChannel::received, this, [&] {
        ++count;
        second.reset();
    });
    connect(second.get(), &QCopChannel::received, this, [&] { ++count; });
    ChildProgram program;
    program.start_role("send_and_die", {QString::fromLatin1(channel_name), QStringLiteral("x")});
    QTRY_COMPARE(count, 1);
    QVERIFY(!second);
    QVERIFY(QCopChannel::send(channel_name, "again()"));
    QTRY_COMPARE(count, 2);
}

void TestQCopChannel::names_of_any_kind_work_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a digit first") << QStringLiteral("1/2");
    QTest::newRow("dots and quotes") << QStringLiteral("a..b,'\"=*");
    QTest::newRow("Korean") << QStringLiteral("채널");
    QTest::newRow("long") << QStringLiteral("QPE/").repeated(60);
}

void TestQCopChannel::names_of_any_kind_work()
{
    QFETCH(QString, name);
    ChildProgram program;
    program.start_role("listen", {name});
    QTRY_COMPARE(program.lines().size(), 1);
    QVERIFY(QCopChannel::isRegistered(name.toUtf8()));
    QVERIFY(QCopChannel::send(name.toUtf8(), "hello()"));
    QTRY_COMPARE(program.lines().value(1), name.toUtf8() + " hello() ");
}

void TestQCopChannel::the_bus_name_of_a_channel_is_stable()
{
    // Other programs rely on it.
    QCOMPARE(QCopBus::service_name("QPE/Brevaton/video"), QStringLiteral("tavel.QCop.channel_QPE_2fBrevaton_2fvideo"));
    QCOMPARE(QCopBus::object_path("QPE/Brevaton/video"), QStringLiteral("/tavel/QCop/channel_QPE_2fBrevaton_2fvideo"));
    QCOMPARE(QCopBus::service_name("QPE/Glossa_Channel"), QStringLiteral("tavel.QCop.channel_QPE_2fGlossa_5fChannel"));
    const QString longest = QCopBus::service_name(QByteArray(255, '/'));
    QVERIFY(longest.startsWith(QStringLiteral("tavel.QCop.channel__long_")));
    QVERIFY(longest.size() <= 255);
    QVERIFY(longest != QCopBus::service_name(QByteArray(254, '/')));
}

void TestQCopChannel::arguments_are_checked_by_their_types_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("good");
    const auto hex = [](const char* digits) { return QByteArray::fromHex(digits); };
    QTest::newRow("no arguments") << QByteArray("flush()") << QByteArray() << true;
    QTest::newRow("something behind none") << QByteArray("flush()") << QByteArray("x") << false;
    QTest::newRow("int") << QByteArray("a(int)") << hex("00000001") << true;
    QTest::newRow("short int") << QByteArray("a(int)") << hex("000001") << false;
    QTest::newRow("two ints") << QByteArray("move(int,int)") << hex("0000000100000002") << true;
    QTest::newRow("one of two") << QByteArray("move(int,int)") << hex("00000001") << false;
    QTest::newRow("byte") << QByteArray("DoScreenChange(unsigned char)") << hex("01") << true;
    QTest::newRow("no byte") << QByteArray("DoScreenChange(unsigned char)") << QByteArray() << false;
    QTest::newRow("bool") << QByteArray("volumeChange(bool)") << hex("01") << true;
    QTest::newRow("text") << QByteArray("a(QString)") << encoded(QStringLiteral("가")) << true;
    QTest::newRow("null text") << QByteArray("a(QString)") << hex("ffffffff") << true;
    QTest::newRow("text shorter than it says") << QByteArray("a(QString)") << hex("0000001000410042") << false;
    QTest::newRow("text of two gigabytes") << QByteArray("a(QString)") << hex("7ffffffe0041") << false;
    QTest::newRow("text of half a character") << QByteArray("a(QString)") << hex("0000000100") << false;
    QTest::newRow("list") << QByteArray("a(QStringList)") << hex("00000002000000020041ffffffff") << true;
    QTest::newRow("list of four thousand million")
        << QByteArray("a(QStringList)") << hex("fffffffe000000020041") << false;
    QTest::newRow("bytes of two gigabytes") << QByteArray("a(QByteArray)") << hex("7ffffffe00") << false;
    QTest::newRow("unknown type") << QByteArray("a(QColor)") << QByteArray("anything") << true;
    QTest::newRow("known before unknown") << QByteArray("a(int,QColor)") << hex("0000") << false;
    QTest::newRow("name without parentheses") << QByteArray("flush") << QByteArray() << false;
    QTest::newRow("parentheses without name") << QByteArray("()") << QByteArray() << false;
    QTest::newRow("parenthesis left open") << QByteArray("a(int") << hex("00000001") << false;
    QTest::newRow("empty") << QByteArray() << QByteArray() << false;
    QTest::newRow("name of three hundred bytes") << QByteArray(298, 'a') + "()" << QByteArray() << false;
    QTest::newRow("too large") << QByteArray("a(QColor)") << QByteArray(QCopMessage::most_argument_bytes + 1, 'x')
                               << false;
}

void TestQCopChannel::arguments_are_checked_by_their_types()
{
    QFETCH(QByteArray, message);
    QFETCH(QByteArray, data);
    QFETCH(bool, good);
    QCOMPARE(QCopMessage::fault(message, data) == nullptr, good);
}

void TestQCopChannel::what_is_malformed_is_not_sent()
{
    QCopChannel channel(channel_name);
    Messages messages;
    collect(channel, messages);
    QTest::ignoreMessage(QtWarningMsg,
                         "QCop: \"a(int)\" to \"QPE/Test/channel\" is not sent: its arguments do not decode");
    QVERIFY(!QCopChannel::send(channel_name, "a(int)", "x"));
    QTest::ignoreMessage(QtWarningMsg, "QCop: \"a()\" to \"\" is not sent: the channel has no usable name");
    QVERIFY(!QCopChannel::send("", "a()"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("the channel has no usable name")));
    QVERIFY(!QCopChannel::send(QByteArray(300, 'x'), "a()"));
    QVERIFY(QCopChannel::send(channel_name, "good()"));
    QTRY_COMPARE(messages, (Messages{{"good()", ""}}));
}

void TestQCopChannel::what_is_malformed_is_dropped_on_arrival_data()
{
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("warning");
    const QString name = QString::fromLatin1(channel_name);
    const QString form = QStringLiteral("its form is");
    QTest::newRow("channel only") << QVariantList{name} << form;
    QTest::newRow("no data") << QVariantList{name, QStringLiteral("flush()")} << form;
    QTest::newRow("number for the message") << QVariantList{name, 7, QByteArray()} << form;
    QTest::newRow("text for the data") << QVariantList{name, QStringLiteral("flush()"), QStringLiteral("x")} << form;
    QTest::newRow("too much") << QVariantList{name, QStringLiteral("flush()"), QByteArray(), 1} << form;
    QTest::newRow("arguments that do not decode")
        << QVariantList{name, QStringLiteral("transmit_filename(QString)"), QByteArray("\x7F\xFF\xFF\xFE")}
        << QStringLiteral("its arguments do not decode");
    QTest::newRow("another channel") << QVariantList{QStringLiteral("QPE/System"), QStringLiteral("flush()"),
                                                     QByteArray()}
                                     << QStringLiteral("its path is another channel's");
    QTest::newRow("message without form")
        << QVariantList{name, QStringLiteral("rm -rf"), QByteArray()} << QStringLiteral("its name is not of the form");
}

void TestQCopChannel::what_is_malformed_is_dropped_on_arrival()
{
    QFETCH(QVariantList, arguments);
    QFETCH(QString, warning);
    QCopChannel channel(channel_name);
    QCopChannel::flush();
    Messages messages;
    collect(channel, messages);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^QCop: .* is dropped: ") + warning));
    send_raw(arguments);
    // Whatever comes behind it is heard.
    send_raw({QString::fromLatin1(channel_name), QStringLiteral("good()"), QByteArray()});
    QTRY_COMPARE(messages, (Messages{{"good()", ""}}));
}

void TestQCopChannel::a_large_list_of_files_arrives_whole()
{
    QString files;
    for (int i = 0; i < 999; ++i)
        files += QStringLiteral("/media/") + QString(4000, QChar(0xAC00 + i)) + QStringLiteral(".avi\n");
    ChildProgram program;
    program.start_role("listen", {QString::fromLatin1(channel_name)});
    QTRY_COMPARE(program.lines().size(), 1);
    {
        QCopEnvelope envelope(channel_name, "transmit_filename(QString)");
        envelope << files;
    }
    QTRY_COMPARE_WITH_TIMEOUT(program.lines().size(), 2, 15000);
    QVERIFY(program.lines()[1] == QByteArray(channel_name) + " transmit_filename(QString) " + encoded(files).toHex());
}

int main(int argc, char** argv)
{
    if (const QByteArray role = ChildProgram::role(); !role.isEmpty()) {
        const QCoreApplication application(argc, argv);
        const QStringList arguments = QCoreApplication::arguments().mid(1);
        return role == "listen" ? listen(arguments) : send_and_die(arguments);
    }
    test_support::prepare_process();
    const QApplication application(argc, argv);
    TestQCopChannel test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_qcop_channel.moc"
