#pragma once

#include "config.h"
#include "setting_widget.h"
#include "shell.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

#include <cstdio>
#include <memory>

#include <unistd.h>

/// What the tests of the settings dialog share.
namespace setting_fixture
{

inline constexpr unsigned int frameless = 0x200010;
inline const QString file_name = QStringLiteral("tavel_video_setting.cfg");

inline std::unique_ptr<SettingWidget> make_settings()
{
    return std::make_unique<SettingWidget>(nullptr, "VIDEO SETTING", frameless);
}

inline int stored(const char* group, const char* key, int fallback = -99)
{
    Config file(file_name, Config::User);
    file.setGroup(QString::fromLatin1(group));
    return file.readNumEntry(QString::fromLatin1(key), fallback);
}

inline void store(const char* group, const char* key, int value)
{
    Config file(file_name, Config::User);
    file.setGroup(QString::fromLatin1(group));
    file.writeEntry(QString::fromLatin1(key), value);
}

/// Finds a control by its object name; the test ends with a crash report of its own making when it is not there.
template<typename Control> Control* control(const SettingWidget& settings, const char* name)
{
    auto* found = settings.findChild<Control*>(QString::fromLatin1(name));
    if (found == nullptr)
        qFatal("The form has no %s.", name);
    return found;
}

inline void choose(const SettingWidget& settings, const char* combo, const QString& text)
{
    auto* box = control<QComboBox>(settings, combo);
    const int index = box->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (index < 0)
        qFatal("%s has no choice %s.", combo, qPrintable(text));
    box->setCurrentIndex(index);
}

/// Records the commands that the settings give to the shell.
class ShellRecorder
{
public:
    ShellRecorder()
    {
        Shell::set_recorder([this](const QByteArray& command) {
            commands.append(command);
            return 0;
        });
    }
    ~ShellRecorder() { Shell::set_recorder({}); }
    ShellRecorder(const ShellRecorder&) = delete;
    ShellRecorder& operator=(const ShellRecorder&) = delete;

    QList<QByteArray> commands;
};

/// Takes what is printed on standard output for as long as it lives.
class PrintedLines
{
public:
    PrintedLines()
    {
        if (!file_.open())
            qFatal("There is no room for the printed lines.");
        std::fflush(stdout);
        terminal_ = ::dup(STDOUT_FILENO);
        ::dup2(file_.handle(), STDOUT_FILENO);
    }
    ~PrintedLines()
    {
        // A test that fails meanwhile says so here, too.
        const QByteArray taken = lines().join('\n');
        ::dup2(terminal_, STDOUT_FILENO);
        ::close(terminal_);
        std::fwrite(taken.constData(), 1, static_cast<std::size_t>(taken.size()), stdout);
        std::fflush(stdout);
    }
    PrintedLines(const PrintedLines&) = delete;
    PrintedLines& operator=(const PrintedLines&) = delete;

    /// The lines so far. A test's own results are printed on standard output too: ask for the line that matters.
    QList<QByteArray> lines()
    {
        std::fflush(stdout);
        QFile reader(file_.fileName());
        if (!reader.open(QIODevice::ReadOnly))
            qFatal("The printed lines cannot be read.");
        return reader.readAll().split('\n');
    }

private:
    QTemporaryFile file_;
    int terminal_ = -1;
};

} // namespace setting_fixture
