#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "diag/orvoerr_fatal.h"
#include "driver/orvo.h"
#include "util/outfile.h"
#include "util/stack.h"

namespace {

struct Arguments {
    int count;
    char** values;
};

/// Chains of references may be as long as a module has assignments, and each link takes some stack.
constexpr size_t stackSize = sizeof(void*) > 4 ? size_t{4} << 30 : size_t{1} << 28;

int runCompiler(void* argument) {
    const auto* arguments = static_cast<const Arguments*>(argument);
    return orvo::orvo_main(arguments->count, arguments->values);
}

/// A standard stream that is closed would lend its number to the first file opened, and what is
/// meant for the terminal would end up in a listing.
void occupyStandardStreams() {
    int fd = 0;
    while (fd >= 0 && fd <= 2) fd = open("/dev/null", O_RDWR);
    if (fd > 2) close(fd);
}

void echoArguments(int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
        std::fputs(argv[i], stderr);
        std::fputc(' ', stderr);
    }
    std::fputc('\n', stderr);
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardStreams();
    orvo::dropOutputsOnSignals();
    std::set_new_handler([] { orvo::fatalError(orvo::Fatal::NoSpace); });
    // Progress lines appear as they are written, also when the output goes to a file or a pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    if (std::getenv("VEXO_PRINT_ASN_OPTIONS") != nullptr) echoArguments(argc, argv);
    mallopt(M_ARENA_MAX, 1); // the compiler's thread is the only one that allocates
    Arguments arguments{argc, argv};
    const int status = orvo::runOnStack(stackSize, runCompiler, &arguments);
#ifdef NDEBUG
    // All output is closed; to take the store apart would cost 5 % of a run.
    std::fflush(nullptr);
    std::_Exit(status);
#endif
    return status;
}
