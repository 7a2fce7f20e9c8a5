// What encloses a type: found from its record, so that it is the same whoever asks for the check.
//
// A structure names its first component, the components one another; that a component knows its
// structure is noted for all records of a module at the first question. The records of an extension
// addition group belong to the structure that holds the group.

#include "check/check_cache.h"
#include "check/p5typ.h"
#include "tree/orvorec.h"

namespace orvo {

namespace {

/// Notes of each component of the current structure what it stands in.
void noteComponents(ModuleRec* module, std::vector<uint32_t>& enclosing) {
    const uint32_t structure = recState.recJustRead[KIND_TNODE].nr;
    size_t left = enclosing.size();
    for (TNodeNr nr{tNode.ref}; nr && nr.nr < enclosing.size() && left-- != 0;) {
        enclosing[nr.nr] = structure;
        readRec(module, nr);
        nr = TNodeNr{tNode.next};
    }
}

/// The enclosing structure or group of the record, which is of the module; 0 when there is none.
uint32_t holderOf(ModuleRec* module, TNodeNr nr) {
    noteEnclosing(module);
    const std::vector<uint32_t>& enclosing = checkCacheOf(module).types.enclosing;
    if (nr.nr >= enclosing.size()) { // a temporary reference to the type under check
        readRec(module, nr);
        nr = TNodeNr{tNode.ref};
    }
    return nr.nr < enclosing.size() ? enclosing[nr.nr] : 0;
}

/// The enclosing structure of a record that is one itself, or stands in one.
uint32_t structureAround(ModuleRec* module, TNodeNr nr) {
    for (uint32_t holder = holderOf(module, nr); holder != 0;
         holder = holderOf(module, TNodeNr{holder})) {
        readRec(module, TNodeNr{holder});
        if (tNode.typeCode != TYP_EXTADDGRP) return holder;
    }
    return 0;
}

} // namespace

void noteEnclosing(ModuleRec* module) {
    std::vector<uint32_t>& enclosing = checkCacheOf(module).types.enclosing;
    if (!enclosing.empty()) return; // temporary records come behind those that were noted
    const KeepRec<KIND_TNODE> keep;
    enclosing.resize(nextRec<KIND_TNODE>(module).nr);
    for (uint32_t nr = 1; nr < enclosing.size(); ++nr) {
        if (!recExists(module, KIND_TNODE, nr)) continue;
        readRec(module, TNodeNr{nr});
        if (is(tNode.typeCode, TypeClass::Enclosing)) noteComponents(module, enclosing);
    }
}

bool isEnclosed() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const bool enclosed = holderOf(self.module, self.nr) != 0;
    readRec(self);
    return enclosed;
}

bool innerEnclStru() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const uint32_t structure = structureAround(self.module, self.nr);
    readRec(structure != 0 ? TNodeRef{self.module, TNodeNr{structure}} : self);
    return structure != 0;
}

bool outerEnclStru() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    auto& outermost = checkCacheOf(self.module).types.outermost;
    std::vector<uint32_t> way;
    uint32_t top = 0;
    for (uint32_t at = structureAround(self.module, self.nr); at != 0;
         at = structureAround(self.module, TNodeNr{at})) {
        top = at;
        way.push_back(at);
        const auto known = outermost.find(at);
        if (known == outermost.end()) continue;
        top = known->second;
        break;
    }
    for (const uint32_t passed : way) outermost[passed] = top;
    readRec(top != 0 ? TNodeRef{self.module, TNodeNr{top}} : self);
    return top != 0;
}

} // namespace orvo
