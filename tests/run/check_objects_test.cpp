// Objects, table constraints, values of the types that the built-in module defines, errors in
// instances, and values that refer to one another as often as they can.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/findings.h"

namespace orvo::test {
namespace {

const std::string range = "Value out of range constraint(s)";
const std::string table = "Value out of table constraint(s)";
const std::string relation = "Value out of component relation constraint(s)";
const std::string invalidSeq = "Invalid SEQUENCE value";
const std::string invalidObject = "Invalid object";

TEST(CheckObjects, SettingsFitTheirFields) {
    expectFindings({
        {"C ::= CLASS { &a INTEGER (0..9), &b BOOLEAN OPTIONAL, &T DEFAULT NULL, &S INTEGER "
         "OPTIONAL }"},
        {"a1 C ::= { &a 1, &b TRUE, &T INTEGER, &S { 1 | 2 } }"},
        {"a2 C ::= { &b TRUE, &a 1 }"},
        {"a3 C ::= { &b TRUE }", {"Mandatory field missing: field 'a'", invalidObject}},
        {"a4 C ::= { &a 1, &a 2 }", {"Duplicate field setting", invalidObject}},
        {"a5 C ::= { &a 10 }", {range, invalidObject}},
        {"V ::= CLASS { &T, &v &T } WITH SYNTAX { &T &v }"},
        {"b1 V ::= { INTEGER (0..3) 3 }"},
        {"b2 V ::= { INTEGER (0..3) 4 }", {range, invalidObject}},
        {"b3 V ::= { SEQUENCE { a NULL } { a NULL } }"},
        {"c1 TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 2 3 } }"},
        {"c2 TYPE-IDENTIFIER ::= { INTEGER IDENTIFIED BY { 1 50 3 } }",
         {"Invalid OBJECT IDENTIFIER component: 2nd component", "Invalid OBJECT IDENTIFIER value",
          invalidObject}},
    });
}

TEST(CheckObjects, ValuesStandInTheTable) {
    expectFindings({
        {"C ::= CLASS { &id INTEGER UNIQUE, &T OPTIONAL, &V INTEGER OPTIONAL }"},
        {"o1 C ::= { &id 1, &T INTEGER (0..9), &V { 1..5 } }"},
        {"o2 C ::= { &id 2, &T BOOLEAN }"},
        {"o3 C ::= { &id 3, &T SEQUENCE { a NULL } }"},
        {"Set C ::= { o1 | o2 }"},
        {"All C ::= { Set | Set | o3 }"},
        {"S ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}) OPTIONAL }"},
        {"a1 S ::= { id 1, val INTEGER : 5 }"},
        {"a2 S ::= { id 2, val BOOLEAN : TRUE }"},
        {"a3 S ::= { id 1, val BOOLEAN : TRUE }", {relation, invalidSeq}},
        {"a4 S ::= { id 3 }", {table, invalidSeq}},
        {"a5 S ::= { id 1, val NULL : NULL }", {table, invalidSeq}},
        {"a6 S ::= { id 1, val INTEGER : 10 }", {table, invalidSeq}},
        {"A ::= SEQUENCE { id C.&id ({All}), v C.&V ({All}{@id}) OPTIONAL }"},
        {"b1 A ::= { id 3 }"},
        {"b2 A ::= { id 1, v 5 }"},
        {"b3 A ::= { id 1, v 6 }", {table, invalidSeq}},
        {"b4 A ::= { id 2, v 5 }", {relation, invalidSeq}},
        {"Cut C ::= { Set ^ All }"},
        {"X ::= SEQUENCE { id C.&id ({Cut}) }"},
        {"c1 X ::= { id 9 }"},
    });
}

TEST(CheckObjects, ObjectsOfBuiltinClassesStandInTables) {
    expectFindings({
        {"Set TYPE-IDENTIFIER ::= { { INTEGER IDENTIFIED BY {1 2 3} } | o }"},
        {"o TYPE-IDENTIFIER ::= { T IDENTIFIED BY id }"},
        {"T ::= SEQUENCE { a INTEGER (0..5) }"},
        {"id OBJECT IDENTIFIER ::= { 2 5 }"},
        {"S ::= SEQUENCE { id TYPE-IDENTIFIER.&id ({Set}), val TYPE-IDENTIFIER.&Type "
         "({Set}{@id}) }"},
        {"a1 S ::= { id {1 2 3}, val INTEGER : 5 }"},
        {"a2 S ::= { id {2 5}, val T : { a 4 } }"},
        {"a3 S ::= { id {2 5}, val INTEGER : 4 }", {relation, invalidSeq}},
        {"a4 S ::= { id {2 6}, val INTEGER : 4 }", {table, relation, invalidSeq}},
        {"C ::= CLASS { &t TYPE-IDENTIFIER }"},
        {"In C ::= { { &t o } }"},
        {"U ::= SEQUENCE { id C.&t.&id ({In}) }"},
        {"b1 U ::= { id id }"},
        {"b2 U ::= { id {1 2 3} }", {table, invalidSeq}},
        {"Abs ABSTRACT-SYNTAX ::= { { NULL IDENTIFIED BY {1 2} } | { NULL IDENTIFIED BY {1 3}"},
        {"  HAS PROPERTY {handles-invalid-encodings} } }"},
        {"V ::= SEQUENCE { id ABSTRACT-SYNTAX.&id ({Abs}), p ABSTRACT-SYNTAX.&property "
         "({Abs}{@id}) }"},
        {"c1 V ::= { id {1 2}, p {} }"}, // by default
        {"c2 V ::= { id {1 3}, p {handles-invalid-encodings} }"},
        {"c3 V ::= { id {1 3}, p {} }", {relation, invalidSeq}},
    });
}

TEST(CheckObjects, TablesAreLookedIntoByField) {
    // The components that the relation refers to have the same number in their modules.
    const std::string head = " DEFINITIONS AUTOMATIC TAGS ::= BEGIN ";
    const SourceFile n = {"n.asn", "N" + head +
                                       "IMPORTS C, Set FROM K;\n"
                                       "A ::= SEQUENCE { id C.&id ({Set}) } END\n"};
    const SourceFile o = {"o.asn", "O" + head +
                                       "IMPORTS C, Set FROM K;\n"
                                       "B ::= SEQUENCE { code C.&code ({Set}) } END\n"};
    const SourceFile k = {"k.asn", "K" + head +
                                       "C ::= CLASS { &id INTEGER UNIQUE, &code INTEGER, &T }\n"
                                       "WITH SYNTAX { &id &code &T }\n"
                                       "Set C ::= { { 1 10 INTEGER } | { 2 20 BOOLEAN } } END\n"};
    expectFindings(
        {{"IMPORTS A FROM N B FROM O C, Set FROM K;"},
         {"S ::= SEQUENCE { a A OPTIONAL, b B OPTIONAL, val C.&T ({Set}{@a.id, @b.code}) }"},
         {"v1 S ::= { b { code 10 }, val INTEGER : 5 }"},
         {"v2 S ::= { a { id 1 }, val INTEGER : 5 }"},
         {"v3 S ::= { a { id 1 }, b { code 20 }, val INTEGER : 5 }", {relation, invalidSeq}}},
        {}, {n, o, k});
}

TEST(CheckObjects, ValuesBringTheirSurroundings) {
    expectFindingsInAnyOrder({
        {"C ::= CLASS { &id INTEGER UNIQUE, &T, &p Pair OPTIONAL } WITH SYNTAX { &id &T [&p] }"},
        {"Pair ::= SEQUENCE { a INTEGER }"},
        {"Set C ::= { { 1 INTEGER { a 1 } } | { 2 BOOLEAN { a 2 } } }"},
        {"In ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}), p C.&p ({Set}{@id}) OPTIONAL "
         "}"},
        {"Out ::= SEQUENCE { id C.&id ({Set}), in In DEFAULT { id 2, val BOOLEAN : TRUE }, any "
         "TYPE-IDENTIFIER.&Type OPTIONAL }"},
        {"K ::= CLASS { &in In, &In In DEFAULT {i | { id 2, val BOOLEAN : FALSE }} }"},
        {"k K ::= { &in { id 1, val INTEGER : 7, p { a 1 } } }"},
        {"i In ::= k.&in"},
        {"v Out ::= { id 2, in k.&in, any In : { id 1, val INTEGER : 1 } }"},
        {"w Out ::= { id 2, any SEQUENCE { id C.&id ({Set}), x C.&T ({Set}{@id}) } : { id 1, x "
         "INTEGER : 1 } }"},
        {"x In ::= { id 1, val INTEGER : 1, p { a 2 } }", {relation, invalidSeq}},
    });
}

TEST(CheckObjects, ObjectsAnswerForTheirSettings) {
    expectFindingsInAnyOrder({
        {"C ::= CLASS { &id INTEGER (0..9), &T OPTIONAL, &v &T OPTIONAL }"},
        {"o C ::= { &id 10 }", {range, invalidObject}},
        {"Set C ::= { o | p | q }"},
        {"p C ::= o"},
        {"q C ::= { &id 1, &T INTEGER (0..3), &v 7 }", {range, invalidObject}},
        {"L ::= SEQUENCE OF INTEGER (0..3)"},
        {"r C ::= { &id 2, &T L, &v { 5 } }", {range, "Invalid SEQUENCE OF value", invalidObject}},
        {"D ::= CLASS { &o C DEFAULT o }"},
        // The value that the relation refers to is checked after it.
        {"S ::= SEQUENCE { id C.&id ({Set2}{@t}), t C.&T ({Set2}) }"},
        {"Set2 C ::= { { &id 2, &T L } | { &id 3, &T NULL } }"},
        {"s S ::= { id 2, t L : { 5 } }",
         {range, "Invalid SEQUENCE OF value", "Invalid Open type value", invalidSeq}},
    });
}

TEST(CheckObjects, RelationsStartAtTheOutermostOrInnermostValue) {
    expectFindings({
        {"C ::= CLASS { &id INTEGER UNIQUE, &T } WITH SYNTAX { &id &T }"},
        {"Set C ::= { { 1 INTEGER } | { 2 BOOLEAN } }"},
        {"Out ::= SEQUENCE { id C.&id ({Set}), list SEQUENCE OF In }"},
        {"In ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@.id}) }"},
        {"a1 Out ::= { id 1, list { { id 2, val BOOLEAN : TRUE } } }"},
        {"a2 Out ::= { id 1, list { { id 2, val INTEGER : 1 } } }",
         {relation, invalidSeq, "Invalid SEQUENCE OF value", invalidSeq}},
        {"Far ::= SEQUENCE { id C.&id ({Set}), in SEQUENCE { id C.&id ({Set}), val C.&T "
         "({Set}{@id}) } }"},
        {"b1 Far ::= { id 1, in { id 2, val INTEGER : 1 } }"},
        {"b2 Far ::= { id 1, in { id 2, val BOOLEAN : TRUE } }",
         {relation, invalidSeq, invalidSeq}},
        // The outermost value is that of the type assignment in which the reference is written.
        {"Own ::= SEQUENCE { id C.&id ({Set}), in Part }"},
        {"Part ::= SEQUENCE { id C.&id ({Set}), val C.&T ({Set}{@id}) }"},
        {"e1 Own ::= { id 1, in { id 2, val BOOLEAN : TRUE } }"},
        {"e2 Own ::= { id 2, in { id 1, val BOOLEAN : TRUE } }",
         {relation, invalidSeq, invalidSeq}},
        {"Deep ::= SEQUENCE { ids SEQUENCE OF C.&id ({Set}), val C.&T ({Set}{@ids.2}) }"},
        {"c1 Deep ::= { ids { 1, 2 }, val BOOLEAN : TRUE }"},
        {"c2 Deep ::= { ids { 2, 1 }, val BOOLEAN : TRUE }", {relation, invalidSeq}},
        {"c3 Deep ::= { ids { 1 }, val BOOLEAN : TRUE }"},
        {"Opt ::= SEQUENCE { id C.&id ({Set}) OPTIONAL, val C.&T ({Set}{@id}) }"},
        {"d1 Opt ::= { val BOOLEAN : TRUE }"},
        {"d2 Opt ::= { id 1, val BOOLEAN : TRUE }", {relation, invalidSeq}},
    });
}

TEST(CheckObjects, TablesOfObjectSetsInObjectsAreNotLookedInto) {
    const std::vector<Line> lines = {
        {"E ::= CLASS { &code INTEGER UNIQUE }"},
        {"e1 E ::= { &code 1 }"},
        {"C ::= CLASS { &id INTEGER UNIQUE, &Errors E OPTIONAL, &first E OPTIONAL }"},
        {"o1 C ::= { &id 1, &Errors { e1 }, &first e1 }"},
        {"Set C ::= { o1 }"},
        {"S ::= SEQUENCE { code C.&Errors.&code ({Set}) }"},
        {"a1 S ::= { code 7 }"},
        {"T ::= SEQUENCE { code C.&first.&code ({Set}) }"},
        {"b1 T ::= { code 1 }"},
        {"b2 T ::= { code 2 }", {table, invalidSeq}},
    };
    expectFindings(lines);
    const std::string sorry =
        "\n** WARNING: Table constraint checks not fully implemented, sorry.\n\n";
    EXPECT_EQ(compileLines(lines, {"-V=3"}).err, sorry);
    EXPECT_EQ(compileLines(lines, {"-V=1"}).err, "");
}

TEST(CheckObjects, BuiltinTypesHaveTheirComponents) {
    const std::string missing = "Mandatory component value missing: component ";
    expectFindings({
        {"a1 EXTERNAL ::= { identification syntax : {1 2 3}, data-value encoded : '00'B }"},
        {"a2 EXTERNAL ::= { identification syntax : {1 2 3} }",
         {missing + "'data_value'", invalidSeq}},
        {"b1 CHARACTER STRING ::= { identification fixed : NULL, data-value notation : IA5String : "
         "\"a\" }"},
        {"b2 CHARACTER STRING ::= { identification fixed : NULL, data-value notation : INTEGER : 5 "
         "}",
         {"Invalid CHARACTER STRING value"}},
        {"b3 CHARACTER STRING ::= { identification fixed : NULL, data-value encoded : '00'H }"},
        {"c1 EMBEDDED PDV ::= { identification fixed : NULL, data-value encoded : '00'B }"},
        {"c2 EMBEDDED PDV ::= { data-value encoded : '00'B }",
         {missing + "'identification'", invalidSeq}},
    });
    expectFindings({{"a1 EXTERNAL ::= { direct-reference {1 2 3}, encoding arbitrary : '00'B }"},
                    {"a2 EXTERNAL ::= { indirect-reference 3, encoding arbitrary : '00'B }"},
                    {"a3 EXTERNAL ::= { encoding arbitrary : '00'B }", {"Invalid EXTERNAL value"}}},
                   {"-STANDARD-VERSION=1990"});
}

TEST(CheckObjects, WhatDoublesSixtyTimesEnds) {
    std::vector<Line> lines = {{"T0 ::= INTEGER (0..5)"},      {"U0 ::= INTEGER (0..5)"},
                               {"L0 ::= SEQUENCE OF INTEGER"}, {"l0 L0 ::= { 1, 1 }"},
                               {"V0 ::= INTEGER (V60 | 5)"},   {"R0 ::= SEQUENCE { x NULL }"},
                               {"r0 R0 ::= { x NULL }"},       {"s0 IA5String ::= \"ab\""}};
    std::string inner = "(0..5)";
    for (int i = 1; i <= 60; ++i) {
        const std::string own = std::to_string(i), last = std::to_string(i - 1);
        const auto of = [&](std::string text) {
            for (size_t at = 0; (at = text.find_first_of("#@", at)) != std::string::npos;)
                text.replace(at, 1, text[at] == '#' ? own : last);
            lines.push_back({text});
        };
        of("T# ::= INTEGER (T@ | T@)");
        of("U# ::= INTEGER (U@ ^ U@)");
        of("V# ::= INTEGER (V@ | V@)");
        of("L# ::= SEQUENCE OF L@");
        of("l# L# ::= { l@, l@ }");
        of("R# ::= SEQUENCE { a R@, b R@ }");
        of("r# R# ::= { a r@, b r@ }");
        of("s# IA5String ::= { s@, s@ }");
        inner = "(WITH COMPONENT " + inner + ")";
    }
    const std::vector<Line> checked = {
        {"t1 T60 ::= 3"},
        {"t2 T60 ::= 9", {"Value out of union constraint(s)"}},
        {"u1 U60 ::= 3"},
        {"v1 V60 ::= 5"},
        {"l L59 " + inner + " ::= l59"},
        {"r R60 (r60) ::= { a r59, b r59 }"},
        {"str1 IA5String (FROM (\"a\"..\"c\")) ::= s60"},
        {"str2 IA5String (FROM (\"a\")) ::= s60",
         {"Value out of single value constraint(s)",
          "Value out of permitted alphabet constraint(s)"}},
        {"str3 IA5String (SIZE (0..9)) ::= s60", {range, "Value out of size constraint(s)"}},
        {"str4 IA5String (s60) ::= s59", {"Value out of single value constraint(s)"}}};
    lines.insert(lines.end(), checked.begin(), checked.end());
    expectFindings(lines);
}

} // namespace
} // namespace orvo::test
