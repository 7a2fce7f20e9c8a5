// Object sets. The objects of a set are collected once per set record. Two objects are the same
// when references lead to one record. To compare the UNIQUE fields of all sets, the objects that
// agree with another one in such a field are found first, over all sets together: only they are
// followed through the sets, so that sets which name one another level by level cost no more than
// what is wrong in them.

#include "check/p5objset.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "check/check_cache.h"
#include "check/orvonum.h"
#include "check/p5typ.h"
#include "check/p5val_int.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "solve/solve_stx.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "util/flat.h"
#include "util/stack.h"
#include "util/text.h"

namespace orvo {

namespace {

/// The objects of a set, each once.
struct ObjectList {
    std::vector<VNodeRef> objects;
    bool all = false;
};
FlatSet<uint64_t> keysOf(const ObjectList& list) {
    FlatSet<uint64_t> keys;
    for (const VNodeRef& object : list.objects) keys.insert(keyOf(object));
    return keys;
}

/// Joins lists of objects.
class ObjectUnion {
  public:
    void add(ObjectList&& other) {
        list_.all |= other.all;
        if (list_.objects.empty()) {
            list_.objects = std::move(other.objects);
            return;
        }
        if (known_.empty()) known_ = keysOf(list_);
        for (const VNodeRef& object : other.objects)
            if (known_.insert(keyOf(object)).second) list_.objects.push_back(object);
    }
    ObjectList take() { return std::move(list_); }

  private:
    ObjectList list_;
    FlatSet<uint64_t> known_; // once there are several
};

/// Collects the objects of sets. With a filter only those in it count.
class ObjectCollector {
  public:
    explicit ObjectCollector(const FlatSet<uint64_t>* filter = nullptr) : filter_(filter) {}

    /// The objects that a set setting stands for.
    ObjectList ofSetting(VNodeRef setting) {
        if (const TNodeNr given = givenByFieldList(setting))
            return ofFieldList({setting.module, given});
        if (!readTypeSetting(setting)) return {};
        return ofType(currentRec<KIND_TNODE>());
    }
    ObjectList ofSub(SubRef sub) {
        if (stackIsLow()) fatalError(Fatal::NoSpace, "Object sets are nested too deeply.");
        readRec(sub);
        switch (subRec.subKind) {
        case SUB_UNION:
        case SUB_SERIAL: {
            ObjectUnion list;
            for (const SubNr nr : chain(sub.module, SubNr{subRec.left}))
                list.add(ofSub({sub.module, nr}));
            return list.take();
        }
        case SUB_INTERSECTION: return combined(sub, true);
        case SUB_EXCEPT: return combined(sub, false);
        case SUB_ALL_EXCEPT: {
            ObjectList list;
            list.all = true;
            return list;
        }
        case SUB_SINGLE_VALUE: return ofObject({sub.module, VNodeNr{subRec.left}});
        case SUB_CONTAINED_SUBTYPE: return ofSetting({sub.module, VNodeNr{subRec.left}});
        default: return {};
        }
    }

