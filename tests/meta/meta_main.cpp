// orvo_meta FIRST-SEED COUNT [--keep DIR] [--reduce] [--mask FIELD]
// Compiles random legal modules in several arrangements; all must come to the same.
// orvo_meta --try
// Tries the comparison of trees.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "meta_run.h"
#include "meta_try.h"

// A report of a sanitizer must not look like the status of a module with errors.
extern "C" const char* __asan_default_options() {
    return "exitcode=99:detect_leaks=0";
}
extern "C" const char* __ubsan_default_options() {
    return "exitcode=99";
}

namespace {

using namespace orvo::meta;

struct Verdict {
    std::vector<Difference> differences;
    std::vector<Arrangement> pair; // the first arrangement and the one that differs
    bool firstFails = false, otherFails = false;
    std::string refusal; // the first finding, of a module that should be legal
};

Verdict judge(const Project& project, const std::vector<Arrangement>& arrangements) {
    Verdict verdict;
    const Outcome first = compile(project, arrangements[0]);
    const auto note = [&](const Outcome& outcome) {
        if (!verdict.refusal.empty()) return;
        for (const auto& [name, lines] : outcome.findings) {
            verdict.refusal = name + ":" + lines[0];
            return;
        }
        if (outcome.status != 0 || !outcome.trouble.empty())
            verdict.refusal = "status " + std::to_string(outcome.status) + ": " + outcome.trouble;
    };
    note(first);
    verdict.firstFails = first.status != 0;
    for (size_t at = 1; at < arrangements.size(); ++at) {
        const Outcome other = compile(project, arrangements[at]);
        note(other);
        const std::vector<Difference> found = differences(first, arrangements[at], other);
        if (found.empty()) continue;
        if (verdict.pair.empty()) {
            verdict.pair = {arrangements[0], arrangements[at]};
            verdict.otherFails = other.status != 0;
        }
        verdict.differences.insert(verdict.differences.end(), found.begin(), found.end());
    }
    return verdict;
}

/// What kind of failure this is, names aside: reducing must not wander off to another one.
std::string classOf(const Verdict& verdict) {
    std::string text = verdict.refusal;
    if (!verdict.differences.empty()) {
        const Difference& difference = verdict.differences.front();
        text = difference.where.substr(0, difference.where.find(" of")) + "|" + difference.first +
               "|" + difference.other;
    }
    text += " " + std::string(verdict.firstFails ? "fails" : "passes");
    if (!verdict.pair.empty()) text += verdict.otherFails ? " fails" : " passes";
    std::string result;
    bool inBracket = false;
    for (const char ch : text) {
        if (ch == '[') inBracket = true;
        if (ch == ']') inBracket = false;
        if (!inBracket && (ch < '0' || ch > '9')) result += ch;
    }
    return result;
}

/// Where the text that begins at `at` ends: before a separator, or before the brace that closes.
size_t endOfItem(const std::string& text, size_t at) {
    int depth = 0;
    for (; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == '{' || ch == '(' || ch == '[') ++depth;
        if (ch == '}' || ch == ')' || ch == ']') {
            if (depth == 0) return at;
            --depth;
        }
        if (depth == 0 && ch == ',') break;
    }
    while (at > 0 && (text[at - 1] == ' ' || text[at - 1] == '\n')) --at;
    return at;
}

/// Texts with one thing less: an item of a list, a constraint, what follows a component's type.
std::vector<std::string> smallerTexts(const std::string& text) {
    std::vector<std::string> list;
    const auto without = [&](size_t from, size_t to) {
        if (to > from) list.push_back(text.substr(0, from) + text.substr(to));
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == ',') {
            size_t from = at;
            while (from > 0 && (text[from - 1] == ' ' || text[from - 1] == '\n')) --from;
            without(from, endOfItem(text, at + 1));
        }
        if (ch == '{') {
            const size_t end = endOfItem(text, at + 1);
            const size_t comma = text.find(',', end);
            if (comma != std::string::npos && comma <= end + 6) without(at + 1, comma + 1);
        }
        if (ch == '(') {
            size_t end = at;
            for (int depth = 0; end < text.size(); ++end) {
                if (text[end] == '(') ++depth;
                if (text[end] == ')' && --depth == 0) break;
            }
            if (end < text.size()) without(at, end + 1);
        }
        for (const char* word :
             {" OPTIONAL", " DEFAULT ", " EXPLICIT", "SEQUENCE OF ", "[APPLICATION"})
            if (text.compare(at, std::string(word).size(), word) == 0) {
                if (word[1] == 'D')
                    without(at, endOfItem(text, at));
                else if (word[0] == '[')
                    without(at, text.find(']', at) + 1);
                else
                    without(at, at + std::string(word).size());
            }
    }
    return list;
}

