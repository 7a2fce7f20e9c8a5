#include <gtest/gtest.h>

#include "kavrimol/kavrimol.h"
#include "kavrimol/scan.h"
#include "kavrimol/split.h"
#include "support/run.h"

namespace orvo::test {
namespace {

/// "A 1 (B 2, C 3); D 4": modules with their lines and what they refer to.
std::string scanned(std::string_view text) {
    std::string all;
    for (const kavrimol::ModuleText& module : kavrimol::scanModules(text)) {
        all += (all.empty() ? "" : "; ") + module.name + " " + std::to_string(module.line);
        std::string references;
        for (const kavrimol::Reference& reference : module.references)
            references += (references.empty() ? "" : ", ") + reference.module + " " +
                          std::to_string(reference.line);
        if (!references.empty()) all += " (" + references + ")";
    }
    return all;
}

// clang-format off
constexpr struct {
    const char* text;
    const char* modules;
} scanCases[] = {
    {"", ""},
    {"M -- DEFINITIONS --\n{ iso a(1) }\nDEFINITIONS AUTOMATIC TAGS ::= BEGIN END", "M 1"},
    {"A DEFINITIONS ::= BEGIN END\n\nB DEFINITIONS ::= BEGIN END\n", "A 1; B 3"},
    {"A DEFINITIONS ::= BEGIN\nT ::= NULL\n", "A 1"},
    {"A { iso DEFINITIONS ::= BEGIN END B DEFINITIONS ::= BEGIN END", "B 1"},
    {"Garbage A DEFINITIONS ::= BEGIN END", "A 1"},
    {"-- X DEFINITIONS ::= BEGIN END\n/* Y DEFINITIONS /* */ don't */\n"
     "A--x--DEFINITIONS ::= BEGIN --END\nEND B DEFINITIONS ::= BEGIN END", "A 3; B 4"},
    {"A DEFINITIONS ::= BEGIN a T ::= \"END \"\" X.y\n\" b T ::= '--'H c X.T ::= 1 END", "A 1 (X 2)"},
    {"A DEFINITIONS ::= BEGIN a T ::= \"END", "A 1"},
    {"A DEFINITIONS ::= BEGIN EXPORTS B, C; IMPORTS T{}, v FROM B { b 1 }\n"
     "U FROM C cId W FROM D E.eId w FROM B; END", "A 1 (B 1, C 2, D 2, E 2)"},
    {"A DEFINITIONS ::= BEGIN o CLS ::= { FROM Here } T ::= IA5String (FROM (S))\nIMPORTS T FROM B; END", "A 1"},
    {"A DEFINITIONS ::= BEGIN T ::= SEQUENCE { a B.T (C . low..D.high) }\no E.CLS ::= E.obj END", "A 1 (B 1, C 1, D 1, E 2)"},
    {"A DEFINITIONS ::= BEGIN T ::= CLS.&Type ({S}{@a.b}) (Min..Max)\nU ::= A.T v T ::= obj.&v (M...) END", "A 1"},
    {"A DEFINITIONS ::= BEGIN X MACRO ::= BEGIN TYPE NOTATION ::= \"x\" END\n"
     "T ::= B.T END C DEFINITIONS ::= BEGIN END", "A 1 (B 2); C 2"},
    {"A DEFINITIONS ::= BEGIN o CLS ::= { BEGIN 1 } END B DEFINITIONS ::= BEGIN END", "A 1; B 1"},
    {"\xef\xbb\xbf" "A\xc2\xa0" "DEFINITIONS ::= BEGIN -- x\fT ::= B.T\nEND", "A 1 (B 1)"},
    {"A { iso a(1) } \"/ISO/DEFINITIONS\"\nDEFINITIONS XER INSTRUCTIONS AUTOMATIC TAGS ::= BEGIN T ::= B.T END", "A 1 (B 2)"},
    {"A DEFINITIONS ::= BEGIN EXPORTS ALL; IMPORTS T FROM B { b 1 } WITH SUCCESSORS U FROM C; END", "A 1 (B 1, C 1)"},
    {"A DEFINITIONS ::= BEGIN T ::= [XER: NAME AS \"X.y\"] B.T\nENCODING-CONTROL XER NAME C.c [D.d] AS \"END\" ::= BEGIN\n"
     "END E DEFINITIONS ::= BEGIN END", "A 1 (B 1); E 3"},
    {"A DEFINITIONS ::= BEGIN X MACRO ::= BEGIN VALUE NOTATION ::= Y.z END T ::= B.T END", "A 1 (B 1)"},
    {"My_Module DEFINITIONS ::= BEGIN T ::= B_C.T END", "My_Module 1 (B_C 1)"},
};
// clang-format on
TEST(Kavrimol, FindsModulesAndWhatTheyReferTo) {
    for (const auto& row : scanCases) EXPECT_EQ(scanned(row.text), row.modules) << row.text;
}

// clang-format off
constexpr struct {
    const char* body;
    const char* sign; // with its line; the module begins in line 1 and its body in line 2
} signCases[] = {
    {"T ::= /* no */ NULL", "a /* */ comment 2"},
    {"EXPORTS\nALL;", "EXPORTS ALL 3"},                        {"EXPORTS T; T ::= ALL", ""},
    {"IMPORTS T FROM B WITH DESCENDANTS;", "WITH DESCENDANTS 2"},
    {"\nT ::= UTF8String", "UTF8String 3"},                    {"T ::= UTF8String UTF8String ::= IA5String", ""},
    {"IMPORTS DATE-TIME FROM B; T ::= DATE-TIME", ""},         {"T ::= DATE", ""},
    {"T ::= IA5String\n(PATTERN \"a\")", "PATTERN 3"},          {"T ::= IA5String (PATTERN | B)", ""},
    {"T ::= TIME (SETTINGS \"a\")", "SETTINGS 2"},
    {"T ::= SEQUENCE OF a INTEGER", "OF a 2"},                 {"T ::= SEQUENCE OF a < B", ""},
    {"X MACRO ::= BEGIN END", "MACRO 2"},                      {"X MACRO ::= { a }", ""},
    {"T ::= NULL\nENCODING-CONTROL XER END", "ENCODING-CONTROL 3"}, {"ENCODING-CONTROL ::= CLASS { &a NULL }", ""},
    {"T ::= RELATIVE-OID\n/* */", "RELATIVE-OID 2"},           {"/* */\nT ::= RELATIVE-OID", "a /* */ comment 2"},
};
// clang-format on
TEST(Kavrimol, KnowsNewerNotation) {
    for (const auto& row : signCases) {
        const std::string text = std::string("A DEFINITIONS ::= BEGIN\n") + row.body + "\nEND";
        const std::vector<kavrimol::ModuleText> found = kavrimol::scanModules(text);
        ASSERT_EQ(found.size(), 1U) << text;
        const kavrimol::Sign& sign = found[0].newer;
        EXPECT_EQ(sign.what + (sign.line == 0 ? "" : " " + std::to_string(sign.line)), row.sign)
            << text;
    }
    EXPECT_EQ(kavrimol::scanModules("A { iso } \"/ISO\" DEFINITIONS ::=")[0].newer.what,
              "\"/ISO\"");
    EXPECT_EQ(kavrimol::scanModules("A DEFINITIONS XER INSTRUCTIONS ::=")[0].newer.what,
              "INSTRUCTIONS");
    EXPECT_EQ(kavrimol::scanModules("/**/ A DEFINITIONS ::= BEGIN END "
                                    "B DEFINITIONS ::= BEGIN END")[1]
                  .newer.what,
              "");
}

// ---- option files -------------------------------------------------------------------------------

std::string module(const std::string& name, const std::string& contents = "") {
    return name + " DEFINITIONS ::= BEGIN " + contents + " END\n";
}

RunResult runKavrimol(const std::vector<SourceFile>& files, std::vector<std::string> arguments) {
    return runProgram(KAVRIMOL_PROGRAM, files, arguments);
}

RunResult prefixesOf(const std::vector<SourceFile>& files, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "-option-file=p.opt");
    return runKavrimol(files, arguments);
}

TEST(Kavrimol, OptionFileLeadsTheCompilerToFilesOfAnyName) {
    const RunResult run = prefixesOf(
        {{"asn/main.asn", module("First-Module", "IMPORTS T FROM Zulu U FROM Alpha; V ::= SET OF T "
                                                 "W ::= SET OF U")},
         {"asn/q_1.asn", module("Alpha", "U ::= Bravo.B")},
         {"lib/Some-Name.asn", module("Zulu", "IMPORTS U FROM Alpha; T ::= U")},
         {"lib/b.asn", module("Bravo", "B ::= NULL")},
         {"lib/not-used.asn", module("Unused")}},
        {"-A=asn", "-a=lib/", "main"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out + run.err, "");
    EXPECT_EQ(run.file("p.opt"), "-PREFIXLEN=32\n"
                                 "-PREFIX=First-Module:main:main\n"
                                 "-PREFIX=Zulu:Some-Name:Some-Name\n"
                                 "-PREFIX=Alpha:q_1:q_1\n"
                                 "-PREFIX=Bravo:b:b\n");
    EXPECT_EQ(runAgain(run, {"+p.opt", "-A=asn", "-A=lib", "main"}).status, 0);
    for (const char* stem : {"main", "Some-Name", "q_1", "b"}) EXPECT_NE(run.tree(stem), "");
}

TEST(Tools, FailWhenTheirOutputCannotBeWrittenAndTheCompilerDoesNot) {
    const struct {
        std::string command;
        int full; // exit status when the output cannot be written; without that it is 0
    } cases[] = {
        {KAVRIMOL_PROGRAM " -VERSION >", 1},
        {KAVRIMOL_PROGRAM " -option-file=p.opt u.asn 2>", 1}, // a warning
        {STXDUMP_PROGRAM " m.stx >", 1},
        {STXDUMP_PROGRAM " none 2>", 1}, // which fails anyway
        {ORVO_PROGRAM " m >", 0},
        {"VEXO_PRINT_ASN_OPTIONS= " ORVO_PROGRAM " m 2>", 0},
    };
    for (const auto& [command, full] : cases) {
        for (const bool closed : {false, true}) {
            SCOPED_TRACE(command);
            const std::string target = closed ? "&-" : "/dev/full";
            const RunResult run = runProgram(
                "/bin/sh", {{"m.asn", module("M")}, {"u.asn", module("U", "T ::= UTF8String")}},
                {"-c", ORVO_PROGRAM " -V=1 m.asn >/dev/null && " + command + target});
            // The compiler opens what is closed, to nowhere, before it opens anything else.
            EXPECT_EQ(run.status, full) << run.err;
        }
    }
}

TEST(Kavrimol, WritesTheVersionAndAdvisesIt) {
    const SourceFile file = {"m.asn", module("M", "T ::= NULL\nU ::= UTF8String")};
    const RunResult silent = prefixesOf({file}, {"m"});
    EXPECT_EQ(silent.status, 0);
    EXPECT_EQ(silent.err, "kavrimol: warning: m.asn:2: UTF8String is read with "
                          "-STANDARD-VERSION=2021 only\n");
    EXPECT_EQ(silent.file("p.opt"), "-PREFIXLEN=32\n-PREFIX=M:m:m\n");
    const RunResult told = prefixesOf({file}, {"-standard-version=2021", "m"});
    EXPECT_EQ(told.status, 0);
    EXPECT_EQ(told.err, "");
    EXPECT_EQ(told.file("p.opt"), "-PREFIXLEN=32\n-STANDARD-VERSION=2021\n-PREFIX=M:m:m\n");
    EXPECT_EQ(runAgain(told, {"+p.opt", "m"}).status, 0);
}

const std::string importY = module("X", "\nIMPORTS T FROM Y;");
const SourceFile fileX = {"asn/x.asn", importY};

// clang-format off
const struct {
    std::vector<SourceFile> files;
    std::vector<std::string> arguments;
    int status;
    const char* err; // without the "kavrimol: " of each line
} faultCases[] = {
    {{fileX}, {"-A=asn", "x"}, 1, "asn/x.asn:2: no file defines module Y\n"},
    {{fileX, {"lib/x.asn", module("Y")}}, {"-A=asn", "-A=lib", "x"}, 1,
     "asn/x.asn:2: no file defines module Y; lib/x.asn does, but it is hidden by asn/x.asn\n"},
    {{fileX, {"asn/a.asn", module("Y")}, {"asn/b.asn", module("Y")}}, {"-A=asn", "x"}, 1,
     "module Y is defined by asn/a.asn and by asn/b.asn\n"},
    {{fileX, {"asn/yz.asn", module("Z") + module("Y")}}, {"-A=asn", "x"}, 1,
     "asn/yz.asn: several modules in one file (Z, Y); write a file for each with -split=DIR\n"},
    {{{"a.asn", "T ::= NULL\n"}}, {"a"}, 1, "a.asn: no module in it (\"Name DEFINITIONS ::= BEGIN ... END\")\n"},
    {{fileX}, {"-A=asn", "-A=nowhere", "x", "nobody"}, 2, "nowhere/: No such file or directory\n"},
    {{fileX}, {"-A=asn", "x", "nobody"}, 2, "nobody.asn: No such file or directory\nasn/x.asn:2: no file defines module Y\n"},
    {{{"a.asn/y.asn", module("Y")}}, {"a"}, 2, "a.asn: not a regular file\n"},
    {{{"p.opt", module("P")}}, {"p.opt"}, 1, "p.opt: not overwritten, it is a source file\n"},
};
// clang-format on
TEST(Kavrimol, FaultsLeaveTheOptionFileAlone) {
    for (const auto& row : faultCases) {
        SCOPED_TRACE(row.err);
        std::vector<SourceFile> files = row.files;
        if (files[0].name != "p.opt") files.push_back({"p.opt", "old"});
        const RunResult run = prefixesOf(files, row.arguments);
        EXPECT_EQ(run.status, row.status);
        std::string expected = row.err;
        for (size_t at = 0; at < expected.size(); at = expected.find('\n', at) + 1)
            expected.insert(at, "kavrimol: ");
        EXPECT_NE(run.err.find(expected), std::string::npos) << run.err;
        EXPECT_EQ(run.file("p.opt"), files[0].name == "p.opt" ? module("P") : "old");
    }
}

// clang-format off
const struct {
    SourceFile fileY;
    std::vector<std::string> arguments;
    const char* err;
} mendCases[] = {
    {{"asn/y+1.asn", module("Y")}, {"-A=asn", "x"},
     "asn/y+1.asn: a file prefix is made of letters, digits, \"-\" and \"_\" only; rename the file to y.asn"},
    {{"asn/abcdef.asn", module("Y")}, {"-A=asn", "-prefixlen=5", "x"},
     "asn/abcdef.asn: the name has more than the 5 characters of a file prefix (-PREFIXLEN=); rename the file to y.asn"},
    {{"asn/y.txt", module("Y")}, {"-A=asn", "x", "y.txt"},
     "asn/y.txt: a name without \".asn\" cannot be a file prefix; rename the file to y.asn"},
    {{"lib/z.asn", module("Y")}, {"-A=asn", "x", "lib/z.asn"}, "lib/z.asn: it is hidden by asn/z.asn; rename the file to y.asn"},
    {{"lib/y.asn", module("Y")}, {"-A=asn", "x", "lib/y"}, "lib/y.asn: no -A= names its directory; add -A=lib/"},
};
// clang-format on
TEST(Kavrimol, SaysHowFilesComeToBeFound) {
    for (const auto& row : mendCases) {
        SCOPED_TRACE(row.err);
        const RunResult run =
            prefixesOf({fileX, {"asn/z.asn", module("Z")}, row.fileY}, row.arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, std::string("kavrimol: ") + row.err + "\n");
        EXPECT_TRUE(run.file("p.opt").ends_with("-PREFIX=X:x:x\n-PREFIX=Y:y:y\n"));
    }
}

// ---- splitting ----------------------------------------------------------------------------------

TEST(Kavrimol, SplitsIntoExactTexts) {
    const std::string one = "-- head\r\nAn-A DEFINITIONS ::= BEGIN T ::= NULL END  -- of A\r\n";
    const std::string two = "\n-- about B\nB DEFINITIONS ::= BEGIN END";
    const std::string three = " C DEFINITIONS ::= BEGIN END -- c -- rest\ntail";
    const RunResult run = runKavrimol({{"all.asn", one + two + three}}, {"-split=new/dir", "all"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "new/dir/an-a.asn\nnew/dir/b.asn\nnew/dir/c.asn\n");
    EXPECT_EQ(run.file("new/dir/an-a.asn"), one);
    EXPECT_EQ(run.file("new/dir/b.asn"), two);
    EXPECT_EQ(run.file("new/dir/c.asn"), three);
}

TEST(Kavrimol, SplittingKeepsWhatIsThere) {
    const std::string text = module("A") + module("B");
    const RunResult run = runKavrimol(
        {{"all.asn", text}, {"a.asn", module("A")}, {"b.asn", "mine"}}, {"-split=.", "all"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "kavrimol: ./b.asn: not overwritten, it holds something else\n");
    EXPECT_EQ(run.file("b.asn"), "mine");
}

TEST(Kavrimol, UsageIsShownForWrongArguments) {
    const std::vector<std::string> wrong[] = {{},
                                              {"x"},
                                              {"-option-file=p"},
                                              {"-option-file=p", "-split=d", "x"},
                                              {"-option-file=p", "-PREFIXLEN=33", "x"},
                                              {"-option-file=p", "-STANDARD-VERSION=2022", "x"},
                                              {"-option-file=p", "-B=c", "x"}};
    for (const std::vector<std::string>& arguments : wrong) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const kavrimol::Result result = kavrimol::run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.err.find("usage: kavrimol "), std::string::npos);
    }
}

} // namespace
} // namespace orvo::test
