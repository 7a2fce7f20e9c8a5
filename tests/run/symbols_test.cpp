// Symbols: the cross-reference of a listing, imports, exports and what is wrong with them.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

/// The part of a listing between the source and the counters.
std::string crossReference(const RunResult& run, const std::string& prefix) {
    const std::string listing = run.listing(prefix);
    const size_t end = listing.find("\nSyntax errors     :");
    const size_t types = std::min(listing.find("\nNo undefined types detected\n"),
                                  listing.find("\n*** ERROR - Undefined types:\n"));
    return types < end ? listing.substr(types, end - types) : listing;
}

const SourceFile moduleN = {"n.asn", "N DEFINITIONS ::= BEGIN\n"
                                     "A ::= NULL\nB ::= NULL\nC ::= NULL\nP{X} ::= SET OF X\n"
                                     "w A ::= NULL\nEND\n"};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(CrossReference, TellsOriginDefinitionAndUsesInOrderOfNames) {
    const SourceFile other = {"long-.asn", "Long-Other DEFINITIONS ::= BEGIN D ::= NULL END\n"};
    const RunResult run = compile({moduleM("EXPORTS A, v;\n"
                                           "IMPORTS B, w FROM N\n"
                                           "  D FROM Long-Name;\n"
                                           "A ::= SEQUENCE { b B, u Undef, m N.C }\n"
                                           "v B ::= w\n"
                                           "x INTEGER ::= nowhere"),
                                   moduleN, other});
    EXPECT_EQ(run.diagnostics("m"), "  ** ERROR on line   5 : Symbol not in imports: C\n");
    EXPECT_EQ(
        crossReference(run, "m"),
        "\n*** ERROR - Undefined types:\n"
        "\nUndef\n usage     :\n   line     5\n"
        "\n*** ERROR - Undefined values:\n"
        "\nnowhere\n usage     :\n   line     7\n"
        "\nUSER DEFINED TYPES\n==================\n"
        "\nA exported\n definition:\n   line     5\n usage     :\n   not used\n"
        "\nB imported from N\n definition:\n   line     3\n usage     :\n   line     5     6\n"
        "\nC from N\n definition:\n   line     5\n usage     :\n   line     5\n"
        "\nD imported from Long_Name (Long_Other)\n definition:\n   line     4\n"
        " usage     :\n   not used\n"
        "\nUSER DEFINED VALUES\n==================\n"
        "\nv exported\n definition:\n   line     6\n usage     :\n   not used\n"
        "\nw imported from N\n definition:\n   line     3\n usage     :\n   line     6\n"
        "\nx\n definition:\n   line     7\n usage     :\n   not used\n");
    EXPECT_TRUE(contains(run.out, "m.asn(5): *** ERROR: Undef undefined\n"
                                  "m.asn(7): *** ERROR: nowhere undefined\n"));
    EXPECT_TRUE(contains(run.out, "Undefined symbols : 2\n"));
    EXPECT_FALSE(run.has("m.stx"));
}

TEST(CrossReference, PutsTenUsesOnALine) {
    std::string body = "T ::= NULL";
    for (int i = 3; i <= 12; ++i) body += "\nA" + std::to_string(i) + " ::= T";
    const std::string ten = "\nT\n definition:\n   line     2\n usage     :\n"
                            "   line     3     4     5     6     7     8     9    10    11    12\n";
    EXPECT_TRUE(contains(crossReference(compile({moduleM(body)}), "m"),
                         ten + "\nNo user defined values\n"));
    body += "\nA13 ::= T\nA14 ::= T";
    EXPECT_TRUE(contains(crossReference(compile({moduleM(body)}), "m"),
                         ten + "           13    14\n\nNo user defined values\n"));
}

TEST(CrossReference, SortsTheUsesOfBothPasses) {
    const RunResult run = compile({moduleM("v INTEGER ::= 1\n"
                                           "w INTEGER ::= v\n"
                                           "S ::= SEQUENCE { a INTEGER (0..v), b INTEGER (v) }")});
    EXPECT_TRUE(contains(crossReference(run, "m"), "\nv\n definition:\n   line     2\n"
                                                   " usage     :\n   line     3     4     4\n"));
}

