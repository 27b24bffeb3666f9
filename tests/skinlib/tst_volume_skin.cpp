#include "paint_record.h"

#include "skin_maker.h"
#include "volume_skin.h"

namespace
{

using Change = std::function<void(VolumeSkin&)>;

} // namespace

class TestVolumeSkin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void it_is_as_large_as_its_pictures_unless_told();
    void without_a_skin_it_has_no_size_and_ignores_the_pointer();

    void a_volume_is_shown_inside_the_range_and_silently();
    void another_range_brings_the_volume_inside();
    void a_wrong_range_is_mended();

    void a_press_on_the_bar_sets_the_volume();
    void dragging_sets_the_volume_and_stops_at_the_ends();
    void hiding_ends_a_drag();
    void a_volume_chosen_again_says_nothing();
    void the_wheel_changes_by_the_step();
    void small_turns_of_the_wheel_add_up();
    void a_touch_sets_the_volume();
    void other_mouse_buttons_do_nothing();

    void a_press_on_the_switch_mutes_and_another_unmutes();
    void a_double_click_on_the_switch_is_two_clicks();
    void muting_by_the_program_is_shown_silently();
    void the_volume_can_be_changed_while_muted();

    void the_bar_shows_the_volume();
    void muted_looks_different();
    void each_change_comes_to_the_screen_data();
    void each_change_comes_to_the_screen();
    void the_alpha_override_fades_all_of_it();
    void a_damaged_group_makes_no_trouble_data();
    void a_damaged_group_makes_no_trouble();

private:
    VolumeSkin* make(const QString& keys);
    QColor color(int x, int y = 10) const { return m_volume->grab().toImage().pixelColor(x, y); }
    QList<int> sent(const QSignalSpy& spy) const;
    void press(int x, int y = 10) const { QTest::mouseClick(m_volume, Qt::LeftButton, Qt::NoModifier, QPoint(x, y)); }

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<QWidget> m_window;
    VolumeSkin* m_volume = nullptr;
    std::unique_ptr<QSignalSpy> m_volumes;
    std::unique_ptr<QSignalSpy> m_mutes;
};

void TestVolumeSkin::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_skin->picture(QStringLiteral("off.png"), QSize(81, 10), Qt::darkGray);
    m_skin->picture(QStringLiteral("on.png"), QSize(81, 10), Qt::yellow);
    m_skin->picture(QStringLiteral("sound.png"), QSize(20, 20), Qt::green);
    m_skin->picture(QStringLiteral("silent.png"), QSize(20, 20), Qt::red);
    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("skin_test"));
    m_window->resize(200, 60);
    m_volume = make(QStringLiteral("bar_off = off.png\nbar_on = on.png\nbar_xpos = 30\nbar_ypos = 5\n"
                                   "mute_off = sound.png\nmute_on = silent.png\nmute_xpos = 2\nmute_ypos = 0\n"));
    m_volume->set_volumeRange(0, 40, 1);
    m_volumes = std::make_unique<QSignalSpy>(m_volume, &VolumeSkin::app_volumes);
    m_mutes = std::make_unique<QSignalSpy>(m_volume, &VolumeSkin::app_mute);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void TestVolumeSkin::cleanup()
{
    m_volumes.reset();
    m_mutes.reset();
    m_window.reset();
    m_skin.reset();
}

VolumeSkin* TestVolumeSkin::make(const QString& keys)
{
    m_skin->layout(QStringLiteral("[VOLUME]\n") + keys);
    auto* volume = new VolumeSkin(m_window.get(), QStringLiteral("VOLUME"), 0);
    volume->show();
    return volume;
}

QList<int> TestVolumeSkin::sent(const QSignalSpy& spy) const
{
    QList<int> values;
    for (const QList<QVariant>& arguments : spy)
        values.append(arguments.at(0).toInt());
    return values;
}

void TestVolumeSkin::it_is_as_large_as_its_pictures_unless_told()
{
    QCOMPARE(m_volume->size(), QSize(111, 20));
    QCOMPARE(m_volume->barRectangle(), QRect(30, 5, 81, 10));
    QCOMPARE(m_volume->muteRectangle(), QRect(2, 0, 20, 20));
    QCOMPARE(make(QStringLiteral("bar_off = off.png\nwidth = 90\nheight = 30\n"))->size(), QSize(90, 30));
    QCOMPARE(make(QStringLiteral("bar_on = on.png\n"))->size(), QSize(81, 10));
}

void TestVolumeSkin::without_a_skin_it_has_no_size_and_ignores_the_pointer()
{
    VolumeSkin* const volume = make(QString());
    const QSignalSpy volumes(volume, &VolumeSkin::app_volumes);
    const QSignalSpy mutes(volume, &VolumeSkin::app_mute);
    QCOMPARE(volume->size(), QSize(0, 0));
    QTest::mouseClick(volume, Qt::LeftButton, Qt::NoModifier, QPoint(0, 0));
    volume->set_volumeValue(50);
    QCOMPARE(volume->volumeValue(), 50U);
    volume->grab();
    QVERIFY(volumes.isEmpty());
    QVERIFY(mutes.isEmpty());
}

