#include "tree/orvoutil_mem.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

#include "diag/orvoerr_fatal.h"
#include "util/arena.h"

namespace orvo {
namespace {

void requireSize(bool positive) {
    if (!positive) fatalError(Fatal::Internal, "Allocation request 0 bytes.");
}

void* requireBlock(void* block) {
    if (block == nullptr) fatalError(Fatal::NoSpace);
    return block;
}

} // namespace

#ifdef NDEBUG
void Pool::GiveBack::operator()(std::byte* chunk) const {
    giveMemoryBack(chunk, size);
}

void Pool::addChunk(size_t size) {
    constexpr size_t smallest = 65536, largest = size_t{1} << 19;
    size = std::max(size, std::clamp(std::bit_floor(total_ / 4), smallest, largest));
    std::byte* chunk = takeMemory(size);
#else // each by itself, so that a sanitizer sees where it ends
void Pool::GiveBack::operator()(std::byte* chunk) const {
    efree(chunk);
}

void Pool::addChunk(size_t size) {
    auto* chunk = static_cast<std::byte*>(ezalloc(size));
#endif
    if (chunk == nullptr) fatalError(Fatal::NoSpace);
    chunks_.emplace_back(chunk, GiveBack{size});
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
