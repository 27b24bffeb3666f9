#include "device_screen.h"
#include "message_box.h"
#include "tavel_message_box.h"
#include "test_main.h"

namespace
{

class Window : public QWidget
{
public:
    int presses = 0;
    int keys = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
    void keyPressEvent(QKeyEvent*) override { ++keys; }
};

QTimer* timer_of(const NoticeBox& box)
{
    return box.findChild<QTimer*>();
}

/// Runs @p action as soon as the notice is on screen.
template<typename Action> void while_shown(NoticeBox& box, Action action)
{
    auto* poll = new QTimer(&box);
    QObject::connect(poll, &QTimer::timeout, &box, [&box, poll, action] {
        if (!box.isVisible())
            return;
        poll->deleteLater();
        poll->stop();
        action();
    });
    poll->start(0);
}

/// Shows the notice. @return whether it was taken down before its time, a minute, was over
bool is_taken_down_early(NoticeBox& box)
{
    box.set_display_time(60'000);
    const QSignalSpy time_over(timer_of(box), &QTimer::timeout);
    return box.exec() == 0 && time_over.isEmpty();
}

} // namespace

class tst_MessageBox : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Window> window;
    std::unique_ptr<MessageBox> box;

private slots:
    void init()
    {
        window = std::make_unique<Window>();
        window->setGeometry(DeviceScreen::instance()->desktop_geometry());
        DeviceScreen::instance()->embed(window.get());
        window->show();
        DeviceScreen::instance()->activate(window.get());
        box = std::make_unique<MessageBox>("VIDEO", "", window.get());
    }

    void cleanup()
    {
        box.reset();
        window.reset();
    }

    void is_a_modal_warning_without_buttons()
    {
        MessageBox notice("VIDEO", "Not found", window.get());
        QCOMPARE(notice.windowTitle(), QString("VIDEO"));
        QCOMPARE(notice.text(), QString("Not found"));
        QCOMPARE(notice.icon(), QMessageBox::Warning);
        QVERIFY(notice.buttons().isEmpty());
        QVERIFY(notice.isModal());
        QVERIFY(notice.windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(notice.windowType(), Qt::Dialog);
    }

    void stays_five_seconds()
    {
        box->setText("Full");
        int interval = 0;
        bool single_shot = false;
        while_shown(*box, [&] {
            interval = timer_of(*box)->interval();
            single_shot = timer_of(*box)->isSingleShot() && timer_of(*box)->isActive();
            box->stop();
        });
        QCOMPARE(box->exec(), 0);
        QCOMPARE(interval, 5000);
        QVERIFY(single_shot);
    }

    void closes_by_itself_after_its_time()
    {
        box->set_display_time(60);
        QSignalSpy finished(box.get(), &QDialog::finished);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(box->exec(), 0);
        QVERIFY(clock.elapsed() >= 55);
        QCOMPARE(finished.count(), 1);
        QVERIFY(!box->isVisible());
    }

    void can_be_shown_again_and_again()
    {
        box->set_display_time(30);
        for (int round = 0; round < 3; ++round) {
            box->setText(QString::number(round));
            QCOMPARE(box->exec(), 0);
            QVERIFY(!box->isVisible());
        }
    }

    void stop_takes_it_down_early()
    {
        while_shown(*box, [&] { box->stop(); });
        QVERIFY(is_taken_down_early(*box));
        QVERIFY(!timer_of(*box)->isActive());
    }

    void stop_without_a_running_time_still_closes_it()
    {
        box->show();
        QVERIFY(!timer_of(*box)->isActive());
        box->stop();
        QVERIFY(!box->isVisible());
        QCOMPARE(box->result(), 0);
    }

    void stop_while_nothing_is_shown_does_no_harm()
    {
        box->stop();
        QCOMPARE(box->result(), 0);
        QVERIFY(!box->isVisible());
    }

    void second_notice_replaces_the_text_and_restarts_the_time()
    {
        box->set_display_time(1000000);
        box->setText("first");
        int second_result = -1;
        QString text_on_screen;
        int remaining = 0;
        while_shown(*box, [&] {
            box->set_display_time(2000000);
            box->setText("a second notice that is longer than the first");
            second_result = box->exec();
            text_on_screen = box->text();
            remaining = timer_of(*box)->remainingTime();
            QVERIFY(box->isVisible());
            box->stop();
        });
        QCOMPARE(box->exec(), 0);
        QCOMPARE(second_result, 0);
        QCOMPARE(text_on_screen, QString("a second notice that is longer than the first"));
        QVERIFY(remaining > 1500000);
    }

    void any_key_takes_it_down_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("escape") << int(Qt::Key_Escape);
        QTest::newRow("left") << int(Qt::Key_Left);
        QTest::newRow("device key") << 0x2103;
    }

