#pragma once

// Following references on demand: from a reference record to the type or value it stands for,
// through names of alternatives, of class fields and of object settings.

#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "diag/orvoerr.h"
#include "tree/orvodef.h"
#include "util/flat.h"

namespace orvo {

/// The records that a walk has entered and not left yet; meeting one again is a cycle.
struct VisitList {
    struct Entry {
        ModuleRec* module;
        int64_t record; // TNode, or minus a VNode
    };
    std::vector<Entry> entries;
    FlatSet<uint64_t> index; // of all entries, once there are many
};
/// Enters a record; false when it is on the list already.
[[nodiscard]] bool pushSyn(VisitList& list, ModuleRec* module, int64_t record);

/// Solves the current type record: its chain of references is followed and every record on it
/// marked solved, errors recorded. It is current again afterwards, and skipTypes leads on from it.
/// False only for a cycle (Msg::RecursiveTypeReference, recorded).
bool findActType(VisitList& visited);
bool findActType();
/// The same for the current value record. Texts of values on the way that are not parsed yet are.
bool findActValue(VisitList& visited);
bool findActValue();

/// Follows a name of an alternative (`kind` TYP_CHOICE) or a chain of class field names (TYP_CLASS)
/// from the current type; `first` is the first entry of the chain in `module`. Msg::None: the type
/// arrived at is current. Else the error, with the name it is about.
Msg solveTypeFPtr(VisitList& visited, ModuleRec* module, SNodeNr first, uint8_t kind,
                  std::string_view& text);
/// Follows a chain of field names from the current value, an object. Stops at a type setting, whose
/// entry `next` (0: none left) a type chain goes on from.
Msg solveValueFPtr(VisitList& visited, ModuleRec* module, SNodeNr first, std::string_view& text,
                   SNodeNr& next);
/// What stands for the setting `name` that an object of the class does not have: the default of the
/// field, or an empty object set. It is the current value afterwards.
Msg solveMissingFieldValue(TNodeRef classType, std::string_view name, std::string_view& text);

/// Finds the component, alternative or field of that name on the list that begins at `first` of
/// `module`, through COMPONENTS OF in place; its type record is current then. `kind` is the kind of
/// the type. What is needed of the list is solved.
[[nodiscard]] bool findTypeCompId(uint8_t kind, ModuleRec* module, TNodeNr first,
                                  std::string_view name);
/// Finds the component value or setting of that name on the list that begins at `first` of
/// `module`; it is current then.
[[nodiscard]] bool findValueCompId(uint8_t kind, ModuleRec* module, VNodeNr first,
                                   std::string_view name);
/// To be called when the module's record counters were put back: forgets what look-ups noted about
/// records that no longer exist.
void forgetFoundComps(ModuleRec* module);

} // namespace orvo
