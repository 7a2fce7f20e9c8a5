// Options as seen from outside: where they may stand, which wins, what is said of the rejected
// ones.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

// Explicit tags are the default of this header; EXPLICIT=1 makes it a warning.
const std::string explicitTags = "  ** WARNING  line   1 : $Explicit tagging not allowed\n";

SourceFile module(const std::string& name, const std::string& file, const std::string& comment = {},
                  const std::string& imports = {}) {
    return {file, comment + name + " DEFINITIONS ::= BEGIN " + imports + "\nT ::= NULL\nEND\n"};
}

TEST(Options, CommandLineOverridesTheCommentsBeforeTheHeader) {
    const SourceFile source = module("M", "m.asn", "--$EXPLICIT=1--");
    EXPECT_EQ(compile({source}).diagnostics("m"), explicitTags);
    EXPECT_EQ(compile({source}, {"-EXPLICIT=0"}).diagnostics("m"), "");
    EXPECT_EQ(compile({source}, {"-explicit=0", "-EXPLICIT=1"}).diagnostics("m"), explicitTags);
}

TEST(Options, RejectedOnesAreReportedOnceAtTheHeader) {
    const RunResult result = compile({module("M", "m.asn", "--$XY=1 $LOG--\n")},
                                     {"-N=u16", "-INT=u16", "-INT=u8 x", "-strictstandards"});
    EXPECT_EQ(result.diagnostics("m"), "  ** WARNING  line   2 : $Option(s) ignored: $XY=1\n"
                                       "  ** WARNING  line   2 : $Option(s) ignored: -N=u16\n"
                                       "  ** WARNING  line   2 : $Option(s) ignored: -INT=u8\n"
                                       "  ** WARNING  line   2 : $Option(s) ignored: "
                                       "-STRICTSTANDARDS\n");
    EXPECT_EQ(result.err, "\nWARNING : Option ignored: $XY=1\n"
                          "\nWARNING : Option ignored: -N=u16\n"
                          "\nWARNING : Option ignored: -INT=u8\n"
                          "\nWARNING : Option ignored: -STRICTSTANDARDS\n\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.has("m.stx"));
}

/// The option records of a tree, each with its kind: "3 -INT=8".
std::vector<std::string> optionRecords(const stx::Tree& tree) {
    std::vector<std::string> records;
    for (uint32_t nr = 1; nr <= tree.count(stx::TED); ++nr) {
        const auto record = tree.tedRec(nr);
        records.push_back(std::to_string(record.tedKind) + " " +
                          std::string(tree.text(record.text)));
    }
    return records;
}

TEST(Options, AreKeptOnceUnderNamesInUpperCase) {
    const RunResult run = compile(
        {{"m.asn", "--$int=u16 $//keepMe $//keepMe=asIs\n"
                   "M DEFINITIONS ::= BEGIN\nn INTEGER ::= 1 --$vname=one--\n"
                   "s IA5String ::= \"-int=u16\"\nt IA5String ::= \"$//keepMe\"\nEND\n"},
         {"o.opt", "-int=u16\n-//keepMe\n-beo=trace\n-int=b d\n"}},
        {"-Int=u16", "-//keepMe", "-//keepMe=asIs", "-beo=tr", "ace", "-int=b d", "+o.opt"});
    const TreeFacts tree(run, "m");
    // what is rejected at once stays as the file has it
    EXPECT_EQ(optionRecords(tree.tree()),
              (std::vector<std::string>{"3 $INT=u16", "3 $//KEEPME", "3 $//KEEPME=asIs",
                                        "3 -INT=u16", "3 -//KEEPME", "3 -//KEEPME=asIs",
                                        "2 -BEO=tr ace", "0 -INT=b", "3 -INT=u16", "3 -//KEEPME",
                                        "2 -BEO=trace", "0 -int=b", "3 $VNAME=one"}));
    EXPECT_EQ(tree.valueText("s") + tree.valueText("t"), "\"-int=u16\"\"$//keepMe\"");
    size_t spellings = 0; // of a text that is an option and a value
    for (uint32_t nr = 1; nr <= tree.tree().count(stx::STRI8); ++nr)
        spellings += tree.tree().text(nr).ends_with("u16") ? 1U : 0U;
    EXPECT_EQ(spellings, 3U); // $INT=u16, -INT=u16, -int=u16
    EXPECT_EQ(run.diagnostics("m"), "  ** WARNING  line   2 : $Option(s) ignored: -INT=b\n"
                                    "  ** WARNING  line   2 : $Option(s) ignored: -int=b\n");
}

TEST(Options, ScopeOfAnOptionFileHoldsForItsModulesOnly) {
    const RunResult result = compile(
        {module("Xx", "x.asn", "", "IMPORTS T FROM Yy T FROM Zz;"),
         module("Yy", "y.asn"),
         module("Zz", "zz.asn"),
         {"o.opt", "-BEGIN-SCOPE=y:zz\n-EXPLICIT=1\n-PREFIX=Yy:y\n-end-scope\n-PREFIX=Xx:x\n"}},
        {"+o.opt"});
    EXPECT_EQ(result.diagnostics("x").find("Explicit tagging"), std::string::npos);
    EXPECT_EQ(result.diagnostics("y"), explicitTags);
    EXPECT_EQ(result.diagnostics("zz"), explicitTags);
}

TEST(Options, WhatOnlyBeginsLikeAScopeMarkIsUnknown) {
    const RunResult result =
        compile({module("M", "m.asn"),
                 {"o.opt", "-begin-scope=other\n-END-SCOPEY\n-EXPLICIT=2\n-END-SCOPE x\n"
                           "-BEGIN-SCOPEX=m\n-END-SCOPEY=m\n-begin-scope\n-EXPLICIT=1\n"}},
                {"-VERBOSE=NONE", "+o.opt"});
    const std::string ignored = "  ** WARNING  line   1 : $Option(s) ignored: ";
    EXPECT_EQ(result.diagnostics("m"), ignored + "-BEGIN-SCOPEX=m\n" + ignored + "-END-SCOPEY=m\n" +
                                           ignored + "-BEGIN-SCOPE\n" + explicitTags);
    EXPECT_EQ(result.err, "\nWARNING : Option ignored: -BEGIN-SCOPEX=m\n"
                          "\nWARNING : Option ignored: -END-SCOPEY=m\n"
                          "\nWARNING : Option ignored: -BEGIN-SCOPE\n\n");
}

TEST(Options, PartsOfAValueMayAddUpTo1024Characters) {
    for (const size_t more : {0U, 1U}) {
        SCOPED_TRACE(more);
        const std::string part = "-BEO=" + std::string(1000, 'a'), rest(18 + more, 'b');
        const RunResult run = compile({module("M", "m.asn")}, {part, rest, "-V=1"});
        EXPECT_EQ(optionRecords(TreeFacts(run, "m").tree()),
                  std::vector<std::string>{more == 0 ? "2 " + part + " " + rest : "0 " + part});
    }
}

TEST(Options, PrefixOptionHasItsModuleCompiledUnderItsNames) {
    const RunResult result = compile({module("Main", "main.asn"), module("My-Other", "other.asn")},
                                     {"-PREFIX=My-Other:other:gen", "-PREFIX=Main:main"});
    EXPECT_EQ(result.status, 0) << result.out << result.err;
    EXPECT_TRUE(result.has("gen.stx"));
    EXPECT_TRUE(result.has("other.lst"));
}

TEST(Options, PrefixLengthsThatDifferFromTheFirstAreReportedOnceForAModule) {
    const std::string warning =
        "\nWARNING : Inconsistent PREFIXLEN option values for different modules."
        "\n          Check option files and ASN.1 module definition files and"
        "\n          delete all the PREFIXLEN options. Give only the highest"
        "\n          option value once for ORVO on the command line or in one"
        "\n          option file.\n";
    const struct {
        std::string main, other;
        std::vector<std::string> options;
        std::string warnings;
    } cases[] = {{"--$PREFIXLEN=6--", "--$PREFIXLEN=7--", {}, warning},
                 {"--$PREFIXLEN=6--", "", {}, ""},
                 {"--$PREFIXLEN=6--", "", {"-PREFIXLEN=7"}, warning + warning},
                 {"--$PREFIXLEN=6 $PREFIXLEN=7 $PREFIXLEN=8 $PREFIXLEN=6--", "", {}, warning},
                 {"", "--$PREFIXLEN=7--", {"-PREFIXLEN=6"}, warning},
                 {"--$PREFIXLEN=6 $PREFIXLEN=6--", "", {"-PREFIXLEN=6"}, ""}};
    for (const auto& [main, other, options, warnings] : cases) {
        SCOPED_TRACE(main + other);
        const RunResult result = compile({module("Main", "main.asn", main, "IMPORTS T FROM Other;"),
                                          module("Other", "other.asn", other)},
                                         options);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err, warnings);
    }
}

