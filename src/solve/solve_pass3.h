#pragma once

// Pass 3: solves every assignment of a module that is not parameterized, and what it needs of
// others.

#include "solve/solve_ref.h"
#include "tree/orvodef.h"

namespace orvo {

/// Pass 3 for the current module.
void solveRefs2();
/// Solves the current record, the head of a type or value assignment; it is current again
/// afterwards.
void parseTypeAssignment();
void parseValueAssignment();

/// Solves the current type record and everything below it; it is current again afterwards.
void parseTNode();
/// The same for a component; one with COMPONENTS OF is checked too.
void parseTNodeAndSolveCompOf();

/// Parses the default of the current type record, a component or field; it is current again
/// afterwards.
void parseDefaultPassTwo();
/// Prepares the deferred default in the current value record, whose field is the current type
/// record, for parsing: a default of a set field becomes a set, one of a field whose type another
/// field names a value or set governed by that type. Both records are current again afterwards.
void parseDefaultPassOne();
/// The default in the current value record is governed by the current type: a new deferred value,
/// or a set, with the text minus `deferred`.
void updateVariableDefault(bool isSet, int32_t deferred);

/// The current component is COMPONENTS OF in a structure of kind `mainKind`: false, recorded, when
/// what it includes is no such structure or includes itself.
bool solveCompOf(uint8_t mainKind, VisitList& visited);

} // namespace orvo
