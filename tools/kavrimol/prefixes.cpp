// The compiler opens prefix + ".asn", so only a file whose own name is its prefix is found. The one
// exception is the file that the compiler is given first: it is opened as named, and PREFIX= finds
// its module by the module's name. Own names are given away before made ones, so that a file keeps
// its name whatever other files there are.

#include "kavrimol/prefixes.h"

#include <algorithm>

#include "util/ascii.h"
#include "util/text.h"

namespace kavrimol {
namespace {

using orvo::concat;

constexpr std::string_view extension = ".asn";

// ---- which modules ------------------------------------------------------------------------------

struct Collector {
    Sources& sources;
    Findings& findings;
    std::vector<UsedModule> modules{};
    std::unordered_map<std::string, FoundModule> byName{}; // empty: nobody defines it
    std::unordered_set<const SourceFile*> complained{};    // hold several modules
};

void checkOneModule(Collector& all, const SourceFile* file) {
    if (file->modules.size() == 1 || !all.complained.insert(file).second) return;
    std::string names;
    for (const ModuleText& module : file->modules)
        names += concat(names.empty() ? "" : ", ", module.name);
    all.findings.errors.push_back(concat(file->path, ": several modules in one file (", names,
                                         "); write a file for each with -split=DIR"));
}

void addModule(Collector& all, FoundModule found) {
    all.byName.emplace(found.module->name, found);
    all.modules.push_back({found, ""});
    checkOneModule(all, found.file);
}

std::string twiceText(const std::string& module, const SourceFile* one, const SourceFile* other) {
    return concat("module ", module, " is defined by ", one->path, " and by ", other->path);
}

void addArgument(Collector& all, std::string_view argument) {
    const SourceFile* file = loadFile(all.sources, findArgument(all.sources, argument));
    if (file == nullptr) return;
    if (file->modules.empty())
        all.findings.errors.push_back(
            concat(file->path, ": no module in it (\"Name DEFINITIONS ::= BEGIN ... END\")"));
    for (const ModuleText& module : file->modules) {
        const auto known = all.byName.find(module.name);
        if (known == all.byName.end())
            addModule(all, {file, &module});
        else if (known->second.module != &module) // else the file is named twice
            all.findings.errors.push_back(twiceText(module.name, known->second.file, file));
    }
}

std::string missingText(const Collector& all, const FoundModule& user, const Reference& reference) {
    std::string text = concat(user.file->path, ":", std::to_string(reference.line),
                              ": no file defines module ", reference.module);
    const auto hidden = all.sources.hidden.find(reference.module);
    if (hidden == all.sources.hidden.end()) return text;
    const std::string& path = hidden->second.front().file->path;
    const std::string name = path.substr(path.rfind('/') + 1);
    return text +
           concat("; ", path, " does, but it is hidden by ", findInDirectories(all.sources, name));
}

void followReference(Collector& all, const FoundModule& user, const Reference& reference) {
    if (all.byName.contains(reference.module)) return;
    const std::vector<FoundModule>& found = findModule(all.sources, reference.module);
    if (found.empty()) {
        all.findings.errors.push_back(missingText(all, user, reference));
        all.byName.emplace(reference.module, FoundModule{});
        return;
    }
    if (found.size() > 1)
        all.findings.errors.push_back(twiceText(reference.module, found[0].file, found[1].file));
    addModule(all, found[0]);
}

// ---- which prefixes -----------------------------------------------------------------------------

struct PathParts {
    std::string directory; // with its "/"
    std::string name;
    std::string stem; // the name without ".asn"
};

PathParts partsOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    const size_t begin = slash == std::string::npos ? 0 : slash + 1;
    PathParts parts{path.substr(0, begin), path.substr(begin), ""};
    parts.stem = parts.name;
    if (parts.stem.ends_with(extension)) parts.stem.resize(parts.stem.size() - extension.size());
    return parts;
}

/// Why the name of a file is no prefix; "" when it is one.
std::string faultOfName(const PrefixPool& pool, const PathParts& parts) {
    if (parts.name == parts.stem) return "a name without \".asn\" cannot be a file prefix";
    if (isPrefix(pool, parts.stem)) return "";
    if (parts.stem.size() > pool.maxLength)
        return concat("the name has more than the ", std::to_string(pool.maxLength),
                      " characters of a file prefix (-PREFIXLEN=)");
    return "a file prefix is made of letters, digits, \"-\" and \"_\" only";
}

/// Why the compiler does not find a file by its own name; "" when it does.
std::string faultOfFile(const Sources& sources, const PrefixPool& pool,
                        const std::vector<UsedModule>& modules, const UsedModule& used,
                        const PathParts& parts) {
    std::string fault = faultOfName(pool, parts);
    if (!fault.empty()) return fault;
    const std::string& path = used.found.file->path;
    if (pool.taken.contains(parts.stem)) {
        const auto owner = std::ranges::find(modules, parts.stem, &UsedModule::prefix);
        return concat(owner->found.file->path, " has the same name");
    }
    const std::string found = findInDirectories(sources, parts.name);
    if (!isFile(found) || isSameFile(found, path)) return "";
    return concat("it is hidden by ", found);
}

void takeOwnName(PrefixPool& pool, UsedModule& used, const std::string& stem) {
    used.prefix = stem;
    pool.taken.insert(stem);
}

/// Renaming the file shall neither overwrite another one nor leave it hidden.
void takeMadeName(const Sources& sources, PrefixPool& pool, UsedModule& used,
                  const std::string& directory, Findings& findings) {
    const auto isFree = [&](const std::string& prefix) {
        const std::string name = concat(prefix, extension);
        return !isFile(findInDirectories(sources, name)) && !isFile(directory + name);
    };
    used.prefix = takeUniquePrefix(pool, used.found.module->name, isFree);
    if (used.prefix.empty())
        findings.errors.push_back(concat("no file prefix of ", std::to_string(pool.maxLength),
                                         " characters is left for module ",
                                         used.found.module->name));
}

/// An argument with blanks in it is not taken by the compiler.
bool isArgument(const std::string& name) {
    return std::ranges::all_of(name, [](char c) { return orvo::isPrintable(c) && c != ' '; });
}

void mendName(const Sources& sources, PrefixPool& pool, UsedModule& used, const PathParts& parts,
              const std::string& fault, bool isFirst, Findings& findings) {
    takeMadeName(sources, pool, used, parts.directory, findings);
    const std::string said = concat(used.found.file->path, ": ", fault);
    if (isFirst && isArgument(parts.name))
        findings.warnings.push_back(said + "; let it be the first file that orvo is given");
    else
        findings.mends.push_back(concat(said, "; rename the file to ", used.prefix, extension));
}

void checkDirectory(const Sources& sources, const UsedModule& used, const PathParts& parts,
                    Findings& findings) {
    const std::string& path = used.found.file->path;
    if (isFile(findInDirectories(sources, parts.name))) return;
    findings.mends.push_back(
        concat(path, ": no -A= names its directory; add -A=", parts.directory));
}

} // namespace

