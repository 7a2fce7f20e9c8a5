#pragma once

// Allocation that never fails, and recycling of small records. What runs out of memory ends the run
// (fatal 5), what asks for nothing is a defect of ours (fatal 13).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace orvo {

/// A zero-filled block of `size` bytes, of `count` elements of `size` bytes.
[[nodiscard]] void* ezalloc(size_t size);
[[nodiscard]] void* ecalloc(size_t count, size_t size);
/// The block with a new size; null gives a new block. What is added is not cleared.
[[nodiscard]] void* erealloc(void* block, size_t size);
/// Frees a block of these functions; null is ignored.
void efree(void* block);
/// Copies of a NUL-terminated text and of a block.
[[nodiscard]] char* estrdup(const char* text);
[[nodiscard]] void* ememdup(const void* block, size_t size);

struct EFree {
    void operator()(void* block) const { efree(block); }
};
/// Owner of a block.
template <typename T> using EBlock = std::unique_ptr<T, EFree>;

/// Zero-filled blocks that are given back all at once.
class Pool {
  public:
    static constexpr size_t alignment = alignof(uint64_t);

    [[nodiscard]] void* take(size_t size) {
        size = (size + alignment - 1) / alignment * alignment;
        if (size > left_) addChunk(size);
        std::byte* block = end_ - left_;
        left_ -= size;
        return block;
    }

  private:
    struct GiveBack {
        size_t size = 0;
        void operator()(std::byte* chunk) const;
    };
    void addChunk(size_t size);

    std::vector<std::unique_ptr<std::byte, GiveBack>> chunks_;
    std::byte* end_ = nullptr; // of the last chunk
    size_t left_ = 0;          // bytes in front of it that are free
    size_t total_ = 0;
};

/// Recycles records of one type: batches of ten, chained in a free list. A cache keeps its memory
/// until it is destroyed.
template <typename T> struct GenericCache {
    static_assert(std::is_trivially_copyable_v<T> && std::is_standard_layout_v<T>);
    struct Link {
        T object;
        Link* next;
    };
    Link* freeList = nullptr;
    std::vector<EBlock<Link>> batches;
};
inline constexpr size_t cacheBatch = 10;

/// A zero-filled record.
template <typename T> T* genericCacheAlloc(GenericCache<T>& cache) {
    using Link = typename GenericCache<T>::Link;
    if (cache.freeList == nullptr) {
        auto* batch = static_cast<Link*>(ecalloc(cacheBatch, sizeof(Link)));
        cache.batches.emplace_back(batch);
        for (size_t i = cacheBatch; i-- != 0;) {
            batch[i].next = cache.freeList;
            cache.freeList = &batch[i];
        }
    }
    Link* link = cache.freeList;
    cache.freeList = link->next;
    link->object = T{};
    return &link->object;
}
/// Hands a record back; null is ignored.
template <typename T> void genericCacheFree(T* object, GenericCache<T>& cache) {
    if (object == nullptr) return;
    auto* link = reinterpret_cast<typename GenericCache<T>::Link*>(object); // its first member
    link->next = cache.freeList;
    cache.freeList = link;
}

} // namespace orvo
