#include "config.h"
#include "rounds.h"
#include "test_main.h"

#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/// Settings files: what is written comes back, and no accident costs more than what was being written.
class TestConfig : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir directory_;

    QString fresh_path()
    {
        static int number = 0;
        return directory_.filePath(QStringLiteral("file%1.conf").arg(++number));
    }

    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    static void write_content(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    // Every unit of UTF-16, halves of surrogate pairs too, in a fixed but mixed order.
    static QString all_units()
    {
        std::vector<char16_t> units;
        for (int unit = 0; unit < 0x10000; ++unit)
            units.push_back(static_cast<char16_t>(unit));
        std::shuffle(units.begin(), units.end(), std::mt19937(949));
        return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
    }

private slots:
    // First: a thousand forks are slow once the others have made the process large.
    void a_writer_killed_a_thousand_times_leaves_old_or_new_content();
    void a_missing_file_gives_the_fallbacks();
    void numbers_texts_and_yes_or_no_come_back();
    void any_text_comes_back_data();
    void any_text_comes_back();
    void every_unit_of_unicode_comes_back_as_text_key_and_group();
    void any_list_comes_back_data();
    void any_list_comes_back();
    void the_file_can_be_read_and_written_by_hand();
    void comments_and_other_groups_and_their_order_stay();
    void new_keys_stand_in_the_order_of_their_writing();
    void two_objects_one_after_the_other_both_survive();
    void an_object_that_was_open_all_the_time_keeps_what_another_wrote();
    void nothing_is_written_when_nothing_changed();
    void a_file_is_written_anew_on_request_though_nothing_changed();
    void a_removed_key_is_gone();
    void user_files_live_below_the_configuration_home();
    void missing_directories_are_made();
    void a_link_stays_a_link_and_the_mode_is_kept();
    void damaged_files_are_read_as_far_as_they_make_sense_data();
    void damaged_files_are_read_as_far_as_they_make_sense();
    void random_bytes_do_no_harm();
    void a_truncated_file_gives_what_is_left_at_every_length();
    void a_file_of_ten_megabytes_is_read_and_written();
    void a_file_that_is_a_directory_is_reported_once_and_stays();
    void a_pipe_or_a_device_is_neither_waited_for_nor_replaced();
    void a_directory_that_cannot_be_made_is_reported_once();
    void a_full_disk_leaves_the_old_file_and_is_reported_once();
    void a_failure_is_news_again_after_a_success();
    void a_file_left_by_a_killed_writer_is_used_up();
    void two_programs_that_write_at_once_lose_nothing();
};

void TestConfig::a_missing_file_gives_the_fallbacks()
{
    Config config(fresh_path(), Config::File);
    config.setGroup(QStringLiteral("Playlist"));
    QVERIFY(!config.hasKey(QStringLiteral("now_playing")));
    QCOMPARE(config.readEntry(QStringLiteral("name")), QString());
    QCOMPARE(config.readEntry(QStringLiteral("name"), QStringLiteral("none")), QStringLiteral("none"));
    QCOMPARE(config.readNumEntry(QStringLiteral("now_playing")), -1);
    QCOMPARE(config.readNumEntry(QStringLiteral("now_playing"), 7), 7);
    QCOMPARE(config.readBoolEntry(QStringLiteral("spdif")), false);
    QCOMPARE(config.readBoolEntry(QStringLiteral("spdif"), true), true);
    QCOMPARE(config.readListEntry(QStringLiteral("files")), QStringList());
}

void TestConfig::numbers_texts_and_yes_or_no_come_back()
{
    const QString path = fresh_path();
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        config.writeEntry(QStringLiteral("red"), 50);
        config.writeEntry(QStringLiteral("least"), std::numeric_limits<int>::min());
        config.writeEntry(QStringLiteral("most"), std::numeric_limits<int>::max());
        config.writeEntry(QStringLiteral("on"), true);
        config.writeEntry(QStringLiteral("off"), false);
        config.writeEntry(QStringLiteral("name"), "영화");
        QCOMPARE(config.readNumEntry(QStringLiteral("red")), 50);
    }
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("video"));
    QCOMPARE(config.readNumEntry(QStringLiteral("red")), 50);
    QCOMPARE(config.readNumEntry(QStringLiteral("least")), std::numeric_limits<int>::min());
    QCOMPARE(config.readNumEntry(QStringLiteral("most")), std::numeric_limits<int>::max());
    QCOMPARE(config.readBoolEntry(QStringLiteral("on")), true);
    QCOMPARE(config.readBoolEntry(QStringLiteral("off"), true), false);
    QCOMPARE(config.readEntry(QStringLiteral("name")), QStringLiteral("영화"));
    QCOMPARE(config.readNumEntry(QStringLiteral("name"), 3), 3);
    QCOMPARE(config.readBoolEntry(QStringLiteral("name"), true), true);
}

