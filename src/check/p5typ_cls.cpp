// Field specifications of classes, INSTANCE OF, and types that fields of classes give (X.681
// (07/2002) clauses 9 and 14, annexes A and C).

#include <vector>

#include "check/check_cache.h"
#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

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
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidUniqueField);
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
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidOptionalitySpecification);
    return false;
}

/// A class whose mandatory fields are being followed.
struct LinkLevel {
    TNodeRef classNode;
    uint32_t field; // the next one
    uint32_t left;  // fields it may still have: a broken chain must not be endless
};

/// The class that the current field names, when it is mandatory and names one; it is current then.
TNodeRef linkedClass() {
    if (magnitude(tNode.compStatus) == TCS_OPTIONAL) return {};
    skipTypes(true);
    return tNode.typeCode == TYP_CLASS ? currentRec<KIND_TNODE>() : TNodeRef{};
}

/// Mandatory fields lead from the current class to a class from which they lead back to it. The
/// verdict is noted for all classes on the way: one that is entered and not left yet is met again.
bool leadsToCycle() {
    std::vector<LinkLevel> levels;
    bool cyclic = false;
    const auto enter = [&](TNodeRef classNode) {
        auto& links = checkCacheOf(classNode.module).types.links;
        const auto [note, isNew] = links.try_emplace(classNode.nr.nr, LinkNote::Entered);
        cyclic = !isNew && note->second != LinkNote::Ends;
        const uint32_t limit = nextRec<KIND_TNODE>(classNode.module).nr;
        if (isNew) levels.push_back({classNode, tNode.ref, limit});
    };
    enter(currentRec<KIND_TNODE>());
    while (!levels.empty()) {
        LinkLevel& level = levels.back();
        if (cyclic || level.field == 0 || level.left-- == 0) {
            checkCacheOf(level.classNode.module).types.links[level.classNode.nr.nr] =
                cyclic ? LinkNote::Cyclic : LinkNote::Ends;
            levels.pop_back();
            continue;
        }
        readRec(level.classNode.module, TNodeNr{level.field});
        level.field = tNode.next;
        if (const TNodeRef next = linkedClass()) enter(next);
    }
    return cyclic;
}

/// The current field is not mandatory, or names no class that leads to a cycle.
bool checkLinkField() {
    return !linkedClass() || !leadsToCycle();
}

/// An object of the class would need another one, and that another, without end. The class that is
/// being defined has this field: a chain back to it is one of the cycles.
bool validLinkField(ModuleRec* module) {
    bool ok = true;
    {
        const KeepRec<KIND_TNODE> keep;
        ok = checkLinkField();
    }
    if (!ok) recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidLinkField);
    return ok;
}

} // namespace

bool checkFieldSpec(ModuleRec* module) {
    bool ok = validUnique(module);
    ok &= validFieldOptionalitySpec(module);
    ok &= validLinkField(module);
    return ok;
}

bool checkEmbeddedType(ModuleRec* module) {
    uint8_t kind = TYP_NONE;
    if (tNode.ref != 0) {
        const KeepRec<KIND_TNODE> keep;
        readRec(typeModule(), TNodeNr{tNode.ref});
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
        skipTypes(true);
        kind = tNode.typeCode;
    }
    if (!isClassCode(kind)) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidObjectClassFieldType);
    return false;
}

} // namespace orvo
