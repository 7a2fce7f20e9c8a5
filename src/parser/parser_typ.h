#pragma once

// Types and tags (X.680 (07/2002) clauses 16 to 30 and 45). Every rule works on the current token
// and fills the current type node, which its caller has created.

#include <cstdint>

namespace orvo {

/// Tells whether a token can begin a type: a type keyword, `[`, a reference, or a type name.
[[nodiscard]] bool beginsType(int32_t code);

void MGR59Type();
void MGR79UnconstrType();
void MGR82BuiltInType();
void MGR83DefinedType();
void MGR103CollectionType();

} // namespace orvo