void TestConfig::any_text_comes_back_data()
{
    QTest::addColumn<QString>("text");
    const char* const texts[] = {"",
                                 " ",
                                 "  both ends  ",
                                 "\ttab\t",
                                 "a = b",
                                 "[group]",
                                 "]",
                                 "line\nbreak",
                                 "\n",
                                 "\r\n",
                                 "end\r",
                                 "back\\slash",
                                 "\\n",
                                 "\\",
                                 "\\\\ ",
                                 "\\s\\e\\u0041",
                                 "# no comment",
                                 "; neither",
                                 "a,b,,c,",
                                 "'\"`$(rm)",
                                 "한글 \xF0\x9F\x8E\xAC العربية",
                                 "\xC2\xA0nbsp\xC2\xA0",
                                 "\xE2\x80\xA8line separator\xE2\x80\xA9",
                                 "\xEF\xBB\xBFmark"};
    for (const char* text : texts)
        QTest::newRow(text) << QString::fromUtf8(text);
    QTest::newRow("zero byte") << QStringLiteral("a%1b").arg(QChar(u'\0'));
    QTest::newRow("zero byte alone") << QString(QChar(u'\0'));
    QTest::newRow("half a pair") << QString(QChar(0xD83D));
    QTest::newRow("halves in the wrong order") << QString(QChar(0xDE00)) + QChar(0xD83D);
}

void TestConfig::any_text_comes_back()
{
    QFETCH(QString, text);
    const QString path = fresh_path();
    {
        Config config(path, Config::File);
        config.setGroup(text);
        config.writeEntry(QStringLiteral("value"), text);
        config.writeEntry(text, 5);
        config.writeEntry(QStringLiteral("list"), QStringList{text});
        config.setGroup(QStringLiteral("other"));
        config.writeEntry(QStringLiteral("value"), 6);
    }
    Config config(path, Config::File);
    config.setGroup(text);
    QCOMPARE(config.readEntry(QStringLiteral("value"), QStringLiteral("fallback")), text);
    QCOMPARE(config.readNumEntry(text), 5);
    QCOMPARE(config.readListEntry(QStringLiteral("list")), QStringList{text});
    config.setGroup(QStringLiteral("other"));
    QCOMPARE(config.readNumEntry(QStringLiteral("value")), 6);
}

void TestConfig::every_unit_of_unicode_comes_back_as_text_key_and_group()
{
    const QString path = fresh_path();
    const QString text = all_units();
    {
        Config config(path, Config::File);
        config.setGroup(text);
        config.writeEntry(text, text);
        config.writeEntry(QStringLiteral("list"), QStringList{text, QString(), text});
    }
    Config config(path, Config::File);
    config.setGroup(text);
    QVERIFY(config.readEntry(text) == text);
    const QStringList expected{text, QString(), text};
    QVERIFY(config.readListEntry(QStringLiteral("list")) == expected);
}

void TestConfig::any_list_comes_back_data()
{
    QTest::addColumn<QStringList>("list");
    QTest::newRow("empty") << QStringList();
    QTest::newRow("one empty element") << QStringList{QString()};
    QTest::newRow("three empty elements") << QStringList{QString(), QString(), QString()};
    QTest::newRow("empty first") << QStringList{QString(), QStringLiteral("a")};
    QTest::newRow("empty last") << QStringList{QStringLiteral("a"), QString()};
    QTest::newRow("commas") << QStringList{QStringLiteral(","), QStringLiteral("a,b"), QStringLiteral(",,")};
    QTest::newRow("backslash before comma")
        << QStringList{QStringLiteral("a\\"), QStringLiteral("\\,"), QStringLiteral("\\")};
    QTest::newRow("blanks") << QStringList{QStringLiteral(" a "), QStringLiteral("  "), QStringLiteral(" ")};
    QTest::newRow("line breaks") << QStringList{QStringLiteral("a\nb"), QStringLiteral("\n"), QStringLiteral("c\r")};
    QTest::newRow("the mark of emptiness") << QStringList{QStringLiteral("\\e"), QString(), QStringLiteral("e")};
    QStringList many;
    for (int i = 0; i < 999; ++i)
        many.append(QStringLiteral("/media/영화 %1/film, the [%2] = %3.avi").arg(i).arg(i * 7).arg(i % 3));
    QTest::newRow("a full playlist") << many;
}

