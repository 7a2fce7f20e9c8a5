#include "util/outfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

namespace orvo {
namespace {

/// Listing, tree and the files for an integrated environment are the outputs that are open at once.
constexpr size_t maxOutputs = 8;

struct Output {
    volatile std::sig_atomic_t isOpen = 0; // `temporary` is there
    std::FILE* file = nullptr;
    char temporary[PATH_MAX] = {};
    char path[PATH_MAX] = {};
};
Output outputs[maxOutputs];

Output* freeOutput() {
    for (Output& output : outputs)
        if (output.isOpen == 0) return &output;
    return nullptr;
}

Output* outputOf(const std::FILE* file) {
    for (Output& output : outputs)
        if (output.isOpen != 0 && output.file == file) return &output;
    return nullptr;
}

void forget(Output& output) {
    output.isOpen = 0;
    output.file = nullptr;
}

/// A new file in the folder of `path`; -1, with errno, when there can be none. It counts as open
/// before it is there, so that no signal finds it unknown.
int openTemporary(Output& output, const std::string& path) {
    static unsigned count = 0;
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    // A process of the same number that was killed may have left files behind.
    for (const unsigned last = count + 1000; count < last;) {
        const std::string name =
            folder + ".orvo-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
        if (name.size() >= sizeof output.temporary || path.size() >= sizeof output.path) break;
        std::memcpy(output.temporary, name.c_str(), name.size() + 1);
        std::memcpy(output.path, path.c_str(), path.size() + 1);
        output.isOpen = 1;
        const int fd = open(output.temporary, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) return fd;
        forget(output);
        if (errno != EEXIST) return -1;
    }
    errno = ENAMETOOLONG;
    return -1;
}

/// The folder admits no new file, but may hold one that can be written. Any other fault of the
/// temporary file would hit the final one too.
bool isForbidden(int fault) {
    return fault == EACCES || fault == EPERM || fault == EROFS || fault == ENAMETOOLONG;
}

/// The new file is to be like the one whose place it takes.
bool takesAfter(int fd, const struct stat& earlier) {
    struct stat status = {};
    if (fstat(fd, &status) != 0) return false;
    const bool sameOwner = status.st_uid == earlier.st_uid && status.st_gid == earlier.st_gid;
    if (!sameOwner && fchown(fd, earlier.st_uid, earlier.st_gid) != 0) return false;
    return fchmod(fd, earlier.st_mode & 07777) == 0;
}

void endSignal(int signal) {
    dropOutputs();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Where a link leads; the path itself when it is none, or leads to nothing that is there.
std::string targetOf(const std::string& path) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return path;
    char target[PATH_MAX];
    return realpath(path.c_str(), target) != nullptr ? target : path;
}

} // namespace

std::FILE* openOutput(const std::string& path, const char* mode) {
    const std::string target = targetOf(path);
    struct stat earlier = {};
    const bool isThere = lstat(target.c_str(), &earlier) == 0;
    if (isThere && !S_ISREG(earlier.st_mode)) return std::fopen(path.c_str(), mode);
    if (isThere && access(target.c_str(), W_OK) != 0) return nullptr;
    Output* const output = freeOutput();
    if (output == nullptr) return std::fopen(path.c_str(), mode);
    const int fd = openTemporary(*output, target);
    if (fd < 0) return isForbidden(errno) ? std::fopen(path.c_str(), mode) : nullptr;
    const bool isLike = !isThere || takesAfter(fd, earlier);
    if (isLike) output->file = fdopen(fd, mode);
    if (output->file != nullptr) return output->file;
    const int fault = errno;
    close(fd);
    unlink(output->temporary);
    forget(*output);
    if (!isLike) return std::fopen(path.c_str(), mode);
    errno = fault;
    return nullptr;
}

bool closeOutput(std::FILE* file) {
    Output* const output = outputOf(file);
    const bool isWhole = std::ferror(file) == 0;
    const bool closed = std::fclose(file) == 0;
    if (output == nullptr) return isWhole && closed;
    const bool ok = isWhole && closed && std::rename(output->temporary, output->path) == 0;
    const int fault = errno;
    if (!ok) unlink(output->temporary);
    forget(*output);
    errno = fault;
    return ok;
}

void dropOutputs() {
    for (Output& output : outputs) {
        if (output.isOpen == 0) continue;
        unlink(output.temporary);
        forget(output);
    }
}

void dropOutputsOnSignals() {
    std::signal(SIGXFSZ, SIG_IGN); // too large a file is a write that fails
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE, SIGXCPU}) {
        // What ignores a signal, as nohup does, goes on ignoring it.
        if (std::signal(signal, endSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

} // namespace orvo
