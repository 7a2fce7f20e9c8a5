#pragma once

// Constraint notation: value sets, object sets and constraints at the replay cursor `inp`.

#include <cstdint>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"

namespace orvo {

/// Parses the deferred constraint of the current type record (its `constraint` holds minus the text).
/// What is wrong is recorded, the type is then left without a constraint and no record remains. The
/// type record is current again afterwards.
void parseSubRec();

}  // namespace orvo
