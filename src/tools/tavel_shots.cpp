// Drives the real player through its screens on a real film and writes a picture of each.
//
// Usage: tavel_shots DIRECTORY FILM...
// The films are handed over like any other program's; the keys and taps are sent to the host window. Ends with 0 when
// every screen was written.

#include "config.h"
#include "device_screen.h"
#include "dic_dialog.h"
#include "message_box.h"
#include "player_event.h"
#include "qcop_envelope.h"
#include "qpe_application.h"
#include "tavel_video.h"
#include "tavel_video_string.h"
#include "translation.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QTabWidget>

#include <cstdio>
#include <functional>

namespace
{

constexpr int patience_ms = 20000;

class Shots
{
public:
    Shots(TavelVideo* window, const QDir& directory) : window_(window), directory_(directory) {}

    bool complete() const { return missing_ == 0; }

    void take(const char* name)
    {
        settle(350);
        const QString path = directory_.absoluteFilePath(
            QStringLiteral("%1-%2.png").arg(++number_, 2, 10, QLatin1Char('0')).arg(QLatin1String(name)));
        if (DeviceScreen::instance()->grab_output().save(path)) {
            std::printf("%s\n", qPrintable(path));
        } else {
            std::printf("%s could not be written\n", qPrintable(path));
            ++missing_;
        }
        std::fflush(stdout);
    }

    bool wait_until(const char* what, const std::function<bool()>& condition)
    {
        QElapsedTimer clock;
        clock.start();
        while (!condition() && clock.elapsed() < patience_ms)
            settle(20);
        if (condition())
            return true;
        std::printf("%s: did not happen\n", what);
        ++missing_;
        return false;
    }

    void settle(int ms) const { QTest::qWait(ms); }
    void key(Qt::Key key) const { QTest::keyClick(DeviceScreen::instance()->viewport(), key, Qt::NoModifier, 30); }

    /// Taps a place of the output, given in the LCD's pixels.
    void tap(int x, int y) const
    {
        QWidget* viewport = DeviceScreen::instance()->viewport();
        const QSize output = DeviceScreen::instance()->output_size();
        const double scale = std::min(static_cast<double>(viewport->width()) / output.width(),
                                      static_cast<double>(viewport->height()) / output.height());
        QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier,
                          QPoint(static_cast<int>(x * scale), static_cast<int>(y * scale)), 30);
    }

    void post(player_event::Number event) const { window_->postCustomEvent(event); }

    void hand_over(const QStringList& films) const
    {
        QCopEnvelope envelope("QPE/Brevaton/video", "transmit_filename(QString)");
        envelope << QString(films.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    }

    void show_controls()
    {
        post(player_event::leave_full_screen);
        wait_until("the controls", [this] { return !window_->is_full_screen(); });
    }

    void wait_for_play()
    {
        wait_until("playing",
                   [this] { return window_->isIn(&TavelVideo::play_state) != 0 && window_->position() > 0; });
    }

    void wait_for_position(Time position)
    {
        wait_until("the place in the film", [this, position] { return window_->position() >= position; });
    }

    /// A notice runs its own event loop: the picture is taken from inside it.
    void take_notice(const char* name, TavelVideoString text)
    {
        auto* notice = window_->findChild<MessageBox*>();
        if (notice == nullptr) {
            ++missing_;
            return;
        }
        notice->setText(window_->text(text));
        QTimer::singleShot(400, window_, [this, notice, name] {
            take(name);
            notice->stop();
        });
        notice->exec();
    }

    void take_dictionary(const char* name)
    {
        QTimer::singleShot(900, window_, [this, name] {
            take(name);
            if (auto* dialog = window_->findChild<DicDialog*>())
                dialog->accept();
        });
        window_->control_event(window_, QStringLiteral("dic"));
    }

private:
    TavelVideo* window_;
    QDir directory_;
    int number_ = 0;
    int missing_ = 0;
};

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

/// Chooses the film's second subtitle track, as a viewer does in the settings.
void choose_second_subtitles()
{
    auto* tracks = top_level("VIDEO SETTING")->findChild<QComboBox*>(QStringLiteral("subtitle_combo_track"));
    if (tracks == nullptr || tracks->count() < 2)
        return;
    tracks->setCurrentIndex(1);
    Q_EMIT tracks->activated(1);
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
    if (QLocale::system().language() == QLocale::Korean) {
        choose_second_subtitles();
        shots.post(player_event::reload_subtitles);
    }
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

    shots.post(player_event::pause);
    shots.wait_until("the pause", [window] { return window->isIn(&TavelVideo::pause_state) != 0; });
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

    shots.post(player_event::enter_full_screen);
    shots.wait_until("full screen", [window] { return window->is_full_screen(); });
    shots.post(player_event::pause);
    shots.wait_until("the pause", [window] { return window->isIn(&TavelVideo::pause_state) != 0; });
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
    shots.take("subtitle-at-twice-the-size");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: tavel_shots DIRECTORY FILM...\n");
        return 2;
    }
    const QDir directory(QString::fromLocal8Bit(argv[1]));
    if (!directory.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "tavel_shots: cannot make the directory %s\n", argv[1]);
        return 2;
    }
    QStringList films;
    for (int i = 2; i < argc; ++i)
        films.append(QDir::current().absoluteFilePath(QString::fromLocal8Bit(argv[i])));

    int player_argc = 1;
    QPEApplication application(player_argc, argv);
    install_translation(application);
    write_settings();
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    application.showMainWidget(window);
    Shots shots(window, directory);
    QTimer::singleShot(0, window, [&] {
        visit(window, shots, films);
        window->postCustomEvent(player_event::close);
    });
    QPEApplication::exec();
    const bool complete = shots.complete();
    delete window;
    return complete ? 0 : 1;
}
