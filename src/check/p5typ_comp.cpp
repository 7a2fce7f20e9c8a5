// Component lists: what is optional, extension markers, and the flat list of entries on which
// identifiers and tags are compared.
//
// COMPONENTS OF brings in the root of the type it names; extension addition groups stand in place.
// What such a type brings in is summed up once per type, and so are the tags of an untagged CHOICE,
// so that types that name one another level by level cost one walk each; levels that only pass on
// what they include are passed over. A list longer than fieldSize can count is cut.

#include <algorithm>
#include <bit>
#include <vector>

#include "check/check_cache.h"
#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/flat.h"
#include "util/stack.h"

namespace orvo {

namespace {

constexpr size_t maxEntries = 32767; // the largest fieldSize

void needStack() {
    if (stackIsLow()) fatalError(Fatal::NoSpace, "Types are nested too deeply.");
}

bool isCompOf() {
    return magnitude(tNode.compStatus) == TCS_COMPOF;
}

/// What is counted over the entries of a structure.
struct StruCounts {
    bool optional = false;
    bool mandatory = false;
    uint32_t markers = 0;
};

/// Counts the current component.
void checkOptCompsAndExtMarks(StruCounts& counts) {
    if (tNode.typeCode == TYP_EXTENSION_MARKER) {
        ++counts.markers;
        return;
    }
    if (isCompOf()) {
        const KeepRec<KIND_TNODE> keep;
        const IncludedList sum = includedList();
        counts.optional |= sum.optional;
        counts.mandatory |= sum.mandatory;
        return;
    }
    counts.optional |= magnitude(tNode.compStatus) == TCS_OPTIONAL;
    counts.mandatory |= tNode.compStatus == TCS_MANDATORY;
}

/// A class is no type of a component; a field of a class is no open class field type of a value in
/// older notation.
bool checkValidComponentType(ModuleRec* module, bool inClass) {
    if (inClass) {
        if (newNotation(typeModule())) return true;
        const bool isFixedType =
            (isValFieldTNode() || isValSetFieldTNode()) && !isVariabTypeFieldTNode();
        if (!isFixedType || !isOpenObjClassFieldTypeTNode()) return true;
        recordTNodeError(module, ERR_SEMANTIC, Msg::InvalidClassFieldType, tNodeName());
        return false;
    }
    uint8_t code = 0;
    {
        const KeepRec<KIND_TNODE> keep;
        skipTypes(false);
        code = tNode.typeCode;
    }
    if (!isClassCode(code)) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::ObjectClassNotAllowed);
    return false;
}

// ---- the flat list of entries -------------------------------------------------------------------

/// Builds the flat list of a structure.
struct EntryList {
    ModuleRec* errors = nullptr;
    TNodeRef structure;
    uint8_t kind = TYP_NONE;
    uint32_t line = 0; // of the structure
    bool automatic = false;
    bool inAdditions = false;
    Extension extension;
    bool tooLong = false;
    bool ok = true;
    OpenLists open; // the structure's own list and those that are being expanded in it
    std::vector<CompEntry> entries;
};

/// Calls fn(isAddition) for each component of the current structure, which is preserved.
template <typename Fn> void forEachInParts(Fn&& fn) {
    const KeepRec<KIND_TNODE> keep;
    RootOfList root(typeModule());
    forEachComponent(typeModule(), TNodeNr{tNode.ref}, [&] {
        if (tNode.typeCode == TYP_EXTENSION_MARKER)
            root.passMarker();
        else
            fn(!root.isRoot());
        return true;
    });
}

bool isTagged() {
    return !isCompOf() && tNode.tags != 0;
}

/// Some component of the current structure has a tag, so that none gets one automatically. Since
/// X.680 (07/2002) 24.9 the root decides it, if it has components.
bool isTaggedComponents() {
    bool taggedRoot = false;
    bool taggedAddition = false;
    bool emptyRoot = true;
    forEachInParts([&](bool isAddition) {
        (isAddition ? taggedAddition : taggedRoot) |= isTagged();
        emptyRoot &= isAddition;
    });
    return taggedRoot || (taggedAddition && (emptyRoot || !newNotation(typeModule())));
}

bool isAutomatic() {
    return !is(tNode.typeCode, TypeClass::List) && tNode.typeCode != TYP_CLASS &&
           typeModule()->automaticTags && !isTaggedComponents();
}

/// Additions to the current structure, whose tags are automatic, have none (X.680 (02/2021) 25.9).
bool untaggedAdditions(ModuleRec* module) {
    bool ok = true;
    forEachInParts([&](bool isAddition) {
        if (!isAddition || !isTagged()) return;
        if (isLenient(module)) {
            recordOnce(module, Msg::TaggedAddition, tNode.line, tNodeName());
        } else {
            recordTNodeError(module, ERR_SEMANTIC, Msg::TaggedAddition, tNodeName());
            ok = false;
        }
    });
    return ok;
}

const AlternativeTags* knownTags(TNodeRef choice) {
    const auto& notes = checkCacheOf(choice.module).types.alternativeTags;
    const auto note = notes.find(choice.nr.nr);
    return note == notes.end() ? nullptr : &note->second;
}

/// Collects the tags of an untagged CHOICE, each once.
class AlternativeCollector {
  public:
    /// Adds the alternatives of the current CHOICE, unless it was looked into.
    void addChoice() {
        needStack();
        const TNodeRef choice = currentRec<KIND_TNODE>();
        if (!root_) root_ = choice;
        if (!choices_.insert(keyOf(choice)).second) {
            result_.endless |= choice == root_;
            return;
        }
        const AlternativeTags* const known = knownTags(choice);
        if (known != nullptr && !known->endless) {
            for (const SeenTag& tag : known->tags) addTag(tag);
            return;
        }
        const bool automatic = isAutomatic();
        int32_t nextAutomatic = 0;
        forEachComponent(choice.module, TNodeNr{tNode.ref}, [&] {
            if (tNode.typeCode == TYP_EXTENSION_MARKER) {
                addTag(unknownAddition);
                return true;
            }
            addAlternative(automatic ? SeenTag{TAG_CONTEXT, nextAutomatic++} : getNextTag());
            return true;
        });
    }
    [[nodiscard]] bool lookedInto(TNodeRef choice) const {
        return choices_.contains(keyOf(choice));
    }
    AlternativeTags take() { return std::move(result_); }

