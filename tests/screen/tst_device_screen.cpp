#include "device_screen.h"
#include "probe_window.h"
#include "test_main.h"
#include "video_plane.h"

#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

namespace
{

constexpr QRect whole(80, 104, 480, 272);

} // namespace

/// Windows, keys and the picture on the display, by events into the host's window.
class TstDeviceScreen : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void a_shown_window_is_embedded_and_never_becomes_a_window_of_the_host();
    void a_window_that_asks_to_bypass_the_display_stays_with_the_host();
    void a_child_that_loses_its_parent_moves_to_the_plane_and_back();
    void a_deleted_window_leaves_the_display();
    void the_desktop_is_the_same_on_both_outputs();
    void window_positions_are_those_of_the_plane();

    void showing_a_window_activates_it_and_hiding_it_gives_the_activation_back();
    void activation_does_not_depend_on_the_hosts_focus();
    void a_click_activates_the_window_under_it();
    void a_window_shown_without_activating_never_becomes_active();
    void a_click_beside_all_windows_keeps_the_active_window();
    void the_second_press_of_a_double_click_activates_the_window_under_it();
    void stacking_orders_windows_without_activating_them();
    void a_window_can_be_put_under_several_others();
    void a_window_wholly_under_another_lets_the_video_through_instead_of_showing();
    void a_window_of_fixed_size_can_be_fixed_to_a_larger_one();
    void a_modal_dialog_takes_keys_and_clicks_from_the_others();
    void a_dialog_has_no_frame_and_stands_in_the_middle_unless_it_was_placed();
    void a_message_box_is_answered_by_key();

    void keys_reach_the_focus_widget_of_the_active_window_once();
    void tab_reaches_a_window_without_other_focus_widgets_once();
    void tab_moves_the_focus_inside_the_window();
    void a_held_key_repeats_and_is_released_once();
    void a_key_that_the_host_repeats_unmarked_counts_as_repeated();
    void keys_held_when_the_hosts_focus_goes_are_released();
    void a_combo_box_pops_up_inside_the_output_and_is_used_by_key_and_pointer();
    void closing_the_host_window_only_asks();
};

void TstDeviceScreen::initTestCase()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->show();
    QVERIFY(QTest::qWaitForWindowExposed(screen));
}

void TstDeviceScreen::cleanup()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    screen->set_output(DeviceScreen::Output::Lcd);
    screen->control(QStringLiteral("/dev/fb1 enable 1 size 480 272 origin 0 0 position 0 0"));
    screen->control(QStringLiteral("/dev/fb2 enable 1 size 640 480 origin 80 104 position 0 0"));
    screen->resize(480, 272);
    VideoPlane::instance().set_window(QRect(0, 0, 480, 272));
    VideoPlane::instance().clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

void TstDeviceScreen::a_shown_window_is_embedded_and_never_becomes_a_window_of_the_host()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    QVERIFY(window.isVisible());
    QVERIFY(window.graphicsProxyWidget());
    const auto host_windows = QGuiApplication::topLevelWindows();
    for (const QWindow* host : host_windows)
        QVERIFY2(!host->isVisible() || host == DeviceScreen::instance()->windowHandle(),
                 qPrintable(host->objectName()));
    const QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.size(), QSize(480, 272));
    QCOMPARE(shot.pixel(0, 0), QColor(Qt::red).rgb());
    QCOMPARE(shot.pixel(479, 271), QColor(Qt::red).rgb());
}

void TstDeviceScreen::a_window_that_asks_to_bypass_the_display_stays_with_the_host()
{
    QWidget window(nullptr, Qt::BypassGraphicsProxyWidget);
    window.show();
    QVERIFY(!window.graphicsProxyWidget());
    QVERIFY(window.windowHandle() && window.windowHandle()->isVisible());
}

