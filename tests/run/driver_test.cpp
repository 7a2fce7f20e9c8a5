// The pass sequence, progress lines, listings and trees of whole runs.

#include <cstdlib>

#include <gtest/gtest.h>

#include <filesystem>

#include "support/run.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

const SourceFile good = {"m.asn", "M DEFINITIONS ::= BEGIN\nT ::= NULL\nEND\n"};
const SourceFile faulty = {"bad.asn", "Bad DEFINITIONS ::= BEGIN\nT ::= NULL\nT ::= NULL\nEND\n"};
const SourceFile broken = {"brk.asn", "Brk DEFINITIONS ::= BEGIN\nT = NULL\nEND\n"};

/// Standard output behind the banner.
std::string progress(const RunResult& run) {
    const size_t end = run.out.find("\n\n", run.out.find("Processed by"));
    return end == std::string::npos ? run.out : run.out.substr(end + 2);
}
std::string counters(int syntax, int semantic, int symbols, int warnings) {
    return "\nSyntax errors     : " + std::to_string(syntax) +
           "\nSemantic errors   : " + std::to_string(semantic) +
           "\nUndefined symbols : " + std::to_string(symbols) +
           "\nWarnings          : " + std::to_string(warnings) + "\n";
}

TEST(Driver, AGoodModuleGoesThroughAllPasses) {
    const RunResult run = compile({good});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(progress(run), "ORVO>>> source file  : m.asn\n"
                             "ORVO>>> listing file : m.lst\n"
                             "ORVO>>> parsing (pass 1) for m.asn\n"
                             "ORVO>>> solving references (pass 2) for m.asn\n"
                             "ORVO>>> solving references (pass 3) for m.asn\n"
                             "ORVO>>> building module references (pass 4) for m.asn\n"
                             "ORVO>>> semantic checking (pass 5) for m.asn\n"
                             "ORVO>>> compiler listing for m.asn (ok)\n" +
                                 counters(0, 0, 0, 0));
    const std::string listing = run.listing("m");
    EXPECT_TRUE(listing.starts_with(
        "\nCompiler for Abstract Syntax Notation One Version 2.13 February 2002\n"
        "(c) The orvo authors.\nAll rights reserved.\n\n"
        "Processed by ORVO 2.13 on DATE\n\n"
        "    1:  M DEFINITIONS ::= BEGIN\n"
        "    2:  T ::= NULL\n"
        "    3:  END\n"))
        << listing;
    EXPECT_TRUE(listing.ends_with(counters(0, 0, 0, 0)));
}

TEST(Driver, OneFaultyModuleKeepsPassFiveFromAllButNotTheTrees) {
    const SourceFile user = {"m.asn",
                             "M DEFINITIONS ::= BEGIN\nIMPORTS T FROM Bad;\nU ::= T\nEND\n"};
    const RunResult run = compile({user, faulty});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.find("pass 5"), std::string::npos);
    EXPECT_TRUE(run.has("m.stx"));
    EXPECT_FALSE(run.has("bad.stx"));
    EXPECT_NE(run.out.find("\nTotal errors:\n\nSyntax errors     : 0\n"), std::string::npos);
}

