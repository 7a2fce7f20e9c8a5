#include <cstdio>

#include "kavrimol/kavrimol.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const kavrimol::Result result = kavrimol::run(arguments);
    std::fputs(result.out.c_str(), stdout);
    std::fputs(result.err.c_str(), stderr);
    return result.status;
}
