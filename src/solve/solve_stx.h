#pragma once

// Information objects in the syntax that their class defines, or in default syntax.

#include <cstdint>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"

namespace orvo {

/// An object of the class in `tNode` into the current value record, which is current again afterwards.
[[nodiscard]] bool parseDefinedStx(Cause& cause);
[[nodiscard]] bool parseDefaultStx(Cause& cause);

/// True when the current type record is information from an object whose chain ends in an object set.
[[nodiscard]] bool isFieldListObjSet();
/// Records in the current value record the object set that the current type record stands for.
void setFieldListObjSet();
/// Sets up a setting whose type another field of the same object gives.
[[nodiscard]] bool parseVarSettingPassOne(VNodeNr object, int32_t name, ModuleRec* module, TNodeNr field, Cause& cause);

// ---- solve_stx_chk
/// Checks the WITH SYNTAX list of the current class (pass 5): duplicate fields, then field names and LL(1).
[[nodiscard]] bool checkUsrDefSyntax();
/// Checks the WITH SYNTAX list of the current class (pass 2): unknown fields (149), invalid literals (460).
void checkSyntaxDef();

}  // namespace orvo
