// The objects of a set: those written, those of the sets that it names, and those in the fields of
// other objects. Objects with equal values in a UNIQUE field are reported at the set in which they
// meet.

#include "check/p5set.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "check/orvonum.h"
#include "check/p5sub_int.h"
#include "check/p5val_int.h"
#include "diag/orvoerr.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "util/text.h"

namespace orvo {

bool fieldName(ModuleRec* module, std::string& name) {
    if (sNode.module == 0) {
        name = getStri(module, sNode.value);
        return true;
    }
    ModuleRec* owner = refModule(module, static_cast<int32_t>(sNode.module));
    if (owner == nullptr || sNode.value <= 0) return false;
    const KeepRec<KIND_TNODE> keep;
    readRec(owner, TNodeNr{static_cast<uint32_t>(sNode.value)});
    if (tNode.name == 0) return false;
    name = getStri(owner, tNode.name);
    return true;
}

namespace {

bool isObjectSetting() {
    return (vNode.vflags & VF_SET) == 0 && isClassCode(vNode.valCode);
}

/// The default that the class of an object has for a field.
VNodeRef classDefault(ModuleRec* module, const VNode& object, std::string_view name) {
    const KeepRec<KIND_TNODE> keep;
    ModuleRec* governor = refModule(module, static_cast<int32_t>(object.govTypeMod));
    if (governor == nullptr || object.govType == 0) return {};
    readRec(governor, TNodeNr{object.govType});
    skipTypes(true);
    if (tNode.typeCode != TYP_CLASS && isClassCode(tNode.typeCode))
        static_cast<void>(readBuiltinType(tNode.typeCode));
    if (tNode.typeCode != TYP_CLASS || tNode.ref == 0) return {};
    if (!findTypeCompById(typeModule(), TNodeNr{tNode.ref}, name)) return {};
    return {typeModule(), VNodeNr{tNode.defaultVal}};
}

} // namespace

VNodeRef settingOf(VNodeRef object, const FieldPath& path, bool& isSet) {
    isSet = false;
    VNodeRef at = object;
    for (size_t step = 0; step < path.size(); ++step) {
        readRec(at);
        skipValues(true);
        if (step != 0 && (vNode.vflags & VF_SET) != 0) isSet = true;
        if (isSet || !isObjectSetting()) return {};
        ModuleRec* module = valueModule();
        const VNode holder = vNode;
        if (findValueCompById(module, VNodeNr{holder.ref}, path[step]))
            at = currentRec<KIND_VNODE>();
        else
            at = classDefault(module, holder, path[step]);
        if (!at) return {};
    }
    return at;
}

void walkElement(ObjectWalk& walk, SubRef sub) {
    readRec(sub);
    switch (subRec.subKind) {
    case SUB_UNION:
    case SUB_SERIAL:
        for (const SubNr nr : chain(sub.module, SubNr{subRec.left}))
            walkElement(walk, {sub.module, nr});
        return;
    case SUB_INTERSECTION:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT: walk.isPartial = true; return;
    case SUB_SINGLE_VALUE:
        if (subRec.left != 0) walk.add({sub.module, VNodeNr{subRec.left}});
        return;
    case SUB_CONTAINED_SUBTYPE:
        readRec(sub.module, VNodeNr{subRec.left});
        if (readTypeSetting()) walkSet(walk, currentRec<KIND_TNODE>());
        return;
    default: return;
    }
}

namespace {

/// Name of the field that an entry of a chain takes from an object.
std::string fieldOfStep(ModuleRec* module) {
    std::string name;
    if (fieldName(module, name)) return name;
    ModuleRec* const owner = refModule(module, static_cast<int32_t>(sNode.module));
    if (owner == nullptr || sNode.value >= 0) return name;
    readRec(owner, VNodeNr{magnitude(sNode.value)});
    return std::string(getStri(owner, int64_t{vNode.name}));
}

/// What a field of an object holds, an object or a set of objects.
void walkField(ObjectWalk& walk, VNodeRef object, const std::string& field) {
    bool isSet = false;
    const VNodeRef setting = settingOf(object, {field}, isSet);
    if (!setting) return;
    readRec(setting);
    skipValues(true);
    if (isObjectSetting())
        walk.add(setting);
    else if (readTypeSetting())
        walkSet(walk, currentRec<KIND_TNODE>());
}

/// Information from an object or a set of objects, the current type, whose fields lead to objects
/// (X.681 (02/2021) 15.6). False when it is none.
bool walkFields(ObjectWalk& walk) {
    if (tNode.typeCode != TYP_FIELDLIST || tNode.syntax <= 0) return false;
    const TNodeRef list = currentRec<KIND_TNODE>();
    std::vector<VNodeRef> objects;
    ObjectWalk base{[&objects](VNodeRef object) { objects.push_back(object); }};
    SNodeNr step{magnitude(tNode.syntax)};
    if (tNode.refMod == REF_OBJECT) {
        objects.push_back({list.module, VNodeNr{tNode.ref}});
    } else {
        ModuleRec* const module = refModule(list.module, tNode.refMod);
        if (module == nullptr || tNode.ref == 0) return false;
        readRec(module, TNodeNr{tNode.ref});
        while (!isSetTNode() && tNode.typeCode == TYP_SYNONYM)
            if (!followTypeRef(false)) return false;
        if (!isObjSetTNode()) return false; // a class
        walkSet(base, currentRec<KIND_TNODE>());
    }
    for (uint32_t left = nextRec<KIND_SNODE>(list.module).nr; step && left != 0; --left) {
        readRec(list.module, step);
        step = SNodeNr{sNode.next > 0 ? magnitude(sNode.next) : 0};
        const std::string field = fieldOfStep(list.module);
        const std::vector<VNodeRef> holders = std::exchange(objects, {});
        base.walked.clear();
        for (const VNodeRef holder : holders) walkField(base, holder, field);
    }
    walk.isPartial |= base.isPartial;
    for (const VNodeRef object : objects) walk.add(object);
    return true;
}

} // namespace

void walkSet(ObjectWalk& walk, TNodeRef set) {
    readRec(set);
    while (tNode.constraint <= 0) {
        const TNodeRef type = currentRec<KIND_TNODE>();
        if (newNotation(type.module) && walkFields(walk)) return;
        readRec(type);
        if (!followTypeRef(true)) return;
    }
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (!walk.walked.insert({type.module, type.nr.nr}).second) return;
    walkElement(walk, {type.module, SubNr{magnitude(tNode.constraint)}});
}

// ---- UNIQUE -------------------------------------------------------------------------------------

namespace {

/// Names of the UNIQUE fields of the class of a set, the current type.
std::vector<std::string> uniqueFields() {
    const KeepRec<KIND_TNODE> keep;
    std::vector<std::string> names;
    skipTypes(true);
    if (tNode.typeCode != TYP_CLASS && isClassCode(tNode.typeCode))
        static_cast<void>(readBuiltinType(tNode.typeCode));
    if (tNode.typeCode != TYP_CLASS) return names;
    ModuleRec* const module = typeModule();
    for ([[maybe_unused]] const TNodeNr nr : chain(module, TNodeNr{tNode.ref}))
        if ((tNode.checkFlags & CF_UNIQUE) != 0) names.emplace_back(getStri(module, tNode.name));
    return names;
}

/// An object with its value in a UNIQUE field.
struct Identified {
    uint64_t object = 0;
    size_t element = 0; // of the set
    CheckedValue value;
};

/// The objects of a set by their values in one field.
struct UniqueField {
    std::string name;
    std::unordered_map<uint64_t, std::vector<Identified>> byValue = {};
};

/// What a value is called in a message; nothing for values of several parts.
std::string shortText(const CheckedValue& value) {
    switch (value.rec.valCode) {
    case TYP_INTEGER:
    case TYP_ENUM: return integerOf(value.module, value.rec.val).text();
    case TYP_OBJID:
    case TYP_RELOID: {
        std::string arcs = textOfObjId(value.module, value.rec);
        std::ranges::replace(arcs, ',', ' ');
        return concat("{", arcs, "}");
    }
    default: return {};
    }
}

/// Reports the first object of another element that has the value of this one.
bool reportClash(ModuleRec* errors, const UniqueField& field, const Identified& one,
                 const std::vector<Identified>& others) {
    for (const Identified& other : others) {
        if (other.object == one.object || other.element == one.element ||
            compareValue(other.value.module, other.value.rec, one.value.module, one.value.rec) != 0)
            continue;
        const std::string text = shortText(one.value);
        recordSubRecError(errors, Msg::NonDistinctUnique,
                          concat("&", field.name, text.empty() ? "" : " = ", text));
        return true;
    }
    return false;
}

/// Compares an object with those before it; one that is there already brings nothing new.
bool checkIdentifiers(ModuleRec* errors, std::vector<UniqueField>& fields, VNodeRef object,
                      size_t element, SubRef at) {
    const CheckedValue whole = checkedValue(object);
    bool ok = true;
    for (UniqueField& field : fields) {
        bool isSet = false;
        const VNodeRef setting = settingOf(object, {field.name}, isSet);
        if (!setting) continue;
        const Identified one{whole.id, element, checkedValue(setting)};
        std::vector<Identified>& same = field.byValue[hashOfValue(one.value.module, one.value.rec)];
        readRec(at);
        ok &= !reportClash(errors, field, one, same);
        same.push_back(one);
    }
    return ok;
}

} // namespace

bool checkUnique(ModuleRec* errors) {
    const SubRef set{typeModule(), SubNr{magnitude(tNode.constraint)}};
    std::vector<UniqueField> fields;
    for (std::string& name : uniqueFields()) fields.push_back({std::move(name)});
    if (fields.empty()) return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const KeepRec<KIND_SNODE> keepEntry;
    bool ok = true;
    size_t element = 0;
    SubRef at = set;
    const auto check = [&](VNodeRef object) {
        ok &= checkIdentifiers(errors, fields, object, element, at);
    };
    readRec(set);
    if (subRec.subKind != SUB_UNION && subRec.subKind != SUB_SERIAL) return true; // one element
    for (const SubNr nr : chain(set.module, SubNr{subRec.left})) {
        at.nr = nr;
        ++element;
        ObjectWalk walk{check};
        walkElement(walk, at);
    }
    return ok;
}

} // namespace orvo
