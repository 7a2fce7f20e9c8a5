// Look-ups by name and by place. A name is compared as text: lists that COMPONENTS OF brings in lie
// in other modules, whose string numbers differ. Lists of up to shortChain entries are walked;
// longer ones and those with COMPONENTS OF get an index, so that n look-ups in a list of n cost n
// steps. An index is made from solved records only, which do not change any more.

#include "tree/orvoutil_find.h"

#include <algorithm>
#include <limits>

#include "tree/orvoutil_find_cache.h"

namespace orvo {

namespace {

constexpr int shortChain = 32;

bool nameIs(ModuleRec* module, int32_t stored, std::string_view name) {
    return stored != 0 && getStri(module, stored) == name;
}

template <RecKind K> auto& buffer() {
    if constexpr (K == KIND_TNODE)
        return tNode;
    else
        return vNode;
}

/// Takes the entries that were appended since the last time into the index.
template <RecKind K> void extendIndex(ModuleRec* module, ChainIndex& index) {
    for (const RecNr<K> nr : chain(module, RecNr<K>{index.last})) {
        const auto& rec = buffer<K>();
        if (rec.next == 0) return;
        if (rec.name != 0) index.byName.try_emplace(getStri(module, rec.name), nr.nr);
        index.last = rec.next;
    }
}

template <RecKind K> bool findInChain(ModuleRec* module, RecNr<K> first, std::string_view name) {
    RecNr<K> nr = first, last;
    for (int walked = 0; nr && walked < shortChain; ++walked) {
        const auto* rec = peekRec(module, nr);
        if (rec == nullptr || nameIs(module, rec->name, name)) {
            readRec(module, nr);
            return true;
        }
        last = nr;
        nr = {rec->next};
    }
    if (!nr) {
        if (last) readRec(module, last);
        return false;
    }
    ChainIndex& index = chainsOf<K>(module)[first.nr];
    if (index.last == 0) index.last = first.nr;
    extendIndex<K>(module, index);
    const auto found = index.byName.find(name);
    readRec(module, RecNr<K>{found != index.byName.end() ? found->second : index.last});
    return nameIs(module, buffer<K>().name, name);
}

// ---- flattened component lists ------------------------------------------------------------------

bool isMarker() {
    return tNode.typeCode == TYP_EXTENSION_MARKER;
}
bool isGroup(const TNode& node = tNode) {
    return node.typeCode == TYP_EXTADDGRP;
}
bool isCompOf(const TNode& node = tNode) {
    return magnitude(node.compStatus) == TCS_COMPOF;
}

uint32_t addPlaces(uint32_t a, uint32_t b) {
    return a > std::numeric_limits<uint32_t>::max() - b ? std::numeric_limits<uint32_t>::max()
                                                        : a + b;
}

/// The list of the structure that the current COMPONENTS OF entry includes; none when it includes
/// nothing. The entry is read away.
TNodeRef readIncludedFirst() {
    skipTypes(false);
    if ((tNode.typeCode != TYP_SEQ && tNode.typeCode != TYP_SET) || tNode.ref == 0) return {};
    return {typeModule(), TNodeNr{tNode.ref}};
}

NodeRef nodeOf(TNodeRef list) {
    return {list.module, list.nr.nr};
}

const IncludedList* notedInclusion(TNodeRef first) {
    return findCacheOf(first.module).included.find(first.nr.nr);
}

// ---- what lists bring in ------------------------------------------------------------------------

/// Sums up a list and those that it includes, each once, with a stack of its own: levels of
/// COMPONENTS OF may be as many as a module has types.
class InclusionSum {
  public:
    explicit InclusionSum(const OpenLists& open) : open_(open) {}
    IncludedList of(TNodeRef first) {
        enter(first, false);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (!level.next || level.left-- == 0)
                leave();
            else
                take(level);
        }
        return result_.sum;
    }

  private:
    struct Result {
        IncludedList sum;
        uint32_t sources = 0; // components of its own, and lists with components that it includes
        bool isFinal = true;  // whoever asks, and whenever
        bool isOpen = true;
    };
    struct Level {
        TNodeRef list;
        TNodeNr next;
        bool isGroup;  // an extension addition group, in place
        uint32_t left; // entries it may still have: a broken chain must not be endless
        RootOfList root;
        Result result;
    };

