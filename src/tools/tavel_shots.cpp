// Drives the real player through its screens on a real film and writes a picture of each.
//
// Usage: tavel_shots DIRECTORY FILM...
//        tavel_shots --subtitles DIRECTORY FILM...
// The films are handed over like any other program's; the keys and taps are sent to the host window. With --subtitles
// the pictures are sheets of the films' subtitles in every place and size. Ends with 0 when every picture was written.

#include "config.h"
#include "device_screen.h"
#include "qpe_application.h"
#include "shots.h"
#include "subtitle_sheets.h"
#include "translation.h"

#include <QtCore/QTimer>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QTabWidget>

#include <cstdio>
#include <cstring>

namespace
{

/// All optional controls on, so that they are seen.
void write_settings()
{
    Config config(QStringLiteral("tavel_video_setting.cfg"), Config::User);
    config.setGroup(QStringLiteral("playback"));
    for (const char* key : {"speed_show", "repeatab_show", "bookmark_show"})
        config.writeEntry(QLatin1String(key), 0);
    config.setGroup(QStringLiteral("display"));
    config.writeEntry(QStringLiteral("menutime"), 0);
}

QWidget* top_level(const char* name);

/// Chooses the film's Korean subtitles for a Korean viewer, as one does in the settings.
void choose_own_subtitles(const Shots& shots)
{
    auto* tracks = top_level("VIDEO SETTING")->findChild<QComboBox*>(QStringLiteral("subtitle_combo_track"));
    if (QLocale::system().language() != QLocale::Korean || tracks == nullptr || tracks->count() < 2)
        return;
    tracks->setCurrentIndex(1);
    Q_EMIT tracks->activated(1);
    shots.post(player_event::reload_subtitles);
}

QWidget* top_level(const char* name)
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String(name))
            return widget;
    }
    return nullptr;
}

void visit(TavelVideo* window, Shots& shots, const QStringList& films)
{
    shots.settle(600);
    shots.take("empty-list");
    shots.key(Qt::Key_F2);
    shots.settle(800);
    shots.take("file-manager");
    shots.key(Qt::Key_Escape);

    shots.hand_over(films);
    shots.wait_for_play();
    choose_own_subtitles(shots);
    shots.take("full-screen-information");
    shots.wait_for_position(1500);
    shots.take("full-screen-subtitle");
    shots.tap(240, 120);
    shots.wait_until("the controls", [window] { return !window->is_full_screen(); });
    shots.take("controls");
    for (int step = 0; step < 5; ++step) {
        shots.key(Qt::Key_Right);
        if (step % 2 == 0)
            shots.take("controls-focus");
    }
    shots.key(Qt::Key_F7);
    shots.settle(1200);
    shots.key(Qt::Key_F7);
    shots.take("repeat-a-b");
    shots.key(Qt::Key_F7);

    window->show_playlist();
    shots.take("playlist");
    shots.key(Qt::Key_Down);
    shots.key(Qt::Key_Down);
    shots.take("playlist-cursor");
    window->hide_playlist();
    for (const unsigned int seconds : {2u, 5u})
        window->add_bookmark(films.first(), seconds);
    window->add_bookmark(films.last(), 3725);
    window->show_bookmark();
    shots.key(Qt::Key_Down);
    shots.take("bookmarks");
    window->hide_bookmark();

    shots.pause();
    shots.take("paused");
    shots.take_dictionary("dictionary");
    shots.post(player_event::play);

    shots.post(player_event::open_settings);
    QWidget* settings = top_level("VIDEO SETTING");
    shots.wait_until("the settings", [settings] { return settings != nullptr && settings->isVisible(); });
    if (auto* tabs = settings->findChild<QTabWidget*>()) {
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            shots.take("settings");
        }
    }
    shots.key(Qt::Key_Escape);
    shots.wait_until("the settings to close", [settings] { return !settings->isVisible(); });

    shots.show_full_screen();
    shots.pause();
    window->show_loading_screen();
    shots.take("loading");
    shots.post(player_event::play);
    shots.wait_for_play();
    window->findChild<QWidget*>(QStringLiteral("NOW LOADING"))->hide();
    shots.show_controls();

    struct Notice {
        const char* name;
        TavelVideoString text;
    };
    constexpr Notice notices[] = {
        {"notice-not-found", TavelVideoString::FileNotFound},
        {"notice-cannot-execute", TavelVideoString::CannotExecuteFile},
        {"notice-spdif", TavelVideoString::SpdifOut},
        {"notice-resolution", TavelVideoString::ResolutionWarning},
        {"notice-bookmarks-full", TavelVideoString::BookmarkListFull},
        {"notice-navigation", TavelVideoString::NavigationRunning},
        {"notice-crash-guard", TavelVideoString::SystemError},
    };
    for (const Notice& notice : notices)
        shots.take_notice(notice.name, notice.text);

    shots.post(player_event::switch_screen);
    shots.wait_until("the TV", [window] { return window->is_tv_out() && window->geometry().width() > 0; });
    shots.settle(500);
    shots.show_controls();
    shots.take("tv-controls");
    for (int step = 0; step < 4; ++step)
        shots.key(Qt::Key_Up);
    shots.take("tv-controls-shifted");
    shots.post(player_event::enter_full_screen);
    shots.settle(400);
    shots.take("tv-full-screen");
    shots.post(player_event::switch_screen);
    shots.wait_until("the LCD", [window] { return !window->is_tv_out(); });
    shots.settle(400);

    DeviceScreen::instance()->resize(DeviceScreen::instance()->size() * 2);
    shots.show_controls();
    shots.take("controls-at-twice-the-size");
    shots.post(player_event::enter_full_screen);
    shots.settle(300);
    choose_own_subtitles(shots);
    shots.take("subtitle-at-twice-the-size");
}

} // namespace

int main(int argc, char** argv)
{
    const bool subtitles_only = argc > 1 && std::strcmp(argv[1], "--subtitles") == 0;
    const int first = subtitles_only ? 2 : 1;
    if (argc < first + 2) {
        std::fprintf(stderr, "usage: tavel_shots [--subtitles] DIRECTORY FILM...\n");
        return 2;
    }
    const QDir directory(QString::fromLocal8Bit(argv[first]));
    if (!directory.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "tavel_shots: cannot make the directory %s\n", argv[first]);
        return 2;
    }
    QStringList films;
    for (int i = first + 1; i < argc; ++i)
        films.append(QDir::current().absoluteFilePath(QString::fromLocal8Bit(argv[i])));

    int player_argc = 1;
    QPEApplication application(player_argc, argv);
    install_translation(application);
    write_settings();
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    application.showMainWidget(window);
    Shots shots(window, directory);
    QTimer::singleShot(0, window, [&] {
        if (subtitles_only) {
            for (const QString& film : films)
                take_subtitle_sheets(window, top_level("VIDEO SETTING"), shots, film);
        } else {
            visit(window, shots, films);
        }
        window->postCustomEvent(player_event::close);
    });
    QPEApplication::exec();
    const bool complete = shots.complete();
    delete window;
    return complete ? 0 : 1;
}
