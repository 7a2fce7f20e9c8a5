#pragma once

// Enumeration items, named numbers and named bits (X.680 (07/2002) clauses 18, 19 and 21). The
// current type node is the type they belong to, and stays so.

#include "tree/orvodef.h"

namespace orvo {

void MGR150EnumerationItemList();
/// `type`: TYP_INTEGER or TYP_BITSTR.
void MGR147NamedIdentList(TypeCode type);
/// `type`: TYP_INTEGER, TYP_BITSTR or TYP_ENUM, whose items need no number.
void MGR152NamedIdent(TypeCode type);

} // namespace orvo
