#include "test_main.h"
#include "window_flags.h"

#include <QWidget>

/// The device's window flags in the toolkit's words.
class TstWindowFlags : public QObject
{
    Q_OBJECT

private slots:
    void device_flags_have_a_meaning_each();
    void a_child_with_device_flags_stays_a_child();
};

void TstWindowFlags::device_flags_have_a_meaning_each()
{
    QCOMPARE(window_flags(0), Qt::WindowFlags());
    QCOMPARE(window_flags(16), Qt::WindowFlags(Qt::FramelessWindowHint));
    QCOMPARE(window_flags(0x200010), Qt::WindowFlags(Qt::FramelessWindowHint));
    QCOMPARE(window_flags(0x40), Qt::Dialog | Qt::FramelessWindowHint);
    QCOMPARE(window_flags(1), Qt::WindowFlags());
}

void TstWindowFlags::a_child_with_device_flags_stays_a_child()
{
    QWidget parent;
    QVERIFY(!(new QWidget(&parent, window_flags(0x200010)))->isWindow());
    QVERIFY(!(new QWidget(&parent, window_flags(16)))->isWindow());
    QVERIFY((new QWidget(&parent, window_flags(0x40)))->isWindow());
}

TAVEL_TEST_MAIN(TstWindowFlags)
#include "tst_window_flags.moc"
