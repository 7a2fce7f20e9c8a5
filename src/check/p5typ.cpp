// The walk of pass 5 over a type.
//
// Every record is checked once, whoever reaches it first: checkState moves from solved to running
// to done and is never reset. So a check must not depend on who asked: it finds what it needs to
// know (the enclosing structures, who is charged, what the type refers to) from the record. What it
// reads besides its record, it puts back; the record under check is current between any two steps.

#include "check/p5typ.h"

#include <cassert>
#include <unordered_map>
#include <vector>

#include "check/check_cache.h"
#include "check/orvonum_end.h"
#include "check/p5sub.h"
#include "check/p5typ_int.h"
#include "check/p5val.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "solve/p5actpar.h"
#include "solve/solve_stx.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"
#include "util/stack.h"

namespace orvo {

P5State p5State;

void recordTNodeError(ModuleRec* module, ErrClass errClass, Msg code, std::string_view detail) {
    recordError(module, errClass, code, tNode.line, detail);
}

std::string_view tNodeName() {
    if (tNode.name == 0) return {};
    return getStri(typeModule(), tNode.name);
}

namespace {

/// Shorter ways to a set are walked again rather than noted.
constexpr size_t shortWay = 8;

bool isReferenceWithTarget() {
    return tNode.typeCode == TYP_SYNONYM && tNode.ref != 0 && tNode.refMod > 0;
}

bool checkReferencedType() {
    const KeepRec<KIND_TNODE> keep;
    ModuleRec* const target = refModule(typeModule(), tNode.refMod);
    if (target == nullptr) return true;
    readRec(target, TNodeNr{tNode.ref});
    return checkTNode();
}

/// Settles the type that a selection, an object or a class gives, before its constraint is asked
/// for; what is wrong in it is its own affair.
void checkGivenType() {
    const KeepRec<KIND_TNODE> keep;
    if (followTypeRef(true)) static_cast<void>(checkTNode());
}

bool checkByKind(ModuleRec* module) {
    switch (tNode.typeCode) {
    case TYP_SEQ:
    case TYP_SEQOF:
    case TYP_SET:
    case TYP_SETOF:
    case TYP_CHOICE:
    case TYP_CLASS: return tNode.ref == 0 || checkStruType(module);
    case TYP_INSTANCE_OF: return checkEmbeddedType(module);
    case TYP_SYNONYM: return !isReferenceWithTarget() || checkReferencedType();
    case TYP_SELECTION: checkGivenType(); return true;
    case TYP_FIELDLIST:
        checkGivenType();
        return !isObjClassFieldTypeTNode() || checkObjClassFieldType(module);
    default: return true;
    }
}

/// The current type, or a type on the way from it, is a set. What the types on the way lead to is
/// noted when they are many: those behind a field need not have been checked.
bool leadsToSet() {
    std::vector<TNodeRef> passed;
    bool isSet = isSetTNode();
    while (!isSet && passed.size() < maxLinks) {
        if (tNode.typeCode != TYP_SYNONYM && tNode.typeCode != TYP_FIELDLIST) break;
        const TNodeRef here = currentRec<KIND_TNODE>();
        const auto& notes = checkCacheOf(here.module).types.leadsToSet;
        if (const auto note = notes.find(here.nr.nr); note != notes.end()) {
            isSet = note->second;
            break;
        }
        passed.push_back(here);
        if (!followTypeRef(true)) break;
        isSet = isSetTNode();
        if (tNode.checkState == CHECK_DONE) break;
    }
    if (passed.size() >= shortWay)
        for (const TNodeRef& type : passed)
            checkCacheOf(type.module).types.leadsToSet[type.nr.nr] = isSet;
    return isSet;
}

/// A reference to a set is a set too. The first type on the way whose checks are done tells it for
/// those behind it.
void checkAndMarkSetTNode(TNodeRef self) {
    if (isSetTNode()) return;
    const bool isSet = leadsToSet();
    readRec(self);
    if (!isSet) return;
    tNode.nodeFlags |= NF_SET;
    writeRec(self);
}

/// The default value carries the type that governs it, which for a component or field is that
/// itself.
bool checkDefaultValue(ModuleRec* module) {
    const KeepRec<KIND_VNODE> keepValue;
    readRec(typeModule(), VNodeNr{tNode.defaultVal});
    return checkVNode(module, true, true);
}

bool checkDefaultType() {
    const KeepRec<KIND_TNODE> keep;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(typeModule(), VNodeNr{tNode.defaultVal});
    if (!readTypeSetting()) return true;
    if (tNode.typeCode == TYP_SYNONYM || tNode.typeCode == TYP_FIELDLIST) return true;
    return checkTNode();
}

bool checkDef(ModuleRec* module) {
    const bool isTypeField = tNode.typeCode == TYP_OPEN && !isSetTNode() && !isValFieldTNode();
    const bool ok = isTypeField ? checkDefaultType() : checkDefaultValue(module);
    if (!ok) recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidDefaultValue);
    return ok;
}

/// The tag of what a tag written on the current type is applied to.
SeenTag innerTag() {
    const KeepRec<KIND_TNODE> keep;
    if (followTypeRef(true)) return getNextTag();
    return {TAG_UNIVERSAL, typeArr[tNode.typeCode].tag};
}

/// The actual parameters of an instance.
bool checkActuals() {
    const bool ok = checkTNodeActuals();
    if (!isInstantiatedTNode() || tNode.refMod <= 0) return ok;
    return checkActualValues(typeModule(), static_cast<uint32_t>(tNode.syntax)) && ok;
}

bool checkParts(ModuleRec* module) {
    bool ok = true;
    std::vector<VNodeNr> numberless;
    if (tNode.typeCode == TYP_ENUM) numberless = numberItems();
    if (tNode.constraint > 0) ok &= checkSubRec(module);
    if (tNode.namedVals != 0) checkNamedList(module, numberless);
    if (tNode.defaultVal != 0) ok &= checkDef(module);
    if (tNode.tags != 0) ok &= checkTag(module, innerTag());
    if (tNode.typeCode == TYP_CLASS && tNode.syntaxList != 0) ok &= checkUsrDefSyntax();
    if (tNode.typeCode == TYP_ANY)
        ok &= checkAnyType(module);
    else if (tNode.syntax > 0)
        ok &= checkActuals();
    return ok;
}

} // namespace