TEST(Options, CommentsAreTakenAtEveryKindOfNode) {
    expectMarked(R"(
A ::= INTEGER { one (1) --$VNAME=x-- } (1..9) --$INT=U8 $TPREF=a_ $ENTRY--
B ::= SEQUENCE { a BOOLEAN --$CCONV=HL $PLMBOOLE=1--,
  ..., b B --$PTR $NEAR=YES-- OPTIONAL } --$COMPMASK=8 $ASNHC--
C ::= SEQUENCE SIZE (1..5) --$N=16 $DYN-- OF OCTET STRING --$FRAME--
D ::= CHOICE { a NULL --$SKIP--, b NULL } --$CHOICE=8 $EXTENSIONS=SKIP--
E ::= ENUMERATED { a --$VSUFF=_e--, b } --$INT=16--
F ::= CLASS { &Type, &id INTEGER --$FNAME=id-- } --$CLCONV=L--
v INTEGER ::= 5 --$VNAME=x $BEO=any--
V INTEGER ::= { 1 | 2 } --$VSPREF=s--
)",
                 automatic);
}

TEST(Options, CommentsThatTheirPlaceDoesNotAllowAreReported) {
    expectMarked(R"(
A ::= INTEGER --$NEAR=YES--
B ::= INTEGER --$EXTENSIONS=SAVE $INT=8-- --! W $Option(s) ignored
C ::= SEQUENCE { a NULL --$ENTRY-- --! W $Option(s) ignored
  , b NULL --$TNAME=x-- } --! W $Option(s) ignored ; W $Option(s) ignored
v INTEGER ::= 5 --$INT=8--
--$SKIP--D ::= NULL --! W $Option(s) ignored
)",
                 automatic);
}