    void any_key_takes_it_down()
    {
        QFETCH(int, key);
        while_shown(*box, [&] {
            QWidget* display = DeviceScreen::instance()->viewport();
            QTest::sendKeyEvent(QTest::Press, display, static_cast<Qt::Key>(key), QString(), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, display, static_cast<Qt::Key>(key), QString(), Qt::NoModifier);
        });
        QVERIFY(is_taken_down_early(*box));
        QCOMPARE(window->keys, 0);
    }

    void key_that_was_held_before_leaves_it_up()
    {
        bool still_up = false;
        while_shown(*box, [&] {
            QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
            QApplication::sendEvent(box.get(), &repeated);
            still_up = box->isVisible();
            box->stop();
        });
        box->exec();
        QVERIFY(still_up);
    }

    void tap_on_it_takes_it_down()
    {
        while_shown(*box, [&] { QTest::mouseClick(box.get(), Qt::LeftButton); });
        QVERIFY(is_taken_down_early(*box));
    }

    void tap_beside_it_takes_it_down_and_does_nothing_else()
    {
        while_shown(*box,
                    [&] { QTest::mouseClick(DeviceScreen::instance()->viewport(), Qt::LeftButton, {}, QPoint(3, 3)); });
        QVERIFY(is_taken_down_early(*box));
        QCOMPARE(window->presses, 0);
    }

    void keys_reach_the_window_again_afterwards()
    {
        box->set_display_time(30);
        box->exec();
        QTest::keyClick(window.get(), Qt::Key_Left);
        QCOMPARE(window->keys, 1);
    }

    void stands_in_the_middle_of_the_window_and_inside_it_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("short") << QString("Full");
        QTest::newRow("one line") << QString("The file cannot be played on this device.");
        QTest::newRow("very long") << QString("/media/films/a directory with a long name/") +
                                          QString("word ").repeated(30);
        QTest::newRow("longer than the window") << QString("word ").repeated(900);
        QTest::newRow("a word without an end") << QString("x").repeated(300);
        QTest::newRow("Korean") << QString::fromUtf8("재생 목록이 가득 찼습니다. 더 이상 추가할 수 없습니다.");
    }

    void stands_in_the_middle_of_the_window_and_inside_it()
    {
        QFETCH(QString, text);
        box->setText(text);
        QRect place;
        while_shown(*box, [&] {
            QCoreApplication::processEvents();
            place = box->geometry();
            box->stop();
        });
        box->exec();
        const QRect host = window->geometry();
        QVERIFY2(host.contains(place), qPrintable(QDebug::toString(place)));
        QVERIFY(qAbs(place.center().x() - host.center().x()) <= 1);
        QVERIFY(qAbs(place.center().y() - host.center().y()) <= 1);
    }

    void keeps_the_line_breaks_of_its_text()
    {
        const auto height_of = [this](const QString& text) {
            int height = 0;
            box->setText(text);
            while_shown(*box, [&] {
                QCoreApplication::processEvents();
                height = box->height();
                box->stop();
            });
            box->exec();
            return height;
        };
        QVERIFY(height_of("a\nb\nc\nd") > height_of("a b c d"));
    }

    void is_readable_over_a_bright_film()
    {
        box->setText("Full");
        QImage painted;
        while_shown(*box, [&] {
            painted = QImage(box->size(), QImage::Format_ARGB32_Premultiplied);
            painted.fill(Qt::white);
            box->render(&painted, QPoint(), QRegion(), QWidget::DrawChildren);
            box->stop();
        });
        box->exec();
        // Dark panel, and text that stands out from it.
        QVERIFY(qGray(painted.pixel(painted.width() / 2, painted.height() - 6)) < 80);
        int brightest = 0;
        for (int x = 60; x < painted.width() - 10; ++x) {
            for (int y = 36; y < painted.height() - 10; ++y)
                brightest = std::max(brightest, qGray(painted.pixel(x, y)));
        }
        QVERIFY(brightest > 220);
    }

    void short_notice_stays_three_seconds_and_is_sized_at_once()
    {
        TavelMessageBox notice("VIDEO", "Added", window.get());
        QCOMPARE(notice.display_time(), 3000);
        QCOMPARE(notice.icon(), QMessageBox::Warning);
        QVERIFY(notice.buttons().isEmpty());
        QVERIFY(notice.isModal());
        const QSize made = notice.size();
        notice.adjustSize();
        QCOMPARE(notice.size(), made);
        int interval = 0;
        while_shown(notice, [&] {
            interval = timer_of(notice)->interval();
            timer_of(notice)->start(0);
        });
        QCOMPARE(notice.exec(), 0);
        QCOMPARE(interval, 3000);
    }

    void short_notice_takes_another_time()
    {
        TavelMessageBox notice("VIDEO", "Added", window.get());
        notice.set_display_time(40);
        int interval = 0;
        while_shown(notice, [&] { interval = timer_of(notice)->interval(); });
        QCOMPARE(notice.exec(), 0);
        QCOMPARE(interval, 40);
    }
};

TAVEL_TEST_MAIN(tst_MessageBox)
#include "tst_message_box.moc"