ModuleRec* moduleForTypeErrors() {
    return actErrModPtr(typeModule(), tNode.actParRec);
}

bool isTypeDefinition() {
    return magnitude(tNode.compStatus) == TCS_HEADER && tNode.actParRec == 0;
}

bool checkTNode() {
    if (stackIsLow()) fatalError(Fatal::NoSpace, "Types are nested too deeply.");
    if (tNode.checkState >= CHECK_RUNNING) return true;
    const TNodeRef self = currentRec<KIND_TNODE>();
    ModuleRec* const module = moduleForTypeErrors();
    tNode.checkState = CHECK_RUNNING;
    writeRec(self);
    const Restore series(seriesView, {});
    bool ok = checkByKind(module);
    checkAndMarkSetTNode(self);
    ok &= checkParts(module);
    if (ok) {
        setTNodeEndpoints(); // what is computed there is asked for again
        setTypeVF();
    }
    markRecursion(module);
    if (isTypeTNode() && !isEnclosed()) checkIgnorable();
    checkOptions(module);
    assert(currentRec<KIND_TNODE>() == self);
    tNode.checkState = CHECK_DONE;
    writeRec(self);
    return ok || isTypeDefinition();
}

// ---- what encloses a type -----------------------------------------------------------------------
// A structure names its first component, the components one another; that a component knows its
// structure is noted for all records of a module at the first question. The records of an extension
// addition group belong to the structure that holds the group.

namespace {

/// Notes of each component of the current structure what it stands in.
void noteComponents(ModuleRec* module, std::vector<uint32_t>& enclosing) {
    const uint32_t structure = currentRec<KIND_TNODE>().nr.nr;
    for (const TNodeNr nr : chain(module, TNodeNr{tNode.ref}))
        if (nr.nr < enclosing.size()) enclosing[nr.nr] = structure;
}

/// The type in a contents constraint stands where the constrained type does.
void noteContainedType(ModuleRec* module, uint32_t owner, std::vector<uint32_t>& enclosing) {
    if (subRec.subKind != SUB_CONTENTS || subRec.left == 0) return;
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{subRec.left});
    if (vNode.ref < enclosing.size()) enclosing[vNode.ref] = enclosing[owner];
}

