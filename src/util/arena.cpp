#include "util/arena.h"

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

namespace orvo {
namespace {

constexpr size_t hugePage = size_t{2} << 20;
constexpr size_t smallMapping = size_t{1} << 20, largestMapping = 16 * hugePage;

struct GivenBack {
    GivenBack* next;
    size_t size;
};
struct Arena {
    std::byte* end = nullptr; // of the last mapping
    size_t left = 0;          // bytes in front of it that are free
    size_t total = 0;
    GivenBack* given = nullptr;
};
Arena arena;

size_t roundUp(size_t size, size_t unit) {
    return (size + unit - 1) / unit * unit;
}

std::byte* map(size_t size) {
    void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return mapped == MAP_FAILED ? nullptr : static_cast<std::byte*>(mapped);
}

/// Address space from the start of a large page on.
std::byte* mapHugePages(size_t size) {
    std::byte* const first = map(size + hugePage);
    if (first == nullptr) return nullptr;
    const size_t before = -std::bit_cast<uintptr_t>(first) % hugePage;
    if (before != 0) munmap(first, before);
    munmap(first + before + size, hugePage - before);
#ifdef MADV_HUGEPAGE
    madvise(first + before, size, MADV_HUGEPAGE); // without them it is slower, no more
#endif
    return first + before;
}

bool mapMore(size_t size) {
    const bool huge = arena.total != 0 || size > smallMapping;
    if (huge)
        size = roundUp(std::max(size, std::min(arena.total / 4, largestMapping)), hugePage);
    else
        size = smallMapping;
    std::byte* const mapped = huge ? mapHugePages(size) : map(size);
    if (mapped == nullptr) return false;
    arena.end = mapped + size;
    arena.left = size;
    arena.total += size;
    return true;
}

std::byte* takeGiven(size_t size) {
    for (GivenBack** link = &arena.given; *link != nullptr; link = &(*link)->next) {
        GivenBack* const given = *link;
        if (given->size != size) continue;
        *link = given->next;
        std::memset(static_cast<void*>(given), 0, size);
        return reinterpret_cast<std::byte*>(given);
    }
    return nullptr;
}

} // namespace

std::byte* takeMemory(size_t size) {
    if (size > SIZE_MAX / 2) return nullptr;
    size = roundUp(size, arenaAlignment);
    if (arena.given != nullptr)
        if (std::byte* const given = takeGiven(size)) return given;
    if (size > arena.left && !mapMore(size)) return nullptr;
    std::byte* const memory = arena.end - arena.left;
    arena.left -= size;
    return memory;
}

void giveMemoryBack(std::byte* memory, size_t size) {
    arena.given =
        new (static_cast<void*>(memory)) GivenBack{arena.given, roundUp(size, arenaAlignment)};
}

} // namespace orvo
