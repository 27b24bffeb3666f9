#pragma once

#include "films.h"
#include "media_player.h"
#include "report_recorder.h"
#include "test_main.h"
#include "video_plane.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

/// A player on the bench: its recorder, and the video plane on show at one pixel a unit.
struct Bench {
    Bench()
    {
        show_plane(QRect(0, 0, 480, 272));
        VideoPlane::instance().clear();
    }

    static void show_plane(const QRect& window)
    {
        VideoPlane::instance().set_mapping({1.0, {}, true});
        VideoPlane::instance().set_window(window);
    }

    bool open(const QString& film) { return player.open(QFile::encodeName(film).constData()) == rask::ok; }
    bool load(const QString& film)
    {
        return open(film) && player.prepare(QFile::encodeName(film).constData()) == rask::ok;
    }
    bool start(const QString& film) { return load(film) && player.play() == rask::ok; }

    bool seek(Time target)
    {
        recorder.clear();
        return player.seek(SeekMode::Forward, target) == rask::ok &&
               recorder.wait_for_reports(1, std::chrono::milliseconds(test_support::stretched(6000)));
    }

    bool is_busy()
    {
        bool busy = false;
        return player.query(static_cast<int>(Query::Busy), &busy) == rask::ok && busy;
    }

    /// Waits until the film has moved @p film_time further than it is now.
    bool runs_on(Time film_time)
    {
        const Time from = std::max<Time>(recorder.position(), 0);
        return recorder.wait_for_position([=](Time position) { return position >= from + film_time; },
                                          std::chrono::milliseconds((10000 + 10 * film_time) * TAVEL_WAIT_FACTOR));
    }

    /// The picture on the plane; null when it is black.
    static QImage picture()
    {
        const QImage& newest = VideoPlane::instance().newest_frame();
        return newest.copy();
    }
    /// The number of the frame on the plane; -1 without one.
    static int frame()
    {
        const QImage newest = picture();
        return newest.isNull() ? -1 : test_films::frame_number(newest);
    }

    /// Entries of a folder of /proc/self: "task" are the threads, "fd" the open files.
    static qsizetype count(const char* folder)
    {
        return QDir(QStringLiteral("/proc/self/") + QLatin1String(folder))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    }

    /// The same once it has stood still for half a second: what a closed film leaves ends on its own.
    static qsizetype settled_count(const char* folder)
    {
        qsizetype entries = count(folder);
        QDeadlineTimer still(500);
        for (const QDeadlineTimer limit(test_support::stretched(10000)); !still.hasExpired() && !limit.hasExpired();) {
            QTest::qWait(20); // between two looks
            if (const qsizetype now = count(folder); now != entries) {
                entries = now;
                still = QDeadlineTimer(500);
            }
        }
        return entries;
    }

    ReportRecorder recorder;
    MediaPlayer player{&recorder};
};

/// A number from the environment, for tests whose size can be chosen.
inline int chosen(const char* variable, int otherwise)
{
    bool set = false;
    const int value = qEnvironmentVariableIntValue(variable, &set);
    return set ? value : otherwise;
}
