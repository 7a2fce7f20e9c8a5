#pragma once

// Enumeration items, named numbers and named bits (X.680 (07/2002) clauses 18, 19 and 21). The
// current type node is the type they belong to, and stays so.

namespace orvo {

void MGR150EnumerationItemList();
void MGR147NamedIdentList();
void MGR152NamedIdent();

} // namespace orvo
