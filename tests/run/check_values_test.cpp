// Values checked against their types and constraints: what is found stands beside legal neighbours
// that differ from it in one point.

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(CheckValues, ComponentsArePresentInOrderAndNotRepeated) {
    expectMarked(R"(
S ::= SEQUENCE { a INTEGER, b BOOLEAN, c NULL OPTIONAL, d INTEGER DEFAULT 5 }
s1 S ::= { a 1, b TRUE } s2 S ::= { a 1, b TRUE, d 6 }
s3 S ::= { b TRUE, a 1 } --! Component values out of order ; Invalid SEQUENCE value
s4 S ::= { a 1 } --! Mandatory component value missing: component 'b' ; Invalid SEQUENCE value
s5 S ::= { } --! Mandatory component value missing: component 'a' ; Mandatory component value missing: component 'b' ; Invalid SEQUENCE value
s6 S ::= { a 1, a 2, b TRUE } --! Duplicate component value ; Invalid SEQUENCE value
T ::= SET { a INTEGER, b BOOLEAN } t1 T ::= { b TRUE, a 1 }
t2 T ::= { b TRUE } --! Mandatory component value missing: component 'a' ; Invalid SET value
t3 T ::= { a 1, b TRUE, a 1 } --! Duplicate component value ; Invalid SET value
K ::= SEQUENCE { x NULL, COMPONENTS OF S, z NULL } k1 K ::= { x NULL, a 1, b TRUE, z NULL }
k2 K ::= { x NULL, z NULL, a 1, b TRUE } --! Component values out of order ; Invalid SEQUENCE value
k3 K ::= { x NULL, a 1, z NULL } --! Mandatory component value missing: component 'b' ; Invalid SEQUENCE value
G ::= SEQUENCE { a NULL, ..., [[ b NULL, c NULL ]] } g1 G ::= { a NULL }
g2 G ::= { a NULL, c NULL } --! Mandatory component value missing: component 'b' ; Invalid SEQUENCE value
g3 G ::= { a NULL, b NULL, c NULL } E ::= SEQUENCE { } e E ::= { }
)",
                 automatic);
}

TEST(CheckValues, PartsMeetTheConstraintsOfTheirTypes) {
    expectMarked(R"(
C ::= CHOICE { a INTEGER (0..5), b BOOLEAN } c1 C ::= a : 5
c2 C ::= a : 6 --! Value out of range constraint(s) ; Invalid CHOICE value
L ::= SEQUENCE OF INTEGER (0..9) l1 L ::= { 1, 9 }
l2 L ::= { 1, 10, 11 } --! Value out of range constraint(s) ; Value out of range constraint(s) ; Invalid SEQUENCE OF value
L2 ::= SET OF C l3 L2 ::= { a : 1, b : TRUE }
l4 L2 ::= { a : 7 } --! Value out of range constraint(s) ; Invalid CHOICE value ; Invalid SET OF value
D ::= SEQUENCE { a INTEGER (0..5) DEFAULT 5 }
D2 ::= SEQUENCE { a INTEGER (0..5) DEFAULT 6 } --! Value out of range constraint(s) ; Invalid default value
P { INTEGER : max } ::= SEQUENCE { a INTEGER (0..max) DEFAULT 9 } Q ::= P { 10 }
R ::= P { 5 } --! Value out of range constraint(s) ; Invalid default value
A ::= SEQUENCE { id INTEGER, any ANY DEFINED BY id } a1 A ::= { id 1, any INTEGER (0..3) : 3 }
a2 A ::= { id 1, any INTEGER (0..3) : 5 } --! Value out of range constraint(s) ; Invalid Open type value ; Invalid SEQUENCE value
)",
                 automatic);
}

