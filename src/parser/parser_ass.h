#pragma once

// Assignments and their formal parameters (X.680 (07/2002) clause 15, X.683 (07/2002) clause 8).
// Every rule works on the current token.

namespace orvo {

/// {Assignment}: all of a module, up to the first token that begins none.
void parseAssignments();

/// Formal parameters; they are collected in parserState.symbolList and their type nodes follow the
/// head.
void MGR57ParameterList();
void MGR70Parameter();

} // namespace orvo