  private:
    void addAlternative(const SeenTag& tag) {
        if (tag.tagNr >= 0) return addTag(tag);
        skipTypes(true);
        if (tNode.typeCode == TYP_CHOICE) addChoice();
    }
    void addTag(const SeenTag& tag) {
        if (tags_.insert(keyOf(tag)).second) result_.tags.push_back(tag);
    }

    AlternativeTags result_;
    TNodeRef root_;
    FlatSet<uint64_t> choices_;
    FlatSet<uint64_t> tags_;
};

/// The tags of the current untagged CHOICE.
const AlternativeTags& tagsOfChoice() {
    const TNodeRef choice = currentRec<KIND_TNODE>();
    if (const AlternativeTags* const known = knownTags(choice)) return *known;
    AlternativeCollector collector;
    collector.addChoice();
    readRec(choice);
    return checkCacheOf(choice.module).types.alternativeTags[choice.nr.nr] = collector.take();
}

/// The current untagged CHOICE has untagged alternatives that lead to the structure, one of them
/// having no end either.
bool leadsBackTo(TNodeRef structure) {
    if (!tagsOfChoice().endless) return false;
    AlternativeCollector collector;
    collector.addChoice();
    return collector.lookedInto(structure);
}

/// The tag of the current component, and those of the alternatives of an untagged CHOICE. The
/// alternatives of a CHOICE that leads to the structure itself would be without end.
void setEntryTag(EntryList& list, CompEntry& entry) {
    if (list.kind == TYP_CLASS) return;
    if (list.automatic) return; // numberAutomatic
    entry.tag = getNextTag();
    if (entry.tag.tagNr != typeArr[TYP_CHOICE].tag) return;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    if (tNode.typeCode != TYP_CHOICE) return;
    const AlternativeTags& alternatives = tagsOfChoice();
    if (!leadsBackTo(list.structure)) {
        entry.alternatives = &alternatives;
        return;
    }
    list.ok = false;
    recordError(list.errors, ERR_SEMANTIC, Msg::IndeterminateTag, list.line, entry.name);
}

void addEntry(EntryList& list, TNodeRef bringer) {
    CompEntry entry;
    entry.record = bringer ? bringer : currentRec<KIND_TNODE>();
    entry.name = tNodeName();
    entry.compStatus = tNode.compStatus;
    entry.isAddition = list.inAdditions;
    setEntryTag(list, entry);
    list.entries.push_back(entry);
}

/// Appends the components from `first` on; `bringer` is the COMPONENTS OF entry that brings them
/// in. An inclusion that leads back into what is being built brings nothing.
void addEntries(EntryList& list, TNodeRef first, TNodeRef bringer) {
    needStack();
    if (!list.open.insert({first.module, first.nr.nr}).second) return;
    RootOfList root(first.module);
    forEachComponent(first.module, first.nr, [&] {
        if (tNode.typeCode == TYP_EXTENSION_MARKER) {
            root.passMarker();
            if (!bringer) list.extension.passMarker(list.entries.size());
            return true;
        }
        if (bringer && !root.isRoot()) return true;
        if (!bringer) list.inAdditions = !root.isRoot();
        if (isCompOf()) {
            const TNodeRef entry = bringer ? bringer : currentRec<KIND_TNODE>();
            const IncludedList sum = includedList(list.open);
            if (sum.places != 0) addEntries(list, sum.base, entry);
            return !list.tooLong;
        }
        list.tooLong = list.entries.size() == maxEntries;
        if (!list.tooLong) addEntry(list, bringer);
        return !list.tooLong;
    });
    list.open.erase({first.module, first.nr.nr});
}

/// Automatic tags: the components of the root are numbered first, then the additions (X.680
/// (02/2021) 25.8).
void numberAutomatic(EntryList& list) {
    int32_t number = 0;
    for (const bool additions : {false, true})
        for (CompEntry& entry : list.entries)
            if (entry.isAddition == additions) entry.tag = {TAG_CONTEXT, number++};
}

/// The flat list of the current structure.
EntryList dynaListForComps(ModuleRec* errors) {
    EntryList list;
    list.errors = errors;
    list.structure = currentRec<KIND_TNODE>();
    list.kind = tNode.typeCode;
    list.line = tNode.line;
    list.automatic = isAutomatic();
    const KeepRec<KIND_TNODE> keep;
    addEntries(list, {list.structure.module, TNodeNr{tNode.ref}}, {});
    list.extension.finish(list.entries.size());
    if (list.automatic) numberAutomatic(list);
    return list;
}

/// Compares identifiers on the characters that count.
class IdComparison {
  public:
    IdComparison(const ModuleRec* module, const std::vector<CompEntry>& entries)
        : nameLen_(module->options.nameLen) {
        const auto isCut = [&](const CompEntry& entry) { return entry.name.size() > nameLen_; };
        cut_ = std::ranges::any_of(entries, isCut);
        if (!cut_) texts_.reserve(entries.size());
    }
    bool distinctCompId(ModuleRec* module, const CompEntry& entry) {
        if (entry.name.empty()) return true;
        // Equal names share their text, unless a part of one counts.
        const bool isNew =
            cut_ ? names_.insert(entry.name.substr(0, nameLen_)).second
                 : texts_.insert(std::bit_cast<uintptr_t>(entry.name.data()) / 8).second;
        if (isNew) return true;
        const KeepRec<KIND_TNODE> keep;
        readRec(entry.record);
        recordTNodeError(module, ERR_SEMANTIC, Msg::NonDistinctIdentifier, entry.name);
        return false;
    }

