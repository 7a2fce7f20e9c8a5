#include <gtest/gtest.h>

#include "support/cases.h"

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
    expectFacts(tree, R"(
kind All.a: BOOLEAN ; kind All.c: Colour ; kind All.h: SEQUENCE OF ; kind All.h.*: Colour
kind All.i.*: IA5String ; kind All.j: CHOICE ; kind All.m: OBJECT IDENTIFIER ; kind All.n: EMBEDDED PDV
kind All.o: CHARACTER STRING ; kind All.p: EXTERNAL ; kind All.s: GeneralizedTime
kind All.t: Selection type ; kind All.u: TeletexString ; kind All.y: InstanceOfType
tags All.b: [1] IMPLICIT ; tags All.j: [9] EXPLICIT ; tags All.w: [APPLICATION 20] EXPLICIT [21] IMPLICIT
named All.b: one(1) minus(-2) ; named All.e: x(0) y(7) ; presence All.c: OPTIONAL
components Pick: k ... z ; presence More.@1: COMPONENTS OF
)");
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
    expectFacts(tree, R"(
components A: ... ; components B: a ... ; components C: ... a ; components D: a ...
components D.a: b ... ; named E: a(0) b(5) ... ; named F: a(0) ... b(1)
)");
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

TEST(TreeTexts, ReferencesParametersAndFieldsReadAsWritten) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS IMPLICIT TAGS ::= BEGIN\n"
                           "IMPORTS X FROM N;\n"
                           "I ::= INTEGER { one(1), two(2) } (0..5 | 7, ...)\n"
                           "P {INTEGER : n, Type} ::= SEQUENCE { f Type, g INTEGER (1..n) }\n"
                           "U ::= P {5, BOOLEAN}\n"
                           "C ::= CLASS { &id INTEGER UNIQUE, &Type, &val &Type OPTIONAL }\n"
                           "      WITH SYNTAX { &Type ID &id [VALUE &val] }\n"
                           "Os C ::= { { BOOLEAN ID 1 } | { INTEGER ID 2 VALUE 7 }, ... }\n"
                           "S ::= SEQUENCE { id C.&id ({Os}), v C.&Type ({Os}{@id}),\n"
                           "                 l SEQUENCE SIZE (1..MAX) OF I OPTIONAL, x X }\n"
                           "O ::= TYPE-IDENTIFIER.&Type\n"
                           "END\n"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN\nX ::= [1] OCTET STRING (SIZE (4))\nEND\n"}});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.types(), "I P U C Os S O");
    expectFacts(tree, R"(
named I: one(1) two(2) ; constraint I: (0..5 | 7, ...) ; kind U: P {5, BOOLEAN} ; components U: f g
actualKind U.f: BOOLEAN ; constraint U.g: (1..n) ; components C: id Type val ; kind C.val: &Type
constraint Os: ({Type BOOLEAN, id 1} | {Type INTEGER, id 2, val 7}, ...)
kind S.id: C.&id ; actualKind S.id: INTEGER ; constraint S.v: ({Os} {@id})
constraint S.l: (SIZE (1..MAX)) ; presence S.l: OPTIONAL ; kind S.x: N.X ; constraint S.x: 
finalTags S.x: [1] [UNIVERSAL 4] ; kind O: TYPE-IDENTIFIER.&Type ; actualKind O: Open type
)");
}

/// The component stands in a module that M names nowhere: its number must not be made up after the
/// module nodes were written.
TEST(TreeTexts, StepsThroughComponentsOfAThirdModuleKeepTheirNames) {
    const RunResult run = compile(
        {{"aa.asn", "AA DEFINITIONS ::= BEGIN\n"
                    "IMPORTS T2 FROM BB Os, CL FROM DD;\n"
                    "T ::= SEQUENCE { COMPONENTS OF T2, v CL.&Type ({Os}{@id}),\n"
                    "                 i INTEGER, w ANY DEFINED BY i }\n"
                    "END\n"},
         {"bb.asn", "BB DEFINITIONS ::= BEGIN\nIMPORTS T3 FROM CC;\n"
                    "T2 ::= SEQUENCE { COMPONENTS OF T3 }\nEND\n"},
         {"cc.asn", "CC DEFINITIONS ::= BEGIN\nIMPORTS Os, CL FROM DD;\n"
                    "T3 ::= SEQUENCE { id CL.&id ({Os}) }\nEND\n"},
         {"dd.asn", "DD DEFINITIONS ::= BEGIN\n"
                    "CL ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { &Type ID &id }\n"
                    "Os CL ::= { { BOOLEAN ID 1 } }\nEND\n"}});
    ASSERT_EQ(run.status, 0) << run.diagnostics("aa");
    const TreeFacts tree(run, "aa");
    expectFacts(tree, "components T: COMPONENTS-OF v i w ; constraint T.v: ({DD.Os} {@id})\n"
                      "kind T.w: ANY DEFINED BY i");
}

} // namespace
} // namespace orvo::test
