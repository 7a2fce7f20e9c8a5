#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvomod.h"

namespace orvo {

/// Phase one: takes the file names of the command line and of its option files into module records
/// (the first into the current module) and evaluates the options that must be known before any
/// module is read. Ends the process with the usage text when an argument is bad or no file is
/// named, and after -VERSION.
void parseCmdLineParams(int argc, char** argv);
/// Phase two: stores the other options of the command line and of its option files as option
/// records of the current module, extending the range; bit k of `kinds` is set for every record of
/// kind k.
void parseCmdLineOptions(int argc, char** argv, uint32_t& kinds, OptRange& range);

/// Keeps what STANDARD-VERSION= and LENIENT= (with their "-") say of the whole run; `inScope`
/// follows the scope marks, within which they speak of single modules.
void noteEdition(std::string_view text, bool& inScope);
/// Evaluates an option (with its "-") of phase one; false when it is one of them and its value is
/// bad.
[[nodiscard]] bool parseSelectedCmdLineOpts(std::string_view text);
/// What modules store of an option, nothing of one of phase one. `argv` supplies the arguments
/// behind `index` that belong to the value of -BEO= and -INFO=; null for option files.
[[nodiscard]] StoredOption optionToStore(std::string_view text, int index, int argc, char** argv);
/// Stores an option as a record of the current module.
void storeOption(const StoredOption& option, uint32_t& kinds, OptRange& range);
/// A file name of the command line (or of the option file named `file`, when its data() is not
/// null); the first goes to the current module, `count` counts them. False when the name is not
/// acceptable.
[[nodiscard]] bool parseFilePrefix(std::string_view name, int& count, std::string_view file);
/// VERBOSE= value: NONE, NORMAL, TOOL in any case, or 0, 1, 2; sets `verbose`.
[[nodiscard]] bool verboseOptionOK(std::string_view value);
/// Warns, from verbosity 2 on, that an argument was ignored, and counts the warning.
void argumentIgnored(std::string_view text, std::string_view file);
/// Prints the usage text and ends the process with status 1.
[[noreturn]] void usage();

} // namespace orvo