void TstDeviceScreen::a_child_that_loses_its_parent_moves_to_the_plane_and_back()
{
    ProbeWindow window(Qt::red, whole);
    ProbeWindow child(Qt::green, QRect(0, 0, 480, 100), &window);
    window.show();
    QVERIFY(!child.graphicsProxyWidget());

    child.setParent(nullptr, Qt::FramelessWindowHint);
    child.setGeometry(0, 376, 640, 124);
    child.show();
    QVERIFY(child.graphicsProxyWidget());
    QVERIFY(!child.windowHandle() || !child.windowHandle()->isVisible());
    QCOMPARE(child.pos(), QPoint(0, 376));
    DeviceScreen::instance()->set_output(DeviceScreen::Output::Tv);
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb2 origin 0 0"));
    QCOMPARE(DeviceScreen::instance()->grab_output().pixel(639, 479), QColor(Qt::green).rgb());

    child.setParent(&window);
    child.setGeometry(0, 0, 480, 100);
    child.show();
    QVERIFY(!child.graphicsProxyWidget());
    QVERIFY(!child.isWindow());
    const QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.pixel(80, 104), QColor(Qt::green).rgb());
    QCOMPARE(shot.pixel(639, 479), QColor(Qt::black).rgb());
}

void TstDeviceScreen::a_deleted_window_leaves_the_display()
{
    ProbeWindow below(Qt::red, whole);
    below.show();
    auto* const above = new ProbeWindow(Qt::blue, whole);
    above->show();
    QCOMPARE(DeviceScreen::instance()->active_window(), above);
    delete above;
    QCOMPARE(DeviceScreen::instance()->active_window(), &below);
    QCOMPARE(DeviceScreen::instance()->grab_output().pixel(10, 10), QColor(Qt::red).rgb());
}

void TstDeviceScreen::the_desktop_is_the_same_on_both_outputs()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    QCOMPARE(screen->desktop_geometry(), QRect(80, 104, 480, 272));
    screen->set_output(DeviceScreen::Output::Tv);
    QCOMPARE(screen->desktop_geometry(), QRect(80, 104, 480, 272));
    QCOMPARE(screen->output(), DeviceScreen::Output::Tv);
}

void TstDeviceScreen::window_positions_are_those_of_the_plane()
{
    ProbeWindow window(Qt::red, QRect(90, 124, 10, 10));
    window.show();
    QCOMPARE(window.pos(), QPoint(90, 124));
    QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.pixel(10, 20), QColor(Qt::red).rgb());
    QCOMPARE(shot.pixel(9, 20), QColor(Qt::black).rgb());
    window.move(80, 104);
    shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.pixel(0, 0), QColor(Qt::red).rgb());
    QCOMPARE(shot.pixel(12, 22), QColor(Qt::black).rgb());
    QCOMPARE(window.geometry(), QRect(80, 104, 10, 10));
}

void TstDeviceScreen::showing_a_window_activates_it_and_hiding_it_gives_the_activation_back()
{
    ProbeWindow first(Qt::red, whole);
    ProbeWindow second(Qt::blue, QRect(100, 120, 50, 50));
    first.show();
    QVERIFY(first.isActiveWindow());
    QCOMPARE(first.log, QStringList{"activate"});
    second.show();
    QVERIFY(second.isActiveWindow());
    QVERIFY(!first.isActiveWindow());
    QCOMPARE(first.log, (QStringList{"activate", "deactivate"}));
    QCOMPARE(second.log, QStringList{"activate"});
    second.hide();
    QVERIFY(first.isActiveWindow());
    QVERIFY(DeviceScreen::instance()->is_active(&first));
    QCOMPARE(first.log, (QStringList{"activate", "deactivate", "activate"}));
    DeviceScreen::instance()->activate(&second);
    QVERIFY2(first.isActiveWindow(), "a hidden window is not activated");
}

void TstDeviceScreen::activation_does_not_depend_on_the_hosts_focus()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    window.setFocus();
    QWidget other(nullptr, Qt::BypassGraphicsProxyWidget);
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QVERIFY(window.isActiveWindow());
    QVERIFY(window.hasFocus());
    QVERIFY(DeviceScreen::instance()->is_active(&window));
    QCOMPARE(window.log, QStringList{"activate"});
    other.hide();
    DeviceScreen::instance()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(DeviceScreen::instance()));
    QCOMPARE(window.log, QStringList{"activate"});
}

