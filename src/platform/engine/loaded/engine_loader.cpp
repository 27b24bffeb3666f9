#include "engine_loader.h"

#include "engine_module.h"
#include "sound_output.h"
#include "text_codec.h"
#include "video_plane.h"

#include <QCoreApplication>
#include <QFile>

extern "C" {
#include <libavcodec/version.h>
#include <libavformat/version.h>
#include <libavutil/avutil.h>
}

#include <dlfcn.h>

#include <array>

#include <cstdio>
#include <cstdlib>
#include <future>
#include <mutex>
#include <utility>
#include <vector>

namespace
{

// The module finds these in the program; the linker would leave them out of one that does not use them itself.
[[gnu::used]] VideoPlane& (*const video_plane)() = &VideoPlane::instance;
[[gnu::used]] const auto text_codecs = &QTextCodec::codecForName;

#define TAVEL_LIBRARY(name, version) "lib" name ".so." AV_STRINGIFY(version)

/// What the module is built on, lowest first. Loaded one by one, each is bound against its own libraries alone, not
/// against all that the module needs: a seventh less time for the whole.
constexpr std::array<const char*, 3> libraries = {
    TAVEL_LIBRARY("avutil", LIBAVUTIL_VERSION_MAJOR),
    TAVEL_LIBRARY("avcodec", LIBAVCODEC_VERSION_MAJOR),
    TAVEL_LIBRARY("avformat", LIBAVFORMAT_VERSION_MAJOR),
};

#undef TAVEL_LIBRARY

/// The engine's module, loaded once and for as long as the program runs.
class Loader
{
public:
    static Loader& instance()
    {
        static Loader loader;
        return loader;
    }

    /// Waits until the module is there. Any thread.
    const EngineModule& module() const { return *m_module.get(); }

    /// Runs @p task as soon as the module is there: at once, or on the loading thread after those that came before. Any
    /// thread; never waits.
    void when_loaded(std::function<void(const EngineModule&)> task)
    {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_loaded) {
                m_tasks.push_back(std::move(task));
                return;
            }
        }
        task(*m_loaded);
    }

private:
    // A thread that starts while another loads waits until that has done: whatever is to be done at once after loading
    // has to be done by this one.
    Loader() : m_module(std::async(std::launch::async, [this] { return load(); })) {}

    const EngineModule* load()
    {
        for (const char* const name : libraries)
            dlopen(name, RTLD_LAZY | RTLD_LOCAL); // one that is missing is missed again below, with a message
        const QByteArray path = QFile::encodeName(QCoreApplication::applicationDirPath()) + "/tavel_engine.so";
        void* const library = dlopen(path.constData(), RTLD_LAZY | RTLD_LOCAL);
        const void* const entry = library ? dlsym(library, "tavel_engine_module") : nullptr;
        if (!entry) {
            std::fprintf(stderr, "the engine cannot be loaded: %s\n", dlerror());
            std::_Exit(EXIT_FAILURE);
        }
        const auto* const module = static_cast<const EngineModule*>(entry);
        std::unique_lock lock(m_mutex);
        while (!m_tasks.empty()) {
            const auto tasks = std::exchange(m_tasks, {});
            lock.unlock();
            for (const auto& task : tasks)
                task(*module);
            lock.lock();
        }
        m_loaded = module;
        return module;
    }

    std::mutex m_mutex;                                            ///< guards the tasks, and m_loaded until it is set
    const EngineModule* m_loaded = nullptr;                        ///< never changes again
    std::vector<std::function<void(const EngineModule&)>> m_tasks; ///< what came before the module
    std::shared_future<const EngineModule*> m_module;
};

} // namespace

void begin_to_load_engine()
{
    Loader::instance();
}

void set_application_volume(unsigned char volume)
{
    Loader::instance().when_loaded([volume](const EngineModule& module) { module.set_application_volume(volume); });
}

std::optional<MediaSummary> probe_media(const QString& path, int limit_ms, const std::stop_token& stop)
{
    return Loader::instance().module().probe_media(path, limit_ms, stop);
}

/// Stands for the module's player, which is made as soon as the module is there.
class MediaPlayer::Private
{
public:
    explicit Private(MediaCallback* callback)
    {
        const auto made = std::make_shared<std::promise<std::unique_ptr<MediaPlayer>>>();
        m_making = made->get_future();
        Loader::instance().when_loaded(
            [made, callback](const EngineModule& module) { made->set_value(module.make_player(callback)); });
    }

    /// Waits until it is there.
    MediaPlayer& player()
    {
        if (!m_player) {
            m_player = m_making.get();
            m_player->set_subtitles_ready_hook(std::exchange(m_hook, {}));
        }
        return *m_player;
    }

    /// Never waits: without a file there is nothing to tell.
    void set_hook(std::function<void()> hook)
    {
        if (m_player)
            m_player->set_subtitles_ready_hook(std::move(hook));
        else
            m_hook = std::move(hook);
    }

private:
    std::future<std::unique_ptr<MediaPlayer>> m_making;
    std::unique_ptr<MediaPlayer> m_player;
    std::function<void()> m_hook; ///< for the player that is still being made
};

MediaPlayer::MediaPlayer(MediaCallback* callback) : d(std::make_unique<Private>(callback)) {}

MediaPlayer::~MediaPlayer()
{
    d->player(); // It may still be in the making, and would outlive the callback.
}

unsigned MediaPlayer::initialize()
{
    return Loader::instance().module().initialize(d->player());
}

unsigned MediaPlayer::prepare(const char* file_name)
{
    return d->player().prepare(file_name);
}

unsigned MediaPlayer::close()
{
    return d->player().close();
}

unsigned MediaPlayer::play()
{
    return d->player().play();
}

unsigned MediaPlayer::pause()
{
    return d->player().pause();
}

unsigned MediaPlayer::seek(SeekMode mode, Time target)
{
    return d->player().seek(mode, target);
}

unsigned MediaPlayer::scan_backward(int rate)
{
    return d->player().scan_backward(rate);
}

unsigned MediaPlayer::scan_forward(int rate)
{
    return d->player().scan_forward(rate);
}

unsigned MediaPlayer::set_video_window(int x, int y, int width, int height)
{
    return d->player().set_video_window(x, y, width, height);
}

unsigned MediaPlayer::set_aspect(int mode)
{
    return d->player().set_aspect(mode);
}

unsigned MediaPlayer::set_parameter(int number, const void* value, unsigned size)
{
    return d->player().set_parameter(number, value, size);
}

unsigned MediaPlayer::release()
{
    return d->player().release();
}

unsigned MediaPlayer::set_speed(int code)
{
    return d->player().set_speed(code);
}

unsigned MediaPlayer::select_stream(int kind, int track)
{
    return d->player().select_stream(kind, track);
}

unsigned MediaPlayer::open(const char* file_name)
{
    return d->player().open(file_name);
}

bool MediaPlayer::has_info(const char* group)
{
    return d->player().has_info(group);
}

QString MediaPlayer::get_info(const char* group, const char* item)
{
    return d->player().get_info(group, item);
}

const std::vector<Subtitle>* MediaPlayer::get_subtitles(unsigned track)
{
    return d->player().get_subtitles(track);
}

unsigned MediaPlayer::query(int number, bool* answer)
{
    return d->player().query(number, answer);
}

unsigned MediaPlayer::set_option(int option, bool on)
{
    return d->player().set_option(option, on);
}

int MediaPlayer::get_speed()
{
    return d->player().get_speed();
}

void MediaPlayer::set_subtitles_ready_hook(std::function<void()> hook)
{
    d->set_hook(std::move(hook));
}
