// Instances of one parameterized type that were made apart. With notation of today equal actual
// parameters make them one type (X.683 (02/2021) 9.1 to 9.3: what they stand for is the same text).

#include "check/p5val_int.h"
#include "solve/solve_par.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "tree/types_compat.h"

namespace orvo {
namespace {

/// Instances within actual parameters of instances that are looked into.
constexpr int maxDepth = 20;

bool isSameType(TNodeRef a, TNodeRef b, int depth);

/// From a set in braces that names one other set to that set.
bool readNamedSet() {
    if (!isSetTNode() || tNode.constraint <= 0) return false;
    ModuleRec* const module = typeModule();
    readRec(module, SubNr{magnitude(tNode.constraint)});
    if (subRec.subKind != SUB_CONTAINED_SUBTYPE || subRec.left == 0) return false;
    return readTypeSetting({module, VNodeNr{subRec.left}});
}

/// Reads what a type stands for as far as nothing is said on the way.
TNodeRef bareType(TNodeRef type) {
    readRec(type);
    for (size_t left = maxLinks; left != 0; --left) {
        const TNodeRef at = currentRec<KIND_TNODE>();
        if (readNamedSet()) continue;
        readRec(at);
        if (tNode.constraint != 0 || tNode.tags != 0 || !followTypeRef(true)) {
            readRec(at);
            return at;
        }
    }
    return type;
}

/// The record is the head of an instance.
bool isInstanceHead() {
    return tNode.actParRec != 0 && tNode.compStatus == -TCS_HEADER;
}

bool isSameActual(VNodeRef a, VNodeRef b, int depth) {
    readRec(a);
    const VNode left = vNode;
    readRec(b);
    const VNode right = vNode;
    const auto isType = [](const VNode& actual) {
        return actual.valCode == TYP_OPEN && actual.refMod == REF_FORMAL;
    };
    if (isType(left) != isType(right)) return false;
    if (isType(left))
        return isSameType({a.module, TNodeNr{left.ref}}, {b.module, TNodeNr{right.ref}}, depth);
    const CheckedValue valueA = checkedValue(a);
    const CheckedValue valueB = checkedValue(b);
    return valueA.id == valueB.id ||
           compareValue(valueA.module, valueA.rec, valueB.module, valueB.rec) == 0;
}

/// The heads are copies of one definition, made with equal actual parameters.
bool isSameInstanceAt(TNodeRef a, TNodeRef b, int depth) {
    readRec(a);
    if (!isInstanceHead()) return false;
    const uint32_t first = aplOfInstance(a.module, tNode.actParRec);
    readRec(b);
    if (!isInstanceHead()) return false;
    const uint32_t second = aplOfInstance(b.module, tNode.actParRec);
    if (first == 0 || second == 0) return false;
    const ANode left = aplAt(first);
    const ANode right = aplAt(second);
    if (left.defModule != right.defModule || left.definition != right.definition) return false;
    VNodeRef actualA{run.modules[left.instModule - 1].get(), VNodeNr{left.firstActual}};
    VNodeRef actualB{run.modules[right.instModule - 1].get(), VNodeNr{right.firstActual}};
    for (size_t rest = maxLinks; actualA.nr && actualB.nr && rest != 0; --rest) {
        if (!isSameActual(actualA, actualB, depth)) return false;
        readRec(actualA);
        actualA.nr = VNodeNr{vNode.next};
        readRec(actualB);
        actualB.nr = VNodeNr{vNode.next};
    }
    return !actualA.nr && !actualB.nr;
}

/// Built-in types without parts that say the same.
bool isSameBuiltin(const TNode& a, const TNode& b) {
    const auto isPlain = [](const TNode& type) {
        return type.constraint == 0 && type.tags == 0 && type.namedVals == 0 && type.ref == 0 &&
               !is(type.typeCode, TypeClass::Reference);
    };
    return a.typeCode == b.typeCode && isPlain(a) && isPlain(b);
}

bool isSameType(TNodeRef a, TNodeRef b, int depth) {
    const TNodeRef first = bareType(a);
    const TNode left = tNode;
    const TNodeRef second = bareType(b);
    if (first == second || isSameBuiltin(left, tNode)) return true;
    return depth < maxDepth && isSameInstanceAt(first, second, depth + 1);
}

bool isSameInstance(TNodeRef a, TNodeRef b) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    readRec(a);
    skipTypes(true);
    const TNodeRef first = currentRec<KIND_TNODE>();
    readRec(b);
    skipTypes(true);
    return isSameInstanceAt(first, currentRec<KIND_TNODE>(), 0);
}

} // namespace

bool isGovernedBy(const CheckedValue& value, TNodeRef type) {
    ModuleRec* const module =
        value.rec.govTypeMod == 0
            ? value.module
            : refModule(value.module, static_cast<int32_t>(value.rec.govTypeMod));
    if (module == nullptr || value.rec.govType == 0) return false;
    const TNodeRef governor{module, TNodeNr{value.rec.govType}};
    return typeCompatible(type.module, type.nr, governor.module, governor.nr) ||
           (newNotation(value.module) && isSameInstance(type, governor));
}

} // namespace orvo
