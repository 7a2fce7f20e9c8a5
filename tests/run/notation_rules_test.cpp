// Rules of X.680 to X.683 (02/2021) by which the older notation of this program judges otherwise.
// Each module carries its findings behind the lines that they stand at, "--!" in front, ";"
// between, "W" in front of a warning; what has none is the legal neighbour.

#include <gtest/gtest.h>

#include <sstream>

#include "support/cases.h"

namespace orvo::test {
namespace {

const Frame ofToday = {.options = edition};
const Frame automaticToday = {.options = edition, .defaults = "AUTOMATIC TAGS "};

// X.680 3.8.64: at least one finite value.
TEST(NotationRules, RecursionNeedsAFiniteValue) {
    expectMarked(R"(
T ::= SEQUENCE OF T S ::= SEQUENCE { ..., t S } C ::= CHOICE { a NULL, t C }
O ::= SEQUENCE { a O OPTIONAL, b SET OF O, c D } D ::= CHOICE { o O, n NULL }
G ::= SEQUENCE { ..., [[ t G ]] } L ::= SEQUENCE (SIZE (0..5)) OF L
Z ::= SET { l SEQUENCE (SIZE (1..5)) OF CHOICE { z Z, n NULL } } H ::= CHOICE { h H, ..., n NULL }
P {X, INTEGER : n} ::= CHOICE { nil NULL, cons SEQUENCE { head X (0..n), tail P {X, n} } }
Q ::= P {INTEGER, 5} q Q ::= cons : { head 5, tail cons : { head 0, tail nil : NULL } }
K ::= CLASS { &id INTEGER } R {K : Set} ::= SEQUENCE { a K.&id ({Set}), r R {{Set}} OPTIONAL }
V ::= R {{{ &id 1 }}} v V ::= { a 1, r { a 1 } } X {T} ::= SEQUENCE { y Y {T} OPTIONAL }
Y {T} ::= SEQUENCE { x X {T} OPTIONAL, t T } x X {BOOLEAN} ::= { y { x { y { t FALSE } }, t TRUE } }
)",
                 automaticToday);
    expectMarked(R"(
S ::= SEQUENCE { t S } --! Invalid recursion in definition of type: t
C ::= CHOICE { t C } --! Invalid recursion in definition of type: t
L ::= SEQUENCE (SIZE (1..5)) OF L --! Invalid recursion in definition of type
A ::= SEQUENCE { o A OPTIONAL, b B } --! Invalid recursion in definition of type: b
B ::= SET { a A } --! Invalid recursion in definition of type: a
D ::= SEQUENCE { x NULL, ..., y D, ..., d D } --! Invalid recursion in definition of type: d
E ::= CHOICE { e F, f F } --! Invalid recursion in definition of type: e ; Invalid recursion in definition of type: f
F ::= SEQUENCE { g E } --! Invalid recursion in definition of type: g
M ::= SEQUENCE { m N (SIZE (1..5)) } --! Invalid recursion in definition of type: m
N ::= SEQUENCE OF M U ::= SEQUENCE { s S } P {X} ::= SEQUENCE { head X, tail P {X} }
Q ::= P {NULL} --! Invalid recursion in definition of type: tail
)",
                 automaticToday);
    expectMarked("\nX {T} ::= SEQUENCE { y Y {SEQUENCE OF T} OPTIONAL }\n"
                 "Y {T} ::= SEQUENCE { x X {T} OPTIONAL, t T }\n"
                 "Z ::= X {BOOLEAN} --! Invalid recursion in definition of type\n",
                 ofToday);
    expectMarked("\nR {INTEGER : n} ::= SEQUENCE (SIZE (0..n)) OF R {4}\n"
                 "V ::= R {5} --! Invalid recursion in definition of type\n",
                 ofToday);
}

