#include "child_program.h"
#include "test_main.h"

#include "main_skin.h"
#include "skin_base.h"
#include "skin_check.h"
#include "skin_maker.h"
#include "slider_skin.h"
#include "time_skin.h"

namespace
{

/// What the program said and how it ended.
struct Answer {
    int status = -1;
    QString output;
};

Answer run_checker(const QStringList& arguments)
{
    QProcess checker;
    ChildProgram::start_built(checker, QStringLiteral(SKIN_CHECK_PROGRAM), arguments);
    Answer answer;
    if (!checker.waitForFinished(test_support::stretched(30000)))
        return answer;
    answer.status = checker.exitStatus() == QProcess::NormalExit ? checker.exitCode() : -1;
    answer.output = QString::fromUtf8(checker.readAllStandardOutput());
    return answer;
}

QString first_code_block(const QString& file)
{
    QFile document(file);
    if (!document.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(document.readAll()).section(QStringLiteral("```\n"), 1, 1);
}

} // namespace

class TestSkinCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void a_good_skin_has_no_faults();
    void the_worked_example_of_the_documentation_has_no_faults();
    void the_worked_example_dresses_the_widgets();
    void each_fault_is_named_with_its_line_data();
    void each_fault_is_named_with_its_line();
    void buttons_on_one_spot_are_no_fault_when_one_replaces_the_other();
    void faults_come_in_the_order_of_the_lines();
    void a_fault_of_a_picture_with_a_fixed_name_is_named_data();
    void a_fault_of_a_picture_with_a_fixed_name_is_named();
    void the_documentation_names_the_pictures_that_the_dialogs_load();
    void a_missing_layout_file_is_a_fault();
    void damaged_files_end_with_faults_data();
    void damaged_files_end_with_faults();

    void the_program_says_nothing_of_a_good_skin_and_ends_with_0();
    void the_program_names_file_line_and_fault_and_ends_with_1();
    void the_program_explains_itself_and_ends_with_2_data();
    void the_program_explains_itself_and_ends_with_2();

private:
    QStringList faults() const;

    std::unique_ptr<SkinMaker> m_skin;
};

void TestSkinCheck::init()
{
    test_support::reset_directories();
    m_skin = std::make_unique<SkinMaker>();
    const auto picture = [this](const char* name, int width, int height) {
        m_skin->picture(QString::fromLatin1(name), QSize(width, height), Qt::red);
    };
    picture("bar.png", 480, 56);
    picture("title.png", 480, 26);
    picture("time.png", 480, 24);
    picture("list.png", 192, 166);
    picture("button.png", 48, 32);
    picture("small.png", 20, 20);
    picture("large.png", 481, 26);
    picture("volume.png", 60, 20);
    picture("digits.png", 66, 12);
    picture("handle.png", 16, 16);
    picture("wide.png", 20000, 2);
    m_skin->layout(main_skin());
}

QStringList TestSkinCheck::faults() const
{
    QStringList lines;
    const SkinCheck check(m_skin->directory());
    for (const SkinCheck::Fault& fault : check.faults())
        lines.append(QStringLiteral("%1: %2").arg(fault.line).arg(fault.text));
    return lines;
}

// Good skins

void TestSkinCheck::a_good_skin_has_no_faults()
{
    QCOMPARE(faults(), QStringList());
}

void TestSkinCheck::the_worked_example_of_the_documentation_has_no_faults()
{
    for (const char* name :
         {"bar.png 480 56", "time.png 480 24", "play_normal.png 48 32", "play_focus.png 48 32", "play_press.png 48 32",
          "play_disable.png 48 32", "pause_normal.png 48 32", "pause_focus.png 48 32", "pause_press.png 48 32",
          "pause_disable.png 48 32", "track.png 9 6", "fill.png 9 6", "handle.png 16 16", "track_v.png 8 24",
          "thumb.png 8 24"}) {
        const QStringList words = QString::fromLatin1(name).split(QLatin1Char(' '));
        m_skin->picture(words.at(0), QSize(words.at(1).toInt(), words.at(2).toInt()), Qt::red);
    }
    const QString example = first_code_block(QStringLiteral(SKIN_FORMAT_DOCUMENT));
    QVERIFY(example.contains(QStringLiteral("[MAIN]")));
    m_skin->layout(example);
    QCOMPARE(faults(), QStringList());
}

