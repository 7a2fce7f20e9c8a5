#pragma once

// Checks of values: their form, and their place in the constraints of their type.

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Checks the current value against its governing type, once per value record. `report` asks for
/// messages, `constrain` that the value also meet the constraints of that type; errors are charged
/// to `module`. Preserving.
[[nodiscard]] bool checkVNode(ModuleRec* module, bool report, bool constrain);
/// Checks the current value against the current type. `value` is the record that findings stand at.
[[nodiscard]] bool checkValNode(ModuleRec* module, VNodeRef value, bool report, bool constrain);
/// Checks the actual parameters from record `first` of a module on that are values against their
/// governors (X.683 (02/2021) 9.3); nothing in older notation. Preserving.
[[nodiscard]] bool checkActualValues(ModuleRec* module, uint32_t first);

} // namespace orvo
