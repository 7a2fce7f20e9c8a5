// The summary is appended to: the environment may have written to the file before. While a fatal
// error is being reported, another failure ends the process at once and without a word.

#include "diag/orvozov.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "diag/orvoerr_fatal.h"
#include "tree/orvomod.h"
#include "util/ascii.h"
#include "util/outfile.h"
#include "util/text.h"

namespace orvo {

ZovState zovState;

namespace {

constexpr size_t maxPrefixLength = 32;
constexpr std::string_view summarySuffix = ".acs";

void put(std::string_view text) {
    if (zovState.summary == nullptr) return;
    if (std::fwrite(text.data(), 1, text.size(), zovState.summary) != text.size())
        fatalError(Fatal::Write);
}

/// Takes `name` (given in upper case), in any case, off the front of the text.
bool takeName(std::string_view& text, std::string_view name) {
    if (text.size() < name.size() ||
        !std::equal(name.begin(), name.end(), text.begin(),
                    [](char given, char c) { return given == toUpper(c); }))
        return false;
    text.remove_prefix(name.size());
    return true;
}

std::string zovPath(std::string_view suffix) {
    return concat(run.zovDirectory, run.zovPrefix, suffix);
}

} // namespace

bool zovIsActive() {
    return !run.zovPrefix.empty();
}

bool zovIsZOVOption(std::string_view text) {
    return takeName(text, "ZOV-");
}

bool zovOptionOK(std::string_view text) {
    if (takeName(text, "ZOV-PREFIX=")) {
        if (text.empty() || text.size() > maxPrefixLength || spanOfName(text, "-_") != text.size())
            return false;
        run.zovPrefix = text;
        fatalState.hook = zovSummaryFatalError;
        return true;
    }
    if (!takeName(text, "ZOV-DIRECTORY=") || text.empty() ||
        !std::ranges::all_of(text, isPrintable))
        return false;
    run.zovDirectory = concat(text, text.back() == '/' ? "" : "/");
    return true;
}

std::FILE* zovOpenTextFile(std::string_view suffix, const char* mode) {
    const Fatal failure = std::string_view(mode) == "r" ? Fatal::OpenRead : Fatal::OpenWrite;
    if (!zovIsActive()) fatalError(failure, "No ZOV-PREFIX");
    const std::string path = zovPath(suffix);
    if (*mode != 'r' && isSource(path)) fatalError(failure, path);
    std::FILE* file = *mode == 'w' ? openOutput(path, mode) : std::fopen(path.c_str(), mode);
    if (file == nullptr) fatalError(errno == ENOMEM ? Fatal::NoSpace : failure, path);
    return file;
}

void zovSummaryOpenFile() {
    if (zovState.opened++ == 0) zovState.summary = zovOpenTextFile(summarySuffix, "a");
}

void zovSummaryCloseFile() {
    if (zovState.opened == 0 || --zovState.opened > 0) return;
    if (std::fclose(std::exchange(zovState.summary, nullptr)) != 0) fatalError(Fatal::Write);
}

void zovSummaryBeginBlock(std::string_view name) {
    put(concat("[", name, "]\n"));
}

void zovSummaryMessage(std::string_view text) {
    put(concat(text, "\n"));
}

void zovSummaryWarning(std::string_view directory, std::string_view file, int line,
                       std::string_view className, std::string_view text) {
    put(concat(directory, file, ":", std::to_string(line), ": ", className, " : ", text,
               text.ends_with('\n') ? "" : "\n"));
}

void zovSummaryFatalError(std::string_view text, std::string_view detail) {
    if (std::exchange(zovState.reportingFatal, true)) std::_Exit(2);
    zovSummaryOpenFile();
    std::string message = concat("\nFATAL ERROR : ", text, "\n");
    if (detail.data() != nullptr) message += concat("              ", detail, "\n");
    put(concat(message, "\n"));
    zovSummaryCloseFile();
    zovState.reportingFatal = false;
}

void summaryForZOV(int syntaxErrors, int semanticErrors, int undefinedSymbols, int warnings) {
    zovSummaryMessage(concat("Syntax errors     : ", std::to_string(syntaxErrors)));
    zovSummaryMessage(concat("Semantic errors   : ", std::to_string(semanticErrors)));
    zovSummaryMessage(concat("Undefined symbols : ", std::to_string(undefinedSymbols)));
    if (run.verboseEx > 1)
        zovSummaryMessage(concat("Warnings          : ", std::to_string(warnings)));
}

} // namespace orvo
