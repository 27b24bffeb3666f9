#include "paint_record.h"

#include "skin_base.h"
#include "skin_layout.h"
#include "skin_maker.h"

namespace
{

const QString one = QStringLiteral("one");
const QString two = QStringLiteral("two");
const QString three = QStringLiteral("three");
const QString four = QStringLiteral("four");

constexpr QRgb grey = 0xff808080;
constexpr QRgb white = 0xffffffff;
constexpr QRgb red = 0xffff0000;
constexpr QRgb black = 0xff000000;

/// The window that the panel of SkinMaker::panel() stands in. It notes the keys and presses that reach it.
class Window : public QWidget
{
public:
    Window() { setObjectName(QStringLiteral("skin_test")); }

    int events = 0;

protected:
    void keyPressEvent(QKeyEvent*) override { ++events; }
    void keyReleaseEvent(QKeyEvent*) override { ++events; }
    void mousePressEvent(QMouseEvent*) override { ++events; }
    void mouseReleaseEvent(QMouseEvent*) override { ++events; }
};

/// A panel that lets the test reach what derived panels reach, and notes what the base calls.
class Panel : public SkinBase
{
public:
    explicit Panel(QWidget* parent) : SkinBase(parent, "PANEL") {}

    using SkinBase::isPressed;
    using SkinBase::setBackgroundImage;
    using SkinBase::storeAlphaOverride;

    void redrawImage(QImage& image, int x, int y) override
    {
        composed.append(QPoint(x, y));
        formats.insert(image.format());
        SkinBase::redrawImage(image, x, y);
    }
    void drawTitle(QPainter* painter) override
    {
        if (title.isValid())
            painter->fillRect(170, 0, 10, 10, title);
    }

    QList<QPoint> composed;
    QSet<int> formats;
    QColor title;
};

using Change = std::function<void(Panel&)>;

} // namespace

class TestSkinBase : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void the_panel_takes_the_size_of_its_background();
    void buttons_come_from_the_layout_in_its_order();
    void another_group_has_no_buttons();
    void a_button_named_twice_is_there_once();
    void loading_again_replaces_buttons_and_size();

    void the_background_keeps_its_alpha();
    void the_background_replaces_what_is_under_it();
    void alpha_override_fades_background_and_buttons();
    void alpha_override_zero_makes_the_panel_invisible();
    void a_stored_alpha_is_shown_by_the_next_drawing();
    void another_background_pixmap_is_shown_as_it_is();
    void button_pictures_are_prepared_at_their_places();
    void the_title_is_drawn_between_background_and_buttons();
    void each_state_has_its_picture();
    void the_focus_shows_only_while_the_panel_has_the_keys();
    void each_change_of_a_button_comes_to_the_screen_data();
    void each_change_of_a_button_comes_to_the_screen();
    void each_change_of_the_panel_comes_to_the_screen_data();
    void each_change_of_the_panel_comes_to_the_screen();
    void the_focus_goes_and_comes_on_the_screen();

    void right_and_left_move_the_focus_round_the_ends();
    void the_focus_moves_past_hidden_and_disabled_buttons();
    void with_no_usable_button_keys_do_nothing();
    void the_first_usable_button_has_the_focus_at_first();
    void a_hidden_focus_goes_to_the_button_in_its_place();
    void a_disabled_focus_goes_to_the_next_button_and_comes_back();
    void buttons_that_replace_each_other_in_a_circle_do_not_hang();

    void return_presses_and_its_release_clicks_data();
    void return_presses_and_its_release_clicks();
    void a_held_key_presses_once();
    void the_focus_does_not_move_while_a_button_is_held();
    void a_press_key_is_taken_back_when_the_focus_leaves();
    void keys_and_presses_do_not_reach_the_parent();

    void a_click_presses_and_releases();
    void a_click_gives_the_button_the_focus();
    void a_release_beside_the_button_takes_the_press_back();
    void other_mouse_buttons_do_nothing();
    void a_click_beside_the_buttons_does_nothing();
    void hidden_and_disabled_buttons_take_no_click();
    void a_double_click_is_two_clicks();
    void a_touch_presses_and_releases();
    void a_second_button_is_ignored_while_one_is_held();

    void hiding_a_held_button_takes_the_press_back_data();
    void hiding_a_held_button_takes_the_press_back();
    void hiding_the_panel_takes_the_press_back();
    void unknown_names_are_ignored();
    void releasing_what_is_not_pressed_does_nothing();

    void without_a_layout_file_the_panel_has_no_size();
    void damaged_layouts_make_no_trouble_data();
    void damaged_layouts_make_no_trouble();
    void a_button_without_pictures_is_known_but_out_of_reach();
    void a_button_far_outside_makes_no_trouble();
    void more_buttons_than_a_screen_holds_are_cut_off();