TEST(CrossReference, WithoutXrefOnlyTellsWhatIsUndefined) {
    const RunResult run = compile({moduleM("T ::= SEQUENCE { u Undef }")}, {"-XREF=0"});
    EXPECT_EQ(crossReference(run, "m"), "\n*** ERROR - Undefined types:\n\nUndef\n"
                                        "\nNo undefined values detected\n");
    EXPECT_TRUE(contains(run.out, "m.asn(1): *** ERROR: Undef undefined\n"));
    EXPECT_EQ(compile({moduleM("T ::= NULL")}, {"-XREF=0"}).status, 0);
}

TEST(CrossReference, SaysWhenNothingIsDefined) {
    EXPECT_EQ(crossReference(compile({moduleM("")}), "m"),
              "\nNo undefined types detected\n\nNo undefined values detected\n"
              "\nNo user defined types\n\nNo user defined values\n");
}

TEST(CrossReference, ListsBothDefinitionsOfAName) {
    const RunResult run = compile({moduleM("T ::= NULL\nT ::= INTEGER\nU ::= T")});
    EXPECT_EQ(run.diagnostics("m"), "  ** ERROR on line   3 : Symbol already defined: T\n");
    EXPECT_TRUE(contains(crossReference(run, "m"),
                         "\nT\n definition:\n   line     2\n usage     :\n   line     4\n"
                         "\nT\n definition:\n   line     3\n usage     :\n   not used\n"));
}

TEST(CrossReference, TellsTheSummaryWhereAnUndefinedSymbolIsFirstUsed) {
    const RunResult run = compile({moduleM("T ::= NULL\nU ::= SEQUENCE { a Undef,\n b Undef }")},
                                  {"-ZOV-PREFIX=sum"});
    const std::string summary = run.file("sum.acs");
    EXPECT_TRUE(contains(summary, "Undefined symbol (first use)")) << summary;
    EXPECT_TRUE(contains(summary, "Undef")) << summary;
}

TEST(Symbols, AreCheckedWhereTheyAreEntered) {
    expectRows(R"(
EXPORTS T, T; T ::= NULL --! Symbol twice in symbol list: T
IMPORTS A,\nA FROM N; --! 3: Symbol twice in symbol list: A
P{X, Y,\nX} ::= SEQUENCE { a X, b Y } --! 3: Symbol twice in symbol list: X
E ::= ENUMERATED { a, b,\na } --! 3: Symbol twice in symbol list: a
v NULL ::= NULL\nv NULL ::= NULL --! 3: Symbol already defined: v
v NULL ::= NULL V ::= NULL
A2345678901234567890123456789012x ::= NULL A2345678901234567890123456789012y ::= NULL --! Symbol already defined: A2345678901234567890123456789012y
A234567890123456789012345678901x ::= NULL A234567890123456789012345678901y ::= NULL
EXPORTS T{}; T ::= INTEGER --! Braces not allowed: T
EXPORTS T; T {X} ::= SET OF X --! Braces expected: T
T ::= NULL U ::= T{NULL} --! Braces not allowed: T
T{X} ::= SET OF X U ::= T --! Braces expected: T
IMPORTS P FROM N; --! Braces expected: P
IMPORTS A{} FROM N; --! Braces not allowed: A
IMPORTS A FROM N\nB FROM N; --! 3: Change module name: N
IMPORTS A FROM M; --! Change module name: M
IMPORTS A FROM N; U ::= N.B --! Symbol not in imports: B
U ::= N.B V ::= M.T T ::= NULL W ::= N.P{NULL}
U ::= M.T{NULL} T{X} ::= SET OF X
IMPORTS P{} FROM N; U ::= N.P{NULL}
)",
               {.others = {moduleN}});
}

TEST(Symbols, FormalParametersAreFoundInLongLists) {
    std::string formals = "F0", actuals = "BOOLEAN", fields = "f0 F0", values = "f0 TRUE";
    for (int i = 1; i < 40; ++i) {
        formals += numbered(", F#", i);
        actuals += i % 2 == 0 ? ", BOOLEAN" : ", NULL";
        fields += numbered(", f# F#", i);
        values += numbered(i % 2 == 0 ? ", f# TRUE" : ", f# NULL", i);
    }
    expectMarked("P {" + formals + "} ::= SEQUENCE { " + fields + " }\nT ::= P {" + actuals +
                 "} v T ::= { " + values + " }");
}