bool isUsed(const Project& project, size_t at) {
    for (size_t other = 0; other < project.definitions.size(); ++other)
        if (other != at)
            for (const std::string& word : wordsOf(project.definitions[other].text))
                if (word == project.definitions[at].name) return true;
    return false;
}

/// The arrangements without the definition.
std::vector<Arrangement> withoutDefinition(std::vector<Arrangement> list, int gone) {
    for (Arrangement& arrangement : list)
        for (std::vector<int>& module : arrangement.modules) {
            std::erase(module, gone);
            for (int& nr : module)
                if (nr > gone) --nr;
        }
    return list;
}

/// Takes away what can go while the failure remains.
Project reduce(Project project, std::vector<Arrangement>& pair, const std::string& wanted) {
    for (bool again = true; again;) {
        again = false;
        for (size_t at = project.definitions.size(); at-- > 0;) {
            if (isUsed(project, at)) continue;
            Project smaller = project;
            smaller.definitions.erase(smaller.definitions.begin() + static_cast<long>(at));
            const std::vector<Arrangement> list = withoutDefinition(pair, static_cast<int>(at));
            if (classOf(judge(smaller, list)) != wanted) continue;
            project = smaller;
            pair = list;
            again = true;
        }
        for (size_t at = project.definitions.size(); at-- > 0;)
            for (bool found = true; found;) {
                found = false;
                for (const std::string& text : smallerTexts(project.definitions[at].text)) {
                    Project smaller = project;
                    smaller.definitions[at].text = text;
                    if (classOf(judge(smaller, pair)) != wanted) continue;
                    project = smaller;
                    found = again = true;
                    break;
                }
            }
    }
    return project;
}

void keep(const std::string& folder, const Project& project,
          const std::vector<Arrangement>& arrangements) {
    char letter = 'a';
    for (const Arrangement& arrangement : arrangements) {
        const std::string sub = folder + "/" + letter++;
        std::filesystem::create_directories(sub);
        for (const auto& [name, text] : modulesOf(project, arrangement))
            std::ofstream(sub + "/" + name + ".asn") << text;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string(argv[1]) == "--try") return tryComparison() ? 0 : 1;
    if (argc < 3) {
        std::fprintf(stderr, "usage: orvo_meta FIRST-SEED COUNT [--keep DIR] [--reduce]\n");
        return 2;
    }
    const uint64_t firstSeed = std::strtoull(argv[1], nullptr, 10);
    const uint64_t count = std::strtoull(argv[2], nullptr, 10);
    std::string folder;
    bool reducing = false;
    for (int at = 3; at < argc; ++at) {
        if (std::string(argv[at]) == "--reduce") reducing = true;
        if (std::string(argv[at]) == "--mask" && at + 1 < argc)
            maskedFields.emplace_back(argv[++at]);
        if (std::string(argv[at]) == "--keep" && at + 1 < argc) folder = argv[++at];
    }
    uint64_t failed = 0;
    for (uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
        const Project project = generate(seed);
        if (project.definitions.empty()) continue;
        Random random{seed * 7919};
        const std::vector<Arrangement> arrangements = arrangementsOf(project, random);
        const Verdict verdict = judge(project, arrangements);
        if (verdict.differences.empty() && verdict.refusal.empty()) continue;
        ++failed;
        std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed),
                    verdict.differences.empty() ? "refused everywhere" : "differs");
        if (!verdict.refusal.empty()) std::printf("  refused: %s\n", verdict.refusal.c_str());
        for (const Difference& difference : verdict.differences)
            std::printf("  %s, %s:\n    first %s\n    other %s\n", difference.with.c_str(),
                        difference.where.c_str(), difference.first.c_str(),
                        difference.other.c_str());
        std::vector<Arrangement> pair = verdict.pair;
        if (pair.empty()) pair = {arrangements[0]};
        Project kept = project;
        if (reducing) {
            const Verdict narrow = judge(project, pair);
            kept = reduce(project, pair, classOf(narrow));
        }
        if (!folder.empty()) keep(folder + "/" + std::to_string(seed), kept, pair);
        std::fflush(stdout);
    }
    std::printf("%llu of %llu failed\n", static_cast<unsigned long long>(failed),
                static_cast<unsigned long long>(count));
    return failed == 0 ? 0 : 1;
}