/// An option of a type that turns out wrong is switched off in its own record, also where others
/// have the same text or, as instances of one definition, the same records.
TEST(Options, SwitchedOffOnesStandInTheTreeBesideThoseThatHold) {
    const std::string head = " DEFINITIONS ::= BEGIN\n", end = "END\n";
    const std::string definitions =
        "P {T} ::= SEQUENCE { id T, a ANY DEFINED BY id --$ANY=E:one $BEO=x $ANY=E:two--, b T }\n"
        "S ::= SEQUENCE { id INTEGER, a ANY DEFINED BY id --$ANY=E:one-- }\n"
        "R ::= SEQUENCE { id OBJECT IDENTIFIER, a ANY DEFINED BY id --$ANY=E:one-- }\n"
        "E ::= NULL --$ENTRY--\none INTEGER ::= 1\ntwo INTEGER ::= 2\n"
        "t IA5String ::= \"$ANY=E:one\"\no OBJECT IDENTIFIER ::= { 2 7 77 }\n";
    const std::string x = "X ::= P {INTEGER}\n", y = "Y ::= P {OBJECT IDENTIFIER}\n",
                      z = "Z ::= P {OBJECT IDENTIFIER}\n";
    for (const std::string& uses : {x + y + z, y + x + z, y + z + x}) {
        const SourceFile user = {"m.asn", "M" + head + "IMPORTS P{} FROM N;\n" + uses + end};
        for (const bool imported : {false, true}) {
            SCOPED_TRACE(uses + (imported ? "imported" : ""));
            const SourceFile file = {"n.asn",
                                     "N" + head + definitions + (imported ? "" : uses) + end};
            const RunResult run =
                compile(imported ? std::vector{user, file} : std::vector{file, user});
            const TreeFacts tree(run, imported ? "m" : "n"), own(run, "n");
            expectFacts(tree, "options X.a: $ANY=E:one $BEO=x $ANY=E:two\n"
                              "options Y.a: ?ANY=E:one $BEO=x ?ANY=E:two\n"
                              "options Z.a: ?ANY=E:one $BEO=x ?ANY=E:two");
            expectFacts(own, "options S.a: $ANY=E:one ; options R.a: ?ANY=E:one\n"
                             "valueText t: \"$ANY=E:one\"");
        }
    }
}

