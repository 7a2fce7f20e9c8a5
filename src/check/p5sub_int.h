#pragma once

// What the units of the constraint checks share among themselves. All functions work on the current
// constraint record and the current type record, the one constrained. chkSubRec leaves both
// current; the checks of single kinds need not, as it puts both back for them.

#include <string_view>

#include "diag/orvomsg.h"
#include "tree/orvodef.h"
#include "tree/orvorec.h"

namespace orvo {

/// The type whose own constraints the values in a constraint must meet.
enum class ParentType : uint8_t {
    None,       // the constrained type has no constraint before this one
    Referenced, // what the constrained type, a reference, leads to
    Itself,     // the constrained type as it stands: an inner constraint
    InnerNone,  // none, inside an inner constraint
};

/// Puts the constrained type and the constraint back when the scope ends.
class KeepConstrained {
    KeepRec<KIND_TNODE> type_;
    KeepRec<KIND_SUB> constraint_;
};

/// The current type is extensible by its constraint; an extension marker in an inner constraint
/// says nothing about the element or component, which others use as well.
void markExtensible(ParentType parent);
/// Checks the current constraint record by its kind and reports the finding at its line.
[[nodiscard]] bool chkSubRec(ModuleRec* module, ParentType parent);
/// Reports the failure of the current constraint; on a set node as a wrong element or set.
void subError(ModuleRec* module, Msg code, uint32_t line);
/// Reports at the line of the current constraint record.
void recordSubRecError(ModuleRec* module, Msg code, std::string_view detail = {});

// ---- p5sub_elem ---------------------------------------------------------------------------------
[[nodiscard]] bool subRange(ModuleRec* module);
[[nodiscard]] bool subSizeConstr(ModuleRec* module, ParentType parent);
[[nodiscard]] bool subSingleValue(ModuleRec* module, ParentType parent);
[[nodiscard]] bool subContainedSubtype();
[[nodiscard]] bool subWithComp(ModuleRec* module);
[[nodiscard]] bool subWithComps(ModuleRec* module);
[[nodiscard]] bool subUserDefConstr(ModuleRec* module);
[[nodiscard]] bool subNoValueConstr(ModuleRec* module);
[[nodiscard]] bool subOpenTypeConstr();
[[nodiscard]] bool subContents(ModuleRec* module);
/// The text of PATTERN.
[[nodiscard]] bool subText(ModuleRec* module);
[[nodiscard]] bool subSettings(ModuleRec* module);
[[nodiscard]] bool subPermittedAlphabet(ModuleRec* module, ParentType parent);

// ---- p5sub_tab ----------------------------------------------------------------------------------
/// Reports by itself.
[[nodiscard]] bool subTableConstr(ModuleRec* module);

} // namespace orvo
