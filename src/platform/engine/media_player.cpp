#include "media_player.h"

#include "digital_output.h"
#include "media_file.h"
#include "playback.h"
#include "sound_volume.h"
#include "subtitles/subtitle_store.h"
#include "video_plane.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstring>

using namespace std::chrono_literals;

namespace
{

/// How long open() may take.
constexpr auto open_limit = 5000ms;

/// How much of that it waits for the subtitle files beside the film; what takes longer is read while the film plays.
constexpr auto beside_limit = 2000ms;

/// The library takes a relative name for anything but a file.
QByteArray absolute_path(const char* file_name)
{
    const QByteArray name(file_name);
    if (name.isEmpty() || name.startsWith('/'))
        return name;
    return QFile::encodeName(QDir::currentPath()) + '/' + name;
}

} // namespace

/// The side of the thread that calls the operations: the open file and what is known about it.
class MediaPlayer::Private
{
public:
    explicit Private(MediaCallback* callback)
    {
        // The library refuses to start when numbers are written with a decimal comma.
        std::setlocale(LC_NUMERIC, "C");
        playback = Playback::start(callback);
        set_volume_listener(this, [playback = playback](double percent) { playback->set_volume(percent); });
        VideoPlane::instance().set_resize_hook([playback = playback] { playback->redraw(); });
    }

    void forget_file();

    std::shared_ptr<Playback> playback; ///< null after release()
    MediaFile file;                     ///< the one that was opened last, as it was found
    bool is_open = false;               ///< whether it still is
    std::unique_ptr<SubtitleStore> subtitles;
    std::shared_ptr<SubtitleStore::Hook> subtitles_ready = std::make_shared<SubtitleStore::Hook>();
};

void MediaPlayer::Private::forget_file()
{
    is_open = false;
    if (subtitles)
        subtitles->stop_reading();
}

MediaPlayer::MediaPlayer(MediaCallback* callback) : d(std::make_unique<Private>(callback)) {}

MediaPlayer::~MediaPlayer()
{
    MediaPlayer::release();
}

unsigned MediaPlayer::initialize()
{
    return d->playback ? d->playback->initialize() : rask::wrong_state;
}

unsigned MediaPlayer::prepare(const char* file_name)
{
    if (!d->playback)
        return rask::wrong_state;
    const QByteArray path = absolute_path(file_name);
    if (!d->is_open || d->file.path != path) {
        if (const unsigned status = MediaPlayer::open(file_name); status != rask::ok)
            return status;
    }
    const unsigned status = d->playback->load(d->file);
    if (status == rask::ok)
        d->subtitles->read_rest();
    return status;
}

unsigned MediaPlayer::close()
{
    d->forget_file();
    return d->playback ? d->playback->stop() : rask::ok;
}

unsigned MediaPlayer::play()
{
    return d->playback ? d->playback->play() : rask::wrong_state;
}

unsigned MediaPlayer::pause()
{
    return d->playback ? d->playback->pause() : rask::wrong_state;
}

unsigned MediaPlayer::seek(SeekMode, Time target)
{
    return d->playback ? d->playback->seek(target) : rask::wrong_state;
}

unsigned MediaPlayer::scan_backward(int rate)
{
    return d->playback ? d->playback->scan(rate, false) : rask::wrong_state;
}

unsigned MediaPlayer::scan_forward(int rate)
{
    return d->playback ? d->playback->scan(rate, true) : rask::wrong_state;
}

unsigned MediaPlayer::set_video_window(int x, int y, int width, int height)
{
    if (!d->playback)
        return rask::wrong_state;
    VideoPlane::instance().set_window(QRect(x, y, width, height));
    return rask::ok;
}

unsigned MediaPlayer::set_aspect(int mode)
{
    return d->playback ? d->playback->set_keep_aspect(mode != static_cast<int>(AspectMode::Fill)) : rask::wrong_state;
}

unsigned MediaPlayer::set_parameter(int number, const void* value, unsigned size)
{
    if (!d->playback)
        return rask::wrong_state;
    std::array<std::int32_t, 3> colour = {};
    if (number != static_cast<int>(Parameter::Colour) || !value || size != sizeof colour)
        return rask::out_of_range;
    std::memcpy(colour.data(), value, sizeof colour);
    return d->playback->set_colour({colour[0], colour[1], colour[2]});
}

unsigned MediaPlayer::release()
{
    d->forget_file();
    if (!d->playback)
        return rask::ok;
    remove_volume_listener(d.get());
    VideoPlane::instance().set_resize_hook({});
    d->subtitles_ready->set({});
    d->subtitles.reset();
    d->playback->shut_down();
    d->playback.reset();
    return rask::ok;
}

unsigned MediaPlayer::set_speed(int code)
{
    return d->playback ? d->playback->set_speed(code) : rask::wrong_state;
}

unsigned MediaPlayer::select_stream(int kind, int track)
{
    if (!d->playback)
        return rask::wrong_state;
    if (kind != static_cast<int>(StreamKind::Audio))
        return rask::out_of_range;
    return d->playback->select_sound(track);
}

unsigned MediaPlayer::open(const char* file_name)
{
    if (!d->playback)
        return rask::wrong_state;
    MediaPlayer::close();
    const auto end = std::chrono::steady_clock::now() + open_limit;
    MediaFile file = MediaFile::look_within(absolute_path(file_name), open_limit, {}, &d->file);
    d->subtitles.reset();
    if (file.status != rask::ok)
        return file.status;
    d->file = std::move(file);
    d->is_open = true;
    d->subtitles = std::make_unique<SubtitleStore>(
        SubtitleStore::Sources{QFile::decodeName(d->file.path), d->file.frame_rate(), d->file.text_streams},
        d->subtitles_ready);
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    d->subtitles->wait_for_beside(std::clamp(left, 0ms, beside_limit));
    d->file.infos[QStringLiteral("container")][QStringLiteral("subtitle_streams")] =
        QString::number(d->subtitles->count());
    return rask::ok;
}

bool MediaPlayer::has_info(const char* group)
{
    return d->is_open && d->file.infos.contains(QString::fromUtf8(group));
}

QString MediaPlayer::get_info(const char* group, const char* item)
{
    return d->is_open ? d->file.infos.value(QString::fromUtf8(group)).value(QString::fromUtf8(item)) : QString();
}

const std::vector<Subtitle>* MediaPlayer::get_subtitles(unsigned track)
{
    return d->is_open ? d->subtitles->lines(track) : nullptr;
}

unsigned MediaPlayer::query(int number, bool* answer)
{
    if (number != static_cast<int>(Query::Busy) || !answer)
        return rask::out_of_range;
    *answer = d->playback && d->playback->is_busy();
    return rask::ok;
}

unsigned MediaPlayer::set_option(int option, bool on)
{
    if (!d->playback)
        return rask::wrong_state;
    if (option != static_cast<int>(Option::DigitalOutput))
        return rask::out_of_range;
    if (on && !(d->is_open && d->file.compressed_sound && has_digital_output()))
        return rask::not_supported;
    return d->playback->set_digital_output(on);
}

int MediaPlayer::get_speed()
{
    return d->playback ? d->playback->speed() : speed_steps[normal_speed_step];
}

void MediaPlayer::set_subtitles_ready_hook(std::function<void()> hook)
{
    d->subtitles_ready->set(std::move(hook));
}