/// The contents constraints of the types of a module, alone or in a series.
void noteContents(ModuleRec* module, std::vector<uint32_t>& enclosing) {
    const KeepRec<KIND_SUB> keep;
    for (uint32_t nr = 1; nr < enclosing.size(); ++nr) {
        if (enclosing[nr] == 0) continue;
        readRec(module, TNodeNr{nr});
        if (tNode.constraint <= 0) continue;
        readRec(module, SubNr{magnitude(tNode.constraint)});
        if (subRec.subKind != SUB_SERIAL) {
            noteContainedType(module, nr, enclosing);
            continue;
        }
        for ([[maybe_unused]] const SubNr member : chain(module, SubNr{subRec.left}))
            noteContainedType(module, nr, enclosing);
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
    if (newNotation(module)) noteContents(module, enclosing);
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

// ---- what is marked when all types are checked --------------------------------------------------
// It depends on what the checks of several types settle: ignorable types, which a decoder may pass
// over because of SKIP and SIZE-LIMIT= options, and lists of lists.

namespace {

/// Puts into `types` what the current record refers to: the next type on the way of a reference,
/// selection or field, and the components of a structure (those of extension addition groups
/// through the group).
void findReferredTypes(std::vector<TNodeRef>& types) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    types.clear();
    if (is(tNode.typeCode, TypeClass::Enclosing) && tNode.typeCode != TYP_CLASS) {
        forEachTNodeByMod(self.module, TNodeNr{tNode.ref}, [&] {
            if (tNode.typeCode != TYP_EXTENSION_MARKER) types.push_back(currentRec<KIND_TNODE>());
        });
    } else if (followTypeRef(true)) {
        types.push_back(currentRec<KIND_TNODE>());
    }
    readRec(self);
}

void setIgnorableChecked(TNodeRef type) {
    readRec(type);
    tNode.nodeFlags |= NF_IGNORABLE_CHECKED;
    writeRec(type);
}

/// Marks a type, and everything it refers to, as ignorable; one that is marked already ends the
/// walk.
void markReferencedIgnorable(std::vector<TNodeRef> pending) {
    std::vector<TNodeRef> referred;
    while (!pending.empty()) {
        const TNodeRef type = pending.back();
        pending.pop_back();
        readRec(type);
        if ((tNode.checkFlags & CF_IGNORABLE) != 0) continue;
        tNode.checkFlags |= CF_IGNORABLE;
        tNode.nodeFlags |= NF_IGNORABLE_CHECKED;
        writeRec(type);
        findReferredTypes(referred);
        pending.insert(pending.end(), referred.begin(), referred.end());
    }
}

/// Examines the types by the three rules, and what they refer to, the last one first.
void doCheckIgnorable(std::vector<TNodeRef> pending) {
    std::vector<TNodeRef> referred;
    while (!pending.empty()) {
        const TNodeRef type = pending.back();
        pending.pop_back();
        readRec(type);
        if ((tNode.nodeFlags & NF_IGNORABLE_CHECKED) != 0) continue;
        setIgnorableChecked(type);
        findReferredTypes(referred);
        if ((tNode.optFlags & OPTF_SKIP) != 0 && tNode.skipOpt == 0)
            markReferencedIgnorable({type});
        else if (tNode.sizeLimit == 0 || tNode.typeCode == TYP_EXTADDGRP) // whose version it is
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
    std::vector<TNodeRef> types;
    types.swap(p5State.ignorableFrom);
    std::ranges::reverse(types); // the first one first
    doCheckIgnorable(std::move(types));
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
    std::unordered_map<uint64_t, uint16_t> settled;
    for (const TNodeRef& first : p5State.lists) {
        std::vector<TNodeRef> way; // each the element of the one before
        std::unordered_map<uint64_t, size_t> places;
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