private:
    QRgb pixel(const QPoint& position) const { return m_panel->grab().toImage().pixelColor(position).rgba(); }
    QRgb button_pixel(const QString& name) const { return pixel(m_panel->button(name)->rectangle().center()); }
    QPoint middle(const QString& name) const { return m_panel->button(name)->rectangle().center(); }
    QStringList clicks() const;
    void load(const QString& layout);

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<Window> m_window;
    Panel* m_panel = nullptr;
    std::unique_ptr<QSignalSpy> m_clicks;
};

void TestSkinBase::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_skin->panel();
    m_window = std::make_unique<Window>();
    m_window->resize(240, 80);
    m_panel = new Panel(m_window.get());
    m_panel->do_configloading(QStringLiteral("PANEL"));
    m_clicks = std::make_unique<QSignalSpy>(m_panel, &SkinBase::button_clicked);
    m_window->show();
    m_panel->setFocus();
}

void TestSkinBase::cleanup()
{
    m_clicks.reset();
    m_window.reset();
    m_skin.reset();
}

QStringList TestSkinBase::clicks() const
{
    QStringList names;
    for (const QList<QVariant>& arguments : *m_clicks) {
        if (arguments.at(0).value<const QObject*>() != m_panel)
            return {QStringLiteral("wrong sender")};
        names.append(arguments.at(1).toString());
    }
    return names;
}

void TestSkinBase::load(const QString& layout)
{
    m_skin->layout(layout);
    m_panel->do_configloading(QStringLiteral("PANEL"));
}

// Layout

void TestSkinBase::the_panel_takes_the_size_of_its_background()
{
    QCOMPARE(m_panel->size(), QSize(200, 40));
    QCOMPARE(m_panel->objectName(), QStringLiteral("PANEL"));
}

void TestSkinBase::buttons_come_from_the_layout_in_its_order()
{
    QCOMPARE(m_panel->buttonOrder(), (QStringList{one, two, three, four}));
    QCOMPARE(m_panel->buttons().size(), 4);
    QCOMPARE(m_panel->button(three)->name(), three);
    QCOMPARE(m_panel->button(three)->rectangle(), QRect(84, 4, 32, 32));
    QCOMPARE(m_panel->button(three)->state(), SkinButton::State::Normal);
    QCOMPARE(m_panel->button(QStringLiteral("five")), nullptr);
}

void TestSkinBase::another_group_has_no_buttons()
{
    m_panel->do_configloading(QStringLiteral("OTHER"));
    QVERIFY(m_panel->buttons().isEmpty());
    QCOMPARE(m_panel->size(), QSize(0, 0));
}

void TestSkinBase::a_button_named_twice_is_there_once()
{
    load(SkinMaker::panel_layout() + QStringLiteral("buttons = one two one two\n"));
    QCOMPARE(m_panel->buttonOrder(), (QStringList{one, two}));
}

void TestSkinBase::loading_again_replaces_buttons_and_size()
{
    m_panel->pressButton(one);
    m_skin->picture(QStringLiteral("panel.png"), QSize(100, 50), Qt::green);
    load(SkinMaker::panel_layout() + QStringLiteral("buttons = four\n"));
    QCOMPARE(m_panel->size(), QSize(100, 50));
    QCOMPARE(m_panel->buttonOrder(), QStringList{four});
    QVERIFY(!m_panel->isPressed());
}

