#include "durable_file.h"
#include "test_main.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

/// Files replaced as a whole.
class TestDurableFile : public QObject
{
    Q_OBJECT

private slots:
    void reading_tells_a_missing_file_from_one_that_cannot_be_read()
    {
        const QTemporaryDir directory;
        QByteArray content = "old";
        QString fault;
        QCOMPARE(DurableFile(directory.filePath(QStringLiteral("none"))).read(content, fault),
                 DurableFile::State::Missing);
        QCOMPARE(content, QByteArray());
        QCOMPARE(DurableFile(directory.path()).read(content, fault), DurableFile::State::Unreadable);
        QVERIFY(!fault.isEmpty());
    }

    void an_update_gets_what_is_there_now()
    {
        const QTemporaryDir directory;
        const DurableFile file(directory.filePath(QStringLiteral("log")));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(file.update([](const QByteArray& old) { return old + "x"; }), QString());
        QByteArray content;
        QString fault;
        QCOMPARE(file.read(content, fault), DurableFile::State::Read);
        QCOMPARE(content, QByteArray("xxx"));
    }

    void updates_of_many_threads_all_count()
    {
        const QTemporaryDir directory;
        const QString path = directory.filePath(QStringLiteral("log"));
        constexpr int rounds = 25;
        std::atomic<int> failures = 0;
        std::vector<std::thread> writers;
        for (int i = 0; i < 4; ++i) {
            writers.emplace_back([&] {
                for (int round = 0; round < rounds; ++round)
                    failures += !DurableFile(path).update([](const QByteArray& old) { return old + "x"; }).isEmpty();
            });
        }
        for (std::thread& writer : writers)
            writer.join();
        QCOMPARE(failures.load(), 0);
        QByteArray content;
        QString fault;
        DurableFile(path).read(content, fault);
        QCOMPARE(content.size(), 4 * rounds);
    }

    void another_program_that_never_ends_its_turn_is_not_waited_for_without_end()
    {
        const QTemporaryDir directory;
        const QByteArray turn = QFile::encodeName(directory.filePath(QStringLiteral(".log.new")));
        const int descriptor = ::open(turn.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        QVERIFY(descriptor >= 0);
        QCOMPARE(::flock(descriptor, LOCK_EX), 0);
        const DurableFile file(directory.filePath(QStringLiteral("log")));
        const auto content = [](const QByteArray&) { return QByteArray("x"); };
        QCOMPARE(file.update(content), QStringLiteral("another program does not stop writing it"));
        ::close(descriptor);
        QCOMPARE(file.update(content), QString());
    }

    void a_link_in_place_of_the_new_file_is_not_followed()
    {
        const QTemporaryDir directory;
        const QString victim = directory.filePath(QStringLiteral("victim"));
        QFile file(victim);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("precious");
        file.close();
        QVERIFY(QFile::link(victim, directory.filePath(QStringLiteral(".log.new"))));
        const DurableFile log(directory.filePath(QStringLiteral("log")));
        QVERIFY(log.update([](const QByteArray&) { return QByteArray("x"); }).startsWith(QStringLiteral("open: ")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("precious"));
    }
};

TAVEL_TEST_MAIN(TestDurableFile)
#include "tst_durable_file.moc"
