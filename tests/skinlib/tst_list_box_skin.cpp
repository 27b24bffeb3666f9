#include "test_main.h"

#include "list_box_skin.h"
#include "list_box_skin_text.h"
#include "skin_maker.h"

namespace
{

/// A row that counts itself and its paintings.
class Row : public ListBoxSkinText
{
public:
    explicit Row(const QString& text) : ListBoxSkinText(text) { ++alive; }
    ~Row() override { --alive; }

    void paint(QPainter* painter) override
    {
        ++paintings;
        origin = painter->transform().map(QPoint(0, 0));
        clip = painter->clipBoundingRect().toRect();
        pen = painter->pen().color();
        font = painter->font();
    }

    static int alive;
    int paintings = 0;
    QPoint origin;
    QRect clip;
    QColor pen;
    QFont font;
};

int Row::alive = 0;

/// Takes the place of a panel: it may have the key focus and counts what comes to it.
class Panel : public QWidget
{
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++keys; }
    void keyReleaseEvent(QKeyEvent*) override { ++keys; }
};

} // namespace

class TestListBoxSkin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void an_empty_list_has_no_cursor();
    void the_first_row_gets_the_cursor_silently();
    void rows_are_inserted_in_front_and_at_the_end();
    void the_cursor_stays_on_its_row_when_others_come_and_go();
    void removing_the_row_under_the_cursor_gives_it_to_the_next();
    void removing_the_last_row_under_the_cursor_gives_it_to_the_one_before();
    void removing_the_only_row_leaves_no_cursor_and_is_silent();
    void changing_a_row_keeps_the_cursor_and_deletes_the_old_row();
    void rows_belong_to_the_list();
    void wrong_indexes_and_rows_are_ignored();
    void a_row_knows_its_list_and_whether_it_is_current();

    void moving_the_cursor_highlights_its_row();
    void moving_the_cursor_to_where_it_is_says_nothing();
    void the_cursor_is_kept_in_view();
    void the_cursor_is_kept_in_view_when_the_list_gets_lower();
    void top_and_bottom_rows_can_be_set();
    void rows_in_view_have_a_rectangle();
    void rows_removed_above_do_not_move_the_view();
    void the_row_height_follows_the_font_unless_it_is_set();

    void keys_move_the_cursor_data();
    void keys_move_the_cursor();
    void a_held_key_goes_on_moving();
    void keys_stop_at_the_ends();
    void keys_select_the_current_row_data();
    void keys_select_the_current_row();
    void a_held_return_selects_once();
    void keys_in_an_empty_list_do_nothing();
    void left_and_right_give_the_keys_to_the_panel();
    void no_key_reaches_the_panel_by_itself();

    void a_tap_moves_the_cursor_and_a_second_selects();
    void a_tap_below_the_last_row_does_nothing();
    void a_drag_scrolls_and_keeps_the_cursor();
    void the_wheel_keeps_the_cursor();

    void only_rows_in_view_are_painted();
    void a_row_is_painted_at_its_place_with_the_lists_font();
    void the_cursor_looks_different_with_the_keys();
    void only_the_row_that_changed_is_painted_again();
    void the_text_of_a_text_row_is_drawn_in_white();
    void a_text_row_has_the_size_of_its_text();

    void a_thousand_rows_cost_no_more_to_paint_than_ten();
    void a_full_list_is_walked_by_key_from_end_to_end();

private:
    void fill(int rows) const;
    Row* row(int index) const { return static_cast<Row*>(m_list->item(index)); }
    QStringList texts() const;
    QStringList sent(const QSignalSpy& spy) const;
    void wait_until_painted() const;

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<QWidget> m_window;
    Panel* m_panel = nullptr;
    ListBoxSkin* m_list = nullptr;
    std::unique_ptr<QSignalSpy> m_highlighted;
    std::unique_ptr<QSignalSpy> m_selected;
};

