// Field specifications of classes, INSTANCE OF, and types that fields of classes give (X.681
// (07/2002) clauses 9 and 14, annexes A and C).

#include <unordered_set>
#include <vector>

#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"

namespace orvo {

namespace {

/// Kind of the type behind the current record, references and class fields followed.
uint8_t actualKind() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return tNode.typeCode;
}

/// UNIQUE is for a fixed-type value field without default (X.681 (07/2002) 9.8).
bool validUnique(ModuleRec* module) {
    if ((tNode.checkFlags & CF_UNIQUE) == 0) return true;
    const bool fixedTypeValue = isValFieldTNode() && !isVariabTypeFieldTNode();
    if (fixedTypeValue && tNode.defaultVal == 0 && !isClassCode(actualKind())) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidUniqueField, tNodeName());
    return false;
}

/// A field whose type an optional field gives is optional without default itself (X.681
/// (07/2002) 9.11).
bool validFieldOptionalitySpec(ModuleRec* module) {
    if (!isVariabTypeFieldTNode()) return true;
    const bool optional = magnitude(tNode.compStatus) == TCS_OPTIONAL && tNode.defaultVal == 0;
    bool governorOptional = false;
    {
        const KeepRec<KIND_TNODE> keep;
        if (skipFieldList())
            governorOptional = magnitude(tNode.compStatus) == TCS_OPTIONAL && tNode.defaultVal == 0;
    }
    if (!governorOptional || optional) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidOptionalitySpecification, tNodeName());
    return false;
}

uint64_t keyOf(const TNodeRef& type) {
    return uint64_t{type.module->handle} << 32 | type.nr.nr;
}

/// A walk through the classes that mandatory fields name.
struct LinkWalk {
    TNodeRef defined;                   // the class being defined
    std::unordered_set<uint64_t> path;  // classes that were entered and not left
    std::unordered_set<uint64_t> clean; // classes that lead to none of these
    uint32_t depth = 0;
};

/// No chain of mandatory fields leads from the current field back to a class on the path.
bool checkLinkField(LinkWalk& walk) {
    if (magnitude(tNode.compStatus) == TCS_OPTIONAL) return true;
    skipTypes(true);
    if (tNode.typeCode != TYP_CLASS) return true;
    const TNodeRef classNode = currentRec<KIND_TNODE>();
    if (classNode == walk.defined) return false;
    if (walk.clean.contains(keyOf(classNode))) return true;
    const Depth depth(walk.depth, 1000);
    if (depth.tooDeep() || !walk.path.insert(keyOf(classNode)).second) return false;
    uint32_t left = nextRec<KIND_TNODE>(classNode.module).nr;
    for (uint32_t field = tNode.ref; field != 0 && left-- != 0;) {
        readRec(classNode.module, TNodeNr{field});
        field = tNode.next;
        if (!checkLinkField(walk)) return false;
    }
    walk.path.erase(keyOf(classNode));
    walk.clean.insert(keyOf(classNode));
    return true;
}

/// An object of the class would need another one without end.
bool validLinkField(ModuleRec* module, TNodeRef classNode) {
    bool ok = true;
    {
        const KeepRec<KIND_TNODE> keep;
        LinkWalk walk;
        walk.defined = classNode;
        ok = checkLinkField(walk);
    }
    if (!ok) recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidLinkField, tNodeName());
    return ok;
}

} // namespace

bool checkFieldSpec(ModuleRec* module, TNodeRef classNode) {
    bool ok = validUnique(module);
    ok &= validFieldOptionalitySpec(module);
    ok &= validLinkField(module, classNode);
    return ok;
}

bool checkEmbeddedType(ModuleRec* module) {
    uint8_t kind = TYP_NONE;
    if (tNode.ref != 0) {
        const KeepRec<KIND_TNODE> keep;
        readRec(recState.currTPtr[KIND_TNODE], TNodeNr{tNode.ref});
        skipTypes(true);
        kind = tNode.typeCode;
    }
    if (kind == TYP_TYPE_ID || kind == TYP_ABSTR_STX) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::TypeIdentifierExpected);
    return false;
}

bool checkObjClassFieldType(ModuleRec* module) {
    uint8_t kind = TYP_NONE;
    {
        const KeepRec<KIND_TNODE> keep;
        if (skipFieldList()) p5State.nextTag = getNextTag();
        skipTypes(true);
        kind = tNode.typeCode;
    }
    if (!isClassCode(kind)) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidObjectClassFieldType);
    return false;
}

} // namespace orvo
