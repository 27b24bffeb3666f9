#include "heap_count.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <malloc.h>
#include <unwind.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <mutex>

extern "C" {
// What malloc() and its kind are in the C library.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace
{

std::atomic<std::int64_t> live_bytes = 0;
std::atomic<std::int64_t> peak_bytes = 0;
std::atomic<std::int64_t> live_blocks = 0;
std::atomic<bool> notes_holders = false;
thread_local bool is_noting = false; ///< what the notes themselves allocate is not noted

/// Who holds a block. The names are indices of Notes::names.
struct Note {
    std::uint32_t bytes;
    std::uint16_t library;
    std::uint16_t asker;
};

/// What is known of a place in the code.
struct Place {
    std::uint16_t library;
    std::uint16_t asker; ///< 0 outside of the player
    bool is_general;     ///< allocates for others
};

struct Notes {
    std::mutex mutex; ///< guards all below
    std::map<const void*, Note> blocks;
    std::map<std::uintptr_t, Place> places;
    std::vector<std::string> names = {"?"};
    std::string program;

    std::uint16_t index_of(const std::string& name)
    {
        const auto found = std::find(names.begin(), names.end(), name);
        if (found != names.end())
            return static_cast<std::uint16_t>(found - names.begin());
        names.push_back(name);
        return static_cast<std::uint16_t>(names.size() - 1);
    }
};

/// Never destroyed: blocks are freed until the end.
Notes& notes()
{
    static Notes* const all = new Notes;
    return *all;
}

constexpr std::array<const char*, 7> general_libraries{
    "libc.", "ld", "libstdc++", "libgcc_s", "libQt6Core", "libglib", "libm.",
};

/// "Class" of "Class::function(...)", "function" of "function(...)", nothing for what belongs to no one of the player.
std::string asker_of(const char* symbol)
{
    int status = 0;
    char* const demangled = abi::__cxa_demangle(symbol, nullptr, nullptr, &status);
    std::string name = demangled != nullptr ? demangled : symbol;
    __libc_free(demangled);
    for (const char* general :
         {"std::", "__gnu", "void std::", "heap_count::", "operator new", "malloc", "calloc", "realloc",
          "posix_memalign", "aligned_alloc", "memalign", "QList<", "QHash<", "QMap<", "QArray", "_"}) {
        if (name.rfind(general, 0) == 0)
            return {};
    }
    name = name.substr(0, name.find('('));
    const auto scope = name.find("::");
    return scope == std::string::npos ? name : name.substr(0, scope);
}

/// Never called under the lock: asking the loader waits for a thread that loads, and that one may wait for the lock.
Place place_of(std::uintptr_t address)
{
    Notes& all = notes();
    {
        const std::lock_guard lock(all.mutex);
        const auto known = all.places.find(address);
        if (known != all.places.end())
            return known->second;
    }
    Dl_info info{};
    const bool is_found = dladdr(reinterpret_cast<void*>(address), &info) != 0 && info.dli_fname != nullptr;
    const std::lock_guard lock(all.mutex);
    Place place{0, 0, true};
    if (is_found) {
        const char* slash = std::strrchr(info.dli_fname, '/');
        const std::string library = slash != nullptr ? slash + 1 : info.dli_fname;
        const bool is_ours = library == all.program || library.rfind("tavel_engine", 0) == 0;
        const std::string asker = is_ours && info.dli_sname != nullptr ? asker_of(info.dli_sname) : std::string();
        place.library = all.index_of(is_ours ? "the player" : library.substr(0, library.find(".so")));
        place.asker = asker.empty() ? std::uint16_t{0} : all.index_of(asker);
        place.is_general = is_ours ? asker.empty()
                                   : std::any_of(general_libraries.begin(), general_libraries.end(),
                                                 [&](const char* each) { return library.rfind(each, 0) == 0; });
    }
    return all.places.emplace(address, place).first->second;
}

struct Stack {
    std::array<std::uintptr_t, 64> addresses{};
    std::size_t depth = 0;
};

_Unwind_Reason_Code add_frame(_Unwind_Context* context, void* argument)
{
    auto* const stack = static_cast<Stack*>(argument);
    if (stack->depth == stack->addresses.size())
        return _URC_END_OF_STACK;
    stack->addresses[stack->depth++] = static_cast<std::uintptr_t>(_Unwind_GetIP(context)) - 1;
    return _URC_NO_REASON;
}

void note(const void* block, std::size_t bytes)
{
    is_noting = true;
    Stack stack;
    _Unwind_Backtrace(add_frame, &stack);
    Note note{static_cast<std::uint32_t>(bytes), 0, 0};
    std::uint16_t outermost = 0;
    for (std::size_t at = 0; at < stack.depth; ++at) {
        const Place place = place_of(stack.addresses[at]);
        if (note.library == 0 && !place.is_general)
            note.library = place.library;
        if (note.asker == 0)
            note.asker = place.asker;
        if (!place.is_general)
            outermost = place.library;
    }
    {
        Notes& all = notes();
        const std::lock_guard lock(all.mutex);
        if (note.asker == 0)
            note.asker = all.index_of("threads of " + all.names[outermost]);
        all.blocks[block] = note;
    }
    is_noting = false;
}

void add(void* block)
{
    if (block == nullptr)
        return;
    const auto bytes = static_cast<std::int64_t>(malloc_usable_size(block));
    const std::int64_t live = live_bytes += bytes;
    std::int64_t peak = peak_bytes;
    while (live > peak && !peak_bytes.compare_exchange_weak(peak, live)) {
    }
    ++live_blocks;
    if (notes_holders && !is_noting)
        note(block, static_cast<std::size_t>(bytes));
}

void take(void* block)
{
    if (block == nullptr)
        return;
    live_bytes -= static_cast<std::int64_t>(malloc_usable_size(block));
    --live_blocks;
    if (notes_holders && !is_noting) {
        is_noting = true;
        {
            const std::lock_guard lock(notes().mutex);
            notes().blocks.erase(block);
        }
        is_noting = false;
    }
}

std::vector<heap_count::Holder> held_by(std::uint16_t Note::*name)
{
    is_noting = true;
    std::vector<heap_count::Holder> holders;
    {
        Notes& all = notes();
        const std::lock_guard lock(all.mutex);
        std::map<std::uint16_t, heap_count::Holder> sums;
        for (const auto& [block, note] : all.blocks) {
            heap_count::Holder& holder = sums[note.*name];
            holder.name = all.names[note.*name];
            holder.bytes += note.bytes;
            ++holder.blocks;
        }
        for (const auto& [index, holder] : sums)
            holders.push_back(holder);
    }
    std::sort(holders.begin(), holders.end(), [](const auto& a, const auto& b) { return a.bytes > b.bytes; });
    is_noting = false;
    return holders;
}

} // namespace

namespace heap_count
{

Totals totals()
{
    return {live_bytes, peak_bytes, live_blocks};
}

void note_holders()
{
    is_noting = true;
    notes().program = program_invocation_short_name;
    is_noting = false;
    notes_holders = true;
}

std::vector<Holder> by_library()
{
    return held_by(&Note::library);
}

std::vector<Holder> by_asker()
{
    return held_by(&Note::asker);
}

} // namespace heap_count

extern "C" {

void* malloc(std::size_t size)
{
    void* const block = __libc_malloc(size);
    add(block);
    return block;
}

void* calloc(std::size_t count, std::size_t size)
{
    void* const block = __libc_calloc(count, size);
    add(block);
    return block;
}

void* realloc(void* block, std::size_t size)
{
    take(block);
    void* const moved = __libc_realloc(block, size);
    add(moved != nullptr || size == 0 ? moved : block);
    return moved;
}

void free(void* block)
{
    take(block);
    __libc_free(block);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    void* const block = __libc_memalign(alignment, size);
    add(block);
    return block;
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    void* const made = memalign(alignment, size);
    if (made == nullptr)
        return ENOMEM;
    *block = made;
    return 0;
}
}