TEST(CheckValues, ReferencesAreReportedWhereTheyStand) {
    expectMarked(R"(
T1 ::= INTEGER (0..5) T2 ::= T1 (2..MAX)
a T2 ::= 1 --! Value out of range constraint(s)
b T2 ::= 6 --! Value out of range constraint(s)
c T2 ::= 3 d T1 ::= c
e T2 ::= b --! Value out of range constraint(s)
f BOOLEAN ::= c --! Invalid BOOLEAN value
S ::= SEQUENCE { a NULL } S2 ::= SEQUENCE { a NULL } g S ::= { a NULL } h S ::= g
i S2 ::= g --! Invalid SEQUENCE value
j IA5String ::= "abc" k VisibleString ("abc" | "b") ::= j
l VisibleString (FROM ("a".."b")) ::= j --! Value out of range constraint(s) ; Value out of permitted alphabet constraint(s)
m L ::= { n } --! Value out of range constraint(s) ; Invalid SEQUENCE OF value
n T1 ::= 4 L ::= SEQUENCE OF INTEGER (0..3)
o L ::= { 3, n } --! Value out of range constraint(s) ; Invalid SEQUENCE OF value
p UTCTime ::= "9912312359Z" q IA5String ::= p
r OCTET STRING ::= j --! Invalid OCTET STRING value
)",
                 automatic);
}

TEST(CheckValues, EveryConstraintIsMetOrNot) {
    expectMarked(R"(
a1 INTEGER (1..10 | 20) ::= 20
a2 INTEGER (1..10 | 20) ::= 15 --! Value out of union constraint(s)
a3 INTEGER (1<..<3) ::= 2
a4 INTEGER (1<..<3) ::= 3 --! Value out of range constraint(s)
a5 INTEGER (MIN..MAX) ::= -9223372036854775806 a6 INTEGER (1..10 ^ 5..20) ::= 5
a7 INTEGER (1..10 ^ 5..20) ::= 4 --! Value out of range constraint(s) ; Value out of INTERSECTION constraint(s)
a8 INTEGER (1..10)(5..7) ::= 4 --! Value out of range constraint(s) ; Value out of catenated constraint(s)
a9 INTEGER (1..10 EXCEPT 5) ::= 4
b1 INTEGER (1..10 EXCEPT 5) ::= 5 --! Value out of EXCEPT constraint(s)
b2 INTEGER (1..10 EXCEPT 5) ::= 11 --! Value out of range constraint(s) ; Value out of EXCEPT constraint(s)
b3 INTEGER (ALL EXCEPT 5) ::= 4
b4 INTEGER (ALL EXCEPT 5) ::= 5 --! Value out of ALL EXPECT constraint(s)
b5 INTEGER (5) ::= 6 --! Value out of single value constraint(s)
b6 OCTET STRING ('A0'H) ::= '1010'B
b7 OCTET STRING ('A0'H) ::= 'A000'H --! Value out of single value constraint(s)
T ::= INTEGER (0..5) b8 INTEGER (T | 9) ::= 9
b9 INTEGER (T) ::= 6 --! Value out of range constraint(s)
c1 IA5String (FROM ("a".."z" | "09")) ::= "ab0"
c2 IA5String (FROM ("a".."z")) ::= "aB" --! Value out of range constraint(s) ; Value out of permitted alphabet constraint(s)
c3 IA5String (FROM ("ab" | "c")) ::= "cd" --! Value out of union constraint(s) ; Value out of permitted alphabet constraint(s)
c4 IA5String (FROM (MIN.."b")) ::= "Ab" c5 OCTET STRING (SIZE (1..2)) ::= '000000001'B
c6 OCTET STRING (SIZE (1..2)) ::= 'ABCDEF'H --! Value out of range constraint(s) ; Value out of size constraint(s)
c7 IA5String (SIZE (3)) ::= { "a", "bc" } L ::= SEQUENCE (SIZE (1..2)) OF INTEGER d1 L ::= { 1, 2 }
d5 L ({ 1, 2 }) ::= { 2, 1 } --! Value out of single value constraint(s)
M1 ::= SET OF INTEGER d6 M1 ({ 1, 2 } | { }) ::= { 2, 1 }
d7 M1 ({ 1, 1, 2 }) ::= { 1, 2, 2 } --! Value out of single value constraint(s)
d2 L ::= { } --! Value out of range constraint(s) ; Value out of size constraint(s)
d3 L (WITH COMPONENT (0..5)) ::= { 1, 5 }
d4 L (WITH COMPONENT (0..5)) ::= { 6, 1 } --! Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s)
d0 L (WITH COMPONENT (0..5)) ::= { n, --! Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s)
n } --! Value out of range constraint(s)
n INTEGER ::= 6 V INTEGER ::= { 1 | 2 } e1 V ::= 2
e2 V ::= 3 --! Value out of union constraint(s)
f1 REAL ({mantissa 1, base 10, exponent 0}..MAX) ::= {mantissa 10, base 10, exponent -1}
f2 REAL ({mantissa 1, base 10, exponent 0}..MAX) ::= {mantissa 9, base 10, exponent -1} --! Value out of range constraint(s)
f3 REAL (0..MAX) ::= PLUS-INFINITY
f4 REAL ({mantissa 1, base 2, exponent 10}) ::= {mantissa 1024, base 10, exponent 0}
f5 REAL ({mantissa 1, base 2, exponent -1}) ::= {mantissa 1, base 10, exponent -1} --! Value out of single value constraint(s)
f6 REAL (PLUS-INFINITY) ::= {mantissa 1, base 10, exponent 32767}
f7 REAL (0) ::= {mantissa 1, base 10, exponent -32767}
f8 REAL (MIN..0) ::= {mantissa 1, base 2, exponent -300} --! Value out of range constraint(s)
h5 REAL (MIN<..0) ::= MINUS-INFINITY --! Value out of range constraint(s)
h6 T (MIN<..<MAX) ::= 5 --! Value out of range constraint(s)
h7 T (MIN<..<MAX) ::= 4 h3 REAL (0..PLUS-INFINITY) ::= PLUS-INFINITY
h4 REAL (0..<PLUS-INFINITY) ::= PLUS-INFINITY --! Value out of range constraint(s)
N ::= NumericString g1 N ::= "12 3"
g2 N (SIZE (1)) ::= "1a" --! Value out of permitted alphabet constraint(s)
g3 PrintableString ::= "a'b?"
g4 PrintableString ::= "a@b" --! Value out of permitted alphabet constraint(s)
h1 BMPString (FROM ("a".."b")) ::= "ab" W ::= IA5String (SIZE (1)) (FROM ("a".."b"))
j1 IA5String (FROM (W)) ::= "abba" i1 ObjectDescriptor (FROM ("ab")) ::= "aba"
i2 ObjectDescriptor (FROM ("ab")) ::= "c" --! Value out of single value constraint(s) ; Value out of permitted alphabet constraint(s)
h2 UniversalString (FROM ("a".."b")) ::= "c" --! Value out of range constraint(s) ; Value out of permitted alphabet constraint(s)
)",
                 automatic);
}

