#include <gtest/gtest.h>

#include <regex>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(Tags, HaveAClassAndANumberThatMayBeWritten) {
    const std::string range = " --! Tag number shall be INTEGER and in range 0..2097151";
    expectRows(R"(
T ::= [UNIVERSAL 5] INTEGER --! Tag class shall not be UNIVERSAL
T ::= SEQUENCE { a [1] [UNIVERSAL 5] INTEGER } --! Tag class shall not be UNIVERSAL
T ::= [0] NULL U ::= [2097151] NULL V ::= [APPLICATION n] NULL n INTEGER ::= m m INTEGER ::= 2097151
T ::= [1] C U ::= C C ::= CLASS { &id INTEGER } --! Object class can not be tagged/subtyped/entry
T ::= [2] C2 C ::= CLASS { &id INTEGER } C2 ::= C --! Object class can not be tagged/subtyped/entry
)");
    for (const char* row :
         {"T ::= [2097152] NULL", "T ::= [99999999999] NULL", "T ::= [n] NULL n INTEGER ::= -1",
          "T ::= [n] NULL n INTEGER ::= m m INTEGER ::= 2097152",
          "T ::= [n] NULL n INTEGER ::= 4294967296", "T ::= [n] NULL n BOOLEAN ::= TRUE"})
        expectRows(row + range);
    expectRows("T ::= [UNIVERSAL 5] INTEGER", {{"-ALLOW"}});
}

TEST(Tags, ImplicitInFrontOfWhatHasNoTagIsReported) {
    expectMarked(R"(
A ::= [0] IMPLICIT CHOICE { a NULL } --! CHOICE may not be tagged with IMPLICIT
B ::= [0] IMPLICIT U U ::= V V ::= CHOICE { a NULL } --! CHOICE may not be tagged with IMPLICIT
C ::= [2] IMPLICIT D D ::= [1] CHOICE { a NULL } E ::= [2] IMPLICIT D
F ::= [0] IMPLICIT ANY --! ANY may not be tagged with IMPLICIT
G ::= SEQUENCE OF [1] IMPLICIT H H ::= ANY --! ANY may not be tagged with IMPLICIT
I ::= [0] IMPLICIT a < J J ::= CHOICE { a Y, b [5] Y, c NULL } Y ::= CHOICE { d BOOLEAN } --! CHOICE may not be tagged with IMPLICIT
W ::= [0] IMPLICIT b < J X ::= [0] IMPLICIT c < J
K ::= CLASS { &Type, &id INTEGER, &c CHOICE { a NULL }, &v &Type }
L ::= SEQUENCE { a [0] IMPLICIT K.&Type, --! Open type may not be tagged with IMPLICIT
  b [1] IMPLICIT K.&id,
  c [2] IMPLICIT K.&c, --! CHOICE may not be tagged with IMPLICIT
  d [3] IMPLICIT K.&v, e [4] EXPLICIT K.&Type } --! Open type may not be tagged with IMPLICIT
N ::= [1] IMPLICIT o.&Type O ::= [1] IMPLICIT p.&Type --! CHOICE may not be tagged with IMPLICIT
Q ::= CLASS { &Type } o Q ::= { &Type CHOICE { a NULL } } p Q ::= { &Type NULL }
)");
}

TEST(Tags, ModeFollowsTheTypeWhereTheModuleLeavesItOpen) {
    const auto tagsOf = [](const char* defaults) {
        const RunResult run = expectMarked(R"(
T ::= [3] Choice U ::= [3] Int V ::= [3] IMPLICIT [4] Choice W ::= [3] EXPLICIT [4] Int
S ::= SEQUENCE { a [0] Any, b [1] M.Choice, c [2] x < Choice2, d [3] y < Choice2,
    e [4] C.&Type, f [5] C.&id, g [6] TYPE-IDENTIFIER.&Type, h [7] TYPE-IDENTIFIER.&id,
    i [8] Tagged, j [9] o.&Type, k [10] ABSTRACT-SYNTAX.&Type, l [11] ABSTRACT-SYNTAX.&property,
    m [12] TYPE-IDENTIFIER.&Type({Set}) }
Set TYPE-IDENTIFIER ::= { { Int IDENTIFIED BY { 1 2 } } } Choice ::= CHOICE { n NULL }
Choice2 ::= CHOICE { x Choice, y BOOLEAN } Tagged ::= [0] Choice Int ::= INTEGER Any ::= ANY
C ::= CLASS { &Type, &id INTEGER } o C ::= { &Type Choice, &id 5 }
)",
                                           {.defaults = defaults});
        const TreeFacts tree(run, "m");
        std::string all;
        for (const char* path : {"T", "U", "V", "W", "S.a", "S.b", "S.c", "S.d", "S.e", "S.f",
                                 "S.g", "S.h", "S.i", "S.j", "S.k", "S.l", "S.m"}) {
            const std::string tags = tree.tags(path);
            for (size_t at = 0; (at = tags.find("] ", at)) != std::string::npos; at += 2)
                all += tags[at + 2];
            all += '/';
        }
        return all;
    };
    // Implicit, explicit; where there are two, both.
    EXPECT_EQ(tagsOf("IMPLICIT TAGS "), "E/I/IE/EI/E/E/E/I/E/I/E/I/I/E/E/I/E/");
    EXPECT_EQ(tagsOf(""), "E/E/IE/EE/E/E/E/E/E/E/E/E/E/E/E/E/E/");
}

