#include "host_screen.h"

#include <array>

namespace
{

struct Row {
    const char* platform;
    HostScreen screen;
};

constexpr std::array<Row, 6> rows{{
    {"linuxfb", HostScreen::Displays},
    {"eglfs", HostScreen::Displays},
    {"minimalegl", HostScreen::Displays},
    {"vkkhrdisplay", HostScreen::Displays},
    {"directfb", HostScreen::Displays},
    {"vnc", HostScreen::Remote},
}};

} // namespace

HostScreen host_screen(const QString& platform)
{
    for (const Row& row : rows) {
        if (platform == QLatin1String(row.platform))
            return row.screen;
    }
    return HostScreen::Windowed;
}
