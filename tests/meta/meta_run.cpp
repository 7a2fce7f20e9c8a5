// Each run is a process of its own, forked from this one with the compiler in it.

#include "meta_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "driver/orvo.h"

namespace orvo::meta {
namespace {

namespace fs = std::filesystem;

const char* const moduleNames[] = {"Ma", "Mb", "Mc"};
const char* const fileNames[] = {"ma", "mb", "mc"};

template <typename T> void shuffle(std::vector<T>& list, Random& random) {
    for (size_t at = list.size(); at > 1; --at)
        std::swap(list[at - 1], list[static_cast<size_t>(random.below(static_cast<int>(at)))]);
}

std::string moduleText(const Project& project, const Arrangement& arrangement, size_t module) {
    std::map<std::string, size_t> homes;
    std::map<std::string, bool> braces;
    for (size_t at = 0; at < arrangement.modules.size(); ++at)
        for (const int nr : arrangement.modules[at]) {
            const Definition& definition = project.definitions[static_cast<size_t>(nr)];
            homes[definition.name] = at;
            braces[definition.name] = definition.parameterized;
        }
    std::vector<std::set<std::string>> imports(arrangement.modules.size());
    for (const int nr : arrangement.modules[module])
        for (const std::string& word : wordsOf(project.definitions[static_cast<size_t>(nr)].text)) {
            const auto home = homes.find(word);
            if (home != homes.end() && home->second != module)
                imports[home->second].insert(word + (braces[word] ? "{}" : ""));
        }
    std::string text =
        std::string(moduleNames[module]) + " DEFINITIONS " + project.tagging + " TAGS ::= BEGIN\n";
    std::string list;
    for (size_t from = 0; from < imports.size(); ++from) {
        if (imports[from].empty()) continue;
        std::string names;
        for (const std::string& name : imports[from]) names += (names.empty() ? "" : ", ") + name;
        list += " " + names + " FROM " + moduleNames[from];
    }
    if (!list.empty()) text += "IMPORTS" + list + ";\n";
    for (const int nr : arrangement.modules[module])
        text += project.definitions[static_cast<size_t>(nr)].text + "\n";
    return text + "END\n";
}

[[noreturn]] void compileInChild(const std::string& folder, std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    if (chdir(folder.c_str()) != 0 || std::freopen("/dev/null", "w", stdout) == nullptr ||
        std::freopen("err", "w", stderr) == nullptr)
        _exit(98);
    alarm(60);
    const int status = orvo::orvo_main(static_cast<int>(argv.size()) - 1, argv.data());
    std::fflush(nullptr);
    _exit(status);
}

/// The definition and the line in it of each line of the module.
std::vector<std::pair<std::string, int>> lineOwners(const Project& project,
                                                    const Arrangement& arrangement, size_t module) {
    std::vector<std::pair<std::string, int>> owners(1);
    const std::string text = moduleText(project, arrangement, module);
    owners.push_back({"(header)", 0});
    if (text.find("\nIMPORTS") != std::string::npos) owners.push_back({"(imports)", 0});
    for (const int nr : arrangement.modules[module]) {
        const Definition& definition = project.definitions[static_cast<size_t>(nr)];
        const auto lines = std::ranges::count(definition.text, '\n') + 1;
        for (int line = 0; line < lines; ++line) owners.push_back({definition.name, line});
    }
    owners.push_back({"(end)", 0});
    return owners;
}

void readListing(const std::string& path, const std::vector<std::pair<std::string, int>>& owners,
                 Outcome& outcome) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const size_t at = line.find(" on line ");
        if (line.find("** ") == std::string::npos) continue;
        if (at == std::string::npos) {
            outcome.findings["(module)"].push_back(line);
            continue;
        }
        char* end = nullptr;
        const auto number = std::strtoul(line.c_str() + at + 9, &end, 10);
        const auto owner = number < owners.size()
                               ? owners[number]
                               : std::pair<std::string, int>("(no such line)", 0);
        outcome.findings[owner.first].push_back(line.substr(0, at) + " +" +
                                                std::to_string(owner.second) + std::string(end));
    }
}

