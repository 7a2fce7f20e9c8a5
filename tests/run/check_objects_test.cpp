// Objects, table constraints, values of the types that the built-in module defines, errors in
// instances, and values that refer to one another as often as they can.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(CheckObjects, SettingsFitTheirFields) {
    expectMarked(R"(
C ::= CLASS { &a INTEGER (0..9), &b BOOLEAN OPTIONAL, &T DEFAULT NULL, &S INTEGER OPTIONAL }
a1 C ::= { &a 1, &b TRUE, &T INTEGER, &S { 1 | 2 } } a2 C ::= { &b TRUE, &a 1 }
a3 C ::= { &b TRUE } --! Mandatory field missing: field 'a' ; Invalid object
a4 C ::= { &a 1, &a 2 } --! Duplicate field setting ; Invalid object
a5 C ::= { &a 10 } --! Value out of range constraint(s) ; Invalid object
V ::= CLASS { &T, &v &T } WITH SYNTAX { &T &v } b1 V ::= { INTEGER (0..3) 3 }
b4 INTEGER ::= b1.&v
b5 BOOLEAN ::= b1.&v --! Invalid BOOLEAN value
b2 V ::= { INTEGER (0..3) 4 } --! Value out of range constraint(s) ; Invalid object
b3 V ::= { SEQUENCE { a NULL } { a NULL } }
c1 TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 2 3 } }
c2 TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 50 3 } } --! Invalid OBJECT IDENTIFIER component: 2nd component ; Invalid OBJECT IDENTIFIER value ; Invalid object
)",
                 automatic);
}

TEST(CheckObjects, ValuesStandInTheTable) {
    expectMarked(R"(
C ::= CLASS { &id INTEGER UNIQUE, &T OPTIONAL, &V INTEGER OPTIONAL }
o1 C ::= { &id 1, &T INTEGER (0..9), &V { 1..5 } } o2 C ::= { &id 2, &T BOOLEAN }
o3 C ::= { &id 3, &T SEQUENCE { a NULL } } Set C ::= { o1 | o2 } All C ::= { Set | Set | o3 }
S ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}) OPTIONAL }
a1 S ::= { id 1, val INTEGER : 5 } a2 S ::= { id 2, val BOOLEAN : TRUE }
a3 S ::= { id 1, val BOOLEAN : TRUE } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
a4 S ::= { id 3 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
a5 S ::= { id 1, val NULL : NULL } --! Value out of table constraint(s) ; Invalid SEQUENCE value
a6 S ::= { id 1, val INTEGER : 10 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
A ::= SEQUENCE { id C.&id ({All}), v C.&V ({All}{@id}) OPTIONAL } b1 A ::= { id 3 }
b2 A ::= { id 1, v 5 }
b3 A ::= { id 1, v 6 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
b4 A ::= { id 2, v 5 } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
Cut C ::= { Set ^ All } X ::= SEQUENCE { id C.&id ({Cut}) } c1 X ::= { id 9 }
)",
                 automatic);
}

TEST(CheckObjects, ObjectsOfBuiltinClassesStandInTables) {
    expectMarked(R"(
Set TYPE-IDENTIFIER ::= { { INTEGER IDENTIFIED BY {1 2 3} } | o }
o TYPE-IDENTIFIER ::= { T IDENTIFIED BY id } T ::= SEQUENCE { a INTEGER (0..5) }
id OBJECT IDENTIFIER ::= { 2 5 }
S ::= SEQUENCE { id TYPE-IDENTIFIER.&id ({Set}), val TYPE-IDENTIFIER.&Type ({Set}{@id}) }
a1 S ::= { id {1 2 3}, val INTEGER : 5 } a2 S ::= { id {2 5}, val T : { a 4 } }
a3 S ::= { id {2 5}, val INTEGER : 4 } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
a4 S ::= { id {2 6}, val INTEGER : 4 } --! Value out of table constraint(s) ; Value out of component relation constraint(s) ; Invalid SEQUENCE value
C ::= CLASS { &t TYPE-IDENTIFIER } In C ::= { { &t o } } U ::= SEQUENCE { id C.&t.&id ({In}) }
b1 U ::= { id id }
b2 U ::= { id {1 2 3} } --! Value out of table constraint(s) ; Invalid SEQUENCE value
Abs ABSTRACT-SYNTAX ::= { { NULL IDENTIFIED BY {1 2} } | { NULL IDENTIFIED BY {1 3}
  HAS PROPERTY {handles-invalid-encodings} } }
V ::= SEQUENCE { id ABSTRACT-SYNTAX.&id ({Abs}), p ABSTRACT-SYNTAX.&property ({Abs}{@id}) }
c1 V ::= { id {1 2}, p {} } c2 V ::= { id {1 3}, p {handles-invalid-encodings} }
c3 V ::= { id {1 3}, p {} } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
)",
                 automatic);
}

