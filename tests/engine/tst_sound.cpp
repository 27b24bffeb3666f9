#include "heard_bench.h"
#include "library_faults.h"
#include "sound_output.h"
#include "test_main.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;

namespace
{

constexpr double first_tone = 440.0; ///< hertz, of all films
constexpr double second_tone = 880.0;

constexpr int audible = SoundServer::audible;

/// How fast the film runs while it moves on by @p film_time: 1 is real time, 0 that it did not get there.
double rate_over(Bench& bench, Time film_time)
{
    QElapsedTimer clock;
    clock.start();
    const Time from = bench.recorder.position();
    if (!bench.runs_on(film_time))
        return 0;
    return static_cast<double>(bench.recorder.position() - from) / static_cast<double>(clock.elapsed());
}

/// @return whether the film runs @p times as fast as it should while it moves on by @p film_time.
bool keeps_time(Bench& bench, Time film_time = 5000, double times = 1)
{
    const double rate = rate_over(bench, film_time) / times;
    if (rate > 0.8 && rate < 1.2)
        return true;
    qWarning("the film runs at %g of its speed", rate);
    return false;
}

/// The tone in each twentieth of a second, in hertz; 0 where there is silence (for a part of it).
std::vector<double> tones(const std::vector<qint16>& sound)
{
    constexpr std::size_t length = SoundServer::rate / 20;
    constexpr std::size_t quiet_length = length / 20;
    std::vector<double> result;
    for (std::size_t begin = 0; begin + length <= sound.size(); begin += length) {
        std::size_t first = 0;
        std::size_t last = 0;
        int rises = 0;
        std::size_t quiet = 0;
        bool heard = true;
        for (std::size_t index = begin + 1; index < begin + length; ++index) {
            quiet = std::abs(int{sound[index]}) < audible / 4 ? quiet + 1 : 0;
            heard = heard && quiet < quiet_length;
            if (sound[index - 1] < 0 && sound[index] >= 0) {
                last = index;
                if (rises++ == 0)
                    first = index;
            }
        }
        result.push_back(
            heard && rises > 1 ? (rises - 1) * double{SoundServer::rate} / static_cast<double>(last - first) : 0.0);
    }
    return result;
}

/// The tone that is heard for most of the time.
double usual_tone(const std::vector<qint16>& sound)
{
    std::vector<double> heard = tones(sound);
    std::erase(heard, 0.0);
    if (heard.empty())
        return 0;
    std::nth_element(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(heard.size() / 2), heard.end());
    return heard[heard.size() / 2];
}

/// Waits until as many new twentieths of a second have been heard. @return whether they have
bool hears(SoundServer& server, std::ptrdiff_t count)
{
    server.forget();
    return QTest::qWaitFor(
        [&] {
            const std::vector<double> heard = tones(server.heard());
            return std::count_if(heard.begin(), heard.end(), [](double tone) { return tone > 0; }) >= count;
        },
        20000);
}

/// Listens where a sound server would, and treats all callers alike.
class FalseServer
{
public:
    enum class Manner { NeverAnswers, HangsUp };

    explicit FalseServer(Manner manner) : m_manner(manner)
    {
        sockaddr_un name = {};
        name.sun_family = AF_UNIX;
        const std::string path = m_path.toStdString();
        path.copy(name.sun_path, sizeof name.sun_path - 1);
        const auto* const address = reinterpret_cast<const sockaddr*>(&name);
        if (::bind(m_entrance, address, sizeof name) != 0 || ::listen(m_entrance, SOMAXCONN) != 0)
            qFatal("cannot listen at %s", path.c_str());
        m_thread = std::thread([this] { serve(); });
    }
    ~FalseServer()
    {
        m_over = true;
        m_thread.join();
        for (const int line : m_lines)
            ::close(line);
        ::close(m_entrance);
    }
    QByteArray address() const { return "unix:" + m_path; }
    int callers() const { return m_callers; }

private:
    void serve()
    {
        while (!m_over) {
            pollfd caller{m_entrance, POLLIN, 0};
            if (::poll(&caller, 1, 20) <= 0)
                continue;
            const int line = ::accept4(caller.fd, nullptr, nullptr, SOCK_CLOEXEC);
            if (line < 0)
                continue;
            ++m_callers;
            if (m_manner == Manner::HangsUp)
                ::close(line);
            else
                m_lines.push_back(line);
        }
    }

