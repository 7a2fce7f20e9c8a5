#pragma once

namespace orvo {

/// The whole run: reads the command line, compiles every module, writes listings and trees. Returns
/// the exit status: 0 when no module has errors, else 1. Fatal errors end the process with
/// status 2.
int orvo_main(int argc, char** argv);

} // namespace orvo
