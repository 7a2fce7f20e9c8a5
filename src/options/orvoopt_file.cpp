// Option files are read as often as the command line. A line that is not an option of the phase at
// hand is passed over silently, so the two phases share the rules for what a line is.

#include "options/orvoopt_file.h"

#include <algorithm>

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

void closeOptionFile(std::FILE* file, std::string_view name) {
    if (std::ferror(file) != 0) fatalError(Fatal::Read, name);
    std::fclose(file);
}

void warn(std::string_view what, std::string_view name) {
    if (run.verboseEx < 2) return;
    const std::string warning = concat("\nWARNING : ", what, ": option file ", name, "\n");
    std::fwrite(warning.data(), 1, warning.size(), stderr);
    ++cMP->nbWarnings;
}

/// Follows the scope blocks of a file; the lines themselves are stored as options all the same.
void trackScope(std::string_view line, std::string_view name, bool& inScope) {
    const ScopeMark mark = line.front() == '-' ? scopeMark(line.substr(1)) : ScopeMark::None;
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

bool readOptionFileLine(std::FILE* file, std::string& line) {
    line.clear();
    int c = std::getc(file);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = std::getc(file))
        if (line.size() < maxLineLength) line += static_cast<char>(c);
    line = std::string(remSpaces(line));
    return true;
}

bool parseOptionFilePartially(std::string_view name, int& count) {
    std::FILE* file = openOptionFile(name);
    bool good = true;
    std::string line;
    while (readOptionFileLine(file, line)) {
        if (line.empty() || isComment(line)) continue;
        if (isEndMarker(line)) break;
        if (isFileName(line)) {
            good &= parseFilePrefix(line, count, name);
        } else if (line.front() == '-' && !parseSelectedCmdLineOpts(line)) {
            argumentIgnored(std::string_view(line).substr(1), name);
            good = false;
        }
    }
    closeOptionFile(file, name);
    return good;
}

void handleOptionFile(std::string_view name, uint32_t& kinds, OptRange& range) {
    std::FILE* file = openOptionFile(name);
    if (run.verbose == VERBOSE_NORMAL && run.verboseEx >= 3)
        printProgress(concat("option file  : ", name));
    bool inScope = false;
    std::string line;
    while (readOptionFileLine(file, line)) {
        if (line.empty() || isComment(line) || isFileName(line)) continue;
        if (isEndMarker(line)) break;
        trackScope(line, name, inScope);
        parseOneCmdLineOption(line, 0, 0, nullptr, kinds, range);
    }
    closeOptionFile(file, name);
    if (inScope) warn("-END-SCOPE expected", name);
}

} // namespace orvo
