// Values with components: SEQUENCE, SET, CHOICE, objects, lists, and the types whose components the
// built-in module defines.

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "check/p5val_int.h"
#include "parser/iso8824.h"
#include "tree/orvoutil_find.h"
#include "tree/types_compat.h"
#include "util/text.h"

namespace orvo {

namespace {

/// The component values of a value, by place and by name.
struct Components {
    ModuleRec* module = nullptr;
    std::vector<VNodeNr> records;                            // in list order
    std::vector<std::string_view> names;                     // of them; "" = none
    std::vector<std::pair<std::string_view, size_t>> byName; // of many: sorted, with the place
    static constexpr size_t none = ~size_t{0}, many = 9;

    /// The first component value of a name, which is not empty, from a place on.
    [[nodiscard]] size_t find(std::string_view name, size_t from) const {
        if (names.size() < many) {
            const auto same =
                std::find(names.begin() + static_cast<ptrdiff_t>(from), names.end(), name);
            return same != names.end() ? static_cast<size_t>(same - names.begin()) : none;
        }
        const auto at = std::ranges::lower_bound(byName, std::pair(name, from));
        return at != byName.end() && at->first == name ? at->second : none;
    }
};

Components componentsOf(const CheckedValue& value) {
    const KeepRec<KIND_VNODE> keep;
    Components components;
    components.module = value.module;
    for (const VNodeNr nr : chain(value.module, VNodeNr{value.rec.ref})) {
        components.names.push_back(vNode.name != 0 ? getStri(value.module, vNode.name)
                                                   : std::string_view());
        components.records.push_back(nr);
    }
    if (components.names.size() < Components::many) return components;
    for (size_t place = 0; place < components.names.size(); ++place)
        if (!components.names[place].empty())
            components.byName.emplace_back(components.names[place], place);
    std::ranges::sort(components.byName);
    return components;
}

/// A structure, with what differs between values and objects.
struct Structure {
    uint8_t kind;
    Msg invalid;
    [[nodiscard]] bool isObject() const { return isClassCode(kind); }
};
Structure structureOf(uint8_t kind) {
    switch (kind) {
    case TYP_SEQ:
    case TYP_SET:
    case TYP_CHOICE: return {kind, invalidValue(kind)};
    default: return {kind, Msg::InvalidObject};
    }
}

/// The value as its components and elements see it.
CheckedValue holderOf(const CheckedValue& value) {
    CheckedValue holder = value;
    if (value.isOutermost) holder.enclosing = nullptr;
    return holder;
}

/// Checks a setting of an object whose type another field names against that type.
bool checkVariableSetting(const ValueErrors& errors, const Components& object, VNodeRef at) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(at);
    return readGovTNodeForFieldVNode(object.module, object.records.front()) &&
           checkAgainstType(errors, checkedValue(at), true);
}

bool isVariableSetting(VNodeRef at) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(at);
    ModuleRec* governor = refModule(at.module, static_cast<int32_t>(vNode.govTypeMod));
    if (governor == nullptr || vNode.govType == 0) return false;
    readRec(governor, TNodeNr{vNode.govType});
    return isVariabTypeFieldTNode();
}

/// Settings do not relate to the object around them.
bool checkComponent(const ValueErrors& errors, const CheckedValue& holder,
                    const Structure& structure, const Components& components, VNodeRef at) {
    if (!structure.isObject()) return checkRecord(errors, at, true, &holder);
    return isVariableSetting(at) ? checkVariableSetting(errors, components, at)
                                 : checkRecord(errors, at, true);
}

bool checkStruValComps(const ValueErrors& errors, const CheckedValue& value,
                       const Structure& structure, const Components& components) {
    const CheckedValue holder = holderOf(value);
    const bool checkThem = checksParts(errors, value);
    bool ok = true;
    for (size_t place = 0; place < components.records.size(); ++place) {
        const VNodeRef at{components.module, components.records[place]};
        readRec(at);
        const std::string_view name = components.names[place];
        if (!name.empty() && components.find(name, 0) < place) {
            const Msg code =
                structure.isObject() ? Msg::DuplicateFieldSetting : Msg::DuplicateComponentValue;
            ok = failValue(errors, partAt(value, at.nr), code);
        }
        if (checkThem) ok &= checkComponent(errors, holder, structure, components, at);
    }
    return ok;
}

/// A component without value: false when nothing more is to be said about the structure.
bool errStruValMandComp(const ValueErrors& errors, const CheckedValue& value,
                        const Structure& structure, const Components& components,
                        std::string_view name) {
    if (structure.kind == TYP_SEQ && components.find(name, 0) != Components::none)
        return failValue(errors, value, Msg::ComponentValuesOutOfOrder);
    if (structure.isObject())
        reportValue(errors, value, Msg::MandatoryFieldMissing, concat("field '", name, "'"));
    else
        reportValue(errors, value, Msg::MandatoryComponentValueMissing,
                    concat("component '", name, "'"));
    return true;
}

