// Tags: their classes and numbers, the mode of the innermost one, and tags that must differ.

#include "check/p5typ_int.h"

#include <unordered_map>
#include <vector>

#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

uint64_t keyOf(const SeenTag& tag) {
    return uint64_t{static_cast<uint32_t>(tag.tagClass)} << 32 | static_cast<uint32_t>(tag.tagNr);
}

/// APPLICATION and PRIVATE tags met so far, by module; only with TAGUSAGE=.
struct UsedTags {
    std::unordered_map<const ModuleRec*, std::unordered_map<uint64_t, bool>> byModule;
};
UsedTags usedTags;

/// Tags of untagged references, which lead to them over any number of links.
struct SeenTags {
    std::unordered_map<uint64_t, SeenTag> byType;
};
SeenTags seenTags;

/// Class of a finding that TAGUSAGE= or EXPLICIT= asks for: 1 warning, 2 error.
ErrClass classOfSetting(uint8_t setting) {
    return setting == 1 ? ERR_WARNING : ERR_SEMANTIC;
}

bool checkTagClass(ModuleRec* module, const TagRec& tag, bool outermost) {
    const OptionBlock& options = module->options;
    if (tag.tagClass == TAG_UNIVERSAL && !options.allow) {
        recordTNodeError(module, ERR_SEMANTIC, Msg::TagClassShallNotBeUniversal);
        return false;
    }
    const bool onHead = outermost && magnitude(tNode.compStatus) == TCS_HEADER;
    if (tag.tagClass != TAG_CONTEXT || !onHead || options.tagUsage == 0) return true;
    recordTNodeError(module, classOfSetting(options.tagUsage), Msg::TagUsageNotAllowed);
    return options.tagUsage == 1;
}

bool checkTagNumber(ModuleRec* module, int32_t number) {
    if (number <= maxTagNr) return true;
    recordTNodeError(module, ERR_SEMANTIC, Msg::TagNumberRange);
    return false;
}

bool checkTagUniqueness(ModuleRec* module, const TagRec& tag, int32_t number) {
    if (tag.tagClass != TAG_APPLICATION && tag.tagClass != TAG_PRIVATE) return true;
    if (module->options.tagUsage == 0) return true;
    const uint64_t key = keyOf({tag.tagClass, number});
    if (usedTags.byModule[recState.currTPtr[KIND_TNODE]].try_emplace(key, true).second) return true;
    recordTagError(module, ERR_SEMANTIC, Msg::TagNumberInUse, tNode.line, tag.tagClass, number);
    return false;
}

bool reportExplicit(ModuleRec* module) {
    recordTNodeError(module, classOfSetting(module->options.explicitTags),
                     Msg::ExplicitTaggingNotAllowed);
    return module->options.explicitTags == 1;
}

/// EXPLICIT in front of a further tag.
bool checkTagExplicity(ModuleRec* module, const TagRec& tag) {
    if (tag.next == 0 || tag.tagMode != TAGMODE_EXPLICIT || module->options.explicitTags == 0)
        return true;
    return reportExplicit(module);
}

bool checkImplicitTag(ModuleRec* module) {
    const int32_t inner = p5State.nextTag.tagNr;
    Msg code = Msg::None;
    if (inner == typeArr[TYP_CHOICE].tag)
        code = Msg::ImplicitChoice;
    else if (inner == typeArr[TYP_ANY].tag)
        code = Msg::ImplicitAny;
    else if (isIndeterminate(inner))
        code = Msg::ImplicitOpen;
    if (code != Msg::None) {
        recordTNodeError(module, ERR_SEMANTIC, code);
        return false;
    }
    const int32_t innerClass = p5State.nextTag.tagClass;
    const uint8_t tagUsage = module->options.tagUsage;
    if (tagUsage == 0 || (innerClass != TAG_APPLICATION && innerClass != TAG_PRIVATE)) return true;
    recordTNodeError(module, classOfSetting(tagUsage), Msg::TagUsageNotAllowed);
    return tagUsage == 1;
}

bool checkExplicitTag(ModuleRec* module) {
    if (module->options.explicitTags == 0 || isIndeterminate(p5State.nextTag.tagNr)) return true;
    return reportExplicit(module);
}

/// Implicit tagging by the module's default, unless the type has no tag of its own
/// (X.680 (07/2002) 30.6 c).
void checkIfExplicitNeeded(ModuleRec* module, TagNr nr) {
    readRec(module, nr);
    tagRec.tagMode = isIndeterminate(p5State.nextTag.tagNr) ? TAGMODE_EXPLICIT : TAGMODE_IMPLICIT;
    writeRec(module, nr);
}

bool checkTagEncoding(ModuleRec* module, TagNr nr, const TagRec& tag) {
    switch (tag.tagMode) {
    case TAGMODE_IMPLICIT: return checkImplicitTag(module);
    case TAGMODE_EXPLICIT: return checkExplicitTag(module);
    default: checkIfExplicitNeeded(recState.currTPtr[KIND_TNODE], nr); return true;
    }
}

} // namespace

