#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace orvo {

/// The summary for the integrated environment is wanted: ZOV-PREFIX= was given.
[[nodiscard]] bool zovIsActive();
/// The option text (without its "-") begins with "ZOV-", in any case.
[[nodiscard]] bool zovIsZOVOption(std::string_view text);
/// Takes over the value of "ZOV-PREFIX=" or "ZOV-DIRECTORY=" (the text without its "-"); false when
/// the value is not acceptable or the option is neither.
[[nodiscard]] bool zovOptionOK(std::string_view text);

/// Opens prefix + suffix in the directory of the summary; fatal 1 (mode "r") or 2 on failure.
std::FILE* zovOpenTextFile(std::string_view suffix, const char* mode);
/// Nested opening of the summary file for appending; the last close closes it.
void zovSummaryOpenFile();
void zovSummaryCloseFile();
void zovSummaryBeginBlock(std::string_view name);
void zovSummaryMessage(std::string_view text);
void zovSummaryWarning(std::string_view directory, std::string_view file, int line,
                       std::string_view className, std::string_view text);
/// Fatal errors reach the summary through fatalState.hook, which this sets while the summary is
/// active.
void zovSummaryFatalError(std::string_view text, std::string_view detail);
/// The counters as messages; warnings from verbosity 2 on.
void summaryForZOV(int syntaxErrors, int semanticErrors, int undefinedSymbols, int warnings);

/// State of the summary file.
struct ZovState {
    std::FILE* summary = nullptr;
    int opened = 0; // nested openings
    bool reportingFatal = false;
};
extern ZovState zovState;

} // namespace orvo
