#pragma once

#include <cstddef>

namespace orvo {

/// Room that is left on the stack of a thread for what need not ask (system calls, reports).
inline constexpr size_t stackReserve = size_t{768} * 1024;

/// Calls fn(argument) on a stack of `size` bytes, or of a smaller one when the system does not
/// grant it, and returns what it returns. Memory is used only as far as the stack is.
int runOnStack(size_t size, int (*fn)(void*), void* argument);

/// Less than the reserve is left: who recurses over references, whose chains may be as long as a
/// module has assignments, has to end.
[[nodiscard]] bool stackIsLow();

} // namespace orvo
