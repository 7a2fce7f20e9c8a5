#pragma once

// What pass 5 found out about the types of a module, by TNode number. Entries are made from solved
// records, which do not change any more.

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/rec_notes.h"
#include "util/flat.h"

namespace orvo {

/// A tag as comparisons see it: the number of a defined value is resolved, a negative number is one
/// of the pseudo tags of the type table.
struct SeenTag {
    int32_t tagClass = TAG_UNIVERSAL;
    int32_t tagNr = 0;
    friend bool operator==(const SeenTag&, const SeenTag&) = default;
};
constexpr uint64_t keyOf(const SeenTag& tag) {
    return uint64_t{static_cast<uint32_t>(tag.tagClass)} << 32 | static_cast<uint32_t>(tag.tagNr);
}

/// The tags by which values of an untagged CHOICE may begin: those of its alternatives, in order,
/// the alternatives of untagged CHOICEs among them in place. No tag stands twice.
struct AlternativeTags {
    std::vector<SeenTag> tags;
    bool endless = false; // the CHOICE is one of those untagged CHOICEs itself
};

/// Place of a type in the graph of types that lead to one another.
struct CycleNote {
    bool onCycle = false;
    uint32_t component = 0; // number of the strongly connected component
};

/// Whether mandatory fields lead from a class to a cycle of classes.
enum class LinkNote : uint8_t { Entered, Ends, Cyclic };

struct TypeNotes {
    std::vector<uint32_t> enclosing; // TNode -> the structure or group that it stands in; 0 = none
    FlatMap<uint32_t, uint32_t> outermost; // structure -> the outermost around it
    FlatMap<uint32_t, SeenTag> seenTags;
    FlatMap<uint32_t, bool> leadsToSet; // references on long ways
    std::unordered_map<uint32_t, AlternativeTags> alternativeTags;
    RecNotes<CycleNote> cycles;
    FlatMap<uint32_t, bool> leadsToEnd;   // some way on from the type ends recursion
    FlatMap<uint32_t, bool> firstWayEnds; // and the first way on does
    FlatMap<uint32_t, bool> hasNoValue;   // what it is part of has no finite value because of it
    FlatMap<uint32_t, LinkNote> links;
    FlatMap<uint32_t, std::vector<TNodeRef>> waiting; // references checked before it
    FlatSet<uint64_t> usedTags; // APPLICATION and PRIVATE tags, with TAGUSAGE=
};

} // namespace orvo