void TestVolumeSkin::a_volume_is_shown_inside_the_range_and_silently()
{
    m_volume->set_volumeValue(20);
    QCOMPARE(m_volume->volumeValue(), 20U);
    m_volume->set_volumeValue(55);
    QCOMPARE(m_volume->volumeValue(), 40U);
    m_volume->set_volumeValue(4294967295U);
    QCOMPARE(m_volume->volumeValue(), 40U);
    QVERIFY(m_volumes->isEmpty());
}

void TestVolumeSkin::another_range_brings_the_volume_inside()
{
    m_volume->set_volumeValue(30);
    m_volume->set_volumeRange(0, 20, 1);
    QCOMPARE(m_volume->volumeValue(), 20U);
    m_volume->set_volumeRange(25, 60, 1);
    QCOMPARE(m_volume->volumeValue(), 25U);
    QVERIFY(m_volumes->isEmpty());
}

void TestVolumeSkin::a_wrong_range_is_mended()
{
    m_volume->set_volumeRange(10, -5, 0);
    QCOMPARE(m_volume->volumeValue(), 10U);
    press(100);
    turn_wheel(m_volume, QPoint(50, 10), 120);
    m_volume->grab();
    QVERIFY(m_volumes->isEmpty());
}

void TestVolumeSkin::a_press_on_the_bar_sets_the_volume()
{
    press(30);
    QVERIFY(m_volumes->isEmpty());
    press(70);
    press(110);
    press(50, 0);
    QCOMPARE(sent(*m_volumes), (QList<int>{20, 40, 10}));
    QCOMPARE(m_volume->volumeValue(), 10U);
}

void TestVolumeSkin::dragging_sets_the_volume_and_stops_at_the_ends()
{
    QTest::mousePress(m_volume, Qt::LeftButton, Qt::NoModifier, QPoint(70, 10));
    QTest::mouseMove(m_volume, QPoint(90, 10));
    QTest::mouseMove(m_volume, QPoint(900, 10));
    QTest::mouseMove(m_volume, QPoint(-900, 10));
    QTest::mouseRelease(m_volume, Qt::LeftButton, Qt::NoModifier, QPoint(-900, 10));
    QTest::mouseMove(m_volume, QPoint(70, 10));
    QCOMPARE(sent(*m_volumes), (QList<int>{20, 30, 40, 0}));
    QVERIFY(m_mutes->isEmpty());
}

void TestVolumeSkin::hiding_ends_a_drag()
{
    QTest::mousePress(m_volume, Qt::LeftButton, Qt::NoModifier, QPoint(70, 10));
    m_volume->hide();
    m_volume->show();
    QTest::mouseMove(m_volume, QPoint(90, 10));
    QTest::mouseRelease(m_volume, Qt::LeftButton, Qt::NoModifier, QPoint(90, 10));
    QCOMPARE(sent(*m_volumes), QList<int>{20});
}

void TestVolumeSkin::a_volume_chosen_again_says_nothing()
{
    m_volume->set_volumeValue(20);
    press(70);
    QVERIFY(m_volumes->isEmpty());
}

void TestVolumeSkin::the_wheel_changes_by_the_step()
{
    m_volume->set_volumeValue(20);
    turn_wheel(m_volume, QPoint(50, 10), 120);
    turn_wheel(m_volume, QPoint(50, 10), -240);
    m_volume->set_volumeRange(0, 40, 15);
    turn_wheel(m_volume, QPoint(50, 10), 120);
    turn_wheel(m_volume, QPoint(50, 10), 120);
    turn_wheel(m_volume, QPoint(50, 10), 120);
    QCOMPARE(sent(*m_volumes), (QList<int>{21, 19, 34, 40}));
}

void TestVolumeSkin::small_turns_of_the_wheel_add_up()
{
    for (int turn = 0; turn < 8; ++turn)
        turn_wheel(m_volume, QPoint(50, 10), 15);
    QCOMPARE(sent(*m_volumes), QList<int>{1});
}

void TestVolumeSkin::a_touch_sets_the_volume()
{
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(m_volume, screen.get()).press(0, QPoint(70, 10), m_volume);
    QTest::touchEvent(m_volume, screen.get()).move(0, QPoint(90, 10), m_volume);
    QTest::touchEvent(m_volume, screen.get()).release(0, QPoint(90, 10), m_volume);
    QTRY_COMPARE(sent(*m_volumes), (QList<int>{20, 30}));
}

void TestVolumeSkin::other_mouse_buttons_do_nothing()
{
    QTest::mouseClick(m_volume, Qt::RightButton, Qt::NoModifier, QPoint(70, 10));
    QTest::mouseClick(m_volume, Qt::RightButton, Qt::NoModifier, QPoint(10, 10));
    QVERIFY(m_volumes->isEmpty());
    QVERIFY(m_mutes->isEmpty());
}

void TestVolumeSkin::a_press_on_the_switch_mutes_and_another_unmutes()
{
    press(10);
    QVERIFY(m_volume->isMuted());
    press(10);
    QVERIFY(!m_volume->isMuted());
    QCOMPARE(sent(*m_mutes), (QList<int>{1, 0}));
    QVERIFY(m_volumes->isEmpty());
}

