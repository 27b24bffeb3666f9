#include "paint_record.h"

#include "skin_maker.h"
#include "slider_skin.h"

namespace
{

constexpr unsigned int top = std::numeric_limits<unsigned int>::max();

using Change = std::function<void(SliderSkin&)>;

} // namespace

class TestSliderSkin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void without_a_skin_it_has_no_size_and_ignores_the_pointer();
    void it_is_as_large_as_track_and_handle_unless_told();
    void a_damaged_group_makes_no_trouble_data();
    void a_damaged_group_makes_no_trouble();

    void values_are_brought_inside_the_bounds();
    void a_change_is_announced_once();
    void moving_a_bound_moves_the_value_inside();
    void bounds_that_cross_push_each_other();
    void the_largest_numbers_are_exact();

    void the_handle_travels_from_edge_to_edge();
    void a_press_on_the_track_jumps_there();
    void a_press_on_the_handle_does_not_move_it();
    void the_handle_follows_the_pointer_where_it_was_taken();
    void dragging_past_the_ends_stops_at_the_bounds();
    void the_release_announces_the_position_once();
    void a_touch_seeks();
    void other_mouse_buttons_do_nothing();
    void presses_do_not_reach_the_parent();
    void without_a_range_the_pointer_does_nothing();

    void while_held_the_program_does_not_move_it();
    void disabling_ends_a_hold_at_the_value_that_was_set();
    void hiding_ends_a_hold_at_the_value_that_was_set();
    void disabled_it_ignores_the_pointer_but_can_be_set();

    void marks_are_kept_one_of_each_type();
    void marks_survive_bounds_and_disabling();
    void other_types_of_marks_are_ignored();
    void marks_are_drawn_at_their_positions();
    void each_state_has_its_handle();
    void track_and_fill_are_drawn();
    void without_pictures_plain_shapes_are_drawn();
    void each_change_comes_to_the_screen_data();
    void each_change_comes_to_the_screen();
    void the_alpha_override_fades_all_of_it();
    void the_background_piece_is_shown_with_the_alpha();
    void the_panels_background_is_cut_at_the_sliders_place();

private:
    SliderSkin* make(const QString& layout);
    QColor color(int x, int y = 10) const { return m_slider->grab().toImage().pixelColor(x, y); }
    QList<unsigned int> sent(const QSignalSpy& spy) const;

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<QWidget> m_window;
    SliderSkin* m_slider = nullptr;
    std::unique_ptr<QSignalSpy> m_changed;
    std::unique_ptr<QSignalSpy> m_released;
};

void TestSliderSkin::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_skin->picture(QStringLiteral("track.png"), QSize(9, 4), Qt::darkGray);
    m_skin->picture(QStringLiteral("fill.png"), QSize(9, 4), Qt::yellow);
    m_skin->picture(QStringLiteral("handle.png"), QSize(20, 20), Qt::white);
    m_skin->picture(QStringLiteral("press.png"), QSize(20, 20), Qt::red);
    m_skin->picture(QStringLiteral("disable.png"), QSize(20, 20), Qt::black);
    m_skin->picture(QStringLiteral("a.png"), QSize(4, 20), Qt::green);
    m_skin->picture(QStringLiteral("b.png"), QSize(4, 20), Qt::blue);
    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("skin_test"));
    m_window->resize(260, 60);
    m_slider = make(QStringLiteral("[TIME_SLIDER]\nwidth = 220\nheight = 20\ntrack = track.png\nfill = fill.png\n"
                                   "handle = handle.png\nhandle_press = press.png\nhandle_disable = disable.png\n"
                                   "marker_a = a.png\nmarker_b = b.png\n"));
    m_slider->setMaximum(1000);
    m_changed = std::make_unique<QSignalSpy>(m_slider, &SliderSkin::valueChanged);
    m_released = std::make_unique<QSignalSpy>(m_slider, &SliderSkin::seekReleased);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestSliderSkin::cleanup()
{
    m_changed.reset();
    m_released.reset();
    m_window.reset();
    m_skin.reset();
}

SliderSkin* TestSliderSkin::make(const QString& layout)
{
    m_skin->layout(layout);
    auto* slider = new SliderSkin(m_window.get(), QStringLiteral("TIME_SLIDER"));
    slider->show();
    return slider;
}

QList<unsigned int> TestSliderSkin::sent(const QSignalSpy& spy) const
{
    QList<unsigned int> values;
    for (const QList<QVariant>& arguments : spy)
        values.append(arguments.at(0).toUInt());
    return values;
}

