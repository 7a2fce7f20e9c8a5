#pragma once

// What the units of reference following share among themselves.

#include <cstdint>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Ends the run (fatal 5) before nested references use up the stack.
void checkStack();
/// Module of the child of a selection type or field list: a `refMod` that was never set means its
/// own.
ModuleRec* childModule(ModuleRec* module, int32_t refMod);
/// The current record becomes a reference that leads nowhere; it is not written.
void makeUnresolvedType();
void makeUnresolvedValue();
/// The current value is a type or set setting: its `ref` is a type record of its own module.
bool isTypeSetting();

} // namespace orvo