  private:
    size_t nameLen_;
    bool cut_ = false; // some name is longer than what counts
    FlatSet<std::string_view> names_;
    FlatSet<uintptr_t> texts_;
};

/// Identifiers and tags, or the field specifications of a class; gives the number of entries.
bool checkStruComps(ModuleRec* module, size_t& count) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const EntryList list = dynaListForComps(module);
    bool ok = list.ok;
    if (list.automatic) ok &= untaggedAdditions(module);
    uint16_t flags = list.automatic ? CF_AUTOMATIC_TAGS : 0;
    IdComparison ids(module, list.entries);
    TagComparison tags(list.kind, newNotation(self.module));
    for (const CompEntry& entry : list.entries) {
        const auto place = static_cast<size_t>(&entry - list.entries.data());
        if (list.kind != TYP_CLASS) ok &= tags.passMarkers(module, list.extension, place);
        ok &= ids.distinctCompId(module, entry);
        if (list.kind == TYP_CLASS) {
            readRec(entry.record);
            ok &= checkFieldSpec(module);
            continue;
        }
        readRec(self);
        ok &= tags.distinctCompTag(module, entry, &entry == &list.entries.back());
        if (isIndeterminate(entry.tag.tagNr)) flags |= CF_INDETERMINATE_TAG;
    }
    readRec(self);
    if (list.kind != TYP_CLASS) ok &= tags.passMarkers(module, list.extension, list.entries.size());
    if (list.tooLong) {
        recordError(module, ERR_SEMANTIC, Msg::Unimplemented, list.line,
                    "more than 32767 components");
        ok = false;
    }
    readRec(self);
    tNode.checkFlags |= flags;
    writeRec(self);
    count = list.entries.size();
    return ok;
}

