// Elements of constraints: ranges, sizes, values, contained subtypes, inner subtypes, parameters,
// permitted alphabets.

#include <string>
#include <vector>

#include "check/orvonum.h"
#include "check/orvonum_end.h"
#include "check/orvostri.h"
#include "check/orvotime.h"
#include "check/p5sub_int.h"
#include "check/p5typ.h"
#include "check/p5val.h"
#include "diag/orvoerr.h"
#include "parser/iso8824.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "tree/types_compat.h"

namespace orvo {

namespace {

/// An end of a range of times, the value record `nr`, is a time of that kind.
bool readTimeEnd(ModuleRec* module, VNodeRef end, TimeVal& time) {
    readRec(end);
    if (!checkVNode(module, true, false)) return false;
    readRec(end);
    skipValues(true);
    return readTime(plainText(valueModule(), vNode), time);
}

/// The ends of a range of times are points in time or durations, of one form and in order
/// (X.680 (02/2021) 51.4.3).
bool subTimeRange(ModuleRec* module) {
    const SubRec range = subRec;
    ModuleRec* const owner = subModule();
    TimeVal lower;
    TimeVal upper;
    bool ok = range.left == 0 || readTimeEnd(module, {owner, VNodeNr{range.left}}, lower);
    ok &= range.right == 0 || readTimeEnd(module, {owner, VNodeNr{range.right}}, upper);
    if (!ok || range.left == 0 || range.right == 0) return ok;
    if (!lower.isComparable || !upper.isComparable || !isSameForm(lower, upper)) return false;
    if (lower.parts != upper.parts) return lower.parts < upper.parts;
    return (range.subFlags & SUBF_LOWER) != 0 && (range.subFlags & SUBF_UPPER) != 0;
}

bool isTime() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return is(tNode.typeCode, TypeClass::Time);
}

/// The current range was written with an end that is no value of the parent type: what holds is the
/// parent's endpoint there. Published modules have it (X.680 (02/2021) 51.4.3).
void warnOfRangeBeyondParent(ModuleRec* module, const Endpoint& end, bool upper) {
    const uint32_t written = upper ? subRec.right : subRec.left;
    if (written == 0 || !newNotation(subModule())) return;
    const uint8_t flag = upper ? SUBF_UPPER : SUBF_LOWER;
    const KeepRec<KIND_VNODE> keep;
    readRec(subModule(), VNodeNr{written});
    skipValues(true);
    const bool isKept = compareValue(valueModule(), vNode, end.module, end.value.asValue()) == 0 &&
                        (end.flags & flag) == (subRec.subFlags & flag);
    if (!isKept)
        recordError(module, ERR_WARNING, Msg::RangeBeyondParent, subRec.line,
                    upper ? "upper endpoint" : "lower endpoint");
}

} // namespace

namespace {

bool isNotANumber(const Endpoint& end) {
    const RealVal& real = end.value.val.real;
    return real.base == -1 && i64native(real.mantissa) == REAL_NOT_A_NUMBER;
}

} // namespace

bool subRange(ModuleRec* module) {
    if (isTime()) return subTimeRange(module);
    Endpoint lower;
    Endpoint upper;
    if (!getRangeEndpoint(lower, false) || !getRangeEndpoint(upper, true)) return false;
    skipTypes(true);
    const uint8_t kind = tNode.typeCode;
    if (!sharesCharacters(subModule(), lower.value.valCode, kind) ||
        !sharesCharacters(subModule(), upper.value.valCode, kind))
        return false;
    if (kind == TYP_INTEGER || kind == TYP_REAL) {
        warnOfRangeBeyondParent(module, lower, false);
        warnOfRangeBeyondParent(module, upper, true);
    }
    if (kind == TYP_REAL && (isNotANumber(lower) || isNotANumber(upper))) return false;
    const VNode first = lower.value.asValue();
    const VNode last = upper.value.asValue();
    int order = 0;
    if (kind == TYP_INTEGER)
        order = compareNumber(lower, upper, kind);
    else if (is(kind, TypeClass::StringGroup))
        order = compareCharacters(lower.module, first, upper.module, last);
    else
        order = compareValue(lower.module, first, upper.module, last);
    if (order != 0) return order < 0;
    return (lower.flags & SUBF_LOWER) != 0 && (upper.flags & SUBF_UPPER) != 0;
}

bool subSizeConstr(ModuleRec* module, ParentType parent) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    readRec(subModule(), SubNr{subRec.left});
    ModuleRec* const owner = refModule(subModule(), static_cast<int32_t>(subRec.typeMod));
    if (owner == nullptr) return false;
    readRec(owner, TNodeNr{subRec.typeNr});
    const bool ok = chkSubRec(module, ParentType::None);
    const bool extensible = (tNode.checkFlags & CF_EXTENSIBLE) != 0;
    readRec(type);
    if (extensible) markExtensible(parent);
    return ok;
}