TEST(CheckValues, EveryRecordIsReported) {
    expectMarked(R"(
IMPORTS L, l FROM N;
a L (WITH COMPONENT (0..5)) ::= { n, n } --! Value out of range constraint(s) ; Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s)
n INTEGER ::= 6
b L (WITH COMPONENT (0..5)) ::= l --! Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s)
LL ::= SEQUENCE OF L -- what a value behind a reference holds is reported at the reference
c LL (WITH COMPONENT (WITH COMPONENT (0..5))) ::= { l, l } --! Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s) ; Value out of range constraint(s) ; Value out of WITH COMPONENT constraint(s) ; Value out of WITH COMPONENT constraint(s)
)",
                 {.others = {{"n.asn", "N DEFINITIONS ::= BEGIN l L ::= { 3, 9 }\n"
                                       "L ::= SEQUENCE OF INTEGER END\n"}}});
}

TEST(CheckValues, DefinitionsMayStandInAnyOrder) {
    // A value answers for what it holds, and so do defaults and actual parameters.
    expectMarkedInAnyOrder(R"(
S ::= SEQUENCE { a INTEGER (0..5), d D DEFAULT { a 9 } } --! Value out of range constraint(s) ; Invalid SEQUENCE value ; Invalid default value
D ::= SEQUENCE { a INTEGER (0..8), s S OPTIONAL }
v1 S ::= { a 6 } --! Value out of range constraint(s) ; Invalid SEQUENCE value
v2 S ::= v1 v3 D ::= { a 4, s v2 } v4 D ({ a 4, s v1 }) ::= v3
P {S : x} ::= SEQUENCE { s S DEFAULT x } R ::= P {v5}
Q ::= P {{ a 7 }} --! Value out of range constraint(s) ; Invalid SEQUENCE value ; Invalid default value
p {INTEGER : i} S ::= { a i }
v5 S ::= p { 8 } --! Value out of range constraint(s) ; Invalid SEQUENCE value
w1 W ::= { { a 6 } } W ::= SEQUENCE OF S --! Value out of range constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE OF value
w2 W (WITH COMPONENT (WITH COMPONENTS { ..., d ABSENT })) ::= w1
U ::= P {p { 9 }} --! Value out of range constraint(s) ; Invalid SEQUENCE value ; Invalid default value
)");
    expectMarkedInAnyOrder(R"(
o OBJECT IDENTIFIER ::= { p 5 } --! Invalid OBJECT IDENTIFIER prefix ; Invalid OBJECT IDENTIFIER value
p OBJECT IDENTIFIER ::= { 1 } --! Value of OBJECT IDENTIFIER out of range: Too few object identifier components. ; Invalid OBJECT IDENTIFIER value
T ::= SEQUENCE { x OBJECT IDENTIFIER DEFAULT { p 7 } } --! Invalid OBJECT IDENTIFIER prefix ; Invalid OBJECT IDENTIFIER value ; Invalid default value
q OBJECT IDENTIFIER ({1 2} | {1 3}) ::= p --! Invalid OBJECT IDENTIFIER value
)");
    // While a constraint is checked, the type in which it stands is no other.
    expectMarkedInAnyOrder(R"(
T ::= INTEGER (ALL EXCEPT v)
v A ::= 5 --! Value out of ALL EXPECT constraint(s)
A ::= T w A ::= 6
)");
    const std::string c = "C ::= INTEGER (0..9) (CONSTRAINED BY {D}) (5..8)\n";
    const std::string d = "D ::= SEQUENCE { e INTEGER (0..20 ^ C) DEFAULT 6 }\n";
    for (const std::string& body : {c + d, d + c})
        EXPECT_EQ(TreeFacts(compile({moduleM(body)}), "m").bounds("D.e"), "5..8");
    // A string in itself has no end.
    expectMarkedInAnyOrder(R"(
s1 IA5String ::= { "a", s2 } s2 IA5String ::= { "bc", s1 }
x IA5String (SIZE (3)) ::= s1 --! Value out of single value constraint(s) ; Value out of size constraint(s)
y IA5String (SIZE (3)) ::= s2 --! Value out of single value constraint(s) ; Value out of size constraint(s)
z IA5String (FROM ("abc")) ::= s2
)");
}

