#include <random>

#include "device_font.h"
#include "device_screen.h"
#include "osd_control.h"
#include "overlay_reference.h"
#include "paint_record.h"

namespace
{

/// The pixels that a widget shows as its background, as raw words.
QImage shown(const OsdControl& overlay)
{
    return overlay.background_pixmap().toImage().convertToFormat(QImage::Format_ARGB32);
}

QImage plain(const QImage& image)
{
    return image.convertToFormat(QImage::Format_ARGB32);
}

/// The rectangle of all pixels that are not one of the two empty values.
QRect drawn_rectangle(const QImage& image)
{
    QRect drawn;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (pixel != 0 && pixel != OsdControl::TRANSPARENT_PIXEL)
                drawn |= QRect(x, y, 1, 1);
        }
    }
    return drawn;
}

QImage image_of(const QStringList& rows, const QMap<QChar, unsigned int>& values)
{
    QImage image(static_cast<int>(rows.first().size()), static_cast<int>(rows.size()), QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, values.value(rows[y][x]));
    }
    return image;
}

const QMap<QChar, unsigned int> ring_values{
    {u'.', 0x01000000}, {u'W', 0xFFFFFFFF}, {u'#', 0xFF000000}, {u'+', 0xC0000000}};

} // namespace

class tst_OsdControl : public QObject
{
    Q_OBJECT

private slots:
    void text_is_yellow_with_a_shadow_at_the_bottom_centre_unless_told_otherwise()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setFont(device_font("v28", 20, 50));
        overlay.setGeometry(0, 0, 200, 80);
        overlay.draw("Film");

