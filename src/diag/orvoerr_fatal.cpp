// A fatal error leaves no way back into the compilation: what is whole stays, what is half written
// goes, nothing is unwound. Both standard streams are flushed by hand because the process ends without running the
// destructors of the run, which may be what is damaged. Memory may have run out: nothing is
// allocated.

#include "diag/orvoerr_fatal.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "util/outfile.h"

namespace orvo {

FatalState fatalState;

namespace {

constexpr int fatalStatus = 2;

struct FatalText {
    Fatal number;
    std::string_view text;
};
constexpr FatalText allFatalErrors[] = {
#define FATAL(nr, name, text) {Fatal::name, text},
#include "diag/fatal.def"
};

/// The last entry stands for every number that the table does not have.
constexpr std::string_view fatalText(Fatal number) {
    const FatalText* entry = allFatalErrors;
    while (entry->number != number && entry->number != Fatal::Unknown) ++entry;
    return entry->text;
}

void put(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

void fatalError(Fatal number, std::string_view detail) {
    if (std::exchange(fatalState.reporting, true)) {
        dropOutputs();
        std::_Exit(fatalStatus);
    }
    const std::string_view text = fatalText(number);
    std::fflush(stdout);
    put(stderr, "\nFATAL ERROR : ");
    put(stderr, text);
    put(stderr, "\n");
    if (detail.data() != nullptr) {
        put(stderr, "              ");
        put(stderr, detail);
        put(stderr, "\n");
    }
    put(stderr, "\n");
    put(stdout, "ORVO>>> aborting compilation\n");
    if (fatalState.hook != nullptr) fatalState.hook(text, detail);
    std::fflush(nullptr);
    dropOutputs();
    std::_Exit(fatalStatus);
}

} // namespace orvo
