#pragma once

#include <QApplication>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <memory>

class QSocketNotifier;
class QCopChannel;
class SystemAgent;

/// The application object: one player for each session, files handed over to it, and what the system asks of it.
class QPEApplication : public QApplication
{
    Q_OBJECT

public:
    /// What an argument stands for: a folder for the films in it, say. Absolute paths; a plain file for itself.
    using FilesBehind = std::function<QStringList(const QString& path)>;

    /// @p argv may name files, each of which stands for what @p files_behind makes of it (without one for itself). When
    /// a player already runs in this session it gets them, and the process ends here with status 0 before any window is
    /// made. Otherwise they come in as a message on the player's own channel once exec() runs.
    QPEApplication(int& argc, char** argv, const FilesBehind& files_behind = {});
    ~QPEApplication() override;

    /// The device's own directory tree, ending in a slash: the environment variable QPEDIR, or a directory of the
    /// user's that is filled on first use. Holds "pics/" (skins), "etc/" (lists) and "bin/" (programs).
    static QString qpeDir();

    /// Runs the event loop, and first has the files of the command line sent to the player's channel.
    static int exec();

    /// Hands @p files, absolute paths, to the player of this session as its new list. Nothing is sent for none.
    static void send_files(const QStringList& files);

    /// Makes the GUI thread look at its posted events. May be called on any thread, also without an application object.
    static void wakeUpGuiThread();

    /// Shows @p widget as the player's window on the device screen, whose host window takes over its title. It stays
    /// the caller's.
    void showMainWidget(QWidget* widget);
    QWidget* mainWidget() const { return main_widget_; }

    bool notify(QObject* receiver, QEvent* event) override;

signals:
    /// The system is about to end the program (a signal, or "flush()" on "QPE/System"): save and leave.
    void flush();
    /// The system's settings changed ("reload()" on "QPE/System").
    void reload();
    /// The system's master volume changed ("volumeChange(bool)" on "QPE/System"); @p muted is the message's argument.
    void volumeChanged(bool muted);

private:
    void take_signals();
    void read_signals();
    void request_close();
    void receive_system_message(const QByteArray& message, const QByteArray& data);
    void hand_over_or_stay();

    QPointer<QWidget> main_widget_;
    QStringList files_; // to be opened once exec() runs
    std::unique_ptr<QSocketNotifier> signal_notifier_;
    std::unique_ptr<QCopChannel> instance_channel_;
    std::unique_ptr<QCopChannel> system_channel_;
    std::unique_ptr<SystemAgent> agent_;
};
