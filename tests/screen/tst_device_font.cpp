#include "device_font.h"
#include "test_main.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>

/// The device's fonts.
class TstDeviceFont : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void v28_in_any_case_is_nanum_gothic();
    void one_point_is_one_pixel();
    void a_text_is_as_wide_whatever_the_host_does_to_letters();
    void old_weights_keep_their_meaning_data();
    void old_weights_keep_their_meaning();
    void other_families_are_the_hosts();
    void hangul_and_latin_are_there();
};

void TstDeviceFont::initTestCase()
{
    QVERIFY2(QFontDatabase::hasFamily(QStringLiteral("NanumGothic")), "the package fonts-nanum is needed");
}

void TstDeviceFont::v28_in_any_case_is_nanum_gothic()
{
    for (const char* family : {"v28", "V28"}) {
        const QString name = QString::fromLatin1(family);
        QCOMPARE(QFontInfo(device_font(name, 20, 50)).family(), QStringLiteral("NanumGothic"));
        QCOMPARE(QFontInfo(QFont(name, 20)).family(), QStringLiteral("NanumGothic"));
    }
}

void TstDeviceFont::one_point_is_one_pixel()
{
    for (int points : {17, 20, 24, 28})
        QCOMPARE(QFontInfo(device_font(QStringLiteral("v28"), points, 50)).pixelSize(), points);
    QCOMPARE(device_font(QStringLiteral("v28"), 0, 50).pixelSize(), 1);
}

void TstDeviceFont::a_text_is_as_wide_whatever_the_host_does_to_letters()
{
    const QFont font = device_font(QStringLiteral("v28"), 14, 50);
    QCOMPARE(font.hintingPreference(), QFont::PreferVerticalHinting);
    // Letters are fitted to the pixels' rows only: their widths are those of the design, which add up.
    const QString text = QStringLiteral("Menu Display Time");
    QFont design = font;
    design.setHintingPreference(QFont::PreferNoHinting);
    QCOMPARE(QFontMetrics(font).horizontalAdvance(text), QFontMetrics(design).horizontalAdvance(text));
}

void TstDeviceFont::old_weights_keep_their_meaning_data()
{
    QTest::addColumn<int>("old_weight");
    QTest::addColumn<int>("weight");
    QTest::newRow("thinnest") << 0 << int(QFont::Thin);
    QTest::newRow("extra light") << 12 << int(QFont::ExtraLight);
    QTest::newRow("light") << 25 << int(QFont::Light);
    QTest::newRow("between light and normal") << 49 << int(QFont::Light);
    QTest::newRow("normal") << 50 << int(QFont::Normal);
    QTest::newRow("medium") << 57 << int(QFont::Medium);
    QTest::newRow("demi-bold") << 63 << int(QFont::DemiBold);
    QTest::newRow("bold") << 75 << int(QFont::Bold);
    QTest::newRow("extra bold") << 81 << int(QFont::ExtraBold);
    QTest::newRow("black") << 87 << int(QFont::Black);
    QTest::newRow("heaviest") << 99 << int(QFont::Black);
}

void TstDeviceFont::old_weights_keep_their_meaning()
{
    QFETCH(int, old_weight);
    QFETCH(int, weight);
    QCOMPARE(int(device_font(QStringLiteral("v28"), 20, old_weight).weight()), weight);
    QVERIFY(!device_font(QStringLiteral("v28"), 20, old_weight).italic());
}

void TstDeviceFont::other_families_are_the_hosts()
{
    QCOMPARE(device_font(QStringLiteral("Serif"), 20, 50).family(), QStringLiteral("Serif"));
}

void TstDeviceFont::hangul_and_latin_are_there()
{
    const QFontMetrics metrics(device_font(QStringLiteral("v28"), 28, 50));
    for (char16_t letter : {u'V', u'\uc601', u'\ud7a3'})
        QVERIFY(metrics.inFont(QChar(letter)));
}

TAVEL_TEST_MAIN(TstDeviceFont)
#include "tst_device_font.moc"
