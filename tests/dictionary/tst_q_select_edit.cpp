#include "q_select_edit.h"
#include "test_main.h"

#include <QtGui/QTextBlock>
#include <QtGui/QTextLayout>
#include <QtWidgets/QPushButton>

namespace
{

/// A box between two buttons, so that it has neighbours to leave to.
class Form : public QWidget
{
public:
    Form() : before(new QPushButton(this)), box(new QSelectEdit(this, "box")), after(new QPushButton(this))
    {
        resize(320, 160);
        before->setGeometry(0, 0, 40, 20);
        box->setGeometry(10, 35, 291, 90);
        after->setGeometry(0, 130, 40, 20);
        box->setAlignment(Qt::AlignCenter);
        show();
        box->setFocus();
    }

    QPushButton* before;
    QSelectEdit* box;
    QPushButton* after;
};

/// A point in the middle of the first letter of @p word, as a finger meets it.
QPoint place_of(const QSelectEdit& box, const QString& word)
{
    QTextCursor cursor(box.document());
    cursor.setPosition(static_cast<int>(box.toPlainText().indexOf(word)));
    const QRect before = box.cursorRect(cursor);
    cursor.movePosition(QTextCursor::NextCharacter);
    const QRect behind = box.cursorRect(cursor);
    return {(before.center().x() + behind.center().x()) / 2, before.center().y()};
}

void tap(QSelectEdit& box, const QString& word)
{
    QTest::mouseClick(box.viewport(), Qt::LeftButton, {}, place_of(box, word));
}

} // namespace

