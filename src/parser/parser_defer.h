#pragma once

// Deferred ranges: notation whose meaning depends on a type that may be defined later is kept as
// tokens. Types inside it are parsed at once; a marker token with the number of their node stands
// in front of where they were.

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Starts a range and returns its number. Returns none when the tokens go to a range being recorded
/// already or when the module has a syntax error.
DNodeNr initDeferList();
/// Resumes a range that was suspended.
void initDeferList(const DNode& saved);
/// Stores the range `nr` and ends the recording; nothing happens for none.
void storeDeferList(DNodeNr nr);
/// Suspends the recording and hands the range over; what follows is not recorded.
void storeDeferList(DNode& saveTo);
/// A range is being recorded.
[[nodiscard]] bool isDeferring();
/// Appends a consumed token to the range being recorded, which takes the record over.
void deferToken(TokNr nr);

// Rules. The TNode and the VNode that were current (and pending) before are so afterwards. Those
// that record a range return its number; none when the module has a syntax error or the tokens went
// to a range being recorded. The number is that of the next DNode when the rule is called outside
// deferred notation.

/// A value after a type.
DNodeNr MGR68OpenValue();
/// `{` contents `}`: value sets, object sets, actual parameters.
DNodeNr MGR63BraceValue();
/// Notation with balanced braces and parentheses, up to a token that is no part of it.
void MGR178Contents();
/// `(` contents `)`: one constraint, into the range being recorded.
void parenthesizedContents();
/// `!` and the exception behind a marker. Kept for its type as any value is.
DNodeNr exceptionSpec();
/// A type inside deferred notation: the current token is its marker.
void MGR259DeferredType();
/// Makes the node and the marker of a type that begins at the current token, and parses it.
void deferType();

} // namespace orvo