bool isPrefix(const PrefixPool& pool, std::string_view name) {
    return !name.empty() && name.size() <= pool.maxLength &&
           orvo::spanOfName(name, "-_") == name.size();
}

std::string takeUniquePrefix(PrefixPool& pool, std::string_view module,
                             const std::function<bool(const std::string&)>& isFree) {
    std::string base(module.substr(0, pool.maxLength));
    std::ranges::transform(base, base.begin(), orvo::toLower);
    if (isFree(base) && pool.taken.insert(base).second) return base;
    for (size_t& number = pool.lastNumber.emplace(base, 1).first->second;;) {
        const std::string digits = std::to_string(++number);
        if (digits.size() > pool.maxLength) return "";
        std::string prefix = base.substr(0, pool.maxLength - digits.size()) + digits;
        if (!pool.taken.contains(prefix) && isFree(prefix)) {
            pool.taken.insert(prefix);
            return prefix;
        }
    }
}

std::vector<UsedModule> collectModules(Sources& sources, const std::vector<std::string>& arguments,
                                       Findings& findings) {
    Collector all{sources, findings};
    for (const std::string& argument : arguments) addArgument(all, argument);
    for (size_t i = 0; i < all.modules.size(); ++i) {
        const FoundModule user = all.modules[i].found;
        for (const Reference& reference : user.module->references)
            followReference(all, user, reference);
    }
    return std::move(all.modules);
}

void choosePrefixes(const Sources& sources, PrefixPool& pool, std::vector<UsedModule>& modules,
                    Findings& findings) {
    std::vector<std::string> faults;
    for (UsedModule& used : modules) {
        const PathParts parts = partsOf(used.found.file->path);
        faults.push_back(&used == &modules.front()
                             ? faultOfName(pool, parts)
                             : faultOfFile(sources, pool, modules, used, parts));
        if (faults.back().empty()) takeOwnName(pool, used, parts.stem);
    }
    for (size_t i = 0; i < modules.size(); ++i) {
        const PathParts parts = partsOf(modules[i].found.file->path);
        if (!faults[i].empty())
            mendName(sources, pool, modules[i], parts, faults[i], i == 0, findings);
        else if (i != 0)
            checkDirectory(sources, modules[i], parts, findings);
    }
}

void findNewerNotation(const std::vector<UsedModule>& modules, Findings& findings) {
    for (const UsedModule& used : modules) {
        const Sign& newer = used.found.module->newer;
        if (newer.what.empty()) continue;
        findings.warnings.push_back(concat(used.found.file->path, ":", std::to_string(newer.line),
                                           ": ", newer.what,
                                           " is read with -STANDARD-VERSION=2021 only"));
        return;
    }
}

std::string optionFileText(const PrefixPool& pool, const std::string& standardVersion,
                           const std::vector<UsedModule>& modules) {
    std::string text = concat("-PREFIXLEN=", std::to_string(pool.maxLength), "\n");
    if (!standardVersion.empty()) text += concat("-STANDARD-VERSION=", standardVersion, "\n");
    for (const UsedModule& used : modules)
        text +=
            concat("-PREFIX=", used.found.module->name, ":", used.prefix, ":", used.prefix, "\n");
    return text;
}

} // namespace kavrimol
