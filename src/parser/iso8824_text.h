#pragma once

#include <span>

namespace orvo {

/// The text of the built-in module in pieces, to be joined as they stand; END comes behind them.
[[nodiscard]] std::span<const char* const> moduleLines();
/// What the notation of today adds.
[[nodiscard]] std::span<const char* const> laterLines();

} // namespace orvo