void TestSkinCheck::the_worked_example_dresses_the_widgets()
{
    the_worked_example_of_the_documentation_has_no_faults();
    QWidget window;
    window.setObjectName(QStringLiteral("skin_test"));
    SkinBase bar(&window, "VIDEO_CONTROL");
    bar.do_configloading(QStringLiteral("VIDEO_CONTROL"));
    QCOMPARE(bar.size(), QSize(480, 56));
    QCOMPARE(bar.focusButton()->name(), QStringLiteral("play"));
    QVERIFY(bar.button(QStringLiteral("pause"))->isHidden());
    const SliderSkin slider(&window, QStringLiteral("TIME_SLIDER"));
    QCOMPARE(slider.size(), QSize(352, 16));
    const TimeSkin total(&window, QStringLiteral("TIME_TOTAL"));
    QCOMPARE(total.size(), QSize(48, 16));
}

// Faults

void TestSkinCheck::each_fault_is_named_with_its_line_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* name, const char* line, const char* replacement, const char* fault) {
        QTest::newRow(name) << QString::fromLatin1(line) << QString::fromLatin1(replacement)
                            << QString::fromLatin1(fault);
    };
    row("unknown key", "title_ypos = 0", "title_ypos = 0\ntitle_zpos = 0",
        "+1: unknown key \"title_zpos\" in group \"MAIN\"");
    row("key of another group", "scroll_track = handle.png", "scroll_track = handle.png\nbackground = bar.png",
        "+1: unknown key \"background\" in group \"LISTBOX\"");
    row("key of a button that is not listed", "play_xpos = 8", "play_xpos = 8\nopen_xpos = 8",
        "+1: unknown key \"open_xpos\" in group \"VIDEO_CONTROL\"");
    row("unknown group", "[LISTBOX]", "[LISTBOXES]", "+0: unknown group \"LISTBOXES\"");
    row("a group twice", "[LISTBOX]", "[MAIN]\n[LISTBOX]", "+0: group \"MAIN\" stands twice");
    row("a key twice", "play_xpos = 8", "play_xpos = 7\nplay_xpos = 8",
        "+1: key \"play_xpos\" stands twice in group \"VIDEO_CONTROL\"");
    row("an open bracket", "[LISTBOX]", "[LISTBOX", "+0: the group's name has no closing bracket");
    row("neither group nor key", "scroll_track = handle.png", "scroll_track handle.png",
        "+0: neither a group nor \"key = value\"");
    row("a key before the groups", "[MAIN]", "title = 1\n[MAIN]", "+0: key \"title\" stands before the first group");
    row("a bad number", "play_xpos = 8", "play_xpos = eight", "+0: \"eight\" is not a whole number");
    row("a number too large", "play_xpos = 8", "play_xpos = 99999999999", "+0: \"99999999999\" is not a whole number");
    row("an empty number", "play_xpos = 8", "play_xpos =", "+0: \"\" is not a whole number");
    row("a negative size", "width = 340", "width = -340", "+0: \"width\" must be above 0");
    row("a missing picture", "play_focus = button.png", "play_focus = none.png", "+0: picture \"none.png\" is missing");
    row("no picture named", "play_focus = button.png", "play_focus =", "+0: picture \"\" is missing");
    row("a picture that is none", "play_focus = button.png", "play_focus = config",
        "+0: picture \"config\" cannot be read");
    row("a huge picture", "scroll_track = handle.png", "scroll_track = wide.png",
        "+0: picture \"wide.png\" is 20000x2: no side may be longer than 2048");
    row("a colour that is none", "color = #ffffff", "color = whiteish", "+0: \"whiteish\" is not a colour");
    row("an alignment that is none", "align = right", "align = top", "+0: \"top\" is not left, center or right");
    row("two buttons on one spot", "pageup_xpos = 116", "pageup_xpos = 100",
        "+0: buttons \"stop\" and \"pageup\" stand on one spot");
    row("a button that replaces none", "pause_replaces = play", "pause_replaces = listopen",
        "+0: button \"pause\" replaces \"listopen\", which is no other button of the panel");
    row("a button that replaces itself", "pageup_xpos = 116", "pageup_xpos = 116\npageup_replaces = pageup",
        "+1: button \"pageup\" replaces \"pageup\", which is no other button of the panel");
    row("a button named twice", "buttons = play pause stop pageup", "buttons = play pause stop pageup stop",
        "+0: button \"stop\" is named twice");
    row("a button without a picture at rest", "stop_normal = button.png", "stop_focus = button.png",
        "-5: button \"stop\" has no picture \"stop_normal\"");
    row("a button out of its panel", "pageup_xpos = 116", "pageup_xpos = 470",
        "+0: button \"pageup\" reaches out of its panel");
    row("a picture of the wrong size", "play_focus = button.png", "play_focus = small.png",
        "+0: picture \"small.png\" is 20x20, but \"button.png\" is 48x32");
    row("a volume of the wrong size", "bar_on = volume.png", "bar_on = small.png",
        "+0: picture \"small.png\" is 20x20, but \"volume.png\" is 60x20");
    row("a handle of the wrong size", "handle_press = handle.png", "handle_press = small.png",
        "+0: picture \"small.png\" is 20x20, but \"handle.png\" is 16x16");
    row("digits of the wrong size", "digits = digits.png", "digits = volume.png",
        "+0: picture \"volume.png\" is 60x20: its width must be a multiple of 11");
    row("a panel too large", "background = title.png", "background = large.png",
        "1: panel \"VIDEO_TITLE\" (481x26 at 0,0) reaches off the screen of 480x272");
    row("a panel too low", "control_ypos = 216", "control_ypos = 217",
        "-1: panel \"VIDEO_CONTROL\" (480x56 at 0,217) reaches off the screen of 480x272");
    row("a panel without a background", "background = bar.png", "",
        "-1: group \"VIDEO_CONTROL\" has no background: the panel is not shown");
    row("an indicator out of its panel", "volume_xpos = 400", "volume_xpos = 430",
        "+0: \"VOLUME\" (60x20) reaches out of its panel");
    row("a readout without a size", "width = 50", "color = #000000",
        "-1: \"TIME_CURRENT\" has no size: it is not shown");
    row("a list out of its panel", "height = 110", "height = 150", "-4: \"PLAYLIST_LISTBOX\" reaches out of its panel");
    row("a list without a size", "height = 110", "", "-4: \"PLAYLIST_LISTBOX\" has no size: the list is not shown");
}