    void enter(TNodeRef list, bool isGroup) {
        levels_.push_back({list,
                           list.nr,
                           isGroup,
                           list.module->nextRecNr[KIND_TNODE],
                           RootOfList(list.module),
                           {}});
        if (!isGroup) known_[nodeOf(list)] = {};
    }
    void take(Level& level) {
        const TNodeRef entry{level.list.module, level.next};
        readRec(entry);
        level.next = {tNode.next};
        if (isMarker()) {
            level.root.passMarker();
            level.result.sum.hasMarker = true;
        } else if (!level.root.isRoot()) {
            return;
        } else if (isGroup()) {
            enter({entry.module, TNodeNr{tNode.ref}}, true);
        } else if (isCompOf()) {
            if (tNode.checkState == CHECK_NEW) level.result.isFinal = false;
            if (const TNodeRef first = readIncludedFirst()) include(first);
        } else {
            IncludedList& sum = level.result.sum;
            sum.places = addPlaces(sum.places, 1);
            sum.optional |= magnitude(tNode.compStatus) == TCS_OPTIONAL;
            sum.mandatory |= tNode.compStatus == TCS_MANDATORY;
            sum.base = {};
            ++level.result.sources;
        }
    }
    void include(TNodeRef first) {
        if (const IncludedList* noted = notedInclusion(first)) return add({*noted, 1, true, false});
        const auto known = known_.find(nodeOf(first));
        if (known == known_.end() && !open_.contains(nodeOf(first))) return enter(first, false);
        if (known == known_.end() || known->second.isOpen)
            levels_.back().result.isFinal = false;
        else
            add(known->second);
    }
    /// What the level that is left, or a list known before, adds to the level that is the last now.
    void add(const Result& part) {
        Result& result = levels_.back().result;
        result.isFinal = result.isFinal && part.isFinal;
        if (part.sum.places == 0) return;
        result.sum.places = addPlaces(result.sum.places, part.sum.places);
        result.sum.optional |= part.sum.optional;
        result.sum.mandatory |= part.sum.mandatory;
        result.sum.base = result.sources == 0 ? part.sum.base : TNodeRef{};
        result.sources += part.sources;
    }
    void leave() {
        const Level level = levels_.back();
        levels_.pop_back();
        result_ = level.result;
        if (!level.isGroup) {
            if (result_.sources != 1 || !result_.sum.base) result_.sum.base = level.list;
            result_.sources = 1;
            result_.isOpen = false;
            known_[nodeOf(level.list)] = result_;
            if (result_.isFinal)
                findCacheOf(level.list.module).included.at(level.list.nr.nr) = result_.sum;
        }
        if (!levels_.empty()) add(result_);
    }

