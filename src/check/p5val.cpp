// The walk over a value: every record is checked once against its governing type, whoever comes
// first, so that a value is reported once, at its own line. A value that is given by reference is
// checked against the type that is expected where it is used.

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

CheckedValue checkedValue(VNodeRef at) {
    const KeepRec<KIND_VNODE> keep;
    readRec(at);
    CheckedValue value;
    value.line = vNode.line;
    value.isVariable = (vNode.vflags & VF_VARIABLE) != 0;
    value.isReference = vNode.valCode == TYP_SYNONYM || vNode.valCode == TYP_FIELDLIST;
    if (value.isReference) skipValues(true);
    const VNodeRef found = currentRec<KIND_VNODE>();
    value.module = found.module;
    value.nr = found.nr;
    value.rec = vNode;
    value.id = (uint64_t{found.module->handle} << 32) | found.nr.nr;
    return value;
}

CheckedValue partOf(const CheckedValue& whole, uint8_t kind) {
    CheckedValue part;
    part.module = whole.module;
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

void recordVNodeError(ModuleRec* module, VNodeRef value, Msg code) {
    reportValue({module, true}, checkedValue(value), code);
}

namespace {

bool isReferenceType(uint8_t code) {
    return code == TYP_SYNONYM || code == TYP_SELECTION || code == TYP_FIELDLIST;
}
bool isSet(const CheckedValue& value) {
    return (value.rec.vflags & VF_SET) != 0;
}

bool isStringKind(uint8_t kind) {
    return (kind >= TYP_NUMSTR && kind <= TYP_UTCTIME) || kind == TYP_OBJDESCR;
}
bool hasComponents(uint8_t kind) {
    return isStructured(kind) || kind == TYP_EMB_PDV || kind == TYP_CHASTR ||
           kind == TYP_EXTERNAL_1990 || kind == TYP_EXTERNAL_1994 || isClassCode(kind);
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
        const bool isDone = tNode.checkState == static_cast<int16_t>(CHECK_DONE);
        if (isDone) passed.push_back(type);
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

/// The current type is a reference: the value shall be one of the type that it refers to,
/// constraints included, and meet the reference's own constraint.
bool checkValNodeWithSynonymGovernor(const ValueErrors& errors, const CheckedValue& value,
                                     bool constrain) {
    std::vector<TNodeRef> references;
    do {
        references.push_back(currentRec<KIND_TNODE>());
        if (!readNextConstrained()) return false;
    } while (isReferenceType(tNode.typeCode));
    const TNodeRef base = currentRec<KIND_TNODE>();
    const Restore outer(p5ValState.outerWithComps);
    std::vector<bool> outerWithComps;
    for (const TNodeRef& type : references) {
        outerWithComps.push_back(p5ValState.outerWithComps);
        const SubRef sub = constraintOf(type);
        p5ValState.outerWithComps = p5ValState.outerWithComps || (sub && hasWithComps(sub));
    }
    readRec(base);
    if (!checkAgainstType(errors, value, true)) return false;
    for (size_t i = references.size(); i-- != 0;) {
        p5ValState.outerWithComps = outerWithComps[i];
        if (!meetsOwnConstraint(errors, value, references[i], constrain || i != 0)) return false;
    }
    return true;
}

/// The value is given by reference: it shall exist and be of a compatible type.
bool checkSynonymValNode(const ValueErrors& errors, const CheckedValue& value) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const uint8_t kind = tNode.typeCode;
    const Msg code = kind == TYP_ABSTR_STX ? Msg::InvalidObject : invalidValue(kind);
    if (value.rec.valCode == TYP_SYNONYM || value.rec.valCode == TYP_FIELDLIST)
        return failValue(errors, value, code);
    ModuleRec* governor = value.rec.govTypeMod == 0
                              ? value.module
                              : refModule(value.module, static_cast<int32_t>(value.rec.govTypeMod));
    if (governor != nullptr && value.rec.govType != 0 &&
        typeCompatible(type.module, type.nr, governor, TNodeNr{value.rec.govType}))
        return true;
    return failValue(errors, value, code);
}

/// The value is of the kind of the current type, or of one that counts as such.
bool isOfKind(const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    const uint8_t valCode = value.rec.valCode;
    if (kind == valCode || valCode == TYP_OPEN) return true;
    if (kind == TYP_ENUM) return valCode == TYP_INTEGER;
    if (kind == TYP_BITSTR || kind == TYP_OCTSTR)
        return valCode == TYP_BITSTR || valCode == TYP_OCTSTR;
    const bool mayDiffer = value.isReference || p5ValState.inPermittedAlphabet;
    return mayDiffer && isStringKind(kind) && isStringKind(valCode);
}

bool checkForm(const ValueErrors& errors, const CheckedValue& value) {
    switch (tNode.typeCode) {
    case TYP_ENUM: return checkEnumVal(errors, value);
    case TYP_BITSTR: return checkBitStriVal(errors, value);
    case TYP_ANY:
    case TYP_OPEN: return checkOpenTypeVal(errors, value);
    case TYP_OBJID: return checkObjIdVal(errors, value);
    case TYP_GENTIME:
    case TYP_UTCTIME: return checkTimeVal(errors, value);
    case TYP_NUMSTR:
    case TYP_PRISTR: return checkCharacters(errors, value);
    default: return true;
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
bool checkSetItself(const CheckedValue& value) {
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

/// Keeps a structured value on the stack of those that enclose others.
class EnclosingValue {
  public:
    explicit EnclosingValue(const CheckedValue& value) {
        const KeepRec<KIND_VNODE> keep;
        readRec(value.module, value.nr);
        addFstNode(p5ValState.struValueStack);
    }
    EnclosingValue(const EnclosingValue&) = delete;
    EnclosingValue& operator=(const EnclosingValue&) = delete;
    ~EnclosingValue() { delFstNode(p5ValState.struValueStack); }
};

} // namespace

bool checkAgainstType(const ValueErrors& errors, const CheckedValue& value, bool constrain) {
    const ValueNesting nesting;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    if (isReferenceType(tNode.typeCode))
        return checkValNodeWithSynonymGovernor(errors, value, constrain);
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (hasTypeBeside(value)) return checkRecord(errors, {value.module, value.nr}, true);
    if (value.isReference && !checkSynonymValNode(errors, value)) return false;
    if (!isSet(value) && value.rec.valCode == tNode.typeCode && hasComponents(tNode.typeCode)) {
        const EnclosingValue enclosing(value);
        if (!checkValWithComps(errors, value)) return false;
    }
    readRec(type);
    checkTypeItself();
    readRec(type);
    return isSet(value) ? checkSetItself(value) : checkSingleVal(errors, value, constrain);
}

namespace {

/// Who an error in the current value is charged to: inside an instance who instantiated.
ModuleRec* moduleForErrors(ModuleRec* caller) {
    ModuleRec* own = recState.currTPtr[KIND_VNODE];
    if (vNode.actParRec != 0) return actErrModPtr(own, vNode.actParRec);
    return vNode.formals != 0 ? caller : own;
}

/// Component relations do not reach beyond an assignment: the value is one, or a structured value
/// whose type is a type assignment.
bool beginsStack(const CheckedValue& value) {
    if (vNode.valStatus == VST_HEADER) return true;
    if (value.rec.valCode < TYP_SEQ || value.rec.valCode > TYP_CHOICE) return false;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return magnitude(tNode.compStatus) == TCS_HEADER;
}

bool checkGoverned(const ValueErrors& errors, VNodeRef at, bool constrain) {
    readRec(at);
    const ValueErrors own{moduleForErrors(errors.module), errors.report};
    const CheckedValue value = checkedValue(at);
    if (!beginsStack(value)) return checkAgainstType(own, value, constrain);
    const Restore stack(p5ValState.struValueStack, NodeList{NODES_VALUE});
    return checkAgainstType(own, value, constrain);
}

} // namespace

namespace {

/// The current value, at `at`, is a reference with actual parameters: its instance, which no
/// assignment leads to, and the use of the parameters.
bool checkInstance(const ValueErrors& errors, VNodeRef at) {
    readRec(at);
    if (vNode.valCode != TYP_SYNONYM || vNode.deferred <= 0) return true;
    const VNodeRef instance{refModule(at.module, vNode.refMod), VNodeNr{vNode.ref}};
    const bool ok = instance.module == nullptr || !instance || checkRecord(errors, instance, true);
    readRec(at);
    checkVNodeActuals();
    return ok;
}

} // namespace

bool checkRecord(const ValueErrors& errors, VNodeRef at, bool constrain) {
    const ValueNesting nesting;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    readRec(at);
    if (vNode.checkState >= CHECK_RUNNING) return true;
    ModuleRec* governor = refModule(at.module, static_cast<int32_t>(vNode.govTypeMod));
    if (governor == nullptr || vNode.govType == 0) return true;
    const TNodeRef type{governor, TNodeNr{vNode.govType}};
    readRec(type);
    checkTypeItself();
    readRec(at);
    vNode.checkState = CHECK_RUNNING;
    writeRec(at);
    readRec(type);
    bool ok = checkGoverned(errors, at, constrain);
    ok &= checkInstance(errors, at);
    readRec(at);
    vNode.checkState = CHECK_DONE;
    writeRec(at);
    return ok;
}

bool checkVNode(ModuleRec* module, bool report, bool constrain) {
    return checkRecord({module, report}, currentRec<KIND_VNODE>(), constrain);
}

bool checkValNode(ModuleRec* module, VNodeRef value, bool report, bool constrain) {
    return checkAgainstType({module, report}, checkedValue(value), constrain);
}

bool checkValConstr(ModuleRec* module, VNodeRef value, bool report) {
    const ValueNesting nesting;
    return checkAgainstSub({module, report}, checkedValue(value));
}

} // namespace orvo
