#pragma once

// Information objects in the syntax that their class defines, or in default syntax.

#include <cstdint>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"

namespace orvo {

/// An object of the class in `tNode` into the current value record, which is current again
/// afterwards.
[[nodiscard]] bool parseDefinedStx(Cause& cause);
[[nodiscard]] bool parseDefaultStx(Cause& cause);

/// True when the current type record is information from an object whose chain ends in an object
/// set.
[[nodiscard]] bool isFieldListObjSet();
/// Records in the current value record, a type setting, the object set that the information from an
/// object in the current type record stands for: refMod becomes the set's module as seen from the
/// current one and ref its type record. Without a reference to that module the setting stays as it
/// is.
void setFieldListObjSet();
/// The information from an object in whose place setFieldListObjSet put the set, a type record of
/// the setting's module; 0 for other settings.
TNodeNr givenByFieldList(VNodeRef setting);

// ---- solve_stx_chk ------------------------------------------------------------------------------
/// Checks the WITH SYNTAX list of the current class (pass 5): duplicate fields, then field names
/// and LL(1).
[[nodiscard]] bool checkUsrDefSyntax();
/// Checks the WITH SYNTAX list of the current class (pass 2): unknown fields (149), invalid
/// literals (460). Errors are recorded against the current module; the class stays current.
void checkSyntaxDef();

} // namespace orvo