TEST(Driver, ModuleNodesDescribeTheModulesReferredTo) {
    const SourceFile user = {"asn/m.asn", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                                          "EXPORTS ;\n"
                                          "IMPORTS A, B FROM Other-Mod V FROM Third;\n"
                                          "T ::= A\nU ::= V\nEND\n"};
    const SourceFile other = {"asn/oth.asn",
                              "Other-Mod DEFINITIONS ::= BEGIN\n"
                              "IMPORTS ;\nA ::= NULL\nB ::= NULL\nv A ::= NULL\nEND\n"};
    const SourceFile third = {"third.asn", "Third DEFINITIONS ::= BEGIN\nV ::= Other-Mod.A\nEND\n"};
    const RunResult run = runOrvo({user, other, third},
                                  {"-PREFIX=Other-Mod:oth:gen", "-VERBOSE=NONE", "-A=asn", "m"});
    ASSERT_EQ(run.status, 0) << run.err;
    const TreeFacts facts(run, "m");
    const stx::Tree& tree = facts.tree();
    ASSERT_EQ(tree.mNode(1).recCount[stx::MNODE], 3U);

    const stx::MNode own = tree.mNode(1);
    EXPECT_EQ(tree.text(own.modName), "M");
    EXPECT_EQ(own.stxName, 0U);
    EXPECT_EQ(own.exportsState, 1); // EXPORTS ;
    EXPECT_EQ(own.importsState, 2); // a list
    EXPECT_EQ(own.automaticTags, 1);
    EXPECT_EQ(tree.text(own.srcDir), "asn/");
    EXPECT_EQ(tree.text(own.srcFile), "m.asn");
    EXPECT_EQ(own.modTimeStamp.version, 213);

    const stx::MNode imported = tree.mNode(2);
    EXPECT_EQ(tree.text(imported.modName), "Other_Mod");
    EXPECT_EQ(tree.text(imported.stxName), "gen");
    EXPECT_EQ(imported.importsState, 0x21); // by IMPORTS; has "IMPORTS ;" itself
    EXPECT_EQ(imported.exportsState, 0);
    EXPECT_EQ(imported.automaticTags, 0);
    EXPECT_EQ(imported.recCount[stx::TNODE],
              TreeFacts(run, "gen").tree().mNode(1).recCount[stx::TNODE]);
    EXPECT_NE(imported.firstTypeAss, 0U);
    EXPECT_NE(imported.firstValAss, 0U);

    EXPECT_EQ(tree.text(tree.mNode(3).stxName), "third");
    EXPECT_EQ(TreeFacts(run, "third").tree().mNode(2).importsState, 0x11); // by Other-Mod.A
}

TEST(Driver, ASyntaxErrorSkipsTheLaterPasses) {
    const RunResult run = compile({broken});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.find("pass 2"), std::string::npos);
    EXPECT_NE(
        run.out.find("ORVO>>> compiler listing for brk.asn (errors found - no tree output)\n"),
        std::string::npos);
    EXPECT_FALSE(run.has("brk.stx"));
    EXPECT_NE(run.diagnostics("brk"), "");
}

TEST(Driver, AFaultKeepsAnEarlierTree) {
    const SourceFile earlier = {"bad.stx", "what was"};
    const RunResult run = compile({faulty, earlier});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.file("bad.stx"), "what was");
}

/// Seconds since 1970 in place of the clock make builds that can be repeated.
TEST(Driver, TheTimeOfABuildCanBeGiven) {
    setenv("SOURCE_DATE_EPOCH", "951825601", 1);
    const RunResult run = compile({good});
    EXPECT_NE(run.file("m.lst").find("on 29.02.2000 at 12:00.01"), std::string::npos);
    EXPECT_EQ(run.err, "");
    const RunResult again = compile({good});
    EXPECT_EQ(again.file("m.stx"), run.file("m.stx"));
    for (const char* none : {"", "-1", "253402300800", "1x"}) {
        setenv("SOURCE_DATE_EPOCH", none, 1);
        const RunResult other = compile({good});
        EXPECT_EQ(other.err,
                  "\nWARNING : SOURCE_DATE_EPOCH ignored, no number of seconds from 0 to "
                  "253402300799\n");
        EXPECT_EQ(other.file("m.lst").find("29.02.2000"), std::string::npos);
    }
    unsetenv("SOURCE_DATE_EPOCH");
}

TEST(Driver, QuietRunsSpeakOnlyOfErrors) {
    EXPECT_EQ(compile({good}, {"-VERBOSE=NONE"}).out, "");
    const RunResult run = compile({faulty}, {"-VERBOSE=NONE"});
    EXPECT_EQ(run.out, counters(0, 1, 0, 0));
    EXPECT_EQ(run.diagnostics("bad"), "  ** ERROR on line   3 : Symbol already defined: T\n");
}