// X.680 51.4.3; the type keeps the endpoint of the parent.
TEST(NotationRules, RangesStayWithinTheParent) {
    for (const auto& options : {edition, lenient}) {
        const RunResult run = expectMarked(R"(
A ::= INTEGER (1..10)
B ::= A (0..5) --! W Range endpoint outside the parent type: lower endpoint
C ::= A (5..20) --! W Range endpoint outside the parent type: upper endpoint
D ::= A (MIN..3 | 7..MAX)
E ::= A (20..30) --! W Range endpoint outside the parent type: lower endpoint ; W Range endpoint outside the parent type: upper endpoint
F ::= REAL (0..<10)(5..10) --! W Range endpoint outside the parent type: upper endpoint
G ::= REAL (0..<10)(5..<10)
V A ::= { 5..20 } --! W Range endpoint outside the parent type: upper endpoint
S ::= IA5String (SIZE (1..10))(SIZE (0..5))
P ::= INTEGER (1..10)(0..5) --! W Range endpoint outside the parent type: lower endpoint
Q ::= INTEGER (1..10)(5..20) --! W Range endpoint outside the parent type: upper endpoint
)",
                                           {options});
        // 0..5 and 5..20 within 1..10
        const TreeFacts facts(run, "m");
        EXPECT_EQ(facts.bounds("P"), "1..5");
        EXPECT_EQ(facts.bounds("Q"), "5..10");
    }
    expectMarked(R"(
A ::= INTEGER (1..10)
F ::= A (20) --! Value out of range constraint(s) ; Invalid single value constraint(s)
H ::= A (5..4) --! Invalid range constraint(s)
)",
                 ofToday);
}

// X.680 50.9: the elements of a value set are values of its governor.
TEST(NotationRules, ValueSetsAreHeldAgainstTheirGovernors) {
    expectMarked(R"(
A ::= INTEGER (1..10) B ::= INTEGER V A ::= { 1 | 2..10, ..., 3 }
W A ::= { 1 | 20 } --! Value out of range constraint(s) ; Invalid set element ; Invalid value set
YY INTEGER { n (3) } (0..10) ::= { n | 10 }
ZY A (1..5) ::= { 6 } --! Value out of range constraint(s) ; Invalid set element
ZZ IA5String (SIZE (2)) ::= { "ab" | "abc" } --! Value out of single value constraint(s) ; Value out of size constraint(s) ; Invalid set element ; Invalid value set
X A ::= { 1, ..., 20 } --! Value out of range constraint(s) ; Invalid set element ; Invalid value set
Y A ::= { B (5) | V } Z B ::= { 20 } K ::= CLASS { &Set A OPTIONAL }
k K ::= { &Set { 1 | 20 } } --! Value out of range constraint(s) ; Invalid set element ; Invalid value set ; Invalid object
l K ::= { &Set { 1 | 2 } }
)",
                 ofToday);
}

// X.683 9.3: an actual parameter is one of its governor's, wherever it goes.
TEST(NotationRules, ActualValuesAreHeldAgainstTheirGovernors) {
    expectMarked(R"(
A {INTEGER : n} ::= INTEGER (1..n) K ::= CLASS { &id INTEGER (0..10) }
P {INTEGER : n, A {n} : s} ::= SEQUENCE { a INTEGER DEFAULT s, b [1] INTEGER DEFAULT n }
Q {K.&id : n} ::= INTEGER (n) v {K.&id : n} INTEGER ::= n o {K.&id : n} K ::= { &id n }
R {INTEGER : n} ::= Q {n} p1 P {5, 5} ::= {}
p2 P {5, 6} ::= {} --! Value out of range constraint(s)
Q1 ::= Q {k.&id}
Q2 ::= Q {11} --! Value out of range constraint(s)
v1 INTEGER ::= v {10}
v2 INTEGER ::= v {11} --! Value out of range constraint(s)
R1 ::= R {10}
R2 ::= R {11} --! Value out of range constraint(s)
k K ::= o {9}
)",
                 ofToday);
    expectMarked("\nA ::= INTEGER (0..5)\nP {A : s} ::= INTEGER (s)\nQ ::= P {6}\n");
}

