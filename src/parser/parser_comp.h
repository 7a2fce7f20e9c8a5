#pragma once

// Component lists of SEQUENCE and SET, alternatives of CHOICE (X.680 (07/2002) clauses 24, 26 and
// 28). The list rules leave the enclosing type as the current type node.

namespace orvo {

void MGR183ComponentList();
void MGR185Component();
void MGR191NamedType();
void MGR999ExtensionAdditionGroup();
void MGR202AlternativeTypeList();
/// Appends the extension marker that EXTENSIBILITY IMPLIED adds to a list: a node of its own.
void appendExtensionMarker();

} // namespace orvo
