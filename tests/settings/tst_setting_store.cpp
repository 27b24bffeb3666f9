#include "setting_fixture.h"

#include "setting_tables.h"

#include <QtGui/QColor>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

using namespace setting_fixture;

namespace
{

struct ExpectedRow {
    const char* group;
    const char* key;
    int standard;
    int other; ///< a value that differs from the default
    const char* combo;
};

/// The file as other versions of the player know it.
constexpr ExpectedRow file_rows[] = {
    {"video", "red", 50, 31, nullptr},
    {"video", "green", 50, 32, nullptr},
    {"video", "blue", 50, 33, nullptr},
    {"audio", "track", 0, 0, "sound_combo_audiotrack"},
    {"audio", "spdif", 1, 0, "sound_combo_spdif"},
    {"audio", "volume", 20, 7, nullptr},
    {"subtitle", "display", 0, 1, "subtitle_combo_display"},
    {"subtitle", "color", 0, 6, "subtitle_combo_color"},
    {"subtitle", "size", 1, 2, "subtitle_combo_size"},
    {"subtitle", "pos", 2, 0, "subtitle_combo_pos"},
    {"subtitle", "track", 0, 0, "subtitle_combo_track"},
    {"subtitle", "adjust", 0, -25, nullptr},
    {"display", "menutime", 2, 0, "display_combo_menutime"},
    {"display", "transparency", 3, 1, "display_combo_transparancy"},
    {"display", "aspect", 1, 0, "display_combo_aspect_ratio"},
    {"display", "info", 0, 1, "display_combo_info"},
    {"display", "privacy", 1, 0, "display_combo_privacy_mode"},
    {"playback", "skiptime", 0, 4, "playback_combo_seektime"},
    {"playback", "speed_show", 1, 0, "playback_combo_playwithspeed"},
    {"playback", "repeatab_show", 1, 0, "playback_combo_repeat_mode"},
    {"playback", "bookmark_show", 1, 0, "playback_combo_bookmark"},
    {"playback", "next_action", 0, 1, "playback_combo_next_action"},
    {"playback", "trickmode", 0, 1, "playback_combo_trickmode"},
};

struct ExpectedText {
    int key;
    const char* text;
};

constexpr ExpectedText texts[] = {
    {0, "Reset"},
    {1, "Reset"},
    {2, "On"},
    {3, "Off"},
    {4, "Show"},
    {5, "Hide"},
    {6, "1"},
    {7, "2"},
    {8, "3"},
    {9, "4"},
    {10, "5"},
    {11, "6"},
    {12, "7"},
    {13, "8"},
    {14, "Video Setting"},
    {15, "Video"},
    {16, "Sound"},
    {17, "Subtitle"},
    {18, "Display"},
    {19, "Playback"},
    {20, "Info"},
    {21, "About"},
    {22, "Red"},
    {23, "Green"},
    {24, "Blue"},
    {25, "Audio Track"},
    {26, "SPDIF Audio Output"},
    {28, "Subtitles"},
    {29, "Size"},
    {30, "Large"},
    {31, "Medium"},
    {32, "Small"},
    {33, "Color"},
    {34, "White"},
    {35, "Gray"},
    {36, "Sky Blue"},
    {37, "Green"},
    {38, "Orange"},
    {39, "Violet"},
    {40, "Deep Pink"},
    {41, "Position"},
    {42, "High"},
    {43, "Middle"},
    {44, "Low"},
    {45, "Track"},
    {46, "Sync"},
    {47, "seconds"},
    {50, "Menu Display Time"},
    {51, "Always"},
    {52, "3 seconds"},
    {53, "5 seconds"},
    {54, "10 seconds"},
    {55, "Menu Opacity"},
    {56, "30 Percent"},
    {57, "50 Percent"},
    {58, "70 Percent"},
    {59, "100 Percent"},
    {60, "Aspect Ratio"},
    {61, "Full Screen"},
    {62, "Original"},
    {63, "Display Info"},
    {64, "Privacy on Pause"},
    {65, "Skip Time"},
    {66, "10 seconds"},
    {67, "15 seconds"},
    {68, "20 seconds"},
    {69, "30 seconds"},
    {70, "1 minute"},
    {71, "Bookmark Controls"},
    {72, "Speed Controls"},
    {73, "Repeat AB Controls"},
    {74, "After Playback Finishes"},
    {75, "Play Next File"},
    {76, "Stop"},
    {77, "Repeat Current File"},
    {78, "Scan Video"},
    {79, "Seek Bar Only"},
    {80, "Video Key Frames"},
    {81, "Version"},
    {83, "Video"},
    {84, "Audio"},
    {85, "Codec : "},
    {86, "Resolution : "},
    {87, "Frame Rate : "},
    {88, "Channels : "},
    {89, "Sampling Rate : "},
};

struct ExpectedCombo {
    const char* name;
    const char* choices; ///< separated by "|"
};

constexpr ExpectedCombo combos[] = {
    {"sound_combo_audiotrack", "1"},
    {"sound_combo_spdif", "On|Off"},
    {"subtitle_combo_display", "Show|Hide"},
    {"subtitle_combo_size", "Large|Medium|Small"},
    {"subtitle_combo_color", "White|Gray|Sky Blue|Green|Orange|Violet|Deep Pink"},
    {"subtitle_combo_pos", "High|Middle|Low"},
    {"subtitle_combo_track", "1"},
    {"display_combo_menutime", "Always|3 seconds|5 seconds|10 seconds"},
    {"display_combo_transparancy", "30 Percent|50 Percent|70 Percent|100 Percent"},
    {"display_combo_aspect_ratio", "Full Screen|Original"},
    {"display_combo_info", "Show|Hide"},
    {"display_combo_privacy_mode", "On|Off"},
    {"playback_combo_seektime", "10 seconds|15 seconds|20 seconds|30 seconds|1 minute"},
    {"playback_combo_playwithspeed", "Show|Hide"},
    {"playback_combo_repeat_mode", "Show|Hide"},
    {"playback_combo_bookmark", "Show|Hide"},
    {"playback_combo_next_action", "Play Next File|Repeat Current File|Stop"},
    {"playback_combo_trickmode", "Seek Bar Only|Video Key Frames"},
};

/// A getter under its name, its value as a number.
struct Getter {
    const char* name;
    int (*read)(const SettingWidget&);
};

int number(QColor color)
{
    return static_cast<int>(color.rgb() & 0xffffffU);
}

constexpr Getter getters[] = {
    {"get_trick_mode", [](const SettingWidget& s) { return static_cast<int>(s.get_trick_mode()); }},
    {"get_after_eos", [](const SettingWidget& s) { return static_cast<int>(s.get_after_eos()); }},
    {"get_repeatab_enabled", [](const SettingWidget& s) { return static_cast<int>(s.get_repeatab_enabled()); }},
    {"get_bookmark_enabled", [](const SettingWidget& s) { return static_cast<int>(s.get_bookmark_enabled()); }},
    {"get_speed_enabled", [](const SettingWidget& s) { return static_cast<int>(s.get_speed_enabled()); }},
    {"get_info_on", [](const SettingWidget& s) { return static_cast<int>(s.get_info_on()); }},
    {"get_subtitle_on", [](const SettingWidget& s) { return static_cast<int>(s.get_subtitle_on()); }},
    {"get_privacy_on", [](const SettingWidget& s) { return static_cast<int>(s.get_privacy_on()); }},
    {"get_spdif_enabled", [](const SettingWidget& s) { return static_cast<int>(s.get_spdif_enabled()); }},
    {"get_skip_time", [](const SettingWidget& s) { return s.get_skip_time(); }},
    {"get_aspect_ratio", [](const SettingWidget& s) { return s.get_aspect_ratio(); }},
    {"get_transparency", [](const SettingWidget& s) { return static_cast<int>(s.get_transparency()); }},
    {"get_menu_timeout", [](const SettingWidget& s) { return s.get_menu_timeout(); }},
    {"get_subtitle_location", [](const SettingWidget& s) { return s.get_subtitle_location(); }},
    {"get_subtitle_size", [](const SettingWidget& s) { return static_cast<int>(s.get_subtitle_size()); }},
    {"get_subtitle_color", [](const SettingWidget& s) { return number(s.get_subtitle_color()); }},
};

int read(const SettingWidget& settings, const QString& getter)
{
    for (const Getter& row : getters) {
        if (getter == QLatin1String(row.name))
            return row.read(settings);
    }
    qFatal("No getter %s.", qPrintable(getter));
}

struct ExpectedValue {
    const char* getter;
    const char* combo;
    const char* choice; ///< null: a text that the player does not know
    int value;
};

constexpr ExpectedValue values[] = {
    {"get_trick_mode", "playback_combo_trickmode", "Seek Bar Only", 0},
    {"get_trick_mode", "playback_combo_trickmode", "Video Key Frames", 1},
    {"get_trick_mode", "playback_combo_trickmode", nullptr, 0},
    {"get_after_eos", "playback_combo_next_action", "Stop", 0},
    {"get_after_eos", "playback_combo_next_action", "Play Next File", 1},
    {"get_after_eos", "playback_combo_next_action", "Repeat Current File", 2},
    {"get_after_eos", "playback_combo_next_action", nullptr, 1},
    {"get_repeatab_enabled", "playback_combo_repeat_mode", "Show", 1},
    {"get_repeatab_enabled", "playback_combo_repeat_mode", "Hide", 0},
    {"get_repeatab_enabled", "playback_combo_repeat_mode", nullptr, 0},
    {"get_bookmark_enabled", "playback_combo_bookmark", "Show", 1},
    {"get_bookmark_enabled", "playback_combo_bookmark", "Hide", 0},
    {"get_bookmark_enabled", "playback_combo_bookmark", nullptr, 0},
    {"get_speed_enabled", "playback_combo_playwithspeed", "Show", 1},
    {"get_speed_enabled", "playback_combo_playwithspeed", "Hide", 0},
    {"get_speed_enabled", "playback_combo_playwithspeed", nullptr, 0},
    {"get_info_on", "display_combo_info", "Show", 1},
    {"get_info_on", "display_combo_info", "Hide", 0},
    {"get_info_on", "display_combo_info", nullptr, 0},
    {"get_subtitle_on", "subtitle_combo_display", "Show", 1},
    {"get_subtitle_on", "subtitle_combo_display", "Hide", 0},
    {"get_subtitle_on", "subtitle_combo_display", nullptr, 1},
    {"get_privacy_on", "display_combo_privacy_mode", "On", 1},
    {"get_privacy_on", "display_combo_privacy_mode", "Off", 0},
    {"get_privacy_on", "display_combo_privacy_mode", nullptr, 0},
    {"get_spdif_enabled", "sound_combo_spdif", "On", 1},
    {"get_spdif_enabled", "sound_combo_spdif", "Off", 0},
    {"get_spdif_enabled", "sound_combo_spdif", nullptr, 0},
    {"get_skip_time", "playback_combo_seektime", "10 seconds", 10000},
    {"get_skip_time", "playback_combo_seektime", "15 seconds", 15000},
    {"get_skip_time", "playback_combo_seektime", "20 seconds", 20000},
    {"get_skip_time", "playback_combo_seektime", "30 seconds", 30000},
    {"get_skip_time", "playback_combo_seektime", "1 minute", 60000},
    {"get_skip_time", "playback_combo_seektime", nullptr, 10},
    {"get_aspect_ratio", "display_combo_aspect_ratio", "Full Screen", 0},
    {"get_aspect_ratio", "display_combo_aspect_ratio", "Original", 1},
    {"get_aspect_ratio", "display_combo_aspect_ratio", nullptr, 1},
    {"get_transparency", "display_combo_transparancy", "30 Percent", 76},
    {"get_transparency", "display_combo_transparancy", "50 Percent", 128},
    {"get_transparency", "display_combo_transparancy", "70 Percent", 179},
    {"get_transparency", "display_combo_transparancy", "100 Percent", 255},
    {"get_transparency", "display_combo_transparancy", nullptr, 128},
    {"get_menu_timeout", "display_combo_menutime", "Always", -1},
    {"get_menu_timeout", "display_combo_menutime", "3 seconds", 3},
    {"get_menu_timeout", "display_combo_menutime", "5 seconds", 5},
    {"get_menu_timeout", "display_combo_menutime", "10 seconds", 10},
    {"get_menu_timeout", "display_combo_menutime", nullptr, 5},
    {"get_subtitle_location", "subtitle_combo_pos", "High", 0},
    {"get_subtitle_location", "subtitle_combo_pos", "Middle", 1},
    {"get_subtitle_location", "subtitle_combo_pos", "Low", 2},
    {"get_subtitle_location", "subtitle_combo_pos", nullptr, 2},
    {"get_subtitle_size", "subtitle_combo_size", "Large", 0},
    {"get_subtitle_size", "subtitle_combo_size", "Medium", 1},
    {"get_subtitle_size", "subtitle_combo_size", "Small", 2},
    {"get_subtitle_size", "subtitle_combo_size", nullptr, 2},
    {"get_subtitle_color", "subtitle_combo_color", "White", 0xffffff},
    {"get_subtitle_color", "subtitle_combo_color", "Gray", (150 << 16) + (150 << 8) + 150},
    {"get_subtitle_color", "subtitle_combo_color", "Sky Blue", (180 << 8) + 255},
    {"get_subtitle_color", "subtitle_combo_color", "Green", 255 << 8},
    {"get_subtitle_color", "subtitle_combo_color", "Orange", (240 << 16) + (120 << 8)},
    {"get_subtitle_color", "subtitle_combo_color", "Violet", (200 << 16) + 240},
    {"get_subtitle_color", "subtitle_combo_color", "Deep Pink", (240 << 16) + 120},
    {"get_subtitle_color", "subtitle_combo_color", nullptr, 0xffffff},
};

void check_defaults(const SettingWidget& settings)
{
    QVERIFY(settings.get_subtitle_on());
    QCOMPARE(settings.get_subtitle_size(), SettingWidget::SubtitleSize::Medium);
    QCOMPARE(settings.get_subtitle_color(), QColor(255, 255, 255));
    QCOMPARE(settings.get_subtitle_location(), 2);
    QCOMPARE(settings.get_time_adjust(), 0);
    QCOMPARE(control<QLineEdit>(settings, "subtitle_edit_sync")->text(), QStringLiteral("0.0seconds"));
    QCOMPARE(settings.get_menu_timeout(), 5);
    QCOMPARE(settings.get_transparency(), 255);
    QCOMPARE(settings.get_aspect_ratio(), 1);
    QVERIFY(settings.get_info_on());
    QVERIFY(!settings.get_privacy_on());
    QCOMPARE(settings.get_skip_time(), 10000);
    QVERIFY(!settings.get_speed_enabled());
    QVERIFY(!settings.get_repeatab_enabled());
    QVERIFY(!settings.get_bookmark_enabled());
    QCOMPARE(settings.get_after_eos(), SettingWidget::AfterEos::PlayNextFile);
    QCOMPARE(settings.get_trick_mode(), SettingWidget::TrickMode::SeekBarOnly);
    QVERIFY(!settings.get_spdif_enabled());
    QCOMPARE(settings.get_audio_track(), 1U);
    QCOMPARE(settings.get_subtitle_track(), 1U);
}

void write_raw(const QByteArray& content)
{
    const QString path = Config::user_path(file_name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

} // namespace

class SettingStoreTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { test_support::reset_directories(); }

    void each_text_has_its_number_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("text");
        for (const ExpectedText& row : texts)
            QTest::addRow("%d", row.key) << row.key << QString::fromLatin1(row.text);
    }

