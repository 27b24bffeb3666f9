#include "media_player.h"

#include "media_probe.h"
#include "scripted_film.h"
#include "sound_output.h"

#include <cstdint>
#include <cstring>

/// Every operation of the scripted engine writes itself down, answers what the script says and else lets the imagined
/// film act.
class MediaPlayer::Private
{
public:
    explicit Private(MediaCallback* callback) : film(callback) {}

    static RaskStatus call(const char* operation, const QString& arguments = QString())
    {
        return Script::instance().call(QString::fromLatin1(operation), arguments);
    }
    static void ask(const QString& question) { Script::instance().write(question, true); }

    ScriptedFilm film;
};

MediaPlayer::MediaPlayer(MediaCallback* callback) : d(std::make_unique<Private>(callback))
{
    Script::instance().write(QStringLiteral("MediaPlayer"));
}

MediaPlayer::~MediaPlayer()
{
    Script::instance().write(QStringLiteral("~MediaPlayer"));
}

unsigned MediaPlayer::initialize()
{
    return Private::call("initialize");
}

unsigned MediaPlayer::prepare(const char* file_name)
{
    const QString file = QString::fromUtf8(file_name);
    const RaskStatus status = Private::call("prepare", file);
    return status != rask::ok ? status : d->film.prepare(file);
}

unsigned MediaPlayer::close()
{
    const RaskStatus status = Private::call("close");
    d->film.close();
    return status;
}

unsigned MediaPlayer::play()
{
    const RaskStatus status = Private::call("play");
    return status != rask::ok ? status : d->film.play();
}

unsigned MediaPlayer::pause()
{
    const RaskStatus status = Private::call("pause");
    return status != rask::ok ? status : d->film.pause();
}

unsigned MediaPlayer::seek(SeekMode mode, Time target)
{
    const RaskStatus status = Private::call("seek", QStringLiteral("%1 %2").arg(static_cast<int>(mode)).arg(target));
    return status != rask::ok ? status : d->film.seek(target);
}

unsigned MediaPlayer::scan_backward(int rate)
{
    const RaskStatus status = Private::call("scan_backward", QString::number(rate));
    return status != rask::ok ? status : d->film.scan(rate, false);
}

unsigned MediaPlayer::scan_forward(int rate)
{
    const RaskStatus status = Private::call("scan_forward", QString::number(rate));
    return status != rask::ok ? status : d->film.scan(rate, true);
}

unsigned MediaPlayer::set_video_window(int x, int y, int width, int height)
{
    return Private::call("set_video_window", QStringLiteral("%1 %2 %3 %4").arg(x).arg(y).arg(width).arg(height));
}

unsigned MediaPlayer::set_aspect(int mode)
{
    return Private::call("set_aspect", QString::number(mode));
}

unsigned MediaPlayer::set_parameter(int number, const void* value, unsigned size)
{
    QString arguments = QString::number(number);
    for (unsigned offset = 0; value && offset + sizeof(std::int32_t) <= size; offset += sizeof(std::int32_t)) {
        std::int32_t word = 0;
        std::memcpy(&word, static_cast<const char*>(value) + offset, sizeof word);
        arguments += u' ' + QString::number(word);
    }
    const RaskStatus status = Private::call("set_parameter", arguments);
    if (status != rask::ok)
        return status;
    constexpr unsigned three_words = 3 * sizeof(std::int32_t);
    return number == static_cast<int>(Parameter::Colour) && value && size == three_words ? rask::ok
                                                                                         : rask::out_of_range;
}

unsigned MediaPlayer::release()
{
    const RaskStatus status = Private::call("release");
    d->film.release();
    return status;
}

unsigned MediaPlayer::set_speed(int code)
{
    const RaskStatus status = Private::call("set_speed", QString::number(code));
    return status != rask::ok ? status : d->film.set_speed(code);
}

unsigned MediaPlayer::select_stream(int kind, int track)
{
    const RaskStatus status = Private::call("select_stream", QStringLiteral("%1 %2").arg(kind).arg(track));
    return status != rask::ok ? status : d->film.select_stream(kind, track);
}

unsigned MediaPlayer::open(const char* file_name)
{
    const QString file = QString::fromUtf8(file_name);
    const RaskStatus status = Private::call("open", file);
    if (status == rask::ok)
        return d->film.open(file);
    d->film.close();
    return status;
}

bool MediaPlayer::has_info(const char* group)
{
    const QString name = QString::fromUtf8(group);
    Private::ask(QStringLiteral("has_info ") + name);
    return d->film.is_open() && Script::instance().has_group(name);
}

QString MediaPlayer::get_info(const char* group, const char* item)
{
    const QString group_name = QString::fromUtf8(group);
    const QString item_name = QString::fromUtf8(item);
    Private::ask(QStringLiteral("get_info ") + group_name + u' ' + item_name);
    return d->film.is_open() ? Script::instance().info(group_name, item_name) : QString();
}

const std::vector<Subtitle>* MediaPlayer::get_subtitles(unsigned track)
{
    Private::ask(QStringLiteral("get_subtitles %1").arg(track));
    return d->film.subtitles(track);
}

unsigned MediaPlayer::query(int number, bool* answer)
{
    const RaskStatus status = Script::instance().ask(QStringLiteral("query"), QString::number(number));
    if (status != rask::ok)
        return status;
    if (number != static_cast<int>(Query::Busy) || !answer)
        return rask::out_of_range;
    *answer = Script::instance().busy().value_or(d->film.is_busy());
    return rask::ok;
}

unsigned MediaPlayer::set_option(int option, bool on)
{
    const RaskStatus status = Private::call("set_option", QStringLiteral("%1 %2").arg(option).arg(on ? 1 : 0));
    if (status != rask::ok)
        return status;
    return option == static_cast<int>(Option::DigitalOutput) ? rask::ok : rask::out_of_range;
}

int MediaPlayer::get_speed()
{
    Private::ask(QStringLiteral("get_speed"));
    return d->film.speed();
}

void MediaPlayer::set_subtitles_ready_hook(std::function<void()> hook)
{
    d->film.set_subtitles_ready_hook(std::move(hook));
}

void set_application_volume(unsigned char volume)
{
    Script::instance().write(QStringLiteral("set_application_volume %1").arg(volume));
}

std::optional<MediaSummary> probe_media(const QString&, int, const std::stop_token&)
{
    return Script::instance().summary();
}
