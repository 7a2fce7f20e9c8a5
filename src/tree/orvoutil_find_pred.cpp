// Predicates over the current type and value records. A type or value is classified by what it
// stands for, so most walk the references first and put the record back.

#include "diag/orvoerr_fatal.h"
#include "tree/orvoutil_find.h"

namespace orvo {

bool isValueSetTNode() {
    if (!isSetTNode()) return false;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return !isClassCode(tNode.typeCode);
}

bool isObjSetTNode() {
    if (!isSetTNode()) return false;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return isClassCode(tNode.typeCode);
}

bool isTypeTNode() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return !isSetTNode() && !isClassCode(tNode.typeCode);
}

bool isClassTNode() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return !isSetTNode() && isClassCode(tNode.typeCode);
}

bool isTopLevelInstantiatedTNode() {
    return isInstantiatedTNode() && tNode.actParRec == 0;
}

bool isOpenObjClassFieldTypeTNode() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return tNode.typeCode == TYP_OPEN;
}

namespace {

/// The current node of kind TYP_FIELDLIST stands where a type can: as a component, alternative,
/// element, type assignment, or as the fixed type of a value or value set field.
bool isPlaceOfObjClFldTyp() {
    switch (magnitude(tNode.compStatus)) {
    case TCS_MANDATORY:
        if (tNode.name == 0 && newNotation(typeModule())) return true; // in a setting or contents
        [[fallthrough]];
    case TCS_OPTIONAL:
        return (isValFieldTNode() || isValSetFieldTNode()) && !isVariabTypeFieldTNode();
    case TCS_CHOICE:
    case TCS_MULTIPLE: return true;
    case TCS_HEADER: return tNode.name > 0;
    default: return false;
    }
}

} // namespace

namespace {

/// References lead from the current type to a set.
bool leadsToSet() {
    const KeepRec<KIND_TNODE> keep;
    for (uint32_t left = maxLinks; left != 0 && !isSetTNode(); --left)
        if (tNode.typeCode != TYP_SYNONYM || !followTypeRef(false)) return false;
    return isSetTNode();
}

} // namespace

bool isObjClFldTyp() {
    skipTypes(false);
    if (tNode.typeCode != TYP_FIELDLIST || tNode.refMod < 0 || tNode.ref == 0) return false;
    if (!isPlaceOfObjClFldTyp()) return false;
    const bool mayBeInformation = tNode.compStatus == TCS_MANDATORY && tNode.name == 0;
    ModuleRec* module = typeModule();
    // The class is a node of the same module, or a reference to one, whose refMod stays 0.
    ModuleRec* classModule = tNode.refMod == 0 ? module : refModule(module, tNode.refMod);
    if (classModule == nullptr) return false;
    readRec(classModule, TNodeNr{tNode.ref});
    if (mayBeInformation && leadsToSet()) return false; // from an object set
    skipTypes(false);
    return isClassTNode();
}

bool isObjClassFieldTypeTNode() {
    const KeepRec<KIND_TNODE> keep;
    return isObjClFldTyp();
}

void getClassOfObjClassFieldTypeTNode() {
    if (!isObjClFldTyp())
        fatalError(Fatal::Internal, "Trying to obtain class of an ObjectClassFieldType.");
}

bool isIntegerVNode() {
    if (vNode.valCode != TYP_INTEGER) return false;
    if (vNode.valStatus != VST_NAMED_NUMBER || vNode.govType == 0) return true;
    const KeepRec<KIND_TNODE> keep;
    ModuleRec* const module = refModule(valueModule(), static_cast<int32_t>(vNode.govTypeMod));
    if (module == nullptr) return true;
    readRec(module, TNodeNr{vNode.govType});
    return tNode.typeCode != TYP_ENUM;
}

bool isObjVNode() {
    if ((vNode.vflags & VF_SET) != 0) return false;
    const KeepRec<KIND_VNODE> keep;
    skipValues(true);
    return isClassCode(vNode.valCode);
}

bool isObjSetVNode() {
    if ((vNode.vflags & VF_SET) == 0) return false;
    const KeepRec<KIND_VNODE> keep;
    skipValues(true);
    return isClassCode(vNode.valCode);
}

bool isValueVNode() {
    return (vNode.vflags & VF_SET) == 0 && !isObjVNode();
}
bool isValueSetVNode() {
    return (vNode.vflags & VF_SET) != 0 && !isObjSetVNode();
}

} // namespace orvo
