// Where there is no libFuzzer: replays inputs, and then mutates them with fixed seeds.
//
//   fuzz_... [-runs=N] [-seed=N] FILE_OR_FOLDER...
//
// An input that ends the program is left in ./finding-... first.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "mutate.h"

extern "C" {
int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed);
// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers' own
void __sanitizer_set_death_callback(void (*callback)());
void __sanitizer_set_report_fd(void* fd);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

using Input = std::vector<uint8_t>;

constexpr size_t maxSize = 65536;
constexpr unsigned secondsPerInput = 60;

struct State {
    std::string folder;
    int errors = STDERR_FILENO; // what it was
    int said = -1;              // what the program says on it in a run
    const Input* input = nullptr;
    fuzz::Dice dice{1};
};
State state;

void leaveInput() {
    if (state.input == nullptr) return;
    char last[2000];
    const off_t size = lseek(state.said, 0, SEEK_END);
    const ssize_t length =
        pread(state.said, last, sizeof last, std::max<off_t>(0, size - off_t{sizeof last}));
    dup2(state.errors, STDERR_FILENO);
    if (length > 0) std::fwrite(last, 1, static_cast<size_t>(length), stderr);
    const std::string name = state.folder + "/finding-" + std::to_string(getpid());
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(state.input->data()),
               static_cast<std::streamsize>(state.input->size()));
    std::fprintf(stderr, "the input is in %s\n", name.c_str());
}

void endWithInput(int signal) {
    leaveInput();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void run(const Input& input) {
    state.input = &input;
    if (ftruncate(state.said, 0) == 0) lseek(state.said, 0, SEEK_SET);
    alarm(secondsPerInput);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    state.input = nullptr;
}

Input contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<Input> inputsOf(const std::set<std::filesystem::path>& paths) {
    std::set<std::filesystem::path> files;
    for (const auto& path : paths) {
        if (!std::filesystem::is_directory(path))
            files.insert(path);
        else
            for (const auto& entry : std::filesystem::directory_iterator(path))
                files.insert(entry.path());
    }
    std::vector<Input> inputs;
    inputs.reserve(files.size());
    for (const auto& path : files) inputs.push_back(contents(path));
    return inputs;
}

/// What is mutated is an input, or what the last mutation of it has made.
void mutate(std::vector<Input>& inputs, unsigned long runs, unsigned seed) {
    std::vector<Input> last = inputs;
    for (unsigned long i = 0; i < runs; ++i) {
        const size_t which = i % inputs.size();
        Input input = state.dice.oneIn(3) ? inputs[which] : last[which];
        const size_t size = input.size();
        input.resize(maxSize);
        const size_t newSize =
            LLVMFuzzerCustomMutator(input.data(), size, maxSize, seed + static_cast<unsigned>(i));
        input.resize(newSize);
        run(input);
        last[which] = std::move(input);
    }
}

} // namespace

/// What libFuzzer has for those that mutate by themselves.
extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t limit) {
    const size_t at = state.dice.below(size);
    switch (size == 0 ? 3 : state.dice.below(4)) {
    case 0: data[at] ^= static_cast<uint8_t>(1U << state.dice.below(8)); return size;
    case 1: data[at] = static_cast<uint8_t>(state.dice.below(256)); return size;
    case 2: // drop a few
        return size - std::min(size - at, state.dice.below(8));
    default:
        if (size < limit) data[size++] = static_cast<uint8_t>(state.dice.below(256));
        return size;
    }
}

int main(int argc, char** argv) {
    unsigned long runs = 0;
    unsigned seed = 1;
    std::set<std::filesystem::path> paths;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.starts_with("-runs="))
            runs = std::strtoul(argument.c_str() + 6, nullptr, 10);
        else if (argument.starts_with("-seed="))
            seed = static_cast<unsigned>(std::strtoul(argument.c_str() + 6, nullptr, 10));
        else
            paths.insert(std::filesystem::absolute(argument));
    }
    state.folder = std::filesystem::current_path();
    state.dice = fuzz::Dice(seed);
    for (const int signal : {SIGABRT, SIGALRM}) std::signal(signal, endWithInput);
    __sanitizer_set_death_callback(leaveInput);
    std::vector<Input> inputs = inputsOf(paths);
    LLVMFuzzerInitialize(&argc, &argv);
    // What the program says on standard error is of interest when it is the last.
    state.errors = dup(STDERR_FILENO);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): that is how it takes the number
    __sanitizer_set_report_fd(reinterpret_cast<void*>(static_cast<intptr_t>(state.errors)));
    state.said = memfd_create("said", MFD_CLOEXEC);
    dup2(state.said, STDERR_FILENO);
    for (const Input& input : inputs) run(input);
    if (!inputs.empty()) mutate(inputs, runs, seed);
    dup2(state.errors, STDERR_FILENO);
    std::fprintf(stderr, "%zu inputs, %lu mutations\n", inputs.size(), runs);
    return 0;
}
