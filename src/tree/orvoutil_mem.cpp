#include "tree/orvoutil_mem.h"

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "diag/orvoerr_fatal.h"

namespace orvo {
namespace {

void requireSize(bool positive) {
    if (!positive) fatalError(Fatal::Internal, "Allocation request 0 bytes.");
}

void* requireBlock(void* block) {
    if (block == nullptr) fatalError(Fatal::NoSpace);
    return block;
}

constexpr size_t hugePage = size_t{2} << 20;

/// Address space from the start of a large page on; null when there is none.
std::byte* mapHugePages(size_t size) {
    void* mapped =
        mmap(nullptr, size + hugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    auto* const first = static_cast<std::byte*>(mapped);
    const size_t before = -std::bit_cast<uintptr_t>(first) % hugePage;
    if (before != 0) munmap(first, before);
    munmap(first + before + size, hugePage - before);
#ifdef MADV_HUGEPAGE
    madvise(first + before, size, MADV_HUGEPAGE); // without them it is slower, no more
#endif
    return first + before;
}

} // namespace

void Pool::Unmap::operator()(std::byte* chunk) const {
    if (size != 0)
        munmap(chunk, size);
    else
        efree(chunk);
}

void Pool::addChunk(size_t size) {
#ifdef NDEBUG
    constexpr size_t smallChunk = 65536, mostSmall = 2 * hugePage, largestChunk = 16 * hugePage;
    const bool huge = total_ >= mostSmall;
    if (huge) {
        size = std::max(size, std::min(total_ / 4, largestChunk));
        size = (size + hugePage - 1) / hugePage * hugePage;
    } else {
        size = std::max(size, smallChunk);
    }
#else
    constexpr bool huge = false; // each by itself, so that a sanitizer sees where it ends
#endif
    std::byte* chunk = huge ? mapHugePages(size) : static_cast<std::byte*>(ezalloc(size));
    if (chunk == nullptr) fatalError(Fatal::NoSpace);
    chunks_.emplace_back(chunk, Unmap{huge ? size : 0});
    end_ = chunk + size;
    left_ = size;
    total_ += size;
}

void* ezalloc(size_t size) {
    requireSize(size != 0);
    return requireBlock(std::calloc(1, size));
}

void* ecalloc(size_t count, size_t size) {
    requireSize(count != 0 && size != 0);
    return requireBlock(std::calloc(count, size));
}

void* erealloc(void* block, size_t size) {
    requireSize(size != 0);
    return requireBlock(std::realloc(block, size));
}

void efree(void* block) {
    std::free(block);
}

char* estrdup(const char* text) {
    return static_cast<char*>(ememdup(text, text == nullptr ? 0 : std::strlen(text) + 1));
}

void* ememdup(const void* block, size_t size) {
    if (block == nullptr || size == 0) fatalError(Fatal::Internal, "NULL pointer duplication.");
    return std::memcpy(ezalloc(size), block, size);
}

} // namespace orvo
