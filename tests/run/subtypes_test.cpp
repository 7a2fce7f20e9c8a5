// Constraints checked against the types that they restrict: every finding at its line, beside legal
// neighbours that differ from it in one point.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(Subtypes, OperatorsAndRangesReportFromTheInsideOut) {
    expectMarked(R"(
A1 ::= INTEGER (5..1) --! Invalid range constraint(s)
A2 ::= INTEGER (1..1) A5 ::= INTEGER (MIN<..<MAX) v BOOLEAN ::= TRUE
A3 ::= INTEGER (1<..1) --! Invalid range constraint(s)
A6 ::= INTEGER (1..v) --! Invalid range constraint(s)
A7 ::= REAL ({mantissa 1, base 10, exponent 0}..{mantissa 1, base 10, exponent 1})
A8 ::= REAL ({mantissa 1, base 10, exponent 1}..{mantissa 1, base 10, exponent 0}) --! Invalid range constraint(s)
B1 ::= IA5String ("b".."a") --! Invalid range constraint(s)
A9 ::= IA5String ("a".."b") B2 ::= INTEGER (1..10 | 20..30)
B3 ::= INTEGER (1..10 | 30..20 | 9..8) --! Invalid range constraint(s) ; Invalid union constraint(s)
B4 ::= INTEGER (1..10 ^ 30..20) --! Invalid range constraint(s) ; Invalid INTERSECTION constraint(s)
B5 ::= INTEGER (1 | (1 ^ (5..3))) --! Invalid range constraint(s) ; Invalid INTERSECTION constraint(s) ; Invalid union constraint(s)
B6 ::= INTEGER (1..5 EXCEPT 3)
B7 ::= INTEGER (9..7 EXCEPT 6..5) --! Invalid range constraint(s) ; Invalid EXCEPT constraint(s)
B8 ::= INTEGER (1..5 EXCEPT 9..7) --! Invalid range constraint(s) ; Invalid EXCEPT constraint(s)
B9 ::= INTEGER (ALL EXCEPT 9..7) --! Invalid range constraint(s) ; Invalid ALL EXPECT constraint(s)
C1 ::= INTEGER (ALL EXCEPT 7) C2 ::= INTEGER (1..9)(2..8)(MIN..5)(3)
C3 ::= INTEGER (1..5)(3..2) --! Invalid range constraint(s) ; Invalid catenated constraint(s)
C4 ::= INTEGER (5..1)(3..2) --! Invalid range constraint(s) ; Invalid catenated constraint(s)
C5 ::= INTEGER (...) --! Element set spec is invalid: { ... } is allowed only in ObjectSets.
P1 ::= INTEGER (0..100) P2 ::= P1 (5..200) p2 P2 ::= 100
p3 P2 ::= 101 --! Value out of range constraint(s)
C6 ::= INTEGER (1..5, ...) C7 ::= INTEGER
  (1..5 | --! Invalid union constraint(s)
   7..6) --! Invalid range constraint(s)
)",
                 automatic);
}

TEST(Subtypes, ValuesAndContainedTypesAreOfTheParent) {
    expectMarked(R"(
A ::= INTEGER (0..9) A1 ::= A (5 | 9)
A2 ::= A (5 | 10) --! Value out of range constraint(s) ; Invalid single value constraint(s) ; Invalid union constraint(s)
A3 ::= A (ALL EXCEPT 10) --! Value out of range constraint(s) ; Invalid single value constraint(s) ; Invalid ALL EXPECT constraint(s)
A4 ::= INTEGER (0..9)(ALL EXCEPT 3)
A5 ::= INTEGER (0..9)(10) --! Value out of range constraint(s) ; Value out of catenated constraint(s) ; Invalid single value constraint(s) ; Invalid catenated constraint(s)
A6 ::= INTEGER (0..9 ^ 10) A7 ::= A1 (9)
A8 ::= A1 (7) --! Value out of union constraint(s) ; Invalid single value constraint(s)
A9 ::= INTEGER (v) --! Invalid INTEGER value ; Invalid single value constraint(s)
v BOOLEAN ::= TRUE E ::= ENUMERATED { a, b, c } E1 ::= E (a | b)
E2 ::= E1 (c) --! Value out of union constraint(s) ; Invalid single value constraint(s)
I1 ::= INTEGER (A | 12)
I2 ::= INTEGER (INCLUDES BOOLEAN) --! Invalid INCLUDES constraint(s)
I3 ::= INTEGER (1 | E) --! Invalid INCLUDES constraint(s) ; Invalid union constraint(s)
I4 ::= VisibleString (IA5String)
I5 ::= INTEGER (INTEGER (3..1)) --! Invalid range constraint(s) ; Invalid INCLUDES constraint(s)
L ::= SEQUENCE OF A1 L1 ::= L (WITH COMPONENT (9))
L2 ::= L (WITH COMPONENT (7)) --! Value out of union constraint(s) ; Invalid single value constraint(s) ; Invalid WITH COMPONENT constraint(s)
L3 ::= SET OF L1
L4 ::= L3 (WITH COMPONENT (WITH COMPONENT (9..5))) --! Invalid range constraint(s) ; Invalid WITH COMPONENT constraint(s) ; Invalid WITH COMPONENT constraint(s)
)",
                 automatic);
}

