#include <gtest/gtest.h>

#include <sstream>

#include "support/cases.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

TEST(NamedNumbers, ItemsWithoutNumberGetTheFirstFreeOne) {
    constexpr struct {
        const char* items;
        const char* numbered;
    } rows[] = {
        {"a, b(0), c", "a(1) b(0) c(2)"},
        {"a(1), b, c(0)", "a(1) b(2) c(0)"},
        {"a, b, c(1), d(3), e", "a(0) b(2) c(1) d(3) e(4)"},
        {"a, ..., b(5), c", "a(0) ... b(5) c(6)"},
        {"a, ..., b, c(1000)", "a(0) ... b(1) c(1000)"},
        {"a, b(1), ..., c, d(7), e", "a(0) b(1) ... c(2) d(7) e(8)"},
        {"a(5), ..., b(4), c", "a(5) ... b(4) c(6)"},
        {"a(4294967296), b, ..., c(4294967297), d",
         "a(4294967296) b(0) ... c(4294967297) d(4294967298)"},
        {"a(n), b, ..., c(m), d", "a(n) b(1) ... c(m) d(8)"}, // n is 0, m is 7
        {"a(-3), b, ..., c(-2), d", "a(-3) b(0) ... c(-2) d(-1)"},
    };
    std::string body = "n INTEGER ::= 0\nm INTEGER ::= k\nk INTEGER ::= 7";
    for (size_t i = 0; i < std::size(rows); ++i)
        body += "\nT" + std::to_string(i) + " ::= ENUMERATED { " + rows[i].items + " }";
    const RunResult run = compileBody(body);
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].items);
        const std::string type = "T" + std::to_string(i);
        EXPECT_EQ(tree.named(type), rows[i].numbered);
        const bool extensible = std::string_view(rows[i].items).find("...") != std::string::npos;
        EXPECT_EQ(tree.flags(type), extensible ? "EXTENSIBLE" : "");
    }
    EXPECT_EQ(tree.bounds("T8"), "0..8");
    EXPECT_EQ(tree.bounds("T9"), "-3..0");
}

TEST(NamedNumbers, FaultsAreReportedAtTheItem) {
    const RunResult run = compileBody(R"(A ::= INTEGER { one(1),
  uno(1), eins(1), two(2), neg(-1) }
B ::= BIT STRING { zero(0), neg(-1) }
C ::= BIT STRING { a(1), b(one), c(0), d(minus) }
D ::= ENUMERATED { a, b(1), ..., c(5),
  d(3), e(4), f(5) }
E ::= ENUMERATED { a, ..., b(-2147483648), c(-2147483649) }
F ::= ENUMERATED { a(2147483647), ..., b(2147483646),
  c }
G ::= INTEGER { a(bits), b(true), c(one) }
H ::= ENUMERATED { a, ..., b(2), c, d(3) }
I ::= ENUMERATED { a, b, ..., c(0) }
one INTEGER ::= 1
minus INTEGER ::= -1
bits BIT STRING ::= '1'B
true BOOLEAN ::= TRUE)");
    const std::string invalid = "Invalid INTEGER value: ",
                      twice = "Non-distinct value in named number/bit list: ",
                      order = "Non-ascending value in extension addition: ";
    EXPECT_EQ(run.diagnostics("m"), listed({{3, twice + "uno"},
                                            {3, twice + "eins"},
                                            {4, invalid + "neg"},
                                            {5, invalid + "d"},
                                            {5, twice + "b"},
                                            {7, twice + "f"},
                                            {7, order + "d"},
                                            {7, order + "e"},
                                            {8, order + "c"},
                                            {10, invalid + "c"},
                                            {10, twice + "c"},
                                            {11, invalid + "a"},
                                            {11, invalid + "b"},
                                            {12, twice + "d"},
                                            {13, twice + "c"}}));
}

TEST(Recursion, ThatCannotEndIsReported) {
    constexpr struct {
        const char* body;
        const char* names; // of the components reported, "*" one without a name
    } rows[] = {
        {"T ::= SEQUENCE { a T }", "a"},
        {"T ::= SEQUENCE { a T OPTIONAL }", ""},
        {"T ::= SEQUENCE { a T DEFAULT {} }", ""},
        {"T ::= SEQUENCE { a SEQUENCE { b T } }", "b a"},
        {"T ::= SET { u U }\nU ::= SET { t T }", "u t"},
        {"T ::= SET { u U OPTIONAL }\nU ::= SET { t T }", ""},
        {"T ::= SEQUENCE { x NULL OPTIONAL, a T }", ""}, // visited before the way back
        {"T ::= SEQUENCE { a T, x NULL OPTIONAL }", "a"},
        {"T ::= SEQUENCE { u U, a T }\nU ::= SEQUENCE { v NULL }", "a"},
        {"T ::= SEQUENCE { u U, a T }\nU ::= CHOICE { v NULL, w BOOLEAN }", ""},
        {"A ::= SEQUENCE { r R, a A }\nB ::= SEQUENCE { w W, b B }\n"
         "R ::= SEQUENCE { w W, z NULL OPTIONAL }\nW ::= SEQUENCE { r R }",
         "w r"},
        {"T ::= SEQUENCE OF T", "*"},
        {"T ::= SEQUENCE SIZE (0..10) OF T", ""},
        {"T ::= SET SIZE (5 | 0) OF T", ""},
        {"T ::= SET SIZE (MIN..2) OF T", ""},
        {"T ::= SET SIZE (1..10) OF T", "*"},
        {"T ::= SET SIZE (0<..10) OF T", "*"},
        {"T ::= CHOICE { a [0] T }", "a"},
        {"T ::= CHOICE { a [0] T, ... }", "a"},
        {"T ::= CHOICE { a [0] T, b NULL }", ""},
        {"T ::= CHOICE { a [0] T, ..., b NULL }", ""},
        {"T ::= U\nU ::= SEQUENCE { t T }", "t"},
        {"T ::= P {NULL}\nP {X} ::= SEQUENCE { x X, t T OPTIONAL }", ""},
        {"T ::= P {T}\nP {X} ::= SEQUENCE { x X }", "x"},
        {"C ::= CLASS { &next C OPTIONAL }", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.body);
        const std::string found = compileBody(row.body).diagnostics("m");
        std::string names;
        std::istringstream lines(found);
        for (std::string line; std::getline(lines, line);) {
            const std::string text = "Invalid recursion in definition of type";
            const size_t at = line.find(text);
            ASSERT_NE(at, std::string::npos) << line;
            const std::string detail = line.substr(at + text.size());
            names += (names.empty() ? "" : " ") + (detail.empty() ? "*" : detail.substr(2));
        }
        EXPECT_EQ(names, row.names);
    }
}