// Drawing

void TestSkinBase::the_background_keeps_its_alpha()
{
    QCOMPARE(pixel(QPoint(198, 2)), qRgba(0, 0, 255, 80));
}

void TestSkinBase::the_background_replaces_what_is_under_it()
{
    QImage canvas(200, 40, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::yellow);
    m_panel->render(&canvas, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(canvas.pixelColor(198, 2).rgba(), qRgba(0, 0, 255, 80));
}

void TestSkinBase::alpha_override_fades_background_and_buttons()
{
    m_panel->setAlphaOverride(51);
    QCOMPARE(m_panel->alphaOverride(), static_cast<unsigned char>(51));
    QCOMPARE(pixel(QPoint(198, 2)), qRgba(0, 0, 255, 16));
    QCOMPARE(qAlpha(m_panel->button(two)->pixmap(SkinButton::State::Normal).toImage().pixel(0, 0)), 51);
    // The button lies over the background: 51 of it, and of the rest the background's 16.
    const int expected = 51 + qRound(16 * (255 - 51) / 255.0);
    QVERIFY(std::abs(qAlpha(button_pixel(two)) - expected) <= 1);
}

void TestSkinBase::alpha_override_zero_makes_the_panel_invisible()
{
    m_panel->setAlphaOverride(0);
    QCOMPARE(pixel(QPoint(198, 2)), 0U);
    QCOMPARE(button_pixel(two), 0U);
    m_panel->setAlphaOverride(255);
    QCOMPARE(pixel(QPoint(198, 2)), qRgba(0, 0, 255, 80));
    QCOMPARE(button_pixel(two), grey);
}

void TestSkinBase::a_stored_alpha_is_shown_by_the_next_drawing()
{
    m_panel->storeAlphaOverride(0);
    QCOMPARE(pixel(QPoint(198, 2)), qRgba(0, 0, 255, 80));
    m_panel->redrawButtonImages();
    QCOMPARE(button_pixel(two), qRgba(0, 0, 255, 80));
}

void TestSkinBase::another_background_pixmap_is_shown_as_it_is()
{
    QPixmap pixmap(200, 40);
    pixmap.fill(QColor(0, 255, 0, 255));
    m_panel->setBackgroundPixmap(pixmap);
    QCOMPARE(pixel(QPoint(198, 2)), qRgba(0, 255, 0, 255));
    QCOMPARE(m_panel->size(), QSize(200, 40));
    QCOMPARE(m_panel->backgroundImage().pixel(198, 2), qRgba(0, 0, 255, 80));
    m_panel->setBackgroundPixmap(QPixmap());
    QCOMPARE(pixel(QPoint(198, 2)), 0U);

    QImage image(10, 10, QImage::Format_RGB32);
    image.fill(Qt::red);
    m_panel->storeAlphaOverride(128);
    m_panel->setBackgroundImage(image);
    QCOMPARE(pixel(QPoint(9, 2)), qRgba(255, 0, 0, 128));
    QCOMPARE(m_panel->backgroundImage().format(), QImage::Format_ARGB32);
}

void TestSkinBase::button_pictures_are_prepared_at_their_places()
{
    m_panel->composed.clear();
    m_panel->redrawButtonImages();
    QCOMPARE(m_panel->composed.size(), 16);
    QCOMPARE(m_panel->composed.count(QPoint(124, 4)), 4);
    QCOMPARE(m_panel->formats, QSet<int>{QImage::Format_ARGB32});
}

void TestSkinBase::the_title_is_drawn_between_background_and_buttons()
{
    m_panel->title = Qt::green;
    load(SkinMaker::panel_layout() + QStringLiteral("four_xpos = 172\nfour_ypos = 4\n"));
    QCOMPARE(pixel(QPoint(170, 1)), 0xff00ff00);
    QCOMPARE(pixel(QPoint(175, 6)), grey);
}

void TestSkinBase::each_state_has_its_picture()
{
    m_panel->setButtonFocus(one);
    QCOMPARE(button_pixel(one), white);
    QCOMPARE(button_pixel(two), grey);
    m_panel->pressButton(two);
    QCOMPARE(button_pixel(one), grey);
    QCOMPARE(button_pixel(two), red);
    m_panel->releaseButton(two);
    QCOMPARE(button_pixel(two), white);
    m_panel->disableButton(three);
    QCOMPARE(button_pixel(three), black);
    m_panel->hideButton(four);
    QCOMPARE(button_pixel(four), qRgba(0, 0, 255, 80));
    m_panel->showNormal(four);
    QCOMPARE(button_pixel(four), grey);
    m_panel->showFocus(three);
    QCOMPARE(button_pixel(three), white);
    QCOMPARE(button_pixel(two), grey);
}

void TestSkinBase::the_focus_shows_only_while_the_panel_has_the_keys()
{
    QLineEdit other(m_window.get());
    other.show();
    m_panel->showFocus(two);
    QCOMPARE(button_pixel(two), white);
    other.setFocus();
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Focus);
    QCOMPARE(button_pixel(two), grey);
    m_panel->setFocus();
    QCOMPARE(button_pixel(two), white);
}