struct Folder {
    std::string path = "/tmp/orvometaXXXXXX";
    Folder() {
        if (mkdtemp(path.data()) == nullptr) std::exit(2);
    }
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

} // namespace

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words;
    for (size_t at = 0; at < text.size();) {
        const char ch = text[at];
        if (ch == '"' || ch == '\'') {
            at = text.find(ch, at + 1);
            at = at == std::string::npos ? text.size() : at + 1;
            continue;
        }
        if (std::isalpha(static_cast<unsigned char>(ch)) == 0) {
            ++at;
            continue;
        }
        size_t end = at;
        while (end < text.size() &&
               (std::isalnum(static_cast<unsigned char>(text[end])) != 0 || text[end] == '-'))
            ++end;
        if (at == 0 || text[at - 1] != '&') words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::vector<Arrangement> arrangementsOf(const Project& project, Random& random) {
    std::vector<int> order;
    for (size_t at = 0; at < project.definitions.size(); ++at)
        order.push_back(static_cast<int>(at));
    std::vector<Arrangement> list;
    list.push_back({"as written", {order}, 0});
    shuffle(order, random);
    list.push_back({"shuffled", {order}, 0});
    for (int count = 2; count <= 3; ++count) {
        shuffle(order, random);
        std::vector<std::vector<int>> modules(static_cast<size_t>(count));
        std::map<std::string, size_t> homes;
        for (const Definition& definition : project.definitions)
            homes[definition.name] = static_cast<size_t>(random.below(count));
        for (const int nr : order) {
            const Definition& definition = project.definitions[static_cast<size_t>(nr)];
            const bool isGlued = !definition.glue.empty();
            modules[homes[isGlued ? definition.glue : definition.name]].push_back(nr);
        }
        for (int root = 0; root < count; ++root)
            list.push_back({"split over " + std::to_string(count) + ", root " + fileNames[root],
                            modules, root});
    }
    return list;
}

std::vector<std::pair<std::string, std::string>> modulesOf(const Project& project,
                                                           const Arrangement& arrangement) {
    std::vector<std::pair<std::string, std::string>> files;
    const size_t count = arrangement.modules.size();
    for (size_t at = 0; at < count; ++at) {
        const size_t module = (static_cast<size_t>(arrangement.root) + at) % count;
        files.push_back({fileNames[module], moduleText(project, arrangement, module)});
    }
    return files;
}

Outcome compile(const Project& project, const Arrangement& arrangement) {
    Outcome outcome;
    const Folder folder;
    std::vector<std::string> arguments{"orvo", "-V=1"};
    if (project.isNew) arguments.emplace_back("-STANDARD-VERSION=2021");
    std::string root;
    for (const auto& [name, text] : modulesOf(project, arrangement)) {
        std::ofstream(folder.path + "/" + name + ".asn") << text;
        const auto module = std::ranges::find(fileNames, name) - std::begin(fileNames);
        if (root.empty()) root = name + ".asn";
        arguments.push_back(std::string("-PREFIX=") + moduleNames[module] + ":" + name + ":" +
                            name);
    }
    arguments.push_back(root);
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) compileInChild(folder.path, arguments);
    int status = 0;
    waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 100 + WTERMSIG(status);
    if (outcome.status > 1) {
        std::ifstream file(folder.path + "/err");
        outcome.trouble = std::string(std::istreambuf_iterator<char>(file), {}).substr(0, 2000);
    }
    stx::Trees trees;
    for (size_t module = 0; module < arrangement.modules.size(); ++module) {
        const std::string stem = folder.path + "/" + fileNames[module];
        readListing(stem + ".lst", lineOwners(project, arrangement, module), outcome);
        std::string error;
        if (fs::exists(stem + ".stx") && !addDump(outcome.dump, trees, stem + ".stx", error))
            outcome.trouble += error;
    }
    return outcome;
}

