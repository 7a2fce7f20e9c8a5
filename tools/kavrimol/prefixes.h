#pragma once

// File prefixes: the names under which the compiler finds the files of the modules.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kavrimol/sources.h"

namespace kavrimol {

/// Longest prefix that the compiler's PREFIXLEN= allows.
inline constexpr size_t maxPrefixLength = 32;

/// Prefixes that are given away.
struct PrefixPool {
    size_t maxLength = maxPrefixLength;
    std::unordered_set<std::string> taken{};
    std::unordered_map<std::string, size_t> lastNumber{}; // of those that begin alike
};

/// The name is one that PREFIX= accepts and keeps whole.
[[nodiscard]] bool isPrefix(const PrefixPool& pool, std::string_view name);
/// A prefix made of the module's name, and taken from now on; "" when none is left. Names that
/// `isFree` refuses are passed over.
std::string takeUniquePrefix(PrefixPool& pool, std::string_view module,
                             const std::function<bool(const std::string&)>& isFree);

/// A module that is compiled.
struct UsedModule {
    FoundModule found;
    std::string prefix;
};

/// What is said of the modules, a message each, in order.
struct Findings {
    std::vector<std::string> errors;   // no option file can be right
    std::vector<std::string> mends;    // the option file is right once the user has done this
    std::vector<std::string> warnings; // to be known
};

/// The modules of the named files and all that they refer to, in the order in which the compiler
/// comes upon them.
std::vector<UsedModule> collectModules(Sources& sources, const std::vector<std::string>& arguments,
                                       Findings& findings);
/// Gives each module its prefix.
void choosePrefixes(const Sources& sources, PrefixPool& pool, std::vector<UsedModule>& modules,
                    Findings& findings);
/// Warns of the first module that shows newer notation; for a run without STANDARD-VERSION=.
void findNewerNotation(const std::vector<UsedModule>& modules, Findings& findings);
/// The text of the option file; the options are outside of scopes, as they hold for all modules.
/// `standardVersion`: "" = not given.
std::string optionFileText(const PrefixPool& pool, const std::string& standardVersion,
                           const std::vector<UsedModule>& modules);

} // namespace kavrimol
