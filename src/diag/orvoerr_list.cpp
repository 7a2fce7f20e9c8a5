// Source and diagnostics are two streams sorted by line, merged here. A stream that is exhausted
// counts as being at a line beyond all others.

#include "diag/orvoerr_list.h"

#include <cstdint>
#include <limits>
#include <string>

#include "diag/orvoerr_fatal.h"
#include "diag/orvoerr_text.h"
#include "diag/orvozov.h"
#include "tree/orvomod.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr int64_t noLine = std::numeric_limits<int64_t>::max();

/// Reads the next line, its line feed included. A line is listed whole however long it is: cut in
/// two it would shift the numbers that the diagnostics refer to.
bool readLine(std::FILE* source, std::string& line) {
    line.clear();
    for (int c = std::getc(source); c != EOF; c = std::getc(source)) {
        line += static_cast<char>(c);
        if (c == '\n') return true;
    }
    if (std::ferror(source) != 0) fatalError(Fatal::Read, cMP->options.sourceFileName);
    return !line.empty();
}

bool takeLine(std::string_view& text, std::string& line) {
    const size_t end = text.find('\n');
    const size_t length = end == std::string_view::npos ? text.size() : end + 1;
    line = text.substr(0, length);
    text.remove_prefix(length);
    return !line.empty();
}

bool isShown(const ErrRec& error) {
    return run.verboseEx > 2 || error.errClass == ERR_SEMANTIC || error.errClass == ERR_SYNTAX ||
           (error.errClass == ERR_WARNING && run.verboseEx > 1);
}

void showError(std::FILE* stream, const ErrRec& error, bool fromFile) {
    if (!isShown(error)) return;
    size_t textStart = 0;
    const std::string line = printError(error, textStart);
    put(stream, line);
    const OptionBlock& options = cMP->options;
    if (run.verbose == VERBOSE_TOOL && fromFile)
        put(stdout, concat(options.sourceDir, options.sourceFileName, "(",
                           std::to_string(error.line), ") : ", line));
    if (zovIsActive())
        zovSummaryWarning(options.sourceDir, options.sourceFileName, error.line,
                          errClassNames[error.errClass], std::string_view(line).substr(textStart));
}

} // namespace

void printListing(std::FILE* stream, bool numberLines, std::FILE* source, std::string_view text) {
    const auto& errors = cMP->errors;
    int64_t lineNr = numberLines ? 1 : noLine;
    size_t next = 0;
    std::string line;
    while (lineNr != noLine || next < errors.size()) {
        const int64_t errorLine = next < errors.size() ? errors[next].line : noLine;
        while (lineNr != noLine && lineNr <= errorLine) {
            if (source != nullptr ? !readLine(source, line) : !takeLine(text, line)) {
                lineNr = noLine;
                break;
            }
            put(stream, concat(padLeft(lineNr, 5), ":  ", line));
            if (line.back() != '\n') put(stream, "\n");
            ++lineNr;
        }
        for (; next < errors.size() && errors[next].line < lineNr; ++next)
            showError(stream, errors[next], source != nullptr);
    }
}

} // namespace orvo