TEST(CheckValues, BoundsOfAnotherModuleAreComparedByTheirText) {
    // The string numbers of the two modules differ.
    expectMarked(
        R"(
IMPORTS lo, hi FROM N; a IA5String (FROM (lo..hi)) ::= "bc"
b IA5String (FROM (lo..hi)) ::= "ad" --! Value out of range constraint(s) ; Value out of permitted alphabet constraint(s)
)",
        {.others = {{"n.asn", "N DEFINITIONS ::= BEGIN EXPORTS lo, hi; x IA5String ::= "
                              "\"zzz\" lo IA5String ::= \"b\" hi IA5String ::= \"d\" END\n"}}});
}

TEST(CheckValues, SomeCannotBeCompared) {
    expectRows("v ANY (INTEGER : 1) ::= INTEGER : 1 --! W "
               "Comparison of two ANY values not yet implemented, sorry. ; "
               "Value out of single value constraint(s)");
    const RunResult run = compileBody("B ::= BIT STRING { a(4294967296) } v B ({a}) ::= {a}");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("Bit string index overflow"), std::string::npos);
}

TEST(CheckValues, ChainsOfReferencesMayBeLong) {
    std::string body = "T ::= SEQUENCE { a T OPTIONAL, n INTEGER OPTIONAL }\n"
                       "v0 T ::= { n 1 } w0 T ::= { n 2 } s0 IA5String ::= \"x\"\n";
    for (int i = 1; i <= 10000; ++i)
        body += numbered("v# T ::= { a v@ } w# T ::= { a w@ } s# IA5String ::= { s@ }\n", i);
    expectMarked(body + "x T (v10000) ::= w10000 --! Value out of single value constraint(s)\n"
                        "y IA5String (SIZE (1)) ::= s10000");
}

