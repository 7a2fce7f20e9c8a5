#pragma once

// Output files that appear whole or not at all: what is written goes to a file of another name in
// the same folder, which takes the place of the final one when all of it is there.

#include <cstdio>
#include <string>

namespace orvo {

/// Opens a file for writing; null, with errno, when it cannot be. A link is followed to where it
/// leads, and mode and owner of a file that is there are kept. What is no regular file is written
/// directly, and so is a file in a folder that admits no new ones.
[[nodiscard]] std::FILE* openOutput(const std::string& path, const char* mode);
/// Closes a file, any, and puts an output in its place. False, with errno, when that failed;
/// nothing is left then.
[[nodiscard]] bool closeOutput(std::FILE* file);
/// Removes what was written to outputs that are not closed. Allocates nothing, and may be called
/// from a signal handler.
void dropOutputs();
/// The signals that end a process leave nothing half written behind and then end it as ever, but a
/// file that grows beyond what is allowed is one that cannot be written.
void dropOutputsOnSignals();

} // namespace orvo
