#include "paint_record.h"
#include "skin_directory.h"
#include "slider_skin.h"
#include "time_skin.h"
#include "time_widget.h"

namespace
{

class Window : public QWidget
{
    Q_OBJECT

public:
    explicit Window(const QString& name = "tavel_video")
    {
        setObjectName(name);
        resize(480, 272);
    }

    QList<unsigned int> seeks;
    int presses = 0;

public slots:
    void seek_event(unsigned int seconds) { seeks.append(seconds); }

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
    void mouseReleaseEvent(QMouseEvent*) override { ++presses; }
};

QImage striped_background()
{
    QImage image(480, 24, QImage::Format_ARGB32);
    for (int x = 0; x < 480; ++x) {
        for (int y = 0; y < 24; ++y)
            image.setPixel(x, y, qRgba(x % 256, y * 10, 128, 255));
    }
    return image;
}

constexpr auto full_layout = "[TIME]\n"
                             "background = time.png\n"
                             "current_xpos = 8\ncurrent_ypos = 4\n"
                             "total_xpos = 420\ntotal_ypos = 5\n"
                             "slider_xpos = 70\nslider_ypos = 2\n"
                             "[TIME_CURRENT]\nwidth = 50\nheight = 16\n"
                             "[TIME_TOTAL]\nwidth = 51\nheight = 15\n"
                             "[TIME_SLIDER]\nwidth = 200\nheight = 20\n";

/// Collects warnings while it lives.
class Warnings
{
public:
    Warnings()
    {
        list().clear();
        before_ = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { list().append(text); });
    }
    ~Warnings() { qInstallMessageHandler(before_); }
    static QStringList& list()
    {
        static QStringList messages;
        return messages;
    }

private:
    QtMessageHandler before_;
};

} // namespace

class tst_TimeWidget : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SkinDirectory> skin;
    std::unique_ptr<Window> window;
    TimeWidget* bar = nullptr;

    SliderSkin* slider() const { return bar->findChild<SliderSkin*>("TIME_SLIDER"); }
    TimeSkin* elapsed() const { return bar->findChild<TimeSkin*>("TIME_CURRENT"); }
    TimeSkin* total() const { return bar->findChild<TimeSkin*>("TIME_TOTAL"); }
    QTimer* timer() const { return bar->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly); }

    void tick(int count = 1) const
    {
        for (int done = 0; done < count; ++done) {
            QVERIFY(timer()->isActive());
            QTimerEvent expired(timer()->timerId());
            QCoreApplication::sendEvent(timer(), &expired);
        }
    }

    void make_bar(const QByteArray& layout)
    {
        window.reset();
        skin->layout(layout);
        window = std::make_unique<Window>();
        bar = new TimeWidget(window.get(), "TIME", 0);
        window->show();
    }

