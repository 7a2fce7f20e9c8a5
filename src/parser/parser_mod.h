#pragma once

// A whole module: header, EXPORTS, IMPORTS and the frame around the assignments (X.680 (07/2002)
// clause 12). Every rule works on the current token.

#include <cstdint>

namespace orvo {

void MGR3ModuleDefinition();
void MGR4ModuleIdentifier();

/// Collects the symbols of an EXPORTS clause (SYM_EXPORTED) or of one FROM clause (SYM_IMPORTED) in
/// parserState.symbolList.
void MGR24SymbolList(uint8_t clause);
void MGR26Symbol(uint8_t clause);

} // namespace orvo