TEST(CheckValues, InnerSubtypesRestrictPresence) {
    expectMarked(R"(
S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL, c NULL OPTIONAL }
a1 S (WITH COMPONENTS { ..., a PRESENT }) ::= { a 1, c NULL }
a2 S (WITH COMPONENTS { ..., a PRESENT }) ::= { b 1 } --! Value out of WITH COMPONENTS constraint(s)
a3 S (WITH COMPONENTS { ..., a ABSENT }) ::= { a 1 } --! Value out of WITH COMPONENTS constraint(s)
a4 S (WITH COMPONENTS { a, b }) ::= { a 1 }
a5 S (WITH COMPONENTS { a, b }) ::= { a 1, c NULL } --! Value out of WITH COMPONENTS constraint(s)
C ::= CHOICE { a INTEGER, b NULL } b1 C (WITH COMPONENTS { ..., a ABSENT }) ::= b : NULL
b2 C (WITH COMPONENTS { ..., a ABSENT }) ::= a : 1 --! Value out of WITH COMPONENTS constraint(s)
b3 C (WITH COMPONENTS { ..., a PRESENT }) ::= b : NULL --! Value out of WITH COMPONENTS constraint(s)
)",
                 automatic);
}

TEST(CheckValues, FullSpecificationsHoldForEachPart) {
    expectMarked(R"(
S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL } F ::= S (WITH COMPONENTS { a })
G ::= F (WITH COMPONENTS { a, b }) g G ::= { b 1 }
T ::= SEQUENCE { f F OPTIONAL, c CHOICE { f F, n NULL } OPTIONAL,
  l SEQUENCE OF F OPTIONAL, any TYPE-IDENTIFIER.&Type OPTIONAL, x NULL OPTIONAL }
R ::= T (WITH COMPONENTS { f, c, l, any })
r1 R ::= { f { a 1 }, c f : { a 1 }, l { { a 1 } }, any F : { a 2 } }
r2 R ::= { x NULL } --! Value out of WITH COMPONENTS constraint(s)
r3 R ::= { f { b 1 } } --! Value out of WITH COMPONENTS constraint(s) ; Invalid SEQUENCE value
r4 R ::= { c f : { b 1 } } --! Value out of WITH COMPONENTS constraint(s) ; Invalid CHOICE value ; Invalid SEQUENCE value
r5 R ::= { l { { b 1 } } } --! Value out of WITH COMPONENTS constraint(s) ; Invalid SEQUENCE OF value ; Invalid SEQUENCE value
r6 R ::= { any F : { b 1 } } --! Value out of WITH COMPONENTS constraint(s) ; Invalid Open type value ; Invalid SEQUENCE value
C ::= CLASS { &Type } Set C ::= { { &Type F } }
U ::= SEQUENCE { v C.&Type ({Set}), x NULL OPTIONAL } (WITH COMPONENTS { v })
u1 U ::= { v F : { a 1 } }
u2 U ::= { v S : { b 1 } } --! Value out of table constraint(s) ; Invalid SEQUENCE value
)",
                 automatic);
}

TEST(CheckValues, ItemsAndNamedBitsAreThoseOfTheType) {
    expectMarked(R"(
n INTEGER ::= 7 E ::= ENUMERATED { red, green(n), ..., blue } a1 E ::= green a2 E ::= blue
a3 E ::= a1
a4 E ::= one --! Invalid ENUMERATED value
one INTEGER ::= 1 B ::= BIT STRING { x(0), y(1), z(2) } b1 B ::= '111'B
b2 B ::= '1111'B --! Invalid BIT STRING value
b3 B ::= '1110'B b4 B ::= 'E0'H
b5 B ::= 'F0'H --! Invalid BIT STRING value
b6 B ::= { x, z } b7 B (SIZE (3)) ::= { z } b8 BIT STRING ::= '1111'B
)",
                 automatic);
}

