// Linked into a copy of the program in place of what it asks of the system: the n-th request of a
// kind fails, or something happens to a file at that moment. The linker leads the calls here
// (--wrap), so that this works under the sanitizers too.
//
//   ORVO_FAULT=KIND:N    the N-th one only; KIND:N+ that one and all behind it
//   ORVO_FAULT_COUNTS=F  how often each kind was asked for, in the order of the kinds, 8 bytes each
//   ORVO_FAULT_SWAP=F    what "swap" does before a file is opened: F.next becomes F, or F goes
//   ORVO_FAULT_ERRNO=E   why an open fails
//   ORVO_FAULT_INSTANCES=N  so many instances of parameterized definitions are the most

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "solve/solve_par.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the linker makes these names.
extern "C" {
void* __real_malloc(size_t size);
void* __real__Znwm(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void* __real_mmap(void* at, size_t size, int protection, int flags, int fd, off_t offset);
std::FILE* __real_fopen(const char* path, const char* mode);
std::FILE* __real_fdopen(int fd, const char* mode);
int __real_open(const char* path, int flags, ...);
size_t __real_fread(void* to, size_t size, size_t count, std::FILE* file);
int __real_getc(std::FILE* file);
size_t __real_fwrite(const void* from, size_t size, size_t count, std::FILE* file);
int __real_fputs(const char* text, std::FILE* file);
int __real_fputc(int c, std::FILE* file);
int __real_fflush(std::FILE* file);
int __real_fclose(std::FILE* file);
int __real_rename(const char* from, const char* to);
int __real_stat(const char* path, struct stat* status);
int __real_lstat(const char* path, struct stat* status);
int __real_fstat(int fd, struct stat* status);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                          void* argument);
}

