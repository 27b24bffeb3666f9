#pragma once

#include "media_callback.h"
#include "media_player.h"
#include "media_probe.h"

#include <memory>

/// What the engine's module hands to the program that loads it. All else is reached by MediaPlayer's virtual
/// operations.
struct EngineModule {
    /// Any thread may make the player; its operations are called from one.
    std::unique_ptr<MediaPlayer> (*make_player)(MediaCallback* callback);
    /// MediaPlayer::initialize(), which is not virtual.
    unsigned (*initialize)(MediaPlayer& player);
    std::optional<MediaSummary> (*probe_media)(const QString& path, int limit_ms, const std::stop_token& stop);
    void (*set_application_volume)(unsigned char volume);
};

/// The one name that the module exports.
extern "C" const EngineModule tavel_engine_module;
