// Option files are used as often as the command line but read once: what their lines are and how
// modules store them is the same every time. A line that is not an option of the phase at hand is
// passed over silently.

#include "options/orvoopt_file.h"

#include <algorithm>
#include <limits>

#include "diag/orvoerr_fatal.h"
#include "diag/orvoerr_hello.h"
#include "driver/orvofil.h"
#include "options/orvoopt.h"
#include "options/orvoopt_glb.h"
#include "options/orvoopt_val.h"
#include "tree/orvomod.h"
#include "tree/orvoutil.h"
#include "util/ascii.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr size_t maxLineLength = 1023;
/// What a comment line begins with.
constexpr std::string_view magicStrings[] = {"/*", "*/", "//", "(*", "*)", "--", "#", "$"};

/// A pipe or a device may have no end. A PREFIX= line of the greatest length fits for each of as
/// many modules as a run counts.
constexpr size_t maxFileLength = maxLineLength * std::numeric_limits<int16_t>::max();

bool isComment(std::string_view line) {
    return std::ranges::any_of(magicStrings,
                               [line](std::string_view mark) { return line.starts_with(mark); });
}
bool isFileName(std::string_view line) {
    return spanOfName(line.substr(0, 1), "_") != 0;
}
bool isEndMarker(std::string_view line) {
    return startsNoCase(line, "-END-OF-OPTIONS");
}

/// The lines of a file up to its end marker.
std::vector<OptionLine> readOptionFile(std::string_view name) {
    std::FILE* file = openOptionFile(name);
    std::vector<OptionLine> lines;
    std::string line;
    size_t left = maxFileLength;
    while (left != 0 && readOptionFileLine(file, line, left)) {
        if (line.empty() || isComment(line)) continue;
        if (isEndMarker(line)) break;
        StoredOption option;
        if (!isFileName(line)) option = optionToStore(line, 0, 0, nullptr);
        lines.push_back({line, std::move(option)});
    }
    if (std::ferror(file) != 0 || left == 0) fatalError(Fatal::Read, name);
    std::fclose(file);
    return lines;
}

const std::vector<OptionLine>& optionLines(std::string_view name) {
    const auto [place, isNew] = run.optionFiles.try_emplace(std::string(name));
    if (isNew) place->second = readOptionFile(name);
    return place->second;
}

void warn(std::string_view what, std::string_view name) {
    if (run.verboseEx < 2) return;
    put(stderr, concat("\nWARNING : ", what, ": option file ", name, "\n"));
    ++cMP->nbWarnings;
}

/// Follows the scope blocks of a file; the lines themselves are stored as options all the same.
void trackScope(std::string_view option, std::string_view name, bool& inScope) {
    if (!option.starts_with('-')) return;
    const ScopeMark mark = scopeMark(option.substr(1));
    if (mark == ScopeMark::None) return;
    if (inScope && mark == ScopeMark::Begin) warn("Unexpected -BEGIN-SCOPE", name);
    if (!inScope && mark == ScopeMark::End) warn("Unexpected -END-SCOPE", name);
    inScope = mark == ScopeMark::Begin;
}

} // namespace

std::FILE* openOptionFile(std::string_view name) {
    if (name.empty()) fatalError(Fatal::OpenRead, "(No option file name specified)");
    return fopenTextFile("", name, "r");
}

bool readOptionFileLine(std::FILE* file, std::string& line, size_t& left) {
    line.clear();
    int c = std::getc(file);
    if (c == EOF) return false;
    for (; --left != 0 && c != EOF && c != '\n'; c = std::getc(file))
        if (line.size() < maxLineLength) line += static_cast<char>(c);
    line = std::string(remSpaces(line));
    return true;
}

bool parseOptionFilePartially(std::string_view name, int& count) {
    bool good = true;
    bool inScope = false;
    for (const OptionLine& row : optionLines(name)) {
        const std::string_view line = row.line;
        if (line.starts_with('-')) noteEdition(line, inScope);
        if (isFileName(line)) {
            good &= parseFilePrefix(line, count, name);
        } else if (line.starts_with('-') && !parseSelectedCmdLineOpts(line)) {
            argumentIgnored(line.substr(1), name);
            good = false;
        }
    }
    return good;
}

void handleOptionFile(std::string_view name, uint32_t& kinds, OptRange& range) {
    if (run.verbose == VERBOSE_NORMAL && run.verboseEx >= 3)
        printProgress(concat("option file  : ", name));
    bool inScope = false;
    for (const auto& [line, option] : optionLines(name)) {
        if (!option.isStored) continue;
        trackScope(option.text, name, inScope);
        storeOption(option, kinds, range);
    }
    if (inScope) warn("-END-SCOPE expected", name);
}

} // namespace orvo
