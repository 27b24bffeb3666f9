// Runs one player and measures it from outside: processor time, peak memory and the moment its picture was seen on the
// X screen.
//
// Usage: observe --seconds S --at X,Y --color RRGGBB -- COMMAND [ARGUMENT...]
// Prints one line: processor seconds, milliseconds to the first picture (-1 when none came), peak resident MB.
// The player is ended by SIGTERM after S seconds. All times are of the wall clock from just before fork.

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xdamage.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Clock = std::chrono::steady_clock;

bool is_near(unsigned long pixel, unsigned long wanted)
{
    for (int shift = 0; shift <= 16; shift += 8) {
        const long difference =
            static_cast<long>((pixel >> shift) & 0xff) - static_cast<long>((wanted >> shift) & 0xff);
        if (std::labs(difference) > 40)
            return false;
    }
    return true;
}

/// Whether the screen shows the film's mark now.
bool mark_is_seen(Display* display, int x, int y, unsigned long color)
{
    XImage* image = XGetImage(display, DefaultRootWindow(display), x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr)
        return false;
    const bool seen = is_near(XGetPixel(image, 0, 0), color);
    XDestroyImage(image);
    return seen;
}

} // namespace

int main(int argc, char** argv)
{
    double seconds = 10;
    int x = 0;
    int y = 0;
    unsigned long color = 0;
    int i = 1;
    for (; i + 1 < argc && std::strcmp(argv[i], "--") != 0; i += 2) {
        if (std::strcmp(argv[i], "--seconds") == 0)
            seconds = std::atof(argv[i + 1]);
        else if (std::strcmp(argv[i], "--at") == 0)
            std::sscanf(argv[i + 1], "%d,%d", &x, &y);
        else if (std::strcmp(argv[i], "--color") == 0)
            color = std::strtoul(argv[i + 1], nullptr, 16);
    }
    if (i >= argc - 1) {
        std::fprintf(stderr, "usage: observe --seconds S --at X,Y --color RRGGBB -- COMMAND...\n");
        return 2;
    }
    Display* display = XOpenDisplay(nullptr);
    int damage_event = 0;
    int damage_error = 0;
    if (display == nullptr || !XDamageQueryExtension(display, &damage_event, &damage_error)) {
        std::fprintf(stderr, "observe: no X display with the damage extension\n");
        return 2;
    }
    const Damage damage = XDamageCreate(display, DefaultRootWindow(display), XDamageReportNonEmpty);
    XSync(display, False);

    const auto start = Clock::now();
    const pid_t player = fork();
    if (player == 0) {
        std::signal(SIGINT, SIG_DFL);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(argv[i + 1], argv + i + 1);
        std::perror("observe");
        _exit(127);
    }
    const auto elapsed_ms = [&] { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); };
    double first_ms = -1;
    int status = 0;
    rusage usage{};
    bool ended = false;
    bool told = false;
    while (!ended) {
        pollfd connection{ConnectionNumber(display), POLLIN, 0};
        if (XPending(display) == 0)
            poll(&connection, 1, first_ms < 0 ? 5 : 50);
        bool drawn = false;
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            drawn = true;
        }
        if (drawn && first_ms < 0) {
            XDamageSubtract(display, damage, None, None);
            if (mark_is_seen(display, x, y, color)) {
                first_ms = elapsed_ms();
                XDamageDestroy(display, damage); // from here on the observer costs the server nothing
                XSync(display, True);
            }
        }
        ended = wait4(player, &status, WNOHANG, &usage) == player;
        if (!ended && !told && elapsed_ms() > seconds * 1000) {
            told = true;
            kill(player, SIGTERM);
        }
        if (!ended && elapsed_ms() > seconds * 1000 + 5000)
            kill(player, SIGKILL);
    }
    const auto in_seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    std::printf("%.3f %.0f %.1f\n", in_seconds(usage.ru_utime) + in_seconds(usage.ru_stime), first_ms,
                static_cast<double>(usage.ru_maxrss) / 1024);
    XCloseDisplay(display);
    return 0;
}