void TestVolumeSkin::a_double_click_on_the_switch_is_two_clicks()
{
    press(10);
    QMouseEvent second(QEvent::MouseButtonDblClick, QPoint(10, 10), m_volume->mapToGlobal(QPoint(10, 10)),
                       Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_volume, &second);
    QCOMPARE(sent(*m_mutes), (QList<int>{1, 0}));
}

void TestVolumeSkin::muting_by_the_program_is_shown_silently()
{
    m_volume->set_mute(true);
    QVERIFY(m_volume->isMuted());
    QCOMPARE(color(10), QColor(Qt::red));
    QVERIFY(m_mutes->isEmpty());
    press(10);
    QCOMPARE(sent(*m_mutes), QList<int>{0});
}

void TestVolumeSkin::the_volume_can_be_changed_while_muted()
{
    m_volume->set_mute(true);
    press(70);
    QCOMPARE(sent(*m_volumes), QList<int>{20});
    QVERIFY(m_volume->isMuted());
}

void TestVolumeSkin::the_bar_shows_the_volume()
{
    m_volume->set_volumeValue(20);
    QCOMPARE(color(35), QColor(Qt::yellow));
    QCOMPARE(color(68), QColor(Qt::yellow));
    QCOMPARE(color(74), QColor(Qt::darkGray));
    m_volume->set_volumeValue(0);
    QCOMPARE(color(30), QColor(Qt::darkGray));
    m_volume->set_volumeValue(40);
    QCOMPARE(color(110), QColor(Qt::yellow));
}

void TestVolumeSkin::muted_looks_different()
{
    m_volume->set_volumeValue(40);
    QCOMPARE(color(10), QColor(Qt::green));
    m_volume->set_mute(true);
    QCOMPARE(color(10), QColor(Qt::red));
    QVERIFY(color(60) != QColor(Qt::yellow));
    QVERIFY(color(60) != QColor(Qt::darkGray));
}

void TestVolumeSkin::each_change_comes_to_the_screen_data()
{
    QTest::addColumn<Change>("change");
    const auto row = [](const char* name, const Change& change) { QTest::newRow(name) << change; };
    row("volume", [](VolumeSkin& volume) { volume.set_volumeValue(20); });
    row("range", [](VolumeSkin& volume) { volume.set_volumeRange(0, 80, 1); });
    row("mute", [](VolumeSkin& volume) { volume.set_mute(true); });
    row("volume by the pointer", [](VolumeSkin& volume) {
        QTest::mouseClick(&volume, Qt::LeftButton, Qt::NoModifier, volume.barRectangle().center());
    });
    row("mute by the pointer", [](VolumeSkin& volume) {
        QTest::mouseClick(&volume, Qt::LeftButton, Qt::NoModifier, volume.muteRectangle().center());
    });
    row("volume by the wheel", [](VolumeSkin& volume) { turn_wheel(&volume, volume.barRectangle().center(), 120); });
}

void TestVolumeSkin::each_change_comes_to_the_screen()
{
    QFETCH(Change, change);
    PaintRecord painted(m_volume);
    QVERIFY(painted.begin());
    change(*m_volume);
    QTRY_VERIFY(painted.covers_all());
}

void TestVolumeSkin::the_alpha_override_fades_all_of_it()
{
    m_volume->set_volumeValue(0);
    m_volume->setAlphaOverride(128);
    QVERIFY(std::abs(color(10).alpha() - 128) <= 1);
    QVERIFY(std::abs(color(60).alpha() - 128) <= 1);
}

void TestVolumeSkin::a_damaged_group_makes_no_trouble_data()
{
    QTest::addColumn<QString>("keys");
    QTest::newRow("missing pictures") << QStringLiteral("bar_off = none.png\nmute_off = none.png\n");
    QTest::newRow("wrong numbers") << QStringLiteral("bar_off = off.png\nbar_xpos = far\nwidth = -1\n");
    QTest::newRow("huge numbers") << QStringLiteral(
        "bar_off = off.png\nbar_xpos = 2147483647\nmute_off = sound.png\nmute_xpos = -2147483648\n");
    QTest::newRow("a bar of one pixel") << QStringLiteral("bar_off = pixel.png\nwidth = 20\nheight = 20\n");
    QTest::newRow("twice") << QStringLiteral("bar_off = off.png\n[VOLUME]\nbar_on = on.png\n");
}

void TestVolumeSkin::a_damaged_group_makes_no_trouble()
{
    QFETCH(QString, keys);
    m_skin->picture(QStringLiteral("pixel.png"), QSize(1, 1), Qt::red);
    VolumeSkin* const volume = make(keys);
    volume->set_volumeRange(0, 40, 1);
    volume->set_volumeValue(20);
    QTest::mouseClick(volume, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    QImage canvas(10, 10, QImage::Format_ARGB32_Premultiplied);
    volume->render(&canvas);
    QVERIFY(volume->volumeValue() <= 40);
}

TAVEL_TEST_MAIN(TestVolumeSkin)
#include "tst_volume_skin.moc"
