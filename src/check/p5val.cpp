// The walk over a value: every record is checked once against its governing type, whoever comes
// first, so that a value is reported once, at its own line. A value that is given by reference is
// checked against the type that is expected where it is used; what it holds has its check where the
// value stands. An actual parameter is checked nowhere else: what it holds is checked by whoever
// comes to it first.

#include "check/p5val.h"

#include <vector>

#include "check/check_cache.h"
#include "check/p5typ.h"
#include "check/p5val_int.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "solve/p5actpar.h"
#include "tree/orvoutil_find.h"
#include "tree/types_compat.h"
#include "util/guard.h"
#include "util/stack.h"

namespace orvo {

P5ValState p5ValState;

ValueNesting::ValueNesting() {
    if (stackIsLow()) fatalError(Fatal::NoSpace, "Values are nested too deeply.");
    ++p5ValState.nesting;
}
ValueNesting::~ValueNesting() {
    if (--p5ValState.nesting == 0) p5ValState.verdicts.clear();
}

namespace {

/// The current value, a reference, leads to a value that no other check comes to: an actual
/// parameter or what is made from one, or the value of a setting whose type stands beside it.
/// Assignments answer for themselves, and who instantiates a value for the instance.
bool leadsToUncheckedValue() {
    const KeepRec<KIND_VNODE> keep;
    bool isUnchecked = false;
    for (size_t left = maxLinks; left != 0; --left) {
        ModuleRec* module = valueModule();
        if (vNode.valCode == TYP_FIELDLIST && vNode.deferred > 0)
            readRec(module, VNodeNr{vNode.ref}); // the object
        if (vNode.valCode != TYP_SYNONYM) return isUnchecked;
        const bool isBesideType = (vNode.vflags & VF_VARIABLE) != 0;
        ModuleRec* target = refModule(module, vNode.refMod);
        if (target == nullptr || vNode.ref == 0) return false;
        readRec(target, VNodeNr{vNode.ref});
        if (isBesideType || vNode.valStatus == VST_ACTUAL)
            isUnchecked = true;
        else if (!isUnchecked || vNode.actParRec == 0)
            return false;
    }
    return false;
}

} // namespace

CheckedValue checkedValue(VNodeRef at) {
    const KeepRec<KIND_VNODE> keep;
    readRec(at);
    CheckedValue value;
    value.at = value.told = at;
    value.line = vNode.line;
    value.isVariable = (vNode.vflags & VF_VARIABLE) != 0;
    value.isReference = vNode.valCode == TYP_SYNONYM || vNode.valCode == TYP_FIELDLIST;
    value.isOwn = !value.isReference || leadsToUncheckedValue();
    if (value.isReference) skipValues(true);
    const VNodeRef found = currentRec<KIND_VNODE>();
    value.module = found.module;
    value.nr = found.nr;
    value.rec = vNode;
    value.id = keyOf(found);
    return value;
}

CheckedValue partAt(const CheckedValue& whole, VNodeNr nr) {
    CheckedValue part = checkedValue({whole.module, nr});
    part.isOwn = part.isOwn && whole.isOwn;
    if (whole.isReference || whole.told != whole.at) {
        part.told = whole.told;
        part.line = whole.line;
    }
    return part;
}

CheckedValue partOf(const CheckedValue& whole, uint8_t kind) {
    CheckedValue part;
    part.module = whole.module;
    part.told = whole.told;
    part.line = whole.line;
    part.rec.valCode = kind;
    part.id = ~++p5ValState.temporaries;
    return part;
}

void reportValue(const ValueErrors& errors, const CheckedValue& value, Msg code,
                 std::string_view detail) {
    if (errors.report) recordError(errors.module, ERR_SEMANTIC, code, value.line, detail);
}
bool failValue(const ValueErrors& errors, const CheckedValue& value, Msg code,
               std::string_view detail) {
    reportValue(errors, value, code, detail);
    return false;
}

namespace {

bool isReferenceType(uint8_t code) {
    return is(code, TypeClass::Reference);
}
bool isSet(const CheckedValue& value) {
    return (value.rec.vflags & VF_SET) != 0;
}

bool hasComponents(uint8_t kind) {
    return isStructured(kind) || is(kind, TypeClass::Associated) || isClassCode(kind);
}

/// Checks the current type unless that was done; the result is the type's own affair.
void checkTypeItself() {
    if (tNode.checkState >= CHECK_RUNNING) return;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    static_cast<void>(checkTNode());
}

/// Moves from the current reference to the next type on its chain that has a constraint or is no
/// reference; false when a reference on the way has no target. The types passed are noted.
bool readNextConstrained() {
    std::vector<TNodeRef> passed;
    TNodeRef found;
    while (followTypeRef(true)) {
        const TNodeRef type = currentRec<KIND_TNODE>();
        const auto& notes = checkCacheOf(type.module).nextConstrained;
        if (const auto note = notes.find(type.nr.nr); note != notes.end()) {
            found = note->second;
            break;
        }
        passed.push_back(type);
        if (tNode.constraint > 0 || !isReferenceType(tNode.typeCode)) {
            found = type;
            break;
        }
    }
    for (const TNodeRef& type : passed)
        checkCacheOf(type.module).nextConstrained[type.nr.nr] = found;
    if (found) readRec(found);
    return bool(found);
}

SubRef constraintOf(TNodeRef type) {
    readRec(type);
    return {type.module, SubNr{tNode.constraint > 0 ? magnitude(tNode.constraint) : 0}};
}

/// The constraint that a reference adds to what it refers to.
bool meetsOwnConstraint(const ValueErrors& errors, const CheckedValue& value, TNodeRef type,
                        bool constrain) {
    const SubRef sub = constraintOf(type);
    if (!sub || isSet(value) || (isSetTNode() && !constrain)) return true;
    readRec(sub);
    return checkAgainstSub(errors, value);
}

bool checkAgainstBase(const ValueErrors& errors, const CheckedValue& value, bool constrain);

/// The current type is a reference: the value shall be one of the type that it refers to,
/// constraints included, and meet the reference's own constraint.
bool checkValNodeWithSynonymGovernor(const ValueErrors& errors, CheckedValue& value,
                                     bool constrain) {
    std::vector<TNodeRef> references;
    std::vector<bool> isRestricted;
    do {
        references.push_back(currentRec<KIND_TNODE>());
        isRestricted.push_back(value.isRestricted);
        const SubRef sub = constraintOf(references.back());
        value.isRestricted = value.isRestricted || (sub && hasWithComps(sub));
        if (!readNextConstrained()) return false;
    } while (isReferenceType(tNode.typeCode));
    if (!checkAgainstBase(errors, value, true)) return false;
    for (size_t i = references.size(); i-- != 0;) {
        value.isRestricted = isRestricted[i];
        if (!meetsOwnConstraint(errors, value, references[i], constrain || i != 0)) return false;
    }
    return true;
}

/// The value is given by reference: it shall exist and be of a compatible type.
bool checkSynonymValNode(const ValueErrors& errors, const CheckedValue& value) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const uint8_t kind = tNode.typeCode;
    const Msg code = invalidValue(kind);
    if (value.rec.valCode == TYP_SYNONYM || value.rec.valCode == TYP_FIELDLIST)
        return failValue(errors, value, code);
    return isGovernedBy(value, type) || failValue(errors, value, code);
}

/// The value is of the kind of the current type, or of one that counts as such.
bool isOfKind(const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    const uint8_t valCode = value.rec.valCode;
    if (kind == valCode || valCode == TYP_OPEN) return true;
    if (kind == TYP_ENUM) return valCode == TYP_INTEGER;
    if (is(kind, TypeClass::Bits)) return is(valCode, TypeClass::Bits);
    const bool mayDiffer = value.isReference || value.isCharacter;
    if (mayDiffer && is(kind, TypeClass::Time) && is(valCode, TypeClass::Time)) return true;
    return mayDiffer && is(kind, TypeClass::StringGroup) && is(valCode, TypeClass::StringGroup);
}

bool checkForm(const ValueErrors& errors, const CheckedValue& value) {
    switch (tNode.typeCode) {
    case TYP_ENUM: return checkEnumVal(errors, value);
    case TYP_BITSTR: return checkBitStriVal(errors, value) && checkContents(errors, value);
    case TYP_OCTSTR: return checkContents(errors, value);
    case TYP_ANY:
    case TYP_OPEN: return checkOpenTypeVal(errors, value);
    case TYP_OBJID:
    case TYP_RELOID: return checkObjIdVal(errors, value);
    case TYP_GENTIME:
    case TYP_UTCTIME: return checkTimeVal(errors, value);
    case TYP_TIME:
    case TYP_DATE:
    case TYP_TIMEOFDAY:
    case TYP_DATETIME:
    case TYP_DURATION: return checkTimeForm(errors, value);
    case TYP_OIDIRI:
    case TYP_RELOIDIRI: return checkIri(errors, value);
    case TYP_NUMSTR:
    case TYP_PRISTR: return checkCharacters(errors, value);
    default: return checkWidth(errors, value);
    }
}

bool checkSingleVal(const ValueErrors& errors, const CheckedValue& value, bool constrain) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (!isOfKind(value) || !checkForm(errors, value)) return false;
    const SubRef sub = constraintOf(type);
    if (!constrain || !sub) return true;
    readRec(sub);
    return checkAgainstSub(errors, value);
}

