#include "qpe_application.h"

#include "custom_event.h"
#include "device_screen.h"
#include "qcop_envelope.h"
#include "qpe_directory.h"
#include "shell.h"
#include "system_agent.h"

#include <QAbstractEventDispatcher>
#include <QDataStream>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QThread>
#include <QUrl>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace
{

// The request of the window's close button, as the player's state chart numbers it.
constexpr int close_request = 2007;

constexpr char player_channel[] = "QPE/Brevaton/video";
constexpr char instance_name[] = "QPE/Application/tavel_video";
constexpr char file_message[] = "transmit_filename(QString)";

// How long a player that is just starting may take until it listens.
constexpr std::chrono::seconds start_limit{10};
constexpr std::chrono::milliseconds start_poll{20};

constexpr int ending_signals[] = {SIGTERM, SIGINT, SIGHUP};

// From the signal handler to the event loop.
int signal_pipe[2] = {-1, -1};

extern "C" void note_signal(int number)
{
    const int saved = errno;
    const char byte = static_cast<char>(number);
    // A full pipe holds enough of them already.
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &byte, 1);
    errno = saved;
}

// The files among the arguments, as absolute paths; those that cannot travel are left out with one line.
QStringList files_of(const QStringList& arguments, const QPEApplication::FilesBehind& files_behind)
{
    QStringList files;
    bool only_files = false;
    for (const QString& argument : arguments) {
        if (!only_files && argument.startsWith(u'-')) {
            only_files = argument == QStringLiteral("--");
            continue;
        }
        // "file:name" without slashes is a file of that name.
        const QString path = argument.startsWith(QStringLiteral("file://")) ? QUrl(argument).toLocalFile() : argument;
        if (path.isEmpty())
            continue;
        if (path.contains(u'\n') || path.contains(QChar::ReplacementCharacter)) {
            qWarning("a file is left out, its name holds a line feed or is not UTF-8: %s",
                     qUtf8Printable(path.simplified()));
            continue;
        }
        const QString absolute = QFileInfo(path).absoluteFilePath();
        files += files_behind ? files_behind(absolute) : QStringList{absolute};
    }
    return files;
}

} // namespace

void QPEApplication::send_files(const QStringList& files)
{
    if (files.isEmpty())
        return;
    QCopEnvelope envelope(player_channel, file_message);
    envelope << files.join(u'\n') + u'\n';
}

QPEApplication::QPEApplication(int& argc, char** argv, const FilesBehind& files_behind) : QApplication(argc, argv)
{
    setQuitOnLastWindowClosed(false);
    // The toolkit took the user's locale over; decimal points in the player's and the decoder's texts are points.
    std::setlocale(LC_NUMERIC, "C");
    take_signals();
    Shell::start();
    files_ = files_of(arguments().mid(1), files_behind);
    instance_channel_ = std::make_unique<QCopChannel>(instance_name);
    if (!instance_channel_->is_first() || QCopChannel::isRegistered(player_channel))
        hand_over_or_stay();
    connect(instance_channel_.get(), &QCopChannel::received, this, [](const QByteArray& message) {
        if (message == "raise()") {
            QWidget* const window = DeviceScreen::instance()->window();
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
            window->raise();
            window->activateWindow();
        }
    });
    if (!QCopChannel::isRegistered("QPE/System"))
        agent_ = std::make_unique<SystemAgent>();
    system_channel_ =
        std::make_unique<QCopChannel>("QPE/System", QCopChannel::Delivery::Queued, QCopChannel::Presence::Hidden);
    connect(system_channel_.get(), &QCopChannel::received, this, &QPEApplication::receive_system_message);
}

QPEApplication::~QPEApplication()
{
    for (const int number : ending_signals)
        std::signal(number, SIG_DFL);
    signal_notifier_.reset();
    for (int& end : signal_pipe) {
        close(end);
        end = -1;
    }
    agent_.reset();
    system_channel_.reset();
    instance_channel_.reset();
    // What the player said last, "releaseLCDOff()" for one, would otherwise go with the process.
    QCopChannel::flush();
}

int QPEApplication::exec()
{
    if (auto* const application = qobject_cast<QPEApplication*>(QCoreApplication::instance())) {
        send_files(application->files_);
        application->files_.clear();
    }
    return QApplication::exec();
}

QString QPEApplication::qpeDir()
{
    return QpeDirectory::path();
}

void QPEApplication::wakeUpGuiThread()
{
    const QCoreApplication* const application = QCoreApplication::instance();
    if (!application)
        return;
    if (QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance(application->thread()))
        dispatcher->wakeUp();
}

void QPEApplication::showMainWidget(QWidget* widget)
{
    main_widget_ = widget;
    DeviceScreen* const screen = DeviceScreen::instance();
    connect(screen, &DeviceScreen::close_requested, this, &QPEApplication::request_close, Qt::UniqueConnection);
    // To the host the display is the program: it carries the main widget's title.
    screen->setWindowTitle(widget->windowTitle());
    connect(widget, &QWidget::windowTitleChanged, screen, &QWidget::setWindowTitle, Qt::UniqueConnection);
    // The main widget covers the desktop, which does not begin at the origin of the plane.
    widget->move(screen->desktop_geometry().topLeft());
    screen->embed(widget);
    widget->show();
}

void QPEApplication::request_close()
{
    if (main_widget_)
        post_custom_event(main_widget_, close_request);
}

bool QPEApplication::notify(QObject* receiver, QEvent* event)
{
#if defined(__SANITIZE_THREAD__)
    // The other end of the release in post_custom_event().
    __tsan_acquire(event);
#endif
    return QApplication::notify(receiver, event);
}

void QPEApplication::take_signals()
{
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("signals end the player without saving: no pipe");
        return;
    }
    signal_notifier_ = std::make_unique<QSocketNotifier>(signal_pipe[0], QSocketNotifier::Read);
    connect(signal_notifier_.get(), &QSocketNotifier::activated, this, &QPEApplication::read_signals);
    struct sigaction action {
    };
    action.sa_handler = note_signal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : ending_signals)
        sigaction(number, &action, nullptr);
    // Whoever reads our output may go before us.
    std::signal(SIGPIPE, SIG_IGN);
}

void QPEApplication::read_signals()
{
    char bytes[16];
    while (read(signal_pipe[0], bytes, sizeof bytes) > 0) {
    }
    if (receivers(SIGNAL(flush())) > 0)
        emit flush();
    else
        exit(0); // quit() may be refused by a window
}

void QPEApplication::receive_system_message(const QByteArray& message, const QByteArray& data)
{
    if (message == "flush()") {
        emit flush();
    } else if (message == "reload()") {
        emit reload();
    } else if (message == "volumeChange(bool)") {
        QDataStream stream(data);
        stream.setVersion(QCopEnvelope::stream_version);
        bool muted = false;
        stream >> muted;
        emit volumeChanged(muted);
    }
}

void QPEApplication::hand_over_or_stay()
{
    const auto give_up = std::chrono::steady_clock::now() + start_limit;
    // The other one may still be on its way to listening, or go before it gets there.
    while (!QCopChannel::isRegistered(player_channel)) {
        if (instance_channel_->is_first())
            return;
        if (std::chrono::steady_clock::now() > give_up) {
            qWarning("another player is running and does not answer");
            std::exit(EXIT_FAILURE);
        }
        std::this_thread::sleep_for(start_poll);
    }
    send_files(files_);
    QCopChannel::send(instance_name, "raise()");
    QCopChannel::flush();
    std::exit(EXIT_SUCCESS);
}
