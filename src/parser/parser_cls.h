#pragma once

// Information object classes, their syntax, and field names (X.681 (07/2002) clauses 9, 10 and 14).

#include <cstdint>
#include <string_view>

#include "tree/orvodef.h"

namespace orvo {

/// CLASS { ... } [WITH SYNTAX { ... }] into the current type node.
void MGR60ObjectClassDefn();
/// One field; `classNode` is the class being defined. The field's node is current afterwards.
void MGR224FieldSpec(TNodeNr classNode);
/// Returns the last syntax node of the list itself, which ends a group or the whole.
SNodeNr MGR245TokenOrGroupSpecList();
/// One element into the current syntax node.
void MGR247TokenOrGroupSpec();
/// A chain of field names; one new syntax node per name.
void MGR113FieldName();
/// One field name into the current syntax node.
void MGR250PrimitiveFieldName();

/// Makes a TNode a field list: `.` FieldName of the class that the type kind `kind` stands for, a
/// child node. The current token is the dot.
void saveFieldList(TNodeNr node, TypeCode kind);

/// Class names and the words of WITH SYNTAX have no lower-case letters: records error 241 with the
/// name from the first one on.
void requireCapital(std::string_view name, uint32_t line);

} // namespace orvo
