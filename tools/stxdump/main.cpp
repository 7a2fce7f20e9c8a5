#include <cstdlib>
#include <new>

#include "stxdump/stxdump.h"

int main(int argc, char** argv) {
    std::set_new_handler([] {
        std::fputs("stxdump: out of memory\n", stderr);
        std::_Exit(1);
    });
    stxdump::Sink out, err;
    out.stream = stdout;
    err.stream = stderr;
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const int status = stxdump::run(arguments, out, err);
    err.flush();
    return status == 0 && err.failed ? 1 : status;
}