TEST(CheckValues, ObjectIdentifiersObeyTheRulesOfTheirArcs) {
    std::string body = R"(
a1 0 39
a2 0 40 --! Invalid OBJECT IDENTIFIER component: 2nd component ; I
a3 2 999
a4 3 1 --! Invalid OBJECT IDENTIFIER component: 1st component ; I
a5 0 0 26
a6 0 0 27 --! Invalid OBJECT IDENTIFIER component: 3rd component ; I
a7 1 0 27
b1 itu-t recommendation x 680
b2 iso standard 8571 application-context (1) n
b3 1 n neg --! Invalid OBJECT IDENTIFIER component: 3rd component ; I
b4 1 2 3 4 neg --! Invalid OBJECT IDENTIFIER component: 5th component ; I
b5 1 2 3 o --! Invalid OBJECT IDENTIFIER component: 4th component ; I
o 1 2
c1 1 --! Value of OBJECT IDENTIFIER out of range: Too few object identifier components. ; I
c2 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25 26 27 28 29 30 31 32
c3 c2 33 --! Value of OBJECT IDENTIFIER out of range: Limitation: there can be only 32 object identifier components. ; I
d1 o 5
d2 d1 (4) 6 --! Invalid OBJECT IDENTIFIER component: 1st component ; I
d3 o --! Value of OBJECT IDENTIFIER out of range: An object identifier prefix without additional components. ; I
d4 a2 5 --! Invalid OBJECT IDENTIFIER prefix ; I
d5 later 5 --! Invalid OBJECT IDENTIFIER prefix ; I
later 1 50 --! Invalid OBJECT IDENTIFIER component: 2nd component ; I
)";
    body = std::regex_replace(body, std::regex("\n(\\w+) ([^\n]*?)(?= --!|\n)"),
                              "\n$1 OBJECT IDENTIFIER ::= { $2 }");
    body = std::regex_replace(body, std::regex("; I\n"), "; Invalid OBJECT IDENTIFIER value\n");
    expectMarked(body + R"(n INTEGER ::= 7 neg INTEGER ::= -1 e1 OBJECT IDENTIFIER ::= d1
e2 OBJECT IDENTIFIER ::= a2 --! Invalid OBJECT IDENTIFIER value
e3 OBJECT IDENTIFIER ({1 2 5} | {1 2 6}) ::= d1
e4 OBJECT IDENTIFIER ({1 2 7}) ::= d1 --! Value out of single value constraint(s)
)",
                 automatic);
}

TEST(CheckValues, TimesAreDatesTimesAndZones) {
    std::string body;
    const auto add = [&](bool generalized, bool utc, std::initializer_list<const char*> texts) {
        for (const char* text : texts)
            for (const std::string type : {"GeneralizedTime", "UTCTime"})
                body += "t" + std::to_string(body.size()) + " " + type + " ::= \"" + text + "\"" +
                        ((type[0] == 'G' ? generalized : utc) ? ""
                                                              : " --! Invalid " + type + " value") +
                        "\n";
    };
    add(false, true, {"9912312359Z", "991231235959+0100"});
    add(true, false,
        {"19991231235959.5Z", "19991231235959,25-0130", "1999123123", "1999123123+01"});
    add(false, false,
        {"991231235959", "9912312359+01", "99123123Z", "991231235959.5Z", "9912312359Zx",
         "9913312359Z", "199912312359,25-0130", "19991231235959.", "19991301000000Z",
         "19991200000000Z", "19991231240000Z", "19991231236000Z", "19991231235960Z",
         "19991231235959+", "19991231", "1999123123595", ""});
    expectMarked(body);
}

} // namespace
} // namespace orvo::test
