#pragma once

// What the checks of pass 5 computed once about the records of a module. Records do not change any
// more by then, except where an entry says how it is told to be stale.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "check/orvonum_end.h"
#include "check/p5typ_notes.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/rec_notes.h"
#include "util/flat.h"

namespace orvo {

/// Endpoints of a type record, for the reference and constraint it had then: checks hang another on
/// a temporary record.
struct EndpointNote {
    SubRef seriesEnd; // the last member that was counted of a series which is under check
    int32_t constraint = 0;
    int32_t refMod = 0;
    uint32_t ref = 0;
    uint8_t typeCode = TYP_NONE;
    bool known[2] = {}; // lower, upper
    bool exists[2] = {};
    Endpoint ends[2];
};

/// The operands of a union: single values by the hash of their value, and the others.
struct UnionIndex {
    std::unordered_map<uint64_t, std::vector<SubNr>> values;
    std::vector<SubNr> others;
};

/// Names of the fields that an object class field type goes through.
using FieldPath = std::vector<std::string>;
/// What an object set holds for a field of its class.
struct TableEntry {
    VNodeRef object;
    VNodeRef setting; // of the field; none when a field on the way holds a set of objects
};
struct TableIndex {
    std::vector<TableEntry> entries;                           // in order
    std::unordered_map<uint64_t, std::vector<size_t>> byValue; // settings that are values, by hash
    std::vector<size_t> others;                                // the other entries
    bool met = false; // an operator in the set admits everything
};

struct CheckCache {
    // first segment -> characters of the list
    std::unordered_map<uint32_t, uint64_t> segmentLengths;
    std::unordered_map<uint32_t, int64_t> highestNamedBits; // first named bit -> largest number
    LargeNotes<EndpointNote> endpoints;
    FlatMap<uint32_t, TNodeRef> rangeParents; // TNode -> first on its chain with a range
    // TNode -> first on its chain with a constraint, or the end of the chain
    FlatMap<uint32_t, TNodeRef> nextConstrained;
    // first item of an enumeration -> the values that its items stand for
    std::unordered_map<uint32_t, std::set<std::pair<ModuleRec*, uint32_t>>> enumItems;
    // single value in FROM -> characters, sorted
    std::unordered_map<uint32_t, std::u32string> alphabets;
    std::unordered_map<uint32_t, UnionIndex> unions;             // large unions of simple values
    std::map<std::pair<uint32_t, FieldPath>, TableIndex> tables; // table constraint and fields
    std::map<std::pair<uint64_t, uint64_t>, bool> sameTypes;     // of pairs of types (types_struct)
    TypeNotes types;
};

/// The cache of a module, made on first use.
CheckCache& checkCacheOf(ModuleRec* module);

} // namespace orvo
