#include "test_main.h"

#include "scroll_view_skin.h"
#include "skin_maker.h"

namespace
{

constexpr int step = 10;

/// A view of numbered steps that notes its taps and what it was asked to draw.
class View : public ScrollViewSkin
{
public:
    explicit View(QWidget* parent = nullptr) : ScrollViewSkin(parent, "view") {}

    using ScrollViewSkin::setContents;
    using ScrollViewSkin::updateContents;
    using ScrollViewSkin::visibleSteps;

    QList<QPoint> taps;
    QList<QRect> drawn;

protected:
    void contentsTapped(const QPoint& position) override { taps.append(position); }
    void drawContents(QPainter*, const QRect& clip) override { drawn.append(clip); }
};

} // namespace

class TestScrollViewSkin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void contents_that_fit_have_no_bar();
    void contents_that_do_not_fit_have_a_bar_at_the_right();
    void the_bar_is_as_wide_as_the_skins_pictures();
    void the_bar_is_drawn_with_the_skins_pictures();
    void the_background_keeps_its_alpha_and_replaces_what_is_under_it();

    void the_position_stays_inside_the_contents();
    void fewer_contents_bring_the_position_inside();
    void a_larger_view_brings_the_position_inside();
    void a_view_lower_than_a_step_still_scrolls();

    void the_wheel_scrolls_three_steps_a_notch();
    void small_turns_of_the_wheel_add_up();
    void dragging_the_contents_scrolls_and_is_no_tap();
    void a_tap_is_handed_on();
    void a_touch_is_a_tap();
    void the_handle_shows_and_sets_the_position();
    void a_press_beside_the_handle_scrolls_a_page();
    void hiding_ends_a_drag();

    void suspended_repaints_come_when_resumed();
    void suspensions_nest();
    void resuming_without_suspending_does_nothing();

private:
    void drag(const QPoint& from, const QPoint& to) const;

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<QWidget> m_window;
    View* m_view = nullptr;
};

void TestScrollViewSkin::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("skin_test"));
    m_window->resize(120, 120);
    m_view = new View(m_window.get());
    m_view->resize(100, 100);
    m_view->setContents(step, 50);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestScrollViewSkin::cleanup()
{
    m_window.reset();
    m_skin.reset();
}

