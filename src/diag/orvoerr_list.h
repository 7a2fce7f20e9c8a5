#pragma once

#include <cstdio>
#include <string_view>

namespace orvo {

/// Writes the numbered source of the current module with its diagnostics merged in: each behind the
/// line it belongs to, those of line 0 first, those beyond the last line at the end. Without
/// `source` the source is `text`; without `numberLines` only the diagnostics are written.
void printListing(std::FILE* stream, bool numberLines, std::FILE* source, std::string_view text);

} // namespace orvo