void TestListBoxSkin::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_skin->picture(QStringLiteral("cursor.png"), QSize(9, 20), Qt::darkRed);
    m_skin->picture(QStringLiteral("cursor_focus.png"), QSize(9, 20), Qt::red);
    m_skin->layout(QStringLiteral("[LISTBOX]\ncursor = cursor.png\ncursor_focus = cursor_focus.png\n"));
    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("skin_test"));
    m_window->resize(220, 140);
    m_panel = new Panel;
    m_panel->setParent(m_window.get());
    m_panel->setFocusPolicy(Qt::ClickFocus);
    m_panel->resize(220, 140);
    m_list = new ListBoxSkin(m_panel, "file_listbox");
    m_list->resize(200, 100);
    m_list->setRowHeight(20);
    m_highlighted = std::make_unique<QSignalSpy>(m_list, &ListBoxSkin::highlighted);
    m_selected = std::make_unique<QSignalSpy>(m_list, &ListBoxSkin::selected);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_list->setFocus();
}

void TestListBoxSkin::cleanup()
{
    m_highlighted.reset();
    m_selected.reset();
    m_window.reset();
    m_skin.reset();
    QCOMPARE(Row::alive, 0);
}

void TestListBoxSkin::fill(int rows) const
{
    for (int index = 0; index < rows; ++index)
        m_list->insertItem(new Row(QString::number(index)));
}

QStringList TestListBoxSkin::texts() const
{
    QStringList result;
    for (int index = 0; index < m_list->count(); ++index)
        result.append(m_list->item(index)->text());
    return result;
}

QStringList TestListBoxSkin::sent(const QSignalSpy& spy) const
{
    QStringList result;
    for (const QList<QVariant>& arguments : spy) {
        const auto* item = arguments.at(0).value<ListBoxSkinItem*>();
        result.append(item ? item->text() : QStringLiteral("null"));
    }
    return result;
}

void TestListBoxSkin::wait_until_painted() const
{
    QTRY_VERIFY(row(0)->paintings > 0);
    QCoreApplication::processEvents();
    for (int index = 0; index < m_list->count(); ++index)
        row(index)->paintings = 0;
}

// Rows

void TestListBoxSkin::an_empty_list_has_no_cursor()
{
    QCOMPARE(m_list->count(), 0);
    QCOMPARE(m_list->currentItem(), -1);
    QCOMPARE(m_list->topItem(), 0);
    QCOMPARE(m_list->item(0), nullptr);
    QCOMPARE(m_list->objectName(), QStringLiteral("file_listbox"));
}

