#pragma once

#include <cstdint>

namespace orvo {

// String literals. The current character is the opening quote; on return it is the one behind the
// literal. The token under construction gets value and error; the functions return its code.

/// "...", a doubled quote standing for one.
int32_t readCString();
/// '...'B or '...'H, white space left out.
int32_t readBinaryString();

} // namespace orvo
