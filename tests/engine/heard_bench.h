#pragma once

#include "bench.h"
#include "sound_server.h"

/// A sound server at work, for as long as this object lives.
struct SoundServerAtWork {
    SoundServer server;
    const bool has_started = server.start();
    const SoundSystem system{server.address()};
};

/// A bench whose player is heard.
struct HeardBench : SoundServerAtWork, Bench {
    bool start(const QString& film) { return has_started && Bench::start(film); }
};
