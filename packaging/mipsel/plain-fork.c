/* Preloaded in the emulated system: the emulator refuses process descriptors, and Qt then reports a fork failure instead of falling back.
 * Answering the probe for them (waitid with idtype P_PIDFD) as an old kernel does makes Qt use plain fork. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <sys/syscall.h>

long syscall(long number, ...)
{
    static long (*next)(long, ...);
    long a[6];
    va_list arguments;
    int i;

    va_start(arguments, number);
    for (i = 0; i < 6; ++i)
        a[i] = va_arg(arguments, long);
    va_end(arguments);
    if (number == SYS_waitid && a[0] == 3) {
        errno = EINVAL;
        return -1;
    }
    if (!next)
        *(void**)(&next) = dlsym(RTLD_NEXT, "syscall");
    return next(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