private slots:
    void init()
    {
        skin = std::make_unique<SkinDirectory>();
        skin->picture("time.png", striped_background());
        make_bar(full_layout);
    }

    void cleanup()
    {
        window.reset();
        skin.reset();
    }

    // Layout

    void layout_gives_the_size_and_places_the_children()
    {
        QCOMPARE(bar->objectName(), QString("TIME"));
        QCOMPARE(bar->size(), QSize(480, 24));
        QCOMPARE(elapsed()->geometry(), QRect(8, 4, 50, 16));
        QCOMPARE(total()->geometry(), QRect(420, 5, 51, 15));
        QCOMPARE(slider()->geometry(), QRect(70, 2, 200, 20));
        QCOMPARE(bar->focusPolicy(), Qt::NoFocus);
    }

    void children_are_made_in_the_order_elapsed_total_slider()
    {
        QStringList names;
        for (QWidget* child : bar->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            names.append(child->objectName());
        QCOMPARE(names, (QStringList{"TIME_CURRENT", "TIME_TOTAL", "TIME_SLIDER"}));
    }

    void children_show_their_piece_of_the_background()
    {
        for (const SkinWidget* child : std::initializer_list<const SkinWidget*>{elapsed(), total(), slider()}) {
            QCOMPARE(child->backgroundPixmap().toImage().convertToFormat(QImage::Format_ARGB32),
                     striped_background().copy(child->geometry()));
        }
    }

    void child_without_a_size_has_no_background()
    {
        make_bar("[TIME]\nbackground = time.png\n");
        for (SkinWidget* child : std::initializer_list<SkinWidget*>{elapsed(), total(), slider()}) {
            QCOMPARE(child->size(), QSize(0, 0));
            QVERIFY(child->backgroundPixmap().isNull());
        }
        bar->setBackgroundPixmap(QPixmap::fromImage(striped_background()));
        for (SkinWidget* child : std::initializer_list<SkinWidget*>{elapsed(), total(), slider()})
            QVERIFY(child->backgroundPixmap().isNull());
    }

    void bar_shows_its_background()
    {
        QCOMPARE(bar->backgroundPixmap().toImage().convertToFormat(QImage::Format_ARGB32), striped_background());
    }

    void loading_is_reported_once()
    {
        const Warnings warnings;
        TimeWidget other(window.get(), "TIME", 0);
        QCOMPARE(Warnings::list(), QStringList{"Time widget loaded\n"});
    }

    void without_a_layout_the_bar_is_empty_and_its_children_stand_at_minus_one()
    {
        SkinDirectory empty("other");
        Window other("other");
        const Warnings warnings;
        auto* bare = new TimeWidget(&other, "TIME", 0);
        QCOMPARE(Warnings::list(), QStringList{"Time widget loaded\n"});
        QCOMPARE(bare->size(), QSize(0, 0));
        for (const char* name : {"TIME_CURRENT", "TIME_TOTAL", "TIME_SLIDER"}) {
            QCOMPARE(bare->findChild<QWidget*>(name)->pos(), QPoint(-1, -1));
            QVERIFY(bare->findChild<SkinWidget*>(name)->backgroundPixmap().isNull());
        }
    }

    void missing_background_makes_an_empty_bar_without_a_word_data()
    {
        QTest::addColumn<QByteArray>("layout");
        QTest::newRow("no such file") << QByteArray("[TIME]\nbackground = nowhere.png\nslider_xpos = 5\n");
        QTest::newRow("no key") << QByteArray("[TIME]\nslider_xpos = 5\n");
        QTest::newRow("not a picture") << QByteArray("[TIME]\nbackground = config\nslider_xpos = 5\n");
        QTest::newRow("a directory") << QByteArray("[TIME]\nbackground = .\nslider_xpos = 5\n");
    }

    void missing_background_makes_an_empty_bar_without_a_word()
    {
        QFETCH(QByteArray, layout);
        const Warnings warnings;
        make_bar(layout);
        QCOMPARE(Warnings::list(), QStringList{"Time widget loaded\n"});
        QCOMPARE(bar->size(), QSize(0, 0));
        QCOMPARE(slider()->pos(), QPoint(5, -1));
        QVERIFY(slider()->backgroundPixmap().isNull());
    }

    void damaged_layout_never_crashes_data()
    {
        QTest::addColumn<QByteArray>("layout");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("garbage") << QByteArray::fromHex("00ff5b5d0a3d3d0a5b54494d450a0d0d5b54494d455d0a3d0a");
        QTest::newRow("words for numbers") << QByteArray("[TIME]\nbackground = time.png\ncurrent_xpos = left\n");
        QTest::newRow("huge numbers") << QByteArray(
            "[TIME]\nbackground = time.png\ncurrent_xpos = 2147483647\ntotal_xpos = "
            "-2147483648\nslider_ypos = 99999999999999\n[TIME_SLIDER]\nwidth = "
            "2147483647\nheight = 2147483647\n");
        QTest::newRow("group twice") << QByteArray("[TIME]\nbackground = time.png\n[TIME]\nslider_xpos = 3\n");
        QTest::newRow("children outside")
            << QByteArray("[TIME]\nbackground = time.png\nslider_xpos = 5000\n[TIME_SLIDER]\nwidth "
                          "= 10\nheight = 10\n");
    }

    void damaged_layout_never_crashes()
    {
        QFETCH(QByteArray, layout);
        make_bar(layout);
        bar->set_totaltime(100);
        bar->set_slidervalue(50);
        bar->setAlphaOverride(100);
        bar->grab();
        bar->start_forward_scan();
        tick();
        bar->end_scan();
        QCOMPARE(elapsed()->text(), TimeSkin::time_text(slider()->value()));
    }

    void skin_directory_is_named_after_the_window()
    {
        SkinDirectory other_skin("renamed");
        other_skin.plain_picture("time.png", {33, 11}, 0xFF00FF00);
        other_skin.layout("[TIME]\nbackground = time.png\n");
        Window other("renamed");
        auto* renamed = new TimeWidget(&other, "TIME", 0);
        QCOMPARE(renamed->size(), QSize(33, 11));
    }

    // Times

    void total_time_is_shown_and_bounds_the_slider()
    {
        bar->set_totaltime(3725);
        QCOMPARE(slider()->minimum(), 0U);
        QCOMPARE(slider()->maximum(), 3725U);
        QCOMPARE(total()->text(), TimeSkin::time_text(3725));
    }

    void elapsed_time_follows_the_slider()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(309);
        QCOMPARE(bar->get_slidervalue(), 309U);
        QCOMPARE(elapsed()->text(), TimeSkin::time_text(309));
    }

    void each_time_comes_to_the_screen()
    {
        PaintRecord slider_painted(slider());
        PaintRecord elapsed_painted(elapsed());
        PaintRecord total_painted(total());
        QVERIFY(slider_painted.begin() && elapsed_painted.begin() && total_painted.begin());
        bar->set_totaltime(1000);
        QTRY_VERIFY(slider_painted.covers_all());
        QTRY_VERIFY(total_painted.covers_all());
        QVERIFY(slider_painted.begin() && elapsed_painted.begin());
        bar->set_slidervalue(309);
        QTRY_VERIFY(slider_painted.covers_all());
        QTRY_VERIFY(elapsed_painted.covers_all());
    }

    void scan_step_is_about_two_pixels_of_the_slider_data()
    {
        QTest::addColumn<unsigned int>("total");
        QTest::addColumn<int>("step");
        QTest::newRow("nothing") << 0U << 0;
        QTest::newRow("one second") << 1U << 1;
        QTest::newRow("shorter than the slider") << 100U << 1;
        QTest::newRow("one less than the slider") << 199U << 1;
        QTest::newRow("as long as the slider") << 200U << 2;
        QTest::newRow("not quite twice") << 399U << 2;
        QTest::newRow("twice") << 400U << 4;
        QTest::newRow("two hours") << 7200U << 72;
        QTest::newRow("all bits") << ~0U << 42949672;
    }

    void scan_step_is_about_two_pixels_of_the_slider()
    {
        QFETCH(unsigned int, total);
        QFETCH(int, step);
        bar->set_totaltime(total);
        QCOMPARE(bar->scan_step(), step);
    }

    void slider_without_a_width_steps_by_one_data()
    {
        QTest::addColumn<unsigned int>("total");
        QTest::newRow("film") << 500U;
        QTest::newRow("nothing") << 0U;
    }

    void slider_without_a_width_steps_by_one()
    {
        QFETCH(unsigned int, total);
        slider()->resize(0, 20);
        bar->set_totaltime(total);
        QCOMPARE(bar->scan_step(), 1);
    }

    void slider_of_one_pixel_keeps_the_step_in_range()
    {
        slider()->resize(1, 20);
        bar->set_totaltime(~0U);
        QCOMPARE(bar->scan_step(), std::numeric_limits<int>::max());
        bar->set_slidervalue(10);
        bar->start_reverse_scan();
        tick();
        QCOMPARE(bar->get_slidervalue(), 10U);
    }

    void disabling_goes_to_the_beginning_and_leaves_the_marks()
    {
        bar->set_totaltime(100);
        bar->set_slidervalue(40);
        bar->set_repeatA(10);
        bar->set_repeatB(20);
        QList<bool> disabled_at_change;
        connect(slider(), &SliderSkin::valueChanged, this, [&] { disabled_at_change.append(slider()->isDisabled()); });
        bar->set_disable();
        QCOMPARE(disabled_at_change, QList<bool>{false});
        QCOMPARE(bar->get_slidervalue(), 0U);
        QVERIFY(slider()->isDisabled());
        QCOMPARE(slider()->marker(SliderSkin::Marker::A), std::optional<unsigned int>(10));
        QCOMPARE(slider()->marker(SliderSkin::Marker::B), std::optional<unsigned int>(20));
        bar->set_enable();
        QVERIFY(!slider()->isDisabled());
    }

    void marks_are_set_and_cleared()
    {
        bar->set_totaltime(100);
        bar->set_repeatA(10);
        QCOMPARE(slider()->marker(SliderSkin::Marker::A), std::optional<unsigned int>(10));
        QVERIFY(!slider()->marker(SliderSkin::Marker::B));
        bar->set_repeatB(30);
        QCOMPARE(slider()->marker(SliderSkin::Marker::B), std::optional<unsigned int>(30));
        bar->clear_repeatAB();
        QVERIFY(!slider()->marker(SliderSkin::Marker::A));
        QVERIFY(!slider()->marker(SliderSkin::Marker::B));
    }

    // Scan

    void scan_writes_its_lines_and_runs_every_100_milliseconds()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(500);
        const Warnings warnings;
        bar->start_forward_scan();
        QVERIFY(bar->scan_direction() == TimeWidget::ScanDirection::Forward);
        QCOMPARE(timer()->interval(), 100);
        QVERIFY(!timer()->isSingleShot());
        tick();
        bar->start_reverse_scan();
        QVERIFY(bar->scan_direction() == TimeWidget::ScanDirection::Reverse);
        tick();
        bar->end_scan();
        QVERIFY(bar->scan_direction() == TimeWidget::ScanDirection::None);
        QVERIFY(!timer()->isActive());
        QCOMPARE(Warnings::list(), (QStringList{"Start forward scan\n", "Updating scan bar\n", "Start reverse scan\n",
                                                "Updating scan bar\n", "end scan\n"}));
    }

    void forward_scan_moves_by_a_step_and_stops_before_it_passes_the_end()
    {
        bar->set_totaltime(1000);
        QCOMPARE(bar->scan_step(), 10);
        bar->set_slidervalue(975);
        QSignalSpy ends(bar, &TimeWidget::play_signal);
        bar->start_forward_scan();
        tick();
        QCOMPARE(bar->get_slidervalue(), 985U);
        tick();
        QCOMPARE(bar->get_slidervalue(), 995U);
        QCOMPARE(ends.count(), 0);
        tick(3);
        QCOMPARE(bar->get_slidervalue(), 995U);
        QCOMPARE(ends.count(), 3);
        QVERIFY(timer()->isActive());
        bar->end_scan();
        QCOMPARE(ends.count(), 3);
        QCOMPARE(window->seeks, QList<unsigned int>{995});
    }

    void forward_scan_reaches_the_very_end_when_the_steps_fit()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(990);
        QSignalSpy ends(bar, &TimeWidget::play_signal);
        bar->start_forward_scan();
        tick();
        QCOMPARE(bar->get_slidervalue(), 1000U);
        QCOMPARE(ends.count(), 0);
        tick();
        QCOMPARE(ends.count(), 1);
    }

    void reverse_scan_never_reaches_zero()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(20);
        QSignalSpy ends(bar, &TimeWidget::play_signal);
        bar->start_reverse_scan();
        tick();
        QCOMPARE(bar->get_slidervalue(), 10U);
        tick(2);
        QCOMPARE(bar->get_slidervalue(), 10U);
        QCOMPARE(ends.count(), 2);
    }

    void reverse_scan_stops_below_one_step()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(7);
        QSignalSpy ends(bar, &TimeWidget::play_signal);
        bar->start_reverse_scan();
        tick();
        QCOMPARE(bar->get_slidervalue(), 7U);
        QCOMPARE(ends.count(), 1);
    }

    void short_film_is_scanned_a_second_at_a_time()
    {
        bar->set_totaltime(100);
        bar->set_slidervalue(50);
        bar->start_forward_scan();
        tick(3);
        QCOMPARE(bar->get_slidervalue(), 53U);
        bar->start_reverse_scan();
        tick(5);
        QCOMPARE(bar->get_slidervalue(), 48U);
    }

    void scan_without_a_length_neither_moves_nor_ends()
    {
        bar->set_totaltime(0);
        QSignalSpy ends(bar, &TimeWidget::play_signal);
        bar->start_forward_scan();
        tick(3);
        bar->start_reverse_scan();
        tick(3);
        QCOMPARE(bar->get_slidervalue(), 0U);
        QCOMPARE(ends.count(), 0);
    }

    void while_scanning_only_slider_and_elapsed_time_move()
    {
        bar->set_totaltime(1000);
        bar->set_slidervalue(500);
        bar->start_forward_scan();
        tick(2);
        QCOMPARE(elapsed()->text(), TimeSkin::time_text(520));
        QCOMPARE(total()->text(), TimeSkin::time_text(1000));
        QVERIFY(window->seeks.isEmpty());
        bar->end_scan();
        QCOMPARE(window->seeks, QList<unsigned int>{520});
    }

    void seek_of_a_scan_is_sent_while_its_direction_still_stands()
    {
        bar->set_totaltime(1000);
        bar->start_forward_scan();
        bool timer_ran = true;
        auto direction = TimeWidget::ScanDirection::None;
        connect(bar, &TimeWidget::seek_value, this, [&] {
            timer_ran = timer()->isActive();
            direction = bar->scan_direction();
        });
        bar->end_scan();
        QVERIFY(!timer_ran);
        QVERIFY(direction == TimeWidget::ScanDirection::Forward);
    }

    void cancelled_scan_seeks_nowhere()
    {
        bar->set_totaltime(1000);
        bar->start_reverse_scan();
        bar->cancel_scan();
        QVERIFY(!timer()->isActive());
        QVERIFY(bar->scan_direction() == TimeWidget::ScanDirection::None);
        QVERIFY(window->seeks.isEmpty());
    }

    void time_drives_the_scan()
    {
        bar->set_totaltime(1000);
        bar->start_forward_scan();
        QTRY_VERIFY(bar->get_slidervalue() >= 30);
        bar->end_scan();
    }

    // Pointer and looks

    void letting_go_of_the_slider_seeks_there()
    {
        bar->set_totaltime(1000);
        QTest::mouseClick(slider(), Qt::LeftButton, {}, QPoint(100, 10));
        QCOMPARE(window->seeks.size(), 1);
        QVERIFY(qAbs(static_cast<int>(window->seeks[0]) - 500) <= 10);
        QCOMPARE(elapsed()->text(), TimeSkin::time_text(window->seeks[0]));
    }

    void tap_beside_the_slider_does_nothing_and_stays_here()
    {
        QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(300, 22));
        QVERIFY(window->seeks.isEmpty());
        QCOMPARE(window->presses, 0);
    }

    void opacity_reaches_bar_and_children()
    {
        bar->setAlphaOverride(55);
        QCOMPARE(bar->alphaOverride(), 55);
        QCOMPARE(elapsed()->alphaOverride(), 55);
        QCOMPARE(total()->alphaOverride(), 55);
        QCOMPARE(slider()->alphaOverride(), 55);
        QCOMPARE(qAlpha(bar->backgroundPixmap().toImage().pixel(300, 3)), 55);
        QCOMPARE(qAlpha(slider()->backgroundPixmap().toImage().pixel(3, 3)), 55);
    }

    void background_reaches_bar_and_children()
    {
        QImage green = SkinDirectory::plain({480, 24}, 0xFF00FF00);
        green.setPixel(72, 3, 0xFF0000FF);
        bar->setBackgroundPixmap(QPixmap::fromImage(green));
        QCOMPARE(bar->backgroundPixmap().toImage().pixel(72, 3), 0xFF0000FFU);
        QCOMPARE(slider()->backgroundPixmap().toImage().pixel(2, 1), 0xFF0000FFU);
        QCOMPARE(elapsed()->backgroundPixmap().toImage().pixel(0, 0), 0xFF00FF00U);
        QCOMPARE(total()->backgroundPixmap().size(), QSize(51, 15));
    }
};

TAVEL_TEST_MAIN(tst_TimeWidget)
#include "tst_time_widget.moc"