// Key pad: focus

void TestSkinBase::each_change_of_a_button_comes_to_the_screen_data()
{
    QTest::addColumn<Change>("before");
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& before, const Change& change) {
        QTest::newRow(name) << before << change;
    };
    const Change nothing = [](Panel&) {};
    const Change press = [](Panel& panel) { panel.pressButton(two); };
    const Change hide = [](Panel& panel) { panel.hideButton(two); };
    row(
        "pressed", [](Panel& panel) { panel.setButtonFocus(two); }, press);
    row("released", press, [](Panel& panel) { panel.releaseButton(two); });
    row("press taken back", press, [](Panel& panel) { panel.cancelButton(two); });
    row("focus", nothing, [](Panel& panel) { panel.setButtonFocus(two); });
    row(
        "focus gone", [](Panel& panel) { panel.setButtonFocus(two); },
        [](Panel& panel) { panel.setButtonFocus(three); });
    row("disabled", nothing, [](Panel& panel) { panel.disableButton(two); });
    row("hidden", nothing, hide);
    row("shown", hide, [](Panel& panel) { panel.showNormal(two); });
    row("shown with the focus", hide, [](Panel& panel) { panel.showFocus(two); });
}

void TestSkinBase::each_change_of_a_button_comes_to_the_screen()
{
    QFETCH(Change, before);
    QFETCH(Change, change);
    before(*m_panel);
    PaintRecord painted(m_panel);
    QVERIFY(painted.begin());
    change(*m_panel);
    QTRY_VERIFY(painted.covers(m_panel->button(two)->rectangle()));
}

void TestSkinBase::each_change_of_the_panel_comes_to_the_screen_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("background", [](Panel& panel) { panel.setBackgroundPixmap(QPixmap(10, 10)); });
    row("background image", [](Panel& panel) { panel.setBackgroundImage(QImage()); });
    row("button pictures", [](Panel& panel) { panel.redrawButtonImages(); });
    row("alpha", [](Panel& panel) { panel.setAlphaOverride(100); });
    row("layout", [](Panel& panel) { panel.do_configloading(QStringLiteral("PANEL")); });
}

void TestSkinBase::each_change_of_the_panel_comes_to_the_screen()
{
    QFETCH(Change, change);
    PaintRecord painted(m_panel);
    QVERIFY(painted.begin());
    change(*m_panel);
    QTRY_VERIFY(painted.covers_all());
}

void TestSkinBase::the_focus_goes_and_comes_on_the_screen()
{
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    PaintRecord painted(m_panel);
    QVERIFY(painted.begin());
    m_panel->clearFocus();
    QTRY_VERIFY(painted.covers_all());
    QVERIFY(painted.begin());
    m_panel->setFocus();
    QTRY_VERIFY(painted.covers_all());
}

