// Runs one player and measures it from outside: processor time, peak memory, when its picture was seen on the X screen,
// and which frames of a film that numbers them.
//
// Usage: observe [OPTION VALUE]... -- COMMAND [ARGUMENT...]
//   --color RRGGBB      the mark in the middle of the film's picture (ff00ff)
//   --size WxH          the size of the picture on the screen, at 0,0 (480x272)
//   --play S            ends the player by SIGTERM S seconds after its first picture (10); 0 waits for its own end and
//                       for no picture
//   --settle S          the processor time of playing counts from S seconds after the first picture (1)
//   --fit 1             gives each window that appears the picture's size: there is no window manager
//   --frames FPS        reads the numbers of the frames off the picture (see make_film() of bench/run)
//   --cue S,RRGGBB,SOCKET,TEXT
//                       S seconds after the first picture TEXT and a line feed go to the local socket; measured is how
//                       long it takes until the mark has that colour. May be given more than once.
//
// Prints one line of NAME=VALUE: cpu_s (the whole process tree from start to end), first_ms (-1: no picture came),
// playing_s and playing_cpu_s (see --settle), peak_mb (the largest process), with --frames also shown, dropped, late
// and worst_ms, for each cue cue_ms. Times are of the wall clock from just before fork.

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xdamage.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <string>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr double patience_ms = 20000;
constexpr double end_patience_ms = 5000;
constexpr int most_fits = 40;

/// The picture's strip of sixteen fields: twelve bits of the frame's number, lowest first, then a white and a black
/// one.
constexpr int strip_fields = 16;
constexpr int number_bits = 12;
constexpr double strip_height = 0.4; ///< of the picture's height

struct Cue {
    double after_s = 0;
    unsigned long color = 0;
    std::string socket;
    std::string text;
    double given_ms = -1;
    double seen_ms = -1;
};

struct Options {
    unsigned long color = 0xff00ff;
    int width = 480;
    int height = 272;
    double play_s = 10;
    double settle_s = 1;
    bool fit = false;
    double frames_per_second = 0;
    std::vector<Cue> cues;
};

bool is_near(unsigned long pixel, unsigned long wanted)
{
    for (int shift = 0; shift <= 16; shift += 8) {
        const long difference =
            static_cast<long>((pixel >> shift) & 0xff) - static_cast<long>((wanted >> shift) & 0xff);
        if (std::labs(difference) > 60)
            return false;
    }
    return true;
}

unsigned long pixel_at(Display* display, int x, int y)
{
    XImage* image = XGetImage(display, DefaultRootWindow(display), x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr)
        return 0;
    const unsigned long pixel = XGetPixel(image, 0, 0) & 0xffffff;
    XDestroyImage(image);
    return pixel;
}

/// The number of the frame on the screen, -1 when there is none.
int frame_number(Display* display, const Options& options)
{
    const int y = static_cast<int>(options.height * strip_height);
    XImage* image = XGetImage(display, DefaultRootWindow(display), 0, y, static_cast<unsigned>(options.width), 1,
                              AllPlanes, ZPixmap);
    if (image == nullptr)
        return -1;
    std::array<bool, strip_fields> fields{};
    for (int field = 0; field < strip_fields; ++field) {
        const int x = (2 * field + 1) * options.width / (2 * strip_fields);
        fields[static_cast<std::size_t>(field)] = ((XGetPixel(image, x, 0) >> 8) & 0xff) > 127;
    }
    XDestroyImage(image);
    if (!fields[number_bits] || fields[number_bits + 1])
        return -1;
    int number = 0;
    for (int bit = number_bits - 1; bit >= 0; --bit)
        number = 2 * number + (fields[static_cast<std::size_t>(bit)] ? 1 : 0);
    return number;
}

/// Processes below this one, and the processor time that each has used so far.
double tree_processor_seconds()
{
    std::multimap<pid_t, pid_t> children;
    DIR* directory = opendir("/proc");
    if (directory == nullptr)
        return 0;
    while (const dirent* entry = readdir(directory)) {
        const pid_t pid = std::atoi(entry->d_name);
        if (pid <= 0)
            continue;
        std::array<char, 512> text{};
        const std::string path = "/proc/" + std::to_string(pid) + "/stat";
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0)
            continue;
        const ssize_t length = read(file, text.data(), text.size() - 1);
        close(file);
        const char* rest = length > 0 ? std::strrchr(text.data(), ')') : nullptr;
        int parent = 0;
        if (rest != nullptr && std::sscanf(rest + 1, " %*c %d", &parent) == 1)
            children.emplace(parent, pid);
    }
    closedir(directory);
    double seconds = 0;
    std::vector<pid_t> left = {getpid()};
    while (!left.empty()) {
        const pid_t parent = left.back();
        left.pop_back();
        const auto [first, last] = children.equal_range(parent);
        for (auto child = first; child != last; ++child) {
            left.push_back(child->second);
            clockid_t clock = 0;
            timespec t{};
            if (clock_getcpuclockid(child->second, &clock) == 0 && clock_gettime(clock, &t) == 0)
                seconds += static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
        }
    }
    return seconds;
}

