// The walk of pass 5 over a type.
//
// Every record is checked once, whoever reaches it first: checkState moves from solved to running
// to done and is never reset. So a check must not depend on who asked: it finds what it needs to
// know (the enclosing structures, who is charged, what the type refers to) from the record. What it
// reads besides its record, it puts back; the record under check is current between any two steps.

#include "check/p5typ.h"

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

bool checkParts(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    bool ok = true;
    std::vector<VNodeNr> numberless;
    if (tNode.typeCode == TYP_ENUM) numberless = numberItems();
    if (tNode.constraint > 0) ok &= checkSubRec(module);
    readRec(self);
    if (tNode.namedVals != 0) checkNamedList(module, numberless);
    readRec(self);
    if (tNode.defaultVal != 0) ok &= checkDef(module);
    readRec(self);
    if (tNode.tags != 0) ok &= checkTag(module, innerTag());
    if (tNode.typeCode == TYP_CLASS && tNode.syntaxList != 0) ok &= checkUsrDefSyntax();
    readRec(self);
    if (tNode.typeCode == TYP_ANY)
        ok &= checkAnyType(module);
    else if (tNode.syntax > 0)
        ok &= checkTNodeActuals();
    readRec(self);
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
    readRec(self);
    checkAndMarkSetTNode(self);
    ok &= checkParts(module);
    if (ok) {
        setTypeVF();
        setTNodeEndpoints();
        readRec(self);
    }
    markRecursion(module);
    if (isTypeTNode() && !isEnclosed()) checkIgnorable();
    readRec(self);
    checkOptions(module);
    readRec(self);
    tNode.checkState = CHECK_DONE;
    writeRec(self);
    return ok || isTypeDefinition();
}

} // namespace orvo