// Layout

void TestSliderSkin::without_a_skin_it_has_no_size_and_ignores_the_pointer()
{
    SliderSkin* const slider = make(QString());
    QCOMPARE(slider->size(), QSize(0, 0));
    slider->setMaximum(1000);
    slider->setValue(500);
    QCOMPARE(slider->value(), 500U);
    QTest::mouseClick(slider, Qt::LeftButton);
    slider->grab();
    QCOMPARE(slider->value(), 500U);
    slider->setAlphaOverride(10);
    slider->setBackgroundPixmap(QPixmap(10, 10));
    slider->setBackgroundImage(QImage());
}

void TestSliderSkin::it_is_as_large_as_track_and_handle_unless_told()
{
    QCOMPARE(m_slider->size(), QSize(220, 20));
    QCOMPARE(m_slider->objectName(), QStringLiteral("TIME_SLIDER"));
    QCOMPARE(m_slider->focusPolicy(), Qt::NoFocus);
    QCOMPARE(make(QStringLiteral("[TIME_SLIDER]\ntrack = track.png\nhandle = handle.png\n"))->size(), QSize(9, 20));
}

void TestSliderSkin::a_damaged_group_makes_no_trouble_data()
{
    QTest::addColumn<QString>("layout");
    QTest::newRow("wrong numbers") << QStringLiteral("[TIME_SLIDER]\nwidth = wide\nheight = -20\n");
    QTest::newRow("huge numbers") << QStringLiteral("[TIME_SLIDER]\nwidth = 2147483647\nheight = 2147483647\n");
    QTest::newRow("missing pictures") << QStringLiteral("[TIME_SLIDER]\nwidth = 100\nheight = 10\nhandle = none.png\n");
    QTest::newRow("a handle wider than the slider")
        << QStringLiteral("[TIME_SLIDER]\nwidth = 5\nheight = 5\nhandle = handle.png\n");
    QTest::newRow("twice") << QStringLiteral("[TIME_SLIDER]\nwidth = 100\n[TIME_SLIDER]\nwidth = 50\nheight = 10\n");
}

void TestSliderSkin::a_damaged_group_makes_no_trouble()
{
    QFETCH(QString, layout);
    SliderSkin* const slider = make(layout);
    slider->setMaximum(100);
    slider->setValue(50);
    slider->insertMarker(0, 40);
    QImage canvas(10, 10, QImage::Format_ARGB32_Premultiplied);
    slider->render(&canvas);
    QTest::mouseClick(slider, Qt::LeftButton, Qt::NoModifier, QPoint(2, 2));
    QVERIFY(slider->value() <= 100);
}

// Values

void TestSliderSkin::values_are_brought_inside_the_bounds()
{
    m_slider->setMinimum(100);
    m_slider->setValue(5000);
    QCOMPARE(m_slider->value(), 1000U);
    m_slider->setValue(0);
    QCOMPARE(m_slider->value(), 100U);
}

void TestSliderSkin::a_change_is_announced_once()
{
    m_slider->setValue(300);
    m_slider->setValue(300);
    QCOMPARE(sent(*m_changed), QList<unsigned int>{300});
    QVERIFY(m_released->isEmpty());
}

void TestSliderSkin::moving_a_bound_moves_the_value_inside()
{
    m_slider->setValue(300);
    m_slider->setMaximum(200);
    QCOMPARE(m_slider->value(), 200U);
    m_slider->setMaximum(1000);
    m_slider->setMinimum(250);
    QCOMPARE(m_slider->value(), 250U);
    QCOMPARE(sent(*m_changed), (QList<unsigned int>{300, 200, 250}));
}

void TestSliderSkin::bounds_that_cross_push_each_other()
{
    m_slider->setMinimum(5000);
    QCOMPARE(m_slider->maximum(), 5000U);
    m_slider->setMaximum(10);
    QCOMPARE(m_slider->minimum(), 10U);
    QCOMPARE(m_slider->value(), 10U);
}

void TestSliderSkin::the_largest_numbers_are_exact()
{
    m_slider->setMaximum(top);
    m_slider->setValue(top);
    QCOMPARE(m_slider->handleRectangle(), QRect(200, 0, 20, 20));
    m_slider->setValue(top / 2);
    QVERIFY(std::abs(m_slider->handleRectangle().x() - 100) <= 1);
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(219, 10));
    QCOMPARE(m_slider->value(), top);
}

