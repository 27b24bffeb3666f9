#include "paint_record.h"

#include "skin_maker.h"
#include "time_skin.h"

class TestTimeSkin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void seconds_become_text_data();
    void seconds_become_text();
    void it_shows_the_time_it_was_given();
    void another_time_comes_to_the_screen();
    void it_takes_its_size_from_the_group_of_its_name();
    void without_a_skin_it_has_no_size();
    void the_text_has_the_skins_colour();
    void the_text_stands_where_the_skin_says_data();
    void the_text_stands_where_the_skin_says();
    void a_larger_font_draws_larger_text();
    void digit_pictures_replace_the_text();
    void wrong_values_are_replaced_data();
    void wrong_values_are_replaced();

private:
    std::unique_ptr<TimeSkin> make(const QString& keys);
    QRect drawn_area(TimeSkin* readout) const;

    std::unique_ptr<SkinMaker> m_skin;
    std::unique_ptr<QWidget> m_window;
};

void TestTimeSkin::init()
{
    m_skin = std::make_unique<SkinMaker>();
    m_window = std::make_unique<QWidget>();
    m_window->setObjectName(QStringLiteral("skin_test"));
}

void TestTimeSkin::cleanup()
{
    m_window.reset();
    m_skin.reset();
}

std::unique_ptr<TimeSkin> TestTimeSkin::make(const QString& keys)
{
    m_skin->layout(QStringLiteral("[TIME_CURRENT]\n") + keys);
    return std::make_unique<TimeSkin>(m_window.get(), QStringLiteral("TIME_CURRENT"), 0);
}

QRect TestTimeSkin::drawn_area(TimeSkin* readout) const
{
    const QImage picture = readout->grab().toImage();
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).alpha() > 0)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

void TestTimeSkin::seconds_become_text_data()
{
    QTest::addColumn<unsigned int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0U << QStringLiteral("00:00");
    QTest::newRow("one second") << 1U << QStringLiteral("00:01");
    QTest::newRow("a minute less one") << 59U << QStringLiteral("00:59");
    QTest::newRow("a minute") << 60U << QStringLiteral("01:00");
    QTest::newRow("an hour less one") << 3599U << QStringLiteral("59:59");
    QTest::newRow("an hour") << 3600U << QStringLiteral("1:00:00");
    QTest::newRow("more") << 3725U << QStringLiteral("1:02:05");
    QTest::newRow("a hundred hours") << 360000U << QStringLiteral("100:00:00");
    QTest::newRow("the largest number") << 4294967295U << QStringLiteral("1193046:28:15");
}

void TestTimeSkin::seconds_become_text()
{
    QFETCH(unsigned int, seconds);
    QFETCH(QString, text);
    QCOMPARE(TimeSkin::time_text(seconds), text);
    const auto readout = make(QStringLiteral("width = 50\nheight = 16\n"));
    readout->update_time(seconds);
    QCOMPARE(readout->text(), text);
}

void TestTimeSkin::it_shows_the_time_it_was_given()
{
    const auto readout = make(QStringLiteral("width = 60\nheight = 16\n"));
    QCOMPARE(readout->text(), QStringLiteral("00:00"));
    const QImage before = readout->grab().toImage();
    readout->update_time(754);
    QVERIFY(readout->grab().toImage() != before);
    readout->update_time(0);
    QCOMPARE(readout->grab().toImage(), before);
}

void TestTimeSkin::another_time_comes_to_the_screen()
{
    const auto readout = make(QStringLiteral("width = 60\nheight = 16\n"));
    PaintRecord painted(readout.get());
    QVERIFY(painted.begin());
    readout->update_time(754);
    QTRY_VERIFY(painted.covers_all());
}

void TestTimeSkin::it_takes_its_size_from_the_group_of_its_name()
{
    m_skin->layout(QStringLiteral("[TIME_CURRENT]\nwidth = 60\nheight = 16\n[TIME_TOTAL]\nwidth = 70\nheight = 18\n"));
    const TimeSkin total(m_window.get(), QStringLiteral("TIME_TOTAL"), 0);
    QCOMPARE(total.size(), QSize(70, 18));
    QCOMPARE(total.objectName(), QStringLiteral("TIME_TOTAL"));
    QCOMPARE(total.focusPolicy(), Qt::NoFocus);
}

void TestTimeSkin::without_a_skin_it_has_no_size()
{
    TimeSkin readout(m_window.get(), QStringLiteral("TIME_CURRENT"), 0);
    QCOMPARE(readout.size(), QSize(0, 0));
    readout.update_time(5);
    readout.setAlphaOverride(5);
    readout.grab();
}

