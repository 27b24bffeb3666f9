#include "control_skin.h"
#include "paint_record.h"
#include "printed_text.h"
#include "skin_directory.h"
#include "skin_maker.h"
#include "volume_skin.h"

namespace
{

const QByteArrayList names{"pageup",     "pagedown",     "play",     "pause",   "stop",    "bookmark", "bookmark_list",
                           "speed_down", "speed_normal", "speed_up", "repeatA", "repeatB", "repeatAB"};

QPoint place_of(qsizetype index)
{
    return {static_cast<int>(index) * 30, 4};
}

void write_layout(const SkinDirectory& skin)
{
    skin.plain_picture("bar.png", {480, 48}, 0xC0202020);
    skin.plain_picture("button.png", {28, 32}, 0xFFFFFFFF);
    skin.plain_picture("volume.png", {60, 10}, 0xFFFF9420);
    QByteArray text =
        "[VIDEO_CONTROL]\nbackground = bar.png\nvolume_xpos = 400\nvolume_ypos = 12\nbuttons = " + names.join(' ') +
        "\n";
    for (qsizetype index = 0; index < names.size(); ++index)
        text += SkinDirectory::button(names[index], place_of(index));
    text += "[VOLUME]\nbar_off = volume.png\nbar_on = volume.png\nwidth = 60\nheight = 10\n";
    skin.layout(text);
}

/// Makes the hold of the pressed button as long as it has to be, without the wait.
void let_hold_expire(ControlSkin& bar)
{
    auto* timer = bar.findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer->isActive());
    QTimerEvent expired(timer->timerId());
    QCoreApplication::sendEvent(timer, &expired);
}

} // namespace

class tst_ControlSkin : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SkinDirectory> skin;
    std::unique_ptr<QWidget> window;
    ControlSkin* bar = nullptr;

    VolumeSkin* indicator() const { return bar->findChild<VolumeSkin*>("VOLUME"); }
    QPoint middle_of(const QString& name) const { return bar->button(name)->rectangle().center(); }

    static QStringList commands(const QSignalSpy& clicks)
    {
        QStringList commands;
        for (const QList<QVariant>& click : clicks)
            commands.append(click[1].toString());
        return commands;
    }