/// The extension addition groups of which the value has a component; the components of others are
/// left out together.
std::unordered_set<uint32_t> presentGroups(const std::vector<FlatEntry>& entries,
                                           const Components& components) {
    std::unordered_set<uint32_t> groups;
    for (const FlatEntry& entry : entries)
        if (entry.group && components.find(entry.name, 0) != Components::none)
            groups.insert(entry.group.nr);
    return groups;
}

bool checkStruValMandOpt(const ValueErrors& errors, const CheckedValue& value,
                         const Structure& structure, const Components& components) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const std::vector<FlatEntry>& entries = flatComponents(type.module, TNodeNr{tNode.ref});
    readRec(type);
    const std::unordered_set<uint32_t> groups = presentGroups(entries, components);
    bool ok = true;
    size_t next = 0; // where the value of the next component may stand
    for (const FlatEntry& entry : entries) {
        if (entry.repeated || entry.name.empty()) continue;
        const size_t found = components.find(entry.name, next);
        if (found != Components::none) {
            if (structure.kind == TYP_SEQ) next = found + 1;
            continue;
        }
        if (entry.compStatus != TCS_MANDATORY) continue;
        if (entry.group && !groups.contains(entry.group.nr)) continue;
        ok = false;
        if (!errStruValMandComp(errors, value, structure, components, entry.name)) break;
    }
    return ok;
}

/// An entry of the list is an extension marker.
bool isMarkerEntry(const FlatEntry& entry) {
    if (!entry.name.empty() || entry.repeated) return false;
    readRec(entry.component);
    return tNode.typeCode == TYP_EXTENSION_MARKER;
}

/// In today's notation the values of a SEQUENCE come in the order of its components (X.680
/// (02/2021) 25.18). What comes too late is told of.
bool valuesAreInOrder(const ValueErrors& errors, const CheckedValue& value,
                      const std::vector<FlatEntry>& entries, const Components& components) {
    std::unordered_map<std::string_view, size_t> places;
    for (const FlatEntry& entry : entries)
        if (!entry.name.empty() && !entry.repeated) places.try_emplace(entry.name, places.size());
    bool ok = true;
    size_t next = 0; // the first component that may follow
    for (size_t at = 0; at < components.records.size(); ++at) {
        const auto place = places.find(components.names[at]);
        if (place == places.end()) continue;
        if (place->second + 1 < next)
            ok = failValue(errors, partAt(value, components.records[at]),
                           Msg::ComponentValuesOutOfOrder);
        next = std::max(next, place->second + 1);
    }
    return ok;
}

/// In today's notation additions may be missing from some point on, but not in front of one that is
/// there (X.680 (02/2021) 25.13 to 25.15).
bool checkPresence(const ValueErrors& errors, const CheckedValue& value, const Structure& structure,
                   const Components& components) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const std::vector<FlatEntry>& entries = flatComponents(type.module, TNodeNr{tNode.ref});
    const auto isThere = [&](const FlatEntry& entry) {
        return !entry.name.empty() && components.find(entry.name, 0) != Components::none;
    };
    RootOfList root(type.module);
    std::vector<bool> isAddition(entries.size());
    size_t needed = 0; // additions in front of this place
    for (size_t place = 0; place < entries.size(); ++place) {
        if (isMarkerEntry(entries[place])) root.passMarker();
        isAddition[place] = !root.isRoot();
        if (isAddition[place] && isThere(entries[place])) needed = place;
    }
    readRec(type);
    const std::unordered_set<uint32_t> groups = presentGroups(entries, components);
    bool ok = structure.kind != TYP_SEQ || valuesAreInOrder(errors, value, entries, components);
    for (size_t place = 0; place < entries.size(); ++place) {
        const FlatEntry& entry = entries[place];
        if (entry.repeated || entry.name.empty() || entry.compStatus != TCS_MANDATORY ||
            isThere(entry))
            continue;
        if (isAddition[place] && place > needed && !groups.contains(entry.group.nr)) continue;
        reportValue(errors, value, Msg::MandatoryComponentValueMissing,
                    concat("component '", entry.name, "'"));
        ok = false;
    }
    readRec(type);
    return ok;
}