TEST(CheckObjects, TablesAreLookedIntoByField) {
    // The components that the relation refers to have the same number in their modules.
    const std::string head = " DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS C, Set FROM K; ";
    expectMarked(
        R"(
IMPORTS A FROM N B FROM O C, Set FROM K;
S ::= SEQUENCE { a A OPTIONAL, b B OPTIONAL, val C.&T ({Set}{@a.id, @b.code}) }
v1 S ::= { b { code 10 }, val INTEGER : 5 } v2 S ::= { a { id 1 }, val INTEGER : 5 }
v3 S ::= { a { id 1 }, b { code 20 }, val INTEGER : 5 } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
)",
        {.defaults = "AUTOMATIC TAGS ",
         .others = {{"n.asn", "N" + head + "A ::= SEQUENCE { id C.&id ({Set}) } END\n"},
                    {"o.asn", "O" + head + "B ::= SEQUENCE { code C.&code ({Set}) } END\n"},
                    {"k.asn", "K DEFINITIONS ::= BEGIN "
                              "C ::= CLASS { &id INTEGER UNIQUE, &code INTEGER, &T } WITH "
                              "SYNTAX { &id &code &T } "
                              "Set C ::= { { 1 10 INTEGER } | { 2 20 BOOLEAN } } END\n"}}});
}

TEST(CheckObjects, ValuesBringTheirSurroundings) {
    expectMarkedInAnyOrder(R"(
C ::= CLASS { &id INTEGER UNIQUE, &T, &p Pair OPTIONAL } WITH SYNTAX { &id &T [&p] }
Pair ::= SEQUENCE { a INTEGER }
Set C ::= { { 1 INTEGER { a 1 } } | { 2 BOOLEAN { a 2 } } }
In ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}), p C.&p ({Set}{@id}) OPTIONAL }
Out ::= SEQUENCE { id C.&id ({Set}), in In DEFAULT { id 2, val BOOLEAN : TRUE }, any TYPE-IDENTIFIER.&Type OPTIONAL }
K ::= CLASS { &in In, &In In DEFAULT {i | { id 2, val BOOLEAN : FALSE }} }
k K ::= { &in { id 1, val INTEGER : 7, p { a 1 } } }
i In ::= k.&in
v Out ::= { id 2, in k.&in, any In : { id 1, val INTEGER : 1 } }
w Out ::= { id 2, any SEQUENCE { id C.&id ({Set}), x C.&T ({Set}{@id}) } : { id 1, x INTEGER : 1 } }
x In ::= { id 1, val INTEGER : 1, p { a 2 } } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
)");
}

TEST(CheckObjects, ObjectsAnswerForTheirSettings) {
    expectMarkedInAnyOrder(R"(
C ::= CLASS { &id INTEGER (0..9), &T OPTIONAL, &v &T OPTIONAL }
o C ::= { &id 10 } --! Value out of range constraint(s) ; Invalid object
Set C ::= { o | p | q }
p C ::= o
q C ::= { &id 1, &T INTEGER (0..3), &v 7 } --! Value out of range constraint(s) ; Invalid object
L ::= SEQUENCE OF INTEGER (0..3)
r C ::= { &id 2, &T L, &v { 5 } } --! Value out of range constraint(s) ; Invalid SEQUENCE OF value ; Invalid object
D ::= CLASS { &o C DEFAULT o }
S ::= SEQUENCE { id C.&id ({Set2}{@t}), t C.&T ({Set2}) }
Set2 C ::= { { &id 2, &T L } | { &id 3, &T NULL } }
s S ::= { id 2, t L : { 5 } } --! Value out of range constraint(s) ; Invalid SEQUENCE OF value ; Invalid Open type value ; Invalid SEQUENCE value
)");
}

TEST(CheckObjects, RelationsStartAtTheOutermostOrInnermostValue) {
    expectMarked(R"(
C ::= CLASS { &id INTEGER UNIQUE, &T } WITH SYNTAX { &id &T }
Set C ::= { { 1 INTEGER } | { 2 BOOLEAN } }
Out ::= SEQUENCE { id C.&id ({Set}), list SEQUENCE OF In }
In ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@.id}) }
a1 Out ::= { id 1, list { { id 2, val BOOLEAN : TRUE } } }
a2 Out ::= { id 1, list { { id 2, val INTEGER : 1 } } } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE OF value ; Invalid SEQUENCE value
Far ::= SEQUENCE { id C.&id ({Set}), in SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}) } }
b1 Far ::= { id 1, in { id 2, val INTEGER : 1 } }
b2 Far ::= { id 1, in { id 2, val BOOLEAN : TRUE } } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE value
Own ::= SEQUENCE { id C.&id ({Set}), in Part }
Part ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}) }
e1 Own ::= { id 1, in { id 2, val BOOLEAN : TRUE } }
e2 Own ::= { id 2, in { id 1, val BOOLEAN : TRUE } } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value ; Invalid SEQUENCE value
Deep ::= SEQUENCE { ids SEQUENCE OF C.&id ({Set}), val C.&T ({Set}{@ids.2}) }
c1 Deep ::= { ids { 1, 2 }, val BOOLEAN : TRUE }
c2 Deep ::= { ids { 2, 1 }, val BOOLEAN : TRUE } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
c3 Deep ::= { ids { 1 }, val BOOLEAN : TRUE }
Opt ::= SEQUENCE { id C.&id ({Set}) OPTIONAL, val C.&T ({Set}{@id}) }
d1 Opt ::= { val BOOLEAN : TRUE }
d2 Opt ::= { id 1, val BOOLEAN : TRUE } --! Value out of component relation constraint(s) ; Invalid SEQUENCE value
)",
                 automatic);
}

