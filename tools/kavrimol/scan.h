#pragma once

// Finds the modules in a source text, with the names of the modules that each of them refers to.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavrimol {

/// Longest name that the compiler keeps whole.
inline constexpr size_t maxNameLength = 128;

/// Another module that a module names behind FROM or in an external reference `Module.name`.
struct Reference {
    std::string module;
    uint32_t line = 0; // where it is named first
};

/// Something that only notation newer than that of 1994 has.
struct Sign {
    std::string what; // "" = there is none
    uint32_t line = 0;
};

/// A module inside a source text.
struct ModuleText {
    std::string name;
    uint32_t line = 0; // of the name in the header
    size_t end = 0;    // offset behind its END; the end of the text when END is missing
    Sign newer;        // the first one in the module or in front of it
    std::vector<Reference> references; // every module once, in the order in which they are named
};

/// The modules of a text in their order. Any text will do: what is no module is passed over.
std::vector<ModuleText> scanModules(std::string_view text);

} // namespace kavrimol
