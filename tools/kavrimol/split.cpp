#include "kavrimol/split.h"

#include "util/text.h"

namespace kavrimol {
namespace {

using orvo::concat;

/// What stands behind END on its line belongs to it, if it is blank or a comment.
size_t endOfLine(std::string_view text, size_t end) {
    size_t at = end;
    while (at < text.size() && text[at] != '\n') {
        if (text.substr(at).starts_with("--")) {
            const size_t lineEnd = std::min(text.find('\n', at), text.size());
            const size_t close = text.find("--", at + 2);
            at = close < lineEnd ? close + 2 : lineEnd;
        } else if (text[at] == ' ' || text[at] == '\t' || text[at] == '\r') {
            ++at;
        } else {
            return end;
        }
    }
    return std::min(at + 1, text.size());
}

void addPieces(const std::string& path, std::string_view text, PrefixPool& pool,
               std::unordered_map<std::string, std::string>& pathOf, std::vector<SplitFile>& files,
               Findings& findings) {
    const std::vector<ModuleText> modules = scanModules(text);
    if (modules.empty()) findings.errors.push_back(path + ": no module in it");
    const std::vector<std::string_view> pieces = splitText(text, modules);
    for (size_t i = 0; i < modules.size(); ++i) {
        const std::string& module = modules[i].name;
        const auto [known, isNew] = pathOf.emplace(module, path);
        if (!isNew) {
            findings.errors.push_back(
                concat("module ", module, " is defined by ", known->second, " and by ", path));
            continue;
        }
        const std::string prefix =
            takeUniquePrefix(pool, module, [](const std::string&) { return true; });
        if (prefix.empty())
            findings.errors.push_back(concat("no file prefix is left for module ", module));
        files.push_back({concat(prefix, ".asn"), std::string(pieces[i])});
    }
}

} // namespace

std::vector<std::string_view> splitText(std::string_view text,
                                        const std::vector<ModuleText>& modules) {
    std::vector<std::string_view> pieces;
    size_t begin = 0;
    for (const ModuleText& module : modules) {
        const bool last = &module == &modules.back();
        const size_t end = last ? text.size() : endOfLine(text, module.end);
        pieces.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return pieces;
}

std::vector<SplitFile> splitFiles(Sources& sources, const std::vector<std::string>& arguments,
                                  PrefixPool& pool, Findings& findings) {
    std::vector<SplitFile> files;
    std::unordered_map<std::string, std::string> pathOf; // by module
    for (const std::string& argument : arguments) {
        const std::string path = findArgument(sources, argument);
        std::string text, failure;
        if (readFile(path, text, failure))
            addPieces(path, text, pool, pathOf, files, findings);
        else
            sources.failures.push_back(failure);
    }
    return files;
}

} // namespace kavrimol