void give(const Cue& cue)
{
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, cue.socket.c_str(), sizeof address.sun_path - 1);
    const std::string line = cue.text + "\n";
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        write(connection, line.data(), line.size()) < 0)
        std::perror("observe: cue");
    close(connection);
}

bool read_options(int argc, char** argv, int* command, Options* options)
{
    int i = 1;
    for (; i + 1 < argc && std::strcmp(argv[i], "--") != 0; i += 2) {
        const std::string name = argv[i];
        const char* value = argv[i + 1];
        if (name == "--color") {
            options->color = std::strtoul(value, nullptr, 16);
        } else if (name == "--size") {
            if (std::sscanf(value, "%dx%d", &options->width, &options->height) != 2)
                return false;
        } else if (name == "--play") {
            options->play_s = std::atof(value);
        } else if (name == "--settle") {
            options->settle_s = std::atof(value);
        } else if (name == "--fit") {
            options->fit = std::atoi(value) != 0;
        } else if (name == "--frames") {
            options->frames_per_second = std::atof(value);
        } else if (name == "--cue") {
            const std::string text = value;
            const auto first = text.find(',');
            const auto second = text.find(',', first + 1);
            const auto third = text.find(',', second + 1);
            if (third == std::string::npos)
                return false;
            Cue cue;
            cue.after_s = std::atof(text.c_str());
            cue.color = std::strtoul(text.substr(first + 1, second - first - 1).c_str(), nullptr, 16);
            cue.socket = text.substr(second + 1, third - second - 1);
            cue.text = text.substr(third + 1);
            options->cues.push_back(cue);
        } else {
            return false;
        }
    }
    *command = i + 1;
    return i + 1 < argc;
}

struct SeenFrame {
    int number;
    double ms;
};

