#pragma once

// Storage of the records of one kind of one module, for the record store alone.

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvoutil_mem.h"

namespace orvo {

/// What the storage holds for a string: its shared copy.
struct StriSlot {
    const void* text; // NUL-terminated
    uint32_t length;  // characters, without the terminator
    uint32_t next;    // string of the same bucket, with a lower number; 0 = none
};

/// Records per page. Small enough that a module with few records of a kind costs little.
inline constexpr uint32_t pageRecs = 256;

struct RecPage {
    std::bitset<pageRecs> written;
    EBlock<std::byte> records; // pageRecs records
};
/// Pages are found by index and made when their first record is written. The directory may move,
/// the records never do.
struct RecPages {
    std::vector<std::unique_ptr<RecPage>> pages;
};

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