void TestConfig::any_list_comes_back()
{
    QFETCH(QStringList, list);
    const QString path = fresh_path();
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("Playlist"));
        config.writeEntry(QStringLiteral("files"), list);
        config.writeEntry(QStringLiteral("behind"), 1);
    }
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("Playlist"));
    QVERIFY(config.hasKey(QStringLiteral("files")));
    QCOMPARE(config.readListEntry(QStringLiteral("files")), list);
    QCOMPARE(config.readNumEntry(QStringLiteral("behind")), 1);
}

void TestConfig::the_file_can_be_read_and_written_by_hand()
{
    const QString path = fresh_path();
    write_content(path, "top=1\r\n"
                        "\r\n"
                        "[video]\r\n"
                        "  red   =  50  \r\n"
                        "green=40\r\n"
                        "# a remark = not a key\r\n"
                        "[ Sound ]\r\n"
                        "files = /a b.avi , /c.avi,,/d.avi\r\n"
                        "red = 1\r\n"
                        "red = 2");
    Config config(path, Config::File);
    QCOMPARE(config.readNumEntry(QStringLiteral("top")), 1);
    config.setGroup(QStringLiteral("video"));
    QCOMPARE(config.readNumEntry(QStringLiteral("red")), 50);
    QCOMPARE(config.readNumEntry(QStringLiteral("green")), 40);
    QVERIFY(!config.hasKey(QStringLiteral("# a remark")));
    config.setGroup(QStringLiteral(" Sound "));
    const QStringList expected{QStringLiteral("/a b.avi"), QStringLiteral("/c.avi"), QString(),
                               QStringLiteral("/d.avi")};
    QCOMPARE(config.readListEntry(QStringLiteral("files")), expected);
    QCOMPARE(config.readNumEntry(QStringLiteral("red")), 2);
}

void TestConfig::comments_and_other_groups_and_their_order_stay()
{
    const QString path = fresh_path();
    write_content(path, "# mine\nlevel = 3\n\n[b]\nx = 1\n; why\ny = a b\n\n[a]\nz = 2\n");
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("b"));
        config.writeEntry(QStringLiteral("x"), 9);
    }
    QCOMPARE(content(path), QByteArray("# mine\nlevel = 3\n\n[b]\nx = 9\n; why\ny = a b\n\n[a]\nz = 2\n"));
}

void TestConfig::new_keys_stand_in_the_order_of_their_writing()
{
    const QString path = fresh_path();
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        config.writeEntry(QStringLiteral("red"), 1);
        config.writeEntry(QStringLiteral("blue"), 2);
        config.setGroup(QStringLiteral("audio"));
        config.writeEntry(QStringLiteral("track"), 3);
        config.writeEntry(QStringLiteral("spdif"), 4);
        config.setGroup(QStringLiteral("video"));
        config.writeEntry(QStringLiteral("red"), 5);
    }
    QCOMPARE(content(path), QByteArray("[video]\nred = 5\nblue = 2\n\n[audio]\ntrack = 3\nspdif = 4\n"));
}

void TestConfig::two_objects_one_after_the_other_both_survive()
{
    const QString path = fresh_path();
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("Playlist"));
        config.writeEntry(QStringLiteral("now_playing"), 4);
    }
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("ENTRY"));
        config.writeEntry(QStringLiteral("entry"), 1);
    }
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("Playlist"));
    QCOMPARE(config.readNumEntry(QStringLiteral("now_playing")), 4);
    config.setGroup(QStringLiteral("ENTRY"));
    QCOMPARE(config.readNumEntry(QStringLiteral("entry")), 1);
}

