#pragma once

// The source files: the named ones, and those of the directories in which the compiler looks.

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kavrimol/scan.h"

namespace kavrimol {

struct SourceFile {
    std::string path; // as the user would write it
    std::vector<ModuleText> modules;
};

/// A module of a source file. Files are never removed, so it stays valid.
struct FoundModule {
    const SourceFile* file = nullptr;
    const ModuleText* module = nullptr;
};

/// Modules of scanned directories by name.
using ModuleIndex = std::unordered_map<std::string, std::vector<FoundModule>>;

struct Sources {
    std::vector<std::string> directories; // with "/" behind them, in the order of the search
    std::deque<SourceFile> files;         // each read once, whatever its names
    std::unordered_map<std::string, SourceFile*> byRealPath;    // null: it cannot be read
    std::unordered_map<std::string, std::string> firstWithName; // file name -> directory
    ModuleIndex inDirectories, inCurrent; // of the files to which their name leads
    ModuleIndex hidden; // of those behind a file of the same name in an earlier directory
    bool directoriesScanned = false, currentScanned = false;
    std::vector<std::string> failures; // what could not be read, a message each
};

/// Reads a file as a whole. False, with a message, when it is no readable file.
[[nodiscard]] bool readFile(const std::string& path, std::string& text, std::string& failure);

/// The path to which a name leads, as the compiler finds it: in the first directory that has it,
/// else as it stands.
std::string findInDirectories(const Sources& sources, const std::string& name);
/// The path of an argument, which may lack ".asn".
std::string findArgument(const Sources& sources, std::string_view argument);

/// Scans a file, unless that is done already; null, with a failure noted once, when it cannot be
/// read.
const SourceFile* loadFile(Sources& sources, const std::string& path);

/// The files that define a module: those of the directories or, when none of them does, those of
/// the current directory, where the compiler looks last. Scans them when it has to.
const std::vector<FoundModule>& findModule(Sources& sources, const std::string& module);

/// The path leads to a file with contents, no directory or device.
[[nodiscard]] bool isFile(const std::string& path);
/// Both paths lead to one existing file.
[[nodiscard]] bool isSameFile(const std::string& one, const std::string& other);
/// The path leads to a file that has been scanned.
[[nodiscard]] bool isLoaded(const Sources& sources, const std::string& path);

} // namespace kavrimol
