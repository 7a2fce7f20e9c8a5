#pragma once

// Types and tags (X.680 (07/2002) clauses 16 to 30 and 45), and what all rules share that make type
// records. Every rule works on the current token and fills the current type node, which its caller
// has created.

#include <cstdint>

#include "tree/orvodef.h"

namespace orvo {

/// A new TNode with the line of the current token, none when the module has a syntax error.
TNodeNr newTypeNode();
/// The current TNode.
TNodeNr thisTypeNode();
/// Makes a TNode current and pending. False when the module has a syntax error: nothing is current
/// and nothing is to be stored then.
bool atType(TNodeNr node);
/// Gives the current TNode its code, unless the module has a syntax error.
void setTypeCode(TypeCode code);
/// Attaches the option comments before the current token to a TNode, which is current afterwards.
void takeOptions(TNodeNr node);

/// One of the names of types that are a token of their own.
[[nodiscard]] bool isTypeName(int32_t code);
/// Tells whether a token can begin a type: a type keyword, `[`, a reference, or a type name.
[[nodiscard]] bool beginsType(int32_t code);

void MGR59Type();
void MGR79UnconstrType();
void MGR82BuiltInType();
void MGR83DefinedType();
void MGR103CollectionType();

} // namespace orvo
