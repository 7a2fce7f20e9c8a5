#pragma once

// Information object classes, their syntax, and field names (X.681 (07/2002) clauses 9, 10 and 14).

#include <cstdint>
#include <string_view>

namespace orvo {

/// CLASS { ... } [WITH SYNTAX { ... }] into the current type node.
void MGR60ObjectClassDefn();
void MGR224FieldSpec();
void MGR245TokenOrGroupSpecList();
void MGR247TokenOrGroupSpec();
/// A chain of field names; one new syntax node per name.
void MGR113FieldName();
/// One field name into the current syntax node.
void MGR250PrimitiveFieldName();

/// Class names and the words of WITH SYNTAX have no lower-case letters: records error 241 with the
/// name from the first one on.
void requireCapital(std::string_view name, uint32_t line);

} // namespace orvo