/// Frames never seen, frames seen more than half their time late, and the latest, against the film's own clock (the
/// median of all frames).
void print_frames(const std::vector<SeenFrame>& frames, double frames_per_second)
{
    if (frames.empty())
        return;
    const double frame_ms = 1000 / frames_per_second;
    std::vector<double> offsets;
    for (const SeenFrame& frame : frames)
        offsets.push_back(frame.ms - frame.number * frame_ms);
    std::vector<double> sorted = offsets;
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2), sorted.end());
    const double clock = sorted[sorted.size() / 2];
    const auto late =
        std::count_if(offsets.begin(), offsets.end(), [&](double offset) { return offset - clock > frame_ms / 2; });
    const double worst = *std::max_element(offsets.begin(), offsets.end()) - clock;
    const int all = frames.back().number - frames.front().number + 1;
    std::printf(" shown=%zu dropped=%d late=%td worst_ms=%.0f", frames.size(), all - static_cast<int>(frames.size()),
                late, worst);
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    int command = 0;
    if (!read_options(argc, argv, &command, &options)) {
        std::fprintf(stderr, "usage: observe [OPTION VALUE]... -- COMMAND [ARGUMENT...]\n");
        return 2;
    }
    Display* display = XOpenDisplay(nullptr);
    int damage_event = 0;
    int damage_error = 0;
    if (display == nullptr || !XDamageQueryExtension(display, &damage_event, &damage_error)) {
        std::fprintf(stderr, "observe: no X display with the damage extension\n");
        return 2;
    }
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; }); // windows go while they are looked at
    // What the player before left on the screen must not be taken for this one's picture; its window may still be
    // going.
    XSetWindowBackground(display, DefaultRootWindow(display), BlackPixel(display, DefaultScreen(display)));
    do {
        poll(nullptr, 0, 50);
        XClearWindow(display, DefaultRootWindow(display));
        XSync(display, False);
    } while (pixel_at(display, options.width / 2, options.height / 2) != 0);
    Damage damage = XDamageCreate(display, DefaultRootWindow(display), XDamageReportNonEmpty);
    if (options.fit)
        XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, False);
    prctl(PR_SET_CHILD_SUBREAPER, 1);

    const auto start = Clock::now();
    const pid_t player = fork();
    if (player == 0) {
        std::signal(SIGINT, SIG_DFL);
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(argv[command], argv + command);
        _exit(127);
    }
    // Whoever looks late sees too few frames; without the right to it, it looks when its turn comes.
    setpriority(PRIO_PROCESS, 0, -10);
    const auto elapsed_ms = [&] { return std::chrono::duration<double, std::milli>(Clock::now() - start).count(); };
    double first_ms = options.play_s > 0 ? -1 : 0;
    double settled_ms = -1;
    double settled_cpu_s = 0;
    double told_ms = -1;
    double told_cpu_s = 0;
    std::vector<SeenFrame> frames;
    std::size_t next_cue = 0;
    int fits = 0;
    const bool reads_frames = options.frames_per_second > 0;
    int status = 0;
    bool ended = false;
    while (!ended) {
        pollfd connection{ConnectionNumber(display), POLLIN, 0};
        if (XPending(display) == 0)
            poll(&connection, 1, 5);
        bool drawn = false;
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            drawn = drawn || event.type == damage_event + XDamageNotify;
            if (!options.fit)
                continue;
            // A window that insists is left alone after some time.
            const bool appeared = event.type == MapNotify && !event.xmap.override_redirect;
            const bool moved = event.type == ConfigureNotify && !event.xconfigure.override_redirect &&
                               (event.xconfigure.width != options.width || event.xconfigure.height != options.height ||
                                event.xconfigure.x != 0 || event.xconfigure.y != 0) &&
                               ++fits < most_fits;
            if (appeared || moved)
                XMoveResizeWindow(display, appeared ? event.xmap.window : event.xconfigure.window, 0, 0,
                                  static_cast<unsigned>(options.width), static_cast<unsigned>(options.height));
        }
        const double now_ms = elapsed_ms();
        const bool awaits_cue = next_cue < options.cues.size();
        if (drawn && damage != 0) {
            XDamageSubtract(display, damage, None, None);
            const auto mark = [&] { return pixel_at(display, options.width / 2, options.height / 2); };
            if (first_ms < 0) {
                if (is_near(mark(), options.color))
                    first_ms = now_ms;
            } else if (awaits_cue && options.cues[next_cue].given_ms >= 0) {
                Cue& cue = options.cues[next_cue];
                if (is_near(mark(), cue.color)) {
                    cue.seen_ms = now_ms;
                    ++next_cue;
                }
            }
            if (reads_frames) {
                const int number = frame_number(display, options);
                if (number >= 0 && (frames.empty() || number > frames.back().number))
                    frames.push_back({number, now_ms});
            }
            if (first_ms >= 0 && !reads_frames && options.cues.empty()) {
                XDamageDestroy(display, damage); // from here on the observer costs the server nothing
                damage = 0;
                XSync(display, False);
            }
        }
        if (first_ms >= 0 && awaits_cue) {
            Cue& cue = options.cues[next_cue];
            if (cue.given_ms < 0 && now_ms > first_ms + cue.after_s * 1000) {
                cue.given_ms = elapsed_ms();
                give(cue);
            } else if (cue.given_ms >= 0 && now_ms > cue.given_ms + patience_ms) {
                ++next_cue;
            }
        }
        if (options.play_s > 0 && first_ms >= 0 && settled_ms < 0 && now_ms > first_ms + options.settle_s * 1000) {
            settled_cpu_s = tree_processor_seconds();
            settled_ms = elapsed_ms();
        }
        const double end_ms = first_ms < 0 ? patience_ms : first_ms + options.play_s * 1000;
        if (options.play_s > 0 && told_ms < 0 && now_ms > end_ms) {
            told_cpu_s = tree_processor_seconds();
            told_ms = elapsed_ms();
            kill(player, SIGTERM);
        }
        if (told_ms >= 0 && now_ms > told_ms + end_patience_ms)
            kill(player, SIGKILL);
        ended = waitpid(player, &status, WNOHANG) == player;
    }
    // Whatever the player started and left behind.
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const auto in_seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    std::printf("cpu_s=%.3f first_ms=%.0f playing_s=%.3f playing_cpu_s=%.3f peak_mb=%.1f",
                in_seconds(usage.ru_utime) + in_seconds(usage.ru_stime), first_ms,
                settled_ms < 0 || told_ms < 0 ? 0 : (told_ms - settled_ms) / 1000,
                settled_ms < 0 || told_ms < 0 ? 0 : told_cpu_s - settled_cpu_s,
                static_cast<double>(usage.ru_maxrss) / 1024);
    if (reads_frames)
        print_frames(frames, options.frames_per_second);
    for (const Cue& cue : options.cues)
        std::printf(" cue_ms=%.0f", cue.seen_ms < 0 ? -1 : cue.seen_ms - cue.given_ms);
    std::printf("\n");
    XCloseDisplay(display);
    return 0;
}