TEST(Tags, UsageRulesAreCheckedOnDemand) {
    const std::string body = R"(
A ::= [APPLICATION 3] NULL
B ::= [APPLICATION 3] NULL --! APPLICATION number already in use: 3
C ::= SEQUENCE { a [PRIVATE 3] NULL,
  b [PRIVATE n] NULL } n INTEGER ::= 3 --! PRIVATE number already in use: 3
D ::= [1] NULL --! W $Tag usage not allowed
E ::= [PRIVATE 4] [1] NULL G ::= [PRIVATE 6] A
F ::= [PRIVATE 5] IMPLICIT A --! W $Tag usage not allowed
)";
    expectMarked(std::regex_replace(body, std::regex(" --!.*"), ""), {{"-TAGUSAGE=IGNORE"}});
    expectMarked(body, {{"-TAGUSAGE=WARNING"}});
    expectMarked(std::regex_replace(body, std::regex("W \\$"), "$$"), {{"-TAGUSAGE=ERROR"}});
    expectRows("IMPORTS T FROM N; U ::= [APPLICATION 3] T",
               {.options = {"-TAGUSAGE=ERROR"},
                .others = {{"n.asn", "N DEFINITIONS ::= BEGIN T ::= [APPLICATION 3] NULL END\n"}}});
}

TEST(Tags, ExplicitTaggingIsReportedOnDemand) {
    const std::string body = R"(
A ::= [1] EXPLICIT NULL --! W $Explicit tagging not allowed
B ::= [1] CHOICE { a NULL }
C ::= [1] EXPLICIT [2] IMPLICIT NULL D ::= [1] E --! W $Explicit tagging not allowed
E ::= CHOICE { a NULL } F ::= [1] NULL
)";
    expectMarked(std::regex_replace(body, std::regex(" --!.*"), ""),
                 {{"-EXPLICIT=0"}, "IMPLICIT TAGS "});
    expectMarked(body, {{"-EXPLICIT=1"}, "IMPLICIT TAGS "});
    EXPECT_EQ(compileBody("A ::= [1] EXPLICIT NULL\nB ::= [1] NULL C ::= [1] IMPLICIT NULL",
                          {"-EXPLICIT=2"})
                  .diagnostics("m"),
              listed({{1, "W $Explicit tagging not allowed"},
                      {2, "$Explicit tagging not allowed"},
                      {3, "$Explicit tagging not allowed"}}));
}