    const OpenLists& open_;
    std::vector<Level> levels_;
    std::unordered_map<NodeRef, Result, NodeRefHash> known_; // lists that were entered
    Result result_;
};

IncludedList sumUp(TNodeRef first, const OpenLists& open) {
    if (const IncludedList* noted = notedInclusion(first)) return *noted;
    return InclusionSum(open).of(first);
}

// ---- lists with what they include in place ------------------------------------------------------

/// A list on the way from the outermost to the one being walked.
struct OpenList {
    ModuleRec* module;
    TNodeNr first;
    TNodeNr next;
    bool included;     // by COMPONENTS OF: without its additions
    TNodeNr groupNode; // when it is the list of an extension addition group
    uint32_t left;     // entries it may still have: a broken chain must not be endless
    uint32_t before;
    RootOfList root;
};

constexpr uint32_t stillOpen = std::numeric_limits<uint32_t>::max();

struct Flattening {
    FlatIndex index;
    std::vector<OpenList> open;
    std::unordered_map<NodeRef, uint32_t, NodeRefHash> places; // of the lists that were closed
    bool settled = true; // nothing on the way can still change
};

void openList(Flattening& flat, TNodeRef first, bool included, TNodeNr groupNode) {
    flat.open.push_back({first.module, first.nr, first.nr, included, groupNode,
                         first.module->nextRecNr[KIND_TNODE], flat.index.count,
                         RootOfList(first.module)});
    if (!groupNode) flat.places[nodeOf(first)] = stillOpen;
}

/// The current COMPONENTS OF entry: opens the list that it includes, past those that only pass on
/// what they include. A list that was included before brings no new names, its places count; one
/// that is still open is a cycle, and brings nothing.
void includeList(Flattening& flat) {
    if (tNode.checkState == CHECK_NEW) flat.settled = false;
    TNodeRef first = readIncludedFirst();
    if (!first) return;
    if (const IncludedList* noted = notedInclusion(first)) {
        if (noted->places == 0) return;
        first = noted->base;
    }
    const auto known = flat.places.find(nodeOf(first));
    if (known == flat.places.end()) return openList(flat, first, true, {});
    if (known->second == stillOpen) return;
    flat.index.entries.push_back({addPlaces(flat.index.count, 1), first, true});
    flat.index.count = addPlaces(flat.index.count, known->second);
}

void addComponent(Flattening& flat, TNodeRef component) {
    flat.index.count = addPlaces(flat.index.count, 1);
    FlatEntry entry{flat.index.count, component, false};
    entry.compStatus = static_cast<int32_t>(magnitude(tNode.compStatus));
    entry.group = flat.open.back().groupNode;
    if (tNode.name != 0) {
        entry.name = getStri(component.module, tNode.name);
        flat.index.byName.try_emplace(entry.name, flat.index.entries.size());
    }
    flat.index.entries.push_back(entry);
}

void closeList(Flattening& flat) {
    const OpenList& list = flat.open.back();
    if (!list.groupNode) flat.places[{list.module, list.first.nr}] = flat.index.count - list.before;
    flat.open.pop_back();
}

Flattening flatten(TNodeRef first, bool included) {
    Flattening flat;
    openList(flat, first, included, {});
    while (!flat.open.empty()) {
        OpenList& list = flat.open.back();
        if (!list.next || list.left-- == 0) {
            closeList(flat);
            continue;
        }
        const TNodeRef entry{list.module, list.next};
        readRec(entry);
        list.next = {tNode.next};
        if (isMarker() && list.included)
            list.root.passMarker();
        else if (!list.root.isRoot())
            continue;
        else if (isCompOf())
            includeList(flat);
        else if (isGroup())
            openList(flat, {entry.module, TNodeNr{tNode.ref}}, list.included, entry.nr);
        else
            addComponent(flat, entry);
    }
    return flat;
}

/// The index of a list: the kept one, or one made into `made`. A list that only passes on what it
/// includes has that one's index.
FlatIndex& flatIndexOf(TNodeRef first, bool included, Flattening& made) {
    auto& lists = findCacheOf(first.module).flatLists;
    const NoteKey key{first.nr.nr, included};
    if (const auto kept = lists.find(key); kept != lists.end()) return kept->second;
    const IncludedList sum = sumUp(first, {});
    const bool isSettled = notedInclusion(first) != nullptr;
    if (isSettled && sum.base != first && (included || !sum.hasMarker))
        return flatIndexOf(sum.base, true, made);
    made = flatten(first, included);
    if (!made.settled) return made.index;
    return lists.emplace(key, std::move(made.index)).first->second;
}

/// Place of a component record; 0 when the list does not have it.
uint32_t placeOf(FlatIndex& index, TNodeRef component) {
    if (index.byRecord.empty()) {
        for (const FlatEntry& entry : index.entries) {
            if (entry.repeated) continue;
            const NodeRef record{entry.component.module, entry.component.nr.nr};
            index.byRecord.try_emplace(record, entry.place);
        }
    }
    const auto found = index.byRecord.find({component.module, component.nr.nr});
    return found != index.byRecord.end() ? found->second : 0;
}

/// The entry at a place, or the list that covers it; none beyond the end.
const FlatEntry* entryAt(const FlatIndex& index, uint32_t place) {
    if (place == 0 || place > index.count) return nullptr;
    const auto after = std::ranges::upper_bound(index.entries, place, {}, &FlatEntry::place);
    return after == index.entries.begin() ? nullptr : &*std::prev(after);
}

} // namespace