    void each_text_has_its_number()
    {
        QFETCH(int, key);
        QFETCH(QString, text);
        QCOMPARE(make_settings()->get_string(static_cast<SettingStrings>(key)), text);
    }

    void numbers_without_a_text_stay_free()
    {
        const auto settings = make_settings();
        for (const int key : {27, 48, 49, 90, -1})
            QVERIFY2(settings->get_string(static_cast<SettingStrings>(key)).isNull(), qPrintable(QString::number(key)));
        QCOMPARE(std::size(setting_tables::texts), std::size(texts) + 1);
        QVERIFY(!settings->get_string(SettingStrings::Notice).isEmpty());
    }

    void each_combo_box_offers_its_choices_in_order_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("choices");
        for (const ExpectedCombo& row : combos)
            QTest::addRow("%s", row.name)
                << QString::fromLatin1(row.name) << QString::fromLatin1(row.choices).split(QLatin1Char('|'));
    }

    void each_combo_box_offers_its_choices_in_order()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, choices);
        const auto settings = make_settings();
        const auto* combo = control<QComboBox>(*settings, name.toLatin1().constData());
        QStringList offered;
        for (int index = 0; index < combo->count(); ++index)
            offered.append(combo->itemText(index));
        QCOMPARE(offered, choices);
    }

    void a_fresh_device_has_the_defaults()
    {
        const auto settings = make_settings();
        check_defaults(*settings);
        QCOMPARE(settings->get_red_value(), 50);
        QCOMPARE(settings->get_green_value(), 50);
        QCOMPARE(settings->get_blue_value(), 50);
        QCOMPARE(settings->get_volume(), 20);
        QVERIFY2(!QFile::exists(Config::user_path(file_name)), "reading the settings writes no file");
    }

    void each_choice_has_its_value_data()
    {
        QTest::addColumn<QString>("getter");
        QTest::addColumn<QString>("combo");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<int>("value");
        for (const ExpectedValue& row : values) {
            QTest::addRow("%s %s", row.getter, row.choice == nullptr ? "unknown" : row.choice)
                << QString::fromLatin1(row.getter) << QString::fromLatin1(row.combo)
                << (row.choice == nullptr ? QString() : QString::fromLatin1(row.choice)) << row.value;
        }
    }

    void each_choice_has_its_value()
    {
        QFETCH(QString, getter);
        QFETCH(QString, combo);
        QFETCH(QString, choice);
        QFETCH(int, value);
        const auto settings = make_settings();
        const QByteArray name = combo.toLatin1();
        if (choice.isNull()) {
            choice = QStringLiteral("Sideways");
            control<QComboBox>(*settings, name.constData())->addItem(choice);
            const QString warning = QStringLiteral("tavel_setting_widget, %1: Unknown selection: Sideways").arg(getter);
            QTest::ignoreMessage(QtWarningMsg, qPrintable(warning));
        }
        choose(*settings, name.constData(), choice);
        QCOMPARE(read(*settings, getter), value);
    }

    void a_missing_key_has_its_default_data() { add_file_rows(); }

    void a_missing_key_has_its_default()
    {
        QFETCH(int, row);
        const ExpectedRow& expected = file_rows[row];
        // The file is there with every other key.
        for (const ExpectedRow& other : file_rows) {
            if (&other != &expected)
                store(other.group, other.key, other.other);
        }
        const auto settings = make_settings();
        QVERIFY(settings->save_settings());
        for (const ExpectedRow& each : file_rows)
            QCOMPARE(stored(each.group, each.key), &each == &expected ? each.standard : each.other);
    }

    void each_key_is_read_and_written_in_its_place_data() { add_file_rows(); }

    void each_key_is_read_and_written_in_its_place()
    {
        QFETCH(int, row);
        const ExpectedRow& expected = file_rows[row];
        store(expected.group, expected.key, expected.other);
        const auto settings = make_settings();
        if (expected.combo != nullptr)
            QCOMPARE(control<QComboBox>(*settings, expected.combo)->currentIndex(), expected.other);
        QFile::remove(Config::user_path(file_name));
        QVERIFY(settings->save_settings());
        for (const ExpectedRow& each : file_rows)
            QCOMPARE(stored(each.group, each.key), &each == &expected ? each.other : each.standard);
    }

    void colours_and_volume_come_from_the_file()
    {
        store("video", "red", 0);
        store("video", "green", 100);
        store("video", "blue", 73);
        store("audio", "volume", 33);
        const auto settings = make_settings();
        QCOMPARE(settings->get_red_value(), 0);
        QCOMPARE(settings->get_green_value(), 100);
        QCOMPARE(settings->get_blue_value(), 73);
        QCOMPARE(control<QLabel>(*settings, "video_label_red_precent")->text(), QStringLiteral("0 %"));
        QCOMPARE(control<QLabel>(*settings, "video_label_green_percent")->text(), QStringLiteral("100 %"));
        QCOMPARE(control<QLabel>(*settings, "video_label_blue_percent")->text(), QStringLiteral("73 %"));
        QCOMPARE(settings->get_volume(), 33);
    }

    void after_playback_stored_as_1_repeats_the_file()
    {
        store("playback", "next_action", 1);
        const auto settings = make_settings();
        QCOMPARE(control<QComboBox>(*settings, "playback_combo_next_action")->currentText(),
                 QStringLiteral("Repeat Current File"));
        QCOMPARE(settings->get_after_eos(), SettingWidget::AfterEos::RepeatCurrentFile);
    }

    void the_volume_survives_a_restart()
    {
        {
            const auto settings = make_settings();
            settings->set_volume(12);
            QVERIFY(settings->save_settings());
        }
        QCOMPARE(make_settings()->get_volume(), 12);
    }

    void saving_says_so_and_brings_the_disk_up_to_date()
    {
        const auto settings = make_settings();
        const ShellRecorder shell;
        QTest::ignoreMessage(QtWarningMsg, "Tavel Video: saving settings\n");
        QVERIFY(settings->save_settings());
        QCOMPARE(shell.commands, QList<QByteArray>{"sync"});
    }

    void a_file_that_cannot_be_written_is_an_error()
    {
        const auto settings = make_settings();
        QVERIFY(QDir().mkpath(Config::user_path(file_name) + QStringLiteral("/in the way")));
        const ShellRecorder shell;
        PrintedLines printed;
        const bool saved = settings->save_settings();
        const QList<QByteArray> lines = printed.lines();
        QVERIFY(!saved);
        QCOMPARE(lines.count("Tavel Video: save file create failed!!"), 1);
        QVERIFY(shell.commands.isEmpty());
    }

    void the_file_keeps_groups_and_keys_in_their_order()
    {
        QVERIFY(make_settings()->save_settings());
        QFile file(Config::user_path(file_name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QStringList written;
        QString group;
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray& line : lines) {
            const QString text = QString::fromLatin1(line).trimmed();
            if (text.startsWith(QLatin1Char('[')))
                group = text.mid(1, text.size() - 2);
            else if (text.contains(QLatin1Char('=')))
                written.append(group + QLatin1Char('/') + text.section(QLatin1Char('='), 0, 0).trimmed());
        }
        QStringList expected;
        for (const ExpectedRow& row : file_rows)
            expected.append(QLatin1String(row.group) + QLatin1Char('/') + QLatin1String(row.key));
        QCOMPARE(written, expected);
    }

    void an_index_out_of_range_leaves_the_choice_as_it_is_data() { add_file_rows(); }

    void an_index_out_of_range_leaves_the_choice_as_it_is()
    {
        QFETCH(int, row);
        const ExpectedRow& expected = file_rows[row];
        if (expected.combo == nullptr)
            return;
        const auto settings = make_settings();
        auto* combo = control<QComboBox>(*settings, expected.combo);
        combo->setCurrentIndex(expected.other);
        for (const int index : {combo->count(), 1000, -1, std::numeric_limits<int>::min()}) {
            store(expected.group, expected.key, index);
            QVERIFY(settings->load_settings());
            QCOMPARE(combo->currentIndex(), expected.other);
        }
    }

    void a_file_from_a_bad_day_does_no_harm_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("zero bytes") << QByteArray(4096, '\0');
        QTest::newRow("wrong types") << QByteArray("[video]\nred = red\n[display]\nmenutime = soon\ninfo = \n"
                                                   "[playback]\nskiptime = 1.5\nnext_action = true\n");
        QTest::newRow("numbers beyond counting")
            << QByteArray("[display]\nmenutime = 99999999999999999999\ntransparency = -99999999999\n"
                          "[playback]\nskiptime = 2147483647\ntrickmode = -2147483648\n[audio]\nspdif = 77\n");
        QTest::newRow("another program's file") << QByteArray("<?xml version=\"1.0\"?>\n<plist><dict/></plist>\n");
        QTest::newRow("a group cut off") << QByteArray("[display]\nmenutime = 2\ntranspar");
        QTest::newRow("brackets without end") << QByteArray("[display\n[[[\n]\n= = =\n");
    }

    void a_file_from_a_bad_day_does_no_harm()
    {
        QFETCH(QByteArray, content);
        write_raw(content);
        const auto settings = make_settings();
        check_defaults(*settings);
        settings->close();
        for (const ExpectedRow& row : file_rows)
            QVERIFY2(stored(row.group, row.key) != -99, row.key);
        check_defaults(*make_settings());
    }

    void values_without_a_list_are_kept_in_bounds()
    {
        store("video", "red", 2147483647);
        store("video", "green", -5);
        store("audio", "volume", 100000);
        store("subtitle", "adjust", std::numeric_limits<int>::max());
        {
            const auto settings = make_settings();
            QCOMPARE(settings->get_red_value(), 100);
            QCOMPARE(settings->get_green_value(), 0);
            QCOMPARE(settings->get_volume(), 40);
            QVERIFY(settings->get_time_adjust() > 0);
        }
        store("audio", "volume", -1);
        store("subtitle", "adjust", std::numeric_limits<int>::min());
        const auto settings = make_settings();
        QCOMPARE(settings->get_volume(), 0);
        QVERIFY(settings->get_time_adjust() < 0);
    }

    // Subtitle shift

    void a_shift_has_its_text_data()
    {
        QTest::addColumn<int>("tenths");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << 0 << "0.0";
        QTest::newRow("half a second later") << 5 << "+0.5";
        QTest::newRow("a second later") << 10 << "+1.0";
        QTest::newRow("more") << 15 << "+1.5";
        QTest::newRow("half a second earlier") << -5 << "-0.5";
        QTest::newRow("a second earlier") << -10 << "-1.0";
        QTest::newRow("more earlier") << -15 << "-1.5";
        QTest::newRow("minutes") << -1205 << "-120.5";
    }

    void a_shift_has_its_text()
    {
        QFETCH(int, tenths);
        QFETCH(QString, text);
        const auto settings = make_settings();
        QCOMPARE(settings->map_value_to_string(tenths), text);
        QCOMPARE(settings->map_string_to_value(text), tenths);
        QCOMPARE(settings->map_string_to_value(text + QStringLiteral("seconds")), tenths);
    }

    void a_shift_off_the_steps_loses_its_sign_below_a_second()
    {
        const auto settings = make_settings();
        QCOMPARE(settings->map_value_to_string(-3), QStringLiteral("0.3"));
        QCOMPARE(settings->map_value_to_string(-9), QStringLiteral("0.9"));
        QCOMPARE(settings->map_value_to_string(3), QStringLiteral("+0.3"));
    }

    void an_unreadable_shift_is_none_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QString();
        QTest::newRow("letters") << QStringLiteral("later");
        QTest::newRow("only the word") << QStringLiteral("seconds");
        QTest::newRow("word first") << QStringLiteral("seconds1.5");
        QTest::newRow("not a number") << QStringLiteral("nan");
        QTest::newRow("infinite") << QStringLiteral("infseconds");
    }

    void an_unreadable_shift_is_none()
    {
        QFETCH(QString, text);
        QCOMPARE(make_settings()->map_string_to_value(text), 0);
    }

    void five_presses_back_shift_by_two_and_a_half_seconds()
    {
        const auto settings = make_settings();
        const auto* field = control<QLineEdit>(*settings, "subtitle_edit_sync");
        for (const char* shown : {"-0.5", "-1.0", "-1.5", "-2.0", "-2.5"}) {
            QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_back"), Qt::LeftButton);
            QCOMPARE(field->text(), QLatin1String(shown) + QStringLiteral("seconds"));
        }
        QCOMPARE(settings->get_time_adjust(), -2500);
    }

    void presses_forward_lead_through_zero_to_later()
    {
        store("subtitle", "adjust", -5);
        const auto settings = make_settings();
        const auto* field = control<QLineEdit>(*settings, "subtitle_edit_sync");
        QCOMPARE(field->text(), QStringLiteral("-0.5seconds"));
        for (const char* shown : {"0.0", "+0.5", "+1.0"}) {
            QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_forward"), Qt::LeftButton);
            QCOMPARE(field->text(), QLatin1String(shown) + QStringLiteral("seconds"));
        }
        QCOMPARE(settings->get_time_adjust(), 1000);
    }

    void the_shift_in_the_field_is_what_is_stored()
    {
        const auto settings = make_settings();
        control<QLineEdit>(*settings, "subtitle_edit_sync")->setText(QStringLiteral("+1.5seconds"));
        QVERIFY(settings->save_settings());
        QCOMPARE(stored("subtitle", "adjust"), 15);
    }

    // Resets

    void the_sound_reset_brings_back_its_defaults()
    {
        const auto settings = make_settings();
        choose(*settings, "sound_combo_spdif", QStringLiteral("On"));
        QTest::mouseClick(control<QPushButton>(*settings, "sound_button_alldefault"), Qt::LeftButton);
        check_defaults(*settings);
    }

    void the_subtitle_reset_brings_back_its_defaults()
    {
        const auto settings = make_settings();
        choose(*settings, "subtitle_combo_display", QStringLiteral("Hide"));
        choose(*settings, "subtitle_combo_size", QStringLiteral("Large"));
        choose(*settings, "subtitle_combo_color", QStringLiteral("Violet"));
        choose(*settings, "subtitle_combo_pos", QStringLiteral("High"));
        settings->subtitle_adjust_back();
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_alldefault"), Qt::LeftButton);
        check_defaults(*settings);
    }

    void the_display_reset_brings_back_its_defaults()
    {
        const auto settings = make_settings();
        choose(*settings, "display_combo_menutime", QStringLiteral("Always"));
        choose(*settings, "display_combo_transparancy", QStringLiteral("30 Percent"));
        choose(*settings, "display_combo_aspect_ratio", QStringLiteral("Full Screen"));
        choose(*settings, "display_combo_info", QStringLiteral("Hide"));
        choose(*settings, "display_combo_privacy_mode", QStringLiteral("On"));
        QTest::mouseClick(control<QPushButton>(*settings, "display_button_alldefault"), Qt::LeftButton);
        check_defaults(*settings);
    }

    void the_playback_reset_brings_back_its_defaults()
    {
        const auto settings = make_settings();
        choose(*settings, "playback_combo_seektime", QStringLiteral("1 minute"));
        choose(*settings, "playback_combo_playwithspeed", QStringLiteral("Show"));
        choose(*settings, "playback_combo_repeat_mode", QStringLiteral("Show"));
        choose(*settings, "playback_combo_bookmark", QStringLiteral("Show"));
        choose(*settings, "playback_combo_next_action", QStringLiteral("Stop"));
        choose(*settings, "playback_combo_trickmode", QStringLiteral("Video Key Frames"));
        QTest::mouseClick(control<QPushButton>(*settings, "playback_button_alldefault"), Qt::LeftButton);
        check_defaults(*settings);
    }

    void each_colour_has_a_reset_of_its_own_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("slider");
        for (const char* color : {"red", "green", "blue"})
            QTest::newRow(color) << QStringLiteral("video_button_%1_default").arg(QLatin1String(color))
                                 << QStringLiteral("color_slider_%1").arg(QLatin1String(color));
    }

    void each_colour_has_a_reset_of_its_own()
    {
        QFETCH(QString, button);
        QFETCH(QString, slider);
        const auto settings = make_settings();
        for (const char* name : {"color_slider_red", "color_slider_green", "color_slider_blue"})
            control<QSlider>(*settings, name)->setValue(20);
        QTest::mouseClick(control<QPushButton>(*settings, button.toLatin1().constData()), Qt::LeftButton);
        for (const char* name : {"color_slider_red", "color_slider_green", "color_slider_blue"})
            QCOMPARE(control<QSlider>(*settings, name)->value(), slider == QLatin1String(name) ? 50 : 20);
    }

    void the_video_reset_brings_back_all_colours()
    {
        const auto settings = make_settings();
        for (const char* name : {"color_slider_red", "color_slider_green", "color_slider_blue"})
            control<QSlider>(*settings, name)->setValue(90);
        QTest::mouseClick(control<QPushButton>(*settings, "video_button_alldefault"), Qt::LeftButton);
        QCOMPARE(settings->get_red_value(), 50);
        QCOMPARE(settings->get_green_value(), 50);
        QCOMPARE(settings->get_blue_value(), 50);
    }

    void a_reset_of_everything_spares_the_colours()
    {
        for (const ExpectedRow& row : file_rows)
            store(row.group, row.key, row.other);
        const auto settings = make_settings();
        settings->load_default_settings();
        check_defaults(*settings);
        QCOMPARE(settings->get_red_value(), 31);
        QCOMPARE(settings->get_green_value(), 32);
        QCOMPARE(settings->get_blue_value(), 33);
    }

private:
    static void add_file_rows()
    {
        QTest::addColumn<int>("row");
        int index = 0;
        for (const ExpectedRow& row : file_rows)
            QTest::addRow("%s/%s", row.group, row.key) << index++;
    }
};

TAVEL_TEST_MAIN(SettingStoreTest)
#include "tst_setting_store.moc"
