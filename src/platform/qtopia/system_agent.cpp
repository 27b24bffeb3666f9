#include "system_agent.h"

#include "qcop_envelope.h"
#include "qpe_application.h"

#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace
{

template<typename T> T argument(const QByteArray& data)
{
    QDataStream stream(data);
    stream.setVersion(QCopEnvelope::stream_version);
    T value{};
    stream >> value;
    return value;
}

} // namespace

SystemAgent::SystemAgent(const Backlight& backlight, QObject* parent)
    : QObject(parent)
    , backlight_(backlight)
    , channel_("QPE/System", QCopChannel::Delivery::Direct, QCopChannel::Presence::Open)
{
    connect(&channel_, &QCopChannel::received, this, &SystemAgent::receive);
}

void SystemAgent::receive(const QCString& message, const QByteArray& data)
{
    if (message == "preventLCDOff()")
        screen_saver_.hold();
    else if (message == "releaseLCDOff()")
        screen_saver_.release();
    else if (message == "setBacklight(int)")
        backlight_.set(argument<int>(data));
    else if (message == "execute(QString)")
        execute(argument<QString>(data));
}

void SystemAgent::execute(const QString& name)
{
    const QString path = QPEApplication::qpeDir() + QStringLiteral("bin/") + name;
    const QFileInfo info(path);
    if (name.isEmpty() || name.contains(u'/') || name.contains(QChar(u'\0')) || !info.isFile() ||
        !info.isExecutable()) {
        qWarning("\"%s\" is not started: there is no such program in %sbin/", qUtf8Printable(name.left(80)),
                 qUtf8Printable(QPEApplication::qpeDir()));
        return;
    }
    const auto running = programs_.constFind(name);
    if (running != programs_.constEnd() && !running->start_time.isEmpty() &&
        start_time_of(running->pid) == running->start_time) {
        QCopChannel::send("QPE/Application/" + name.toUtf8(), "raise()");
        return;
    }
    QProcess process;
    process.setProgram(path);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QPEDIR"), QPEApplication::qpeDir());
    process.setProcessEnvironment(environment);
    Program program;
    if (!process.startDetached(&program.pid)) {
        qWarning("\"%s\" cannot be started: %s", qUtf8Printable(path), qUtf8Printable(process.errorString()));
        return;
    }
    program.start_time = start_time_of(program.pid);
    programs_.insert(name, program);
}

QByteArray SystemAgent::start_time_of(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray status = file.readAll();
    // The second field is the program's name in parentheses and may hold anything; the start time is the 20th behind
    // it.
    const QList<QByteArray> fields = status.mid(status.lastIndexOf(')') + 2).split(' ');
    return fields.value(0) == "Z" ? QByteArray() : fields.value(19);
}
