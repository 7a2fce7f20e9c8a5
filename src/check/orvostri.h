#pragma once

// String values in one form: characters of the width that the kind needs, bits as text of "0" and
// "1".

#include <cstdint>
#include <string>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// The characters of a string value. 16 bits wide for BMPString, 32 for UniversalString, else 8;
/// only the member of the kind's width is used.
struct RestrCharStri {
    uint8_t kind = TYP_NONE;
    uint32_t length = 0; // in characters
    std::string chars8;
    std::u16string chars16;
    std::u32string chars32;
    /// Character at a place below `length`.
    [[nodiscard]] uint32_t at(uint32_t place) const;
};
/// Longest string that is put together from segments; what is beyond is counted, not kept.
inline constexpr uint32_t maxCharStri = 16777216;

/// The characters of a value with all its segments; `stri.length` is how many there are, the return
/// value the length of the whole value, which saturates at 4294967295. Preserving.
uint32_t makeRestrCharStri(ModuleRec* module, const VNode& value, RestrCharStri& stri);
/// The length of a value in characters, saturating. Preserving.
[[nodiscard]] uint32_t lenOfCharStri(ModuleRec* module, const VNode& value);

/// Length in bits of a value that lists named bits; 2147483647 when a number does not fit.
/// Preserving.
[[nodiscard]] uint32_t lenFromNamedBits(ModuleRec* module, VNodeNr first);
/// The length of the current value under the current type: bits for BIT STRING (trailing zero bits
/// beyond the highest named bit not counted), octets for OCTET STRING, else characters. Preserving.
[[nodiscard]] uint32_t getAnyStringLength();
/// Number of the highest named bit of the current BIT STRING type, -1 without named bits.
/// Preserving.
[[nodiscard]] int64_t highestNamedBit();

/// The bits of a BIT STRING or OCTET STRING value as "0" and "1"; `kind` is that of the type. At
/// most 32000 binary digits and bit numbers below 32000 count. Preserving.
std::string convBitString(uint8_t kind, ModuleRec* module, const VNode& value);
[[nodiscard]] bool equalStrings(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB,
                                const VNode& b);
/// The order of two character string values: negative, 0 or positive; 1 when their kinds differ.
[[nodiscard]] int compareStrings(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b);

} // namespace orvo
