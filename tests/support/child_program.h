#pragma once

#include <QCoreApplication>
#include <QProcess>

/// Another program for a test: the test program itself, started once more in a role.
class ChildProgram : public QProcess
{
public:
    static constexpr const char* role_variable = "TAVEL_TEST_ROLE";

    /// The role this process was started in; empty for the test itself.
    static QByteArray role() { return qgetenv(role_variable); }

    ~ChildProgram() override
    {
        kill();
        waitForFinished();
    }

    /// Starts a program of this build in @p process; through the emulator when the test itself runs in one, because the
    /// machine would not know what to do with the file.
    static void start_built(QProcess& process, const QString& program, const QStringList& arguments)
    {
        const QStringList command =
            qEnvironmentVariable("TAVEL_EMULATOR").split(u' ', Qt::SkipEmptyParts) + QStringList{program} + arguments;
        process.start(command.first(), command.mid(1));
    }

    /// Starts this program in @p role with @p arguments. What it says on standard error comes out with the test's.
    void start_role(const char* role, const QStringList& arguments = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QLatin1String(role_variable), QLatin1String(role));
        setProcessEnvironment(environment);
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start_built(*this, QCoreApplication::applicationFilePath(), arguments);
    }

    /// The lines it has written so far.
    QList<QByteArray> lines()
    {
        output_ += readAllStandardOutput();
        QList<QByteArray> list = output_.split('\n');
        list.removeLast();
        return list;
    }

private:
    QByteArray output_;
};
