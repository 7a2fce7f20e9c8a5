#include <cstdio>
#include <cstdlib>
#include <new>

#include "kavrimol/kavrimol.h"
#include "util/outfile.h"

int main(int argc, char** argv) {
    orvo::dropOutputsOnSignals();
    std::set_new_handler([] {
        std::fputs("kavrimol: out of memory\n", stderr);
        orvo::dropOutputs();
        std::_Exit(2);
    });
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const kavrimol::Result result = kavrimol::run(arguments);
    bool written = std::fputs(result.out.c_str(), stdout) != EOF && std::fflush(stdout) == 0;
    written = std::fputs(result.err.c_str(), stderr) != EOF && written;
    return written || result.status != 0 ? result.status : 1;
}
