#pragma once

// Constructors of type, tag, constraint and syntax records in the current module. A new record is
// the pending record of its kind: it stays in the buffer, and the one before it is written.

#include <cstdint>

#include "tree/orvodef.h"

namespace orvo {

/// What a record built inside an instantiation takes from it: the line of the instantiating
/// reference and the number of the instance.
struct InstContext {
    uint32_t line = 0;
    uint32_t instance = 0;
};
/// The instantiation in force, kept by the unit that instantiates parameterized definitions; null
/// outside any.
struct InstState {
    const InstContext* top = nullptr;
};
extern InstState instState;

/// What the head constructors look at of a symbol's flags.
enum HeadFlags : uint32_t { HEAD_EXPORTED = 1, HEAD_PARAMETERIZED = 8 };

/// A new TNode, TYP_NONE. With a context its line and instance number come from there.
TNodeNr addTypeArc(const InstContext* context, uint32_t line);
/// The head TNode of a type assignment, at the end of the module's chain. `flags` are the symbol's;
/// the formal parameters of a parameterized one follow the head as the next TNodes.
TNodeNr addTypeHeadArc(int32_t name, uint32_t flags, uint32_t line);
/// Sets the type code of the current TNode and the option defaults that go with it; a structured
/// type's first component is the TNode that comes next.
void setTypeNode(uint8_t code);

/// Appends a tag to the chain that is being built; its `next` is not looked at. flushTagRec ends
/// it.
TagNr addTagRec(const TagRec& tag);
void flushTagRec();

/// A new constraint record for values of a type, without kind. Inside an instantiation its line is
/// that of the instantiating reference.
SubNr addSubArc(uint32_t typeMod, TNodeNr typeNr, uint32_t line);
/// Makes the constraint `nr` the left operand of a new operator that takes over its number. The
/// operand is the current and pending record afterwards; returns its new number.
SubNr addAndSwap(SubNr nr, uint8_t kind);

/// A new syntax list entry. Inside an instantiation its line is that of the instantiating
/// reference.
SNodeNr addSyntaxArc(uint32_t line);

} // namespace orvo
