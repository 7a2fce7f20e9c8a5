// Settings: the value, type or set that the text at the cursor gives for a formal parameter, a
// field of an object or an element of a constraint. The first step delimits the text, the second
// one parses it.

#include <string>

#include "solve/p5actpar.h"
#include "solve/solve_cur.h"
#include "solve/solve_exp.h"
#include "solve/solve_par.h"
#include "solve/solve_pass3.h"
#include "solve/solve_stx.h"
#include "solve/solve_val.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/types.h"

namespace orvo {

void changeFormalTypeRefToActualRef(int32_t& refMod, uint32_t& ref) {
    if (refMod != REF_FORMAL || parState.aplStack == 0) return;
    const ANode top = aplAt(parState.aplStack);
    ModuleRec* const module = run.modules[top.instModule - 1].get();
    const uint32_t actual = top.firstActual + ref - 1;
    refMod = static_cast<int32_t>(top.instModuleRef);
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{actual});
    ref = vNode.ref;
}

void changeFormalValueRefToActualRef(int32_t& refMod, uint32_t& ref) {
    if (refMod != REF_FORMAL || parState.aplStack == 0) return;
    const ANode top = aplAt(parState.aplStack);
    refMod = static_cast<int32_t>(top.instModuleRef);
    ref = top.firstActual + ref - 1;
}

namespace {

/// typeid [ActualParameterList] into a new reference record.
bool parseDefinedOrParameterizedType(TNodeNr& type, Cause& cause) {
    const uint32_t line = curToken().line;
    int32_t refMod = REF_UNRESOLVED;
    int32_t name = curToken().stri();
    int32_t actuals = 0;
    if (nextCode() == TOK_LBRACE) {
        static_cast<void>(advance());
        actuals = minus(nextRec<KIND_DNODE>(cMP).nr);
        if (!deferValue(cause)) return false;
    }
    auto ref = static_cast<uint32_t>(name);
    bool isDummy = false;
    if (actuals == 0 && inp.formals != 0 && handleDefined(STabNr{inp.formals}, refMod, name)) {
        ref = static_cast<uint32_t>(name);
        isDummy = newNotation();
        changeFormalTypeRefToActualRef(refMod, ref);
    } else {
        resolveUse(refMod, name, actuals, line, line);
        ref = static_cast<uint32_t>(name);
    }
    type = addTypeArc(instContext(), line);
    setTypeNode(TYP_SYNONYM);
    if (isDummy) tNode.nodeFlags |= NF_DUMMY;
    tNode.refMod = refMod;
    tNode.ref = ref;
    tNode.syntax = actuals;
    return true;
}

TNodeNr parseNullType() {
    const TNodeNr type = addTypeArc(instContext(), curToken().line);
    setTypeNode(TYP_NULL);
    return type;
}

/// The type record of the marker at the cursor; in the text of a parameterized definition a copy of
/// it.
TNodeNr alreadyParsedAsType() {
    const TNodeNr type{static_cast<uint32_t>(curToken().stri())};
    if (inp.formals == 0) return type;
    readRec(cMP, type);
    return expandType(TNodeNr{});
}

bool parseValueSettingPassOne(Cause& cause) {
    vNode.refMod = REF_DEFERRED;
    vNode.ref = minusWord(nextRec<KIND_DNODE>(cMP).nr);
    return deferValue(cause);
}

bool parseSetSettingPassOne(uint32_t govTypeMod, TNodeNr govType, Cause& cause) {
    if (curCode() != TOK_LBRACE) {
        cause.set(tokenExpected(TOK_LBRACE));
        return false;
    }
    setValSetNode(govTypeMod, govType, minus(nextRec<KIND_DNODE>(cMP).nr));
    return deferValue(cause);
}

} // namespace

bool parseType(Cause& cause) {
    const VNodeRef self = currentRec<KIND_VNODE>();
    TNodeNr type;
    switch (curCode()) {
    case TOK_TYPEID:
        if (!parseDefinedOrParameterizedType(type, cause)) return false;
        break;
    case TOK_NULL: type = parseNullType(); break;
    case TOK_MARKER: type = alreadyParsedAsType(); break;
    default: return false;
    }
    makePending(self.module, self.nr);
    vNode.valCode = TYP_OPEN;
    vNode.refMod = REF_FORMAL;
    vNode.ref = type.nr;
    return true;
}

void setValSetNode(uint32_t module, TNodeNr ref, int32_t constraint) {
    vNode.valCode = TYP_OPEN;
    vNode.vflags |= VF_SET;
    vNode.refMod = REF_FORMAL;
    vNode.ref = addTypeArc(instContext(), vNode.line).nr;
    setTypeNode(TYP_SYNONYM);
    tNode.nodeFlags |= NF_SET;
    tNode.refMod = static_cast<int32_t>(module);
    tNode.ref = ref.nr;
    tNode.constraint = constraint;
}

bool parseSettingPassOne(bool isType, int32_t sign, uint32_t govTypeMod, TNodeNr govType,
                         Cause& cause) {
    const VNodeRef self = currentRec<KIND_VNODE>();
    makePending(self.module, self.nr);
    vNode.govTypeMod = govTypeMod;
    vNode.govType = govType.nr;
    if (isType) return parseType(cause);
    if (sign < 0) return parseValueSettingPassOne(cause);
    return parseSetSettingPassOne(govTypeMod, govType, cause);
}

bool parseFaultySetPassOne(uint32_t govTypeMod, TNodeNr govType) {
    const bool isBare = curCode() != TOK_LBRACE;
    if (!newNotation() || (!isBare && nextCode() != TOK_RBRACE)) return false;
    const VNodeRef self = currentRec<KIND_VNODE>();
    const std::string name = isBare && curCode() == TOK_TYPEID
                                 ? curTokenText()
                                 : std::string(getStri(cMP, int64_t{vNode.name}));
    if (!tolerate(isBare ? Msg::SetWithoutBraces : Msg::EmptySet, curToken().line, name))
        return false;
    makePending(self.module, self.nr);
    vNode.govTypeMod = govTypeMod;
    vNode.govType = govType.nr;
    setValSetNode(govTypeMod, govType, isBare ? minus(nextRec<KIND_DNODE>(cMP).nr) : 0);
    return isBare ? deferEntry() : advance();
}

namespace {

/// A type or set setting in the current value record.
void finishTypeSetting() {
    const VNodeRef setting = currentRec<KIND_VNODE>();
    const TNodeNr type{vNode.ref};
    readRec(cMP, type);
    parseTNode();
    readRec(cMP, type);
    if (!isFieldListObjSet()) return;
    makePending(setting.module, setting.nr);
    setFieldListObjSet();
    writeRec(setting);
}

/// A value setting in the current value record.
void finishValueSetting() {
    if ((vNode.vflags & VF_VARIABLE) != 0 && vNode.ref != 0) readRec(cMP, VNodeNr{vNode.ref});
    if (vNode.refMod != REF_DEFERRED) return;
    const TNodeNr governor{vNode.govType};
    if (!governor) return;
    readRec(getModPtr(cMP, vNode.govTypeMod), governor);
    parseVNode();
}

} // namespace

void parseSettingPassTwo(VNodeNr first) {
    const KeepRec<KIND_TNODE> keepType;
    for ([[maybe_unused]] const VNodeNr nr : chain(cMP, first)) {
        if (vNode.valCode == TYP_OPEN && vNode.refMod == REF_FORMAL)
            finishTypeSetting();
        else
            finishValueSetting();
    }
}

} // namespace orvo