  private:
    ObjectList ofObject(VNodeRef at) {
        ObjectList list;
        if (!at) return list;
        readRec(at);
        skipValues(true);
        const VNodeRef object = currentRec<KIND_VNODE>();
        if ((vNode.vflags & VF_SET) == 0 && isClassCode(vNode.valCode) &&
            (filter_ == nullptr || filter_->contains(keyOf(object))))
            list.objects.push_back(object);
        return list;
    }
    /// Intersection: what all operands have; else the first without the second.
    ObjectList combined(SubRef sub, bool common) {
        ObjectList list;
        bool isFirst = true;
        for (const SubNr nr : chain(sub.module, SubNr{subRec.left})) {
            ObjectList operand = ofSub({sub.module, nr});
            if (std::exchange(isFirst, false)) {
                list = std::move(operand);
                continue;
            }
            if (common && operand.all) continue;
            const FlatSet<uint64_t> keys = keysOf(operand);
            std::erase_if(list.objects, [&](const VNodeRef& object) {
                return keys.contains(keyOf(object)) != common;
            });
        }
        return list;
    }
    ObjectList ofType(TNodeRef set) {
        readRec(set);
        for (size_t left = maxLinks; tNode.constraint <= 0 && left != 0; --left) {
            if (tNode.typeCode == TYP_FIELDLIST) return ofFieldList(currentRec<KIND_TNODE>());
            if (!followTypeRef(true)) return {};
        }
        const TNodeRef type = currentRec<KIND_TNODE>();
        const auto [note, isNew] = sets_.try_emplace(keyOf(type));
        if (!isNew) return note->second; // an open one brings nothing to itself
        ObjectList& list = note->second; // nodes stay where they are
        ObjectList found = ofSub({type.module, SubNr{magnitude(tNode.constraint)}});
        list = std::move(found);
        return list;
    }
    /// Information from an object, or from all objects of a set.
    ObjectList ofFieldList(TNodeRef fieldList) {
        const KeepRec<KIND_SNODE> keep;
        readRec(fieldList);
        const TNode node = tNode;
        ObjectCollector
            unfiltered; // objects on the way count, whatever is asked of those at the end
        const FlatSet<uint64_t>* const filter = std::exchange(filter_, nullptr);
        ObjectCollector& way = filter == nullptr ? *this : unfiltered;
        ObjectList list;
        if (node.refMod == REF_OBJECT)
            list = way.ofObject({fieldList.module, VNodeNr{node.ref}});
        else if (ModuleRec* owner = refModule(fieldList.module, node.refMod); owner && node.ref)
            list = way.ofType({owner, TNodeNr{node.ref}});
        SNodeNr entry{node.syntax > 0 ? magnitude(node.syntax) : 0};
        for (size_t left = maxLinks; entry && left != 0; --left) {
            readRec(fieldList.module, entry);
            entry = SNodeNr{sNode.next > 0 ? magnitude(sNode.next) : 0};
            std::string name;
            if (!nameOfField(fieldList.module, name)) {
                list = {};
                break;
            }
            list = way.fieldOf(list, name);
        }
        filter_ = filter;
        if (filter == nullptr) return list;
        std::erase_if(list.objects,
                      [&](const VNodeRef& object) { return !filter->contains(keyOf(object)); });
        return list;
    }
    /// The objects that a field of objects holds.
    ObjectList fieldOf(const ObjectList& holders, std::string_view name) {
        ObjectUnion list;
        for (const VNodeRef& holder : holders.objects) {
            VNodeRef setting;
            readRec(holder);
            if (!settingOfField(name, setting) || !setting) continue;
            readRec(setting);
            const bool isSetting = vNode.valCode == TYP_OPEN;
            list.add(isSetting ? ofSetting(setting) : ofObject(setting));
        }
        return list.take();
    }

