#pragma once

#include "tree/orvomod.h"

namespace orvo {

/// Writes the syntax tree file of a module that has passed pass 4: stxDir + generation prefix +
/// ".stx". Fatal 2, 7 and 8 when it cannot be opened, written, closed.
void writeTree(ModuleRec* module);

} // namespace orvo
