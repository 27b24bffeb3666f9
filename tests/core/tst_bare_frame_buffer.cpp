#include "child_program.h"
#include "films.h"
#include "test_main.h"

#include <QLibraryInfo>

#include <linux/input.h>

#include <sys/stat.h>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

/// The program itself on a frame buffer without any window system: a plain file that a preloaded library has answer
/// like one, and a keyboard that is a pipe.
class BareFrameBufferTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString plugins = QLibraryInfo::path(QLibraryInfo::PluginsPath);
        if (!QFile::exists(plugins + QStringLiteral("/platforms/libqlinuxfb.so")))
            QSKIP("the toolkit's frame-buffer plugin is not installed");
    }

    void init()
    {
        test_support::reset_directories();
        said.clear();
        directory = std::make_unique<QTemporaryDir>();
        QVERIFY(directory->isValid());
        const QByteArray pipe = QFile::encodeName(directory->filePath(QStringLiteral("keyboard")));
        QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
        keyboard = ::open(pipe.constData(), O_RDWR | O_CLOEXEC);
        QVERIFY(keyboard >= 0);
    }

    void cleanup()
    {
        if (player)
            player->kill();
        if (player)
            player->waitForFinished();
        player.reset();
        ::close(keyboard);
        directory.reset();
    }

    void the_film_fills_the_panel_and_keys_reach_the_player()
    {
        start(QSize(480, 272), 32);
        QTRY_VERIFY2_WITH_TIMEOUT(frame() > 5, said.constData(), limit_ms);
        press(KEY_F4);
        QTRY_VERIFY2_WITH_TIMEOUT(says("2002: play_state -> stop_state"), said.constData(), limit_ms);
        QTRY_VERIFY_WITH_TIMEOUT(picture().pixelColor(40, 200) == QColor(Qt::black), limit_ms);
        ends_when_asked();
    }

    void a_larger_frame_buffer_of_sixteen_bits_shows_the_film_between_bars()
    {
        start(QSize(640, 480), 16);
        const auto film = [this] { return picture().copy(0, 59, 640, 362); };
        QTRY_VERIFY2_WITH_TIMEOUT(test_films::frame_number(film()) > 5, said.constData(), limit_ms);
        const QImage shown = picture();
        for (const int y : {10, 50, 430, 470}) {
            for (int x = 0; x < 640; x += 16)
                QCOMPARE(shown.pixelColor(x, y), QColor(Qt::black));
        }
        ends_when_asked();
    }

private:
    static constexpr int limit_ms = 60'000;

    void start(QSize size, int bits)
    {
        resolution = size;
        format = bits == 16 ? QImage::Format_RGB16 : QImage::Format_RGB32;
        const QString device = directory->filePath(QStringLiteral("fb0"));
        QVERIFY(QFile::resize(device, 0) || QFile(device).open(QIODevice::WriteOnly));
        QVERIFY(QFile::resize(device, qint64{size.width()} * size.height() * bits / 8));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(FRAME_BUFFER_STAND_IN));
        // The sanitizer wants to be the first library of all. The toolkit's plugin never frees its keyboards, in stacks
        // too short for a suppression; the program's own leaks are looked for where it runs without that plugin.
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           environment.value(QStringLiteral("ASAN_OPTIONS")) +
                               QStringLiteral(":verify_asan_link_order=0:detect_leaks=0"));
        environment.insert(QStringLiteral("TAVEL_FRAME_BUFFER"),
                           QStringLiteral("%1 %2 %3").arg(size.width()).arg(size.height()).arg(bits));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("linuxfb:fb=") + device);
        environment.insert(QStringLiteral("QT_QPA_FB_HIDECURSOR"), QStringLiteral("1"));
        environment.insert(QStringLiteral("QT_QPA_FB_NO_LIBINPUT"), QStringLiteral("1"));
        // The toolkit takes names below /dev only.
        environment.insert(QStringLiteral("QT_QPA_EVDEV_KEYBOARD_PARAMETERS"),
                           QStringLiteral("/dev/..") + directory->filePath(QStringLiteral("keyboard")));
        // The chart's trace tells an event and where it led, a line each.
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("tavel.chart.debug=true"));
        player = std::make_unique<QProcess>();
        player->setProcessEnvironment(environment);
        player->setProcessChannelMode(QProcess::MergedChannels);
        player->start(QStringLiteral(PLAYER_PROGRAM), {test_films::path("minute.mp4")});
        QVERIFY(player->waitForStarted(limit_ms));
    }

    QImage picture() const
    {
        QFile device(directory->filePath(QStringLiteral("fb0")));
        if (!device.open(QIODevice::ReadOnly))
            return {};
        const QByteArray pixels = device.readAll();
        const qsizetype line = pixels.size() / resolution.height();
        return QImage(reinterpret_cast<const uchar*>(pixels.constData()), resolution.width(), resolution.height(), line,
                      format)
            .copy();
    }
    int frame() const { return test_films::frame_number(picture()); }

    void press(int code) const
    {
        for (const int value : {1, 0}) {
            std::array<input_event, 2> events = {};
            events[0].type = EV_KEY;
            events[0].code = static_cast<quint16>(code);
            events[0].value = value;
            events[1].type = EV_SYN;
            QCOMPARE(::write(keyboard, events.data(), sizeof events), static_cast<ssize_t>(sizeof events));
        }
    }

    bool says(const char* text)
    {
        said += player->readAll();
        return said.contains(text);
    }

    void ends_when_asked()
    {
        ::kill(static_cast<pid_t>(player->processId()), SIGTERM);
        QTRY_COMPARE_WITH_TIMEOUT(player->state(), QProcess::NotRunning, limit_ms);
        QCOMPARE(player->exitStatus(), QProcess::NormalExit);
        QCOMPARE(player->exitCode(), 0);
    }

    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<QProcess> player;
    QByteArray said;
    QSize resolution;
    QImage::Format format = QImage::Format_RGB32;
    int keyboard = -1;
};

TAVEL_TEST_MAIN(BareFrameBufferTest)
#include "tst_bare_frame_buffer.moc"