/// A value set or object set: what it holds is the constraint of its type record.
bool checkSetItself(const ValueErrors& errors, const CheckedValue& value) {
    if (!checksParts(errors, value)) return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(value.module, value.nr);
    return !readTypeSetting() || checkTNode();
}

/// The current type is open and the value is governed by a type that another field names: it is
/// checked against that type.
bool hasTypeBeside(const CheckedValue& value) {
    const bool isOpen = tNode.typeCode == TYP_ANY || tNode.typeCode == TYP_OPEN;
    return isOpen && value.isVariable && value.isReference && value.rec.valCode != TYP_SYNONYM &&
           value.rec.valCode != TYP_FIELDLIST;
}

bool checkAgainstBase(const ValueErrors& errors, const CheckedValue& value, bool constrain) {
    if (hasTypeBeside(value))
        return !checksParts(errors, value) || checkRecord(errors, {value.module, value.nr}, true);
    if (value.isReference && !checkSynonymValNode(errors, value)) return false;
    const bool isWhole = value.rec.valCode == tNode.typeCode && hasComponents(tNode.typeCode);
    if (!isSet(value) && isWhole && !checkValWithComps(errors, value)) return false;
    checkTypeItself();
    return isSet(value) ? checkSetItself(errors, value) : checkSingleVal(errors, value, constrain);
}

} // namespace

