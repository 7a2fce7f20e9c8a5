#pragma once

// Comparison of values.

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// 0 when the two values are equal, else not 0; for INTEGER, ENUMERATED, REAL and the ordered
/// string kinds the sign gives the order (negative: `a` is smaller). References are followed. The
/// current records are kept. Two ANY values are unequal, with a warning at `a`.
[[nodiscard]] int compareValue(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b);
/// The parts of compareValue; 0 or -1.
[[nodiscard]] int compareStruVal(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB,
                                 const VNode& b);
[[nodiscard]] int compareListVal(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB,
                                 const VNode& b);
/// Arcs of an object identifier in a module, at most: those that back ends have room for, and, in
/// the notation of today, the 128 that MIBs are limited to (RFC 2578 3.5). An invalid one has the
/// length invalidObjId.
inline size_t maxArcs(const ModuleRec* module) {
    return newNotation(module) ? 128 : 32;
}
inline constexpr size_t maxArcsText = maxStringLength; // of them in decimal, with commas
inline constexpr uint16_t invalidObjId = 65535;
[[nodiscard]] int compareObjIdVal(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b);

/// The arcs of a value of OBJECT IDENTIFIER or RELATIVE-OID, joined by commas: what the checks
/// stored, or worked out when they have not come to the value yet. Empty when it is not valid.
[[nodiscard]] std::string textOfObjId(ModuleRec* module, const VNode& value);

/// A number that is the same for any two values of one type that are equal, so that values can be
/// looked up among many; compareValue decides. Values that compare equal only because one list of
/// components runs out may differ in it.
[[nodiscard]] uint64_t hashOfValue(ModuleRec* module, const VNode& value);

} // namespace orvo
