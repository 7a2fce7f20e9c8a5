#pragma once

// Pass 5 over constraints.

#include "tree/orvodef.h"

namespace orvo {

/// Checks the constraint of the current type record; errors are charged to `module`. `isReference`:
/// the node is a reference. Preserving. True when it is valid.
[[nodiscard]] bool checkSubRec(ModuleRec* module, bool isReference);

} // namespace orvo