void TestConfig::an_object_that_was_open_all_the_time_keeps_what_another_wrote()
{
    const QString path = fresh_path();
    {
        Config long_lived(path, Config::File);
        long_lived.setGroup(QStringLiteral("Playlist"));
        long_lived.writeEntry(QStringLiteral("now_playing"), 4);
        Config other(path, Config::File);
        other.setGroup(QStringLiteral("ENTRY"));
        other.writeEntry(QStringLiteral("entry"), 1);
        QVERIFY(other.write());
        QVERIFY(long_lived.write());
        long_lived.setGroup(QStringLiteral("ENTRY"));
        QCOMPARE(long_lived.readNumEntry(QStringLiteral("entry")), 1);
    }
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("Playlist"));
    QCOMPARE(config.readNumEntry(QStringLiteral("now_playing")), 4);
    config.setGroup(QStringLiteral("ENTRY"));
    QCOMPARE(config.readNumEntry(QStringLiteral("entry")), 1);
}

void TestConfig::nothing_is_written_when_nothing_changed()
{
    const QString path = fresh_path();
    write_content(path, "[video]\nred=50");
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        QCOMPARE(config.readNumEntry(QStringLiteral("red")), 50);
        config.writeEntry(QStringLiteral("red"), 50);
        config.removeEntry(QStringLiteral("blue"));
    }
    QCOMPARE(content(path), QByteArray("[video]\nred=50"));
    const QString never_made = fresh_path();
    {
        const Config config(never_made, Config::File);
    }
    QVERIFY(!QFile::exists(never_made));
}

void TestConfig::a_file_is_written_anew_on_request_though_nothing_changed()
{
    const QString path = fresh_path();
    const QByteArray before = "[video]\nred = 50\n";
    write_content(path, before);
    const auto file_number = [&] {
        struct stat status = {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
    };
    const auto first = file_number();
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        config.writeEntry(QStringLiteral("red"), 50);
        QVERIFY(config.write());
        QCOMPARE(file_number(), first);
        QVERIFY(config.rewrite());
    }
    // A new file in the old one's place.
    QVERIFY(file_number() != first);
    QCOMPARE(content(path), before);
}

void TestConfig::a_removed_key_is_gone()
{
    const QString path = fresh_path();
    write_content(path, "[video]\nred = 1\n# remark\ngreen = 2\nblue = 3\n");
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        config.removeEntry(QStringLiteral("red"));
        QVERIFY(!config.hasKey(QStringLiteral("red")));
        QCOMPARE(config.readNumEntry(QStringLiteral("blue")), 3);
        config.writeEntry(QStringLiteral("green"), 4);
    }
    QCOMPARE(content(path), QByteArray("[video]\n# remark\ngreen = 4\nblue = 3\n"));
}

void TestConfig::user_files_live_below_the_configuration_home()
{
    const QString home = qEnvironmentVariable("XDG_CONFIG_HOME");
    QCOMPARE(Config(QStringLiteral("tavel_video_setting.cfg")).path(),
             home + QStringLiteral("/tavel_video/tavel_video_setting.cfg"));
    QCOMPARE(Config(QStringLiteral("qpe"), Config::User).path(), home + QStringLiteral("/tavel_video/qpe.conf"));
    QCOMPARE(Config::user_path(QStringLiteral("Sound")), home + QStringLiteral("/tavel_video/Sound.conf"));
}

void TestConfig::missing_directories_are_made()
{
    const QString path = directory_.filePath(QStringLiteral("some/where/else.conf"));
    {
        Config config(path, Config::File);
        config.writeEntry(QStringLiteral("key"), 1);
    }
    QCOMPARE(Config(path, Config::File).readNumEntry(QStringLiteral("key")), 1);
}

void TestConfig::a_link_stays_a_link_and_the_mode_is_kept()
{
    const QString target = fresh_path();
    const QString link = fresh_path();
    write_content(target, "key = 1\n");
    QVERIFY(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner));
    QVERIFY(QFile::link(target, link));
    {
        Config config(link, Config::File);
        config.writeEntry(QStringLiteral("key"), 2);
    }
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(content(target), QByteArray("key = 2\n"));
    struct stat status {
    };
    QCOMPARE(::stat(QFile::encodeName(target).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0600U);
}

