#pragma once

#include "tree/orvomod.h"

namespace orvo {

/// Writes the syntax tree file of a module that has passed pass 4: stxDir + generation prefix +
/// ".stx". Fatal 2, 7 and 8 when it cannot be opened, written, closed.
void writeTree(ModuleRec* module);
/// Removes the earlier trees of modules that got none in this run: files of their names which say
/// that they are of these modules. Anything else stays. Fatal 7 when one cannot be removed.
void removeEarlierTrees();

} // namespace orvo
