// The walk over a constraint and the operators in it (X.680 (07/2002) clauses 45 to 48).

#include "check/p5sub.h"

#include "check/orvonum_end.h"
#include "check/p5set.h"
#include "check/p5sub_int.h"
#include "check/p5typ.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "util/guard.h"

namespace orvo {

void recordSubRecError(ModuleRec* module, Msg code, std::string_view detail) {
    recordError(module, ERR_SEMANTIC, code, subRec.line, detail);
}

void subError(ModuleRec* module, Msg code, uint32_t line) {
    if (isSetTNode()) {
        if (code == invalidConstraint(SUBNAME_SINGLE_VALUE)) {
            code = Msg::InvalidSetElement;
        } else {
            const KeepRec<KIND_TNODE> keep;
            skipTypes(true);
            code = isClassCode(tNode.typeCode) ? Msg::InvalidObjectSet : Msg::InvalidValueSet;
        }
    }
    recordError(module, ERR_SEMANTIC, code, line);
}

void markExtensible(ParentType parent) {
    if (parent == ParentType::Itself || parent == ParentType::InnerNone || isSetTNode()) return;
    const TNodeRef type = currentRec<KIND_TNODE>();
    tNode.checkFlags |= CF_EXTENSIBLE;
    writeRec(type);
}

namespace {

SubRef currentSub() {
    return currentRec<KIND_SUB>();
}

/// The operands of the current operator, in order; the first one that fails ends the walk.
bool subOperands(ModuleRec* module, ParentType parent) {
    for ([[maybe_unused]] const SubNr nr : chain(subModule(), SubNr{subRec.left}))
        if (!chkSubRec(module, parent)) return false;
    return true;
}

/// Lets a series end behind one of its members while the scope lasts. Within what such an end hides
/// already, another one changes nothing.
class SeriesEnd {
  public:
    explicit SeriesEnd(SubRef member) : view_(seriesView) {
        if (!seriesView.last) seriesView.last = member;
    }

  private:
    Restore<SeriesView> view_;
};

/// A temporary reference to the constrained type, the parent of a further constraint of a series.
class TemporaryReference {
  public:
    explicit TemporaryReference(TNodeRef type) : type_(type), inModule_(type.module) {
        noteEnclosing(type.module); // not of records that come and go
        readRec(type);
        nr_ = addTypeArc(nullptr, tNode.line);
        setTypeNode(TYP_SYNONYM);
        tNode.refMod = REF_OWN;
        tNode.ref = type_.nr.nr;
        tNode.checkState = CHECK_DONE;
        writeRec(cMP, nr_);
    }
    TemporaryReference(const TemporaryReference&) = delete;
    TemporaryReference& operator=(const TemporaryReference&) = delete;
    ~TemporaryReference() {
        readRec(type_);
        forgetEndpoints({type_.module, nr_});
        if (type_.module->nextRecNr[KIND_TNODE] == nr_.nr + 1)
            type_.module->nextRecNr[KIND_TNODE] = nr_.nr;
        forgetTakenBack(type_.module);
    }
    [[nodiscard]] TNodeRef ref() const { return {type_.module, nr_}; }

