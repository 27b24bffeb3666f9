#include "engine_core.h"

#include <array>
#include <utility>
#include <vector>

namespace
{

struct Setting {
    const char* name;
    const char* value;
};

/// Named, because looking for more kinds takes time and leaves memory behind; the last one plays on without sound.
constexpr const char* with_sound = "pulse,pipewire,alsa,null";
constexpr const char* without_sound = "null";

/// What the library is told before it starts. Everything a desktop player would read, show or listen to is off.
constexpr std::array<Setting, 48> settings = {{
    {"config", "no"},
    {"load-scripts", "no"},
    {"load-stats-overlay", "no"},
    {"load-osd-console", "no"},
    {"load-auto-profiles", "no"},
    {"osc", "no"},
    {"ytdl", "no"},
    {"terminal", "no"},
    {"input-default-bindings", "no"},
    {"input-builtin-bindings", "no"},
    {"input-vo-keyboard", "no"},
    {"input-cursor", "no"},
    {"input-media-keys", "no"},
    {"osd-level", "0"},
    {"osd-bar", "no"},
    {"autoload-files", "no"},
    {"sub-auto", "no"},
    {"audio-file-auto", "no"},
    {"cover-art-auto", "no"},
    {"audio-display", "no"},
    {"sid", "no"},
    {"ordered-chapters", "no"},
    {"access-references", "no"},
    {"resume-playback", "no"},
    {"idle", "yes"},
    {"keep-open", "yes"},
    {"keep-open-pause", "no"},
    {"pause", "yes"},
    {"vo", "libmpv"},
    // The picture output renders at once and shows at once, so a frame is handed over when it is due, not ahead of
    // time.
    {"video-timing-offset", "0"},
    {"hr-seek", "yes"},
    {"video-rotate", "no"},
    {"cache", "no"},
    {"sws-scaler", "bilinear"},
    {"sws-fast", "yes"},
    {"sws-allow-zimg", "no"},
    // More would take as much processor time and wake a thread for each.
    {"zimg-threads", "1"},
    {"zimg-dither", "no"},
    {"zimg-scaler-chroma", "bilinear"},
    {"ao", without_sound},
    {"audio-fallback-to-null", "yes"},
    {"audio-client-name", "tavel_video"},
    // Small buffers wake threads to no end: with these the sound takes a hundred wake-ups a second less.
    {"pulse-buffer", "200"},
    // Nothing is held until the sound is opened: what an output holds is lost when it is exchanged, and the picture
    // would be late by as much.
    {"audio-buffer", "0.02"},
    {"ao-null-buffer", "0.02"},
    {"audio-pitch-correction", "yes"},
    {"volume-max", "100"},
    {"network-timeout", "5"},
}};

/// The events that the playback follows. All others would only wake its thread.
constexpr std::array<mpv_event_id, 9> wanted_events = {
    MPV_EVENT_SHUTDOWN,
    MPV_EVENT_START_FILE,
    MPV_EVENT_END_FILE,
    MPV_EVENT_FILE_LOADED,
    MPV_EVENT_SEEK,
    MPV_EVENT_PLAYBACK_RESTART,
    MPV_EVENT_COMMAND_REPLY,
    MPV_EVENT_GET_PROPERTY_REPLY,
    MPV_EVENT_PROPERTY_CHANGE,
};

constexpr int most_event_ids = 32;

} // namespace

std::unique_ptr<EngineCore> EngineCore::create()
{
    std::unique_ptr<EngineCore> core(new EngineCore);
    core->m_handle = mpv_create();
    if (!core->m_handle)
        return nullptr;
    // A build of the library without some feature does not know its switch: that is as good as off.
    for (const Setting& setting : settings)
        mpv_set_option_string(core->m_handle, setting.name, setting.value);
    for (int id = 1; id < most_event_ids; ++id) {
        const auto event = static_cast<mpv_event_id>(id);
        if (std::find(wanted_events.begin(), wanted_events.end(), event) == wanted_events.end())
            mpv_request_event(core->m_handle, event, 0);
    }
    if (mpv_initialize(core->m_handle) < 0)
        return nullptr;
    core->m_picture.emplace(core->m_handle);
    return core->m_picture->works() ? std::move(core) : nullptr;
}

EngineCore::~EngineCore()
{
    m_picture.reset();
    if (m_handle)
        mpv_terminate_destroy(m_handle);
}

bool EngineCore::command(const QByteArrayList& words, std::uint64_t id)
{
    std::vector<const char*> arguments;
    arguments.reserve(static_cast<std::size_t>(words.size()) + 1);
    for (const QByteArray& word : words)
        arguments.push_back(word.constData());
    arguments.push_back(nullptr);
    return mpv_command_async(m_handle, id, arguments.data()) >= 0;
}

void EngineCore::set(const char* property, const QByteArray& value)
{
    const char* text = value.constData();
    mpv_set_property_async(m_handle, 0, property, MPV_FORMAT_STRING, &text);
}

void EngineCore::set(const char* property, double value)
{
    mpv_set_property_async(m_handle, 0, property, MPV_FORMAT_DOUBLE, &value);
}

void EngineCore::use_sound(bool on)
{
    if (std::exchange(m_uses_sound, on) == on)
        return;
    set("audio-buffer", 0.2);
    set("ao-null-buffer", 1.0);
    set("ao", on ? with_sound : without_sound);
}

void EngineCore::use_scaler(picture_size::Scaling scaling)
{
    if (std::exchange(m_scaling, scaling) == scaling)
        return;
    const picture_size::Scaler& scaler = picture_size::scaler_for(scaling);
    set("zimg-scaler", scaler.filter);
    set("sws-allow-zimg", scaler.allows_zimg);
}

bool EngineCore::ask(const char* property, std::uint64_t id, mpv_format format)
{
    return mpv_get_property_async(m_handle, id, property, format) >= 0;
}

void EngineCore::watch(const char* property, mpv_format format, std::uint64_t id)
{
    mpv_observe_property(m_handle, id, property, format);
}
