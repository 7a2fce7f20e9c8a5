#pragma once

// Pass 5: every actual parameter of an instance shall be used in it.

#include "tree/orvodef.h"

namespace orvo {

/// Reports the actual parameters of the current type record, an instantiated reference, that its
/// instance does not use (Msg::UnusedActualParameters, "(position) name"). True when all are used
/// and for other types. The record is current again afterwards.
[[nodiscard]] bool checkTNodeActuals();
/// The same for the current value record; what is found does not fail the value.
bool checkVNodeActuals();

} // namespace orvo
