#include <gtest/gtest.h>

#include <regex>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(NamedNumbers, ItemsWithoutNumberGetTheFirstFreeOne) {
    expectRows(R"(
a, b(0), c } --= a(1) b(0) c(2) 0..2
a(1), b, c(0) } --= a(1) b(2) c(0) 0..2
a, b, c(1), d(3), e } --= a(0) b(2) c(1) d(3) e(4) 0..4
a, ..., b(5), c } --= a(0) ... b(5) c(6) 0..6 EXTENSIBLE
a, ..., b, c(1000) } --= a(0) ... b(1) c(1000) 0..1000 EXTENSIBLE
a, b(1), ..., c, d(7), e } --= a(0) b(1) ... c(2) d(7) e(8) 0..8 EXTENSIBLE
a(5), ..., b(4), c } --= a(5) ... b(4) c(6) 4..6 EXTENSIBLE
a(4294967296), b, ..., c(4294967297), d } --= a(4294967296) b(0) ... c(4294967297) d(4294967298) 0..4294967298 EXTENSIBLE
a(n), b, ..., c(m), d } --= a(n) b(1) ... c(m) d(8) 0..8 EXTENSIBLE -- n is 0, m is 7
a(2147483646), ..., b(2147483645), c } --= a(2147483646) ... b(2147483645) c(2147483647) 2147483645..2147483647 EXTENSIBLE
a(-3), b, ..., c(-2), d } --= a(-3) b(0) ... c(-2) d(-1) -3..0 EXTENSIBLE
)",
               {.head = "n INTEGER ::= 0 m INTEGER ::= k k INTEGER ::= 7",
                .before = "T ::= ENUMERATED { "},
               [](const TreeFacts& tree) {
                   const std::string flags = tree.flags("T");
                   return tree.named("T") + " " + tree.bounds("T") + (flags.empty() ? "" : " ") +
                          flags;
               });
}

TEST(NamedNumbers, FaultsAreReportedAtTheItem) {
    expectMarked(R"(
A ::= INTEGER { one(1),
  uno(1), eins(1), two(2), neg(-1) } --! Non-distinct value in named number/bit list: uno ; Non-distinct value in named number/bit list: eins
B ::= BIT STRING { zero(0), neg(-1) } --! Invalid INTEGER value: neg
C ::= BIT STRING { a(1), b(one), c(0), d(minus) } --! Invalid INTEGER value: d ; Non-distinct value in named number/bit list: b
D ::= ENUMERATED { a, b(1), ..., c(5),
  d(3), e(4), f(5) } --! Non-distinct value in named number/bit list: f ; Non-ascending value in extension addition: d ; Non-ascending value in extension addition: e
E ::= ENUMERATED { a, ..., b(-2147483648), c(-2147483649) } --! Non-ascending value in extension addition: c
F ::= ENUMERATED { a(2147483647), ..., b(2147483646),
  c } --! Invalid INTEGER value: c ; Non-distinct value in named number/bit list: c
G ::= INTEGER { a(bits), b(true), c(one) } --! Invalid INTEGER value: a ; Invalid INTEGER value: b
H ::= ENUMERATED { a, ..., b(2), c, d(3) } --! Non-distinct value in named number/bit list: d
I ::= ENUMERATED { a, b, ..., c(0) } --! Non-distinct value in named number/bit list: c
one INTEGER ::= 1 minus INTEGER ::= -1 bits BIT STRING ::= '1'B true BOOLEAN ::= TRUE
)");
}

TEST(Recursion, ThatCannotEndIsReported) {
    std::string rows = R"(
T ::= SEQUENCE { a T } --! R: a
T ::= SEQUENCE { a T OPTIONAL } U ::= SEQUENCE { a U DEFAULT {} }
T ::= SEQUENCE { a SEQUENCE { b T } } --! R: b ; R: a
T ::= SET { u U }\nU ::= SET { t T } --! R: u ; 3: R: t
T ::= SET { u U OPTIONAL } U ::= SET { t T }
T ::= SEQUENCE { x NULL OPTIONAL, a T } -- visited before the way back
T ::= SEQUENCE { a T, x NULL OPTIONAL } --! R: a
T ::= SEQUENCE { u U, a T } U ::= SEQUENCE { v NULL } --! R: a
T ::= SEQUENCE { u U, a T } U ::= CHOICE { v NULL, w BOOLEAN }
A ::= SEQUENCE { r R, a A } B ::= SEQUENCE { w W, b B }\nR ::= SEQUENCE { w W, z NULL OPTIONAL }\nW ::= SEQUENCE { r R } --! 3: R: w ; 4: R: r
T ::= SEQUENCE OF T --! R
T ::= SEQUENCE SIZE (0..10) OF T U ::= SET SIZE (5 | 0) OF U V ::= SET SIZE (MIN..2) OF V
T ::= SET SIZE (1..10) OF T --! R
T ::= SET SIZE (0<..10) OF T --! R
T ::= CHOICE { a [0] T } --! R: a
T ::= CHOICE { a [0] T, ... } --! R: a
T ::= CHOICE { a [0] T, b NULL } U ::= CHOICE { a [0] U, ..., b NULL }
T ::= U\nU ::= SEQUENCE { t T } --! 3: R: t
T ::= P {NULL} P {X} ::= SEQUENCE { x X, t T OPTIONAL }
T ::= P {T} P {X} ::= SEQUENCE { x X } --! R: x
C ::= CLASS { &next C OPTIONAL }
)";
    rows = std::regex_replace(rows, std::regex("R(: [a-z]+)?(?= ;|\n)"),
                              "Invalid recursion in definition of type$1");
    expectRows(rows);
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
    const std::string body = R"(
A ::= SEQUENCE { b B OPTIONAL } --! W $Recursion in definition of type: A
B ::= SET OF A N ::= SET OF NULL --! W $Recursion in definition of type: B
P{T} ::= SEQUENCE { p P{T} OPTIONAL, t T }
R ::= SEQUENCE { r R } --! Invalid recursion in definition of type: r ; W $Recursion in definition of type: R
)";
    expectMarked(std::regex_replace(body, std::regex(" (--!|;) W .*"), ""));
    expectMarked(body, {{"-RECURSION=WARNING"}});
    expectMarked(std::regex_replace(body, std::regex("W [$]"), "$$"), {{"-RECURSION=ERROR"}});
}

} // namespace
} // namespace orvo::test
