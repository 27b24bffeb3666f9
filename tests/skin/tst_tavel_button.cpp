#include "paint_record.h"
#include "tavel_button.h"

namespace
{

constexpr QRgb frame_colors[] = {0xFF202020, 0xFFFF9420, 0xFF2060FF, 0xFF707070};

/// Four frames, each of its own colour; the last @p spare columns belong to none.
QImage strip(int frame_width, int height, int spare = 0)
{
    QImage image(4 * frame_width + spare, height, QImage::Format_ARGB32);
    image.fill(Qt::green);
    for (int x = 0; x < 4 * frame_width; ++x) {
        for (int y = 0; y < height; ++y)
            image.setPixel(x, y, frame_colors[x / frame_width]);
    }
    return image;
}

QImage painted(TavelButton& button)
{
    QImage image(button.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    button.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image.convertToFormat(QImage::Format_ARGB32);
}

} // namespace

class tst_TavelButton : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QWidget> window;
    TavelButton* button = nullptr;
    QLineEdit* other = nullptr;

private slots:
    void init()
    {
        window = std::make_unique<QWidget>();
        window->resize(200, 100);
        other = new QLineEdit(window.get());
        other->setGeometry(100, 0, 80, 20);
        button = new TavelButton(window.get(), "m_SearchButton");
        button->setGeometry(10, 10, 65, 23);
        button->set_image(strip(30, 20));
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        other->setFocus();
    }

    void has_its_name()
    {
        QCOMPARE(button->objectName(), QString("m_SearchButton"));
        TavelButton nameless;
        QCOMPARE(nameless.objectName(), QString());
    }

    void shows_frame_0_at_rest()
    {
        QCOMPARE(painted(*button).pixel(5, 5), frame_colors[0]);
        QCOMPARE(painted(*button).pixel(29, 19), frame_colors[0]);
        QCOMPARE(painted(*button).pixel(30, 5), 0U);
        QCOMPARE(painted(*button).pixel(5, 20), 0U);
    }

    void shows_frame_1_while_it_is_pressed_down()
    {
        button->setFocus();
        QTest::mousePress(button, Qt::LeftButton);
        QCOMPARE(painted(*button).pixel(5, 5), frame_colors[1]);
        QTest::mouseRelease(button, Qt::LeftButton);
        QCOMPARE(painted(*button).pixel(5, 5), frame_colors[2]);
    }

    void shows_frame_2_with_the_focus()
    {
        button->setFocus();
        QCOMPARE(painted(*button).pixel(5, 5), frame_colors[2]);
    }

    void shows_frame_3_when_disabled_even_if_pressed_or_focused()
    {
        button->setFocus();
        button->setDown(true);
        button->setEnabled(false);
        QCOMPARE(painted(*button).pixel(5, 5), frame_colors[3]);
        QCOMPARE(painted(*button).pixel(29, 5), frame_colors[3]);
    }

    void width_that_does_not_divide_by_four_leaves_the_rest_out()
    {
        button->set_image(strip(10, 20, 3));
        button->setEnabled(false);
        QCOMPARE(painted(*button).pixel(9, 5), frame_colors[3]);
        QCOMPARE(painted(*button).pixel(10, 5), 0U);
    }

    void without_a_picture_nothing_is_drawn_and_a_click_still_counts()
    {
        button->set_image(QImage());
        QImage empty(button->size(), QImage::Format_ARGB32);
        empty.fill(Qt::transparent);
        QCOMPARE(painted(*button), empty);
        QSignalSpy clicks(button, &QPushButton::clicked);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicks.count(), 1);
    }

    void another_picture_comes_to_the_screen()
    {
        PaintRecord painted(button);
        QVERIFY(painted.begin());
        button->set_image(strip(40, 20));
        QTRY_VERIFY(painted.covers_all());
    }

    void space_clicks_it()
    {
        button->setFocus();
        QSignalSpy clicks(button, &QPushButton::clicked);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(clicks.count(), 1);
    }
};

TAVEL_TEST_MAIN(tst_TavelButton)
#include "tst_tavel_button.moc"
