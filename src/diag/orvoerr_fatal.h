#pragma once

#include <string_view>

namespace orvo {

enum class Fatal : int {
#define FATAL(nr, name, text) name = nr,
#include "diag/fatal.def"
};

/// Reports a fatal condition and ends the process with status 2: "\nFATAL ERROR : text\n", the
/// detail indented (when its data() is not null) and an empty line on standard error, then "ORVO>>>
/// aborting compilation\n" on standard output. Numbers outside the table read as Unknown.
[[noreturn]] void fatalError(Fatal number, std::string_view detail = {});

/// Set by the integrated-environment summary to report fatal errors there too; called before the
/// exit.
using FatalHook = void (*)(std::string_view text, std::string_view detail);
struct FatalState {
    FatalHook hook = nullptr;
    // A second failure while reporting ends the process without another word.
    bool reporting = false;
};
extern FatalState fatalState;

} // namespace orvo
