#include "test_main.h"

#include "qpe_application.h"
#include "skin_group.h"
#include "skin_layout.h"
#include "skin_maker.h"

class TestSkinLayout : public QObject
{
    Q_OBJECT

private slots:
    void the_directory_is_named_after_the_top_level_widget();
    void renaming_the_window_changes_the_skin();
    void a_picture_is_read_with_its_alpha();
    void pictures_that_cannot_be_used_are_null_and_silent_data();
    void pictures_that_cannot_be_used_are_null_and_silent();
    void a_picture_at_the_limit_is_read();
    void alpha_is_multiplied_and_rounded();
    void full_alpha_changes_nothing();
    void values_of_a_group_are_read_by_kind();
    void missing_and_wrong_values_have_defaults();
    void numbers_far_out_stay_within_what_widgets_can_take();
    void a_missing_layout_file_has_no_entries();
};

void TestSkinLayout::the_directory_is_named_after_the_top_level_widget()
{
    QWidget window;
    window.setObjectName(QStringLiteral("some_player"));
    QWidget panel(&window);
    panel.setObjectName(QStringLiteral("PANEL"));
    QCOMPARE(SkinLayout::directory(&panel), QPEApplication::qpeDir() + QStringLiteral("pics/some_player"));
    QCOMPARE(SkinLayout::file(&panel), QPEApplication::qpeDir() + QStringLiteral("pics/some_player/config"));
}

void TestSkinLayout::renaming_the_window_changes_the_skin()
{
    QWidget window;
    window.setObjectName(QStringLiteral("before"));
    QWidget panel(&window);
    window.setObjectName(QStringLiteral("after"));
    QVERIFY(SkinLayout::directory(&panel).endsWith(QStringLiteral("/pics/after")));
}

void TestSkinLayout::a_picture_is_read_with_its_alpha()
{
    const SkinMaker skin;
    skin.picture(QStringLiteral("a.png"), QSize(3, 2), QColor(10, 20, 30, 40));
    const QImage image = SkinLayout::load_image(skin.directory(), QStringLiteral("a.png"));
    QCOMPARE(image.size(), QSize(3, 2));
    QCOMPARE(image.format(), QImage::Format_ARGB32);
    QCOMPARE(image.pixel(2, 1), qRgba(10, 20, 30, 40));
}

void TestSkinLayout::pictures_that_cannot_be_used_are_null_and_silent_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no name") << QString();
    QTest::newRow("no file") << QStringLiteral("none.png");
    QTest::newRow("a directory") << QStringLiteral(".");
    QTest::newRow("empty") << QStringLiteral("empty.png");
    QTest::newRow("not a picture") << QStringLiteral("text.png");
    QTest::newRow("cut off") << QStringLiteral("cut.png");
    QTest::newRow("20,000 pixels wide") << QStringLiteral("wide.png");
    QTest::newRow("one pixel over the limit") << QStringLiteral("over.png");
}

void TestSkinLayout::pictures_that_cannot_be_used_are_null_and_silent()
{
    QFETCH(QString, name);
    const SkinMaker skin;
    skin.file(QStringLiteral("empty.png"), QByteArray());
    skin.file(QStringLiteral("text.png"), "not a picture");
    skin.picture(QStringLiteral("whole.png"), QSize(50, 50), Qt::red);
    QFile whole(skin.directory() + QStringLiteral("/whole.png"));
    QVERIFY(whole.open(QIODevice::ReadOnly));
    skin.file(QStringLiteral("cut.png"), whole.readAll().first(60));
    skin.picture(QStringLiteral("wide.png"), QSize(20000, 2), Qt::red);
    skin.picture(QStringLiteral("over.png"), QSize(2, SkinLayout::largest_side + 1), Qt::red);

    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("skin|png|config"), QRegularExpression::CaseInsensitiveOption));
    QVERIFY(SkinLayout::load_image(skin.directory(), name).isNull());
}

void TestSkinLayout::a_picture_at_the_limit_is_read()
{
    const SkinMaker skin;
    skin.picture(QStringLiteral("limit.png"), QSize(2, SkinLayout::largest_side), Qt::red);
    QVERIFY(!SkinLayout::load_image(skin.directory(), QStringLiteral("limit.png")).isNull());
}