bool isGovernedBy(const CheckedValue& value, TNodeRef type) {
    ModuleRec* const module =
        value.rec.govTypeMod == 0
            ? value.module
            : refModule(value.module, static_cast<int32_t>(value.rec.govTypeMod));
    return module != nullptr && value.rec.govType != 0 &&
           typeCompatible(type.module, type.nr, module, TNodeNr{value.rec.govType});
}

bool checksParts(const ValueErrors& errors, const CheckedValue& value) {
    return value.isOwn && errors.report;
}

bool checkAgainstType(const ValueErrors& errors, const CheckedValue& value, bool constrain) {
    const ValueNesting nesting;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    CheckedValue onChain = value;
    onChain.isRestricted = false;
    return isReferenceType(tNode.typeCode)
               ? checkValNodeWithSynonymGovernor(errors, onChain, constrain)
               : checkAgainstBase(errors, onChain, constrain);
}

ModuleRec* moduleForErrors(ModuleRec* caller) {
    ModuleRec* own = valueModule();
    if (vNode.actParRec != 0) return actErrModPtr(own, vNode.actParRec);
    return vNode.formals != 0 ? caller : own;
}

namespace {

/// Component relations do not reach beyond the outermost structure of the notation: it is a
/// structured value whose type nothing encloses.
bool isOutermost(const CheckedValue& value) {
    const uint8_t kind = value.rec.valCode;
    if (!is(kind, TypeClass::Members) && !is(kind, TypeClass::List)) return false;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return !isEnclosed();
}

bool checkGoverned(const ValueErrors& errors, VNodeRef at, bool constrain,
                   const CheckedValue* enclosing) {
    readRec(at);
    const ValueErrors own{moduleForErrors(errors.module), errors.report};
    CheckedValue value = checkedValue(at);
    value.enclosing = enclosing;
    value.isOutermost = value.isReference || isOutermost(value);
    return checkAgainstType(own, value, constrain);
}

/// The current value, at `at`, is a reference with actual parameters: its instance, which no
/// assignment leads to, and the use of the parameters.
bool checkInstance(const ValueErrors& errors, VNodeRef at) {
    readRec(at);
    if (vNode.valCode != TYP_SYNONYM || vNode.deferred <= 0) return true;
    const VNodeRef instance{refModule(at.module, vNode.refMod), VNodeNr{vNode.ref}};
    const bool ok = instance.module == nullptr || !instance || checkRecord(errors, instance, true);
    readRec(at);
    checkVNodeActuals();
    return checkActualValues(at.module, static_cast<uint32_t>(vNode.deferred)) && ok;
}

} // namespace

bool checkRecord(const ValueErrors& errors, VNodeRef at, bool constrain,
                 const CheckedValue* enclosing) {
    const ValueNesting nesting;
    const Restore series(seriesView, {});
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    readRec(at);
    if (vNode.checkState >= CHECK_RUNNING) return true;
    ModuleRec* governor = refModule(at.module, static_cast<int32_t>(vNode.govTypeMod));
    if (governor == nullptr || vNode.govType == 0) return true;
    const TNodeRef type{governor, TNodeNr{vNode.govType}};
    vNode.checkState = CHECK_RUNNING;
    writeRec(at);
    readRec(type);
    checkTypeItself();
    bool ok = checkGoverned(errors, at, constrain, enclosing);
    ok &= checkInstance(errors, at);
    readRec(at);
    vNode.checkState = CHECK_DONE;
    writeRec(at);
    return ok || vNode.valStatus == VST_HEADER; // an assignment answers for its faults itself
}

bool checkActualValues(ModuleRec* module, uint32_t first) {
    if (!newNotation(module)) return true;
    bool ok = true;
    const KeepRec<KIND_VNODE> keep;
    for (const VNodeNr nr : chain(module, VNodeNr{first}))
        if (vNode.refMod != REF_FORMAL)
            ok &= checkRecord({actErrModPtr(module, vNode.actParRec), true}, {module, nr}, true);
    return ok;
}

bool checkVNode(ModuleRec* module, bool report, bool constrain) {
    return checkRecord({module, report}, currentRec<KIND_VNODE>(), constrain);
}

bool checkValNode(ModuleRec* module, VNodeRef value, bool report, bool constrain) {
    return checkAgainstType({module, report}, checkedValue(value), constrain);
}

} // namespace orvo