void TestSkinBase::right_and_left_move_the_focus_round_the_ends()
{
    m_panel->showFocus(one);
    const QStringList forward{two, three, four, one};
    for (const QString& name : forward) {
        QTest::keyClick(m_panel, Qt::Key_Right);
        QCOMPARE(m_panel->focusButton()->name(), name);
        QCOMPARE(m_panel->button(name)->state(), SkinButton::State::Focus);
    }
    const QStringList back{four, three, two, one};
    for (const QString& name : back) {
        QTest::keyClick(m_panel, Qt::Key_Left);
        QCOMPARE(m_panel->focusButton()->name(), name);
    }
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Normal);
    QVERIFY(clicks().isEmpty());
}

void TestSkinBase::the_focus_moves_past_hidden_and_disabled_buttons()
{
    m_panel->showFocus(one);
    m_panel->hideButton(two);
    m_panel->disableButton(three);
    QTest::keyClick(m_panel, Qt::Key_Right);
    QCOMPARE(m_panel->focusButton()->name(), four);
    QTest::keyClick(m_panel, Qt::Key_Left);
    QCOMPARE(m_panel->focusButton()->name(), one);
    QCOMPARE(m_panel->button(three)->state(), SkinButton::State::Disabled);
}

void TestSkinBase::with_no_usable_button_keys_do_nothing()
{
    for (const QString& name : {one, two, three, four})
        m_panel->hideButton(name);
    QCOMPARE(m_panel->focusButton(), nullptr);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Return})
        QTest::keyClick(m_panel, key);
    QVERIFY(clicks().isEmpty());
}

void TestSkinBase::the_first_usable_button_has_the_focus_at_first()
{
    m_panel->disableButton(one);
    QTest::keyClick(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), QStringList{two});
}

void TestSkinBase::a_hidden_focus_goes_to_the_button_in_its_place()
{
    load(SkinMaker::panel_layout() + QStringLiteral("four_replaces = two\nfour_xpos = 44\n"));
    QVERIFY(m_panel->button(four)->isHidden());
    m_panel->showFocus(two);
    m_panel->hideButton(two);
    m_panel->showNormal(four);
    QCOMPARE(m_panel->focusButton()->name(), four);
    QCOMPARE(button_pixel(four), white);
    QTest::keyClick(m_panel, Qt::Key_Return);
    m_panel->hideButton(four);
    m_panel->showNormal(two);
    QTest::keyClick(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), (QStringList{four, two}));
}

void TestSkinBase::a_disabled_focus_goes_to_the_next_button_and_comes_back()
{
    m_panel->showFocus(three);
    m_panel->disableButton(three);
    QCOMPARE(m_panel->focusButton()->name(), four);
    QCOMPARE(button_pixel(four), white);
    m_panel->showNormal(three);
    QCOMPARE(m_panel->focusButton()->name(), three);
    QCOMPARE(button_pixel(three), white);
    QCOMPARE(button_pixel(four), grey);
}

void TestSkinBase::buttons_that_replace_each_other_in_a_circle_do_not_hang()
{
    load(SkinMaker::panel_layout() +
         QStringLiteral("one_replaces = two\ntwo_replaces = one\nthree_replaces = three\n"));
    m_panel->showFocus(one);
    m_panel->hideButton(one);
    QCOMPARE(m_panel->focusButton()->name(), four);
    m_panel->showNormal(two);
    QVERIFY(m_panel->focusButton());
}

// Key pad: presses

void TestSkinBase::return_presses_and_its_release_clicks_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << static_cast<int>(Qt::Key_Return);
    QTest::newRow("Enter") << static_cast<int>(Qt::Key_Enter);
    QTest::newRow("Space") << static_cast<int>(Qt::Key_Space);
    QTest::newRow("Select") << static_cast<int>(Qt::Key_Select);
}

