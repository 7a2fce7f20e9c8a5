#pragma once

// String values in one form: characters whatever their width, bits as text of "0" and "1".

#include <cstdint>
#include <string>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// The characters of a string value. Two strings of different kinds are never equal.
struct RestrCharStri {
    uint8_t kind = TYP_NONE;
    std::u32string chars;
};
/// Longest string that is put together, some six literals of the greatest length: segments by
/// reference can double their length with every level. What is beyond counts in the length, but is
/// not kept.
inline constexpr uint32_t maxCharStri = 200000;

/// The characters of a value with all its segments. Returns the length of the whole value, which
/// saturates. Preserving.
uint64_t makeRestrCharStri(ModuleRec* module, const VNode& value, RestrCharStri& stri);
/// The length of a value in characters, and, when asked for, its characters appended to `stri`.
uint64_t makeRestrCharStriSeg(ModuleRec* module, const VNode& value, RestrCharStri* stri);
/// The different characters of a value in the order in which they occur first. Preserving.
/// The text of a value that is kept as one: of 8-bit characters, a time, an IRI.
std::string_view plainText(ModuleRec* module, const VNode& value);
std::u32string distinctChars(ModuleRec* module, const VNode& value);

/// Length in bits of a value that lists named bits; 2147483647 when a number does not fit in 32
/// bits. Preserving.
[[nodiscard]] uint32_t lenFromNamedBits(ModuleRec* module, VNodeNr first);
/// Number of the highest named bit of the current BIT STRING type; -1 without named bits.
/// Preserving.
[[nodiscard]] int64_t highestNamedBit();
/// The length of the current value under the current type: bits for BIT STRING (trailing zero bits
/// beyond the highest named bit not counted), octets for OCTET STRING, else characters. References
/// of both are followed. Preserving.
[[nodiscard]] uint64_t getAnyStringLength();

/// The bits of a BIT STRING or OCTET STRING value as "0" and "1"; `kind` is that of the type, which
/// for OCTET STRING fills the last octet. Binary digits and bit numbers beyond 32000 do not count.
/// Preserving.
std::string convBitString(uint8_t kind, ModuleRec* module, const VNode& value);
[[nodiscard]] bool equalStrings(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB,
                                const VNode& b);
/// The order of two character string values: negative, 0 or positive; 1 when their kinds differ.
/// The largest character that a kind can hold.
char32_t largestCharacter(uint8_t kind);
/// Two kinds of character strings whose characters are the same, to the notation of `module`.
bool sharesCharacters(const ModuleRec* module, uint8_t a, uint8_t b);
/// Compares the characters of two strings whatever their kinds.
[[nodiscard]] int compareCharacters(ModuleRec* modA, const VNode& a, ModuleRec* modB,
                                    const VNode& b);
[[nodiscard]] int compareStrings(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b);

/// The text is one of labels (X.680 (02/2021) clauses 34 and 35), the first one behind a `/` unless
/// it is relative.
[[nodiscard]] bool isIri(std::u32string_view text, bool isRelative);

} // namespace orvo
