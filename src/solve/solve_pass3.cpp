// Pass 3: the walk over the assignments of a module.
//
// Invariants: what a type contains is solved before its constraint is parsed; a default value is
// parsed once, by its field or by a reference that comes first. The type record that a function is
// called for is current again when it returns.

#include "solve/solve_pass3.h"

#include "diag/orvoerr_hello.h"
#include "solve/p5actpar.h"
#include "solve/solve_con.h"
#include "solve/solve_cur.h"
#include "solve/solve_exp.h"
#include "solve/solve_par.h"
#include "solve/solve_ref_int.h"
#include "solve/solve_val.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/values.h"
#include "util/guard.h"
#include "util/text.h"

namespace orvo {

namespace {

struct SolveState {
    uint8_t glbMainType = TYP_NONE; // kind of the structure whose components are walked
};
SolveState solveState;

/// Components and fields of the current type. An extension addition group belongs to the structure
/// around it.
void parseComponents() {
    const uint8_t kind = tNode.typeCode;
    const Restore<uint8_t> mainType(solveState.glbMainType,
                                    kind == TYP_EXTADDGRP ? solveState.glbMainType : kind);
    forEachTNodeByMod(typeModule(), TNodeNr{tNode.ref}, parseTNodeAndSolveCompOf);
}

} // namespace

void solveRefs2() {
    if (progressShown())
        printProgress(concat("solving references (pass 3) for ", cMP->options.sourceFileName));
    inp = {};
    setAplStack(0);
    forEachTNodeByMod(cMP, cMP->firstTypeHead, parseTypeAssignment);
    const KeepRec<KIND_VNODE> keep;
    for ([[maybe_unused]] const VNodeNr nr : chain(cMP, cMP->firstValueHead))
        parseValueAssignment();
}

namespace {

/// Puts a record of its own between the head of a value set, the current type, and a governor with
/// a constraint, which would otherwise have no place.
void separateGovernor() {
    const TNodeRef head = currentRec<KIND_TNODE>();
    const auto text = head.module->governorTexts.find(head.nr.nr);
    if (text == head.module->governorTexts.end()) return;
    const TNode set = tNode;
    const TNodeNr governor = addTypeArc(nullptr, set.line);
    tNode.typeCode = set.typeCode;
    tNode.refMod = set.refMod;
    tNode.ref = set.ref;
    tNode.syntax = set.syntax;
    tNode.namedVals = set.namedVals;
    tNode.tags = set.tags;
    tNode.constraint = text->second;
    flushRecs(KIND_TNODE);
    head.module->governorTexts.erase(text);
    readRec(head);
    tNode.typeCode = TYP_SYNONYM;
    tNode.refMod = REF_OWN;
    tNode.ref = governor.nr;
    tNode.syntax = 0;
    tNode.namedVals = tNode.tags = 0;
    writeRec(head);
    readRec(head.module, governor);
    parseTNode();
    readRec(head);
}

} // namespace

void parseTypeAssignment() {
    if (tNode.formals != 0) return;
    if (isSetTNode()) separateGovernor();
    parseTNode();
}

void parseValueAssignment() {
    const VNodeRef value = currentRec<KIND_VNODE>();
    const bool parameterized = vNode.formals != 0;
    ModuleRec* const module = refModule(value.module, signedWord(vNode.govTypeMod));
    if (module == nullptr || vNode.govType == 0) return;
    const TNodeRef governor{module, TNodeNr{vNode.govType}};
    if (parameterized && dependsOnFormals(governor.nr)) return; // each instance has its own
    readRec(governor);
    parseTNode();
    readRec(governor);
    readRec(value);
    if (!parameterized) parseVNode();
}

void parseTNode() {
    checkStack();
    const TNodeRef self = currentRec<KIND_TNODE>();
    const CurrentModule inModule(self.module);
    const KeepRec<KIND_TNODE> keep;
    if (tNode.formals != 0) forEachTNodeByMod(self.module, TNodeNr{tNode.formals}, parseTNode);
    if (tNode.ref != 0) {
        const bool found = findActType();
        if (found && isStructured(tNode.typeCode) && tNode.ref != 0) parseComponents();
    }
    if (isDeferred(tNode.constraint)) parseSubRec();
    readRec(self);
    if (tNode.typeCode == TYP_ENUM && newNotation(self.module)) parseEnumException();
    if (tNode.defaultVal != 0) parseDefaultPassTwo();
}

void parseTNodeAndSolveCompOf() {
    parseTNode();
    if (magnitude(tNode.compStatus) != TCS_COMPOF) return;
    VisitList visited;
    solveCompOf(solveState.glbMainType, visited);
}

// ---- default values -----------------------------------------------------------------------------

namespace {

/// The type record of a type or set setting, the current value, becomes current.
bool readTypeOfSetting() {
    if (!isTypeSetting()) return false;
    readRec(valueModule(), TNodeNr{vNode.ref});
    return true;
}

void parseSetDefault(VNodeRef value) {
    if (vNode.refMod == REF_DEFERRED) parseDefaultPassOne();
    readRec(value);
    if (readTypeOfSetting() && isDeferred(tNode.constraint)) parseSubRec();
}

void parseValueDefault(TNodeRef field, VNodeRef value) {
    if (vNode.refMod == REF_DEFERRED) parseDefaultPassOne();
    readRec(field);
    readRec(value);
    if ((vNode.vflags & VF_VARIABLE) != 0 && vNode.ref != 0) {
        readRec(value.module, VNodeNr{vNode.ref});
        ModuleRec* const module = refModule(value.module, signedWord(vNode.govTypeMod));
        if (module == nullptr || vNode.govType == 0) return;
        readRec(module, TNodeNr{vNode.govType});
    }
    if (vNode.refMod == REF_DEFERRED) parseVNode();
}

/// The default of the type field that the current variable-type field names becomes the current
/// type.
bool readDefaultOfNamedField() {
    findActType();
    skipTypes(true);
    if (meetsUnreadType() || tNode.typeCode != TYP_OPEN || tNode.defaultVal == 0) return false;
    readRec(typeModule(), VNodeNr{tNode.defaultVal});
    return readTypeOfSetting();
}

/// The text of the default in the current value record; the record does not refer to it any more.
int32_t takeText(VNodeRef value) {
    const int32_t text = signedWord(vNode.ref);
    vNode.refMod = REF_UNRESOLVED;
    vNode.ref = 0;
    writeRec(value);
    return text;
}

} // namespace

void parseDefaultPassTwo() {
    const KeepRec<KIND_TNODE> keepField;
    const KeepRec<KIND_VNODE> keepValue;
    const TNodeRef field = currentRec<KIND_TNODE>();
    const VNodeRef value{field.module, VNodeNr{tNode.defaultVal}};
    readRec(value);
    if (isSetTNode()) {
        parseSetDefault(value);
    } else if (tNode.typeCode == TYP_OPEN) {
        if (readTypeOfSetting()) parseTNode();
    } else {
        parseValueDefault(field, value);
    }
}

void parseDefaultPassOne() {
    if (!isVariabTypeTNode() && !isSetTNode()) return;
    const KeepRec<KIND_TNODE> keepField;
    const KeepRec<KIND_VNODE> keepValue;
    const OwnNotation ownText;
    const VNodeRef value = currentRec<KIND_VNODE>();
    const TNodeRef field = currentRec<KIND_TNODE>();
    const bool isSet = isSetTNode();
    SnapShot trial(value);
    const int32_t text = takeText(value);
    if (!isVariabTypeTNode()) {
        makePending(value.module, value.nr);
        setValSetNode(REF_OWN, field.nr, text);
        flushRecs(-1);
    } else if (readDefaultOfNamedField()) {
        readRec(value);
        updateVariableDefault(isSet, text);
    } else if (unreadState.met) {
        readRec(value);
        makeUnresolvedValue();
        writeRec(value);
        readRec(field);
    } else {
        readRec(field);
        readRec(value);
        recordError(actErrModPtr(field.module, tNode.actParRec), ERR_SEMANTIC,
                    Msg::InvalidGoverningTypeClass, vNode.line, getStri(field.module, tNode.name));
    }
    trial.keep();
}

void updateVariableDefault(bool isSet, int32_t deferred) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const VNodeRef setting = currentRec<KIND_VNODE>();
    const uint32_t line = vNode.line;
    const uint32_t module = handleImplImports(setting.module, type.module);
    makePending(setting.module, setting.nr);
    vNode.vflags |= VF_VARIABLE;
    if (isSet) {
        setValSetNode(module, type.nr, deferred);
    } else {
        vNode.valCode = TYP_SYNONYM;
        vNode.refMod = REF_OWN;
        vNode.ref = nextRec<KIND_VNODE>(cMP).nr;
        addValArc(instContext(), line);
        vNode.govTypeMod = module;
        vNode.govType = type.nr.nr;
        vNode.refMod = REF_DEFERRED;
        vNode.ref = static_cast<uint32_t>(deferred);
    }
    flushRecs(-1);
    readRec(setting);
}

