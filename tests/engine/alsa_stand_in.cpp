// Two ALSA devices for tests, loaded by an ALSA configuration: one that is busy and one whose opening does not come
// back. Both are declared here as the ALSA library looks for them, so that its headers are not needed.

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

extern "C" {

#define VISIBLE __attribute__((visibility("default")))

// Their presence tells the library which interface this is built for.
VISIBLE char __snd_pcm_busy_open_dlsym_pcm_001;
VISIBLE char __snd_pcm_stuck_open_dlsym_pcm_001;

VISIBLE int _snd_pcm_busy_open(void** device, const char* name, void* root, void* configuration, int stream, int mode);
VISIBLE int _snd_pcm_stuck_open(void** device, const char* name, void* root, void* configuration, int stream, int mode);

int _snd_pcm_busy_open(void**, const char*, void*, void*, int, int)
{
    return -EBUSY;
}

/// Comes back once the file named by TAVEL_ALSA_GATE is there.
int _snd_pcm_stuck_open(void**, const char*, void*, void*, int, int)
{
    constexpr unsigned look_interval_us = 20000;
    const char* const gate = std::getenv("TAVEL_ALSA_GATE");
    while (gate && ::access(gate, F_OK) != 0)
        ::usleep(look_interval_us);
    return -ENODEV;
}
}
