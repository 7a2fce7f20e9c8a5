#pragma once

namespace orvo {

/// Pass 4 for the current module: writes its module nodes, one for itself and one per module it
/// names.
void passFour();

} // namespace orvo
