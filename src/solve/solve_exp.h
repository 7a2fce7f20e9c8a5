#pragma once

// Copies of parameterized definitions (instances).

#include "tree/orvodef.h"

namespace orvo {

/// Copies the current type record and all below it into the current module as fresh records of the
/// instantiation on top of the stack, formal references redirected to the actual parameters.
/// `parent` is the class or structure that the copy belongs to (0 = none). The copy is current
/// afterwards; returns it.
TNodeNr expandType(TNodeNr parent);
/// The same for the current value record.
VNodeNr expandValue();
/// A type record of the current module, part of a parameterized definition that is not solved,
/// mentions a formal parameter.
[[nodiscard]] bool dependsOnFormals(TNodeNr type);

} // namespace orvo