FindCache& findCacheOf(ModuleRec* module) {
    if (!module->findCache) module->findCache = makeOwned<FindCache>();
    return *module->findCache;
}

IncludedList includedList(const OpenLists& open) {
    const TNodeRef first = readIncludedFirst();
    return first ? sumUp(first, open) : IncludedList{};
}

void forgetTakenBack(ModuleRec* module) {
    if (!module->findCache) return;
    FindCache& cache = *module->findCache;
    const auto forgetFrom = [](auto& notes, const auto& nr) {
        notes.erase(notes.lower_bound(nr), notes.end());
    };
    cache.recentTypes = {};
    cache.recentValues = {};
    forgetFrom(cache.typeJumps, NoteKey{module->nextRecNr[KIND_TNODE], false});
    forgetFrom(cache.lastNames, module->nextRecNr[KIND_SNODE]);
    forgetFrom(cache.typeChains, module->nextRecNr[KIND_TNODE]);
    cache.included.cut(module->nextRecNr[KIND_TNODE]);
    forgetFrom(cache.flatLists, NoteKey{module->nextRecNr[KIND_TNODE], false});
    forgetFrom(cache.valueJumps, NoteKey{module->nextRecNr[KIND_VNODE], false});
    forgetFrom(cache.valueChains, module->nextRecNr[KIND_VNODE]);
    forgetFrom(cache.govChains, module->nextRecNr[KIND_VNODE]);
    // A chain may have lost its end only; its index is made again when it is needed.
    std::erase_if(cache.typeChains, [&](const auto& chain) {
        return chain.second.last >= module->nextRecNr[KIND_TNODE];
    });
    std::erase_if(cache.valueChains, [&](const auto& chain) {
        return chain.second.last >= module->nextRecNr[KIND_VNODE];
    });
    std::erase_if(cache.govChains, [&](const auto& chain) {
        return chain.second.last >= module->nextRecNr[KIND_VNODE];
    });
}

bool findValueCompById(ModuleRec* module, VNodeNr first, std::string_view name) {
    return findInChain(module, first, name);
}
bool findValueById(ModuleRec* module, std::string_view name) {
    return findInChain(module, module->firstValueHead, name);
}
bool findTypeById(ModuleRec* module, std::string_view name) {
    return findInChain(module, module->firstTypeHead, name);
}

bool findTypeCompById(ModuleRec* module, TNodeNr first, std::string_view name, uint32_t* position) {
    TNodeNr nr = first, last = first;
    for (uint32_t place = 1; nr && place <= shortChain; ++place) {
        const TNode* node = peekRec(module, nr);
        if (node != nullptr && (isCompOf(*node) || isGroup(*node))) break;
        if (node == nullptr || nameIs(module, node->name, name)) {
            readRec(module, nr);
            if (position != nullptr) *position = place;
            return true;
        }
        last = nr;
        nr = {node->next};
    }
    if (last) readRec(module, nr ? nr : last);
    if (position != nullptr) *position = 0;
    if (!nr) return false;
    Flattening made;
    const FlatIndex& index = flatIndexOf({module, first}, false, made);
    const auto found = index.byName.find(name);
    if (found == index.byName.end()) return false;
    const FlatEntry& entry = index.entries[found->second];
    if (position != nullptr) *position = entry.place;
    readRec(entry.component);
    return true;
}

bool findByInd(ModuleRec* module, TNodeNr first, uint32_t& position) {
    TNodeRef list{module, first};
    for (bool included = false; list; included = true) {
        Flattening made;
        const FlatIndex& index = flatIndexOf(list, included, made);
        const FlatEntry* entry = entryAt(index, position);
        if (entry == nullptr) {
            position -= std::min(position, index.count);
            return false;
        }
        if (!entry->repeated) {
            readRec(entry->component);
            position = 0;
            return true;
        }
        position -= entry->place - 1;
        list = entry->component;
    }
    return false;
}