    const FlatSet<uint64_t>* filter_;
    std::unordered_map<uint64_t, ObjectList> sets_;
};

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

bool settingOfField(std::string_view name, VNodeRef& setting) {
    if ((vNode.vflags & VF_SET) != 0 || !isClassCode(vNode.valCode)) return false;
    ModuleRec* const module = valueModule();
    const VNode object = vNode;
    setting = findValueCompById(module, VNodeNr{object.ref}, name)
                  ? currentRec<KIND_VNODE>()
                  : classDefault(module, object, name);
    return true;
}

bool nameOfField(ModuleRec* module, std::string& name) {
    if (sNode.module == 0) {
        name = getStri(module, sNode.value);
        return true;
    }
    ModuleRec* const owner = refModule(module, static_cast<int32_t>(sNode.module));
    if (owner == nullptr || sNode.value == 0) return false;
    int32_t text = 0;
    if (sNode.value > 0) {
        const KeepRec<KIND_TNODE> keep;
        readRec(owner, TNodeNr{magnitude(sNode.value)});
        text = tNode.name;
    } else {
        const KeepRec<KIND_VNODE> keep;
        readRec(owner, VNodeNr{magnitude(sNode.value)});
        text = vNode.name;
    }
    if (text == 0) return false;
    name = getStri(owner, text);
    return true;
}

std::vector<VNodeRef> objectsOfSetting(bool& all) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const ObjectList list = ObjectCollector().ofSetting(currentRec<KIND_VNODE>());
    all = list.all;
    return list.objects;
}

// ---- UNIQUE -------------------------------------------------------------------------------------

namespace {

/// A value in a UNIQUE field.
struct UniqueValue {
    std::string_view field;
    CheckedValue value;
};

/// The values that an object has in the UNIQUE fields of its class.
std::vector<UniqueValue> uniqueValues(VNodeRef object) {
    std::vector<UniqueValue> values;
    readRec(object);
    ModuleRec* const governor = refModule(object.module, static_cast<int32_t>(vNode.govTypeMod));
    if (governor == nullptr || vNode.govType == 0) return values;
    readRec(governor, TNodeNr{vNode.govType});
    skipTypes(true);
    if (tNode.typeCode != TYP_CLASS && isClassCode(tNode.typeCode))
        static_cast<void>(readBuiltinType(tNode.typeCode));
    if (tNode.typeCode != TYP_CLASS) return values;
    ModuleRec* const module = typeModule();
    for ([[maybe_unused]] const TNodeNr nr : chain(module, TNodeNr{tNode.ref})) {
        if ((tNode.checkFlags & CF_UNIQUE) == 0 || tNode.name == 0) continue;
        const std::string_view field = getStri(module, tNode.name);
        VNodeRef setting;
        readRec(object);
        if (settingOfField(field, setting) && setting)
            values.push_back({field, checkedValue(setting)});
    }
    return values;
}

bool isSame(const CheckedValue& a, const CheckedValue& b) {
    return compareValue(a.module, a.rec, b.module, b.rec) == 0;
}

/// How a value is written, as far as it is short.
std::string textOf(const CheckedValue& value) {
    switch (value.rec.valCode) {
    case TYP_INTEGER: return integerOf(value.module, value.rec.val).text();
    case TYP_OBJID:
    case TYP_RELOID: {
        std::string text(getStri(value.module, int64_t{value.rec.val.str.stri}));
        if (text.ends_with(',')) text.pop_back();
        std::ranges::replace(text, ',', ' ');
        return concat("{", text, "}");
    }
    case TYP_CHOICE: {
        const VNodeRef alternative{value.module, VNodeNr{value.rec.ref}};
        if (!alternative) return {};
        readRec(alternative);
        const std::string name(getStri(value.module, vNode.name));
        const std::string text = textOf(checkedValue(alternative));
        return text.empty() ? name : concat(name, " : ", text);
    }
    default: return {};
    }
}

/// Numbers the values in UNIQUE fields, equal ones of one field alike.
class UniqueIndex {
  public:
    struct Numbered {
        uint32_t number = 0;
        UniqueValue value;
    };

    void add(VNodeRef object) {
        const auto [note, isNew] = objects_.try_emplace(keyOf(object));
        if (!isNew) return;
        for (const UniqueValue& value : uniqueValues(object)) {
            const uint32_t number = numberOf(value);
            ++uses_[number];
            note->second.push_back({number, value});
        }
    }
    /// The objects that agree with another one in some field.
    [[nodiscard]] FlatSet<uint64_t> agreeing() const {
        FlatSet<uint64_t> agreeing;
        for (const auto& [object, values] : objects_)
            for (const Numbered& value : values)
                if (uses_[value.number] > 1) agreeing.insert(object);
        return agreeing;
    }
    [[nodiscard]] const std::vector<Numbered>& valuesOf(VNodeRef object) const {
        static const std::vector<Numbered> none;
        const auto note = objects_.find(keyOf(object));
        return note == objects_.end() ? none : note->second;
    }

  private:
    uint32_t numberOf(const UniqueValue& own) {
        const uint64_t hash = hashOfValue(own.value.module, own.value.rec) * 31 +
                              std::hash<std::string_view>()(own.field);
        std::vector<Numbered>& bucket = byHash_[hash];
        const auto same = std::ranges::find_if(bucket, [&](const Numbered& other) {
            return other.value.field == own.field && isSame(other.value.value, own.value);
        });
        if (same != bucket.end()) return same->number;
        bucket.push_back({static_cast<uint32_t>(uses_.size()), own});
        uses_.push_back(0);
        return bucket.back().number;
    }

