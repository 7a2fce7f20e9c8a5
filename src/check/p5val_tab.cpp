// Values against table constraints (X.682 (07/2002) clause 10). The objects of the set are
// collected once per constraint, with the setting that each has for the constrained field; settings
// that are values are found by the hash of the value, so that large tables cost a look-up.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "check/check_cache.h"
#include "check/p5set.h"
#include "check/p5val_int.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// Said once a run.
void sorry() {
    if (p5ValState.sorrySaid || run.verboseEx <= 1) return;
    p5ValState.sorrySaid = true;
    std::fputs("\n** WARNING: Table constraint checks not fully implemented, sorry.\n\n", stderr);
}

/// The fields of the current type, an object class field type. False when it is none, or when a
/// step names a value.
bool fieldPath(FieldPath& path) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_SNODE> keepEntry;
    skipTypes(false);
    if (tNode.typeCode != TYP_FIELDLIST || tNode.syntax <= 0) return false;
    ModuleRec* module = typeModule();
    for ([[maybe_unused]] const SNodeNr nr : chain(module, SNodeNr{magnitude(tNode.syntax)}))
        if (!fieldName(module, path.emplace_back())) return false;
    return true;
}

// ---- the objects of a set -----------------------------------------------------------------------

void addObject(TableIndex& table, const FieldPath& path, VNodeRef object) {
    bool isSet = false;
    const VNodeRef setting = settingOf(object, path, isSet);
    if (!setting && !isSet) return;
    const size_t place = table.entries.size();
    table.entries.push_back({object, setting});
    const CheckedValue value = setting ? checkedValue(setting) : CheckedValue{};
    if (!setting || value.rec.valCode == TYP_OPEN)
        table.others.push_back(place);
    else
        table.byValue[hashOfValue(value.module, value.rec)].push_back(place);
}

/// The objects of the set in a table constraint with their settings for the fields of `path`.
const TableIndex& objSetFieldsToList(SubRef sub, const FieldPath& path) {
    const auto [note, isNew] = checkCacheOf(sub.module).tables.try_emplace({sub.nr.nr, path});
    if (!isNew) return note->second;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const KeepRec<KIND_SNODE> keepEntry;
    readRec(sub);
    TableIndex& table = note->second;
    ObjectWalk walk{[&](VNodeRef object) { addObject(table, path, object); }};
    readRec(sub.module, VNodeNr{subRec.left});
    if (readTypeSetting()) walkSet(walk, currentRec<KIND_TNODE>());
    table.met = walk.isPartial;
    return table;
}

// ---- objects that agree with a value ------------------------------------------------------------

/// A value of an open type is written with its type: what counts is the value behind it.
CheckedValue withoutType(const CheckedValue& value) {
    const bool isWritten = (value.rec.valCode == TYP_OPEN || value.rec.valCode == TYP_ANY) &&
                           value.rec.refMod == REF_UNRESOLVED && value.rec.ref != 0;
    if (!isWritten) return value;
    CheckedValue inner = checkedValue({value.module, VNodeNr{value.rec.ref}});
    inner.isReference = true; // its type shall be compatible with the one of the table
    inner.isOwn = false;
    return inner;
}

/// The setting, a type or a set of values, admits the value.
bool typeAdmits(const ValueErrors& errors, const CheckedValue& value, const CheckedValue& setting) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(setting.module, setting.nr);
    if (!readTypeSetting()) return false;
    return checkAgainstType({errors.module, false}, withoutType(value), true);
}

/// An object whose field holds a set of objects is accepted unseen.
bool compareValueAndTableObject(const ValueErrors& errors, const CheckedValue& value,
                                VNodeRef setting) {
    if (!setting) {
        sorry();
        return true;
    }
    const CheckedValue field = checkedValue(setting);
    if (field.rec.valCode == TYP_OPEN && field.rec.refMod != REF_UNRESOLVED)
        return typeAdmits(errors, value, field);
    const CheckedValue bare = withoutType(value);
    const CheckedValue other = withoutType(field);
    return compareValue(bare.module, bare.rec, other.module, other.rec) == 0;
}

