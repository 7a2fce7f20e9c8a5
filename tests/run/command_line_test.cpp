// What the command line and option files do, seen from outside.

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "support/run.h"

namespace orvo::test {
namespace {

const std::string usageText = R"(
Usage:
  ORVO [options] [option-files] [asn-file [asn-file...]]

Some options:
  -A=dir       ASN.1 module definition file directory   [current directory]
  -L=dir       Compiler listing file directory          [current directory]
  -S=dir       Syntax file directory                    [current directory]
  -C=dir       Source file directory for back-ends      [current directory]
  -H=dir       Header file directory for back-ends      [current directory]
  -STRICTSTANDARD   Strict ASN.1 standard compliance
  -PREFIX=ASN1-modulereference:asn_file[:gen_pref]      [none]
  -PREFIXLEN=n Max# of characters in asn_file/gen_pref  [5]
  -ENTRY=Type-reference:[PDU|sdu]                       [none]
               Selection of a top-level type.

Option files:
  +filename    A text file with one global option or ASN.1 file name
               per line.

Example:
  The files asn/x.asn asn/y.asn contain two ASN.1 modules. The file pdus.opt
  contains declaration of PDUs defined in those modules.

  # pdus.opt - Declaration of PDUs and SDUs defined in x.asn and y.asn
  -ENTRY=X-PDU:PDU
  -ENTRY=Y-prim:sdu

  Compilation of the ASN.1 modules and generation of a C implementation:

  $ kavrimol -option-file=prefix.opt -A=asn x y
  $ orvo +prefix.opt +pdus.opt -A=asn -L=lst -S=stx -C=src -H=inc x y
  $ tibex +prefix.opt -S=stx x y
)";
const std::string banner =
    "\nCompiler for Abstract Syntax Notation One Version 2.13 February 2002\n"
    "(c) The orvo authors.\nAll rights reserved.\n\n"
    "Processed by ORVO 2.13 on DATE\n\n";
const std::string aborting = "ORVO>>> aborting compilation\n";
const SourceFile smallModule = {"m.asn", "M DEFINITIONS ::= BEGIN T ::= NULL END\n"};

TEST(CommandLine, WithoutArgumentsShowsTheUsage) {
    const RunResult run = runOrvo({}, {});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, usageText);
    EXPECT_EQ(run.err, "");
}