void TestListBoxSkin::the_first_row_gets_the_cursor_silently()
{
    fill(3);
    QCOMPARE(m_list->currentItem(), 0);
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::rows_are_inserted_in_front_and_at_the_end()
{
    fill(2);
    m_list->insertItem(new Row(QStringLiteral("front")), 0);
    m_list->insertItem(new Row(QStringLiteral("middle")), 2);
    m_list->insertItem(new Row(QStringLiteral("end")), 4);
    m_list->insertItem(new Row(QStringLiteral("past")), 99);
    QCOMPARE(texts().join(QLatin1Char(' ')), QStringLiteral("front 0 middle 1 end past"));
}

void TestListBoxSkin::the_cursor_stays_on_its_row_when_others_come_and_go()
{
    fill(3);
    m_list->setCurrentItem(1);
    m_highlighted->clear();
    m_list->insertItem(new Row(QStringLiteral("a")), 0);
    m_list->insertItem(new Row(QStringLiteral("b")), 2);
    QCOMPARE(m_list->currentItem(), 3);
    m_list->insertItem(new Row(QStringLiteral("c")), 4);
    QCOMPARE(m_list->currentItem(), 3);
    m_list->removeItem(0);
    QCOMPARE(m_list->currentItem(), 2);
    m_list->removeItem(4);
    QCOMPARE(m_list->item(m_list->currentItem())->text(), QStringLiteral("1"));
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::removing_the_row_under_the_cursor_gives_it_to_the_next()
{
    fill(3);
    m_list->setCurrentItem(1);
    m_highlighted->clear();
    m_list->removeItem(1);
    QCOMPARE(m_list->currentItem(), 1);
    QCOMPARE(sent(*m_highlighted), QStringList{QStringLiteral("2")});
}

void TestListBoxSkin::removing_the_last_row_under_the_cursor_gives_it_to_the_one_before()
{
    fill(3);
    m_list->setCurrentItem(2);
    m_highlighted->clear();
    m_list->removeItem(2);
    QCOMPARE(m_list->currentItem(), 1);
    QCOMPARE(sent(*m_highlighted), QStringList{QStringLiteral("1")});
}

void TestListBoxSkin::removing_the_only_row_leaves_no_cursor_and_is_silent()
{
    fill(1);
    m_list->removeItem(0);
    QCOMPARE(m_list->currentItem(), -1);
    QVERIFY(m_highlighted->isEmpty());
    fill(2);
    m_list->clear();
    QCOMPARE(m_list->currentItem(), -1);
    QCOMPARE(m_list->count(), 0);
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::changing_a_row_keeps_the_cursor_and_deletes_the_old_row()
{
    fill(3);
    m_list->setCurrentItem(1);
    m_highlighted->clear();
    m_list->changeItem(new Row(QStringLiteral("new")), 1);
    QCOMPARE(Row::alive, 3);
    QCOMPARE(texts().join(QLatin1Char(' ')), QStringLiteral("0 new 2"));
    QCOMPARE(m_list->currentItem(), 1);
    QVERIFY(m_list->item(1)->isCurrent());
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::rows_belong_to_the_list()
{
    fill(3);
    m_list->removeItem(1);
    QCOMPARE(Row::alive, 2);
    m_list->clear();
    QCOMPARE(Row::alive, 0);
    fill(2);
    delete m_list;
    QCOMPARE(Row::alive, 0);
}

void TestListBoxSkin::wrong_indexes_and_rows_are_ignored()
{
    fill(2);
    for (const int index : {-1, 2, 999}) {
        m_list->removeItem(index);
        m_list->setCurrentItem(index);
        m_list->changeItem(new Row(QStringLiteral("lost")), index);
        QCOMPARE(m_list->item(index), nullptr);
        QVERIFY(!m_list->itemVisible(index));
    }
    m_list->insertItem(nullptr);
    m_list->changeItem(nullptr, 0);
    m_list->insertItem(m_list->item(0));
    m_list->changeItem(m_list->item(1), 0);
    const Row stranger(QStringLiteral("stranger"));
    m_list->setCurrentItem(&stranger);
    QCOMPARE(m_list->index(&stranger), -1);
    QCOMPARE(m_list->index(nullptr), -1);
    QVERIFY(m_list->itemRect(&stranger).isEmpty());
    m_list->updateItem(nullptr);
    QCOMPARE(texts().join(QLatin1Char(' ')), QStringLiteral("0 1"));
    QCOMPARE(m_list->currentItem(), 0);
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::a_row_knows_its_list_and_whether_it_is_current()
{
    const Row outside(QStringLiteral("outside"));
    QCOMPARE(outside.listBox(), nullptr);
    QVERIFY(!outside.isCurrent());
    fill(2);
    QCOMPARE(m_list->item(1)->listBox(), m_list);
    QVERIFY(m_list->item(0)->isCurrent());
    QVERIFY(!m_list->item(1)->isCurrent());
    QCOMPARE(m_list->index(m_list->item(1)), 1);
}

// Cursor and view

void TestListBoxSkin::moving_the_cursor_highlights_its_row()
{
    fill(3);
    m_list->setCurrentItem(2);
    m_list->setCurrentItem(m_list->item(1));
    QCOMPARE(sent(*m_highlighted), (QStringList{QStringLiteral("2"), QStringLiteral("1")}));
    QVERIFY(m_selected->isEmpty());
}

void TestListBoxSkin::moving_the_cursor_to_where_it_is_says_nothing()
{
    fill(3);
    m_list->setCurrentItem(0);
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::the_cursor_is_kept_in_view()
{
    fill(50);
    m_list->setCurrentItem(30);
    QCOMPARE(m_list->topItem(), 26);
    m_list->setCurrentItem(28);
    QCOMPARE(m_list->topItem(), 26);
    m_list->setCurrentItem(10);
    QCOMPARE(m_list->topItem(), 10);
    m_list->setTopItem(40);
    m_list->setCurrentItem(10);
    QCOMPARE(m_list->topItem(), 10);
}

void TestListBoxSkin::the_cursor_is_kept_in_view_when_the_list_gets_lower()
{
    fill(50);
    m_list->setCurrentItem(4);
    m_list->resize(200, 45);
    QVERIFY(m_list->itemVisible(4));
}

void TestListBoxSkin::top_and_bottom_rows_can_be_set()
{
    fill(50);
    m_list->setTopItem(20);
    QCOMPARE(m_list->topItem(), 20);
    QVERIFY(m_list->itemVisible(20));
    QVERIFY(m_list->itemVisible(24));
    QVERIFY(!m_list->itemVisible(19));
    QVERIFY(!m_list->itemVisible(25));
    m_list->setBottomItem(30);
    QCOMPARE(m_list->topItem(), 26);
    m_list->setTopItem(49);
    QCOMPARE(m_list->topItem(), 45);
    m_list->setBottomItem(1);
    QCOMPARE(m_list->topItem(), 0);
    QCOMPARE(m_list->currentItem(), 0);
    QVERIFY(m_highlighted->isEmpty());
}

void TestListBoxSkin::rows_in_view_have_a_rectangle()
{
    fill(50);
    m_list->resize(200, 110);
    m_list->setTopItem(10);
    QCOMPARE(m_list->itemRect(m_list->item(12)), QRect(0, 40, m_list->visibleWidth(), 20));
    QVERIFY(m_list->itemRect(m_list->item(9)).isEmpty());
    // The sixth row is only half in view.
    QCOMPARE(m_list->itemRect(m_list->item(15)), QRect(0, 100, m_list->visibleWidth(), 20));
    QVERIFY(!m_list->itemVisible(m_list->item(15)));
    QVERIFY(m_list->itemRect(m_list->item(16)).isEmpty());
}

void TestListBoxSkin::rows_removed_above_do_not_move_the_view()
{
    fill(50);
    m_list->setTopItem(20);
    m_list->removeItem(3);
    QCOMPARE(m_list->item(m_list->topItem())->text(), QStringLiteral("20"));
}

void TestListBoxSkin::the_row_height_follows_the_font_unless_it_is_set()
{
    QCOMPARE(m_list->rowHeight(), 20);
    m_list->setRowHeight(0);
    const int small = m_list->rowHeight();
    fill(20);
    QFont large = m_list->font();
    large.setPixelSize(40);
    m_list->setFont(large);
    QVERIFY(m_list->rowHeight() > small);
    QCOMPARE(m_list->itemRect(m_list->item(1)).top(), m_list->rowHeight());
    m_list->setRowHeight(22);
    QCOMPARE(m_list->itemRect(m_list->item(1)).top(), 22);
}

// Keys

void TestListBoxSkin::keys_move_the_cursor_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("expected");
    QTest::newRow("Up") << static_cast<int>(Qt::Key_Up) << 19;
    QTest::newRow("Down") << static_cast<int>(Qt::Key_Down) << 21;
    QTest::newRow("PageUp") << static_cast<int>(Qt::Key_PageUp) << 15;
    QTest::newRow("PageDown") << static_cast<int>(Qt::Key_PageDown) << 25;
    QTest::newRow("Home") << static_cast<int>(Qt::Key_Home) << 0;
    QTest::newRow("End") << static_cast<int>(Qt::Key_End) << 49;
}

void TestListBoxSkin::keys_move_the_cursor()
{
    QFETCH(int, key);
    QFETCH(int, expected);
    fill(50);
    m_list->setCurrentItem(20);
    m_highlighted->clear();
    QTest::keyClick(m_list, static_cast<Qt::Key>(key));
    QCOMPARE(m_list->currentItem(), expected);
    QVERIFY(m_list->itemVisible(expected));
    QCOMPARE(sent(*m_highlighted), QStringList{QString::number(expected)});
    QVERIFY(m_selected->isEmpty());
}

void TestListBoxSkin::a_held_key_goes_on_moving()
{
    fill(50);
    QTest::keyPress(m_list, Qt::Key_Down);
    for (int repeat = 0; repeat < 9; ++repeat)
        send_repeated_key(m_list, QEvent::KeyPress, Qt::Key_Down);
    QCOMPARE(m_list->currentItem(), 10);
}

void TestListBoxSkin::keys_stop_at_the_ends()
{
    fill(3);
    QTest::keyClick(m_list, Qt::Key_Up);
    QTest::keyClick(m_list, Qt::Key_PageUp);
    QCOMPARE(m_list->currentItem(), 0);
    QTest::keyClick(m_list, Qt::Key_PageDown);
    QCOMPARE(m_list->currentItem(), 2);
    QTest::keyClick(m_list, Qt::Key_Down);
    QCOMPARE(m_list->currentItem(), 2);
    QCOMPARE(m_highlighted->size(), 1);
}

void TestListBoxSkin::keys_select_the_current_row_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << static_cast<int>(Qt::Key_Return);
    QTest::newRow("Enter") << static_cast<int>(Qt::Key_Enter);
    QTest::newRow("Space") << static_cast<int>(Qt::Key_Space);
    QTest::newRow("Select") << static_cast<int>(Qt::Key_Select);
}

void TestListBoxSkin::keys_select_the_current_row()
{
    QFETCH(int, key);
    fill(3);
    m_list->setCurrentItem(1);
    QTest::keyClick(m_list, static_cast<Qt::Key>(key));
    QCOMPARE(sent(*m_selected), QStringList{QStringLiteral("1")});
}

void TestListBoxSkin::a_held_return_selects_once()
{
    fill(3);
    QTest::keyPress(m_list, Qt::Key_Return);
    send_repeated_key(m_list, QEvent::KeyPress, Qt::Key_Return);
    QTest::keyRelease(m_list, Qt::Key_Return);
    QCOMPARE(m_selected->size(), 1);
}

void TestListBoxSkin::keys_in_an_empty_list_do_nothing()
{
    for (const Qt::Key key :
         {Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End, Qt::Key_Return})
        QTest::keyClick(m_list, key);
    QTest::mouseClick(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QVERIFY(m_highlighted->isEmpty());
    QVERIFY(m_selected->isEmpty());
}

void TestListBoxSkin::left_and_right_give_the_keys_to_the_panel()
{
    fill(3);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right}) {
        m_list->setFocus();
        QCOMPARE(m_window->focusWidget(), m_list);
        QTest::keyClick(m_list, key);
        QCOMPARE(m_window->focusWidget(), m_panel);
    }
    m_panel->setFocusPolicy(Qt::NoFocus);
    m_list->setFocus();
    QTest::keyClick(m_list, Qt::Key_Left);
    QCOMPARE(m_window->focusWidget(), m_list);
    QCOMPARE(m_list->currentItem(), 0);
}

void TestListBoxSkin::no_key_reaches_the_panel_by_itself()
{
    fill(3);
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Return, Qt::Key_Escape, Qt::Key_F5, Qt::Key_A})
        QTest::keyClick(m_list, key);
    QCOMPARE(m_panel->keys, 0);
}

// Pointer

void TestListBoxSkin::a_tap_moves_the_cursor_and_a_second_selects()
{
    fill(50);
    m_list->setTopItem(10);
    QTest::mouseClick(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(50, 45));
    QCOMPARE(m_list->currentItem(), 12);
    QCOMPARE(sent(*m_highlighted), QStringList{QStringLiteral("12")});
    QVERIFY(m_selected->isEmpty());
    QTest::mouseClick(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(50, 45));
    QCOMPARE(sent(*m_selected), QStringList{QStringLiteral("12")});
    QCOMPARE(m_highlighted->size(), 1);
}

void TestListBoxSkin::a_tap_below_the_last_row_does_nothing()
{
    fill(2);
    QTest::mouseClick(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(50, 90));
    QCOMPARE(m_list->currentItem(), 0);
    QVERIFY(m_highlighted->isEmpty());
    QVERIFY(m_selected->isEmpty());
}

void TestListBoxSkin::a_drag_scrolls_and_keeps_the_cursor()
{
    fill(50);
    QTest::mousePress(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(50, 90));
    QTest::mouseMove(m_list, QPoint(50, 50));
    QTest::mouseMove(m_list, QPoint(50, 10));
    QTest::mouseRelease(m_list, Qt::LeftButton, Qt::NoModifier, QPoint(50, 10));
    QCOMPARE(m_list->topItem(), 4);
    QCOMPARE(m_list->currentItem(), 0);
    QVERIFY(m_highlighted->isEmpty());
    QVERIFY(m_selected->isEmpty());
}

void TestListBoxSkin::the_wheel_keeps_the_cursor()
{
    fill(50);
    turn_wheel(m_list, QPoint(50, 50), -120);
    QCOMPARE(m_list->topItem(), 3);
    QCOMPARE(m_list->currentItem(), 0);
}

// Painting

void TestListBoxSkin::only_rows_in_view_are_painted()
{
    fill(50);
    m_list->setTopItem(10);
    m_list->grab();
    for (int index = 0; index < 50; ++index)
        QCOMPARE(row(index)->paintings > 0, index >= 10 && index < 15);
}

void TestListBoxSkin::a_row_is_painted_at_its_place_with_the_lists_font()
{
    fill(50);
    QFont font = m_list->font();
    font.setPixelSize(13);
    m_list->setFont(font);
    QImage canvas(200, 100, QImage::Format_ARGB32_Premultiplied);
    m_list->render(&canvas, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(row(2)->origin, QPoint(0, 40));
    QCOMPARE(row(2)->clip, QRect(0, 0, m_list->visibleWidth(), 20));
    QCOMPARE(row(2)->pen, QColor(Qt::white));
    QCOMPARE(row(2)->font.pixelSize(), 13);
}

void TestListBoxSkin::the_cursor_looks_different_with_the_keys()
{
    fill(3);
    m_list->setCurrentItem(1);
    QCOMPARE(m_list->grab().toImage().pixelColor(100, 30), QColor(Qt::red));
    QCOMPARE(m_list->grab().toImage().pixelColor(100, 10).alpha(), 0);
    m_panel->setFocus();
    QCOMPARE(m_list->grab().toImage().pixelColor(100, 30), QColor(Qt::darkRed));
}

void TestListBoxSkin::only_the_row_that_changed_is_painted_again()
{
    fill(5);
    wait_until_painted();
    m_list->updateItem(m_list->item(2));
    QTRY_VERIFY(row(2)->paintings > 0);
    QCOMPARE(row(1)->paintings, 0);
    QCOMPARE(row(3)->paintings, 0);

    m_list->item(3)->setText(QStringLiteral("new"));
    QTRY_VERIFY(row(3)->paintings > 0);
    QCOMPARE(row(1)->paintings, 0);

    m_list->setCurrentItem(4);
    QTRY_VERIFY(row(4)->paintings > 0);
    QVERIFY(row(0)->paintings > 0);
    QCOMPARE(row(1)->paintings, 0);
}

void TestListBoxSkin::the_text_of_a_text_row_is_drawn_in_white()
{
    m_list->insertItem(new ListBoxSkinText);
    m_list->insertItem(new ListBoxSkinText(QStringLiteral("MMMM")));
    const QImage picture = m_list->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    int lit = 0;
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 20; y < 40; ++y) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) > 0) {
                QVERIFY(qRed(pixel) > 200 && qGreen(pixel) > 200 && qBlue(pixel) > 200);
                QVERIFY(x >= 5);
                ++lit;
            }
        }
    }
    QVERIFY(lit > 20);
}

