#include "stxcomponents.h"

#include <algorithm>
#include <map>
#include <tuple>

// Lists of components with COMPONENTS OF expanded, and what follows from their order. A damaged
// file may have structures include others twice, and those again: what a structure comes to is
// limited to what a compiler takes, is worked out once, and all together is limited by the size of
// the files (Trees::spend).

namespace stx {

struct StructureMemo {
    using Key = std::pair<const Tree*, uint32_t>;
    template <typename T> struct Kept {
        T value{};
        std::string error;
        bool running = false;
    };
    std::map<Key, Kept<std::vector<Component>>> lists;
    std::map<Key, Kept<Structure>> structures;
};

namespace {

/// Entries of component lists that are looked at for one structure: no real module needs as many.
constexpr uint32_t maxSteps = 1'000'000;
/// Components of one structure, the limit of `fieldSize`.
constexpr size_t maxComponents = 32767;
constexpr int maxNesting = 2000; // each level is a frame on the stack
/// Tagged types that refer to one another, and their tags, for one list of tags.
constexpr int maxTags = 1000;

StructureMemo& memoOf(Trees& trees) {
    if (!trees.structures) trees.structures = std::make_shared<StructureMemo>();
    return *trees.structures;
}

std::string at(TypeRef type) {
    return type.tree->path() + ": tNode " + std::to_string(type.nr);
}

struct Expansion {
    Trees& trees;
    std::vector<Component>& list;
    std::string& error;
    uint32_t steps = 0;
    bool full = false;
};

/// What an entry shares with those that it brings in.
struct Place {
    bool extension = false;
    TypeRef group{};
};

bool step(Expansion& expansion) {
    expansion.full |= ++expansion.steps > maxSteps || expansion.list.size() > maxComponents ||
                      !expansion.trees.spend(1);
    return !expansion.full;
}

void expand(Expansion& expansion, TypeRef type, bool included, Place place, int depth);

/// A component; COMPONENTS OF brings in those of its type.
void addEntry(Expansion& expansion, TypeRef entry, Place place, int depth) {
    if (!step(expansion)) return;
    if (entry.node().role() != TCS_COMPOF) {
        expansion.list.push_back({entry, -1, place.extension, place.group});
        return;
    }
    const TypeRef from = skipTypes(expansion.trees, entry, false, expansion.error);
    expansion.full |= depth >= maxNesting;
    if (from && !expansion.full) expand(expansion, from, true, place, depth + 1);
}

/// The entries of one list. `included`: brought in by COMPONENTS OF, so without the additions.
void expand(Expansion& expansion, TypeRef type, bool included, Place place, int depth) {
    int markers = 0;
    for (const uint32_t nr : components(*type.tree, type.nr, true)) {
        const TNode node = type.tree->tNode(nr);
        const bool added = markers == 1; // behind a second one stand components of the root
        if (node.typeCode == TYP_EXTENSION_MARKER)
            ++markers;
        else if (added && included)
            continue;
        else if (node.typeCode == TYP_EXTADDGRP)
            for (const uint32_t member : components(*type.tree, nr))
                addEntry(expansion, {type.tree, member}, {true, {type.tree, nr}}, depth);
        else
            addEntry(expansion, {type.tree, nr}, {place.extension || added, place.group}, depth);
        if (!step(expansion)) return;
    }
}

/// Automatic tags: the components of the root first, then the additions (X.680 (02/2021) 25.8).
void numberTags(std::vector<Component>& list) {
    int64_t number = 0;
    for (const bool extension : {false, true})
        for (Component& entry : list)
            if (entry.extension == extension) entry.automaticTag = number++;
}

} // namespace

std::vector<Component> allComponents(Trees& trees, TypeRef type, std::string& error) {
    if (!type) return {};
    auto [kept, isNew] = memoOf(trees).lists.try_emplace({type.tree, type.nr});
    auto& entry = kept->second;
    if (isNew) {
        Expansion expansion{trees, entry.value, entry.error};
        expand(expansion, type, false, {}, 0);
        if (expansion.full) entry.error = at(type) + " has too many components";
        if ((type.node().checkFlags & CF_AUTOMATIC_TAGS) != 0) numberTags(entry.value);
    }
    if (!entry.error.empty()) error = entry.error;
    return entry.value;
}

int64_t tagNumber(Trees& trees, const Tree& tree, const TagRec& tag) {
    if (tag.tagNr >= 0) return tag.tagNr;
    std::string error;
    const ValueRef value =
        skipValues(trees, {&tree, static_cast<uint32_t>(-int64_t{tag.tagNr})}, error);
    const VNode node = value.node();
    return value && error.empty() && node.valCode == TYP_INTEGER ? node.number : -1;
}

FinalTags finalTags(Trees& trees, TypeRef type, int64_t automaticTag, std::string& error) {
    FinalTags result;
    bool replaced = false; // an IMPLICIT tag stands in front: the next one is not encoded
    if (automaticTag >= 0) {
        result.tags.push_back({TAG_CONTEXT, automaticTag});
        const FinalTags inner = finalTags(trees, type, -1, error);
        // Explicit after all where nothing is there to be replaced, and in front of a dummy
        // reference.
        const TNode node = type.node();
        const bool isDummy = (node.nodeFlags & NF_DUMMY) != 0 && node.tags == 0;
        replaced = !inner.tags.empty() && !isDummy;
    }
    for (int steps = 0; type; ++steps) {
        std::string broken;
        const TypeRef end = trees.skip(type, Trees::Skip::Untagged, broken);
        const std::vector<uint32_t> list = tagList(*end.tree, end.nr);
        steps += static_cast<int>(std::min<size_t>(list.size(), maxTags));
        if (broken.empty() && steps > maxTags) broken = at(end) + " has too many tags";
        if (!broken.empty()) {
            error = broken;
            result.open = true;
            return result;
        }
        for (const uint32_t nr : list) {
            const TagRec tag = end.tree->tagRec(nr);
            if (!replaced) result.tags.push_back({tag.tagClass, tagNumber(trees, *end.tree, tag)});
            replaced =
                tag.tagMode == TAGMODE_IMPLICIT || (tag.tagMode == TAGMODE_OPEN && tag.next != 0);
        }
        type = nextType(trees, end, true, error);
        if (type) continue;
        const uint8_t code = end.node().typeCode;
        const int32_t tag = code < typeCount ? typeTable[code].tag : -1;
        if (tag < 0)
            result.open = true;
        else if (!replaced)
            result.tags.push_back({TAG_UNIVERSAL, tag});
    }
    return result;
}

namespace {

bool isOptional(TypeRef type) {
    return type.node().role() == TCS_OPTIONAL;
}

/// Canonical order: by class, then by number; what has no tag behind all others.
auto orderOf(const FirstTag& first) {
    return std::tuple(!first.known, first.tag.tagClass, first.tag.number);
}

/// The root of SET and CHOICE in the canonical order of the tags.
bool sortRoot(Trees& trees, std::vector<Part>& root, std::string& error) {
    std::vector<std::pair<FirstTag, Part>> rows;
    for (Part& part : root) {
        const Result<FirstTag> first =
            firstTagOf(trees, part.component.type, part.component.automaticTag);
        if (!first) {
            error = first.error;
            return false;
        }
        rows.emplace_back(*first, std::move(part));
    }
    std::ranges::stable_sort(rows, {}, [](const auto& row) { return orderOf(row.first); });
    for (size_t nr = 0; nr < rows.size(); ++nr) root[nr] = std::move(rows[nr].second);
    return true;
}

/// The group that the addition stands in, added when it is its first one.
int32_t groupNumber(Structure& structure, TypeRef node) {
    std::vector<Group>& groups = structure.groups;
    if (groups.empty() || groups.back().node != node)
        groups.push_back(
            {node, node.node().sizeLimit, static_cast<int32_t>(structure.additionCount++), 0});
    return static_cast<int32_t>(groups.size()) - 1;
}

void numberAddition(Structure& structure, Part& part, bool choice) {
    const TypeRef node = part.component.group;
    if (choice || !node) {
        part.addition = static_cast<int32_t>(structure.additionCount++);
        return;
    }
    part.group = groupNumber(structure, node);
    Group& group = structure.groups[static_cast<size_t>(part.group)];
    part.addition = group.addition;
    if (isOptional(part.component.type))
        part.optionalBit = static_cast<int32_t>(group.optionalBits++);
}

Structure build(Trees& trees, TypeRef type, std::string& error) {
    Structure structure;
    const uint8_t code = type.node().typeCode;
    std::vector<Part> additions;
    uint32_t place = 0;
    for (const Component& component : allComponents(trees, type, error)) {
        Part part{component, finalTags(trees, component.type, component.automaticTag, error),
                  place++};
        (component.extension ? additions : structure.parts).push_back(std::move(part));
    }
    if (!error.empty()) return {};
    for (const uint32_t nr : components(*type.tree, type.nr, true))
        structure.extensible |= type.tree->tNode(nr).typeCode == TYP_EXTENSION_MARKER;
    if (code != TYP_SEQ && !sortRoot(trees, structure.parts, error)) return {};
    for (Part& part : structure.parts)
        if (isOptional(part.component.type))
            part.optionalBit = static_cast<int32_t>(structure.optionalBits++);
    structure.rootCount = static_cast<uint32_t>(structure.parts.size());
    for (Part& part : additions) {
        numberAddition(structure, part, code == TYP_CHOICE);
        structure.parts.push_back(std::move(part));
    }
    return structure;
}

} // namespace

Result<Structure> structureOf(Trees& trees, TypeRef type) {
    if (!type) return failure<Structure>("no type");
    std::string error;
    const TypeRef end = skipTypes(trees, type, true, error);
    if (!error.empty()) return failure<Structure>(error);
    const uint8_t code = end.node().typeCode;
    if (code != TYP_SEQ && code != TYP_SET && code != TYP_CHOICE)
        return failure<Structure>(at(type) + " is no SEQUENCE, SET or CHOICE");
    if (end.node().isParameterized()) return failure<Structure>(at(end) + " is parameterized");
    auto [kept, isNew] = memoOf(trees).structures.try_emplace({end.tree, end.nr});
    auto& entry = kept->second;
    if (isNew) {
        entry.running = true;
        entry.value = build(trees, end, entry.error);
        entry.running = false;
    } else if (entry.running) { // an untagged CHOICE within itself: it has no first tag
        return failure<Structure>(at(end) + " contains itself without a tag");
    }
    return {entry.value, entry.error};
}

Result<FirstTag> firstTagOf(Trees& trees, TypeRef type, int64_t automaticTag) {
    std::string error;
    const FinalTags tags = finalTags(trees, type, automaticTag, error);
    if (!error.empty()) return failure<FirstTag>(error);
    if (!tags.tags.empty()) return {{true, tags.tags[0]}, ""};
    const TypeRef end = skipTypes(trees, type, true, error);
    if (end.node().typeCode != TYP_CHOICE) return {{}, error};
    const Result<Structure> choice = structureOf(trees, end);
    if (!choice) return failure<FirstTag>(choice.error);
    if (choice->rootCount == 0) return {{}, ""};
    const Component& least = choice->parts[0].component; // they are sorted
    return firstTagOf(trees, least.type, least.automaticTag);
}

} // namespace stx
