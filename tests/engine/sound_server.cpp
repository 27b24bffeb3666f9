#include "sound_server.h"

#include <QFile>
#include <QLocalSocket>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTest>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <numeric>

namespace
{

constexpr auto program = "pulseaudio";
constexpr int start_limit_ms = 20000;

} // namespace

bool SoundServer::is_installed()
{
    return !QStandardPaths::findExecutable(QLatin1String(program)).isEmpty();
}

SoundServer::~SoundServer()
{
    kill();
}

bool SoundServer::start()
{
    kill();
    QFile::remove(path("socket"));
    QFile::remove(path("output"));
    if (::mkfifo(QFile::encodeName(path("output")).constData(), 0600) != 0)
        return false;
    m_over = false;
    m_listener = std::thread([this] { listen(); });

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_directory.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_directory.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_directory.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nowhere"));
    environment.remove(QStringLiteral("PULSE_SERVER"));
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    // It must not outlive a test that crashes.
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    m_process.start(
        QLatin1String(program),
        {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--use-pid-file=no"),
         QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--realtime=no"), QStringLiteral("--high-priority=no"),
         // Without a clock of its own the sink would take all that comes at once.
         QStringLiteral("--load=module-pipe-sink file=%1 format=s16le channels=2 rate=%2 "
                        "use_system_clock_for_timing=yes")
             .arg(path("output"))
             .arg(rate),
         QStringLiteral("--load=module-native-protocol-unix socket=%1 auth-anonymous=1").arg(path("socket"))});
    return QTest::qWaitFor(
        [this] {
            QLocalSocket caller;
            caller.connectToServer(path("socket"));
            return caller.state() == QLocalSocket::ConnectedState;
        },
        start_limit_ms);
}

void SoundServer::kill()
{
    m_process.kill();
    m_process.waitForFinished();
    m_over = true;
    if (m_listener.joinable())
        m_listener.join();
}

void SoundServer::freeze()
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGSTOP);
}

QByteArray SoundServer::address() const
{
    return "unix:" + QFile::encodeName(path("socket"));
}

std::vector<qint16> SoundServer::heard() const
{
    const std::lock_guard lock(m_mutex);
    return m_heard;
}

int SoundServer::loudness() const
{
    const std::lock_guard lock(m_mutex);
    return std::accumulate(m_heard.begin(), m_heard.end(), 0,
                           [](int loudest, qint16 sample) { return std::max(loudest, std::abs(int{sample})); });
}

void SoundServer::forget()
{
    const std::lock_guard lock(m_mutex);
    m_heard.clear();
}

void SoundServer::listen()
{
    // Open for both, or it would be at its end whenever nobody writes.
    const int output = ::open(QFile::encodeName(path("output")).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    QByteArray bytes;
    while (!m_over) {
        constexpr int look_interval_ms = 20;
        pollfd readable{output, POLLIN, 0};
        ::poll(&readable, 1, look_interval_ms);
        std::array<char, 16384> block = {};
        const ssize_t size = ::read(output, block.data(), block.size());
        if (size <= 0)
            continue;
        bytes.append(block.data(), size);
        constexpr qsizetype both_channels = 2 * sizeof(qint16);
        const std::lock_guard lock(m_mutex);
        qsizetype place = 0;
        for (; place + both_channels <= bytes.size(); place += both_channels) {
            qint16 left = 0;
            std::memcpy(&left, bytes.constData() + place, sizeof left);
            m_heard.push_back(left);
        }
        bytes.remove(0, place);
    }
    ::close(output);
}

SoundSystem::SoundSystem(const QByteArray& pulse_server, const QByteArray& alsa_configuration)
{
    QFile configuration(m_directory.filePath(QStringLiteral("asound.conf")));
    if (!configuration.open(QIODevice::WriteOnly) ||
        configuration.write(alsa_configuration) != alsa_configuration.size())
        qFatal("cannot write %s", qPrintable(configuration.fileName()));
    configuration.close();
    const QByteArray nowhere = QFile::encodeName(m_directory.filePath(QStringLiteral("nowhere")));
    set("PULSE_SERVER", pulse_server.isEmpty() ? "unix:" + nowhere : pulse_server);
    set("PIPEWIRE_REMOTE", nowhere);
    set("ALSA_CONFIG_PATH", QFile::encodeName(configuration.fileName()));
}

SoundSystem::~SoundSystem()
{
    for (const auto& [variable, value] : m_before)
        value ? qputenv(variable, *value) : qunsetenv(variable);
}

void SoundSystem::set(const char* variable, const QByteArray& value)
{
    m_before.emplace_back(variable,
                          qEnvironmentVariableIsSet(variable) ? std::optional(qgetenv(variable)) : std::nullopt);
    qputenv(variable, value);
}