void TestConfig::damaged_files_are_read_as_far_as_they_make_sense_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("red");
    QTest::addColumn<bool>("damaged");
    QTest::newRow("empty") << QByteArray() << -1 << false;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF[video]\nred = 5\n") << 5 << false;
    QTest::newRow("line without equals sign") << QByteArray("[video]\nnonsense\nred = 5\n") << 5 << true;
    QTest::newRow("line without key") << QByteArray("[video]\n= 3\nred = 5\n") << 5 << true;
    QTest::newRow("header without end") << QByteArray("[video\nred = 5\n") << 5 << true;
    QTest::newRow("cut in the value") << QByteArray("[video]\nred = 5") << 5 << false;
    QTest::newRow("cut in an escape") << QByteArray("[video]\nred = 5\nname = a\\") << 5 << false;
    QTest::newRow("number escape cut off") << QByteArray("[video]\nred = 5\nname = \\u12") << 5 << false;
    QTest::newRow("not a number") << QByteArray("[video]\nred = 5x\n") << -1 << false;
    QTest::newRow("too large a number") << QByteArray("[video]\nred = 4294967296\n") << -1 << false;
    QTest::newRow("not UTF-8") << QByteArray("[video]\n\xFF\xFE = \x80\nred = 5\n") << 5 << false;
    QTest::newRow("zero bytes") << QByteArray("[video]\n\0\0\0\nred = 5\n", 20) << 5 << true;
    QTest::newRow("the group twice") << QByteArray("[video]\nred = 4\n[x]\nred = 1\n[video]\nred = 5\n") << 5 << false;
}

void TestConfig::damaged_files_are_read_as_far_as_they_make_sense()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, red);
    QFETCH(bool, damaged);
    const QString path = fresh_path();
    write_content(path, bytes);
    if (damaged)
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("1 lines make no sense and are left out")));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("video"));
    QCOMPARE(config.readNumEntry(QStringLiteral("red")), red);
    // Said once, however often the file is read.
    Config again(path, Config::File);
}

void TestConfig::random_bytes_do_no_harm()
{
    std::mt19937 random(7);
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const auto loud_again = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    const QString path = fresh_path();
    for (int round = 0; round < test_support::rounds(300); ++round) {
        QByteArray bytes;
        const int size = static_cast<int>(random() % 2000);
        const bool likely = random() % 2 == 0;
        static constexpr char likely_bytes[] = "[]=\\,\n\r \t#ab\\u12\xED\xA0";
        for (int i = 0; i < size; ++i)
            bytes += likely ? likely_bytes[random() % (sizeof likely_bytes - 1)] : static_cast<char>(random());
        write_content(path, bytes);
        {
            Config config(path, Config::File);
            config.readListEntry(QStringLiteral("a"));
            config.writeEntry(QStringLiteral("round"), round);
        }
        Config config(path, Config::File);
        QCOMPARE(config.readNumEntry(QStringLiteral("round")), round);
        // What was read once is stable: a second rewrite changes nothing but the key.
        const QByteArray first = content(path);
        config.writeEntry(QStringLiteral("round"), -5);
        QVERIFY(config.write());
        config.writeEntry(QStringLiteral("round"), round);
        QVERIFY(config.write());
        QCOMPARE(content(path), first);
    }
}

void TestConfig::a_truncated_file_gives_what_is_left_at_every_length()
{
    const QByteArray whole = "[Playlist]\nnow_playing = 3\nfiles = /a.avi,/b.avi\n[ENTRY]\nentry = 1\n";
    QLoggingCategory::setFilterRules(QStringLiteral("*.warning=false"));
    const auto loud_again = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    const QString path = fresh_path();
    for (qsizetype length = 0; length <= whole.size(); ++length) {
        write_content(path, whole.left(length));
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("Playlist"));
        const int now_playing = config.readNumEntry(QStringLiteral("now_playing"));
        QCOMPARE(now_playing, length >= 26 ? 3 : -1);
        for (const QString& file : config.readListEntry(QStringLiteral("files")))
            QVERIFY(QStringLiteral("/a.avi").startsWith(file) || QStringLiteral("/b.avi").startsWith(file));
    }
}

