// Ignorable types: what a decoder may pass over because of SKIP and SIZE-LIMIT= options.

#include <vector>

#include "check/p5typ_int.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

bool hasIgnorableParts(uint8_t kind) {
    return kind >= TYP_SEQ && kind <= TYP_CHOICE;
}

/// What the current record refers to: the next type on the way of a reference, selection or field,
/// and the components of a structure (those of extension addition groups through the group).
std::vector<TNodeRef> referredTypes() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    std::vector<TNodeRef> types;
    if (hasIgnorableParts(tNode.typeCode) || tNode.typeCode == TYP_EXTADDGRP) {
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

/// Examines the current record by the three rules, and what it refers to.
void doCheckIgnorable() {
    std::vector<TNodeRef> pending{currentRec<KIND_TNODE>()};
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
    const KeepRec<KIND_TNODE> keep;
    doCheckIgnorable();
}

} // namespace orvo
