#pragma once

#include <malloc.h>

/// How the program's memory is given out. To be called first thing in main(), while there is one thread.
inline void set_up_heap()
{
    // One heap for all threads: the engine's many threads allocate little, and a heap for each costs some megabytes.
    mallopt(M_ARENA_MAX, 1);
    // Large blocks stay apart from the heap, whatever was freed before: what a long film list or a long file of
    // subtitles needs for a moment goes back to the system.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
}
