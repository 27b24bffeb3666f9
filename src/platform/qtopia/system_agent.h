#pragma once

#include "backlight.h"
#include "qcop_channel.h"
#include "screen_saver_hold.h"

#include <QHash>

/// Answers on "QPE/System" where no launcher does: screen blanking, backlight, programs. docs/qcop.md lists the
/// messages.
///
/// Acts before a sender in this program has returned from sending, since the dictionary dialog waits for the program it
/// had started without running the event loop. GUI thread.
class SystemAgent : public QObject
{
    Q_OBJECT

public:
    explicit SystemAgent(const Backlight& backlight = Backlight(), QObject* parent = nullptr);

    const ScreenSaverHold& screen_saver() const { return screen_saver_; }

private:
    struct Program {
        qint64 pid = 0;
        QByteArray start_time; // tells it from a later process of the same number
    };

    void receive(const QCString& message, const QByteArray& data);
    void execute(const QString& name);
    static QByteArray start_time_of(qint64 pid);

    Backlight backlight_;
    ScreenSaverHold screen_saver_;
    QCopChannel channel_;
    QHash<QString, Program> programs_;
};
