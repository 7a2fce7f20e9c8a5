// The variables of the program are all symbols of its name spaces in .data and .bss; their bytes
// are noted before the first run and put back after each. So are guards of local statics, which
// then are initialised anew. Memory that a run has allocated and not freed is freed, as nothing
// leads to it any more. The way out of exit and fatal errors is a longjmp: no destructor may run,
// as none does when a process ends.

#include "process.h"

#include <dirent.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*, size_t),
                                              void (*freed)(const volatile void*));
void __sanitizer_set_report_fd(void* fd);

// The linker leads calls of these functions here (CMakeLists.txt).
[[noreturn]] void __real_exit(int status);
[[noreturn]] void __real__Exit(int status);
int __real___cxa_atexit(void (*fn)(void*), void* argument, void* handle);
FILE* __real_fopen(const char* path, const char* mode);
FILE* __real_fopen64(const char* path, const char* mode);
FILE* __real_fdopen(int fd, const char* mode);
int __real_fclose(FILE* file);
int __real_open(const char* path, int flags, ...);
int __real_open64(const char* path, int flags, ...);
}

namespace fuzz {
namespace {

/// Memory that the program has allocated and not freed: an open hash table of its own, as it must
/// not allocate where it is told of allocations.
struct Blocks {
    static constexpr size_t slots = size_t{1} << 20;
    const volatile void** table = nullptr;
    std::vector<size_t> used; // slots that are, or were, in use

