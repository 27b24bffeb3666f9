#include "test_main.h"

#include "skin_button.h"

namespace
{

QImage picture(const QSize& size, QRgb color)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

} // namespace

class TestSkinButton : public QObject
{
    Q_OBJECT

private slots:
    void it_is_as_large_as_the_picture_at_rest();
    void without_a_picture_at_rest_it_is_as_large_as_the_first_there_is();
    void without_pictures_it_has_no_place_and_cannot_be_used();
    void missing_pictures_are_borrowed();
    void a_missing_disabled_picture_is_the_one_at_rest_faded();
    void a_picture_of_another_size_is_cut_to_the_button();
    void hidden_and_disabled_buttons_cannot_be_used();
};

void TestSkinButton::it_is_as_large_as_the_picture_at_rest()
{
    SkinButton button(QStringLiteral("play"), QPoint(5, 6));
    button.setImage(SkinButton::State::Focus, picture(QSize(40, 41), 0xffffffff));
    button.setImage(SkinButton::State::Normal, picture(QSize(30, 20), 0xffffffff));
    QCOMPARE(button.rectangle(), QRect(5, 6, 30, 20));
}

void TestSkinButton::without_a_picture_at_rest_it_is_as_large_as_the_first_there_is()
{
    SkinButton button(QStringLiteral("play"), QPoint(5, 6));
    button.setImage(SkinButton::State::Pressed, picture(QSize(10, 11), 0xffffffff));
    QCOMPARE(button.rectangle(), QRect(5, 6, 10, 11));
    button.setImage(SkinButton::State::Focus, picture(QSize(40, 41), 0xffffffff));
    QCOMPARE(button.rectangle(), QRect(5, 6, 40, 41));
}

void TestSkinButton::without_pictures_it_has_no_place_and_cannot_be_used()
{
    const SkinButton button(QStringLiteral("play"), QPoint(5, 6));
    QVERIFY(button.rectangle().isEmpty());
    QVERIFY(!button.isUsable());
    QVERIFY(button.image(SkinButton::State::Normal).isNull());
    QVERIFY(button.image(SkinButton::State::Disabled).isNull());
}

void TestSkinButton::missing_pictures_are_borrowed()
{
    SkinButton button(QStringLiteral("play"), QPoint());
    button.setImage(SkinButton::State::Normal, picture(QSize(4, 4), 0xff111111));
    QCOMPARE(button.image(SkinButton::State::Focus).pixel(0, 0), 0xff111111);
    QCOMPARE(button.image(SkinButton::State::Pressed).pixel(0, 0), 0xff111111);
    button.setImage(SkinButton::State::Focus, picture(QSize(4, 4), 0xff222222));
    QCOMPARE(button.image(SkinButton::State::Pressed).pixel(0, 0), 0xff222222);
    button.setImage(SkinButton::State::Pressed, picture(QSize(4, 4), 0xff333333));
    QCOMPARE(button.image(SkinButton::State::Pressed).pixel(0, 0), 0xff333333);
    QCOMPARE(button.image(SkinButton::State::Focus).pixel(0, 0), 0xff222222);
}

void TestSkinButton::a_missing_disabled_picture_is_the_one_at_rest_faded()
{
    SkinButton button(QStringLiteral("play"), QPoint());
    button.setImage(SkinButton::State::Normal, picture(QSize(4, 4), 0xff112233));
    const QRgb faded = button.image(SkinButton::State::Disabled).pixel(0, 0);
    QCOMPARE(faded & 0xffffffU, 0x112233U);
    QVERIFY(qAlpha(faded) > 0 && qAlpha(faded) < 128);
    button.setImage(SkinButton::State::Disabled, picture(QSize(4, 4), 0xff445566));
    QCOMPARE(button.image(SkinButton::State::Disabled).pixel(0, 0), 0xff445566);
}

void TestSkinButton::a_picture_of_another_size_is_cut_to_the_button()
{
    SkinButton button(QStringLiteral("play"), QPoint());
    button.setImage(SkinButton::State::Normal, picture(QSize(10, 10), 0xff111111));
    button.setImage(SkinButton::State::Focus, picture(QSize(40, 4), 0xff222222));
    const QImage cut = button.image(SkinButton::State::Focus);
    QCOMPARE(cut.size(), QSize(10, 10));
    QCOMPARE(cut.pixel(9, 3), 0xff222222);
    QCOMPARE(cut.pixel(9, 4), 0x00000000U);
}

void TestSkinButton::hidden_and_disabled_buttons_cannot_be_used()
{
    SkinButton button(QStringLiteral("play"), QPoint());
    button.setImage(SkinButton::State::Normal, picture(QSize(10, 10), 0xff111111));
    QVERIFY(button.isUsable());
    button.setHidden(true);
    QVERIFY(!button.isUsable());
    button.setHidden(false);
    button.setState(SkinButton::State::Disabled);
    QVERIFY(!button.isUsable());
    button.setState(SkinButton::State::Pressed);
    QVERIFY(button.isUsable());
}

TAVEL_TEST_MAIN(TestSkinButton)
#include "tst_skin_button.moc"