void TestSkinBase::return_presses_and_its_release_clicks()
{
    QFETCH(int, key);
    m_panel->showFocus(three);
    QTest::keyPress(m_panel, static_cast<Qt::Key>(key));
    QCOMPARE(m_panel->button(three)->state(), SkinButton::State::Pressed);
    QVERIFY(m_panel->isPressed());
    QVERIFY(clicks().isEmpty());
    QTest::keyRelease(m_panel, static_cast<Qt::Key>(key));
    QCOMPARE(m_panel->button(three)->state(), SkinButton::State::Focus);
    QVERIFY(!m_panel->isPressed());
    QCOMPARE(clicks(), QStringList{three});
}

void TestSkinBase::a_held_key_presses_once()
{
    m_panel->showFocus(three);
    QTest::keyPress(m_panel, Qt::Key_Return);
    for (int repeat = 0; repeat < 3; ++repeat) {
        send_repeated_key(m_panel, QEvent::KeyRelease, Qt::Key_Return);
        send_repeated_key(m_panel, QEvent::KeyPress, Qt::Key_Return);
    }
    QVERIFY(clicks().isEmpty());
    QTest::keyRelease(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), QStringList{three});
}

void TestSkinBase::the_focus_does_not_move_while_a_button_is_held()
{
    m_panel->showFocus(three);
    QTest::keyPress(m_panel, Qt::Key_Return);
    QTest::keyClick(m_panel, Qt::Key_Right);
    QCOMPARE(m_panel->focusButton()->name(), three);
    QTest::keyRelease(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), QStringList{three});
}

void TestSkinBase::a_press_key_is_taken_back_when_the_focus_leaves()
{
    QLineEdit other(m_window.get());
    other.show();
    QApplication::setActiveWindow(m_window.get());
    m_panel->setFocus();
    QTRY_VERIFY(m_panel->hasFocus());
    m_panel->showFocus(three);
    QTest::keyPress(m_panel, Qt::Key_Return);
    other.setFocus();
    QCOMPARE(m_panel->button(three)->state(), SkinButton::State::Focus);
    QTest::keyRelease(m_panel, Qt::Key_Return);
    QVERIFY(clicks().isEmpty());
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(one));
    QCOMPARE(clicks(), QStringList{one});
}

void TestSkinBase::keys_and_presses_do_not_reach_the_parent()
{
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Return, Qt::Key_Up, Qt::Key_Escape, Qt::Key_F5, Qt::Key_A})
        QTest::keyClick(m_panel, key);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(one));
    QTest::mouseClick(m_panel, Qt::RightButton, Qt::NoModifier, QPoint(199, 39));
    QCOMPARE(m_window->events, 0);
}

// Pointer

void TestSkinBase::a_click_presses_and_releases()
{
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Pressed);
    QVERIFY(clicks().isEmpty());
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Focus);
    QCOMPARE(clicks(), QStringList{two});
}

void TestSkinBase::a_click_gives_the_button_the_focus()
{
    m_panel->showFocus(four);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(m_panel->focusButton()->name(), two);
    QCOMPARE(m_panel->button(four)->state(), SkinButton::State::Normal);
}

void TestSkinBase::a_release_beside_the_button_takes_the_press_back()
{
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QTest::mouseMove(m_panel, middle(three));
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(three));
    QVERIFY(clicks().isEmpty());
    QVERIFY(!m_panel->isPressed());
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Focus);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(three));
    QCOMPARE(clicks(), QStringList{three});
}

void TestSkinBase::other_mouse_buttons_do_nothing()
{
    QTest::mouseClick(m_panel, Qt::RightButton, Qt::NoModifier, middle(two));
    QVERIFY(clicks().isEmpty());
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QTest::mouseClick(m_panel, Qt::RightButton, Qt::NoModifier, middle(two));
    QVERIFY(clicks().isEmpty());
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(clicks(), QStringList{two});
}

void TestSkinBase::a_click_beside_the_buttons_does_nothing()
{
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, QPoint(199, 39));
    QVERIFY(clicks().isEmpty());
    QVERIFY(!m_panel->isPressed());
}

