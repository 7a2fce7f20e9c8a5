#pragma once

#include <string>
#include <vector>

namespace kavrimol {

/// What a run came to; the texts are for standard output and standard error.
struct Result {
    /// 0 done, 1 usage or something to be mended, 2 a file that cannot be read or written.
    int status = 0;
    std::string out, err;
};

/// The program, given what follows its name on the command line.
Result run(const std::vector<std::string>& arguments);

} // namespace kavrimol