TEST(CommandLine, VersionPrintsTheBannerLineOnly) {
    const RunResult run = runOrvo({smallModule}, {"-version", "m"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "\nCompiler for Abstract Syntax Notation One Version 2.13 February 2002\n\n");
    EXPECT_EQ(run.err, "");
    EXPECT_FALSE(run.has("m.lst"));
}

TEST(CommandLine, AMissingSourceIsFatal) {
    const RunResult run = runOrvo({}, {"nofile"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(maskTimeStamp(run.out), banner +
                                          "ORVO>>> source file  : nofile.asn\n"
                                          "ORVO>>> listing file : nofile.lst\n" +
                                          aborting);
    EXPECT_EQ(run.err, "\nFATAL ERROR : Can not open file for reading\n"
                       "              nofile.asn\n\n");
}

TEST(CommandLine, AnOptionFileThatCannotBeReadIsFatal) {
    const struct {
        std::string argument, detail;
    } cases[] = {{"+nofile", "nofile"},
                 {"+", "(No option file name specified)"},
                 {"+folder", "folder"},
                 {"+" + std::string(1000, 'd'), std::string(1000, 'd')}};
    for (const auto& [argument, detail] : cases) {
        SCOPED_TRACE(argument);
        const RunResult run = runOrvo({{"folder/x", ""}}, {argument, "x"});
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, aborting);
        EXPECT_EQ(run.err, "\nFATAL ERROR : Can not open file for reading\n              " +
                               detail + "\n\n");
    }
}

TEST(CommandLine, ABadArgumentIsShownAndEndsInTheUsage) {
    for (const std::string argument :
         {"-V=5", "-V=0", "-v=1x", "-VERBOSE=LOUD", "-verbose=3", "-KEEP-GOING=on", "-CLEAN=2",
          "-TIMING=x", "-A=", "-L=a\tb", "a b", "a\x80z"}) {
        SCOPED_TRACE(argument);
        const RunResult run = runOrvo({{"x.asn", ""}}, {argument, "x"});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, usageText);
        EXPECT_EQ(run.err, "\nWARNING : Argument ignored: " + argument + "\n");
    }
}

TEST(CommandLine, VerbosityOneHidesTheWarning) {
    const RunResult run = runOrvo({}, {"-V=1", "-V=5", "x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
}

TEST(CommandLine, ABadLineOfAnOptionFileIsShownWithItsFile) {
    const RunResult run = runOrvo({{"o.opt", "-V=9\nx y\n"}}, {"+o.opt", "x"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, usageText);
    EXPECT_EQ(run.err, "\nWARNING : Argument ignored: V=9\n          In option file  : o.opt\n"
                       "\nWARNING : Argument ignored: x y\n          In option file  : o.opt\n");
}

TEST(CommandLine, WordsBehindBackEndOptionsBelongToTheirValue) {
    const RunResult run =
        runOrvo({smallModule}, {"m", "-BEO=a", "b", "+c", "-info=d", "e", "-V=1"});
    EXPECT_EQ(run.status, 0); // neither b nor e is a file, +c is no option file
    EXPECT_FALSE(run.has("b.lst"));
    const std::string tree = run.tree("m");
    EXPECT_NE(tree.find(std::string("\x0c\0-BEO=a b +c\0", 14)), std::string::npos);
    EXPECT_NE(tree.find(std::string("\x0a\0-INFO=d e\0", 12)), std::string::npos);
}

TEST(CommandLine, DirectoriesNeedNoSlashAndSettleWhereFilesGo) {
    const RunResult run = runOrvo({{"asn/m.asn", smallModule.text}, {"lst/x", ""}, {"stx/x", ""}},
                                  {"-A=none", "-A=asn", "-L=lst", "-S=stx", "-verbose=none", "m"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_TRUE(run.has("lst/m.lst"));
    EXPECT_TRUE(run.has("stx/m.stx"));
}

TEST(CommandLine, TheArgumentVectorIsEchoedWhenAsked) {
    const RunResult run = runOrvo({}, {"-VERSION", ""}, {"VEXO_PRINT_ASN_OPTIONS="});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "orvo -VERSION  \n");
}

TEST(CommandLine, TimesAreToldAtTheEndOfTheRun) {
    const std::vector<SourceFile> files = {
        {"m.asn", "--$TIMING=YES-- M DEFINITIONS ::= BEGIN IMPORTS T FROM N; U ::= T END\n"},
        {"n.asn", "N DEFINITIONS ::= BEGIN T ::= NULL END\n"},
        {"o.opt", "-Timing=true\n"}};
    const std::vector<std::string> environment = {"SOURCE_DATE_EPOCH=0"};
    const RunResult quiet = runOrvo(files, {"+o.opt", "-TIMING=0", "m"}, environment);
    EXPECT_EQ(quiet.err, "");
    const RunResult run = runOrvo(files, {"+o.opt", "m"}, environment);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, quiet.out);
    EXPECT_EQ(run.tree("m"), quiet.tree("m"));
    const std::string figures = " *[0-9]+\\.[0-9]{4} s +[0-9]+ kB\n";
    std::string expected = "\nTime and peak memory:\n\n";
    for (const char* phase :
         {"Read        ", "Pass 1      ", "Pass 2      ", "Pass 3      ", "Pass 4      ",
          "Pass 5      ", "Listing     ", "Tree        ", "Rest        ", "Total       "})
        expected += phase + (":" + figures);
    expected += "\nSlowest modules:\n\n( +[0-9]+\\.[0-9]{4} s  [mn]\\.asn\n){2}";
    EXPECT_TRUE(std::regex_match(run.err, std::regex(expected))) << run.err;
}

TEST(OptionFile, NamesFilesAndSkipsComments) {
    const RunResult run = runOrvo(
        {smallModule, {"o.opt", "  # -V=0\n-- -V=0\n// x\n\n$x\n  m \r\n-end-of-options\n-V=0\n"}},
        {"+o.opt", "-VERBOSE=NONE"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.has("m.stx"));
}

TEST(OptionFile, UnbalancedScopesAreWarnedAbout) {
    const SourceFile options = {"o.opt", "-END-SCOPE\n-BEGIN-SCOPE=m\n-begin-scope=m\n"};
    const RunResult run = runOrvo({smallModule, options}, {"+o.opt", "-VERBOSE=0", "m"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.err.starts_with("\nWARNING : Unexpected -END-SCOPE: option file o.opt\n"
                                    "\nWARNING : Unexpected -BEGIN-SCOPE: option file o.opt\n"
                                    "\nWARNING : -END-SCOPE expected: option file o.opt\n"))
        << run.err;
    EXPECT_EQ(runAgain(run, {"+o.opt", "-VERBOSE=0", "-V=1", "m"}).err, "");
}

TEST(OptionFile, AnyBytesAreReadToTheEnd) {
    std::string noise;
    for (int i = 0; i < 70000; ++i) noise += static_cast<char>(i * 7 + i / 251);
    const std::string longLine = "-TPREF=" + std::string(5000, 'p') + "\n";
    const RunResult run =
        runOrvo({smallModule, {"o.opt", longLine + "-INFO=" + noise}}, {"+o.opt", "-V=1", "m"});
    EXPECT_TRUE(run.status == 0 || run.status == 1) << run.status;
}

} // namespace
} // namespace orvo::test