  private:
    TNodeRef type_;
    CurrentModule inModule_;
    TNodeNr nr_;
};

/// (C1) (C2) ...: each further constraint is one on the type as the ones before it leave it.
bool subCatenation(ModuleRec* module, ParentType parent) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const SubRef self = currentSub();
    SubRef before{self.module, SubNr{subRec.left}};
    readRec(before);
    const SubNr second{subRec.next};
    bool ok = chkSubRec(module, parent);
    if (ok && second) {
        const SeriesEnd end(before);
        readRec(type);
        noteEndpoints();
    }
    for (const SubNr nr : chain(self.module, second)) {
        if (!ok) break;
        const SubRef member{self.module, nr};
        readRec(type);
        const TemporaryReference temporary(type);
        const SeriesEnd end(before);
        readRec(temporary.ref());
        readRec(member);
        ok = chkSubRec(module, ParentType::Referenced);
        readRec(temporary.ref());
        const bool extensible = (tNode.checkFlags & CF_EXTENSIBLE) != 0;
        readRec(type);
        if (extensible) markExtensible(parent);
        extendNotedEndpoints(member);
        before = member;
    }
    forgetEndpoints(type);
    return ok;
}

/// The constraint by its kind. What reports by itself comes back as valid here.
bool checkByKind(ModuleRec* module, ParentType parent) {
    switch (subRec.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT: return subOperands(module, parent);
    case SUB_SERIAL: return subCatenation(module, parent);
    case SUB_RANGE: return subRange(module);
    case SUB_PERMITTED_ALPHABET: return subPermittedAlphabet(module, parent);
    case SUB_SIZE: return subSizeConstr(module, parent);
    case SUB_SINGLE_VALUE: return subSingleValue(module, parent);
    case SUB_CONTAINED_SUBTYPE: return subContainedSubtype();
    case SUB_WITH_COMPONENT: return subWithComp(module);
    case SUB_WITH_COMPONENTS: return subWithComps(module);
    case SUB_USER_DEFINED: return subUserDefConstr(module);
    case SUB_EXCEPTION: return subNoValueConstr(module);
    case SUB_OPEN_TYPE: return subOpenTypeConstr();
    case SUB_CONTENTS: return subContents(module);
    case SUB_PATTERN: return subText(module);
    case SUB_SETTINGS: return subSettings(module);
    default: return true;
    }
}

/// The exception behind a marker or at the end of the constraint is a value of its type; one that
/// is not says nothing about the constraint. Older notation did not have it looked at.
void checkException(ModuleRec* module) {
    if (subRec.subKind == SUB_EXCEPTION || !newNotation(subModule())) return;
    const uint32_t line = subRec.line;
    const KeepConstrained keep;
    if (!subNoValueConstr(module))
        recordError(module, ERR_SEMANTIC, Msg::InvalidExceptionValue, line);
}

/// The values of a set are those of its governor, in older notation those of its kind.
bool isHeldAgainstGovernor() {
    return newNotation(typeModule()) && !isObjSetTNode();
}

} // namespace

bool chkSubRec(ModuleRec* module, ParentType parent) {
    const uint8_t kind = subRec.subKind;
    const uint32_t line = subRec.line;
    if (!isSubKind(kind)) return false;
    checkException(module);
    if (kind == SUB_EXTENSION_MARKER) {
        markExtensible(parent);
        return true;
    }
    if (isSetTNode() && !isHeldAgainstGovernor()) parent = ParentType::None;
    bool ok = false;
    {
        const KeepConstrained keep;
        ok = kind == SUB_TABLE ? subTableConstr(module) : checkByKind(module, parent);
    }
    if (ok || kind == SUB_TABLE) return ok;
    subError(module,
             kind == SUB_EXCEPTION ? Msg::InvalidExceptionValue : invalidConstraint(subName(kind)),
             line);
    return false;
}

bool checkSubRec(ModuleRec* module) {
    const bool isReference = tNode.typeCode == TYP_SYNONYM;
    const KeepRec<KIND_SUB> keepSub;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(typeModule(), SubNr{static_cast<uint32_t>(tNode.constraint)});
    bool ok = false;
    // The lenient were warned when it was read.
    if (subRec.subKind == SUB_EXTENSION_MARKER && !isObjSetTNode() && !isLenient(module)) {
        recordSubRecError(module, Msg::ElementSetSpecIsInvalid,
                          "{ ... } is allowed only in ObjectSets.");
    } else {
        ok = chkSubRec(module, isReference ? ParentType::Referenced : ParentType::None);
    }
    if (ok && newNotation(typeModule()) && isObjSetTNode()) ok = checkUnique(module);
    return ok;
}

} // namespace orvo
