#include "audio_device.h"

#include "sound_output.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr unsigned char loudest = 40;

std::function<void(unsigned char)>& current_recorder()
{
    static std::function<void(unsigned char)> recorder;
    return recorder;
}

} // namespace

void audio_device_set_appvolume(unsigned char volume)
{
    if (const auto& recorder = current_recorder())
        recorder(volume);
    set_application_volume(std::min(volume, loudest));
}

void audio_device_set_recorder(std::function<void(unsigned char)> recorder)
{
    current_recorder() = std::move(recorder);
}