void TestSkinLayout::alpha_is_multiplied_and_rounded()
{
    QImage image(256, 1, QImage::Format_ARGB32);
    for (int x = 0; x < 256; ++x)
        image.setPixel(x, 0, qRgba(200, 100, 50, x));
    for (const int alpha : {0, 1, 100, 127, 128, 254, 255}) {
        const QImage result = SkinLayout::with_alpha(image, static_cast<unsigned char>(alpha));
        for (int x = 0; x < 256; ++x)
            QCOMPARE(result.pixel(x, 0), qRgba(200, 100, 50, qRound(x * alpha / 255.0)));
    }
}

void TestSkinLayout::full_alpha_changes_nothing()
{
    QImage image(2, 2, QImage::Format_ARGB32);
    image.fill(qRgba(1, 2, 3, 4));
    QCOMPARE(SkinLayout::with_alpha(image, 255), image);
    QVERIFY(SkinLayout::with_alpha(QImage(), 100).isNull());
}

void TestSkinLayout::values_of_a_group_are_read_by_kind()
{
    const SkinMaker skin;
    skin.picture(QStringLiteral("a.png"), QSize(3, 2), Qt::red);
    skin.layout(
        QStringLiteral("[OTHER]\nx = 1\n[G]\nx = -12\nw = 34\nnames =  a  b\tc \npicture = a.png\ntint = #102030\n"));
    QWidget window;
    window.setObjectName(QStringLiteral("skin_test"));
    const SkinGroup group(&window, QStringLiteral("G"));
    QCOMPARE(group.position(QStringLiteral("x")), -12);
    QCOMPARE(group.size(QStringLiteral("w")), 34);
    QCOMPARE(group.words(QStringLiteral("names")),
             (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}));
    QCOMPARE(group.image(QStringLiteral("picture")).size(), QSize(3, 2));
    QCOMPARE(group.color(QStringLiteral("tint"), Qt::red), QColor(0x10, 0x20, 0x30));
}

void TestSkinLayout::missing_and_wrong_values_have_defaults()
{
    const SkinMaker skin;
    skin.layout(QStringLiteral("[G]\nx = twelve\nw = -5\ntint = no colour\n"));
    QWidget window;
    window.setObjectName(QStringLiteral("skin_test"));
    const SkinGroup group(&window, QStringLiteral("G"));
    QCOMPARE(group.position(QStringLiteral("x")), -1);
    QCOMPARE(group.position(QStringLiteral("none")), -1);
    QCOMPARE(group.position(QStringLiteral("none"), 0), 0);
    QCOMPARE(group.size(QStringLiteral("w")), 0);
    QCOMPARE(group.size(QStringLiteral("none")), 0);
    QVERIFY(group.words(QStringLiteral("none")).isEmpty());
    QVERIFY(group.image(QStringLiteral("none")).isNull());
    QCOMPARE(group.color(QStringLiteral("tint"), Qt::green), QColor(Qt::green));
}

void TestSkinLayout::numbers_far_out_stay_within_what_widgets_can_take()
{
    const SkinMaker skin;
    skin.layout(QStringLiteral("[G]\nx = 2147483647\ny = -2147483648\nw = 2147483647\nhuge = 99999999999999999999\n"));
    QWidget window;
    window.setObjectName(QStringLiteral("skin_test"));
    const SkinGroup group(&window, QStringLiteral("G"));
    QCOMPARE(group.position(QStringLiteral("x")), 16384);
    QCOMPARE(group.position(QStringLiteral("y")), -16384);
    QCOMPARE(group.size(QStringLiteral("w")), SkinLayout::largest_side);
    QCOMPARE(group.position(QStringLiteral("huge")), -1);
}

void TestSkinLayout::a_missing_layout_file_has_no_entries()
{
    const SkinMaker skin;
    QWidget window;
    window.setObjectName(QStringLiteral("skin_test"));
    const SkinGroup group(&window, QStringLiteral("G"));
    QCOMPARE(group.position(QStringLiteral("x")), -1);
    QVERIFY(group.text(QStringLiteral("x")).isNull());
}

TAVEL_TEST_MAIN(TestSkinLayout)
#include "tst_skin_layout.moc"