    static size_t slotOf(const volatile void* block) {
        return (reinterpret_cast<uintptr_t>(block) >> 4) * 0x9E3779B97F4A7C15U >> 44 & (slots - 1);
    }
};

/// A variable, and what it held at the beginning. The bytes that the sanitizer has put behind it
/// may count.
struct Variable {
    char* address;
    std::vector<char> bytes;
};

struct State {
    bool prepared = false;
    bool running = false; // the program runs
    bool noting = false;  // and allocates
    std::jmp_buf end;
    int status = 0;
    std::vector<Variable> variables;
    Blocks blocks;
    std::vector<FILE*> files;
};
State state;

// ---- memory -------------------------------------------------------------------------------------

const char removedSlot = 0;

void enter(Blocks& blocks, const volatile void* block) {
    size_t slot = Blocks::slotOf(block);
    while (blocks.table[slot] != nullptr && blocks.table[slot] != &removedSlot)
        slot = (slot + 1) & (Blocks::slots - 1);
    if (blocks.table[slot] == nullptr) blocks.used.push_back(slot);
    blocks.table[slot] = block;
}

/// Makes slots of removed blocks free.
void tidyUp(Blocks& blocks) {
    std::vector<const volatile void*> live;
    for (const size_t slot : blocks.used) {
        const volatile void* const block = std::exchange(blocks.table[slot], nullptr);
        if (block != &removedSlot) live.push_back(block);
    }
    blocks.used.clear();
    if (live.size() > Blocks::slots / 4) finding("a run with very many blocks of memory");
    for (const volatile void* block : live) enter(blocks, block);
}

void allocated(const volatile void* block, size_t) {
    if (!state.noting || block == nullptr) return;
    state.noting = false;
    if (state.blocks.used.size() > Blocks::slots / 2) tidyUp(state.blocks);
    enter(state.blocks, block);
    state.noting = true;
}

void freed(const volatile void* block) {
    if (!state.noting || block == nullptr) return;
    Blocks& blocks = state.blocks;
    for (size_t slot = Blocks::slotOf(block); blocks.table[slot] != nullptr;
         slot = (slot + 1) & (Blocks::slots - 1)) {
        if (blocks.table[slot] != block) continue;
        blocks.table[slot] = &removedSlot;
        return;
    }
}

void freeBlocks() {
    for (const size_t slot : state.blocks.used) {
        const volatile void* const block = std::exchange(state.blocks.table[slot], nullptr);
        if (block != &removedSlot) std::free(const_cast<void*>(block));
    }
    state.blocks.used.clear();
}

// ---- variables ----------------------------------------------------------------------------------

__attribute__((no_sanitize("address"))) void copyBytes(volatile char* to, const volatile char* from,
                                                       size_t size) {
    while (size-- > 0) *to++ = *from++;
}

bool isOfProgram(std::string_view symbol) {
    return symbol.find("4orvo") != std::string_view::npos ||
           symbol.find("3tsl") != std::string_view::npos;
}

uintptr_t loadAddress() {
    uintptr_t address = 0;
    dl_iterate_phdr(
        [](dl_phdr_info* info, size_t, void* result) {
            *static_cast<uintptr_t*>(result) = info->dlpi_addr;
            return 1; // the first is the program
        },
        &address);
    return address;
}

template <typename T> const T* at(const std::string& image, uint64_t offset) {
    return reinterpret_cast<const T*>(image.data() + offset);
}

void findVariables() {
    std::ifstream file("/proc/self/exe", std::ios::binary);
    const std::string image{std::istreambuf_iterator<char>(file), {}};
    const uintptr_t base = loadAddress();
    const auto* header = at<Elf64_Ehdr>(image, 0);
    const auto* sections = at<Elf64_Shdr>(image, header->e_shoff);
    const char* names = image.data() + sections[header->e_shstrndx].sh_offset;
    for (const auto* table = sections; table != sections + header->e_shnum; ++table) {
        if (table->sh_type != SHT_SYMTAB) continue;
        const char* texts = image.data() + sections[table->sh_link].sh_offset;
        const auto* symbols = at<Elf64_Sym>(image, table->sh_offset);
        for (const auto* symbol = symbols; symbol != symbols + table->sh_size / sizeof *symbol;
             ++symbol) {
            if (ELF64_ST_TYPE(symbol->st_info) != STT_OBJECT) continue;
            if (symbol->st_shndx >= header->e_shnum || !isOfProgram(texts + symbol->st_name))
                continue;
            const std::string_view section = names + sections[symbol->st_shndx].sh_name;
            if (section != ".data" && section != ".bss") continue;
            char* const address = reinterpret_cast<char*>(base + symbol->st_value);
            Variable& variable = state.variables.emplace_back();
            variable.address = address;
            variable.bytes.resize(symbol->st_size);
            copyBytes(variable.bytes.data(), address, symbol->st_size);
        }
    }
}

void restoreVariables() {
    for (const Variable& variable : state.variables)
        copyBytes(variable.address, variable.bytes.data(), variable.bytes.size());
}

// ---- files --------------------------------------------------------------------------------------

/// While the program runs it sees its folder and what lies in it, nothing else.
bool isForbidden(const char* path) {
    if (!state.running) return false;
    if (*path != '/' && std::strstr(path, "..") == nullptr) return false;
    errno = EACCES;
    return true;
}

FILE* noted(FILE* file) {
    if (file == nullptr || !state.running) return file;
    const bool noting = std::exchange(state.noting, false);
    state.files.push_back(file);
    state.noting = noting;
    return file;
}

void closeFiles() {
    for (FILE* file : state.files) __real_fclose(file);
    state.files.clear();
}

void enterFolder() {
    std::string folder = "/dev/shm/orvo-fuzz-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) {
        folder = "/tmp/orvo-fuzz-XXXXXX";
        if (mkdtemp(folder.data()) == nullptr) std::abort();
    }
    static std::string entered;
    entered = folder;
    std::atexit([] {
        removeFiles();
        rmdir(entered.c_str());
    });
    if (chdir(folder.c_str()) != 0) std::abort();
}

/// Standard output goes nowhere, and standard error too; reports still appear.
void turnStreamsAway() {
    const int nowhere = __real_open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    std::fputs("", stdout);
    setenv("SOURCE_DATE_EPOCH", "0", 1);
}

/// The variables are put back whatever way the run ends.
int runOnce(const std::function<int()>& program) {
    state.running = true;
    state.noting = true;
    if (setjmp(state.end) == 0) state.status = program();
    state.running = false;
    std::fflush(nullptr);
    closeFiles();
    state.noting = false;
    restoreVariables();
    return state.status;
}

[[noreturn]] void endRun(int status) {
    state.status = status;
    std::longjmp(state.end, 1);
}

} // namespace

