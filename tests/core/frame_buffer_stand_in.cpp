// A frame buffer for tests: preloaded into a program, it has a plain file answer what is asked of a frame buffer device.
// TAVEL_FRAME_BUFFER tells its width, height and bits of a pixel, as "480 272 32".

#include <linux/fb.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

struct Geometry {
    unsigned width = 0;
    unsigned height = 0;
    unsigned bits = 0;
};

bool read_geometry(Geometry& geometry)
{
    const char* const text = std::getenv("TAVEL_FRAME_BUFFER");
    return text && std::sscanf(text, "%u %u %u", &geometry.width, &geometry.height, &geometry.bits) == 3;
}

fb_bitfield field(unsigned offset, unsigned length)
{
    fb_bitfield result = {};
    result.offset = offset;
    result.length = length;
    return result;
}

void describe(const Geometry& geometry, fb_fix_screeninfo& fixed)
{
    fixed = {};
    std::strncpy(fixed.id, "file", sizeof fixed.id - 1);
    fixed.line_length = geometry.width * geometry.bits / 8;
    fixed.smem_len = fixed.line_length * geometry.height;
    fixed.visual = FB_VISUAL_TRUECOLOR;
}

void describe(const Geometry& geometry, fb_var_screeninfo& variable)
{
    variable = {};
    variable.xres = variable.xres_virtual = geometry.width;
    variable.yres = variable.yres_virtual = geometry.height;
    variable.bits_per_pixel = geometry.bits;
    const bool is_small = geometry.bits == 16;
    variable.red = is_small ? field(11, 5) : field(16, 8);
    variable.green = is_small ? field(5, 6) : field(8, 8);
    variable.blue = field(0, is_small ? 5 : 8);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int file, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const data = va_arg(arguments, void*);
    va_end(arguments);
    struct stat info = {};
    Geometry geometry;
    if ((request == FBIOGET_FSCREENINFO || request == FBIOGET_VSCREENINFO) && fstat(file, &info) == 0 &&
        S_ISREG(info.st_mode) && read_geometry(geometry)) {
        if (request == FBIOGET_FSCREENINFO)
            describe(geometry, *static_cast<fb_fix_screeninfo*>(data));
        else
            describe(geometry, *static_cast<fb_var_screeninfo*>(data));
        return 0;
    }
    static const auto kernels = reinterpret_cast<int (*)(int, unsigned long, ...)>(dlsym(RTLD_NEXT, "ioctl"));
    return kernels(file, request, data);
}
