// Bit strings. A value is a binary or hexadecimal literal, whatever the type, or a list of named
// bits; the empty list and the empty literal are the same record. A number of a named bit that is
// negative is passed over: the type that names it is reported.

#include <algorithm>
#include <limits>

#include "check/check_cache.h"
#include "check/orvostri.h"
#include "diag/orvoerr_fatal.h"
#include "lex/orvotok.h"
#include "tree/orvoutil_find.h"
#include "util/ascii.h"

namespace orvo {

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
    return value.valCode == TYP_BITSTR && value.ref != 0;
}

std::string_view digitsOf(ModuleRec* module, const VNode& value) {
    if (value.val.str.striLen == 0) return {};
    return getStri(module, int64_t{value.val.str.stri}).substr(0, value.val.str.striLen);
}

/// Calls fn(number) for the bit numbers of a list of named bits.
template <typename Fn> void forEachBitNumber(ModuleRec* module, VNodeNr first, Fn&& fn) {
    const KeepRec<KIND_VNODE> keep;
    uint32_t left = module->nextRecNr[KIND_VNODE];
    for (VNodeNr nr = first; nr && left != 0; --left) {
        readRec(module, nr);
        nr = {vNode.next};
        skipValues(false);
        if (vNode.valCode == TYP_INTEGER) fn(i64native(vNode.val.number));
    }
}

int64_t highestBit(ModuleRec* module, VNodeNr first) {
    int64_t highest = -1;
    forEachBitNumber(module, first, [&](int64_t number) { highest = std::max(highest, number); });
    return highest;
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

bool equalStrings(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (kind == TYP_BITSTR) {
        return withoutTrailingZeros(convBitString(kind, modA, a)) ==
               withoutTrailingZeros(convBitString(kind, modB, b));
    }
    if (kind == TYP_OCTSTR) return convBitString(kind, modA, a) == convBitString(kind, modB, b);
    return compareStrings(modA, a, modB, b) == 0;
}

} // namespace orvo
