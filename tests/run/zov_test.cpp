// The summary and the type list for the integrated environment.

#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

const SourceFile good = {"my.asn", "My-Mod DEFINITIONS ::= BEGIN\n"
                                   "An-Int ::= INTEGER\n"
                                   "Pair {T} ::= SEQUENCE { a T, b T }\n"
                                   "CLS ::= CLASS { &id INTEGER }\n"
                                   "Few INTEGER ::= { 1 | 2 }\n"
                                   "Last ::= NULL\n"
                                   "END\n"};
const SourceFile faulty = {"bad.asn", "Bad DEFINITIONS ::= BEGIN\nT ::= NULL\nT ::= NULL\nEND\n"};

TEST(Zov, WithoutAPrefixNothingIsWritten) {
    const RunResult run = compile({good}, {"-ZOV-DIRECTORY=."});
    EXPECT_FALSE(run.has(".acs"));
    EXPECT_FALSE(run.has(".atl"));
}

TEST(Zov, SummaryHoldsShownDiagnosticsAndCounters) {
    const std::string summary = "[Message]\n"
                                "bad.asn:3: Error : Symbol already defined: T\n"
                                "[Summary]\n"
                                "Syntax errors     : 0\n"
                                "Semantic errors   : 1\n"
                                "Undefined symbols : 0\n";
    const RunResult run =
        compile({faulty, {"z/x", ""}}, {"-zov-prefix=env-1", "-ZOV-DIRECTORY=z", "-V=1"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.file("z/env-1.acs"), summary);
    EXPECT_FALSE(run.has("z/env-1.atl"));
    const RunResult again = runAgain(run, {"-ZOV-PREFIX=env-1", "-ZOV-DIRECTORY=z/", "bad"});
    EXPECT_EQ(again.file("z/env-1.acs"), summary + summary + "Warnings          : 0\n");
}

TEST(Zov, TypeListNamesTheTypesButNoSetsClassesAndParameterizedOnes) {
    const RunResult run = compile({good}, {"-ZOV-PREFIX=env"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.file("env.atl"), "My-Mod.An-Int\nMy-Mod.Last\n");
}

TEST(Zov, FatalErrorsReachTheSummary) {
    const RunResult run = compile({faulty}, {"-ZOV-PREFIX=env", "-L=nowhere"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.file("env.acs"), "[Message]\n\nFATAL ERROR : Can not open file for writing\n"
                                   "              nowhere/bad.lst\n\n");
}

TEST(Zov, ASummaryThatCannotBeWrittenAndOneThatIsASourceAreFatal) {
    const struct {
        const char *link, *target, *message;
    } cases[] = {
        {"env.acs", "/dev/full", "Can not write into file\n\n"},
        {"env.atl", "/dev/full", "Can not close file\n              Type list file\n\n"},
        {"env.acs", "my.asn", "Can not open file for writing\n              env.acs\n\n"},
        {"env.atl", "my.asn", "Can not open file for writing\n              env.atl\n\n"},
    };
    for (const auto& [link, target, message] : cases) {
        SCOPED_TRACE(std::string(link) + " -> " + target);
        RunResult before;
        before.dir = std::make_shared<TempDir>();
        before.dir->write(good);
        std::filesystem::create_symlink(target, before.dir->path() / link);
        const RunResult run = runAgain(before, {"-ZOV-PREFIX=env", "my"});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, std::string("\nFATAL ERROR : ") + message);
        EXPECT_EQ(run.file("my.asn"), good.text);
    }
}

TEST(Zov, ASummaryThatCannotBeOpenedIsReportedOnce) {
    const RunResult run = compile({faulty}, {"-ZOV-PREFIX=env", "-ZOV-DIRECTORY=nowhere"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err,
              "\nFATAL ERROR : Can not open file for writing\n              nowhere/env.acs\n\n");
    EXPECT_TRUE(run.out.ends_with("ORVO>>> aborting compilation\n"));
}

} // namespace
} // namespace orvo::test
