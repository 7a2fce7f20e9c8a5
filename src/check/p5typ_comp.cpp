// Component lists: what is optional, extension markers, and the flat list of entries on which
// identifiers and tags are compared.
//
// COMPONENTS OF brings in the components of the type it names up to that type's first extension
// marker; extension addition groups stand in place. What such a type brings in is summed up once
// per type, so that types that include one another level by level cost one walk each. A list longer
// than fieldSize can count is cut.

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"

namespace orvo {

namespace {

constexpr size_t maxEntries = 32767; // the largest fieldSize

uint64_t keyOf(const TNodeRef& type) {
    return uint64_t{type.module->handle} << 32 | type.nr.nr;
}

/// What the components of a type that COMPONENTS OF names come to.
struct Included {
    bool optional = false;
    bool mandatory = false;
    size_t entries = 0; // at most maxEntries + 1
};
struct CompState {
    std::unordered_map<uint64_t, Included> included;
    std::unordered_map<uint64_t, std::vector<SeenTag>> choiceTags; // of untagged CHOICEs
    uint32_t depth = 0;
};
CompState compState;

/// Calls fn for each component from `first` on, those of extension addition groups in place of the
/// group; a result of false ends the walk. The component is the current type record.
template <typename Fn> bool forEachComponent(ModuleRec* module, uint32_t first, Fn&& fn) {
    uint32_t left = nextRec<KIND_TNODE>(module).nr;
    for (uint32_t nr = first; nr != 0 && left-- != 0;) {
        readRec(module, TNodeNr{nr});
        nr = tNode.next;
        const bool goOn =
            tNode.typeCode == TYP_EXTADDGRP ? forEachComponent(module, tNode.ref, fn) : fn();
        if (!goOn) return false;
    }
    return true;
}

/// The structure that the current COMPONENTS OF entry names becomes the current type record.
bool readIncludedType() {
    skipTypes(true);
    return tNode.typeCode == TYP_SEQ || tNode.typeCode == TYP_SET;
}

bool isCompOf() {
    return magnitude(tNode.compStatus) == TCS_COMPOF;
}

/// Sums up what the current structure brings in through COMPONENTS OF.
Included includedBy() {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const auto [known, isNew] = compState.included.try_emplace(keyOf(type));
    if (!isNew) return known->second;
    const Depth depth(compState.depth, 500);
    Included sum;
    if (depth.tooDeep()) return sum;
    forEachComponent(type.module, tNode.ref, [&] {
        if (tNode.typeCode == TYP_EXTENSION_MARKER) return false;
        if (!isCompOf()) {
            sum.optional |= magnitude(tNode.compStatus) == TCS_OPTIONAL;
            sum.mandatory |= tNode.compStatus == TCS_MANDATORY;
            sum.entries = std::min(sum.entries + 1, maxEntries + 1);
        } else if (readIncludedType()) {
            const Included nested = includedBy();
            sum.optional |= nested.optional;
            sum.mandatory |= nested.mandatory;
            sum.entries = std::min(sum.entries + nested.entries, maxEntries + 1);
        }
        return true;
    });
    compState.included[keyOf(type)] = sum;
    return sum;
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
        if (!readIncludedType()) return;
        const Included sum = includedBy();
        counts.optional |= sum.optional;
        counts.mandatory |= sum.mandatory;
        return;
    }
    counts.optional |= magnitude(tNode.compStatus) == TCS_OPTIONAL;
    counts.mandatory |= tNode.compStatus == TCS_MANDATORY;
}

/// A class is no type of a component; a field of a class is no open class field type of a value.
bool checkValidComponentType(ModuleRec* module, bool inClass) {
    if (inClass) {
        if (!isValFieldTNode() && !isValSetFieldTNode()) return true;
        if (isVariabTypeFieldTNode() || tNode.typeCode != TYP_FIELDLIST ||
            !isOpenObjClassFieldTypeTNode())
            return true;
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

// ---- the flat list of entries ------------------------------------------------------------------

/// Builds the flat list of a structure.
struct EntryList {
    ModuleRec* errors = nullptr; // null: nothing is reported
    TNodeRef structure;
    uint32_t line = 0; // of the structure
    bool automatic = false;
    int32_t nextAutomatic = 0;
    bool tooLong = false;
    bool ok = true;
    std::vector<CompEntry> entries;
};

const std::vector<SeenTag>& tagsOfChoice();

/// The tag of the current component, or of the alternatives of an untagged CHOICE, into the entry.
void setEntryTag(EntryList& list, CompEntry& entry) {
    if (list.automatic) {
        entry.tag = {TAG_CONTEXT, list.nextAutomatic++};
        return;
    }
    entry.tag = getNextTag();
    const int32_t tag = entry.tag.tagNr;
    entry.isOpen = tag == typeArr[TYP_ANY].tag || tag == typeArr[TYP_OPEN].tag ||
                   (tag == typeArr[TYP_FIELDLIST].tag && isOpenObjClassFieldTypeTNode());
    if (tag != typeArr[TYP_CHOICE].tag) return;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    if (tNode.typeCode != TYP_CHOICE) return;
    const TNodeRef choice = currentRec<KIND_TNODE>();
    if (choice == list.structure) {
        list.ok = false;
        if (list.errors != nullptr)
            recordError(list.errors, ERR_SEMANTIC, Msg::IndeterminateTag, list.line, entry.name);
        return;
    }
    if (containsNode(p5State.struTypeStack, {choice.module, choice.nr.nr})) return;
    entry.alternatives = tagsOfChoice();
}

/// Appends the components from `first` on; `bringer` is the COMPONENTS OF entry that brings them
/// in.
void addEntries(EntryList& list, ModuleRec* module, uint32_t first, TNodeRef bringer, bool inList) {
    forEachComponent(module, first, [&] {
        if (list.tooLong) return false;
        if (tNode.typeCode == TYP_EXTENSION_MARKER) return !bringer;
        if (isCompOf() && !inList) {
            const TNodeRef entry = bringer ? bringer : currentRec<KIND_TNODE>();
            if (!readIncludedType() || includedBy().entries == 0) return true;
            const TNodeRef type = currentRec<KIND_TNODE>();
            if (!pushNodeUnique(p5State.struTypeStack)) return true;
            addEntries(list, type.module, tNode.ref, entry, false);
            delFstNode(p5State.struTypeStack);
            return true;
        }
        if (list.entries.size() == maxEntries) {
            list.tooLong = true;
            return false;
        }
        CompEntry entry;
        const TNodeRef component = currentRec<KIND_TNODE>();
        entry.record = bringer ? bringer : component;
        entry.name = tNodeName();
        entry.compStatus = tNode.compStatus;
        setEntryTag(list, entry);
        list.entries.push_back(std::move(entry));
        return true;
    });
}

/// Some component of the current structure, COMPONENTS OF entries not counted, has a tag.
bool isTaggedComponents() {
    const KeepRec<KIND_TNODE> keep;
    return !forEachComponent(recState.currTPtr[KIND_TNODE], tNode.ref,
                             [] { return isCompOf() || tNode.tags == 0; });
}

/// The flat list of the current structure.
EntryList dynaListForComps(ModuleRec* errors) {
    EntryList list;
    list.errors = errors;
    list.structure = currentRec<KIND_TNODE>();
    list.line = tNode.line;
    const bool isList = tNode.typeCode == TYP_SEQOF || tNode.typeCode == TYP_SETOF;
    list.automatic = !isList && tNode.typeCode != TYP_CLASS &&
                     list.structure.module->automaticTags && !isTaggedComponents();
    const KeepRec<KIND_TNODE> keep;
    addEntries(list, list.structure.module, tNode.ref, {}, isList);
    return list;
}

/// The tags of all alternatives of the current untagged CHOICE, those of untagged CHOICEs among
/// them in place.
const std::vector<SeenTag>& tagsOfChoice() {
    const TNodeRef choice = currentRec<KIND_TNODE>();
    const auto known = compState.choiceTags.find(keyOf(choice));
    if (known != compState.choiceTags.end()) return known->second;
    std::vector<SeenTag>& result = compState.choiceTags[keyOf(choice)];
    const Depth depth(compState.depth, 500);
    if (depth.tooDeep()) return result;
    addFstNode(p5State.struTypeStack);
    const EntryList list = dynaListForComps(nullptr);
    delFstNode(p5State.struTypeStack);
    std::vector<SeenTag> tags;
    std::unordered_set<uint64_t> seen;
    const auto add = [&](const SeenTag& tag) {
        const uint64_t key =
            uint64_t{static_cast<uint32_t>(tag.tagClass)} << 32 | static_cast<uint32_t>(tag.tagNr);
        if (seen.insert(key).second) tags.push_back(tag);
    };
    for (const CompEntry& entry : list.entries) {
        if (entry.tag.tagNr >= 0) add(entry.tag);
        for (const SeenTag& tag : entry.alternatives) add(tag);
    }
    return compState.choiceTags[keyOf(choice)] = std::move(tags);
}

/// Compares identifiers on the characters that count.
class IdComparison {
  public:
    bool distinctCompId(ModuleRec* module, const CompEntry& entry, uint32_t line) {
        if (entry.name.empty()) return true;
        const std::string_view significant = entry.name.substr(0, module->options.nameLen);
        if (names_.insert(significant).second) return true;
        recordError(module, ERR_SEMANTIC, Msg::NonDistinctIdentifier, line, entry.name);
        return false;
    }

  private:
    std::unordered_set<std::string_view> names_;
};

/// Identifiers and tags, or the field specifications of a class; gives the number of entries.
bool checkStruComps(ModuleRec* module, size_t& count) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const uint8_t kind = tNode.typeCode;
    const uint32_t line = tNode.line;
    EntryList list = dynaListForComps(module);
    bool ok = list.ok;
    uint16_t flags = list.automatic ? CF_AUTOMATIC_TAGS : 0;
    IdComparison ids;
    TagComparison tags(kind);
    for (size_t at = 0; at < list.entries.size(); ++at) {
        const CompEntry& entry = list.entries[at];
        readRec(entry.record);
        ok &= ids.distinctCompId(module, entry, kind == TYP_CLASS ? tNode.line : line);
        if (kind == TYP_CLASS) {
            ok &= checkFieldSpec(module, self);
            continue;
        }
        readRec(self);
        ok &= tags.distinctCompTag(module, entry, at + 1 == list.entries.size());
        if (isIndeterminate(entry.tag.tagNr)) flags |= CF_INDETERMINATE_TAG;
    }
    if (list.tooLong) {
        recordError(module, ERR_SEMANTIC, Msg::Unimplemented, line, "more than 32767 components");
        ok = false;
    }
    readRec(self);
    tNode.checkFlags |= flags;
    writeRec(self);
    count = list.entries.size();
    return ok;
}

/// Flags of a list type that follow from its element.
uint16_t checkListElem() {
    const KeepRec<KIND_TNODE> keep;
    readRec(recState.currTPtr[KIND_TNODE], TNodeNr{tNode.ref});
    skipTypes(true);
    const bool isList = tNode.typeCode == TYP_SEQOF || tNode.typeCode == TYP_SETOF;
    const bool represented = (tNode.optFlags & (OPTF_SEG | OPTF_DYN)) != 0;
    uint16_t flags = tNode.checkFlags & (CF_LIST_OF_LISTS | CF_LIST_OF_REPR_LISTS);
    if (isList) flags |= represented ? CF_LIST_OF_REPR_LISTS : CF_LIST_OF_LISTS;
    return flags;
}

/// Checks the components one by one and counts what they are.
bool checkComponents(ModuleRec* module, StruCounts& counts) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const bool isClass = tNode.typeCode == TYP_CLASS;
    bool ok = true;
    forEachComponent(self.module, tNode.ref, [&] {
        const TNodeRef component = currentRec<KIND_TNODE>();
        checkOptCompsAndExtMarks(counts);
        if (counts.markers > 1) {
            recordTNodeError(module, ERR_SEMANTIC, Msg::DuplicateExtensionMarker);
            counts.markers = 1;
            ok = false;
        }
        ok &= checkTNode(module, tNode.typeCode == TYP_SYNONYM, false);
        readRec(component);
        ok &= checkValidComponentType(module, isClass);
        return true;
    });
    readRec(self);
    return ok;
}

} // namespace

bool checkStruType(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    addFstNode(p5State.struTypeStack);
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
    if (tNode.typeCode == TYP_SEQOF || tNode.typeCode == TYP_SETOF)
        tNode.checkFlags |= checkListElem();
    tNode.fieldSize = static_cast<int16_t>(count);
    writeRec(self);
    delFstNode(p5State.struTypeStack);
    readRec(self);
    return ok;
}

} // namespace orvo