TEST(CheckObjects, TablesOfObjectSetsInObjectsAreNotLookedInto) {
    const char* const body = R"(
E ::= CLASS { &code INTEGER UNIQUE }
e1 E ::= { &code 1 }
C ::= CLASS { &id INTEGER UNIQUE, &Errors E OPTIONAL, &first E OPTIONAL }
o1 C ::= { &id 1, &Errors { e1 }, &first e1 }
Set C ::= { o1 }
S ::= SEQUENCE { code C.&Errors.&code ({Set}) }
a1 S ::= { code 7 }
T ::= SEQUENCE { code C.&first.&code ({Set}) }
b1 T ::= { code 1 }
b2 T ::= { code 2 } --! Value out of table constraint(s) ; Invalid SEQUENCE value
)";
    const std::string sorry =
        "\n** WARNING: Table constraint checks not fully implemented, sorry.\n\n";
    EXPECT_EQ(expectMarked(body, {{"-V=3"}, "AUTOMATIC TAGS "}).err, sorry);
    EXPECT_EQ(expectMarked(body, {{"-V=1"}, "AUTOMATIC TAGS "}).err, "");
}

TEST(CheckObjects, BuiltinTypesHaveTheirComponents) {
    expectMarked(R"(
a1 EXTERNAL ::= { identification syntax : {1 2 3}, data-value encoded : '00'B }
a2 EXTERNAL ::= { identification syntax : {1 2 3} } --! Mandatory component value missing: component 'data_value' ; Invalid SEQUENCE value
b1 CHARACTER STRING ::= { identification fixed : NULL, data-value notation : IA5String : "a" }
b2 CHARACTER STRING ::= { identification fixed : NULL, data-value notation : INTEGER : 5 } --! Invalid CHARACTER STRING value
b3 CHARACTER STRING ::= { identification fixed : NULL, data-value encoded : '00'H }
B ::= SEQUENCE { c CHARACTER STRING }
b4 B ::= { c { identification fixed : NULL } } --! Mandatory component value missing: component 'data_value' ; Invalid SEQUENCE value ; Invalid SEQUENCE value
c1 EMBEDDED PDV ::= { identification fixed : NULL, data-value encoded : '00'B }
c2 EMBEDDED PDV ::= { data-value encoded : '00'B } --! Mandatory component value missing: component 'identification' ; Invalid SEQUENCE value
)",
                 automatic);
    expectMarked(R"(
a1 EXTERNAL ::= { direct-reference {1 2 3}, encoding arbitrary : '00'B }
a2 EXTERNAL ::= { indirect-reference 3, encoding arbitrary : '00'B }
a3 EXTERNAL ::= { encoding arbitrary : '00'B } --! Invalid EXTERNAL value
)",
                 {{"-STANDARD-VERSION=1990"}, "AUTOMATIC TAGS "});
}

TEST(CheckObjects, WhatDoublesSixtyTimesEnds) {
    std::string body = "T0 ::= INTEGER (0..5) U0 ::= INTEGER (0..5) V0 ::= INTEGER (V60 | 5) "
                       "L0 ::= SEQUENCE OF INTEGER l0 L0 ::= { 1, 1 } R0 ::= SEQUENCE { x NULL } "
                       "r0 R0 ::= { x NULL } s0 IA5String ::= \"ab\"\n";
    std::string inner = "(0..5)";
    for (int i = 1; i <= 60; ++i) {
        body += numbered("T# ::= INTEGER (T@ | T@) U# ::= INTEGER (U@ ^ U@) "
                         "V# ::= INTEGER (V@ | V@) L# ::= SEQUENCE OF L@ l# L# ::= { l@, l@ } "
                         "R# ::= SEQUENCE { a R@, b R@ } r# R# ::= { a r@, b r@ } "
                         "s# IA5String ::= { s@, s@ }\n",
                         i);
        inner = "(WITH COMPONENT " + inner + ")";
    }
    expectMarked(body + "l L59 " + inner + " ::= l59" + R"(
t1 T60 ::= 3 u1 U60 ::= 3 v1 V60 ::= 5 r R60 (r60) ::= { a r59, b r59 }
t2 T60 ::= 9 --! Value out of union constraint(s)
str1 IA5String (FROM ("a".."c")) ::= s60
str2 IA5String (FROM ("a")) ::= s60 --! Value out of single value constraint(s) ; Value out of permitted alphabet constraint(s)
str3 IA5String (SIZE (0..9)) ::= s60 --! Value out of range constraint(s) ; Value out of size constraint(s)
str4 IA5String (s60) ::= s59 --! Value out of single value constraint(s)
)",
                 automatic);
}

} // namespace
} // namespace orvo::test
