#pragma once

// Value notation: parses the text of values at the replay cursor `inp` against their governing
// type. Every parser leaves the cursor on the last token of what it consumed.

#include <cstdint>

#include "diag/orvoerr.h"
#include "lex/i64.h"
#include "tree/orvodef.h"

namespace orvo {

/// Replays the deferred text of the current value record, governed by the current type record; a
/// value that is not deferred is left alone. A text that fails makes the value an unresolved
/// reference and leaves no record behind. The value record is current again afterwards.
void parseVNode();
/// Parses a value into the current value record against the current type record and records what is
/// wrong. Both records are current again afterwards. False when the value is not valid.
[[nodiscard]] bool parseValue();

/// Built-in notation by the kind of the governing type in `tNode`; Msg::None on success.
Msg parseBuiltinValue(Cause& cause);
/// A reference to a value into the current value record; `parsAndFields` allows actual parameters
/// and a field name chain. Msg::None or Msg::DefinedValueSyntax.
Msg parseDefinedValue(bool parsAndFields, Cause& cause);

/// `number` or `-` `number`; false for anything else. `line` of a bad negation is the token's.
[[nodiscard]] bool parseIntegerValue(ValUnion& value);
[[nodiscard]] bool parseRealValue(RealVal& real, Cause& cause);

// ---- solve_val_stru -----------------------------------------------------------------------------
[[nodiscard]] bool parseBitStringValue(Cause& cause);
/// SEQUENCE, SET (components by identifier) and their OF forms, by `kind`; the type is in `tNode`.
[[nodiscard]] bool parseSeqValue(uint8_t kind, Cause& cause);
[[nodiscard]] bool parseChoiceValue(Cause& cause);
[[nodiscard]] bool parseAnyValue(Cause& cause);
[[nodiscard]] bool parseObjIdValue(Cause& cause);
[[nodiscard]] bool parseRelativeOidValue(Cause& cause);

// ---- solve_val_stri -----------------------------------------------------------------------------
[[nodiscard]] bool parseCharStringValue(uint8_t kind, Cause& cause);
/// A literal that is the whole value: times and IRIs.
[[nodiscard]] bool parseTextValue(uint8_t kind, Cause& cause);

} // namespace orvo