        QCOMPARE(shown(overlay),
                 plain(overlay_reference::shadowed({200, 80}, overlay.font(), Qt::AlignBottom | Qt::AlignHCenter,
                                                   QColor(255, 255, 0), "Film")));
        const QRect drawn = drawn_rectangle(shown(overlay));
        QVERIFY(drawn.top() > 50);
        QVERIFY(qAbs(drawn.center().x() - 100) <= 2);
    }

    void name_is_the_object_name_and_the_keyboard_stays_away()
    {
        OsdControl overlay(nullptr, "NOW LOADING", 0);
        QCOMPARE(overlay.objectName(), QString("NOW LOADING"));
        QCOMPARE(overlay.focusPolicy(), Qt::NoFocus);
    }

    void shadow_is_drawn_one_pixel_right_and_down_in_black()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setFont(device_font("v28", 30, 87));
        overlay.setGeometry(0, 0, 120, 60);
        overlay.set_align(Qt::AlignTop | Qt::AlignLeft);
        overlay.set_text_color(Qt::white, false);
        overlay.draw("I");

        const QImage image = shown(overlay);
        QCOMPARE(image, plain(overlay_reference::shadowed({120, 60}, overlay.font(), Qt::AlignTop | Qt::AlignLeft,
                                                          Qt::white, "I")));
        const int middle = drawn_rectangle(image).center().y();
        const QRect drawn = drawn_rectangle(image);
        QVERIFY(qGray(image.pixel(drawn.left() + 1, middle)) > 200);
        QVERIFY(qGray(image.pixel(drawn.right(), middle)) < 60);
    }

    void outlined_text_is_the_reference_picture_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("points");
        QTest::addColumn<int>("alignment");
        QTest::addColumn<QColor>("color");
        QTest::addColumn<QString>("text");

        const QString korean = QString::fromUtf8("안녕하세요, 여러분.\n두 번째 줄입니다");
        QTest::newRow("two Korean lines")
            << QSize(480, 120) << 20 << int(Qt::TextWordWrap | Qt::AlignHCenter | Qt::AlignBottom)
            << QColor(255, 255, 255) << korean;
        QTest::newRow("orange, middle") << QSize(480, 80) << 16 << int(Qt::TextWordWrap | Qt::AlignCenter)
                                        << QColor(255, 148, 32) << korean;
        QTest::newRow("black text") << QSize(200, 60) << 20 << int(Qt::AlignCenter) << QColor(0, 0, 0)
                                    << QString("Noir");
        QTest::newRow("larger than its widget")
            << QSize(60, 20) << 40 << int(Qt::AlignCenter) << QColor(255, 255, 0) << QString("Wide");
        QTest::newRow("wrapped") << QSize(120, 124) << 17 << int(Qt::TextWordWrap | Qt::AlignTop | Qt::AlignHCenter)
                                 << QColor(0, 255, 255) << QString("A line that does not fit into one row");
        QTest::newRow("empty") << QSize(50, 40) << 16 << int(Qt::AlignCenter) << QColor(255, 255, 255) << QString();
        QTest::newRow("one pixel") << QSize(1, 1) << 16 << int(Qt::AlignCenter) << QColor(255, 255, 255)
                                   << QString("W");
    }

    void outlined_text_is_the_reference_picture()
    {
        QFETCH(QSize, size);
        QFETCH(int, points);
        QFETCH(int, alignment);
        QFETCH(QColor, color);
        QFETCH(QString, text);

        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setFont(device_font("v28", points, 50));
        overlay.setGeometry(0, 0, size.width(), size.height());
        overlay.set_align(alignment);
        overlay.set_text_color(color, true);
        overlay.draw(text);

        QCOMPARE(shown(overlay), plain(overlay_reference::outlined(size, overlay.font(), alignment, color, text)));
    }

    void outlined_text_has_an_opaque_ring_and_a_lighter_one_round_it()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setFont(device_font("v28", 40, 87));
        overlay.setGeometry(0, 0, 100, 80);
        overlay.set_align(Qt::AlignCenter);
        overlay.set_text_color(Qt::white, true);
        overlay.draw("I");

        const QImage image = shown(overlay);
        const QRect drawn = drawn_rectangle(image);
        const int y = drawn.center().y();
        QCOMPARE(image.pixel(drawn.left() - 1, y), 0x01000000U);
        QCOMPARE(image.pixel(drawn.left(), y), 0xC0000000U);
        QCOMPARE(image.pixel(drawn.left() + 1, y), 0xFF000000U);
        QCOMPARE(image.pixel(drawn.left() + 3, y), 0xFFFEFEFEU);
        QCOMPARE(image.pixel(drawn.right() - 1, y), 0xFF000000U);
        QCOMPARE(image.pixel(drawn.right(), y), 0xC0000000U);
    }

    void coverage_of_64_is_drawn_and_63_is_not()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.set_text_color(QColor(255, 128, 4), true);
        overlay.set_bgcolor(0xFF000040);
        overlay.setGeometry(0, 0, 20, 10);
        overlay.draw(QString());
        QCOMPARE(shown(overlay).pixel(10, 5), qRgb(255 * 64 / 256, 128 * 64 / 256, 1));

        overlay.set_bgcolor(0xFF00003F);
        overlay.setGeometry(0, 0, 21, 10);
        overlay.draw(QString());
        QCOMPARE(shown(overlay).pixel(10, 5), 0x01000000U);
    }

    void each_ring_is_one_pixel_wide()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        QImage image =
            image_of({".......", ".......", ".......", "...W...", ".......", ".......", "......."}, ring_values);
        overlay.draw_outline(image, 0xFF000000);
        QCOMPARE(image,
                 image_of({".......", ".......", "...#...", "..#W#..", "...#...", ".......", "......."}, ring_values));
        overlay.draw_outline(image, 0xC0000000);
        QCOMPARE(image,
                 image_of({".......", "...+...", "..+#+..", ".+#W#+.", "..+#+..", "...+...", "......."}, ring_values));
    }

    void outermost_rows_and_columns_give_no_ring_but_take_one()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        QImage image = image_of({"W...W", ".....", "W....", ".W...", "....W"}, ring_values);
        overlay.draw_outline(image, 0xFF000000);
        QCOMPARE(image, image_of({"W...W", ".....", "W#...", "#W#..", ".#..W"}, ring_values));
    }

    void picture_one_or_two_pixels_high_or_wide_gets_no_ring_data()
    {
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("one high") << QStringList{"..W.."};
        QTest::newRow("two high") << QStringList{"..W..", ".W..."};
        QTest::newRow("one wide") << QStringList{".", "W", "."};
        QTest::newRow("two wide") << QStringList{"..", "W.", ".W", ".."};
    }

    void picture_one_or_two_pixels_high_or_wide_gets_no_ring()
    {
        QFETCH(QStringList, rows);
        OsdControl overlay(nullptr, "overlay", 0);
        QImage image = image_of(rows, ring_values);
        overlay.draw_outline(image, 0xFF000000);
        QCOMPARE(image, image_of(rows, ring_values));
    }

    void text_on_a_widget_two_pixels_high_has_no_ring()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setFont(device_font("v28", 20, 87));
        overlay.set_align(Qt::AlignCenter);
        overlay.set_text_color(Qt::white, true);
        overlay.setGeometry(0, 0, 60, 2);
        overlay.draw("MMM");
        const QImage image = shown(overlay);
        bool any_text = false;
        for (int x = 0; x < 60; ++x) {
            for (int y = 0; y < 2; ++y) {
                QVERIFY(image.pixel(x, y) != 0xFF000000U && image.pixel(x, y) != 0xC0000000U);
                any_text |= image.pixel(x, y) != 0x01000000U;
            }
        }
        QVERIFY(any_text);
    }

    void fast_outline_gives_the_reference_picture_on_random_pixels()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        std::mt19937 random(20240717);
        const auto below = [&](unsigned int limit) { return static_cast<unsigned int>(random() % limit); };
        for (int round = 0; round < 6000; ++round) {
            const unsigned int colours[] = {0xFF000000, 0xC0000000, 0x01000000, static_cast<unsigned int>(random())};
            const unsigned int colour = colours[below(4)];
            const unsigned int density = 1 + below(40);
            QImage image(1 + static_cast<int>(below(40)), 1 + static_cast<int>(below(30)), QImage::Format_ARGB32);
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const unsigned int others[] = {colour, 0xFF000000, 0xC0000000,
                                                   0,      0xFFFFFFFF, static_cast<unsigned int>(random())};
                    image.setPixel(x, y, below(40) < density ? 0x01000000 : others[below(6)]);
                }
            }
            QImage expected = image.copy();
            overlay_reference::draw_outline(expected, colour);
            overlay.draw_outline(image, colour);
            QCOMPARE(image, expected);
        }
    }

    void same_size_keeps_the_text_and_another_size_empties_the_widget()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        overlay.draw("Film");
        const QImage before = shown(overlay);
        QVERIFY(!drawn_rectangle(before).isEmpty());

        overlay.setGeometry(30, 50, 100, 40);
        QCOMPARE(overlay.geometry(), QRect(30, 50, 100, 40));
        QCOMPARE(shown(overlay), before);

        overlay.setGeometry(30, 50, 100, 41);
        QCOMPARE(shown(overlay).size(), QSize(100, 41));
        QVERIFY(drawn_rectangle(shown(overlay)).isEmpty());
    }

    void each_change_comes_to_the_screen_data()
    {
        QTest::addColumn<std::function<void(OsdControl&)>>("change");
        const auto row = [](const char* name, const std::function<void(OsdControl&)>& change) {
            QTest::newRow(name) << change;
        };
        row("text", [](OsdControl& overlay) { overlay.draw("Film"); });
        row("no text", [](OsdControl& overlay) { overlay.clear(); });
        row("same geometry", [](OsdControl& overlay) { overlay.setGeometry(10, 10, 100, 40); });
    }

    void each_change_comes_to_the_screen()
    {
        QFETCH(std::function<void(OsdControl&)>, change);
        QWidget window;
        window.resize(200, 100);
        OsdControl overlay(&window, "overlay", 0);
        overlay.setGeometry(10, 10, 100, 40);
        overlay.draw("NOW LOADING");
        PaintRecord painted(&overlay);
        QVERIFY(painted.begin());
        change(overlay);
        QTRY_VERIFY(painted.covers_all());
    }

    void background_colour_waits_for_the_next_size()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        overlay.set_bgcolor(0x80000000);
        overlay.clear();
        QCOMPARE(shown(overlay).pixel(5, 5), 0U);
        overlay.setGeometry(0, 0, 90, 40);
        QCOMPARE(shown(overlay).pixel(5, 5), 0x80000000U);
    }

    void clear_removes_the_text()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        const QImage blank = shown(overlay);
        overlay.draw("Film");
        QVERIFY(shown(overlay) != blank);
        overlay.clear();
        QCOMPARE(shown(overlay), blank);
    }

    void colour_and_alignment_wait_for_the_next_draw()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        overlay.draw("Film");
        const QImage before = shown(overlay);
        overlay.set_text_color(Qt::red, true);
        overlay.set_align(Qt::AlignLeft | Qt::AlignTop);
        QCOMPARE(shown(overlay), before);
        overlay.draw("Film");
        QVERIFY(shown(overlay) != before);
    }

    void text_fits_a_widget_that_was_resized_by_other_means()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        overlay.resize(150, 60);
        overlay.draw("Film");
        QCOMPARE(shown(overlay).size(), QSize(150, 60));
    }

    void widget_without_a_size_draws_nothing()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        overlay.setGeometry(0, 0, 0, 0);
        overlay.set_text_color(Qt::white, true);
        overlay.draw("Film");
        overlay.clear();
        QVERIFY(overlay.background_pixmap().isNull());
    }

    void what_is_shown_is_painted_and_replaces_what_lies_under_it()
    {
        QWidget parent;
        parent.setAutoFillBackground(true);
        parent.setPalette(QPalette(Qt::red));
        parent.resize(60, 40);
        OsdControl overlay(&parent, "overlay", 0);
        overlay.set_bgcolor(0x40000000);
        overlay.setGeometry(10, 10, 20, 10);
        QImage painted(60, 40, QImage::Format_ARGB32_Premultiplied);
        painted.fill(Qt::transparent);
        parent.render(&painted);
        QCOMPARE(painted.pixel(5, 5), 0xFFFF0000U);
        QCOMPARE(painted.pixel(15, 15), 0x40000000U);
        QCOMPARE(painted.pixel(31, 15), 0xFFFF0000U);
    }

    void enlarged_display_gets_the_text_at_its_own_pixels()
    {
        DeviceScreen* screen = DeviceScreen::instance();
        QWidget window;
        window.setGeometry(screen->desktop_geometry());
        OsdControl overlay(&window, "overlay", 0);
        overlay.setFont(device_font("v28", 30, 87));
        overlay.setGeometry(0, 0, 200, 60);
        overlay.set_align(Qt::AlignCenter);
        overlay.set_text_color(Qt::white, true);
        window.show();
        screen->resize(480, 272);
        overlay.draw("I");
        QCOMPARE(overlay.background_pixmap().size(), QSize(200, 60));
        const QRect at_1x = drawn_rectangle(shown(overlay));

        // What is shown already is rendered anew as soon as it is painted.
        screen->resize(960, 544);
        screen->grab_output();
        QCOMPARE(overlay.background_pixmap().devicePixelRatio(), 2.0);
        QCOMPARE(overlay.background_pixmap().size(), QSize(400, 120));
        const QImage image = shown(overlay);
        const QRect drawn = drawn_rectangle(image);
        QVERIFY(qAbs(drawn.width() - 2 * at_1x.width()) <= 3);
        // Rings of two pixels each, black to the eye.
        const int y = drawn.center().y();
        for (int x = 0; x < 2; ++x) {
            QCOMPARE(image.pixel(drawn.left() + x, y) & 0xFFFFFF00, 0xC0000000U);
            QCOMPARE(image.pixel(drawn.left() + 2 + x, y) & 0xFFFFFF00, 0xFF000000U);
        }
        QVERIFY(qGray(image.pixel(drawn.left() + 6, y)) > 200);

        overlay.clear();
        QVERIFY(drawn_rectangle(shown(overlay)).isEmpty());
        screen->resize(480, 272);
    }

    void code_page_bytes_become_unicode()
    {
        OsdControl overlay(nullptr, "overlay", 0);
        // "가", then "뷁", which only the whole code page has, then an accented letter in the widened form.
        const QByteArray bytes = QByteArray::fromHex("b0a1") + QByteArray::fromHex("94ee") + " x " + "\xFF" + "é";
        QCOMPARE(overlay.toUniString(QString::fromLatin1(bytes)), QString::fromUtf8("가뷁 x é"));
    }

    void press_is_handed_on_as_a_signal_and_goes_no_further()
    {
        class Window : public QWidget
        {
        public:
            int presses = 0;

        protected:
            void mousePressEvent(QMouseEvent*) override { ++presses; }
        };
        Window window;
        window.resize(200, 100);
        OsdControl overlay(&window, "overlay", 0);
        overlay.setGeometry(0, 0, 100, 40);
        window.show();
        QPoint pressed_at;
        connect(&overlay, &OsdControl::click_button, this,
                [&](QMouseEvent* event) { pressed_at = event->position().toPoint(); });
        QTest::mouseClick(&overlay, Qt::LeftButton, {}, QPoint(7, 9));
        QCOMPARE(pressed_at, QPoint(7, 9));
        QCOMPARE(window.presses, 0);
    }
};

TAVEL_TEST_MAIN(tst_OsdControl)
#include "tst_osd_control.moc"
