// The order of the module list is the order of compilation, so the first record that fits a file
// prefix is the one that gets it. Records have their prefix from creation, with two exceptions that
// may claim one later: the first record, which findOrCreateModRec looks at directly because its
// names change without notice, and further files of the command line, which wait under their source
// file name. Records are created in list order, so their handles tell which of two comes first.

#include "driver/orvofil.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "diag/orvoerr_fatal.h"
#include "util/outfile.h"
#include "util/text.h"

namespace orvo {
namespace {

void claim(ModuleRec* module, std::string_view filePrefix, std::string_view generationPrefix) {
    module->filePrefix = filePrefix;
    module->generationPrefix = generationPrefix;
    run.index.byFilePrefix.emplace(filePrefix, module);
}

/// The first record on the list, when it has the prefix or may claim it.
ModuleRec* firstRecord(std::string_view filePrefix, std::string_view generationPrefix,
                       std::string_view moduleName, const std::string& sourceName) {
    ModuleRec* module = run.bOfModRList;
    if (module == nullptr) return nullptr;
    if (module->filePrefix.empty()) {
        const bool mine = module->moduleName.empty() ? module->options.sourceFileName == sourceName
                                                     : module->moduleName == moduleName;
        if (mine) claim(module, filePrefix, generationPrefix);
    }
    return module->filePrefix == filePrefix ? module : nullptr;
}

/// The first further file of the command line that still waits under the name.
ModuleRec* waitingRecord(const std::string& sourceName) {
    const auto found = run.index.unclaimed.find(sourceName);
    if (found == run.index.unclaimed.end() || found->second.empty()) return nullptr;
    return found->second.front();
}

std::FILE* openSource(const std::string& path) {
    std::FILE* file = openFile(path, "r");
    struct stat status = {};
    if (file != nullptr && fstat(fileno(file), &status) == 0)
        run.sourceFiles.emplace(status.st_dev, status.st_ino);
    return file;
}

} // namespace

std::FILE* openFile(const std::string& path, const char* mode) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) return nullptr;
    if (*mode == 'w' && isSource(path)) return nullptr;
    std::FILE* file = *mode == 'w' ? openOutput(path, mode) : std::fopen(path.c_str(), mode);
    // Whether there is such a file is not known then: another one must not be taken for it.
    if (file == nullptr && errno == ENOMEM) fatalError(Fatal::NoSpace);
    return file;
}

ModuleRec* newModuleRec() {
    run.modules.push_back(std::make_unique<ModuleRec>());
    ModuleRec* module = run.modules.back().get();
    module->handle = static_cast<uint32_t>(run.modules.size());
    return module;
}

void appendModuleRec(ModuleRec* module) {
    if (run.eOfModRList == nullptr)
        run.bOfModRList = module;
    else
        run.eOfModRList->next = module;
    run.eOfModRList = module;
}

ModuleRec* findOrCreateModRec(std::string_view filePrefix, std::string_view generationPrefix,
                              std::string_view moduleName) {
    const std::string sourceName = setFileName(filePrefix, ".asn", true);
    if (ModuleRec* first = firstRecord(filePrefix, generationPrefix, moduleName, sourceName))
        return first;
    const auto known = run.index.byFilePrefix.find(std::string(filePrefix));
    ModuleRec* owner = known == run.index.byFilePrefix.end() ? nullptr : known->second;
    ModuleRec* waiting = waitingRecord(sourceName);
    if (owner != nullptr && (waiting == nullptr || owner->handle < waiting->handle)) return owner;
    if (waiting != nullptr) {
        run.index.unclaimed[sourceName].pop_front();
        claim(waiting, filePrefix, generationPrefix);
        return waiting;
    }
    ModuleRec* module = newModuleRec();
    module->moduleName = moduleName;
    appendModuleRec(module);
    claim(module, filePrefix, generationPrefix);
    return module;
}

void setSourceFileName(ModuleRec* module, std::string_view name) {
    module->options.sourceFileName = name;
    if (module != run.bOfModRList) run.index.unclaimed[std::string(name)].push_back(module);
}

const std::string& newStriVal(std::string& dest, std::string_view prefix, size_t len,
                              std::string_view src, std::string_view suffix) {
    return dest = concat(prefix, src.substr(0, len), suffix);
}

std::string setFileName(std::string_view name, std::string_view ext, bool replaceExt) {
    if (replaceExt) name = name.substr(0, maxNameLength - ext.size());
    const size_t slash = name.rfind('/');
    const size_t base = slash == std::string_view::npos ? 0 : slash + 1;
    const size_t dot = name.rfind('.');
    if (dot != std::string_view::npos && dot >= base) {
        if (!replaceExt) return std::string(name);
        name = name.substr(0, dot);
    }
    return concat(name, ext);
}

std::FILE* fopenTextFile(std::string_view directory, std::string_view name, const char* mode) {
    const Fatal failure = *mode == 'w' ? Fatal::OpenWrite : Fatal::OpenRead;
    if (directory.size() + name.size() > maxPathLength) fatalError(failure);
    const std::string path = concat(directory, name);
    std::FILE* file = openFile(path, mode);
    if (file == nullptr) fatalError(failure, path);
    return file;
}

bool sourceExists(const std::vector<std::string>& path, std::string_view name) {
    const auto opens = [name](std::string_view directory) {
        if (directory.size() + name.size() > maxPathLength) return false;
        const std::string file = concat(directory, name); // not opened: a pipe opens only once
        std::error_code ignored;
        return access(file.c_str(), R_OK) == 0 && !std::filesystem::is_directory(file, ignored);
    };
    return !name.empty() && (std::ranges::any_of(path, opens) || opens(""));
}

std::FILE* fopenTextFileInSearchPathForRd(const std::vector<std::string>& path,
                                          std::string_view name, std::string& directoryOut) {
    for (const std::string& directory : path) {
        if (directory.size() + name.size() > maxPathLength) fatalError(Fatal::OpenRead);
        std::FILE* file = openSource(concat(directory, name));
        if (file == nullptr) continue;
        directoryOut = directory;
        return file;
    }
    std::FILE* file = openSource(std::string(name));
    if (file == nullptr) fatalError(Fatal::OpenRead, name);
    directoryOut.clear();
    return file;
}

void addDirToSearchPath(std::vector<std::string>& path, std::string_view directory) {
    if (!directory.empty()) path.emplace_back(directory);
}

void closeFile(std::FILE*& file, std::string_view detail) {
    if (file == nullptr) return;
    const bool written = std::ferror(file) == 0;
    const bool closed = closeOutput(std::exchange(file, nullptr));
    if (!written) fatalError(Fatal::Write, detail);
    if (!closed) fatalError(Fatal::Close, detail);
}

} // namespace orvo