TEST(Subtypes, SizesAndAlphabets) {
    expectMarked(R"(
A1 ::= OCTET STRING (SIZE (2..2)) A4 ::= SET SIZE (0..MAX) OF NULL
A2 ::= OCTET STRING (SIZE (2..1)) --! Invalid range constraint(s) ; Invalid size constraint(s)
A3 ::= SEQUENCE (SIZE (1 | 3..2)) OF NULL --! Invalid range constraint(s) ; Invalid union constraint(s) ; Invalid size constraint(s)
A5 ::= BIT STRING (SIZE (v)) --! Invalid INTEGER value ; Invalid single value constraint(s) ; Invalid size constraint(s)
v BOOLEAN ::= TRUE B1 ::= IA5String (FROM ("a".."z"))
B2 ::= IA5String (FROM ("ab".."z")) --! Invalid permitted alphabet constraint(s)
B3 ::= IA5String (FROM ("a".."yz")) --! Invalid permitted alphabet constraint(s)
B4 ::= IA5String (FROM ("ab" | "d"..MAX, ...))
B5 ::= IA5String (FROM ("z".."a" | "b")) --! Invalid range constraint(s) ; Invalid union constraint(s) ; Invalid permitted alphabet constraint(s)
B6 ::= IA5String (SIZE (1..3)) (FROM ("abcdef"))
B7 ::= IA5String (FROM (SIZE (1))) --! Invalid permitted alphabet constraint(s)
B8 ::= IA5String (FROM ("a" | FROM ("b"))) --! Invalid permitted alphabet constraint(s)
B9 ::= IA5String (FROM (B1 EXCEPT "q")) C1 ::= ObjectDescriptor (FROM ("abc"))
C2 ::= UniversalString (FROM ("a".."b"))
C3 ::= NumericString (FROM ("1a")) --! Value out of permitted alphabet constraint(s) ; Invalid single value constraint(s) ; Invalid permitted alphabet constraint(s)
)",
                 automatic);
}

