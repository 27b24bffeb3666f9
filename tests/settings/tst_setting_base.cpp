#include "setting_fixture.h"

#include "device_screen.h"
#include "exit_button.h"
#include "translation.h"
#include "video_plane.h"

#include <QtCore/QTranslator>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStyleOptionComboBox>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

using namespace setting_fixture;

namespace
{

constexpr QRect lcd_picture(12, 64, 221, 126);

struct ExpectedControl {
    int page; ///< -1: outside the pages
    const char* name;
    const char* class_name;
};

constexpr ExpectedControl controls[] = {
    {-1, "exit_button", "QAbstractButton"},
    {0, "video_label_red", "QLabel"},
    {0, "video_label_green", "QLabel"},
    {0, "video_label_blue", "QLabel"},
    {0, "color_slider_red", "QSlider"},
    {0, "color_slider_green", "QSlider"},
    {0, "color_slider_blue", "QSlider"},
    {0, "video_label_red_precent", "QLabel"},
    {0, "video_label_green_percent", "QLabel"},
    {0, "video_label_blue_percent", "QLabel"},
    {0, "video_button_alldefault", "QPushButton"},
    {1, "sound_combo_audiotrack", "QComboBox"},
    {1, "sound_combo_spdif", "QComboBox"},
    {1, "sound_button_alldefault", "QPushButton"},
    {2, "subtitle_combo_display", "QComboBox"},
    {2, "subtitle_combo_size", "QComboBox"},
    {2, "subtitle_combo_color", "QComboBox"},
    {2, "subtitle_combo_pos", "QComboBox"},
    {2, "subtitle_combo_track", "QComboBox"},
    {2, "subtitle_button_back", "QPushButton"},
    {2, "subtitle_edit_sync", "QLineEdit"},
    {2, "subtitle_button_forward", "QPushButton"},
    {2, "subtitle_button_alldefault", "QPushButton"},
    {3, "display_combo_menutime", "QComboBox"},
    {3, "display_combo_transparancy", "QComboBox"},
    {3, "display_combo_aspect_ratio", "QComboBox"},
    {3, "display_combo_info", "QComboBox"},
    {3, "display_combo_privacy_mode", "QComboBox"},
    {3, "display_button_alldefault", "QPushButton"},
    {4, "playback_combo_seektime", "QComboBox"},
    {4, "playback_combo_playwithspeed", "QComboBox"},
    {4, "playback_combo_repeat_mode", "QComboBox"},
    {4, "playback_combo_bookmark", "QComboBox"},
    {4, "playback_combo_next_action", "QComboBox"},
    {4, "playback_combo_trickmode", "QComboBox"},
    {4, "playback_button_alldefault", "QPushButton"},
};

QTabWidget* tabs_of(const SettingWidget& settings)
{
    return control<QTabWidget>(settings, "setting_tab");
}

/// The controls of a page (with the tabs and the close button) that take the focus now.
QSet<QWidget*> focusable(const SettingWidget& settings)
{
    QSet<QWidget*> found;
    const auto children = settings.findChildren<QWidget*>();
    for (QWidget* child : children) {
        if (child->focusPolicy() == Qt::StrongFocus && child->isEnabled() && child->isVisible() &&
            child->window() == &settings)
            found.insert(child);
    }
    return found;
}

/// Shows one frame of a single colour where the main window places the film.
void show_film(QRect place, QColor color)
{
    VideoPlane& plane = VideoPlane::instance();
    plane.set_window(place);
    DeviceScreen::instance()->control(QStringLiteral("/dev/fb1 enable 1"));
    DeviceScreen::instance()->grab_output();
    plane.begin_frame(plane.pixel_size()).fill(color);
    plane.end_frame();
}

bool all_of_color(const QImage& picture, const QRect& place, QColor color)
{
    for (int y = place.top(); y <= place.bottom(); ++y) {
        for (int x = place.left(); x <= place.right(); ++x) {
            if (picture.pixelColor(x, y) != color)
                return false;
        }
    }
    return true;
}

/// Installs the Korean texts for as long as it lives.
class Korean
{
public:
    Korean()
    {
        if (!translator_.load(QStringLiteral(":/translations/tavel_video_ko.qm")))
            qFatal("There is no Korean translation.");
        QCoreApplication::installTranslator(&translator_);
    }
    ~Korean() { QCoreApplication::removeTranslator(&translator_); }
    Korean(const Korean&) = delete;
    Korean& operator=(const Korean&) = delete;

private:
    QTranslator translator_;
};

} // namespace

class SettingBaseTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        test_support::reset_directories();
        DeviceScreen::instance()->set_output(DeviceScreen::Output::Lcd);
    }

    void each_control_stands_on_its_page_under_its_name_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("class_name");
        for (const ExpectedControl& row : controls)
            QTest::newRow(row.name) << row.page << QByteArray(row.name) << QByteArray(row.class_name);
    }

    void each_control_stands_on_its_page_under_its_name()
    {
        QFETCH(int, page);
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, class_name);
        const auto settings = make_settings();
        const QWidget* home = page < 0 ? settings.get() : tabs_of(*settings)->widget(page);
        const auto found = home->findChildren<QWidget*>(QString::fromLatin1(name));
        QCOMPARE(found.size(), 1);
        QVERIFY(found.first()->inherits(class_name.constData()));
    }

    void the_tabs_stand_in_their_order()
    {
        const auto settings = make_settings();
        QStringList texts;
        for (int page = 0; page < tabs_of(*settings)->count(); ++page)
            texts.append(tabs_of(*settings)->tabText(page));
        QCOMPARE(texts, QStringList({"Video", "Sound", "Subtitle", "Display", "Playback", "Info", "About"}));
        QCOMPARE(settings->windowTitle(), QStringLiteral("Video Setting"));
        QCOMPARE(settings->objectName(), QStringLiteral("VIDEO SETTING"));
    }

    void each_label_names_its_control_data()
    {
        QTest::addColumn<QByteArray>("label");
        QTest::addColumn<QString>("text");
        QTest::newRow("red") << QByteArray("video_label_red") << "Red";
        QTest::newRow("green") << QByteArray("video_label_green") << "Green";
        QTest::newRow("blue") << QByteArray("video_label_blue") << "Blue";
        QTest::newRow("audio track") << QByteArray("sound_label_audiotrack") << "Audio Track";
        QTest::newRow("spdif") << QByteArray("sound_label_spdif") << "SPDIF Audio Output";
        QTest::newRow("subtitles") << QByteArray("subtitle_label_display") << "Subtitles";
        QTest::newRow("size") << QByteArray("subtitle_label_size") << "Size";
        QTest::newRow("colour") << QByteArray("subtitle_label_color") << "Color";
        QTest::newRow("position") << QByteArray("subtitle_label_pos") << "Position";
        QTest::newRow("track") << QByteArray("subtitle_label_track") << "Track";
        QTest::newRow("sync") << QByteArray("subtitle_label_sync") << "Sync";
        QTest::newRow("menu time") << QByteArray("display_label_menutime") << "Menu Display Time";
        QTest::newRow("opacity") << QByteArray("display_label_transparancy") << "Menu Opacity";
        QTest::newRow("aspect") << QByteArray("display_label_aspect_ratio") << "Aspect Ratio";
        QTest::newRow("info") << QByteArray("display_label_info") << "Display Info";
        QTest::newRow("privacy") << QByteArray("display_label_privacy_mode") << "Privacy on Pause";
        QTest::newRow("skip time") << QByteArray("playback_label_seektime") << "Skip Time";
        QTest::newRow("speed") << QByteArray("playback_label_playwithspeed") << "Speed Controls";
        QTest::newRow("repeat") << QByteArray("playback_label_repeat_mode") << "Repeat AB Controls";
        QTest::newRow("bookmark") << QByteArray("playback_label_bookmark") << "Bookmark Controls";
        QTest::newRow("after playback") << QByteArray("playback_label_next_action") << "After Playback Finishes";
        QTest::newRow("scan") << QByteArray("playback_label_trickmode") << "Scan Video";
    }

    void each_label_names_its_control()
    {
        QFETCH(QByteArray, label);
        QFETCH(QString, text);
        QCOMPARE(control<QLabel>(*make_settings(), label.constData())->text(), text);
    }

    void every_reset_button_says_so()
    {
        const auto settings = make_settings();
        const auto buttons = settings->findChildren<QPushButton*>(QRegularExpression(QStringLiteral("default$")));
        QCOMPARE(buttons.size(), 8);
        for (const QPushButton* button : buttons)
            QCOMPARE(button->text(), QStringLiteral("Reset"));
        QCOMPARE(control<QPushButton>(*settings, "subtitle_button_back")->text(), QStringLiteral("<<"));
        QCOMPARE(control<QPushButton>(*settings, "subtitle_button_forward")->text(), QStringLiteral(">>"));
        QVERIFY(control<QLineEdit>(*settings, "subtitle_edit_sync")->isReadOnly());
    }

    // The film behind the form

    void the_film_shows_through_where_it_matters_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<bool>("shows");
        QTest::newRow("video") << 0 << true;
        QTest::newRow("sound") << 1 << true;
        QTest::newRow("subtitle") << 2 << true;
        QTest::newRow("display") << 3 << true;
        QTest::newRow("playback") << 4 << false;
        QTest::newRow("info") << 5 << false;
        QTest::newRow("about") << 6 << false;
    }

    void the_film_shows_through_where_it_matters()
    {
        QFETCH(int, page);
        QFETCH(bool, shows);
        const auto settings = make_settings();
        settings->move(80, 104);
        settings->show();
        tabs_of(*settings)->setCurrentIndex(page);
        const QColor film(10, 200, 90);
        show_film(lcd_picture, film);
        QCOMPARE(settings->picture_visible(), shows);
        QCOMPARE(settings->picture_rectangle(), lcd_picture);
        const QImage picture = DeviceScreen::instance()->grab_output();
        QCOMPARE(picture.size(), QSize(480, 272));
        QCOMPARE(all_of_color(picture, lcd_picture, film), shows);
        // Beside the film nothing shines through that would hurt reading.
        QVERIFY(picture.pixelColor(300, 150).lightness() < 90);
    }

    void on_a_tv_the_form_leaves_the_films_other_place_free()
    {
        DeviceScreen::instance()->set_output(DeviceScreen::Output::Tv);
        DeviceScreen::instance()->control(
            QStringLiteral("/dev/fb2 enable 0 size 640 480 origin 0 0 position 0 0 enable 1"));
        DeviceScreen::instance()->control(QStringLiteral("/dev/fb1 size 640 480"));
        const auto settings = make_settings();
        settings->move(80, 104);
        settings->show();
        const QRect place(93, 162, 221, 126);
        const QColor film(200, 60, 90);
        show_film(place, film);
        QCOMPARE(settings->picture_rectangle().translated(settings->pos()), place);
        const QImage picture = DeviceScreen::instance()->grab_output();
        QVERIFY(all_of_color(picture.scaled(640, 480), place, film));
        DeviceScreen::instance()->control(
            QStringLiteral("/dev/fb2 enable 0 size 640 480 origin 80 104 position 0 0 enable 1"));
        DeviceScreen::instance()->control(QStringLiteral("/dev/fb1 size 480 272"));
    }

    void no_control_lies_on_the_film()
    {
        const auto settings = make_settings();
        settings->show();
        for (int page = 0; page < 4; ++page) {
            tabs_of(*settings)->setCurrentIndex(page);
            const auto found = focusable(*settings);
            for (const QWidget* each : found) {
                const QRect place(each->mapTo(settings.get(), QPoint(0, 0)), each->size());
                QVERIFY2(!place.intersects(lcd_picture), qPrintable(each->objectName()));
                QVERIFY2(QRect(QPoint(0, 0), QSize(480, 272)).contains(place), qPrintable(each->objectName()));
            }
        }
    }

    // Key pad

    void the_arrow_keys_reach_every_control_data()
    {
        QTest::addColumn<int>("page");
        for (int page = 0; page < 7; ++page)
            QTest::addRow("page %d", page) << page;
    }

    void the_arrow_keys_reach_every_control()
    {
        QFETCH(int, page);
        const auto settings = make_settings();
        control<QComboBox>(*settings, "sound_combo_audiotrack")->setEnabled(true);
        control<QComboBox>(*settings, "subtitle_combo_track")->setEnabled(true);
        settings->show();
        tabs_of(*settings)->setCurrentIndex(page);
        QWidget* const start = tabs_of(*settings)->tabBar();
        QTRY_COMPARE(settings->focusWidget(), start);

        // A walk through everything that the keys lead to; Left and Right would change the page or a colour on some.
        QSet<QWidget*> reached{start};
        QList<QWidget*> to_do{start};
        while (!to_do.isEmpty()) {
            QWidget* const from = to_do.takeFirst();
            for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Left, Qt::Key_Right}) {
                const bool sideways = key == Qt::Key_Left || key == Qt::Key_Right;
                if (sideways && (from == start || qobject_cast<QSlider*>(from) != nullptr))
                    continue;
                from->setFocus();
                QTest::keyClick(from, key);
                QWidget* const now = settings->focusWidget();
                QVERIFY(now != nullptr);
                if (!reached.contains(now)) {
                    reached.insert(now);
                    to_do.append(now);
                }
            }
        }
        QCOMPARE(reached, focusable(*settings));
        for (const char* combo : {"playback_combo_seektime", "display_combo_menutime", "subtitle_combo_color"})
            QVERIFY2(control<QComboBox>(*settings, combo)->currentIndex() >= 0, "moving on chooses nothing");
        QCOMPARE(settings->get_skip_time(), 10000);
    }

    void left_and_right_turn_the_pages()
    {
        const auto settings = make_settings();
        settings->show();
        QTabBar* bar = tabs_of(*settings)->tabBar();
        QTRY_COMPARE(settings->focusWidget(), static_cast<QWidget*>(bar));
        for (int page = 1; page < 7; ++page) {
            QTest::keyClick(bar, Qt::Key_Right);
            QCOMPARE(tabs_of(*settings)->currentIndex(), page);
            QCOMPARE(settings->focusWidget(), static_cast<QWidget*>(bar));
        }
        QTest::keyClick(bar, Qt::Key_Left);
        QCOMPARE(tabs_of(*settings)->currentIndex(), 5);
    }

    void return_opens_a_list_and_chooses_from_it()
    {
        const auto settings = make_settings();
        settings->show();
        tabs_of(*settings)->setCurrentIndex(4);
        auto* combo = control<QComboBox>(*settings, "playback_combo_seektime");
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Return);
        QTRY_VERIFY(combo->view()->isVisible());
        QTest::keyClick(combo->view(), Qt::Key_Down);
        QTest::keyClick(combo->view(), Qt::Key_Down);
        QTest::keyClick(combo->view(), Qt::Key_Return);
        QTRY_VERIFY(!combo->view()->isVisible());
        QCOMPARE(settings->get_skip_time(), 20000);
    }

    void return_presses_a_button()
    {
        const auto settings = make_settings();
        settings->show();
        control<QSlider>(*settings, "color_slider_red")->setValue(10);
        auto* button = control<QPushButton>(*settings, "video_button_red_default");
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
        QCOMPARE(settings->get_red_value(), 50);
        auto* close = control<ExitButton>(*settings, "exit_button");
        close->setFocus();
        QTest::keyClick(close, Qt::Key_Enter);
        QVERIFY(!settings->isVisible());
    }

    void a_tap_opens_a_list_and_chooses_from_it()
    {
        const auto settings = make_settings();
        settings->show();
        tabs_of(*settings)->setCurrentIndex(3);
        auto* combo = control<QComboBox>(*settings, "display_combo_privacy_mode");
        QTest::mouseClick(combo, Qt::LeftButton);
        QTRY_VERIFY(combo->view()->isVisible());
        const auto tap_first_row = [combo] {
            const QRect row = combo->view()->visualRect(combo->model()->index(0, 0));
            QTest::mouseClick(combo->view()->viewport(), Qt::LeftButton, {}, row.center());
            return !combo->view()->isVisible();
        };
        // For the time of a double click a list takes a tap for the end of the one that opened it.
        QTRY_VERIFY(tap_first_row());
        QVERIFY(settings->get_privacy_on());
    }

    void the_focus_is_visible_on_every_control()
    {
        const auto settings = make_settings();
        control<QComboBox>(*settings, "sound_combo_audiotrack")->setEnabled(true);
        control<QComboBox>(*settings, "subtitle_combo_track")->setEnabled(true);
        settings->show();
        for (int page = 0; page < 7; ++page) {
            tabs_of(*settings)->setCurrentIndex(page);
            const auto found = focusable(*settings);
            for (QWidget* each : found) {
                each->setFocus();
                QVERIFY(each->hasFocus());
                const QImage with = each->grab().toImage();
                each->clearFocus();
                const QImage without = each->grab().toImage();
                QVERIFY2(with != without, qPrintable(each->objectName()));
            }
        }
    }

    void the_dialog_opens_with_the_focus_on_the_tabs()
    {
        const auto settings = make_settings();
        settings->show();
        control<ExitButton>(*settings, "exit_button")->setFocus();
        settings->close();
        settings->show();
        QTRY_COMPARE(settings->focusWidget(), static_cast<QWidget*>(tabs_of(*settings)->tabBar()));
    }

    void the_focus_given_to_the_dialog_goes_to_the_tabs()
    {
        const auto settings = make_settings();
        settings->show();
        control<ExitButton>(*settings, "exit_button")->setFocus();
        settings->setFocus();
        QCOMPARE(settings->focusWidget(), static_cast<QWidget*>(tabs_of(*settings)->tabBar()));
    }

    // Pictures

    void the_close_button_wears_the_skins_pictures()
    {
        const QString directory = QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("pics/tavel_video");
        QVERIFY(QDir().mkpath(directory));
        const QList<QPair<QString, QColor>> pictures{{QStringLiteral("close_normal"), Qt::red},
                                                     {QStringLiteral("close_press"), Qt::green},
                                                     {QStringLiteral("close_focus"), Qt::blue}};
        for (const auto& [name, color] : pictures) {
            QImage image(40, 32, QImage::Format_ARGB32);
            image.fill(color);
            QVERIFY(image.save(QStringLiteral("%1/%2.png").arg(directory, name)));
        }
        const auto settings = make_settings();
        settings->show();
        auto* button = control<ExitButton>(*settings, "exit_button");
        const auto shown = [button] { return button->grab().toImage().pixelColor(20, 16); };
        QCOMPARE(button->size(), QSize(40, 32));
        QCOMPARE(shown(), QColor(Qt::red));
        button->setFocus();
        QCOMPARE(shown(), QColor(Qt::blue));
        QTest::mousePress(button, Qt::LeftButton);
        QCOMPARE(shown(), QColor(Qt::green));
        QTest::mouseMove(button, QPoint(-20, 100));
        QTest::mouseRelease(button, Qt::LeftButton, {}, QPoint(-20, 100));
        QVERIFY(settings->isVisible());
        button->draw_released();
        QCOMPARE(shown(), QColor(Qt::blue));
        button->draw_pressed();
        QCOMPARE(shown(), QColor(Qt::green));
    }

    void header_and_about_page_show_their_pictures()
    {
        const QString pictures = QString::fromLocal8Bit(qgetenv("QPEDIR")) + QStringLiteral("pics/");
        QImage title(480, 32, QImage::Format_ARGB32);
        title.fill(Qt::red);
        QVERIFY(QDir().mkpath(pictures + QStringLiteral("tavel_video")));
        QVERIFY(title.save(pictures + QStringLiteral("tavel_video/setting_title.png")));
        QImage version(120, 40, QImage::Format_ARGB32);
        version.fill(Qt::green);
        QVERIFY(QDir().mkpath(pictures + QStringLiteral("SETTINGS")));
        QVERIFY(version.save(pictures + QStringLiteral("SETTINGS/ver_video.png")));
        const auto settings = make_settings();
        settings->show();
        tabs_of(*settings)->setCurrentIndex(6);
        const QImage form = settings->grab().toImage();
        QCOMPARE(form.pixelColor(2, 2), QColor(Qt::red));
        const auto* picture = control<QLabel>(*settings, "about_label_picture");
        const QPoint middle = picture->mapTo(settings.get(), picture->rect().center());
        QCOMPARE(form.pixelColor(middle), QColor(Qt::green));
        QVERIFY(picture->height() >= 40);
    }

    void without_the_skins_pictures_the_dialog_still_works()
    {
        const auto settings = make_settings();
        settings->show();
        QCOMPARE(control<QLabel>(*settings, "caption_label")->text(), QStringLiteral("Video Setting"));
        auto* button = control<ExitButton>(*settings, "exit_button");
        QVERIFY(button->width() >= 28 && button->height() >= 28);
        const QImage cross = button->grab().toImage();
        QVERIFY(cross.pixelColor(cross.rect().center()).lightness() > 200);
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(!settings->isVisible());
    }

    // Languages

    void nothing_is_cut_off_data()
    {
        QTest::addColumn<bool>("korean");
        QTest::newRow("English") << false;
        QTest::newRow("Korean") << true;
    }

    void nothing_is_cut_off()
    {
        QFETCH(bool, korean);
        const auto language = korean ? std::make_unique<Korean>() : nullptr;
        const auto settings = make_settings();
        settings->set_version(QStringLiteral("1.07.481"));
        settings->show();
        QTabWidget* tabs = tabs_of(*settings);
        for (int page = 0; page < tabs->count(); ++page) {
            tabs->setCurrentIndex(page);
            QVERIFY2(tabs->tabBar()->tabRect(page).width() >=
                         tabs->tabBar()->fontMetrics().horizontalAdvance(tabs->tabText(page)),
                     qPrintable(tabs->tabText(page)));
            const auto labels = tabs->widget(page)->findChildren<QLabel*>();
            for (const QLabel* label : labels) {
                const int needed =
                    label->wordWrap() ? label->heightForWidth(label->width()) : label->sizeHint().height();
                QVERIFY2(label->height() >= needed, qPrintable(label->text()));
                QVERIFY2(label->wordWrap() || label->width() >= label->sizeHint().width(), qPrintable(label->text()));
            }
            const auto buttons = tabs->widget(page)->findChildren<QPushButton*>();
            for (const QPushButton* button : buttons) {
                QVERIFY2(button->width() - 6 >= button->fontMetrics().horizontalAdvance(button->text()),
                         qPrintable(button->text()));
            }
            const auto boxes = tabs->widget(page)->findChildren<QComboBox*>();
            for (const QComboBox* combo : boxes) {
                QStyleOptionComboBox option;
                option.initFrom(combo);
                const QRect room =
                    combo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, combo);
                for (int index = 0; index < combo->count(); ++index) {
                    const QString text = combo->itemText(index);
                    QVERIFY2(room.width() >= combo->fontMetrics().horizontalAdvance(text), qPrintable(text));
                }
            }
        }
        const auto* sync = control<QLineEdit>(*settings, "subtitle_edit_sync");
        const QString longest = QStringLiteral("+99.5") + settings->get_string(SettingStrings::Seconds);
        QVERIFY(sync->width() - 8 >= sync->fontMetrics().horizontalAdvance(longest));
    }

    void the_choices_of_a_list_differ_in_each_language_data() { nothing_is_cut_off_data(); }

    void the_choices_of_a_list_differ_in_each_language()
    {
        QFETCH(bool, korean);
        const auto language = korean ? std::make_unique<Korean>() : nullptr;
        const auto settings = make_settings();
        const auto boxes = settings->findChildren<QComboBox*>();
        QCOMPARE(boxes.size(), 18);
        for (const QComboBox* combo : boxes) {
            QSet<QString> texts;
            for (int index = 0; index < combo->count(); ++index)
                texts.insert(combo->itemText(index));
            QVERIFY2(texts.size() == combo->count(), qPrintable(combo->objectName()));
            QVERIFY2(!texts.contains(QString()), qPrintable(combo->objectName()));
        }
    }

    void the_settings_mean_the_same_in_korean()
    {
        store("playback", "next_action", 1);
        store("subtitle", "color", 6);
        store("subtitle", "adjust", -15);
        const Korean korean;
        const auto settings = make_settings();
        QCOMPARE(settings->get_after_eos(), SettingWidget::AfterEos::RepeatCurrentFile);
        QCOMPARE(settings->get_subtitle_color(), QColor(240, 0, 120));
        QCOMPARE(settings->get_time_adjust(), -1500);
        QCOMPARE(control<QLineEdit>(*settings, "subtitle_edit_sync")->text(), QStringLiteral("-1.5초"));
        settings->load_default_settings();
        QCOMPARE(settings->get_after_eos(), SettingWidget::AfterEos::PlayNextFile);
        QCOMPARE(settings->get_subtitle_color(), QColor(255, 255, 255));
        QCOMPARE(settings->get_time_adjust(), 0);
        for (const char* number : {"1", "2", "3", "4", "5", "6", "7", "8"})
            QCOMPARE(SettingWidget::tr(number), QString::fromLatin1(number));
    }
};

TAVEL_TEST_MAIN(SettingBaseTest)
#include "tst_setting_base.moc"