private slots:
    void init()
    {
        skin = std::make_unique<SkinDirectory>();
        write_layout(*skin);
        window = std::make_unique<QWidget>();
        window->setObjectName("tavel_video");
        window->resize(480, 272);
        bar = new ControlSkin(window.get(), "VIDEO_CONTROL", 0);
        bar->set_longbutton("pageup");
        bar->set_longbutton("pagedown");
        window->show();
    }

    void cleanup()
    {
        window.reset();
        skin.reset();
    }

    void starts_silent_with_its_buttons_and_its_indicator_in_place()
    {
        QCOMPARE(bar->objectName(), QString("VIDEO_CONTROL"));
        QCOMPARE(bar->size(), QSize(480, 48));
        QCOMPARE(bar->buttons().size(), names.size());
        QVERIFY(indicator());
        QCOMPARE(indicator()->pos(), QPoint(400, 12));
        QCOMPARE(bar->get_volume(), 0U);
        QVERIFY(!bar->get_mute());
    }

    void indicator_stands_at_minus_one_without_a_layout()
    {
        SkinDirectory empty("other");
        QWidget other;
        other.setObjectName("other");
        ControlSkin bare(&other, "VIDEO_CONTROL", 0);
        QCOMPARE(bare.findChild<VolumeSkin*>("VOLUME")->pos(), QPoint(-1, -1));
        QCOMPARE(bare.size(), QSize(0, 0));
        bare.pressButton("play");
        bare.releaseButton("play");
        bare.set_volume(7);
        bare.show_bookmark(false);
        bare.setAlphaOverride(10);
        QCOMPARE(bare.get_volume(), 7U);
    }

    // Press and hold

    void short_press_of_a_long_button_sends_its_plain_name_once()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        QTest::mousePress(bar, Qt::LeftButton, {}, middle_of("pageup"));
        QCOMPARE(clicks.count(), 0);
        QTest::mouseRelease(bar, Qt::LeftButton, {}, middle_of("pageup"));
        QCOMPARE(commands(clicks), QStringList{"pageup"});
        QCOMPARE(clicks[0][0].value<const QObject*>(), bar);
    }

    void held_long_button_sends_its_long_name_once_and_nothing_on_release()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        QElapsedTimer clock;
        clock.start();
        QTest::mousePress(bar, Qt::LeftButton, {}, middle_of("pageup"));
        QTRY_COMPARE_WITH_TIMEOUT(clicks.count(), 1, 4000);
        QVERIFY(clock.elapsed() >= 1000);
        QCOMPARE(commands(clicks), QStringList{"pageup_long"});
        QVERIFY(bar->button("pageup")->state() == SkinButton::State::Focus);
        QTest::mouseRelease(bar, Qt::LeftButton, {}, middle_of("pageup"));
        QCOMPARE(clicks.count(), 1);
    }

    void long_press_by_key_pad_is_the_same()
    {
        bar->setFocus();
        bar->setButtonFocus("pagedown");
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        QTest::keyPress(bar, Qt::Key_Return);
        let_hold_expire(*bar);
        QTest::keyRelease(bar, Qt::Key_Return);
        QCOMPARE(commands(clicks), QStringList{"pagedown_long"});
        QTest::keyClick(bar, Qt::Key_Return);
        QCOMPARE(commands(clicks), (QStringList{"pagedown_long", "pagedown"}));
    }

    void long_press_is_written_to_standard_output()
    {
        PrintedText long_press;
        bar->pressButton("pageup");
        let_hold_expire(*bar);
        QCOMPARE(long_press.take(), QByteArray("long key pressed : pageup\n"));
        PrintedText short_press;
        bar->pressButton("pageup");
        bar->releaseButton("pageup");
        QCOMPARE(short_press.take(), QByteArray());
    }

    void other_button_held_for_long_sends_its_plain_name_on_release()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->pressButton("play");
        let_hold_expire(*bar);
        QCOMPARE(clicks.count(), 0);
        QVERIFY(bar->button("play")->state() == SkinButton::State::Pressed);
        bar->releaseButton("play");
        QCOMPARE(commands(clicks), QStringList{"play"});
    }

    void second_button_is_ignored_while_one_is_held_and_so_is_its_release()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->pressButton("play");
        bar->pressButton("stop");
        QVERIFY(bar->button("stop")->state() != SkinButton::State::Pressed);
        bar->releaseButton("stop");
        QCOMPARE(clicks.count(), 0);
        bar->releaseButton("play");
        QCOMPARE(commands(clicks), QStringList{"play"});
    }

    void release_without_a_press_is_ignored()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->releaseButton("play");
        bar->releaseButton("no such button");
        QCOMPARE(clicks.count(), 0);
    }

    void unknown_button_is_ignored_and_blocks_nothing()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->pressButton("no such button");
        bar->pressButton("play");
        bar->releaseButton("play");
        QCOMPARE(commands(clicks), QStringList{"play"});
    }

    void press_gives_the_focus_and_state_1_and_release_state_2()
    {
        bar->pressButton("stop");
        QCOMPARE(static_cast<int>(bar->button("stop")->state()), 1);
        QCOMPARE(bar->focusButton()->name(), QString("stop"));
        bar->releaseButton("stop");
        QCOMPARE(static_cast<int>(bar->button("stop")->state()), 2);
    }

    void press_and_release_come_to_the_screen()
    {
        bar->setButtonFocus("stop");
        PaintRecord painted(bar);
        QVERIFY(painted.begin());
        bar->pressButton("stop");
        QTRY_VERIFY(painted.covers(bar->button("stop")->rectangle()));
        QVERIFY(painted.begin());
        bar->releaseButton("stop");
        QTRY_VERIFY(painted.covers(bar->button("stop")->rectangle()));
    }

    void every_press_measures_its_own_second()
    {
        auto* timer = bar->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(timer->isSingleShot());
        QCOMPARE(timer->timerType(), Qt::PreciseTimer);
        bar->pressButton("play");
        QCOMPARE(timer->interval(), 1000);
        QVERIFY(timer->isActive());
        bar->releaseButton("play");
        QVERIFY(timer->isActive());
        QTRY_VERIFY(timer->remainingTime() < 300);
        bar->pressButton("pageup");
        QVERIFY(timer->remainingTime() > 300);
    }

    void time_of_an_earlier_press_does_not_make_the_next_one_long()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->pressButton("pageup");
        bar->releaseButton("pageup");
        let_hold_expire(*bar);
        bar->pressButton("pageup");
        bar->releaseButton("pageup");
        QCOMPARE(commands(clicks), (QStringList{"pageup", "pageup"}));
    }

    void button_that_is_not_marked_has_no_long_name()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        bar->pressButton("stop");
        let_hold_expire(*bar);
        bar->releaseButton("stop");
        bar->set_longbutton("stop");
        bar->pressButton("stop");
        let_hold_expire(*bar);
        QCOMPARE(commands(clicks), (QStringList{"stop", "stop_long"}));
    }

    void click_that_changes_the_bar_does_no_harm()
    {
        connect(bar, &SkinBase::button_clicked, this, [&] {
            bar->hideButton("pageup");
            bar->showNormal("stop");
        });
        bar->pressButton("pageup");
        let_hold_expire(*bar);
        QVERIFY(bar->button("pageup")->isHidden());
    }

    // Volume

    void volume_is_limited_shown_and_sent_data()
    {
        QTest::addColumn<unsigned int>("asked");
        QTest::addColumn<unsigned int>("stored");
        QTest::newRow("one") << 1U << 1U;
        QTest::newRow("maximum") << 40U << 40U;
        QTest::newRow("one too many") << 41U << 40U;
        QTest::newRow("55") << 55U << 40U;
        QTest::newRow("all bits") << ~0U << 40U;
    }

    void volume_is_limited_shown_and_sent()
    {
        QFETCH(unsigned int, asked);
        QFETCH(unsigned int, stored);
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        bar->set_volume(asked);
        QCOMPARE(bar->get_volume(), stored);
        QCOMPARE(indicator()->volumeValue(), stored);
        QCOMPARE(volumes.count(), 1);
        QCOMPARE(volumes[0][0].toUInt(), stored);
    }

    void same_volume_is_shown_but_not_sent_again()
    {
        bar->set_volume(12);
        indicator()->set_volumeValue(3);
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        bar->set_volume(12);
        QCOMPARE(volumes.count(), 0);
        QCOMPARE(indicator()->volumeValue(), 12U);
    }

    void user_changes_the_volume_at_the_indicator()
    {
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        QTest::mouseClick(indicator(), Qt::LeftButton, {}, QPoint(30, 5));
        QCOMPARE(volumes.count(), 1);
        QCOMPARE(bar->get_volume(), volumes[0][0].toUInt());
        QVERIFY(qAbs(static_cast<int>(bar->get_volume()) - 20) <= 1);
    }

    void notch_of_the_wheel_changes_the_volume_by_one()
    {
        bar->set_volume(20);
        turn_wheel(indicator(), QPoint(30, 5), 120);
        QCOMPARE(bar->get_volume(), 21U);
        turn_wheel(indicator(), QPoint(30, 5), -120);
        QCOMPARE(bar->get_volume(), 20U);
    }

    void volume_reported_by_the_indicator_is_taken_as_it_is()
    {
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        bar->volume_update(90);
        QCOMPARE(bar->get_volume(), 90U);
        QCOMPARE(indicator()->volumeValue(), 0U);
        bar->volume_update(90);
        QCOMPARE(volumes.count(), 1);
    }

    void muted_changes_are_remembered_and_sent_once_the_sound_is_back()
    {
        bar->set_volume(10);
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        bar->set_mute(true);
        QVERIFY(bar->get_mute());
        QCOMPARE(volumes.takeFirst()[0].toInt(), 0);
        bar->set_volume(20);
        QCOMPARE(bar->get_volume(), 20U);
        QCOMPARE(volumes.count(), 0);
        bar->volume_update(25);
        QCOMPARE(volumes.count(), 0);
        bar->set_volume(20);
        bar->set_mute(false);
        QCOMPARE(volumes.count(), 1);
        QCOMPARE(volumes[0][0].toInt(), 20);
    }

    void volume_and_mute_come_to_the_screen()
    {
        PaintRecord painted(indicator());
        QVERIFY(painted.begin());
        bar->set_volume(20);
        QTRY_VERIFY(painted.covers_all());
        QVERIFY(painted.begin());
        bar->set_mute(true);
        QTRY_VERIFY(painted.covers_all());
    }

    void mute_is_sent_at_each_call_and_shown_on_the_indicator()
    {
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        bar->set_mute(true);
        bar->set_mute(true);
        QCOMPARE(volumes.count(), 2);
        QVERIFY(indicator()->isMuted());
        bar->set_mute(false);
        QVERIFY(!indicator()->isMuted());
    }

    void indicator_mutes_the_bar()
    {
        QSignalSpy volumes(bar, &ControlSkin::update_volume);
        QMetaObject::invokeMethod(indicator(), "app_mute", Q_ARG(bool, true));
        QVERIFY(bar->get_mute());
        QCOMPARE(volumes.count(), 1);
    }

    // Groups and opacity

    void groups_of_buttons_come_and_go_data()
    {
        QTest::addColumn<int>("group");
        QTest::addColumn<QStringList>("members");
        QTest::newRow("bookmarks") << 0 << QStringList{"bookmark", "bookmark_list"};
        QTest::newRow("speed") << 1 << QStringList{"speed_down", "speed_normal", "speed_up"};
        QTest::newRow("repeat") << 2 << QStringList{"repeatA", "repeatB", "repeatAB"};
    }

    void groups_of_buttons_come_and_go()
    {
        QFETCH(int, group);
        QFETCH(QStringList, members);
        const auto show_group = [&](bool shown) {
            if (group == 0)
                bar->show_bookmark(shown);
            else if (group == 1)
                bar->show_speed_controls(shown);
            else
                bar->show_repeatab(shown);
        };
        show_group(false);
        for (const QByteArray& name : names)
            QCOMPARE(bar->button(name)->isHidden(), members.contains(QString::fromLatin1(name)));
        show_group(true);
        for (const QString& name : members) {
            QVERIFY(!bar->button(name)->isHidden());
            QVERIFY(bar->button(name)->state() == SkinButton::State::Normal);
        }
    }

    void opacity_reaches_the_indicator_too()
    {
        bar->setAlphaOverride(77);
        QCOMPARE(bar->alphaOverride(), 77);
        QCOMPARE(indicator()->alphaOverride(), 77);
    }

    void operations_are_virtual_for_the_skin_library()
    {
        QSignalSpy clicks(bar, &SkinBase::button_clicked);
        SkinBase* base = bar;
        base->pressButton("pageup");
        let_hold_expire(*bar);
        base->setAlphaOverride(9);
        QCOMPARE(commands(clicks), QStringList{"pageup_long"});
        QCOMPARE(indicator()->alphaOverride(), 9);
    }
};

TAVEL_TEST_MAIN(tst_ControlSkin)
#include "tst_control_skin.moc"