void TstDeviceScreen::a_click_activates_the_window_under_it()
{
    ProbeWindow first(Qt::red, whole);
    ProbeWindow second(Qt::blue, QRect(180, 204, 50, 50));
    first.show();
    second.show();
    QWindow* const host = DeviceScreen::instance()->windowHandle();
    QTest::mouseClick(host, Qt::LeftButton, {}, QPoint(20, 30));
    QCOMPARE(first.log.last(), QStringLiteral("click 20 30"));
    QVERIFY(first.isActiveWindow());
    QTest::mouseClick(host, Qt::LeftButton, {}, QPoint(105, 107));
    QCOMPARE(second.log.last(), QStringLiteral("click 5 7"));
    QVERIFY(second.isActiveWindow());
    second.hide();
    QVERIFY(first.isActiveWindow());
}

void TstDeviceScreen::a_window_shown_without_activating_never_becomes_active()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    ProbeWindow text(Qt::blue, QRect(80, 104, 100, 20), nullptr, Qt::FramelessWindowHint);
    text.setAttribute(Qt::WA_ShowWithoutActivating);
    text.setFocusPolicy(Qt::NoFocus);
    text.show();
    QVERIFY(window.isActiveWindow());
    QTest::mouseClick(DeviceScreen::instance()->windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(text.log.filter("click"), QStringList{"click 5 5"});
    QVERIFY(window.isActiveWindow());
    text.hide();
    QVERIFY(window.isActiveWindow());
}

void TstDeviceScreen::a_click_beside_all_windows_keeps_the_active_window()
{
    ProbeWindow window(Qt::red, QRect(80, 104, 100, 100));
    window.show();
    QTest::mouseClick(DeviceScreen::instance()->windowHandle(), Qt::LeftButton, {}, QPoint(300, 200));
    QVERIFY(window.isActiveWindow());
    QVERIFY(window.hasFocus() || window.focusWidget() == nullptr);
    QCOMPARE(window.log.filter("click").size(), 0);
}

void TstDeviceScreen::the_second_press_of_a_double_click_activates_the_window_under_it()
{
    class Vanishing : public ProbeWindow
    {
    public:
        using ProbeWindow::ProbeWindow;

    protected:
        void mouseReleaseEvent(QMouseEvent*) override { hide(); }
    };
    ProbeWindow below(Qt::red, QRect(80, 104, 100, 100));
    below.show();
    ProbeWindow beside(Qt::green, QRect(280, 104, 100, 100));
    beside.show();
    Vanishing above(Qt::blue, QRect(80, 104, 100, 100));
    above.show();
    QTest::mouseDClick(DeviceScreen::instance()->windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
    QVERIFY(!above.isVisible());
    QCOMPARE(below.log.filter("click"), QStringList{"click 5 5"});
    QVERIFY(below.isActiveWindow());
}

void TstDeviceScreen::stacking_orders_windows_without_activating_them()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow first(Qt::red, whole);
    ProbeWindow second(Qt::blue, whole);
    ProbeWindow third(Qt::green, whole);
    first.show();
    second.show();
    third.show();
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::green).rgb());
    screen->stack_under(&third, &first);
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::blue).rgb());
    QVERIFY(third.isActiveWindow());
    screen->stack_under(&second, &third);
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::red).rgb());
    first.hide();
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::green).rgb());
    screen->raise_window(&second);
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::blue).rgb());
    QVERIFY(third.isActiveWindow());
}

void TstDeviceScreen::a_window_can_be_put_under_several_others()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow first(Qt::red, whole);
    ProbeWindow second(Qt::blue, whole);
    ProbeWindow third(Qt::green, whole);
    first.show();
    second.show();
    third.show();
    screen->stack_under(&third, &first);
    screen->stack_under(&third, &second);
    second.hide();
    QCOMPARE(screen->grab_output().pixel(5, 5), QColor(Qt::red).rgb());
}

