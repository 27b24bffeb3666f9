#include "tolmi2c.h"

#include "device_screen.h"
#include "host_screen.h"
#include "plugged_outputs.h"

#include <utility>

namespace
{

std::function<void(const char*)>& current_recorder()
{
    static std::function<void(const char*)> recorder;
    return recorder;
}

void record(const char* operation)
{
    if (const auto& recorder = current_recorder())
        recorder(operation);
}

} // namespace

void TolmI2c::V28_ScreenSetTvMode()
{
    record("V28_ScreenSetTvMode");
    DeviceScreen::instance()->set_output(DeviceScreen::Output::Tv);
}

void TolmI2c::V28_ScreenSetLcdMode()
{
    record("V28_ScreenSetLcdMode");
    DeviceScreen::instance()->set_output(DeviceScreen::Output::Lcd);
}

int TolmI2c::V28_ReadProcFile_ScreenStatus() const
{
    record("V28_ReadProcFile_ScreenStatus");
    if (const auto answer = PluggedOutputs::environment_answer("TAVEL_TV"))
        return *answer ? 1 : 0;
    if (host_screen() != HostScreen::Displays)
        return 0;
    return PluggedOutputs().connected_displays() > 1 ? 1 : 0;
}

int TolmI2c::Is24PinConnect() const
{
    record("Is24PinConnect");
    if (const auto answer = PluggedOutputs::environment_answer("TAVEL_DIGITAL_OUT"))
        return *answer ? 1 : 0;
    return PluggedOutputs().has_digital_sound() ? 1 : 0;
}

void TolmI2c::set_recorder(std::function<void(const char* operation)> recorder)
{
    current_recorder() = std::move(recorder);
}