/// Markers that a list of the kind may have up to the current component: in today's notation one
/// may end the additions, which in a CHOICE end the list (X.680 (02/2021) 25.1 and 29.1).
uint32_t allowedMarkers(uint8_t kind) {
    const bool mayEnd = kind != TYP_CHOICE || tNode.next == 0;
    return newNotation(typeModule()) && mayEnd ? 2 : 1;
}

/// Checks the components one by one and counts what they are.
bool checkComponents(ModuleRec* module, StruCounts& counts) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const uint8_t kind = tNode.typeCode;
    const bool isClass = kind == TYP_CLASS;
    const TNodeNr first{tNode.ref};
    bool ok = true;
    forEachComponent(self.module, first, [&] {
        checkOptCompsAndExtMarks(counts);
        if (counts.markers > allowedMarkers(kind)) {
            recordTNodeError(module, ERR_SEMANTIC, Msg::DuplicateExtensionMarker);
            counts.markers = allowedMarkers(kind);
            ok = false;
        }
        ok &= checkTNode();
        return true;
    });
    forEachComponent(self.module, first, [&] {
        ok &= checkValidComponentType(module, isClass);
        return true;
    });
    readRec(self);
    return ok;
}

} // namespace

bool checkStruType(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    StruCounts counts;
    bool ok = checkComponents(module, counts);
    if (counts.optional || counts.markers != 0) tNode.checkFlags |= CF_OPTIONALS;
    if (counts.mandatory) tNode.checkFlags |= CF_MANDATORY;
    writeRec(self);
    size_t count = 0;
    ok &= checkStruComps(module, count);
    readRec(self);
    if (counts.markers != 0) {
        tNode.checkFlags |= CF_EXTENSIBLE;
        count = std::min(count + 1, maxEntries);
    }
    if (is(tNode.typeCode, TypeClass::List)) p5State.lists.push_back(self);
    tNode.fieldSize = static_cast<int16_t>(count);
    writeRec(self);
    readRec(self);
    return ok;
}

} // namespace orvo