void TestSkinBase::hidden_and_disabled_buttons_take_no_click()
{
    m_panel->hideButton(one);
    m_panel->disableButton(two);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(one));
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    m_panel->pressButton(one);
    m_panel->pressButton(two);
    QVERIFY(!m_panel->isPressed());
    QVERIFY(clicks().isEmpty());
}

void TestSkinBase::a_double_click_is_two_clicks()
{
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QMouseEvent second(QEvent::MouseButtonDblClick, middle(two), m_panel->mapToGlobal(middle(two)), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_panel, &second);
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(clicks(), (QStringList{two, two}));
}

void TestSkinBase::a_touch_presses_and_releases()
{
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(m_panel, screen.get()).press(0, middle(three), m_panel);
    QTRY_COMPARE(m_panel->button(three)->state(), SkinButton::State::Pressed);
    QTest::touchEvent(m_panel, screen.get()).release(0, middle(three), m_panel);
    QTRY_COMPARE(clicks(), QStringList{three});
}

void TestSkinBase::a_second_button_is_ignored_while_one_is_held()
{
    m_panel->showFocus(one);
    QTest::keyPress(m_panel, Qt::Key_Return);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Normal);
    QVERIFY(clicks().isEmpty());
    QTest::keyRelease(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), QStringList{one});
}

// Presses that end otherwise

void TestSkinBase::hiding_a_held_button_takes_the_press_back_data()
{
    QTest::addColumn<int>("operation");
    QTest::newRow("hideButton") << 0;
    QTest::newRow("disableButton") << 1;
    QTest::newRow("showNormal") << 2;
    QTest::newRow("showFocus") << 3;
}

void TestSkinBase::hiding_a_held_button_takes_the_press_back()
{
    QFETCH(int, operation);
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    switch (operation) {
    case 0:
        m_panel->hideButton(two);
        break;
    case 1:
        m_panel->disableButton(two);
        break;
    case 2:
        m_panel->showNormal(two);
        break;
    default:
        m_panel->showFocus(two);
        break;
    }
    QVERIFY(!m_panel->isPressed());
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QVERIFY(clicks().isEmpty());
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, middle(one));
    QCOMPARE(clicks(), QStringList{one});
}

void TestSkinBase::hiding_the_panel_takes_the_press_back()
{
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    m_panel->hide();
    QVERIFY(!m_panel->isPressed());
    QCOMPARE(m_panel->button(two)->state(), SkinButton::State::Focus);
    m_panel->show();
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, middle(two));
    QVERIFY(clicks().isEmpty());
}

void TestSkinBase::unknown_names_are_ignored()
{
    const QString none = QStringLiteral("none");
    m_panel->showFocus(one);
    m_panel->showFocus(none);
    m_panel->showNormal(none);
    m_panel->disableButton(none);
    m_panel->hideButton(none);
    m_panel->setButtonFocus(none);
    m_panel->pressButton(none);
    m_panel->releaseButton(none);
    m_panel->cancelButton(none);
    m_panel->drawButton(nullptr);
    QCOMPARE(m_panel->focusButton()->name(), one);
    QCOMPARE(m_panel->buttons().size(), 4);
    QVERIFY(!m_panel->isPressed());
}

void TestSkinBase::releasing_what_is_not_pressed_does_nothing()
{
    m_panel->releaseButton(one);
    m_panel->pressButton(one);
    m_panel->releaseButton(two);
    QVERIFY(clicks().isEmpty());
    QVERIFY(m_panel->isPressed());
    m_panel->releaseButton(one);
    m_panel->releaseButton(one);
    QCOMPARE(clicks(), QStringList{one});
}

// Bad input

void TestSkinBase::without_a_layout_file_the_panel_has_no_size()
{
    QVERIFY(QFile::remove(m_skin->directory() + QStringLiteral("/config")));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    m_panel->do_configloading(QStringLiteral("PANEL"));
    QCOMPARE(m_panel->size(), QSize(0, 0));
    QVERIFY(m_panel->backgroundPixmap().isNull());
    m_panel->setAlphaOverride(100);
    QTest::keyClick(m_panel, Qt::Key_Return);
    QVERIFY(clicks().isEmpty());
}

