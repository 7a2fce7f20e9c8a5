#pragma once

// Types that say the same though they were written apart.

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Two types, references followed, have the same structure (X.680 (02/2021) annex F): kinds,
/// identifiers and what may be absent agree in all parts; tags and constraints do not count.
/// Preserving.
[[nodiscard]] bool sameStructure(TNodeRef a, TNodeRef b);

} // namespace orvo