void TestTimeSkin::the_text_has_the_skins_colour()
{
    const auto readout = make(QStringLiteral("width = 60\nheight = 16\ncolor = #ff0000\n"));
    const QImage picture = readout->grab().toImage().convertToFormat(QImage::Format_ARGB32);
    int lit = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) == 0)
                continue;
            QVERIFY(qGreen(pixel) == 0 && qBlue(pixel) == 0 && qRed(pixel) > 200);
            ++lit;
        }
    }
    QVERIFY(lit > 20);
}

void TestTimeSkin::the_text_stands_where_the_skin_says_data()
{
    QTest::addColumn<QString>("align");
    QTest::addColumn<QString>("digits");
    for (const char* digits : {"", "digits = digits.png\n"}) {
        for (const char* align : {"left", "center", "right", ""})
            QTest::addRow("%s %s", *align ? align : "not said", *digits ? "in pictures" : "as text")
                << QString::fromLatin1(align) << QString::fromLatin1(digits);
    }
}

void TestTimeSkin::the_text_stands_where_the_skin_says()
{
    QFETCH(QString, align);
    QFETCH(QString, digits);
    m_skin->picture(QStringLiteral("digits.png"), QSize(66, 8), Qt::white);
    const auto readout = make(QStringLiteral("width = 200\nheight = 40\nalign = %1\n").arg(align) + digits);
    const QRect area = drawn_area(readout.get());
    QVERIFY(std::abs(area.center().y() - 20) <= 4);
    if (align == QLatin1String("right"))
        QVERIFY(area.right() >= 195);
    else if (align == QLatin1String("center"))
        QVERIFY(std::abs(area.center().x() - 100) <= 3);
    else
        QVERIFY(area.left() <= 4);
}

void TestTimeSkin::a_larger_font_draws_larger_text()
{
    const QRect small = drawn_area(make(QStringLiteral("width = 200\nheight = 60\nfont_size = 12\n")).get());
    const QRect large = drawn_area(make(QStringLiteral("width = 200\nheight = 60\nfont_size = 36\n")).get());
    const QRect standard = drawn_area(make(QStringLiteral("width = 200\nheight = 60\n")).get());
    QVERIFY(large.height() > 2 * small.height());
    QCOMPARE(standard, small);
}

void TestTimeSkin::digit_pictures_replace_the_text()
{
    // Eleven cells of 4 by 6 pixels; the red of each tells which it is.
    QImage digits(44, 6, QImage::Format_ARGB32);
    for (int cell = 0; cell < 11; ++cell) {
        for (int x = 0; x < 4; ++x) {
            for (int y = 0; y < 6; ++y)
                digits.setPixel(cell * 4 + x, y, qRgba(100 + cell, 0, 0, 255));
        }
    }
    m_skin->picture(QStringLiteral("digits.png"), digits);
    const auto readout = make(QStringLiteral("digits = digits.png\n"));
    QCOMPARE(readout->size(), QSize(28, 6));
    readout->update_time(2 * 3600 + 34 * 60 + 59);
    const QImage picture = readout->grab().toImage();
    const QList<int> expected{2, 10, 3, 4, 10, 5, 9};
    for (int place = 0; place < expected.size(); ++place)
        QCOMPARE(picture.pixelColor(place * 4 + 2, 3), QColor(100 + expected.at(place), 0, 0));
}

void TestTimeSkin::wrong_values_are_replaced_data()
{
    QTest::addColumn<QString>("keys");
    QTest::newRow("a font of no size") << QStringLiteral("font_size = 0\n");
    QTest::newRow("a font of negative size") << QStringLiteral("font_size = -12\n");
    QTest::newRow("a huge font") << QStringLiteral("font_size = 2000000000\n");
    QTest::newRow("a huge weight") << QStringLiteral("font_weight = 2000000000\n");
    QTest::newRow("no colour") << QStringLiteral("color = bright\n");
    QTest::newRow("no alignment") << QStringLiteral("align = up\n");
    QTest::newRow("digits too narrow") << QStringLiteral("digits = narrow.png\n");
    QTest::newRow("no digits") << QStringLiteral("digits = none.png\n");
}

void TestTimeSkin::wrong_values_are_replaced()
{
    QFETCH(QString, keys);
    m_skin->picture(QStringLiteral("narrow.png"), QSize(10, 10), Qt::red);
    const auto readout = make(QStringLiteral("width = 60\nheight = 16\n") + keys);
    readout->update_time(4294967295U);
    readout->update_time(754);
    QVERIFY(!drawn_area(readout.get()).isEmpty());
}

TAVEL_TEST_MAIN(TestTimeSkin)
#include "tst_time_skin.moc"