void TestSkinBase::damaged_layouts_make_no_trouble_data()
{
    QTest::addColumn<QByteArray>("layout");
    const QByteArray good = SkinMaker::panel_layout().toUtf8();
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("no line break at the end") << good.chopped(1);
    QTest::newRow("no group") << QByteArray("background = panel.png\nbuttons = one\n");
    QTest::newRow("an open bracket") << QByteArray("[PANEL\nbackground = panel.png\n") + good;
    QTest::newRow("the group twice") << good + good;
    QTest::newRow("numbers that are none") << good + QByteArray("one_xpos = far\ntwo_ypos = 1e9\nthree_xpos =\n");
    QTest::newRow("huge numbers") << good +
                                         QByteArray(
                                             "one_xpos = 2147483647\none_ypos = 2147483647\ntwo_xpos = -2147483648\n");
    QTest::newRow("binary") << QByteArray("\0\xff\xfe[PANEL]\0\x01=\x02\n", 16) + good;
    QTest::newRow("a name of 100,000 letters") << good + QByteArray("buttons = ") + QByteArray(100000, 'x') + '\n';
    QTest::newRow("missing pictures")
        << good + QByteArray("one_normal = none.png\ntwo_focus = none.png\nbackground = none.png\n");
    QTest::newRow("a picture of 20,000 pixels") << good + QByteArray("one_normal = wide.png\nbackground = wide.png\n");
    QTest::newRow("a picture outside the skin") << good + QByteArray("one_normal = ../../../../../../dev/zero\n");
}

void TestSkinBase::damaged_layouts_make_no_trouble()
{
    QFETCH(QByteArray, layout);
    m_skin->picture(QStringLiteral("wide.png"), QSize(20000, 2), Qt::red);
    m_skin->file(QStringLiteral("config"), layout);
    m_panel->do_configloading(QStringLiteral("PANEL"));
    m_panel->grab();
    m_panel->setAlphaOverride(100);
    for (const QString& name : m_panel->buttonOrder()) {
        m_panel->showFocus(name);
        QTest::keyClick(m_panel, Qt::Key_Right);
        QTest::keyClick(m_panel, Qt::Key_Return);
        m_panel->disableButton(name);
    }
    m_panel->grab();
    QVERIFY(m_panel->width() <= 200 && m_panel->height() <= 40);
}

void TestSkinBase::a_button_without_pictures_is_known_but_out_of_reach()
{
    load(SkinMaker::panel_layout() + QStringLiteral("buttons = one ghost two\n"));
    const QString ghost = QStringLiteral("ghost");
    QVERIFY(m_panel->button(ghost));
    m_panel->showFocus(one);
    QTest::keyClick(m_panel, Qt::Key_Right);
    QCOMPARE(m_panel->focusButton()->name(), two);
    m_panel->pressButton(ghost);
    QVERIFY(!m_panel->isPressed());
}

void TestSkinBase::a_button_far_outside_makes_no_trouble()
{
    load(SkinMaker::panel_layout() + QStringLiteral("one_xpos = 2147483647\none_ypos = -2147483648\n"));
    QVERIFY(!m_panel->rect().intersects(m_panel->button(one)->rectangle()));
    m_panel->grab();
    m_panel->showFocus(one);
    QTest::keyClick(m_panel, Qt::Key_Return);
    QCOMPARE(clicks(), QStringList{one});
}

void TestSkinBase::more_buttons_than_a_screen_holds_are_cut_off()
{
    QString names;
    for (int number = 0; number < 20000; ++number)
        names += QStringLiteral(" b%1").arg(number);
    load(SkinMaker::panel_layout() + QStringLiteral("buttons =") + names + QLatin1Char('\n'));
    QCOMPARE(m_panel->buttons().size(), 256);
}

TAVEL_TEST_MAIN(TestSkinBase)
#include "tst_skin_base.moc"