void TestSkinCheck::each_fault_is_named_with_its_line()
{
    QFETCH(QString, line);
    QFETCH(QString, replacement);
    QFETCH(QString, fault);
    QStringList lines = main_skin().split(QLatin1Char('\n'));
    const int place = static_cast<int>(lines.indexOf(line));
    QVERIFY2(place >= 0, qPrintable(line));
    lines[place] = replacement;
    m_skin->layout(lines.join(QLatin1Char('\n')));

    // "+n" and "-n" count from the changed line, a bare number is the line of MAIN's first key.
    const QString number = fault.section(QLatin1Char(':'), 0, 0);
    const bool relative = number.startsWith(QLatin1Char('+')) || number.startsWith(QLatin1Char('-'));
    const int expected_line = relative ? place + 1 + number.toInt() : 2;
    const QString expected = QStringLiteral("%1: %2").arg(expected_line).arg(fault.section(QStringLiteral(": "), 1));
    QVERIFY2(faults().contains(expected), qPrintable(expected + QLatin1Char('\n') + faults().join(QLatin1Char('\n'))));
}

void TestSkinCheck::buttons_on_one_spot_are_no_fault_when_one_replaces_the_other()
{
    QString layout = main_skin();
    QVERIFY(layout.contains(QStringLiteral("pause_replaces = play\n")));
    layout.remove(QStringLiteral("pause_replaces = play\n"));
    m_skin->layout(layout);
    QCOMPARE(faults().size(), 1);
    QVERIFY(faults().first().endsWith(QStringLiteral("buttons \"play\" and \"pause\" stand on one spot")));
}

void TestSkinCheck::faults_come_in_the_order_of_the_lines()
{
    m_skin->layout(QStringLiteral("[TIME]\nbackground = none.png\n[MAIN]\ntitle_xpos = a\ncontrol_zpos = 2\n[NONE]\n"));
    const QStringList found = faults();
    QCOMPARE(found.size(), 4);
    for (int index = 0; index < 4; ++index)
        QVERIFY(found.at(index).startsWith(QString::number(QList<int>{2, 4, 5, 6}.at(index)) + QLatin1Char(':')));
}

void TestSkinCheck::a_fault_of_a_picture_with_a_fixed_name_is_named_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char* name, QSize size, const char* fault) {
        QTest::addRow("%s %dx%d", name, size.width(), size.height())
            << QString::fromLatin1(name) << size << QString::fromLatin1(fault);
    };
    const QSize damaged;
    row("close_normal.png", QSize(30, 28), "");
    row("close_normal.png", damaged, "cannot be read");
    row("close_focus.png", QSize(30, 27), "is 30x27, but \"close_normal.png\" is 30x28");
    row("close_press.png", QSize(31, 28), "is 31x28, but \"close_normal.png\" is 30x28");
    row("close_press.png", QSize(0, 0), "is missing");
    row("setting_title.png", damaged, "cannot be read");
    row("DIC/popup_bg.png", QSize(312, 192), "");
    row("DIC/popup_bg.png", QSize(300, 192), "is 300x192: it must be 312x192");
    row("DIC/search_bt.png", QSize(65, 23), "is 65x23: it must be 260x23");
    row("DIC/bt_popup_close.png", QSize(35, 25), "is 35x25: it must be 140x25");
    row("../SETTINGS/ver_video.png", damaged, "cannot be read");
}

