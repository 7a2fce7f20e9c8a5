#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/run.h"

namespace orvo::test {
namespace {

namespace fs = std::filesystem;

const fs::path examples = fs::path(ORVO_SOURCE_DIR) / "examples";

std::vector<SourceFile> filesOf(const fs::path& folder) {
    std::vector<SourceFile> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(in), {}};
        files.push_back({fs::relative(entry.path(), folder).string(), std::move(text)});
    }
    return files;
}

/// The words of a file of an example; none when it is not there.
std::vector<std::string> wordsOf(const fs::path& file) {
    std::ifstream in(file);
    return {std::istream_iterator<std::string>(in), {}};
}

/// Does what the demonstration does with an example.
RunResult runExample(const std::string& name) {
    const fs::path folder = examples / name;
    const std::vector<SourceFile> files = filesOf(folder);
    std::vector<std::string> arguments = wordsOf(folder / "arguments");
    std::vector<std::string> prefixes = wordsOf(folder / "kavrimol");
    if (prefixes.empty()) return runOrvo(files, arguments);
    prefixes.insert(prefixes.begin(), "-option-file=prefix.opt");
    const RunResult run = runProgram(KAVRIMOL_PROGRAM, files, prefixes);
    EXPECT_EQ(run.status, 0) << run.err;
    arguments.insert(arguments.begin(), "+prefix.opt");
    return runAgain(run, arguments);
}

TEST(Examples, CompileWithoutAComplaintUnlessTheyShowOne) {
    for (const fs::directory_entry& entry : fs::directory_iterator(examples)) {
        const std::string name = entry.path().filename();
        if (!entry.is_directory() || name == "faulty" || name == "misspelt") continue;
        SCOPED_TRACE(name);
        ASSERT_TRUE(fs::exists(entry.path() / "arguments"));
        const RunResult run = runExample(name);
        EXPECT_EQ(run.status, 0) << run.out;
        EXPECT_EQ(run.err, "");
        EXPECT_NE(run.out.find("Warnings          : 0\n"), std::string::npos) << run.out;
    }
}

TEST(Examples, EveryMistakeIsReported) {
    const RunResult run = runExample("faulty");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.diagnostics("faulty"),
              "  ** ERROR on line   6 : Non-distinct tag: [1]\n"
              "  ** ERROR on line  12 : Non-distinct tag: [UNIVERSAL 2]\n"
              "  ** ERROR on line  19 : Value out of range constraint(s)\n"
              "  ** ERROR on line  22 : Non-distinct value in named number/bit list: blue\n"
              "  ** ERROR on line  26 : Invalid recursion in definition of type: left\n");
    EXPECT_NE(run.listing("faulty").find("\n*** ERROR - Undefined types:\n\nAddress\n"),
              std::string::npos);
}

TEST(Examples, MistakesOfNotationShowWhatStandsBefore) {
    const RunResult run = runExample("misspelt");
    EXPECT_EQ(run.status, 1);
    const std::string found = run.diagnostics("misspelt");
    for (const char* part : {" *** ERROR on line   7 : Lexical error before: number\n",
                             " *** ERROR on line  12 : typeid is not allowed after:\n"
                             "valueid typeid , valueid INTEGER \n"})
        EXPECT_NE(found.find(part), std::string::npos) << found;
}

} // namespace
} // namespace orvo::test
