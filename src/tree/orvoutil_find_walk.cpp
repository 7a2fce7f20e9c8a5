// Walks along references. The last entry of a field name chain, and the entry of a selection type,
// hold their solution: a module reference and a record number, negated for a value. Chains of
// references may be as long as a module has assignments, so a walk of more than jumpStride links
// notes every jumpStride-th record on its way with the end it leads to, and later walks go there at
// once. Only walks over solved records, which do not change any more, are noted. Fields are links
// like any other: a walk that follows them has notes of its own. Where a long chain of names ends
// is noted too.

#include "tree/orvoutil_find.h"
#include "tree/orvoutil_find_cache.h"

namespace orvo {

namespace {

constexpr uint32_t jumpStride = 8;

/// Reads the last entry of a field name chain; false when there is none.
bool readLastEntry(ModuleRec* module, SNodeNr first) {
    SNodeNr nr = first;
    uint32_t left = module->nextRecNr[KIND_SNODE];
    for (uint32_t names = 1; nr && left != 0; --left, ++names) {
        readRec(module, nr);
        if (sNode.next <= 0) {
            if (names > jumpStride) findCacheOf(module).lastNames[first.nr] = nr.nr;
            return true;
        }
        nr = {static_cast<uint32_t>(sNode.next)};
        if (names != jumpStride) continue;
        const auto& notes = findCacheOf(module).lastNames;
        if (const auto note = notes.find(first.nr); note != notes.end()) nr = {note->second};
    }
    return false;
}

/// Reads the type that the current entry, of a record of `module`, designates.
bool readSolvedType(ModuleRec* module) {
    ModuleRec* target = refModule(module, static_cast<int32_t>(sNode.module));
    if (target == nullptr || sNode.value == 0) return false;
    if (sNode.value > 0) {
        readRec(target, TNodeNr{magnitude(sNode.value)});
        return true;
    }
    const KeepRec<KIND_VNODE> keepValue;
    readRec(target, VNodeNr{magnitude(sNode.value)});
    if (vNode.valCode != TYP_OPEN) return false;
    if (vNode.refMod != REF_FORMAL && (vNode.vflags & VF_SET) == 0) return false;
    return readTypeSetting();
}

bool isReference(const TNode& node) {
    return is(node.typeCode, TypeClass::Reference);
}
bool isReference(const VNode& node) {
    return node.valCode == TYP_SYNONYM || node.valCode == TYP_FIELDLIST;
}
bool isSynonym(const TNode& node) {
    return node.typeCode == TYP_SYNONYM;
}
bool isSynonym(const VNode& node) {
    return node.valCode == TYP_SYNONYM;
}
bool isSolved(const auto& node) {
    return node.checkState != CHECK_NEW;
}
/// It instantiates a parameterized type outside any instance.
bool isCaught(const TNode& node) {
    return isInstantiated(node) && node.actParRec == 0;
}
bool isCaught(const VNode&) {
    return false;
}

/// `fields`: class fields of types, or object fields of values, are followed too.
template <RecKind K> bool step(bool fields);
template <> bool step<KIND_TNODE>(bool fields) {
    ModuleRec* module = typeModule();
    if (tNode.typeCode == TYP_SYNONYM) {
        ModuleRec* target = refModule(module, tNode.refMod);
        if (target == nullptr || tNode.ref == 0) return false;
        readRec(target, TNodeNr{tNode.ref});
        return true;
    }
    if (tNode.typeCode == TYP_SELECTION && tNode.syntax > 0) {
        const KeepRec<KIND_SNODE> keepEntry;
        readRec(module, SNodeNr{static_cast<uint32_t>(tNode.syntax)});
        return sNode.value > 0 && readSolvedType(module);
    }
    if (tNode.typeCode != TYP_FIELDLIST) return false;
    return (fields || tNode.refMod == REF_OBJECT) && skipFieldList();
}
template <> bool step<KIND_VNODE>(bool fields) {
    ModuleRec* module = valueModule();
    if (vNode.valCode == TYP_SYNONYM) {
        ModuleRec* target = refModule(module, vNode.refMod);
        if (target == nullptr || vNode.ref == 0) return false;
        readRec(target, VNodeNr{vNode.ref});
        return true;
    }
    if (!fields || vNode.valCode != TYP_FIELDLIST || vNode.deferred <= 0) return false;
    const KeepRec<KIND_SNODE> keepEntry;
    if (!readLastEntry(module, SNodeNr{static_cast<uint32_t>(vNode.deferred)})) return false;
    ModuleRec* target = refModule(module, static_cast<int32_t>(sNode.module));
    if (target == nullptr || sNode.value >= 0) return false;
    readRec(target, VNodeNr{magnitude(sNode.value)});
    return true;
}

/// The records of a long walk that are noted, and those of them without an instance behind them so
/// far.
template <RecKind K> struct Trail {
    std::vector<RecRef<K>> at;
    std::vector<RecRef<K>> instance;
    void catchInstance(RecRef<K> caught) {
        if (caught) instance.resize(at.size(), caught);
    }
    void note(RecRef<K> end, bool fields) {
        instance.resize(at.size());
        for (size_t i = 0; i < at.size(); ++i)
            jumpsOf<K>(at[i].module)[{at[i].nr.nr, fields}] = {end, instance[i]};
    }
};

/// The same as walk() where a few synonyms lead to what is no reference, as they mostly do: in
/// place, without making each current. False when the chain is another one.
template <RecKind K> bool walkSynonyms(RecRef<K>& first) {
    const auto* node = &bufferRec<K>();
    RecRef<K> at = currentRec<K>();
    for (int left = 4;; --left) {
        if (!first && isCaught(*node)) first = at;
        if (!isReference(*node)) break;
        if (!isSynonym(*node) || left == 0) return false;
        at = {refModule(at.module, node->refMod), RecNr<K>{node->ref}};
        node = at ? peekRec(at.module, at.nr) : nullptr;
        if (node == nullptr) return false;
    }
    readRec(at);
    return true;
}

/// Walks to the end of the chain of references and returns the first instantiating one.
template <RecKind K> RecRef<K> walk(bool fields) {
    RecRef<K> first; // instantiating reference
    if (walkSynonyms<K>(first)) return first;
    first = {};
    Trail<K> trail;
    RecRef<K> mark = currentRec<K>(); // passed again: a cycle
    bool recurs = isSynonym(bufferRec<K>());
    auto& recent = recentWalksOf<K>(mark.module);
    const typename RecentWalks<K>::Start start{mark.nr, bufferRec<K>().refMod, bufferRec<K>().ref,
                                               fields};
    if (const Jump<K>* led = recurs ? recent.find(start) : nullptr) {
        readRec(led->end);
        return led->instance;
    }
    uint64_t lap = 1;
    const auto meet = [&](RecRef<K> caught) {
        if (!first) first = caught;
        trail.catchInstance(caught);
    };
    for (uint64_t steps = 0;;) {
        const RecRef<K> here = currentRec<K>();
        if (steps >= jumpStride) {
            auto& jumps = jumpsOf<K>(here.module);
            if (const auto jump = jumps.find({here.nr.nr, fields}); jump != jumps.end()) {
                meet(jump->second.instance);
                readRec(jump->second.end);
                break;
            }
            if (steps % jumpStride == 0) trail.at.push_back(here);
        }
        if (isCaught(bufferRec<K>())) meet(here);
        if (isReference(bufferRec<K>()) && !isSolved(bufferRec<K>())) {
            trail = {};
            recurs = false;
        }
        if (!step<K>(fields)) break;
        if (currentRec<K>() == mark) return first;
        if (++steps == lap) {
            mark = currentRec<K>();
            lap *= 2;
        }
    }
    const RecRef<K> end = currentRec<K>();
    trail.note(end, fields);
    if (recurs) recent.note(start, {end, first});
    return first;
}

} // namespace

ModuleRec* refModule(ModuleRec* module, int32_t refMod) {
    if (refMod == REF_OWN) return module;
    return refMod > REF_OWN ? getModPtr(module, static_cast<uint32_t>(refMod)) : nullptr;
}

bool readTypeSetting() {
    ModuleRec* module = valueModule();
    // The type record stands in place of a reference; that of a set which another object gives may
    // lie in another module.
    ModuleRec* owner = vNode.refMod == REF_FORMAL ? module : refModule(module, vNode.refMod);
    if (owner == nullptr || vNode.ref == 0) return false;
    readRec(owner, TNodeNr{vNode.ref});
    return true;
}

bool readTypeSetting(VNodeRef setting) {
    if (!setting) return false;
    readRec(setting);
    return readTypeSetting();
}

bool skipFieldList() {
    ModuleRec* module = typeModule();
    if (tNode.syntax <= 0) return false;
    const KeepRec<KIND_SNODE> keepEntry;
    return readLastEntry(module, SNodeNr{static_cast<uint32_t>(tNode.syntax)}) &&
           readSolvedType(module);
}

bool followTypeRef(bool classFieldTypes) {
    return step<KIND_TNODE>(classFieldTypes);
}

void skipTypesCatchInst(bool classFieldTypes, NodeContext* instance) {
    const TNodeRef caught = walk<KIND_TNODE>(classFieldTypes);
    if (instance != nullptr && instance->nr == 0 && caught)
        *instance = {caught.module, caught.nr.nr};
}
void skipTypes(bool classFieldTypes) {
    walk<KIND_TNODE>(classFieldTypes);
}

void skipValues(bool fields) {
    walk<KIND_VNODE>(fields);
}

} // namespace orvo
