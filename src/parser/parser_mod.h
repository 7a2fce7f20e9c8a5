#pragma once

// A whole module: header, EXPORTS, IMPORTS and the frame around the assignments (X.680 (07/2002)
// clause 12). Every rule works on the current token.

namespace orvo {

void MGR3ModuleDefinition();
void MGR4ModuleIdentifier();

/// Collects the symbols of an EXPORTS clause or of one FROM clause in parserState.symbolList.
void MGR24SymbolList();
void MGR26Symbol();

} // namespace orvo
