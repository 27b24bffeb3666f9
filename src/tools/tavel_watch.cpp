// Plays films to their end without anybody watching: prints what happens and leaves pictures of the screen.
//
// Usage: tavel_watch --pictures DIRECTORY FILE...
// Ends with 0 when every film reached its end, with 1 when one did not, with 2 for a wrong call.

#include "device_screen.h"
#include "file_manager.h"
#include "file_manager_folder.h"
#include "player_event.h"
#include "qpe_application.h"
#include "slider_skin.h"
#include "tavel_video.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>

#include <array>
#include <cstdio>

namespace
{

/// Looks on as the window gets its events, takes the pictures and ends the program after the last film.
class Watcher : public QObject
{
public:
    Watcher(TavelVideo* window, const QDir& pictures, qsizetype films)
        : window_(window), pictures_(pictures), films_left_(films)
    {
        window_->installEventFilter(this);
        stall_.setSingleShot(true);
        connect(&stall_, &QTimer::timeout, this, [this] { give_up("nothing moved for half a minute"); });
        stall_.start(stall_ms);
    }

    bool complete() const { return films_left_ <= 0 && !failed_; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == window_) {
            switch (static_cast<int>(event->type())) {
            case player_event::engine_playing:
                if (!playing_) {
                    playing_ = true;
                    picture_ = 0;
                    std::printf("playing\n");
                }
                break;
            case player_event::time_display:
                stall_.start(stall_ms);
                // After the window has taken the event, so that the picture shows the new time.
                QTimer::singleShot(0, this, [this] { moved(); });
                break;
            case player_event::engine_error:
                give_up("a film cannot be played");
                break;
            case player_event::end_of_stream:
                film_ended();
                break;
            default:
                break;
            }
            std::fflush(stdout);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static constexpr int stall_ms = 30000;
    static constexpr std::array<int, 3> picture_at_percent{10, 50, 90};

    void moved()
    {
        const auto* slider = window_->findChild<SliderSkin*>(QStringLiteral("TIME_SLIDER"));
        if (slider == nullptr || slider->maximum() == 0 || picture_ >= picture_at_percent.size())
            return;
        const auto due = static_cast<unsigned int>(picture_at_percent[picture_]) * slider->maximum() / 100;
        if (slider->value() < due)
            return;
        ++picture_;
        save_picture(QStringLiteral("at %1 s").arg(slider->value()));
    }

    void film_ended()
    {
        if (!playing_)
            return;
        playing_ = false;
        std::printf("end of the film\n");
        if (--films_left_ <= 0)
            end();
    }

    void save_picture(const QString& when)
    {
        const QString path = pictures_.absoluteFilePath(
            QStringLiteral("picture-%1.png").arg(++pictures_saved_, 2, 10, QLatin1Char('0')));
        if (DeviceScreen::instance()->grab_output().save(path))
            std::printf("picture %s: %s\n", qPrintable(when), qPrintable(path));
        else
            std::printf("the picture %s could not be written\n", qPrintable(path));
    }

    void give_up(const char* why)
    {
        if (failed_)
            return;
        failed_ = true;
        std::printf("%s\n", why);
        std::fflush(stdout);
        QTimer::singleShot(0, this, [this] { save_picture(QStringLiteral("of the failure")); });
        end();
    }

    void end()
    {
        stall_.stop();
        QTimer::singleShot(0, window_, [window = window_] { window->postCustomEvent(player_event::close); });
    }

    TavelVideo* window_;
    QDir pictures_;
    qsizetype films_left_;
    QTimer stall_;
    bool playing_ = false;
    bool failed_ = false;
    std::size_t picture_ = 0;
    int pictures_saved_ = 0;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4 || std::strcmp(argv[1], "--pictures") != 0) {
        std::fprintf(stderr, "usage: tavel_watch --pictures DIRECTORY FILE...\n");
        return 2;
    }
    const QDir pictures(QString::fromLocal8Bit(argv[2]));
    if (!pictures.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "tavel_watch: cannot make the directory %s\n", argv[2]);
        return 2;
    }
    // The application object takes the films from the command line, as it does in the player.
    argv[2] = argv[0];
    int player_argc = argc - 2;
    qsizetype films = 0;
    const auto counted = [&films](const QString& path) {
        const QStringList behind = films_behind(path, FileManager::most_films);
        films += behind.size();
        return behind;
    };
    QPEApplication application(player_argc, argv + 2, counted);
    auto* window = new TavelVideo(nullptr, "tavel_video", 16);
    application.showMainWidget(window);
    QObject::connect(&application, SIGNAL(flush()), window, SLOT(flush_slot()));
    Watcher watcher(window, pictures, films);
    QPEApplication::exec();
    const bool complete = watcher.complete();
    delete window;
    return complete ? 0 : 1;
}
