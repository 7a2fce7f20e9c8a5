#pragma once

// Storage of the records of one kind of one module, for the record store alone. What reads and
// writes records most is expanded where it is called, with the size of the record known.

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvoutil_mem.h"

namespace orvo {

/// What the storage holds for a string: the copy that all modules share.
struct StriCopy;
struct StriSlot {
    StriCopy* copy;
};
/// The characters of a copy, NUL-terminated.
const void* textOf(const StriCopy* copy);

/// Records per page. Small enough that a module with few records of a kind costs little.
inline constexpr uint32_t pageRecs = 256;

/// A page is made when its first record is written. The records lie behind it in the same block,
/// and never move.
struct alignas(Pool::alignment) RecPage {
    std::bitset<pageRecs> written;
    std::byte* records() { return reinterpret_cast<std::byte*>(this + 1); }
};

/// Storage of a written record or slot of `size` bytes; null when there is none.
inline std::byte* storedSlot(const ModuleRec* module, RecKind kind, size_t size, uint32_t nr) {
    if (module == nullptr || nr == 0) return nullptr;
    const auto& pages = module->recDir[kind];
    const uint32_t page = (nr - 1) / pageRecs, slot = (nr - 1) % pageRecs;
    if (page >= pages.size() || pages[page] == nullptr || !pages[page]->written.test(slot))
        return nullptr;
    return pages[page]->records() + slot * size;
}

/// The same for writing, also of one that was never written; null when its page is still to be
/// made.
inline std::byte* slotForWriting(const ModuleRec* module, RecKind kind, size_t size, uint32_t nr) {
    if (module == nullptr || nr == 0) return nullptr;
    const auto& pages = module->recDir[kind];
    const uint32_t page = (nr - 1) / pageRecs, slot = (nr - 1) % pageRecs;
    if (page >= pages.size() || pages[page] == nullptr) return nullptr;
    pages[page]->written.set(slot);
    return pages[page]->records() + slot * size;
}

/// Storage of a record or string slot for writing, zero-filled when it is new. Fatal 10 without a
/// module and for a number outside 1..maxRecNr.
void* pageForWriting(ModuleRec* module, RecKind kind, uint32_t nr);
/// Storage of a written record or string slot; null when there is none.
void* pageForReading(const ModuleRec* module, RecKind kind, uint32_t nr);
/// Makes a written record or slot one that was never written.
void erasePage(ModuleRec* module, RecKind kind, uint32_t nr);

/// Destroys the shared copies of all strings; no module may hold any afterwards.
void resetStrings();

} // namespace orvo