TEST(Driver, ToolOutputNamesFileAndLine) {
    const RunResult run = compile({faulty}, {"-VERBOSE=TOOL", "-V=2"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "bad.asn(3) :   ** ERROR on line   3 : Symbol already defined: T\n");
}

TEST(Driver, ALaterFileWithoutPrefixCannotBeNamed) {
    const SourceFile second = {"second.asn", "Second DEFINITIONS ::= BEGIN END\n"};
    const RunResult run = runOrvo({good, second}, {"-VERBOSE=NONE", "m", "second"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err,
              "\nFATAL ERROR : Can not map a modulereference with a file name\n"
              "              Check options PREFIXLEN and PREFIX or use the KAVRIMOL tool.\n\n");
    const RunResult mapped =
        runAgain(run, {"-VERBOSE=NONE", "-PREFIX=Second:second", "m", "second", "-PREFIXLEN=9"});
    EXPECT_EQ(mapped.status, 0) << mapped.err;
    EXPECT_TRUE(mapped.has("second.stx"));
}

TEST(Driver, WhatCannotBeWrittenIsFatal) {
    const struct {
        const char *link, *target, *message;
    } cases[] = {
        {"m.lst", "/dev/full", "Can not close file\n              Listing file\n\n"},
        {"m.stx", "/dev/full", "Can not close file\n              Syntax tree file\n\n"},
        {"m.lst", "/nowhere/x", "Can not open file for writing\n              m.lst\n\n"},
        {"m.lst", ".", "Can not open file for writing\n              m.lst\n\n"}, // a directory
        {"m.stx", ".", "Can not open file for writing\n              m.stx\n\n"},
    };
    for (const auto& [link, target, message] : cases) {
        SCOPED_TRACE(std::string(link) + " -> " + target);
        auto dir = std::make_shared<TempDir>();
        dir->write(good);
        std::filesystem::create_symlink(target, dir->path() / link);
        RunResult before;
        before.dir = dir;
        const RunResult run = runAgain(before, {"-VERBOSE=NONE", "m"});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.err, std::string("\nFATAL ERROR : ") + message);
    }
}

TEST(Driver, CleanRemovesNoTreeButTheEarlierOneOfAModuleWithoutOne) {
    const SourceFile n = {"n.asn", "N DEFINITIONS ::= BEGIN U ::= NULL END\n"};
    const SourceFile m = {"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS U FROM N; T ::= U END\n"};
    const SourceFile wrong = {"m.asn", "M DEFINITIONS ::= BEGIN T ::= U END\n"};
    const RunResult whole = runOrvo({m, n}, {"m", "n"});
    const std::string tree = whole.tree("m"); // two module nodes, a type, names
    ASSERT_NE(tree, "");
    const struct {
        const char* what;
        std::string earlier; // m.stx
        std::vector<std::string> options;
        bool stays;
    } cases[] = {
        {"as it is", tree, {"-CLEAN=NO"}, true},
        {"asked for", tree, {"-clean=yes"}, false},
        {"of another module", whole.tree("n"), {"-CLEAN=YES"}, true},
        {"no tree", "M", {"-CLEAN=YES"}, true},
        {"cut off in the name", tree.substr(0, 2 * 112 + 116 + 2), {"-CLEAN=YES"}, true},
        {"the run is given up", tree, {"-CLEAN=YES", "-L=nowhere"}, true},
    };
    for (const auto& [what, earlier, options, stays] : cases) {
        SCOPED_TRACE(what);
        RunResult run;
        run.dir = std::make_shared<TempDir>();
        for (const SourceFile& file : {wrong, n, SourceFile{"m.stx", earlier}})
            run.dir->write(file);
        std::vector<std::string> arguments = options;
        arguments.emplace_back("m");
        runAgain(run, arguments);
        EXPECT_EQ(run.tree("m"), stays ? earlier : "");
        EXPECT_EQ(run.has("m.stx"), stays);
    }
    whole.dir->write(wrong);
    std::filesystem::rename(whole.dir->path() / "m.stx", whole.dir->path() / "at.stx");
    std::filesystem::create_symlink("at.stx", whole.dir->path() / "m.stx");
    runAgain(whole, {"-CLEAN=YES", "-KEEP-GOING=YES", "-PREFIX=N:n:n", "m", "n"});
    EXPECT_TRUE(std::filesystem::is_symlink(whole.dir->path() / "m.stx"));
    EXPECT_FALSE(whole.has("at.stx"));
    EXPECT_TRUE(whole.has("n.stx")); // written in this run
    std::filesystem::remove(whole.dir->path() / "n.asn");
    whole.dir->write(m);
    runAgain(whole, {"-CLEAN=YES", "-KEEP-GOING=YES", "m"});
    EXPECT_FALSE(whole.has("n.stx")); // of a module whose file is missing
}

TEST(Driver, PipesAndDevicesAreReadOnceAndNotWithoutEnd) {
    const std::string orvo = ORVO_PROGRAM " -VERBOSE=NONE -V=2 ";
    const RunResult whole = compile({faulty});
    const std::string unread = "Can not read from file\n              ";
    const struct {
        std::string command;
        int status;
        std::string message;
    } cases[] = {
        {"ln -s /dev/stdin in.asn && cat bad.asn | " + orvo + "in", 1, ""},
        {"mkfifo p.asn && (cat bad.asn >p.asn & " + orvo + "-KEEP-GOING=YES p)", 1, ""},
        {"mkfifo bad.lst && (cat bad.lst >in.lst & " + orvo +
             "bad; status=$?; wait; rm bad.lst; exit $status)",
         1, ""},
        {"echo bad.asn | " + orvo + "+/dev/stdin", 1, ""},
        {"ln -s /dev/zero z.asn && " + orvo + "z", 2, unread + "z.asn\n\n"},
        {"cat /dev/zero | " + orvo + "+/dev/stdin", 2, unread + "/dev/stdin\n\n"},
        {"truncate -s 2G x.asn && " + orvo + "x", 2, unread + "x.asn\n\n"},
    };
    for (const auto& [command, status, message] : cases) {
        SCOPED_TRACE(command);
        const RunResult run = runProgram("/bin/sh", {faulty}, {"-c", command});
        EXPECT_EQ(run.status, status);
        EXPECT_EQ(run.err, message.empty() ? "" : "\nFATAL ERROR : " + message);
        EXPECT_EQ(run.listing("in") + run.listing("p") + run.listing("bad"),
                  status == 1 ? whole.listing("bad") : "");
    }
}

TEST(Driver, SourcesAreNeverWrittenOver) {
    const std::string user = "M DEFINITIONS ::= BEGIN IMPORTS T FROM N; U ::= T END\n";
    const std::vector<SourceFile> sources = {{"m.asn", user},
                                             {"n.asn", "N DEFINITIONS ::= BEGIN T ::= NULL END\n"},
                                             {"asn/m.lst", user},
                                             {"n.stx", user}};
    const struct {
        const char *output, *source; // the output is a link to the source
        std::vector<std::string> arguments;
    } cases[] = {
        {"m.lst", "m.asn", {"m"}},
        {"m.stx", "m.asn", {"m"}},
        {"m.lst", "n.asn", {"m"}}, // which is listed later
        {"m.stx", "n.asn", {"m"}},
        {"n.lst", "m.asn", {"m"}}, // which has been listed
        {"n.stx", "", {"n.stx"}},  // of the module N
        {"asn//../asn/m.lst", "", {"-A=./asn", "-L=asn//../asn", "m.lst"}},
        {"n.lst", "asn/m.lst", {"-A=asn", "m.lst"}},
    };
    for (const auto& [output, source, arguments] : cases) {
        for (const bool hard : {false, true}) {
            SCOPED_TRACE(std::string(hard ? "hard " : "") + output + " -> " + source);
            RunResult before;
            before.dir = std::make_shared<TempDir>();
            for (const SourceFile& file : sources) before.dir->write(file);
            const auto target = before.dir->path() / source, link = before.dir->path() / output;
            if (*source != '\0' && hard) std::filesystem::create_hard_link(target, link);
            if (*source != '\0' && !hard) std::filesystem::create_symlink(target, link);
            const RunResult run = runAgain(before, arguments);
            EXPECT_EQ(run.status, 2);
            EXPECT_EQ(run.err, std::string("\nFATAL ERROR : Can not open file for writing\n") +
                                   std::string(14, ' ') + output + "\n\n");
            for (const SourceFile& kept : sources) EXPECT_EQ(run.file(kept.name), kept.text);
        }
    }
}

TEST(Driver, OverlongAndUnreadablePathsAreFatal) {
    const std::string deep = "-A=" + std::string(1020, 'd');
    const RunResult run = runOrvo({good}, {"-VERBOSE=NONE", deep, "mod"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "\nFATAL ERROR : Can not open file for reading\n\n");
    const RunResult folder = runOrvo({{"m.asn/x", ""}}, {"-VERBOSE=NONE", "m"});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.err, "\nFATAL ERROR : Can not open file for reading\n              m.asn\n\n");
    const RunResult listing =
        runOrvo({good}, {"-VERBOSE=NONE", "-L=" + std::string(1020, 'd'), "m"});
    EXPECT_EQ(listing.status, 2);
    EXPECT_EQ(listing.err, "\nFATAL ERROR : Can not open file for writing\n\n");
}

} // namespace
} // namespace orvo::test