void prepare() {
    if (std::exchange(state.prepared, true)) return;
    turnStreamsAway();
    enterFolder();
    state.blocks.table =
        static_cast<const volatile void**>(std::calloc(Blocks::slots, sizeof *state.blocks.table));
    state.blocks.used.reserve(Blocks::slots);
    state.files.reserve(1000);
    findVariables();
    __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    // What libraries set up when they are used first stays, and does not count.
    const std::time_t now = std::time(nullptr);
    static_cast<void>(std::localtime(&now));
}

int runAsProcess(const std::function<int()>& program) {
    if (state.variables.empty()) finding("the program has no symbols");
    const int status = runOnce(program);
    static bool first = true;
    if (std::exchange(first, false))
        state.blocks.used.clear(), std::fill_n(state.blocks.table, Blocks::slots, nullptr);
    else
        freeBlocks();
    return status;
}

int runAsProcess(int (*program)(int, char**), std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const int count = static_cast<int>(arguments.size());
    return runAsProcess([&] { return program(count, pointers.data()); });
}

void writeFile(const std::string& name, std::string_view text) {
    const int fd = __real_open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return;
    if (write(fd, text.data(), text.size()) < 0) std::abort();
    close(fd);
}

std::string readFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> filesEndingIn(std::string_view end) {
    std::vector<std::string> names;
    DIR* const folder = opendir(".");
    if (folder == nullptr) return names;
    while (const dirent* entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && name.ends_with(end)) names.push_back(name);
    }
    closedir(folder);
    std::ranges::sort(names);
    return names;
}

void removeFiles() {
    for (const std::string& name : filesEndingIn("")) {
        std::error_code ignored;
        if (unlink(name.c_str()) != 0) std::filesystem::remove_all(name, ignored);
    }
}

void finding(const std::string& what) {
    state.running = state.noting = false;
    std::fprintf(stderr, "FINDING: %s\n", what.c_str());
    std::abort();
}

} // namespace fuzz

using fuzz::state;

extern "C" {
// Leaks are those of a process that ends, and what is left over is freed whatever its kind.
const char* __asan_default_options();
const char* __asan_default_options() {
    return "detect_leaks=0:alloc_dealloc_mismatch=0";
}

void __wrap_exit(int status);
void __wrap__Exit(int status);
int __wrap___cxa_atexit(void (*fn)(void*), void* argument, void* handle);
FILE* __wrap_fopen(const char* path, const char* mode);
FILE* __wrap_fopen64(const char* path, const char* mode);
FILE* __wrap_fdopen(int fd, const char* mode);
int __wrap_fclose(FILE* file);
int __wrap_open(const char* path, int flags, ...);
int __wrap_open64(const char* path, int flags, ...);

void __wrap_exit(int status) {
    if (state.running) fuzz::endRun(status);
    __real_exit(status);
}
void __wrap__Exit(int status) {
    if (state.running) fuzz::endRun(status);
    __real__Exit(status);
}
int __wrap___cxa_atexit(void (*fn)(void*), void* argument, void* handle) {
    return state.running ? 0 : __real___cxa_atexit(fn, argument, handle);
}
FILE* __wrap_fopen(const char* path, const char* mode) {
    return fuzz::isForbidden(path) ? nullptr : fuzz::noted(__real_fopen(path, mode));
}
FILE* __wrap_fopen64(const char* path, const char* mode) {
    return fuzz::isForbidden(path) ? nullptr : fuzz::noted(__real_fopen64(path, mode));
}
FILE* __wrap_fdopen(int fd, const char* mode) {
    return fuzz::noted(__real_fdopen(fd, mode));
}
int __wrap_fclose(FILE* file) {
    if (state.running) std::erase(state.files, file);
    return __real_fclose(file);
}
int __wrap_open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fuzz::isForbidden(path) ? -1 : __real_open(path, flags, mode);
}
int __wrap_open64(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return fuzz::isForbidden(path) ? -1 : __real_open64(path, flags, mode);
}
}