    const Manner m_manner;
    const QTemporaryDir m_directory;
    const QByteArray m_path = QFile::encodeName(m_directory.filePath(QStringLiteral("sound")));
    const int m_entrance = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    std::atomic<bool> m_over = false;
    std::atomic<int> m_callers = 0;
    std::vector<int> m_lines; ///< the thread's own
    std::thread m_thread;
};

/// An ALSA configuration whose default device is the stand-in that answers in this way.
QByteArray alsa_device(const char* manner)
{
    return QByteArray("pcm_type.") + manner + " { lib \"" + TAVEL_ALSA_STAND_IN + "\" }\npcm.!default { type " +
           manner + " }\n";
}

void write_file(const QString& path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

/// What a film does with its sound: what is heard, and that it keeps its time whatever the sound system does.
class TstSound : public QObject
{
    Q_OBJECT

private slots:
    void the_sound_of_a_film_is_heard()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        for (const char* film : {"minute.mp4", "minute.mp4"}) { // the second film finds the sound at work
            bench.server.forget();
            bench.recorder.clear();
            QVERIFY(bench.start(test_films::path(film)));
            QTRY_VERIFY(std::abs(usual_tone(bench.server.heard()) - first_tone) < 5);
            QVERIFY(keeps_time(bench));
        }
    }

    void the_tone_stays_at_every_speed()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        while (bench.player.set_speed(static_cast<int>(SpeedCode::Down)) == rask::ok) {
        }
        std::vector<int> speeds;
        do {
            speeds.push_back(bench.player.get_speed());
            // What is on its way to the loudspeaker still has the speed of before.
            QVERIFY(hears(bench.server, 20));
            QVERIFY(hears(bench.server, 20));
            const std::vector<qint16> sound = bench.server.heard();
            const double tone = usual_tone(sound);
            QVERIFY2(std::abs(tone - first_tone) < 15,
                     qPrintable(QStringLiteral("%1 hertz at %2 percent").arg(tone).arg(speeds.back())));
        } while (bench.player.set_speed(static_cast<int>(SpeedCode::Up)) == rask::ok);
        QCOMPARE(speeds, std::vector<int>({50, 75, 100, 125, 150, 175, 200}));
    }