TEST(Subtypes, ComponentsAreRestrictedInOrderAndOnce) {
    expectMarked(R"(
S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER (1..5), COMPONENTS OF O, c-d C }
O ::= SEQUENCE { x NULL OPTIONAL, y INTEGER DEFAULT 3, ... } C ::= CHOICE { p INTEGER, q NULL }
S1 ::= S (WITH COMPONENTS { ..., a PRESENT, b (1), x ABSENT, y OPTIONAL, c-d })
S2 ::= S (WITH COMPONENTS { ..., b PRESENT }) --! Invalid presence constraint: component 'b' ; Invalid WITH COMPONENTS constraint(s)
S3 ::= S (WITH COMPONENTS { ..., b (1..5), a (1..5) }) --! Constraints must appear in order ; Invalid WITH COMPONENTS constraint(s)
S4 ::= S (WITH COMPONENTS { ..., y PRESENT, x PRESENT }) --! Constraints must appear in order ; Invalid WITH COMPONENTS constraint(s)
S5 ::= S (WITH COMPONENTS { a, c-d ABSENT, c-d }) --! Invalid presence constraint: component 'c_d' ; Constraints must appear in order ; Duplicate constraint: component 'c_d' ; Invalid WITH COMPONENTS constraint(s)
S6 ::= S (WITH COMPONENTS { ..., b (7) }) --! Value out of range constraint(s) ; Invalid single value constraint(s) ; Invalid WITH COMPONENTS constraint(s)
T ::= SET { a INTEGER OPTIONAL, b INTEGER } T1 ::= T (WITH COMPONENTS { b (1..5), a (1..5) ABSENT })
T2 ::= T (WITH COMPONENTS { b, a ABSENT, b PRESENT }) --! Invalid presence constraint: component 'b' ; Duplicate constraint: component 'b' ; Invalid WITH COMPONENTS constraint(s)
C1 ::= C (WITH COMPONENTS { q ABSENT, p (3) PRESENT })
C2 ::= C (WITH COMPONENTS { ..., p OPTIONAL }) --! Invalid presence constraint: component 'p' ; Invalid WITH COMPONENTS constraint(s)
S7 ::= S (WITH COMPONENTS { ..., c-d (WITH COMPONENTS { p (3..1) }) }) --! Invalid range constraint(s) ; Invalid WITH COMPONENTS constraint(s) ; Invalid WITH COMPONENTS constraint(s)
X1 ::= EXTERNAL (WITH COMPONENTS { ..., data-value-descriptor ABSENT })
X2 ::= EMBEDDED PDV (WITH COMPONENTS { ..., data-value PRESENT }) --! Invalid presence constraint: component 'data_value' ; Invalid WITH COMPONENTS constraint(s)
)",
                 automatic);
}

TEST(Subtypes, ParametersExceptionsAndOpenTypes) {
    expectMarked(R"(
K ::= CLASS { &id INTEGER, &Type } v BOOLEAN ::= TRUE
A1 ::= INTEGER (CONSTRAINED BY { BOOLEAN : v, A3, INTEGER (1..3) })
A2 ::= INTEGER (CONSTRAINED BY { INTEGER : v, INTEGER (3..1) }) --! Invalid INTEGER value ; Invalid range constraint(s) ; Invalid user defined constraint(s)
A3 ::= INTEGER (CONSTRAINED BY { }) A4 ::= OCTET STRING (CONTAINING A1) B1 ::= INTEGER (! 3) B2 ::= INTEGER (! BOOLEAN : v)
B3 ::= INTEGER (! v) --! Invalid INTEGER value ; Invalid ExceptionValue
C1 ::= K.&Type (INTEGER (1..3)) C3 ::= K.&Type (p < C) C ::= CHOICE { p INTEGER }
C2 ::= K.&Type (INTEGER (3..1)) --! Invalid range constraint(s) ; Invalid TypeConstraint constraint(s)
P { INTEGER : low } ::= SEQUENCE { a INTEGER (low..5) } Q ::= SEQUENCE { a P { 5 },
  b P { 6 } } --! Invalid range constraint(s)
)",
                 automatic);
    // What is wrong in T is the affair of T alone.
    const RunResult run =
        expectMarked("IMPORTS P{}, T FROM N; R ::= INTEGER (T)\n"
                     "Q ::= P { 6 } --! Invalid range constraint(s)",
                     {.others = {{"n.asn", "N DEFINITIONS ::= BEGIN\nP { INTEGER : low } ::= "
                                           "SEQUENCE {\na INTEGER (low..5) }\n"
                                           "T ::= INTEGER (5..1)\nEND\n"}}});
    EXPECT_EQ(run.diagnostics("n"), listed(4, "Invalid range constraint(s)"));
}

