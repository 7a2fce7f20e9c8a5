// Nothing is written before everything has been read and found in order: a run that fails leaves
// the files as they were. What has to be mended outside, such as the name of a file, does not make
// the option file wrong, so it is written all the same.

#include "kavrimol/kavrimol.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "kavrimol/prefixes.h"
#include "kavrimol/split.h"
#include "util/ascii.h"
#include "util/outfile.h"
#include "util/text.h"

namespace kavrimol {
namespace {

using orvo::concat;

constexpr int statusFault = 1, statusFailure = 2;
constexpr std::string_view standardVersions[] = {"1990", "1994", "2021"};

constexpr std::string_view usageText =
    "usage: kavrimol -option-file=FILE [-A=dir]... [-PREFIXLEN=n] [-STANDARD-VERSION=v]\n"
    "                asn-file...\n"
    "       kavrimol -split=dir [-A=dir]... [-PREFIXLEN=n] asn-file...\n"
    "       kavrimol -VERSION\n"
    "  -option-file=FILE  write the option file by which orvo finds the modules\n"
    "  -split=dir         write a file for each module of the asn-files\n"
    "  -A=dir             directory of ASN.1 files, in the order of the search\n"
    "  -PREFIXLEN=n       longest file prefix, 1 to 32 [32]\n"
    "  -STANDARD-VERSION=v  write that option too: 1990, 1994, or 2021 for today's notation\n";

struct Command {
    std::string optionFile, splitDirectory, standardVersion;
    std::vector<std::string> directories, files;
    size_t prefixLength = maxPrefixLength;
    bool version = false;
};

void addLine(std::string& text, std::string_view line) {
    text += concat("kavrimol: ", line, "\n");
}

void addLines(std::string& text, const std::vector<std::string>& lines,
              std::string_view lead = "") {
    for (const std::string& line : lines) addLine(text, concat(lead, line));
}

[[nodiscard]] bool readLength(std::string_view value, size_t& length) {
    const char* const end = value.data() + value.size();
    const auto [stop, failed] = std::from_chars(value.data(), end, length);
    return failed == std::errc() && stop == end && !value.starts_with('0') && length >= 1 &&
           length <= maxPrefixLength;
}

/// Takes an option whose name is in upper case; false when it is unknown or its value is wrong.
[[nodiscard]] bool takeOption(Command& command, std::string_view name, std::string value) {
    if (name == "-VERSION") return command.version = true;
    if (value.empty()) return false;
    if (name == "-PREFIXLEN=") return readLength(value, command.prefixLength);
    if (name == "-OPTION-FILE=") {
        command.optionFile = std::move(value);
        return true;
    }
    if (name == "-STANDARD-VERSION=") {
        command.standardVersion = std::move(value);
        return std::ranges::find(standardVersions, command.standardVersion) !=
               std::end(standardVersions);
    }
    if (name != "-A=" && name != "-SPLIT=") return false;
    if (!value.ends_with('/')) value += '/';
    if (name == "-A=")
        command.directories.push_back(std::move(value));
    else
        command.splitDirectory = std::move(value);
    return true;
}

[[nodiscard]] bool parseCommand(const std::vector<std::string>& arguments, Command& command,
                                Result& result) {
    bool valid = true;
    for (const std::string& argument : arguments) {
        const size_t nameEnd = std::min(argument.find('='), argument.size() - 1) + 1;
        std::string name = argument.substr(0, nameEnd);
        std::ranges::transform(name, name.begin(), orvo::toUpper);
        if (!argument.starts_with('-') && !argument.starts_with('+') && !argument.empty()) {
            command.files.push_back(argument);
        } else if (!takeOption(command, name, argument.substr(nameEnd))) {
            addLine(result.err, concat("not understood: ", argument));
            valid = false;
        }
    }
    const bool oneTask = command.optionFile.empty() != command.splitDirectory.empty();
    if (valid && (command.version || (oneTask && !command.files.empty()))) return true;
    result.err += usageText;
    result.status = statusFault;
    return false;
}

void fail(Result& result, std::string_view path, std::string_view why) {
    addLine(result.err, concat(path, ": ", why));
    result.status = statusFailure;
}

/// False when that fails, which is told.
bool writeFile(const std::string& path, const std::string& text, Result& result) {
    std::FILE* file = orvo::openOutput(path, "wb");
    if (file != nullptr) {
        orvo::put(file, text);
        if (orvo::closeOutput(file)) return true;
    }
    fail(result, path, std::strerror(errno));
    return false;
}

/// Tells all messages; false when nothing must be written.
[[nodiscard]] bool report(const Sources& sources, const Findings& findings, Result& result) {
    addLines(result.err, sources.failures);
    addLines(result.err, findings.errors);
    addLines(result.err, findings.mends);
    addLines(result.err, findings.warnings, "warning: ");
    if (!findings.errors.empty() || !findings.mends.empty()) result.status = statusFault;
    if (!sources.failures.empty()) result.status = statusFailure;
    return sources.failures.empty() && findings.errors.empty();
}

void writeOptionFile(const Command& command, Result& result) {
    Sources sources;
    sources.directories = command.directories;
    Findings findings;
    PrefixPool pool{.maxLength = command.prefixLength};
    std::vector<UsedModule> modules = collectModules(sources, command.files, findings);
    choosePrefixes(sources, pool, modules, findings);
    if (command.standardVersion.empty()) findNewerNotation(modules, findings);
    if (isLoaded(sources, command.optionFile))
        findings.errors.push_back(command.optionFile + ": not overwritten, it is a source file");
    if (report(sources, findings, result))
        writeFile(command.optionFile, optionFileText(pool, command.standardVersion, modules),
                  result);
}

/// A file of this name that says something else may be the only copy of what it says.
void refuseToOverwrite(const std::string& directory, const std::vector<SplitFile>& files,
                       Findings& findings) {
    for (const SplitFile& file : files) {
        const std::string path = directory + file.name;
        std::error_code ignored;
        std::string text, failure;
        if (!std::filesystem::exists(path, ignored)) continue;
        if (!readFile(path, text, failure) || text != file.text)
            findings.errors.push_back(path + ": not overwritten, it holds something else");
    }
}

void writeSplitFiles(const Command& command, Result& result) {
    Sources sources;
    sources.directories = command.directories;
    Findings findings;
    PrefixPool pool{.maxLength = command.prefixLength};
    const std::vector<SplitFile> files = splitFiles(sources, command.files, pool, findings);
    refuseToOverwrite(command.splitDirectory, files, findings);
    if (!report(sources, findings, result)) return;
    std::error_code failed;
    std::filesystem::create_directories(command.splitDirectory, failed);
    if (failed) return fail(result, command.splitDirectory, failed.message());
    for (const SplitFile& file : files) {
        const std::string path = command.splitDirectory + file.name;
        if (writeFile(path, file.text, result)) result.out += path + "\n";
    }
}

} // namespace

Result run(const std::vector<std::string>& arguments) {
    Result result;
    Command command;
    if (!parseCommand(arguments, command, result)) return result;
    if (command.version)
        result.out = "kavrimol " KAVRIMOL_VERSION "\n";
    else if (command.optionFile.empty())
        writeSplitFiles(command, result);
    else
        writeOptionFile(command, result);
    return result;
}

} // namespace kavrimol