bool findTypeCompByInd(ModuleRec* module, TNodeNr first, uint32_t position) {
    return findByInd(module, first, position);
}

const std::vector<FlatEntry>& flatComponents(ModuleRec* module, TNodeNr first) {
    Flattening made;
    FlatIndex& index = flatIndexOf({module, first}, false, made);
    if (&index != &made.index) return index.entries;
    FlatIndex& kept = findCacheOf(module).unsettledList;
    kept = std::move(made.index);
    return kept.entries;
}

bool findTypeCompByNr(ModuleRec* module, TNodeNr first, TNodeRef component, uint32_t& position) {
    TNodeNr nr = first;
    for (position = 0; nr && position < shortChain;) {
        readRec(module, nr);
        if (isCompOf() || isGroup()) break;
        ++position;
        if (component == TNodeRef{module, nr}) return true;
        nr = {tNode.next};
    }
    if (!nr) return false;
    Flattening made;
    FlatIndex& index = flatIndexOf({module, first}, false, made);
    const uint32_t place = placeOf(index, component);
    position = place != 0 ? place : index.count;
    if (place != 0) readRec(component);
    return place != 0;
}

namespace {

bool isGovernedBy(ModuleRec* module, TNodeRef governor) {
    return vNode.govType == governor.nr.nr &&
           refModule(module, static_cast<int32_t>(vNode.govTypeMod)) == governor.module;
}

/// Takes the values that were appended since the last time into the index, the last one excepted.
void extendGovernors(ModuleRec* module, GovIndex& index) {
    for (const VNodeNr nr : chain(module, VNodeNr{index.last})) {
        if (vNode.next == 0) return;
        ModuleRec* typeModule = refModule(module, static_cast<int32_t>(vNode.govTypeMod));
        index.byType.try_emplace({typeModule, vNode.govType}, nr.nr);
        index.last = vNode.next;
    }
}

} // namespace

bool findValueCompByGov(ModuleRec* module, VNodeNr first, TNodeRef governor) {
    VNodeNr nr = first;
    for (int walked = 0; nr && walked < shortChain; ++walked) {
        readRec(module, nr);
        if (isGovernedBy(module, governor)) return true;
        nr = {vNode.next};
    }
    if (!nr) return false;
    GovIndex& index = findCacheOf(module).govChains[first.nr];
    if (index.last == 0) index.last = first.nr;
    extendGovernors(module, index);
    const auto found = index.byType.find({governor.module, governor.nr.nr});
    readRec(module, VNodeNr{found != index.byType.end() ? found->second : index.last});
    return isGovernedBy(module, governor);
}

namespace {

/// The type that an object gives to a value field whose type another field names: the object's
/// setting of that field, else the field's default. The naming field's type record is current.
bool readTypeOfVariableField(ModuleRec* object, VNodeNr firstSetting) {
    if (!skipFieldList()) return false;
    ModuleRec* classModule = typeModule();
    const VNodeNr defaultType{tNode.defaultVal};
    ModuleRec* typeModule = object;
    if (tNode.name == 0 ||
        !findValueCompById(object, firstSetting, getStri(classModule, tNode.name))) {
        if (!defaultType) return false;
        readRec(classModule, defaultType);
        typeModule = classModule;
    }
    if (vNode.refMod != REF_FORMAL || vNode.ref == 0) return false;
    readRec(typeModule, TNodeNr{vNode.ref});
    return true;
}

} // namespace

bool readGovTNodeForFieldVNode(ModuleRec* object, VNodeNr firstSetting) {
    const KeepRec<KIND_VNODE> keepValue;
    ModuleRec* module = refModule(valueModule(), static_cast<int32_t>(vNode.govTypeMod));
    if (module == nullptr || vNode.govType == 0) return false;
    readRec(module, TNodeNr{vNode.govType});
    if (isVariabTypeFieldTNode() && !readTypeOfVariableField(object, firstSetting)) return false;
    skipTypes(true);
    return true;
}

} // namespace orvo