void TstDeviceScreen::a_window_wholly_under_another_lets_the_video_through_instead_of_showing()
{
    QImage& frame = VideoPlane::instance().begin_frame(VideoPlane::instance().pixel_size());
    frame.fill(Qt::green);
    VideoPlane::instance().end_frame();
    ProbeWindow lower(Qt::red, whole);
    lower.show();
    ProbeWindow upper(Qt::transparent, whole);
    upper.show();
    const auto middle = [] { return DeviceScreen::instance()->grab_output().pixelColor(240, 136); };

    QCOMPARE(middle(), QColor(Qt::green));
    upper.setGeometry(whole.adjusted(0, 0, 0, -20));
    QCOMPARE(middle(), QColor(Qt::red));
    upper.setGeometry(whole);
    QCOMPARE(middle(), QColor(Qt::green));
    upper.hide();
    QCOMPARE(middle(), QColor(Qt::red));
}

void TstDeviceScreen::a_window_of_fixed_size_can_be_fixed_to_a_larger_one()
{
    ProbeWindow window(Qt::red, QRect(whole.topLeft(), QSize(100, 40)));
    window.setFixedSize(100, 40);
    window.show();
    window.setFixedSize(200, 120);
    QCOMPARE(DeviceScreen::instance()->grab_output().pixelColor(190, 110), QColor(Qt::red));
    window.setFixedSize(50, 20);
    QCOMPARE(DeviceScreen::instance()->grab_output().pixelColor(40, 10), QColor(Qt::red));
    QVERIFY(DeviceScreen::instance()->grab_output().pixelColor(60, 10) != QColor(Qt::red));
}

void TstDeviceScreen::a_modal_dialog_takes_keys_and_clicks_from_the_others()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(Qt::red, whole);
    ProbeWindow other(Qt::blue, QRect(80, 104, 50, 50));
    window.show();
    other.show();
    screen->activate(&window);
    window.log.clear();
    other.log.clear();

    QDialog dialog(&window);
    dialog.setGeometry(280, 204, 100, 60);
    QPushButton button(QStringLiteral("OK"), &dialog);
    connect(&button, &QPushButton::clicked, &dialog, &QDialog::accept);
    bool was_active = false;
    QTimer::singleShot(5000, &dialog, &QDialog::reject);
    QTimer::singleShot(0, &dialog, [&] {
        was_active = dialog.isActiveWindow();
        QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(10, 200));
        QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(10, 10));
        screen->activate(&other);
        QTest::keyClick(screen->windowHandle(), Qt::Key_F5);
        QTest::keyClick(screen->windowHandle(), Qt::Key_Return);
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY(was_active);
    // The key that closed the dialog is let go when the window is active again.
    QCOMPARE(window.log, (QStringList{"deactivate", "activate", "release Return"}));
    QCOMPARE(other.log, QStringList());
    QVERIFY(window.isActiveWindow());
    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(10, 10));
    QCOMPARE(other.log, (QStringList{"activate", "click 10 10"}));
}

void TstDeviceScreen::a_dialog_has_no_frame_and_stands_in_the_middle_unless_it_was_placed()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    QDialog centred(&window);
    centred.setStyleSheet(QStringLiteral("background: blue"));
    centred.resize(100, 60);
    centred.show();
    QCOMPARE(centred.geometry(), QRect(80 + 190, 104 + 106, 100, 60));
    QImage shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.pixel(190, 106), QColor(Qt::blue).rgb());
    QCOMPARE(shot.pixel(189, 106), QColor(Qt::red).rgb());
    QCOMPARE(shot.pixel(190, 105), QColor(Qt::red).rgb());
    centred.hide();

    QDialog placed(&window);
    placed.setStyleSheet(QStringLiteral("background: blue"));
    placed.setGeometry(90, 114, 100, 60);
    placed.show();
    QCOMPARE(placed.geometry(), QRect(90, 114, 100, 60));
    shot = DeviceScreen::instance()->grab_output();
    QCOMPARE(shot.pixel(10, 10), QColor(Qt::blue).rgb());
    QCOMPARE(shot.pixel(9, 10), QColor(Qt::red).rgb());
    QCOMPARE(shot.pixel(109, 69), QColor(Qt::blue).rgb());
    QCOMPARE(shot.pixel(110, 70), QColor(Qt::red).rgb());
}