// X.680 53.4: the value of an exception is one of its type.
TEST(NotationRules, ExceptionsAreValuesOfTheirTypes) {
    const std::string wrong = " --! Value out of range constraint(s) ; Invalid Open type value ; "
                              "Invalid ExceptionValue\n";
    std::string body =
        "\nI ::= INTEGER (1..3)\nK ::= CLASS { &id INTEGER }\nKs K ::= { { &id 1 } }\n";
    for (const char* form :
         {"INTEGER (5 ! I : #)", "INTEGER (1..5, ... ! I : #)", "ENUMERATED { a, ... ! I : # }",
          "SEQUENCE { a NULL, ... ! I : # }", "CHOICE { a NULL, ... ! I : # }",
          "SEQUENCE { a K.&id ({Ks} ! I : #) }", "INTEGER (CONSTRAINED BY {} ! I : #)",
          "OCTET STRING (CONTAINING NULL ! I : #)"})
        for (const bool fits : {true, false}) {
            std::string type = form;
            type.replace(type.find('#'), 1, fits ? "3" : "9");
            body += (fits ? "F" : "W") + std::to_string(body.size()) + " ::= " + type +
                    (fits ? std::string("\n") : wrong);
        }
    expectMarked(body, ofToday);
}

// X.680 25.18: the order of the type; 25.13 to 25.15: additions missing from some point on.
TEST(NotationRules, ValuesOfSequencesFollowTheType) {
    expectMarked(R"(
T ::= SEQUENCE { a NULL, b NULL OPTIONAL, ..., c NULL, [[ d NULL, e NULL OPTIONAL ]], g NULL OPTIONAL, ..., f NULL }
t1 T ::= { a NULL, f NULL } t2 T ::= { a NULL, c NULL, f NULL }
t3 T ::= { a NULL, c NULL, d NULL, f NULL }
t4 T ::= { a NULL, b NULL, c NULL, d NULL, e NULL, g NULL, f NULL }
t5 T ::= { a NULL, d NULL, f NULL } --! Mandatory component value missing: component 'c' ; Invalid SEQUENCE value
t6 T ::= { a NULL, c NULL, g NULL, f NULL } --! Mandatory component value missing: component 'd' ; Invalid SEQUENCE value
t7 T ::= { a NULL, c NULL, e NULL, f NULL } --! Mandatory component value missing: component 'd' ; Invalid SEQUENCE value
t8 T ::= { a NULL, c NULL } --! Mandatory component value missing: component 'f' ; Invalid SEQUENCE value
t9 T ::= { a NULL, f NULL, --! Invalid SEQUENCE value
  c NULL } --! Component values out of order
t10 T ::= { b NULL, --! Invalid SEQUENCE value
  a NULL, f NULL } --! Component values out of order
S ::= SET { a NULL, b NULL, ..., c NULL, d NULL } s1 S ::= { b NULL, a NULL }
s2 S ::= { d NULL, c NULL, b NULL, a NULL }
s3 S ::= { d NULL, b NULL, a NULL } --! Mandatory component value missing: component 'c' ; Invalid SET value
)",
                 automaticToday);
}

