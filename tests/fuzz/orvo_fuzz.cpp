// One entry for bytes: they are compiled as a module in a process of its own, which must end by
// itself with exit status 0, 1 or 2. Without a fuzzer the program replays the files named on its
// command line.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "driver/orvo.h"

// A report of a sanitizer must not look like the status of a module with errors.
extern "C" const char* __asan_default_options() {
    return "exitcode=99:detect_leaks=0";
}
extern "C" const char* __ubsan_default_options() {
    return "exitcode=99";
}

namespace {

[[noreturn]] void compileInChild(const std::string& folder) {
    char program[] = "orvo", option[] = "-V=1", file[] = "m.asn";
    char* arguments[] = {program, option, file, nullptr};
    if (chdir(folder.c_str()) != 0 || std::freopen("/dev/null", "w", stdout) == nullptr) _exit(98);
    alarm(60);
    std::exit(orvo::orvo_main(3, arguments));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string folder = "/tmp/orvofuzzXXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return 0;
    std::ofstream(folder + "/m.asn", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const pid_t child = fork();
    if (child == 0) compileInChild(folder);
    int status = 0;
    waitpid(child, &status, 0);
    const std::string remove = "rm -rf " + folder;
    if (std::system(remove.c_str()) != 0) return 0;
    if (!WIFEXITED(status) || WEXITSTATUS(status) > 2) {
        std::fprintf(stderr, "the compiler did not end as it should: wait status %d\n", status);
        std::abort();
    }
    return 0;
}

#ifndef ORVO_WITH_FUZZER
int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::fprintf(stderr, "%s\n", argv[i]);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    return 0;
}
#endif