/// Strings that the last checks add are counted with the texts of options that were switched off,
/// and stay out of the file otherwise.
TEST(Options, SwitchedOffOnesHaveTheStringsCountedAgain) {
    for (const bool fits : {true, false}) {
        SCOPED_TRACE(fits);
        const RunResult run =
            compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n"
                               "S ::= SEQUENCE { id INTEGER, a ANY DEFINED BY id --$ANY=E:" +
                                   std::string(fits ? "one" : "o") +
                                   "-- }\nE ::= NULL --$ENTRY--\none INTEGER ::= 1\n"
                                   "o OBJECT IDENTIFIER ::= { 2 7 77 }\nEND\n"}});
        const TreeFacts facts(run, "m");
        const stx::Tree& tree = facts.tree();
        const uint32_t source = tree.mNode(1).srcFile; // the last one of the passes before
        EXPECT_EQ(tree.text(source), "m.asn");
        EXPECT_EQ(tree.count(stx::STRI8), fits ? source : source + 2);
        EXPECT_EQ(tree.text(source + 1), fits ? "" : "?ANY=E:o");
        EXPECT_EQ(tree.hasText(facts.value("o").node().stri), !fits);
    }
}

// Those in front of OF and the closing brace belong to the types in front of them.
TEST(Options, CommandsThatNoRuleTakesAreReported) {
    expectMarked(R"(
T ::= --$PTR-- --! 1: W $Option(s) ignored
  SEQUENCE { --! W $Option(s) ignored
    a INTEGER, --$PTR--
    b SET --$DYN-- OF BOOLEAN --$PTR-- } --! W $Option(s) ignored
U ::= OCTET STRING --$no option--
V ::= NULL --! W $Option(s) ignored
)",
                 {.defaults = "--$PTR-- "});
}

TEST(Options, InFrontOfTheHeaderAreTheModules) {
    const std::string body = "M DEFINITIONS ::= BEGIN T ::= NULL END";
    const auto listsSymbols = [&](const std::string& comments) {
        const auto run = compile({{"m.asn", comments + body}});
        EXPECT_EQ(run.diagnostics("m"), "") << comments;
        return run.listing("m").find("USER DEFINED TYPES") != std::string::npos;
    };
    EXPECT_TRUE(listsSymbols(""));
    EXPECT_FALSE(listsSymbols("--$XREF=0--"));
    EXPECT_FALSE(listsSymbols("-- $xref=0 $Info=some words --\n-- no more --"));
    EXPECT_FALSE(listsSymbols("--$ALLOW--\n--$XREF=0\n"));
}

TEST(Options, AfterASyntaxErrorCommandsAreComments) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN T ::= SET { , }\n"
                                        "U ::= A --$PTR-- B C D E F G\n"
                                        "U ::= --$PTR-- INTEGER END\n"}});
    EXPECT_EQ(run.diagnostics("m").find("ignored"), std::string::npos);
}

} // namespace
} // namespace orvo::test
