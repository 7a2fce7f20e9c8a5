#pragma once

// Instances of parameterized definitions: whom the errors found inside are charged to, and, in pass
// 5, that every actual parameter is used.

#include <cstdint>
#include <string_view>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// Reports the actual parameters of the current type record, an instantiated reference, that its
/// instance does not use (Msg::UnusedActualParameters, "(position) name"). True when all are used
/// and for other types. The record is current again afterwards.
[[nodiscard]] bool checkTNodeActuals();
/// The same for the current value record; what is found does not fail the value.
bool checkVNodeActuals();

// ---- whom errors are charged to -----------------------------------------------------------------

/// Module that an error in a record of `module` is charged to; `instance` is the record's
/// actParRec: the module of the outermost instantiating reference, `module` itself outside
/// instances.
ModuleRec* actErrModPtr(ModuleRec* module, uint32_t instance);
/// The same for what is being parsed: the bottom of the stack of instantiations, else the current
/// module.
ModuleRec* actErrModPtr();

/// Records the cause (if any) and then the error in what is being parsed, both against
/// actErrModPtr(). A detail whose data() is not null is listed behind the error.
/// Nothing is, once the notation in hand has met a name without a definition.
void recordError2(Msg code, const Cause& cause, uint32_t line, std::string_view detail = {});

/// What is being parsed has a fault that is read on where those whom it is charged to are lenient:
/// a warning. False where they are not.
[[nodiscard]] bool tolerate(Msg code, uint32_t line, std::string_view detail = {});

/// Resolves a name in what is being parsed (chkIfSymbolDef), errors as recordError2. `line` is that
/// of the record it is for, `useLine` that of the name itself: inside an instance the former lies
/// in the module of the instantiating reference.
void resolveUse(int32_t& moduleRef, int32_t& name, int32_t& hasActuals, uint32_t line,
                uint32_t useLine);

} // namespace orvo
