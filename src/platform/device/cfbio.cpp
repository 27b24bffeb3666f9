#include "cfbio.h"

#include "device_screen.h"

#include <utility>

namespace
{

std::function<void(const QByteArray&)>& current_recorder()
{
    static std::function<void(const QByteArray&)> recorder;
    return recorder;
}

} // namespace

bool CFbio::control(const char* text)
{
    if (const auto& recorder = current_recorder())
        recorder(QByteArray(text));
    return DeviceScreen::instance()->control(QString::fromLatin1(text));
}

void CFbio::set_recorder(std::function<void(const QByteArray&)> recorder)
{
    current_recorder() = std::move(recorder);
}
