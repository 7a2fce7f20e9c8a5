#pragma once

// What the checks of pass 5 computed once about the records of a module. Records do not change any
// more by then, except where an entry says how it is told to be stale.

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "check/orvonum_end.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Endpoints of a type record, for the reference and constraint it had then: checks take a
/// constraint off a record, or hang another on a temporary one, and put the record back.
struct EndpointNote {
    int32_t constraint = 0;
    int32_t refMod = 0;
    uint32_t ref = 0;
    uint8_t typeCode = TYP_NONE;
    bool known[2] = {}; // lower, upper
    bool exists[2] = {};
    Endpoint ends[2];
};

struct CheckCache {
    std::unordered_map<uint32_t, uint32_t>
        segmentLengths; // first segment -> characters of the list
    std::unordered_map<uint32_t, int64_t> highestNamedBits; // first named bit -> largest number
    std::unordered_map<uint32_t, EndpointNote> endpoints;   // TNode
    std::unordered_map<uint32_t, TNodeRef> rangeParents; // TNode -> first on its chain with a range
};

/// The cache of a module, made on first use.
CheckCache& checkCacheOf(ModuleRec* module);

} // namespace orvo