void TestConfig::a_file_of_ten_megabytes_is_read_and_written()
{
    const QString path = fresh_path();
    QByteArray bytes;
    for (int group = 0; bytes.size() < 10 * 1024 * 1024; ++group) {
        bytes += "[group " + QByteArray::number(group) + "]\n";
        for (int key = 0; key < 1000; ++key)
            bytes += "key " + QByteArray::number(key) + " = a value of some length, number " + QByteArray::number(key) +
                     "\n";
    }
    write_content(path, bytes);
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("group 150"));
        QCOMPARE(config.readEntry(QStringLiteral("key 999")), QStringLiteral("a value of some length, number 999"));
        config.writeEntry(QStringLiteral("key 999"), 1);
    }
    Config config(path, Config::File);
    config.setGroup(QStringLiteral("group 150"));
    QCOMPARE(config.readNumEntry(QStringLiteral("key 999")), 1);
    config.setGroup(QStringLiteral("group 149"));
    QCOMPARE(config.readEntry(QStringLiteral("key 0")), QStringLiteral("a value of some length, number 0"));

    // One line of ten megabytes, and ten megabytes without any sense.
    write_content(path, "files = " + QByteArray(10 * 1024 * 1024, ','));
    QCOMPARE(Config(path, Config::File).readListEntry(QStringLiteral("files")).size(), 10 * 1024 * 1024 + 1);
    write_content(path, QByteArray(10 * 1024 * 1024, '\n').replace('\n', "x\n"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("10485760 lines make no sense.*line 1$")));
    QVERIFY(!Config(path, Config::File).hasKey(QStringLiteral("x")));
}

void TestConfig::a_file_that_is_a_directory_is_reported_once_and_stays()
{
    const QString path = fresh_path();
    QVERIFY(QDir().mkpath(path + QStringLiteral("/inside")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be read \\(not a regular file\\)")));
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("cannot be written \\(not a regular file\\)")));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    for (int round = 0; round < 3; ++round) {
        Config config(path, Config::File);
        QCOMPARE(config.readNumEntry(QStringLiteral("key"), 4), 4);
        config.writeEntry(QStringLiteral("key"), round);
        QVERIFY(!config.write());
        QCOMPARE(config.readNumEntry(QStringLiteral("key")), round);
    }
    QVERIFY(QFileInfo(path + QStringLiteral("/inside")).isDir());
}

void TestConfig::a_pipe_or_a_device_is_neither_waited_for_nor_replaced()
{
    const QString path = fresh_path();
    QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const QString link = fresh_path();
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), link));
    for (const QString& name : {path, link}) {
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(QStringLiteral("cannot be read \\(not a regular file\\)")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be written")));
        Config config(name, Config::File);
        config.writeEntry(QStringLiteral("key"), 1);
        QVERIFY(!config.write());
    }
    struct stat status {
    };
    QCOMPARE(::lstat(QFile::encodeName(path).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
    QCOMPARE(::stat("/dev/full", &status), 0);
    QVERIFY(S_ISCHR(status.st_mode));
}

void TestConfig::a_directory_that_cannot_be_made_is_reported_once()
{
    // A file stands where the directory would be; that stops the system administrator too, unlike a mode.
    const QString in_the_way = fresh_path();
    write_content(in_the_way, "x");
    const QString path = in_the_way + QStringLiteral("/setting.cfg");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be read")));
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("cannot be written \\(the directory cannot be made\\)")));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    for (int round = 0; round < 3; ++round) {
        Config config(path, Config::File);
        config.writeEntry(QStringLiteral("key"), round);
    }
    QCOMPARE(content(in_the_way), QByteArray("x"));
}

void TestConfig::a_full_disk_leaves_the_old_file_and_is_reported_once()
{
    const QString path = fresh_path();
    write_content(path, "[video]\nred = 50\n");
    // A limit on the size of files fails the write in the same way as a disk without room.
    struct rlimit old_limit {
    };
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &old_limit), 0);
    const auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old_limit;
    small.rlim_cur = 4096;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be written \\(write: ")));
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
    bool written = false;
    for (int round = 0; round < 3; ++round) {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("video"));
        config.writeEntry(QStringLiteral("name"), QString(100000, u'x'));
        written |= config.write();
    }
    ::setrlimit(RLIMIT_FSIZE, &old_limit);
    std::signal(SIGXFSZ, old_handler);
    QVERIFY(!written);
    QCOMPARE(content(path), QByteArray("[video]\nred = 50\n"));
    // Nothing is left that would take room.
    const QFileInfo info(path);
    QVERIFY(!QFile::exists(info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".new")));
}

void TestConfig::a_failure_is_news_again_after_a_success()
{
    const QString path = fresh_path();
    for (int round = 0; round < 2; ++round) {
        QVERIFY(QDir().mkpath(path));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be read")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("cannot be written")));
        {
            Config config(path, Config::File);
            config.writeEntry(QStringLiteral("key"), 1);
        }
        QVERIFY(QDir().rmdir(path));
        Config config(path, Config::File);
        config.writeEntry(QStringLiteral("key"), 2);
        QVERIFY(config.write());
        QVERIFY(QFile::remove(path));
    }
}

