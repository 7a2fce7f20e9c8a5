#pragma once

// The cross-reference at the end of a listing.

#include <cstdint>

namespace orvo {

/// Undefined symbols of the current module, those that its listing will report.
int32_t countUndefined();
/// Writes the undefined symbols and, with XREF=, the defined ones of the current module into its
/// listing. The number of undefined symbols is its symbol error count.
void printSymTab(int32_t& nbSymErrors);

} // namespace orvo
