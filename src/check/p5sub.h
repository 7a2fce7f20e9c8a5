#pragma once

// Pass 5 over constraints.

#include "tree/orvodef.h"

namespace orvo {

/// Checks the constraint of the current type record; errors are charged to `module`. Preserving.
/// True when it is valid.
[[nodiscard]] bool checkSubRec(ModuleRec* module);

} // namespace orvo
