#include "sound_output.h"

#include "sound_volume.h"

#include <algorithm>
#include <mutex>

namespace
{

constexpr unsigned char loudest = 40;

struct Volume {
    std::mutex mutex; ///< guards all, held while the listener runs
    unsigned char value = loudest;
    const void* owner = nullptr;
    std::function<void(double)> listener;
};

Volume& volume()
{
    static Volume instance;
    return instance;
}

void apply(Volume& of)
{
    if (of.listener)
        of.listener(100.0 * of.value / loudest);
}

} // namespace

void set_application_volume(unsigned char value)
{
    const std::lock_guard lock(volume().mutex);
    volume().value = std::min(value, loudest);
    apply(volume());
}

void set_volume_listener(const void* owner, std::function<void(double)> listener)
{
    const std::lock_guard lock(volume().mutex);
    volume().owner = owner;
    volume().listener = std::move(listener);
    apply(volume());
}

void remove_volume_listener(const void* owner)
{
    const std::lock_guard lock(volume().mutex);
    if (volume().owner == owner)
        volume().listener = nullptr;
}
