#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Counts every allocation of the process by taking the place of malloc() and its kind, whoever calls them. Any thread.
namespace heap_count
{

struct Totals {
    std::int64_t live_bytes = 0;
    std::int64_t peak_bytes = 0;
    std::int64_t live_blocks = 0;
};

Totals totals();

/// From here on it is noted who holds each block, by a walk up the stack. Slow.
void note_holders();

struct Holder {
    std::string name;
    std::int64_t bytes = 0;
    std::int64_t blocks = 0;
};

/// What is held now and was allocated since note_holders(), the largest first. By the library that asked for it (the
/// innermost that is more than a container or a string).
std::vector<Holder> by_library();

/// The same by the class or function of the player on whose behalf it was, or by the thread's library without one.
std::vector<Holder> by_asker();

} // namespace heap_count
