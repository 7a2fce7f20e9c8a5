#pragma once

// The objects of object sets: what set arithmetic, sets in sets and information from objects leave
// of them (X.681 (02/2021) clauses 12 and 15), and the rule that values of UNIQUE fields differ.

#include <string>
#include <string_view>
#include <vector>

#include "tree/orvorec.h"

namespace orvo {

/// The setting of an object, the current value, for a field, or the default that its class has;
/// none when there is neither. False when the value is no object.
[[nodiscard]] bool settingOfField(std::string_view name, VNodeRef& setting);

/// The name of the field that an entry of a field name chain stands for; false when it has none.
[[nodiscard]] bool nameOfField(ModuleRec* module, std::string& name);

/// The objects of the set that the current value, a set or a setting with one, holds, each once and
/// in order. `all`: an operator admits objects that are not listed. Preserving.
std::vector<VNodeRef> objectsOfSetting(bool& all);

/// The current type record is an object set: its objects are compared at the end of pass 5.
void noteObjectSet(ModuleRec* errors);
/// Two objects of a set have different values in each UNIQUE field (X.681 (02/2021) 12.10 c).
void checkUniqueFields();

} // namespace orvo
