// A file whose name stands in an earlier directory too is hidden: no prefix leads the compiler to
// it, so its modules are found by nobody and only named in messages. The files of a directory are
// taken in the order of their names, so that a run does not depend on the file system.

#include "kavrimol/sources.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "util/guard.h"

namespace kavrimol {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view extension = ".asn";

/// One name for all paths to a file; the path itself when there is no such file.
std::string realPath(const std::string& path) {
    std::error_code failed;
    const fs::path real = fs::canonical(path, failed);
    return failed ? path : real.string();
}

/// Names of the sources in a directory. Editors leave files that begin with "." behind.
std::vector<std::string> sourcesIn(Sources& sources, const std::string& directory) {
    std::vector<std::string> names;
    std::error_code failed;
    fs::directory_iterator entry(directory.empty() ? "." : directory, failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
        std::string name = entry->path().filename().string();
        if (name.starts_with('.') || !name.ends_with(extension)) continue;
        std::error_code ignored;
        if (!fs::is_directory(entry->path(), ignored)) names.push_back(std::move(name));
    }
    if (failed) sources.failures.push_back(directory + ": " + failed.message());
    std::ranges::sort(names);
    return names;
}

/// Enters a file under the name that it has in a directory.
void indexFile(Sources& sources, ModuleIndex& index, const std::string& directory,
               const std::string& name) {
    const SourceFile* file = loadFile(sources, directory + name);
    if (file == nullptr) return;
    const auto [first, reached] = sources.firstWithName.emplace(name, directory);
    if (!reached && isSameFile(first->second + name, directory + name)) return;
    for (const ModuleText& module : file->modules) {
        std::vector<FoundModule>& found = (reached ? index : sources.hidden)[module.name];
        const auto isThis = [file](const FoundModule& other) { return other.file == file; };
        if (std::ranges::none_of(found, isThis)) found.push_back({file, &module});
    }
}

void scanDirectory(Sources& sources, ModuleIndex& index, const std::string& directory) {
    for (const std::string& name : sourcesIn(sources, directory))
        indexFile(sources, index, directory, name);
}

} // namespace

bool isFile(const std::string& path) {
    std::error_code failed;
    return fs::is_regular_file(path, failed);
}

bool readFile(const std::string& path, std::string& text, std::string& failure) {
    std::error_code ignored;
    if (fs::exists(path, ignored) && !isFile(path)) { // a device may have no end
        failure = path + ": not a regular file";
        return false;
    }
    const orvo::File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) {
        failure = path + ": " + std::strerror(errno);
        return false;
    }
    text.clear();
    char buffer[65536];
    for (size_t got; (got = std::fread(buffer, 1, sizeof buffer, file.get())) != 0;)
        text.append(buffer, got);
    if (std::ferror(file.get()) == 0) return true;
    failure = path + ": " + std::strerror(errno);
    return false;
}

std::string findInDirectories(const Sources& sources, const std::string& name) {
    for (const std::string& directory : sources.directories)
        if (isFile(directory + name)) return directory + name;
    return name;
}

std::string findArgument(const Sources& sources, std::string_view argument) {
    const size_t slash = argument.rfind('/');
    const std::string_view name =
        slash == std::string_view::npos ? argument : argument.substr(slash + 1);
    std::string file(argument);
    if (name.find('.') == std::string_view::npos) file += extension;
    return findInDirectories(sources, file);
}

const SourceFile* loadFile(Sources& sources, const std::string& path) {
    const auto [place, isNew] = sources.byRealPath.emplace(realPath(path), nullptr);
    if (!isNew) return place->second;
    std::string text, failure;
    if (!readFile(path, text, failure)) {
        sources.failures.push_back(std::move(failure));
        return nullptr;
    }
    place->second = &sources.files.emplace_back(SourceFile{path, scanModules(text)});
    return place->second;
}

const std::vector<FoundModule>& findModule(Sources& sources, const std::string& module) {
    if (!sources.directoriesScanned) {
        sources.directoriesScanned = true;
        for (const std::string& directory : sources.directories)
            scanDirectory(sources, sources.inDirectories, directory);
    }
    if (const auto found = sources.inDirectories.find(module); found != sources.inDirectories.end())
        return found->second;
    if (!sources.currentScanned) {
        sources.currentScanned = true;
        scanDirectory(sources, sources.inCurrent, "");
    }
    return sources.inCurrent[module];
}

bool isSameFile(const std::string& one, const std::string& other) {
    std::error_code failed;
    return fs::equivalent(one, other, failed);
}

bool isLoaded(const Sources& sources, const std::string& path) {
    return sources.byRealPath.contains(realPath(path));
}

} // namespace kavrimol
