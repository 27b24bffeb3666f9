#pragma once

#include "config.h"
#include "setting_widget.h"
#include "shell.h"
#include "test_main.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

#include <memory>

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

} // namespace setting_fixture
