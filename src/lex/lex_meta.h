#pragma once

namespace orvo {

/// Reads the rest of a comment whose `--` has been read: up to a line end, which stays, the end of
/// the input or the closing `--`. Its `$` commands go to the token under construction, unless the
/// module has a syntax error.
void skipComment();

} // namespace orvo
