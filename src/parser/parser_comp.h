#pragma once

// Component lists of SEQUENCE and SET, alternatives of CHOICE (X.680 (07/2002) clauses 24, 26 and
// 28). The rules of lists leave the enclosing type as the current type node, the others the node
// that they have made.

namespace orvo {

void MGR183ComponentList();
void MGR185Component();
void MGR191NamedType();
void MGR999ExtensionAdditionGroup();
void MGR202AlternativeTypeList();
/// Makes the node of an extension marker.
void appendExtensionMarker();

} // namespace orvo