    std::unordered_map<uint64_t, std::vector<Numbered>> objects_;
    std::unordered_map<uint64_t, std::vector<Numbered>> byHash_;
    std::vector<uint32_t> uses_; // by number
};

/// A set in a set is told of its own faults, unless it comes from several objects.
bool answersForItself(SubRef element) {
    readRec(element);
    if (subRec.subKind != SUB_CONTAINED_SUBTYPE) return false;
    const VNodeRef setting{element.module, VNodeNr{subRec.left}};
    if (givenByFieldList(setting)) return false;
    return readTypeSetting(setting) && tNode.typeCode != TYP_FIELDLIST;
}

/// Calls fn(object) for the objects that an element itself, no set of its own, brings in.
template <typename Fn> void forEachOwnObject(ObjectCollector& collector, SubRef sub, Fn&& fn) {
    readRec(sub);
    const uint8_t kind = subRec.subKind;
    const uint32_t first = subRec.left;
    if (kind >= SUB_UNION && kind <= SUB_ALL_EXCEPT) {
        for (const SubNr nr : chain(sub.module, SubNr{first}))
            forEachOwnObject(collector, SubRef{sub.module, nr}, fn);
    } else if (kind == SUB_SINGLE_VALUE || !answersForItself(sub)) {
        for (const VNodeRef& object : collector.ofSub(sub).objects) fn(object);
    }
}

SubRef constraintOf(TNodeRef type) {
    readRec(type);
    return {type.module, SubNr{tNode.constraint > 0 ? magnitude(tNode.constraint) : 0}};
}

/// All objects that sets name, by the values of their UNIQUE fields.
UniqueIndex indexOfObjects() {
    UniqueIndex index;
    ObjectCollector collector;
    for (const auto& [set, errors] : p5State.objectSets)
        if (const SubRef sub = constraintOf(set))
            forEachOwnObject(collector, sub, [&](VNodeRef object) { index.add(object); });
    return index;
}

/// The elements of a set, in order.
std::vector<SubNr> elementsOf(SubRef sub) {
    readRec(sub);
    if (subRec.subKind != SUB_UNION) return {sub.nr};
    std::vector<SubNr> elements;
    for (const SubNr nr : chain(sub.module, SubNr{subRec.left})) elements.push_back(nr);
    return elements;
}

/// What is told of one module; more would not be listed.
constexpr uint32_t mostFindings = 500;

/// Compares the objects of the sets, those that agree with none aside.
class SetComparison {
  public:
    explicit SetComparison(const UniqueIndex& index, const FlatSet<uint64_t>& agreeing)
        : index_(index), collector_(&agreeing) {}

    void compare(TNodeRef set, ModuleRec* errors) {
        const SubRef sub = constraintOf(set);
        uint32_t& findings = findings_[errors];
        if (!sub || findings >= mostFindings) return;
        FlatMap<uint32_t, size_t> seen; // value -> element that brought it
        FlatSet<uint64_t> known;
        const std::vector<SubNr> elements = elementsOf(sub);
        for (size_t place = 0; place < elements.size(); ++place) {
            const SubRef element{sub.module, elements[place]};
            const bool compareOwn = !answersForItself(element);
            const ObjectList list = collector_.ofSub(element);
            readRec(element);
            const uint32_t line = subRec.line;
            for (const VNodeRef& object : list.objects) {
                if (!known.insert(keyOf(object)).second) continue;
                for (const UniqueIndex::Numbered& own : index_.valuesOf(object)) {
                    const auto [first, isNew] = seen.try_emplace(own.number, place);
                    if (isNew || (!compareOwn && first->second == place)) continue;
                    report(errors, line, own.value);
                    ++findings;
                }
            }
        }
    }

  private:
    static void report(ModuleRec* errors, uint32_t line, const UniqueValue& own) {
        const std::string text = textOf(own.value);
        recordError(errors, ERR_SEMANTIC, Msg::NonDistinctUnique, line,
                    concat("field '", own.field, text.empty() ? "'" : "': ", text));
    }

    const UniqueIndex& index_;
    ObjectCollector collector_;
    std::unordered_map<ModuleRec*, uint32_t> findings_;
};

} // namespace

void noteObjectSet(ModuleRec* errors) {
    const TNodeRef set = currentRec<KIND_TNODE>();
    if (run.anyNewNotation && p5State.objectSetsNoted.insert(keyOf(set)).second)
        p5State.objectSets.emplace_back(set, errors);
}

void checkUniqueFields() {
    const UniqueIndex index = indexOfObjects();
    const FlatSet<uint64_t> agreeing = index.agreeing();
    if (!agreeing.empty()) {
        SetComparison comparison(index, agreeing);
        for (const auto& [set, errors] : p5State.objectSets)
            if (newNotation(set.module)) comparison.compare(set, errors);
    }
    p5State.objectSets.clear();
}

} // namespace orvo
