#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

struct Case {
    const char* body;
    std::vector<Finding> findings;
};

void expectFindings(const std::vector<Case>& cases, const std::vector<std::string>& options = {},
                    const char* defaults = "") {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.body);
        const RunResult run = compileBody(row.body, options, defaults);
        EXPECT_EQ(run.diagnostics("m"), listed(row.findings));
    }
}

TEST(Tags, HaveAClassAndANumberThatMayBeWritten) {
    const std::string range = "Tag number shall be INTEGER and in range 0..2097151";
    const std::string universal = "Tag class shall not be UNIVERSAL";
    expectFindings({{"T ::= [UNIVERSAL 5] INTEGER", {{2, universal}}},
                    {"T ::= SEQUENCE { a [1] [UNIVERSAL 5] INTEGER }", {{2, universal}}},
                    {"T ::= [0] NULL\nU ::= [2097151] NULL\nV ::= [APPLICATION n] NULL\n"
                     "n INTEGER ::= m\nm INTEGER ::= 2097151",
                     {}},
                    {"T ::= [2097152] NULL", {{2, range}}},
                    {"T ::= [99999999999] NULL", {{2, range}}},
                    {"T ::= [n] NULL\nn INTEGER ::= -1", {{2, range}}},
                    {"T ::= [n] NULL\nn INTEGER ::= m\nm INTEGER ::= 2097152", {{2, range}}},
                    {"T ::= [n] NULL\nn INTEGER ::= 4294967296", {{2, range}}},
                    {"T ::= [n] NULL\nn BOOLEAN ::= TRUE", {{2, range}}},
                    {"T ::= [1] C\nU ::= [2] C2\nC ::= CLASS { &id INTEGER }\nC2 ::= C",
                     {{2, "Object class can not be tagged/subtyped/entry"},
                      {3, "Object class can not be tagged/subtyped/entry"}}}});
    expectFindings({{"T ::= [UNIVERSAL 5] INTEGER", {}}}, {"-ALLOW"});
}

TEST(Tags, ImplicitInFrontOfWhatHasNoTagIsReported) {
    const std::string choice = "CHOICE may not be tagged with IMPLICIT",
                      any = "ANY may not be tagged with IMPLICIT",
                      open = "Open type may not be tagged with IMPLICIT";
    expectFindings({
        {"T ::= [0] IMPLICIT CHOICE { a NULL }", {{2, choice}}},
        {"T ::= [0] IMPLICIT U\nU ::= V\nV ::= CHOICE { a NULL }", {{2, choice}}},
        {"B ::= [2] IMPLICIT A\nA ::= [1] CHOICE { a NULL }\nC ::= [2] IMPLICIT A", {}},
        {"T ::= [0] IMPLICIT ANY\nU ::= SEQUENCE OF [1] IMPLICIT A\nA ::= ANY",
         {{2, any}, {3, any}}},
        {"T ::= [0] IMPLICIT a < U\nU ::= CHOICE { a V, b [5] V, c NULL }\n"
         "V ::= CHOICE { d BOOLEAN }\nW ::= [0] IMPLICIT b < U\nX ::= [0] IMPLICIT c < U",
         {{2, choice}}},
        {"C ::= CLASS { &Type, &id INTEGER, &c CHOICE { a NULL }, &v &Type }\n"
         "T ::= SEQUENCE { a [0] IMPLICIT C.&Type,\n b [1] IMPLICIT C.&id,\n"
         " c [2] IMPLICIT C.&c,\n d [3] IMPLICIT C.&v, e [4] EXPLICIT C.&Type }",
         {{3, open}, {5, choice}, {6, open}}},
        {"T ::= [1] IMPLICIT o.&Type\nU ::= [1] IMPLICIT p.&Type\nC ::= CLASS { &Type }\n"
         "o C ::= { &Type CHOICE { a NULL } }\np C ::= { &Type NULL }",
         {{2, choice}}},
    });
}