void TstDeviceScreen::a_message_box_is_answered_by_key()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    QMessageBox box(QMessageBox::NoIcon, QStringLiteral("VIDEO"), QStringLiteral("FILE NOT FOUND."), QMessageBox::Ok,
                    &window);
    QRect place;
    QTimer::singleShot(0, &box, [&] {
        place = box.geometry();
        QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Space);
    });
    QCOMPARE(box.exec(), int(QMessageBox::Ok));
    QVERIFY2(whole.contains(place), qPrintable(QDebug::toString(place)));
    QVERIFY(window.isActiveWindow());
}

void TstDeviceScreen::keys_reach_the_focus_widget_of_the_active_window_once()
{
    ProbeWindow window(Qt::red, whole);
    ProbeWindow panel(Qt::blue, QRect(0, 0, 100, 100), &window);
    window.show();
    QWindow* const host = DeviceScreen::instance()->windowHandle();
    window.setFocus();
    QTest::keyClick(host, Qt::Key_Escape);
    QCOMPARE(window.log, (QStringList{"activate", "press Esc", "release Esc"}));
    panel.setFocus();
    window.log.clear();
    panel.log.clear();
    QTest::keyClick(host, Qt::Key_F11);
    QCOMPARE(panel.log, (QStringList{"press 0x2103", "release 0x2103"}));
    QCOMPARE(window.log, QStringList());
}

void TstDeviceScreen::tab_reaches_a_window_without_other_focus_widgets_once()
{
    ProbeWindow background(Qt::green, whole);
    background.show();
    ProbeWindow window(Qt::red, whole);
    ProbeWindow hidden_panel(Qt::blue, QRect(0, 0, 100, 100), &window);
    hidden_panel.hide();
    window.show();
    window.setFocus();
    window.log.clear();
    QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Tab);
    QCOMPARE(window.log, (QStringList{"press Tab", "release Tab"}));
    window.log.clear();
    QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Tab, Qt::ShiftModifier);
    QCOMPARE(window.log.filter("press Shift+Tab").size() + window.log.filter("press Tab").size() +
                 window.log.filter("press Backtab").size(),
             1);
    QVERIFY(window.isActiveWindow());
}

void TstDeviceScreen::tab_moves_the_focus_inside_the_window()
{
    QWidget window;
    window.setGeometry(whole);
    QVBoxLayout layout(&window);
    QPushButton first(QStringLiteral("first"));
    QPushButton second(QStringLiteral("second"));
    layout.addWidget(&first);
    layout.addWidget(&second);
    window.show();
    first.setFocus();
    QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Tab);
    QVERIFY(second.hasFocus());
    QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Tab);
    QVERIFY(first.hasFocus());
    QTest::keyClick(DeviceScreen::instance()->windowHandle(), Qt::Key_Backtab);
    QVERIFY(second.hasFocus());
}

void TstDeviceScreen::a_held_key_repeats_and_is_released_once()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    window.setFocus();
    window.log.clear();
    // What X11 makes of a held key.
    QWidget* const host = DeviceScreen::instance();
    const auto send = [&](QEvent::Type type, bool repeated) {
        QKeyEvent event(type, Qt::Key_Left, Qt::NoModifier, QString(), repeated);
        QCoreApplication::sendEvent(host, &event);
    };
    send(QEvent::KeyPress, false);
    for (int i = 0; i < 2; ++i) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
    QCOMPARE(window.log, (QStringList{"press Left", "repeat Left", "repeat Left", "release Left"}));
}