void TestScrollViewSkin::drag(const QPoint& from, const QPoint& to) const
{
    QTest::mousePress(m_view, Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(m_view, (from + to) / 2);
    QTest::mouseMove(m_view, to);
    QTest::mouseRelease(m_view, Qt::LeftButton, Qt::NoModifier, to);
}

void TestScrollViewSkin::contents_that_fit_have_no_bar()
{
    m_view->setContents(step, 10);
    QVERIFY(!m_view->scrollBarShown());
    QCOMPARE(m_view->visibleWidth(), 100);
    QVERIFY(m_view->scrollBarRectangle().isEmpty());
    QVERIFY(m_view->scrollHandleRectangle().isEmpty());
    QCOMPARE(m_view->lastFirstStep(), 0);
}

void TestScrollViewSkin::contents_that_do_not_fit_have_a_bar_at_the_right()
{
    m_view->setContents(step, 11);
    QVERIFY(m_view->scrollBarShown());
    QCOMPARE(m_view->visibleWidth(), 92);
    QCOMPARE(m_view->scrollBarRectangle(), QRect(92, 0, 8, 100));
    QCOMPARE(m_view->lastFirstStep(), 1);
}

void TestScrollViewSkin::the_bar_is_as_wide_as_the_skins_pictures()
{
    m_skin->picture(QStringLiteral("track.png"), QSize(6, 9), Qt::red);
    m_skin->picture(QStringLiteral("handle.png"), QSize(12, 9), Qt::green);
    m_skin->layout(QStringLiteral("[LISTBOX]\nscroll_track = track.png\nscroll_handle = handle.png\n"));
    View view(m_window.get());
    view.resize(100, 100);
    view.setContents(step, 50);
    QCOMPARE(view.visibleWidth(), 88);
}

void TestScrollViewSkin::the_bar_is_drawn_with_the_skins_pictures()
{
    m_skin->picture(QStringLiteral("track.png"), QSize(10, 9), Qt::red);
    m_skin->picture(QStringLiteral("handle.png"), QSize(10, 9), Qt::green);
    m_skin->layout(QStringLiteral("[LISTBOX]\nscroll_track = track.png\nscroll_handle = handle.png\n"));
    View view(m_window.get());
    view.resize(100, 100);
    view.setContents(step, 50);
    const QImage picture = view.grab().toImage();
    QCOMPARE(picture.pixelColor(95, 5), QColor(Qt::green));
    QCOMPARE(picture.pixelColor(95, 95), QColor(Qt::red));
}

void TestScrollViewSkin::the_background_keeps_its_alpha_and_replaces_what_is_under_it()
{
    QPixmap background(100, 100);
    background.fill(QColor(0, 0, 255, 80));
    m_view->setContents(step, 5);
    m_view->setBackgroundPixmap(background);
    QImage canvas(100, 100, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::yellow);
    m_view->render(&canvas, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(canvas.pixelColor(50, 50), QColor(0, 0, 255, 80));
    QCOMPARE(m_view->backgroundPixmap().size(), QSize(100, 100));
}

void TestScrollViewSkin::the_position_stays_inside_the_contents()
{
    m_view->setFirstStep(17);
    QCOMPARE(m_view->firstStep(), 17);
    m_view->setFirstStep(-1);
    QCOMPARE(m_view->firstStep(), 0);
    m_view->setFirstStep(1000);
    QCOMPARE(m_view->firstStep(), 40);
}

void TestScrollViewSkin::fewer_contents_bring_the_position_inside()
{
    m_view->setFirstStep(40);
    m_view->setContents(step, 20);
    QCOMPARE(m_view->firstStep(), 10);
    m_view->setContents(step, 0);
    QCOMPARE(m_view->firstStep(), 0);
    m_view->setContents(0, -5);
    QCOMPARE(m_view->lastFirstStep(), 0);
}

void TestScrollViewSkin::a_larger_view_brings_the_position_inside()
{
    m_view->setFirstStep(40);
    m_view->resize(100, 200);
    QCOMPARE(m_view->firstStep(), 30);
}

void TestScrollViewSkin::a_view_lower_than_a_step_still_scrolls()
{
    m_view->resize(100, 4);
    QCOMPARE(m_view->visibleSteps(), 1);
    m_view->setFirstStep(1000);
    QCOMPARE(m_view->firstStep(), 49);
    m_view->resize(0, 0);
    m_view->grab();
}

void TestScrollViewSkin::the_wheel_scrolls_three_steps_a_notch()
{
    turn_wheel(m_view, QPoint(10, 10), -120);
    QCOMPARE(m_view->firstStep(), 3);
    turn_wheel(m_view, QPoint(10, 10), 240);
    QCOMPARE(m_view->firstStep(), 0);
}

void TestScrollViewSkin::small_turns_of_the_wheel_add_up()
{
    for (int turn = 0; turn < 3; ++turn)
        turn_wheel(m_view, QPoint(10, 10), -15);
    QCOMPARE(m_view->firstStep(), 1);
}

void TestScrollViewSkin::dragging_the_contents_scrolls_and_is_no_tap()
{
    drag(QPoint(20, 90), QPoint(20, 40));
    QCOMPARE(m_view->firstStep(), 5);
    drag(QPoint(20, 10), QPoint(20, 30));
    QCOMPARE(m_view->firstStep(), 3);
    QVERIFY(m_view->taps.isEmpty());
}

void TestScrollViewSkin::a_tap_is_handed_on()
{
    QTest::mouseClick(m_view, Qt::LeftButton, Qt::NoModifier, QPoint(20, 55));
    QTest::mouseClick(m_view, Qt::RightButton, Qt::NoModifier, QPoint(20, 65));
    QCOMPARE(m_view->taps, QList<QPoint>{QPoint(20, 55)});
    // A finger is never quite still.
    drag(QPoint(20, 55), QPoint(22, 57));
    QCOMPARE(m_view->taps.size(), 2);
}

void TestScrollViewSkin::a_touch_is_a_tap()
{
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(m_view, screen.get()).press(0, QPoint(20, 55), m_view);
    QTest::touchEvent(m_view, screen.get()).release(0, QPoint(20, 55), m_view);
    QTRY_COMPARE(m_view->taps, QList<QPoint>{QPoint(20, 55)});
}

void TestScrollViewSkin::the_handle_shows_and_sets_the_position()
{
    // 50 steps of which 10 are shown: a handle of 20 in a bar of 100.
    QCOMPARE(m_view->scrollHandleRectangle(), QRect(92, 0, 8, 20));
    m_view->setFirstStep(40);
    QCOMPARE(m_view->scrollHandleRectangle(), QRect(92, 80, 8, 20));
    drag(QPoint(95, 85), QPoint(95, 45));
    QCOMPARE(m_view->firstStep(), 20);
    QCOMPARE(m_view->scrollHandleRectangle().top(), 40);
    QVERIFY(m_view->taps.isEmpty());
}

void TestScrollViewSkin::a_press_beside_the_handle_scrolls_a_page()
{
    QTest::mouseClick(m_view, Qt::LeftButton, Qt::NoModifier, QPoint(95, 90));
    QCOMPARE(m_view->firstStep(), 10);
    QTest::mouseClick(m_view, Qt::LeftButton, Qt::NoModifier, QPoint(95, 2));
    QCOMPARE(m_view->firstStep(), 0);
    QVERIFY(m_view->taps.isEmpty());
}

void TestScrollViewSkin::hiding_ends_a_drag()
{
    QTest::mousePress(m_view, Qt::LeftButton, Qt::NoModifier, QPoint(20, 90));
    m_view->hide();
    m_view->show();
    QTest::mouseMove(m_view, QPoint(20, 10));
    QTest::mouseRelease(m_view, Qt::LeftButton, Qt::NoModifier, QPoint(20, 10));
    QCOMPARE(m_view->firstStep(), 0);
    QVERIFY(m_view->taps.isEmpty());
}

void TestScrollViewSkin::suspended_repaints_come_when_resumed()
{
    QTRY_VERIFY(!m_view->drawn.isEmpty());
    QCoreApplication::processEvents();
    m_view->drawn.clear();
    m_view->suspendRepaints();
    QVERIFY(m_view->repaintsSuspended());
    m_view->setFirstStep(5);
    m_view->updateContents(QRect(0, 0, 10, 10));
    QCoreApplication::processEvents();
    QVERIFY(m_view->drawn.isEmpty());
    m_view->resumeRepaints();
    QTRY_COMPARE(m_view->drawn, QList<QRect>{QRect(0, 0, 92, 100)});
}

void TestScrollViewSkin::suspensions_nest()
{
    QTRY_VERIFY(!m_view->drawn.isEmpty());
    QCoreApplication::processEvents();
    m_view->drawn.clear();
    m_view->suspendRepaints();
    m_view->suspendRepaints();
    m_view->setFirstStep(5);
    m_view->resumeRepaints();
    QVERIFY(m_view->repaintsSuspended());
    QCoreApplication::processEvents();
    QVERIFY(m_view->drawn.isEmpty());
    m_view->resumeRepaints();
    QTRY_COMPARE(m_view->drawn.size(), 1);
}

void TestScrollViewSkin::resuming_without_suspending_does_nothing()
{
    m_view->resumeRepaints();
    QVERIFY(!m_view->repaintsSuspended());
    m_view->suspendRepaints();
    QVERIFY(m_view->repaintsSuspended());
}

TAVEL_TEST_MAIN(TestScrollViewSkin)
#include "tst_scroll_view_skin.moc"
