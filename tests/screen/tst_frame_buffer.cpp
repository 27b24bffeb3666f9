#include "frame_buffer.h"
#include "test_main.h"

#include <array>

/// The reading of frame-buffer control strings.
class TstFrameBuffer : public QObject
{
    Q_OBJECT

private slots:
    void the_players_strings_are_understood_data();
    void the_players_strings_are_understood();
    void each_word_is_a_step_of_its_own();
    void blanks_do_not_matter();
    void anything_else_is_refused_data();
    void anything_else_is_refused();

private:
    const std::array<FrameBuffer, 3> m_planes{
        FrameBuffer{true, {640, 480}, {1, 1}, {2, 2}},
        FrameBuffer{true, {480, 272}, {0, 0}, {0, 0}},
        FrameBuffer{true, {640, 480}, {80, 104}, {0, 0}},
    };
};

void TstFrameBuffer::the_players_strings_are_understood_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("plane");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("origin");
    const QSize lcd(480, 272);
    const QSize tv(640, 480);
    QTest::newRow("start") << "/dev/fb0 enable 0" << 0 << false << tv << QPoint(1, 1);
    QTest::newRow("video off") << "/dev/fb1 enable 0" << 1 << false << lcd << QPoint();
    QTest::newRow("windows off") << "/dev/fb2 enable 0" << 2 << false << tv << QPoint(80, 104);
    QTest::newRow("windows to TV") << "/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1" << 2 << true
                                   << tv << QPoint();
    QTest::newRow("video to TV") << "/dev/fb1 size 640 480" << 1 << true << tv << QPoint();
    QTest::newRow("windows to LCD") << "/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1" << 2 << true
                                    << tv << QPoint(80, 104);
    QTest::newRow("video to LCD") << "/dev/fb1 size 480 272" << 1 << true << lcd << QPoint();
    QTest::newRow("video on") << "/dev/fb1 enable 1" << 1 << true << lcd << QPoint();
}

void TstFrameBuffer::the_players_strings_are_understood()
{
    QFETCH(QString, text);
    QFETCH(int, plane);
    QFETCH(bool, enabled);
    QFETCH(QSize, size);
    QFETCH(QPoint, origin);
    const std::optional<FrameBufferCommand> command = read_frame_buffer_command(text, m_planes.data());
    QVERIFY(command);
    QCOMPARE(command->plane, plane);
    QCOMPARE(command->states.back().enabled, enabled);
    QCOMPARE(command->states.back().size, size);
    QCOMPARE(command->states.back().origin, origin);
    const QPoint position = plane == 0 ? QPoint(2, 2) : QPoint();
    QCOMPARE(command->states.back().position, position);
}

void TstFrameBuffer::each_word_is_a_step_of_its_own()
{
    const auto command =
        read_frame_buffer_command(QStringLiteral("/dev/fb2 enable 0 position -5 7 enable 1"), m_planes.data());
    QVERIFY(command);
    QCOMPARE(command->states.size(), 3U);
    QVERIFY(!command->states[0].enabled);
    QCOMPARE(command->states[0].position, QPoint(0, 0));
    QVERIFY(!command->states[1].enabled);
    QCOMPARE(command->states[1].position, QPoint(-5, 7));
    QVERIFY(command->states[2].enabled);
}

void TstFrameBuffer::blanks_do_not_matter()
{
    const auto command = read_frame_buffer_command(QStringLiteral("  /dev/fb1   size 640\t480 \n"), m_planes.data());
    QVERIFY(command);
    QCOMPARE(command->states.back().size, QSize(640, 480));
}

void TstFrameBuffer::anything_else_is_refused_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"",
                             " ",
                             "/dev/fb1",
                             "/dev/fb3 enable 1",
                             "fb1 enable 1",
                             "/dev/FB1 enable 1",
                             "enable 1",
                             "/dev/fb1 enable",
                             "/dev/fb1 enable 2",
                             "/dev/fb1 enable -1",
                             "/dev/fb1 enable yes",
                             "/dev/fb1 Enable 1",
                             "/dev/fb1 size 640",
                             "/dev/fb1 size 0 480",
                             "/dev/fb1 size 640 -1",
                             "/dev/fb1 size 640 4097",
                             "/dev/fb1 size 6.4 480",
                             "/dev/fb1 origin 0",
                             "/dev/fb1 origin 5000 0",
                             "/dev/fb1 position 0 -5000",
                             "/dev/fb1 position 0 0 0",
                             "/dev/fb1 enable 1 colour 3",
                             "/dev/fb1 enable 1 enable",
                             "/dev/fb1 size 99999999999 1"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TstFrameBuffer::anything_else_is_refused()
{
    QFETCH(QString, text);
    QVERIFY(!read_frame_buffer_command(text, m_planes.data()));
}

TAVEL_TEST_MAIN(TstFrameBuffer)
#include "tst_frame_buffer.moc"