int32_t tagNumberOf(ModuleRec* module, const TagRec& tag) {
    if (tag.tagNr >= 0) return tag.tagNr;
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{magnitude(tag.tagNr)});
    skipValues(true);
    if (vNode.valCode != TYP_INTEGER) return badTagNr;
    const int64_t number = i64native(vNode.val.number);
    return number >= 0 && number <= maxTagNr ? static_cast<int32_t>(number) : badTagNr;
}

namespace {

/// The tag that the current record, which has none of its own to follow, shows.
SeenTag ownTag() {
    if (tNode.tags == 0) return {TAG_UNIVERSAL, typeArr[tNode.typeCode].tag};
    ModuleRec* const module = recState.currTPtr[KIND_TNODE];
    const KeepRec<KIND_TAG> keepTag;
    readRec(module, TagNr{tNode.tags});
    const TagRec tag = tagRec;
    return {tag.tagClass, tagNumberOf(module, tag)};
}

} // namespace

SeenTag getNextTag() {
    const KeepRec<KIND_TNODE> keep;
    std::vector<uint64_t> path; // untagged references passed; they all show the tag found
    SeenTag tag;
    for (;;) {
        const TNodeRef type = currentRec<KIND_TNODE>();
        const uint64_t key = uint64_t{type.module->handle} << 32 | type.nr.nr;
        const auto known = seenTags.byType.find(key);
        ModuleRec* const module = tNode.tags == 0 && tNode.typeCode == TYP_SYNONYM && tNode.ref != 0
                                      ? refModule(type.module, tNode.refMod)
                                      : nullptr;
        if (known != seenTags.byType.end() || module == nullptr) {
            tag = known != seenTags.byType.end() ? known->second : ownTag();
            break;
        }
        path.push_back(key);
        seenTags.byType[key] = {TAG_UNIVERSAL, typeArr[TYP_SYNONYM].tag}; // what a cycle comes to
        readRec(module, TNodeNr{tNode.ref});
    }
    for (const uint64_t key : path) seenTags.byType[key] = tag;
    return tag;
}

bool checkTag(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    skipTypes(true);
    const bool isClass = isClassCode(tNode.typeCode);
    readRec(self);
    if (isClass) {
        recordTNodeError(module, ERR_SEMANTIC, Msg::ObjectClassCanNotBeTaggedSubtypedEntry);
        return false;
    }
    bool ok = true;
    TagNr nr{tNode.tags};
    for (bool outermost = true;; outermost = false) {
        readRec(self.module, nr);
        const TagRec tag = tagRec;
        const int32_t number = tagNumberOf(self.module, tag);
        ok &= checkTagClass(module, tag, outermost);
        ok &= checkTagNumber(module, number);
        ok &= checkTagUniqueness(module, tag, number);
        ok &= checkTagExplicity(module, tag);
        if (tag.next == 0) {
            ok &= checkTagEncoding(module, nr, tag);
            return ok;
        }
        nr = TagNr{tag.next};
    }
}

/// The tag of the entry, or of one of its alternatives, that the nearest earlier entry has; null
/// when there is none.
const SeenTag* TagComparison::tagInDynaList(const CompEntry& entry) const {
    const SeenTag* clash = nullptr;
    uint32_t nearest = 0;
    const auto look = [&](const SeenTag& tag) {
        if (tag.tagNr < 0) return;
        const auto found = earlier_.find(keyOf(tag));
        if (found == earlier_.end() || (clash != nullptr && found->second <= nearest)) return;
        clash = &tag;
        nearest = found->second;
    };
    look(entry.tag);
    for (const SeenTag& tag : entry.alternatives) look(tag);
    return clash;
}

bool TagComparison::distinctCompTag(ModuleRec* module, const CompEntry& entry, bool isLast) {
    const SeenTag* const clash = tagInDynaList(entry);
    const bool optional = magnitude(entry.compStatus) == TCS_OPTIONAL;
    bool ok = clash == nullptr;
    if (clash != nullptr) {
        recordTagError(module, ERR_SEMANTIC, Msg::NonDistinctTag, tNode.line, clash->tagClass,
                       clash->tagNr);
    } else if (entry.isOpen) {
        const bool anyOrder = kind_ == TYP_SET || kind_ == TYP_CHOICE;
        ok = !(anyOrder || (sequence_ && optional && !isLast));
        if (!ok) recordTNodeError(module, ERR_SEMANTIC, Msg::IndeterminateTag, entry.name);
    }
    ++count_;
    if (sequence_ && !optional) {
        earlier_.clear(); // only the run of optional components just before an entry can be
                          // mistaken for it
        return ok;
    }
    if (entry.tag.tagNr >= 0) earlier_[keyOf(entry.tag)] = count_;
    for (const SeenTag& tag : entry.alternatives) earlier_[keyOf(tag)] = count_;
    return ok;
}

} // namespace orvo
