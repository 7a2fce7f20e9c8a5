#pragma once

// Macros of X.208 that a module names, once it is known which names are macros: between passes 1
// and 3. With notation of today only.

namespace orvo {

/// Settles which uses of the current module name a macro, when every module has been parsed and no
/// name resolved. A value whose type turns out to be one gets the type that its value tells: a
/// number is an INTEGER, braces an OBJECT IDENTIFIER; what tells none is left out with a warning. A
/// use that names something else is an error.
void settleMacros();
/// Before that, in every module: leaves out the types that are a macro's name alone, with a
/// warning.
void settleMacroTypes();
/// Gives the values of the current module that a macro defines by reference the types of the values
/// that they lead to, when all names are resolved.
void governMacroReferences();

} // namespace orvo
