// Permitted alphabets (X.680 (07/2002) 47.7).

#include "check/orvonum_end.h"
#include "check/orvostri.h"
#include "check/p5sub_int.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

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
    bool ok = true;
    for ([[maybe_unused]] const SubNr nr : chain(self.module, SubNr{subRec.left})) {
        ok = validPermittedAlphabet();
        if (!ok) break;
    }
    readRec(self);
    return ok;
}

} // namespace

bool subPermittedAlphabet(ModuleRec* module, ParentType parent) {
    const SubRef self = currentRec<KIND_SUB>();
    if (subRec.left == 0) return false;
    readRec(self.module, SubNr{subRec.left});
    const bool isInner = parent == ParentType::Itself || parent == ParentType::InnerNone;
    const bool ok = chkSubRec(module, isInner ? ParentType::InnerNone : ParentType::None) &&
                    validPermittedAlphabet();
    readRec(self);
    return ok;
}

} // namespace orvo