namespace {

constexpr size_t maxDifferences = 12;
using Lines = std::vector<std::string>;

/// "path=value" cut into the two; a path may lead to several lines.
std::map<std::string, std::string> byPath(const Lines& lines) {
    std::map<std::string, std::string> map;
    for (const std::string& line : lines) {
        const size_t at = line.find('=');
        std::string& value = map[line.substr(0, at)];
        value += (value.empty() ? "" : ", ") + line.substr(at == std::string::npos ? 0 : at + 1);
    }
    return map;
}

void compareTrees(const Lines& first, const std::vector<std::string>& other,
                  const std::string& with, const std::string& name, std::vector<Difference>& list) {
    if (first == other) return;
    std::map<std::string, std::pair<std::string, std::string>> paths;
    for (const auto& [path, value] : byPath(first)) paths[path].first = value;
    for (const auto& [path, value] : byPath(other)) paths[path].second = value;
    std::set<std::string> fields; // one place for each
    for (const auto& [path, values] : paths) {
        if (values.first == values.second || list.size() >= maxDifferences) continue;
        if (!fields.insert(path.substr(path.rfind('.') + 1)).second) continue;
        list.push_back(
            {with, "tree of " + name, path + "=" + values.first, path + "=" + values.second});
    }
    if (fields.empty()) list.push_back({with, "tree of " + name, "order", "order"});
}

/// The lines of both by name.
std::map<std::string, std::pair<Lines, Lines>> byName(const Dump& first, const Dump& other) {
    std::map<std::string, std::pair<Lines, Lines>> map;
    for (const auto& [name, lines] : first) map[name].first = lines;
    for (const auto& [name, lines] : other) map[name].second = lines;
    return map;
}

void compareFindings(const std::string& what, const Lines& first, const Lines& other,
                     const std::string& with, std::vector<Difference>& list) {
    if (first == other) return;
    size_t at = 0;
    while (at < first.size() && at < other.size() && first[at] == other[at]) ++at;
    list.push_back({with, what, at < first.size() ? first[at] : "(nothing)",
                    at < other.size() ? other[at] : "(nothing)"});
}

} // namespace

Lines foundAtFault(const Project& project, const Outcome& outcome) {
    Lines list;
    const auto found = outcome.findings.find(project.faulty);
    for (const Definition& definition : project.definitions) {
        if (definition.name != project.faulty || found == outcome.findings.end()) continue;
        const auto end = definition.text.begin() +
                         static_cast<std::ptrdiff_t>(
                             std::min(definition.text.find(project.mark), definition.text.size()));
        const std::string line =
            " +" + std::to_string(std::count(definition.text.begin(), end, '\n')) + " ";
        for (const std::string& finding : found->second)
            if (finding.find(line) != std::string::npos) list.push_back(finding);
    }
    return list;
}

std::vector<Difference> differences(const Project& project, const Outcome& first,
                                    const Arrangement& arrangement, const Outcome& other) {
    std::vector<Difference> list;
    const std::string& with = arrangement.name;
    if (first.status != other.status)
        list.push_back(
            {with, "exit status", std::to_string(first.status), std::to_string(other.status)});
    if (first.trouble != other.trouble)
        list.push_back({with, "trouble", first.trouble, other.trouble});
    if (project.isFaulty)
        compareFindings("fault in " + project.faulty, foundAtFault(project, first),
                        foundAtFault(project, other), with, list);
    if (!project.isFaulty || first.status == 0)
        for (const auto& [name, lines] : byName(first.findings, other.findings))
            compareFindings("findings of " + name, lines.first, lines.second, with, list);
    if (first.status == 0 && other.status == 0)
        for (const auto& [name, lines] : byName(first.dump, other.dump))
            compareTrees(lines.first, lines.second, with, name, list);
    return list;
}

} // namespace orvo::meta
