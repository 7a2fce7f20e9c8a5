#pragma once

// What is passed over: macros of X.208 and what they define, encoding instructions and encoding
// control sections. With notation of today only.

namespace orvo {

/// Tells whether a macro is defined at the current token, or used in the value or type assignment
/// that begins there.
[[nodiscard]] bool macroFollows();
/// Passes over a macro definition; reads the value or type that a macro defines.
void macroAssignment();
/// {`[` encodingreference `:` ... `]`} in front of a type
void encodingPrefixes();
/// {ENCODING-CONTROL encodingreference ...} in front of END
void encodingControlSections();

} // namespace orvo