TEST(Tags, ModeFollowsTheTypeWhereTheModuleLeavesItOpen) {
    const std::string body = R"(T ::= [3] Choice
U ::= [3] Int
V ::= [3] IMPLICIT [4] Choice
W ::= [3] EXPLICIT [4] Int
S ::= SEQUENCE { a [0] Any, b [1] M.Choice, c [2] x < Choice2, d [3] y < Choice2,
    e [4] C.&Type, f [5] C.&id, g [6] TYPE-IDENTIFIER.&Type, h [7] TYPE-IDENTIFIER.&id,
    i [8] Tagged, j [9] o.&Type, k [10] ABSTRACT-SYNTAX.&Type, l [11] ABSTRACT-SYNTAX.&property,
    m [12] TYPE-IDENTIFIER.&Type({Set}) }
Set TYPE-IDENTIFIER ::= { { Int IDENTIFIED BY { 1 2 } } }
Choice ::= CHOICE { n NULL }
Choice2 ::= CHOICE { x Choice, y BOOLEAN }
Tagged ::= [0] Choice
Int ::= INTEGER
Any ::= ANY
C ::= CLASS { &Type, &id INTEGER }
o C ::= { &Type Choice, &id 5 })";
    constexpr struct {
        const char* path;
        const char* implicitly;
        const char* explicitly;
    } rows[] = {{"T", "[3] EXPLICIT", "[3] EXPLICIT"},
                {"U", "[3] IMPLICIT", "[3] EXPLICIT"},
                {"V", "[3] IMPLICIT [4] EXPLICIT", "[3] IMPLICIT [4] EXPLICIT"},
                {"W", "[3] EXPLICIT [4] IMPLICIT", "[3] EXPLICIT [4] EXPLICIT"},
                {"S.a", "[0] EXPLICIT", "[0] EXPLICIT"},
                {"S.b", "[1] EXPLICIT", "[1] EXPLICIT"},
                {"S.c", "[2] EXPLICIT", "[2] EXPLICIT"},
                {"S.d", "[3] IMPLICIT", "[3] EXPLICIT"},
                {"S.e", "[4] EXPLICIT", "[4] EXPLICIT"},
                {"S.f", "[5] IMPLICIT", "[5] EXPLICIT"},
                {"S.g", "[6] EXPLICIT", "[6] EXPLICIT"},
                {"S.h", "[7] IMPLICIT", "[7] EXPLICIT"},
                {"S.i", "[8] IMPLICIT", "[8] EXPLICIT"},
                {"S.j", "[9] EXPLICIT", "[9] EXPLICIT"},
                {"S.k", "[10] EXPLICIT", "[10] EXPLICIT"},
                {"S.l", "[11] IMPLICIT", "[11] EXPLICIT"},
                {"S.m", "[12] EXPLICIT", "[12] EXPLICIT"}};
    const RunResult implicitRun = compileBody(body, {}, "IMPLICIT TAGS ");
    const RunResult explicitRun = compileBody(body, {}, "");
    EXPECT_EQ(implicitRun.status + explicitRun.status, 0) << implicitRun.diagnostics("m");
    const TreeFacts implicitTree(implicitRun, "m"), explicitTree(explicitRun, "m");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(implicitTree.tags(row.path), row.implicitly);
        EXPECT_EQ(explicitTree.tags(row.path), row.explicitly);
    }
}

