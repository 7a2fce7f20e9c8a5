#pragma once

// Constraint notation: value sets, object sets and constraints at the replay cursor `inp`.

#include <cstdint>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"

namespace orvo {

/// Parses the deferred constraint of the current type record (its `constraint` holds minus the
/// text). What is wrong is recorded, the type is then left without a constraint and no record
/// remains. The type record is current again afterwards.
///
/// The component relation list of a table constraint (`right` holds minus its first SNode) has one
/// entry with TOK_AT for each "@", followed by one with TOK_DOT for the inner-level form "@.", then
/// one for each step: TOK_VALUEID with the negated string number of the identifier, or TOK_NUMBER
/// with the negated string number of the decimal text. All entries are linked by `next`; the last
/// one has 0.
///
/// The text of an exception behind an extension marker, `!` and the value, makes a record that is
/// an exception alone.
void parseSubRec();
/// Parses the deferred exception behind the marker of the current type record, an enumeration: the
/// marker's `ref` becomes its value, 0 when it is wrong. The type record is current again
/// afterwards.
void parseEnumException();

} // namespace orvo
