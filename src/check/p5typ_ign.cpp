// What is marked when all types are checked, because it depends on what the checks of several types
// settle: ignorable types, which a decoder may pass over because of SKIP and SIZE-LIMIT= options,
// and lists of lists.

#include <unordered_map>
#include <vector>

#include "check/p5typ_int.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/flat.h"

namespace orvo {

namespace {

/// What the current record refers to: the next type on the way of a reference, selection or field,
/// and the components of a structure (those of extension addition groups through the group).
std::vector<TNodeRef> referredTypes() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    std::vector<TNodeRef> types;
    if (is(tNode.typeCode, TypeClass::Enclosing) && tNode.typeCode != TYP_CLASS) {
        forEachTNodeByMod(self.module, TNodeNr{tNode.ref}, [&] {
            if (tNode.typeCode != TYP_EXTENSION_MARKER) types.push_back(currentRec<KIND_TNODE>());
        });
    } else if (followTypeRef(true)) {
        types.push_back(currentRec<KIND_TNODE>());
    }
    readRec(self);
    return types;
}

void setIgnorableChecked(TNodeRef type) {
    readRec(type);
    tNode.nodeFlags |= NF_IGNORABLE_CHECKED;
    writeRec(type);
}

/// Marks a type, and everything it refers to, as ignorable; one that is marked already ends the
/// walk.
void markReferencedIgnorable(std::vector<TNodeRef> pending) {
    while (!pending.empty()) {
        const TNodeRef type = pending.back();
        pending.pop_back();
        readRec(type);
        if ((tNode.checkFlags & CF_IGNORABLE) != 0) continue;
        tNode.checkFlags |= CF_IGNORABLE;
        tNode.nodeFlags |= NF_IGNORABLE_CHECKED;
        writeRec(type);
        for (const TNodeRef& next : referredTypes()) pending.push_back(next);
    }
}

/// Examines a type by the three rules, and what it refers to.
void doCheckIgnorable(TNodeRef first) {
    std::vector<TNodeRef> pending{first};
    while (!pending.empty()) {
        const TNodeRef type = pending.back();
        pending.pop_back();
        readRec(type);
        if ((tNode.nodeFlags & NF_IGNORABLE_CHECKED) != 0) continue;
        setIgnorableChecked(type);
        const std::vector<TNodeRef> referred = referredTypes();
        if ((tNode.optFlags & OPTF_SKIP) != 0 && tNode.skipOpt == 0)
            markReferencedIgnorable({type});
        else if (tNode.sizeLimit == 0)
            pending.insert(pending.end(), referred.rbegin(), referred.rend());
        else if (tNode.sizeLimitSkip == 0)
            markReferencedIgnorable(referred);
    }
}

} // namespace

void checkIgnorable() {
    p5State.ignorableFrom.push_back(currentRec<KIND_TNODE>());
}

void markIgnorables() {
    for (const TNodeRef& type : p5State.ignorableFrom) doCheckIgnorable(type);
    p5State.ignorableFrom.clear();
}

namespace {

/// The list that is the element of a list, references followed; none for other elements. It is
/// current afterwards.
TNodeRef elementListOf(TNodeRef list) {
    readRec(list);
    readRec(list.module, TNodeNr{tNode.ref});
    skipTypes(true);
    return is(tNode.typeCode, TypeClass::List) ? currentRec<KIND_TNODE>() : TNodeRef{};
}

/// What the element of a list makes of it.
uint16_t checkListElem(TNodeRef list) {
    if (!elementListOf(list)) return 0;
    const bool represented = (tNode.optFlags & (OPTF_SEG | OPTF_DYN)) != 0;
    return represented ? CF_LIST_OF_REPR_LISTS : CF_LIST_OF_LISTS;
}

} // namespace

void markListElements() {
    FlatMap<uint64_t, uint16_t> settled;
    for (const TNodeRef& first : p5State.lists) {
        std::vector<TNodeRef> way; // each the element of the one before
        FlatMap<uint64_t, size_t> places;
        TNodeRef at = first;
        while (at && !settled.contains(keyOf(at)) &&
               places.try_emplace(keyOf(at), way.size()).second) {
            way.push_back(at);
            at = elementListOf(at);
        }
        uint16_t flags = 0;
        if (const auto known = at ? settled.find(keyOf(at)) : settled.end(); known != settled.end())
            flags = known->second;
        else if (at) // lists of one another have the flags of all
            for (size_t i = places[keyOf(at)]; i < way.size(); ++i) flags |= checkListElem(way[i]);
        for (size_t i = way.size(); i-- != 0;) {
            flags |= checkListElem(way[i]);
            settled[keyOf(way[i])] = flags;
            readRec(way[i]);
            tNode.checkFlags |= flags;
            writeRec(way[i]);
        }
    }
    p5State.lists.clear();
}

} // namespace orvo