void TstDeviceScreen::a_key_that_the_host_repeats_unmarked_counts_as_repeated()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    window.setFocus();
    window.log.clear();
    QWindow* const host = DeviceScreen::instance()->windowHandle();
    QTest::keyPress(host, Qt::Key_Space);
    QTest::keyPress(host, Qt::Key_Space);
    QTest::keyRelease(host, Qt::Key_Space);
    QTest::keyRelease(host, Qt::Key_Space);
    QCOMPARE(window.log, (QStringList{"press Return", "repeat Return", "release Return"}));
}

void TstDeviceScreen::keys_held_when_the_hosts_focus_goes_are_released()
{
    ProbeWindow window(Qt::red, whole);
    window.show();
    window.setFocus();
    window.log.clear();
    QTest::keyPress(DeviceScreen::instance()->windowHandle(), Qt::Key_Right);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(DeviceScreen::instance(), &out);
    QCOMPARE(window.log, (QStringList{"press Right", "release Right"}));
    QTest::keyRelease(DeviceScreen::instance()->windowHandle(), Qt::Key_Right);
    QCOMPARE(window.log.size(), 2);
    QVERIFY(window.hasFocus());
}

void TstDeviceScreen::a_combo_box_pops_up_inside_the_output_and_is_used_by_key_and_pointer()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    ProbeWindow window(Qt::red, whole);
    window.show();
    QDialog dialog(&window);
    dialog.setGeometry(whole);
    QComboBox combo(&dialog);
    for (int i = 0; i < 8; ++i)
        combo.addItem(QStringLiteral("choice %1").arg(i));
    combo.setGeometry(20, 240, 120, 24);
    dialog.show();
    QVERIFY(combo.isVisible());
    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(60, 250));
    QWidget* const list = combo.view()->window();
    QTRY_VERIFY(list->isVisible());
    QVERIFY(list != &dialog);
    QVERIFY(!list->windowHandle() || !list->windowHandle()->isVisible());
    const QRectF place = list->graphicsProxyWidget()->sceneBoundingRect();
    QVERIFY2(QRectF(0, 0, 480, 241).contains(place), "inside the output and above the combo box");
    QVERIFY2(dialog.isActiveWindow() || screen->is_active(&dialog), "a pop-up does not deactivate its window");

    QTest::keyClick(screen->windowHandle(), Qt::Key_Down);
    QTest::keyClick(screen->windowHandle(), Qt::Key_Down);
    QTest::keyClick(screen->windowHandle(), Qt::Key_Space);
    QTRY_VERIFY(!list->isVisible());
    QCOMPARE(combo.currentIndex(), 2);

    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(60, 250));
    QTRY_VERIFY(list->isVisible());
    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(470, 10));
    QTRY_VERIFY(!list->isVisible());
    QCOMPARE(combo.currentIndex(), 2);
    QVERIFY(screen->is_active(&dialog));

    QTest::mouseClick(screen->windowHandle(), Qt::LeftButton, {}, QPoint(60, 250));
    QTRY_VERIFY(list->isVisible());
    QTest::keyClick(screen->windowHandle(), Qt::Key_Escape);
    QTRY_VERIFY(!list->isVisible());
    QVERIFY2(dialog.isVisible(), "Escape closes the pop-up only");
}

void TstDeviceScreen::closing_the_host_window_only_asks()
{
    DeviceScreen* const screen = DeviceScreen::instance();
    QSignalSpy asked(screen, &DeviceScreen::close_requested);
    QCloseEvent by_the_user;
    QSpontaneKeyEvent::setSpontaneous(&by_the_user);
    qApp->notify(screen, &by_the_user);
    QCOMPARE(asked.size(), 1);
    QVERIFY(!by_the_user.isAccepted());
    QVERIFY(screen->isVisible());
}

TAVEL_TEST_MAIN(TstDeviceScreen)
#include "tst_device_screen.moc"
