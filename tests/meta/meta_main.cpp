// orvo_meta FIRST-SEED COUNT [--2021] [--faults] [--pairs] [--keep DIR]
// Compiles random modules in several arrangements; all must come to the same. The modules are
// legal, or with --faults have one fault. --pairs: two arrangements of each seed only.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "meta_run.h"

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
    std::string statuses, refusal; // the first finding, in a module that should be legal
    bool isFound = false, sameFollowUps = true; // of a fault
};

void noteRefusal(Verdict& verdict, const Outcome& outcome) {
    if (!verdict.refusal.empty()) return;
    if (!outcome.findings.empty())
        verdict.refusal =
            outcome.findings.begin()->first + ":" + outcome.findings.begin()->second[0];
    else if (outcome.status != 0 || !outcome.trouble.empty())
        verdict.refusal = "status " + std::to_string(outcome.status) + ": " + outcome.trouble;
}

Verdict judge(const Project& project, const std::vector<Arrangement>& arrangements) {
    Verdict verdict;
    const Outcome first = compile(project, arrangements[0]);
    verdict.isFound = !foundAtFault(project, first).empty();
    verdict.statuses = std::to_string(first.status);
    if (!project.isFaulty || first.status > 1) noteRefusal(verdict, first);
    for (size_t at = 1; at < arrangements.size(); ++at) {
        const Outcome other = compile(project, arrangements[at]);
        if (!project.isFaulty || other.status > 1) noteRefusal(verdict, other);
        verdict.sameFollowUps = verdict.sameFollowUps && first.findings == other.findings;
        const std::vector<Difference> found = differences(project, first, arrangements[at], other);
        if (found.empty()) continue;
        if (verdict.pair.empty()) {
            verdict.pair = {arrangements[0], arrangements[at]};
            verdict.statuses += " " + std::to_string(other.status);
        }
        verdict.differences.insert(verdict.differences.end(), found.begin(), found.end());
    }
    return verdict;
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

void print(uint64_t seed, const Project& project, const Verdict& verdict) {
    std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed),
                verdict.differences.empty() ? "refused everywhere" : "differs");
    if (project.isFaulty)
        std::printf("  planted in %s: %s\n", project.faulty.c_str(), project.mark.c_str());
    if (!verdict.refusal.empty()) std::printf("  refused: %s\n", verdict.refusal.c_str());
    for (const Difference& difference : verdict.differences)
        std::printf("  %s, %s:\n    first %s\n    other %s\n", difference.with.c_str(),
                    difference.where.c_str(), difference.first.c_str(), difference.other.c_str());
    std::fflush(stdout);
}

struct Wishes {
    uint64_t first = 0, count = 0;
    bool faults = false, pairs = false, isNew = false;
    std::string folder;
};

Wishes wishesOf(int argc, char** argv) {
    Wishes wishes;
    wishes.first = std::strtoull(argv[1], nullptr, 10);
    wishes.count = std::strtoull(argv[2], nullptr, 10);
    for (int at = 3; at < argc; ++at) {
        const std::string option = argv[at];
        if (option == "--faults") wishes.faults = true;
        if (option == "--pairs") wishes.pairs = true;
        if (option == "--2021") wishes.isNew = true;
        if (option == "--keep" && at + 1 < argc) wishes.folder = argv[++at];
    }
    return wishes;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: orvo_meta FIRST-SEED COUNT [--2021] [--faults] [--pairs] "
                             "[--keep DIR]\n");
        return 2;
    }
    const Wishes wishes = wishesOf(argc, argv);
    unsigned long long failed = 0, found = 0, followUps = 0;
    for (uint64_t seed = wishes.first; seed < wishes.first + wishes.count; ++seed) {
        Project project = generate(seed, wishes.isNew);
        Random random{seed * 7919};
        if (wishes.faults) plantFault(project, random);
        std::vector<Arrangement> arrangements = arrangementsOf(project, random);
        if (wishes.pairs) { // the first one, and each of the others in turn
            std::swap(arrangements[1], arrangements[1 + seed % (arrangements.size() - 1)]);
            arrangements.resize(2);
        }
        const Verdict verdict = judge(project, arrangements);
        found += verdict.isFound;
        followUps += !verdict.sameFollowUps;
        if (verdict.differences.empty() && verdict.refusal.empty()) continue;
        ++failed;
        print(seed, project, verdict);
        if (wishes.folder.empty()) continue;
        const bool differs = !verdict.pair.empty();
        keep(wishes.folder + "/" + std::to_string(seed), project,
             differs ? verdict.pair : std::vector<Arrangement>{arrangements[0]});
    }
    if (wishes.faults)
        std::printf("%llu faults found at their place, with %llu other findings by order\n", found,
                    followUps);
    std::printf("%llu of %llu failed\n", failed, static_cast<unsigned long long>(wishes.count));
    return failed == 0 ? 0 : 1;
}