TEST(Symbols, NamelenSetsTheSignificantCharacters) {
    expectRows("Abcdefghi ::= NULL Abcdefghj ::= NULL", {{"-NAMELEN=9"}});
    const std::string common = "A" + std::string(98, 'b');
    expectRows(common + "c ::= NULL " + common + "d ::= NULL", {{"-NAMELEN=100"}});
    expectRows("Abcdefghi ::= NULL Abcdefghj ::= NULL --! Symbol already defined: Abcdefghj",
               {{"-NAMELEN=8"}});
}

TEST(Symbols, TwoModulesCannotBeOneFile) {
    const SourceFile module = {"m.asn", "Modul-A DEFINITIONS ::= BEGIN\nIMPORTS A FROM Modul-B;\n"
                                        "U ::= Modul-C.T\nEND\n"};
    EXPECT_EQ(compile({module}).diagnostics("m"),
              "  ** ERROR on line   2 : Check file prefixes: Modul_B\n"
              "  ** ERROR on line   3 : Check file prefixes: Modul_C\n"
              "  ** ERROR on line   3 : Symbol not in imports: T\n");
    const SourceFile importer = moduleM("IMPORTS A FROM Modul-B C FROM\nModul-C;");
    const SourceFile imported = {"modul.asn", "Modul-B DEFINITIONS ::= BEGIN A ::= NULL END\n"};
    EXPECT_EQ(compile({importer, imported}).diagnostics("m"),
              "  ** ERROR on line   3 : Check file prefixes: Modul_C\n");
}

TEST(Symbols, OnlyExportsCanBeImported) {
    const SourceFile importer = moduleM("IMPORTS A, B FROM N;\nU ::= SEQUENCE { a A, b B }");
    const auto exporter = [](const std::string& exports) {
        return SourceFile{"n.asn", "N DEFINITIONS ::= BEGIN\n" + exports +
                                       "\nA ::= NULL\nB ::= NULL\nEND\n"};
    };
    EXPECT_EQ(compile({importer, exporter("")}).status, 0);
    EXPECT_TRUE(contains(crossReference(compile({importer, exporter("EXPORTS A;")}), "m"),
                         "\n*** ERROR - Undefined types:\n\nB imported from N\n usage     :\n"
                         "   line     3\n\nNo undefined values"));
    EXPECT_TRUE(
        contains(compile({importer, exporter("EXPORTS ;")}).out, "Undefined symbols : 2\n"));
    EXPECT_TRUE(contains(compile({importer, exporter("broken")}).out, "Undefined symbols : 2\n"));
}

TEST(Symbols, TheDefinitionInTheModuleWinsOverAnImport) {
    const RunResult run =
        compile({moduleM("IMPORTS A FROM N;\nA ::= INTEGER\nv A ::= 5"), moduleN});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(contains(crossReference(run, "m"),
                         "\nA\n definition:\n   line     3\n usage     :\n   line     4\n"
                         "\nA imported from N\n definition:\n   line     2\n usage     :\n"
                         "   not used\n"));
}

TEST(Symbols, AnIntegerSeesItsNamedNumbersFromOtherModules) {
    const SourceFile named = {"n.asn", "N DEFINITIONS ::= BEGIN\n"
                                       "zz INTEGER ::= 1\n" // other string numbers than in M
                                       "A ::= INTEGER { one(1), two(2) }\n"
                                       "E ::= ENUMERATED { red, ..., green }\nEND\n"};
    EXPECT_EQ(compile({moduleM("IMPORTS A, E FROM N;\nv A ::= two\nw E ::= green"), named}).status,
              0);
    const RunResult run = compile({moduleM("IMPORTS A FROM N;\nv A ::= three"), named});
    EXPECT_TRUE(contains(run.out, "m.asn(3): *** ERROR: three undefined\n"));
}

} // namespace
} // namespace orvo::test
