// Symbols: the cross-reference of a listing, imports, exports and what is wrong with them.

#include <gtest/gtest.h>

#include "support/run.h"

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

SourceFile moduleM(const std::string& body) {
    return {"m.asn", "M DEFINITIONS ::= BEGIN\n" + body + "\nEND\n"};
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

constexpr struct {
    const char* body;
    const char* diagnostics;
} symbolErrors[] = {
    {"EXPORTS T, T; T ::= NULL", "  ** ERROR on line   2 : Symbol twice in symbol list: T\n"},
    {"IMPORTS A,\nA FROM N;", "  ** ERROR on line   3 : Symbol twice in symbol list: A\n"},
    {"P{X, Y,\nX} ::= SEQUENCE { a X, b Y }",
     "  ** ERROR on line   3 : Symbol twice in symbol list: X\n"},
    {"E ::= ENUMERATED { a, b,\na }", "  ** ERROR on line   3 : Symbol twice in symbol list: a\n"},
    {"v NULL ::= NULL\nv NULL ::= NULL", "  ** ERROR on line   3 : Symbol already defined: v\n"},
    {"v NULL ::= NULL\nV ::= NULL", ""},
    {"A2345678901234567890123456789012x ::= NULL\nA2345678901234567890123456789012y ::= NULL",
     "  ** ERROR on line   3 : Symbol already defined: A2345678901234567890123456789012y\n"},
    {"A234567890123456789012345678901x ::= NULL\nA234567890123456789012345678901y ::= NULL", ""},
    {"EXPORTS T{};\nT ::= INTEGER", "  ** ERROR on line   2 : Braces not allowed: T\n"},
    {"EXPORTS T;\nT {X} ::= SET OF X", "  ** ERROR on line   2 : Braces expected: T\n"},
    {"T ::= NULL\nU ::= T{NULL}", "  ** ERROR on line   3 : Braces not allowed: T\n"},
    {"T{X} ::= SET OF X\nU ::= T", "  ** ERROR on line   3 : Braces expected: T\n"},
    {"IMPORTS P FROM N;", "  ** ERROR on line   2 : Braces expected: P\n"},
    {"IMPORTS A{} FROM N;", "  ** ERROR on line   2 : Braces not allowed: A\n"},
    {"IMPORTS A FROM N\nB FROM N;", "  ** ERROR on line   3 : Change module name: N\n"},
    {"IMPORTS A FROM M;", "  ** ERROR on line   2 : Change module name: M\n"},
    {"IMPORTS A FROM N;\nU ::= N.B", "  ** ERROR on line   3 : Symbol not in imports: B\n"},
    {"U ::= N.B", ""},
    {"U ::= M.T\nT ::= NULL", ""},
    {"U ::= M.T{NULL}\nT{X} ::= SET OF X", ""},
    {"U ::= N.P{NULL}", ""},
    {"IMPORTS P{} FROM N;\nU ::= N.P{NULL}", ""},
};

TEST(Symbols, AreCheckedWhereTheyAreEntered) {
    for (const auto& row : symbolErrors) {
        SCOPED_TRACE(row.body);
        const RunResult run = compile({moduleM(row.body), moduleN});
        EXPECT_EQ(run.diagnostics("m"), row.diagnostics);
        EXPECT_EQ(run.diagnostics("n"), "");
    }
}

TEST(Symbols, FormalParametersAreFoundInLongLists) {
    std::string formals, actuals, fields, values;
    for (int i = 1; i <= 40; ++i) {
        const std::string number = std::to_string(i), end = i < 40 ? ", " : "";
        formals += "F" + number + end;
        actuals += (i == 20 ? "BOOLEAN" : "NULL") + end;
        fields += "f" + number + " F" + number + end;
        values += "f" + number + (i == 20 ? " TRUE" : " NULL") + end;
    }
    const std::string body = "P {" + formals + "} ::= SEQUENCE { " + fields + " }\nT ::= P {" +
                             actuals + "}\nv T ::= { " + values + " }";
    EXPECT_EQ(compile({moduleM(body)}).diagnostics("m"), "");
}

TEST(Symbols, NamelenSetsTheSignificantCharacters) {
    const SourceFile module = moduleM("Abcdefghi ::= NULL\nAbcdefghj ::= NULL");
    EXPECT_EQ(compile({module}, {"-NAMELEN=9"}).diagnostics("m"), "");
    EXPECT_EQ(compile({module}, {"-NAMELEN=8"}).diagnostics("m"),
              "  ** ERROR on line   3 : Symbol already defined: Abcdefghj\n");
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
