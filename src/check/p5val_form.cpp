// The form of values that have a form of their own: enumeration items, named bits, open type
// values, characters.

#include <string_view>

#include "check/check_cache.h"
#include "check/orvostri.h"
#include "check/p5typ.h"
#include "check/p5val_int.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"

namespace orvo {

namespace {

/// What the items of the current enumeration stand for; an item may be numbered by a defined value.
const std::set<std::pair<ModuleRec*, uint32_t>>& itemsOfEnum() {
    const KeepRec<KIND_VNODE> keep;
    ModuleRec* module = typeModule();
    const auto [note, isNew] = checkCacheOf(module).enumItems.try_emplace(tNode.namedVals);
    if (!isNew) return note->second;
    uint32_t left = module->nextRecNr[KIND_VNODE];
    for (VNodeNr nr{tNode.namedVals}; nr && left != 0; --left) {
        readRec(module, nr);
        nr = {vNode.next};
        if (vNode.valCode == TYP_EXTENSION_MARKER) continue;
        skipValues(false);
        const VNodeRef item = currentRec<KIND_VNODE>();
        note->second.insert({item.module, item.nr.nr});
    }
    return note->second;
}

} // namespace

bool checkEnumVal(const ValueErrors& errors, const CheckedValue& value) {
    if (itemsOfEnum().contains({value.module, value.nr.nr})) return true;
    return failValue(errors, value, invalidValue(TYP_ENUM));
}

bool checkBitStriVal(const ValueErrors& errors, const CheckedValue& value) {
    if (tNode.namedVals == 0) return true;
    const KeepRec<KIND_VNODE> keep;
    readRec(value.module, value.nr);
    if (static_cast<int64_t>(getAnyStringLength()) <= highestNamedBit() + 1) return true;
    return failValue(errors, value, invalidValue(TYP_BITSTR));
}

namespace {

/// The type setting resolves to a type, which is checked with it.
bool isTypeThere(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(value.module, value.nr);
    if (!readTypeSetting()) return false;
    if (checksParts(errors, value)) static_cast<void>(checkTNode());
    skipTypes(true);
    return !is(tNode.typeCode, TypeClass::Reference);
}

/// A value written as Type : value holds that value, which is checked with it. Relations in its
/// type begin there, as that type is no part of another.
bool checkInner(const ValueErrors& errors, const CheckedValue& value) {
    if (value.rec.refMod != REF_UNRESOLVED || value.rec.ref == 0) return true;
    return !checksParts(errors, value) ||
           checkRecord(errors, {value.module, VNodeNr{value.rec.ref}}, true);
}

} // namespace

bool checkOpenTypeVal(const ValueErrors& errors, const CheckedValue& value) {
    const bool isOpen = value.rec.valCode == TYP_OPEN || value.rec.valCode == TYP_ANY;
    const bool isSetting = value.rec.refMod == REF_FORMAL;
    const bool ok = isSetting ? value.rec.ref != 0 && isTypeThere(errors, value)
                              : value.rec.refMod >= 0 && (!isOpen || checkInner(errors, value));
    return ok || failValue(errors, value, invalidValue(TYP_OPEN));
}

bool checkCharacters(const ValueErrors& errors, const CheckedValue& value) {
    constexpr std::u32string_view numeric = U"0123456789 ";
    constexpr std::u32string_view printable =
        U"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 '()+,-./:=?";
    const std::u32string_view alphabet = tNode.typeCode == TYP_NUMSTR ? numeric : printable;
    const std::u32string chars = distinctChars(value.module, value.rec);
    if (chars.find_first_not_of(alphabet) == std::u32string::npos) return true;
    return failValue(errors, value, valueOutOfConstraint(SUBNAME_PERMITTED_ALPHABET));
}

} // namespace orvo
