#include "tree/types_compat.h"

#include <algorithm>

#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_find.h"
#include "tree/types_struct.h"

namespace orvo {
namespace {

/// A type that references were followed to.
struct ActualType {
    TNodeRef ref;
    TNode rec;
};

ActualType actualType(ModuleRec* module, TNodeNr nr) {
    readRec(module, nr);
    skipTypes(true);
    return {currentRec<KIND_TNODE>(), tNode};
}

/// Types of different codes that are compatible through what the built-in module defines: an
/// associated type, or the class behind a class name.
bool builtinCompatible(const ActualType& a, const ActualType& b) {
    constexpr int none = -1;
    constexpr struct {
        int code1, code2, partner;
    } rules[] = {{TYP_EMB_PDV, none, TYP_SEQ},
                 {TYP_CHASTR, none, TYP_SEQ},
                 {TYP_EXTERNAL_1990, none, TYP_SEQ},
                 {TYP_EXTERNAL_1994, none, TYP_SEQ},
                 {TYP_TYPE_ID, TYP_ABSTR_STX, TYP_CLASS},
                 {TYP_ABSTR_STX, none, TYP_CLASS}};
    return std::ranges::any_of(rules, [&](const auto& rule) {
        return iso8824TypeCompatible(a.rec, a.ref.module, b.rec, b.ref.module, rule.code1,
                                     rule.code2, rule.partner);
    });
}

bool sameClassOfInstance(const ActualType& a, const ActualType& b) {
    if (a.rec.ref == 0 || a.rec.ref != b.rec.ref) return false;
    ModuleRec* module = refModule(a.ref.module, a.rec.refMod);
    return module != nullptr && module == refModule(b.ref.module, b.rec.refMod);
}

/// The string types are compatible with one another, and so are the time types, which are all made
/// of TIME (X.680 (02/2021) 38.4).
bool ofOneGroup(uint8_t a, uint8_t b) {
    return (is(a, TypeClass::StringGroup) && is(b, TypeClass::StringGroup)) ||
           (is(a, TypeClass::Time) && is(b, TypeClass::Time));
}

/// Types of one code, or of the group of string types.
bool compatibleByCode(const ActualType& a, const ActualType& b) {
    switch (a.rec.typeCode) {
    case TYP_BOOLEAN:
    case TYP_INTEGER:
    case TYP_REAL:
    case TYP_BITSTR:
    case TYP_OCTSTR:
    case TYP_NULL:
    case TYP_ANY:
    case TYP_EMB_PDV:
    case TYP_OBJID:
    case TYP_RELOID:
    case TYP_OIDIRI:
    case TYP_RELOIDIRI:
    case TYP_EXTERNAL_1990:
    case TYP_EXTERNAL_1994:
    case TYP_OPEN:
    case TYP_TYPE_ID:
    case TYP_ABSTR_STX: return true;
    case TYP_ENUM:
    case TYP_CLASS: return a.ref == b.ref;
    case TYP_SEQ:
    case TYP_SEQOF:
    case TYP_SET:
    case TYP_SETOF:
    case TYP_CHOICE: // older notation has them by name alone
        return a.ref == b.ref || (newNotation(a.ref.module) && newNotation(b.ref.module) &&
                                  sameStructure(a.ref, b.ref));
    case TYP_INSTANCE_OF: return sameClassOfInstance(a, b);
    default:
        return is(a.rec.typeCode, TypeClass::StringGroup) || is(a.rec.typeCode, TypeClass::Time);
    }
}

/// The component type that the current constraint record designates.
TNodeRef constrainedType() {
    ModuleRec* module = refModule(subModule(), static_cast<int32_t>(subRec.typeMod));
    return {module, TNodeNr{subRec.typeNr}};
}

} // namespace

bool typeCompatible(ModuleRec* modA, TNodeNr typeA, ModuleRec* modB, TNodeNr typeB) {
    if (!typeA || !typeB) return false;
    const KeepRec<KIND_TNODE> keep;
    const ActualType a = actualType(modA, typeA), b = actualType(modB, typeB);
    const uint8_t codeA = a.rec.typeCode, codeB = b.rec.typeCode;
    if (codeA == TYP_SYNONYM || codeB == TYP_SYNONYM) return false;
    if (codeA != codeB) {
        if (codeA == TYP_ENUM && codeB == TYP_INTEGER) return true;
        if (builtinCompatible(a, b)) return true;
        if (!ofOneGroup(codeA, codeB)) return false;
    }
    return compatibleByCode(a, b);
}

bool subtypeCompatible(ModuleRec* modA, TNodeNr typeA, ModuleRec* modB, TNodeNr typeB) {
    return typeCompatible(modA, typeA, modB, typeB);
}

bool iso8824TypeCompatible(const TNode& typeA, ModuleRec* modA, const TNode& typeB, ModuleRec* modB,
                           int code1, int code2, int partner) {
    const auto matches = [&](const TNode& type, const TNode& other, ModuleRec* otherModule) {
        return (type.typeCode == code1 || type.typeCode == code2) && other.typeCode == partner &&
               otherModule != nullptr && otherModule == run.iso8824MP && other.name != 0 &&
               getStri(otherModule, other.name) == hiddenTypeName(code1);
    };
    return matches(typeA, typeB, modB) || matches(typeB, typeA, modA);
}

bool findTypeCompByConstr(ModuleRec* module, TNodeNr first, uint32_t* count) {
    NodeContext before;
    saveNodeContext(KIND_TNODE, before);
    uint32_t place = 0;
    const bool found = findTypeCompByNr(module, first, constrainedType(), place);
    if (count != nullptr) *count += place;
    if (!found) restoreNodeContext(KIND_TNODE, before);
    return found;
}

bool findValueCompByConstr(ModuleRec* module, VNodeNr first) {
    const TNodeRef type = constrainedType();
    NodeContext before;
    saveNodeContext(KIND_VNODE, before);
    const bool found = type.module != nullptr && findValueCompByGov(module, first, type);
    if (!found) restoreNodeContext(KIND_VNODE, before);
    return found;
}

std::string asnTypeName(std::string_view prefix, int code, bool blanksToo,
                        std::string_view suffix) {
    const char* asnName = code >= 0 && code < typeCount ? typeArr[code].asnName : nullptr;
    std::string name = convertHyphens(asnName != nullptr ? asnName : "");
    if (blanksToo) std::ranges::replace(name, ' ', '_');
    return std::string(prefix).append(name).append(suffix);
}

std::string hiddenTypeName(int code) {
    const char* edition = code == TYP_EXTERNAL_1990   ? "_1990"
                          : code == TYP_EXTERNAL_1994 ? "_1994"
                                                      : "";
    return asnTypeName("__", code, true, edition);
}

} // namespace orvo