// Pointer

void TestSliderSkin::the_handle_travels_from_edge_to_edge()
{
    QCOMPARE(m_slider->handleRectangle(), QRect(0, 0, 20, 20));
    m_slider->setValue(500);
    QCOMPARE(m_slider->handleRectangle(), QRect(100, 0, 20, 20));
    m_slider->setValue(1000);
    QCOMPARE(m_slider->handleRectangle(), QRect(200, 0, 20, 20));
}

void TestSliderSkin::a_press_on_the_track_jumps_there()
{
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(m_slider->value(), 500U);
    QVERIFY(m_slider->isHeld());
    QCOMPARE(sent(*m_changed), QList<unsigned int>{500});
    QVERIFY(m_released->isEmpty());
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(sent(*m_released), QList<unsigned int>{500});
    QVERIFY(!m_slider->isHeld());
}

void TestSliderSkin::a_press_on_the_handle_does_not_move_it()
{
    m_slider->setValue(500);
    m_changed->clear();
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(104, 10));
    QCOMPARE(m_slider->value(), 500U);
    QVERIFY(m_changed->isEmpty());
    QCOMPARE(sent(*m_released), QList<unsigned int>{500});
}

void TestSliderSkin::the_handle_follows_the_pointer_where_it_was_taken()
{
    m_slider->setValue(500);
    m_changed->clear();
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(104, 10));
    QTest::mouseMove(m_slider, QPoint(124, 10));
    QCOMPARE(m_slider->value(), 600U);
    QTest::mouseMove(m_slider, QPoint(84, 40));
    QCOMPARE(m_slider->value(), 400U);
    QCOMPARE(sent(*m_changed), (QList<unsigned int>{600, 400}));
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(84, 40));
    QCOMPARE(sent(*m_released), QList<unsigned int>{400});
}

void TestSliderSkin::dragging_past_the_ends_stops_at_the_bounds()
{
    m_slider->setMinimum(100);
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QTest::mouseMove(m_slider, QPoint(5000, 10));
    QCOMPARE(m_slider->value(), 1000U);
    QTest::mouseMove(m_slider, QPoint(-5000, 10));
    QCOMPARE(m_slider->value(), 100U);
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(-5000, 10));
    QCOMPARE(sent(*m_released), QList<unsigned int>{100});
}

void TestSliderSkin::the_release_announces_the_position_once()
{
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(150, 10));
    QTest::mouseMove(m_slider, QPoint(180, 10));
    QCOMPARE(m_released->size(), 1);
    QCOMPARE(m_slider->value(), 500U);
}

void TestSliderSkin::a_touch_seeks()
{
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(m_slider, screen.get()).press(0, QPoint(110, 10), m_slider);
    QTest::touchEvent(m_slider, screen.get()).move(0, QPoint(130, 10), m_slider);
    QTest::touchEvent(m_slider, screen.get()).release(0, QPoint(130, 10), m_slider);
    QTRY_COMPARE(sent(*m_released), QList<unsigned int>{600});
    QCOMPARE(sent(*m_changed), (QList<unsigned int>{500, 600}));
}

void TestSliderSkin::other_mouse_buttons_do_nothing()
{
    QTest::mouseClick(m_slider, Qt::RightButton, Qt::NoModifier, QPoint(110, 10));
    QVERIFY(m_changed->isEmpty());
    QVERIFY(m_released->isEmpty());
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QTest::mouseClick(m_slider, Qt::RightButton, Qt::NoModifier, QPoint(110, 10));
    QVERIFY(m_slider->isHeld());
}

