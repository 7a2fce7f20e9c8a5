#pragma once

#include <span>

namespace orvo {

/// The text of the built-in module in pieces, to be joined as they stand.
[[nodiscard]] std::span<const char* const> moduleLines();

} // namespace orvo
