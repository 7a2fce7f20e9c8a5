#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tree/orvomod.h"

namespace orvo {

/// Longest path that is opened, directory and name together: a quarter of what systems take, so
/// that back ends can add to it.
inline constexpr size_t maxPathLength = 1024;

/// A new module record, owned by run.modules, with its handle set; it stands on no list.
ModuleRec* newModuleRec();
/// Puts a record at the end of the module list.
void appendModuleRec(ModuleRec* module);

/// The record of a file prefix: the first on the list that has it, or that has none yet and claims
/// it by its name or its source file; else a new one at the end of the list.
ModuleRec* findOrCreateModRec(std::string_view filePrefix, std::string_view generationPrefix,
                              std::string_view moduleName);
/// Gives a record further down the list its source file name from the command line, by which a file
/// prefix may claim it later.
void setSourceFileName(ModuleRec* module, std::string_view name);

/// dest = prefix + the first `len` characters of `src` + suffix.
const std::string& newStriVal(std::string& dest, std::string_view prefix, size_t len,
                              std::string_view src, std::string_view suffix);

/// Longest name that is cut for a new extension: what is longer is no path that is opened.
inline constexpr size_t maxNameLength = 1024;
/// A file name with the extension, which counts from the last "." behind the last "/". A name that
/// has one keeps it, or loses it to the new one when `replaceExt`; then what exceeds maxNameLength
/// is cut.
std::string setFileName(std::string_view name, std::string_view ext, bool replaceExt);

/// Opens a file. Null when it cannot be opened, is a directory or, for writing, is a source of the
/// run, by whatever path: a listing or tree must not destroy what the run has read or is to list.
/// What is written appears when it is closed (util/outfile).
[[nodiscard]] std::FILE* openFile(const std::string& path, const char* mode);
/// Opens directory + name as openFile does. Failure or a path above maxPathLength: fatal 2 when the
/// mode begins with "w", else 1.
std::FILE* fopenTextFile(std::string_view directory, std::string_view name, const char* mode);
/// Opens a source for reading in the first directory of the path that has it, else as named;
/// `directoryOut` is the directory, "" when opened as named. Fatal 1 when it is found nowhere.
std::FILE* fopenTextFileInSearchPathForRd(const std::vector<std::string>& path,
                                          std::string_view name, std::string& directoryOut);
/// A source of that name can be opened for reading in a directory of the path or as named.
[[nodiscard]] bool sourceExists(const std::vector<std::string>& path, std::string_view name);
/// Appends a directory to a search path; an empty one is ignored.
void addDirToSearchPath(std::vector<std::string>& path, std::string_view directory);
/// Closes a file; null is ignored. A close that fails (buffered output that could not be written)
/// is fatal 8 with the detail.
void closeFile(std::FILE*& file, std::string_view detail);

} // namespace orvo
