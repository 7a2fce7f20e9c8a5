// Character strings. A value is a leaf with its text in the string cache, or a list of segments,
// each a leaf, a list or a reference to one. Lists that segments refer to may be shared, so their
// characters can double with every level of references: lengths are kept per list, and walks over
// characters end at maxCharStri characters. Walks keep their own stack, as references may nest as
// deep as there are values.

#include "check/orvostri.h"

#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "check/check_cache.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// Length of a list that contains itself.
constexpr uint64_t endless = std::numeric_limits<uint64_t>::max();

/// Sum of two lengths, saturating below endless.
uint64_t sumOf(uint64_t a, uint64_t b) {
    if (a == endless || b == endless) return endless;
    return a >= endless - b ? endless - 1 : a + b;
}

bool isSegmentList(const VNode& value) {
    return value.valCode != TYP_SYNONYM && value.valCode != TYP_FIELDLIST && value.ref != 0 &&
           value.refMod >= 0;
}

uint32_t leafLength(const VNode& leaf) {
    const bool isString =
        is(leaf.valCode, TypeClass::Bits) || is(leaf.valCode, TypeClass::StringGroup);
    return isString ? leaf.val.str.striLen : 0;
}

/// A list of segments that is being walked.
struct OpenSegments {
    ModuleRec* module;
    VNodeNr first;
    VNodeNr next;
    uint32_t left; // segments it may still have: a broken chain must not be endless
    uint64_t length = 0;
};
OpenSegments openSegments(ModuleRec* module, VNodeNr first) {
    return {module, first, first, module->nextRecNr[KIND_VNODE]};
}

/// Reads the next segment of the list, references followed; false at the end of the list.
bool readSegment(OpenSegments& list) {
    if (!list.next || list.left-- == 0) return false;
    readRec(list.module, list.next);
    list.next = {vNode.next};
    skipValues(true);
    return true;
}

/// Characters of a list of segments. The length of a list that is still being counted reads as
/// endless, and so does that of every list which leads to it.
uint64_t lengthOfSegments(ModuleRec* module, VNodeNr first) {
    const auto noteOf = [](ModuleRec* owner, VNodeNr list) {
        return checkCacheOf(owner).segmentLengths.try_emplace(list.nr, endless);
    };
    if (const auto [note, isNew] = noteOf(module, first); !isNew) return note->second;
    const KeepRec<KIND_VNODE> keep;
    std::vector<OpenSegments> open{openSegments(module, first)};
    for (;;) {
        OpenSegments& list = open.back();
        uint64_t added = 0;
        if (!readSegment(list)) {
            added = list.length;
            checkCacheOf(list.module).segmentLengths[list.first.nr] = added;
            open.pop_back();
            if (open.empty()) return added;
        } else if (!isSegmentList(vNode)) {
            added = leafLength(vNode);
        } else {
            ModuleRec* inner = valueModule();
            const VNodeNr innerFirst{vNode.ref};
            const auto [note, isNew] = noteOf(inner, innerFirst);
            if (isNew)
                open.push_back(openSegments(inner, innerFirst));
            else
                added = note->second;
        }
        open.back().length = sumOf(open.back().length, added);
    }
}

void appendLeaf(ModuleRec* module, const VNode& leaf, std::u32string& chars) {
    const uint32_t length = leafLength(leaf);
    if (length == 0) return;
    const size_t end = chars.size() + length;
    switch (leaf.valCode) {
    case TYP_BMPSTR:
        for (const char16_t c : getStri16(module, leaf.val.str.stri).substr(0, length)) chars += c;
        break;
    case TYP_UNISTR: chars += getStri32(module, leaf.val.str.stri).substr(0, length); break;
    default:
        for (const char c : getStri(module, int64_t{leaf.val.str.stri}).substr(0, length))
            chars += static_cast<unsigned char>(c);
    }
    chars.resize(end); // texts end at their first NUL, which a string may well contain
}

/// Calls fn(module, leaf) for the leaves of a list in order, until it returns false. With `once` a
/// list that was walked before is passed over; an endless one always is.
template <typename Fn> void forEachLeaf(ModuleRec* module, VNodeNr first, bool once, Fn&& fn) {
    const KeepRec<KIND_VNODE> keep;
    std::vector<OpenSegments> open{openSegments(module, first)};
    std::set<std::pair<ModuleRec*, uint32_t>> walked;
    uint32_t left = 80 * maxCharStri; // lists may nest without adding a character
    while (!open.empty() && left-- != 0) {
        if (!readSegment(open.back())) {
            open.pop_back();
            continue;
        }
        ModuleRec* inner = valueModule();
        if (!isSegmentList(vNode)) {
            if (!fn(inner, vNode)) return;
            continue;
        }
        const VNodeNr list{vNode.ref};
        const uint64_t length = lengthOfSegments(inner, list);
        if ((once || length == endless) && !walked.insert({inner, list.nr}).second) continue;
        if (length != 0) open.push_back(openSegments(inner, list));
    }
}

} // namespace

uint64_t makeRestrCharStriSeg(ModuleRec* module, const VNode& value, RestrCharStri* stri) {
    if (!isSegmentList(value)) {
        if (stri != nullptr) appendLeaf(module, value, stri->chars);
        return leafLength(value);
    }
    const VNodeNr first{value.ref};
    if (stri != nullptr) {
        forEachLeaf(module, first, false, [&](ModuleRec* inner, const VNode& leaf) {
            appendLeaf(inner, leaf, stri->chars);
            return stri->chars.size() < maxCharStri;
        });
    }
    return lengthOfSegments(module, first);
}

uint64_t makeRestrCharStri(ModuleRec* module, const VNode& value, RestrCharStri& stri) {
    stri.kind = value.valCode;
    stri.chars.clear();
    return makeRestrCharStriSeg(module, value, &stri);
}

std::u32string distinctChars(ModuleRec* module, const VNode& value) {
    std::u32string chars;
    std::set<char32_t> seen;
    const auto add = [&](ModuleRec* inner, const VNode& leaf) {
        std::u32string text;
        appendLeaf(inner, leaf, text);
        for (const char32_t c : text)
            if (seen.insert(c).second) chars += c;
        return true;
    };
    if (isSegmentList(value))
        forEachLeaf(module, VNodeNr{value.ref}, true, add);
    else
        add(module, value);
    return chars;
}

int compareStrings(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (a.valCode != b.valCode) return 1;
    RestrCharStri left;
    RestrCharStri right;
    const uint64_t lengthA = makeRestrCharStri(modA, a, left);
    const uint64_t lengthB = makeRestrCharStri(modB, b, right);
    const int order = left.chars.compare(right.chars);
    if (order != 0) return order;
    return lengthA < lengthB ? -1 : lengthA > lengthB ? 1 : 0;
}

} // namespace orvo