TEST(Recursion, IsMarkedOnWhatLeadsToItself) {
    const RunResult run = compileBody(R"(A ::= SEQUENCE { a B OPTIONAL, b NULL }
B ::= C
C ::= SEQUENCE { c A, d D }
D ::= SEQUENCE { e NULL }
E ::= SEQUENCE { a A }
F ::= CHOICE { g SEQUENCE SIZE (0..9) OF SEQUENCE { f F }, h NULL })");
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    std::string marked;
    for (const char* type : {"A", "A.a", "A.b", "B", "C", "C.c", "C.d", "D", "E", "E.a", "F", "F.g",
                             "F.g.*", "F.g.*.f", "F.h"})
        if (tree.flags(type).find("RECURSIVE") != std::string::npos)
            marked += std::string(type) + ' ';
    EXPECT_EQ(marked, "A A.a C C.c F F.g F.g.* F.g.*.f "); // B is passed by
}

TEST(Ignorable, IsWhatSkippedAndLimitedTypesReferTo) {
    const RunResult run = compileBody(R"(Top ::= SEQUENCE { a [0] Sub --$SKIP--, b [1] Kept,
    c [2] Kept2 --$SKIP=ERROR--, d [3] Limited, e [4] Strict, ..., [[ f [5] Group --$SKIP-- ]],
    g [6] x < Pick --$SKIP--, h [7] C.&id --$SKIP-- }
Sub ::= SEQUENCE { s Inner, t SET OF Elem, ..., [[ u NULL ]] }
Inner ::= BOOLEAN
Elem ::= CHOICE { v Inner, w Sub }
Kept ::= SEQUENCE { k Deep --$SKIP-- }
Kept2 ::= SEQUENCE { k NULL }
Deep ::= NULL
Limited ::= SEQUENCE SIZE (0..100) --$SIZE-LIMIT=50-- OF Part
Part ::= SEQUENCE { p NULL }
Strict ::= SEQUENCE SIZE (0..100) --$SIZE-LIMIT=50:ERROR-- OF Kept2
Group ::= NULL
Pick ::= CHOICE { x Picked, y BOOLEAN }
Picked ::= NULL
C ::= CLASS { &id Ident }
Ident ::= INTEGER)");
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    const auto isMarked = [&](const char* path) {
        return tree.flags(path).find("IGNORABLE") != std::string::npos;
    };
    for (const char* path :
         {"Top.a",  "Sub",   "Sub.s",  "Inner",  "Sub.t",     "Sub.t.*", "Elem",   "Elem.v",
          "Elem.w", "Sub.u", "Kept.k", "Deep",   "Limited.*", "Part",    "Part.p", "Top.f",
          "Group",  "Top.g", "Pick.x", "Picked", "Top.h",     "Ident"})
        EXPECT_TRUE(isMarked(path)) << path;
    for (const char* path : {"Top", "Top.b", "Kept", "Top.c", "Kept2", "Kept2.k", "Top.d",
                             "Limited", "Strict", "Strict.*", "Pick", "Pick.y", "C"})
        EXPECT_FALSE(isMarked(path)) << path;
}

TEST(Recursion, IsReportedAsTheOptionAsks) {
    const std::string body = "A ::= SEQUENCE { b B OPTIONAL }\nB ::= SET OF A\nN ::= SET OF NULL\n"
                             "P{T} ::= SEQUENCE { p P{T} OPTIONAL, t T }\nR ::= SEQUENCE { r R }";
    const std::string text = "$Recursion in definition of type: ";
    const Finding invalid = {6, "Invalid recursion in definition of type: r"};
    EXPECT_EQ(compileBody(body).diagnostics("m"), listed({invalid}));
    EXPECT_EQ(
        compileBody(body, {"-RECURSION=WARNING"}).diagnostics("m"),
        listed({{2, "W " + text + "A"}, {3, "W " + text + "B"}, invalid, {6, "W " + text + "R"}}));
    EXPECT_EQ(compileBody(body, {"-RECURSION=ERROR"}).diagnostics("m"),
              listed({{2, text + "A"}, {3, text + "B"}, invalid, {6, text + "R"}}));
}

} // namespace
} // namespace orvo::test