// ---- COMPONENTS OF ------------------------------------------------------------------------------

namespace {

/// The COMPONENTS OF entries on the list from `first`, those of extension addition groups included.
void solveIncluded(ModuleRec* module, TNodeNr first, uint8_t mainKind, VisitList& visited) {
    const KeepRec<KIND_TNODE> keep;
    forEachComponent(module, first, [&] {
        if (magnitude(tNode.compStatus) == TCS_COMPOF) solveCompOf(mainKind, visited);
        return true;
    });
}

/// The type that a COMPONENTS OF entry includes, the current one. Msg::None when it may be
/// included.
Msg solveIncludedType(uint8_t mainKind, VisitList& visited) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (tNode.typeCode != mainKind) return Msg::InvalidTypeInComponentsOf;
    if (tNode.checkState != CHECK_NEW || tNode.ref == 0) return Msg::None;
    if (!pushSyn(visited, type.module, type.nr.nr)) return Msg::RecursiveTypeReference;
    solveIncluded(type.module, TNodeNr{tNode.ref}, mainKind, visited);
    readRec(type);
    tNode.checkState = CHECK_SOLVED;
    writeRec(type);
    return Msg::None;
}

} // namespace

bool solveCompOf(uint8_t mainKind, VisitList& visited) {
    checkStack();
    const TNodeRef self = currentRec<KIND_TNODE>();
    const KeepRec<KIND_TNODE> keep;
    findActType();
    skipTypes(false);
    if (tNode.typeCode == TYP_SYNONYM) return false; // unresolved, reported where it was found
    const Msg code = solveIncludedType(mainKind, visited);
    if (code == Msg::None) return true;
    readRec(self);
    recordError(actErrModPtr(self.module, tNode.actParRec), ERR_SEMANTIC, code, tNode.line);
    makeUnresolvedType();
    tNode.checkState = CHECK_SOLVED;
    writeRec(self);
    return false;
}

} // namespace orvo
