#pragma once

// What the units of value notation share among themselves.

#include <cstdint>
#include <string>

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Nesting of values that is parsed: the braces that the parser lets through, a selector of an
/// alternative or of a type within each of them, and the value inside. Only chains of selectors
/// without braces are longer.
inline constexpr uint32_t maxValueDepth = 2 * maxNesting + 1;
struct ValueState {
    uint32_t depth = 0;
};
extern ValueState valueState;

/// The governing type of the current value record becomes the current type record.
void governByCurrentType();
/// The identifier at the cursor, or how messages call the token that stands in its place.
std::string identifierText();
/// A reference to a value begins here: `Module.`, or an identifier that selects no alternative.
bool definedValueFollows();

/// Builds a list of value records: append() links each new record behind the one before, and the
/// first one to the field of the owner that points at the list.
class ValueList {
  public:
    /// The owner is the current value record; its `ref` is cleared.
    ValueList();
    /// A new record, pending, linked to the list.
    VNodeNr append(uint32_t line);

  private:
    VNodeRef owner_;
    VNodeNr last_;
};

} // namespace orvo
