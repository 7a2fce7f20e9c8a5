#include "tree/orvoutil_mem.h"

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

} // namespace

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
