#pragma once

// The memory of a run, in front of the system's allocator: what is taken lies side by side in few
// large mappings.

#include <cstddef>

namespace orvo {

/// Alignment of what is taken.
inline constexpr size_t arenaAlignment = 16;

/// Zero-filled memory of `size` bytes, rounded up to the alignment; null when the system has none.
/// It comes from pages of 2 MB once a run is more than a small one: the system makes and clears
/// them in less than half the time of small ones.
[[nodiscard]] std::byte* takeMemory(size_t size);
/// Keeps memory of that size for who asks for as much.
void giveMemoryBack(std::byte* memory, size_t size);

} // namespace orvo
