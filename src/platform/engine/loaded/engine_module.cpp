#include "engine_module.h"

#include "sound_output.h"

const EngineModule tavel_engine_module = {
    [](MediaCallback* callback) { return std::make_unique<MediaPlayer>(callback); },
    [](MediaPlayer& player) { return player.initialize(); },
    [](const QString& path, int limit_ms, const std::stop_token& stop) { return probe_media(path, limit_ms, stop); },
    [](unsigned char volume) { set_application_volume(volume); },
};