bool subSingleValue(ModuleRec* module, ParentType parent) {
    const VNodeRef value{subModule(), VNodeNr{subRec.left}};
    if (!value) return false;
    readRec(value);
    if (!checkVNode(module, true, false)) return false;
    if (parent != ParentType::Referenced && parent != ParentType::Itself) return true;
    if (parent == ParentType::Referenced && tNode.typeCode == TYP_SYNONYM && tNode.ref != 0) {
        if (ModuleRec* target = refModule(typeModule(), tNode.refMod))
            readRec(target, TNodeNr{tNode.ref});
    }
    return checkValNode(module, value, true, true);
}

bool subContainedSubtype() {
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (!readTypeSetting({subModule(), VNodeNr{subRec.left}})) return false;
    const TNodeRef contained = currentRec<KIND_TNODE>();
    bool ok = checkTNode();
    ok &= subtypeCompatible(type.module, type.nr, contained.module, contained.nr);
    return ok;
}

bool subWithComp(ModuleRec* module) {
    const SubRef self = currentRec<KIND_SUB>();
    skipTypes(true);
    if (!is(tNode.typeCode, TypeClass::List) || tNode.ref == 0) return false;
    readRec(typeModule(), TNodeNr{tNode.ref});
    // Values must be of the element type, with what its references add on the way.
    bool ok = checkTNode();
    readRec(self.module, SubNr{subRec.left});
    ok &= chkSubRec(module, ParentType::Itself);
    return ok;
}

namespace {

/// The structure that WITH COMPONENTS restricts, and which of its components were met.
struct InnerSubtypes {
    ModuleRec* errors = nullptr;
    TNodeRef structure;
    uint8_t kind = TYP_NONE;
    uint32_t lastPosition = 0;
    std::vector<bool> marked;
};

void reportPresence(const InnerSubtypes& inner, Msg code) {
    const std::string name(tNode.name == 0 ? std::string_view()
                                           : getStri(typeModule(), tNode.name));
    recordSubRecError(inner.errors, code, "component '" + name + "'");
}

/// In a CHOICE OPTIONAL means nothing; elsewhere only what may be absent can be constrained to be
/// so.
bool presenceAllowed(const InnerSubtypes& inner) {
    const uint8_t presence = subRec.subFlags & (SUBF_PRESENT | SUBF_ABSENT | SUBF_OPTIONAL);
    if (inner.kind == TYP_CHOICE) return (presence & SUBF_OPTIONAL) == 0;
    return presence == 0 || magnitude(tNode.compStatus) == TCS_OPTIONAL;
}

/// The component at a position, the current type record, and its entry, the current constraint
/// record.
bool checkInnerEntry(InnerSubtypes& inner, uint32_t position) {
    bool ok = true;
    const bool ordered = inner.kind != TYP_SET && inner.kind != TYP_CHOICE;
    if (ordered && position <= inner.lastPosition) {
        recordSubRecError(inner.errors, Msg::ConstraintsMustAppearInOrder);
        ok = false;
    }
    if (!presenceAllowed(inner)) {
        reportPresence(inner, Msg::InvalidPresenceConstraint);
        ok = false;
    }
    if (inner.marked.size() <= position) inner.marked.resize(position + 1);
    if (inner.marked[position]) {
        reportPresence(inner, Msg::DuplicateConstraint);
        ok = false;
    }
    inner.marked[position] = true;
    inner.lastPosition = position;
    return ok & chkSubRec(inner.errors, ParentType::Itself);
}

/// The entry in `subRec`: its component is looked up in the structure.
bool checkInnerSubtype(InnerSubtypes& inner) {
    const SubRef entry = currentRec<KIND_SUB>();
    readRec(inner.structure);
    uint32_t position = 0;
    if (!findTypeCompByConstr(inner.structure.module, TNodeNr{tNode.ref}, &position)) return false;
    ModuleRec* const owner = refModule(entry.module, static_cast<int32_t>(subRec.typeMod));
    if (owner == nullptr) return false;
    readRec(owner, TNodeNr{subRec.typeNr});
    return checkInnerEntry(inner, position);
}

} // namespace

