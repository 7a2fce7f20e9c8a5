// All parts of two types are compared, one pair after the other: types may be nested as deep as a
// module has definitions, and lead back to themselves. A pair that was met counts as equal, since
// the walk ends with the first that is not.

#include "tree/types_struct.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "check/check_cache.h"
#include "tree/orvoutil_find.h"
#include "tree/types_compat.h"

namespace orvo {
namespace {

using Pair = std::pair<TNodeRef, TNodeRef>;

/// The components of the current structure, those of groups and included lists in their places.
std::vector<FlatEntry> componentsHere() {
    if (tNode.ref == 0) return {};
    return flatComponents(typeModule(), TNodeNr{tNode.ref});
}

bool sameComponents(const std::vector<FlatEntry>& a, const std::vector<FlatEntry>& b,
                    std::vector<Pair>& open) {
    const auto isSame = [](const FlatEntry& x, const FlatEntry& y) {
        return x.name == y.name && x.compStatus == y.compStatus && x.repeated == y.repeated;
    };
    if (!std::ranges::equal(a, b, isSame)) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (!a[i].name.empty()) open.emplace_back(a[i].component, b[i].component);
    return true;
}

std::vector<std::string_view> itemNames() {
    std::vector<std::string_view> names;
    ModuleRec* const module = typeModule();
    const KeepRec<KIND_VNODE> keep;
    for ([[maybe_unused]] const VNodeNr nr : chain(module, VNodeNr{tNode.namedVals}))
        names.push_back(getStri(module, int64_t{vNode.name}));
    return names;
}

/// Compares the two types, references followed, and leaves their parts to be compared.
bool sameHere(TNodeRef a, TNodeRef b, std::vector<Pair>& open) {
    const uint8_t kind = tNode.typeCode; // of b
    readRec(a);
    const bool isSameKind = tNode.typeCode == kind;
    switch (tNode.typeCode) {
    case TYP_SEQ:
    case TYP_SET:
    case TYP_CHOICE: {
        const std::vector<FlatEntry> left = componentsHere();
        readRec(b);
        return isSameKind && sameComponents(left, componentsHere(), open);
    }
    case TYP_SEQOF:
    case TYP_SETOF: {
        const TNodeRef element{a.module, TNodeNr{tNode.ref}};
        readRec(b);
        if (isSameKind) open.push_back({element, {b.module, TNodeNr{tNode.ref}}});
        return isSameKind;
    }
    case TYP_ENUM: {
        const std::vector<std::string_view> left = itemNames();
        readRec(b);
        return isSameKind && left == itemNames();
    }
    default: return typeCompatible(a.module, a.nr, b.module, b.nr);
    }
}

bool compareAll(TNodeRef a, TNodeRef b) {
    std::set<std::pair<uint64_t, uint64_t>> met;
    std::vector<Pair> open{{a, b}};
    while (!open.empty()) {
        auto [left, right] = open.back();
        open.pop_back();
        if (!left.nr || !right.nr) return false;
        readRec(left);
        skipTypes(true);
        left = currentRec<KIND_TNODE>();
        readRec(right);
        skipTypes(true);
        right = currentRec<KIND_TNODE>();
        if (left == right || !met.insert({keyOf(left), keyOf(right)}).second) continue;
        if (!sameHere(left, right, open)) return false;
    }
    return true;
}

} // namespace

bool sameStructure(TNodeRef a, TNodeRef b) {
    const std::pair<uint64_t, uint64_t> pair{keyOf(a), keyOf(b)};
    auto& notes = checkCacheOf(a.module).sameTypes;
    if (const auto note = notes.find(pair); note != notes.end()) return note->second;
    const KeepRec<KIND_TNODE> keep;
    const bool isSame = compareAll(a, b);
    checkCacheOf(a.module).sameTypes[pair] = isSame;
    return isSame;
}

} // namespace orvo
