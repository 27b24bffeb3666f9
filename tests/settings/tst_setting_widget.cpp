#include "setting_fixture.h"

#include "device_screen.h"
#include "media_player.h"
#include "scripted_engine.h"
#include "subtitle_control.h"

#include <QtTest/QSignalSpy>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QTabWidget>

using namespace setting_fixture;

namespace
{

/// Everything that the dialog tells the main window, as one list in the order of the emissions.
class Listener
{
public:
    explicit Listener(SettingWidget& settings)
    {
        QObject::connect(&settings, &SettingWidget::update_signal, &context_,
                         [this](int code) { news.append(QString::number(code)); });
        QObject::connect(&settings, &SettingWidget::update_transparency, &context_,
                         [this](unsigned char alpha) { news.append(QStringLiteral("alpha %1").arg(alpha)); });
    }

    QStringList news;

private:
    QObject context_;
};

/// A player that has a film open, with as many tracks as asked for.
class OpenFilm
{
public:
    OpenFilm(const QString& audio_streams, const QString& subtitle_streams) : player_(nullptr)
    {
        scripted_engine::clear();
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("audio_streams"), audio_streams);
        scripted_engine::set_info(QStringLiteral("container"), QStringLiteral("subtitle_streams"), subtitle_streams);
        scripted_engine::set_subtitles(0, {{1000, 2000, "first"}, {3000, 4000, "second"}});
        scripted_engine::set_subtitles(1, {{1000, 2000, "other"}});
        player_.open("/film.avi");
    }

    MediaPlayer* player() { return &player_; }

private:
    MediaPlayer player_;
};

SubtitleControl* preview_of(const SettingWidget& settings)
{
    return control<SubtitleControl>(settings, "subtitle control");
}

/// How much of the preview is covered by something else than nothing.
int inked_pixels(const SettingWidget& settings)
{
    const QImage image = preview_of(settings)->background_pixmap().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 1 ? 1 : 0;
    }
    return count;
}

QStringList choices(const QComboBox& combo)
{
    QStringList texts;
    for (int index = 0; index < combo.count(); ++index)
        texts.append(combo.itemText(index));
    return texts;
}

/// Chooses a row of an open list the way a user does, and waits until the list is gone.
void choose_by_keys(QComboBox* combo, Qt::Key direction, int steps)
{
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Return);
    QTRY_VERIFY(combo->view()->isVisible());
    for (int step = 0; step < steps; ++step)
        QTest::keyClick(combo->view(), direction);
    QTest::keyClick(combo->view(), Qt::Key_Return);
    QTRY_VERIFY(!combo->view()->isVisible());
}

} // namespace

class SettingWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        test_support::reset_directories();
        scripted_engine::clear();
    }

    // Closing

    void closing_without_a_change_sends_closed_and_display_and_writes_the_file_anew()
    {
        const auto settings = make_settings();
        QVERIFY(settings->save_settings());
        QFile file(Config::user_path(file_name));
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QByteArray content = file.readAll();
        const QDateTime long_ago(QDate(2001, 2, 3), QTime(4, 5));
        QVERIFY(file.setFileTime(long_ago, QFileDevice::FileModificationTime));
        file.close();
        settings->show();
        const Listener listener(*settings);
        QTest::ignoreMessage(QtWarningMsg, "Close signal sent\n");
        QTest::ignoreMessage(QtWarningMsg, "Tavel Video: saving settings\n");
        QVERIFY(settings->close());
        QCOMPARE(listener.news, QStringList({"2006", "2204"}));
        QVERIFY(!settings->isVisible());
        QVERIFY(QFileInfo(Config::user_path(file_name)).lastModified() > long_ago);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);
    }

    void without_a_file_the_first_close_reports_everything()
    {
        const auto settings = make_settings();
        const Listener listener(*settings);
        settings->close();
        QCOMPARE(listener.news, QStringList({"2006", "2202", "2203", "alpha 255", "2204", "2200"}));
    }

    void each_change_has_its_code_on_close_data()
    {
        QTest::addColumn<QString>("combo");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QStringList>("news");
        const QStringList plain{"2006", "2204"};
        const QStringList subtitles{"2006", "2203", "2204"};
        const QStringList controls{"2006", "2204", "2200"};
        QTest::newRow("spdif") << "sound_combo_spdif"
                               << "On" << QStringList{"2006", "2202", "2204"};
        QTest::newRow("shown") << "subtitle_combo_display"
                               << "Hide" << subtitles;
        QTest::newRow("size") << "subtitle_combo_size"
                              << "Small" << subtitles;
        QTest::newRow("colour") << "subtitle_combo_color"
                                << "Green" << subtitles;
        QTest::newRow("position") << "subtitle_combo_pos"
                                  << "High" << subtitles;
        QTest::newRow("opacity") << "display_combo_transparancy"
                                 << "50 Percent" << QStringList{"2006", "alpha 128", "2204"};
        QTest::newRow("bookmark") << "playback_combo_bookmark"
                                  << "Show" << controls;
        QTest::newRow("repeat") << "playback_combo_repeat_mode"
                                << "Show" << controls;
        QTest::newRow("speed") << "playback_combo_playwithspeed"
                               << "Show" << controls;
        QTest::newRow("menu time") << "display_combo_menutime"
                                   << "Always" << plain;
        QTest::newRow("aspect") << "display_combo_aspect_ratio"
                                << "Full Screen" << plain;
        QTest::newRow("info") << "display_combo_info"
                              << "Hide" << plain;
        QTest::newRow("privacy") << "display_combo_privacy_mode"
                                 << "On" << plain;
        QTest::newRow("skip time") << "playback_combo_seektime"
                                   << "1 minute" << plain;
        QTest::newRow("after playback") << "playback_combo_next_action"
                                        << "Stop" << plain;
        QTest::newRow("scan") << "playback_combo_trickmode"
                              << "Video Key Frames" << plain;
    }

    void each_change_has_its_code_on_close()
    {
        QFETCH(QString, combo);
        QFETCH(QString, choice);
        QFETCH(QStringList, news);
        const auto settings = make_settings();
        settings->save_settings();
        choose(*settings, combo.toLatin1().constData(), choice);
        const Listener listener(*settings);
        settings->close();
        QCOMPARE(listener.news, news);
    }

    void a_key_that_the_file_lacks_counts_as_a_change_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QStringList>("news");
        const QStringList plain{"2006", "2204"};
        const QStringList subtitles{"2006", "2203", "2204"};
        const QStringList controls{"2006", "2204", "2200"};
        QTest::newRow("red") << QByteArray("red") << plain;
        QTest::newRow("spdif") << QByteArray("spdif") << QStringList{"2006", "2202", "2204"};
        QTest::newRow("volume") << QByteArray("volume") << plain;
        for (const char* key : {"color", "size", "pos", "adjust"})
            QTest::newRow(key) << QByteArray(key) << subtitles;
        QTest::newRow("menutime") << QByteArray("menutime") << plain;
        QTest::newRow("transparency") << QByteArray("transparency") << QStringList{"2006", "alpha 255", "2204"};
        for (const char* key : {"speed_show", "repeatab_show", "bookmark_show"})
            QTest::newRow(key) << QByteArray(key) << controls;
        QTest::newRow("next_action") << QByteArray("next_action") << plain;
    }

    void a_key_that_the_file_lacks_counts_as_a_change()
    {
        QFETCH(QByteArray, key);
        QFETCH(QStringList, news);
        const auto settings = make_settings();
        settings->save_settings();
        QFile file(Config::user_path(file_name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QList<QByteArray> lines = file.readAll().split('\n');
        file.close();
        const auto removed =
            lines.removeIf([&key](const QByteArray& line) { return line.split('=').first().trimmed() == key; });
        QCOMPARE(removed, 1);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(lines.join('\n')) > 0);
        file.close();
        const Listener listener(*settings);
        settings->close();
        QCOMPARE(listener.news, news);
    }

    void another_subtitle_track_is_a_subtitle_change()
    {
        QCOMPARE(news_of_a_close_with_another("subtitle_combo_track"), QStringList({"2006", "2203", "2204"}));
        QCOMPARE(stored("subtitle", "track"), 1);
    }

    void another_audio_track_is_no_change_of_the_close()
    {
        QCOMPARE(news_of_a_close_with_another("sound_combo_audiotrack"), QStringList({"2006", "2204"}));
        QCOMPARE(stored("audio", "track"), 1);
    }

    void a_shift_is_a_subtitle_change()
    {
        const auto settings = make_settings();
        settings->save_settings();
        settings->subtitle_adjust_forward();
        const Listener listener(*settings);
        settings->close();
        QCOMPARE(listener.news, QStringList({"2006", "2203", "2204"}));
        QCOMPARE(stored("subtitle", "adjust"), 5);
    }

    void the_codes_come_before_the_file_is_written()
    {
        const auto settings = make_settings();
        settings->save_settings();
        choose(*settings, "playback_combo_seektime", QStringLiteral("1 minute"));
        int in_the_file = -1;
        connect(settings.get(), &SettingWidget::update_signal, this, [&in_the_file](int code) {
            if (code == 2006)
                in_the_file = stored("playback", "skiptime");
        });
        settings->close();
        QCOMPARE(in_the_file, 0);
        QCOMPARE(stored("playback", "skiptime"), 4);
    }

    void closing_twice_reports_a_change_once()
    {
        const auto settings = make_settings();
        settings->save_settings();
        choose(*settings, "sound_combo_spdif", QStringLiteral("On"));
        settings->close();
        const Listener listener(*settings);
        settings->close();
        QCOMPARE(listener.news, QStringList({"2006", "2204"}));
    }

    void escape_closes_the_dialog_from_every_control()
    {
        const auto settings = make_settings();
        auto* tabs = control<QTabWidget>(*settings, "setting_tab");
        for (int page = 0; page < tabs->count(); ++page) {
            const auto controls = tabs->widget(page)->findChildren<QWidget*>();
            for (QWidget* each : controls) {
                if (each->focusPolicy() != Qt::StrongFocus || !each->isEnabled() || each->window() != settings.get())
                    continue;
                settings->show();
                tabs->setCurrentIndex(page);
                each->setFocus();
                QTest::keyClick(each, Qt::Key_Escape);
                QVERIFY2(!settings->isVisible(), qPrintable(each->objectName()));
            }
        }
    }

    void escape_leaves_an_open_list_first()
    {
        const auto settings = make_settings();
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(3);
        auto* combo = control<QComboBox>(*settings, "display_combo_menutime");
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Return);
        QTRY_VERIFY(combo->view()->isVisible());
        QTest::keyClick(combo->view(), Qt::Key_Escape);
        QTRY_VERIFY(!combo->view()->isVisible());
        QVERIFY(settings->isVisible());
        QTest::keyClick(combo, Qt::Key_Escape);
        QVERIFY(!settings->isVisible());
    }

    void other_keys_do_nothing()
    {
        const auto settings = make_settings();
        settings->save_settings();
        settings->show();
        const Listener listener(*settings);
        for (const Qt::Key key : {Qt::Key_F2, Qt::Key_F5, Qt::Key_A, Qt::Key_Tab})
            QTest::keyClick(settings.get(), key);
        QVERIFY(settings->isVisible());
        QVERIFY(listener.news.isEmpty());
    }

    void the_close_button_closes()
    {
        const auto settings = make_settings();
        settings->show();
        QTest::mouseClick(control<QAbstractButton>(*settings, "exit_button"), Qt::LeftButton);
        QVERIFY(!settings->isVisible());
    }

    // Colours

    void a_moving_colour_slider_is_seen_at_once_data()
    {
        QTest::addColumn<QString>("slider");
        QTest::addColumn<QString>("label");
        QTest::newRow("red") << "color_slider_red"
                             << "video_label_red_precent";
        QTest::newRow("green") << "color_slider_green"
                               << "video_label_green_percent";
        QTest::newRow("blue") << "color_slider_blue"
                              << "video_label_blue_percent";
    }

    void a_moving_colour_slider_is_seen_at_once()
    {
        QFETCH(QString, slider);
        QFETCH(QString, label);
        const auto settings = make_settings();
        settings->show();
        auto* moved = control<QSlider>(*settings, slider.toLatin1().constData());
        const auto* percent = control<QLabel>(*settings, label.toLatin1().constData());
        QCOMPARE(percent->text(), QStringLiteral("50 %"));
        const Listener listener(*settings);
        QTest::keyClick(moved, Qt::Key_Right);
        QTest::keyClick(moved, Qt::Key_Right);
        QCOMPARE(percent->text(), QStringLiteral("52 %"));
        QCOMPARE(listener.news, QStringList({"2205", "2205"}));
        QTest::keyClick(moved, Qt::Key_Left);
        QCOMPARE(percent->text(), QStringLiteral("51 %"));
    }

    // Tracks

    void choosing_an_audio_track_writes_the_file_before_the_dialog_closes()
    {
        OpenFilm film(QStringLiteral("3"), QStringLiteral("0"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(1);
        const Listener listener(*settings);
        choose_by_keys(control<QComboBox>(*settings, "sound_combo_audiotrack"), Qt::Key_Down, 2);
        QCOMPARE(stored("audio", "track"), 2);
        QCOMPARE(listener.news, QStringList("2201"));
        QCOMPARE(settings->get_audio_track(), 3U);
        QVERIFY(settings->isVisible());
    }

    void choosing_a_subtitle_track_writes_the_file_and_reports_it()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        const Listener listener(*settings);
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_track"), Qt::Key_Down, 1);
        QCOMPARE(stored("subtitle", "track"), 1);
        QCOMPARE(listener.news, QStringList("2203"));
        QCOMPARE(settings->get_subtitle_track(), 2U);
    }

    void choosing_a_track_says_which()
    {
        OpenFilm film(QStringLiteral("3"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->show();
        PrintedLines printed;
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(1);
        choose_by_keys(control<QComboBox>(*settings, "sound_combo_audiotrack"), Qt::Key_Down, 2);
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_track"), Qt::Key_Down, 1);
        const QList<QByteArray> lines = printed.lines();
        QCOMPARE(lines.count("Audio Track activated: 2"), 1);
        QCOMPARE(lines.count("Subtitle Track activated: 1"), 1);
    }

    void the_resets_go_back_to_the_first_tracks()
    {
        OpenFilm film(QStringLiteral("3"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        choose(*settings, "sound_combo_audiotrack", QStringLiteral("3"));
        choose(*settings, "subtitle_combo_track", QStringLiteral("2"));
        QTest::mouseClick(control<QPushButton>(*settings, "sound_button_alldefault"), Qt::LeftButton);
        QCOMPARE(settings->get_audio_track(), 1U);
        QCOMPARE(settings->get_subtitle_track(), 2U);
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_alldefault"), Qt::LeftButton);
        QCOMPARE(settings->get_subtitle_track(), 1U);
    }

    void the_track_lists_count_the_streams_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QStringList>("tracks");
        QTest::newRow("none") << "0" << QStringList();
        QTest::newRow("one") << "1" << QStringList{"1"};
        QTest::newRow("eleven") << "11" << QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"};
        QTest::newRow("no answer") << "" << QStringList();
        QTest::newRow("no number") << "many" << QStringList();
        QTest::newRow("below zero") << "-1" << QStringList();
    }

    void the_track_lists_count_the_streams()
    {
        QFETCH(QString, answer);
        QFETCH(QStringList, tracks);
        OpenFilm film(answer, answer);
        const auto settings = make_settings();
        settings->set_player(film.player());
        for (const char* name : {"sound_combo_audiotrack", "subtitle_combo_track"}) {
            const auto* combo = control<QComboBox>(*settings, name);
            QCOMPARE(choices(*combo), tracks);
            QCOMPARE(combo->isEnabled(), !tracks.isEmpty());
        }
    }

    void a_film_that_claims_millions_of_tracks_is_not_believed()
    {
        OpenFilm film(QStringLiteral("4000000000"), QStringLiteral("4000000000"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        QCOMPARE(control<QComboBox>(*settings, "sound_combo_audiotrack")->count(), 99);
        QCOMPARE(control<QComboBox>(*settings, "subtitle_combo_track")->count(), 99);
        control<QComboBox>(*settings, "subtitle_combo_track")->setCurrentIndex(98);
        settings->refresh_subtitle();
    }

    void a_film_without_sound_leaves_the_audio_track_list_disabled()
    {
        const auto settings = make_settings();
        const auto* combo = control<QComboBox>(*settings, "sound_combo_audiotrack");
        QVERIFY(!combo->isEnabled());
        {
            OpenFilm film(QStringLiteral("2"), QStringLiteral("0"));
            settings->set_player(film.player());
            QVERIFY(combo->isEnabled());
            settings->set_player(nullptr);
        }
        OpenFilm silent(QStringLiteral("0"), QStringLiteral("0"));
        settings->set_player(silent.player());
        QVERIFY(!combo->isEnabled());
        settings->set_player(nullptr);
    }

    void a_new_film_starts_with_its_first_subtitle_track()
    {
        store("subtitle", "track", 1);
        OpenFilm film(QStringLiteral("1"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        QCOMPARE(settings->get_subtitle_track(), 1U);
        QCOMPARE(stored("subtitle", "track"), 0);
    }

    void closing_the_film_empties_the_subtitle_track_list()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_player(nullptr);
        const auto* combo = control<QComboBox>(*settings, "subtitle_combo_track");
        QCOMPARE(combo->count(), 0);
        QVERIFY(!combo->isEnabled());
        QCOMPARE(settings->get_subtitle_track(), 0U);
        QVERIFY(settings->save_settings());
        QCOMPARE(stored("subtitle", "track"), 0);
    }

    // Preview

    void the_preview_shows_the_line_due_while_the_film_plays()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->set_playing(true);
        settings->draw_subtitles(1500);
        QVERIFY(inked_pixels(*settings) > 0);
        QCOMPARE(preview_of(*settings)->get_last_subtitle(), QStringLiteral("first"));
        settings->draw_subtitles(2500);
        QCOMPARE(inked_pixels(*settings), 0);
        settings->draw_subtitles(3500);
        QCOMPARE(preview_of(*settings)->get_last_subtitle(), QStringLiteral("second"));
    }

    void the_preview_rests_unless_the_film_plays()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(1500);
        QCOMPARE(inked_pixels(*settings), 0);
        settings->set_playing(true);
        settings->set_playing(false);
        settings->draw_subtitles(1500);
        QCOMPARE(inked_pixels(*settings), 0);
    }

    void the_preview_rests_while_another_window_is_in_front()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QWidget other;
        other.show();
        DeviceScreen::instance()->activate(&other);
        QTRY_VERIFY(!DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(1500);
        QCOMPARE(inked_pixels(*settings), 0);
    }

    void the_preview_rests_without_subtitles()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("0"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(1500);
        QCOMPARE(inked_pixels(*settings), 0);
    }

    void the_preview_follows_the_track()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        control<QComboBox>(*settings, "subtitle_combo_track")->setCurrentIndex(1);
        settings->subtitle_track_activated(1);
        settings->draw_subtitles(1500);
        QCOMPARE(preview_of(*settings)->get_last_subtitle(), QStringLiteral("other"));
    }

    void the_preview_follows_size_and_colour_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<int>("points");
        QTest::newRow("large") << "Large" << 12;
        QTest::newRow("medium") << "Medium" << 10;
        QTest::newRow("small") << "Small" << 8;
    }

    void the_preview_follows_size_and_colour()
    {
        QFETCH(QString, size);
        QFETCH(int, points);
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        choose(*settings, "subtitle_combo_size", size);
        choose(*settings, "subtitle_combo_color", QStringLiteral("Green"));
        emit control<QComboBox>(*settings, "subtitle_combo_size")->activated(0);
        QCOMPARE(preview_of(*settings)->font().family().toLower(), QStringLiteral("v28"));
        QCOMPARE(preview_of(*settings)->font().weight(), QFont::Normal);
        QCOMPARE(preview_of(*settings)->font().pixelSize(), points);
        settings->draw_subtitles(1500);
        const QImage drawn = preview_of(*settings)->background_pixmap().toImage();
        int green = 0;
        int other = 0;
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x) {
                const QColor pixel = drawn.pixelColor(x, y);
                green += pixel.green() > 128 ? 1 : 0;
                other += pixel.red() > 0 || pixel.blue() > 0 ? 1 : 0;
            }
        }
        QVERIFY(green > 0);
        QCOMPARE(other, 0);
    }

    void the_preview_follows_the_position()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(1500);
        QList<int> tops;
        for (const char* place : {"High", "Middle", "Low"}) {
            choose(*settings, "subtitle_combo_pos", QString::fromLatin1(place));
            emit control<QComboBox>(*settings, "subtitle_combo_pos")->activated(0);
            const QImage drawn = preview_of(*settings)->background_pixmap().toImage();
            int top = -1;
            for (int y = 0; top < 0 && y < drawn.height(); ++y) {
                for (int x = 0; x < drawn.width(); ++x) {
                    if (drawn.pixelColor(x, y).red() > 128)
                        top = y;
                }
            }
            QVERIFY2(top >= 0, place);
            tops.append(top);
        }
        QVERIFY(tops.at(0) < tops.at(1));
        QVERIFY(tops.at(1) < tops.at(2));
    }

    void the_preview_follows_the_shift()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(700);
        QCOMPARE(inked_pixels(*settings), 0);
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_forward"), Qt::LeftButton);
        settings->draw_subtitles(700);
        QVERIFY(inked_pixels(*settings) > 0);
    }

    void a_choice_of_the_user_reaches_the_preview_at_once_data()
    {
        QTest::addColumn<QByteArray>("combo");
        QTest::newRow("size") << QByteArray("subtitle_combo_size");
        QTest::newRow("colour") << QByteArray("subtitle_combo_color");
        QTest::newRow("position") << QByteArray("subtitle_combo_pos");
    }

    void a_choice_of_the_user_reaches_the_preview_at_once()
    {
        QFETCH(QByteArray, combo);
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        settings->draw_subtitles(1500);
        const QImage before = preview_of(*settings)->background_pixmap().toImage();
        auto* box = control<QComboBox>(*settings, combo.constData());
        const bool last = box->currentIndex() + 1 == box->count();
        choose_by_keys(box, last ? Qt::Key_Up : Qt::Key_Down, 1);
        QVERIFY(inked_pixels(*settings) > 0);
        const QImage chosen = preview_of(*settings)->background_pixmap().toImage();
        QVERIFY(chosen != before);
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_alldefault"), Qt::LeftButton);
        QCOMPARE(preview_of(*settings)->background_pixmap().toImage(), before);
    }

    void the_preview_lies_on_the_films_place()
    {
        const auto settings = make_settings();
        settings->show();
        auto* tabs = control<QTabWidget>(*settings, "setting_tab");
        for (int page = 0; page < tabs->count(); ++page) {
            tabs->setCurrentIndex(page);
            QCOMPARE(preview_of(*settings)->geometry(), QRect(12, 64, 221, 126));
            QCOMPARE(preview_of(*settings)->isVisible(), page < 4);
        }
    }

    void hiding_the_subtitles_says_so()
    {
        const auto settings = make_settings();
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        PrintedLines printed;
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_display"), Qt::Key_Down, 1);
        QList<QByteArray> lines = printed.lines();
        QCOMPARE(lines.count("CLEARING SUBTITLES!!"), 1);
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_display"), Qt::Key_Up, 1);
        lines = printed.lines();
        QCOMPARE(lines.count("CLEARING SUBTITLES!!"), 1);
    }

    void hiding_the_subtitles_clears_the_preview()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->set_playing(true);
        settings->show();
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        settings->draw_subtitles(1500);
        QVERIFY(inked_pixels(*settings) > 0);
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_display"), Qt::Key_Down, 1);
        QVERIFY(!settings->get_subtitle_on());
        QCOMPARE(inked_pixels(*settings), 0);
        settings->draw_subtitles(3500);
        QCOMPARE(inked_pixels(*settings), 0);
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_display"), Qt::Key_Up, 1);
        QVERIFY(inked_pixels(*settings) > 0);
    }

    void each_change_of_the_subtitles_is_reported_at_once_data()
    {
        QTest::addColumn<QByteArray>("combo");
        QTest::addColumn<QByteArray>("button");
        for (const char* combo :
             {"subtitle_combo_display", "subtitle_combo_size", "subtitle_combo_color", "subtitle_combo_pos"})
            QTest::newRow(combo) << QByteArray(combo) << QByteArray();
        for (const char* button : {"subtitle_button_back", "subtitle_button_forward", "subtitle_button_alldefault"})
            QTest::newRow(button) << QByteArray() << QByteArray(button);
    }

    void each_change_of_the_subtitles_is_reported_at_once()
    {
        QFETCH(QByteArray, combo);
        QFETCH(QByteArray, button);
        const auto settings = make_settings();
        const Listener listener(*settings);
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(2);
        QCOMPARE(listener.news, QStringList());
        if (button.isEmpty()) {
            auto* const box = control<QComboBox>(*settings, combo.constData());
            const bool last = box->currentIndex() + 1 == box->count();
            choose_by_keys(box, last ? Qt::Key_Up : Qt::Key_Down, 1);
        } else {
            QTest::mouseClick(control<QPushButton>(*settings, button.constData()), Qt::LeftButton);
        }
        QCOMPARE(listener.news, QStringList("2203"));
    }

    void a_reset_shows_the_first_tracks_line()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("2"));
        const auto settings = make_settings();
        show_playing(*settings, film);
        settings->draw_subtitles(1500);
        const QImage first = preview_of(*settings)->background_pixmap().toImage();
        choose_by_keys(control<QComboBox>(*settings, "subtitle_combo_track"), Qt::Key_Down, 1);
        QCOMPARE(preview_of(*settings)->get_last_subtitle(), QStringLiteral("other"));
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_alldefault"), Qt::LeftButton);
        QCOMPARE(settings->get_subtitle_track(), 1U);
        QCOMPARE(preview_of(*settings)->get_last_subtitle(), QStringLiteral("first"));
        QCOMPARE(preview_of(*settings)->background_pixmap().toImage(), first);
    }

    void a_line_is_shown_again_after_a_jump_back()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        show_playing(*settings, film);
        settings->draw_subtitles(1500);
        settings->draw_subtitles(2500);
        QCOMPARE(inked_pixels(*settings), 0);
        settings->draw_subtitles(1500);
        QVERIFY(inked_pixels(*settings) > 0);
    }

    void a_page_without_the_film_hides_no_change_of_the_line()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        show_playing(*settings, film);
        auto* const tabs = control<QTabWidget>(*settings, "setting_tab");
        settings->draw_subtitles(1500);
        const QImage first = preview_of(*settings)->background_pixmap().toImage();
        tabs->setCurrentIndex(5);
        settings->draw_subtitles(2500);
        tabs->setCurrentIndex(2);
        QCOMPARE(inked_pixels(*settings), 0);
        tabs->setCurrentIndex(5);
        settings->draw_subtitles(1500);
        settings->set_playing(false);
        tabs->setCurrentIndex(2);
        QCOMPARE(preview_of(*settings)->background_pixmap().toImage(), first);
    }

    void the_dialog_opens_without_the_line_of_its_last_time()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        show_playing(*settings, film);
        settings->draw_subtitles(1500);
        settings->close();
        settings->show();
        QCOMPARE(inked_pixels(*settings), 0);
        QTRY_VERIFY(DeviceScreen::instance()->is_active(settings.get()));
        settings->draw_subtitles(1500);
        QVERIFY(inked_pixels(*settings) > 0);
    }

    void a_shift_moves_the_line_of_a_paused_film()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        show_playing(*settings, film);
        settings->draw_subtitles(1800);
        settings->set_playing(false);
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_forward"), Qt::LeftButton);
        QCOMPARE(inked_pixels(*settings), 0);
        QTest::mouseClick(control<QPushButton>(*settings, "subtitle_button_back"), Qt::LeftButton);
        QVERIFY(inked_pixels(*settings) > 0);
    }

    void new_subtitles_are_reported_once()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("1"));
        const auto settings = make_settings();
        const Listener listener(*settings);
        settings->set_player(film.player());
        QCOMPARE(listener.news, QStringList("2203"));
        settings->refresh_subtitle();
        settings->refresh_subtitle();
        QCOMPARE(listener.news, QStringList("2203"));
        settings->set_player(nullptr);
        QCOMPARE(listener.news, QStringList({"2203", "2203"}));
    }

    // Information

    void the_info_page_shows_what_the_engine_reports()
    {
        OpenFilm film(QStringLiteral("1"), QStringLiteral("0"));
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("name"), QStringLiteral("MP3"));
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("channels"), QStringLiteral("2"));
        scripted_engine::set_info(QStringLiteral("audio"), QStringLiteral("sample_rate"), QStringLiteral("48000"));
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("name"), QStringLiteral("<b>DivX</b>"));
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("width"), QStringLiteral("320"));
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("height"), QStringLiteral("240"));
        scripted_engine::set_info(QStringLiteral("video"), QStringLiteral("framerate"), QStringLiteral("23.976"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->update_information();
        QCOMPARE(information(*settings),
                 QStringList({"Codec : MP3", "Channels : 2", "Sampling Rate : 48000", "Codec : <b>DivX</b>",
                              "Resolution : 320 x 240", "Frame Rate : 23.976"}));
        QCOMPARE(control<QLabel>(*settings, "info_label_video_codec")->textFormat(), Qt::PlainText);
        QCOMPARE(control<QLabel>(*settings, "info_label_audio")->text(), QStringLiteral("Audio"));
        QCOMPARE(control<QLabel>(*settings, "info_label_video")->text(), QStringLiteral("Video"));

        settings->clear_information();
        QCOMPARE(
            information(*settings),
            QStringList({"Codec : ", "Channels : ", "Sampling Rate : ", "Codec : ", "Resolution : ", "Frame Rate : "}));
    }

    void the_info_page_has_sound_above_picture()
    {
        const auto settings = make_settings();
        settings->show();
        control<QTabWidget>(*settings, "setting_tab")->setCurrentIndex(5);
        int above = -1;
        for (const char* name : {"info_label_audio", "info_label_audio_codec", "info_label_audio_channels",
                                 "info_label_audio_sampling_rate", "info_label_video", "info_label_video_codec",
                                 "info_label_video_resolution", "info_label_video_frame_rate"}) {
            const int top = control<QLabel>(*settings, name)->mapTo(settings.get(), QPoint(0, 0)).y();
            QVERIFY2(top > above, name);
            above = top;
        }
    }

    void without_a_film_the_info_page_stays_bare()
    {
        const auto settings = make_settings();
        settings->update_information();
        QCOMPARE(
            information(*settings),
            QStringList({"Codec : ", "Channels : ", "Sampling Rate : ", "Codec : ", "Resolution : ", "Frame Rate : "}));
    }

    void the_about_page_shows_version_and_notice()
    {
        const auto settings = make_settings();
        settings->set_version(QStringLiteral("1.07.481"));
        QCOMPARE(control<QLabel>(*settings, "about_label_version")->text(), QStringLiteral("Version : 1.07.481"));
        QCOMPARE(control<QLabel>(*settings, "about_label_notice")->text(),
                 settings->get_string(SettingStrings::Notice));
    }

private:
    /// What closing reports when the second track was chosen in the list @p combo.
    static QStringList news_of_a_close_with_another(const char* combo)
    {
        OpenFilm film(QStringLiteral("2"), QStringLiteral("2"));
        const auto settings = make_settings();
        settings->set_player(film.player());
        settings->save_settings();
        choose(*settings, combo, QStringLiteral("2"));
        const Listener listener(*settings);
        settings->close();
        return listener.news;
    }

    /// Shows the settings in front of a film that plays.
    static void show_playing(SettingWidget& settings, OpenFilm& film)
    {
        settings.set_player(film.player());
        settings.set_playing(true);
        settings.show();
        control<QTabWidget>(settings, "setting_tab")->setCurrentIndex(2);
        QTRY_VERIFY(DeviceScreen::instance()->is_active(&settings));
    }

    static QStringList information(const SettingWidget& settings)
    {
        QStringList lines;
        for (const char* name :
             {"info_label_audio_codec", "info_label_audio_channels", "info_label_audio_sampling_rate",
              "info_label_video_codec", "info_label_video_resolution", "info_label_video_frame_rate"})
            lines.append(control<QLabel>(settings, name)->text());
        return lines;
    }
};

TAVEL_TEST_MAIN(SettingWidgetTest)
#include "tst_setting_widget.moc"
