#pragma once

// The trees of a run as lines of text that do not depend on where and in which order definitions
// stood: every field of every record reached from a head, links replaced by what they lead to.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "stx/stxreader.h"

namespace orvo::meta {

/// Lines of each definition by its name: "Ty1.ref[a].constraint.subKind=SUB_RANGE".
using Dump = std::map<std::string, std::vector<std::string>>;

/// Records and strings of a file, by kind and number.
using Shown = std::set<std::pair<stx::Kind, uint32_t>>;

/// Adds the definitions of the module in the file; false with `error` set when it is unusable.
/// `shown` gets what of the file the lines tell.
[[nodiscard]] bool addDump(Dump& dump, stx::Trees& trees, const std::string& path,
                           std::string& error, Shown* shown = nullptr);

} // namespace orvo::meta
