#include <gtest/gtest.h>

#include "support/tree.h"

namespace orvo::test {
namespace {

TEST(ParsedTypes, StandInTheTreeAsTheyWereWritten) {
    const auto run = compile({{"m.asn", R"(M { iso 5 } DEFINITIONS IMPLICIT TAGS ::= BEGIN
EXPORTS All, Colour, colour;
All ::= SET {
    a [0] BOOLEAN, b [1] INTEGER { one(1), minus(-2) }, c [2] Colour OPTIONAL,
    d [3] REAL, e [4] BIT STRING { x(0), y(7) }, f [5] OCTET STRING, g [6] NULL,
    h [7] SEQUENCE SIZE (0..3) OF Colour, i [8] SET OF IA5String, j [9] CHOICE { k NULL, l Colour },
    m [10] OBJECT IDENTIFIER, n [11] EMBEDDED PDV, o [12] CHARACTER STRING, p [13] EXTERNAL,
    q [14] ObjectDescriptor, r [15] UTCTime, s [16] GeneralizedTime, t [17] k < Pick,
    ..., [[ 2: u [18] T61String, v [19] Plain.&id OPTIONAL ]],
    w [APPLICATION 20] EXPLICIT [21] INTEGER, y [22] INSTANCE OF TYPE-IDENTIFIER }
Colour ::= ENUMERATED { red, green(5), ..., blue }
colour Colour ::= green
Pick ::= CHOICE { k NULL, ..., z BOOLEAN }
More ::= SEQUENCE { COMPONENTS OF Base, last NULL }
Base ::= SEQUENCE { first BOOLEAN }
PLAIN ::= CLASS { &id INTEGER UNIQUE, &Type OPTIONAL }
Plain PLAIN ::= { { &id 5 } | { &id 6, &Type NULL }, ... }
Pair {First, INTEGER : high} ::= SEQUENCE { first First, second INTEGER (0..high) }
One ::= Pair { BOOLEAN, 9 }
END
)"}});
    EXPECT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.types(), "All Colour Pick More Base PLAIN Plain Pair One");
    EXPECT_EQ(tree.values(), "colour");
    EXPECT_EQ(tree.components("All"), "a b c d e f g h i j m n o p q r s t ... [[ u v ]] w y");
    constexpr struct {
        const char* path;
        const char* kind;
    } kinds[] = {
        {"All.a", "BOOLEAN"},           {"All.c", "Colour"},          {"All.h", "SEQUENCE OF"},
        {"All.h.*", "Colour"},          {"All.i.*", "IA5String"},     {"All.j", "CHOICE"},
        {"All.m", "OBJECT IDENTIFIER"}, {"All.n", "EMBEDDED PDV"},    {"All.o", "CHARACTER STRING"},
        {"All.p", "EXTERNAL"},          {"All.s", "GeneralizedTime"}, {"All.t", "Selection type"},
        {"All.u", "TeletexString"},     {"All.y", "InstanceOfType"}};
    for (const auto& row : kinds) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(tree.kind(row.path), row.kind);
    }
    EXPECT_EQ(tree.tags("All.b"), "[1] IMPLICIT");
    EXPECT_EQ(tree.tags("All.j"), "[9] EXPLICIT");
    EXPECT_EQ(tree.tags("All.w"), "[APPLICATION 20] EXPLICIT [21] IMPLICIT");
    EXPECT_EQ(tree.named("All.b"), "one(1) minus(-2)");
    EXPECT_EQ(tree.named("All.e"), "x(0) y(7)");
    EXPECT_EQ(tree.presence("All.c"), "OPTIONAL");
    EXPECT_EQ(tree.components("Pick"), "k ... z");
    EXPECT_EQ(tree.presence("More.@1"), "COMPONENTS OF");
}

TEST(ParsedTypes, ImpliedExtensibilityAddsAMarkerToListsWithoutOne) {
    const TreeFacts tree(
        compile({{"m.asn", "M DEFINITIONS EXTENSIBILITY IMPLIED ::= BEGIN\n"
                           "A ::= SEQUENCE { } B ::= SET { a NULL }\n"
                           "C ::= SEQUENCE { ..., a NULL }\n"
                           "D ::= CHOICE { a CHOICE { b NULL } }\n"
                           "E ::= ENUMERATED { a, b(5) } F ::= ENUMERATED { a, ..., b }\n"
                           "END\n"}}),
        "m");
    const char* const lists[][2] = {
        {"A", "..."}, {"B", "a ..."}, {"C", "... a"}, {"D", "a ..."}, {"D.a", "b ..."}};
    for (const auto& [path, entries] : lists) EXPECT_EQ(tree.components(path), entries) << path;
    EXPECT_EQ(tree.named("E"), "a(0) b(5) ...");
    EXPECT_EQ(tree.named("F"), "a(0) ... b(1)");
}

TEST(ParsedTypes, ImportsTellAssignedIdentifiersFromSymbols) {
    const std::string other =
        " DEFINITIONS ::= BEGIN A ::= NULL b OBJECT IDENTIFIER ::= { 1 2 } C ::= NULL END\n";
    for (const char* clause : {"A FROM N1x b, C FROM N2x", "A FROM N1x b C FROM N2x",
                               "A FROM N1x b FROM N2x", "A FROM N1x { iso 5 } C FROM N2x"}) {
        const auto run = compile({{"m.asn", std::string("M DEFINITIONS ::= BEGIN IMPORTS ") +
                                                clause + "; b OBJECT IDENTIFIER ::= { 1 3 } END\n"},
                                  {"n1x.asn", "N1x" + other},
                                  {"n2x.asn", "N2x" + other}});
        EXPECT_EQ(run.diagnostics("m"), "") << clause;
        EXPECT_EQ(TreeFacts(run, "m").tree().count(stx::MNODE), 3U) << clause;
    }
}

} // namespace
} // namespace orvo::test
