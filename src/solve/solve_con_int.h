#pragma once

// What the units of constraint notation share among themselves. Every parser works on the
// constraint record whose number it is given, reads at the cursor and leaves it on the last token
// consumed; false means that the whole constraint fails, with the cause where there is a precise
// one.

#include <cstdint>
#include <string_view>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"

namespace orvo {

struct ConstraintState {
    bool inAlphabet = false; // inside FROM
    uint32_t depth = 0; // nesting of elements, every level in brackets of its own
};
extern ConstraintState constraintState;

/// Sets a cause and fails.
bool fail(Cause& cause, Msg code);
bool fail(Cause& cause, Msg code, std::string_view text);
/// Gives a cause found further in its text, and fails.
bool failWith(Cause& cause, std::string_view text);
/// Steps to the next token, which must be `code`; else fails with it and the text.
bool expectNext(int32_t code, Cause& cause, std::string_view text = {});

/// Line of a record made at the cursor: that of the instantiating reference inside an instance.
uint32_t lineHere();
/// Reads the type that the record's values belong to into `tNode`.
void readGovernor(SubNr nr);
/// A new constraint record with the governing type of `nr`, its first operand or the sibling of
/// `last`.
SubNr addOperand(SubNr nr);
SubNr addSibling(SubNr last, uint32_t typeMod, TNodeNr type);
/// `,` `...` follows.
bool markerFollows();
/// Records an error of the constraint record at its line.
void recordSubError(SubNr nr, Msg code, std::string_view detail = {});
/// The name of the type in `tNode` for a message; data() is null without one.
std::string_view currentTypeName();
/// A new value record, parsed at once as a value of the type, or as a type.
bool parseValueSetting(VNodeNr& value, TNodeRef governor, Cause& cause);
bool parseTypeSetting(VNodeNr& value, TNodeRef governor, Cause& cause);

// ---- solve_con ----------------------------------------------------------------------------------
bool parseConstraint(SubNr nr, Cause& cause);
/// A set as a whole, and one inside parentheses, where the notation of today has no marker.
bool parseElemSetSpec(SubNr nr, Cause& cause);
bool parseNestedSet(SubNr nr, Cause& cause);

// ---- solve_con_elem -----------------------------------------------------------------------------
bool parseElements(SubNr nr, Cause& cause);

// ---- solve_con_tab ------------------------------------------------------------------------------
bool parseExceptionSpec(SubNr nr, bool alone, Cause& cause);
/// The value behind the `!` at the cursor: of the type that is written, else an INTEGER.
bool parseExceptionValue(VNodeNr& value, Cause& cause);
bool parseOptionalException(SubNr nr, Cause& cause);
bool parseUserDefConstr(SubNr nr, Cause& cause);
bool parseContentsConstraint(SubNr nr, Cause& cause);
bool parseContents(SubNr nr, Cause& cause);
bool parseTableConstr(SubNr nr, Cause& cause);
bool isOpenTypeConstraint();
bool parseOpenTypeConstraint(SubNr nr, Cause& cause);

} // namespace orvo
