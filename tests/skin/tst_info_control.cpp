#include "device_font.h"
#include "info_control.h"
#include "test_main.h"

namespace
{

QTimer* timer_of(InfoControl& information)
{
    return information.findChild<QTimer*>();
}

bool is_blank(const InfoControl& information)
{
    const QImage image = information.background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != 0)
                return false;
        }
    }
    return true;
}

} // namespace

class tst_InfoControl : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QWidget> window;
    InfoControl* information = nullptr;

private slots:
    void init()
    {
        window = std::make_unique<QWidget>();
        window->resize(480, 272);
        information = new InfoControl(window.get(), "info_control", 0);
        information->hide();
        window->show();
    }

    void stands_under_the_title_bar_with_white_shadowed_text_at_the_top_left()
    {
        QCOMPARE(information->geometry(), QRect(0, 26, 200, 80));
        QCOMPARE(information->font(), device_font("V28", 14, 50));
        information->draw("[ SEEK ]");
        QImage expected(200, 80, QImage::Format_ARGB32_Premultiplied);
        expected.fill(Qt::transparent);
        QPainter painter(&expected);
        painter.setFont(device_font("V28", 14, 50));
        painter.setPen(Qt::black);
        painter.drawText(1, 1, 200, 80, Qt::AlignTop | Qt::AlignLeft, "[ SEEK ]");
        painter.setPen(Qt::white);
        painter.drawText(0, 0, 200, 80, Qt::AlignTop | Qt::AlignLeft, "[ SEEK ]");
        painter.end();
        QCOMPARE(information->background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32),
                 expected.convertToFormat(QImage::Format_ARGB32));
    }

    void text_shows_the_widget_for_five_seconds_unless_told_otherwise()
    {
        information->draw("[ PLAY ]");
        QVERIFY(information->isVisible());
        QVERIFY(timer_of(*information)->isActive());
        QVERIFY(timer_of(*information)->isSingleShot());
        QCOMPARE(timer_of(*information)->interval(), 5000);
    }

    void text_goes_away_after_its_time()
    {
        information->set_timer(60);
        information->draw("[ PLAY ]");
        QVERIFY(!is_blank(*information));
        QTRY_VERIFY(!information->isVisible());
        QVERIFY(is_blank(*information));
        QVERIFY(!timer_of(*information)->isActive());
    }

    void new_text_restarts_the_time()
    {
        information->set_timer(1000000);
        information->draw("[ PLAY ]");
        const int first = timer_of(*information)->remainingTime();
        information->set_timer(2000000);
        QVERIFY(timer_of(*information)->remainingTime() <= first);
        information->draw("[ PAUSE]");
        QVERIFY(timer_of(*information)->remainingTime() > 1500000);
    }

    void text_without_a_time_stays_until_it_is_closed_data()
    {
        QTest::addColumn<int>("time");
        QTest::newRow("zero") << 0;
        QTest::newRow("negative") << -1;
    }

    void text_without_a_time_stays_until_it_is_closed()
    {
        QFETCH(int, time);
        // The time of the text before must not take this one down.
        information->set_timer(30);
        information->draw("before");
        information->set_timer(time);
        information->draw("[ PLAY ]");
        QVERIFY(!timer_of(*information)->isActive());
        QVERIFY(information->isVisible());
        information->close();
        QVERIFY(!information->isVisible());
        QVERIFY(is_blank(*information));
    }

    void close_stops_the_time()
    {
        information->draw("[ PLAY ]");
        information->close();
        QVERIFY(!timer_of(*information)->isActive());
        QVERIFY(!information->isVisible());
    }

    void tap_is_handed_on()
    {
        QSignalSpy taps(information, &InfoControl::click_button);
        information->draw("[ PLAY ]");
        QTest::mouseClick(information, Qt::LeftButton);
        QCOMPARE(taps.count(), 1);
    }
};

TAVEL_TEST_MAIN(tst_InfoControl)
#include "tst_info_control.moc"
