#pragma once

// Files that hold several modules, written anew with one module each.

#include <string>
#include <string_view>
#include <vector>

#include "kavrimol/prefixes.h"
#include "kavrimol/sources.h"

namespace kavrimol {

/// A file to be written: the text of one module.
struct SplitFile {
    std::string name;
    std::string text;
};

/// The texts of the modules, each with what stands before its header and behind its END on the same
/// line; put together they are the whole text again.
std::vector<std::string_view> splitText(std::string_view text,
                                        const std::vector<ModuleText>& modules);

/// What the arguments come to, in their order; errors and failures go to `findings` and `sources`.
std::vector<SplitFile> splitFiles(Sources& sources, const std::vector<std::string>& arguments,
                                  PrefixPool& pool, Findings& findings);

} // namespace kavrimol
