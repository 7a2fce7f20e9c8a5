#pragma once

// Compatibility of types, and the component or value that the current constraint record applies to.

#include <cstdint>
#include <string>
#include <string_view>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Tells whether values of type B may stand for values of type A. References are followed, class
/// field types included; the order matters (ENUMERATED A admits INTEGER B). The current TNode is
/// kept.
[[nodiscard]] bool typeCompatible(ModuleRec* modA, TNodeNr typeA, ModuleRec* modB, TNodeNr typeB);
/// The same for a contained subtype.
[[nodiscard]] bool subtypeCompatible(ModuleRec* modA, TNodeNr typeA, ModuleRec* modB,
                                     TNodeNr typeB);
/// Tells whether one of two resolved types has code1 or code2 and the other is the type of code
/// `partner` that the built-in module defines for code1. The modules are those of the types.
[[nodiscard]] bool iso8824TypeCompatible(const TNode& typeA, ModuleRec* modA, const TNode& typeB,
                                         ModuleRec* modB, int code1, int code2, int partner);

/// Tells whether the current constraint record applies to a component of the list, COMPONENTS OF
/// entries (up to the first extension marker of the included type) and extension addition groups
/// searched in place. The component found is current then, and `count` is raised by its place from
/// 1, extension markers of the list itself counted; without success the current TNode is kept and
/// `count` raised by the whole length.
[[nodiscard]] bool findTypeCompByConstr(ModuleRec* module, TNodeNr first, uint32_t* count);
/// Tells whether the current constraint record applies to the governing type of a value of the
/// list; that value is current then.
[[nodiscard]] bool findValueCompByConstr(ModuleRec* module, VNodeNr first);

/// prefix + the ASN.1 name of a type code with "_" for "-" (and for blanks when asked for) +
/// suffix.
std::string asnTypeName(std::string_view prefix, int code, bool blanksToo, std::string_view suffix);
/// Name under which the built-in module defines a type: `__EMBEDDED_PDV`, `__EXTERNAL_1990`.
std::string hiddenTypeName(int code);

} // namespace orvo