/// Calls fn(entry) for the objects whose setting agrees with a value, until it returns false.
template <typename Fn> void forEachAgreeing(const ValueErrors& errors, const TableIndex& table,
                                            const CheckedValue& value, Fn&& fn) {
    const CheckedValue bare = withoutType(value);
    const auto same = table.byValue.find(hashOfValue(bare.module, bare.rec));
    const auto tryAll = [&](const std::vector<size_t>& places) {
        return std::ranges::all_of(places, [&](size_t place) {
            const TableEntry& entry = table.entries[place];
            return !compareValueAndTableObject(errors, value, entry.setting) || fn(entry);
        });
    };
    if (same == table.byValue.end() || tryAll(same->second)) tryAll(table.others);
}

bool anyAgrees(const ValueErrors& errors, const TableIndex& table, const CheckedValue& value) {
    bool found = false;
    forEachAgreeing(errors, table, value, [&](const TableEntry&) {
        found = true;
        return false;
    });
    return found;
}

/// The object's own setting agrees with the value; a set of objects on the way agrees with all.
bool objectAgrees(const ValueErrors& errors, VNodeRef object, const FieldPath& path,
                  const CheckedValue& value) {
    bool isSet = false;
    const VNodeRef setting = settingOf(object, path, isSet);
    return (setting || isSet) && compareValueAndTableObject(errors, value, setting);
}

} // namespace

bool valOpenType(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(subModule(), VNodeNr{subRec.left});
    const bool ok =
        readTypeSetting() && checkAgainstType({errors.module, false}, withoutType(value), true);
    return ok || failValue(errors, value, valueOutOfConstraint(SUBNAME_OPEN_TYPE));
}

