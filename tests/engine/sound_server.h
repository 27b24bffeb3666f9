#pragma once

#include <QByteArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

/// A sound server of the test's own (PulseAudio), whose output the test hears sample by sample.
class SoundServer
{
public:
    static constexpr int rate = 48000; ///< samples a second that are heard

    /// False when the machine has no such server to start.
    static bool is_installed();

    SoundServer() = default;
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    /// Starts the server, again after kill() too. @return false when it has not come up in time.
    bool start();
    /// Ends the server at once, as if it had crashed.
    void kill();
    /// The server stands still, its connections stay up. Only kill() wakes it.
    void freeze();

    /// What PULSE_SERVER has to hold for programs to find it.
    QByteArray address() const;

    /// What has been heard since forget() (the left channel), silence included.
    std::vector<qint16> heard() const;
    /// The highest sample among them.
    int loudness() const;
    void forget();

    /// What is louder than this is heard.
    static constexpr int audible = 1000;

private:
    QString path(const char* name) const { return m_directory.filePath(QLatin1String(name)); }
    void listen();

    QTemporaryDir m_directory;
    QProcess m_process;
    std::thread m_listener;
    std::atomic<bool> m_over = false;
    mutable std::mutex m_mutex; ///< guards what follows
    std::vector<qint16> m_heard;
};

/// Which sound system the engine meets while this object lives; what the machine has is out of its sight.
class SoundSystem
{
public:
    /// @param pulse_server address of a PulseAudio server; one that is not there if empty
    /// @param alsa_configuration text of an ALSA configuration; one without any device if empty
    explicit SoundSystem(const QByteArray& pulse_server = {}, const QByteArray& alsa_configuration = {});
    ~SoundSystem();
    SoundSystem(const SoundSystem&) = delete;
    SoundSystem& operator=(const SoundSystem&) = delete;

private:
    void set(const char* variable, const QByteArray& value);

    QTemporaryDir m_directory;
    std::vector<std::pair<const char*, std::optional<QByteArray>>> m_before;
};

/// Skips a test that needs a sound server where there is none to start.
#define NEEDS_SOUND_SERVER()                                                                                           \
    do {                                                                                                               \
        if (!SoundServer::is_installed())                                                                              \
            QSKIP("the sound server pulseaudio is not installed");                                                     \
    } while (false)