void TestListBoxSkin::a_text_row_has_the_size_of_its_text()
{
    const ListBoxSkinText text(QStringLiteral("some text"));
    QCOMPARE(text.text(), QStringLiteral("some text"));
    QCOMPARE(text.pixmap(), nullptr);
    QCOMPARE(text.height(m_list), 20);
    QVERIFY(text.width(m_list) > m_list->fontMetrics().horizontalAdvance(QStringLiteral("some text")));
    QCOMPARE(text.height(nullptr), 0);
    QCOMPARE(text.width(nullptr), 0);
}

// Long lists

void TestListBoxSkin::a_thousand_rows_cost_no_more_to_paint_than_ten()
{
    const auto paintings = [this] {
        int sum = 0;
        for (int index = 0; index < m_list->count(); ++index)
            sum += std::exchange(row(index)->paintings, 0);
        return sum;
    };
    fill(10);
    m_list->grab();
    const int few = paintings();
    fill(989);
    QCOMPARE(m_list->count(), 999);
    paintings();
    m_list->setCurrentItem(500);
    m_list->grab();
    QCOMPARE(paintings(), few);
}

void TestListBoxSkin::a_full_list_is_walked_by_key_from_end_to_end()
{
    fill(999);
    for (int index = 1; index < 999; ++index)
        QTest::keyClick(m_list, Qt::Key_Down);
    QCOMPARE(m_list->currentItem(), 998);
    QCOMPARE(m_list->topItem(), 994);
    QCOMPARE(m_highlighted->size(), 998);
    QTest::keyClick(m_list, Qt::Key_Home);
    QCOMPARE(m_list->topItem(), 0);
}

TAVEL_TEST_MAIN(TestListBoxSkin)
#include "tst_list_box_skin.moc"
