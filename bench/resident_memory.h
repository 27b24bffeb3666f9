#pragma once

#include <unistd.h>

#include <cstdio>

/// What the process holds in memory, in MB; 0 when the system does not tell.
struct ResidentMemory {
    double own_mb = 0.0;  ///< its own pages
    double file_mb = 0.0; ///< pages of files, most of them libraries

    static ResidentMemory now()
    {
        long total_pages = 0;
        long resident_pages = 0;
        long file_pages = 0;
        if (FILE* const statm = std::fopen("/proc/self/statm", "re")) {
            if (std::fscanf(statm, "%ld %ld %ld", &total_pages, &resident_pages, &file_pages) != 3)
                resident_pages = file_pages = 0;
            std::fclose(statm);
        }
        const double page_mb = static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
        return {static_cast<double>(resident_pages - file_pages) * page_mb, static_cast<double>(file_pages) * page_mb};
    }
};