TEST(Tags, OfComponentsDifferWhereADecoderNeedsIt) {
    expectRows(R"(
T ::= SEQUENCE { a [0] NULL OPTIONAL, b [0] NULL } --! Non-distinct tag: [0]
T ::= SEQUENCE { a [0] NULL, b [0] NULL }
T ::= SET { a [0] NULL, b [0] NULL } --! Non-distinct tag: [0]
T ::= CHOICE { a INTEGER, b INTEGER, c [APPLICATION 2] NULL, d [PRIVATE 2] NULL, e [2] NULL } --! Non-distinct tag: [UNIVERSAL 2]
T ::= CHOICE { a [PRIVATE 2] BOOLEAN, b INTEGER, c X } X ::= [PRIVATE 2] NULL --! Non-distinct tag: [PRIVATE 2]
T ::= SEQUENCE { a NULL OPTIONAL, b INTEGER, c NULL OPTIONAL, d REAL DEFAULT 0 }
T ::= SEQUENCE { a NULL OPTIONAL, b REAL DEFAULT 0, c NULL } --! Non-distinct tag: [UNIVERSAL 5]
T ::= SEQUENCE { a NULL OPTIONAL, ..., [[ b NULL OPTIONAL ]] } --! Non-distinct tag: [UNIVERSAL 5]
T ::= SET { a [n] NULL, b [2] BOOLEAN, c [m] NULL } n INTEGER ::= m m INTEGER ::= 2 --! Non-distinct tag: [2] ; Non-distinct tag: [2]
T ::= CHOICE { a [n] NULL, b [m] NULL } m INTEGER ::= 2 n INTEGER ::= 3
T ::= SET { a BOOLEAN, COMPONENTS OF U, b [2] NULL } U ::= SET { c [1] NULL, d [2] NULL, ..., e BOOLEAN } --! Non-distinct tag: [2]
T ::= SET { a C.&id, b C.&Tagged, c C.&b } C ::= CLASS { &id INTEGER, &Tagged [2] INTEGER OPTIONAL, &b BOOLEAN }
T ::= SET { a C.&id, b INTEGER } C ::= CLASS { &id INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
T ::= CHOICE { a b < T2, c < T2, d BOOLEAN } T2 ::= CHOICE { b BOOLEAN, c NULL } --! Non-distinct tag: [UNIVERSAL 1]
)");
}

TEST(Tags, OfUntaggedChoicesAreThoseOfAllAlternatives) {
    expectRows(R"(
T ::= SET { c C, d [2] NULL } --! Non-distinct tag: [2]
T ::= SET { d [2] NULL, c C } --! Non-distinct tag: [2]
T ::= SET { c C, d [3] NULL, e INTEGER }
T ::= SET { c [4] C, d [2] NULL }
T ::= SEQUENCE { c C OPTIONAL, d BOOLEAN } --! Non-distinct tag: [UNIVERSAL 1]
T ::= SEQUENCE { c C, d BOOLEAN }
T ::= CHOICE { c C, d y < C } --! Non-distinct tag: [1]
T ::= CHOICE { a BOOLEAN, b [0] NULL, c C } --! Non-distinct tag: [0]
T ::= SET { a INTEGER, ..., b D, d [5] D }
)",
               {.head = "C ::= CHOICE { x [0] NULL, y D } "
                        "D ::= CHOICE { z [1] NULL, w BOOLEAN, ..., v [2] NULL }"});
    expectMarked(R"(
T ::= CHOICE { a T, b NULL } V ::= SET { t T, n INTEGER } --! Indeterminate tag: a
U ::= CHOICE { a W, b NULL } --! Indeterminate tag: a
W ::= CHOICE { c U, d BOOLEAN } --! Indeterminate tag: c
X ::= CHOICE { a [0] X, b NULL, c SEQUENCE { d X } }
)");
}

TEST(Tags, ThatCannotBeToldAreReportedWhereTheyMustDiffer) {
    expectRows(R"(
SET { a C.&Type, b INTEGER } --! Indeterminate tag: a
SET { b INTEGER, a C.&Type } --! Indeterminate tag: a
SET { a [0] C.&Type, b C.&id }
CHOICE { a C.&Type } --! Indeterminate tag: a
SEQUENCE { b INTEGER, a C.&Type }
SEQUENCE { a C.&Type, b INTEGER }
SEQUENCE { a C.&Type OPTIONAL, b INTEGER } --! Indeterminate tag: a
SEQUENCE { b INTEGER, a C.&Type OPTIONAL }
SEQUENCE { b INTEGER, a C.&Type OPTIONAL, ... }
SEQUENCE { a U OPTIONAL, b INTEGER } U ::= C.&Type --! Indeterminate tag: a
SEQUENCE { a CHOICE { b [0] C.&Type } OPTIONAL, c INTEGER }
SEQUENCE OF C.&Type
)",
               {.head = "C ::= CLASS { &Type, &id INTEGER }", .before = "T ::= "});
}

TEST(Tags, AreGivenAutomaticallyWhereNoneIsWritten) {
    const TreeFacts tree(expectMarked(R"(
A ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL, COMPONENTS OF B, ..., [[ c INTEGER ]], d E }
B ::= SEQUENCE { x [5] INTEGER, y INTEGER, ..., z INTEGER }
D ::= SET { a ANY, b ANY, c C.&Type } --! W ANY without DEFINED BY is deprecated ; W ANY without DEFINED BY is deprecated
C ::= CLASS { &Type, &id INTEGER }
E ::= CHOICE { a INTEGER, b F, c F } F ::= CHOICE { a [0] INTEGER, b BOOLEAN }
G ::= SEQUENCE { a INTEGER, ..., [[ b [0] INTEGER ]] } H ::= SET OF INTEGER
)",
                                      automatic),
                         "m");
    expectFacts(R"(
A: OPTIONALS MANDATORY EXTENSIBLE AUTOMATIC_TAGS ; B: OPTIONALS MANDATORY EXTENSIBLE
D: MANDATORY AUTOMATIC_TAGS ; E: AUTOMATIC_TAGS ; F:  ; G: OPTIONALS MANDATORY EXTENSIBLE
C: MANDATORY ; H: )",
                [&](const std::string& type) { return tree.flags(type); });
    // x and y take 2 and 3
    expectFacts("A.b: [1] ; A.c: [4] ; A.d: [5] ...",
                [&](const std::string& path) { return tree.finalTags(path); });
    expectRows(
        "T ::= SET { a [0] INTEGER, b INTEGER, c INTEGER } --! Non-distinct tag: [UNIVERSAL 2]",
        automatic);
}

} // namespace
} // namespace orvo::test
