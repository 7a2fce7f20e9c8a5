// Tags: their classes and numbers, the mode of the innermost one, and tags that must differ.

#include "check/p5typ_int.h"

#include "check/check_cache.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// Shorter ways to a tag are walked again rather than noted.
constexpr size_t shortWay = 8;

/// Detail of a finding about tags that are not known yet.
constexpr std::string_view unknownText = "unknown additions";

/// Class of a finding that TAGUSAGE= or EXPLICIT= asks for: 1 warning, 2 error.
ErrClass classOfSetting(uint8_t setting) {
    return setting == 1 ? ERR_WARNING : ERR_SEMANTIC;
}

bool checkTagClass(ModuleRec* module, const TagRec& tag, bool outermost) {
    const OptionBlock& options = module->options;
    if (tag.tagClass == TAG_UNIVERSAL && !options.allow && isLenient(module)) {
        recordOnce(module, Msg::UniversalTag, tNode.line, tNodeName());
    } else if (tag.tagClass == TAG_UNIVERSAL && !options.allow) {
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
    auto& usedTags = checkCacheOf(typeModule()).types.usedTags;
    if (usedTags.insert(keyOf(SeenTag{tag.tagClass, number})).second) return true;
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

bool checkImplicitTag(ModuleRec* module, SeenTag nextTag) {
    const int32_t inner = nextTag.tagNr;
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
    const int32_t innerClass = nextTag.tagClass;
    const uint8_t tagUsage = module->options.tagUsage;
    if (tagUsage == 0 || (innerClass != TAG_APPLICATION && innerClass != TAG_PRIVATE)) return true;
    recordTNodeError(module, classOfSetting(tagUsage), Msg::TagUsageNotAllowed);
    return tagUsage == 1;
}

bool checkExplicitTag(ModuleRec* module, SeenTag nextTag) {
    if (module->options.explicitTags == 0 || isIndeterminate(nextTag.tagNr)) return true;
    return reportExplicit(module);
}

/// Implicit tagging by the module's default, unless the type has no tag of its own
/// (X.680 (07/2002) 30.6 c), or is one that not all instances have in common (X.680 (02/2021)
/// 31.2.7 c).
void checkIfExplicitNeeded(ModuleRec* module, TagNr nr, SeenTag nextTag) {
    const bool isDummy = (tNode.nodeFlags & NF_DUMMY) != 0;
    readRec(module, nr);
    tagRec.tagMode =
        isDummy || isIndeterminate(nextTag.tagNr) ? TAGMODE_EXPLICIT : TAGMODE_IMPLICIT;
    writeRec(module, nr);
}

bool checkTagEncoding(ModuleRec* module, TagNr nr, const TagRec& tag, SeenTag nextTag) {
    switch (tag.tagMode) {
    case TAGMODE_IMPLICIT: return checkImplicitTag(module, nextTag);
    case TAGMODE_EXPLICIT: return checkExplicitTag(module, nextTag);
    default: checkIfExplicitNeeded(typeModule(), nr, nextTag); return true;
    }
}

bool isClass() {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return isClassCode(tNode.typeCode);
}

/// The first tag written on the current type, else the universal tag of its kind.
SeenTag outermostTag() {
    if (tNode.tags == 0) return {TAG_UNIVERSAL, typeArr[tNode.typeCode].tag};
    ModuleRec* const module = typeModule();
    const KeepRec<KIND_TAG> keep;
    readRec(module, TagNr{tNode.tags});
    const TagRec tag = tagRec;
    return {tag.tagClass, tagNumberOf(module, tag)};
}

/// Walks from the current type to the one whose tag is seen; the untagged types on the way are
/// added to `passed`.
SeenTag findTag(std::vector<TNodeRef>& passed) {
    while (tNode.tags == 0 && passed.size() < maxLinks) {
        const TNodeRef here = currentRec<KIND_TNODE>();
        const auto& notes = checkCacheOf(here.module).types.seenTags;
        if (const auto note = notes.find(here.nr.nr); note != notes.end()) return note->second;
        if (!followTypeRef(true)) break;
        passed.push_back(here);
    }
    return outermostTag();
}

} // namespace

int32_t tagNumberOf(ModuleRec* module, const TagRec& tag) {
    if (tag.tagNr >= 0) return tag.tagNr;
    const KeepRec<KIND_VNODE> keep;
    readRec(module, VNodeNr{magnitude(tag.tagNr)});
    skipValues(true);
    if (!isIntegerVNode()) return badTagNr;
    const int64_t number = i64native(vNode.val.number);
    return number >= 0 && number <= maxTagNr ? static_cast<int32_t>(number) : badTagNr;
}

SeenTag getNextTag() {
    if (tNode.tags != 0)
        if (const TagRec* tag = peekRec(typeModule(), TagNr{tNode.tags});
            tag != nullptr && tag->tagNr >= 0)
            return {tag->tagClass, tag->tagNr};
    const KeepRec<KIND_TNODE> keep;
    std::vector<TNodeRef> passed;
    const SeenTag seen = findTag(passed);
    if (passed.size() >= shortWay)
        for (const TNodeRef& type : passed)
            checkCacheOf(type.module).types.seenTags[type.nr.nr] = seen;
    return seen;
}

bool checkTag(ModuleRec* module, SeenTag nextTag) {
    ModuleRec* const own = typeModule();
    if (isClass()) {
        recordTNodeError(module, ERR_SEMANTIC, Msg::ObjectClassCanNotBeTaggedSubtypedEntry);
        return false;
    }
    const KeepRec<KIND_TAG> keep;
    bool ok = true;
    for (const TagNr nr : chain(own, TagNr{tNode.tags})) {
        const TagRec tag = tagRec;
        const int32_t number = tagNumberOf(own, tag);
        ok &= checkTagClass(module, tag, nr.nr == tNode.tags);
        ok &= checkTagNumber(module, number);
        ok &= checkTagUniqueness(module, tag, number);
        ok &= checkTagExplicity(module, tag);
        if (tag.next == 0) ok &= checkTagEncoding(module, nr, tag, nextTag);
    }
    return ok;
}

const SeenTag* TagComparison::tagIn(const Places& earlier, const CompEntry& entry) const {
    const SeenTag* clash = nullptr;
    uint32_t nearest = 0;
    const auto look = [&](const SeenTag& tag) {
        if (tag == unknownAddition && !today_) return;
        const auto found = earlier.find(keyOf(tag));
        if (found == earlier.end() || (clash != nullptr && found->second <= nearest)) return;
        clash = &tag;
        nearest = found->second;
    };
    if (entry.tag.tagNr >= 0) look(entry.tag);
    for (const SeenTag& tag : entry.alternativeTags()) {
        look(tag);
        if (nearest == count_ && clash != nullptr) break; // no entry is nearer
    }
    return clash;
}

/// The tag of the entry, or of one of its alternatives, that the nearest earlier entry has; null
/// when there is none. Additions in front of a second root differ from all in front of them (X.680
/// (02/2021) 25.7).
const SeenTag* TagComparison::tagInDynaList(const CompEntry& entry) const {
    const SeenTag* const clash = tagIn(earlier_, entry);
    if (clash != nullptr || !inExtension_ || !hasSecondRoot_) return clash;
    return tagIn(additions_, entry);
}

void TagComparison::rememberTags(const CompEntry& entry, Places& tags) const {
    if (entry.tag.tagNr >= 0) tags[keyOf(entry.tag)] = count_;
    for (const SeenTag& tag : entry.alternativeTags()) tags[keyOf(tag)] = count_;
}

void TagComparison::forget(Places& tags) {
    constexpr size_t few = 64;
    if (tags.bucket_count() > few)
        tags = {}; // to clear it takes as long as it ever was
    else if (!tags.empty())
        tags.clear();
}

void TagComparison::remember(const CompEntry& entry) {
    ++count_;
    if (sequence_ && inExtension_ && hasSecondRoot_) rememberTags(entry, additions_);
    // Only the run of optional components just before an entry can be mistaken for it.
    if (sequence_ && magnitude(entry.compStatus) != TCS_OPTIONAL)
        forget(earlier_);
    else
        rememberTags(entry, earlier_);
}

bool TagComparison::passMarkers(ModuleRec* module, const Extension& extension, size_t place) {
    if (!today_ || extension.begin == Extension::none) return true;
    if (place == extension.begin) {
        inExtension_ = true;
        hasSecondRoot_ = extension.hasSecondRoot;
        if (sequence_ && hasSecondRoot_) endOfRoot_ = earlier_;
    }
    if (place != extension.end) return true;
    inExtension_ = false;
    const bool isDistinct = !earlier_.contains(keyOf(unknownAddition));
    if (sequence_ && hasSecondRoot_) {
        earlier_ = std::move(additions_);
        earlier_.insert(endOfRoot_.begin(), endOfRoot_.end());
    }
    earlier_[keyOf(unknownAddition)] = ++count_;
    if (!isDistinct)
        recordError(module, ERR_SEMANTIC, Msg::NonDistinctTag, tNode.line, unknownText);
    return isDistinct;
}

bool TagComparison::distinctCompTag(ModuleRec* module, const CompEntry& entry, bool isLast) {
    const SeenTag* const clash = tagInDynaList(entry);
    bool ok = clash == nullptr;
    if (clash != nullptr && *clash == unknownAddition) {
        recordError(module, ERR_SEMANTIC, Msg::NonDistinctTag, tNode.line, unknownText);
    } else if (clash != nullptr) {
        recordTagError(module, ERR_SEMANTIC, Msg::NonDistinctTag, tNode.line, clash->tagClass,
                       clash->tagNr);
    } else if (entry.isOpen()) {
        const bool anyOrder = kind_ == TYP_SET || kind_ == TYP_CHOICE;
        const bool optional = magnitude(entry.compStatus) == TCS_OPTIONAL;
        ok = !anyOrder && !(sequence_ && optional && !isLast);
        if (!ok) recordTNodeError(module, ERR_SEMANTIC, Msg::IndeterminateTag, entry.name);
    }
    remember(entry);
    return ok;
}

} // namespace orvo
