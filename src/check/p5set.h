#pragma once

// The objects of a set (X.681 (02/2021) 12, 15), and whether their identifiers differ.

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "check/check_cache.h"
#include "tree/orvodef.h"
#include "tree/orvorec.h"

namespace orvo {

/// The field named by an entry of a field name chain, the current one: the name that was written,
/// or that of the record which solves it. False for a value.
[[nodiscard]] bool fieldName(ModuleRec* module, std::string& name);

/// The setting at the end of a path through fields that hold objects; none when an object on the
/// way has no such setting. `isSet`: a field on the way holds a set of objects.
VNodeRef settingOf(VNodeRef object, const FieldPath& path, bool& isSet);

/// A walk over the objects of a set.
struct ObjectWalk {
    std::function<void(VNodeRef)> add;
    bool isPartial = false;                                // some objects cannot be told
    std::set<std::pair<ModuleRec*, uint32_t>> walked = {}; // sets that were walked
};
/// Calls add for the objects of a set, or of a reference to one. A set that was walked before
/// brings no new objects.
void walkSet(ObjectWalk& walk, TNodeRef set);
/// The same for the element in a constraint record of a set.
void walkElement(ObjectWalk& walk, SubRef sub);

/// Reports objects of different elements of a set of objects that have equal values in one UNIQUE
/// field (X.681 (02/2021) 9.20, 12.9), at the later element. The set is the current type; it
/// stays. What two objects of one nested set have in common is reported there.
[[nodiscard]] bool checkUnique(ModuleRec* errors);

} // namespace orvo