// X.680 25.6, 25.7, 27.3, 29.3 and 52.7.
TEST(NotationRules, TagsOfAdditionsAreDistinct) {
    expectMarked(R"(
A ::= SEQUENCE { a INTEGER OPTIONAL, ..., b INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
B ::= SEQUENCE { a INTEGER OPTIONAL, ..., ..., b INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
C ::= SEQUENCE { a INTEGER OPTIONAL, ..., b NULL, ..., c INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
D ::= SEQUENCE { a INTEGER, ..., b NULL, ..., c NULL } --! Non-distinct tag: [UNIVERSAL 5]
E ::= SEQUENCE { a INTEGER, ..., b NULL, ..., c INTEGER, d NULL }
F ::= SEQUENCE { a INTEGER, ..., b NULL, ..., c INTEGER OPTIONAL, d NULL } --! Non-distinct tag: [UNIVERSAL 5]
G ::= SEQUENCE { a INTEGER, ..., b NULL, [[ c NULL ]] }
H ::= SEQUENCE { a INTEGER, ..., b NULL, [[ c NULL ]], ..., d INTEGER } --! Non-distinct tag: [UNIVERSAL 5]
I ::= SEQUENCE { a INTEGER, ..., b NULL OPTIONAL, c NULL } --! Non-distinct tag: [UNIVERSAL 5]
J ::= SET { a INTEGER, ..., b NULL, ..., c INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
K ::= SET { a INTEGER, ..., b NULL, ..., c REAL }
L ::= CHOICE { a INTEGER, ..., b INTEGER } --! Non-distinct tag: [UNIVERSAL 2]
N ::= CHOICE { a INTEGER, ..., [[ b NULL, c REAL ]] }
)",
                 ofToday);
    expectMarked(R"(
X ::= CHOICE { x NULL, ... } Y ::= CHOICE { y REAL, ... } A ::= SET { a INTEGER, b X }
B ::= SET { a X, b Y } --! Non-distinct tag: unknown additions
C ::= SET { a X, b [0] Y }
D ::= SET { a INTEGER, b X, ... } --! Non-distinct tag: unknown additions
E ::= SET { a [0] X, ... }
F ::= CHOICE { a INTEGER, b X, ... } --! Non-distinct tag: unknown additions
G ::= CHOICE { a INTEGER, b X }
H ::= CHOICE { a CHOICE { b G, i [0] INTEGER }, b Y } --! Non-distinct tag: unknown additions
I ::= SEQUENCE { a X, b Y, ..., c X } J ::= SEQUENCE { a X OPTIONAL, b INTEGER, ... }
K ::= SEQUENCE { a X OPTIONAL, b Y } --! Non-distinct tag: unknown additions
L ::= SEQUENCE { a X OPTIONAL, ... } --! Non-distinct tag: unknown additions
N ::= SEQUENCE { a INTEGER, ..., ..., b X } --! Non-distinct tag: unknown additions
O ::= SEQUENCE { a INTEGER, ..., ..., b INTEGER, c X }
P ::= SEQUENCE { a INTEGER, ..., b X, ..., c REAL }
)",
                 ofToday);
    // Without the option what may be added does not count.
    expectMarked(
        "\nX ::= CHOICE { x NULL, ... }\nB ::= SET { a X, b CHOICE { y REAL, ... }, ... }\n");
}

// X.680 31.2.7 c: EXPLICIT in front of a dummy reference, whatever it stands for.
TEST(NotationRules, TagsInFrontOfDummyReferencesAreExplicit) {
    const std::string body = R"(
P {T} ::= SEQUENCE { a [1] T, b [2] IMPLICIT T, c [3] [4] T, d T, e [6] Q {T}, f [7] SET OF T, g [8] NULL }
Q {U} ::= [9] U
I ::= P {BOOLEAN}
)";
    // The default of the module is IMPLICIT. I.b: the keyword holds; I.c: [3] replaces [4], which
    // is EXPLICIT; I.e: [6] replaces [9]; I.f: no dummy reference, a list of some.
    expectFacts(TreeFacts(expectMarked(body, {edition, "IMPLICIT TAGS "}), "m"), R"(
finalTags I.a: [1] [UNIVERSAL 1] ; finalTags I.b: [2] ; finalTags I.c: [3] [UNIVERSAL 1]
finalTags I.d: [UNIVERSAL 1] ; finalTags I.e: [6] [UNIVERSAL 1] ; finalTags I.f: [7] ; finalTags I.g: [8]
)");
    expectFacts(TreeFacts(expectMarked(body, {{}, "IMPLICIT TAGS "}), "m"), R"(
finalTags I.a: [1] ; finalTags I.b: [2] ; finalTags I.c: [3] ; finalTags I.d: [UNIVERSAL 1]
finalTags I.e: [6] ; finalTags I.f: [7] ; finalTags I.g: [8]
)");
    const RunResult run = expectMarked(R"(
P {T} ::= SEQUENCE { a T, b Q {T}, c CHOICE { x T, y NULL } } Q {U} ::= SEQUENCE { u U }
I ::= P {BOOLEAN}
)",
                                       automaticToday);
    const TreeFacts facts(run, "m");
    // I.b.u: T, handed on as U.
    expectFacts(facts, "finalTags I.a: [0] [UNIVERSAL 1] ; finalTags I.b: [1]\n"
                       "finalTags I.b.u: [0] [UNIVERSAL 1] ; finalTags I.c.x: [0] [UNIVERSAL 1]\n"
                       "finalTags I.c.y: [1]");
}

