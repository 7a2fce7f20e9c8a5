#pragma once

// Global options: the options of the command line, of option files and of the comments before a
// module's header, evaluated per module once the header has been read.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "options/orvoopt_val.h"
#include "tree/orvomod.h"

namespace orvo {

/// When and on what condition an option is evaluated.
enum class OptStage : uint8_t {
    Startup, // settled by the command line before any module is read; no effect here
    Pass1,   // before all others
    Pass2,   // before all others but PREFIXLEN=, whose value it needs
    Scope,   // begins or ends a scope block
    Any,     // pass 3, whatever the kind of the option record, its value may be empty
    Value,   // pass 3, option records of kind 3 with a value
};

/// An option in use: what its check may read and change.
struct OptUse {
    OptionBlock& block;
    ModuleRec* module; // null while defaults are set
    TedNr record;      // its option record
};
struct GlbOption;
/// Validates a value and stores it. False = rejected, nothing is stored.
using GlbOptionCheck = bool (*)(const OptUse& use, const GlbOption& row, std::string_view value);

/// A row of the table of global options.
struct GlbOption {
    std::string_view name; // upper case, with its "=" if it has one
    OptStage stage;
    GlbOptionCheck check;
    int32_t min, max; // bounds of numbers
    std::span<const ValueName> names;
    std::string_view dflt;   // empty = not given
    std::string_view values; // alternatives separated by "|", for people
    std::string_view help;
};
/// All global options in the order of the table.
std::span<const GlbOption> glbOptions();
/// The values of an option as people write them: alternatives separated by "|", "" when it has
/// none.
std::string optionValues(const GlbOption& row);
/// The row of the option that the text (without lead-in character, its name in upper case) begins
/// with.
const GlbOption* findGlbOption(std::string_view text);

/// Evaluates the option records of a range for a module. Rejected options get kind 0, their kinds'
/// bits are set in `rejectedKinds`, and each is reported as a warning at `line`.
void checkGlobalOptions(ModuleRec* module, uint32_t& rejectedKinds, OptRange range, uint32_t line);

/// Rejects an option: kind 0, warning 11 and a line on standard error. `text` includes the lead-in
/// character.
void markInvOpt(ModuleRec* module, TedNr record, uint32_t& rejectedKinds, std::string_view text,
                uint32_t line);

/// What an option, given without its lead-in character, does to the scope.
enum class ScopeMark : uint8_t { None, Begin, End };
ScopeMark scopeMark(std::string_view text);
/// Tells whether one of the names of the list, separated by ":", is the module's file prefix
/// (before it has one: the default prefix of its name).
bool moduleIsInScopeList(const ModuleRec* module, std::string_view list);
/// PREFIX=: maps a module reference to a module record in the module's own map.
[[nodiscard]] bool prefixOptOK(ModuleRec* module, std::string_view value);
/// The module that a reference is mapped to by PREFIX=; null when there is none.
ModuleRec* mappedModule(const OptionBlock& options, std::string_view reference);
/// Cuts a file or generation prefix to PREFIXLEN= characters, with a warning when `warn` is set.
std::string_view checkPrefixOptionPart(ModuleRec* module, std::string_view what,
                                       std::string_view part, bool warn);
/// The empty text, or a revision control keyword followed by the end or ":".
bool isRCSKeyWord(std::string_view text);

} // namespace orvo