    void another_sound_track_is_heard_within_half_a_second()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("two_sounds.mkv")));
        QTRY_VERIFY(std::abs(usual_tone(bench.server.heard()) - first_tone) < 5);
        bench.server.forget();
        QCOMPARE(bench.player.select_stream(2, 2), rask::ok);
        const auto is_second = [](double tone) { return std::abs(tone - second_tone) < 20; };
        const auto heard = [&] {
            const std::vector<double> all = tones(bench.server.heard());
            return std::count_if(all.begin(), all.end(), is_second) >= 5;
        };
        QTRY_VERIFY(heard());
        const std::vector<double> all = tones(bench.server.heard());
        const auto arrived = std::find_if(all.begin(), all.end(), is_second);
        // Twentieths of a second in which neither track is heard.
        const auto gap = std::count(all.begin(), arrived, 0.0);
        QVERIFY2(gap < 10, qPrintable(QString::number(gap)));
    }

    void the_volume_is_heard()
    {
        NEEDS_SOUND_SERVER();
        set_application_volume(40);
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        const auto becomes = [&](auto condition) {
            return QTest::qWaitFor(
                [&] {
                    bench.server.forget();
                    return QTest::qWaitFor([&] { return bench.server.heard().size() > SoundServer::rate / 5; },
                                           10000) &&
                           condition(bench.server.loudness());
                },
                20000);
        };
        QVERIFY(becomes([](int loudest) { return loudest > 2 * audible; }));
        set_application_volume(20);
        QVERIFY(becomes([](int loudest) { return loudest > 20 && loudest < audible; }));
        set_application_volume(0);
        QVERIFY(becomes([](int loudest) { return loudest == 0; }));
        set_application_volume(40);
        QVERIFY(becomes([](int loudest) { return loudest > 2 * audible; }));
    }

    void without_any_sound_device_a_film_plays_in_real_time()
    {
        const SoundSystem nothing;
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.runs_on(200));
        QVERIFY(keeps_time(bench));
        bench.recorder.clear();
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.runs_on(200));
        QVERIFY(keeps_time(bench));
    }

    void a_busy_sound_device_leaves_the_film_its_time()
    {
        const SoundSystem system({}, alsa_device("busy"));
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.runs_on(200));
        QVERIFY(keeps_time(bench));
    }

    void a_sound_device_that_does_not_come_back_leaves_the_film_its_time()
    {
        const SoundSystem system({}, alsa_device("stuck"));
        const qsizetype threads = Bench::settled_count("task");
        QTemporaryDir directory;
        const QString gate = directory.filePath(QStringLiteral("gate"));
        qputenv("TAVEL_ALSA_GATE", QFile::encodeName(gate));
        bool in_time = false;
        {
            Bench bench;
            in_time = bench.start(test_films::path("minute.mp4")) && bench.runs_on(200) && keeps_time(bench);
        }
        write_file(gate);
        QVERIFY(in_time);
        // What was left behind ends once the device has come back.
        QTRY_COMPARE(Bench::count("task"), threads);
        qunsetenv("TAVEL_ALSA_GATE");
    }

    void a_sound_server_that_hangs_up_leaves_the_film_its_time()
    {
        const FalseServer server(FalseServer::Manner::HangsUp);
        const SoundSystem system(server.address());
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QVERIFY(bench.runs_on(200));
        QVERIFY(keeps_time(bench));
        QVERIFY(server.callers() > 0);
    }

    void a_sound_server_that_never_answers_leaves_the_film_its_time()
    {
        const FalseServer server(FalseServer::Manner::NeverAnswers);
        const SoundSystem system(server.address());
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        // The first film waits for the sound for a moment, the next one does not.
        QVERIFY(bench.runs_on(200));
        QVERIFY(server.callers() > 0);
        QVERIFY(keeps_time(bench));
        QTRY_VERIFY(bench.frame() > 20);
        const int callers = server.callers();
        bench.recorder.clear();
        QVERIFY(bench.start(test_films::path("h264.mp4")));
        QVERIFY(bench.recorder.wait_for_reports(5, 20s));
        QCOMPARE(server.callers(), callers);
    }

    void a_film_that_is_held_up_by_something_else_is_heard()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        // Longer than a sound server may hold a film up.
        library_faults::delay_filter(3s);
        QVERIFY(bench.start(test_films::path("rotated.mp4")));
        QTRY_VERIFY_WITH_TIMEOUT(bench.server.loudness() > audible, 20000);
    }

    void a_film_that_no_library_plays_on_is_given_up()
    {
        const FalseServer server(FalseServer::Manner::NeverAnswers);
        const SoundSystem system(server.address());
        Bench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        // Now the library waits for the sound, and does not answer.
        QTRY_VERIFY(server.callers() > 0 && library_faults::owes_position());
        const auto start_again = qScopeGuard([] { library_faults::refuse_to_start(false); });
        library_faults::refuse_to_start(true);
        bench.recorder.clear();
        QCOMPARE(bench.player.seek(SeekMode::Forward, 40000), rask::ok);
        QVERIFY(bench.recorder.wait_for_reports(1, 20s));
        QCOMPARE(bench.recorder.reports(), QStringList({QStringLiteral("error 8")}));
        QCOMPARE(bench.player.play(), rask::wrong_state);
        QVERIFY(!bench.is_busy());
        library_faults::refuse_to_start(false);
        QVERIFY(bench.start(test_films::path("h264.mp4")));
    }

    void a_film_plays_on_when_the_sound_server_goes_away()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QTRY_VERIFY(bench.server.loudness() > audible);
        bench.server.kill();
        QVERIFY(bench.runs_on(500));
        QVERIFY(keeps_time(bench));
        // Once it has come back the next film is heard. When its end held the engine up, that is one a minute later.
        QVERIFY(bench.server.start());
        bench.server.forget();
        bool heard = false;
        for (int film = 0; film < 10 && !heard; ++film) {
            QVERIFY(bench.start(test_films::path("minute.mp4")));
            heard = QTest::qWaitFor([&bench] { return bench.server.loudness() > audible; }, 8000);
        }
        QVERIFY(heard);
    }

    void a_film_plays_on_when_the_sound_server_stands_still()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QTRY_VERIFY(bench.server.loudness() > audible);
        bench.server.freeze();
        QVERIFY(bench.runs_on(3000));
        QVERIFY(keeps_time(bench));
        // Speed, pause and seeks are those of before.
        QCOMPARE(bench.player.set_speed(static_cast<int>(SpeedCode::Up)), rask::ok);
        QVERIFY(bench.seek(40000));
        QVERIFY(bench.runs_on(500));
        QVERIFY(bench.recorder.position() > 40000 && bench.recorder.position() < 50000);
        QVERIFY(!bench.recorder.reports().join(u' ').contains(QStringLiteral("error")));
    }

    void speed_and_track_outlive_a_sound_server_that_stands_still()
    {
        NEEDS_SOUND_SERVER();
        HeardBench bench;
        QVERIFY(bench.start(test_films::path("minute.mp4")));
        QTRY_VERIFY(bench.server.loudness() > audible);
        while (bench.player.set_speed(static_cast<int>(SpeedCode::Up)) == rask::ok) {
        }
        QVERIFY(bench.seek(20000));
        QVERIFY(bench.runs_on(500));
        bench.server.freeze();
        QVERIFY(bench.runs_on(5000));
        QVERIFY(bench.recorder.position() > 25000);
        QVERIFY(keeps_time(bench, 10000, 2));
    }
};

TAVEL_TEST_MAIN(TstSound)
#include "tst_sound.moc"