// X.680 51.2: characters have an order, strings have none.
TEST(NotationRules, RangesOfCharactersStandInAlphabets) {
    const std::string rows = R"(
A ::= IA5String ("a".."z")#
B ::= IA5String (FROM ("a".."z"))
C ::= IA5String (SIZE (1) ^ FROM ("a".."f" | "x") | "abc")
D ::= UTF8String (SIZE (1))("a".."z")#
E ::= BMPString (FROM (BMPString (FROM ("a".."z"))))
F ::= IA5String (FROM (IA5String ("a".."z")))#
G ::= DATE ("2020-01-01".."2021-12-31")
V IA5String ::= { "a".."z" }#
)";
    for (const bool isLenient : {false, true}) {
        std::string body;
        std::istringstream lines(rows);
        for (std::string line; std::getline(lines, line);) {
            const size_t end = line.find('#');
            const std::string name = line[0] == 'F' ? "" : ": " + line.substr(0, 1); // the type
            body += line.substr(0, end);
            if (end != std::string::npos)
                body += isLenient
                            ? " --! W Value range on a character string type outside FROM" + name
                            : " --! Value range not allowed" + name + " ; " +
                                  std::string(line[0] == 'V' ? "Element set spec is invalid"
                                                             : "Invalid constraint");
            body += "\n";
        }
        expectMarked(body, {isLenient ? lenient : edition});
    }
}

// X.681 12: different objects of a set differ in every UNIQUE field.
TEST(NotationRules, ObjectsOfASetDifferInUniqueFields) {
    expectMarked(R"(
K ::= CLASS { &id INTEGER UNIQUE, &T OPTIONAL, &b Code UNIQUE OPTIONAL, &Ks K OPTIONAL } WITH SYNTAX { ID &id [B &b] [KS &Ks] }
Code ::= CHOICE { local INTEGER, global OBJECT IDENTIFIER } o1 K ::= { ID 1 } o2 K ::= { ID 1 }
same K ::= o1 o3 K ::= { ID 2 B local : 1 } o4 K ::= { ID 3 B local : 1 }
o5 K ::= { ID 4 B local : 2 } g1 K ::= { ID 6 B global : {2 1 1} }
g2 K ::= { ID 7 B global : {joint-iso-itu-t 1 1} } o8 K ::= { ID 8 KS { o1 } }
o9 K ::= { ID 9 KS { o2 | o3 } }
A K ::= { o1 | o2 } --! Non-distinct UNIQUE: field 'id': 1
B K ::= { o1 | same | o1 | o3 | o5 }
C K ::= { o3 | o4 } --! Non-distinct UNIQUE: field 'b': local : 1
D K ::= { g1 |
 g2 } --! Non-distinct UNIQUE: field 'b': global : {2 1 1}
E K ::= { o1, ..., o2 } --! Non-distinct UNIQUE: field 'id': 1
F K ::= { B |
 o4 | o2 } --! Non-distinct UNIQUE: field 'b': local : 1 ; Non-distinct UNIQUE: field 'id': 1
G K ::= { A } -- A answers for itself
H K ::= { { ID 5 } |
 { ID 5 } } --! Non-distinct UNIQUE: field 'id': 5
I K ::= { A EXCEPT o2 | o3 } J K ::= { (o1 | o3) ^ (o1 | o5) | o4 } L K ::= { o8 | o9 }
N K ::= { L.&Ks } --! Non-distinct UNIQUE: field 'id': 1
P {K : Set} ::= SEQUENCE { a K.&id ({Set | o1}) } Q ::= P { { same } }
S ::= SEQUENCE { a K.&id ({o1 | o2}) } --! Non-distinct UNIQUE: field 'id': 1
R ::= P { { o2 } } --! Non-distinct UNIQUE: field 'id': 1
)",
                 ofToday);
    expectMarked(R"(
K ::= CLASS { &id INTEGER UNIQUE } A K ::= { { &id 1 } | { &id 1 } }
)");
}

TEST(NotationRules, ParametersMayBeUnused) {
    expectMarked(R"(
A {T} ::= ENUMERATED { a, ... ! T : 5 } B {T} ::= INTEGER (1 ! T : 5) C {T} ::= NULL
D {T, T : v} ::= INTEGER (v) E {T} ::= OCTET STRING (CONTAINING T) a A {INTEGER} ::= a
b B {INTEGER} ::= 1
c C {INTEGER} ::= NULL --! W Unused actual parameters: (1) T
d D {INTEGER, 5} ::= 5 f E {NULL} ::= '0500'H
)",
                 ofToday);
    expectMarked("\nC {T} ::= NULL\nc C {INTEGER} ::= NULL --! Unused actual parameters: (1) T\n");
}

} // namespace
} // namespace orvo::test
