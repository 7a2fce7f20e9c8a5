// Strings. A character string is a leaf with its text in the string cache, or a list of segments,
// each a leaf, a list or a reference to one. Lists that segments refer to may be shared, so their
// characters can double with every level of references: lengths are kept per list, and walks over
// characters end at maxCharStri characters. Walks keep their own stack, as references may nest as
// deep as there are values.

#include "check/orvostri.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "check/check_cache.h"
#include "diag/orvoerr_fatal.h"
#include "lex/orvotok.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"
#include "util/ascii.h"
#include "util/utf8.h"

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
    const bool isString = is(leaf.valCode, TypeClass::Bits) ||
                          is(leaf.valCode, TypeClass::StringGroup) ||
                          is(leaf.valCode, TypeClass::Quoted);
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
    case TYP_UTF8STR:
        if (leaf.val.str.stri == scratchStri)
            chars += tempChar32[0];
        else
            chars += fromUtf8(getStri(module, int64_t{leaf.val.str.stri}));
        break;
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

std::string_view plainText(ModuleRec* module, const VNode& value) {
    if (value.val.str.striLen == 0) return {};
    return getStri(module, int64_t{value.val.str.stri});
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

char32_t largestCharacter(uint8_t kind) {
    switch (kind) {
    case TYP_IA5STR:
    case TYP_VISSTR:
    case TYP_PRISTR:
    case TYP_NUMSTR:
    case TYP_GENTIME: // these two are made of VisibleString
    case TYP_UTCTIME: return 0x7F;
    case TYP_BMPSTR: return 0xFFFF;
    case TYP_UNISTR:
    case TYP_UTF8STR:
    case TYP_OIDIRI: // labels of arcs have characters of all scripts
    case TYP_RELOIDIRI: return 0x10FFFF;
    default: return is(kind, TypeClass::Quoted) ? 0x7F : 0xFF;
    }
}

bool sharesCharacters(const ModuleRec* module, uint8_t a, uint8_t b) {
    if (a == b || (is(a, TypeClass::Narrow) && is(b, TypeClass::Narrow))) return true;
    return newNotation(module) && is(a, TypeClass::StringGroup) && is(b, TypeClass::StringGroup);
}

int compareStrings(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    return a.valCode != b.valCode ? 1 : compareCharacters(modA, a, modB, b);
}

int compareCharacters(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    RestrCharStri left;
    RestrCharStri right;
    const uint64_t lengthA = makeRestrCharStri(modA, a, left);
    const uint64_t lengthB = makeRestrCharStri(modB, b, right);
    const int order = left.chars.compare(right.chars);
    if (order != 0) return order;
    return lengthA < lengthB ? -1 : lengthA > lengthB ? 1 : 0;
}

// ---- bit strings --------------------------------------------------------------------------------
// A value is a binary or hexadecimal literal, whatever the type, or a list of named bits; the empty
// list and the empty literal are the same record. A number of a named bit that is negative is
// passed over: the type that names it is reported.

namespace {

constexpr size_t maxBits = maxStringLength; // named bits reach no further than literals
constexpr int64_t noFit = std::numeric_limits<int32_t>::max();

bool isHexadecimal(const VNode& value) {
    return value.valCode == TYP_OCTSTR;
}
bool isBinary(const VNode& value) {
    return value.valCode == TYP_BITSTR && value.ref == 0;
}
bool isBitList(const VNode& value) {
    return value.valCode == TYP_BITSTR && value.ref != 0 && !holdsContents(value);
}

std::string_view digitsOf(ModuleRec* module, const VNode& value) {
    if (value.val.str.striLen == 0) return {};
    return getStri(module, int64_t{value.val.str.stri}).substr(0, value.val.str.striLen);
}

/// Calls fn(number) for the bit numbers of a list of named bits.
template <typename Fn> void forEachBitNumber(ModuleRec* module, VNodeNr first, Fn&& fn) {
    const KeepRec<KIND_VNODE> keep;
    for ([[maybe_unused]] const VNodeNr nr : chain(module, first)) {
        skipValues(false);
        if (vNode.valCode == TYP_INTEGER) fn(i64native(vNode.val.number));
    }
}

int64_t highestBit(ModuleRec* module, VNodeNr first) {
    int64_t highest = -1;
    forEachBitNumber(module, first, [&](int64_t number) { highest = std::max(highest, number); });
    return std::min(highest, INT64_MAX - 1); // its length is a number too
}

unsigned hexDigit(char digit) {
    if (isDigit(digit)) return static_cast<unsigned>(digit - '0');
    if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A') + 10;
    return 0;
}

std::string bitsOfHex(std::string_view digits) {
    std::string bits;
    bits.reserve(digits.size() * 4);
    for (const char digit : digits)
        for (unsigned mask = 8; mask != 0; mask /= 2)
            bits += (hexDigit(digit) & mask) != 0 ? '1' : '0';
    return bits;
}

std::string bitsOfList(ModuleRec* module, VNodeNr first) {
    std::string bits;
    forEachBitNumber(module, first, [&](int64_t number) {
        if (number > noFit || number < std::numeric_limits<int32_t>::min())
            fatalError(Fatal::Internal, "Bit string index overflow");
        if (number < 0 || number >= int64_t{maxBits}) return;
        const auto place = static_cast<size_t>(number);
        if (bits.size() <= place) bits.resize(place + 1, '0');
        bits[place] = '1';
    });
    return bits;
}

std::string withoutTrailingZeros(std::string bits) {
    bits.erase(bits.find_last_not_of('0') + 1);
    return bits;
}

/// Bits of a literal, without the trailing zeros that lie beyond the highest named bit.
uint32_t significantBits(std::string_view bits, int64_t highest) {
    size_t length = bits.size();
    while (highest >= 0 && static_cast<int64_t>(length) > highest + 1 && bits[length - 1] == '0')
        --length;
    return static_cast<uint32_t>(length);
}

uint32_t bitLength(ModuleRec* module, const VNode& value, int64_t highest) {
    if (isBitList(value)) return lenFromNamedBits(module, VNodeNr{value.ref});
    const std::string_view digits = digitsOf(module, value);
    return isHexadecimal(value) ? significantBits(bitsOfHex(digits), highest)
                                : significantBits(digits, highest);
}

uint64_t octetLength(ModuleRec* module, const VNode& value) {
    const uint32_t digits = value.val.str.striLen;
    if (isHexadecimal(value)) return (digits + 1) / 2;
    if (isBinary(value)) return (digits + 7) / 8;
    return makeRestrCharStriSeg(module, value, nullptr);
}

} // namespace

uint32_t lenFromNamedBits(ModuleRec* module, VNodeNr first) {
    const int64_t highest = highestBit(module, first);
    return highest > noFit ? static_cast<uint32_t>(noFit) : static_cast<uint32_t>(highest + 1);
}

int64_t highestNamedBit() {
    if (tNode.namedVals == 0) return -1;
    ModuleRec* module = typeModule();
    const auto [note, isNew] =
        checkCacheOf(module).highestNamedBits.try_emplace(tNode.namedVals, -1);
    if (isNew) note->second = highestBit(module, VNodeNr{tNode.namedVals});
    return note->second;
}

uint64_t getAnyStringLength() {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    skipTypes(true);
    skipValues(true);
    ModuleRec* module = valueModule();
    const VNode value = vNode;
    const bool isBits = is(value.valCode, TypeClass::Bits);
    if (tNode.typeCode == TYP_BITSTR && isBits) return bitLength(module, value, highestNamedBit());
    if (tNode.typeCode == TYP_OCTSTR) return octetLength(module, value);
    return makeRestrCharStriSeg(module, value, nullptr);
}

std::string convBitString(uint8_t kind, ModuleRec* module, const VNode& value) {
    if (isBitList(value)) return bitsOfList(module, VNodeNr{value.ref});
    std::string bits;
    if (isHexadecimal(value))
        bits = bitsOfHex(digitsOf(module, value));
    else if (isBinary(value))
        bits = digitsOf(module, value).substr(0, maxBits);
    if (kind == TYP_OCTSTR) bits.resize((bits.size() + 7) / 8 * 8, '0');
    return bits;
}

namespace {

/// Two strings are given by what they contain, and that is equal.
bool equalContents(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (!holdsContents(a) || !holdsContents(b)) return false;
    const KeepRec<KIND_VNODE> keep;
    readRec(modA, VNodeNr{a.ref});
    skipValues(true);
    ModuleRec* const innerA = valueModule();
    const VNode inner = vNode;
    readRec(modB, VNodeNr{b.ref});
    skipValues(true);
    return compareValue(innerA, inner, valueModule(), VNode(vNode)) == 0;
}

} // namespace

bool equalStrings(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (holdsContents(a) || holdsContents(b)) return equalContents(modA, a, modB, b);
    if (kind == TYP_BITSTR) {
        return withoutTrailingZeros(convBitString(kind, modA, a)) ==
               withoutTrailingZeros(convBitString(kind, modB, b));
    }
    if (kind == TYP_OCTSTR) return convBitString(kind, modA, a) == convBitString(kind, modB, b);
    return compareStrings(modA, a, modB, b) == 0;
}

// ---- IRIs ---------------------------------------------------------------------------------------

namespace {

struct CharRange {
    char32_t first, last;
};

/// Characters of a label that is no number (X.660 (07/2011) 7.5.4).
bool isLabelChar(char32_t c) {
    constexpr std::u32string_view marks = U"-._~";
    constexpr CharRange ranges[] = {{'0', '9'},        {'A', 'Z'},       {'a', 'z'},
                                    {0xA0, 0xD7FF},    {0xF900, 0xFDCF}, {0xFDF0, 0xFFEF},
                                    {0x10000, 0xEFFFD}};
    if (c >= 0x10000 && ((c & 0xFFFE) == 0xFFFE || (c >= 0xE0000 && c < 0xE1000))) return false;
    return marks.find(c) != marks.npos ||
           std::ranges::any_of(ranges, [c](CharRange r) { return c >= r.first && c <= r.last; });
}

/// A number without leading zeros, or a name (X.680 (02/2021) 12.25, 12.26).
bool isLabel(std::u32string_view label) {
    const auto isNumeral = [](char32_t c) { return c >= '0' && c <= '9'; };
    if (label.empty()) return false;
    if (std::ranges::all_of(label, isNumeral)) return label.size() == 1 || label.front() != '0';
    return label.front() != '-' && label.back() != '-' &&
           !(label.size() >= 4 && label.substr(2, 2) == U"--") &&
           std::ranges::all_of(label, isLabelChar);
}

} // namespace

bool isIri(std::u32string_view text, bool isRelative) {
    if (!isRelative && !text.starts_with(U'/')) return false;
    if (!isRelative) text.remove_prefix(1);
    for (;;) {
        const size_t end = std::min(text.find(U'/'), text.size());
        if (!isLabel(text.substr(0, end))) return false;
        if (end == text.size()) return true;
        text.remove_prefix(end + 1);
    }
}

} // namespace orvo
