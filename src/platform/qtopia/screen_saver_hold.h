#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

class QDBusPendingCallWatcher;

/// Holds off the desktop's screen saver and screen blanking (org.freedesktop.ScreenSaver).
///
/// The screen saver lets go by itself when this program ends in any way. Never waits; GUI thread.
class ScreenSaverHold : public QObject
{
    Q_OBJECT

public:
    explicit ScreenSaverHold(QObject* parent = nullptr);
    ~ScreenSaverHold() override;

    /// Holds it off until release(); more calls change nothing.
    void hold();
    void release();
    bool is_held() const { return wanted_; }
    /// Whether there is no screen saver that would do it, as far as is known.
    bool is_refused() const { return refused_; }

private:
    enum class Grant {
        None = 0,
        Asked = 1,
        Given = 2,
    };

    void owner_changed(const QString& new_owner);
    void ask();
    void answered(QDBusPendingCallWatcher* watcher);
    static void give_back(QDBusConnection connection, uint cookie);

    QDBusConnection connection_;
    QDBusServiceWatcher watcher_;
    bool wanted_ = false;
    Grant grant_ = Grant::None;
    QDBusPendingCallWatcher* pending_ = nullptr; // while asked; ours
    uint cookie_ = 0;
    QString giver_;     // the program on the bus that gave the cookie
    QString new_owner_; // the screen saver that came while the old one was being asked
    bool refused_ = false;
    bool refusal_reported_ = false;
};