namespace {

// ---- component relations ------------------------------------------------------------------------

/// Where a reference of a component relation leads.
enum class Reached { Value, Absent, Nowhere };

/// The value that a reference of so many dots begins at: the outermost one around the value under
/// check for none, else as many further out. `named`: lists do not count.
bool readEnclosing(const CheckedValue& value, uint32_t dots, bool named) {
    const CheckedValue* enclosing = value.enclosing;
    const auto counts = [&] { return !named || !is(enclosing->rec.valCode, TypeClass::List); };
    if (dots == 0)
        while (enclosing != nullptr && enclosing->enclosing != nullptr)
            enclosing = enclosing->enclosing;
    else
        while (enclosing != nullptr && !(counts() && --dots == 0)) enclosing = enclosing->enclosing;
    if (enclosing != nullptr) readRec(enclosing->module, enclosing->nr);
    return enclosing != nullptr;
}

/// The n-th element of the list in `vNode`, from 1.
Reached valAtElement(uint64_t number) {
    ModuleRec* module = valueModule();
    if (!is(vNode.valCode, TypeClass::List)) return Reached::Nowhere;
    uint64_t place = 0;
    for (VNodeNr nr{vNode.ref}; nr && place < module->nextRecNr[KIND_VNODE];) {
        readRec(module, nr);
        if (++place == number) return Reached::Value;
        nr = {vNode.next};
    }
    return Reached::Absent;
}

/// One step from the value in `vNode`, the current entry of the list, of a record of `module`.
Reached valAtCompId(ModuleRec* module) {
    if (sNode.token == TOK_NUMBER) {
        if (sNode.module != 0) return Reached::Absent;
        return valAtElement(std::stoull(std::string(getStri(module, sNode.value))));
    }
    std::string name;
    if (!fieldName(module, name)) return Reached::Nowhere;
    const uint8_t kind = vNode.valCode;
    if (!is(kind, TypeClass::Members)) return Reached::Nowhere;
    ModuleRec* owner = valueModule();
    return findValueCompById(owner, VNodeNr{vNode.ref}, name) ? Reached::Value : Reached::Absent;
}

/// One "@" reference: `entry` is its first step, moved to the "@" behind it. The record reached,
/// with a component's type for its governing type, is current.
Reached valAt(ModuleRec* module, SNodeNr& entry) {
    Reached reached = Reached::Value;
    for (uint32_t left = module->nextRecNr[KIND_SNODE]; entry && left != 0; --left) {
        readRec(module, entry);
        if (sNode.token == TOK_AT) break;
        entry = SNodeNr{sNode.next > 0 ? magnitude(sNode.next) : 0};
        if (reached != Reached::Value) continue;
        skipValues(true);
        reached = valAtCompId(module);
    }
    return reached;
}

/// A value that a component relation refers to, and the fields that it is a value of.
struct Related {
    CheckedValue value;
    FieldPath path;
};

/// The values that the references of a component relation lead to; false when one leads nowhere.
bool relatedValues(const CheckedValue& value, ModuleRec* module, SNodeNr entry,
                   std::vector<Related>& related) {
    const KeepRec<KIND_SNODE> keepEntry;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const auto moveOn = [&] { entry = SNodeNr{sNode.next > 0 ? magnitude(sNode.next) : 0}; };
    while (entry) {
        readRec(module, entry); // the "@"
        moveOn();
        if (!entry) break;
        readRec(module, entry);
        uint32_t dots = 0;
        for (; entry && sNode.token == TOK_DOT; ++dots) {
            moveOn();
            if (entry) readRec(module, entry);
        }
        const bool named = newNotation(module) && sNode.token != TOK_NUMBER;
        if (!readEnclosing(value, dots, named)) return false;
        const Reached reached = valAt(module, entry);
        if (reached == Reached::Nowhere) return false;
        const VNodeRef at = currentRec<KIND_VNODE>();
        ModuleRec* owner = refModule(at.module, static_cast<int32_t>(vNode.govTypeMod));
        if (reached == Reached::Absent || owner == nullptr || vNode.govType == 0) continue;
        Related found{checkedValue(at), {}};
        readRec(owner, TNodeNr{vNode.govType});
        if (fieldPath(found.path)) related.push_back(std::move(found));
    }
    return true;
}

/// The objects that agree with all related values; the first one narrows the table to few.
std::vector<VNodeRef> compressOsfList(const ValueErrors& errors, SubRef sub,
                                      const std::vector<Related>& related) {
    std::vector<VNodeRef> objects;
    const Related& first = related.front();
    const TableIndex& table = objSetFieldsToList(sub, first.path);
    forEachAgreeing(errors, table, first.value, [&](const TableEntry& entry) {
        objects.push_back(entry.object);
        return true;
    });
    std::erase_if(objects, [&](VNodeRef object) {
        return !std::ranges::all_of(related, [&](const Related& one) {
            return objectAgrees(errors, object, one.path, one.value);
        });
    });
    return objects;
}

/// An object agrees with the value and with all that the relation refers to.
bool relationHolds(const ValueErrors& errors, const CheckedValue& value, SubRef sub, SNodeNr list,
                   const FieldPath& path, const TableIndex& table) {
    std::vector<Related> related;
    if (!relatedValues(value, sub.module, list, related)) return false;
    if (related.empty()) return anyAgrees(errors, table, value);
    const std::vector<VNodeRef> objects = compressOsfList(errors, sub, related);
    return std::ranges::any_of(
        objects, [&](VNodeRef object) { return objectAgrees(errors, object, path, value); });
}

} // namespace

bool valTableConstr(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef sub = currentRec<KIND_SUB>();
    const int32_t relation = signedWord(subRec.right);
    {
        const KeepRec<KIND_TNODE> keep;
        skipTypes(false);
        if (tNode.typeCode == TYP_INSTANCE_OF) return true; // its table has no column to look into
    }
    FieldPath path;
    if (subRec.left == 0 || !fieldPath(path))
        return failValue(errors, value, valueOutOfConstraint(SUBNAME_TABLE));
    const TableIndex& table = objSetFieldsToList(sub, path);
    if (table.met) return true;
    const SNodeNr list{relation > 0 ? magnitude(relation) : 0};
    if (list && relationHolds(errors, value, sub, list, path, table)) return true;
    const bool agrees = anyAgrees(errors, table, value);
    if (agrees && !list) return true;
    return failValue(errors, value,
                     valueOutOfConstraint(agrees ? SUBNAME_COMPONENT_RELATION : SUBNAME_TABLE));
}

} // namespace orvo