bool checkParts(const ValueErrors& errors, const CheckedValue& value, const Structure& structure) {
    const Components components = componentsOf(value);
    bool ok = checkStruValComps(errors, value, structure, components);
    if (structure.kind == TYP_CHOICE) return ok;
    if (newNotation(typeModule()) && !structure.isObject())
        ok &= checkPresence(errors, value, structure, components);
    else
        ok &= checkStruValMandOpt(errors, value, structure, components);
    return ok;
}

bool checkStruVal(const ValueErrors& errors, const CheckedValue& value) {
    const Structure structure = structureOf(tNode.typeCode);
    const bool ok =
        isGovernedBy(value, currentRec<KIND_TNODE>()) && checkParts(errors, value, structure);
    return ok || failValue(errors, value, structure.invalid);
}

bool checkSOfVal(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    bool ok = isGovernedBy(value, currentRec<KIND_TNODE>());
    if (ok && checksParts(errors, value)) {
        const CheckedValue holder = holderOf(value);
        const Components elements = componentsOf(value);
        for (const VNodeNr nr : elements.records)
            ok &= checkRecord(errors, {elements.module, nr}, true, &holder);
    }
    return ok || failValue(errors, value, invalidValue(kind));
}

bool checkISO8824StruVal(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keep;
    const uint8_t kind = value.rec.valCode;
    if (!newNotation(value.module) || !is(kind, TypeClass::Associated))
        return !readBuiltinType(kind) || checkStruVal(errors, value);
    if (!readAssociatedType(value.module, kind)) return true;
    const Structure structure = structureOf(TYP_SEQ);
    return checkParts(errors, value, structure) || failValue(errors, value, structure.invalid);
}

/// The values of INSTANCE OF are those of the associated type, which no rule makes compatible.
bool checkInstanceVal(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keep;
    if (!readBuiltinType(TYP_INSTANCE_OF)) return true;
    const Structure structure{TYP_SEQ, invalidValue(TYP_INSTANCE_OF)};
    return checkParts(errors, value, structure) || failValue(errors, value, structure.invalid);
}

/// The component value of a name with its references followed; false when there is none.
bool componentValue(const CheckedValue& value, std::string_view name, CheckedValue& component) {
    const KeepRec<KIND_VNODE> keep;
    if (!findValueCompById(value.module, VNodeNr{value.rec.ref}, name)) return false;
    component = checkedValue(currentRec<KIND_VNODE>());
    return true;
}

/// The notation of a CHARACTER STRING value is a value of a character string type.
bool checkChaStrVal(const ValueErrors& errors, const CheckedValue& value) {
    if (!checkISO8824StruVal(errors, value)) return false;
    CheckedValue data;
    CheckedValue notation;
    if (!componentValue(value, "data_value", data) || !componentValue(data, "notation", notation))
        return true;
    if (notation.rec.valCode == TYP_OPEN && notation.rec.refMod == REF_UNRESOLVED &&
        notation.rec.ref != 0)
        notation = checkedValue({notation.module, VNodeNr{notation.rec.ref}});
    const uint8_t kind = notation.rec.valCode;
    if (is(kind, TypeClass::StringGroup) && kind != TYP_OBJDESCR) return true;
    return failValue(errors, value, invalidValue(TYP_CHASTR));
}

/// EXTERNAL of 1990 says by one of its references what it holds.
bool checkExtVal(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = value.rec.valCode;
    if (!checkISO8824StruVal(errors, value)) return false;
    CheckedValue reference;
    if (kind != TYP_EXTERNAL_1990 || componentValue(value, "direct_reference", reference) ||
        componentValue(value, "indirect_reference", reference))
        return true;
    return failValue(errors, value, invalidValue(kind));
}

} // namespace

bool readBuiltinType(uint8_t kind) {
    if (run.iso8824MP == nullptr) return false;
    readRec(run.iso8824MP, TNodeNr{kind});
    skipTypes(true);
    return tNode.typeCode == TYP_SEQ || tNode.typeCode == TYP_CLASS;
}

bool checkValWithComps(const ValueErrors& errors, const CheckedValue& value) {
    switch (tNode.typeCode) {
    case TYP_SEQ:
    case TYP_SET:
    case TYP_CHOICE:
    case TYP_CLASS: return checkStruVal(errors, value);
    case TYP_SEQOF:
    case TYP_SETOF: return checkSOfVal(errors, value);
    case TYP_CHASTR: return checkChaStrVal(errors, value);
    case TYP_EXTERNAL_1990:
    case TYP_EXTERNAL_1994: return checkExtVal(errors, value);
    case TYP_INSTANCE_OF: return checkInstanceVal(errors, value);
    case TYP_EMB_PDV:
    case TYP_TYPE_ID:
    case TYP_ABSTR_STX: return checkISO8824StruVal(errors, value);
    default: return true;
    }
}

} // namespace orvo