class SelectEditTest : public QObject
{
    Q_OBJECT

private slots:
    void a_tap_marks_the_word_under_it_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("tapped");
        QTest::addColumn<QString>("marked");
        QTest::newRow("first") << "Where have you been"
                               << "Where"
                               << "Where";
        QTest::newRow("inside") << "Where have you been"
                                << "ave"
                                << "have";
        QTest::newRow("last, before a mark") << "Where have you been?"
                                             << "been"
                                             << "been";
        QTest::newRow("in quotes") << "He said \"hello\"."
                                   << "hello"
                                   << "hello";
        QTest::newRow("apostrophe") << "I don't know"
                                    << "don"
                                    << "don't";
        QTest::newRow("number") << "In 1984 it was"
                                << "1984"
                                << "1984";
        QTest::newRow("second line") << "Where have\nyou been"
                                     << "you"
                                     << "you";
        QTest::newRow("Korean") << QString::fromUtf8("오늘 밤에 만나요") << QString::fromUtf8("밤에")
                                << QString::fromUtf8("밤에");
        QTest::newRow("accents") << QString::fromUtf8("un café noir") << QString::fromUtf8("café")
                                 << QString::fromUtf8("café");
    }

    void a_tap_marks_the_word_under_it()
    {
        QFETCH(QString, text);
        QFETCH(QString, tapped);
        QFETCH(QString, marked);
        Form form;
        form.box->setText(text);
        QVERIFY(form.box->markedText().isEmpty());
        tap(*form.box, tapped);
        QCOMPARE(form.box->markedText(), marked);
    }

    void another_tap_marks_another_word()
    {
        Form form;
        form.box->setText(QStringLiteral("Where have you been"));
        tap(*form.box, QStringLiteral("have"));
        tap(*form.box, QStringLiteral("been"));
        QCOMPARE(form.box->markedText(), QStringLiteral("been"));
    }

    void two_quick_taps_are_a_tap()
    {
        Form form;
        form.box->setText(QStringLiteral("Where have you been"));
        QTest::mouseDClick(form.box->viewport(), Qt::LeftButton, {}, place_of(*form.box, QStringLiteral("have")));
        QCOMPARE(form.box->markedText(), QStringLiteral("have"));
    }

    void a_tap_on_marked_text_marks_the_word_again()
    {
        Form form;
        form.box->setText(QStringLiteral("Where have you been"));
        tap(*form.box, QStringLiteral("have"));
        tap(*form.box, QStringLiteral("have"));
        QCOMPARE(form.box->markedText(), QStringLiteral("have"));
    }

    void drawing_across_lines_marks_the_text_as_it_is()
    {
        Form form;
        form.box->setText(QStringLiteral("Where have\nyou been"));
        const QPoint from = place_of(*form.box, QStringLiteral("have")) - QPoint(4, 0);
        const QPoint to = place_of(*form.box, QStringLiteral(" been")) - QPoint(1, 0);
        QTest::mousePress(form.box->viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(form.box->viewport(), (from + to) / 2);
        QTest::mouseMove(form.box->viewport(), to);
        QTest::mouseRelease(form.box->viewport(), Qt::LeftButton, {}, to);
        QCOMPARE(form.box->markedText(), QStringLiteral("have\nyou"));
    }

    void right_and_left_mark_word_after_word()
    {
        Form form;
        form.box->setText(QStringLiteral("- Where, have\n... you?"));
        QStringList marked;
        for (int press = 0; press < 4; ++press) {
            QTest::keyClick(form.box, Qt::Key_Right);
            marked.append(form.box->markedText());
        }
        QCOMPARE(marked, QStringList({"Where", "have", "you", "you"}));
        marked.clear();
        for (int press = 0; press < 3; ++press) {
            QTest::keyClick(form.box, Qt::Key_Left);
            marked.append(form.box->markedText());
        }
        QCOMPARE(marked, QStringList({"have", "Where", "Where"}));
    }

    void shift_marks_letter_by_letter()
    {
        Form form;
        form.box->setText(QStringLiteral("Where"));
        QTest::keyClick(form.box, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(form.box, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(form.box->markedText(), QStringLiteral("Wh"));
    }

    void up_and_down_leave_the_box()
    {
        Form form;
        QTest::keyClick(form.box, Qt::Key_Down);
        QCOMPARE(form.focusWidget(), static_cast<QWidget*>(form.after));
        form.box->setFocus();
        QTest::keyClick(form.box, Qt::Key_Up);
        QCOMPARE(form.focusWidget(), static_cast<QWidget*>(form.before));
    }

    void an_empty_box_takes_keys_and_taps()
    {
        Form form;
        form.box->setText(QString());
        QTest::keyClick(form.box, Qt::Key_Right);
        QTest::keyClick(form.box, Qt::Key_Left);
        QTest::mouseClick(form.box->viewport(), Qt::LeftButton);
        QVERIFY(form.box->markedText().isEmpty());
    }

    void the_text_is_never_markup_and_never_changes()
    {
        Form form;
        const QString text = QStringLiteral("<b>Where</b> & <i>when</i>");
        form.box->setText(text);
        QCOMPARE(form.box->toPlainText(), text);
        QTest::keyClicks(form.box, QStringLiteral("xyz"));
        QTest::keyClick(form.box, Qt::Key_Delete);
        QTest::keyClick(form.box, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(form.box->toPlainText(), text);
    }

    void the_text_stands_in_the_middle_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("one line") << "Where";
        QTest::newRow("two lines") << "Where have\nyou been";
        QTest::newRow("three lines") << "Where\nhave\nyou";
    }

    void the_text_stands_in_the_middle()
    {
        QFETCH(QString, text);
        Form form;
        form.box->setText(text);
        QTextCursor cursor(form.box->document());
        const int top = form.box->cursorRect(cursor).top();
        cursor.movePosition(QTextCursor::End);
        const int below = form.box->viewport()->height() - form.box->cursorRect(cursor).bottom();
        QVERIFY2(std::abs(top - below) <= 3, qPrintable(QStringLiteral("%1 above, %2 below").arg(top).arg(below)));
        for (QTextBlock block = form.box->document()->begin(); block.isValid(); block = block.next()) {
            const QTextLine line = block.layout()->lineAt(0);
            const qreal left = line.x() + (line.width() - line.naturalTextWidth()) / 2;
            QVERIFY(std::abs(line.naturalTextRect().left() - left) <= 1.5);
        }
    }

    void a_long_text_begins_at_the_top_and_can_be_reached_to_its_end()
    {
        Form form;
        QStringList lines;
        for (int line = 0; line < 20; ++line)
            lines.append(QStringLiteral("word%1").arg(line));
        form.box->setText(lines.join(QLatin1Char('\n')));
        QVERIFY(form.box->cursorRect(QTextCursor(form.box->document())).top() >= 0);
        for (int press = 0; press < 20; ++press)
            QTest::keyClick(form.box, Qt::Key_Right);
        QCOMPARE(form.box->markedText(), QStringLiteral("word19"));
        QVERIFY(form.box->viewport()->rect().contains(form.box->cursorRect().center()));
    }

    void the_focus_is_visible()
    {
        Form form;
        form.box->setText(QStringLiteral("Where"));
        QApplication::setActiveWindow(&form);
        QTRY_VERIFY(form.box->hasFocus());
        const QImage with = form.box->grab().toImage();
        form.after->setFocus();
        QVERIFY(form.box->grab().toImage() != with);
    }
};

TAVEL_TEST_MAIN(SelectEditTest)
#include "tst_q_select_edit.moc"
