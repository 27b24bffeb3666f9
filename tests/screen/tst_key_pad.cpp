#include "key_pad.h"
#include "test_main.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>

/// Host keys and the device keys they stand for.
class TstKeyPad : public QObject
{
    Q_OBJECT

private slots:
    void host_keys_become_device_keys_data();
    void host_keys_become_device_keys();
    void the_keys_the_player_names_stay_themselves();
    void keys_with_a_modifier_stay_themselves();
    void a_text_field_gets_its_letters_and_blanks();
    void a_list_gets_the_key_pad();
};

void TstKeyPad::host_keys_become_device_keys_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<int>("device");
    QTest::newRow("Space") << int(Qt::Key_Space) << int(Qt::Key_Return);
    QTest::newRow("Select") << int(Qt::Key_Select) << int(Qt::Key_Return);
    QTest::newRow("F") << int(Qt::Key_F) << 0x2103;
    QTest::newRow("F11") << int(Qt::Key_F11) << 0x2103;
    QTest::newRow("Menu") << int(Qt::Key_Menu) << 0x2103;
    QTest::newRow("Back") << int(Qt::Key_Back) << int(Qt::Key_Escape);
    QTest::newRow("Exit") << int(Qt::Key_Exit) << int(Qt::Key_Escape);
    QTest::newRow("Open") << int(Qt::Key_Open) << int(Qt::Key_F2);
    QTest::newRow("Stop") << int(Qt::Key_MediaStop) << int(Qt::Key_F4);
    QTest::newRow("Settings") << int(Qt::Key_Settings) << int(Qt::Key_F5);
    QTest::newRow("Rewind") << int(Qt::Key_AudioRewind) << int(Qt::Key_F9);
    QTest::newRow("Fast forward") << int(Qt::Key_AudioForward) << int(Qt::Key_F10);
}

void TstKeyPad::host_keys_become_device_keys()
{
    QFETCH(int, host);
    QFETCH(int, device);
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, host, Qt::NoModifier), nullptr), device);
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyRelease, host, Qt::ShiftModifier), nullptr), device);
}

void TstKeyPad::the_keys_the_player_names_stay_themselves()
{
    for (int key : {int(Qt::Key_Escape), int(Qt::Key_Tab), int(Qt::Key_Return), int(Qt::Key_Enter), int(Qt::Key_Left),
                    int(Qt::Key_Right), int(Qt::Key_Up), int(Qt::Key_Down), int(Qt::Key_F2), int(Qt::Key_F4),
                    int(Qt::Key_F5), int(Qt::Key_F7), int(Qt::Key_F9), int(Qt::Key_F10), 0x2103})
        QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier), nullptr), key);
}

void TstKeyPad::keys_with_a_modifier_stay_themselves()
{
    for (Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier})
        QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, Qt::Key_F, modifier), nullptr), int(Qt::Key_F));
}

void TstKeyPad::a_text_field_gets_its_letters_and_blanks()
{
    QLineEdit field;
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, Qt::Key_F, Qt::NoModifier, "f"), &field), int(Qt::Key_F));
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " "), &field), int(Qt::Key_Space));
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, Qt::Key_F11, Qt::NoModifier), &field), 0x2103);
}

void TstKeyPad::a_list_gets_the_key_pad()
{
    QListWidget list;
    QCOMPARE(device_key(QKeyEvent(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, " "), &list), int(Qt::Key_Return));
}

TAVEL_TEST_MAIN(TstKeyPad)
#include "tst_key_pad.moc"