namespace {

enum Kind { Alloc, Map, Open, Read, Write, Close, Rename, Stat, Thread, Signal, Swap, kindCount };
constexpr const char* kindNames[] = {"alloc",  "map",  "open",   "read",   "write", "close",
                                     "rename", "stat", "thread", "signal", "swap"};

struct State {
    bool ready = false;
    int kind = kindCount;
    int64_t number = 0;
    bool onward = false;
    int64_t* counts = nullptr;
    int64_t ownCounts[kindCount] = {};
};
State state;

void setUp() {
    state.ready = true;
    state.counts = state.ownCounts;
    if (const char* fault = std::getenv("ORVO_FAULT")) {
        const char* colon = std::strchr(fault, ':');
        for (int kind = 0; kind < kindCount; ++kind)
            if (std::strncmp(fault, kindNames[kind], static_cast<size_t>(colon - fault)) == 0)
                state.kind = kind;
        state.number = std::atoll(colon + 1);
        state.onward = std::strchr(colon, '+') != nullptr;
    }
    const char* file = std::getenv("ORVO_FAULT_COUNTS");
    const int fd = file == nullptr ? -1 : __real_open(file, O_RDWR);
    if (fd < 0) return;
    void* shared =
        __real_mmap(nullptr, sizeof state.ownCounts, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (shared != MAP_FAILED) state.counts = static_cast<int64_t*>(shared);
    close(fd);
}

/// Counts a request; true when it is to fail.
bool due(Kind kind) {
    if (!state.ready) setUp();
    const int64_t count = ++state.counts[kind];
    return kind == state.kind && (count == state.number || (state.onward && count > state.number));
}

void maySignal() {
    if (due(Signal)) std::raise(SIGTERM);
}

void maySwap() {
    if (!due(Swap)) return;
    const char* path = std::getenv("ORVO_FAULT_SWAP");
    if (path == nullptr) return;
    const std::string file = path;
    if (__real_rename((file + ".next").c_str(), file.c_str()) != 0) unlink(file.c_str());
}

bool openFails() {
    maySignal();
    maySwap();
    if (!due(Open)) return false;
    const char* fault = std::getenv("ORVO_FAULT_ERRNO");
    errno = fault == nullptr ? EMFILE : std::atoi(fault);
    return true;
}

/// From now on the system refuses to read from, or to write to, the file.
void breakFile(std::FILE* file, const char* place, int flags) {
    const int fd = __real_open(place, flags);
    dup2(fd, fileno(file));
    close(fd);
}
void mayBreakWriting(std::FILE* file) {
    maySignal();
    if (due(Write) && file != nullptr) breakFile(file, "/dev/full", O_WRONLY);
}
void mayBreakReading(std::FILE* file) {
    if (due(Read)) breakFile(file, "/", O_RDONLY | O_DIRECTORY);
}

void* allocate(size_t size) {
    // Before the program has said what is to happen then, it has not begun.
    if (std::get_new_handler() != nullptr && due(Alloc)) std::get_new_handler()();
#ifdef NDEBUG
    return __real__Znwm(size); // the program's own allocator
#else
    return __real_malloc(size == 0 ? 1 : size);
#endif
}

} // namespace

// clang-format off
#ifndef NDEBUG // in place of those of the library, which calls them too
void* operator new(size_t size) { return allocate(size); }
void* operator new[](size_t size) { return allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }
#endif

extern "C" {
void* __wrap__Znwm(size_t size) { return allocate(size); } // operator new
void* __wrap__Znam(size_t size) { return allocate(size); } // operator new[]
void* __wrap_malloc(size_t size) { return due(Alloc) ? nullptr : __real_malloc(size); }
void* __wrap_calloc(size_t count, size_t size) {
    return due(Alloc) ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, size_t size) {
    return due(Alloc) ? nullptr : __real_realloc(block, size);
}
void* __wrap_mmap(void* at, size_t size, int protection, int flags, int fd, off_t offset) {
    return due(Map) ? MAP_FAILED : __real_mmap(at, size, protection, flags, fd, offset);
}
std::FILE* __wrap_fopen(const char* path, const char* mode) {
    return openFails() ? nullptr : __real_fopen(path, mode);
}
std::FILE* __wrap_fdopen(int fd, const char* mode) {
    return openFails() ? nullptr : __real_fdopen(fd, mode);
}
int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    return openFails() ? -1 : __real_open(path, flags, mode);
}
size_t __wrap_fread(void* to, size_t size, size_t count, std::FILE* file) {
    mayBreakReading(file);
    return __real_fread(to, size, count, file);
}
int __wrap_getc(std::FILE* file) {
    mayBreakReading(file);
    return __real_getc(file);
}
size_t __wrap_fwrite(const void* from, size_t size, size_t count, std::FILE* file) {
    mayBreakWriting(file);
    return __real_fwrite(from, size, count, file);
}
int __wrap_fputs(const char* text, std::FILE* file) {
    mayBreakWriting(file);
    return __real_fputs(text, file);
}
int __wrap_fputc(int c, std::FILE* file) {
    mayBreakWriting(file);
    return __real_fputc(c, file);
}
int __wrap_fflush(std::FILE* file) {
    mayBreakWriting(file);
    return __real_fflush(file);
}
int __wrap_fclose(std::FILE* file) {
    mayBreakWriting(file);
    const int result = __real_fclose(file);
    return due(Close) ? (errno = EIO, EOF) : result;
}
int __wrap_rename(const char* from, const char* to) {
    maySignal();
    return due(Rename) ? (errno = EIO, -1) : __real_rename(from, to);
}
int __wrap_stat(const char* path, struct stat* status) {
    return due(Stat) ? (errno = EIO, -1) : __real_stat(path, status);
}
int __wrap_lstat(const char* path, struct stat* status) {
    return due(Stat) ? (errno = EIO, -1) : __real_lstat(path, status);
}
int __wrap_fstat(int fd, struct stat* status) {
    return due(Stat) ? (errno = EIO, -1) : __real_fstat(fd, status);
}
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*fn)(void*),
                          void* argument) {
    if (const char* most = std::getenv("ORVO_FAULT_INSTANCES"))
        orvo::parState.mostInstances = static_cast<size_t>(std::atoll(most));
    return due(Thread) ? EAGAIN : __real_pthread_create(thread, attributes, fn, argument);
}
}
// clang-format on
// NOLINTEND(bugprone-reserved-identifier)