void TestSliderSkin::presses_do_not_reach_the_parent()
{
    class Parent : public QWidget
    {
    public:
        int presses = 0;

    protected:
        void mousePressEvent(QMouseEvent*) override { ++presses; }
        void mouseReleaseEvent(QMouseEvent*) override { ++presses; }
    };
    Parent parent;
    parent.setObjectName(QStringLiteral("skin_test"));
    SliderSkin slider(&parent, QStringLiteral("TIME_SLIDER"));
    QTest::mouseClick(&slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    slider.setDisable(true);
    QTest::mouseClick(&slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(parent.presses, 0);
}

void TestSliderSkin::without_a_range_the_pointer_does_nothing()
{
    m_slider->setMaximum(0);
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(m_slider->value(), 0U);
    QVERIFY(m_released->isEmpty());
    QCOMPARE(m_slider->handleRectangle(), QRect(0, 0, 20, 20));
}

// Holds

void TestSliderSkin::while_held_the_program_does_not_move_it()
{
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    m_slider->setValue(42);
    QCOMPARE(m_slider->value(), 500U);
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(sent(*m_released), QList<unsigned int>{500});
    QCOMPARE(m_slider->value(), 500U);
    m_slider->setValue(501);
    QCOMPARE(m_slider->value(), 501U);
}

void TestSliderSkin::disabling_ends_a_hold_at_the_value_that_was_set()
{
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    m_slider->setValue(0);
    m_slider->setDisable(true);
    QCOMPARE(m_slider->value(), 0U);
    QVERIFY(!m_slider->isHeld());
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QVERIFY(m_released->isEmpty());
    QCOMPARE(sent(*m_changed), (QList<unsigned int>{500, 0}));
}

void TestSliderSkin::hiding_ends_a_hold_at_the_value_that_was_set()
{
    m_slider->setValue(77);
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    m_slider->hide();
    QVERIFY(!m_slider->isHeld());
    QCOMPARE(m_slider->value(), 77U);
    QVERIFY(m_released->isEmpty());
}

void TestSliderSkin::disabled_it_ignores_the_pointer_but_can_be_set()
{
    m_slider->setDisable(true);
    QVERIFY(m_slider->isDisabled());
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(m_slider->value(), 0U);
    m_slider->setValue(300);
    QCOMPARE(m_slider->value(), 300U);
    m_slider->setDisable(false);
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(sent(*m_released), QList<unsigned int>{500});
}

// Marks and looks

void TestSliderSkin::marks_are_kept_one_of_each_type()
{
    QVERIFY(!m_slider->marker(SliderSkin::Marker::A));
    m_slider->insertMarker(0, 100);
    m_slider->insertMarker(0, 200);
    m_slider->insertMarker(1, 700);
    QCOMPARE(*m_slider->marker(SliderSkin::Marker::A), 200U);
    QCOMPARE(*m_slider->marker(SliderSkin::Marker::B), 700U);
    m_slider->clearMarkers();
    QVERIFY(!m_slider->marker(SliderSkin::Marker::A));
    QVERIFY(!m_slider->marker(SliderSkin::Marker::B));
}

void TestSliderSkin::marks_survive_bounds_and_disabling()
{
    m_slider->insertMarker(0, 900);
    m_slider->setMaximum(100);
    m_slider->setDisable(true);
    QCOMPARE(*m_slider->marker(SliderSkin::Marker::A), 900U);
}

void TestSliderSkin::other_types_of_marks_are_ignored()
{
    m_slider->insertMarker(-1, 100);
    m_slider->insertMarker(2, 100);
    QVERIFY(!m_slider->marker(SliderSkin::Marker::A));
    QVERIFY(!m_slider->marker(SliderSkin::Marker::B));
}

void TestSliderSkin::marks_are_drawn_at_their_positions()
{
    m_slider->insertMarker(0, 250);
    m_slider->insertMarker(1, 750);
    QCOMPARE(color(60, 2), QColor(Qt::green));
    QCOMPARE(color(160, 2), QColor(Qt::blue));
    m_slider->clearMarkers();
    QCOMPARE(color(60, 2).alpha(), 0);
    QCOMPARE(color(160, 2).alpha(), 0);
}

void TestSliderSkin::each_state_has_its_handle()
{
    m_slider->setValue(500);
    QCOMPARE(color(110, 2), QColor(Qt::white));
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(color(110, 2), QColor(Qt::red));
    QTest::mouseRelease(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(110, 10));
    QCOMPARE(color(110, 2), QColor(Qt::white));
    m_slider->setDisable(true);
    QCOMPARE(color(110, 2), QColor(Qt::black));
}

void TestSliderSkin::track_and_fill_are_drawn()
{
    m_slider->setValue(500);
    QCOMPARE(color(50), QColor(Qt::yellow));
    QCOMPARE(color(170), QColor(Qt::darkGray));
    QCOMPARE(color(170, 2).alpha(), 0);
    m_slider->setValue(1000);
    QCOMPARE(color(170), QColor(Qt::yellow));
}

void TestSliderSkin::without_pictures_plain_shapes_are_drawn()
{
    m_slider = make(QStringLiteral("[TIME_SLIDER]\nwidth = 220\nheight = 20\n"));
    m_slider->setMaximum(1000);
    m_slider->setValue(500);
    m_slider->insertMarker(0, 750);
    const QColor handle = color(110, 2);
    const QColor fill = color(50);
    const QColor track = color(190);
    QVERIFY(handle.alpha() > 0 && fill.alpha() > 0 && track.alpha() > 0);
    QVERIFY(handle != fill && fill != track && handle != track);
    QVERIFY(color(162, 2).alpha() > 0);
    m_slider->setDisable(true);
    QVERIFY(color(110, 2) != handle);
}

void TestSliderSkin::each_change_comes_to_the_screen_data()
{
    QTest::addColumn<Change>("before");
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& before, const Change& change) {
        QTest::newRow(name) << before << change;
    };
    const Change nothing = [](SliderSkin&) {};
    const Change press = [](SliderSkin& slider) {
        QTest::mousePress(&slider, Qt::LeftButton, Qt::NoModifier, slider.handleRectangle().center());
    };
    row("value", nothing, [](SliderSkin& slider) { slider.setValue(500); });
    row(
        "bound", [](SliderSkin& slider) { slider.setValue(500); }, [](SliderSkin& slider) { slider.setMaximum(2000); });
    row("mark", nothing, [](SliderSkin& slider) { slider.insertMarker(0, 500); });
    row(
        "marks gone", [](SliderSkin& slider) { slider.insertMarker(0, 500); },
        [](SliderSkin& slider) { slider.clearMarkers(); });
    row("disabled", nothing, [](SliderSkin& slider) { slider.setDisable(true); });
    row("handle taken", nothing, press);
    row("handle let go", press, [](SliderSkin& slider) {
        QTest::mouseRelease(&slider, Qt::LeftButton, Qt::NoModifier, slider.handleRectangle().center());
    });
    row("background image", nothing, [](SliderSkin& slider) { slider.setBackgroundImage(QImage()); });
    row("background", nothing, [](SliderSkin& slider) { slider.setBackgroundPixmap(QPixmap(10, 10)); });
    row("alpha", nothing, [](SliderSkin& slider) { slider.setAlphaOverride(100); });
}

void TestSliderSkin::each_change_comes_to_the_screen()
{
    QFETCH(Change, before);
    QFETCH(Change, change);
    before(*m_slider);
    PaintRecord painted(m_slider);
    QVERIFY(painted.begin());
    change(*m_slider);
    QTRY_VERIFY(painted.covers_all());
}

void TestSliderSkin::the_alpha_override_fades_all_of_it()
{
    m_slider->setValue(500);
    m_slider->setAlphaOverride(128);
    QVERIFY(std::abs(color(170).alpha() - 128) <= 1);
    QVERIFY(std::abs(color(110, 2).alpha() - 128) <= 1);
    m_slider->setAlphaOverride(0);
    QCOMPARE(color(170).alpha(), 0);
    QCOMPARE(m_slider->alphaOverride(), static_cast<unsigned char>(0));
}

void TestSliderSkin::the_background_piece_is_shown_with_the_alpha()
{
    QImage piece(220, 20, QImage::Format_ARGB32);
    piece.fill(qRgba(0, 0, 255, 200));
    m_slider->setBackgroundImage(piece);
    QCOMPARE(color(210, 1), QColor(0, 0, 255, 200));
    m_slider->setAlphaOverride(51);
    QCOMPARE(color(210, 1), QColor(0, 0, 255, 40));
    m_slider->setAlphaOverride(255);
    QCOMPARE(color(210, 1), QColor(0, 0, 255, 200));
}

void TestSliderSkin::the_panels_background_is_cut_at_the_sliders_place()
{
    m_slider->move(10, 5);
    QImage panel(300, 60, QImage::Format_ARGB32);
    panel.fill(Qt::red);
    for (int x = 10; x < 230; ++x)
        panel.setPixelColor(x, 5, Qt::green);
    m_slider->setBackgroundPixmap(QPixmap::fromImage(panel));
    QCOMPARE(m_slider->backgroundPixmap().size(), QSize(220, 20));
    QCOMPARE(color(219, 0), QColor(Qt::green));
    QCOMPARE(color(219, 1), QColor(Qt::red));
    m_slider->setBackgroundPixmap(QPixmap());
    QCOMPARE(color(219, 1).alpha(), 0);
}

TAVEL_TEST_MAIN(TestSliderSkin)
#include "tst_slider_skin.moc"
