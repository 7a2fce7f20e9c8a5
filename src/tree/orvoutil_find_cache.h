#pragma once

// What look-ups and walks note about the records of a module, so that long lists and long chains of
// references are walked once. Short ones are walked every time and leave nothing here.

#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvoutil_find.h"
#include "tree/rec_notes.h"
#include "util/flat.h"

namespace orvo {

/// Where a chain of references ends that passes through a record, and the first reference on it
/// (from that record on) that instantiates a parameterized type outside any instance.
template <RecKind K> struct Jump {
    RecRef<K> end;
    RecRef<K> instance;
};

/// Where walks over solved records ended that began lately with a synonym: a check asks for the
/// same several times.
template <RecKind K> struct RecentWalks {
    struct Start {
        RecNr<K> record;
        int32_t refMod = 0; // checks hang another reference on a temporary record
        uint32_t ref = 0;
        bool fields = false;
        friend bool operator==(const Start&, const Start&) = default;
    };
    struct Walk {
        Start start;
        Jump<K> led;
    };
    Walk walks[4];
    unsigned next = 0;

    [[nodiscard]] const Jump<K>* find(const Start& start) const {
        for (const Walk& walk : walks)
            if (walk.start == start && start.record) return &walk.led;
        return nullptr;
    }
    void note(const Start& start, const Jump<K>& led) {
        walks[next++ % std::size(walks)] = {start, led};
    }
};

/// Names of a chain of records. Entries are only appended to chains, so the index grows with them:
/// it holds every entry before `last`.
struct ChainIndex {
    FlatMap<std::string_view, uint32_t> byName; // the first of a name
    uint32_t last = 0;
};

struct FlatIndex {
    std::unordered_map<std::string_view, size_t> byName; // place in `entries`, the first of a name
    std::vector<FlatEntry> entries;                      // by place
    uint32_t count = 0;                                  // places, saturating
    // the place of every component; made when first asked for
    FlatMap<NodeRef, uint32_t, NodeRefHash> byRecord;
};

/// Governing types of a chain of values, growing with it like a ChainIndex.
struct GovIndex {
    FlatMap<NodeRef, uint32_t, NodeRefHash> byType; // the first value of a type
    uint32_t last = 0;
};

/// Record number, and what the note depends on besides.
using NoteKey = std::pair<uint32_t, bool>;

/// The maps are ordered by record number: what is taken back is a suffix.
struct FindCache {
    std::map<NoteKey, Jump<KIND_TNODE>> typeJumps;  // fields of classes followed too
    std::map<NoteKey, Jump<KIND_VNODE>> valueJumps; // fields of objects followed too
    RecentWalks<KIND_TNODE> recentTypes;
    RecentWalks<KIND_VNODE> recentValues;
    std::map<uint32_t, uint32_t> lastNames; // first entry of a long chain of field names -> last
    std::map<uint32_t, ChainIndex> typeChains;
    std::map<uint32_t, ChainIndex> valueChains;
    LargeNotes<IncludedList> included;
    std::map<NoteKey, FlatIndex> flatLists; // the list as COMPONENTS OF includes it
    FlatIndex unsettledList;                // the one made last of records that may still change
    std::map<uint32_t, GovIndex> govChains;
};

/// The cache of a module, made on first use.
FindCache& findCacheOf(ModuleRec* module);

template <RecKind K> auto& jumpsOf(ModuleRec* module) {
    if constexpr (K == KIND_TNODE)
        return findCacheOf(module).typeJumps;
    else
        return findCacheOf(module).valueJumps;
}
template <RecKind K> auto& recentWalksOf(ModuleRec* module) {
    if constexpr (K == KIND_TNODE)
        return findCacheOf(module).recentTypes;
    else
        return findCacheOf(module).recentValues;
}
template <RecKind K> auto& chainsOf(ModuleRec* module) {
    if constexpr (K == KIND_TNODE)
        return findCacheOf(module).typeChains;
    else
        return findCacheOf(module).valueChains;
}

} // namespace orvo
