#include "bookmark.h"
#include "player_test.h"
#include "qpe_application.h"
#include "test_main.h"
#include "time_skin.h"

#include <array>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

/// What goes beyond 31 bits, and a library of as many and as long paths as there may be: numbers and memory that a
/// 32-bit processor has less room for.
class LargeSizesTest : public PlayerTest
{
    Q_OBJECT

private slots:
    // ---- the system's types

    void a_file_offset_and_a_time_stamp_have_64_bits()
    {
        QCOMPARE(sizeof(off_t), std::size_t(8));
        QCOMPARE(sizeof(static_cast<struct stat*>(nullptr)->st_size), std::size_t(8));
        QCOMPARE(sizeof(std::time_t), std::size_t(8));
    }

    void a_film_of_the_year_2040_is_a_film()
    {
        const QString file = player->make_files(1).first();
        const QByteArray path = QFile::encodeName(file);
        const QDateTime late(QDate(2040, 2, 29), QTime(12, 0), Qt::UTC);
        // The toolkit itself sets no such date where it was built with 32 bits for the time.
        timespec stamp = {};
        stamp.tv_sec = late.toSecsSinceEpoch();
        const std::array stamps{stamp, stamp};
        QCOMPARE(::utimensat(AT_FDCWD, path.constData(), stamps.data(), 0), 0);
        struct stat info = {};
        QCOMPARE(::stat(path.constData(), &info), 0);
        if (info.st_mtime == std::numeric_limits<qint32>::max())
            QSKIP("this file system keeps no dates after 2038");
        QCOMPARE(qint64(info.st_mtime), late.toSecsSinceEpoch());
        player->hand_over({file});
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
    }

    // ---- positions above 2^31 milliseconds

    void the_time_bar_shows_a_film_of_a_month()
    {
        QVERIFY(!play_the_month().isEmpty());
        scripted_engine::run_to(position_ms);
        player->settle();
        QCOMPARE(player->window()->position(), position_ms);
        QCOMPARE(player->time_bar()->get_slidervalue(), position_s);
        QCOMPARE(player->time_bar()->findChild<TimeSkin*>(QStringLiteral("TIME_CURRENT"))->text(),
                 QStringLiteral("694:26:40"));
        QCOMPARE(player->time_bar()->findChild<TimeSkin*>(QStringLiteral("TIME_TOTAL"))->text(),
                 QStringLiteral("833:20:00"));
    }

    void a_place_on_the_time_bar_is_sought()
    {
        QVERIFY(!play_the_month().isEmpty());
        player->window()->seek_event(position_s);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 2500000000")));
        QVERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->window()->position(), position_ms);
    }

    void a_skip_back_from_there_goes_back_by_its_time()
    {
        QVERIFY(!play_the_month().isEmpty());
        scripted_engine::run_to(position_ms);
        player->settle();
        player->click(Qt::Key_Left);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 4 2499990000")));
    }

    void a_bookmark_leads_back_there_after_a_restart()
    {
        const QString file = play_the_month();
        scripted_engine::run_to(position_ms);
        player->post(player_event::add_bookmark);
        player->settle();
        QVERIFY(restart());
        QCOMPARE(player->bookmarks()->get_count(), 1);
        player->window()->load_bookmark(file, position_s * 1000U);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 2500000000")));
    }

    void the_place_is_kept_from_one_start_to_the_next()
    {
        QVERIFY(!play_the_month().isEmpty());
        scripted_engine::run_to(position_ms);
        player->settle();
        QVERIFY(restart());
        QCOMPARE(player->window()->position(), position_ms);
        player->clear_log();
        player->post(player_event::play);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QTRY_COMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 2500000000")));
    }

    void a_message_that_asks_for_a_place_is_heard()
    {
        QVERIFY(!play_the_month().isEmpty());
        player->seek_to(position_ms);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 2500000000")));
        // A place beyond the end is the end.
        player->clear_log();
        player->seek_to(5'000'000'000);
        player->settle();
        QCOMPARE(player->log_of({"seek"}), QStringList(QStringLiteral("seek 3 3000000000")));
    }

    // ---- a library of 999 films with long paths

    void nine_hundred_ninety_nine_long_paths_are_listed_kept_and_played()
    {
        const QStringList files = long_paths(directory.path());
        QCOMPARE(files.size(), 999);
        player->hand_over(files);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->playlist()->get_count(), 999);
        QVERIFY(restart());
        QCOMPARE(player->playlist()->get_count(), 999);
        for (int index = 0; index < 999; ++index)
            QCOMPARE(player->playlist()->get_filename(index), files[index]);
        player->clear_log();
        player->window()->play_event(998, 0);
        QTRY_VERIFY(player->in(&TavelVideo::play_state));
        QCOMPARE(player->log_of({"prepare"}), QStringList("prepare " + files[998]));
    }

private:
    static constexpr Time length_ms = 3'000'000'000; ///< nearly 35 days; an int ends at 2'147'483'647
    static constexpr Time position_ms = 2'500'000'000;
    static constexpr unsigned int position_s = 2'500'000;

    QString play_the_month()
    {
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QString::number(length_ms));
        const QString file = directory.filePath(QStringLiteral("month.avi"));
        if (!QFile(file).open(QIODevice::WriteOnly))
            return {};
        player->hand_over({file});
        if (!QTest::qWaitFor([&] { return player->in(&TavelVideo::play_state); }, test_support::stretched(5000)))
            return {};
        player->settle();
        player->clear_log();
        return file;
    }

    /// Ends the player as a user does and starts it on the files that it leaves; its films are as long as before.
    bool restart()
    {
        player->post(player_event::close);
        if (!QTest::qWaitFor([&] { return player->in(&TavelVideo::exit_state); }, test_support::stretched(5000)))
            return false;
        player.reset();
        player = std::make_unique<Player>(Player::Device{.keep_files = true});
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("time"), QString::number(length_ms));
        player->settle();
        return true;
    }

    /// Makes 999 empty films whose paths are nearly as long as the system allows (4095 bytes).
    static QStringList long_paths(const QString& root)
    {
        // 80 syllables are 240 bytes; a name may have 255.
        const QString level = u'/' + QString(80, u'\uD55C');
        QString folder = root;
        while (QFile::encodeName(folder).size() < 3500)
            folder += level;
        QStringList files;
        if (!QDir().mkpath(folder))
            return files;
        for (int i = 0; i < 999; ++i) {
            files.append(QStringLiteral("%1/%2%3.avi").arg(folder).arg(i, 3, 10, QLatin1Char('0')).arg(level.mid(1)));
            QFile film(files.last());
            if (!film.open(QIODevice::WriteOnly))
                return {};
        }
        return files;
    }

    QTemporaryDir directory;
};

TAVEL_TEST_MAIN_WITH(QPEApplication, LargeSizesTest)
#include "tst_large_sizes.moc"
