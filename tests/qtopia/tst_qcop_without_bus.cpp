#include "qcop_envelope.h"
#include "qpe_application.h"
#include "test_main.h"

/// Channels on a machine without a session bus.
class TestQCopWithoutBus : public QObject
{
    Q_OBJECT

private slots:
    void the_application_starts_and_says_so_once()
    {
        // The one warning came when the application object was made, before the first test.
        QCOMPARE(warnings_.size(), 1);
        QVERIFY(warnings_.first().contains(QStringLiteral("there is no session bus")));
        QVERIFY(QCopChannel::send("QPE/Test", "hello()"));
        const QCopChannel channel("QPE/Test");
        QVERIFY(!QCopChannel::isRegistered("QPE/Brevaton/navi"));
        QCopChannel::flush();
        QCOMPARE(warnings_.size(), 1);
    }

    void messages_work_inside_the_program()
    {
        QCopChannel channel("QPE/Brevaton/video");
        QSignalSpy spy(&channel, &QCopChannel::received);
        {
            QCopEnvelope envelope("QPE/Brevaton/video", "DoScreenChange(unsigned char)");
            envelope << static_cast<quint8>(1);
        }
        QVERIFY(spy.isEmpty());
        QVERIFY(spy.wait(test_support::stretched(5000)));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy[0][0].toByteArray(), QByteArray("DoScreenChange(unsigned char)"));
        QCOMPARE(spy[0][1].toByteArray(), QByteArray("\x01"));
    }

    void registration_and_order_are_those_of_this_program()
    {
        QVERIFY(!QCopChannel::isRegistered("QPE/Test"));
        const QCopChannel channel("QPE/Test");
        QVERIFY(QCopChannel::isRegistered("QPE/Test"));
        QVERIFY(channel.is_first());
    }

    void the_agent_answers_all_the_same()
    {
        QVERIFY(QCopChannel::isRegistered("QPE/System"));
        auto* const application = qobject_cast<QPEApplication*>(qApp);
        QSignalSpy reload(application, &QPEApplication::reload);
        QVERIFY(QCopChannel::send("QPE/System", "preventLCDOff()"));
        QVERIFY(QCopChannel::send("QPE/System", "releaseLCDOff()"));
        QVERIFY(QCopChannel::send("QPE/System", "reload()"));
        QVERIFY(reload.wait(test_support::stretched(5000)));
    }

public:
    static void keep_warning(QtMsgType type, const QMessageLogContext&, const QString& text)
    {
        if (type == QtWarningMsg)
            warnings_.append(text);
    }

    static inline QStringList warnings_;
};

int main(int argc, char** argv)
{
    test_support::prepare_process();
    qputenv("DBUS_SESSION_BUS_ADDRESS", "");
    qputenv("XDG_RUNTIME_DIR", qgetenv("HOME"));
    QFile::setPermissions(qEnvironmentVariable("HOME"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qInstallMessageHandler(TestQCopWithoutBus::keep_warning);
    const QPEApplication application(argc, argv);
    TestQCopWithoutBus test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_qcop_without_bus.moc"
