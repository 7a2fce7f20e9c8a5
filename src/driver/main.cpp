#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "diag/orvoerr_fatal.h"
#include "driver/orvo.h"

int main(int argc, char** argv) {
    std::set_new_handler([] { orvo::fatalError(orvo::Fatal::NoSpace); });
    // Progress lines appear as they are written, also when the output goes to a file or a pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    if (std::getenv("VEXO_PRINT_ASN_OPTIONS") != nullptr) {
        for (int i = 0; i < argc; ++i) {
            std::fputs(argv[i], stderr);
            std::fputc(' ', stderr);
        }
        std::fputc('\n', stderr);
    }
    return orvo::orvo_main(argc, argv);
}
