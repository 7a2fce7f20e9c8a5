#pragma once

// What is passed over: macros of X.208 and what they define, encoding instructions and encoding
// control sections. With notation of today only.

#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Tells whether a macro is defined at the current token, or used in the value or type assignment
/// that begins there.
[[nodiscard]] bool macroFollows();
/// Tells whether the type that the token alone names may be a macro, which is not known before all
/// modules are read (X.208 8.4.1: a macro's name is of capital letters).
[[nodiscard]] bool mayBeMacro(const Token& type);
/// Notes a name that may be that of a macro: the type of `value`, which is only known when that is
/// settled, or in front of notation that no type has.
void noteMacro(const Token& macro, VNodeNr value, bool byNotation);
/// Notes a name that alone stands behind `::=`: where it is a macro, `type` is none.
void noteMacroType(const Token& macro, TNodeNr type);
/// Passes over a macro definition; reads the value or type that a macro defines.
void macroAssignment();
/// The name stands for encoding rules that are known.
[[nodiscard]] bool isEncodingReference(std::string_view name);
/// {`[` encodingreference `:` ... `]`} in front of a type
void encodingPrefixes();
/// {ENCODING-CONTROL encodingreference ...} in front of END
void encodingControlSections();

} // namespace orvo
