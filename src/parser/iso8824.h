#pragma once

// The built-in module: the useful and character string types of ISO 8824, written in ASN.1 and
// compiled for every run; each pass takes it before the user modules, but for the first, which
// finds out which kinds of types the modules may have. Its type nodes 1 to 39 (from 42 on the later
// ones) stand for the type kinds of the same numbers.

#include <string>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

struct Iso8824State {
    std::string iso8824Module; // the text; one line
    // The associated types that the notation of today has of its own.
    TNodeNr realComponents, dataComponents, stringComponents;
};
extern Iso8824State iso8824State;

/// Pass 1 of the built-in module, which must be the current one.
void parseISO8824();
/// Reads the type whose components are those of values of a kind that has no components in its own
/// notation (an associated type), as the notation of a module has it. False, and nothing is read,
/// when the kind has none.
[[nodiscard]] bool readAssociatedType(const ModuleRec* module, uint8_t kind);
/// Builds the text of the module in iso8824State.
void makeIso8824ModuleString();
/// Makes type node `kind` of the built-in module a synonym of the text's definition of that kind.
/// Fatal 13 when the text has none.
void addSynonym(TypeCode kind);

} // namespace orvo