TEST(Subtypes, TablesAndRelationsLeadSomewhere) {
    expectMarked(R"(
K ::= CLASS { &id INTEGER UNIQUE, &Type } Set K ::= { { &id 1, &Type NULL }, ... }
T1 ::= SEQUENCE { i K.&id ({Open}), t K.&Type ({Open}{@i}), u K.&Type ({Set}{@.i}) }
T2 ::= SEQUENCE { n INTEGER, t K.&Type ({Set}{@n}) } --! Invalid referenced component: n ; Invalid component relation constraint(s)
T3 ::= SEQUENCE { i K.&id ({Set}), t K.&Type ({Set}{@j, @i}) } --! Invalid component relation constraint(s)
T4 ::= K.&Type ({Set}{@i}) --! Invalid component relation constraint(s)
T5 ::= SEQUENCE { o SEQUENCE { i K.&id ({Set}) }, l SEQUENCE OF T6,
  s SEQUENCE { i K.&id ({Set})({Set}), t K.&Type ({Set}{@o.i, @.i, @l.1.i}) } }
T6 ::= SEQUENCE { i R ({Set}), t K.&Type ({Set}{@i.i}) } --! Invalid component relation constraint(s)
R ::= K.&id T7 ::= INSTANCE OF TYPE-IDENTIFIER ({TSet})
TSet TYPE-IDENTIFIER ::= { ... } Open K ::= { ... }
T8 ::= INTEGER (K.&id ({Set})) --! Invalid table constraint(s): Table constraint can be associated only with an ObjectClassFieldType. ; Invalid INCLUDES constraint(s)
T9 ::= K.&id ({ { &id v, &Type NULL } }) --! Invalid INTEGER value ; Invalid object ; Invalid set element ; Invalid table constraint(s): The ObjectSet in the table constraint is invalid.
v BOOLEAN ::= TRUE V3 INTEGER ::= { 1..5, ... }
V1 INTEGER ::= { 1 | 2 | v } --! Invalid INTEGER value ; Invalid set element ; Invalid value set
V2 INTEGER ::= { 5..1 } --! Invalid value set
V4 INTEGER ::= { ... } --! Element set spec is invalid: { ... } is allowed only in ObjectSets.
O1 K ::= { Set | V3 } --! Invalid object set ; Invalid object set
O2 K ::= { Set | { &id v, &Type NULL } } --! Invalid INTEGER value ; Invalid object ; Invalid set element ; Invalid object set
)",
                 automatic);
}

TEST(Subtypes, ExtensionMarkersMarkTheTypeThatTheyExtend) {
    const TreeFacts tree(expectMarked(R"(
A ::= INTEGER (1..5, ...) B ::= A (2) C ::= OCTET STRING (SIZE (1..2, ...))
D ::= OCTET STRING (SIZE (1..2)) E ::= IA5String (SIZE (1))(FROM ("a", ...))
F ::= INTEGER (1..5)((1..3, ..., 4))(2) G ::= INTEGER (1..5)(1..3)
H ::= INTEGER (0..10)(20..30) I ::= INTEGER (0..10)(-5..8)(2..9 | 7)
-- Inner subtypes say nothing about the type that others use as well.
L ::= SEQUENCE OF INTEGER L1 ::= L (WITH COMPONENT (1..5, ...))
Q ::= SEQUENCE OF IA5String Q1 ::= Q (WITH COMPONENT (SIZE (1, ...)))
Q2 ::= Q (WITH COMPONENT (FROM ("a", ...)))
S ::= SEQUENCE { a INTEGER OPTIONAL } S1 ::= S (WITH COMPONENTS { a (1, ...) })
)",
                                      automatic),
                         "m");
    const std::string is = ": EXTENSIBLE";
    EXPECT_EQ(tree.tree().count(stx::TNODE), 19U + 4U); // an INTEGER for each SIZE, none for checks
    expectFacts("A" + is + " ; C" + is + " ; E" + is + " ; F" + is +
                    " ; B:  ; D:  ; G:  ; L.*:  ; Q.*:  ; S.a: ",
                [&](const std::string& path) { return tree.flags(path); });
    // F: the parts of the series are together again.
    expectFacts("F: 2..2 ; G: 1..3 ; H: 0..10 ; I: 2..8",
                [&](const std::string& path) { return tree.bounds(path); });
}

TEST(Subtypes, DoublingChainsEndInTime) {
    std::string body = "T0 ::= IA5String (FROM (\"a\"..\"z\")) S0 K ::= { { &id 1 } } "
                       "K ::= CLASS { &id INTEGER UNIQUE }\n";
    for (int i = 1; i <= 60; ++i)
        body += numbered("T# ::= IA5String (T@ | T@)(FROM (T@ | T@)) S# K ::= { S@ | S@ }\n", i);
    expectMarked(body + "t T60 ::= \"abc\" u SEQUENCE { i K.&id ({S60}) } ::= { i 1 }");
}

} // namespace
} // namespace orvo::test
