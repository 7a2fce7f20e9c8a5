#pragma once

// Pass 2: binds the references of a module to the records that define them.

namespace orvo {

/// Pass 2 for the current module.
void solveRefs1();
/// Its three steps: imported symbols get their definitions; type references are resolved and the
/// WITH SYNTAX lists of classes checked; value references are resolved.
void solveExternalSymbols();
void solveSynonymTNodesAndDefinedSyntaxes();
void solveSynonymVNodes();

} // namespace orvo
