#pragma once

namespace orvo {

/// Writes the type list for the integrated environment: "Module.Type" for every type assignment
/// without formal parameters of every user module.
void zovCreateTypeList();

} // namespace orvo
