// Following references on demand.
//
// Invariants: a record is marked solved when everything between it and what it stands for is, or
// when it was made an unresolved reference; it is not looked at again. A record on a visit list
// that is not solved is being followed, so meeting it again is a cycle, and everything that leads
// into the cycle fails with it. Chains of plain references are followed in a loop, since they may
// be as long as a module has assignments; the records of the chain are solved from the end back to
// the beginning.

#include "solve/solve_ref.h"

#include "diag/orvoerr_fatal.h"
#include "solve/p5actpar.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_ref_int.h"
#include "solve/solve_val.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/stack.h"

namespace orvo {

namespace {

/// Lists up to this length are searched without an index.
constexpr size_t searchedLength = 16;

uint64_t visitKey(const VisitList::Entry& entry) {
    const auto record = static_cast<uint64_t>(entry.record + int64_t{maxRecNr} + 1);
    return (uint64_t{entry.module->handle} << 33) | record;
}

} // namespace

bool pushSyn(VisitList& list, ModuleRec* module, int64_t record) {
    const VisitList::Entry entry{module, record};
    if (list.entries.size() < searchedLength) {
        for (const VisitList::Entry& known : list.entries)
            if (known.module == module && known.record == record) return false;
    } else {
        if (list.index.empty())
            for (const VisitList::Entry& known : list.entries) list.index.insert(visitKey(known));
        if (!list.index.insert(visitKey(entry)).second) return false;
    }
    list.entries.push_back(entry);
    return true;
}

void checkStack() {
    if (stackIsLow()) fatalError(Fatal::NoSpace, "References are nested too deeply.");
}

ModuleRec* childModule(ModuleRec* module, int32_t refMod) {
    return refMod == REF_UNRESOLVED ? module : refModule(module, refMod);
}

// ---- types --------------------------------------------------------------------------------------

namespace {

/// The error of a record that could not be followed.
struct Finding {
    Msg code = Msg::None;
    std::string_view text;
};

bool isTypeReference() {
    return is(tNode.typeCode, TypeClass::Reference);
}

/// A reference that is to be followed. Formal parameters are none: outside instances, where they
/// become references to actual parameters, they stay what they are.
bool isOpenTypeReference() {
    if (!isTypeReference() || tNode.checkState != CHECK_NEW || tNode.ref == 0) return false;
    return tNode.typeCode != TYP_SYNONYM || tNode.refMod != REF_FORMAL;
}

/// The end of following a type: records what was wrong and marks the record solved. False for a
/// cycle.
bool markSolved(TNodeRef type, const Finding& finding) {
    readRec(type);
    if (tNode.checkState == CHECK_NEW) {
        if (finding.code != Msg::None) {
            if (!unreadState.met)
                recordError(actErrModPtr(type.module, tNode.actParRec), ERR_SEMANTIC, finding.code,
                            tNode.line, finding.text);
            makeUnresolvedType();
        }
        tNode.checkState = CHECK_SOLVED;
        writeRec(type);
    }
    return finding.code != Msg::RecursiveTypeReference;
}

/// From an object, whose value is current, through the chain to a type.
Finding followObjectField(VisitList& visited, ModuleRec* module, SNodeNr first) {
    Finding finding;
    SNodeNr rest;
    finding.code = solveValueFPtr(visited, module, first, finding.text, rest);
    if (finding.code != Msg::None) return finding;
    if (!isTypeSetting()) return {Msg::DefinedTypeSyntax, finding.text};
    readRec(valueModule(), TNodeNr{vNode.ref});
    if (rest) finding.code = solveTypeFPtr(visited, module, rest, TYP_CLASS, finding.text);
    return finding;
}

/// A selection type, a field of a class or information from an object, the current type.
bool solveFieldType(VisitList& visited) {
    checkStack();
    const OwnNotation ownNames;
    const TNodeRef self = currentRec<KIND_TNODE>();
    const SNodeNr first{tNode.syntax > 0 ? magnitude(tNode.syntax) : 0};
    Finding finding;
    if (tNode.refMod == REF_OBJECT) {
        const KeepRec<KIND_VNODE> keepValue;
        readRec(self.module, VNodeNr{tNode.ref});
        finding = followObjectField(visited, self.module, first);
    } else {
        const uint8_t kind = tNode.typeCode == TYP_SELECTION ? TYP_CHOICE : TYP_CLASS;
        ModuleRec* const module = childModule(self.module, tNode.refMod);
        if (module == nullptr) return true;
        readRec(module, TNodeNr{tNode.ref});
        finding.code = solveTypeFPtr(visited, self.module, first, kind, finding.text);
    }
    if (finding.code == Msg::None && !findActType(visited))
        finding.code = Msg::RecursiveTypeReference;
    return markSolved(self, finding);
}

/// Instantiates the current reference when it has actual parameters.
void instantiateType() {
    if (!isDeferred(tNode.syntax)) return;
    checkStack();
    const InstanceStack ofRecord(typeModule(), tNode.actParRec);
    parseTNodeActuals();
}

/// The loop over plain references from the current type; `chain` gets those that are to be marked.
/// False when it ends in a cycle.
bool followTypes(VisitList& visited, std::vector<TNodeRef>& chain) {
    while (isOpenTypeReference()) {
        const TNodeRef self = currentRec<KIND_TNODE>();
        if (!pushSyn(visited, self.module, self.nr.nr)) return false;
        if (tNode.typeCode != TYP_SYNONYM) return solveFieldType(visited);
        instantiateType();
        chain.push_back(self);
        ModuleRec* const target = refModule(self.module, tNode.refMod);
        if (target == nullptr || tNode.ref == 0) return true;
        readRec(target, TNodeNr{tNode.ref});
    }
    return true;
}

} // namespace

void makeUnresolvedType() {
    tNode.typeCode = TYP_SYNONYM;
    tNode.refMod = refNowhere();
    tNode.ref = 0;
    tNode.syntax = 0;
}

bool findActType(VisitList& visited) {
    const KeepRec<KIND_TNODE> keep;
    std::vector<TNodeRef> chain;
    bool ok = followTypes(visited, chain);
    for (; !chain.empty(); chain.pop_back()) {
        Finding finding;
        if (!ok) finding.code = Msg::RecursiveTypeReference;
        ok = markSolved(chain.back(), finding);
    }
    return ok;
}

bool findActType() {
    if (!isOpenTypeReference()) return true;
    VisitList visited;
    return findActType(visited);
}

// ---- values -------------------------------------------------------------------------------------

namespace {

/// As isOpenTypeReference.
bool isOpenValueReference() {
    if (vNode.checkState != CHECK_NEW || vNode.ref == 0) return false;
    return vNode.valCode == TYP_FIELDLIST ||
           (vNode.valCode == TYP_SYNONYM && vNode.refMod != REF_FORMAL);
}

/// Parses the text of the current value when its turn has not come yet.
void parseOnDemand() {
    if (vNode.refMod != REF_DEFERRED || vNode.checkState != CHECK_NEW || vNode.formals != 0) return;
    checkStack();
    ModuleRec* const module = valueModule();
    ModuleRec* const govModule = refModule(module, signedWord(vNode.govTypeMod));
    if (govModule == nullptr || vNode.govType == 0) return;
    const KeepRec<KIND_TNODE> keepType;
    const CurrentModule inModule(module);
    const InstanceStack ofRecord(module, vNode.actParRec);
    readRec(govModule, TNodeNr{vNode.govType});
    parseVNode();
}

bool markSolved(VNodeRef value, const Finding& finding) {
    readRec(value);
    if (vNode.checkState == CHECK_NEW) {
        if (finding.code != Msg::None) {
            if (!unreadState.met)
                recordError(actErrModPtr(value.module, vNode.actParRec), ERR_SEMANTIC, finding.code,
                            vNode.line, finding.text);
            makeUnresolvedValue();
        }
        vNode.checkState = CHECK_SOLVED;
        writeRec(value);
    }
    return finding.code != Msg::RecursiveValueReference;
}

std::string_view nameOf(VNodeRef value) {
    readRec(value);
    return vNode.name != 0 ? getStri(value.module, vNode.name) : std::string_view();
}

/// Information from an object, the current value.
bool solveFieldValue(VisitList& visited) {
    checkStack();
    const OwnNotation ownNames;
    const VNodeRef self = currentRec<KIND_VNODE>();
    const SNodeNr first{vNode.deferred > 0 ? magnitude(vNode.deferred) : 0};
    Finding finding;
    SNodeNr rest;
    readRec(self.module, VNodeNr{vNode.ref});
    finding.code = solveValueFPtr(visited, self.module, first, finding.text, rest);
    if (finding.code == Msg::None && !findActValue(visited))
        finding.code = Msg::RecursiveValueReference;
    if (finding.code == Msg::RecursiveValueReference) finding.text = nameOf(self);
    return markSolved(self, finding);
}

void instantiateValue() {
    if (!isDeferred(vNode.deferred)) return;
    checkStack();
    const InstanceStack ofRecord(valueModule(), vNode.actParRec);
    parseVNodeActuals();
}

struct ValueLink {
    VNodeRef value;
    VNodeRef target; // none when the reference leads nowhere
};

/// As followTypes.
bool followValues(VisitList& visited, std::vector<ValueLink>& chain) {
    for (;;) {
        parseOnDemand();
        if (!isOpenValueReference()) return true;
        const VNodeRef self = currentRec<KIND_VNODE>();
        if (!pushSyn(visited, self.module, -int64_t{self.nr.nr})) return false;
        if (vNode.valCode != TYP_SYNONYM) return solveFieldValue(visited);
        instantiateValue();
        ModuleRec* const target = refModule(self.module, vNode.refMod);
        const bool leadsOn = target != nullptr && vNode.ref != 0;
        chain.push_back({self, {leadsOn ? target : nullptr, VNodeNr{vNode.ref}}});
        if (!leadsOn) return true;
        readRec(chain.back().target);
    }
}

} // namespace

void makeUnresolvedValue() {
    vNode.valCode = TYP_SYNONYM;
    vNode.refMod = refNowhere();
    vNode.ref = 0;
    vNode.deferred = 0;
}

bool findActValue(VisitList& visited) {
    const KeepRec<KIND_VNODE> keep;
    std::vector<ValueLink> chain;
    bool ok = followValues(visited, chain);
    for (; !chain.empty(); chain.pop_back()) {
        Finding finding;
        if (!ok) finding = {Msg::RecursiveValueReference, nameOf(chain.back().target)};
        ok = markSolved(chain.back().value, finding);
    }
    return ok;
}

bool findActValue() {
    VisitList visited;
    return findActValue(visited);
}

} // namespace orvo