TEST(Tags, UsageRulesAreCheckedOnDemand) {
    const char* body = "A ::= [APPLICATION 3] NULL\nB ::= [APPLICATION 3] NULL\n"
                       "C ::= SEQUENCE { a [PRIVATE 3] NULL,\n  b [PRIVATE n] NULL }\n"
                       "D ::= [1] NULL\nE ::= [PRIVATE 4] [1] NULL\nF ::= [PRIVATE 5] IMPLICIT A\n"
                       "G ::= [PRIVATE 6] A\nn INTEGER ::= 3";
    const std::string usage = "$Tag usage not allowed",
                      application = "APPLICATION number already "
                                    "in use: 3",
                      priv = "PRIVATE number already in use: 3";
    expectFindings({{body, {}}}, {"-TAGUSAGE=IGNORE"});
    expectFindings({{body, {{3, application}, {5, priv}, {6, "W " + usage}, {8, "W " + usage}}}},
                   {"-TAGUSAGE=WARNING"});
    expectFindings({{body, {{3, application}, {5, priv}, {6, usage}, {8, usage}}}},
                   {"-TAGUSAGE=ERROR"});
    const RunResult two = compile(
        {{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS T FROM N; U ::= [APPLICATION 3] T END\n"},
         {"n.asn", "N DEFINITIONS ::= BEGIN T ::= [APPLICATION 3] NULL END\n"}},
        {"-TAGUSAGE=ERROR"});
    EXPECT_EQ(two.diagnostics("m") + two.diagnostics("n"), "");
}

TEST(Tags, ExplicitTaggingIsReportedOnDemand) {
    const char* body = "A ::= [1] EXPLICIT NULL\nB ::= [1] CHOICE { a NULL }\n"
                       "C ::= [1] EXPLICIT [2] IMPLICIT NULL\nD ::= [1] B2\nE ::= [1] NULL\n"
                       "B2 ::= CHOICE { a NULL }";
    const std::string text = "$Explicit tagging not allowed";
    expectFindings({{body, {}}}, {"-EXPLICIT=0"}, "IMPLICIT TAGS ");
    expectFindings({{body, {{2, "W " + text}, {4, "W " + text}}}}, {"-EXPLICIT=1"},
                   "IMPLICIT TAGS ");
    expectFindings({{body, {{1, "W " + text}, {2, text}, {4, text}, {6, text}}}}, {"-EXPLICIT=2"});
}

TEST(Tags, OfComponentsDifferWhereADecoderNeedsIt) {
    const auto clash = [](const char* tag) { return std::string("Non-distinct tag: ") + tag; };
    expectFindings({
        {"T ::= SEQUENCE { a [0] NULL OPTIONAL, b [0] NULL }", {{2, clash("[0]")}}},
        {"T ::= SEQUENCE { a [0] NULL, b [0] NULL }", {}},
        {"T ::= SET { a [0] NULL, b [0] NULL }", {{2, clash("[0]")}}},
        {"T ::= CHOICE { a INTEGER,\n b INTEGER, c [APPLICATION 2] NULL, d [PRIVATE 2] NULL,\n"
         " e [2] NULL, f INTEGER, g X }\nX ::= [PRIVATE 2] NULL",
         {{2, clash("[UNIVERSAL 2]")}, {2, clash("[UNIVERSAL 2]")}, {2, clash("[PRIVATE 2]")}}},
        {"T ::= SEQUENCE { a NULL OPTIONAL, b INTEGER, c NULL OPTIONAL, d REAL DEFAULT 0 }", {}},
        {"T ::= SEQUENCE { a NULL OPTIONAL, b REAL DEFAULT 0, c NULL }",
         {{2, clash("[UNIVERSAL 5]")}}},
        {"T ::= SEQUENCE { a NULL OPTIONAL, ..., [[ b NULL OPTIONAL ]] }",
         {{2, clash("[UNIVERSAL 5]")}}},
        {"T ::= SET { a [n] NULL, b [2] BOOLEAN, c [m] NULL }\nn INTEGER ::= m\nm INTEGER ::= 2",
         {{2, clash("[2]")}, {2, clash("[2]")}}},
        {"T ::= CHOICE { a [n] NULL, b [m] NULL }\nm INTEGER ::= 2\nn INTEGER ::= 3", {}},
        {"T ::= SET { a BOOLEAN, COMPONENTS OF U, b [2] NULL }\n"
         "U ::= SET { c [1] NULL, d [2] NULL, ..., e BOOLEAN }",
         {{2, clash("[2]")}}},
        {"T ::= SET { a C.&id, b C.&Tagged, c C.&b }\n"
         "C ::= CLASS { &id INTEGER, &Tagged [2] INTEGER OPTIONAL, &b BOOLEAN }",
         {}},
        {"T ::= SET { a C.&id, b INTEGER }\nC ::= CLASS { &id INTEGER }",
         {{2, clash("[UNIVERSAL 2]")}}},
        {"T ::= CHOICE { a b < T2, c < T2, d BOOLEAN }\nT2 ::= CHOICE { b BOOLEAN, c NULL }",
         {{2, clash("[UNIVERSAL 1]")}}},
    });
}

TEST(Tags, OfUntaggedChoicesAreThoseOfAllAlternatives) {
    const std::string types = "\nC ::= CHOICE { x [0] NULL, y D }\n"
                              "D ::= CHOICE { z [1] NULL, w BOOLEAN, ..., v [2] NULL }";
    const auto clash = [](const char* tag) { return std::string("Non-distinct tag: ") + tag; };
    const struct {
        const char* type;
        const char* tag;
    } rows[] = {{"SET { c C, d [2] NULL }", "[2]"},
                {"SET { d [2] NULL, c C }", "[2]"},
                {"SET { c C, d [3] NULL, e INTEGER }", nullptr},
                {"SET { c [4] C, d [2] NULL }", nullptr},
                {"SEQUENCE { c C OPTIONAL, d BOOLEAN }", "[UNIVERSAL 1]"},
                {"SEQUENCE { c C, d BOOLEAN }", nullptr},
                {"CHOICE { c C, d y < C }", "[1]"},
                {"CHOICE { a BOOLEAN, b [0] NULL, c C }", "[0]"}, // b is nearer than a
                {"SET { a INTEGER, ..., b D, d [5] D }", nullptr}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const RunResult run = compileBody("T ::= " + std::string(row.type) + types);
        EXPECT_EQ(run.diagnostics("m"), row.tag == nullptr ? "" : listed({{2, clash(row.tag)}}));
    }
    const std::string endless = "Indeterminate tag: ";
    expectFindings(
        {{"T ::= CHOICE { a T, b NULL }", {{2, endless + "a"}}},
         {"T ::= CHOICE { a U, b NULL }\nU ::= CHOICE { c T, d BOOLEAN }",
          {{2, endless + "a"}, {3, endless + "c"}}},
         {"T ::= CHOICE { a [0] T, b NULL, c SEQUENCE { d T } }", {}},
         {"T ::= CHOICE { a T, b NULL }\nU ::= SET { t T, n INTEGER }", {{2, endless + "a"}}}});
}

TEST(Tags, ThatCannotBeToldAreReportedWhereTheyMustDiffer) {
    const std::string first = "Indeterminate tag: a";
    const std::string types = "\nC ::= CLASS { &Type, &id INTEGER }";
    const struct {
        const char* type;
        bool reported;
    } rows[] = {{"SET { a C.&Type, b INTEGER }", true},
                {"SET { b INTEGER, a C.&Type }", true},
                {"SET { a [0] C.&Type, b C.&id }", false},
                {"CHOICE { a C.&Type }", true},
                {"SEQUENCE { b INTEGER, a C.&Type }", false},
                {"SEQUENCE { a C.&Type, b INTEGER }", false},
                {"SEQUENCE { a C.&Type OPTIONAL, b INTEGER }", true},
                {"SEQUENCE { b INTEGER, a C.&Type OPTIONAL }", false},
                {"SEQUENCE { b INTEGER, a C.&Type OPTIONAL, ... }", false},
                {"SEQUENCE { a U OPTIONAL, b INTEGER }\nU ::= C.&Type", true},
                {"SEQUENCE { a CHOICE { b [0] C.&Type } OPTIONAL, c INTEGER }", false},
                {"SEQUENCE OF C.&Type", false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        const RunResult run = compileBody("T ::= " + std::string(row.type) + types);
        EXPECT_EQ(run.diagnostics("m"), row.reported ? listed({{2, first}}) : "");
    }
}

TEST(Tags, AreGivenAutomaticallyWhereNoneIsWritten) {
    const RunResult run = compileBody(R"(A ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL,
    COMPONENTS OF B, ..., [[ c INTEGER ]], d E }
B ::= SEQUENCE { x [5] INTEGER, y INTEGER, ..., z INTEGER }
D ::= SET { a ANY, b ANY, c C.&Type }
E ::= CHOICE { a INTEGER, b F, c F }
F ::= CHOICE { a [0] INTEGER, b BOOLEAN }
G ::= SEQUENCE { a INTEGER, ..., [[ b [0] INTEGER ]] }
C ::= CLASS { &Type, &id INTEGER }
H ::= SET OF INTEGER)",
                                      {}, "AUTOMATIC TAGS ");
    EXPECT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts tree(run, "m");
    constexpr struct {
        const char* type;
        const char* flags;
    } rows[] = {{"A", "OPTIONALS MANDATORY EXTENSIBLE AUTOMATIC_TAGS"},
                {"B", "OPTIONALS MANDATORY EXTENSIBLE"},
                {"D", "MANDATORY AUTOMATIC_TAGS"},
                {"E", "AUTOMATIC_TAGS"},
                {"F", ""},
                {"G", "OPTIONALS MANDATORY EXTENSIBLE"},
                {"C", "MANDATORY"},
                {"H", ""}};
    for (const auto& row : rows) EXPECT_EQ(tree.flags(row.type), row.flags) << row.type;
    EXPECT_EQ(tree.finalTags("A.b"), "[1]");
    EXPECT_EQ(tree.finalTags("A.c"), "[4]"); // x and y take 2 and 3
    EXPECT_EQ(tree.finalTags("A.d"), "[5] ...");
    expectFindings({{"T ::= SET { a [0] INTEGER, b INTEGER, c INTEGER }",
                     {{2, "Non-distinct tag: [UNIVERSAL 2]"}}}},
                   {}, "AUTOMATIC TAGS ");
}

} // namespace
} // namespace orvo::test