bool subWithComps(ModuleRec* module) {
    const SubRef self = currentRec<KIND_SUB>();
    skipTypes(true);
    static_cast<void>(readAssociatedType(self.module, tNode.typeCode));
    InnerSubtypes inner;
    inner.errors = module;
    inner.structure = currentRec<KIND_TNODE>();
    inner.kind = tNode.typeCode;
    bool ok = true;
    for ([[maybe_unused]] const SubNr nr : chain(self.module, SubNr{subRec.left}))
        ok &= checkInnerSubtype(inner);
    return ok;
}

bool subUserDefConstr(ModuleRec* module) {
    const SubRef self = currentRec<KIND_SUB>();
    bool ok = true;
    for (const VNodeNr nr : chain(self.module, VNodeNr{subRec.left})) {
        const VNodeRef parameter{self.module, nr};
        if (vNode.valCode == TYP_OPEN && vNode.refMod == REF_FORMAL) {
            ok &= readTypeSetting(parameter) && checkTNode();
        } else {
            ok &= checkVNode(module, true, true);
        }
    }
    return ok;
}

bool subNoValueConstr(ModuleRec* module) {
    if ((subRec.subFlags & SUBF_EXCEPTION) == 0 || subRec.third == 0) return true;
    readRec(subModule(), VNodeNr{subRec.third});
    return checkVNode(module, true, true);
}

namespace {

/// The setting is a type, not a class.
bool isValidType(VNodeRef setting) {
    if (!readTypeSetting(setting)) return false;
    const bool ok = checkTNode();
    skipTypes(true);
    return ok && !is(tNode.typeCode, TypeClass::Reference) && !isClassCode(tNode.typeCode);
}

} // namespace

bool subOpenTypeConstr() {
    return isValidType({subModule(), VNodeNr{subRec.left}});
}

bool subContents(ModuleRec* module) {
    const SubRec contents = subRec;
    ModuleRec* const owner = subModule();
    const bool ok = contents.left == 0 || isValidType({owner, VNodeNr{contents.left}});
    if (contents.right == 0) return ok;
    readRec(owner, VNodeNr{contents.right});
    return checkVNode(module, true, true) && ok;
}

bool subText(ModuleRec* module) {
    if (subRec.left == 0) return false;
    readRec(subModule(), VNodeNr{subRec.left});
    return checkVNode(module, true, true);
}

bool subSettings(ModuleRec* module) {
    if (!subText(module)) return false;
    readRec(subModule(), VNodeNr{subRec.left});
    skipValues(true);
    TimeSettings settings;
    std::string_view fault;
    if (readTimeSettings(plainText(valueModule(), vNode), settings, fault)) return true;
    recordSubRecError(module, Msg::InvalidTimeSetting, fault);
    return false;
}

// ---- permitted alphabets ------------------------------------------------------------------------
// X.680 (07/2002) 47.7.

namespace {

/// The value at an end of a range is one character.
bool isOneCharacter(ModuleRec* module, uint32_t value) {
    if (value == 0) return true; // MIN and MAX
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{value});
    skipValues(true);
    return is(vNode.valCode, TypeClass::Characters) &&
           makeRestrCharStriSeg(valueModule(), vNode, nullptr) == 1;
}

/// Four hexadecimal digits stand for a character where the module allows notation beyond the
/// standard.
bool isHexCharacter() {
    return typeModule()->options.allow && vNode.valCode == TYP_OCTSTR && vNode.val.str.striLen == 4;
}

bool validValueInPermittedAlphabet(ModuleRec* module, uint32_t value) {
    if (value == 0) return false;
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{value});
    skipValues(true);
    return is(vNode.valCode, TypeClass::Characters) || isHexCharacter();
}

/// The constraint in `subRec`, inside FROM.
bool validPermittedAlphabet() {
    const SubRef self = currentRec<KIND_SUB>();
    switch (subRec.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_SERIAL:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT: break;
    case SUB_RANGE:
        return isOneCharacter(self.module, subRec.left) &&
               isOneCharacter(self.module, subRec.right);
    case SUB_SINGLE_VALUE: return validValueInPermittedAlphabet(self.module, subRec.left);
    case SUB_CONTAINED_SUBTYPE:
    case SUB_EXTENSION_MARKER: return true;
    default: return false;
    }
    for ([[maybe_unused]] const SubNr nr : chain(self.module, SubNr{subRec.left}))
        if (!validPermittedAlphabet()) return false;
    return true;
}

} // namespace

bool subPermittedAlphabet(ModuleRec* module, ParentType parent) {
    if (subRec.left == 0) return false;
    readRec(subModule(), SubNr{subRec.left});
    const bool isInner = parent == ParentType::Itself || parent == ParentType::InnerNone;
    return chkSubRec(module, isInner ? ParentType::InnerNone : ParentType::None) &&
           validPermittedAlphabet();
}

} // namespace orvo