void TestConfig::a_writer_killed_a_thousand_times_leaves_old_or_new_content()
{
    constexpr int kills = test_support::rounds(1000);
    const QString path = fresh_path();
    const auto list_of = [](int generation) {
        QStringList files;
        for (int i = 0; i < 200; ++i)
            files.append(QStringLiteral("/media/%1/film %2.avi").arg(generation).arg(i));
        return files;
    };
    {
        Config config(path, Config::File);
        config.setGroup(QStringLiteral("untouched"));
        config.writeEntry(QStringLiteral("text"), QStringLiteral("stays"));
        config.setGroup(QStringLiteral("Playlist"));
        config.writeEntry(QStringLiteral("generation"), 0);
        config.writeEntry(QStringLiteral("files"), list_of(0));
    }
    std::mt19937 random(1000);
    int least = 0;
    int in_the_middle = 0;
    for (int kill_number = 0; kill_number < kills; ++kill_number) {
        // The child tells what is durable, and writes until it is killed.
        int pipe_ends[2];
        QCOMPARE(::pipe(pipe_ends), 0);
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            for (int generation = least + 1;; ++generation) {
                {
                    Config config(path, Config::File);
                    config.setGroup(QStringLiteral("Playlist"));
                    config.writeEntry(QStringLiteral("generation"), generation);
                    config.writeEntry(QStringLiteral("files"), list_of(generation));
                }
                if (::write(pipe_ends[1], &generation, sizeof generation) != sizeof generation)
                    ::_exit(1);
            }
        }
        ::close(pipe_ends[1]);
        const auto moment = std::chrono::microseconds(random() % test_support::stretched(6000));
        std::this_thread::sleep_for(moment); // the random moment is the point
        ::kill(child, SIGKILL);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        int told = least;
        for (int generation = 0; ::read(pipe_ends[0], &generation, sizeof generation) == sizeof generation;)
            told = generation;
        ::close(pipe_ends[0]);

        Config config(path, Config::File);
        config.setGroup(QStringLiteral("Playlist"));
        const int generation = config.readNumEntry(QStringLiteral("generation"));
        // What was told is there; the one that was being written may be, too.
        QVERIFY2(generation == told || generation == told + 1,
                 qPrintable(QStringLiteral("%1 after %2").arg(generation).arg(told)));
        QVERIFY(config.readListEntry(QStringLiteral("files")) == list_of(generation));
        config.setGroup(QStringLiteral("untouched"));
        QCOMPARE(config.readEntry(QStringLiteral("text")), QStringLiteral("stays"));
        const QFileInfo info(path);
        in_the_middle +=
            QFile::exists(info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".new"));
        least = generation;
    }
    // Otherwise the moments were badly chosen and nothing was shown.
    QVERIFY2(least > kills / 10, qPrintable(QString::number(least)));
    QVERIFY2(in_the_middle > kills / 20, qPrintable(QString::number(in_the_middle)));
}

void TestConfig::a_file_left_by_a_killed_writer_is_used_up()
{
    const QString path = directory_.filePath(QStringLiteral("left.conf"));
    const QString left = directory_.filePath(QStringLiteral(".left.conf.new"));
    write_content(left, QByteArray(100000, 'x'));
    {
        Config config(path, Config::File);
        config.writeEntry(QStringLiteral("key"), 1);
    }
    QCOMPARE(content(path), QByteArray("key = 1\n"));
    QVERIFY(!QFile::exists(left));
}

void TestConfig::two_programs_that_write_at_once_lose_nothing()
{
    constexpr int rounds = 100;
    const QString path = fresh_path();
    const auto write_all = [&](const QString& group) {
        for (int i = 0; i < rounds; ++i) {
            Config config(path, Config::File);
            config.setGroup(group);
            config.writeEntry(QString::number(i), i);
        }
    };
    const pid_t child = ::fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        write_all(QStringLiteral("child"));
        ::_exit(0);
    }
    write_all(QStringLiteral("parent"));
    int status = 1;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QCOMPARE(status, 0);
    Config config(path, Config::File);
    for (const char* group : {"child", "parent"}) {
        config.setGroup(QString::fromLatin1(group));
        for (int i = 0; i < rounds; ++i)
            QCOMPARE(config.readNumEntry(QString::number(i)), i);
    }
}

TAVEL_TEST_MAIN(TestConfig)
#include "tst_config.moc"
