#pragma once

// Assignments and their formal parameters (X.680 (07/2002) clause 15, X.683 (07/2002) clause 8).
// Every rule works on the current token.

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Enters the name of an assignment and makes its head, which is current; none after a syntax
/// error.
VNodeNr newValueHead(const Token& name, bool parameterized);
TNodeNr newTypeHead(const Token& name, bool parameterized);
/// The value behind `::=`, for its head.
void assignedValue(VNodeNr head);

/// {Assignment}: all of a module, up to the first token that begins none.
void parseAssignments();

/// Formal parameters; they are collected in parserState.symbolList and their type nodes follow the
/// head.
void MGR57ParameterList();
void MGR70Parameter();

} // namespace orvo