void TestSkinCheck::a_fault_of_a_picture_with_a_fixed_name_is_named()
{
    QFETCH(QString, name);
    QFETCH(QSize, size);
    QFETCH(QString, fault);
    QVERIFY(QDir(m_skin->directory()).mkpath(QStringLiteral("DIC")));
    QVERIFY(QDir(m_skin->directory()).mkpath(QStringLiteral("../SETTINGS")));
    for (const char* each : {"close_normal.png", "close_focus.png", "close_press.png"})
        m_skin->picture(QString::fromLatin1(each), QSize(30, 28), Qt::red);
    if (!size.isValid())
        m_skin->file(name, "not a picture");
    else if (size.isEmpty())
        QVERIFY(QFile::remove(m_skin->directory() + QLatin1Char('/') + name));
    else
        m_skin->picture(name, size, Qt::red);
    QCOMPARE(faults(),
             fault.isEmpty() ? QStringList() : QStringList(QStringLiteral("1: picture \"%1\" %2").arg(name, fault)));
}

void TestSkinCheck::the_documentation_names_the_pictures_that_the_dialogs_load()
{
    QFile document(QStringLiteral(SKIN_FORMAT_DOCUMENT));
    QVERIFY(document.open(QIODevice::ReadOnly));
    const QByteArray text = document.readAll();
    for (const char* name : {"close_normal", "close_focus", "close_press", "setting_title", "DIC/popup_bg",
                             "DIC/search_bt", "DIC/bt_popup_close", "../SETTINGS/ver_video"})
        QVERIFY2(text.contains(QByteArray("`") + name + '`'), name);
}

void TestSkinCheck::a_missing_layout_file_is_a_fault()
{
    QVERIFY(QFile::remove(m_skin->directory() + QStringLiteral("/config")));
    QCOMPARE(faults(), QStringList{QStringLiteral("1: no layout file that can be read")});
}

void TestSkinCheck::damaged_files_end_with_faults_data()
{
    QTest::addColumn<QByteArray>("layout");
    QTest::newRow("binary") << QByteArray("\0\xff\xfe[MAIN]\0\x01=\x02\n[", 16);
    QTest::newRow("brackets") << QByteArray("[[[[]]]]\n[\n]\n[]\n=\n==\n");
    QTest::newRow("a long line") << QByteArray("[PLAYLIST]\nbuttons = ") + QByteArray(200000, 'x');
    QTest::newRow("buttons that replace each other") << QByteArray(
        "[PLAYLIST]\nbackground = list.png\nbuttons = up down\nup_normal = small.png\ndown_normal = small.png\n"
        "up_xpos = 2147483647\nup_ypos = 0\ndown_xpos = 0\ndown_ypos = 0\nup_replaces = down\ndown_replaces = up\n");
}

void TestSkinCheck::damaged_files_end_with_faults()
{
    QFETCH(QByteArray, layout);
    m_skin->file(QStringLiteral("config"), layout);
    QVERIFY(!faults().isEmpty());
}

// The program

void TestSkinCheck::the_program_says_nothing_of_a_good_skin_and_ends_with_0()
{
    const Answer answer = run_checker({m_skin->directory()});
    QCOMPARE(answer.output, QString());
    QCOMPARE(answer.status, 0);
}

void TestSkinCheck::the_program_names_file_line_and_fault_and_ends_with_1()
{
    m_skin->layout(QStringLiteral("[MAIN]\ntitle_xpos = a\ntitle_zpos = 2\n"));
    const Answer answer = run_checker({m_skin->directory() + QLatin1Char('/')});
    const QString file = m_skin->directory() + QStringLiteral("/config");
    QCOMPARE(answer.output, file + QStringLiteral(":2: \"a\" is not a whole number\n") + file +
                                QStringLiteral(":3: unknown key \"title_zpos\" in group \"MAIN\"\n"));
    QCOMPARE(answer.status, 1);
}

void TestSkinCheck::the_program_explains_itself_and_ends_with_2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("too much") << QStringList{QStringLiteral("a"), QStringLiteral("b")};
    QTest::newRow("an option") << QStringList{QStringLiteral("--help")};
}

void TestSkinCheck::the_program_explains_itself_and_ends_with_2()
{
    QFETCH(QStringList, arguments);
    const Answer answer = run_checker(arguments);
    QCOMPARE(answer.output, QString());
    QCOMPARE(answer.status, 2);
}

TAVEL_TEST_MAIN(TestSkinCheck)
#include "tst_skin_check.moc"
