#pragma once

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Checks the current type and everything below it, once per type record. `synonym`: it is defined
/// as another type; `report` asks for messages, which are charged to `module`.
[[nodiscard]] bool checkTNode(ModuleRec* module, bool synonym, bool report);

} // namespace orvo
